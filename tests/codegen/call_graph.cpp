#include "call_graph.h"

#include <algorithm>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace codegentest {

void CallGraph::add(const std::string& text)
{
    // Labels hold the two characters \n between their lines.
    static const std::regex node(R"re(node: \{ title: "([^"]+)" label: "[^"]*\\n(\d+) bytes \(([^)]*)\).*)re");
    static const std::regex edge(R"re(edge: \{ sourcename: "([^"]+)" targetname: "([^"]+)".*)re");
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, edge))
            mCallees.emplace(match[1], match[2]);
        else if (std::regex_match(line, match, node)) {
            if (match[3] == "dynamic")
                throw std::runtime_error("frame without a bound: " + line);
            mBytes[match[1]] = std::stoul(match[2]);
        }
    }
}

std::size_t CallGraph::deepest(const std::string& function) const
{
    if (!has(function))
        throw std::runtime_error("no function " + function + " in the call graph");
    std::vector<std::string> chain;
    return below(function, chain);
}

std::size_t CallGraph::below(const std::string& function, std::vector<std::string>& chain) const
{
    if (!has(function))
        return 0;
    if (std::find(chain.begin(), chain.end(), function) != chain.end())
        throw std::runtime_error("recursion: " + function);
    chain.push_back(function);
    std::size_t most = 0;
    const auto [first, last] = mCallees.equal_range(function);
    for (auto callee = first; callee != last; ++callee)
        most = std::max(most, below(callee->second, chain));
    chain.pop_back();
    return mBytes.at(function) + most;
}

}  // namespace codegentest

#include "text_template.h"

#include "../estimator.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace blockhost::c99 {

namespace {

[[noreturn]] void fail(std::string_view what, std::string_view where)
{
    throw esttform::Error(esttform::ErrorKind::Internal, fmt::format("template: {}: \"{}\"", what, where));
}

const std::string& valueOf(std::string_view name, const TemplateValues& values)
{
    const auto found = values.find(name);
    if (found == values.end())
        fail("no value", name);
    return found->second;
}

/// The line with values in the place of names.
std::string filled(std::string_view line, const TemplateValues& values)
{
    std::string text;
    while (true) {
        const std::size_t begin = line.find('@');
        text += line.substr(0, begin);
        if (begin == std::string_view::npos)
            return text;
        const std::size_t end = line.find('@', begin + 1);
        if (end == std::string_view::npos)
            fail("name without an end", line);
        text += valueOf(line.substr(begin + 1, end - begin - 1), values);
        line.remove_prefix(end + 1);
    }
}

}  // namespace

std::string fillTemplate(std::string_view text, const TemplateValues& values)
{
    constexpr std::string_view IF = "@if ";
    std::string result;
    std::vector<bool> isKept;                            // of the open blocks, from outside to inside
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (line.substr(0, IF.size()) == IF) {
            isKept.push_back(!valueOf(line.substr(IF.size(), line.size() - IF.size() - 1), values).empty());
        } else if (line == "@else@" || line == "@end@") {
            if (isKept.empty())
                fail("no block is open", line);
            if (line == "@end@")
                isKept.pop_back();
            else
                isKept.back() = !isKept.back();
        } else if (std::find(isKept.begin(), isKept.end(), false) == isKept.end()) {
            result += filled(line, values) + "\n";
        }
    }
    if (!isKept.empty())
        fail("block without an end", "@end@");
    return result;
}

}  // namespace blockhost::c99

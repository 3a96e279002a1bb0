// Stack of a compiled function with all that it calls, from the call graphs that GCC writes beside its objects.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace codegentest {

/// Functions of several sources by their titles; one that is static has its source's name in front.
class CallGraph {
public:
    /// Adds what -fcallgraph-info=su wrote for a source.
    /// @throws std::runtime_error  a function has no fixed bound of its frame
    void add(const std::string& text);

    /// Bytes of the frames along the deepest chain of calls from a function; those that no source has count nothing.
    /// @throws std::runtime_error  the function is in no source, or a chain comes back to itself
    std::size_t deepest(const std::string& function) const;
    bool has(const std::string& function) const { return mBytes.count(function) != 0; }

private:
    std::size_t below(const std::string& function, std::vector<std::string>& chain) const;

    std::map<std::string, std::size_t> mBytes;
    std::multimap<std::string, std::string> mCallees;
};

}  // namespace codegentest

#include "names.h"

#include "../estimator.h"
#include "../ir/identifier.h"
#include "writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace blockhost::c99 {

namespace {

/// Longest name of a model: NAME_SIZE_ERROR stays within the 63 characters that every C99 compiler tells apart.
constexpr std::size_t MAX_NAME_LENGTH = 48;

/// File names without extension that a model's files must not take: headers that would be found in place of the
/// library's, and files that stand beside the model's.
const std::set<std::string> TAKEN_FILES = {
    "assert", "complex", "ctype", "errno", "fenv", "float", "inttypes", "iso646", "limits", "locale", "main", "math", "setjmp",
    "signal", "stdarg", "stdbool", "stddef", "stdint", "stdio", "stdlib", "string", "tgmath", "time", "wchar", "wctype",
    // found through those
    "alloca", "byteswap", "endian", "features", "newlib", "sched", "stdalign", "stdatomic", "stdnoreturn", "strings", "threads",
    "uchar", "unistd",
    "zelsvd_rt", "zelendian_rt", "svd_d_rt", "svd_r_rt", "svd_helper_rt", "is_little_endian_rt",
};

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

std::string NameScope::add(const std::string& base)
{
    std::string name = base;
    for (int i = 1; isTaken(name); ++i)
        name = fmt::format("{}_{}", base, i);
    mNames.insert(name);
    return name;
}

bool NameScope::isTaken(const std::string& name) const
{
    if (isReservedName(name))
        return true;
    for (const NameScope* scope = this; scope != nullptr; scope = scope->mEnclosing)
        if (scope->mNames.count(name) != 0)
            return true;
    return false;
}

void checkModelName(const std::string& name)
{
    const auto refuse = [&name](const std::string& reason) {
        throw esttform::Error(esttform::ErrorKind::Usage, fmt::format("name: got \"{}\", {}", name, reason));
    };
    if (!ir::isIdentifier(name) || name[0] == '_')
        refuse("expected letters, digits and underscores, a letter first");
    if (name.size() > MAX_NAME_LENGTH)
        refuse(fmt::format("{} characters long, expected at most {}", name.size(), MAX_NAME_LENGTH));
    if (isReservedName(name))
        refuse("a name that C, C++ or the runtime has taken; choose another one");
    if (TAKEN_FILES.count(lowerCase(name)) != 0)
        refuse(fmt::format("but {0}.h or {0}.c would stand in the way of a file of the C library or of the generated folder; choose another one", name));
}

}  // namespace blockhost::c99

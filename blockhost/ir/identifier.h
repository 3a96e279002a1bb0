// Identifier: what a name must be to stand in generated code.
#pragma once

#include <string>

namespace blockhost::ir {

/// Letters of ASCII, digits and underscores, no digit first.
inline bool isIdentifier(const std::string& name) noexcept
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    for (const char c : name)
        if (!isLetter(c) && !(c >= '0' && c <= '9'))
            return false;
    return !name.empty() && isLetter(name[0]);
}

}  // namespace blockhost::ir

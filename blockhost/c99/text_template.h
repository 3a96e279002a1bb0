// Templates of the files around a model: text with names between at signs.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace blockhost::c99 {

/// Values by name.
using TemplateValues = std::map<std::string, std::string, std::less<>>;

/// Fills a template. "@NAME@" stands for a value. A line "@if NAME@" keeps the lines up to its "@else@" or "@end@" when the
/// value is not empty, else those between "@else@" and "@end@"; such blocks nest.
///
/// @throws esttform::Error (Internal) for a name without value and for a block that is not closed
std::string fillTemplate(std::string_view text, const TemplateValues& values);

}  // namespace blockhost::c99

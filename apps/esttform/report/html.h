// Pieces of an HTML page.
#pragma once

#include <string>
#include <vector>

namespace esttform::app::html {

/// Text as the content of an element or an attribute; made valid UTF-8.
std::string escaped(const std::string& text);

/// A section with a heading; `content` is HTML.
std::string section(const std::string& title, const std::string& content);

/// A row of a table; cells are text.
std::string row(const std::vector<std::string>& cells, const char* cellTag = "td");

/// An SVG file as an element of the page, scaled by the page's rules.
///
/// @param label  what the picture shows, for readers who do not see it
std::string inlineSvg(const std::string& svg, const std::string& label);

}  // namespace esttform::app::html

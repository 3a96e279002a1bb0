#include "report/html.h"

#include "number_text.h"

#include <fmt/format.h>

namespace esttform::app::html {

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : validText(text))
        switch (c) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += c;
        }
    return result;
}

std::string section(const std::string& title, const std::string& content)
{
    return fmt::format("<section>\n<h2>{}</h2>\n{}</section>\n", escaped(title), content);
}

std::string row(const std::vector<std::string>& cells, const char* cellTag)
{
    std::string text = "<tr>";
    for (const std::string& cell : cells)
        text += fmt::format("<{0}>{1}</{0}>", cellTag, escaped(cell));
    return text + "</tr>\n";
}

std::string inlineSvg(const std::string& svg, const std::string& label)
{
    const std::string tag = "<svg";
    const std::size_t start = svg.find(tag);             // behind the XML declaration
    return fmt::format("<svg role=\"img\" aria-label=\"{}\"{}", escaped(label), svg.substr(start + tag.size()));
}

}  // namespace esttform::app::html

#include "options/help_formatter.h"

namespace esttform::app {

namespace {

constexpr std::size_t NAME_WIDTH = 26;
constexpr std::size_t TEXT_WIDTH = 80 - NAME_WIDTH;

/// Breaks a text at spaces into lines of at most `width` bytes.
std::string wrapped(const std::string& text, std::size_t width)
{
    std::string lines;
    std::size_t begin = 0;
    while (text.size() - begin > width) {
        std::size_t end = text.rfind(' ', begin + width);
        if (end == std::string::npos || end <= begin)
            end = text.find(' ', begin + width);
        if (end == std::string::npos)
            break;
        lines += text.substr(begin, end - begin) + "\n";
        begin = end + 1;
    }
    return lines + text.substr(begin);
}

}  // namespace

HelpFormatter::HelpFormatter()
{
    column_width(NAME_WIDTH);
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const
{
    if (option->get_positional() || option->get_type_size() == 0)
        return {};
    return " " + option->get_type_name();
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const
{
    return wrapped(option->get_description(), TEXT_WIDTH);
}

}  // namespace esttform::app

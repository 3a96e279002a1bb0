#include "options/option_pages.h"

#include <fmt/format.h>

namespace esttform::app {

namespace {

/// A text for roff: no character of it is taken for a request, a hyphen is one that can be copied.
std::string roff(const std::string& text)
{
    std::string escaped = !text.empty() && (text[0] == '.' || text[0] == '\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else if (c == '\n')
            escaped += ' ';
        else
            escaped += c;
    }
    return escaped;
}

std::string optionEntry(const CLI::Option& option)
{
    const bool isPositional = option.get_positional();
    std::string names;
    for (const std::string& name : option.get_snames())
        names += (names.empty() ? "\\fB" : ", \\fB") + roff("-" + name) + "\\fR";
    for (const std::string& name : option.get_lnames())
        names += (names.empty() ? "\\fB" : ", \\fB") + roff("--" + name) + "\\fR";
    if (isPositional)
        names = "\\fI" + roff(option.get_name(true)) + "\\fR";
    else if (!option.get_type_name().empty())
        names += " \\fI" + roff(option.get_type_name()) + "\\fR";
    return fmt::format(".TP\n{}\n{}\n", names, roff(option.get_description()));
}

std::string options(const CLI::App& app)
{
    std::string text;
    for (const std::string& group : app.get_groups())
        for (const CLI::Option* const option :
             app.get_options([&](const CLI::Option* o) { return !group.empty() && o->get_group() == group; }))
            if (option != app.get_help_ptr())
                text += optionEntry(*option);
    return text;
}

}  // namespace

std::string manualPage(CLI::App& app)
{
    const std::string name = app.get_name(), version = app.version();
    std::string upper = name;
    for (char& c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    std::string text = fmt::format(".TH {} 1 \"\" \"{}\" \"User Commands\"\n.SH NAME\n{} \\- {}\n", upper, roff(version),
                                   roff(name), roff(app.get_description()));
    text += fmt::format(".SH SYNOPSIS\n.B {0}\n[\\-\\-config \\fIFILE\\fR] \\fICOMMAND\\fR [\\fIOPTION\\fR ...]\n"
                        ".SH OPTIONS\n{1}.SH COMMANDS\n", roff(name), options(app));
    for (const CLI::App* const command : commandsOf(app)) {
        std::string positionals;
        for (const CLI::Option* const option : command->get_options([](const CLI::Option* o) { return o->get_positional(); }))
            positionals += " " + option->get_name(true);
        text += fmt::format(".SS \"{} {}{} [OPTION ...]\"\n{}\n{}", roff(name), roff(command->get_name()), roff(positionals),
                            roff(command->get_description()), options(*command));
    }
    text += ".SH EXAMPLES\n.nf\nesttform estimate matches.csv \\-\\-type similarity \\-\\-plot matches.png\n"
            "esttform stabilise sequence.csv \\-o trajectory.csv\nsource <(esttform \\-\\-bash\\-completion)\n.fi\n";
    return text + fmt::format(".SH EXIT STATUS\n{}\n", roff(app.get_footer()));
}

}  // namespace esttform::app

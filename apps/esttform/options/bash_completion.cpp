#include "options/option_pages.h"

#include <fmt/format.h>

#include <algorithm>

namespace esttform::app {

namespace {

/// How the value of an option is completed: "-f" files, "-d" folders, "-W a b" words, empty: not at all.
std::string valueAction(CLI::Option& option)
{
    const std::string type = option.get_type_name();
    if (type == "FILE" || type == "PATH")
        return "-f";
    if (type == "DIR" || type == "FOLDER")
        return "-d";
    try {
        std::string words = option.get_validator(0)->get_name();
        std::replace(words.begin(), words.end(), '|', ' ');
        return words.find(' ') == std::string::npos ? "" : "-W " + words;
    } catch (const CLI::OptionNotFound&) {
        return {};
    }
}

std::string optionNames(const CLI::Option& option, const char* separator)
{
    std::string names;
    for (const std::string& name : option.get_snames())
        names += (names.empty() ? "-" : std::string(separator) + "-") + name;
    for (const std::string& name : option.get_lnames())
        names += (names.empty() ? "--" : std::string(separator) + "--") + name;
    return names;
}

/// The branch of one command: what follows an option, and else its options and files.
std::string branch(CLI::App& command, const std::string& pattern, const std::string& otherWords)
{
    std::string names, actions;
    bool hasPositional = false;
    for (CLI::Option* const option : command.get_options({})) {
        hasPositional = hasPositional || option->get_positional();
        if (option->get_positional() || option->get_group().empty())
            continue;
        names += (names.empty() ? "" : " ") + optionNames(*option, " ");
        if (!option->get_type_name().empty())
            actions += fmt::format("        {}) action=\"{}\" ;;\n", optionNames(*option, "|"),
                                   valueAction(*option));
    }
    return fmt::format("    {}) case \"$previous\" in\n{}        *) words=\"{}{}\"{} ;;\n        esac ;;\n", pattern, actions, names,
                       otherWords, hasPositional ? " action=-f" : "");
}

}  // namespace

std::string bashCompletion(CLI::App& app)
{
    const std::string name = app.get_name();
    std::string commandNames, branches;
    for (CLI::App* const command : commandsOf(app)) {
        commandNames += " " + command->get_name();
        branches += branch(*command, command->get_name(), "");
    }
    branches += branch(app, "*", commandNames);
    return fmt::format(R"(# Completion of {0} for bash.
_{0}()
{{
    local current="${{COMP_WORDS[COMP_CWORD]}}" previous="${{COMP_WORDS[COMP_CWORD - 1]}}" command="" words="" action="" word
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD - 1}}"; do
        case " {1} " in *" $word "*) command="$word"; break ;; esac
    done
    case "$command" in
{2}    esac
    COMPREPLY=()
    if [[ $current == -* || $action != -f ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
    if [[ $action == -W* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${{action:3}}" -- "$current")
    elif [[ $action && $current != -* ]]; then
        mapfile -t COMPREPLY < <(compgen "$action" -- "$current")
        compopt -o filenames 2>/dev/null
    fi
}}
complete -F _{0} {0}
)", name, commandNames.substr(1), branches);
}

}  // namespace esttform::app

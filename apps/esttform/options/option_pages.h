// The manual page and the completion for the shell, made from the options that the program has.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace esttform::app {

/// The manual page in roff, for the man macros.
std::string manualPage(CLI::App& app);

/// A function for bash that completes commands, options, their words and names of files.
std::string bashCompletion(CLI::App& app);

/// Adds --manual-page and --bash-completion, which print the two and end the program.
void addPageOptions(CLI::App& app);

/// The commands of a program in the order in which they were added.
std::vector<CLI::App*> commandsOf(CLI::App& app);

}  // namespace esttform::app

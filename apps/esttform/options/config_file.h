// ConfigFile: values of options from a TOML file, one section a command.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace esttform::app {

/// Reads the part of TOML that options need: sections [COMMAND], keys named like the long options or like positional
/// arguments, comments, and as values texts in quotes, numbers, true, false and, on one line, lists of these.
///
/// Everything is checked for all commands, so that a mistake is found before it matters: a key that is no option, a key that
/// is given twice, a value that the option refuses.
class ConfigFile : public CLI::Config {
public:
    /// @param app  the program with all its commands; must outlive this
    explicit ConfigFile(CLI::App& app) : mApp(app) {}

    /// @throws Failure  with file, line and key
    std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;
    /// Nothing: the program writes no such files.
    std::string to_config(const CLI::App*, bool, bool, std::string) const override { return {}; }

private:
    CLI::App& mApp;
};

/// Adds --config to the program, before or after the command's name. To be called before commands are added.
void addConfigOption(CLI::App& app);

}  // namespace esttform::app

// HelpFormatter: --help in lines of a terminal's width, options grouped, each with its default and unit.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace esttform::app {

class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    /// The value's name after an option; nothing about counts, which the description tells.
    std::string make_option_opts(const CLI::Option* option) const override;
    /// The description, wrapped.
    std::string make_option_desc(const CLI::Option* option) const override;
};

}  // namespace esttform::app

#include "options/option_pages.h"

namespace esttform::app {

std::vector<CLI::App*> commandsOf(CLI::App& app)
{
    return app.get_subcommands([](CLI::App*) { return true; });
}

void addPageOptions(CLI::App& app)
{
    // The library prints what such an exception says, as it prints the version.
    app.add_flag_callback("--manual-page", [&app] { throw CLI::CallForVersion(manualPage(app), 0); },
                          "print the manual page, for man -l")->configurable(false);
    app.add_flag_callback("--bash-completion", [&app] { throw CLI::CallForVersion(bashCompletion(app), 0); },
                          "print the completion for bash, for source")->configurable(false);
}

}  // namespace esttform::app

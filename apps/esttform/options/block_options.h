// The command-line options that set up a block, shared by every command that runs or describes one.
#pragma once

#include "options/block_settings.h"

namespace CLI {
class App;
}

namespace esttform::app {

/// Adds the options to a command. `options` must outlive the parsing.
void addBlockOptions(CLI::App& command, BlockOptions& options);

}  // namespace esttform::app

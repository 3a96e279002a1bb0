// Keeps blocks' libraries loaded until the process ends: loading takes ten times as long as opening a block.
#pragma once

#include <string>

namespace esttform::python {

/// Keeps the library of a block that was opened. In a turn of the block.
///
/// @param requestedPath  as of Options::blockPath
void keepLibrary(const std::string& requestedPath);

}  // namespace esttform::python

// Where the estimator finds its block when nobody says. Looks at the environment and beside its own library; loads nothing.
#pragma once

#include "estimator.h"

#include <string>

namespace blockhost {

/// The path that was asked for; else the environment variable ESTTFORM_BLOCK; else szelesttform.so in the folder of this
/// library or in esttform/ below it.
///
/// @throws Error (Load) if neither file is there; the text names the folder
ESTTFORM_API std::string findBlock(const std::string& requestedPath);

}  // namespace blockhost

// Runs every file of a folder of vectors as one test each.
#pragma once

#include "vector_values.h"

using Replay = void (*)(const Json& vector, CaseCheck& check);

/// Replays the files whose names begin with "generated_", or those that do not.
///
/// The folder is the bundled one, or what the environment variable ESTTFORM_VECTORS names.
/// @param formatOf  the replay for files whose first case is like this; null for a format that is not known
/// @return the exit code of the program
int runVectorFiles(int argc, char** argv, bool isGenerated, Replay (*formatOf)(const Json& firstCase));

// The files of a batch in their order.
#pragma once

#include "output/output_paths.h"

#include <string>
#include <vector>

namespace esttform::app {

/// The files that arguments name, sorted by the bytes of their paths, each once.
///
/// @param arguments   files; folders, of which the files *.csv and *.tsv are taken; patterns with * ? [ that no file has
///                    as its name
/// @param output  the results of an earlier batch, where they are found in a folder or by a pattern, are left out
/// @throws Failure  a folder that cannot be read or has no such file, a pattern that nothing matches
std::vector<std::string> batchFiles(const std::vector<std::string>& arguments, const FileIdentity& output);

}  // namespace esttform::app

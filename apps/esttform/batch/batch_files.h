// The files of a batch in their order, and the start of the random numbers of each.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

/// The files that arguments name, sorted by the bytes of their paths, each once.
///
/// @param arguments   files; folders, of which the files *.csv and *.tsv are taken; patterns with * ? [ that no file has
///                    as its name
/// @param outputPath  left out where it is found in a folder or by a pattern
/// @throws Failure  a folder that cannot be read or has no such file, a pattern that nothing matches
std::vector<std::string> batchFiles(const std::vector<std::string>& arguments, const std::string& outputPath);

/// Start of the random numbers of the file at a position, from 0: the bits of seed + 2654435769 * (idx + 1), in 32 bits, well
/// mixed, so that neighbours have nothing in common.
std::uint32_t batchSeed(std::uint32_t seed, std::int64_t idx) noexcept;

}  // namespace esttform::app

// Code generation: C99 sources that do what the block does, for programs and devices without this library.
// This header needs nothing but the standard library; programs link with libblockhost.
#pragma once

#include "estimator.h"

#include <cstdint>
#include <string>
#include <vector>

namespace esttform {

/// Things about generated code that are not settings of the block.
struct CodeOptions {
    /// NAME: prefix of files and of everything that other sources see; a C identifier.
    std::string name = "esttform";
    /// True: steps may have any number of points up to maxPtsNum; false: exactly maxPtsNum.
    bool isVariableSize = false;
    /// Adds main.c, a program that reads matched points from a CSV file and prints JSON lines.
    bool withMain = false;
    /// Path of the block; see Options::blockPath.
    std::string blockPath;
};

/// One file of generated code.
struct GeneratedFile {
    std::string name;  ///< without a folder
    std::string text;
};

/// Code that estimates as an Estimator with these arguments does: NAME.h, NAME.c, its runtime, a CMakeLists.txt and, if
/// wanted, main.c. The same arguments give the same bytes.
///
/// @return all files of the folder, in the order they are to be written
/// @throws Error  Load: the library or a callback of it is missing; Usage: a parameter, a size or a name that is refused;
///                Internal: the block described code that breaks the rules
ESTTFORM_API std::vector<GeneratedFile> generateCode(const Params& params, DataType pointsType, std::int32_t maxPtsNum,
                                                     const CodeOptions& options = {});

/// What the block described, verified, as readable text: the tree that generateCode writes as C. Throws as generateCode.
ESTTFORM_API std::string dumpIr(const Params& params, DataType pointsType, std::int32_t maxPtsNum,
                                const CodeOptions& options = {});

}  // namespace esttform

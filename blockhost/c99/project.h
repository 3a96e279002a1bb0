// The files around a generated model: its runtime, a CMakeLists.txt, and a program that runs it on CSV files.
#pragma once

#include "source_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace blockhost::c99 {

/// What the files around a model need to know about it.
struct ProjectInfo {
    std::string name;                   ///< NAME of the model
    std::vector<std::string> headers;   ///< of the runtime, as registered, with extensions
    std::vector<std::string> sources;
    bool withMain = false;              ///< add main.c, which needs the rest
    bool isVariableSize = false;
    std::int32_t maxPtsNum = 0;
    std::int32_t sampleSize = 0;        ///< fewest point pairs of a step
    bool inRows = false;                ///< points in rows
    int pointsTypeId = 0;
    int tformRows = 0;
    int tformCols = 0;
    bool hasInliers = false;
};

/// The runtime files in the order given, CMakeLists.txt, and perhaps main.c, for a folder with NAME.h and NAME.c.
///
/// @throws esttform::Error  Usage: CMake cannot have a target called NAME; Internal: no such file in the runtime, no
///                          such type of points
std::vector<SourceFile> projectFiles(const ProjectInfo& info);

}  // namespace blockhost::c99

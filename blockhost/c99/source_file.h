// SourceFile: one file of generated code, finished.
#pragma once

#include <string>

namespace blockhost::c99 {

struct SourceFile {
    std::string name;  ///< without a folder
    std::string text;  ///< ends with a newline
};

}  // namespace blockhost::c99

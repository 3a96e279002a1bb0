// All settings of a block that shape its code, and a small list of settings in which every two of them meet.
#pragma once

#include "blockhost/codegen.h"

#include <string>
#include <vector>

namespace codegentest {

struct MatrixSetting {
    std::string text;  ///< for people: every option with its value
    esttform::Settings settings;
    bool isVariable = false;
};

/// Settings in which each pair of values of two options occurs at least once where both shape the code; the same ones each
/// time.
std::vector<MatrixSetting> optionMatrix();

}  // namespace codegentest

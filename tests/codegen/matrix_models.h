// The generated code of every setting of the option matrix, under names that let all of it be one program.
#pragma once

#include "option_matrix.h"

#include <string>
#include <vector>

namespace codegentest {

constexpr std::int32_t MATRIX_PTS_NUM = 20;

struct MatrixModel {
    std::string name;  ///< m0, m1 and so on
    MatrixSetting setting;
    std::vector<esttform::GeneratedFile> files;
};

/// Generates a setting's code, a main program with it.
std::vector<esttform::GeneratedFile> filesOf(const std::string& name, const MatrixSetting& setting);

/// All models, in the order of the matrix.
std::vector<MatrixModel> matrixModels();

/// Text of a model's file by the end of its name, ".h" or ".c".
const std::string& textOf(const MatrixModel& model, const std::string& ending);

/// The number in front of some words in a model's header, such as " bytes for the struct".
std::size_t numberBefore(const std::string& words, const MatrixModel& model);

/// True for a C source or header.
bool isSource(const std::string& name);

/// True for a file that is the same in every folder of generated code that has it.
bool isRuntimeFile(const std::string& name);

}  // namespace codegentest

// The C99 writer: from a verified tree to the text of C files. The same tree gives the same bytes.
#pragma once

#include "../ir/model.h"
#include "source_file.h"

#include <string>
#include <vector>

namespace blockhost::c99 {

/// What the files say about themselves beyond the tree.
struct ModelText {
    std::string modelName;  ///< NAME: file names, and prefix of everything that other files see
    std::string purpose;    ///< one or two sentences
    std::string version;    ///< of the generating program
};

/// NAME.h and NAME.c: the struct of the model's signals, NAME_start and NAME_step.
///
/// @param model  verified; of several blocks each step runs theirs in order
/// @throws esttform::Error (Usage) for a name that C, its library or the runtime does not leave free
ESTTFORM_API std::vector<SourceFile> writeModel(const ir::Model& model, const ModelText& text);

/// NAME.h and NAME.c with every function of a module as NAME_function, for programs that call them without a model.
ESTTFORM_API std::vector<SourceFile> writeFunctions(const CG::Module& module, const ModelText& text);

/// @throws esttform::Error (Usage) as writeModel does
ESTTFORM_API void checkModelName(const std::string& name);

}  // namespace blockhost::c99

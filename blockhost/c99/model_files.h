// The two files of a model in parts: head and struct, the phases, and how they are put together.
#pragma once

#include "model_layout.h"
#include "text.h"
#include "unit.h"
#include "usage.h"
#include "writer.h"

namespace blockhost::c99 {

/// Bodies that run in a step, in order: of each block its size rules, then its output code.
std::vector<const CG::Block*> stepBodies(const ir::Model& model);
std::vector<const CG::Block*> startBodies(const ir::Model& model);

/// First lines of a header and its last ones: guard, includes, linkage.
void openHeader(Lines& lines, const std::string& modelName);
void closeHeader(Lines& lines, const std::string& modelName);

/// NAME.h
std::string modelHeader(const ir::Model& model, const ModelLayout& layout, const ModelText& text);

/// clearOutputs, NAME_start and NAME_step.
Lines modelFunctions(const ir::Model& model, const ModelLayout& layout, const ModelText& text, Unit& unit);

/// Name of the function that clears the outputs.
constexpr const char* CLEAR_OUTPUTS = "clearOutputs";

}  // namespace blockhost::c99

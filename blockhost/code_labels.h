// What a reader of generated code is told about the block: what it does, its settings in words, names of its signals.
#pragma once

#include "codegen.h"
#include "ir/model_builder.h"

namespace esttform {

/// A model of matched points, by checked dialog values.
struct PointModel {
    Params params;
    std::int32_t maxPtsNum = 0;
    bool isVariableSize = false;
};

/// Point pairs that the transformation type needs.
int sampleSizeOf(const Params& params) noexcept;

/// One sentence: what the model does, and how its TForm acts on a point.
std::string purposeOf(const PointModel& model);

/// Only settings that have an effect are named.
blockhost::ir::BlockLabels labelsOf(const PointModel& model);

}  // namespace esttform

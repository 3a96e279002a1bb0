// PointMap: an estimated transformation as the 3x3 matrix that maps first points to second ones, whatever TForm's shape.
// For drawing and for telling people about a result; the block's own numbers stay in TForm.
#pragma once

#include "blockhost/estimator.h"

#include <array>

namespace esttform::app {

/// (x2*w, y2*w, w)' = m * (x1, y1, 1)' with m row by row.
struct PointMap {
    std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};

    /// Homogeneous image of a point: x*w, y*w, w.
    std::array<double, 3> apply(double x, double y) const noexcept
    {
        return {m[0] * x + m[1] * y + m[2], m[3] * x + m[4] * y + m[5], m[6] * x + m[7] * y + m[8]};
    }
};

/// The map of a result. Points in rows have the transposed matrix.
PointMap mapOf(const StepResult& result, Layout layout) noexcept;

}  // namespace esttform::app

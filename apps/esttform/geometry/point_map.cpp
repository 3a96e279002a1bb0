#include "geometry/point_map.h"

namespace esttform::app {

PointMap mapOf(const StepResult& result, Layout layout) noexcept
{
    PointMap map;
    const bool isColumns = layout == Layout::Columns;
    const int rowNum = isColumns ? result.tformRows : result.tformCols;
    const int colNum = isColumns ? result.tformCols : result.tformRows;
    for (int row = 0; row < rowNum; ++row)
        for (int col = 0; col < colNum; ++col)
            map.m[static_cast<std::size_t>(3 * row + col)] = isColumns ? result.tform(row, col) : result.tform(col, row);
    return map;
}

}  // namespace esttform::app

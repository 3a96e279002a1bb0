#include "point_block.h"

#include "block_path.h"
#include "data_types.h"
#include "dialog_params.h"

#include <fmt/format.h>

#include <limits>

namespace blockhost {

using esttform::DataType;
using esttform::Error;
using esttform::ErrorKind;
using esttform::Layout;

namespace {

/// The longest work vector has 2 * points * 9 elements, and its width is a 32-bit number.
constexpr std::int32_t MAX_PTS_NUM = std::numeric_limits<std::int32_t>::max() / 18;

}  // namespace

bool isFlagSet(double value) noexcept
{
    return (static_cast<std::uint64_t>(toInteger<std::int64_t>(value)) & 0xFFU) != 0;
}

Layout layoutOf(const esttform::Params& params) noexcept
{
    return isFlagSet(params[esttform::POINTS_IN_ROWS]) ? Layout::Rows : Layout::Columns;
}

Dims sizeOfPoints(Layout layout, std::int32_t ptsNum) noexcept
{
    return layout == Layout::Rows ? Dims{ptsNum, 2} : Dims{2, ptsNum};
}

BlockSetup pointBlockSetup(const esttform::Params& params, DataType pointsType, std::int32_t maxPtsNum, bool isVariableSize,
                           const std::string& blockPath)
{
    const int typeId = static_cast<int>(pointsType);
    if (typeId < 0 || typeId > static_cast<int>(DataType::Uint32))
        throw Error(ErrorKind::Usage, fmt::format("pointsType: got data type {}, expected an id from 0 to 7", typeId));
    if (maxPtsNum < 0 || maxPtsNum > MAX_PTS_NUM)
        throw Error(ErrorKind::Usage,
                    fmt::format("maxPtsNum: got {} point pairs, expected 0 to {}", maxPtsNum, MAX_PTS_NUM));
    BlockSetup setup;
    setup.libraryPath = findBlock(blockPath);
    setup.params.assign(params.begin(), params.end());
    for (const esttform::ParamInfo& info : esttform::paramTable())
        setup.paramLabels.push_back({info.name, info.tunable, info.meaning,
                                     std::string(info.values) + (*info.unit != '\0' ? " " : "") + info.unit});
    Signal points;
    points.dims = sizeOfPoints(layoutOf(params), maxPtsNum);
    points.typeId = typeId;
    points.mode = isVariableSize ? sysobj::DIMS_MODE_VARIABLE : sysobj::DIMS_MODE_FIXED;
    setup.inputs = {points, points};
    return setup;
}

}  // namespace blockhost

#include "dims.h"

#include <cstdint>
#include <limits>

namespace blockhost {

using sysobj::DIMS_UNKNOWN;

namespace {

/// Element count of num sizes; DIMS_UNKNOWN when one is not known, a value above 32 bits when it does not fit.
std::int64_t widthOf(const int* sizes, int num) noexcept
{
    constexpr std::int64_t MAX_WIDTH = std::numeric_limits<std::int32_t>::max();
    if (num < 0)
        return DIMS_UNKNOWN;
    std::int64_t width = 1;
    for (int i = 0; i < num; ++i) {
        if (sizes[i] < 0)
            return DIMS_UNKNOWN;
        width = width > MAX_WIDTH ? width : width * sizes[i];
    }
    return width;
}

}  // namespace

Dims::Dims(std::initializer_list<int> sizes) noexcept : mNum(0)
{
    for (const int size : sizes)
        if (mNum < MAX_DIM_NUM)
            mSizes[static_cast<std::size_t>(mNum++)] = size;
}

Dims::Dims(const sysobj::DimsInfo_tag& record) noexcept : mNum(record.numDims)
{
    for (int i = 0; i < mNum; ++i)
        setSize(i, record.dims[i]);
}

const char* Dims::problemOf(const sysobj::DimsInfo_tag& record) noexcept
{
    if (record.numDims == DIMS_UNKNOWN)
        return nullptr;
    if (record.numDims < 1 || record.numDims > MAX_DIM_NUM)
        return "number of dimensions is not from 1 to 4";
    if (record.dims == nullptr)
        return "sizes are null";
    for (int i = 0; i < record.numDims; ++i)
        if (record.dims[i] < DIMS_UNKNOWN)
            return "a size is negative";
    if (widthOf(record.dims, record.numDims) > std::numeric_limits<std::int32_t>::max())
        return "more elements than 32 bits can count";
    return nullptr;
}

int Dims::size(int dim) const noexcept
{
    if (mNum == DIMS_UNKNOWN)
        return DIMS_UNKNOWN;
    return dim < mNum ? mSizes[static_cast<std::size_t>(dim)] : 1;
}

int Dims::width() const noexcept
{
    return static_cast<int>(widthOf(mSizes.data(), mNum));
}

bool Dims::isVector() const noexcept
{
    int longNum = 0;
    for (int i = 0; i < mNum; ++i)
        longNum += size(i) != 1 ? 1 : 0;
    return mNum == 1 || (mNum > 1 && longNum <= 1);
}

bool Dims::agreesWith(const Dims& other) const noexcept
{
    if (mNum == DIMS_UNKNOWN || other.mNum == DIMS_UNKNOWN)
        return true;
    if (mNum != other.mNum)
        return (mNum == 1 || other.mNum == 1) && isVector() && other.isVector()
               && (width() == other.width() || !isKnown() || !other.isKnown());
    for (int i = 0; i < mNum; ++i)
        if (size(i) != other.size(i) && size(i) != DIMS_UNKNOWN && other.size(i) != DIMS_UNKNOWN)
            return false;
    return true;
}

std::string Dims::text() const
{
    if (mNum == DIMS_UNKNOWN)
        return "dynamic";
    std::string text = mNum == 1 ? "vector of " : "";
    for (int i = 0; i < mNum; ++i)
        text += (i > 0 ? "-by-" : "") + (size(i) < 0 ? std::string("?") : std::to_string(size(i)));
    return text;
}

}  // namespace blockhost

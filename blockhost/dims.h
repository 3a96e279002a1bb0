// Dims: the size of a port as the host keeps it, by value. Unlike a dimension record it owns its sizes.
// Sizes or the whole record may still be unknown.
#pragma once

#include "estimator.h"
#include "host_api.h"

#include <array>
#include <initializer_list>
#include <string>

namespace blockhost {

/// Dimensions of a port. A small value, nothing is allocated.
class ESTTFORM_API Dims {
public:
    static constexpr int MAX_DIM_NUM = 4;

    /// Fully dynamic: neither the number of dimensions nor a size is known.
    Dims() = default;
    /// @param sizes  rows and columns, or one size for a vector; DIMS_UNKNOWN for a size not known. At most MAX_DIM_NUM
    Dims(std::initializer_list<int> sizes) noexcept;
    /// @param record  one that problemOf accepts
    explicit Dims(const sysobj::DimsInfo_tag& record) noexcept;

    /// What is wrong with a record, null when it can be used: null sizes, too many dimensions, a negative size, a width
    /// beyond 32 bits.
    static const char* problemOf(const sysobj::DimsInfo_tag& record) noexcept;

    /// Number of dimensions, DIMS_UNKNOWN for a fully dynamic size.
    int num() const noexcept { return mNum; }
    /// Size along dim; 1 beyond the last dimension, DIMS_UNKNOWN while not known.
    int size(int dim) const noexcept;
    void setSize(int dim, int size) noexcept { mSizes[static_cast<std::size_t>(dim)] = size; }
    /// Number of elements, DIMS_UNKNOWN while a size is not known.
    int width() const noexcept;
    bool isKnown() const noexcept { return width() != sysobj::DIMS_UNKNOWN; }
    /// 1 dimension, or all but one of size 1.
    bool isVector() const noexcept;
    /// True unless a size that both know differs. A one-dimensional vector agrees with a row and with a column.
    bool agreesWith(const Dims& other) const noexcept;
    /// The record that callbacks take; refers to this object.
    sysobj::DimsInfo_tag record() const noexcept { return {width(), mNum, mNum > 0 ? mSizes.data() : nullptr}; }
    /// "9-by-2", "?-by-2", "vector of 7", "dynamic".
    std::string text() const;

private:
    int mNum = sysobj::DIMS_UNKNOWN;
    std::array<int, MAX_DIM_NUM> mSizes{};
};

}  // namespace blockhost

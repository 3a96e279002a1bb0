// PointArray: a set of points as NumPy holds it - which convention, which element type, where each coordinate lies.
#pragma once

#include "blockhost/estimator.h"

#include <pybind11/numpy.h>

#include <optional>
#include <string>

namespace esttform::python {

/// How a caller writes points, and how the transformation acts on them.
enum class Convention {
    Rows,     ///< N-by-2; TForm acts on row vectors from the right
    Columns,  ///< 2-by-N; TForm acts on column vectors from the left
};

/// @throws ValueError  for another word than "rows" or "columns"
Convention conventionOf(const std::string& word);

/// The layout in which the block reads arrays of a convention that lie in memory row by row ("C") or column by column ("F").
///
/// @throws ValueError  for another order
Layout layoutOf(Convention convention, const std::string& order);

/// Points of one set. Holds a reference to the array, which is never written to.
class PointArray {
public:
    /// Looks at an array, or at what NumPy makes of a sequence: numbers without a type of their own become doubles.
    ///
    /// @param name        "pts1" or "pts2", for messages
    /// @param convention  empty: taken from the shape, where 2-by-2 is N-by-2
    /// @throws TypeError   an element type that is none of the eight
    /// @throws ValueError  a shape that is neither N-by-2 nor 2-by-N, or not of the convention
    PointArray(const pybind11::object& points, const char* name, std::optional<Convention> convention);

    const char* name() const noexcept { return mName; }
    Convention convention() const noexcept { return mConvention; }
    DataType type() const noexcept { return mType; }
    std::int32_t num() const noexcept { return mNum; }
    std::string shapeText() const;

    /// True if memory holds the elements in the order of a layout.
    bool isOrdered(Layout layout) const noexcept;
    /// True if the block can read the array in place, in this layout.
    bool liesIn(Layout layout) const noexcept { return isOrdered(layout) && isAligned(); }
    const void* data() const noexcept { return mArray.data(); }

    /// Writes the points in a layout. Needs no interpreter lock.
    ///
    /// @param points  out, 2*num() elements
    void copyTo(void* points, Layout layout) const noexcept;
    /// Index of the first point with a coordinate that is not finite; empty when there is none. Needs no interpreter lock.
    std::optional<std::int32_t> firstNonFinite() const noexcept;
    /// Coordinate of a point, 0 for x and 1 for y, widened without loss. Needs no interpreter lock.
    double at(std::int32_t point, int coordinate) const noexcept;

private:
    bool isAligned() const noexcept;
    template <typename Function>
    auto withElements(Function function) const noexcept;

    const char* mName;
    pybind11::array mArray;
    Convention mConvention = Convention::Rows;
    DataType mType = DataType::Double;
    std::int32_t mNum = 0;
    std::ptrdiff_t mPointStride = 0;        ///< bytes from a point to the next
    std::ptrdiff_t mCoordinateStride = 0;   ///< bytes from x to y
};

/// NumPy's name of an element type, for example "float32".
const char* dtypeName(DataType type) noexcept;
/// @throws TypeError  for a dtype that is none of the eight
DataType typeOfDtype(const pybind11::dtype& dtype, const std::string& name);

}  // namespace esttform::python

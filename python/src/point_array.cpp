#include "point_array.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace esttform::python {

namespace py = pybind11;

namespace {

constexpr std::array<const char*, 8> DTYPE_NAMES{"float64", "float32", "int8", "uint8", "int16", "uint16", "int32", "uint32"};

/// An array whatever was given; a sequence of numbers becomes an array of doubles.
py::array arrayOf(const py::object& points, const char* name)
{
    if (py::isinstance<py::array>(points)) {
        static const py::handle plain = py::object(py::module_::import("numpy").attr("ndarray")).release();
        if (!py::type::handle_of(points).is(plain) && py::hasattr(points, "mask") && py::module_::import("numpy.ma").attr("is_masked")(points).cast<bool>())
            throw py::value_error(fmt::format("{}: got masked points, expected none; leave such pairs out of both", name));
        return py::reinterpret_borrow<py::array>(points);
    }
    if (points.is_none() || py::isinstance<py::str>(points))
        throw py::type_error(fmt::format("{}: got {}, expected an array of points", name,
                                         std::string(py::str(py::type::of(points).attr("__name__")))));
    if (py::hasattr(points, "__array__") || PyObject_CheckBuffer(points.ptr()) == 1)
        return py::module_::import("numpy").attr("asarray")(points);
    try {
        return py::module_::import("numpy").attr("asarray")(points, "float64");
    } catch (const py::error_already_set& e) {
        const std::string text = fmt::format("{}: got a {} that is no array of numbers, expected N-by-2 or 2-by-N points: {}", name,
                                             std::string(py::str(py::type::of(points).attr("__name__"))),
                                             std::string(py::str(e.value())));
        if (e.matches(PyExc_TypeError))
            throw py::type_error(text);
        throw py::value_error(text);
    }
}

}  // namespace

const char* dtypeName(DataType type) noexcept
{
    return DTYPE_NAMES[static_cast<std::size_t>(type)];
}

DataType typeOfDtype(const py::dtype& dtype, const std::string& name)
{
    const char kind = dtype.kind();
    const auto size = static_cast<std::size_t>(dtype.itemsize());
    for (std::size_t i = 0; i < DTYPE_NAMES.size(); ++i)
        if (kind == (DTYPE_NAMES[i][0] == 'f' ? 'f' : DTYPE_NAMES[i][0]) && size == sizeOf(static_cast<DataType>(i)))
            return static_cast<DataType>(i);
    throw py::type_error(fmt::format("{}: got elements of type {}, expected one of {}; convert with astype", name,
                                     std::string(py::str(static_cast<const py::object&>(dtype))), fmt::join(DTYPE_NAMES, ", ")));
}

Convention conventionOf(const std::string& word)
{
    if (word == "rows")
        return Convention::Rows;
    if (word == "columns")
        return Convention::Columns;
    throw py::value_error(fmt::format("layout: got '{}', expected rows (N-by-2) or columns (2-by-N)", word));
}

Layout layoutOf(Convention convention, const std::string& order)
{
    if (order != "C" && order != "F")
        throw py::value_error(fmt::format("order: got '{}', expected C or F", order));
    return (convention == Convention::Rows) == (order == "C") ? Layout::Columns : Layout::Rows;
}

PointArray::PointArray(const py::object& points, const char* name, std::optional<Convention> convention)
    : mName(name), mArray(arrayOf(points, name))
{
    const py::dtype dtype = mArray.dtype();
    mType = typeOfDtype(dtype, name);
    if (dtype.attr("isnative").cast<bool>() == false)
        mArray = py::array(mArray.attr("astype")(dtypeName(mType)));
    const bool isRows = mArray.ndim() == 2 && mArray.shape(1) == 2;
    const bool isColumns = mArray.ndim() == 2 && mArray.shape(0) == 2;
    if (!isRows && !isColumns)
        throw py::value_error(fmt::format("{}: got shape {}, expected N-by-2 or 2-by-N{}", name, shapeText(),
                                          mArray.size() % 2 == 0 && mArray.ndim() == 3 ? "; reshape(-1, 2) makes it so" : ""));
    mConvention = convention.value_or(isRows ? Convention::Rows : Convention::Columns);
    if (mConvention == Convention::Rows ? !isRows : !isColumns)
        throw py::value_error(fmt::format("{}: got shape {}, expected {}", name, shapeText(),
                                          mConvention == Convention::Rows ? "N-by-2" : "2-by-N"));
    const int pointAxis = mConvention == Convention::Rows ? 0 : 1;
    if (mArray.shape(pointAxis) > std::numeric_limits<std::int32_t>::max())
        throw py::value_error(fmt::format("{}: got {} points, more than the block can count", name, mArray.shape(pointAxis)));
    mNum = static_cast<std::int32_t>(mArray.shape(pointAxis));
    mPointStride = mArray.strides(pointAxis);
    mCoordinateStride = mArray.strides(1 - pointAxis);
}

std::string PointArray::shapeText() const
{
    return std::string(py::str(static_cast<const py::object&>(mArray).attr("shape")));
}

bool PointArray::isAligned() const noexcept
{
    return reinterpret_cast<std::uintptr_t>(data()) % sizeOf(mType) == 0;
}

bool PointArray::isOrdered(Layout layout) const noexcept
{
    const auto size = static_cast<std::ptrdiff_t>(sizeOf(mType));
    return layout == Layout::Columns ? mCoordinateStride == size && mPointStride == 2 * size
                                     : mPointStride == size && mCoordinateStride == size * mNum;
}

/// Zero times what is not finite is NaN, and so is every sum with it: without a branch for each value. The lanes are added
/// side by side.
template <typename Element>
bool areFinite(const Element* values, std::size_t num) noexcept
{
    constexpr std::size_t LANE_NUM = 4;
    Element sums[LANE_NUM] = {};
    std::size_t i = 0;
    for (; i + LANE_NUM <= num; i += LANE_NUM)
        for (std::size_t lane = 0; lane < LANE_NUM; ++lane)
            sums[lane] += values[i + lane] * Element(0);
    for (; i < num; ++i)
        sums[0] += values[i] * Element(0);
    return sums[0] + sums[1] + sums[2] + sums[3] == Element(0);
}

/// Calls function(zero of the element type, reader), where reader(point, coordinate) gives the element.
template <typename Function>
auto PointArray::withElements(Function function) const noexcept
{
    const auto with = [&](auto zero) {
        const auto* const first = static_cast<const char*>(data());
        return function(zero, [=](std::int32_t point, int coordinate) {
            decltype(zero) element;
            std::memcpy(&element, first + point * mPointStride + coordinate * mCoordinateStride, sizeof element);
            return element;
        });
    };
    switch (mType) {
        case DataType::Double: return with(double{});
        case DataType::Single: return with(float{});
        case DataType::Int8: return with(std::int8_t{});
        case DataType::Uint8: return with(std::uint8_t{});
        case DataType::Int16: return with(std::int16_t{});
        case DataType::Uint16: return with(std::uint16_t{});
        case DataType::Int32: return with(std::int32_t{});
        case DataType::Uint32: break;
    }
    return with(std::uint32_t{});
}

void PointArray::copyTo(void* points, Layout layout) const noexcept
{
    if (isOrdered(layout)) {
        std::memcpy(points, data(), 2 * static_cast<std::size_t>(mNum) * sizeOf(mType));
        return;
    }
    const std::int32_t pointStep = layout == Layout::Columns ? 2 : 1;
    const std::int32_t yOffset = layout == Layout::Columns ? 1 : mNum;
    withElements([&](auto zero, auto element) {
        auto* const out = static_cast<decltype(zero)*>(points);
        for (std::int32_t i = 0; i < mNum; ++i) {
            out[std::ptrdiff_t{i} * pointStep] = element(i, 0);
            out[std::ptrdiff_t{i} * pointStep + yOffset] = element(i, 1);
        }
    });
}

std::optional<std::int32_t> PointArray::firstNonFinite() const noexcept
{
    return withElements([&](auto zero, auto element) -> std::optional<std::int32_t> {
        using Element = decltype(zero);
        if constexpr (std::is_floating_point_v<Element>) {
            if (isAligned() && (isOrdered(Layout::Columns) || isOrdered(Layout::Rows))
                && areFinite(static_cast<const Element*>(data()), 2 * static_cast<std::size_t>(mNum)))
                return {};
            for (std::int32_t i = 0; i < mNum; ++i)
                if (!std::isfinite(element(i, 0)) || !std::isfinite(element(i, 1)))
                    return i;
        }
        return {};
    });
}

double PointArray::at(std::int32_t point, int coordinate) const noexcept
{
    return withElements([&](auto, auto element) { return static_cast<double>(element(point, coordinate)); });
}

}  // namespace esttform::python

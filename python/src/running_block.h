// RunningBlock: one open block and the arrays that it reads, for steps from Python.
// Blocks share the C library's random numbers, so one block of the process runs at a time; meanwhile Python code goes on.
// Threads may share one: what changes while it is open changes in its turn, under the block's lock.
#pragma once

#include "options/block_settings.h"
#include "point_array.h"

#include <pybind11/numpy.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace esttform::python {

class RunningBlock {
public:
    /// Opens a block.
    ///
    /// @param keywords    see settingsOf
    /// @param maxPtsNum   most points of a step; None: as many as steps have, the arrays grow with them
    /// @throws UsageError, LoadError
    RunningBlock(const pybind11::dict& keywords, const pybind11::object& layout, const pybind11::object& order,
                 const pybind11::object& dtype, const pybind11::object& maxPtsNum);
    ~RunningBlock();

    /// One step.
    ///
    /// @param seed  starts the random numbers anew; None: they go on
    /// @return a Result
    /// @throws ValueError, TypeError  points of another element type or number, or not finite
    /// @throws StepError  the block refused the step
    pybind11::object step(const pybind11::object& pts1, const pybind11::object& pts2, const pybind11::object& seed);

    /// Arrays of room() points; Rows: N-by-2, Columns: 2-by-N. Where x and y of a point lie side by side the block reads them
    /// in place.
    pybind11::array pts1() const;
    pybind11::array pts2() const;
    std::int32_t room() const noexcept { return std::atomic_load(&mArrays)->ptsNum; }
    bool isOpen() const noexcept { return mIsOpen; }
    DataType pointsType() const noexcept { return mSetup.pointsType; }

    /// Changes a tunable dialog value, by name or index.
    void setParam(const pybind11::object& key, const pybind11::object& value);
    pybind11::dict params() const;
    void close();

private:
    /// Where the block reads the points of a step, or where callers find memory for them.
    struct Arrays {
        pybind11::array pts1, pts2;
        std::int32_t ptsNum;
    };

    std::shared_ptr<const Arrays> arraysFor(std::int64_t ptsNum) const;
    void open(const std::shared_ptr<const Arrays>& arrays);
    bool isBound() const noexcept { return mLayout == Layout::Columns; }
    void refuseClosed() const;

    Convention mConvention;
    Layout mLayout;
    bool mIsGrowing;
    app::BlockSetup mSetup;
    std::shared_ptr<const Arrays> mArrays;  ///< replaced in a turn of the block, by larger ones only; freed with the interpreter's lock
    std::optional<Estimator> mEstimator;    ///< touched in a turn of the block only
    std::atomic<bool> mIsOpen = false;
};

/// Estimates once; the block reads the arrays in place where their elements lie as it can read them.
///
/// @param layout  "rows" or "columns", or None: from the shape
/// @param order   "C" or "F", or None: as the arrays lie, "C" if in neither order or not in one
/// @return a Result
pybind11::object estimateOnce(const pybind11::object& pts1, const pybind11::object& pts2, const pybind11::object& layout,
                              const pybind11::object& order, const pybind11::dict& keywords);

}  // namespace esttform::python

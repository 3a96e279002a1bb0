// RunningBlock: one open block and the arrays that it reads, for steps from Python.
// Blocks share the C library's random numbers, so one block of the process runs at a time; meanwhile Python code goes on.
#pragma once

#include "options/block_settings.h"
#include "point_array.h"

#include <pybind11/numpy.h>

#include <cstdint>
#include <optional>

namespace esttform::python {

class RunningBlock {
public:
    /// Opens a block.
    ///
    /// @param keywords    see settingsOf
    /// @param maxPtsNum   most points of a step; empty: as many as steps have, the arrays grow with them
    /// @throws UsageError, LoadError
    RunningBlock(const pybind11::dict& keywords, const std::string& layout, const pybind11::object& dtype,
                 std::optional<std::int32_t> maxPtsNum);
    ~RunningBlock();

    /// One step.
    ///
    /// @param seed  starts the random numbers anew; empty: they go on
    /// @return a Result
    /// @throws ValueError, TypeError  points of another element type or number, or not finite
    /// @throws StepError  the block refused the step
    pybind11::object step(const pybind11::object& pts1, const pybind11::object& pts2, std::optional<std::uint32_t> seed);

    /// The arrays that the block reads, room() points each; Rows: N-by-2, Columns: 2-by-N.
    const pybind11::array& pts1() const;
    const pybind11::array& pts2() const;
    std::int32_t room() const noexcept { return mRoom; }
    bool isOpen() const noexcept { return mEstimator.has_value(); }
    DataType pointsType() const noexcept { return mSetup.pointsType; }

    /// Changes a tunable dialog value, by name or index.
    void setParam(const pybind11::object& key, double value);
    pybind11::dict params() const;
    void close();

private:
    void makeRoom(std::int32_t ptsNum);
    void take(const PointArray& points, const pybind11::array& own);
    void refuseClosed() const;

    Convention mConvention;
    bool mIsGrowing;
    app::BlockSetup mSetup;
    std::int32_t mRoom = 0;
    pybind11::array mPts1, mPts2;
    std::optional<Estimator> mEstimator;
};

/// Estimates once; the block reads the arrays in place where their elements lie as it can read them.
///
/// @param layout  "rows" or "columns", or None: from the shape
/// @return a Result
pybind11::object estimateOnce(const pybind11::object& pts1, const pybind11::object& pts2, const pybind11::object& layout,
                              const pybind11::dict& keywords);

}  // namespace esttform::python

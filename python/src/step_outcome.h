// StepOutcome: what a step gave, copied out of the block's buffers without the interpreter lock, then made a Result.
#pragma once

#include "options/block_settings.h"
#include "point_array.h"

#include <pybind11/numpy.h>

#include <array>
#include <optional>
#include <vector>

namespace esttform::python {

class StepOutcome {
public:
    /// Makes the array of the mask, which is filled later. Needs the interpreter lock.
    StepOutcome(const app::BlockSetup& setup, std::int32_t ptsNum);

    /// Copies what the step gave. Needs no interpreter lock, but that of the block.
    void take(const StepResult& result, Layout layout, const PointArray& pts1, const PointArray& pts2, const app::BlockSetup& setup);

    /// A Result of esttform._result with TForm as the caller's convention has it. Needs the interpreter lock.
    ///
    /// @throws StepError  the block refused the step
    pybind11::object toResult(const pybind11::object& pts1, const pybind11::object& pts2, Convention convention,
                              const app::BlockSetup& setup) const;

private:
    pybind11::array tform(Convention convention) const;

    std::int32_t mPtsNum;
    std::optional<pybind11::array_t<bool>> mMask;
    bool* mMaskData = nullptr;
    std::array<double, 9> mTForm{};         // column by column; every single is exact in a double
    int mRowNum = 0;
    int mColNum = 0;
    DataType mTFormType = DataType::Double;
    Layout mLayout = Layout::Columns;
    std::int32_t mInlierNum = 0;
    std::vector<Message> mWarnings;
    std::optional<Message> mError;
    std::string mReason;                    // why nothing was found; empty when something was
};

}  // namespace esttform::python

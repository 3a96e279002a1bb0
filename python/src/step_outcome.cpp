#include "step_outcome.h"

#include "diagnosis/not_found.h"
#include "errors.h"
#include "settings.h"

#include <fmt/format.h>

#include <cstring>

namespace esttform::python {

namespace py = pybind11;

namespace {

/// A class of esttform._result. Lives as long as the process: it must not end after the interpreter.
py::object& resultClass(const char* name)
{
    static std::array<py::object*, 2> classes{};
    py::object*& found = classes[name[0] == 'R' ? 0 : 1];
    if (found == nullptr)
        found = new py::object(py::module_::import("esttform._result").attr(name));
    return *found;
}

std::vector<app::Pair> pairsOf(const PointArray& pts1, const PointArray& pts2)
{
    std::vector<app::Pair> pairs;
    for (std::int32_t i = 0; i < pts1.num(); ++i)
        pairs.push_back({pts1.at(i, 0), pts1.at(i, 1), pts2.at(i, 0), pts2.at(i, 1)});
    return pairs;
}

template <typename Element>
py::array tformArray(const std::array<double, 9>& tform, int rowNum, int colNum, bool isTransposed)
{
    py::array_t<Element> out(isTransposed ? std::array<py::ssize_t, 2>{colNum, rowNum} : std::array<py::ssize_t, 2>{rowNum, colNum});
    for (int row = 0; row < rowNum; ++row)
        for (int col = 0; col < colNum; ++col)
            out.mutable_at(isTransposed ? col : row, isTransposed ? row : col)
                = static_cast<Element>(tform[static_cast<std::size_t>(row + col * rowNum)]);
    return out;
}

}  // namespace

StepOutcome::StepOutcome(const app::BlockSetup& setup, std::int32_t ptsNum) : mPtsNum(ptsNum)
{
    if (!setup.hasInlierOutput)
        return;
    mMask.emplace(ptsNum);
    mMaskData = mMask->mutable_data();
}

void StepOutcome::take(const StepResult& result, Layout layout, const PointArray& pts1, const PointArray& pts2,
                       const app::BlockSetup& setup)
{
    mLayout = layout;
    mRowNum = result.tformRows;
    mColNum = result.tformCols;
    mTFormType = result.tformType;
    for (int i = 0; i < mRowNum * mColNum; ++i)
        mTForm[static_cast<std::size_t>(i)] = result.tform(i % mRowNum, i / mRowNum);
    for (std::int32_t i = 0; mMaskData != nullptr && i < result.ptsNum; ++i)
        mMaskData[i] = result.inliers[i] != 0;
    mInlierNum = result.inlierNum;
    mWarnings = result.warnings;
    mError = result.error;
    if (!result.error && !result.isFound())
        mReason = app::reasonNotFound(pairsOf(pts1, pts2), setup, keywordSpelling);
}

py::array StepOutcome::tform(Convention convention) const
{
    const bool isTransposed = (convention == Convention::Rows) != (mLayout == Layout::Rows);
    return mTFormType == DataType::Single ? tformArray<float>(mTForm, mRowNum, mColNum, isTransposed)
                                          : tformArray<double>(mTForm, mRowNum, mColNum, isTransposed);
}

py::object StepOutcome::toResult(const py::object& pts1, const py::object& pts2, Convention convention,
                                 const app::BlockSetup& setup) const
{
    if (mError)
        throw StepRefused(fmt::format("{}: {}; got {}", mError->id, mError->text, mPtsNum));
    py::tuple warnings(mWarnings.size());
    for (std::size_t i = 0; i < mWarnings.size(); ++i)
        warnings[i] = resultClass("Message")(mWarnings[i].id, mWarnings[i].text, mWarnings[i].count);
    const py::object mask = mMask ? py::object(*mMask) : py::none();
    const py::object inlierNum = mMask ? py::object(py::int_(mInlierNum)) : py::none();
    const py::object reason = mReason.empty() ? py::none() : py::object(py::str(mReason));
    return resultClass("Result")(tform(convention), mask, inlierNum, warnings, setup.typeText(),
                                 convention == Convention::Rows ? "rows" : "columns", mPtsNum, reason, pts1, pts2);
}

}  // namespace esttform::python

#include "running_block.h"

#include "errors.h"
#include "estimate/reopening.h"
#include "settings.h"
#include "step_outcome.h"

#include <fmt/format.h>

#include <cstdlib>
#include <functional>
#include <mutex>

namespace esttform::python {

namespace py = pybind11;

namespace {

/// Room for the points of the first step, when nobody said how many there will be.
constexpr std::int32_t FIRST_ROOM = 256;

/// Lets Python code run and blocks of other threads wait. Members end in reverse order: first the block's lock is given
/// back, then the interpreter's is taken, so that no thread waits for one while it holds the other.
class BlockTurn {
public:
    BlockTurn() : mLock(mutex()) {}

private:
    static std::mutex& mutex()
    {
        static std::mutex one;
        return one;
    }

    py::gil_scoped_release mRelease;
    std::lock_guard<std::mutex> mLock;
};

void refuseMismatch(const PointArray& pts1, const PointArray& pts2)
{
    if (pts1.type() != pts2.type())
        throw py::type_error(fmt::format("pts2: got elements of type {}, expected {} as in pts1; convert with astype",
                                         dtypeName(pts2.type()), dtypeName(pts1.type())));
    if (pts1.convention() != pts2.convention() || pts1.num() != pts2.num())
        throw py::value_error(fmt::format("pts2: got shape {}, expected that of pts1, {}", pts2.shapeText(), pts1.shapeText()));
}

void refuseNonFinite(const PointArray& points)
{
    if (const auto idx = points.firstNonFinite())
        throw py::value_error(fmt::format("{}: got ({}, {}) at point {}, expected finite numbers; leave such pairs out",
                                          points.name(), points.at(*idx, 0), points.at(*idx, 1), *idx));
}

/// True if memory of the points lies within an array.
bool isWithin(const PointArray& points, const py::array& array) noexcept
{
    const auto* const first = static_cast<const char*>(array.data());
    const std::less<const void*> isBefore;
    return points.num() > 0 && !isBefore(points.data(), first) && isBefore(points.data(), first + array.nbytes());
}

/// The array of a convention for points that the block reads in columns, x0, y0, x1, ...
py::array pointBuffer(DataType type, Convention convention, std::int32_t ptsNum)
{
    const auto size = static_cast<py::ssize_t>(sizeOf(type));
    const py::dtype dtype(dtypeName(type));
    py::array points = convention == Convention::Rows ? py::array(dtype, {py::ssize_t{ptsNum}, py::ssize_t{2}}, {2 * size, size})
                                                      : py::array(dtype, {py::ssize_t{2}, py::ssize_t{ptsNum}}, {size, 2 * size});
    std::memset(points.mutable_data(), 0, static_cast<std::size_t>(points.nbytes()));
    return points;
}

}  // namespace

RunningBlock::RunningBlock(const py::dict& keywords, const std::string& layout, const py::object& dtype,
                           std::optional<std::int32_t> maxPtsNum)
    : mConvention(conventionOf(layout)), mIsGrowing(!maxPtsNum),
      mSetup(settingsOf(keywords, typeOfDtype(py::dtype::from_args(dtype), "dtype"), Layout::Columns))
{
    makeRoom(maxPtsNum.value_or(FIRST_ROOM));
}

RunningBlock::~RunningBlock()
{
    if (mEstimator)
        close();
}

void RunningBlock::makeRoom(std::int32_t ptsNum)
{
    if (ptsNum < 0)
        throw py::value_error(fmt::format("max_points: got {}, expected 0 or more", ptsNum));
    py::array pts1 = pointBuffer(mSetup.pointsType, mConvention, ptsNum);
    py::array pts2 = pointBuffer(mSetup.pointsType, mConvention, ptsNum);
    mSetup.options.isVariableSize = true;
    mSetup.options.pts1 = pts1.data();
    mSetup.options.pts2 = pts2.data();
    {
        const BlockTurn turn;
        if (mEstimator)
            app::reopenEstimator(*mEstimator, mSetup, ptsNum);
        else
            mEstimator.emplace(mSetup.params, mSetup.pointsType, ptsNum, mSetup.options);
        std::swap(mPts1, pts1);                             // counts no references, which would take the interpreter's lock
        std::swap(mPts2, pts2);
        mRoom = ptsNum;
    }
}

void RunningBlock::refuseClosed() const
{
    if (!mEstimator)
        throw Closed();
}

/// Copies points to where the block reads them, unless they are there.
void RunningBlock::take(const PointArray& points, const py::array& own)
{
    if (points.data() == own.data())
        return;
    points.copyTo(const_cast<void*>(own.data()), Layout::Columns);
}

py::object RunningBlock::step(const py::object& pts1, const py::object& pts2, std::optional<std::uint32_t> seed)
{
    refuseClosed();
    const PointArray first(pts1, "pts1", mConvention);
    const PointArray second(pts2, "pts2", mConvention);
    refuseMismatch(first, second);
    if (first.type() != mSetup.pointsType)
        throw py::type_error(fmt::format("pts1: got elements of type {}, expected {}, with which the estimator was opened",
                                         dtypeName(first.type()), dtypeName(mSetup.pointsType)));
    if (first.num() > mRoom) {
        if (!mIsGrowing)
            throw py::value_error(fmt::format("got {} points, expected up to {}, with which the estimator was opened", first.num(),
                                              mRoom));
        makeRoom(app::grownPtsNum(mRoom, first.num()));
    }
    const auto isOwn = [](const PointArray& points, const py::array& own) {
        return points.data() == own.data() && points.layoutInPlace() == Layout::Columns;
    };
    for (const auto& [points, own] : {std::pair(&first, &mPts1), std::pair(&second, &mPts2)})
        if (!isOwn(*points, *own) && (isWithin(*points, mPts1) || isWithin(*points, mPts2)))
            throw py::value_error(fmt::format("{}: got a part of the estimator's own arrays, expected their first points or a copy",
                                              points->name()));
    refuseNonFinite(first);
    refuseNonFinite(second);

    StepOutcome outcome(mSetup, first.num());
    {
        const BlockTurn turn;
        if (!mEstimator)                                    // another thread closed it
            throw Closed();
        take(first, mPts1);
        take(second, mPts2);
        if (seed)
            mEstimator->seed(*seed);
        outcome.take(mEstimator->step(first.num()), Layout::Columns, first, second, mSetup);
    }
    return outcome.toResult(pts1, pts2, mConvention, mSetup);
}

const py::array& RunningBlock::pts1() const
{
    refuseClosed();
    return mPts1;
}

const py::array& RunningBlock::pts2() const
{
    refuseClosed();
    return mPts2;
}

void RunningBlock::setParam(const py::object& key, double value)
{
    refuseClosed();
    const auto name = py::str(key).cast<std::string>();
    for (const ParamInfo& info : paramTable()) {
        if (name != info.name && name != std::to_string(info.index))
            continue;
        const BlockTurn turn;
        if (!mEstimator)
            throw Closed();
        mEstimator->setParam(info.index, value);
        mSetup.params[static_cast<std::size_t>(info.index)] = value;
        return;
    }
    throw py::value_error(fmt::format("got {}, expected the name of a dialog parameter or its index from 0 to {}", name, PARAM_NUM - 1));
}

py::dict RunningBlock::params() const
{
    py::dict values;
    for (const ParamInfo& info : paramTable())
        values[info.name] = mSetup.params[static_cast<std::size_t>(info.index)];
    return values;
}

void RunningBlock::close()
{
    const BlockTurn turn;
    mEstimator.reset();
}

py::object estimateOnce(const py::object& pts1, const py::object& pts2, const py::object& layout, const py::dict& keywords)
{
    std::optional<Convention> convention;
    if (!layout.is_none())
        convention = conventionOf(layout.cast<std::string>());
    const PointArray first(pts1, "pts1", convention);
    const PointArray second(pts2, "pts2", convention);
    refuseMismatch(first, second);
    refuseNonFinite(first);
    refuseNonFinite(second);

    // Room for a sample at least: of fewer pairs the block finds nothing, but it opens.
    const std::optional<Layout> inPlace = first.layoutInPlace() == second.layoutInPlace() ? first.layoutInPlace() : std::nullopt;
    app::BlockSetup setup = settingsOf(keywords, first.type(), inPlace.value_or(Layout::Columns));
    setup.options.isVariableSize = first.num() < setup.sampleSize();
    const std::int32_t room = std::max(first.num(), std::int32_t{setup.sampleSize()});
    const bool isBound = inPlace && !setup.options.isVariableSize;
    if (isBound) {
        setup.options.pts1 = first.data();
        setup.options.pts2 = second.data();
    }
    StepOutcome outcome(setup, first.num());
    {
        const BlockTurn turn;
        Estimator estimator(setup.params, setup.pointsType, room, setup.options);
        if (!isBound) {
            first.copyTo(estimator.pts1Buffer(), estimator.layout());
            second.copyTo(estimator.pts2Buffer(), estimator.layout());
        }
        outcome.take(estimator.step(first.num()), estimator.layout(), first, second, setup);
    }
    return outcome.toResult(pts1, pts2, first.convention(), setup);
}

}  // namespace esttform::python

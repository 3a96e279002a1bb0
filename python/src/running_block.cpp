#include "running_block.h"

#include "errors.h"
#include "estimate/reopening.h"
#include "matches/match_reader.h"
#include "settings.h"
#include "step_outcome.h"

#include <fmt/format.h>

#include <cstdlib>
#include <functional>
#include <mutex>

#include <pthread.h>

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
    /// Taken by a thread that forks, too: else its child could get it locked by a thread that the child does not have.
    static std::mutex& mutex()
    {
        static std::mutex one;
        static const int registered = pthread_atfork([] { mutex().lock(); }, [] { mutex().unlock(); }, [] { mutex().unlock(); });
        static_cast<void>(registered);
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

py::array pointBuffer(DataType type, Convention convention, Layout layout, std::int32_t ptsNum)
{
    const py::tuple shape = convention == Convention::Rows ? py::make_tuple(ptsNum, 2) : py::make_tuple(2, ptsNum);
    const char* const order = layout == layoutOf(convention, "C") ? "C" : "F";
    return py::module_::import("numpy").attr("zeros")(shape, dtypeName(type), order);
}

}  // namespace

RunningBlock::RunningBlock(const py::dict& keywords, const py::object& layout, const py::object& order,
                           const py::object& dtype, const py::object& maxPtsNum)
    : mConvention(conventionOf(py::str(layout))), mLayout(layoutOf(mConvention, py::str(order))), mIsGrowing(maxPtsNum.is_none()),
      mSetup(settingsOf(keywords, typeOfDtype(py::dtype::from_args(dtype), "dtype"), mLayout))
{
    makeRoom(mIsGrowing ? FIRST_ROOM : wholeNumber(maxPtsNum, "max_points"));
}

RunningBlock::~RunningBlock()
{
    if (mEstimator)
        close();
}

void RunningBlock::makeRoom(std::int64_t wanted)
{
    if (static_cast<std::size_t>(wanted) > app::MatchReader::PAIR_MAX_NUM)
        throw py::value_error(fmt::format("max_points: got {}, expected 0 to {}", wanted, app::MatchReader::PAIR_MAX_NUM));
    const auto ptsNum = static_cast<std::int32_t>(wanted);
    py::array pts1 = pointBuffer(mSetup.pointsType, mConvention, mLayout, ptsNum);
    py::array pts2 = pointBuffer(mSetup.pointsType, mConvention, mLayout, ptsNum);
    mSetup.options.isVariableSize = true;
    if (mLayout == Layout::Columns) {                       // in rows the block wants the y of n points behind their n x
        mSetup.options.pts1 = pts1.data();
        mSetup.options.pts2 = pts2.data();
    }
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

/// True for points that lie where the block reads them.
bool RunningBlock::isOwn(const PointArray& points, const py::array& own) const noexcept
{
    return mSetup.options.pts1 != nullptr && points.data() == own.data() && points.liesIn(Layout::Columns);
}

py::object RunningBlock::step(const py::object& pts1, const py::object& pts2, const py::object& seed)
{
    refuseClosed();
    const bool isSeeded = !seed.is_none();
    const std::uint32_t start = isSeeded ? wholeNumber(seed, "seed") : 0;
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
    const bool isBound = mSetup.options.pts1 != nullptr;
    for (const auto& [points, own] : {std::pair(&first, &mPts1), std::pair(&second, &mPts2)})
        if (isBound && !isOwn(*points, *own) && (isWithin(*points, mPts1) || isWithin(*points, mPts2)))
            throw py::value_error(fmt::format("{}: got a part of the estimator's own arrays, expected their first points or a copy",
                                              points->name()));
    refuseNonFinite(first);
    refuseNonFinite(second);

    StepOutcome outcome(mSetup, first.num());
    {
        const BlockTurn turn;
        if (!mEstimator)                                    // another thread closed it
            throw Closed();
        if (!isOwn(first, mPts1))
            first.copyTo(isBound ? const_cast<void*>(mPts1.data()) : mEstimator->pts1Buffer(), mLayout);
        if (!isOwn(second, mPts2))
            second.copyTo(isBound ? const_cast<void*>(mPts2.data()) : mEstimator->pts2Buffer(), mLayout);
        if (isSeeded)
            mEstimator->seed(start);
        outcome.take(mEstimator->step(first.num()), mLayout, first, second, mSetup);
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

py::object estimateOnce(const py::object& pts1, const py::object& pts2, const py::object& layout, const py::object& order,
                        const py::dict& keywords)
{
    std::optional<Convention> convention;
    if (!layout.is_none())
        convention = conventionOf(py::str(layout));
    const PointArray first(pts1, "pts1", convention);
    const PointArray second(pts2, "pts2", convention);
    refuseMismatch(first, second);
    refuseNonFinite(first);
    refuseNonFinite(second);

    const auto areOrdered = [&](Layout one) { return first.isOrdered(one) && second.isOrdered(one); };
    const Layout otherLayout = layoutOf(first.convention(), "F");
    const bool areOther = order.is_none() && areOrdered(otherLayout) && !areOrdered(layoutOf(first.convention(), "C"));
    const Layout blockLayout = areOther ? otherLayout : layoutOf(first.convention(), order.is_none() ? "C" : std::string(py::str(order)));
    app::BlockSetup setup = settingsOf(keywords, first.type(), blockLayout);
    // Room for a sample at least: the block refuses fewer pairs at the step, with its own message.
    setup.options.isVariableSize = first.num() < setup.sampleSize();
    const std::int32_t room = std::max(first.num(), std::int32_t{setup.sampleSize()});
    const bool isBound = first.liesIn(blockLayout) && second.liesIn(blockLayout) && !setup.options.isVariableSize;
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

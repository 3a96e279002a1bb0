#include "running_block.h"

#include "errors.h"
#include "estimate/reopening.h"
#include "kept_library.h"
#include "matches/match_reader.h"
#include "settings.h"
#include "step_outcome.h"

#include <fmt/format.h>

#include <cstdlib>
#include <functional>
#include <mutex>
#include <tuple>

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
    const std::shared_ptr<const Arrays> arrays = arraysFor(mIsGrowing ? FIRST_ROOM : wholeNumber(maxPtsNum, "max_points"));
    const BlockTurn turn;
    open(arrays);
}

RunningBlock::~RunningBlock()
{
    if (isOpen())
        close();
}

std::shared_ptr<const RunningBlock::Arrays> RunningBlock::arraysFor(std::int64_t ptsNum) const
{
    if (static_cast<std::size_t>(ptsNum) > app::MatchReader::PAIR_MAX_NUM)
        throw py::value_error(fmt::format("max_points: got {}, expected 0 to {}", ptsNum, app::MatchReader::PAIR_MAX_NUM));
    const auto num = static_cast<std::int32_t>(ptsNum);
    return std::make_shared<const Arrays>(Arrays{pointBuffer(mSetup.pointsType, mConvention, mLayout, num),
                                                 pointBuffer(mSetup.pointsType, mConvention, mLayout, num), num});
}

/// Opens the block over the arrays, for the first time or with more room. In a turn; the caller keeps the old arrays until it
/// has ended.
void RunningBlock::open(const std::shared_ptr<const Arrays>& arrays)
{
    app::BlockSetup setup = mSetup;
    setup.options.isVariableSize = true;
    if (isBound()) {                                        // in rows the block wants the y of n points behind their n x
        setup.options.pts1 = arrays->pts1.data();
        setup.options.pts2 = arrays->pts2.data();
    }
    if (mEstimator)
        app::reopenEstimator(*mEstimator, setup, arrays->ptsNum);
    else
        mEstimator.emplace(setup.params, setup.pointsType, arrays->ptsNum, setup.options);
    keepLibrary(setup.options.blockPath);
    std::atomic_store(&mArrays, arrays);
    mIsOpen = true;
}

void RunningBlock::refuseClosed() const
{
    if (!isOpen())
        throw Closed();
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
    const std::shared_ptr<const Arrays> before = std::atomic_load(&mArrays);    // kept until the interpreter's lock is back
    std::shared_ptr<const Arrays> larger;
    if (first.num() > before->ptsNum) {
        if (!mIsGrowing)
            throw py::value_error(fmt::format("got {} points, expected up to {}, with which the estimator was opened", first.num(),
                                              before->ptsNum));
        larger = arraysFor(app::grownPtsNum(before->ptsNum, first.num()));
    }
    refuseNonFinite(first);
    refuseNonFinite(second);

    StepOutcome outcome(mSetup, first.num());
    std::shared_ptr<const Arrays> own;
    {
        const BlockTurn turn;
        if (!mEstimator)                                    // another thread closed it
            throw Closed();
        own = std::atomic_load(&mArrays);                   // another thread may have made room meanwhile
        if (first.num() > own->ptsNum) {
            open(larger);
            std::swap(own, larger);
        }
        for (const auto& [points, array] : {std::pair(&first, &own->pts1), std::pair(&second, &own->pts2)}) {
            if (isBound() && points->data() == array->data() && points->liesIn(Layout::Columns))
                continue;                                   // they are where the block reads them
            if (isBound() && (isWithin(*points, own->pts1) || isWithin(*points, own->pts2)))
                throw py::value_error(fmt::format("{}: got a part of the estimator's own arrays, expected their first points or a copy",
                                                  points->name()));
        }
        for (const auto& [points, array, buffer] : {std::tuple(&first, &own->pts1, mEstimator->pts1Buffer()),
                                                    std::tuple(&second, &own->pts2, mEstimator->pts2Buffer())}) {
            void* const target = isBound() ? const_cast<void*>(array->data()) : buffer;
            if (points->data() != target)
                points->copyTo(target, mLayout);
        }
        if (isSeeded)
            mEstimator->seed(start);
        outcome.take(mEstimator->step(first.num()), mLayout, first, second, mSetup);
    }
    return outcome.toResult(pts1, pts2, mConvention, mSetup);
}

py::array RunningBlock::pts1() const
{
    refuseClosed();
    return std::atomic_load(&mArrays)->pts1;
}

py::array RunningBlock::pts2() const
{
    refuseClosed();
    return std::atomic_load(&mArrays)->pts2;
}

void RunningBlock::setParam(const py::object& key, const py::object& value)
{
    refuseClosed();
    const double number = realNumber(value, "value");
    const auto name = py::str(key).cast<std::string>();
    for (const ParamInfo& info : paramTable()) {
        if (name != info.name && name != std::to_string(info.index))
            continue;
        const BlockTurn turn;
        if (!mEstimator)
            throw Closed();
        mEstimator->setParam(info.index, number);
        mSetup.params[static_cast<std::size_t>(info.index)] = number;
        return;
    }
    throw py::value_error(fmt::format("got {}, expected the name of a dialog parameter or its index from 0 to {}", name, PARAM_NUM - 1));
}

py::dict RunningBlock::params() const
{
    auto numbers = mSetup.params;
    {
        const BlockTurn turn;
        numbers = mSetup.params;
    }
    py::dict values;
    for (const ParamInfo& info : paramTable())
        values[info.name] = numbers[static_cast<std::size_t>(info.index)];
    return values;
}

void RunningBlock::close()
{
    const BlockTurn turn;
    mIsOpen = false;
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
        keepLibrary(setup.options.blockPath);
        if (!isBound) {
            first.copyTo(estimator.pts1Buffer(), estimator.layout());
            second.copyTo(estimator.pts2Buffer(), estimator.layout());
        }
        outcome.take(estimator.step(first.num()), estimator.layout(), first, second, setup);
    }
    return outcome.toResult(pts1, pts2, first.convention(), setup);
}

}  // namespace esttform::python

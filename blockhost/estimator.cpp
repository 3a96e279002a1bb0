#include "estimator.h"

#include "block.h"
#include "block_instance.h"
#include "data_types.h"
#include "point_block.h"

#include <fmt/format.h>

#include <cstdlib>
#include <cstring>
#include <functional>

namespace esttform {

namespace {

using blockhost::Block;
using blockhost::BlockSetup;

constexpr int PTS1_PORT = 0;
constexpr int PTS2_PORT = 1;
constexpr int TFORM_PORT = 0;
constexpr int INLIER_PORT = 1;

BlockSetup setupOf(const Params& params, DataType pointsType, std::int32_t maxPtsNum, const Options& options)
{
    if ((options.pts1 == nullptr) != (options.pts2 == nullptr))
        throw Error(ErrorKind::Usage, "pts1 and pts2: got one array, expected both or none");
    BlockSetup setup = blockhost::pointBlockSetup(params, pointsType, maxPtsNum, options.isVariableSize, options.blockPath);
    setup.inputs[PTS1_PORT].data = options.pts1;
    setup.inputs[PTS2_PORT].data = options.pts2;
    setup.trace = options.trace;
    return setup;
}

}  // namespace

std::size_t sizeOf(DataType type) noexcept
{
    return blockhost::byteNumOf(static_cast<int>(type));
}

// ---- StepResult

double StepResult::tform(int row, int col) const noexcept
{
    const auto idx = static_cast<std::size_t>(row + col * tformRows);
    if (tformType == DataType::Single)
        return static_cast<double>(static_cast<const float*>(tformData)[idx]);
    return static_cast<const double*>(tformData)[idx];
}

bool StepResult::isFound() const noexcept
{
    for (int col = 0; col < tformCols; ++col)
        for (int row = 0; row < tformRows; ++row)
            if (tform(row, col) != 0.0)
                return true;
    return false;
}

// ---- Estimator

struct Estimator::Impl {
    Params params;
    DataType pointsType;
    std::int32_t maxPtsNum;
    Layout layout;
    const void* boundPts1;
    const void* boundPts2;
    bool isVariableSize;
    Block block;
    bool hasInliers = false;
    StepResult result;

    Impl(const Params& dialogValues, DataType type, std::int32_t ptsNum, const Options& options)
        : params(dialogValues), pointsType(type), maxPtsNum(ptsNum), layout(blockhost::layoutOf(dialogValues)),
          boundPts1(options.pts1), boundPts2(options.pts2), isVariableSize(options.isVariableSize),
          block(setupOf(dialogValues, type, ptsNum, options))
    {
        block.open();
        if (options.seed)
            std::srand(*options.seed);
        const sysobj::SysObjAdaptorSFun& instance = block.instance();
        const blockhost::Port& tform = instance.outputs.at(TFORM_PORT);
        hasInliers = instance.outputs.size() > INLIER_PORT;
        result.tformType = static_cast<DataType>(tform.typeId);
        result.tformRows = tform.dims.size(0);
        result.tformCols = tform.dims.size(1);
        result.tformData = block.outputData(TFORM_PORT);
        result.inliers = hasInliers ? static_cast<const std::uint8_t*>(block.outputData(INLIER_PORT)) : nullptr;
    }

    void checkPtsNum(std::int32_t ptsNum) const
    {
        if (ptsNum < 0 || ptsNum > maxPtsNum || (!isVariableSize && ptsNum != maxPtsNum))
            throw Error(ErrorKind::Usage, fmt::format("step: got {} point pairs, expected {}{}", ptsNum,
                                                      isVariableSize ? "0 to " : "exactly ", maxPtsNum));
    }

    const StepResult& step(std::int32_t ptsNum)
    {
        checkPtsNum(ptsNum);
        if (isVariableSize)
            for (const int port : {PTS1_PORT, PTS2_PORT})
                block.setInputSize(port, blockhost::sizeOfPoints(layout, ptsNum));
        block.step();

        result.ptsNum = ptsNum;
        result.error = block.stepError();
        result.warnings.clear();
        if (block.hasWarnings())
            result.warnings = block.takeWarnings();
        if (result.error)
            block.clearOutputs();
        result.inlierNum = 0;
        for (std::int32_t i = 0; hasInliers && i < ptsNum; ++i)
            result.inlierNum += result.inliers[i] != 0 ? 1 : 0;
        return result;
    }

    /// True for an address within an input buffer of the block.
    bool isInBuffer(int port, const void* address) const noexcept
    {
        const auto* const first = static_cast<const char*>(block.inputData(port));
        if (first == nullptr)
            return false;
        const char* const end = first + 2 * static_cast<std::size_t>(maxPtsNum) * sizeOf(pointsType);
        const std::less<const void*> isBefore;
        return !isBefore(address, first) && isBefore(address, end);
    }

    /// True when the points of an input need no copy: there are none, or they are where the block reads them.
    bool isInPlace(int port, const void* points, const void* bound, std::int32_t ptsNum) const noexcept
    {
        return ptsNum == 0 || (points != nullptr && (points == block.inputData(port) || points == bound));
    }

    void checkPoints(int port, const void* points, const void* bound, std::int32_t ptsNum) const
    {
        if (isInPlace(port, points, bound, ptsNum))
            return;
        if (points == nullptr)
            throw Error(ErrorKind::Usage, fmt::format("step: got no array for pts{}, expected {} point pairs", port + 1, ptsNum));
        if (bound != nullptr)
            throw Error(ErrorKind::Usage, "step: got other arrays than those named at opening, which the block reads in "
                                          "place; write the points there");
        if (isInBuffer(PTS1_PORT, points) || isInBuffer(PTS2_PORT, points))
            throw Error(ErrorKind::Usage, fmt::format("step: the array for pts{0} lies inside the estimator's buffers; expected "
                                                      "pts{0}Buffer() or another array",
                                                      port + 1));
    }

    /// Copies the points of one input, which passed checkPoints, unless they are there already.
    void takePoints(int port, const void* points, const void* bound, std::int32_t ptsNum) noexcept
    {
        if (!isInPlace(port, points, bound, ptsNum))
            std::memcpy(block.inputData(port), points, 2 * static_cast<std::size_t>(ptsNum) * sizeOf(pointsType));
    }
};

Estimator::Estimator(const Settings& settings, std::int32_t maxPtsNum, const Options& options)
    : Estimator(toParams(settings), settings.pointsType, maxPtsNum, options)
{
}

Estimator::Estimator(const Params& params, DataType pointsType, std::int32_t maxPtsNum, const Options& options)
    : mImpl(std::make_unique<Impl>(params, pointsType, maxPtsNum, options))
{
}

Estimator::Estimator(Estimator&&) noexcept = default;
Estimator& Estimator::operator=(Estimator&&) noexcept = default;
Estimator::~Estimator() = default;

Estimator::Impl& Estimator::usable() const
{
    if (!mImpl)
        throw Error(ErrorKind::Usage, "estimator was moved from; open another one");
    if (mImpl->block.state() != blockhost::State::Running)
        throw Error(ErrorKind::Usage, "the estimator has failed before; open another one");
    return *mImpl;
}

const StepResult& Estimator::step(const void* pts1, const void* pts2, std::int32_t ptsNum)
{
    Impl& impl = usable();
    impl.checkPtsNum(ptsNum);
    impl.checkPoints(PTS1_PORT, pts1, impl.boundPts1, ptsNum);
    impl.checkPoints(PTS2_PORT, pts2, impl.boundPts2, ptsNum);
    impl.takePoints(PTS1_PORT, pts1, impl.boundPts1, ptsNum);
    impl.takePoints(PTS2_PORT, pts2, impl.boundPts2, ptsNum);
    return impl.step(ptsNum);
}

const StepResult& Estimator::step(std::int32_t ptsNum)
{
    return usable().step(ptsNum);
}

void* Estimator::pts1Buffer() noexcept
{
    return mImpl->block.inputData(PTS1_PORT);
}

void* Estimator::pts2Buffer() noexcept
{
    return mImpl->block.inputData(PTS2_PORT);
}

void Estimator::setParam(int index, double value)
{
    Impl& impl = usable();
    impl.block.setParam(index, value);
    impl.params[static_cast<std::size_t>(index)] = value;
}

void Estimator::seed(unsigned value) noexcept
{
    std::srand(value);
}

const Params& Estimator::params() const noexcept
{
    return mImpl->params;
}

DataType Estimator::pointsType() const noexcept
{
    return mImpl->pointsType;
}

std::int32_t Estimator::maxPtsNum() const noexcept
{
    return mImpl->maxPtsNum;
}

Layout Estimator::layout() const noexcept
{
    return mImpl->layout;
}

}  // namespace esttform

#include "check/life.h"

#include "blockhost/block_instance.h"
#include "check/finding.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace esttform::check {

namespace {

/// What outputs hold before a step: a NaN in TForm, and neither 0 nor 1 in the mask.
constexpr int UNWRITTEN = 0xFF;

/// One least-squares fit to all pairs is spoilt by a coordinate that is not finite, or whose powers are not.
constexpr double ORDINARY_MAX = 1e9;

/// Points nearer to the origin are there for a computation in single precision.
constexpr double ORIGIN_RADIUS = 1e-40;

std::vector<std::uint8_t> bytesOf(const void* data, std::size_t num)
{
    const auto* const first = static_cast<const std::uint8_t*>(data);
    return {first, first + num};
}

std::vector<double> tformOf(const blockhost::Port& port)
{
    std::vector<double> values;
    for (int i = 0; i < port.dims.width(); ++i)
        values.push_back(port.typeId == sysobj::DT_SINGLE ? static_cast<double>(static_cast<const float*>(port.buffer.data())[i])
                                                          : static_cast<const double*>(port.buffer.data())[i]);
    return values;
}

}  // namespace

bool StepRecord::isZero() const
{
    return std::all_of(tform.begin(), tform.end(), [](double value) { return value == 0.0; });
}

bool StepRecord::operator==(const StepRecord& other) const
{
    return bytes == other.bytes && error == other.error && warnings == other.warnings;
}

Life::Life(const std::string& path, const Case& c) : Life(c, setupOf(path, c)) {}

Life::Life(const Case& c, blockhost::BlockSetup setup) : mCase(c), mBlock(std::move(setup))
{
    mBlock.open();
}

StepRecord Life::step(const std::vector<app::Pair>& pairs, unsigned seed, int missingNum)
{
    std::vector<std::uint8_t> inputs[2];
    for (int port = 0; port < 2; ++port) {
        const std::vector<app::Pair> points(pairs.begin(), pairs.end() - port * missingNum);
        if (mCase.isVariable)
            mBlock.setInputSize(port, mCase.sizeOf(static_cast<int>(points.size())));
        if (mBlock.inputData(port) == nullptr)
            continue;
        app::packPoints(points, port, mCase.pointsType, mCase.layout(), mBlock.inputData(port));
        inputs[port] = bytesOf(mBlock.inputData(port), 2 * points.size() * sizeOf(mCase.pointsType));
    }
    for (const blockhost::Port& port : mBlock.instance().outputs)
        std::memset(port.buffer.data(), UNWRITTEN, port.buffer.byteNum());
    std::srand(seed);
    mBlock.step();

    for (int port = 0; port < 2; ++port)
        if (!inputs[port].empty() && bytesOf(mBlock.inputData(port), inputs[port].size()) != inputs[port])
            throw Finding(fmt::format("{}: mdlOutputs changed input {}", mCase.text(), port));
    StepRecord record;
    const auto& outputs = mBlock.instance().outputs;
    record.tform = tformOf(outputs[0]);
    record.bytes = bytesOf(outputs[0].buffer.data(), outputs[0].buffer.byteNum());
    if (mBlock.stepError())
        record.error = mBlock.stepError()->id;
    for (const esttform::Message& warning : mBlock.takeWarnings())
        record.warnings += fmt::format("{} ({}) ", warning.id, warning.count);
    const auto isWritten = [](std::uint8_t value) { return value != UNWRITTEN; };
    if (outputs.size() > 1) {
        const auto all = bytesOf(outputs[1].buffer.data(), outputs[1].buffer.byteNum());
        const auto end = all.begin() + static_cast<std::ptrdiff_t>(std::min(pairs.size(), all.size()));
        record.mask.assign(all.begin(), end);
        record.bytes.insert(record.bytes.end(), all.begin(), end);
        if (std::any_of(end, all.end(), isWritten))
            throw Finding(fmt::format("{}: a step of {} pairs wrote the mask beyond them", mCase.text(), pairs.size()));
    }
    if (!record.error.empty() && std::any_of(record.bytes.begin(), record.bytes.end(), isWritten))
        throw Finding(fmt::format("{}: a step that was refused ({}) wrote its outputs", mCase.text(), record.error));
    return record;
}

void Life::end()
{
    endOf(mBlock);
}

void endOf(blockhost::Block& block)
{
    block.terminate();
    if (block.instance().userData != nullptr)
        throw Finding("user data is left after mdlTerminate");
}

std::string stopOf(blockhost::Block& block)
{
    std::string reason;
    try {
        block.open();
    } catch (const Error& e) {
        if (e.kind() != ErrorKind::Usage)
            throw;
        reason = e.what();
        if (block.instance().userData != nullptr)
            throw Finding(fmt::format("user data is left by a set-up that stopped: {}", reason));
    }
    endOf(block);
    return reason;
}

void expectPromise(const StepRecord& record, const Case& c, const std::vector<app::Pair>& pairs)
{
    if (!record.error.empty())
        throw Finding(fmt::format("{}: the step was refused: {}", c.text(), record.error));
    const bool isPromised = c.isRobust() || std::all_of(pairs.begin(), pairs.end(), [](const app::Pair& pair) {
        return std::all_of(pair.begin(), pair.end(), [](double value) { return std::fabs(value) <= ORDINARY_MAX; });
    });
    if (isPromised && !std::all_of(record.tform.begin(), record.tform.end(), [](double value) { return std::isfinite(value); }))
        throw Finding(fmt::format("{}: TForm is {}, expected all finite or all zero", c.text(), fmt::join(record.tform, ", ")));
    const auto inlierNum = std::count(record.mask.begin(), record.mask.end(), std::uint8_t{1});
    const auto zeroNum = std::count(record.mask.begin(), record.mask.end(), std::uint8_t{0});
    if (static_cast<std::size_t>(inlierNum + zeroNum) != record.mask.size())
        throw Finding(fmt::format("{}: the mask holds other values than 0 and 1", c.text()));
    bool isOnOrigin = c.transformType() != 3;
    for (std::size_t i = 0; i < record.mask.size(); ++i)
        isOnOrigin = isOnOrigin && (record.mask[i] == 0 || std::hypot(pairs[i][2], pairs[i][3]) < ORIGIN_RADIUS);
    if (record.isZero() && inlierNum > 0 && !isOnOrigin)
        throw Finding(fmt::format("{}: TForm is zero, and the mask has {} inliers", c.text(), inlierNum));
    if (!record.isZero() && c.hasMask() && inlierNum < c.sampleSize())
        throw Finding(fmt::format("{}: TForm is not zero, and the mask has {} inliers, expected {} or more", c.text(), inlierNum,
                                  c.sampleSize()));
}

void expectSame(const StepRecord& record, const StepRecord& expected, const std::string& what)
{
    if (!(record == expected))
        throw Finding(fmt::format("{}: TForm is {}, expected the bits of {}", what, fmt::join(record.tform, ", "),
                                  fmt::join(expected.tform, ", ")));
}

}  // namespace esttform::check

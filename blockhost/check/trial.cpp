#include "trial.h"

#include "../block_instance.h"
#include "../data_types.h"
#include "../point_block.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace blockhost::check {

using esttform::DataType;
using esttform::Layout;

namespace {

constexpr int MAX_SAMPLE_NUM = 200;  // of random settings: checks are to be quick

BlockSetup setupOf(const std::string& path, const esttform::Settings& settings, const TrialOptions& options,
                   std::function<void(std::string_view)> trace, const std::vector<Signal>& inputs)
{
    BlockSetup setup = pointBlockSetup(esttform::toParams(settings), settings.pointsType, options.maxPtsNum, options.isVariableSize, path);
    setup.offerOrder = options.offerOrder;
    setup.trace = std::move(trace);
    if (!inputs.empty())
        setup.inputs = inputs;
    return setup;
}

bool isReal(DataType type) noexcept
{
    return type == DataType::Double || type == DataType::Single;
}

}  // namespace

Matches shiftedMatches(int num)
{
    Matches matches;
    for (int i = 0; i < num; ++i) {
        const double x = (i * 37 + i * i * 11) % 98, y = (i * 53 + i * i * 7) % 97;
        matches.push_back({x, y, x + 2.0, y + 3.0});
    }
    return matches;
}

Matches badMatches(std::mt19937& random, int num, bool isReal)
{
    const int kind = static_cast<int>(random() % 5);
    std::uniform_real_distribution<double> coordinate(0.0, 100.0);
    Matches matches;
    for (int i = 0; i < num; ++i) {
        Pair pair{};
        for (double& value : pair)
            value = std::floor(coordinate(random));
        if (kind == 1 && i > 0)
            pair = matches.front();
        if (kind == 2)
            pair = {pair[0], pair[0], pair[2], pair[2]};
        if (kind == 3 && isReal)
            pair[random() % 4] *= random() % 2 == 0 ? 1e18 : 1e-18;
        if (kind == 4 && isReal && random() % 4 == 0)
            pair[random() % 4] = random() % 2 == 0 ? std::numeric_limits<double>::quiet_NaN() : std::numeric_limits<double>::infinity();
        matches.push_back(pair);
    }
    return matches;
}

esttform::Settings plainSettings()
{
    esttform::Settings settings;
    settings.sampling = esttform::Sampling::Cyclic;
    settings.sampleNum = 20;
    settings.confidence.reset();
    return settings;
}

esttform::Settings randomSettings(std::mt19937& random)
{
    const auto flag = [&random] { return random() % 2 == 0; };
    esttform::Settings settings;
    settings.type = static_cast<esttform::TransformType>(1 + random() % 3);
    settings.isRobust = random() % 8 != 0;
    settings.method = flag() ? esttform::Method::Threshold : esttform::Method::Median;
    settings.threshold = std::ldexp(1.0, static_cast<int>(random() % 16) - 6);
    settings.sampleNum = static_cast<std::uint32_t>(random() % MAX_SAMPLE_NUM);
    if (flag())
        settings.confidence.reset();
    if (flag())
        settings.stopAtInliers = 50.0;
    settings.isRefineIteratively = flag();
    settings.isOutputInliers = flag();
    settings.sampling = flag() ? esttform::Sampling::Random : esttform::Sampling::Cyclic;
    settings.layout = flag() ? Layout::Rows : Layout::Columns;
    settings.pointsType = static_cast<DataType>(random() % 8);
    settings.tformType = isReal(settings.pointsType) ? settings.pointsType : static_cast<DataType>(random() % 2);
    return settings;
}

// ---- Trial

Trial::Trial(const std::string& path, const esttform::Settings& settings, const TrialOptions& options,
             std::function<void(std::string_view)> trace, const std::vector<Signal>& inputs)
    : mSettings(settings), mOptions(options), mBlock(setupOf(path, settings, options, std::move(trace), inputs))
{
}

void Trial::writeInputs(const Matches& matches)
{
    const int typeId = static_cast<int>(mSettings.pointsType);
    const std::size_t elementBytes = byteNumOf(typeId);
    const std::size_t num = matches.size();
    for (int port = 0; port < 2; ++port) {
        auto* const data = static_cast<unsigned char*>(mBlock.inputData(port));
        for (std::size_t i = 0; i < num; ++i) {
            for (std::size_t axis = 0; axis < 2; ++axis) {
                const std::size_t place = mSettings.layout == Layout::Rows ? axis * num + i : 2 * i + axis;
                storeReal(matches[i][2 * static_cast<std::size_t>(port) + axis], typeId, data + place * elementBytes);
            }
        }
        if (mOptions.isVariableSize)
            mBlock.setInputSize(port, sizeOfPoints(mSettings.layout, static_cast<std::int32_t>(num)));
    }
}

std::vector<unsigned char> Trial::inputBytes() const
{
    std::vector<unsigned char> all;
    for (const Port& port : mBlock.instance().inputs) {
        const auto* const bytes = static_cast<const unsigned char*>(port.data());
        all.insert(all.end(), bytes, bytes + static_cast<std::size_t>(port.current.width()) * byteNumOf(port.typeId));
    }
    return all;
}

/// A step over outputs that hold a pattern.
Outcome Trial::stepOver(int pattern)
{
    const std::vector<Port>& ports = mBlock.instance().outputs;
    for (const Port& port : ports)
        std::memset(port.buffer.data(), pattern, port.buffer.byteNum());
    const std::vector<unsigned char> before = inputBytes();
    std::srand(1);
    mBlock.step();
    if (inputBytes() != before)
        throw Finding("a step changed its inputs");
    Outcome outcome;
    if (mBlock.stepError()) {
        outcome.error = mBlock.stepError()->id;
        return outcome;
    }
    for (const Port& port : ports) {
        const auto* const bytes = static_cast<const unsigned char*>(port.buffer.data());
        const std::size_t byteNum = static_cast<std::size_t>(port.current.width()) * byteNumOf(port.typeId);
        outcome.outputs.insert(outcome.outputs.end(), bytes, bytes + byteNum);
    }
    return outcome;
}

Outcome Trial::step(const Matches& matches)
{
    writeInputs(matches);
    return stepOver(0x00);
}

Outcome Trial::stepTwice(const Matches& matches)
{
    writeInputs(matches);
    const Outcome first = stepOver(0x00);
    if (first != stepOver(0x55))
        throw Finding("the same step twice gives two results: an output is not written whole, or a step depends on the one before");
    return first;
}

double Trial::tform(int idx) const
{
    const Port& port = mBlock.instance().outputs.front();
    return port.typeId == sysobj::DT_SINGLE ? static_cast<double>(static_cast<const float*>(port.buffer.data())[idx])
                                            : static_cast<const double*>(port.buffer.data())[idx];
}

std::string Trial::portsText() const
{
    std::string text;
    for (const auto* const ports : {&mBlock.instance().inputs, &mBlock.instance().outputs})
        for (const Port& port : *ports)
            text += fmt::format("{} {} {}; ", port.dims.text(), typeName(port.typeId), port.mode);
    return text;
}

void openOrFind(Trial& trial, const std::string& what)
{
    try {
        trial.open();
    } catch (const esttform::Error& error) {
        throw Finding(fmt::format("{}: cannot be opened: {}", what, error.what()));
    }
}

}  // namespace blockhost::check

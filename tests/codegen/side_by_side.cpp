#include "side_by_side.h"

#include "point_sets.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

std::int64_t randCalls = 0;
std::vector<int> script;
std::size_t scriptPosition = 0;

}  // namespace

/// Stands before the C library's generator, for this program, for the plug-in and for generated code.
extern "C" __attribute__((visibility("default"))) int rand()
{
    static const auto draw = reinterpret_cast<int (*)()>(dlsym(RTLD_NEXT, "rand"));
    ++randCalls;
    return script.empty() ? draw() : script[scriptPosition++ % script.size()];
}

namespace codegentest {

using esttform::DataType;

namespace {

void restartRand()
{
    std::srand(5);
    randCalls = 0;
    scriptPosition = 0;
}

esttform::Options engineOptions(bool isVariable)
{
    esttform::Options options;
    options.isVariableSize = isVariable;
    options.blockPath = BLOCK_PATH;
    return options;
}

template <typename T>
void put(std::vector<char>& bytes, std::size_t idx, double value)
{
    const T element = static_cast<T>(value);
    std::memcpy(bytes.data() + idx * sizeof(T), &element, sizeof(T));
}

void putAs(DataType type, std::vector<char>& bytes, std::size_t idx, double value)
{
    switch (type) {
    case DataType::Double: return put<double>(bytes, idx, value);
    case DataType::Single: return put<float>(bytes, idx, value);
    case DataType::Int8: return put<std::int8_t>(bytes, idx, value);
    case DataType::Uint8: return put<std::uint8_t>(bytes, idx, value);
    case DataType::Int16: return put<std::int16_t>(bytes, idx, value);
    case DataType::Uint16: return put<std::uint16_t>(bytes, idx, value);
    case DataType::Int32: return put<std::int32_t>(bytes, idx, value);
    case DataType::Uint32: return put<std::uint32_t>(bytes, idx, value);
    }
}

}  // namespace

Matches randomMatches(std::uint32_t seed, int sampleSize, int ptsNum, double noise, int outlierNum, bool isWhole)
{
    const testsupport::PointSetSpec spec{seed, sampleSize, false, ptsNum, noise, outlierNum};
    const auto set = testsupport::makePointSet(
        spec, isWhole ? +[](double value) { return std::floor(value + 0.5); } : +[](double value) { return value; });
    Matches matches;
    for (std::size_t i = 0; i < set.pts1.size(); i += 2)
        matches.push_back({set.pts1[i], set.pts1[i + 1], set.pts2[i], set.pts2[i + 1]});
    return matches;
}

Matches readMatches(const std::string& path, std::size_t ptsNum)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    Matches matches;
    while (matches.size() < ptsNum && std::getline(file, line)) {
        std::stringstream stream(line);
        char comma = ',';
        std::array<double, 4> row{};
        stream >> row[0] >> comma >> row[1] >> comma >> row[2] >> comma >> row[3];
        matches.push_back(row);
    }
    if (matches.size() < ptsNum)
        throw std::runtime_error(path + ": too few rows");
    return matches;
}

void scriptRand(const std::vector<int>& numbers)
{
    script = numbers;
}

bool Outcome::isFound() const
{
    return std::any_of(tform.begin(), tform.end(), [](double value) { return value != 0.0; });
}

// ---- SideBySide

SideBySide::SideBySide(const esttform::Params& params, DataType pointsType, std::int32_t maxPtsNum, bool isVariable)
    : mType(pointsType), mEngine(params, pointsType, maxPtsNum, engineOptions(isVariable)),
      mModel(params, pointsType, maxPtsNum, isVariable)
{
}

std::vector<char> SideBySide::packed(const Matches& matches, std::size_t set) const
{
    const std::size_t num = matches.size();
    const bool isInRows = mEngine.layout() == esttform::Layout::Rows;
    std::vector<char> bytes(2 * num * esttform::sizeOf(mType));
    for (std::size_t i = 0; i < num; ++i)
        for (std::size_t axis = 0; axis < 2; ++axis)
            putAs(mType, bytes, isInRows ? axis * num + i : 2 * i + axis, matches[i][2 * set + axis]);
    return bytes;
}

Outcome SideBySide::engineStep(const Matches& matches)
{
    restartRand();
    const esttform::StepResult& result =
        mEngine.step(packed(matches, 0).data(), packed(matches, 1).data(), static_cast<std::int32_t>(matches.size()));
    Outcome outcome;
    outcome.randCalls = randCalls;
    for (int col = 0; col < result.tformCols; ++col)
        for (int row = 0; row < result.tformRows; ++row)
            outcome.tform.push_back(result.tform(row, col));
    for (std::int32_t i = 0; result.inliers != nullptr && i < result.ptsNum; ++i)
        outcome.mask += result.inliers[i] != 0 ? '1' : '0';
    if (result.error)
        outcome.messages.push_back(result.error->id);
    for (const esttform::Message& warning : result.warnings)
        outcome.messages.push_back(warning.id);
    return outcome;
}

Outcome SideBySide::generatedStep(const Matches& matches)
{
    restartRand();
    Outcome outcome;
    outcome.status = mModel.step(packed(matches, 0).data(), packed(matches, 1).data(), static_cast<std::int32_t>(matches.size()));
    outcome.randCalls = randCalls;
    outcome.tform = mModel.tform();
    for (std::size_t i = 0; mModel.inliers() != nullptr && i < std::min(matches.size(), mModel.inlierNum()); ++i)
        outcome.mask += mModel.inliers()[i] ? '1' : '0';
    return outcome;
}

}  // namespace codegentest

// Replays the vectors of generated code: every block setting is generated, compiled once, and stepped; QRE is called.
#include "compiled_model.h"
#include "vector_files.h"

#include <array>
#include <cstdlib>

namespace {

using codegentest::CompiledModel;

esttform::Params paramsOf(const Json& values)
{
    esttform::Params params{};
    const std::vector<double> list = inputValues(values);
    std::copy_n(list.begin(), params.size(), params.begin());
    return params;
}

/// [x, y] pairs in the block's layout.
template <typename Ti>
std::vector<Ti> pointsOf(const Json& pairs, bool isInRows)
{
    const std::size_t num = pairs.size();
    std::vector<Ti> points(2 * num);
    for (std::size_t i = 0; i < num; ++i) {
        points[isInRows ? i : 2 * i] = static_cast<Ti>(inputValue(pairs[i].at(0)));
        points[isInRows ? num + i : 2 * i + 1] = static_cast<Ti>(inputValue(pairs[i].at(1)));
    }
    return points;
}

/// The run-time parameters take the dialog values that the settings put to use.
void setRunTimeParams(CompiledModel& model, const esttform::Params& params)
{
    const bool isConfidenceMode = params[2] == 1.0 && params[5] == 2.0;
    model.setParam("SAMPLENUM_RTP", params[isConfidenceMode ? 6 : 7]);
    model.setParam("CONFIDENCE_RTP", params[8]);
    model.setParam("DIST_THR_RTP", params[params[0] == 3.0 ? 3 : 4]);
    model.setParam("BREAKPERCENTAGE_RTP", params[10]);
}

template <typename Ti>
void replayOneStep(CompiledModel& model, const Json& step, bool isInRows, const Json& expect, CaseCheck& check)
{
    check.knowsAll(expect, {"sizeError", "tform", "inlier", "bestInlierNum", "samplingIterations", "refineIterations",
                            "iterations", "failedFits", "warnings", "loopNum", "disThr", "bestInlierDis",
                            "bestTFormCompact", "firstSamples", "randCalls", "randAfter"});
    if (step.contains("params")) setRunTimeParams(model, paramsOf(step["params"]));
    const std::vector<Ti> pts1 = pointsOf<Ti>(step.at("pts1"), isInRows);
    const std::vector<Ti> pts2 = pointsOf<Ti>(step.at("pts2"), isInRows);
    const auto ptsNum = static_cast<std::int32_t>(pts1.size() / 2);
    if (step.contains("seed")) model.seed(step["seed"].get<unsigned>());
    const std::int64_t drawnBefore = model.randCalls();
    const int status = model.step(pts1.data(), ptsNum, pts2.data(), static_cast<std::int32_t>(pts2.size() / 2));
    if (!expect.contains("tform")) {
        if (status == 0) check.fail("sets of different lengths were accepted");
        return;
    }
    const std::vector<double> tform = model.tform();
    check.reals(expect, "tform", tform.data(), tform.size());
    std::string mask;
    for (std::int32_t i = 0; model.inliers() != nullptr && i < ptsNum; ++i) mask += model.inliers()[i] ? '1' : '0';
    check.exact(expect, "inlier", mask);
    check.exact(expect, "randCalls", model.randCalls() - drawnBefore);
    if (expect.contains("randAfter")) check.exact(expect, "randAfter", std::rand());
}

/// A fixed size admits one number of pairs only; cases with others are generated with variable size, which computes the
/// same.
bool needsVariableSize(const Json& vector)
{
    for (const Json& step : vector.at("steps"))
        for (const char* const set : {"pts1", "pts2"})
            if (step.at(set).size() != vector.at("maxPtsNum").get<std::size_t>()) return true;
    return vector.at("variable");
}

template <typename Ti>
void replayAs(const Json& vector, CaseCheck& check)
{
    const esttform::Params params = paramsOf(vector.at("params"));
    const auto typeId = static_cast<esttform::DataType>(vector.at("inType").get<int>());
    CompiledModel model(params, typeId, vector.at("maxPtsNum"), needsVariableSize(vector));
    const Json& steps = vector.at("steps");
    for (std::size_t i = 0; i < steps.size(); ++i) {
        check.setStep(i);
        replayOneStep<Ti>(model, steps[i], params[17] != 0.0, vector.at("expect").at(i), check);
    }
}

void replayGeneratedStep(const Json& vector, CaseCheck& check)
{
    switch (vector.at("inType").get<int>()) {
    case 0: return replayAs<double>(vector, check);
    case 1: return replayAs<float>(vector, check);
    case 2: return replayAs<std::int8_t>(vector, check);
    case 3: return replayAs<std::uint8_t>(vector, check);
    case 4: return replayAs<std::int16_t>(vector, check);
    case 5: return replayAs<std::uint16_t>(vector, check);
    case 6: return replayAs<std::int32_t>(vector, check);
    default: return replayAs<std::uint32_t>(vector, check);
    }
}

Replay formatOf(const Json& first)
{
    if (first.contains("steps")) return replayGeneratedStep;
    if (first.contains("economy")) return replayGeneratedQr;
    return nullptr;
}

}  // namespace

int main(int argc, char** argv)
{
    return runVectorFiles(argc, argv, true, formatOf);
}

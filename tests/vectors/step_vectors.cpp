// Vectors of whole steps: the plug-in's outputs and search state, and the counters of an engine run beside it.
#include <dlfcn.h>

#include <cstdlib>

#include "running_block.h"
#include "szelesttform_step.h"
#include "szelesttform_tform.h"
#include "vector_values.h"

namespace {

std::int64_t randCalls = 0;

}  // namespace

/// Stands before the C library's generator, for this program and for the plug-in: counts, then draws from it.
extern "C" __attribute__((visibility("default"))) int rand()
{
    static const auto draw = reinterpret_cast<int (*)()>(dlsym(RTLD_NEXT, "rand"));
    ++randCalls;
    return draw();
}

namespace {

/// The engine's own parts, counting what they do.
template <typename Ti, typename Tc>
struct CountingParts {
    estTForm<Ti, Tc>& engine;
    EngineParts<Ti, Tc> parts;
    int samplingIterations = 0;
    int refineIterations = 0;
    int failedFits = 0;
    int warnings = 0;
    Json firstSamples = Json::array();

    CountingParts(estTForm<Ti, Tc>& engineToRun, std::int32_t ptsNum) : engine(engineToRun), parts(engineToRun, ptsNum) {}

    void makeAllConstraints() { parts.makeAllConstraints(); }
    bool drawSample()
    {
        const bool isValid = parts.drawSample();
        warnings += isValid ? 0 : 1;
        if (firstSamples.size() < 4)
            firstSamples.push_back(std::vector<std::uint32_t>(engine.sampleIdx, engine.sampleIdx + engine.sampleSize));
        return isValid;
    }
    bool fitTForm(std::int32_t n)
    {
        ++(engine.mIsRandomSamplingStep ? samplingIterations : refineIterations);
        const bool isOK = parts.fitTForm(n);
        failedFits += isOK ? 0 : 1;
        return isOK;
    }
    Tc computeDistances() { return parts.computeDistances(); }
    void writeTForm(const Tc* compact) { parts.writeTForm(compact); }
};

/// Outputs and search state after a step, of the plug-in's engine or of the one beside it.
template <typename Ti, typename Tc>
void checkState(const estTForm<Ti, Tc>& engine, const Json& expect, CaseCheck& check)
{
    check.reals(expect, "tform", engine.tform, static_cast<std::size_t>(tformWidth(engine.sampleSize)));
    std::string mask;
    for (std::int32_t i = 0; engine.inlier != nullptr && i < engine.ptsNum; ++i) mask += engine.inlier[i] != 0 ? '1' : '0';
    if (expect.at("inlier").is_null() != (engine.inlier == nullptr)) check.fail("inlier output exists, or does not");
    check.exact(expect, "inlier", mask);
    check.exact(expect, "bestInlierNum", engine.bestInlierNum);
    check.exact(expect, "loopNum", engine.loopNum);
    check.real(expect, "disThr", engine.disThr);
    check.real(expect, "bestInlierDis", engine.bestInlierDis);
    check.reals(expect, "bestTFormCompact", engine.bestTFormCompact, static_cast<std::size_t>(engine.colNum));
}

void checkRand(const Json& expect, CaseCheck& check)
{
    check.exact(expect, "randCalls", randCalls);
    if (expect.contains("randAfter")) check.exact(expect, "randAfter", std::rand());
}

void restartRand(const Json& step)
{
    if (step.contains("seed")) std::srand(step["seed"].get<unsigned>());
    randCalls = 0;
}

/// Changes the dialog values that a step gives anew.
void changeParams(blockhost::Block& block, const Json& step)
{
    if (!step.contains("params")) return;
    const std::vector<double> params = inputValues(step["params"]);
    for (std::size_t i = 0; i < params.size(); ++i) {
        const int idx = static_cast<int>(i);
        if (block.param(idx) != params[i]) block.setParam(idx, params[i]);
    }
}

template <typename Ti, typename Tc>
void replayOneStep(RunningBlock& running, estTForm<Ti, Tc>& beside, const Json& step, bool isVariable,
                   const Json& expect, CaseCheck& check)
{
    check.knowsAll(expect, {"sizeError", "tform", "inlier", "bestInlierNum", "samplingIterations", "refineIterations",
                            "iterations", "failedFits", "warnings", "loopNum", "disThr", "bestInlierDis",
                            "bestTFormCompact", "firstSamples", "randCalls", "randAfter"});
    const auto ptsNum = static_cast<std::int32_t>(step.at("pts1").size());
    const auto ptsNum2 = static_cast<std::int32_t>(step.at("pts2").size());
    blockhost::Block& block = running.block();
    changeParams(block, step);
    if (step.contains("params")) beside.processParameters(running.instance());
    running.writePoints<Ti>(0, step["pts1"]);
    running.writePoints<Ti>(1, step["pts2"]);
    if (isVariable) {
        block.setInputSize(0, running.size(ptsNum));
        block.setInputSize(1, running.size(ptsNum2));
    }
    const bool isHostStep = isVariable || ptsNum == beside.maxPtsNum;

    restartRand(step);                                   // the plug-in, driven by the host
    if (isHostStep) block.step();
    if (isVariable) check.exact(expect, "sizeError", block.stepError() ? Json(block.stepError()->id) : Json());
    if (isVariable && !expect.at("sizeError").is_null() && !block.stepError()) check.fail("no size error");
    if (!expect.contains("tform")) return;
    estTForm<Ti, Tc>& engine = running.engine<Ti, Tc>();
    if (!isHostStep || block.stepError()) engine.output(ptsNum);  // a count that never gets past host and block
    checkState(engine, expect, check);
    checkRand(expect, check);
    std::uint32_t warningNum = 0;
    for (const esttform::Message& warning : block.takeWarnings()) warningNum += warning.count;
    check.exact(expect, "warnings", warningNum);

    restartRand(step);                                   // the same step on the engine beside it, counted
    CountingParts<Ti, Tc> parts(beside, ptsNum);
    beside.estimate(ptsNum, parts);
    checkState(beside, expect, check);
    checkRand(expect, check);
    check.exact(expect, "samplingIterations", parts.samplingIterations);
    check.exact(expect, "refineIterations", parts.refineIterations);
    check.exact(expect, "iterations", parts.samplingIterations + parts.refineIterations);
    check.exact(expect, "failedFits", parts.failedFits);
    check.exact(expect, "warnings", parts.warnings);
    check.exact(expect, "firstSamples", parts.firstSamples);
}

template <typename Ti, typename Tc>
void replayStepAs(const Json& vector, CaseCheck& check)
{
    const bool isVariable = vector.at("variable");
    RunningBlock running(inputValues(vector.at("params")), vector.at("inType"), vector.at("maxPtsNum"), isVariable);
    using QrCache = typename estTForm<Ti, Tc>::QrCache;
    estTForm<Ti, Tc> beside(running.instance(), new QrCache(running.instance(), false, Tc(1)));

    const Json& steps = vector.at("steps");
    const Json& expect = vector.at("expect");
    if (steps.size() != expect.size()) check.fail("as many steps as expectations are needed");
    for (std::size_t i = 0; i < steps.size(); ++i) {
        check.setStep(i);
        replayOneStep(running, beside, steps[i], isVariable, expect.at(i), check);
    }
}

}  // namespace

void replayStep(const Json& vector, CaseCheck& check)
{
    withEngineTypes(vector.at("inType"), vector.at("tformType"), [&](auto ti, auto tc) {
        replayStepAs<decltype(ti), decltype(tc)>(vector, check);
    });
}

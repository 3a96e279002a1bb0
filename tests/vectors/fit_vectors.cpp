// Vectors of one fit: the transformation of a point subset, its normalizations, and all distances to it.
#include "running_block.h"
#include "szelesttform_fit.h"
#include "szelesttform_scoring.h"
#include "szelesttform_tform.h"
#include "vector_values.h"

namespace {

template <typename Ti, typename Tc>
void checkNormalizations(estTForm<Ti, Tc>& engine, std::int32_t n, bool isInRows, const Json& expect, CaseCheck& check)
{
    const PointLayout layout = PointLayout::of(isInRows, engine.ptsNum);
    const PointLayout layoutNorm = PointLayout::of(isInRows, n);
    Normalization<Tc> norm;
    normPts(engine.pts1, layout, engine.sampleIdx, n, engine.ptsNorm1, layoutNorm, &norm.scale1, norm.cents1);
    normPts(engine.pts2, layout, engine.sampleIdx, n, engine.ptsNorm2, layoutNorm, &norm.scale2, norm.cents2);
    check.reals(expect, "cents1", norm.cents1, 2);
    check.reals(expect, "cents2", norm.cents2, 2);
    check.real(expect, "scale1", norm.scale1);
    check.real(expect, "scale2", norm.scale2);
}

template <typename Ti, typename Tc>
void checkDistances(estTForm<Ti, Tc>& engine, bool isInRows, const Json& expect, CaseCheck& check)
{
    const auto ptsNum = static_cast<std::size_t>(engine.ptsNum);
    std::vector<Tc> constraint(2 * ptsNum * static_cast<std::size_t>(engine.colNum)), distance(ptsNum);
    makeConstraintMatrix(engine.pts1, engine.pts2, PointLayout::of(isInRows, engine.ptsNum), engine.sampleSize,
                         engine.ptsNum, constraint.data());
    const auto compute = engine.colNum == 5 ? computeDistances<5, Tc>
                       : engine.colNum == 7 ? computeDistances<7, Tc> : computeDistances<9, Tc>;
    compute(constraint.data(), engine.ptsNum, engine.tformCompact, distance.data());
    check.reals(expect, "distances", distance.data(), ptsNum);
}

template <typename Ti, typename Tc>
void replayFitAs(const Json& vector, CaseCheck& check)
{
    const auto ptsNum = static_cast<std::int32_t>(vector.at("pts1").size());
    RunningBlock running(inputValues(vector.at("params")), vector.at("inType"), ptsNum, false);
    running.writePoints<Ti>(0, vector.at("pts1"));
    running.writePoints<Ti>(1, vector.at("pts2"));

    estTForm<Ti, Tc>& engine = running.engine<Ti, Tc>();
    engine.ptsNum = ptsNum;
    std::vector<std::uint32_t> samples;
    for (std::uint32_t i = 0; i < vector.at("pts1").size(); ++i) samples.push_back(i);
    const bool hasSubset = vector.contains("sampleIdx");
    if (hasSubset) samples = vector["sampleIdx"].get<std::vector<std::uint32_t>>();
    std::copy(samples.begin(), samples.end(), engine.sampleIdx);
    const auto n = static_cast<std::int32_t>(samples.size());

    const Json& expect = vector.at("expect");
    check.knowsAll(expect, {"ok", "tformCompact", "tform", "cents1", "cents2", "scale1", "scale2", "distances"});
    EngineParts<Ti, Tc> parts(engine, ptsNum);
    const bool isOK = parts.fitTForm(n);
    check.exact(expect, "ok", isOK);
    std::vector<Tc> tform(static_cast<std::size_t>(tformWidth(engine.sampleSize)), Tc(0));
    if (isOK) {
        check.reals(expect, "tformCompact", engine.tformCompact, static_cast<std::size_t>(engine.colNum));
        writeTForm(engine.sampleSize, running.isInRows(), engine.tformCompact, tform.data());
        checkDistances(engine, running.isInRows(), expect, check);
    }
    check.reals(expect, "tform", tform.data(), tform.size());
    checkNormalizations(engine, n, running.isInRows(), expect, check);

    if (!hasSubset) {                                    // a step without robust estimation fits all pairs
        running.block().step();
        check.reals(expect, "tform", static_cast<const Tc*>(running.block().outputData(0)), tform.size());
    }
}

}  // namespace

void replayFit(const Json& vector, CaseCheck& check)
{
    withEngineTypes(vector.at("inType"), vector.at("tformType"), [&](auto ti, auto tc) {
        replayFitAs<decltype(ti), decltype(tc)>(vector, check);
    });
}

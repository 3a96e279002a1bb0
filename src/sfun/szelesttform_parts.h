// The engine's own parts of a step: constraints of all pairs, sampling, fit, distances, writing TForm.
// They hand the engine's arrays to the kernels; sizes become known to the compiler here. Included where engines are
// instantiated.
#pragma once

#include <limits>

#include "szelesttform_engine.h"
#include "szelesttform_fit.h"
#include "szelesttform_params.h"
#include "szelesttform_sampling.h"
#include "szelesttform_scoring.h"
#include "szelesttform_tform.h"

template <typename Ti, typename Tc>
EngineParts<Ti, Tc>::EngineParts(estTForm<Ti, Tc>& engine, std::int32_t ptsNum)
    : mEngine(engine), mIsInRows(readFlag(engine.block, POINTS_IN_ROWS)), mLayout(PointLayout::of(mIsInRows, ptsNum))
{
}

template <typename Ti, typename Tc>
void EngineParts<Ti, Tc>::makeAllConstraints()
{
    switch (mEngine.sampleSize) {
    case 2: makeAllConstraintsSized<2>(); break;
    case 3: makeAllConstraintsSized<3>(); break;
    default: makeAllConstraintsSized<4>(); break;
    }
}

template <typename Ti, typename Tc>
template <std::int32_t SAMPLE_SIZE>
void EngineParts<Ti, Tc>::makeAllConstraintsSized()
{
    makeConstraintMatrix(mEngine.pts1, mEngine.pts2, mLayout, FixedSize<SAMPLE_SIZE>{}, mEngine.ptsNum,
                         mEngine.constraintAll);
}

template <typename Ti, typename Tc>
bool EngineParts<Ti, Tc>::drawSample()
{
    return ::drawSample(mEngine.sampleSize, static_cast<std::uint32_t>(mEngine.ptsNum), mEngine.maxDuplicateTries,
                        mEngine.isRandomSampling, mEngine.sampleIdx);
}

template <typename Ti, typename Tc>
bool EngineParts<Ti, Tc>::fitTForm(std::int32_t n)
{
    switch (mEngine.sampleSize) {
    case 2: return fitSized<2>(n);
    case 3: return fitSized<3>(n);
    default: return fitSized<4>(n);
    }
}

template <typename Ti, typename Tc>
template <std::int32_t SAMPLE_SIZE>
bool EngineParts<Ti, Tc>::fitSized(std::int32_t n)
{
    constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;
    estTForm<Ti, Tc>& engine = mEngine;
    const PointLayout layoutNorm = PointLayout::of(mIsInRows, n);
    Normalization<Tc> norm;
    normPts(engine.pts1, mLayout, engine.sampleIdx, n, engine.ptsNorm1, layoutNorm, &norm.scale1, norm.cents1);
    normPts(engine.pts2, mLayout, engine.sampleIdx, n, engine.ptsNorm2, layoutNorm, &norm.scale2, norm.cents2);

    Tc h[COL_NUM];
    if (n == SAMPLE_SIZE) {
        Tc constraint[2 * SAMPLE_SIZE * COL_NUM];
        makeConstraintMatrix(engine.ptsNorm1, engine.ptsNorm2, layoutNorm, FixedSize<SAMPLE_SIZE>{}, n, constraint);
        solveMinimalSet<SAMPLE_SIZE>(*engine.qrCache, constraint, h);
    } else {
        makeConstraintMatrix(engine.ptsNorm1, engine.ptsNorm2, layoutNorm, FixedSize<SAMPLE_SIZE>{}, n, engine.factor);
        const LeastSquaresWork<Tc> arrays = {engine.constraint, engine.factor, engine.ptsNorm1, engine.ptsNorm2};
        if (!solveLargerSet<SAMPLE_SIZE>(n, arrays, h)) return false;
    }
    denormalizeTForm<SAMPLE_SIZE>(h, norm, engine.tformCompact);
    return scaleToLastOne<COL_NUM>(engine.tformCompact);
}

template <typename Ti, typename Tc>
Tc EngineParts<Ti, Tc>::computeDistances()
{
    switch (mEngine.sampleSize) {
    case 2: return computeDistancesSized<2>();
    case 3: return computeDistancesSized<3>();
    default: return computeDistancesSized<4>();
    }
}

template <typename Ti, typename Tc>
template <std::int32_t SAMPLE_SIZE>
Tc EngineParts<Ti, Tc>::computeDistancesSized()
{
    constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;
    const estTForm<Ti, Tc>& engine = mEngine;
    if (!engine.isDisThrMethod) {
        ::computeDistances<COL_NUM>(engine.constraintAll, engine.ptsNum, engine.tformCompact, engine.distance);
        return Tc(0);
    }
    // The first candidate of a phase is accepted whatever its score; a refit leaves the distances of all pairs.
    const bool canGiveUp = engine.mIsRandomSamplingStep && engine.loopCount != 1 && engine.disThr >= Tc(0);
    const Tc limit = canGiveUp ? engine.bestInlierDis : std::numeric_limits<Tc>::infinity();
    return scoreDistances<COL_NUM>(engine.constraintAll, engine.ptsNum, engine.tformCompact, engine.disThr, limit,
                                   engine.distance);
}

template <typename Ti, typename Tc>
void EngineParts<Ti, Tc>::writeTForm(const Tc* compact)
{
    ::writeTForm(mEngine.sampleSize, mIsInRows, compact, mEngine.tform);
}

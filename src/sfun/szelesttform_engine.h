// The estimation engine: one object per running block, created at start for the block's pair of data types.
// It points into the block's ports and work vectors, owns only the QR work cache, and allocates nothing after creation.
#pragma once

#include <cstdint>

#include "block_types.h"
#include "dspqrfact.h"
#include "szelesttform_points.h"

/// What the block's callbacks know of the engine. The virtual operations stand in slot order.
class baseEstTForm {
public:
    virtual ~baseEstTForm() = default;
    /// One estimation on the current inputs: writes TForm and, when the port exists, the inlier mask. Allocates nothing.
    /// [in mdlOutputs; host thread]
    ///
    /// @param ptsNum  current number of point pairs; below a minimal sample or above the bound, the outputs are cleared
    virtual void output(std::int32_t ptsNum) = 0;
    /// Re-reads the run-time parameters.  [in mdlProcessParameters; host thread]
    virtual void processParameters(sysobj::SysObjAdaptorSFun* block) = 0;

protected:
    baseEstTForm() = default;
    baseEstTForm(const baseEstTForm&) = delete;
    baseEstTForm& operator=(const baseEstTForm&) = delete;
};

/// Limit of the iterations for a number of samplings. Above 2147483647 it wraps to a negative limit, which ends the
/// sampling phase after one sample.
constexpr std::int32_t loopNumOf(std::uint32_t maxSampleNum)
{
    return static_cast<std::int32_t>(maxSampleNum);
}

template <typename Ti, typename Tc>
class EngineParts;

/// The engine for points of type Ti and a TForm of type Tc, in which it computes throughout.
///
/// Method: random sample consensus (Fischler, Bolles, CACM 1981) scored by truncated squared distances (MSAC; Torr,
/// Zisserman, CVIU 2000) or by the median distance (LMedS; Rousseeuw, JASA 1984), then refits on the inliers.
///
/// The fields are open: they are the state of the search, which tests and the parts of a step share.
template <typename Ti, typename Tc>
class estTForm final : public baseEstTForm {
public:
    using InputType = Ti;
    using ComputationType = Tc;
    using QrCache = QRFactRealInBRealFltSFcnCache<Tc, Tc, Tc>;

    /// Reads ports, work vectors, settings and run-time parameters, and seeds the process-wide generator with the
    /// processor time.  [in mdlStart; host thread]
    ///
    /// @param qrCache  scalar operations of the QR factorization; the engine deletes it
    estTForm(sysobj::SysObjAdaptorSFun* block, QrCache* qrCache);
    ~estTForm() override;

    void output(std::int32_t ptsNum) override;
    void processParameters(sysobj::SysObjAdaptorSFun* block) override;

    /// One estimation made of the given parts: all of output() but the choice of parts.
    ///
    /// @tparam Parts  has the operations of EngineParts; a test puts in counting or fake ones
    template <typename Parts>
    void estimate(std::int32_t ptsNum, Parts& parts);

    /// Judges the current candidate, keeps it when it is the best, adapts the loop number, ends the sampling phase.
    ///
    /// @param inlierDis  score of the distance-threshold method; the median method takes its own from the distances
    /// @return isContinue: whether the search goes on
    bool updateBest(Tc inlierDis);

    sysobj::SysObjAdaptorSFun* block;      ///< for parameter reads and reports
    const Ti* pts1 = nullptr;              ///< points of the first set
    const Ti* pts2 = nullptr;              ///< their matches
    std::int32_t ptsNum = 0;               ///< current number of pairs
    Tc* tform = nullptr;
    std::uint8_t* inlier = nullptr;        ///< inlier mask; null without that port
    Tc* ptsNorm1 = nullptr;                ///< DW_PTSNORM1: normalized subset of pts1; singular values; median scratch
    Tc* ptsNorm2 = nullptr;                ///< DW_PTSNORM2: normalized subset of pts2; work of the decomposition
    Tc* constraint = nullptr;              ///< DW_CONSTRAINT: constraints of a larger subset, column by column
    Tc* constraintAll = nullptr;           ///< DW_CONSTRT_ALL: constraints of all pairs; null when not robust
    Tc* factor = nullptr;                  ///< DW_FACTOR: constraints of a larger subset, row by row; left vectors
    Tc* distance = nullptr;                ///< DW_DISTANCE: of every pair to the candidate; null when not robust
    std::uint32_t* sampleIdx = nullptr;    ///< DW_SAMPLEIDX: pairs of the subset being fitted
    std::uint32_t* bestSample = nullptr;   ///< DW_BEST_SAMPLE: inliers of the best candidate
    std::int32_t maxPtsNum = 0;
    std::uint32_t maxDuplicateTries = 10;  ///< draws allowed for one position of a sample
    bool isRobust = false;
    bool isDisThrMethod = false;           ///< else the median method
    std::int32_t sampleSize = 0;           ///< pairs of a minimal sample
    bool isRefineIteratively = false;
    bool isUseSampleNum = false;           ///< filled, not read
    bool isUseConfidence = false;
    bool isBreakByPercentage = false;
    bool isOutputInliers = false;
    bool isRandomSampling = false;
    bool isPtsNumFromSize = false;         ///< filled, not read: the number of pairs is always the current size
    std::uint32_t maxSampleNum = 0;        ///< SAMPLENUM_RTP
    Tc disThr = Tc(0);                     ///< DIST_THR_RTP; in the median method the best median
    Tc confidence = Tc(0);                 ///< CONFIDENCE_RTP, percent
    Tc breakPercentage = Tc(0);            ///< BREAKPERCENTAGE_RTP, percent
    QrCache* qrCache;
    std::int32_t colNum = 0;               ///< columns of a constraint, length of a compact transformation
    std::int32_t minEqnNum = 0;            ///< rows of a minimal sample
    Tc tformCompact[9] = {};               ///< the current candidate; colNum values are used
    Tc bestTFormCompact[9] = {};           ///< the best candidate
    Tc bestInlierDis = Tc(0);              ///< its score in the distance-threshold method
    std::int32_t bestInlierNum = 0;        ///< valid entries of bestSample
    std::int32_t loopCount = 0;            ///< iterations in the current phase
    std::int32_t loopNum = 0;              ///< limit of the sampling phase, also of the refits
    bool mIsRandomSamplingStep = false;    ///< the step is in its sampling phase

private:
    void clearOutputs();
    void startSampling();
    template <typename Parts>
    void fitAll(Parts& parts);
    template <typename Parts>
    void search(Parts& parts);
    template <typename Parts>
    bool prepareSample(Parts& parts, std::int32_t* n);
    bool updateByThreshold(Tc inlierDis);
    bool updateByMedian();
    void keepCandidate();
    void endSamplingPhaseWhenDue();
};

/// The engine's own parts of a step. One object serves one step.
template <typename Ti, typename Tc>
class EngineParts {
public:
    /// @param ptsNum  current number of pairs, the leading dimension of points in rows
    EngineParts(estTForm<Ti, Tc>& engine, std::int32_t ptsNum);

    /// Constraints of all pairs in input coordinates, into DW_CONSTRT_ALL.
    void makeAllConstraints();
    /// Next minimal sample into sampleIdx; false when it holds a pair twice.
    bool drawSample();
    /// Fits the first n pairs of sampleIdx into tformCompact, exactly for n = sampleSize, else by least squares.
    /// @return false when no transformation was found
    bool fitTForm(std::int32_t n);
    /// Distances of all pairs to tformCompact, into DW_DISTANCE; in the sampling phase only as far as the candidate can
    /// still become the best.
    /// @return score of the distance-threshold method, or a part of it that is no improvement; 0 in the median method
    Tc computeDistances();
    /// TForm from a compact transformation.
    void writeTForm(const Tc* compact);

private:
    template <std::int32_t SAMPLE_SIZE>
    void makeAllConstraintsSized();
    template <std::int32_t SAMPLE_SIZE>
    bool fitSized(std::int32_t n);
    template <std::int32_t SAMPLE_SIZE>
    Tc computeDistancesSized();

    estTForm<Ti, Tc>& mEngine;
    bool mIsInRows;
    PointLayout mLayout;
};

// The fourteen engines; instantiated in szelesttform_engines.cpp.
#define SZELESTTFORM_ENGINES(DO)                                                                                       \
    DO(double, double)                                                                                                 \
    DO(std::int8_t, double)                                                                                            \
    DO(std::uint8_t, double)                                                                                           \
    DO(std::int16_t, double)                                                                                           \
    DO(std::uint16_t, double)                                                                                          \
    DO(std::int32_t, double)                                                                                           \
    DO(std::uint32_t, double)                                                                                          \
    DO(float, float)                                                                                                   \
    DO(std::int8_t, float)                                                                                             \
    DO(std::uint8_t, float)                                                                                            \
    DO(std::int16_t, float)                                                                                            \
    DO(std::uint16_t, float)                                                                                           \
    DO(std::int32_t, float)                                                                                            \
    DO(std::uint32_t, float)

#define SZELESTTFORM_DECLARE_ENGINE(Ti, Tc)                                                                            \
    extern template class EngineParts<Ti, Tc>;                                                                         \
    extern template class estTForm<Ti, Tc>;
SZELESTTFORM_ENGINES(SZELESTTFORM_DECLARE_ENGINE)
#undef SZELESTTFORM_DECLARE_ENGINE

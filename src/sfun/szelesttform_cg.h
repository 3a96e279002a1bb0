// VektCGEstTForm: the context in which the block describes its step to the code generator. Files szelesttform_cg_*.cpp hold
// its parts: fit, search, sampling, scoring, order statistic, outputs.
#pragma once

#include <cstdint>
#include <string>

#include "codegen_context.h"
#include "szelesttform_work.h"

/// Base of the contexts of signal-processing blocks.
class DSPCGCtx : public VektCG::VektCGCtx {
public:
    using VektCGCtx::VektCGCtx;
    ~DSPCGCtx() override;
};

/// Describes seeding as start code and the estimation step as output code. Lives for one call of mdlVektCG; what it describes
/// belongs to the host.
///
/// Fields that share a name with one of the engine (estTForm) have its role; ports, work vectors, run-time parameters and
/// the state of the loop are variables of the generated code here.
class VektCGEstTForm : public DSPCGCtx {
public:
    VektCGEstTForm(sysobj::SysObjAdaptorSFun* S, CGIR_Block_IF* blockIf);

    /// srand(clock()).
    void start() override;
    /// The estimation step.
    void output() override;
    ~VektCGEstTForm() override;
    void declarePhases() override;

private:
    using Expr = CG::Expr;

    // ---- Construction (szelesttform_cg.cpp)
    void createStateLocals();
    void createPortRefs();
    void createWorkRefs();
    void createParamRefs();

    // ---- The step (szelesttform_cg_step.cpp)
    /// Locals of the step that its parts share.
    struct StepLocals {
        Expr i;           ///< int32
        Expr inlierNum;   ///< int32: pairs handed to the fit
        Expr isContinue;
        Expr isSizeValid;
        Expr oneValue;
        Expr result;      ///< outcome of the fit
    };
    void emitSize(const StepLocals& v);
    void emitClear(const StepLocals& v);
    void emitDirectFit(const StepLocals& v);
    void emitSearchSetUp(const StepLocals& v);
    void emitSearchLoop(const StepLocals& v);
    void emitRefitSample(const StepLocals& v);
    void emitCandidate(const StepLocals& v);
    void emitBestOutputs(const StepLocals& v);
    /// A call of makeConstraintMatrix for all pairs; the function exists in every block, robust blocks call it.
    void emitAllConstraints();
    CG::Fcn* allConstraintsFcn();

    // ---- Its parts, each in a file of its own
    void emitDrawSample(const StepLocals& v);                              ///< szelesttform_cg_sampling.cpp
    struct DistanceLocals;                                                 ///< szelesttform_cg_scoring.cpp
    DistanceLocals emitDistanceLocals();
    void emitDistance(const DistanceLocals& v, Expr i);
    void emitDistances();
    void emitThresholdScore(const StepLocals& v);
    void emitMedianScore(const StepLocals& v);
    void emitKeepBest(Expr score, Expr bestScore, Expr i);
    void emitLoopNumFromConfidence();
    void emitEndOfCandidate(const StepLocals& v, Expr hasImprovement, Expr isStop);
    Expr emitOrderStatistic(Expr n, Expr rank);                            ///< szelesttform_cg_median.cpp
    void emitFit(Expr n, Expr outcome);                                    ///< szelesttform_cg_fit.cpp
    struct FitLocals;
    void emitMinimalSet(const FitLocals& v, Expr n);
    void emitLargerSet(const FitLocals& v, Expr n);
    void emitDenormalization(const FitLocals& v);
    void emitWriteTForm(Expr compact);                                     ///< szelesttform_cg_tform.cpp

    // ---- Shorthand
    Expr cast(const CG::Type* type, Expr value) { return castNode(type, value); }
    Expr constant(double value) { return getConstScalar(mTc, value); }
    Expr uint32Const(std::int32_t value) { return getConstScalar(CG::uint32T(), value); }
    /// Statement: a call of a library function.
    template <typename... Args>
    void callOutlined(CG::Fcn* fcn, Args... args)
    {
        CG::Node* const call = CG::cg_node_create_fcn_call_with_aux_in(fcn);
        int idx = 0;
        (CG::cg_node_set_in_data(call, ++idx, Expr(args).node()), ...);
        AppendStatement(call);
    }
    /// A call of a one-argument function of the target's library, in the computation type.
    Expr targetFcn(const char* name, Expr argument);

    // ---- What the block is, in the order of declaration. Expressions are variables; an absent one is null
    template <typename Record>
    friend void readSettings(sysobj::SysObjAdaptorSFun* S, Record& record);

    CGIR_Block_IF* blockInterface;
    sysobj::SysObjAdaptorSFun* block;
    Expr pts1;
    Expr pts2;
    Expr ptsNum;
    Expr tform;
    Expr inlier;
    Expr ptsNorm1;
    Expr ptsNorm2;
    Expr constraint;
    Expr constraintAll;
    Expr factor;
    Expr distance;
    Expr sampleIdx;
    Expr bestSample;
    std::int32_t maxPtsNum = 0;
    std::int32_t maxDuplicateTries = 10;
    bool isRobust = false;
    bool isDisThrMethod = false;
    std::int32_t sampleSize = 0;
    bool isRefineIteratively = false;
    bool isUseConfidence = false;
    bool isUseSampleNum = false;       ///< not consulted: the limit is always the run-time parameter
    bool isBreakByPercentage = false;
    bool isOutputInliers = false;
    bool isRandomSampling = false;
    bool isPtsNumFromSize = false;     ///< not consulted: the code takes the number of pairs from the current size
    Expr maxSampleNum;
    Expr disThr;
    Expr confidence;
    Expr breakPercentage;
    std::string svdFcnName;
    std::int32_t colNum = 0;
    std::int32_t minEqnNum = 0;
    Expr tformCompact;
    Expr bestTFormCompact;
    Expr bestInlierDis;
    Expr bestInlierNum;
    Expr loopCount;
    Expr loopNum;
    Expr mIsRandomSamplingStep;
    int inDataType = sysobj::DT_UNSET;
    int outDataType = sysobj::DT_UNSET;

    const CG::Type* mTc = nullptr;     ///< computation type, that of TForm
    bool mIsInRows = false;
};

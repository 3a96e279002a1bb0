// mdlVektCG and the driver of code generation: what the context knows of the block, and its phases.
#include "szelesttform_cg.h"

#include "callbacks.h"
#include "szelesttform_ports.h"
#include "szelesttform_settings.h"

using namespace CG;
using namespace sysobj;

/// Describes the block to the code generator.  [in place of mdlStart; host thread]
void mdlVektCG(SysObjAdaptorSFun* S, CGIR_Block_IF* blockInterface)
{
    DSPCGCtx* const context = new VektCGEstTForm(S, blockInterface);
    context->constructCode();
    delete context;
}

DSPCGCtx::~DSPCGCtx() = default;

VektCGEstTForm::VektCGEstTForm(SysObjAdaptorSFun* S, CGIR_Block_IF* blockIf)
    : DSPCGCtx(blockIf, FXP_ROUND_ZERO, FXP_OVERFLOW_WRAP), blockInterface(blockIf), block(S)
{
    readSettings(S, *this);
    mIsInRows = pointAxis(S) == 0;
    inDataType = bhGetInputPortDataType(S, 0);
    outDataType = bhGetOutputPortDataType(S, outputPortIndex(S, TFORM_PORT));
    svdFcnName = outDataType == DT_DOUBLE ? "NQZEL_SVD_D" : "NQZEL_SVD_R";
    mTc = GetCGType(outDataType);
    createStateLocals();
    createPortRefs();
    createWorkRefs();
    createParamRefs();
}

VektCGEstTForm::~VektCGEstTForm() = default;

void VektCGEstTForm::createStateLocals()
{
    tformCompact = createLocal("tformCompact", mTc, colNum, "transformation of the last fit, last value 1");
    bestTFormCompact = createLocal("bestTFormCompact", mTc, colNum, "best candidate so far");
    bestInlierDis = createLocal("bestInlierDis", mTc, 0, "its score: sum of distances, each at most the threshold");
    bestInlierNum = createLocal("bestInlierNum", DT_UINT32, 0, "its inliers, listed in DW_BEST_SAMPLE");
    loopCount = createLocal("loopCount", DT_UINT32, 0, "fits of the present phase");
    loopNum = createLocal("loopNum", DT_UINT32, 0, "limit of loopCount");
    mIsRandomSamplingStep = createLocal("mIsRandomSamplingStep", DT_BOOLEAN, 0,
                                        "phase: minimal samples (true) or refits on inliers (false)");
}

void VektCGEstTForm::createPortRefs()
{
    pts1 = blockInterface->getInputRef(0);
    pts2 = blockInterface->getInputRef(1);
    tform = blockInterface->getOutputVar(outputPortIndex(block, TFORM_PORT));
    const int inlierPort = outputPortIndex(block, INLIER_PORT);
    if (inlierPort != NONE) inlier = blockInterface->getOutputVar(inlierPort);
}

void VektCGEstTForm::createWorkRefs()
{
    sampleIdx = blockInterface->getDWorkRef(DW_SAMPLEIDX);
    bestSample = blockInterface->getDWorkRef(DW_BEST_SAMPLE);
    ptsNorm1 = blockInterface->getDWorkRef(DW_PTSNORM1);
    ptsNorm2 = blockInterface->getDWorkRef(DW_PTSNORM2);
    if (isRobust) distance = blockInterface->getDWorkRef(DW_DISTANCE);
    constraint = blockInterface->getDWorkRef(DW_CONSTRAINT);
    if (isRobust) constraintAll = blockInterface->getDWorkRef(DW_CONSTRT_ALL);
    factor = blockInterface->getDWorkRef(DW_FACTOR);
}

/// The median method has no threshold to read; its disThr is a local that holds the best median of the step.
void VektCGEstTForm::createParamRefs()
{
    const auto reference = [this](RunTimeParam kind) {
        const int idx = rtpIndex(block, kind);
        return idx == NONE ? Expr() : Expr(blockInterface->getParamRef(idx));
    };
    maxSampleNum = reference(SAMPLENUM_RTP);
    confidence = reference(CONFIDENCE_RTP);
    disThr = reference(DIST_THR_RTP);
    if (disThr.isNull()) disThr = createLocal("disThr", mTc, 0, "best median distance of the step");
    breakPercentage = reference(BREAKPERCENTAGE_RTP);
}

void VektCGEstTForm::declarePhases()
{
    constexpr int START = 0;
    constexpr int OUTPUT = 3;
    mIsPhaseEmitted[START] = true;
    mIsPhaseEmitted[OUTPUT] = true;
}

void VektCGEstTForm::start()
{
    const std::string extension = std::string(".") + blockInterface->headerExtension() + ">";
    blockInterface->AddHeader(("<stdlib" + extension).c_str());
    blockInterface->AddHeader(("<time" + extension).c_str());
    Node* const clockCall = cg_node_create_untyped_external_function_call(blockInterface->GetCfg(), true, "clock", 0, 1);
    cg_node_set_output_type(clockCall, uint32T());
    Node* const srandCall = cg_node_create_untyped_external_function_call(blockInterface->GetCfg(), true, "srand", 1, 0);
    cg_node_set_in_data(srandCall, 1, clockCall);
    AppendStatement(srandCall);
}

VektCGEstTForm::Expr VektCGEstTForm::targetFcn(const char* name, Expr argument)
{
    Node* const call = getTargetLibFcnCall(name, mTc);
    setTargetFcnInputData(call, 1, argument);
    return call;
}

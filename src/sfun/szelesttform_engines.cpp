// The fourteen engines: construction, release, and their instantiation.
#include "szelesttform_engine.h"

#include "block_run.h"
#include "szelesttform_parts.h"
#include "szelesttform_ports.h"
#include "szelesttform_settings.h"
#include "szelesttform_step.h"
#include "szelesttform_update.h"
#include "szelesttform_work.h"

#include <cstdlib>
#include <ctime>

using namespace sysobj;

template <typename Ti, typename Tc>
estTForm<Ti, Tc>::estTForm(SysObjAdaptorSFun* S, QrCache* cache) : block(S), qrCache(cache)
{
    pts1 = static_cast<const Ti*>(bhGetInputPortSignal(S, 0));
    pts2 = static_cast<const Ti*>(bhGetInputPortSignal(S, 1));
    tform = static_cast<Tc*>(bhGetOutputPortSignal(S, outputPortIndex(S, TFORM_PORT)));
    const int inlierPort = outputPortIndex(S, INLIER_PORT);
    if (inlierPort >= 0) inlier = static_cast<std::uint8_t*>(bhGetOutputPortSignal(S, inlierPort));

    const bool isRobustBlock = readFlag(S, EXCLUDE_OUTLIERS);  // the settings are read below, in their order
    sampleIdx = static_cast<std::uint32_t*>(bhGetDWork(S, DW_SAMPLEIDX));
    bestSample = static_cast<std::uint32_t*>(bhGetDWork(S, DW_BEST_SAMPLE));
    ptsNorm1 = static_cast<Tc*>(bhGetDWork(S, DW_PTSNORM1));
    ptsNorm2 = static_cast<Tc*>(bhGetDWork(S, DW_PTSNORM2));
    if (isRobustBlock) distance = static_cast<Tc*>(bhGetDWork(S, DW_DISTANCE));
    constraint = static_cast<Tc*>(bhGetDWork(S, DW_CONSTRAINT));
    if (isRobustBlock) constraintAll = static_cast<Tc*>(bhGetDWork(S, DW_CONSTRT_ALL));
    factor = static_cast<Tc*>(bhGetDWork(S, DW_FACTOR));

    readSettings(S, *this);
    processParameters(S);
    std::srand(static_cast<unsigned>(std::clock()));
}

template <typename Ti, typename Tc>
estTForm<Ti, Tc>::~estTForm()
{
    delete qrCache;
}

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::processParameters(SysObjAdaptorSFun* S)
{
    readRunTimeParams(S, maxSampleNum, confidence, disThr, breakPercentage);
    loopNum = loopNumOf(maxSampleNum);
}

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::output(std::int32_t currentPtsNum)
{
    EngineParts<Ti, Tc> parts(*this, currentPtsNum);
    estimate(currentPtsNum, parts);
}

#define SZELESTTFORM_DEFINE_ENGINE(Ti, Tc)                                                                             \
    template class EngineParts<Ti, Tc>;                                                                                \
    template class estTForm<Ti, Tc>;
SZELESTTFORM_ENGINES(SZELESTTFORM_DEFINE_ENGINE)
#undef SZELESTTFORM_DEFINE_ENGINE

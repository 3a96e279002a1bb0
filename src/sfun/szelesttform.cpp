// Life of the block: creates, steps, refreshes and releases the engine, which is the instance's user data.
#include <new>

#include "block_ports.h"
#include "block_run.h"
#include "callbacks.h"
#include "orbsimcommon.h"
#include "szelesttform_engine.h"
#include "szelesttform_params.h"
#include "szelesttform_ports.h"

using namespace sysobj;

namespace {

baseEstTForm* engineOf(SysObjAdaptorSFun* S)
{
    return static_cast<baseEstTForm*>(bhGetUserData(S));
}

/// Creates the QR work cache and the engine that takes it over; null when there is no memory.
template <typename Ti, typename Tc>
baseEstTForm* createEngine(SysObjAdaptorSFun* S)
{
    using QrCache = typename estTForm<Ti, Tc>::QrCache;
    QrCache* const qrCache = new (std::nothrow) QrCache(S, false, Tc(1));
    if (qrCache == nullptr) return nullptr;
    baseEstTForm* const engine = new (std::nothrow) estTForm<Ti, Tc>(S, qrCache);
    if (engine == nullptr) delete qrCache;
    return engine;
}

using CreateEngine = baseEstTForm* (*)(SysObjAdaptorSFun*);

/// The engine for a pair of data types; null for a pair that the propagation rules keep from arising.
CreateEngine findEngine(int pointType, int tformType)
{
    if (tformType == DT_DOUBLE) {
        switch (pointType) {
        case DT_DOUBLE: return createEngine<double, double>;
        case DT_INT8: return createEngine<std::int8_t, double>;
        case DT_UINT8: return createEngine<std::uint8_t, double>;
        case DT_INT16: return createEngine<std::int16_t, double>;
        case DT_UINT16: return createEngine<std::uint16_t, double>;
        case DT_INT32: return createEngine<std::int32_t, double>;
        case DT_UINT32: return createEngine<std::uint32_t, double>;
        default: return nullptr;
        }
    }
    switch (pointType) {
    case DT_SINGLE: return createEngine<float, float>;
    case DT_INT8: return createEngine<std::int8_t, float>;
    case DT_UINT8: return createEngine<std::uint8_t, float>;
    case DT_INT16: return createEngine<std::int16_t, float>;
    case DT_UINT16: return createEngine<std::uint16_t, float>;
    case DT_INT32: return createEngine<std::int32_t, float>;
    case DT_UINT32: return createEngine<std::uint32_t, float>;
    default: return nullptr;
    }
}

}  // namespace

/// Creates the engine for the settled data types and hands it to the host as the instance's user data. A pair of types
/// that the propagation rules exclude gets none, and its steps do nothing.
void mdlStart(SysObjAdaptorSFun* S)
{
    const int tformType = bhGetOutputPortDataType(S, outputPortIndex(S, TFORM_PORT));
    const CreateEngine create = findEngine(bhGetInputPortDataType(S, 0), tformType);
    if (create == nullptr) return;
    baseEstTForm* const engine = create(S);
    if (engine == nullptr) {
        OrbSimCommon::dspError(S, catalog::memoryAllocationFailed());
        return;
    }
    bhSetUserData(S, engine);
}

/// One step. The current sizes of variable-size inputs must pass the size rule first.
void mdlOutputs(SysObjAdaptorSFun* S)
{
    if (bhGetInputPortDimensionsMode(S, 0) == DIMS_MODE_VARIABLE) {
        const int r1 = bhGetCurrentInputPortDimensions(S, 0, 0);
        const int c1 = bhGetCurrentInputPortDimensions(S, 0, 1);
        const int r2 = bhGetCurrentInputPortDimensions(S, 1, 0);
        const int c2 = bhGetCurrentInputPortDimensions(S, 1, 1);
        checkPtsSizes(S, r1, c1, r2, c2);
    }
    if (bhGetErrorStatus(S) != nullptr) return;
    const std::int32_t ptsNum = bhGetCurrentInputPortDimensions(S, 0, pointAxis(S));
    if (baseEstTForm* const engine = engineOf(S)) engine->output(ptsNum);
}

/// Hands changed run-time parameters to the engine.
void mdlProcessParameters(SysObjAdaptorSFun* S)
{
    if (baseEstTForm* const engine = engineOf(S)) engine->processParameters(S);
}

/// Releases the engine; also called when none was created.
void mdlTerminate(SysObjAdaptorSFun* S)
{
    delete engineOf(S);
    bhSetUserData(S, nullptr);
}

void vobFunction(SysObjAdaptorSFun*) {}

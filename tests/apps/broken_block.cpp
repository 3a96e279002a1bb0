// The block with one fault, which the environment variable BROKEN names: around callbacks, and in host calls on their way.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <unistd.h>

#define mdlStart soundStart
#define mdlOutputs soundOutputs
#define mdlTerminate soundTerminate
#define mdlProcessParameters soundProcessParameters
#define mdlCheckParameters soundCheckParameters
#define mdlSetOutputPortDimensionInfo soundSetOutputPortDimensionInfo
#include "szelesttform.cpp"
#include "szelesttform_check.cpp"
#include "szelesttform_ports.cpp"
#undef mdlStart
#undef mdlOutputs
#undef mdlTerminate
#undef mdlProcessParameters
#undef mdlCheckParameters
#undef mdlSetOutputPortDimensionInfo

#include "block_work.h"

#define BROKEN_EXPORT __attribute__((visibility("default")))

namespace {

bool isBroken(const char* fault)
{
    const char* const asked = std::getenv("BROKEN");
    return asked != nullptr && std::strcmp(asked, fault) == 0;
}

int stepNum = 0;
int runningNum = 0;
void* volatile lost = nullptr;

/// Elements of TForm.
int tformNum(SysObjAdaptorSFun* S)
{
    return readSampleSize(S) == 4 ? 9 : 6;
}

template <typename T>
void spoil(SysObjAdaptorSFun* S, T* tform)
{
    if (isBroken("writes past TForm")) tform[tformNum(S)] = T(1);
    if (isBroken("gives NaN")) tform[0] = std::numeric_limits<T>::quiet_NaN();
    if (isBroken("counts its steps")) tform[2] += T(++stepNum);
    if (isBroken("shares its state")) tform[2] += T(runningNum);
}

}  // namespace

extern "C" {

BROKEN_EXPORT void mdlStart(SysObjAdaptorSFun* S)
{
    if (isBroken("ends the process")) _exit(0);
    if (isBroken("loses memory")) lost = std::malloc(200);
    soundStart(S);
    ++runningNum;
}

BROKEN_EXPORT void mdlOutputs(SysObjAdaptorSFun* S)
{
    const bool isDouble = bhGetOutputPortDataType(S, 0) == DT_DOUBLE;
    if (isBroken("reports something else")) OrbSimCommon::dspError(S, resource_core::BaseMsgID("somethingElse"));
    soundOutputs(S);
    void* const tform = bhGetOutputPortSignal(S, 0);
    isDouble ? spoil(S, static_cast<double*>(tform)) : spoil(S, static_cast<float*>(tform));
    auto* const pts1 = static_cast<volatile unsigned char*>(const_cast<void*>(bhGetInputPortSignal(S, 0)));
    if (isBroken("writes its input")) pts1[0] = static_cast<unsigned char>(pts1[0] + 1);
    if (isBroken("reads past its input"))
        static_cast<void>(pts1[16 * bhGetCurrentInputPortDimensions(S, 0, 0) * bhGetCurrentInputPortDimensions(S, 0, 1)]);
}

BROKEN_EXPORT void mdlTerminate(SysObjAdaptorSFun* S)
{
    while (isBroken("hangs without start") && bhGetUserData(S) == nullptr) std::puts("waiting");
    if (bhGetUserData(S) != nullptr) --runningNum;
    soundTerminate(S);
}

BROKEN_EXPORT void mdlCheckParameters(SysObjAdaptorSFun* S)
{
    if (!isBroken("checks no parameter")) soundCheckParameters(S);
}

BROKEN_EXPORT void mdlProcessParameters(SysObjAdaptorSFun* S)
{
    if (!isBroken("ignores changes")) soundProcessParameters(S);
}

BROKEN_EXPORT void mdlSetOutputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* record)
{
    if (!isBroken("takes any mask")) return soundSetOutputPortDimensionInfo(S, port, record);
    setPortSizes(S, record->width, record);
}

// ---- Host calls on their way

bool __real_bhSetNumDWork(SysObjAdaptorSFun* S, int num);
void __real_bhSetUserData(SysObjAdaptorSFun* S, void* userData);
int __real_bhSetOutputPortDataType(SysObjAdaptorSFun* S, int port, int typeId);

bool __wrap_bhSetNumDWork(SysObjAdaptorSFun* S, int num)
{
    const bool isSet = __real_bhSetNumDWork(S, num);
    if (!isSet && isBroken("crashes when refused")) std::abort();
    return isSet || isBroken("ignores a refusal");
}

void __wrap_bhSetUserData(SysObjAdaptorSFun* S, void* userData)
{
    if (userData == nullptr && isBroken("keeps its user data")) return;
    __real_bhSetUserData(S, userData);
}

int __wrap_bhSetOutputPortDataType(SysObjAdaptorSFun* S, int port, int typeId)
{
    const bool isEarly = port == 0 && typeId == DT_DOUBLE && bhGetInputPortNumDimensions(S, 0) < 0;
    return __real_bhSetOutputPortDataType(S, port, isEarly && isBroken("depends on the order") ? int(DT_SINGLE) : typeId);
}

}  // extern "C"

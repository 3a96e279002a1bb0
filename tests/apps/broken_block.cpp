// The block with one fault, for the tests of 'esttform check': every callback goes to the real block's, but for the fault.
#include <dlfcn.h>
#include <signal.h>
#include <unistd.h>

#include "block_run.h"
#include "callbacks.h"

#define WRITES_PAST_ITS_OUTPUT 1
#define CHANGES_ITS_INPUT 2
#define REMEMBERS_STEPS 3
#define CRASHES_UNSTARTED 4
#define HANGS 5
#define DEPENDS_ON_ORDER 6
#define CHECKS_NOTHING 7

using sysobj::SysObjAdaptorSFun;

namespace {

[[maybe_unused]] long stepNum = 0;
[[maybe_unused]] bool hasMetSize = false;
[[maybe_unused]] bool isTypeFirst = false;

template <typename Function>
Function* real(const char* name)
{
    static void* const library = dlopen(REAL_BLOCK, RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function*>(dlsym(library, name));
}

/// What the fault does besides the real callback. @return false when the real one is to be left out
bool isReal(const char* name, [[maybe_unused]] SysObjAdaptorSFun* S)
{
    [[maybe_unused]] const auto is = [name](const char* other) { return __builtin_strcmp(name, other) == 0; };
#if FAULT == CRASHES_UNSTARTED
    if (is("mdlTerminate") && sysobj::bhGetUserData(S) == nullptr)
        raise(SIGSEGV);
#elif FAULT == HANGS
    while (is("mdlTerminate"))
        pause();
#elif FAULT == DEPENDS_ON_ORDER
    if (is("mdlInitializeSizes"))
        hasMetSize = isTypeFirst = false;
    hasMetSize = hasMetSize || is("mdlSetInputPortDimensionInfo");
    isTypeFirst = isTypeFirst || (is("mdlSetInputPortDataType") && !hasMetSize);
    return !isTypeFirst || !is("mdlSetInputPortDimensionInfo");
#elif FAULT == CHECKS_NOTHING
    return !is("mdlCheckParameters");
#endif
    return true;
}

/// What the fault does after a step.
void afterStep([[maybe_unused]] SysObjAdaptorSFun* S)
{
#if FAULT == WRITES_PAST_ITS_OUTPUT
    static_cast<double*>(sysobj::bhGetOutputPortSignal(S, 0))[9] = 0.0;
#elif FAULT == CHANGES_ITS_INPUT
    const_cast<double*>(static_cast<const double*>(sysobj::bhGetInputPortSignal(S, 1)))[0] += 1.0;
#elif FAULT == REMEMBERS_STEPS
    static_cast<double*>(sysobj::bhGetOutputPortSignal(S, 0))[0] += 1e-9 * static_cast<double>(++stepNum);
#endif
}

}  // namespace

#define CALLBACK(name)                                          \
    void name(SysObjAdaptorSFun* S)                             \
    {                                                           \
        if (isReal(#name, S))                                   \
            real<void(SysObjAdaptorSFun*)>(#name)(S);           \
        if (__builtin_strcmp(#name, "mdlOutputs") == 0)         \
            afterStep(S);                                       \
    }
#define CALLBACK_OF_PORT(name, Type)                                                \
    void name(SysObjAdaptorSFun* S, int port, Type value)                           \
    {                                                                               \
        if (isReal(#name, S))                                                       \
            real<void(SysObjAdaptorSFun*, int, Type)>(#name)(S, port, value);       \
    }

CALLBACK(mdlInitializeSizes)
CALLBACK(mdlCheckParameters)
CALLBACK(mdlInitializeSampleTimes)
CALLBACK_OF_PORT(mdlSetInputPortDimensionInfo, const sysobj::DimsInfo_tag*)
CALLBACK_OF_PORT(mdlSetOutputPortDimensionInfo, const sysobj::DimsInfo_tag*)
CALLBACK(mdlSetDefaultPortDimensionInfo)
CALLBACK_OF_PORT(mdlSetInputPortDimsMode, int)
CALLBACK_OF_PORT(mdlSetInputPortFrameData, int)
CALLBACK_OF_PORT(mdlSetInputPortDataType, int)
CALLBACK_OF_PORT(mdlSetOutputPortDataType, int)
CALLBACK(mdlSetDefaultPortDataTypes)
CALLBACK(mdlSetWorkWidths)
CALLBACK(mdlStart)
CALLBACK(mdlOutputs)
CALLBACK(mdlProcessParameters)
CALLBACK(mdlTerminate)
CALLBACK(vobFunction)

void mdlVektCG(SysObjAdaptorSFun* S, CGIR_Block_IF* blockInterface)
{
    real<void(SysObjAdaptorSFun*, CGIR_Block_IF*)>("mdlVektCG")(S, blockInterface);
}

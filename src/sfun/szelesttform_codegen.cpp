// mdlVektCG: the block's description of itself to the code generator.
#include "callbacks.h"
#include "orbsimcommon.h"

/// This version estimates in simulation only: the request ends with an error of the instance, nothing is described.
void mdlVektCG(sysobj::SysObjAdaptorSFun* S, CGIR_Block_IF*)
{
    OrbSimCommon::dspError(S, catalog::codeGenerationUnavailable());
}

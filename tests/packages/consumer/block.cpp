// What a block includes: every header of the host, from the installed folder alone.
#include "block_messages.h"
#include "block_ports.h"
#include "block_run.h"
#include "block_setup.h"
#include "block_types.h"
#include "block_work.h"
#include "callbacks.h"
#include "codegen_block_if.h"
#include "codegen_builder.h"
#include "codegen_context.h"
#include "codegen_generators.h"
#include "codegen_nodes.h"
#include "codegen_types.h"
#include "orbsimcommon.h"

void mdlInitializeSizes(sysobj::SysObjAdaptorSFun* S)
{
    OrbSimCommon::registerSFunctionParams(S, 0);
    bhSetNumInputPorts(S, 1);
}

// The host's declarations with default visibility: what libblockhost exports to blocks.
// Every source of the host includes them through this file, so that the declarations themselves stay free of attributes.
#pragma once

#pragma GCC visibility push(default)
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
#pragma GCC visibility pop

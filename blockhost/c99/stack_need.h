// Upper bound of the stack that a generated function and everything below it needs.
#pragma once

#include "usage.h"

namespace blockhost::c99 {

/// Bytes for a function's frame beyond its locals and parameters: return address, saved registers, the 128 bytes that x86-64
/// lets a leaf function use below its frame, intermediate values. With GCC 12 and Clang 14 for x86-64, -O0 to -O3 (measured
/// with -fstack-usage), the frame of a step stays within its locals and parameters even where callees are inlined.
constexpr std::size_t FRAME_ALLOWANCE = 256;
/// Bytes that a function of the runtime takes with all that it calls; measured likewise: at most 760.
constexpr std::size_t RUNTIME_STACK = 1200;

/// Bytes of the deepest chain of calls from a function: locals of every block of each function on it, its parameters, an
/// allowance a frame. Functions of the C library are not counted.
///
/// @param bodies     of the function
/// @param usage      of these bodies
/// @param scalarNum  parameters and other scalars that the writer adds to the tree's locals
std::size_t stackNeed(const CG::Module& module, const std::vector<const CG::Block*>& bodies, const BodyUsage& usage,
                      std::size_t scalarNum);

}  // namespace blockhost::c99

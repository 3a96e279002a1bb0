// Counts every operator new of the process: the program's, the host's and the plug-in's.
// Link allocation_counter.cpp; a program that loads plug-ins needs ENABLE_EXPORTS, so that they find it first.
#pragma once

/// Allocations since the program began.
long allocationNum();

// Chief header of the QR factorization: the work caches through which it computes, the kernel itself, and the generators
// of its counterpart in generated code.
// A factorization A*E = Q*R by Householder transformations with column pivoting, double and single precision.
#pragma once

#include "dspqrfact_cache.h"
#include "dspqrfact_gen.h"
#include "dspqrfact_kernel.h"

/* Runtime of generated code: singular value decomposition in single precision. */
#include "zelsvd_rt.h"

#include <float.h>
#include <math.h>

#define SVDC_REAL float
#define SVDC_LITERAL(x) x##F
#define SVDC_ABS fabsf
#define SVDC_SQRT sqrtf
#define SVDC_EPS FLT_EPSILON
#define SVDC_TINY (FLT_MIN / FLT_EPSILON)
#define SVDC_IS_FINITE NQZEL_IS_FINITE_R

#include "svdc_body.inc"

int32_t NQZEL_SVD_R(float* X, uint32_t n, int32_t p, float* s, float* e, float* work, float* U, float* V,
                    int32_t wantVectors)
{
    return svdcDecompose(X, (int32_t)n, p, s, e, work, U, V, wantVectors);
}

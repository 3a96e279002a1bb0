/* Runtime of generated code: singular value decomposition in double precision. */
#include "zelsvd_rt.h"

#include <float.h>
#include <math.h>

#define SVDC_REAL double
#define SVDC_LITERAL(x) x
#define SVDC_ABS fabs
#define SVDC_SQRT sqrt
#define SVDC_EPS DBL_EPSILON
#define SVDC_TINY (DBL_MIN / DBL_EPSILON)
#define SVDC_IS_FINITE NQZEL_IS_FINITE_D

#include "svdc_body.inc"

int32_t NQZEL_SVD_D(double* X, uint32_t n, int32_t p, double* s, double* e, double* work, double* U, double* V,
                    int32_t wantVectors)
{
    return svdcDecompose(X, (int32_t)n, p, s, e, work, U, V, wantVectors);
}

/* Singular value decomposition in double precision. */
#include "svdc.h"

#include <float.h>
#include <math.h>

#define SVDC_REAL double
#define SVDC_LITERAL(x) x
#define SVDC_ABS fabs
#define SVDC_SQRT sqrt
#define SVDC_EPS DBL_EPSILON
#define SVDC_TINY (DBL_MIN / DBL_EPSILON)
#define SVDC_IS_FINITE(x) ((x) - (x) == SVDC_LITERAL(0.0)) /* infinity - infinity and NaN - NaN are NaN */

#include "svdc_body.inc"

int32_t svdc_d(double* X, int32_t n, int32_t p, double* s, double* e, double* work, double* U, double* V,
               int32_t wantVectors)
{
    return svdcDecompose(X, n, p, s, e, work, U, V, wantVectors);
}

/* Singular value decomposition in double precision. */
#include "svdc.h"

#include <float.h>
#include <math.h>

#define SVDC_FCN svdc_d
#define SVDC_REAL double
#define SVDC_LITERAL(x) x
#define SVDC_ABS fabs
#define SVDC_SQRT sqrt
#define SVDC_EPS DBL_EPSILON
#define SVDC_TINY (DBL_MIN / DBL_EPSILON)

#include "svdc_body.inc"

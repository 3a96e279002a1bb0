/* Singular value decomposition in single precision. */
#include "svdc.h"

#include <float.h>
#include <math.h>

#define SVDC_FCN svdc_r
#define SVDC_REAL float
#define SVDC_LITERAL(x) x##F
#define SVDC_ABS fabsf
#define SVDC_SQRT sqrtf
#define SVDC_EPS FLT_EPSILON
#define SVDC_TINY (FLT_MIN / FLT_EPSILON)

#include "svdc_body.inc"

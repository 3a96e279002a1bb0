/* Runtime of generated code: singular value decomposition of a real matrix. C99 and C++. */
/* Compile svd_d_rt.c (double) or svd_r_rt.c (single) with svd_helper_rt.c and is_little_endian_rt.c, and link them once. */
#ifndef ZELSVD_RT_H
#define ZELSVD_RT_H

#include <stdint.h>

/* Version of this interface; generated code refuses another one. */
#define ZELSVD_RT_VERSION 1

#ifdef __cplusplus
extern "C" {
#endif

/**
 * X = U * S * V', singular values in decreasing order, in double precision.
 *
 * Method: LINPACK's xSVDC (Dongarra, Bunch, Moler, Stewart, LINPACK Users' Guide, chapter 11) for real data: Householder
 * bidiagonalization, a non-negative bidiagonal, implicitly shifted QR steps.
 *
 * All matrices are stored column by column, leading dimension = number of rows. Nothing is allocated.
 *
 * @param X            in, n x p; destroyed
 * @param n            rows, at least 1; n * p is below 2^31
 * @param p            columns, at least 1
 * @param s            out, p values; the first min(n + 1, p) are results
 * @param e            scratch, p values
 * @param work         scratch, n values
 * @param U            out, n x min(n, p): left singular vectors; not touched without wantVectors
 * @param V            out, p x p: right singular vectors; not touched without wantVectors
 * @param wantVectors  not 0: form U and V
 * @return 0: done. -1: a value that is not finite met in the test of the super-diagonal. m > 0: m singular values not
 *         found, after more than 75 QR steps for one value or because of a diagonal value that is not finite.
 */
int32_t NQZEL_SVD_D(double* X, uint32_t n, int32_t p, double* s, double* e, double* work, double* U, double* V,
                    int32_t wantVectors);
/** The same in single precision throughout. */
int32_t NQZEL_SVD_R(float* X, uint32_t n, int32_t p, float* s, float* e, float* work, float* U, float* V,
                    int32_t wantVectors);

/** 1 for a finite value, 0 for infinity and NaN, by the exponent field: right under every compiler option. */
int32_t NQZEL_IS_FINITE_D(double value);
int32_t NQZEL_IS_FINITE_R(float value);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif

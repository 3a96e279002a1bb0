/* Singular value decomposition of a real matrix, double and single precision; C99 and C++. */
/* The body is linalg/svdc_body.inc, compiled once per precision. */
#ifndef SVDC_H
#define SVDC_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * X = U * S * V', singular values in decreasing order.
 *
 * Method: LINPACK's xSVDC (Dongarra, Bunch, Moler, Stewart, LINPACK Users' Guide, chapter 11) for real data in the form
 * of its complex variant: Householder bidiagonalization, a non-negative bidiagonal, implicitly shifted QR steps. Norms
 * by a running hypot, own negligibility tests and checks for non-finite values.
 *
 * All matrices are stored column by column, leading dimension = number of rows. Nothing is allocated.
 *
 * @param X            in, n x p; destroyed
 * @param n            rows, at least 1
 * @param p            columns, at least 1
 * @param s            out, p values; the first min(n + 1, p) are results
 * @param e            scratch, p values
 * @param work         scratch, n values
 * @param U            out, n x min(n, p): left singular vectors; not touched without wantVectors
 * @param V            out, p x p: right singular vectors; not touched without wantVectors
 * @param wantVectors  not 0: form U and V
 * @return 0: done. -1: a value that is not finite met in the test of the super-diagonal. m > 0: m singular values not found, after more
 *         than 75 QR steps for one value or because of a diagonal value that is not finite.
 */
int32_t svdc_d(double* X, int32_t n, int32_t p, double* s, double* e, double* work, double* U, double* V,
               int32_t wantVectors);
/** The same in single precision throughout. */
int32_t svdc_r(float* X, int32_t n, int32_t p, float* s, float* e, float* work, float* U, float* V,
               int32_t wantVectors);

#ifdef __cplusplus
}  /* extern "C" */

/** svdc_d or svdc_r by the element type. */
inline int32_t svdc(double* X, int32_t n, int32_t p, double* s, double* e, double* work, double* U, double* V,
                    bool wantVectors)
{
    return svdc_d(X, n, p, s, e, work, U, V, wantVectors ? 1 : 0);
}
inline int32_t svdc(float* X, int32_t n, int32_t p, float* s, float* e, float* work, float* U, float* V,
                    bool wantVectors)
{
    return svdc_r(X, n, p, s, e, work, U, V, wantVectors ? 1 : 0);
}
#endif

#endif

// QR factorization with column pivoting: reduction, application of Q, and the driver that forms Q, R and E.
// Every scalar operation on matrix elements goes through the cache; sizes may be known to the compiler.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <utility>

/// A size that the compiler knows; converts to std::int32_t. Kernels take it or a std::int32_t.
template <std::int32_t N>
using FixedSize = std::integral_constant<std::int32_t, N>;

namespace qrdetail {

/// 2-norm of num elements as a running hypot, in order.
template <typename Cache, typename T>
inline T runningNorm(const Cache& cache, const T* x, std::int32_t num)
{
    T norm = T(0);
    for (std::int32_t i = 0; i < num; ++i) norm = cache.hypot(x[i], norm);
    return norm;
}

/// First index from l to n - 1 with the largest norm; l when no norm is above 0.
template <typename Cache, typename T>
inline std::int32_t findPivotColumn(const Cache& cache, const T* qraux, std::int32_t l, std::int32_t n)
{
    T maxnrm = T(0);
    std::int32_t maxj = l;
    for (std::int32_t j = l; j < n; ++j) {
        if (cache.re(qraux[j]) > maxnrm) {
            maxnrm = cache.re(qraux[j]);
            maxj = j;
        }
    }
    return maxj;
}

/// Turns x = A(l:m-1, l), of num elements, into its Householder vector: gives nrmxl the sign of x[0], divides by it, adds 1.
template <typename Cache, typename T>
inline void makeHouseholderVector(const Cache& cache, T* x, std::int32_t num, T* nrmxl)
{
    if (cache.absTest(x[0]) != T(0)) {
        if (cache.absValue(x[0]) == T(0)) {              // a complex type only
            cache.setRe(nrmxl, std::abs(cache.re(*nrmxl)));
        } else {
            const T ratio = cache.absValue(*nrmxl) / cache.absValue(x[0]);
            cache.setRe(nrmxl, cache.re(x[0]) * ratio);
            cache.setIm(nrmxl, cache.im(x[0]) * ratio);
        }
    }

    constexpr T SAFE_RECIPROCAL = T(5e-20);              // a norm that this takes to 0 may have no finite reciprocal
    T probe;
    cache.setRe(&probe, cache.re(*nrmxl) * SAFE_RECIPROCAL);
    cache.setIm(&probe, cache.im(*nrmxl) * SAFE_RECIPROCAL);
    if (cache.isNonZero(probe)) {
        const T r = cache.recip(*nrmxl);
        for (std::int32_t i = 0; i < num; ++i) x[i] = cache.mul(x[i], r);
    } else {
        for (std::int32_t i = 0; i < num; ++i) x[i] = cache.div(x[i], *nrmxl);
    }
    cache.incOne(&x[0]);
}

/// The operations on matrix elements and on vector elements under the names that a reflection uses.
template <typename Cache>
struct MatrixOps {
    const Cache& cache;
    template <typename T> void setZero(T* p) const { cache.setZero(p); }
    template <typename T> T mulSub(T a, T b, T c) const { return cache.mulSub(a, b, c); }
    template <typename T> T div(T a, T b) const { return cache.div(a, b); }
    template <typename T> T mulAdd(T a, T b, T c) const { return cache.mulAdd(a, b, c); }
};
template <typename Cache>
struct VectorOps {
    const Cache& cache;
    template <typename T> void setZero(T* p) const { cache.setZeroB(p); }
    template <typename T> T mulSub(T a, T b, T c) const { return cache.mulSubB(a, b, c); }
    template <typename T> T div(T a, T b) const { return cache.divB(a, b); }
    template <typename T> T mulAdd(T a, T b, T c) const { return cache.mulAddB(a, b, c); }
};

/// y := y + t*x with t = -(x'y) / x[0], for BLOCK columns y that lie ld elements apart: a Householder transformation.
template <std::int32_t BLOCK, typename Ops, typename T>
inline void reflectBlock(const Ops& ops, const T* x, std::int32_t num, T* y, std::int32_t ld)
{
    T t[BLOCK];
    for (std::int32_t j = 0; j < BLOCK; ++j) ops.setZero(&t[j]);
    for (std::int32_t i = 0; i < num; ++i) {
        for (std::int32_t j = 0; j < BLOCK; ++j) t[j] = ops.mulSub(t[j], x[i], y[i + j * ld]);
    }
    for (std::int32_t j = 0; j < BLOCK; ++j) t[j] = ops.div(t[j], x[0]);
    for (std::int32_t i = 0; i < num; ++i) {
        for (std::int32_t j = 0; j < BLOCK; ++j) y[i + j * ld] = ops.mulAdd(y[i + j * ld], t[j], x[i]);
    }
}

/// reflectBlock for colNum columns, four at a time: within a column a sum waits for its predecessor, between columns
/// nothing waits. The order of operations within a column is the same.
template <typename Ops, typename T>
inline void reflectColumns(const Ops& ops, const T* x, std::int32_t num, T* y, std::int32_t ld, std::int32_t colNum)
{
    std::int32_t j = 0;
    for (; j + 4 <= colNum; j += 4) reflectBlock<4>(ops, x, num, y + j * ld, ld);
    if (j + 2 <= colNum) {
        reflectBlock<2>(ops, x, num, y + j * ld, ld);
        j += 2;
    }
    if (j < colNum) reflectBlock<1>(ops, x, num, y + j * ld, ld);
}

/// Norm of a column without its first element y[0], from the norm with it; computed afresh from the other num - 1
/// elements when too many digits would be lost.
template <typename Cache, typename T>
inline void downdateNorm(const Cache& cache, const T* y, std::int32_t num, T* qraux, T* work)
{
    if (cache.absTest(*qraux) == T(0)) return;
    const T quotient = cache.absValue(y[0]) / cache.re(*qraux);
    T tt = cache.one - quotient * quotient;
    if (tt < T(0)) tt = T(0);
    T t;
    cache.setZero(&t);
    cache.setRe(&t, tt);
    const T q = cache.re(*qraux) / cache.re(*work);
    const T test = cache.one + ((tt * T(0.05)) * q) * q;
    if (test == cache.one) {
        *qraux = runningNorm(cache, y + 1, num - 1);
        *work = *qraux;
    } else {
        *qraux = cache.mulRe(*qraux, std::sqrt(cache.re(t)));
    }
}

}  // namespace qrdetail

/// Householder reduction with column pivoting, in place.
///
/// Method: LINPACK's xQRDC with pivoting (Dongarra, Bunch, Moler, Stewart, LINPACK Users' Guide, chapter 9), norms by a
/// running hypot, and a test whether a column may be multiplied by the reciprocal of its norm.
///
/// @param cache  scalar operations
/// @param m, n   rows and columns, at least 1; std::int32_t or FixedSize
/// @param A      in/out, m x n column by column: Householder vectors below the diagonal, R on and above it
/// @param qraux  out, n values: leading elements of the Householder vectors, 0 where a column had none
/// @param jpvt   out, n values: jpvt[k] = original index of the column now at k. Entries are ignored on entry: every
///               column is free
/// @param work   scratch, n values
template <typename Cache, typename T, typename Rows, typename Cols>
inline void qrdc(const Cache& cache, Rows m, Cols n, T* A, T* qraux, std::int32_t* jpvt, T* work)
{
    for (std::int32_t j = 0; j < n; ++j) {
        jpvt[j] = j;
        qraux[j] = qrdetail::runningNorm(cache, A + j * m, m);
        work[j] = qraux[j];
    }

    const std::int32_t lup = std::min<std::int32_t>(m, n);
    for (std::int32_t l = 0; l < lup; ++l) {
        if (l < n - 1) {                                 // bring the column of largest norm into position l
            const std::int32_t maxj = qrdetail::findPivotColumn(cache, qraux, l, n);
            if (maxj != l) {
                std::swap_ranges(A + l * m, A + l * m + m, A + maxj * m);
                cache.storeRe(cache.re(qraux[l]), &qraux[maxj]);
                cache.storeRe(cache.re(work[l]), &work[maxj]);
                std::swap(jpvt[l], jpvt[maxj]);
            }
        }
        cache.setZero(&qraux[l]);
        if (l == m - 1) continue;

        T* const x = A + l + l * m;                      // A(l:m-1, l)
        T nrmxl = qrdetail::runningNorm(cache, x, m - l);
        if (cache.absTest(nrmxl) == T(0)) continue;
        qrdetail::makeHouseholderVector(cache, x, m - l, &nrmxl);
        qrdetail::reflectColumns(qrdetail::MatrixOps<Cache>{cache}, x, m - l, x + m, m, n - l - 1);
        for (std::int32_t j = l + 1; j < n; ++j) {
            qrdetail::downdateNorm(cache, A + l + j * m, m - l, &qraux[j], &work[j]);
        }
        qraux[l] = *x;
        cache.setRe(x, -cache.re(nrmxl));
        cache.setIm(x, -cache.im(nrmxl));
    }
}

/// Y := Q*Y, Q being the product of the first min(k, m - 1) transformations that qrdc left in A and qraux.
///
/// Method: the part of LINPACK's xQRSL that computes Q*y.
///
/// @param m, k   rows and columns of A
/// @param A      in, m x k column by column; its diagonal is changed and restored
/// @param qraux  in, k values
/// @param y      in/out, m x yNum column by column; no column depends on another
template <typename Cache, typename T, typename Rows, typename Cols>
inline void qrCompQy(const Cache& cache, Rows m, Cols k, T* A, const T* qraux, T* y, std::int32_t yNum = 1)
{
    const std::int32_t ju = std::min<std::int32_t>(k, m - 1);
    for (std::int32_t j = ju - 1; j >= 0; --j) {
        if (cache.absTest(qraux[j]) == T(0)) continue;
        T* const x = A + j + j * m;                      // A(j:m-1, j)
        const T temp = x[0];
        x[0] = qraux[j];
        qrdetail::reflectColumns(qrdetail::VectorOps<Cache>{cache}, x, m - j, y + j, m, yNum);
        x[0] = temp;
    }
}

/// A*E = Q*R with explicit factors.
///
/// @param cache    scalar operations
/// @param m, n     rows and columns of A, at least 1; std::int32_t or FixedSize
/// @param Q        out, m x q column by column, q = min(m, n) with economy, else m
/// @param A        in/out, m x n column by column. Economy and m > n: left as qrdc leaves it; otherwise R, with exact
///                 zeros below the diagonal
/// @param E        out, n values: jpvt + 1
/// @param qraux    out, n values, see qrdc
/// @param work     scratch, n values
/// @param jpvt     out, n values, see qrdc
/// @param R        out, n x n column by column, upper triangular; written only with economy and m > n
/// @param economy  form only the first min(m, n) columns of Q
///
/// Checks nothing and allocates nothing. A zero column gets no transformation; values that are not finite propagate.
template <typename Cache, typename T, typename Rows, typename Cols>
inline void qrFactor(const Cache& cache, Rows m, Cols n, T* Q, T* A, T* E, T* qraux, T* work, std::int32_t* jpvt, T* R,
                     bool economy)
{
    qrdc(cache, m, n, A, qraux, jpvt, work);

    const std::int32_t q = economy ? std::min<std::int32_t>(m, n) : std::int32_t(m);
    for (std::int32_t i = 0; i < m * q; ++i) cache.setZero(&Q[i]);
    for (std::int32_t j = 0; j < q; ++j) cache.setOne(&Q[j * (m + 1)]);
    qrCompQy(cache, m, n, A, qraux, Q, q);

    if (economy && m > n) {                              // R := upper triangle of A
        for (std::int32_t j = 0; j < n; ++j) {
            for (std::int32_t i = 0; i <= j; ++i) R[i + j * n] = A[i + j * m];
            for (std::int32_t i = j + 1; i < n; ++i) cache.setZero(&R[i + j * n]);
        }
    } else {
        for (std::int32_t j = 0; j < n; ++j) {
            for (std::int32_t i = j + 1; i < m; ++i) cache.setZero(&A[i + j * m]);
        }
    }
    for (std::int32_t i = 0; i < n; ++i) E[i] = T(jpvt[i]) + T(1);
}

// Fit of a transformation to a point set: null vector of the constraints, exactly or by least squares, and the way back
// from normalized points. Kernels over plain arrays.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "dspqrfact.h"
#include "svdc.h"

/// The normalizations of both subsets of a fit. A subset whose points coincide (whose distances from the centroid sum to
/// 0) determines no scale; it keeps 1, which
/// leaves its centred points as they are, so that such a fit goes on and is judged by its distances like any other.
template <typename Tc>
struct Normalization {
    Tc scale1 = Tc(1);
    Tc scale2 = Tc(1);
    Tc cents1[2];  ///< (a, b)
    Tc cents2[2];  ///< (a, b)
};

/// Null vector of the constraints of a minimal set, through the projector onto the complement of their row space.
///
/// @tparam SAMPLE_SIZE  2, 3 or 4; minEqnNum = 2*SAMPLE_SIZE, colNum = minEqnNum + 1
/// @param qrCache       scalar operations of the QR factorization
/// @param constraint    in, minEqnNum x colNum, ROW-major; destroyed
/// @param h             out, colNum values; any scale
///
/// The constraints read column by column are their transpose A', whose Q (economy form) spans the row space of A.
/// h is the row of Q*Q' - I that holds its entry of largest magnitude.
template <std::int32_t SAMPLE_SIZE, typename Tc>
void solveMinimalSet(const QRFactRealInBRealFltSFcnCache<Tc, Tc, Tc>& qrCache, Tc* constraint, Tc* h)
{
    constexpr std::int32_t MIN_EQN_NUM = 2 * SAMPLE_SIZE;
    constexpr std::int32_t COL_NUM = MIN_EQN_NUM + 1;
    Tc Q[COL_NUM * MIN_EQN_NUM];
    Tc R[MIN_EQN_NUM * MIN_EQN_NUM];
    Tc E[MIN_EQN_NUM];
    Tc qraux[MIN_EQN_NUM];
    Tc work[MIN_EQN_NUM];
    std::int32_t jpvt[MIN_EQN_NUM] = {};
    qrFactor(qrCache, FixedSize<COL_NUM>{}, FixedSize<MIN_EQN_NUM>{}, Q, constraint, E, qraux, work, jpvt, R, true);

    Tc M[COL_NUM][COL_NUM];                              // M := Q*Q' - I
    Tc maxAbs = Tc(0);
    std::int32_t bestCol = 0;
    for (std::int32_t i = 0; i < COL_NUM; ++i) {
        for (std::int32_t j = 0; j < i; ++j) M[i][j] = M[j][i];  // the same products in the same order: never larger
        for (std::int32_t j = i; j < COL_NUM; ++j) {
            Tc sum = i == j ? Tc(-1) : Tc(0);
            for (std::int32_t l = 0; l < MIN_EQN_NUM; ++l) sum += Q[i + l * COL_NUM] * Q[j + l * COL_NUM];
            M[i][j] = sum;
            if (std::abs(sum) > maxAbs) {
                maxAbs = std::abs(sum);
                bestCol = i;
            }
        }
    }
    std::copy(M[bestCol], M[bestCol] + COL_NUM, h);
}

/// Work arrays of a least-squares fit to n pairs.
template <typename Tc>
struct LeastSquaresWork {
    Tc* constraint;      ///< 2n x colNum: the constraints column by column, as the decomposition takes them
    Tc* factor;          ///< 2n x colNum: in, the constraints row by row; then the left singular vectors
    Tc* singularValues;  ///< at least colNum values
    Tc* work;            ///< 2n values
};

/// Least-squares null vector of the constraints of n pairs: the right singular vector of the smallest singular value.
///
/// @tparam SAMPLE_SIZE  2, 3 or 4; colNum = 2*SAMPLE_SIZE + 1
/// @param n             number of pairs, above SAMPLE_SIZE
/// @param arrays        work arrays, factor filled with the constraints
/// @param h             out, colNum values of unit norm; left alone on failure
/// @return false when the decomposition does not converge or meets a value that is not finite
template <std::int32_t SAMPLE_SIZE, typename Tc>
bool solveLargerSet(std::int32_t n, const LeastSquaresWork<Tc>& arrays, Tc* h)
{
    constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;
    const std::int32_t eqnNum = 2 * n;
    Tc* element = arrays.constraint;
    for (std::int32_t c = 0; c < COL_NUM; ++c) {
        for (std::int32_t r = 0; r < eqnNum; ++r) *element++ = arrays.factor[r * COL_NUM + c];
    }
    Tc e[COL_NUM];
    Tc V[COL_NUM * COL_NUM];
    if (svdc(arrays.constraint, eqnNum, COL_NUM, arrays.singularValues, e, arrays.work, arrays.factor, V, true) != 0) {
        return false;
    }
    constexpr std::int32_t BEST_COL = COL_NUM - 1;
    std::copy(V + BEST_COL * COL_NUM, V + BEST_COL * COL_NUM + COL_NUM, h);
    return true;
}

/// Undoes the normalizations: the compact transformation of the input points, t = inv(N2) * H * N1.
///
/// @tparam SAMPLE_SIZE  2, 3 or 4; colNum = 2*SAMPLE_SIZE + 1
/// @param h             in, colNum values: null vector of the constraints of the normalized points
/// @param norm          the normalizations N1 and N2
/// @param t             out, colNum values, not yet scaled to a last value of 1. A scale that is 0 or not finite
///                      propagates
template <std::int32_t SAMPLE_SIZE, typename Tc>
inline void denormalizeTForm(const Tc* h, const Normalization<Tc>& norm, Tc* t)
{
    const Tc oneDivS2 = Tc(1) / norm.scale2;
    const Tc s1DivS2 = oneDivS2 * norm.scale1;
    const Tc c1a = norm.cents1[0];
    const Tc c1b = norm.cents1[1];
    const Tc c2a = norm.cents2[0];
    const Tc c2b = norm.cents2[1];
    if constexpr (SAMPLE_SIZE == 2) {
        t[0] = s1DivS2 * h[0];
        t[1] = s1DivS2 * h[1];
        t[2] = ((h[4] * c2a - t[0] * c1a) - t[1] * c1b) + oneDivS2 * h[2];
        t[3] = ((h[4] * c2b - t[0] * c1b) + t[1] * c1a) + oneDivS2 * h[3];
        t[4] = h[4];
    } else if constexpr (SAMPLE_SIZE == 3) {
        t[0] = s1DivS2 * h[0];
        t[1] = s1DivS2 * h[1];
        t[2] = ((c2a * h[6] - c1a * t[0]) - t[1] * c1b) + oneDivS2 * h[2];
        t[3] = s1DivS2 * h[3];
        t[4] = s1DivS2 * h[4];
        t[5] = ((c2b * h[6] - c1a * t[3]) - t[4] * c1b) + oneDivS2 * h[5];
        t[6] = h[6];
    } else {
        const Tc q0 = s1DivS2 * h[0];
        const Tc q1 = s1DivS2 * h[1];
        const Tc q3 = s1DivS2 * h[3];
        const Tc q4 = s1DivS2 * h[4];
        t[6] = norm.scale1 * h[6];
        t[7] = norm.scale1 * h[7];
        t[8] = h[8] - (t[6] * c1a + t[7] * c1b);
        t[2] = ((t[8] * c2a - q0 * c1a) - q1 * c1b) + oneDivS2 * h[2];
        t[5] = ((t[8] * c2b - q3 * c1a) - q4 * c1b) + oneDivS2 * h[5];
        t[0] = t[6] * c2a + q0;
        t[1] = t[7] * c2a + q1;
        t[3] = t[6] * c2b + q3;
        t[4] = t[7] * c2b + q4;
    }
}

/// Scales a compact transformation to a last value of 1.
///
/// @return false, t left alone, when the last value is 0; a NaN is no failure and makes all other values NaN
template <std::int32_t COL_NUM, typename Tc>
inline bool scaleToLastOne(Tc* t)
{
    if (t[COL_NUM - 1] == Tc(0)) return false;
    const Tc weight = Tc(1) / t[COL_NUM - 1];
    for (std::int32_t i = 0; i < COL_NUM - 1; ++i) t[i] *= weight;
    t[COL_NUM - 1] = Tc(1);
    return true;
}

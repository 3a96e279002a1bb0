// Measures of a candidate: distances of all pairs, truncated sum, order statistic, inliers, and the adaptive loop number.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "szelesttform_convert.h"
#include "szelesttform_points.h"

/// A candidate transformation to which pairs are measured.
///
/// Both rows of a pair have terms of the same kind, so they are multiplied side by side. When every value of h is finite,
/// the entries that are 0 for every pair are left out and those that are 1 or -1 are added without a product: each sum has
/// the same value. The order of each row's sum is that of its columns.
template <std::int32_t COL_NUM, typename Tc>
class FiniteCandidate {
public:
    /// @param h  in, COL_NUM finite values
    explicit FiniteCandidate(const Tc* h)
    {
        for (std::int32_t t = 0; t < TERMS.num; ++t) mH[t] = Lanes{h[TERMS.cols[t][0]], h[TERMS.cols[t][1]]};
        mH[CONSTANT_TERM][0] = -mH[CONSTANT_TERM][0];
    }

    /// Squared algebraic distance of the pair whose two constraint rows begin here.
    Tc distance(const Tc* rows) const
    {
        Lanes s = product(rows, 0);                      // not 0 + product: only the sign of a zero can differ
        for (std::int32_t t = 1; t < TERMS.num; ++t) s += t == CONSTANT_TERM ? mH[t] : product(rows, t);
        s *= s;
        return s[0] + s[1];
    }

private:
    static constexpr ConstraintTerms TERMS = CONSTRAINT_TERMS[(COL_NUM - 5) / 2];
    using Lanes __attribute__((vector_size(2 * sizeof(Tc)))) = Tc;  ///< of row 2i and of row 2i + 1

    Lanes product(const Tc* rows, std::int32_t t) const
    {
        return Lanes{rows[TERMS.cols[t][0]], rows[COL_NUM + TERMS.cols[t][1]]} * mH[t];
    }

    Lanes mH[6];
};

template <std::int32_t COL_NUM, typename Tc>
inline bool isFiniteCandidate(const Tc* tformCompact)
{
    return std::all_of(tformCompact, tformCompact + COL_NUM, [](Tc value) { return std::isfinite(value); });
}

/// Squared algebraic distance of every point pair to one candidate transformation.
///
/// @tparam COL_NUM      5, 7 or 9 (similarity, affine, projective)
/// @param constraint    in, 2*ptsNum x COL_NUM, ROW-major, as makeConstraintMatrix writes it; rows 2i and 2i + 1 belong
///                      to pair i
/// @param ptsNum        number of pairs
/// @param tformCompact  in, COL_NUM values, the last one 1
/// @param distance      out, ptsNum values; similarity, affine: squared point units; projective: the same times the
///                      squared denominator
///
/// A NaN in a row or in the candidate makes the distance NaN. Columns ascending; the square of row 2i is added first.
template <std::int32_t COL_NUM, typename Tc>
inline void computeDistances(const Tc* constraint, std::int32_t ptsNum, const Tc* tformCompact, Tc* distance)
{
    if (isFiniteCandidate<COL_NUM>(tformCompact)) {
        const FiniteCandidate<COL_NUM, Tc> candidate(tformCompact);
        for (std::int32_t i = 0; i < ptsNum; ++i) distance[i] = candidate.distance(constraint + 2 * i * COL_NUM);
        return;
    }
    for (std::int32_t i = 0; i < ptsNum; ++i) {
        const Tc* const row = constraint + 2 * i * COL_NUM;
        Tc s0 = Tc(0);
        Tc s1 = Tc(0);
        for (std::int32_t k = 0; k < COL_NUM; ++k) {
            s0 += row[k] * tformCompact[k];
            s1 += row[COL_NUM + k] * tformCompact[k];
        }
        distance[i] = s0 * s0 + s1 * s1;
    }
}

/// Score of the distance-threshold method: every pair contributes its distance, at most disThr. NaN counts as disThr.
template <typename Tc>
Tc sumTruncatedDistances(const Tc* distance, std::int32_t ptsNum, Tc disThr)
{
    Tc inlierDis = Tc(0);
    for (std::int32_t i = 0; i < ptsNum; ++i) inlierDis += disThr > distance[i] ? distance[i] : disThr;
    return inlierDis;
}

/// Distances and score of the distance-threshold method in one pass, so that the sum waits for nothing.
///
/// @param limit  the pass may end once the score has reached it: contributions are not negative, so that no later sum
///               falls below it again. Infinity measures every pair. Needs disThr >= 0 when finite
/// @return the score, or a part of it that is at least limit; distances after that part are not written
template <std::int32_t COL_NUM, typename Tc>
inline Tc scoreDistances(const Tc* constraint, std::int32_t ptsNum, const Tc* tformCompact, Tc disThr, Tc limit,
                         Tc* distance)
{
    if (!isFiniteCandidate<COL_NUM>(tformCompact)) {
        computeDistances<COL_NUM>(constraint, ptsNum, tformCompact, distance);
        return sumTruncatedDistances(distance, ptsNum, disThr);
    }
    constexpr std::int32_t BLOCK = 32;                   // pairs between two looks at the limit
    const FiniteCandidate<COL_NUM, Tc> candidate(tformCompact);
    Tc inlierDis = Tc(0);
    for (std::int32_t first = 0; first < ptsNum && !(inlierDis >= limit); first += BLOCK) {
        const std::int32_t end = std::min(ptsNum, first + BLOCK);
        for (std::int32_t i = first; i < end; ++i) {
            const Tc dis = candidate.distance(constraint + 2 * i * COL_NUM);
            distance[i] = dis;
            inlierDis += disThr > dis ? dis : disThr;
        }
    }
    return inlierDis;
}

/// Lists the pairs at a distance of at most disThr, in increasing order. @return their number
template <typename Tc>
std::int32_t collectInliers(const Tc* distance, std::int32_t ptsNum, Tc disThr, std::uint32_t* inliers)
{
    std::int32_t inlierNum = 0;
    for (std::int32_t i = 0; i < ptsNum; ++i) {
        inliers[inlierNum] = static_cast<std::uint32_t>(i);  // stays only if the next line counts it
        inlierNum += distance[i] <= disThr ? 1 : 0;
    }
    return inlierNum;
}

/// k-th smallest of n values, k counted from 0.
///
/// Method: quickselect with median-of-three pivots (Hoare, Algorithm 65, CACM 1961).
///
/// @param a  in/out, n + 1 elements: the values, reordered, and one element for the pivot
template <typename Tc>
Tc selectKth(Tc* a, std::int32_t n, std::int32_t k)
{
    const auto swapIfGreater = [a](std::int32_t i, std::int32_t j) {
        if (a[i] > a[j]) std::swap(a[i], a[j]);
    };
    std::int32_t left = 0;
    std::int32_t right = n - 1;
    while (right > left + 1) {
        const std::int32_t mid = (left + right) / 2;
        swapIfGreater(left, mid);
        swapIfGreater(left, right);
        swapIfGreater(mid, right);
        std::swap(a[mid], a[right - 1]);
        a[n] = a[right - 1];                             // the pivot, also a stop for the upward scan

        std::int32_t i = left;
        std::int32_t j = right - 1;
        for (;;) {
            do ++i; while (a[i] < a[n]);
            if (i > n - 1) i = n - 1;
            do --j; while (a[j] > a[n]);                 // stops at left, which is not greater than the pivot
            if (j < 0) j = 0;
            if (i >= j) break;
            std::swap(a[i], a[j]);
        }
        std::swap(a[i], a[right - 1]);
        if (i >= k) right = i - 1;
        if (i <= k) left = i + 1;
    }
    if (right - left == 1) swapIfGreater(left, right);
    return a[k];
}

/// Median of the distances: the middle one, or the mean of the two middle ones.
///
/// @param distance  in, ptsNum values
/// @param scratch   scratch, ptsNum + 1 values
template <typename Tc>
Tc medianDistance(const Tc* distance, std::int32_t ptsNum, Tc* scratch)
{
    const std::int32_t halfPtsNum = static_cast<std::int32_t>(ptsNum * 0.5);
    std::copy(distance, distance + ptsNum, scratch);
    Tc med = selectKth(scratch, ptsNum, halfPtsNum);
    if (ptsNum % 2 == 0) {
        std::copy(distance, distance + ptsNum, scratch);
        med = (selectKth(scratch, ptsNum, halfPtsNum - 1) + med) * Tc(0.5);
    }
    return med;
}

/// Number of samplings after which a sample of inliers only has been drawn with the desired confidence.
///
/// Method: Fischler, Bolles, Random sample consensus, CACM 1981: log(1 - confidence) / log(1 - share^sampleSize).
///
/// @param confidence  percent
/// @return the number; not above 0 when it says nothing: no inlier, only inliers, or a confidence of 100
template <typename Tc>
std::int32_t samplingNumFor(Tc confidence, std::int32_t inlierNum, std::int32_t ptsNum, std::int32_t sampleSize)
{
    const Tc num = static_cast<Tc>(std::log(1.0 - static_cast<double>(confidence) * 0.01));
    Tc ratio = static_cast<Tc>(inlierNum) / static_cast<Tc>(ptsNum);
    Tc p = Tc(1);                                        // p := ratio^sampleSize
    for (std::int32_t e = sampleSize;;) {
        if (e % 2 != 0) p *= ratio;
        e /= 2;
        if (e == 0) break;
        ratio *= ratio;
    }
    const Tc den = std::log(Tc(1) - p);
    return truncateTo<std::int32_t>(std::ceil(num / den));
}

/// Whether the inliers reach a percentage of the pairs; evaluated in double for every computation type.
template <typename Tc>
bool reachesPercentage(std::int32_t inlierNum, std::int32_t ptsNum, Tc percentage)
{
    return static_cast<double>(inlierNum) >= static_cast<double>(percentage) * 0.01 * static_cast<double>(ptsNum);
}

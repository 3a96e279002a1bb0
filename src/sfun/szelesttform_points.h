// Point sets as the engine reads them: internal coordinates, normalization, and the homogeneous constraints of a pair.
// Kernels over plain arrays; they allocate nothing and report nothing.
#pragma once

#include <cmath>
#include <cstdint>

/// Where coordinates (a, b) of a point lie: a is x and b is y for points in columns, a is y and b is x for points in rows.
struct PointLayout {
    std::int32_t offsetA;
    std::int32_t offsetB;
    std::int32_t offsetPoint;  ///< from one point to the next

    /// @param isInRows    points in rows: all x, then all y; else x and y of each point in turn
    /// @param leadingDim  number of points of the array; matters for points in rows only
    static constexpr PointLayout of(bool isInRows, std::int32_t leadingDim)
    {
        return isInRows ? PointLayout{leadingDim, 0, 1} : PointLayout{0, 1, 2};
    }
};

/// Moves the centroid of a point subset to the origin and scales it to a mean distance of sqrt(2) from there.
///
/// Method: Hartley, In defense of the eight-point algorithm, PAMI 1997 (isotropic scaling).
///
/// @tparam Ti, Tc     element type of the points; computation type, float or double
/// @param points      in, a point set in the layout
/// @param layout      layout of points
/// @param samples     in, n indices into the point set
/// @param n           number of indices
/// @param out         out, 2*n values: the normalized subset
/// @param layoutOut   layout of out, leading dimension n
/// @param scale       out, left alone when the distances from the centroid sum to 0, as those of coinciding points do (up
///                    to the rounding of the centroid): out is centred only then
/// @param cents       out, centroid (a, b)
///
/// A normalized point is scale * (point - cents). Values that are not finite propagate.
template <typename Ti, typename Tc>
inline void normPts(const Ti* points, const PointLayout& layout, const std::uint32_t* samples, std::int32_t n, Tc* out,
                    const PointLayout& layoutOut, Tc* scale, Tc* cents)
{
    cents[0] = Tc(0);
    cents[1] = Tc(0);
    for (std::int32_t i = 0; i < n; ++i) {
        const Ti* const point = points + std::int32_t(samples[i]) * layout.offsetPoint;
        Tc* const target = out + i * layoutOut.offsetPoint;
        const Tc a = static_cast<Tc>(point[layout.offsetA]);
        const Tc b = static_cast<Tc>(point[layout.offsetB]);
        target[layoutOut.offsetA] = a;
        target[layoutOut.offsetB] = b;
        cents[0] += a;
        cents[1] += b;
    }
    cents[0] /= static_cast<Tc>(n);
    cents[1] /= static_cast<Tc>(n);

    Tc sumDis = Tc(0);
    for (std::int32_t i = 0; i < n; ++i) {
        Tc* const target = out + i * layoutOut.offsetPoint;
        const Tc a = target[layoutOut.offsetA] - cents[0];
        const Tc b = target[layoutOut.offsetB] - cents[1];
        target[layoutOut.offsetA] = a;
        target[layoutOut.offsetB] = b;
        sumDis += std::sqrt(a * a + b * b);
    }
    if (sumDis == Tc(0)) return;

    *scale = (std::sqrt(Tc(2)) * static_cast<Tc>(n)) / sumDis;
    for (std::int32_t i = 0; i < 2 * n; ++i) out[i] *= *scale;
}

/// The entries of both rows of a pair that are not 0 for every pair, in ascending order of columns. Term CONSTANT_TERM is
/// -1 in row 2i and 1 in row 2i + 1; the others vary.
struct ConstraintTerms {
    std::int32_t num;          ///< terms of each row
    std::int32_t cols[6][2];   ///< columns of a term in row 2i and in row 2i + 1
};
constexpr std::int32_t CONSTANT_TERM = 2;

/// Terms by [sampleSize - 2]; they describe what makeConstraintMatrix writes.
constexpr ConstraintTerms CONSTRAINT_TERMS[3] = {
    {4, {{0, 0}, {1, 1}, {3, 2}, {4, 4}}},
    {4, {{3, 0}, {4, 1}, {5, 2}, {6, 6}}},
    {6, {{3, 0}, {4, 1}, {5, 2}, {6, 6}, {7, 7}, {8, 8}}},
};

/// Rows of the homogeneous system A*h = 0 that n point pairs put on a compact transformation h: two rows a pair.
///
/// @tparam Tp, Tc      element type of the points; computation type
/// @param p1, p2       in, point sets in the layout; pair i maps point i of p1 to point i of p2
/// @param layout       layout of both
/// @param sampleSize   2 similarity, 3 affine, 4 projective; std::int32_t or FixedSize
/// @param n            number of pairs
/// @param out          out, 2*n rows of 2*sampleSize + 1 values, ROW-major. Row 2i holds coordinate b of the match of
///                     pair i, row 2i + 1 its coordinate a
template <typename Tp, typename Tc, typename SampleSize>
inline void makeConstraintMatrix(const Tp* p1, const Tp* p2, const PointLayout& layout, SampleSize sampleSize,
                                 std::int32_t n, Tc* out)
{
    constexpr Tc ZERO = Tc(0);
    constexpr Tc ONE = Tc(1);
    const auto put = [&out](auto... values) { ((*out++ = values), ...); };
    for (std::int32_t i = 0; i < n; ++i) {
        const std::int32_t base = i * layout.offsetPoint;
        const Tc a1 = static_cast<Tc>(p1[base + layout.offsetA]);
        const Tc b1 = static_cast<Tc>(p1[base + layout.offsetB]);
        const Tc a2 = static_cast<Tc>(p2[base + layout.offsetA]);
        const Tc b2 = static_cast<Tc>(p2[base + layout.offsetB]);
        if (sampleSize == 2) {
            put(-b1, a1, ZERO, -ONE, b2);
            put(a1, b1, ONE, ZERO, -a2);
        } else if (sampleSize == 3) {
            put(ZERO, ZERO, ZERO, -a1, -b1, -ONE, b2);
            put(a1, b1, ONE, ZERO, ZERO, ZERO, -a2);
        } else {
            put(ZERO, ZERO, ZERO, -a1, -b1, -ONE, b2 * a1, b2 * b1, b2);
            put(a1, b1, ONE, ZERO, ZERO, ZERO, -a2 * a1, -a2 * b1, -a2);
        }
    }
}

#include "stabilise/trajectory.h"

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

using Complex = std::complex<double>;

Motion operator+(const Motion& p, const Motion& q) { return {p.logA + q.logA, p.t + q.t}; }
Motion operator-(const Motion& p, const Motion& q) { return {p.logA - q.logA, p.t - q.t}; }
Motion operator*(double factor, const Motion& p) { return {factor * p.logA, factor * p.t}; }

bool isFinite(Complex z) noexcept
{
    return std::isfinite(z.real()) && std::isfinite(z.imag());
}

/// Weights of the neighbours at distance 0, 1, ... radius; with both sides they sum to 1.
std::vector<double> weightsOf(Smoothing smoothing, std::size_t radius, std::size_t cutRadius)
{
    std::vector<double> weights;
    double sum = 0.0;
    for (std::size_t i = 0; i <= cutRadius; ++i) {
        const double inSigmas = i == 0 ? 0.0 : 3.0 * static_cast<double>(i) / static_cast<double>(radius);
        weights.push_back(smoothing == Smoothing::Average ? 1.0 : std::exp(-0.5 * inSigmas * inSigmas));
        sum += (i == 0 ? 1.0 : 2.0) * weights.back();
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

}  // namespace

std::optional<Motion> motionOf(const PointMap& map, Complex centre)
{
    const auto p = map.apply(centre.real(), centre.imag());
    const double u = p[0] / p[2], v = p[1] / p[2];
    const double ux = (map.m[0] - u * map.m[6]) / p[2], uy = (map.m[1] - u * map.m[7]) / p[2];   // derivative at the centre
    const double vx = (map.m[3] - v * map.m[6]) / p[2], vy = (map.m[4] - v * map.m[7]) / p[2];
    const Motion motion{std::log(0.5 * Complex(ux + vy, vx - uy)), Complex(u, v) - centre};
    if (!(ux * vy - uy * vx > 0.0) || !isFinite(motion.logA) || !isFinite(motion.t))
        return std::nullopt;
    return motion;
}

std::vector<Motion> bridged(const std::vector<std::optional<Motion>>& motions)
{
    std::vector<Motion> filled;
    std::optional<std::size_t> lastIdx;                  // of the known motion before
    for (std::size_t k = 0; k < motions.size(); ++k) {
        if (!motions[k]) {
            filled.push_back({});
            continue;
        }
        filled.push_back(*motions[k]);
        for (std::size_t i = lastIdx.value_or(k) + 1; i < k; ++i) {
            const double share = static_cast<double>(i - *lastIdx) / static_cast<double>(k - *lastIdx);
            filled[i] = (1.0 - share) * filled[*lastIdx] + share * filled[k];
        }
        lastIdx = k;
    }
    return filled;
}

std::vector<Motion> chained(const std::vector<Motion>& motions)
{
    std::vector<Motion> path{{}};
    for (const Motion& motion : motions)
        path.push_back({path.back().logA + motion.logA, std::exp(motion.logA) * path.back().t + motion.t});
    return path;
}

std::vector<Motion> smoothed(const std::vector<Motion>& path, Smoothing smoothing, std::size_t radius)
{
    if (path.size() < 2)
        return path;
    const std::size_t lastIdx = path.size() - 1;
    const std::vector<double> weights = weightsOf(smoothing, radius, std::min(radius, lastIdx));
    const auto before = [&path](std::size_t k, std::size_t i) {      // element k - i
        return i <= k ? path[k - i] : 2.0 * path.front() - path[i - k];
    };
    const auto after = [&path, lastIdx](std::size_t k, std::size_t i) {
        return k + i <= lastIdx ? path[k + i] : 2.0 * path.back() - path[2 * lastIdx - k - i];
    };
    std::vector<Motion> smooth;
    for (std::size_t k = 0; k < path.size(); ++k) {
        Motion sum = weights[0] * path[k];
        for (std::size_t i = 1; i < weights.size(); ++i)
            sum = sum + weights[i] * (before(k, i) + after(k, i));
        smooth.push_back(sum);
    }
    return smooth;
}

PointMap correctionOf(const Motion& path, const Motion& smooth, Complex centre)
{
    const Complex a = std::exp(smooth.logA - path.logA);
    const Complex b = centre + smooth.t - a * (centre + path.t);     // z -> a * z + b
    PointMap map;
    map.m = {a.real(), 0.0 - a.imag(), b.real(), a.imag(), a.real(), b.imag(), 0.0, 0.0, 1.0};
    return map;
}

}  // namespace esttform::app

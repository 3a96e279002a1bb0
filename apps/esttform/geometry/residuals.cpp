#include "geometry/residuals.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

/// Share of the values that is left out at either end of a range.
constexpr double TAIL_SHARE = 0.02;

}  // namespace

std::vector<Residual> residualsOf(const std::vector<Pair>& pairs, const PointMap& map)
{
    std::vector<Residual> residuals;
    residuals.reserve(pairs.size());
    for (const Pair& pair : pairs) {
        const auto [xw, yw, w] = map.apply(pair[0], pair[1]);
        Residual r{xw / w, yw / w, 0.0, 0.0, 0.0, w};
        r.dx = pair[2] - r.x;
        r.dy = pair[3] - r.y;
        r.distance = std::hypot(r.dx, r.dy);
        residuals.push_back(r);
    }
    return residuals;
}

std::optional<DistanceQuantiles> quantilesOf(const std::vector<Residual>& residuals)
{
    if (residuals.empty())
        return std::nullopt;
    std::vector<double> distances;
    for (const Residual& residual : residuals)
        distances.push_back(std::isfinite(residual.distance) ? residual.distance : HUGE_VAL);
    std::sort(distances.begin(), distances.end());
    const auto quantile = [&](double share) { return distances[static_cast<std::size_t>(share * static_cast<double>(distances.size() - 1))]; };
    return DistanceQuantiles{quantile(0.5), quantile(0.9), quantile(1.0)};
}

std::string distanceText(double distance)
{
    return distance < SHOWN_MIN_DISTANCE ? "less than 0.001 px" : fmt::format("{:.3g} px", distance);
}

ThresholdRange thresholdRange(const std::vector<Residual>& residuals, const std::vector<std::uint8_t>& inliers, double threshold)
{
    std::vector<double> limits;
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        const double limit = std::sqrt(threshold) / std::fabs(residuals[i].w);
        if ((inliers.empty() || inliers[i] != 0) && std::isfinite(limit))
            limits.push_back(limit);
    }
    if (limits.empty())
        return {std::sqrt(threshold), std::sqrt(threshold)};
    std::sort(limits.begin(), limits.end());
    const auto tail = static_cast<std::size_t>(TAIL_SHARE * static_cast<double>(limits.size() - 1));
    return {limits[tail], limits[limits.size() - 1 - tail]};
}

}  // namespace esttform::app

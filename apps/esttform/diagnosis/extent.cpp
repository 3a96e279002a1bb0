#include "diagnosis/extent.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace esttform::app {

namespace {

/// Share of the points at either end of an axis that may be wild.
constexpr double TAIL_SHARE = 0.05;

}  // namespace

Extent extentOf(Points points)
{
    const auto num = static_cast<double>(points.size());
    for (auto it = points.rbegin(); it != points.rend(); ++it)   // from the first one, so that points that coincide give 0
        *it = {(*it)[0] - points.front()[0], (*it)[1] - points.front()[1]};
    const auto [mx, my] = middleOf(points);
    double xx = 0.0, xy = 0.0, yy = 0.0;
    for (const auto& [x, y] : points) {
        xx += (x - mx) * (x - mx) / num;
        xy += (x - mx) * (y - my) / num;
        yy += (y - my) * (y - my) / num;
    }
    const double half = (xx + yy) / 2.0;
    return {std::sqrt(std::max(0.0, half - std::hypot((xx - yy) / 2.0, xy))), std::sqrt(xx + yy)};
}

Points withoutWildOnes(Points points)
{
    const auto tailNum = static_cast<std::size_t>(TAIL_SHARE * static_cast<double>(points.size()));
    std::vector<double> values(points.size());
    for (std::size_t axis = 0; axis < 2 && tailNum > 0; ++axis) {
        std::transform(points.begin(), points.end(), values.begin(), [axis](const auto& point) { return point[axis]; });
        std::sort(values.begin(), values.end());
        const double lowest = values[tailNum], highest = values[values.size() - 1 - tailNum], reach = highest - lowest;
        for (auto& point : points)
            point[axis] = std::clamp(point[axis], lowest - reach, highest + reach);
    }
    return points;
}

std::int64_t placeNumOf(const Points& points, double distance)
{
    std::set<std::pair<double, double>> cells;
    for (const auto& [x, y] : points)
        cells.emplace(std::floor(x / distance), std::floor(y / distance));
    return static_cast<std::int64_t>(cells.size());
}

std::array<double, 2> middleOf(const Points& points)
{
    std::array<double, 2> middle{};
    for (const auto& [x, y] : points) {
        middle[0] += x / static_cast<double>(points.size());
        middle[1] += y / static_cast<double>(points.size());
    }
    return middle;
}

}  // namespace esttform::app

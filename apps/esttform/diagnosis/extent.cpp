#include "diagnosis/extent.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace esttform::app {

namespace {

/// Share of the points at either end of an axis that may be wild.
constexpr double TAIL_SHARE = 0.05;

/// Second central moments.
struct Spread {
    double xx = 0.0, xy = 0.0, yy = 0.0;
};

Spread spreadOf(Points points)
{
    const auto num = static_cast<double>(points.size());
    for (auto it = points.rbegin(); it != points.rend(); ++it)   // from the first one, so that points that coincide give 0
        *it = {(*it)[0] - points.front()[0], (*it)[1] - points.front()[1]};
    const auto [mx, my] = middleOf(points);
    Spread s;
    for (const auto& [x, y] : points) {
        s.xx += (x - mx) * (x - mx) / num;
        s.xy += (x - mx) * (y - my) / num;
        s.yy += (y - my) * (y - my) / num;
    }
    return s;
}

/// The points without the outermost ones by a measure of how far they reach from the middle.
template <class ReachFunction>
Points withoutOutermost(Points points, ReachFunction reach)
{
    const auto [mx, my] = middleOf(points);
    const auto reachOf = [&, mx = mx, my = my](const std::array<double, 2>& point) {
        const double length = reach(point[0] - mx, point[1] - my);
        return std::isnan(length) ? HUGE_VAL : length;           // coordinates so large that their differences are not finite
    };
    const auto kept = points.end() - static_cast<std::ptrdiff_t>(outermostNumOf(points.size()));
    std::nth_element(points.begin(), kept, points.end(), [&](const auto& a, const auto& b) { return reachOf(a) < reachOf(b); });
    points.erase(kept, points.end());
    return points;
}

}  // namespace

Extent extentOf(const Points& points)
{
    const auto [xx, xy, yy] = spreadOf(points);
    const double half = (xx + yy) / 2.0;
    return {std::sqrt(std::max(0.0, half - std::hypot((xx - yy) / 2.0, xy))), std::sqrt(xx + yy)};
}

std::size_t outermostNumOf(std::size_t pointNum) noexcept
{
    return 1 + pointNum / 50;
}

Extent innerExtentOf(const Points& points)
{
    if (points.size() <= outermostNumOf(points.size()))
        return {};
    const auto [xx, xy, yy] = spreadOf(points);
    const double direction = std::atan2(2.0 * xy, xx - yy) / 2.0, cosine = std::cos(direction), sine = std::sin(direction);
    const Points nearLine = withoutOutermost(points, [&](double dx, double dy) { return std::fabs(cosine * dy - sine * dx); });
    const Points nearMiddle = withoutOutermost(points, [](double dx, double dy) { return std::hypot(dx, dy); });
    return {extentOf(nearLine).narrow, extentOf(nearMiddle).whole};
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

#include "diagnosis/not_found.h"

#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace esttform::app {

namespace {

using Point = std::array<double, 2>;

/// Points whose distance from a line is below this share of the set's extent lie on it.
constexpr double ON_LINE_SHARE = 1e-9;

std::vector<Point> finitePoints(const std::vector<Pair>& pairs, std::size_t setIdx)
{
    std::vector<Point> points;
    for (const Pair& pair : pairs)
        if (isFinite(pair))
            points.push_back({pair[2 * setIdx], pair[2 * setIdx + 1]});
    return points;
}

/// @param points  not empty
bool isOnOneLine(const std::vector<Point>& points)
{
    const Point origin = points.front();
    const auto reach = [&origin](const Point& p) { return std::hypot(p[0] - origin[0], p[1] - origin[1]); };
    const Point far = *std::max_element(points.begin(), points.end(),
                                        [&](const Point& p, const Point& q) { return reach(p) < reach(q); });
    const double extent = reach(far);
    return std::all_of(points.begin(), points.end(), [&](const Point& p) {
        const double cross = (far[0] - origin[0]) * (p[1] - origin[1]) - (far[1] - origin[1]) * (p[0] - origin[0]);
        return std::fabs(cross) <= ON_LINE_SHARE * extent * extent;
    });
}

/// What makes any fit to these points impossible; empty if nothing does.
std::string faultOf(std::vector<Point> points, const char* setName, const BlockSetup& setup)
{
    if (setup.transformType > 1 && isOnOneLine(points))
        return fmt::format("the {} points lie on one line", setName);
    std::sort(points.begin(), points.end());
    const auto placeNum = std::unique(points.begin(), points.end()) - points.begin();
    if (placeNum < setup.sampleSize())
        return fmt::format("the {} points are at only {}, {} are needed", setName,
                           counted(placeNum, "different place"), setup.sampleSize());
    return {};
}

/// The rules of a robust search that leave no result; which of them did, the outputs do not tell.
std::string rulesThatRemain(const BlockSetup& setup, OptionSpelling spelling)
{
    const std::string cure = setup.threshold() ? fmt::format(" (try a larger {})", spelling("threshold-px")) : "";
    return fmt::format("one of three: the first sample could not be fitted (try another {}), no candidate had {} inliers{}, or the fit "
                       "to the inliers failed (try another {})", spelling("seed"), setup.sampleSize(), cure, spelling("type"));
}

}  // namespace

std::string reasonNotFound(const std::vector<Pair>& pairs, const BlockSetup& setup, OptionSpelling spelling)
{
    const std::vector<Point> firstPoints = finitePoints(pairs, 0);
    const auto finiteNum = static_cast<std::int64_t>(firstPoints.size());
    if (finiteNum < std::max(1, setup.sampleSize()))
        return fmt::format("{} with finite coordinates, {} are needed", counted(finiteNum, "pair"), setup.sampleSize());
    if (const std::string fault = faultOf(firstPoints, "first", setup); !fault.empty())
        return fault;
    if (const std::string fault = faultOf(finitePoints(pairs, 1), "second", setup); !fault.empty())
        return fault;
    if (!setup.isRobust)
        return finiteNum < static_cast<std::int64_t>(pairs.size())
                   ? fmt::format("a coordinate that is not finite spoils the fit to all pairs; leave out {}", spelling("no-robust"))
                   : std::string("the fit to all pairs failed");
    return rulesThatRemain(setup, spelling);
}

}  // namespace esttform::app

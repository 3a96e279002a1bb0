#include "plot/plot_geometry.h"

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

/// Percentile, from either end, between which the bulk of the points lies.
constexpr double BULK_SHARE = 0.02;
/// Points farther from the bulk than this many times its spread are left out.
constexpr double FAR_SPREADS = 3.0;
/// Outlines may widen the picture by this share of the sets' extent to each side.
constexpr double OUTLINE_SHARE = 0.5;
/// Empty margin on each side.
constexpr double MARGIN_SHARE = 0.03;
/// Coordinates beyond this are never drawn: their differences might overflow.
constexpr double DRAWABLE_MAX = 1e100;
/// Pieces of an edge that is carried over.
constexpr int EDGE_PIECE_NUM = 64;
/// A point is this share of the centre's w from the horizon at least, else it is taken as beyond.
constexpr double HORIZON_SHARE = 1e-3;

struct Interval {
    double low, high;
};

/// Interval of the values that are not far from the others. Reorders the values.
Interval bulkOf(std::vector<double>& values)
{
    if (values.empty())
        return {-0.5, 0.5};
    std::sort(values.begin(), values.end());
    const auto cut = static_cast<std::size_t>(BULK_SHARE * static_cast<double>(values.size() - 1));
    const double low = values[cut], high = values[values.size() - 1 - cut];
    const double reach = FAR_SPREADS * (high - low);
    Interval bulk{high, low};
    for (const double value : values)
        if (value >= low - reach && value <= high + reach)
            bulk = {std::min(bulk.low, value), std::max(bulk.high, value)};
    if (bulk.low == bulk.high)
        bulk = {bulk.low - 0.5, bulk.high + 0.5};
    return bulk;
}

PlotBox widened(const PlotBox& box, double dx, double dy) noexcept
{
    return {box.left - dx, box.top - dy, box.right + dx, box.bottom + dy};
}

}  // namespace

PlotBox united(const PlotBox& a, const PlotBox& b) noexcept
{
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

PlotBox boxOfSet(const std::vector<Pair>& pairs, int setIdx)
{
    const std::size_t first = 2 * static_cast<std::size_t>(setIdx);
    std::vector<double> xs, ys;
    for (const Pair& pair : pairs)
        if (std::fabs(pair[first]) <= DRAWABLE_MAX && std::fabs(pair[first + 1]) <= DRAWABLE_MAX) {
            xs.push_back(pair[first]);
            ys.push_back(pair[first + 1]);
        }
    const Interval x = bulkOf(xs), y = bulkOf(ys);
    return {x.low, y.low, x.high, y.high};
}

Polyline outlineOf(const PlotBox& box)
{
    return {{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}, {box.left, box.top}};
}

std::vector<Polyline> carriedOutline(const PlotBox& box, const PointMap& map)
{
    const double centreW = map.apply(0.5 * (box.left + box.right), 0.5 * (box.top + box.bottom))[2];
    const Polyline corners = outlineOf(box);
    std::vector<Polyline> parts;
    bool isOpen = false;                                 // the last part can take another point
    for (std::size_t corner = 0; corner + 1 < corners.size(); ++corner)
        for (int piece = corner == 0 ? 0 : 1; piece <= EDGE_PIECE_NUM; ++piece) {
            const double t = static_cast<double>(piece) / EDGE_PIECE_NUM;
            const PlotPoint &from = corners[corner], &to = corners[corner + 1];
            const auto [xw, yw, w] = map.apply(from[0] + t * (to[0] - from[0]), from[1] + t * (to[1] - from[1]));
            const bool isInFront = w * centreW > HORIZON_SHARE * centreW * centreW && std::fabs(xw) <= DRAWABLE_MAX
                                   && std::fabs(yw) <= DRAWABLE_MAX;
            if (isInFront && !isOpen)
                parts.emplace_back();
            if (isInFront)
                parts.back().push_back({xw / w, yw / w});
            isOpen = isInFront;
        }
    return parts;
}

PlotBox viewOf(const PlotBox& first, const PlotBox& second, const std::vector<Polyline>& outlines)
{
    const PlotBox points = united(first, second);
    const PlotBox limit = widened(points, OUTLINE_SHARE * points.width(), OUTLINE_SHARE * points.height());
    PlotBox view = points;
    for (const Polyline& outline : outlines)
        for (const PlotPoint& p : outline) {
            const double x = std::clamp(p[0], limit.left, limit.right), y = std::clamp(p[1], limit.top, limit.bottom);
            view = united(view, {x, y, x, y});
        }
    const double margin = MARGIN_SHARE * std::max(view.width(), view.height());
    return widened(view, margin, margin);
}

std::vector<double> ticksOf(double lowest, double highest, int wantedNum)
{
    const double wanted = (highest - lowest) / wantedNum;
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    const double ratio = wanted / power;
    const double step = power * (ratio < 1.5 ? 1.0 : ratio < 3.5 ? 2.0 : ratio < 7.5 ? 5.0 : 10.0);
    std::vector<double> ticks;
    for (double k = std::ceil(lowest / step); k * step <= highest; k += 1.0) {
        ticks.push_back(k * step + 0.0);
        if (ticks.size() > static_cast<std::size_t>(4 * wantedNum))
            break;                                       // the step is lost in the size of the numbers
    }
    return ticks;
}

}  // namespace esttform::app

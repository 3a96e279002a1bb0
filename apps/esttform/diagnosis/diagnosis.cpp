#include "diagnosis/diagnosis.h"

#include "diagnosis/chance.h"
#include "geometry/residuals.h"
#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace esttform::app {

namespace {

// ---- The limits of the rules

/// Results of chance that are accepted: one in a hundred such inputs.
constexpr double LOG10_CHANCE_MAX = -2.0;
/// Inliers may lie this many thresholds away in pixels, and a share of them farther.
constexpr double FAR_THRESHOLDS = 2.0;
constexpr double FAR_SHARE_MAX = 0.1;
/// Narrow extent of the inliers beside that of all points below which they lie on one place or line.
constexpr double SPREAD_MIN = 0.05;
/// Lengths may change by the first factor, and by the second one more in one direction than in the other.
constexpr double SCALE_MAX = 100.0;
constexpr double RATIO_MAX = 50.0;

using Points = std::vector<std::array<double, 2>>;

/// Standard deviation of points across their longest direction.
double narrowExtent(const Points& points)
{
    const auto num = static_cast<double>(points.size());
    double mx = 0.0, my = 0.0;
    for (const auto& [x, y] : points) {
        mx += x / num;
        my += y / num;
    }
    double xx = 0.0, xy = 0.0, yy = 0.0;
    for (const auto& [x, y] : points) {
        xx += (x - mx) * (x - mx) / num;
        xy += (x - mx) * (y - my) / num;
        yy += (y - my) * (y - my) / num;
    }
    const double half = (xx + yy) / 2.0;
    return std::sqrt(std::max(0.0, half - std::hypot((xx - yy) / 2.0, xy)));
}

/// The first or the second points of some pairs.
Points pointsOf(const std::vector<Pair>& pairs, std::size_t setIdx)
{
    Points points;
    for (const Pair& pair : pairs)
        points.push_back({pair[2 * setIdx], pair[2 * setIdx + 1]});
    return points;
}

/// Places that points are at, those nearer than a distance taken for one.
std::int64_t placeNumOf(const Points& points, double distance)
{
    std::set<std::pair<double, double>> cells;
    for (const auto& [x, y] : points)
        cells.emplace(std::floor(x / distance), std::floor(y / distance));
    return static_cast<std::int64_t>(cells.size());
}

/// Derivative of the mapped point by the point, at a point.
struct Jacobian {
    double xx, xy, yx, yy;
    double det() const noexcept { return xx * yy - xy * yx; }
    /// Larger singular value by the smaller one.
    double ratio() const noexcept
    {
        const double sum = xx * xx + xy * xy + yx * yx + yy * yy;
        const double root = std::sqrt(std::max(0.0, sum * sum - 4.0 * det() * det()));
        return std::sqrt((sum + root) / (sum - root));
    }
};

Jacobian jacobianAt(const PointMap& map, const std::array<double, 2>& point)
{
    const auto& m = map.m;
    const auto [xw, yw, w] = map.apply(point[0], point[1]);
    const double x = xw / w, y = yw / w;
    return {(m[0] - x * m[6]) / w, (m[1] - x * m[7]) / w, (m[3] - y * m[6]) / w, (m[4] - y * m[7]) / w};
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

// ---- What is measured

/// A step as the rules look at it.
struct Case {
    const std::vector<Pair>& pairs;      ///< all finite pairs
    std::vector<Pair> agreeing;          ///< inliers, or all pairs of a fit to all
    PointMap map;
    std::optional<double> threshold;     ///< squared; of the median method the largest distance of an inlier
    const BlockSetup& setup;
};

void warn(Diagnosis& diagnosis, const char* code, const char* title, std::string text)
{
    diagnosis.warnings.push_back({Severity::Warning, title, std::move(text), code});
}

void measureDistances(const Case& c, Diagnosis& diagnosis)
{
    std::vector<double> distances;
    for (const Residual& residual : residualsOf(c.agreeing, c.map))
        distances.push_back(std::isfinite(residual.distance) ? residual.distance : HUGE_VAL);
    std::sort(distances.begin(), distances.end());
    const auto quantile = [&](double share) { return distances[static_cast<std::size_t>(share * static_cast<double>(distances.size() - 1))]; };
    diagnosis.distances = DistanceQuantiles{quantile(0.5), quantile(0.9), quantile(1.0)};
    if (!c.threshold)
        return;
    const double limit = FAR_THRESHOLDS * std::sqrt(*c.threshold);
    const auto farNum = distances.end() - std::upper_bound(distances.begin(), distances.end(), limit);
    if (static_cast<double>(farNum) > FAR_SHARE_MAX * static_cast<double>(distances.size()))
        warn(diagnosis, "farInliers", "inliers far away",
             fmt::format("{} of {} inliers lie more than {:.3g} px from where TForm maps their partners: they are inliers by the "
                         "algebraic distance only, which is small near the horizon of a projective transformation; try a simpler "
                         "--type or more --max-samples", farNum, distances.size(), limit));
}

void measureChance(const Case& c, Diagnosis& diagnosis)
{
    const double chance = chanceOfInlier(c.pairs, c.map, *c.threshold);
    const auto pairNum = static_cast<std::int64_t>(c.pairs.size());
    const double placeSize = std::max(std::sqrt(*c.threshold), 1e-9);
    const std::int64_t placeNum = std::min(placeNumOf(pointsOf(c.agreeing, 0), placeSize), placeNumOf(pointsOf(c.agreeing, 1), placeSize));
    diagnosis.chanceNum = chance * static_cast<double>(pairNum);
    diagnosis.log10ChanceResults = log10ChanceResults(pairNum, placeNum, c.setup.sampleSize(), chance);
    if (*diagnosis.log10ChanceResults > LOG10_CHANCE_MAX)
        warn(diagnosis, "chance", "no more inliers than chance gives",
             fmt::format("{} at {}: wrong matches alone would give this transformation about {:.3g}; get better matches, or try "
                         "a simpler --type, a smaller threshold or more --max-samples",
                         counted(static_cast<std::int64_t>(c.agreeing.size()), "inlier"), counted(placeNum, "place"),
                         *diagnosis.chanceNum));
}

/// log(1 - P) / log(1 - s^k): samplings for confidence P to have drawn one sample of inliers only.
void measureSampling(const Case& c, Diagnosis& diagnosis)
{
    constexpr std::size_t SOURCE = 5, MAX_NUM = 6, NUM = 7, CONFIDENCE = 8;
    const auto& params = c.setup.params;
    const bool isAdaptive = c.setup.threshold() && static_cast<int>(params[SOURCE]) == 2;
    diagnosis.confidence = params[CONFIDENCE];
    diagnosis.sampleLimit = params[isAdaptive ? MAX_NUM : NUM];
    const double share = static_cast<double>(c.agreeing.size()) / static_cast<double>(c.pairs.size());
    const double isAllRight = std::pow(share, c.setup.sampleSize());
    const double needed = std::log1p(-0.01 * diagnosis.confidence) / std::log1p(-isAllRight);
    diagnosis.neededSampleNum = isAllRight < 1.0 ? std::ceil(needed) : 1.0;
}

void measureSpread(const Case& c, Diagnosis& diagnosis)
{
    for (const std::size_t setIdx : {std::size_t(0), std::size_t(1)}) {
        const double all = narrowExtent(pointsOf(c.pairs, setIdx));
        (setIdx == 0 ? diagnosis.spread1 : diagnosis.spread2) = all > 0.0 ? narrowExtent(pointsOf(c.agreeing, setIdx)) / all : 0.0;
    }
    if (std::min(*diagnosis.spread1, *diagnosis.spread2) < SPREAD_MIN)
        warn(diagnosis, "onePlace", "inliers on one place or line",
             fmt::format("the inliers extend over {:.2g} of the points' width in the first picture and {:.2g} in the second: away from "
                         "them the transformation is a guess", *diagnosis.spread1, *diagnosis.spread2));
}

void examineShape(const Case& c, Diagnosis& diagnosis)
{
    const Points points = pointsOf(c.agreeing, 0);
    double lowest = HUGE_VAL, highest = -HUGE_VAL;
    for (const auto& [x, y] : points) {
        const double w = c.map.apply(x, y)[2];
        lowest = std::min(lowest, w);
        highest = std::max(highest, w);
    }
    if (!(lowest * highest > 0.0)) {
        warn(diagnosis, "horizon", "horizon across the points",
             "the line that TForm maps to infinity runs between the points that it is to map: no picture shows such a plane");
        return;
    }
    const Jacobian jacobian = jacobianAt(c.map, middleOf(points));
    const double scale = std::sqrt(std::fabs(jacobian.det()));
    if (!(scale < SCALE_MAX && scale > 1.0 / SCALE_MAX) || !(jacobian.ratio() < RATIO_MAX))
        warn(diagnosis, "collapsed", "collapsed map",
             fmt::format("in the middle of the points lengths change by a factor of {:.3g}, in one direction {:.3g} times as much as "
                         "in the other", scale, jacobian.ratio()));
    else if (jacobian.det() < 0.0)
        warn(diagnosis, "mirrored", "mirrored map", "TForm turns the picture over, as no camera does; right only for a picture that "
                                                    "is mirrored itself");
}

}  // namespace

Diagnosis diagnose(const std::vector<Pair>& pairs, const StepResult& result, Layout layout, const BlockSetup& setup,
                   const std::string& reasonIfNone)
{
    Diagnosis diagnosis;
    diagnosis.pairNum = result.ptsNum;
    if (result.inliers != nullptr)
        diagnosis.inlierNum = result.inlierNum;
    if (!result.isFound()) {
        warn(diagnosis, "notFound", "no transformation", result.error ? result.error->text : reasonIfNone);
        return diagnosis;
    }
    std::vector<Pair> finite;
    Case c{finite, {}, mapOf(result, layout), setup.threshold(), setup};
    double largest = 0.0;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (!isFinite(pairs[i]))
            continue;
        finite.push_back(pairs[i]);
        const bool isAgreeing = result.inliers != nullptr ? result.inliers[i] != 0
                                                          : !c.threshold || algebraicDistance(pairs[i], c.map) <= *c.threshold;
        if (!isAgreeing)
            continue;
        c.agreeing.push_back(pairs[i]);
        largest = std::max(largest, algebraicDistance(pairs[i], c.map));
    }
    if (c.agreeing.empty())
        return diagnosis;
    if (setup.isRobust && !c.threshold)
        c.threshold = largest;                           // of the median method
    measureDistances(c, diagnosis);
    if (setup.isRobust) {
        measureChance(c, diagnosis);
        measureSampling(c, diagnosis);
        measureSpread(c, diagnosis);
    }
    examineShape(c, diagnosis);
    return diagnosis;
}

}  // namespace esttform::app

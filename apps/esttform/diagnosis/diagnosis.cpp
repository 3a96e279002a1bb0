#include "diagnosis/diagnosis.h"

#include "blockhost/dialog_params.h"
#include "diagnosis/chance.h"
#include "diagnosis/extent.h"
#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

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
/// The same in the first picture for a projective transformation, whose error grows with the square of the distance from the
/// inliers and not with the distance.
const double PROJECTIVE_SPREAD_MIN = std::sqrt(SPREAD_MIN);
/// Points that extend across their longest direction over less than this part of what they do along it lie on a line.
constexpr double LINE_WIDTH = 0.01;
/// Inliers of a similarity that are fewer than this share of the pairs, and narrower than this part of all points, are a strip.
constexpr double STRIP_SHARE = 0.1;
constexpr double STRIP_WIDTH = 0.1;
/// Pairs of a fit to all of them may lie this part of the points' extent away, and a share of them farther.
constexpr double MISFIT_DISTANCE = 0.06;
constexpr double MISFIT_SHARE_MAX = 0.1;
/// Lengths may change by the first factor, and by the second one more in one direction than in the other.
constexpr double SCALE_MAX = 100.0;
constexpr double RATIO_MAX = 50.0;

/// The first or the second points of some pairs.
Points pointsOf(const std::vector<Pair>& pairs, std::size_t setIdx)
{
    Points points;
    for (const Pair& pair : pairs)
        points.push_back({pair[2 * setIdx], pair[2 * setIdx + 1]});
    return points;
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

bool isSimilarity(const Case& c)
{
    return c.setup.transformType == static_cast<int>(TransformType::Similarity);
}

bool isLine(const Extent& extent)
{
    return extent.narrow < LINE_WIDTH * extent.whole;
}

void warnOfLine(Diagnosis& diagnosis)
{
    warn(diagnosis, "onePlace", "points on a line", "the first points lie on a line, which determines a similarity and no other "
                                                    "transformation; use --type similarity, or points away from the line");
}

/// Pairs that TForm misses by more than a distance in pixels.
std::int64_t farNumOf(const std::vector<Residual>& residuals, double limit)
{
    return std::count_if(residuals.begin(), residuals.end(), [limit](const Residual& r) { return !(r.distance <= limit); });
}

void examineDistances(const Case& c, const std::vector<Residual>& residuals, Diagnosis& diagnosis)
{
    const double limit = FAR_THRESHOLDS * std::sqrt(*c.threshold);
    const std::int64_t farNum = farNumOf(residuals, limit);
    if (static_cast<double>(farNum) > FAR_SHARE_MAX * static_cast<double>(residuals.size()))
        warn(diagnosis, "farInliers", "inliers far away",
             fmt::format("{} of {} inliers lie more than {:.3g} px from where TForm maps their partners: they are inliers by the "
                         "algebraic distance only, which is small near the horizon of a projective transformation; try a simpler "
                         "--type or more --max-samples", farNum, residuals.size(), limit));
}

/// Of a fit to all pairs, which takes every pair for a right match.
void examineFitToAll(const Case& c, const std::vector<Residual>& residuals, Diagnosis& diagnosis)
{
    const Extent extent1 = extentOf(withoutWildOnes(pointsOf(c.pairs, 0))), extent2 = extentOf(withoutWildOnes(pointsOf(c.pairs, 1)));
    if (!(std::min(extent1.whole, extent2.whole) > 0.0)) {
        warn(diagnosis, "onePlace", "points at one place", "the points of a picture coincide: they determine no more than a shift");
        return;
    }
    if (!isSimilarity(c) && isLine(extent1))
        warnOfLine(diagnosis);
    const double limit = MISFIT_DISTANCE * extent2.whole;
    const std::int64_t farNum = farNumOf(residuals, limit);
    if (static_cast<double>(farNum) > MISFIT_SHARE_MAX * static_cast<double>(residuals.size()))
        warn(diagnosis, "misfit", "pairs far from the fit",
             fmt::format("{} of {} lie more than {:.3g} px, 6 % of the points' extent, from where TForm maps their partners: wrong "
                         "matches, which pull the fit to themselves, or the wrong --type; leave out --no-robust", farNum,
                         counted(static_cast<std::int64_t>(residuals.size()), "pair"), limit));
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
        warn(diagnosis, "chance", "as few inliers as chance gives",
             fmt::format("{} at {}: among all samples of pairs that are all wrong, about {:.2g} would have as many; get better matches, "
                         "or try a simpler --type, a smaller threshold or more --max-samples",
                         counted(static_cast<std::int64_t>(c.agreeing.size()), "inlier"),
                         placeNum > 1 ? counted(placeNum, "place") : "1 place (nearer to each other than the threshold)",
                         std::pow(10.0, std::min(300.0, *diagnosis.log10ChanceResults))));
}

/// log(1 - P) / log(1 - s^k): samplings for confidence P to have drawn one sample of inliers only.
void measureSampling(const Case& c, Diagnosis& diagnosis)
{
    const auto& params = c.setup.params;
    const bool isAdaptive = c.setup.threshold() && std::trunc(params[SAMPLE_NUM_SOURCE]) == SAMPLE_NUM_FROM_CONFIDENCE;
    diagnosis.confidence = params[DESIRED_CONFIDENCE];
    diagnosis.sampleLimit = params[isAdaptive ? MAX_RANDOM_SAMPLING : NUM_RANDOM_SAMPLING];
    const double share = static_cast<double>(c.agreeing.size()) / static_cast<double>(diagnosis.pairNum);
    const double isAllRight = std::pow(share, c.setup.sampleSize());
    const double needed = std::log1p(-0.01 * diagnosis.confidence) / std::log1p(-isAllRight);
    diagnosis.neededSampleNum = isAllRight < 1.0 ? std::ceil(needed) : 1.0;
    diagnosis.isLimitDrawn = !isAdaptive || share == 1.0;     // a sample that all pairs agree with ends no search
}

void measureSpread(const Case& c, Diagnosis& diagnosis)
{
    bool isStrip = isSimilarity(c) && static_cast<double>(c.agreeing.size()) < STRIP_SHARE * static_cast<double>(c.pairs.size());
    std::array<double, 2> innerSpreads{};
    bool areOnLine = false;
    for (const std::size_t setIdx : {std::size_t(0), std::size_t(1)}) {
        // A similarity is determined by points on a line; the others need points off it.
        const auto reach = isSimilarity(c) ? &Extent::whole : &Extent::narrow;
        const Points inliers = pointsOf(c.agreeing, setIdx);
        const Extent all = extentOf(withoutWildOnes(pointsOf(c.pairs, setIdx))), inner = innerExtentOf(inliers);
        const auto shareOf = [&](const Extent& part) { return all.*reach > 0.0 ? std::min(1.0, part.*reach / (all.*reach)) : 0.0; };
        (setIdx == 0 ? diagnosis.spread1 : diagnosis.spread2) = shareOf(extentOf(inliers));
        innerSpreads[setIdx] = shareOf(inner);
        areOnLine = areOnLine || (setIdx == 0 && isLine(inner));
        isStrip = isStrip && inner.narrow < STRIP_WIDTH * all.narrow;
    }
    if (isStrip)
        warn(diagnosis, "strip", "inliers along a line",
             fmt::format("{} of {} pairs are inliers, all along one line: there every affine or mirrored map looks like a similarity; "
                         "try --type affine or projective", c.agreeing.size(), c.pairs.size()));
    const bool isProjective = c.setup.transformType == static_cast<int>(TransformType::Projective);
    if (innerSpreads[0] < (isProjective ? PROJECTIVE_SPREAD_MIN : SPREAD_MIN) || innerSpreads[1] < SPREAD_MIN)
        warn(diagnosis, "onePlace", "inliers on one place or line",
             fmt::format("but for {}, the inliers extend over {:.2g} of the points' width in the first picture and {:.2g} in the "
                         "second: away from them the transformation is a guess",
                         counted(static_cast<std::int64_t>(outermostNumOf(c.agreeing.size())), "pair"), innerSpreads[0], innerSpreads[1]));
    else if (!isSimilarity(c) && areOnLine)
        warnOfLine(diagnosis);
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
             std::isfinite(jacobian.ratio())
                 ? fmt::format("in the middle of the points lengths change by a factor of {:.3g}, in one direction {:.3g} times as "
                               "much as in the other", scale, jacobian.ratio())
                 : "in the middle of the points all or one direction is mapped to nothing, or to infinity");
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
    const PointMap map = mapOf(result, layout);
    if (!std::all_of(map.m.begin(), map.m.end(), [](double element) { return std::isfinite(element); })) {
        warn(diagnosis, "notFinite", "no finite transformation", "TForm has an element that is not finite: some points are too far away, "
                                                                 "or themselves not finite");
        return diagnosis;
    }
    std::vector<Pair> finite;
    Case c{finite, {}, map, setup.threshold(), setup};
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
    if (c.agreeing.empty()) {
        warn(diagnosis, "noInliers", "no pair agrees", "no pair lies within the threshold of where TForm maps its partner");
        return diagnosis;
    }
    if (setup.isRobust && !c.threshold)
        c.threshold = largest;                           // of the median method
    const std::vector<Residual> residuals = residualsOf(c.agreeing, c.map);
    diagnosis.distances = quantilesOf(residuals);
    if (!setup.isRobust) {
        examineFitToAll(c, residuals, diagnosis);
    } else {
        examineDistances(c, residuals, diagnosis);
        measureChance(c, diagnosis);
        measureSampling(c, diagnosis);
        measureSpread(c, diagnosis);
    }
    examineShape(c, diagnosis);
    return diagnosis;
}

}  // namespace esttform::app

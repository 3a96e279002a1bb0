#include "compare/compare.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

namespace esttform::app {

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();

double distanceBetween(const std::array<double, 3>& p, const std::array<double, 3>& q) noexcept
{
    if (!(p[2] > 0.0 && q[2] > 0.0))
        return INF;
    const double distance = std::hypot(p[0] / p[2] - q[0] / q[2], p[1] / p[2] - q[1] / q[2]);
    return std::isnan(distance) ? INF : distance;
}

/// What steps are matched by: file and number, the latter a frame's or a step's, and how often both have occurred before.
using Key = std::tuple<std::string, std::int64_t, int>;

struct Matching {
    bool isByFile, isByFrame;
};

std::map<Key, const ReadStep*> stepsByKey(const ReadResult& result, Matching matching)
{
    std::map<Key, const ReadStep*> steps;
    std::map<std::pair<std::string, std::int64_t>, int> occurrenceNums;
    for (const ReadStep& step : result.steps) {
        const std::pair place{matching.isByFile ? *step.file : "", matching.isByFrame ? *step.frame : step.step};
        steps.emplace(Key(place.first, place.second, occurrenceNums[place]++), &step);
    }
    return steps;
}

/// Whether all steps of both results have an optional field.
template <typename Field>
bool haveAll(const ReadResult& a, const ReadResult& b, Field ReadStep::*field)
{
    const auto has = [field](const ReadStep& step) { return (step.*field).has_value(); };
    return std::all_of(a.steps.begin(), a.steps.end(), has) && std::all_of(b.steps.begin(), b.steps.end(), has);
}

/// @param a, b  of the same size
Agreement agreementOf(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b)
{
    Agreement agreement;
    for (std::size_t i = 0; i < a.size(); ++i) {
        agreement.aNum += a[i] != 0;
        agreement.bNum += b[i] != 0;
        agreement.bothNum += a[i] != 0 && b[i] != 0;
    }
    return agreement;
}

StepComparison compareSteps(const ReadStep* a, const ReadStep* b, const Corners& corners)
{
    StepComparison c;
    const ReadStep& any = a != nullptr ? *a : *b;
    c.step = any.step;
    c.frame = any.frame;
    c.file = any.file;
    c.isInA = a != nullptr;
    c.isInB = b != nullptr;
    c.isFoundA = c.isInA && a->map;
    c.isFoundB = c.isInB && b->map;
    if (c.hasDistance()) {
        const auto distances = cornerDistances(*a->map, *b->map, corners);
        c.meanPx = distances[0];
        c.maxPx = distances[1];
    }
    if (c.isInA && c.isInB && !a->inliers.empty() && !b->inliers.empty()) {
        if (a->inliers.size() == b->inliers.size())
            c.inliers = agreementOf(a->inliers, b->inliers);
        else
            c.otherMaskSizes = {a->inliers.size(), b->inliers.size()};
    }
    return c;
}

}  // namespace

double Agreement::share() const noexcept
{
    const std::int64_t anyNum = aNum + bNum - bothNum;
    return anyNum > 0 ? static_cast<double>(bothNum) / static_cast<double>(anyNum) : 1.0;
}

std::array<double, 2> cornerDistances(const PointMap& a, const PointMap& b, const Corners& corners) noexcept
{
    double sum = 0.0, largest = 0.0;
    for (const double x : {corners.left, corners.right}) {
        for (const double y : {corners.top, corners.bottom}) {
            const double distance = distanceBetween(a.apply(x, y), b.apply(x, y));
            sum += distance;
            largest = std::max(largest, distance);
        }
    }
    return {sum / 4.0, largest};
}

std::vector<StepComparison> compareResults(const ReadResult& a, const ReadResult& b, const Corners& corners)
{
    const Matching matching{haveAll(a, b, &ReadStep::file), haveAll(a, b, &ReadStep::frame)};
    const auto ofA = stepsByKey(a, matching), ofB = stepsByKey(b, matching);
    auto keys = ofA;
    keys.insert(ofB.begin(), ofB.end());
    const auto stepOf = [](const auto& steps, const Key& key) {
        const auto place = steps.find(key);
        return place == steps.end() ? nullptr : place->second;
    };
    std::vector<StepComparison> comparisons;
    for (const auto& entry : keys)
        comparisons.push_back(compareSteps(stepOf(ofA, entry.first), stepOf(ofB, entry.first), corners));
    return comparisons;
}

}  // namespace esttform::app

#include "diagnosis/chance.h"

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

constexpr double LOG_OF_10 = 2.302585092994046;
/// Other second points that each first point is put beside: enough for an estimate, few enough for many pairs.
constexpr std::size_t MIN_SHIFT_NUM = 20, MAX_SHIFT_NUM = 200;
constexpr std::size_t TRIAL_NUM = 2'000'000;
/// Terms of a sum below this part of the largest one are left out.
constexpr double NEGLIGIBLE = 1e-12;

double logChoose(double n, double k)
{
    return std::lgamma(n + 1.0) - std::lgamma(k + 1.0) - std::lgamma(n - k + 1.0);
}

/// Logarithm of the probability of at least k successes in n independent trials.
double logTail(std::int64_t n, std::int64_t k, double p)
{
    if (k <= 0 || p >= 1.0 || static_cast<double>(k) <= static_cast<double>(n) * p)
        return 0.0;
    double sum = 0.0, term = 1.0;                        // beside the first term, which is the largest
    for (std::int64_t j = k; j <= n && term > NEGLIGIBLE; ++j) {
        sum += term;
        term *= static_cast<double>(n - j) / static_cast<double>(j + 1) * p / (1.0 - p);
    }
    const auto num = static_cast<double>(n), successes = static_cast<double>(k);
    return logChoose(num, successes) + successes * std::log(p) + (num - successes) * std::log1p(-p) + std::log(sum);
}

}  // namespace

double algebraicDistance(const Pair& pair, const PointMap& map) noexcept
{
    const auto [xw, yw, w] = map.apply(pair[0], pair[1]);
    const double dx = xw - pair[2] * w, dy = yw - pair[3] * w;
    return dx * dx + dy * dy;
}

double chanceOfInlier(const std::vector<Pair>& pairs, const PointMap& map, double threshold)
{
    const std::size_t n = pairs.size();
    if (n < 2)
        return 1.0;
    const std::size_t shiftNum = std::min(n - 1, std::clamp(TRIAL_NUM / n, MIN_SHIFT_NUM, MAX_SHIFT_NUM));
    const std::size_t stride = (n - 1) / shiftNum;
    std::size_t agreeNum = 0, trialNum = 0;
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t s = 1; s <= shiftNum; ++s) {
            const Pair& other = pairs[(i + s * stride) % n];
            if (other[2] == pairs[i][2] && other[3] == pairs[i][3])
                continue;                                // another match of the same second point
            ++trialNum;
            agreeNum += algebraicDistance({pairs[i][0], pairs[i][1], other[2], other[3]}, map) <= threshold ? 1 : 0;
        }
    }
    if (trialNum == 0)
        return 1.0;
    return static_cast<double>(std::max<std::size_t>(agreeNum, 1)) / static_cast<double>(trialNum);
}

double log10ChanceResults(std::int64_t pairNum, std::int64_t inlierNum, std::int64_t sampleSize, double chance)
{
    return (logChoose(static_cast<double>(pairNum), static_cast<double>(sampleSize))
            + logTail(pairNum - sampleSize, inlierNum - sampleSize, chance)) / LOG_OF_10;
}

}  // namespace esttform::app

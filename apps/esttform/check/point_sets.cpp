#include "check/point_sets.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace esttform::check {

using app::Pair;

namespace {

constexpr double SIDE = 120.0;
/// A wrong match is wrong by this much.
constexpr double WRONG_MIN = 20.0;

Pair anyPair(Random& random)
{
    return {random.between(0, SIDE), random.between(0, SIDE), random.between(0, SIDE), random.between(0, SIDE)};
}

/// The first point matched to any other.
Pair rematched(const Pair& pair, Random& random)
{
    return {pair[0], pair[1], random.between(0, SIDE), random.between(0, SIDE)};
}

template <typename Int>
double kept(double value)
{
    if (std::isnan(value))
        return 0.0;
    return std::clamp(std::round(value), static_cast<double>(std::numeric_limits<Int>::min()),
                      static_cast<double>(std::numeric_limits<Int>::max()));
}

double keptBy(DataType type, double value)
{
    switch (type) {
    case DataType::Double: return value;
    case DataType::Single: return static_cast<double>(static_cast<float>(value));
    case DataType::Int8: return kept<std::int8_t>(value);
    case DataType::Uint8: return kept<std::uint8_t>(value);
    case DataType::Int16: return kept<std::int16_t>(value);
    case DataType::Uint16: return kept<std::uint16_t>(value);
    case DataType::Int32: return kept<std::int32_t>(value);
    case DataType::Uint32: break;
    }
    return kept<std::uint32_t>(value);
}

}  // namespace

Matrix randomMatrix(int transformType, Random& random)
{
    const double angle = random.between(-0.3, 0.3), scale = random.between(0.8, 1.1);
    const double c = scale * std::cos(angle), s = scale * std::sin(angle);
    Matrix m{c, -s, random.between(0, 9), s, c, random.between(0, 9), 0, 0, 1};
    if (transformType >= 2)
        m[1] += random.between(-0.1, 0.1);
    if (transformType == 3)
        for (const std::size_t i : {6U, 7U})
            m[i] = random.between(-0.0005, 0.0005);
    return m;
}

std::vector<Pair> matchedPairs(const Matrix& m, int pairNum, int wrongEach, Random& random)
{
    std::vector<Pair> pairs;
    for (int i = 0; i < pairNum; ++i) {
        Pair p = anyPair(random);
        const double w = m[6] * p[0] + m[7] * p[1] + m[8];
        const double x = (m[0] * p[0] + m[1] * p[1] + m[2]) / w, y = (m[3] * p[0] + m[4] * p[1] + m[5]) / w;
        if (wrongEach == 0 || i % wrongEach != wrongEach - 1)
            p = {p[0], p[1], x, y};
        else
            while (std::hypot(p[2] - x, p[3] - y) < WRONG_MIN)
                p = rematched(p, random);
        pairs.push_back(p);
    }
    return pairs;
}

std::vector<Pair> oddPairs(int pairNum, Random& random)
{
    constexpr double INF = std::numeric_limits<double>::infinity(), NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
    constexpr double ODD[] = {NOT_A_NUMBER, INF, -INF, 1e308, -1e308, 1e-308, -0.0, 3e38, 4294967295.0, -2147483648.0};
    std::vector<Pair> pairs;
    const int kind = random.below(8);
    const Pair first = anyPair(random), second = anyPair(random);
    for (int i = 0; i < pairNum; ++i) {
        Pair p = anyPair(random);
        const double place = random.between(0, 1);
        switch (kind) {
        case 0: p = i < 2 ? p : pairs[static_cast<std::size_t>(random.below(2))]; break;
        case 1:
            for (std::size_t k = 0; k < 4; ++k)
                p[k] = first[k] + place * (second[k] - first[k]);
            break;
        case 2: p = first; break;
        case 3:
        case 4:
            if (random.below(kind) == 0)
                p[static_cast<std::size_t>(random.below(4))] = ODD[random.below(10)];
            break;
        case 5: std::for_each(p.begin(), p.end(), [](double& x) { x *= 1e150; }); break;
        case 6: std::for_each(p.begin(), p.end(), [](double& x) { x *= 1e-160; }); break;
        default: break;
        }
        pairs.push_back(p);
    }
    return pairs;
}

void fitInto(DataType type, std::vector<Pair>& pairs)
{
    for (Pair& pair : pairs)
        for (double& value : pair)
            value = keptBy(type, value);
}

}  // namespace esttform::check

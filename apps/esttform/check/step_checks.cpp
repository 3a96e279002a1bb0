// Steps: the right result on clean matches, the documented form of it on any others, and the same bits every time.
#include "check/checks.h"
#include "check/finding.h"
#include "check/life.h"
#include "check/point_sets.h"

#include <fmt/format.h>

#include <cmath>

namespace esttform::check {

namespace {

constexpr int TRUTH_NUM = 150;
constexpr int RANDOM_STEP_NUM = 400;

/// Element of TForm that stands at a place of the 3-by-3 matrix for columns.
double elementOf(const StepRecord& record, const Case& c, int row, int col)
{
    const bool isInRows = c.layout() == Layout::Rows;
    const int rowNum = isInRows ? 3 : c.transformType() == 3 ? 3 : 2;
    return record.tform[static_cast<std::size_t>(isInRows ? col + row * rowNum : row + col * rowNum)];
}

/// Largest distance, over the corners of the square of points, from where the matrix maps them.
double distanceFrom(const Matrix& m, const StepRecord& record, const Case& c)
{
    double largest = 0.0;
    for (const double x : {0.0, 120.0})
        for (const double y : {0.0, 120.0}) {
            const auto at = [&](int row) {
                return elementOf(record, c, row, 0) * x + elementOf(record, c, row, 1) * y + elementOf(record, c, row, 2);
            };
            const double w = c.transformType() == 3 ? at(2) : 1.0, trueW = m[6] * x + m[7] * y + m[8];
            const double dx = at(0) / w - (m[0] * x + m[1] * y + m[2]) / trueW;
            const double dy = at(1) / w - (m[3] * x + m[4] * y + m[5]) / trueW;
            largest = std::max(largest, std::hypot(dx, dy));
        }
    return largest;
}

}  // namespace

std::string checkTruth(const CheckInput& input)
{
    Random random(input.seed);
    for (int i = 0; i < TRUTH_NUM; ++i) {
        const bool isDouble = random.below(2) == 0;
        const int type = 1 + random.below(3);
        const auto layout = static_cast<Layout>(random.below(2));
        const auto scheme = static_cast<Scheme>(random.below(SCHEME_NUM));
        Case c = makeCase(type, layout, scheme, isDouble ? DataType::Double : DataType::Single, 60, false);
        c.params[DIS_THR_PROJECTIVE] = c.params[DIS_THR_AFFINE] = 1.0;
        c.params[MAX_RANDOM_SAMPLING] = c.params[NUM_RANDOM_SAMPLING] = 2000;
        c.params[DESIRED_CONFIDENCE] = 99.9999;
        c.params[BREAK_BY_PERCENTAGE] = 0;
        const Matrix matrix = randomMatrix(c.transformType(), random);
        auto pairs = matchedPairs(matrix, c.ptsNum, c.isRobust() ? 4 : 0, random);
        fitInto(c.pointsType, pairs);
        const std::string what = fmt::format("{}, every fourth wrong, number {}", c.text(), i);
        input.note(what);
        Life life(input.path, c);
        const StepRecord record = life.step(pairs, static_cast<unsigned>(i));
        life.end();
        expectPromise(record, c, pairs);
        const double distance = distanceFrom(matrix, record, c), admitted = isDouble ? 1e-6 : 0.05;
        if (!(distance <= admitted))
            throw Finding(fmt::format("{}: a corner lies {:.3g} from its true place, expected {:.3g} or less", what, distance,
                                      admitted));
    }
    return fmt::format("{} searches among a quarter of wrong matches found the transformation", TRUTH_NUM);
}

std::string checkSteps(const CheckInput& input)
{
    Random random(input.seed);
    int zeroNum = 0;
    for (int i = 0; i < RANDOM_STEP_NUM; ++i) {
        const Case c = randomCase(random);
        const std::string what = fmt::format("{}, number {}", c.text(), i);
        input.note(what);
        Life life(input.path, c), again(input.path, c);
        for (int k = 0; k < 4; ++k) {
            const int room = c.ptsNum - c.sampleSize() + 1;
            auto pairs = oddPairs(c.isVariable ? c.sampleSize() + random.below(room) : c.ptsNum, random);
            fitInto(c.pointsType, pairs);
            const auto seed = static_cast<unsigned>(random.below(1000));
            const StepRecord record = life.step(pairs, seed);
            expectPromise(record, c, pairs);
            expectSame(again.step(pairs, seed), record, what + "; the same steps in another instance");
            zeroNum += record.isZero() ? 1 : 0;
        }
        life.end();
        again.end();
    }
    return fmt::format("{} steps, {} without a result: finite or zero, and repeated to the bit", 4 * RANDOM_STEP_NUM, zeroNum);
}

}  // namespace esttform::check

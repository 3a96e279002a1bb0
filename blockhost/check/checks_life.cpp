// Life of the block: the order of its callbacks, its end at any time, two instances beside each other.
#include "checks.h"
#include "trial.h"

#include <fmt/format.h>

#include <cmath>

namespace blockhost::check {

namespace {

constexpr int PTS_NUM = 12;

/// The shift that shiftedMatches has, within what a sample of whole pixels allows.
bool isExpectedShift(const Trial& trial)
{
    const double expected[] = {1, 0, 0, 0, 1, 0, 2, 3, 1};
    const double weight = trial.tform(8);
    for (int i = 0; i < 9; ++i)
        if (!(std::fabs(trial.tform(i) / weight - expected[i]) < 1e-6))
            return false;
    return true;
}

}  // namespace

/// From the first callback to the last, three times over.
void checkOrder(const std::string& path, unsigned)
{
    for (int life = 1; life <= 3; ++life) {
        Trial trial(path, plainSettings());
        openOrFind(trial, fmt::format("life {}", life));
        for (int i = 0; i < 2; ++i) {
            const Outcome outcome = trial.step(shiftedMatches(PTS_NUM));
            if (!outcome.error.empty())
                throw Finding(fmt::format("a step over {} sound pairs: error {}", PTS_NUM, outcome.error));
            if (!isExpectedShift(trial))
                throw Finding("a step over pairs that are shifted by (2, 3) does not find the shift");
        }
        trial.block().terminate();
    }
}

/// mdlTerminate after each of the callbacks before it.
void checkTermination(const std::string& path, unsigned)
{
    using Step = bool (Block::*)();
    const Step steps[] = {&Block::initializeSizes, &Block::checkParameters, &Block::initializeSampleTimes,
                          &Block::propagate, &Block::setWorkWidths, &Block::start, &Block::step};
    for (std::size_t num = 1; num <= std::size(steps); ++num) {
        Trial trial(path, plainSettings());
        for (std::size_t i = 0; i < num; ++i)
            (trial.block().*steps[i])();
        trial.block().terminate();
    }
    // A set-up that the block refuses has to be terminated, too.
    TrialOptions tooFew;
    tooFew.maxPtsNum = 3;
    Trial trial(path, plainSettings(), tooFew);
    try {
        trial.open();
    } catch (const esttform::Error&) {
        trial.block().terminate();
        return;
    }
    throw Finding("three pairs were accepted for a projective transformation, which needs four");
}

/// Steps of one instance between those of another leave no trace in either.
void checkTwoInstances(const std::string& path, unsigned)
{
    esttform::Settings affine = plainSettings();
    affine.type = esttform::TransformType::Affine;
    affine.pointsType = esttform::DataType::Single;
    affine.tformType = esttform::DataType::Single;
    Matches matches = shiftedMatches(PTS_NUM);
    matches[5][2] += 40.0;                               // one wrong match
    const auto alone = [&](const esttform::Settings& settings) {
        Trial trial(path, settings);
        openOrFind(trial, "one instance");
        return trial.step(matches);
    };
    const Outcome first = alone(plainSettings()), second = alone(affine);
    Trial one(path, plainSettings()), other(path, affine);
    openOrFind(one, "the first of two instances");
    openOrFind(other, "the second of two instances");
    for (int i = 0; i < 3; ++i)
        if (one.step(matches) != first || other.step(matches) != second)
            throw Finding("two instances side by side give other results than each alone");
    other.block().terminate();
    if (one.step(matches) != first)
        throw Finding("the end of one instance changes the results of another");
}

}  // namespace blockhost::check

// Lifecycle: any order that a host may take, ends at every point, lives after and beside one another.
#include "check/checks.h"
#include "check/finding.h"
#include "check/heap_meter.h"
#include "check/life.h"
#include "check/point_sets.h"

#include "blockhost/block_instance.h"

#include <fmt/format.h>

#include <memory>

namespace esttform::check {

namespace {

using blockhost::Block;

constexpr unsigned SEED = 5;

/// The part of a set-up that a host may reach before it ends the block.
const std::vector<std::pair<const char*, bool (Block::*)()>> STAGES = {
    {"mdlInitializeSizes", &Block::initializeSizes}, {"mdlCheckParameters", &Block::checkParameters},
    {"propagation", &Block::propagate},              {"mdlSetWorkWidths", &Block::setWorkWidths},
    {"mdlStart", &Block::start}};

std::vector<app::Pair> pairsOf(const Case& c, std::uint32_t seed)
{
    Random random(seed);
    auto pairs = matchedPairs(randomMatrix(c.transformType(), random), c.ptsNum, 4, random);
    fitInto(c.pointsType, pairs);
    return pairs;
}

StepRecord resultAlone(const std::string& path, const Case& c, std::uint32_t seed)
{
    Life life(path, c);
    const StepRecord record = life.step(pairsOf(c, seed), SEED);
    life.end();
    return record;
}

/// Runs the stages, with mdlInitializeSampleTimes after number `timesAfter`, up to number `lastStage`.
void runStages(Block& block, std::size_t timesAfter, std::size_t lastStage)
{
    for (std::size_t i = 0; i <= lastStage; ++i) {
        (block.*STAGES[i].second)();
        if (i == timesAfter)
            block.initializeSampleTimes();
        if (i + 1 < STAGES.size() && block.instance().userData != nullptr)
            throw Finding(fmt::format("user data is set after {}, before mdlStart", STAGES[i].first));
    }
}

}  // namespace

/// Whoever runs a check has loaded the block for it.
std::string checkLoad(const CheckInput&)
{
    return "every callback is there";
}

std::string checkOrder(const CheckInput& input)
{
    const std::vector<Case> cases = variety();
    int num = 0;
    for (const Case& c : cases)
        for (std::size_t timesAfter = 0; timesAfter + 1 < STAGES.size(); ++timesAfter) {
            input.note(fmt::format("{}; sample times after {}", c.text(), STAGES[timesAfter].first));
            Block block(setupOf(input.path, c));
            runStages(block, timesAfter, STAGES.size() - 1);
            if (block.instance().samplePeriods.size() != block.instance().sampleOffsets.size()
                || block.instance().samplePeriods.empty())
                throw Finding("the block declares no sample time");
            endOf(block);                                // a life without a step
            ++num;
        }
    return fmt::format("{} lives, sample times at every place", num);
}

std::string checkEarlyEnds(const CheckInput& input)
{
    int num = 0;
    for (const Case& c : variety()) {
        if (num % 3 != 0 && !c.isVariable)
            continue;
        for (std::size_t last = 0; last < STAGES.size(); ++last, ++num) {
            input.note(fmt::format("{}; terminate after {}", c.text(), STAGES[last].first));
            expectNoLoss([&] {
                Block block(setupOf(input.path, c));
                runStages(block, 0, last);
                endOf(block);
            });
        }
        // The host itself fails to start: it is given an array that is not aligned for its type.
        input.note(fmt::format("{}; terminate after a start that failed", c.text()));
        alignas(8) char array[16] = {};
        blockhost::BlockSetup setup = setupOf(input.path, c);
        setup.inputs[0].data = array + 1;
        Block block(std::move(setup));
        if (sizeOf(c.pointsType) > 1 && stopOf(block).empty())
            throw Finding("the start did not fail");
    }
    return fmt::format("{} lives, ended after every callback and after a failed start", num);
}

std::string checkManyLives(const CheckInput& input)
{
    const std::vector<Case> cases = variety();
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        input.note(c.text());
        const StepRecord expected = resultAlone(input.path, c, 1);
        expectNoLoss([&] { expectSame(resultAlone(input.path, c, 1), expected, c.text() + "; a later life"); });
    }
    return fmt::format("{} set-ups, ten lives each: equal results, nothing lost", cases.size());
}

std::string checkInstances(const CheckInput& input)
{
    const std::vector<Case> cases = variety();
    std::vector<StepRecord> expected;
    std::vector<std::unique_ptr<Life>> lives;
    for (std::size_t i = 0; i < cases.size(); ++i)
        expected.push_back(resultAlone(input.path, cases[i], static_cast<std::uint32_t>(i)));
    for (const Case& c : cases)
        lives.push_back(std::make_unique<Life>(input.path, c));

    // Steps go forwards, then backwards while instances end one by one.
    const auto stepOne = [&](std::size_t i, const char* when) {
        const std::string what = fmt::format("{}; {} of {} instances", cases[i].text(), when, cases.size());
        input.note(what);
        expectSame(lives[i]->step(pairsOf(cases[i], static_cast<std::uint32_t>(i)), SEED), expected[i], what);
    };
    for (std::size_t i = 0; i < cases.size(); ++i)
        stepOne(i, "running beside the others");
    for (std::size_t i = cases.size(); i-- > 0;) {
        stepOne(i, "after the end of some");
        lives[i]->end();
        if (i > 0 && lives[i - 1]->block().instance().userData == nullptr)
            throw Finding("the end of one instance took the user data of another");
    }
    return fmt::format("{} at once: each as if alone", cases.size());
}

}  // namespace esttform::check

// Dialog values that no one would choose: each is admitted or refused as documented, at the start and between steps.
#include "check/checks.h"
#include "check/finding.h"
#include "check/life.h"
#include "check/param_rules.h"
#include "check/point_sets.h"

#include "blockhost/block_instance.h"

#include <fmt/format.h>

#include <string>

namespace esttform::check {

namespace {

constexpr int RANDOM_SET_NUM = 4000;

std::string paramText(int idx, double value)
{
    return fmt::format("{}={}", paramTable()[static_cast<std::size_t>(idx)].name, value);
}

/// Index of the parameter whose name begins a message; -1 for none.
int namedParam(const std::string& message)
{
    for (const ParamInfo& info : paramTable())
        if (message.rfind(std::string(info.name) + ": got ", 0) == 0)
            return info.index;
    return -1;
}

/// Sets up a block of two unconnected inputs, and steps when it starts: on a sample of equal points.
void expectAnswer(const CheckInput& input, const Params& params, const std::string& what)
{
    input.note(what);
    int refusedNum = 0;
    for (int idx = 0; idx < PARAM_NUM; ++idx)
        refusedNum += isAdmitted(idx, params) ? 0 : 1;
    blockhost::Block block(openSetup(input.path, params));
    std::string stop;
    try {
        block.open();
        if (refusedNum == 0)
            block.step();
    } catch (const Error& e) {
        if (e.kind() != ErrorKind::Usage)
            throw;
        stop = e.what();
    }
    endOf(block);
    if (refusedNum == 0 && !stop.empty())
        throw Finding(fmt::format("{}: admitted by the documentation, but refused: {}", what, stop));
    if (refusedNum > 0 && stop.empty())
        throw Finding(fmt::format("{}: not admitted by the documentation, but the block started", what));
    if (refusedNum > 0 && (namedParam(stop) < 0 || isAdmitted(namedParam(stop), params)))
        throw Finding(fmt::format("{}: the message names none of the values that are not admitted: {}", what, stop));
    if (refusedNum > 0)
        return;
    const int sampleSize = static_cast<int>(params[TRANSFORM_TYPE]) + 1;
    const blockhost::Dims expected = isFlagSet(params[POINTS_IN_ROWS]) ? blockhost::Dims{sampleSize, 2} : blockhost::Dims{2, sampleSize};
    if (const std::string size = block.instance().inputs[0].dims.text(); size != expected.text())
        throw Finding(fmt::format("{}: the smallest input is {}, expected {}", what, size, expected.text()));
}

std::vector<Params> basicSettings()
{
    std::vector<Params> all;
    for (int type = 1; type <= 3; ++type)
        for (int scheme = 0; scheme < SCHEME_NUM; ++scheme)
            all.push_back(
                makeCase(type, static_cast<Layout>(type % 2), static_cast<Scheme>(scheme), DataType::Double, 9, false).params);
    return all;
}

/// Text of the refusal of a changed value; empty when it was taken over.
std::string refusalOf(blockhost::Block& block, int idx, double value)
{
    try {
        block.setParam(idx, value);
    } catch (const Error& e) {
        if (e.kind() != ErrorKind::Usage)
            throw;
        return e.what();
    }
    return "";
}

/// Values of a running block that steps can bear: samplings are counted, so they stay few.
constexpr double CHANGED[] = {0.0, 1.0, 7.0, 55.0};

void checkTunableOf(const CheckInput& input, const Case& c, int idx)
{
    Random random(static_cast<std::uint32_t>(idx));
    auto pairs = matchedPairs(randomMatrix(c.transformType(), random), c.ptsNum, 4, random);
    fitInto(c.pointsType, pairs);
    const char* const name = paramTable()[static_cast<std::size_t>(idx)].name;
    const std::string what = fmt::format("{} changed between steps ({})", name, c.text());
    input.note(what);
    Life life(input.path, c);
    const bool isTunableHere = life.block().instance().isTunable[static_cast<std::size_t>(idx)];
    if (isTunableHere != isTunable(idx, c.params))
        throw Finding(fmt::format("{}: declared {}tunable, documented otherwise", what, isTunableHere ? "" : "not "));
    const StepRecord before = life.step(pairs, 1);
    for (const double value : ODD_VALUES) {
        Params params = c.params;
        params[static_cast<std::size_t>(idx)] = value;
        const bool isExpected = isTunableHere && isAdmitted(idx, params);
        const std::string refusal = refusalOf(life.block(), idx, value);
        if (refusal.empty() != isExpected)
            throw Finding(fmt::format("{} to {}: {}", what, value, refusal.empty() ? "taken over" : "refused: " + refusal));
        if (refusal.empty())
            life.block().setParam(idx, c.params[static_cast<std::size_t>(idx)]);
        expectSame(life.step(pairs, 1), before, fmt::format("{} to {} and back", what, value));
    }
    for (const double value : CHANGED) {
        if (!isTunableHere)
            break;
        Case changed = c;
        changed.params[static_cast<std::size_t>(idx)] = value;
        Life fresh(input.path, changed);
        life.block().setParam(idx, value);
        expectSame(life.step(pairs, 1), fresh.step(pairs, 1), fmt::format("{} to {}", what, value));
        fresh.end();
    }
    life.end();
}

}  // namespace

std::string checkParameters(const CheckInput& input)
{
    int num = 0;
    for (const Params& basic : basicSettings())
        for (int idx = 0; idx < PARAM_NUM; ++idx)
            for (const double value : ODD_VALUES) {
                Params params = basic;
                params[static_cast<std::size_t>(idx)] = value;
                expectAnswer(input, params, paramText(idx, value));
                ++num;
            }
    for (const std::size_t paramNum : {std::size_t{0}, std::size_t{PARAM_NUM - 1}, std::size_t{PARAM_NUM + 1}}) {
        input.note(fmt::format("{} values given", paramNum));
        blockhost::BlockSetup setup = openSetup(input.path, basicSettings().front());
        setup.params.resize(paramNum);
        blockhost::Block block(std::move(setup));
        if (stopOf(block).empty())
            throw Finding(fmt::format("{} values given, and the block started", paramNum));
    }
    return fmt::format("{} values: admitted or refused as documented", num);
}

std::string checkRandomParameters(const CheckInput& input)
{
    Random random(input.seed);
    const std::vector<Params> basics = basicSettings();
    for (int i = 0; i < RANDOM_SET_NUM; ++i) {
        Params params = basics[static_cast<std::size_t>(random.below(static_cast<int>(basics.size())))];
        std::string what;
        for (int k = random.below(4); k >= 0; --k) {
            const int idx = random.below(PARAM_NUM);
            const double value = ODD_VALUES[static_cast<std::size_t>(random.below(static_cast<int>(ODD_VALUES.size())))];
            params[static_cast<std::size_t>(idx)] = value;
            what += (what.empty() ? "" : ", ") + paramText(idx, value);
        }
        expectAnswer(input, params, fmt::format("{}, number {}", what, i));
    }
    return fmt::format("{} sets of values: admitted or refused as documented", RANDOM_SET_NUM);
}

std::string checkTunable(const CheckInput& input)
{
    const std::vector<Case> cases = variety();
    for (std::size_t i = 0; i < cases.size(); i += 2)
        for (int idx = 0; idx < PARAM_NUM; ++idx)
            checkTunableOf(input, cases[i], idx);
    return fmt::format("{} set-ups, {} values each", cases.size() / 2, PARAM_NUM * ODD_VALUES.size());
}

}  // namespace esttform::check

// Refusals: the host answers a call with failure, or a step has sizes that do not fit. The block stops at once.
#include "check/call_log.h"
#include "check/checks.h"
#include "check/finding.h"
#include "check/heap_meter.h"
#include "check/life.h"
#include "check/point_sets.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>

namespace esttform::check {

namespace {

/// Host functions that may refuse, as the host's interface documents them.
bool mayRefuse(const std::string& function)
{
    for (const char* const name : {"registerSFunctionParams", "bhSetNumInputPorts", "bhSetNumOutputPorts",
                                   "bhSetInputPortDimensionInfo", "bhSetOutputPortDimensionInfo",
                                   "bhSetInputPortMatrixDimensions", "bhSetOutputPortMatrixDimensions", "bhSetInputPortDataType",
                                   "bhSetOutputPortDataType", "bhSetInputPortDimensionsMode", "bhSetOutputPortDimensionsMode",
                                   "bhSetInputPortFrameData", "bhSetOutputPortFrameData", "bhSetNumRunTimeParams",
                                   "bhSetNumDWork"})
        if (function == name)
            return true;
    return false;
}

/// How often an undisturbed set-up calls each function that may refuse.
std::map<std::string, int> callNums(blockhost::BlockSetup setup)
{
    CallLog log;
    log.attachTo(setup);
    blockhost::Block block(std::move(setup));
    if (const std::string stop = stopOf(block); !stop.empty())
        throw Finding(fmt::format("the set-up stopped although nothing was refused: {}", stop));
    std::map<std::string, int> nums;
    for (const std::string& line : log.lines())
        if (const std::string function = functionOf(line); isHostCall(line) && mayRefuse(function))
            ++nums[function];
    return nums;
}

/// The message that is documented for a refusal; empty for none.
std::string expectedMessage(const std::string& function, const std::string& callback)
{
    if (function == "bhSetNumRunTimeParams")
        return "rtpAllocFailed";
    return function == "bhSetNumDWork" && callback == "mdlSetWorkWidths" ? "memoryAllocationFailed" : "";
}

/// After the refused call its callback may only say what is documented.
void expectStop(const CallLog& log, const std::string& what)
{
    const std::vector<std::string>& lines = log.lines();
    std::string callback;
    std::size_t i = 0;
    for (; i < lines.size() && !(isRefused(lines[i]) && mayRefuse(functionOf(lines[i]))); ++i)
        if (!isHostCall(lines[i]))
            callback = functionOf(lines[i]);
    if (i == lines.size())
        throw Finding(what + ": the block did not make the call again");
    const std::string message = expectedMessage(functionOf(lines[i]), callback);
    for (std::size_t k = i + 1; k < lines.size() && isHostCall(lines[k]); ++k)
        if (functionOf(lines[k]) != "dspError")
            throw Finding(fmt::format("{}: {} went on to call {}, expected an end at once", what, callback,
                                      functionOf(lines[k])));
    const std::vector<std::string> messages = log.messages();
    if (fmt::format("{}", fmt::join(messages, ", ")) != message)
        throw Finding(fmt::format("{}: got the message \"{}\", expected {}", what, fmt::join(messages, ", "),
                                  message.empty() ? "none" : message));
}

/// Set-ups that between them make every call.
std::vector<blockhost::BlockSetup> setupsOf(const std::string& path)
{
    std::vector<blockhost::BlockSetup> setups;
    for (const Scheme scheme : {Scheme::AllPairs, Scheme::Confidence, Scheme::Median})
        for (const bool isVariable : {false, true})
            setups.push_back(
                setupOf(path, makeCase(3, static_cast<Layout>(isVariable), scheme, DataType::Int8, 9, isVariable)));
    const Params params = makeCase(1, Layout::Rows, Scheme::FixedNumber, DataType::Double, 9, false).params;
    setups.push_back(openSetup(path, params));           // all by the block's defaults
    setups.push_back(openSetup(path, params));           // sized by the mask, typed by TForm
    setups.back().outputs.resize(2);
    setups.back().outputs[1].dims = blockhost::Dims{9, 1};
    setups.back().outputs[0].typeId = sysobj::DT_SINGLE;
    return setups;
}

}  // namespace

std::string checkRefusals(const CheckInput& input)
{
    int num = 0;
    for (const blockhost::BlockSetup& setup : setupsOf(input.path))
        for (const auto& [function, callNum] : callNums(setup))
            for (int n = 1; n <= callNum; ++n, ++num) {
                const std::string what = fmt::format("{} refused, call {} of {}", function, n, callNum);
                input.note(what);
                const auto refuse = [&, name = function] {
                    CallLog log;
                    blockhost::BlockSetup logged = setup;
                    log.attachTo(logged);
                    blockhost::Block block(std::move(logged));
                    block.refuseCall(name, n);
                    if (stopOf(block).empty())
                        throw Finding(what + ": the set-up went on");
                    expectStop(log, what);
                };
                refuse();
                if (n == 1 || n == callNum)
                    expectNoLoss(refuse);
                callNums(setup);                         // the next instance is as if nothing had happened
            }
    return fmt::format("{} calls refused: an end at once, the documented message, nothing lost", num);
}

std::string checkRefusedSteps(const CheckInput& input)
{
    Random random(1);
    int num = 0;
    for (const Case& c : variety()) {
        if (!c.isVariable)
            continue;
        input.note(c.text());
        Life life(input.path, c);
        auto pairs = matchedPairs(randomMatrix(c.transformType(), random), c.ptsNum, 4, random);
        fitInto(c.pointsType, pairs);
        const StepRecord before = life.step(pairs, 1);
        const auto expectError = [&](const StepRecord& record, const char* error, int pairNum) {
            if (record.error != error)
                throw Finding(fmt::format("{}: a step of {} pairs gave \"{}\", expected {}", c.text(), pairNum, record.error,
                                          error));
            ++num;
        };
        for (int pairNum = 0; pairNum < c.sampleSize(); ++pairNum)
            expectError(life.step({pairs.begin(), pairs.begin() + pairNum}, 1), "pts1OrPts2TooSmall", pairNum);
        expectError(life.step(pairs, 1, 1), "pts1AndPts2SizesDiffer", c.ptsNum);
        expectSame(life.step(pairs, 1), before, c.text() + "; a step after refused ones");
        life.end();
    }
    return fmt::format("{} steps refused as documented, outputs untouched", num);
}

}  // namespace esttform::check

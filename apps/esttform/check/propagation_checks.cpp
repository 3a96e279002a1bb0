// Propagation: whatever order a host offers the attributes of its signals in, the ports end the same way.
#include "check/call_log.h"
#include "check/checks.h"
#include "check/finding.h"
#include "check/life.h"

#include "blockhost/block_instance.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>

namespace esttform::check {

namespace {

using blockhost::Attribute;
using blockhost::Direction;
using blockhost::Offer;

constexpr int RANDOM_ORDER_NUM = 150;   // orders of each scenario

/// Signals around a block, fitting or not.
struct Scenario {
    const char* name;
    std::function<void(blockhost::BlockSetup& setup, const Case& c)> change;
};

const Scenario SCENARIOS[] = {
    {"everything connected", [](blockhost::BlockSetup&, const Case&) {}},
    {"nothing connected", [](blockhost::BlockSetup& s, const Case&) { s.inputs.clear(); }},
    {"only Pts1 connected", [](blockhost::BlockSetup& s, const Case&) { s.inputs.pop_back(); }},
    {"only Pts2 connected", [](blockhost::BlockSetup& s, const Case&) { s.inputs[0] = {}; }},
    {"frames", [](blockhost::BlockSetup& s, const Case&) { s.inputs[0].frameData = s.inputs[1].frameData = 1; }},
    {"size of the mask alone",
     [](blockhost::BlockSetup& s, const Case&) {
         s.inputs[0].dims.reset();
         s.inputs[1].dims.reset();
         s.outputs.resize(2);
         s.outputs[1].dims = blockhost::Dims{7};
     }},
    {"type of TForm alone",
     [](blockhost::BlockSetup& s, const Case&) {
         s.inputs[0].typeId.reset();
         s.inputs[1].typeId.reset();
         s.outputs.resize(1);
         s.outputs[0].typeId = sysobj::DT_SINGLE;
     }},
    {"numbers of points differ", [](blockhost::BlockSetup& s, const Case& c) { s.inputs[1].dims = c.sizeOf(c.ptsNum - 1); }},
    {"one number", [](blockhost::BlockSetup& s, const Case&) { s.inputs[0].dims = s.inputs[1].dims = blockhost::Dims{1, 1}; }},
    {"too few points", [](blockhost::BlockSetup& s, const Case& c) { s.inputs[0].dims = s.inputs[1].dims = c.sizeOf(1); }},
    {"types differ", [](blockhost::BlockSetup& s, const Case&) { s.inputs[1].typeId = (*s.inputs[0].typeId + 1) % 8; }},
    {"modes differ", [](blockhost::BlockSetup& s, const Case&) { s.inputs[1].mode = 1 - *s.inputs[0].mode; }},
    {"boolean points",
     [](blockhost::BlockSetup& s, const Case&) { s.inputs[0].typeId = s.inputs[1].typeId = sysobj::DT_BOOLEAN; }},
};

std::string portsText(const std::vector<blockhost::Port>& ports)
{
    std::string text;
    for (const blockhost::Port& port : ports)
        text += fmt::format(" [{} type {} mode {} frame {}]", port.dims.text(), port.typeId, port.mode, port.frameData);
    return text;
}

/// How a set-up ends: the ports as they were settled, or the block's messages. One that stops is run again with a log, which
/// takes several times as long.
std::string endOfSetUp(blockhost::BlockSetup setup, std::vector<Offer> order)
{
    setup.offerOrder = std::move(order);
    blockhost::Block block(setup);
    if (stopOf(block).empty())
        return "ports:" + portsText(block.instance().inputs) + portsText(block.instance().outputs);
    CallLog log;
    log.attachTo(setup);
    blockhost::Block logged(std::move(setup));
    if (stopOf(logged).empty())
        return "stopped once, and started once";
    const std::vector<std::string> messages = log.messages();
    return messages.empty() ? "no message, refused by the host" : fmt::format("messages: {}", fmt::join(messages, ", "));
}

std::string orderText(const std::vector<Offer>& order)
{
    constexpr const char* NAMES[] = {"size", "type", "mode", "frame"};
    std::string text;
    for (const Offer& offer : order)
        text += fmt::format("{}{}{} {}", text.empty() ? "" : ", ", offer.direction == Direction::In ? "in" : "out", offer.port,
                            NAMES[static_cast<int>(offer.attribute)]);
    return text;
}

/// Cases whose set-ups take different ways.
std::vector<Case> someCases()
{
    return {makeCase(1, Layout::Columns, Scheme::FixedNumber, DataType::Int16, 9, false),
            makeCase(3, Layout::Rows, Scheme::Confidence, DataType::Double, 9, true)};
}

blockhost::BlockSetup setupIn(const Scenario& scenario, const std::string& path, const Case& c)
{
    blockhost::BlockSetup setup = setupOf(path, c);
    setup.paramLabels.clear();                           // names for people; the set-up is copied for every order
    scenario.change(setup, c);
    return setup;
}

std::string textOf(const Scenario& scenario, const Case& c)
{
    return fmt::format("{} ({})", scenario.name, c.text());
}

/// Compares the end of a set-up in an order with that in the host's own order.
void expectEnd(const std::string& expected, const CheckInput& input, const std::string& what,
               const blockhost::BlockSetup& setup, const std::vector<Offer>& order)
{
    input.note(what + "; order " + orderText(order));
    const std::string found = endOfSetUp(setup, order);
    if (found != expected)
        throw Finding(fmt::format("{}: {} in the order {}, but {} in the usual order", what, found, orderText(order), expected));
}

}  // namespace

std::string checkPropagation(const CheckInput& input)
{
    const std::vector<Case> cases = someCases();
    int num = 0;
    for (const Case& c : cases)
        for (const Scenario& scenario : SCENARIOS) {
            std::vector<Offer> order;
            for (const Attribute attribute : {Attribute::Size, Attribute::DataType, Attribute::Mode})
                for (const int port : {0, 1})
                    order.push_back({Direction::In, port, attribute});
            const std::string what = textOf(scenario, c);
            const blockhost::BlockSetup setup = setupIn(scenario, input.path, c);
            const std::string expected = endOfSetUp(setup, {});
            const auto rank = [](const Offer& offer) { return 2 * static_cast<int>(offer.attribute) + offer.port; };
            do {
                expectEnd(expected, input, what, setup, order);
                ++num;
            } while (std::next_permutation(order.begin(), order.end(),
                                           [&](const Offer& a, const Offer& b) { return rank(a) < rank(b); }));
        }
    return fmt::format("{} orders of {} sets of signals: one end each", num, cases.size() * std::size(SCENARIOS));
}

std::string checkRandomPropagation(const CheckInput& input)
{
    Random random(input.seed);
    int num = 0;
    for (const Scenario& scenario : SCENARIOS)
        for (int i = 0; i < RANDOM_ORDER_NUM; ++i, ++num) {
            std::vector<Offer> order;
            for (const Direction direction : {Direction::In, Direction::Out})
                for (const int port : {0, 1})
                    for (const Attribute attribute : {Attribute::Size, Attribute::DataType, Attribute::Mode, Attribute::Frame})
                        order.push_back({direction, port, attribute});
            for (std::size_t k = order.size(); k > 1; --k)
                std::swap(order[k - 1], order[static_cast<std::size_t>(random.below(static_cast<int>(k)))]);
            Case c = randomCase(random);
            while (!c.hasMask() || c.ptsNum <= c.sampleSize())
                c = randomCase(random);
            const blockhost::BlockSetup setup = setupIn(scenario, input.path, c);
            expectEnd(endOfSetUp(setup, {}), input, textOf(scenario, c), setup, order);
        }
    return fmt::format("{} orders: one end each", num);
}

}  // namespace esttform::check

// What a host may do to a block: settle ports in any order, offer what contradicts, refuse a call.
#include "../block_instance.h"
#include "checks.h"
#include "trial.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace blockhost::check {

namespace {

constexpr int ORDER_NUM = 300;       // of 20 160 orders of the attributes of both inputs
constexpr int REFUSED_CALL_NUM = 40; // calls of one function that are refused in turn, at most

std::vector<Offer> allOffers()
{
    std::vector<Offer> offers;
    for (const int port : {0, 1})
        for (const Attribute attribute : {Attribute::Size, Attribute::DataType, Attribute::Mode, Attribute::Frame})
            offers.push_back({Direction::In, port, attribute});
    return offers;
}

std::string orderText(const std::vector<Offer>& order)
{
    constexpr const char* ATTRIBUTES[] = {"size", "type", "mode", "frame"};
    std::string text;
    for (const Offer& offer : order)
        text += fmt::format("{}{} of input {}", text.empty() ? "" : ", ", ATTRIBUTES[static_cast<int>(offer.attribute)], offer.port);
    return text;
}

/// Ports as they are settled, or that the block refuses.
std::string settled(const std::string& path, const esttform::Settings& settings, const TrialOptions& options)
{
    Trial trial(path, settings, options);
    try {
        trial.open();
    } catch (const esttform::Error& error) {
        return std::string("refused: ") + error.what();
    }
    return trial.portsText();
}

/// Names of host functions that a set-up and a step call.
std::set<std::string> calledFunctions(const std::string& path)
{
    std::set<std::string> names;
    const auto note = [&names](std::string_view line) {
        const std::size_t begin = line.find_first_not_of(' ');
        const std::size_t end = line.find('(');
        if (begin != std::string_view::npos && end != std::string_view::npos && begin < end)
            names.emplace(line.substr(begin, end - begin));
    };
    Trial trial(path, plainSettings(), {}, note);
    openOrFind(trial, "the block");
    trial.step(shiftedMatches(12));
    return names;
}

/// A life in which one call is refused. @return whether it came to that
bool liveWithRefusal(const std::string& path, const std::string& function, int n)
{
    Trial trial(path, plainSettings());
    trial.block().refuseCall(function, n);
    try {
        trial.open();
        trial.step(shiftedMatches(12));
    } catch (const esttform::Error& error) {
        if (error.kind() == esttform::ErrorKind::Internal)
            throw Finding(fmt::format("call {} of {} refused: {}", n, function, error.what()));
    }
    const bool wasRefused = !trial.block().refusals().empty();
    trial.block().terminate();
    return wasRefused;
}

}  // namespace

/// The order in which attributes are offered must not matter.
void checkPropagation(const std::string& path, unsigned seed)
{
    for (const bool isVariableSize : {false, true}) {
        TrialOptions options;
        options.isVariableSize = isVariableSize;
        const std::string expected = settled(path, plainSettings(), options);
        if (expected.rfind("refused", 0) == 0)
            throw Finding(expected);
        for (int i = 0; i < ORDER_NUM; ++i) {
            std::mt19937 random(seed + static_cast<unsigned>(i));
            options.offerOrder = allOffers();
            std::shuffle(options.offerOrder.begin(), options.offerOrder.end(), random);
            const std::string found = settled(path, plainSettings(), options);
            if (found != expected)
                throw Finding(fmt::format("seed {}: offered in the order {}: {} instead of {}", seed + static_cast<unsigned>(i),
                                          orderText(options.offerOrder), found, expected));
        }
    }
}

/// Two inputs that do not fit are refused in every order.
void checkContradictions(const std::string& path, unsigned seed)
{
    const auto isRefused = [&path](const Signal& first, const Signal& second, const std::vector<Offer>& order) {
        TrialOptions options;
        options.offerOrder = order;
        Trial trial(path, plainSettings(), options, {}, {first, second});
        try {
            trial.open();
        } catch (const esttform::Error&) {
            return true;
        }
        return false;
    };
    Signal plain, longer, other, flat;
    plain.dims = Dims{2, 12};
    plain.typeId = sysobj::DT_DOUBLE;
    plain.mode = sysobj::DIMS_MODE_FIXED;
    longer = other = flat = plain;
    longer.dims = Dims{2, 13};
    other.typeId = sysobj::DT_INT8;
    flat.dims = Dims{3, 12};
    const std::pair<const char*, Signal> cases[] = {{"13 points beside 12", longer}, {"int8 beside double", other},
                                                    {"three rows beside two", flat}};
    std::mt19937 random(seed);
    for (const auto& [what, signal] : cases) {
        for (int i = 0; i < 20; ++i) {
            std::vector<Offer> order = allOffers();
            std::shuffle(order.begin(), order.end(), random);
            if (!isRefused(plain, signal, order) || !isRefused(signal, plain, order))
                throw Finding(fmt::format("{} was accepted when offered in the order {}", what, orderText(order)));
        }
    }
}

/// Each call that can be refused is, one in each life; the block must stop or go on, and be whole in its next life.
void checkRefusals(const std::string& path, unsigned seed)
{
    int refusedNum = 0;
    for (const std::string& function : calledFunctions(path))
        for (int n = 1; n <= REFUSED_CALL_NUM && liveWithRefusal(path, function, n); ++n)
            ++refusedNum;
    if (refusedNum == 0)
        throw Finding("no call could be refused");
    checkOrder(path, seed);
}

}  // namespace blockhost::check

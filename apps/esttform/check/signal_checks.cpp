// Signals that do not fit the block: sizes, types and modes, each with the message that is documented for it.
#include "check/call_log.h"
#include "check/checks.h"
#include "check/finding.h"
#include "check/life.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>

namespace esttform::check {

namespace {

using blockhost::Dims;

/// What is connected, and what the block says.
struct OddSignal {
    const char* name;
    Layout layout;
    std::optional<Dims> pts1, pts2, mask;
    int typeId;
    const char* message;
};

constexpr int D = sysobj::DT_DOUBLE;
constexpr Layout ROWS = Layout::Rows, COLUMNS = Layout::Columns;
const OddSignal ODD_SIGNALS[] = {
    {"three columns", ROWS, Dims{9, 3}, {}, {}, D, "pts1Pts2NotMx2"},
    {"points in columns for rows", ROWS, Dims{2, 9}, {}, {}, D, "pts1Pts2NotMx2"},
    {"points in rows for columns", COLUMNS, {}, Dims{9, 2}, {}, D, "pts1Pts2Not2xN"},
    {"a vector, rows", ROWS, Dims{18}, {}, {}, D, "pts1Pts2Not2xN"},
    {"three dimensions", COLUMNS, {}, Dims{2, 9, 1}, {}, D, "pts1Pts2Not2xN"},
    {"three pairs", COLUMNS, Dims{2, 3}, {}, {}, D, "pts1OrPts2TooSmall 4"},
    {"no pair", ROWS, Dims{0, 2}, Dims{0, 2}, {}, D, "pts1OrPts2TooSmall 4"},
    {"nine and eight pairs", COLUMNS, Dims{2, 9}, Dims{2, 8}, {}, D, "pts1AndPts2SizesDiffer"},
    {"a matrix as mask", ROWS, {}, {}, Dims{7, 2}, D, "inlierOutNotVector"},
    {"a mask of three dimensions", COLUMNS, {}, {}, Dims{1, 7, 1}, D, "inlierOutNotVector"},
    {"a mask of three", ROWS, {}, {}, Dims{3}, D, "inlierOutSzTooSmall 4"},
    {"an empty mask", COLUMNS, {}, {}, Dims{1, 0}, D, "inlierOutSzTooSmall 4"},
    {"more points than work vectors hold", COLUMNS, Dims{2, 200000000}, {}, {}, D, "memoryAllocationFailed"},
    {"boolean points", ROWS, Dims{9, 2}, {}, {}, sysobj::DT_BOOLEAN, "dspIsDataTypeSupported"},
    {"a type that is none", ROWS, Dims{9, 2}, {}, {}, 9, "dspIsDataTypeSupported"},
    {"a type beyond the mask", ROWS, Dims{9, 2}, {}, {}, 1000, "dspIsDataTypeSupported"},
};

}  // namespace

std::string checkSignals(const CheckInput& input)
{
    for (const OddSignal& odd : ODD_SIGNALS) {
        input.note(odd.name);
        blockhost::BlockSetup setup =
            openSetup(input.path, makeCase(3, odd.layout, Scheme::FixedNumber, DataType::Double, 9, false).params);
        setup.inputs.resize(2);
        setup.outputs.resize(2);
        setup.inputs[0].dims = odd.pts1;
        setup.inputs[1].dims = odd.pts2;
        setup.outputs[1].dims = odd.mask;
        setup.inputs[0].typeId = setup.inputs[1].typeId = odd.typeId;
        CallLog log;
        log.attachTo(setup);
        blockhost::Block block(std::move(setup));
        const std::string stop = stopOf(block);
        const std::string messages = fmt::format("{}", fmt::join(log.messages(), ", "));
        if (messages != odd.message || stop.empty())
            throw Finding(
                fmt::format("{}: got {}, expected {}", odd.name, messages.empty() ? "no message" : messages, odd.message));
    }
    return fmt::format("{} signals: the documented messages", std::size(ODD_SIGNALS));
}

}  // namespace esttform::check

// Helpers of the host's tests: a set-up of the fake block, the text of an exception, the trace as one text.
#pragma once

#include "block.h"
#include "block_instance.h"
#include "fake_block.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace fake {

using blockhost::Block;
using blockhost::BlockSetup;
using blockhost::Dims;
using blockhost::Signal;

/// The fake block, doubles of a size on both inputs.
inline BlockSetup setupOf(Fault fault, const Dims& dims = {2, 3}, int mode = sysobj::DIMS_MODE_FIXED)
{
    BlockSetup setup;
    setup.libraryPath = FAKE_BLOCK;
    setup.params = {static_cast<double>(fault), 3.0, 1.0, 7.0};
    setup.paramLabels = {{"fault", "no", ""}, {"gain", "always", ""}, {"box", "when the moon is full", ""}, {"count", "always", ""}};
    Signal signal;
    signal.dims = dims;
    signal.typeId = sysobj::DT_DOUBLE;
    signal.mode = mode;
    setup.inputs = {signal, signal};
    return setup;
}

/// Collects the trace, one line each.
inline void traceTo(BlockSetup& setup, std::string& text)
{
    setup.trace = [&text](std::string_view line) { text.append(line).append("\n"); };
}

/// Base of the rows of a table of cases: reports show the name.
struct NamedCase {
    const char* name;
};

inline std::ostream& operator<<(std::ostream& out, const NamedCase& row)
{
    return out << row.name;
}

/// Names the tests of a table.
struct CaseName {
    template <typename Case>
    std::string operator()(const ::testing::TestParamInfo<Case>& row) const
    {
        return row.param.name;
    }
};

/// Text of the Error that an action throws; fails the test when it throws none.
template <typename Action>
std::string errorOf(Action action, esttform::ErrorKind kind)
{
    try {
        action();
    } catch (const esttform::Error& error) {
        EXPECT_EQ(static_cast<int>(error.kind()), static_cast<int>(kind)) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "no Error was thrown";
    return "";
}

}  // namespace fake

// The command check: the block passes, and each of its broken variants is found by the check that looks for that fault.
#include "program.h"

#include <gtest/gtest.h>

namespace {

using Words = std::vector<std::string>;

TEST(CheckTest, TheBlockPasses)
{
    const ProgramRun run = runProgram({"check", BLOCK_PATH, "--seed", "7"});
    EXPECT_EQ(run.code, 0) << run.out << run.err;
    EXPECT_NE(run.out.find("all 13 checks passed"), std::string::npos) << run.out;
}

struct FaultCase {
    const char* block;
    const char* check;
    const char* found;   ///< in the line of that check
};

class BrokenBlockTest : public ::testing::TestWithParam<FaultCase> {};

TEST_P(BrokenBlockTest, IsFoundOut)
{
    const FaultCase& c = GetParam();
    const std::string path = std::string(BROKEN_BLOCKS) + "broken_" + c.block + ".so";
    const ProgramRun run = runProgram({"check", path, "--only", c.check, "--timeout", "2", "--format", "json"});
    EXPECT_EQ(run.code, 1) << run.err;
    EXPECT_NE(run.out.find(c.found), std::string::npos) << run.out;
}

INSTANTIATE_TEST_SUITE_P(, BrokenBlockTest,
                         ::testing::Values(FaultCase{"WRITES_PAST_ITS_OUTPUT", "order", "wrote past the end of output 0"},
                                           FaultCase{"CHANGES_ITS_INPUT", "types", "a step changed its inputs"},
                                           FaultCase{"REMEMBERS_STEPS", "repetition", "the same step twice gives two results"},
                                           FaultCase{"CRASHES_UNSTARTED", "terminate", "\"CRASHED\""},
                                           FaultCase{"HANGS", "order", "\"TIMED OUT\""},
                                           FaultCase{"DEPENDS_ON_ORDER", "propagation", "seed "},
                                           FaultCase{"CHECKS_NOTHING", "parameters", "was accepted"}),
                         [](const auto& test) { return std::string(test.param.block); });

TEST(CheckTest, GoesOnAfterACrashAndSaysWhatItCannotRun)
{
    const ProgramRun run = runProgram({"check", std::string(BROKEN_BLOCKS) + "broken_CRASHES_UNSTARTED.so", "--only", "terminate,types"});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.out.find("types           ok"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("1 of 2 checks found something"), std::string::npos) << run.out;

    EXPECT_EQ(runProgram({"check", "nowhere.so"}).code, 3);
    EXPECT_EQ(runProgram({"check"}).code, 2);
    EXPECT_NE(runProgram({"check", BLOCK_PATH, "--only", "ordre"}).err.find("which is no check"), std::string::npos);
}

}  // namespace

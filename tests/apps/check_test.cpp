// The command check: the block passes, and every kind of broken block is caught by the check that is there for it.
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Words = std::vector<std::string>;

ProgramRun check(const Words& words, const std::string& fault = "")
{
    Words all{"check"};
    all.insert(all.end(), words.begin(), words.end());
    RunSetting setting;
    setting.environment = {"BROKEN=" + fault};
    return runProgram(all, setting);
}

TEST(CheckTest, TheBlockPasses)
{
    const ProgramRun run = check({BLOCK, "--seed", "7", "--timeout", "300"});
    EXPECT_EQ(run.code, 0) << run.out << run.err;
    EXPECT_NE(run.out.find(": 18 checks, 18 ok, 0 not\n"), std::string::npos) << run.out;
}

TEST(CheckTest, SoDoesTheBlockThatFaultsAreAddedTo)
{
    const ProgramRun run = check({BROKEN_BLOCK, "--only", "order,lives,refusals,parameters,tunable,signals,input-pages,steps",
                                  "--seed", "7", "--timeout", "300"});
    EXPECT_EQ(run.code, 0) << run.out << run.err;
}

struct Fault {
    const char* name;
    const char* check;     ///< the one that is there for it
    const char* verdict;
    const char* found;     ///< part of what it finds
};

std::ostream& operator<<(std::ostream& out, const Fault& fault)
{
    return out << fault.name << " in " << fault.check;
}

class FaultTest : public testing::TestWithParam<Fault> {};

TEST_P(FaultTest, IsCaught)
{
    const Fault& fault = GetParam();
    const std::string timeout = std::string(fault.verdict) == "timed out" ? "1" : "300";
    const ProgramRun run = check({BROKEN_BLOCK, "--only", fault.check, "--seed", "7", "--timeout", timeout, "--format", "json"},
                                 fault.name);
    EXPECT_EQ(run.code, 1) << run.err;
    const auto json = nlohmann::json::parse(run.out);
    ASSERT_EQ(json["checks"].size(), 1U);
    EXPECT_STREQ(json["checks"][0]["verdict"].get<std::string>().c_str(), fault.verdict) << run.out;
    EXPECT_NE(json["checks"][0]["found"].get<std::string>().find(fault.found), std::string::npos) << run.out;
}

const Fault FAULTS[] = {
    {"writes past TForm", "guard-zones", "failed", "mdlOutputs wrote past the end of output 0"},
    {"writes its input", "guard-zones", "failed", "mdlOutputs changed input 0"},
    {"writes its input", "input-pages", "crashed", "inputs begin after memory that is not there"},
    {"reads past its input", "input-pages", "crashed", "inputs end before memory that is not there"},
    {"crashes when refused", "refusals", "crashed", "at: bhSetNumDWork refused, call 1 of 2"},
    {"ignores a refusal", "refusals", "failed", "went on to call"},
    {"hangs without start", "early-ends", "timed out", "terminate after mdlInitializeSizes"},
    {"depends on the order", "propagation", "failed", "everything connected (similarity, columns, int16"},
    {"depends on the order", "random-propagation", "failed", "everything connected"},
    {"shares its state", "instances", "failed", "expected the bits"},
    {"loses memory", "lives", "failed", "memory is lost"},
    {"keeps its user data", "order", "failed", "user data is left after mdlTerminate"},
    {"counts its steps", "lives", "failed", "a later life"},
    {"counts its steps", "steps", "failed", "the same steps in another instance"},
    {"checks no parameter", "parameters", "failed", "transformType=0: not admitted by the documentation, but the block started"},
    {"checks no parameter", "random-parameters", "failed", "not admitted"},
    {"reports something else", "refused-steps", "failed", "gave \"somethingElse\", expected pts1OrPts2TooSmall"},
    {"ignores changes", "tunable", "failed", "changed between steps"},
    {"takes any mask", "signals", "failed", "a matrix as mask: got no message, expected inlierOutNotVector"},
    {"gives NaN", "truth", "failed", "expected all finite or all zero"},
    {"ends the process", "order", "crashed", "ended with exit code 0; at: similarity"},
};
INSTANTIATE_TEST_SUITE_P(, FaultTest, testing::ValuesIn(FAULTS), [](const auto& row) {
    std::string name = std::string(row.param.name) + "In" + row.param.check;
    for (char& letter : name)
        letter = std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
    return name;
});

/// A fault that one check falls over keeps no other from its verdict, and the table says how to see it again.
TEST(CheckTest, GoesOnAfterACrash)
{
    const ProgramRun run = check({BROKEN_BLOCK, "--only", "signals,input-pages,order", "--seed", "3"}, "reads past its input");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.out.find("order        "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(": 3 checks, 2 ok, 1 not\n"), std::string::npos) << run.out;
    const std::string again = std::string("again: esttform check ") + BROKEN_BLOCK + " --only input-pages --seed 3\n";
    EXPECT_NE(run.out.find(again), std::string::npos) << run.out;
}

TEST(CheckTest, SeedsRepeatAFinding)
{
    const Words words{BROKEN_BLOCK, "--only", "random-parameters", "--seed"};
    const auto with = [&](const char* seed) {
        Words all = words;
        all.push_back(seed);
        return check(all, "checks no parameter").out;
    };
    EXPECT_EQ(with("11"), with("11"));
    EXPECT_NE(with("11"), with("12"));
    EXPECT_NE(check({BLOCK, "--only", "truth"}).out.find("seed "), std::string::npos);
}

TEST(CheckTest, RefusesWrongUsage)
{
    struct {
        Words words;
        int code;
        const char* message;
    } const cases[] = {
        {{BLOCK, "--only", "nothing"}, 2, "--only: got \"nothing\""},
        {{BLOCK, "--timeout", "0"}, 2, "--timeout"},
        {{BLOCK, "--seed", "-1"}, 2, "--seed"},
        {{"none.so"}, 3, "none.so: cannot load"},
    };
    for (const auto& c : cases) {
        const ProgramRun run = check(c.words);
        EXPECT_EQ(run.code, c.code) << c.message;
        EXPECT_EQ(run.out, "") << c.message;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    }
}

}  // namespace

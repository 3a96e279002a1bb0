// Options from a file, the manual page and the completion: every command's options are in each of them.
#include "program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <set>

namespace {

/// "--name" of all long options of a text, roff's escapes taken away.
std::set<std::string> optionsIn(std::string text)
{
    text = std::regex_replace(text, std::regex(R"(\\-)"), "-");
    std::set<std::string> names;
    const std::regex name(R"(--[a-z][a-z0-9-]*)");
    for (std::sregex_iterator i(text.begin(), text.end(), name), end; i != end; ++i)
        names.insert(i->str());
    return names;
}

TEST(OptionPagesTest, ManualPageAndCompletionHaveEveryOptionOfEveryCommand)
{
    const auto manual = optionsIn(runProgram({"--manual-page"}).out);
    const std::string completion = runProgram({"--bash-completion"}).out;
    for (const char* const command : {"estimate", "trace", "codegen", "compare", "stabilise"}) {
        const std::string help = runProgram({command, "--help"}).out;
        const std::size_t begin = completion.find(std::string("    ") + command + ") case"), end = completion.find("esac ;;", begin);
        ASSERT_NE(begin, std::string::npos) << command;
        const auto completed = optionsIn(completion.substr(begin, end - begin));
        const std::regex entry(R"(\n +(?:-\w,)?(--[a-z0-9-]+))");
        int num = 0;
        for (std::sregex_iterator i(help.begin(), help.end(), entry), last; i != last; ++i, ++num) {
            EXPECT_EQ(manual.count((*i)[1]), 1u) << command << " " << (*i)[1];
            EXPECT_EQ(completed.count((*i)[1]), 1u) << command << " " << (*i)[1];
        }
        EXPECT_GT(num, 5) << command;
    }
    EXPECT_NE(completion.find("--layout-a) action=\"-W columns rows\""), std::string::npos);
}

TEST(OptionPagesTest, BashCompletesCommandsOptionsAndWords)
{
    const TempFolder folder;
    const std::string script = folder.write("completion.bash", runProgram({"--bash-completion"}).out);
    const struct { const char* words; const char* expected; } CASES[] = {
        {"esttform stab", "stabilise"},
        {"esttform compare --lay", "--layout-a --layout-b"},
        {"esttform compare --layout-a r", "rows"},
        {"esttform estimate a.csv --type sim", "similarity"},
        {"esttform estimate --seed ''", ""},
    };
    for (const auto& c : CASES) {
        const std::string run = "source '" + script + "'; COMP_WORDS=(" + c.words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _esttform; " +
                                "test \"${COMPREPLY[*]}\" = '" + c.expected + "'\n";
        EXPECT_EQ(std::system(("bash " + folder.write("run.bash", run)).c_str()), 0) << c.words;
    }
}

TEST(ConfigFileTest, GivesWhatTheCommandLineDoesNot)
{
    const TempFolder folder;
    const std::string pairs = folder.write("pairs.csv", similarityMatches(50));
    const std::string config = folder.write("settings.toml", "# for tests\n\n[compare]\nsize = \"9x9\"\n[estimate]\ntype = 'similarity' # two\n"
                                                             "MATCHES = \"" + pairs + "\"\nthreshold-px = 2\nno-refine = true\n"
                                                             "seed = 7\ncolumns = [\"x1\", 'y1', \"x2\", \"y2\"]\nformat = \"json\"\n");
    const ProgramRun plain = runProgram({"estimate", pairs, "--type", "similarity", "--threshold-px", "2", "--no-refine", "--seed", "7",
                                         "--format", "csv"});
    const ProgramRun configured = runProgram({"estimate", "--format", "csv", "--config", config});
    EXPECT_EQ(configured.code, 0) << configured.err;
    EXPECT_EQ(configured.out, plain.out) << "the command line goes before";
    const std::vector<std::string> given{"estimate", pairs, "--type", "similarity", "--threshold", "9", "--refine", "--seed", "7"};
    std::vector<std::string> both = given;
    both.insert(both.end(), {"--config", folder.write("bom.toml", "\xEF\xBB\xBF[estimate]\nthreshold-px = 2\nno-refine = true\n")});
    EXPECT_EQ(runProgram(both).out, runProgram(given).out) << "so does another option for the same thing";
    const ProgramRun endless = runProgram({"estimate", pairs, "--config", "/dev/zero"});
    EXPECT_EQ(endless.code, 2);
    EXPECT_NE(endless.err.find("/dev/zero:1: "), std::string::npos) << endless.err;
}

struct ConfigCase {
    const char* name;
    const char* text;
    const char* expected;   ///< behind the file's name
};
const ConfigCase CONFIGS[] = {
    {"unknownKey", "[estimate]\nnix = 3\n", ":2: nix: 'esttform estimate' has no option"},
    {"unknownSection", "[nix]\n", ":1: section \"nix\": no such command"},
    {"outsideASection", "seed = 1\n", ":1: seed: outside a section"},
    {"valueRefused", "[estimate]\n\nconfidence = 140\n", ":3: confidence: got \"140\", expected a number from"},
    {"otherCommand", "[trace]\nsteps = -1\n", ":2: steps: got \"-1\""},
    {"flagWithNumber", "[estimate]\nno-refine = 1\n", ":2: no-refine: got \"1\", expected true or false"},
    {"twoValues", "[estimate]\nseed = [1, 2]\n", ":2: seed: got 2 values"},
    {"twice", "[estimate]\nseed = 1\nseed = 1\n", ":3: seed: given twice"},
    {"notQuoted", "[estimate]\ntype = affine\n", ":2: type: got \"affine\", expected a text in quotes"},
    {"openText", "[estimate]\ntype = \"affine\n", ":2: type: text without its second \""},
    {"openList", "[estimate]\ncolumns = [\"a\",\n", ":2: columns: "},
    {"programsOwn", "[estimate]\nhelp = true\n", ":2: help: "},
};
class ConfigTest : public ::testing::TestWithParam<ConfigCase> {};

TEST_P(ConfigTest, RefusedWithFileLineAndKey)
{
    const TempFolder folder;
    const std::string config = folder.write("settings.toml", GetParam().text);
    const ProgramRun run = runProgram({"estimate", folder.write("pairs.csv", similarityMatches(50)), "--config", config});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("settings.toml" + std::string(GetParam().expected)), std::string::npos) << run.err;
}

INSTANTIATE_TEST_SUITE_P(, ConfigTest, ::testing::ValuesIn(CONFIGS),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace

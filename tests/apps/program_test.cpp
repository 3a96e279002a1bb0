// The program as a user runs it: results, messages, exit codes, files.
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

namespace {

using nlohmann::json;
using Words = std::vector<std::string>;

constexpr int RIGHT_SHARE_PERCENT = 60;                  // of similarityMatches

std::vector<json> jsonLines(const std::string& text)
{
    std::vector<json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(json::parse(line));
    return lines;
}

std::string withFrames(const std::vector<std::pair<int, int>>& numbersAndSizes)
{
    std::istringstream rows(similarityMatches(1000));
    std::string row, text = "frame,x1,y1,x2,y2\n";
    std::getline(rows, row);
    for (const auto& [number, size] : numbersAndSizes)
        for (int i = 0; i < size && std::getline(rows, row); ++i)
            text += std::to_string(number) + "," + row + "\n";
    return text;
}

/// TForm of similarityMatches, points in columns.
void expectTruth(const json& tform)
{
    const double truth[2][3] = {{0.8, -0.6, 10.0}, {0.6, 0.8, -20.0}};
    for (std::size_t row = 0; row < 2; ++row)
        for (std::size_t col = 0; col < 3; ++col)
            EXPECT_NEAR(tform[row][col].get<double>(), truth[row][col], 1e-9);
}

// ---- Results

TEST(EstimateTest, FindsTheTransformationInEveryFormAndType)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", similarityMatches(200));
    const ProgramRun run = runProgram({"estimate", path, "--type", "similarity", "--format", "json", "--seed", "1"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    const auto lines = jsonLines(run.out);
    ASSERT_EQ(lines.size(), 1u);
    expectTruth(lines[0]["tform"]);
    EXPECT_EQ(lines[0]["ptsNum"], 200);
    EXPECT_EQ(lines[0]["inlierNum"], 200 * RIGHT_SHARE_PERCENT / 100);
    ASSERT_EQ(lines[0]["inliers"].size(), 200u) << "one entry a pair";
    for (std::size_t i = 0; i < 200; ++i)
        EXPECT_EQ(lines[0]["inliers"][i], i % 5 < 3 ? 1 : 0) << "pair " << i;

    const ProgramRun rows = runProgram({"estimate", path, "--type", "affine", "--layout", "rows", "--format", "json", "--seed", "1"});
    const json tform = jsonLines(rows.out).at(0)["tform"];
    expectTruth(json{{tform[0][0], tform[1][0], tform[2][0]}, {tform[0][1], tform[1][1], tform[2][1]}});

    const ProgramRun single = runProgram({"estimate", path, "--points-type", "single", "--format", "json", "--seed", "1"});
    const json projective = jsonLines(single.out).at(0)["tform"];
    EXPECT_EQ(projective.size(), 3u);
    for (const json& row : projective)
        for (const json& value : row)                    // a double that is a single
            EXPECT_EQ(value.get<double>(), double(static_cast<float>(value.get<double>())));
}

TEST(EstimateTest, OneSeedGivesOneResult)
{
    const RunSetting setting{similarityMatches(100), {}, {}, false};
    const Words words{"estimate", "-", "--format", "json", "--samples", "3", "--seed"};
    const auto runWith = [&](const char* seed) {
        Words all = words;
        all.emplace_back(seed);
        return runProgram(all, setting).out;
    };
    EXPECT_EQ(runWith("5"), runWith("5"));
    bool isDifferent = false;                            // three samplings of 60 % right pairs rarely agree
    for (const char* seed : {"6", "7", "8", "9"})
        isDifferent = isDifferent || runWith(seed) != runWith("5");
    EXPECT_TRUE(isDifferent);
}

TEST(EstimateTest, FramesAreStepsOfVariableSize)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", withFrames({{4, 50}, {5, 1}, {9, 80}}));
    const Words words{"estimate", path, "--type", "similarity", "--format", "json", "--seed", "1"};
    const ProgramRun run = runProgram(words);
    EXPECT_EQ(run.code, 0) << run.err;
    const auto lines = jsonLines(run.out);
    ASSERT_EQ(lines.size(), 3u);
    expectTruth(lines[0]["tform"]);
    EXPECT_EQ(lines[1]["frame"], 5);
    EXPECT_EQ(lines[1]["ptsNum"], 1);
    EXPECT_EQ(lines[1]["error"].get<std::string>().substr(0, 20), "pts1OrPts2TooSmall: ");
    EXPECT_EQ(lines[1]["inlierNum"], 0);
    expectTruth(lines[2]["tform"]);
    EXPECT_EQ(lines[2]["step"], 2);

    Words bounded = words;
    bounded.insert(bounded.end(), {"--max-points", "80"});
    EXPECT_EQ(runProgram(bounded).out, run.out);
    bounded.back() = "79";
    const ProgramRun refused = runProgram(bounded);
    EXPECT_EQ(refused.code, 2);
    EXPECT_EQ(refused.err, "esttform: error: " + path + ": frame 9: 80 pairs, expected at most 79 (--max-points)\n");
    EXPECT_EQ(jsonLines(refused.out).size(), 2u);        // what was complete has left
}

TEST(EstimateTest, InliersFileHoldsTheRowsOfTheInput)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.tsv", "x1\ty1\tnote\tx2\ty2\n0\t0\ta,b\t0.50\t0\n9\t0\tc\t9\t0\n0\t9\td\t0\t9\n5\t5\te\t90\t90\n");
    const ProgramRun run = runProgram({"estimate", path, "--type", "similarity", "--seed", "1", "--samples", "100", "--inliers",
                                       folder.path("inliers.csv"), "-o", folder.path("out.txt")});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(readFile(folder.path("inliers.csv")),
              "x1,y1,note,x2,y2,inlier\n0,0,\"a,b\",0.50,0,1\n9,0,c,9,0,1\n0,9,d,0,9,1\n5,5,e,90,90,0\n");
    EXPECT_EQ(folder.names(), (Words{"inliers.csv", "out.txt", "pairs.tsv"}));

    // Read again, with a threshold below the 0.5 of the first row, so that two other pairs agree best.
    const ProgramRun again = runProgram({"estimate", folder.path("inliers.csv"), "--type", "similarity", "--seed", "1", "--samples", "100",
                                         "--threshold-px", "0.3", "--inliers", folder.path("again.csv")});
    EXPECT_EQ(again.code, 0) << again.err;
    EXPECT_EQ(readFile(folder.path("again.csv")),
              "x1,y1,note,x2,y2,inlier\n0,0,\"a,b\",0.50,0,0\n9,0,c,9,0,0\n0,9,d,0,9,1\n5,5,e,90,90,1\n");
}

TEST(EstimateTest, NothingFoundIsExitCodeOneWithAReason)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", "0,0,0,0\n1,0,1,0\nnan,2,2,2\nnan,3,3,3\n4,nan,4,4\n");
    const ProgramRun run = runProgram({"estimate", path, "--type", "affine", "--seed", "1", "--samples", "20", "--plot", folder.path("plot.svg")});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.out.find("no affine transformation found"), std::string::npos);
    EXPECT_NE(run.err.find("pairs.csv: no affine transformation found: 2 pairs with finite coordinates, 3 are needed"), std::string::npos) << run.err;
    EXPECT_EQ(readFile(folder.path("plot.svg")).substr(0, 5), "<?xml");
}

TEST(EstimateTest, CountsPairsThatAreNotFinite)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", similarityMatches(50) + "nan,1,2,3\n1,inf,2,3\n");
    const Words words{"estimate", path, "--type", "similarity", "--seed", "1", "--format", "json"};
    const ProgramRun run = runProgram(words);
    EXPECT_EQ(run.err, "esttform: warning: " + path + ": 2 of 52 pairs have a coordinate that is not finite; they are never inliers\n");
    Words quiet = words;
    quiet.emplace_back("--quiet");
    EXPECT_EQ(runProgram(quiet).err, "");
    const json inliers = jsonLines(run.out).at(0)["inliers"];
    EXPECT_EQ(inliers.at(50), 0);
    EXPECT_EQ(inliers.at(51), 0);
}

TEST(EstimateTest, PlotStepChoosesTheStep)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", withFrames({{4, 1}, {5, 60}, {6, 30}}));
    const Words words{"estimate", path, "--type", "similarity", "-o", folder.path("out.txt"), "--plot", folder.path("plot.svg"), "--plot-step"};
    Words last = words, none = words;
    last.emplace_back("2");
    none.emplace_back("3");
    EXPECT_EQ(runProgram(last).code, 0);
    EXPECT_TRUE(std::filesystem::remove(folder.path("plot.svg")));
    EXPECT_TRUE(std::filesystem::remove(folder.path("out.txt")));
    const ProgramRun run = runProgram(none);
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, "esttform: error: --plot-step: got 3, expected a step from 0 to 2\n");
    EXPECT_EQ(folder.names(), Words{"pairs.csv"});       // nothing half-written
}

// ---- Wrong usage

struct UsageCase {
    const char* name;
    Words words;                                         ///< PAIRS stands for a good file, BAD for one with three pairs
    int code;
    std::string message;                                 ///< after "esttform: error: "
};

void PrintTo(const UsageCase& c, std::ostream* out)
{
    *out << c.name;
}

class UsageTest : public ::testing::TestWithParam<UsageCase> {};

TEST_P(UsageTest, OneLineAndAnExitCode)
{
    const TempFolder folder;
    const std::string good = folder.write("pairs.csv", similarityMatches(20));
    const std::string bad = folder.write("bad.csv", "1,2,3,4\n5,6,7,8\n9,1,2,4\n");
    std::filesystem::create_symlink("loop", folder.path("loop"));
    const Words before = folder.names();
    Words words = GetParam().words;
    for (std::string& word : words)
        word = word == "PAIRS" ? good : word == "BAD" ? bad : word.rfind("OUT/", 0) == 0 ? folder.path(word.substr(4)) : word;
    const ProgramRun run = runProgram(words);
    EXPECT_EQ(run.code, GetParam().code);
    std::string message = run.err;
    for (std::size_t at; (at = message.find(folder.path(""))) != std::string::npos;)
        message.erase(at, folder.path("").size());
    EXPECT_EQ(message, "esttform: error: " + GetParam().message + "\n");
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(folder.names(), before);
}

const UsageCase USAGES[] = {
    {"tooFewPairs", {"estimate", "BAD"}, 2, "bad.csv: 3 pairs, a projective transformation needs at least 4"},
    {"missingFile", {"estimate", "none.csv"}, 2, "none.csv: cannot open: No such file or directory"},
    {"noFile", {"estimate"}, 2, "MATCHES is required; see esttform estimate --help"},
    {"unknownCommand", {"estimat"}, 2, "no command \"estimat\"; 'esttform --help' lists them"},
    {"noCommand", {}, 2, "A subcommand is required; see esttform --help"},
    {"unknownOption", {"estimate", "PAIRS", "--speed", "1"}, 2, "not expected: --speed 1; see esttform estimate --help"},
    {"wrongValue", {"estimate", "PAIRS", "--confidence", "140"}, 2,
     "--confidence: got \"140\", expected a number from 0 to 100 (percent); see esttform estimate --help"},
    {"contradiction", {"estimate", "PAIRS", "--threshold", "1", "--threshold-px", "1"}, 2,
     "--threshold and --threshold-px: both given, expected one"},
    {"inliersWithoutMask", {"estimate", "PAIRS", "--no-robust", "--inliers", "OUT/in.csv"}, 2,
     "--inliers: the block has no inlier output with these settings; leave out --no-robust and --no-inlier-output"},
    {"plotName", {"estimate", "PAIRS", "--plot", "OUT/plot.gif"}, 2,
     "--plot: got \"plot.gif\", expected a name that ends in .svg, .png or .pdf"},
    {"plotStepAlone", {"estimate", "PAIRS", "--plot-step", "1"}, 2, "--plot-step: no effect without --plot or --report"},
    {"imageAlone", {"estimate", "PAIRS", "--image2", "a.png"}, 2, "--image2: no effect without --plot or --report"},
    {"plotIsReport", {"estimate", "PAIRS", "--plot", "OUT/a.svg", "--report", "OUT/a.svg"}, 2,
     "--plot and --report: both write to a.svg"},
    {"sameOutput", {"estimate", "PAIRS", "-o", "OUT/a", "--inliers", "OUT/./a"}, 2, "--output and --inliers: both write to ./a"},
    {"outputIsInput", {"estimate", "PAIRS", "-o", "PAIRS"}, 2, "--output: pairs.csv is read as MATCHES; name another file"},
    {"noName", {"estimate", "PAIRS", "-o", ""}, 2, "got an empty name for a file to write to"},
    {"linkLoop", {"estimate", "OUT/loop"}, 2, "loop: cannot open: Too many levels of symbolic links"},
    {"bothToStdout", {"estimate", "PAIRS", "--inliers", "-"}, 2, "--output and --inliers: both write to standard output"},
    {"noFolder", {"estimate", "PAIRS", "-o", "OUT/none/a"}, 2, "none/a: cannot create: No such file or directory"},
    {"badRowLeavesNoFile", {"estimate", "BAD", "--points-type", "uint8", "--columns", "1,2,3,9", "-o", "OUT/a"}, 2,
     "bad.csv:1: --columns: got position 9, expected 1 to 4"},
};
INSTANTIATE_TEST_SUITE_P(, UsageTest, ::testing::ValuesIn(USAGES),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(BlockTest, RefusedParametersAreUsageAndAMissingBlockIsCodeThree)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", similarityMatches(20));
    const ProgramRun refused = runProgram({"estimate", path, "--param", "desiredConfidence=140"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("140"), std::string::npos) << refused.err;
    EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1);

    const ProgramRun missing = runProgram({"estimate", path, "--block", folder.path("none.so")});
    EXPECT_EQ(missing.code, 3);
    EXPECT_NE(missing.err.find("none.so: cannot load"), std::string::npos) << missing.err;
    const ProgramRun other = runProgram({"estimate", path}, {"", {"ESTTFORM_BLOCK=" + path}, "", false});
    EXPECT_EQ(other.code, 3);
    EXPECT_EQ(other.out, "");
}

// ---- Outputs that break

TEST(OutputTest, AFullDiskIsReported)
{
    const RunSetting setting{similarityMatches(20), {}, "/dev/full", false};
    for (const Words& words : {Words{"estimate", "-"}, Words{"params"}, Words{"trace", "-"}, Words{"--help"}}) {
        const ProgramRun run = runProgram(words, setting);
        EXPECT_EQ(run.code, 2) << words[0];
        EXPECT_EQ(run.err, "esttform: error: standard output: cannot write: No space left on device\n") << words[0];
    }
}

TEST(OutputTest, AClosedPipeEndsTheRunQuietlyAndLeavesNoFile)
{
    const TempFolder folder;
    const ProgramRun run = runProgram({"estimate", "-", "--inliers", folder.path("inliers.csv")}, {similarityMatches(20), {}, "", true});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(folder.names(), Words{});
}

TEST(OutputTest, WhatALimitCutsOffLeavesTheRest)
{
    const TempFolder folder;
    const std::string old(60000, '-');
    folder.write("old.jsonl", old);
    for (int i = 0; i < 9; ++i)
        folder.write("p" + std::to_string(i) + ".csv", similarityMatches(400));
    const std::string script = "cd '" + folder.path("") + "' && ulimit -f 120 || exit 9; " ESTTFORM_PROGRAM " batch 'p*.csv' -o - -q 2>/dev/null >>old.jsonl; "
                               "[ $? = 2 ] && " ESTTFORM_PROGRAM " estimate none.csv 2>/dev/full; [ $? = 2 ] && ulimit -f 8 && "
                               ESTTFORM_PROGRAM " estimate p0.csv --inliers in.csv -q 2>&-; [ $? = 2 ] && touch told";
    EXPECT_EQ(std::system(("(" + script + ") > /dev/null").c_str()), 0) << script;
    EXPECT_EQ(readFile(folder.path("old.jsonl")).substr(0, old.size()), old);
    EXPECT_TRUE(std::filesystem::exists(folder.path("told")));
    EXPECT_EQ(folder.names().size(), 11u);               // no part of a file
}

// ---- The other commands

TEST(TraceTest, ShowsTheLifeOfTheBlock)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", withFrames({{0, 20}, {1, 20}, {2, 20}}));
    const ProgramRun run = runProgram({"trace", path, "--steps", "2"});
    ASSERT_EQ(run.code, 0) << run.err;
    std::size_t at = 0;
    for (const char* call : {"mdlInitializeSizes", "mdlCheckParameters", "mdlSetWorkWidths", "mdlStart", "mdlOutputs", "mdlOutputs", "mdlTerminate"}) {
        at = run.out.find(call, at);
        ASSERT_NE(at, std::string::npos) << call;
        at += std::strlen(call);
    }
    const ProgramRun refused = runProgram({"trace", path, "--param", "method=3"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.out.find("mdlCheckParameters"), std::string::npos);
    EXPECT_EQ(refused.out.find("mdlStart"), std::string::npos);
}

TEST(ParamsTest, ListsAllEighteen)
{
    const ProgramRun run = runProgram({"params"});
    EXPECT_EQ(run.code, 0);
    for (const char* text : {" 0  transformType: ", " 8  desiredConfidence: ", "17  pointsInRows: "})
        EXPECT_NE(run.out.find(text), std::string::npos) << text;
}

TEST(HelpTest, NamesDefaultsAndUnits)
{
    const ProgramRun help = runProgram({"estimate", "--help"});
    EXPECT_EQ(help.code, 0);
    for (const char* text : {"SQUARED", "(default 9)", "(default 99.9)", "--seed N", "Exit codes"})
        EXPECT_NE(help.out.find(text), std::string::npos) << text;
    std::istringstream lines(help.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 100u) << line;
    EXPECT_EQ(runProgram({"--version"}).out.substr(0, 9), "esttform ");
}

}  // namespace

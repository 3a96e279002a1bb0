// Input that comes bit by bit, and signals in the middle of it.
#include "program.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>

namespace {

using Words = std::vector<std::string>;

/// Frames of these sizes, each with the rows of its own.
std::string framesOf(const std::vector<int>& sizes)
{
    std::string text = "frame,x1,y1,x2,y2\n";
    for (std::size_t frame = 0; frame < sizes.size(); ++frame) {
        std::istringstream rows(similarityMatches(sizes[frame]));
        std::string row;
        std::getline(rows, row);
        while (std::getline(rows, row))
            text += std::to_string(frame) + "," + row + "\n";
    }
    return text;
}

int lineNumIn(const std::string& text)
{
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

/// Text of the hidden file of an output that is being written.
std::string unfinished(const TempFolder& folder, const std::string& name)
{
    for (const std::string& entry : folder.names())
        if (entry.rfind("." + name + ".", 0) == 0)
            return readFile(folder.path(entry));
    return "";
}

Words estimate(const Words& more)
{
    Words words{"estimate", "--type", "similarity", "--samples", "40", "--seed", "3", "--format", "json"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

TEST(StreamTest, HasTheResultsOfAFileThoughLargerStepsCome)
{
    const TempFolder folder;
    const std::string text = framesOf({10, 5, 25, 24, 200, 30, 1, 401});
    RunSetting setting;
    setting.input = text;
    const ProgramRun run = runProgram(estimate({folder.write("pairs.csv", text)}));
    EXPECT_EQ(lineNumIn(run.out), 8) << run.err;
    EXPECT_EQ(runProgram(estimate({"-"}), setting).out, run.out);
    EXPECT_EQ(runProgram({"trace", "-", "--steps", "8"}, setting).code, 0);
}

TEST(StreamTest, StepsLeaveWhenCompleteAndStayWhenInterrupted)
{
    const TempFolder folder;
    const std::string pipe = folder.path("pipe"), out = folder.path("out.jsonl"), inliers = folder.path("inliers.csv");
    const std::string text = framesOf({10, 30, 20});
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        RunSetting setting;
        setting.meanwhile = [&](pid_t program) {
            std::ofstream writer(pipe);
            writer << text << std::flush;                // the last frame might go on
            waitUntil([&] { return lineNumIn(unfinished(folder, "out.jsonl")) == 2; });
            kill(program, signal);
            waitUntil([&] { return folder.names().front()[0] != '.'; });
        };
        const ProgramRun run = runProgram(estimate({pipe, "-o", out, "--inliers", inliers, "--report", folder.path("page.html")}), setting);
        EXPECT_EQ(run.code, 130);
        EXPECT_EQ(lineNumIn(readFile(out)), 2);
        EXPECT_EQ(lineNumIn(readFile(inliers)), 1 + 10 + 30);
        EXPECT_EQ(folder.names(), (Words{"inliers.csv", "out.jsonl", "pipe"}));
        std::filesystem::remove(out);
    }
}

TEST(StreamTest, ALongStepIsInterruptedAtOnce)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", similarityMatches(100)), old = folder.write("out.jsonl", "old");
    RunSetting setting;
    setting.meanwhile = [&](pid_t program) {
        waitUntil([&] { return folder.names().front()[0] == '.'; });
        kill(program, SIGINT);
    };
    const ProgramRun run = runProgram({"estimate", path, "--samples", "2000000000", "-o", old}, setting);
    EXPECT_EQ(run.code, 130);
    EXPECT_EQ(readFile(old), "old");                     // nothing was finished
    EXPECT_EQ(folder.names(), (Words{"out.jsonl", "pairs.csv"}));
}

TEST(StreamTest, FollowWaitsForMoreLines)
{
    const TempFolder folder;
    const std::string text = framesOf({10, 30, 20, 5});
    const std::size_t half = text.find("\n1,") + 7;          // in the middle of a number
    const std::string path = folder.write("pairs.csv", text.substr(0, half));
    const std::string all = runProgram(estimate({folder.write("all.csv", text)})).out;
    RunSetting setting;
    setting.meanwhile = [&](pid_t program) {
        std::ofstream(path, std::ios::app) << text.substr(half);
        waitUntil([&] { return std::filesystem::exists(folder.path("out.jsonl")) && lineNumIn(readFile(folder.path("out.jsonl"))) == 3; });
        kill(program, SIGINT);
    };
    EXPECT_EQ(runProgram(estimate({path, "--follow", "-o", folder.path("out.jsonl")}), setting).code, 130);
    const std::string followed = readFile(folder.path("out.jsonl"));
    EXPECT_EQ(followed, all.substr(0, followed.size()));
    EXPECT_EQ(lineNumIn(followed), 3);

    EXPECT_NE(runProgram(estimate({path, "--follow", "--plot", "a.svg"})).err.find("--plot: no effect with --follow"), std::string::npos);
    EXPECT_NE(runProgram(estimate({"-", "--follow"})).err.find("--follow: got standard input, expected a file"), std::string::npos);
    const std::string noFrames = folder.write("single.csv", similarityMatches(9));
    EXPECT_NE(runProgram(estimate({noFrames, "--follow"})).err.find("single.csv: no column frame"), std::string::npos);
}

}  // namespace

// Many files by several processes: what stands in the results, and what becomes of them when something goes wrong.
#include "batch/batch_files.h"
#include "failure.h"
#include "batch/batch_seed.h"
#include "output/progress.h"
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>

namespace {

using nlohmann::json;
using Words = std::vector<std::string>;

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

int lineNumOf(const std::string& path)
{
    return std::filesystem::exists(path) ? static_cast<int>(linesOf(readFile(path)).size()) : 0;
}

/// A folder with matches of several sizes, so that the block is opened again on the way, and one that gives nothing.
class BatchTest : public ::testing::Test {
protected:
    BatchTest()
    {
        std::filesystem::create_directory(folder.path("pairs"));
        int idx = 0;
        for (const int size : {40, 7, 120, 33, 300, 12, 81, 25})
            folder.write("pairs/p" + std::to_string(idx++) + ".csv", similarityMatches(size));
        folder.write("pairs/q.tsv", "1\t1\t5\t5\nnan\t2\t5\t5\nnan\t3\t5\t5\n");
        folder.write("pairs/readme.txt", "no matches");
    }

    Words command(const std::string& results, const Words& more = {}) const
    {
        Words words{"batch", folder.path("pairs"), "--type", "similarity", "--samples", "30", "--seed", "4", "-o", results};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    /// The results of an undisturbed run.
    std::string wholeResults(const std::string& name) const
    {
        EXPECT_EQ(runProgram(command(folder.path(name))).code, 0);
        return readFile(folder.path(name));
    }

    TempFolder folder;
};

TEST_F(BatchTest, DiagnosesEveryFile)
{
    folder.write("pairs/bad.csv", "x1,y1\n");
    const std::string results = folder.path("results.jsonl"), table = folder.path("results.csv");
    EXPECT_EQ(runProgram(command(results, {"--diagnose"})).code, 2);
    EXPECT_EQ(runProgram(command(table, {"--diagnose"})).code, 2);
    const std::vector<std::string> lines = linesOf(readFile(results)), rows = linesOf(readFile(table));
    ASSERT_EQ(lines.size(), 10u);
    ASSERT_EQ(rows.size(), 11u);
    EXPECT_TRUE(json::parse(lines[0])["diagnosis"].is_null()) << "bad.csv";
    EXPECT_EQ(json::parse(lines[1])["diagnosis"]["warnings"], json::array()) << "p0.csv";
    EXPECT_EQ(json::parse(lines[9])["diagnosis"]["warnings"][0]["code"], "notFound") << "q.tsv";
    EXPECT_EQ(rows[1].substr(rows[1].size() - 2), "\",") << "an empty last column";
    EXPECT_EQ(std::count(rows[2].begin(), rows[2].end(), ','), std::count(rows[0].begin(), rows[0].end(), ',')) << rows[2];
    EXPECT_EQ(rows[10].substr(rows[10].size() - 9), ",notFound");
}

TEST_F(BatchTest, EachFileHasTheResultOfEstimateWhateverTheNumberOfJobs)
{
    const std::string one = folder.path("one.jsonl"), table = folder.path("one.csv");
    const ProgramRun run = runProgram(command(one, {"--jobs", "1"}));
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.err.find("pairs/q.tsv: no similarity transformation found: "), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("esttform: 9 files: 8 with a transformation, 1 without, 0 bad\n"), std::string::npos) << run.err;
    EXPECT_EQ(runProgram(command(folder.path("three.jsonl"), {"--jobs", "3", "--quiet"})).err, "");
    EXPECT_EQ(readFile(folder.path("three.jsonl")), readFile(one));
    EXPECT_EQ(runProgram(command("-", {"--jobs", "2"})).out, readFile(one));
    EXPECT_EQ(runProgram(command(table)).code, 0);

    const auto lines = linesOf(readFile(one)), rows = linesOf(readFile(table));
    ASSERT_EQ(lines.size(), 9u);
    ASSERT_EQ(rows.size(), 10u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        json line = json::parse(lines[i]);
        const std::string file = line["file"], seed = std::to_string(line["seed"].get<std::uint32_t>());
        const Words estimate{"estimate", file, "--type", "similarity", "--samples", "30", "--seed", seed, "--format"};
        Words asJson = estimate, asCsv = estimate;
        asJson.emplace_back("json");
        asCsv.emplace_back("csv");
        line.erase("file");
        line.erase("seed");
        line["step"] = 0;
        EXPECT_EQ(line, json::parse(runProgram(asJson).out)) << file;
        const auto single = linesOf(runProgram(asCsv).out);
        EXPECT_EQ(rows[0], "file,seed" + single.at(0).substr(4));
        EXPECT_EQ(rows[i + 1], file + "," + seed + single.at(1).substr(1));
    }
}

TEST_F(BatchTest, BadFilesAreReportedAndTheRestGoesOn)
{
    folder.write("pairs/p1.csv", "x1,y1,x2,y2\n1,2,3\n");
    folder.write("pairs/p2.csv", "frame,x1,y1,x2,y2\n1,1,1,1,1\n2,1,1,1,1\n");
    const std::string missing = folder.path("p9.csv");
    const ProgramRun run = runProgram(command(folder.path("out.jsonl"), {missing}));
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.err.find("esttform: error: " + folder.path("pairs/p1.csv") + ":2: 3 columns, expected 4"), std::string::npos);
    EXPECT_NE(run.err.find(missing + ": cannot open: No such file"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("10 files: 6 with a transformation, 1 without, 3 bad"), std::string::npos) << run.err;
    const auto lines = linesOf(readFile(folder.path("out.jsonl")));
    ASSERT_EQ(lines.size(), 10u);
    const json bad = json::parse(lines[3]);
    EXPECT_TRUE(bad["tform"].is_null());
    EXPECT_NE(bad["error"].get<std::string>().find("more than one step"), std::string::npos);
    EXPECT_FALSE(json::parse(lines[4])["tform"].is_null());

    runProgram(command(folder.path("out.csv"), {missing}));
    for (const std::string& row : linesOf(readFile(folder.path("out.csv"))))
        EXPECT_GE(std::count(row.begin(), row.end(), ','), 12) << row;
    // What was bad is known to a run that goes on.
    EXPECT_EQ(runProgram(command(folder.path("out.jsonl"), {missing, "--resume"})).code, 2);
    EXPECT_EQ(runProgram(command(folder.path("out.csv"), {missing, "--resume"})).code, 2);
}

// ---- Going on

TEST_F(BatchTest, ResumeEndsWithTheSameResultsWhereverTheyWereTorn)
{
    for (const char* const name : {"out.jsonl", "out.csv"}) {
        const std::string whole = wholeResults(name);
        const std::size_t lineEnd = whole.find('\n', whole.size() / 2) + 1;
        for (const std::size_t size : {std::size_t{0}, std::size_t{3}, lineEnd - 1, lineEnd, lineEnd + 1, whole.size() - 1, whole.size()}) {
            folder.write(name, whole.substr(0, size));
            const ProgramRun run = runProgram(command(folder.path(name), {"--resume"}));
            EXPECT_EQ(run.code, 0) << run.err;
            EXPECT_TRUE(readFile(folder.path(name)) == whole) << name << " torn at " << size;
        }
    }
}

TEST_F(BatchTest, ResumeLeavesAloneWhatIsNotItsOwn)
{
    struct ResumeCase {
        const char* name;
        std::string results;
        Words words;
        const char* message;
    };
    const std::string pairs = folder.path("pairs"), lines = wholeResults("whole.jsonl"), table = wholeResults("whole.csv");
    const std::string extra = lines + linesOf(lines).back() + "\n";
    for (const ResumeCase& c : {ResumeCase{"seed.jsonl", lines, {pairs, "--seed", "5", "--type", "similarity"}, "--resume needs the same --seed"},
                                ResumeCase{"files.jsonl", lines, {pairs + "/p1.csv", "--seed", "4", "--type", "similarity"}, "--resume needs the same files"},
                                ResumeCase{"more.jsonl", extra, {pairs, "--seed", "4", "--type", "similarity"}, "q.tsv\", expected no more"},
                                ResumeCase{"other.jsonl", "{\"step\":0}\n", {pairs}, ":1: no result of a batch"},
                                ResumeCase{"type.jsonl", lines, {pairs, "--seed", "4", "--type", "projective"}, "no result of a batch with these"},
                                ResumeCase{"columns.csv", table, {pairs, "--type", "projective"}, ":1: other columns"}}) {
        const std::string path = folder.write(c.name, c.results);
        Words words{"batch", "-o", path, "--resume"};
        words.insert(words.end(), c.words.begin(), c.words.end());
        const ProgramRun run = runProgram(words);
        EXPECT_EQ(run.code, 2) << c.name;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << c.name << ": " << run.err;
        EXPECT_EQ(readFile(path), c.results) << c.name;
    }
}

TEST_F(BatchTest, InterruptedItKeepsWhatIsDone)
{
    const std::string whole = wholeResults("whole.jsonl"), results = folder.path("out.jsonl"), last = folder.path("pairs/q.tsv");
    const std::string content = readFile(last);
    for (const int signal : {SIGINT, SIGTERM}) {
        std::filesystem::remove(last);
        ASSERT_EQ(mkfifo(last.c_str(), 0600), 0);        // nobody writes to it: the last file takes for ever
        RunSetting setting;
        setting.meanwhile = [&](pid_t program) {
            waitUntil([&] { return lineNumOf(results) == 8; });
            kill(program, signal);
        };
        const ProgramRun run = runProgram(command(results, {last, "--jobs", "2"}), setting);
        EXPECT_EQ(run.code, 130);
        EXPECT_NE(run.err.find("8 files: 8 with a transformation, 0 without, 0 bad; 1 left, --resume goes on"), std::string::npos) << run.err;
        EXPECT_EQ(lineNumOf(results), 8);
        std::filesystem::remove(last);
        folder.write("pairs/q.tsv", content);
        EXPECT_EQ(runProgram(command(results, {last, "--resume"})).code, 0);
        EXPECT_EQ(readFile(results), whole);
        std::filesystem::remove(results);
    }
}

TEST_F(BatchTest, AProcessThatDiesCostsItsFileOnly)
{
    const std::string file = folder.path("pairs/p3.csv"), results = folder.path("out.jsonl");
    std::filesystem::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    RunSetting setting;
    setting.meanwhile = [&](pid_t program) {
        waitUntil([&] { return lineNumOf(results) == 3; });
        std::ifstream children("/proc/" + std::to_string(program) + "/task/" + std::to_string(program) + "/children");
        pid_t worker = 0;
        ASSERT_TRUE(children >> worker);
        kill(worker, SIGKILL);
    };
    const ProgramRun run = runProgram(command(results, {file, "--jobs", "1"}), setting);
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.err.find(file + ": the process that worked on it ended: signal 9"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("9 files: 7 with a transformation, 1 without, 1 bad"), std::string::npos) << run.err;
}

// ---- Usage

TEST_F(BatchTest, RefusesWhatCannotBeMeant)
{
    const std::string empty = folder.path("empty"), pairs = folder.path("pairs");
    std::filesystem::create_directory(empty);
    struct UsageCase {
        Words words;
        const char* message;
    };
    for (const UsageCase& c :
         {UsageCase{{pairs, "-o", "out.txt"}, "--output: got \"out.txt\", expected a name that ends in .jsonl or .csv"},
          UsageCase{{pairs}, "--output is required"},
          UsageCase{{pairs, "-o", "-", "--resume"}, "--resume: no effect with standard output"},
          UsageCase{{empty, "-o", "-"}, "empty: no file in the folder, expected *.csv or *.tsv"},
          UsageCase{{pairs + "/z*", "-o", "-"}, "pairs/z*: no file has such a name"},
          UsageCase{{pairs + "/p1.csv", "-o", pairs + "/p1.csv"}, "is one of the files to read"},
          UsageCase{{pairs, "-o", pairs + "/p1.csv"}, "is one of the files to read"},
          UsageCase{{pairs, "-o", folder.path("none/out.csv")}, "none/out.csv: cannot write: No such file"},
          UsageCase{{pairs, "-o", "/dev/full.csv/x.csv"}, "cannot write: "},
          UsageCase{{pairs, "-o", "-", "--jobs", "0"}, "--jobs: got \"0\", expected a whole number from 1 to 1024"}}) {
        Words words{"batch"};
        words.insert(words.end(), c.words.begin(), c.words.end());
        const ProgramRun run = runProgram(words);
        EXPECT_EQ(run.code, 2);
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    }
    RunSetting closed, full;
    closed.isOutputClosed = true;
    full.outputDevice = "/dev/full";
    const ProgramRun silent = runProgram(command("-", {"-q"}), closed), told = runProgram(command("-", {"-q"}), full);
    EXPECT_EQ(silent.code, 2);
    EXPECT_EQ(silent.err, "");
    EXPECT_EQ(told.code, 2);
    EXPECT_EQ(told.err, "esttform: error: standard output: cannot write: No space left on device\n");
}

TEST_F(BatchTest, ListIsSortedAndHoldsEachFileOnce)
{
    const std::string pairs = folder.path("pairs");
    ASSERT_EQ(mkfifo((pairs + "/p12.csv").c_str(), 0600), 0);      // waited for only by those who name it
    EXPECT_EQ(esttform::app::batchFiles({pairs + "/q.tsv", pairs + "/p[21]*.csv", pairs + "/p1.csv"},
                                         esttform::app::FileIdentity("-")),
              (Words{pairs + "/p1.csv", pairs + "/p2.csv", pairs + "/q.tsv"}));
    // Of a folder: the results of an earlier batch and hidden files are no matches; a link that leads nowhere is told.
    const Words all = esttform::app::batchFiles({pairs}, esttform::app::FileIdentity("-"));
    folder.write("pairs/results.csv", "file,seed,");
    folder.write("pairs/.hidden.csv", "1,2,3,4\n");
    std::filesystem::create_symlink("nowhere", pairs + "/z.csv");
    Words more = all;
    more.push_back(pairs + "/z.csv");
    EXPECT_EQ(esttform::app::batchFiles({pairs}, esttform::app::FileIdentity(pairs + "/results.csv")), more);
    std::filesystem::remove(pairs + "/results.csv");
    EXPECT_THROW(esttform::app::batchFiles({pairs}, esttform::app::FileIdentity(all.front())), esttform::app::Failure);
    EXPECT_EQ(esttform::app::batchSeed(0, 0), 2462723854U);   // later runs go on with the seeds of earlier ones
    EXPECT_EQ(esttform::app::batchSeed(7, 123), 2995101155U);
}

TEST(ProgressTest, LineShowsBarCountsRateAndRest)
{
    using esttform::app::Progress;
    EXPECT_EQ(Progress::lineOf("files", 2500, 10000, 5.0), "[#####...............] 2500 of 10000 files, 500/s, 0:15 left");
    EXPECT_EQ(Progress::lineOf("files", 0, 3, 2.0), "[....................] 0 of 3 files, 0.00/s");
    EXPECT_EQ(Progress::lineOf("steps", 3, 6000, 2.0), "[....................] 3 of 6000 steps, 1.50/s, 1:06:38 left");
    EXPECT_EQ(Progress::lineOf("steps", 70, 0, 2.0), "70 steps, 35/s");
}

}  // namespace

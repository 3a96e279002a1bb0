// Comparing results: distances of corners, agreement of inliers, matching of steps, exit codes.
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>

namespace {

using nlohmann::json;

const std::string IDENTITY = R"("tform":[[1.0,0.0,0.0],[0.0,1.0,0.0]])";

std::string line(int step, const std::string& tform, const std::string& rest = R"("inliers":null)")
{
    return "{\"step\":" + std::to_string(step) + "," + tform + "," + rest + "}\n";
}

json comparison(const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{"compare", "--format", "json"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const ProgramRun run = runProgram(words);
    EXPECT_EQ(run.err, "");
    return json::parse(run.out);
}

struct DistanceCase {
    const char* name;
    const char* b;
    double meanPx, maxPx;
    std::vector<std::string> arguments;
};
// Against the identity, over a picture of 101 by 201 pixels.
const DistanceCase DISTANCES[] = {
    {"shift", R"("tform":[[1,0,3],[0,1,-4]])", 5.0, 5.0, {}},
    {"rotationByAQuarter", R"("tform":[[0,-1,0],[1,0,0]])", (std::hypot(100, 100) + std::hypot(200, 200) + std::hypot(300, 100)) / 4,
     std::hypot(300, 100), {}},
    {"originAtTheMiddle", R"("tform":[[2,0,0],[0,2,0]])", std::hypot(50, 100), std::hypot(50, 100), {"--origin", "-50,-100"}},
    {"oblongInRows", R"("tform":[[1,0],[0,1],[3,-4]])", 5.0, 5.0, {}},
    {"projectiveInRows", R"("tform":[[1,0,0],[0,1,0],[3,-4,1]])", 5.0, 5.0, {"--layout-b", "rows"}},
    {"perspective", R"("tform":[[1,0,0],[0,1,0],[0.01,0,1]])", (50.0 + std::hypot(50, 100)) / 4, std::hypot(50, 100), {}},
};
class DistanceTest : public ::testing::TestWithParam<DistanceCase> {};

TEST_P(DistanceTest, IsThatOfTheCorners)
{
    const TempFolder folder;
    std::vector<std::string> arguments{folder.write("a.json", line(0, IDENTITY)), folder.write("b.json", line(0, GetParam().b)),
                                       "--size", "101x201"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    const json step = comparison(arguments)["steps"].at(0);
    EXPECT_NEAR(step["meanPx"], GetParam().meanPx, 1e-9);
    EXPECT_NEAR(step["maxPx"], GetParam().maxPx, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(, DistanceTest, ::testing::ValuesIn(DISTANCES),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(CompareTest, MatchesStepsByFrameAndNamesWhatIsMissing)
{
    const TempFolder folder;
    const std::string a = folder.write("a.json", line(0, IDENTITY, R"("frame":0,"inliers":[1,1,0,0])") +
                                                     line(1, IDENTITY, R"("frame":2,"inliers":[1,1,1,0])") +
                                                     line(2, R"("tform":[[0,0,0],[0,0,0]])", R"("frame":3,"inliers":[0,0])"));
    const std::string shifted = "[[1,0,0.5],[0,1,0],[0,0,1]]";
    const std::string truth = folder.write("truth.json", "{\n\"frame_size\": [640, 480],\n\"matrices\": [" + shifted + "," + shifted +
                                                             "," + shifted + "," + shifted + "]}");
    const std::string matches = folder.write("matches.csv", "frame,p,q,x2,y2\n0,0,0,0,0\n0,9,9,9,9\n0,9,0,9,3\n0,9,0,99,3\n"
                                                            "2,0,0,0,0\n2,9,9,99,9\n2,1,1,1,1\n2,5,5,5,55\n");
    const json all = comparison({a, truth, "--matches", matches, "--columns", "p,q,x2,y2,frame", "--tolerance", "0.6"});
    ASSERT_EQ(all["steps"].size(), 4u);
    EXPECT_EQ(all["steps"][0]["inliers"], json({{"a", 2}, {"b", 2}, {"both", 2}, {"agreement", 1.0}}));
    EXPECT_EQ(all["steps"][1]["foundA"], false) << "frame 1";
    EXPECT_EQ(all["steps"][2]["step"], 1) << "frame 2 is the second step";
    EXPECT_EQ(all["steps"][2]["meanPx"], 0.5);
    EXPECT_EQ(all["steps"][2]["inliers"]["both"], 2);
    EXPECT_NEAR(all["steps"][2]["inliers"]["agreement"], 2.0 / 3.0, 1e-12);
    EXPECT_EQ(all["summary"]["onlyBNum"], 2);
    EXPECT_EQ(all["summary"]["differingNum"], 2) << "what is missing differs";
    EXPECT_EQ(all["size"], json({640, 480}));

    EXPECT_EQ(runProgram({"compare", a, truth}).code, 0);
    EXPECT_EQ(runProgram({"compare", a, truth, "--tolerance", "0.6"}).code, 1);
    EXPECT_EQ(runProgram({"compare", a, truth, "--tolerance", "0.6", "--ignore-missing"}).code, 0);
    EXPECT_EQ(runProgram({"compare", a, truth, "--tolerance", "0.4", "--ignore-missing"}).code, 1);
}

TEST(CompareTest, MatchesLinesOfManyFilesByFile)
{
    const TempFolder folder;
    const std::string shifted = R"("tform":[[1,0,1],[0,1,0]])", inliers = R"("inliers":[1,0])";
    const std::string a = folder.write("a.json", "{\"file\":\"x.csv\"," + IDENTITY + "," + inliers + "}\n{\"file\":\"y.csv\"," + shifted + "}\n");
    const std::string b = folder.write("b.json", "{\"file\":\"y.csv\"," + shifted + "}\n{\"file\":\"z.csv\"," + shifted +
                                                     "}\n{\"file\":\"x.csv\"," + IDENTITY + R"(,"inliers":[1]})" + "\n");
    const json all = comparison({a, b, "--size", "9x9"});
    ASSERT_EQ(all["steps"].size(), 3u);
    EXPECT_EQ(all["steps"][0]["meanPx"], 0.0);
    EXPECT_EQ(all["steps"][0]["otherMaskSizes"], json({2, 1})) << "told, not dropped";
    EXPECT_EQ(all["steps"][1]["meanPx"], 0.0);
    EXPECT_EQ(all["steps"][2]["file"], "z.csv");
    EXPECT_EQ(all["steps"][2]["foundA"], false);
}

TEST(CompareTest, CornerBeyondTheHorizonIsInfinitelyFar)
{
    const TempFolder folder;
    const std::string a = folder.write("a.json", line(0, IDENTITY));
    const std::string b = folder.write("b.json", line(0, R"("tform":[[1,0,0],[0,1,0],[-0.02,0,1]])"));
    const json all = comparison({a, b, "--size", "101x101", "--tolerance", "1e9"});
    EXPECT_TRUE(all["steps"][0]["meanPx"].is_null());
    EXPECT_EQ(all["summary"]["differingNum"], 1);
}

TEST(CompareTest, RefusesOtherFilesWithNameAndLine)
{
    const TempFolder folder;
    const std::string good = folder.write("good.json", line(0, IDENTITY));
    const struct { const char* text; const char* expected; } CASES[] = {
        {"", "empty"}, {"x1,y1\n", ":1: "}, {R"({"tform":[[1,2],[3,4]]})", ":1: a transformation that is not"},
        {R"({"matrix":[[1,0,0],[0,1,0]})", ":1: "}, {R"([1,2])", ":1: "}};
    for (const auto& c : CASES) {
        const std::string bad = folder.write("bad.json", c.text);
        const ProgramRun run = runProgram({"compare", bad, good, "--size", "9x9"});
        EXPECT_EQ(run.code, 2) << c.text;
        EXPECT_NE(run.err.find(bad), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(c.expected), std::string::npos) << run.err;
    }
    const std::string cut = folder.write("cut.json", line(0, IDENTITY) + "{\"step\":1");
    EXPECT_NE(runProgram({"compare", good, cut, "--size", "9x9"}).err.find("cut.json:2: "), std::string::npos);
    EXPECT_NE(runProgram({"compare", good, good}).err.find("--size"), std::string::npos);
}

}  // namespace

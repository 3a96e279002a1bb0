// The three output formats, on results made by hand.
#include "diagnosis/not_found.h"
#include "matches/match_reader.h"
#include "estimate/result_writer.h"

#include "failure.h"
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace esttform::app {
namespace {

constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();

/// A result with its own memory.
struct OwnedResult {
    std::vector<double> doubles;
    std::vector<float> singles;
    std::vector<std::uint8_t> mask;
    StepResult result;
};

/// A 2-by-3 result, values column by column.
void setUp(OwnedResult& owned, const std::vector<double>& values, const std::vector<std::uint8_t>& mask)
{
    owned.doubles = values;
    owned.mask = mask;
    StepResult& r = owned.result;
    r.ptsNum = static_cast<std::int32_t>(mask.size());
    r.tformRows = 2;
    r.tformCols = 3;
    r.tformData = owned.doubles.data();
    r.inliers = owned.mask.data();
    for (const std::uint8_t m : mask)
        r.inlierNum += m;
}

TEST(JsonTest, OneObjectOnOneLine)
{
    OwnedResult owned;
    setUp(owned, {0.5, -0.0, 1e-7, 1.0, 3.0, 1e300}, {1, 0, 1});
    owned.result.warnings = {{"invalidRandomSamples", "text", 4}};
    EXPECT_EQ(toJsonLine({7, std::nullopt}, owned.result, false),
              "{\"step\":7,\"ptsNum\":3,\"tform\":[[0.5,1e-07,3.0],[-0.0,1.0,1e+300]],\"inliers\":[1,0,1],\"inlierNum\":2,"
              "\"warnings\":[\"invalidRandomSamples\"],\"error\":null}\n");
}

TEST(JsonTest, NullsAndFrames)
{
    OwnedResult owned;
    setUp(owned, {NAN_VALUE, std::numeric_limits<double>::infinity(), 0, 0, 0, 0}, {0, 0});
    owned.result.inliers = nullptr;
    owned.result.error = Message{"pts1OrPts2TooSmall", "2 pairs, \"at least\" 3\n\xff", 1};
    const std::string line = toJsonLine({0, -5}, owned.result, true);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    const auto json = nlohmann::json::parse(line);
    EXPECT_EQ(json["frame"], -5);
    EXPECT_TRUE(json["tform"][0][0].is_null() && json["tform"][1][0].is_null());
    EXPECT_TRUE(json["inliers"].is_null() && json["inlierNum"].is_null());
    EXPECT_EQ(json["error"], "pts1OrPts2TooSmall: 2 pairs, \"at least\" 3\n\xef\xbf\xbd");
}

/// Doubles that are awkward to write, among them singles: 0.1f and the largest single.
const std::vector<double> AWKWARD{0.1, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, double(0.1f), 9007199254740993.0};

TEST(JsonTest, NumbersReadBackToTheSameValue)
{
    OwnedResult owned;
    setUp(owned, AWKWARD, {});
    const auto json = nlohmann::json::parse(toJsonLine({}, owned.result, false));
    for (std::size_t i = 0; i < AWKWARD.size(); ++i)
        EXPECT_EQ(json["tform"][i % 2][i / 2].get<double>(), AWKWARD[i]) << i;
}

TEST(JsonTest, SinglesReadBackAsDoublesAndAsSingles)
{
    OwnedResult owned;
    setUp(owned, {}, {});
    owned.singles = {0.1f, 1.0f / 3.0f, 1e-45f, 3.4028235e38f, -7.0f, 16777217.0f};
    owned.result.tformType = DataType::Single;
    owned.result.tformData = owned.singles.data();
    const auto json = nlohmann::json::parse(toJsonLine({}, owned.result, false));
    for (std::size_t i = 0; i < owned.singles.size(); ++i) {
        const double value = json["tform"][i % 2][i / 2].get<double>();
        EXPECT_EQ(value, double(owned.singles[i])) << i;
    }
}

TEST(CsvTest, HeaderAndRowsAgree)
{
    OwnedResult owned;
    setUp(owned, AWKWARD, {0, 1});
    owned.result.warnings = {{"one", "", 1}, {"two", "", 1}};
    owned.result.error = Message{"id", "a, b", 1};
    EXPECT_EQ(toCsvHeader(owned.result, true), "step,frame,ptsNum,found,inlierNum,t00,t01,t02,t10,t11,t12,warnings,error\n");
    EXPECT_EQ(toCsvRow({3, 40}, owned.result, true),
              "3,40,2,1,1,0.1,5e-324,0.10000000149011612,0.3333333333333333,1.7976931348623157e+308,9007199254740992,"
              "one two,\"id: a, b\"\n");
    owned.result.inliers = nullptr;
    EXPECT_EQ(toCsvRow({0, std::nullopt}, owned.result, false).substr(0, 8), "0,2,1,,0");
}

TEST(TextTest, SaysHowToUseTheMatrix)
{
    OwnedResult owned;
    setUp(owned, {0.0, 2.0, -2.0, 0.0, 10.0, -0.0}, {1, 1, 0});
    RunLabel run{"pairs.csv", "similarity", Layout::Columns, false};
    EXPECT_EQ(toText(owned.result, run),
              "pairs.csv: 2 of 3 pairs are inliers (66.7 %)\n"
              "similarity transformation, (x2, y2)' = TForm * (x1, y1, 1)':\n"
              "   0  -2  10\n"
              "   2   0   0\n"
              "scale 2, rotation 90 degrees from x towards y\n");

    // The same map with points in rows: 3-by-2, transposed.
    owned.doubles = {0.0, -2.0, 10.0, 2.0, 0.0, 0.0};
    owned.result.tformRows = 3;
    owned.result.tformCols = 2;
    run.layout = Layout::Rows;
    EXPECT_EQ(toText(owned.result, run),
              "pairs.csv: 2 of 3 pairs are inliers (66.7 %)\n"
              "similarity transformation, (x2, y2) = (x1, y1, 1) * TForm:\n"
              "   0   2\n"
              "  -2   0\n"
              "  10   0\n"
              "scale 2, rotation 90 degrees from x towards y\n");
}

TEST(TextTest, LinesOfManySteps)
{
    OwnedResult owned;
    setUp(owned, {1, 0, 0, 1, 2, 3}, {1, 0});
    EXPECT_EQ(toTextLine({4, 9}, owned.result), "step 4 (frame 9): 1 of 2 pairs are inliers (50.0 %): [1 0 2; 0 1 3]\n");
    owned.doubles.assign(6, 0.0);
    EXPECT_EQ(toTextLine({4, 9}, owned.result), "step 4 (frame 9): 1 of 2 pairs are inliers (50.0 %): no transformation found\n");
    owned.result.error = Message{"id", "why", 1};
    EXPECT_EQ(toTextLine({4, 9}, owned.result), "step 4 (frame 9): 1 of 2 pairs are inliers (50.0 %): no result: id: why\n");
}

// ---- Why nothing was found

TEST(NotFoundTest, NamesWhatIsWrongWithThePairs)
{
    BlockSetup setup;
    setup.params = toParams({});
    setup.transformType = 2;
    const Pair a{0, 0, 5, 1}, b{1, 0, 6, 1}, c{0, 1, 5, 2};
    const std::pair<std::vector<Pair>, const char*> cases[] = {
        {{a, b, {NAN_VALUE, 1, 1, 1}}, "2 pairs with finite coordinates, 3 are needed"},
        {{a, b, {2, 0, 9, 9}, {3, 0, 9, 1}}, "the first points lie on one line"},
        {{{0, 0, 1, 1}, {1, 0, 1, 1}, {0, 1, 1, 1}}, "the second points lie on one line"},
        {{a, b, c},
         "one of three: the first sample could not be fitted (try another --seed), no candidate had 3 inliers (try a larger "
         "--threshold-px), or the fit to the inliers failed (try another --type)"},
    };
    for (const auto& [pairs, text] : cases) {
        MatchFrame frame;
        frame.pairs = pairs;
        EXPECT_EQ(reasonNotFound(frame.pairs, setup), text);
    }
    setup.transformType = 1;
    MatchFrame frame;
    frame.pairs = {a, a, {0, 0, 7, 7}};
    EXPECT_EQ(reasonNotFound(frame.pairs, setup), "the first points are at only 1 different place, 2 are needed");
    setup.isRobust = false;
    frame.pairs = {a, b, {NAN_VALUE, 1, 1, 1}};
    EXPECT_EQ(reasonNotFound(frame.pairs, setup), "a coordinate that is not finite spoils the fit to all pairs; leave out --no-robust");
}

}  // namespace
}  // namespace esttform::app

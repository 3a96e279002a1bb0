// What the reader takes from a file, and what it says about a file it cannot take.
#include "matches/match_reader.h"

#include "failure.h"
#include "program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace esttform::app {
namespace {

constexpr double INF = std::numeric_limits<double>::infinity();

std::vector<MatchFrame> readAll(MatchReader& reader)
{
    std::vector<MatchFrame> frames;
    for (MatchFrame frame; reader.next(frame);)
        frames.push_back(frame);
    return frames;
}

// ---- Forms of one file

struct FormCase {
    const char* name;
    std::string text;
    std::vector<std::string> columns;
};

void PrintTo(const FormCase& c, std::ostream* out)
{
    *out << c.name;
}

class ReaderFormTest : public ::testing::TestWithParam<FormCase> {};

/// Every form below stands for the pairs (1, 2) - (3, 4) and (5, 6) - (7.5, -8).
TEST_P(ReaderFormTest, GivesTheSamePairs)
{
    const TempFolder folder;
    ReaderOptions options;
    options.columns = GetParam().columns;
    MatchReader reader(folder.write("pairs.csv", GetParam().text), options);
    const auto frames = readAll(reader);
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_FALSE(frames[0].number.has_value());
    EXPECT_EQ(frames[0].pairs, (std::vector<Pair>{{1, 2, 3, 4}, {5, 6, 7.5, -8}}));
}

const FormCase FORMS[] = {
    {"position", "1,2,3,4\n5,6,7.5,-8\n", {}},
    {"noLastLineEnd", "1,2,3,4\n5,6,7.5,-8", {}},
    {"header", "x1,y1,x2,y2\n1,2,3,4\n5,6,7.5,-8\n", {}},
    {"headerOtherOrder", "y2,X1, Y1 ,x2\n4,1,2,3\n-8,5,6,7.5\n", {}},
    {"headerFurtherColumns", "id,x1,y1,score,x2,y2\na,1,2,0.5,3,4\nb,5,6,,7.5,-8\n", {}},
    {"tabs", "x1\ty1\tx2\ty2\n1\t2\t3\t4\n5\t6\t7.5\t-8\n", {}},
    {"semicolons", "1;2;3;4\n5;6;7.5;-8\n", {}},
    {"carriageReturnsAndMark", "\xef\xbb\xbfx1,y1,x2,y2\r\n1,2,3,4\r\n5,6,7.5,-8\r\n", {}},
    {"markWithoutHeader", "\xef\xbb\xbf" "1,2,3,4\n5,6,7.5,-8\n", {}},
    {"commentsAndBlankLines", "# two pairs\n\n1,2,3,4\n  \n  # the second\n5,6,7.5,-8\n\n", {}},
    {"quotes", "\"x1\",\"y1\",\"x2\",\"y2\"\n\"1\",2,3,4\n5,6,\"7.5\",-8\n", {}},
    {"spacesAndSigns", " 1 , +2,3e0 ,4.0\n5,0.6e1, 7.5,-8.\n", {}},
    {"chosenPositions", "9,1,2,3,4\n9,5,6,7.5,-8\n", {"2", "3", "4", "5"}},
    {"chosenNames", "u,v,p,q\n3,4,1,2\n7.5,-8,5,6\n", {"p", "Q", "u", "v"}},
    {"frameColumnNotChosen", "frame,x1,y1,x2,y2\n0,1,2,3,4\n1,5,6,7.5,-8\n", {"x1", "y1", "x2", "y2"}},
};
INSTANTIATE_TEST_SUITE_P(, ReaderFormTest, ::testing::ValuesIn(FORMS),
                         [](const auto& c) { return std::string(c.param.name); });

// ---- Frames and rows

TEST(ReaderTest, RunsOfOneFrameNumberAreSteps)
{
    const TempFolder folder;
    const std::string text = "frame,x1,y1,x2,y2\n3,1,1,1,1\n3,2,2,2,2\n7,3,3,3,3\n3,4,4,4,4\n";
    MatchReader reader(folder.write("pairs.csv", text), {});
    EXPECT_TRUE(reader.hasFrames());
    const auto frames = readAll(reader);
    ASSERT_EQ(frames.size(), 3u);                        // the gap from 3 to 7 is no step; the second 3 is
    EXPECT_EQ(frames[0].number, 3);
    EXPECT_EQ(frames[0].pairs.size(), 2u);
    EXPECT_EQ(frames[1].number, 7);
    EXPECT_EQ(frames[2].number, 3);
    EXPECT_EQ(frames[2].pairs, (std::vector<Pair>{{4, 4, 4, 4}}));
}

TEST(ReaderTest, KeepsRowsAsTheyCameButCommaSeparated)
{
    const TempFolder folder;
    ReaderOptions options;
    options.keepRows = true;
    MatchReader named(folder.write("named.csv", "note;x1;y1;x2;y2\na,b;1.50;2;3;4\n\"say \"\"hi\"\"\";5;6;7;8\n"), options);
    EXPECT_EQ(named.header(), "note,x1,y1,x2,y2");
    EXPECT_EQ(readAll(named)[0].rows, (std::vector<std::string>{"\"a,b\",1.50,2,3,4", "\"say \"\"hi\"\"\",5,6,7,8"}));

    options.columns = {"2", "3", "4", "5", "1"};
    MatchReader unnamed(folder.write("unnamed.csv", "0,1,2,3,4,9\n0,5,6,7,8,9\n"), options);
    EXPECT_EQ(unnamed.header(), "frame,x1,y1,x2,y2,column6");
    EXPECT_EQ(readAll(unnamed)[0].rows.size(), 2u);
}

TEST(ReaderTest, CountsPairsThatAreNotFinite)
{
    const TempFolder folder;
    MatchReader reader(folder.write("pairs.csv", "1,2,3,4\nnan,2,3,inf\n1,-INF,3,4\n"), {});
    const auto frames = readAll(reader);
    EXPECT_EQ(frames[0].nonFiniteNum, 2);
    EXPECT_TRUE(std::isnan(frames[0].pairs[1][0]));
    EXPECT_EQ(frames[0].pairs[2][1], -INF);
}

// ---- Faults

struct FaultCase {
    const char* name;
    std::string text;
    std::string message;                                 ///< after the folder's name
    DataType type = DataType::Double;
    std::vector<std::string> columns = {};
};

void PrintTo(const FaultCase& c, std::ostream* out)
{
    *out << c.name;
}

class ReaderFaultTest : public ::testing::TestWithParam<FaultCase> {};

TEST_P(ReaderFaultTest, NamesThePlace)
{
    const TempFolder folder;
    const std::string path = folder.write("pairs.csv", GetParam().text);
    ReaderOptions options;
    options.pointsType = GetParam().type;
    options.columns = GetParam().columns;
    try {
        MatchReader reader(path, options);
        readAll(reader);
        FAIL() << "read without a fault";
    } catch (const Failure& e) {
        const std::string text = e.what();
        EXPECT_EQ(text.substr(std::min(text.find("pairs.csv"), text.size())), GetParam().message);
        EXPECT_EQ(e.code(), ExitCode::BadInput);
    }
}

const FaultCase FAULTS[] = {
    {"empty", "", "pairs.csv: no rows, expected rows of x1,y1,x2,y2"},
    {"onlyComments", "# nothing\n\n", "pairs.csv: no rows, expected rows of x1,y1,x2,y2"},
    {"onlyHeader", "x1,y1,x2,y2\n", "pairs.csv: no rows after the header, expected rows of matched points"},
    {"oneColumn", "1 2 3 4\n", "pairs.csv:1: 1 column, expected 4 (x1,y1,x2,y2) separated by commas, tabs or semicolons"},
    {"threeColumns", "1,2,3\n", "pairs.csv:1: 3 columns, expected 4 (x1,y1,x2,y2)"},
    {"threeColumnsLater", "# head\n1,2,3,4\n\n1,2,3\n", "pairs.csv:4: 3 columns, expected 4 (x1,y1,x2,y2)"},
    {"fiveColumnsLater", "1,2,3,4\n1,2,3,4,5\n", "pairs.csv:2: 5 columns, expected 4 (x1,y1,x2,y2)"},
    {"fiveColumns", "0,1,2,3,4\n",
     "pairs.csv:1: 5 columns without a header, expected 4 (x1,y1,x2,y2); choose by --columns, for example --columns 1,2,3,4"},
    {"headerWithoutY2", "x1,y1,x2,yy\n1,2,3,4\n", "pairs.csv:1: no column y2 in the header (x1,y1,x2,yy); name the columns by --columns"},
    {"headerTwice", "x1,y1,x2,y2,X2\n1,2,3,4,5\n", "pairs.csv:1: two columns named x2, expected one"},
    {"columnsPosition", "1,2,3,4\n", "pairs.csv:1: --columns: got position 5, expected 1 to 4", DataType::Double, {"1", "2", "3", "5"}},
    {"columnsName", "a,b,c,d\n1,2,3,4\n", "pairs.csv:1: --columns: no column \"e\" in the header (a,b,c,d)", DataType::Double,
     {"a", "b", "c", "e"}},
    {"text", "1,2,3,4\n1,2,left,4\n", "pairs.csv:2: x2: got \"left\", expected a number"},
    {"textAfterNumber", "x1,y1,x2,y2\n1,2px,3,4\n", "pairs.csv:2: y1: got \"2px\", expected a number"},
    {"decimalComma", "1;2,5;3;4\n", "pairs.csv:1: y1: got \"2,5\", expected a number"},
    {"noField", "1,2,3,4\n1,,3,4\n", "pairs.csv:2: y1: empty, expected a number"},
    {"tooLarge", "1,2,3,1e400\n", "pairs.csv:1: y2: got \"1e400\", expected a number of at most 1.8e+308 (double)"},
    {"tooLargeForSingle", "1,2,3,1e39\n", "pairs.csv:1: y2: got \"1e39\", expected a number of at most 3.4e+38 (single)", DataType::Single},
    {"fractionForInteger", "12.0,1.2e1,3,12.5\n", "pairs.csv:1: y2: got \"12.5\", expected a whole number from -128 to 127 (int8)",
     DataType::Int8},
    {"aboveInteger", "1,2,255,256\n", "pairs.csv:1: y2: got \"256\", expected a whole number from 0 to 255 (uint8)", DataType::Uint8},
    {"belowInteger", "1,2,3,-1\n", "pairs.csv:1: y2: got \"-1\", expected a whole number from 0 to 4294967295 (uint32)", DataType::Uint32},
    {"nanForInteger", "nan,2,3,4\n", "pairs.csv:1: x1: got \"nan\", expected a whole number from -32768 to 32767 (int16)", DataType::Int16},
    {"frame", "frame,x1,y1,x2,y2\n0.5,1,2,3,4\n", "pairs.csv:2: frame: got \"0.5\", expected a whole number"},
    {"zeroByte", std::string("1,2,3,4\n1,2\0,3,4\n", 17), "pairs.csv:2: zero byte at column 4, expected text in UTF-8 or ASCII"},
    {"garbage", "\x7f\x45\x4c\x46\x02\xff,1,2,3\n5,6,7,8\n",
     "pairs.csv:1: x1: got \"\\x7fELF\\x02\\xff\", expected a number"},
    {"openQuote", "1,2,3,4\n1,\"2,3,4\n1,2,3,4\n",
     "pairs.csv:2: a quote is misplaced or not closed, expected quotes around whole fields, closed on the same line"},
    {"loneCarriageReturn", "1,2,3,4\r5,6,7,8\r", "pairs.csv:1: carriage return within the line, expected lines that end in LF or CRLF"},
    {"longLine", "1,2,3,4\n" + std::string(3000000, '1') + ",2,3,4\n",
     "pairs.csv:2: line longer than 1000000 bytes, expected a row of numbers"},
};
INSTANTIATE_TEST_SUITE_P(, ReaderFaultTest, ::testing::ValuesIn(FAULTS),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ReaderTest, SaysWhyAFileCannotBeRead)
{
    const TempFolder folder;
    const std::pair<std::string, std::string> cases[] = {
        {folder.path("none.csv"), folder.path("none.csv") + ": cannot open: No such file or directory"},
        {folder.path(""), folder.path("") + ": cannot read: Is a directory"},
    };
    for (const auto& [path, message] : cases)
        try {
            MatchReader reader(path, {});
            FAIL() << path << " read without a fault";
        } catch (const Failure& e) {
            EXPECT_EQ(std::string(e.what()), message);
        }
}

}  // namespace
}  // namespace esttform::app

// Coordinates of every type, and the block's memory layouts.
#include "matches/points.h"

#include "number_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace esttform::app {
namespace {

struct CoordinateCase {
    const char* name;
    DataType type;
    const char* text;
    std::optional<double> value;
};

void PrintTo(const CoordinateCase& c, std::ostream* out)
{
    *out << c.name;
}

class CoordinateTest : public ::testing::TestWithParam<CoordinateCase> {};

TEST_P(CoordinateTest, Parses)
{
    EXPECT_EQ(parseCoordinate(GetParam().text, GetParam().type), GetParam().value);
}

const CoordinateCase COORDINATES[] = {
    {"wholeWithPoint", DataType::Int8, "12.0", 12.0},
    {"wholeWithExponent", DataType::Uint16, "1.2e1", 12.0},
    {"lowest", DataType::Int32, "-2147483648", -2147483648.0},
    {"belowLowest", DataType::Int32, "-2147483649", std::nullopt},
    {"highest", DataType::Uint32, "4294967295", 4294967295.0},
    {"aboveHighest", DataType::Uint32, "4294967296", std::nullopt},
    {"infinityForInteger", DataType::Int16, "inf", std::nullopt},
    {"singleRoundsOnce", DataType::Single, "0.1", 0.100000001490116119384765625},
    // Between two singles, just above the middle: by way of double it would be the middle and go to the even one.
    {"singleNotByWayOfDouble", DataType::Single, "1.00000005960464477540", 1.00000011920928955078125},
    {"singleTiny", DataType::Single, "1e-60", 0.0},
    {"doubleTiny", DataType::Double, "-1e-400", 0.0},
    {"infinity", DataType::Single, "-Infinity", -std::numeric_limits<double>::infinity()},
    {"plus", DataType::Double, "+.5", 0.5},
    {"twoSigns", DataType::Double, "+-5", std::nullopt},
    {"hexadecimal", DataType::Double, "0x10", std::nullopt},
    {"groups", DataType::Double, "1,000", std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(, CoordinateTest, ::testing::ValuesIn(COORDINATES),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(PackPointsTest, ColumnsInterleaveAndRowsDoNot)
{
    const std::vector<Pair> pairs{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}};
    std::int16_t columns[6], rows[6];
    packPoints(pairs, 0, DataType::Int16, Layout::Columns, columns);
    packPoints(pairs, 1, DataType::Int16, Layout::Rows, rows);
    const std::int16_t expectedColumns[6] = {1, 2, 5, 6, 9, 10}, expectedRows[6] = {3, 7, 11, 4, 8, 12};
    EXPECT_EQ(std::memcmp(columns, expectedColumns, sizeof columns), 0);
    EXPECT_EQ(std::memcmp(rows, expectedRows, sizeof rows), 0);
}

TEST(PackPointsTest, EveryTypeHoldsItsExtremes)
{
    std::uint32_t whole[2];
    packPoints({{4294967295.0, 0.0, 0.0, 0.0}}, 0, DataType::Uint32, Layout::Columns, whole);
    EXPECT_EQ(whole[0], 4294967295u);
    float real[2];
    packPoints({{0.0, 0.0, 0.100000001490116119384765625, 3.0}}, 1, DataType::Single, Layout::Rows, real);
    EXPECT_EQ(real[0], 0.1f);
    EXPECT_EQ(real[1], 3.0f);
}

TEST(NumberTextTest, TextFromOutsideCannotBreakALine)
{
    EXPECT_EQ(inQuotes("a\nb\x1b[0m"), "\"a\\x0ab\\x1b[0m\"");
    EXPECT_EQ(inQuotes(std::string(1000, 'x')), "\"" + std::string(40, 'x') + "...\"");
}

}  // namespace
}  // namespace esttform::app

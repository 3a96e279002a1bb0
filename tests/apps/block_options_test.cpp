// From command-line options to the block's dialog values.
#include "options/block_options.h"

#include "failure.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace esttform::app {
namespace {

using Words = std::vector<std::string>;

BlockSetup setupOf(Words words)
{
    CLI::App app;
    BlockOptions options;
    addBlockOptions(app, options);
    std::reverse(words.begin(), words.end());            // the parser takes the last word first
    app.parse(words);
    return resolveBlockOptions(options);
}

// ---- Options and the dialog values that they change

struct MappingCase {
    const char* name;
    Words words;
    std::map<std::size_t, double> changed;               ///< dialog values that differ from those without options
};

void PrintTo(const MappingCase& c, std::ostream* out)
{
    *out << c.name;
}

class MappingTest : public ::testing::TestWithParam<MappingCase> {};

TEST_P(MappingTest, ChangesTheseValuesOnly)
{
    const Params before = setupOf({}).params;
    const Params after = setupOf(GetParam().words).params;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto changed = GetParam().changed.find(i);
        if (changed != GetParam().changed.end())
            EXPECT_EQ(after[i], changed->second) << "parameter " << i;
        else
            EXPECT_EQ(after[i], before[i]) << "parameter " << i;
    }
}

const MappingCase MAPPINGS[] = {
    {"similarity", {"--type", "similarity"}, {{0, 1}}},
    {"affine", {"--type", "affine"}, {{0, 2}}},
    {"notRobust", {"--no-robust"}, {{1, 0}}},
    {"threshold", {"--threshold", "2.25"}, {{3, 2.25}, {4, 2.25}}},
    {"thresholdPx", {"--threshold-px", "1.5"}, {{3, 2.25}, {4, 2.25}}},
    {"fixedNumber", {"--samples", "500"}, {{5, 1}, {6, 500}, {7, 500}}},
    {"adaptiveNumber", {"--max-samples", "500", "--confidence", "95"}, {{6, 500}, {7, 500}, {8, 95}}},
    {"median", {"--method", "median"}, {{2, 2}, {5, 1}, {6, 1000}, {7, 1000}}},
    {"medianSamples", {"--method", "median", "--samples", "77"}, {{2, 2}, {5, 1}, {6, 77}, {7, 77}}},
    {"stop", {"--stop-at-inliers", "80"}, {{9, 1}, {10, 80}}},
    {"noRefine", {"--no-refine"}, {{11, 0}}},
    {"noInlierOutput", {"--no-inlier-output"}, {{12, 0}}},
    {"singleResult", {"--points-type", "uint8", "--tform-type", "single"}, {{14, 1}}},
    {"cyclic", {"--sampling", "cyclic"}, {{16, 0}}},
    {"rows", {"--layout", "rows"}, {{17, 1}}},
    {"rawByName", {"--param", "desiredConfidence=12.5"}, {{8, 12.5}}},
    {"rawWinsAndRepeats", {"--type", "affine", "--param", "0=1", "--param", "17=1.9"}, {{0, 1}, {17, 1.9}}},
    {"rawHuge", {"--param", "disThrProjective=1e300"}, {{3, 1e300}}},
    {"rawInfinite", {"--param", "6=-inf"}, {{6, -INFINITY}}},
};
INSTANTIATE_TEST_SUITE_P(, MappingTest, ::testing::ValuesIn(MAPPINGS),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(BlockOptionsTest, ReadsTheFinalValuesAsTheBlockDoes)
{
    EXPECT_EQ(setupOf({"--param", "0=2.9"}).sampleSize(), 3);
    EXPECT_EQ(setupOf({"--param", "0=nan"}).sampleSize(), 0);
    EXPECT_FALSE(setupOf({"--param", "excludeOutliers=0"}).hasInlierOutput);
    EXPECT_FALSE(setupOf({"--param", "12=0"}).hasInlierOutput);
    EXPECT_TRUE(std::isnan(setupOf({"--param", "3=nan"}).params[3]));
    EXPECT_EQ(setupOf({"--seed", "4294967295"}).options.seed, 4294967295u);
}

// ---- Refusals

struct RefusalCase {
    const char* name;
    Words words;
    const char* message;
};

void PrintTo(const RefusalCase& c, std::ostream* out)
{
    *out << c.name;
}

class RefusalTest : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(RefusalTest, SaysWhatToDo)
{
    try {
        setupOf(GetParam().words);
        FAIL() << "accepted";
    } catch (const std::exception& e) {                  // of the parser, or of the contradictions
        EXPECT_STREQ(e.what(), GetParam().message);
    }
}

const RefusalCase REFUSALS[] = {
    {"twoThresholds", {"--threshold", "9", "--threshold-px", "3"}, "--threshold and --threshold-px: both given, expected one"},
    {"refineBoth", {"--refine", "--no-refine"}, "--refine and --no-refine: both given, expected one"},
    {"samplesAndConfidence", {"--samples", "9", "--confidence", "9"},
     "--confidence: has no effect with the fixed number of --samples; leave one of them out"},
    {"samplesAndMost", {"--samples", "9", "--max-samples", "9"},
     "--max-samples: has no effect with the fixed number of --samples; leave one of them out"},
    {"medianThreshold", {"--method", "median", "--threshold-px", "2"},
     "--threshold-px: has no effect with --method median, which takes the better half of the pairs; leave one of them out"},
    {"medianConfidence", {"--method", "median", "--confidence", "99"},
     "--confidence: has no effect with --method median, which takes the number of --samples; leave one of them out"},
    {"medianStop", {"--method", "median", "--stop-at-inliers", "50"},
     "--stop-at-inliers: has no effect with --method median, which takes the number of --samples; leave one of them out"},
    {"notRobustSamples", {"--no-robust", "--samples", "5"},
     "--samples: has no effect with --no-robust, which fits all pairs once; leave one of them out"},
    {"notRobustSampling", {"--no-robust", "--sampling", "cyclic"},
     "--sampling: has no effect with --no-robust, which fits all pairs once; leave one of them out"},
    {"singleOfDouble", {"--tform-type", "single"},
     "--tform-type: single with double points, expected double; use --points-type single or an integer type"},
    {"doubleOfSingle", {"--points-type", "single", "--tform-type", "double"},
     "--tform-type: double with single points, expected single; use --points-type double or an integer type"},
    {"type", {"--type", "rigid"}, "--type: got \"rigid\", expected similarity, affine, projective"},
    {"confidence", {"--confidence", "140"}, "--confidence: got \"140\", expected a number from 0 to 100 (percent)"},
    {"confidenceAsFraction", {"--confidence", "0.99"}, "--confidence: got 0.99, which is less than one percent, expected percent: 99 for this fraction"},
    {"confidenceNan", {"--confidence", "nan"}, "--confidence: got \"nan\", expected a number from 0 to 100 (percent)"},
    {"threshold", {"--threshold=-1"}, "--threshold: got \"-1\", expected a number of at least 0 (squared point units)"},
    {"samples", {"--samples", "1e3"}, "--samples: got \"1e3\", expected a whole number from 1 to 2147483647"},
    {"noSamples", {"--samples", "0"}, "--samples: got \"0\", expected a whole number from 1 to 2147483647"},
    {"paramName", {"--param", "speed=1"},
     "--param: got \"speed\", expected a parameter's name or an index from 0 to 17; 'esttform params' lists them"},
    {"paramIndex", {"--param", "18=1"},
     "--param: got \"18\", expected a parameter's name or an index from 0 to 17; 'esttform params' lists them"},
    {"paramForm", {"--param", "method"}, "--param: got \"method\", expected NAME=VALUE or INDEX=VALUE"},
    {"paramValue", {"--param", "method=two"}, "--param: method: got \"two\", expected a number"},
};
INSTANTIATE_TEST_SUITE_P(, RefusalTest, ::testing::ValuesIn(REFUSALS),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace esttform::app

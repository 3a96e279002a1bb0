// Minimal samples: cyclic stepping, and random drawing from a rand that this program supplies.

#include "szelesttform_sampling.h"

#include <deque>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::deque<int> script;              // what rand gives next; too many draws give 0

}  // namespace

extern "C" int rand() noexcept
{
    if (script.empty()) return 0;
    const int value = script.front();
    script.pop_front();
    return value;
}

namespace {

using Sample = std::vector<std::uint32_t>;

TEST(SamplingTest, CyclicSamplesStepAndWrap)
{
    struct CyclicCase {
        std::uint32_t n;
        std::vector<Sample> samples;                     // the first one is given
    };
    for (const CyclicCase& c : {CyclicCase{3, {{0, 1}, {1, 2}, {2, 0}, {0, 1}, {1, 2}}},
                                CyclicCase{6, {{0, 1, 2, 3}, {1, 2, 3, 4}, {2, 3, 4, 5}, {3, 4, 5, 0}, {4, 5, 0, 1}}},
                                CyclicCase{4, {{7, 3, 4}, {0, 0, 0}}}}) {
        Sample idx = c.samples.front();
        for (std::size_t i = 1; i < c.samples.size(); ++i) {
            EXPECT_TRUE(drawSample(static_cast<std::int32_t>(idx.size()), c.n, 10, false, idx.data()));
            EXPECT_EQ(idx, c.samples[i]) << "sample " << i << " of " << c.n << " pairs";
        }
    }
}

/// The sample holds 90, 91, ... before; script is what rand gives, all of which is used.
TEST(SamplingTest, DrawsUntilDistinctOrTenDuplicates)
{
    struct DrawCase {
        const char* name;
        std::uint32_t n;
        std::deque<int> script;
        bool isDrawn;
        Sample sample;
    };
    const DrawCase cases[] = {
        {"distinct", 10, {13, 27, 5, 19}, true, {3, 7, 5, 9}},
        {"largest", 10, {2147483647, 0, 1, 2}, true, {7, 0, 1, 2}},
        {"repeats", 10, {3, 13, 4, 3, 4, 5, 6}, true, {3, 4, 5, 6}},
        {"tenthDraw", 3, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2}, true, {1, 2}},
        {"tenDuplicates", 3, {1, 1, 4, 1, 1, 1, 1, 7, 1, 1, 1}, false, {1, 1}},
        {"tenAtTheThird", 9, {1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 11}, false, {1, 2, 2, 93}},
        {"tenForEachPosition", 9, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 3}, true, {1, 2, 3}},
    };
    for (const DrawCase& c : cases) {
        Sample idx = {90, 91, 92, 93};
        idx.resize(c.sample.size());
        script = c.script;
        EXPECT_EQ(drawSample(static_cast<std::int32_t>(idx.size()), c.n, 10, true, idx.data()), c.isDrawn) << c.name;
        EXPECT_EQ(idx, c.sample) << c.name;
        EXPECT_TRUE(script.empty()) << c.name << ": " << script.size() << " values left";
        script.clear();
    }
}

}  // namespace

#include "message_catalog.h"

#include <fmt/format.h>

#include <cstring>

namespace blockhost {

namespace {

struct Entry {
    const char* id;
    const char* text;  ///< {0} stands for the argument
};

constexpr Entry TEXTS[] = {
    {"pts1Pts2NotMx2", "Pts1 and Pts2 must be M-by-2 for points in rows: one point per row, x and y in two columns"},
    {"pts1Pts2Not2xN", "Pts1 and Pts2 must be 2-by-M matrices for points in columns: one point per column, x above y; "
                       "a matrix of two dimensions is expected in either layout"},
    {"pts1OrPts2TooSmall", "Pts1 and Pts2 have too few points: the transformation type needs at least {0} point pairs"},
    {"pts1AndPts2SizesDiffer", "Pts1 and Pts2 have different numbers of points: expected one point of Pts2 per point of Pts1"},
    {"inlierOutNotVector", "the inlier output must be a vector: 1 dimension, or 2 dimensions of which one is 1"},
    {"inlierOutSzTooSmall", "the inlier output is too short: the transformation type needs at least {0} point pairs"},
    {"rtpAllocFailed", "the run-time parameters could not be set up: the host refused their number"},
    {"memoryAllocationFailed", "the block could not get its memory: the host refused the work vectors, the points are too "
                               "many for them, or none was left for the engine"},
    {"invalidRandomSamples", "no sample of distinct pairs after 10 draws; the last one was fitted"},
};

constexpr Entry QUANTITIES[] = {
    {"mapBlkAlgebraicDistanceThreshold", "a squared distance"},
    {"mapBlkNumberOfRandomSampling", "a whole number"},
    {"mapBlkDesiredConfidence", "a percentage"},
    {"mapBlkInlierPercentage", "a percentage"},
};

template <std::size_t N>
const char* find(const Entry (&entries)[N], const char* id) noexcept
{
    for (const Entry& entry : entries)
        if (std::strcmp(entry.id, id) == 0)
            return entry.text;
    return nullptr;
}

}  // namespace

std::string messageText(const resource_core::BaseMsgID& message)
{
    if (const char* const text = find(TEXTS, message.id()))
        return fmt::format(fmt::runtime(text), message.arg(0));
    std::string text = message.id();
    for (int i = 0; i < message.argNum(); ++i)
        text += (i == 0 ? ": " : ", ") + std::to_string(message.arg(i));
    return text;
}

const char* quantityText(const resource_core::BaseMsgID& fragment) noexcept
{
    return find(QUANTITIES, fragment.id());
}

}  // namespace blockhost

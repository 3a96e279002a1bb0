// Messages of the host's catalogue that this block raises, by identifier and arguments.
// The texts are the host's; a block never builds text.
#pragma once

#include <cstdint>

namespace resource_core {

/// A catalogue message: identifier and at most one integer argument. A small value, nothing is allocated.
class BaseMsgID {
public:
    static constexpr int MAX_ARG_NUM = 1;

    /// @param id  identifier; a string literal, kept by address
    constexpr explicit BaseMsgID(const char* id) noexcept : mId(id) {}
    /// @param arg  the argument of the message
    constexpr BaseMsgID(const char* id, std::int32_t arg) noexcept : mId(id), mArgs{arg}, mArgNum(1) {}

    constexpr const char* id() const noexcept { return mId; }
    constexpr int argNum() const noexcept { return mArgNum; }
    /// Argument idx, counted from 0, below MAX_ARG_NUM; 0 when the message has none.
    constexpr std::int32_t arg(int idx) const noexcept { return mArgs[idx]; }

private:
    const char* mId;
    std::int32_t mArgs[MAX_ARG_NUM] = {};
    int mArgNum = 0;
};

}  // namespace resource_core

namespace catalog {

using resource_core::BaseMsgID;

// ---- Sizes of the ports
constexpr BaseMsgID pts1Pts2NotMx2() { return BaseMsgID("pts1Pts2NotMx2"); }
constexpr BaseMsgID pts1Pts2Not2xN() { return BaseMsgID("pts1Pts2Not2xN"); }
/// @param sampleSize  point pairs that the transformation type needs
constexpr BaseMsgID pts1OrPts2TooSmall(std::int32_t sampleSize) { return {"pts1OrPts2TooSmall", sampleSize}; }
constexpr BaseMsgID pts1AndPts2SizesDiffer() { return BaseMsgID("pts1AndPts2SizesDiffer"); }
constexpr BaseMsgID inlierOutNotVector() { return BaseMsgID("inlierOutNotVector"); }
/// @param sampleSize  point pairs that the transformation type needs
constexpr BaseMsgID inlierOutSzTooSmall(std::int32_t sampleSize) { return {"inlierOutSzTooSmall", sampleSize}; }

// ---- Memory
constexpr BaseMsgID rtpAllocFailed() { return BaseMsgID("rtpAllocFailed"); }
constexpr BaseMsgID memoryAllocationFailed() { return BaseMsgID("memoryAllocationFailed"); }

// ---- The step
constexpr BaseMsgID invalidRandomSamples() { return BaseMsgID("invalidRandomSamples"); }

// ---- Names of dialog parameters, put into the host's own range messages
constexpr BaseMsgID mapBlkAlgebraicDistanceThreshold() { return BaseMsgID("mapBlkAlgebraicDistanceThreshold"); }
constexpr BaseMsgID mapBlkNumberOfRandomSampling() { return BaseMsgID("mapBlkNumberOfRandomSampling"); }
constexpr BaseMsgID mapBlkDesiredConfidence() { return BaseMsgID("mapBlkDesiredConfidence"); }
constexpr BaseMsgID mapBlkInlierPercentage() { return BaseMsgID("mapBlkInlierPercentage"); }

}  // namespace catalog

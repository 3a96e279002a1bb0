// Start of the random numbers of each file of a batch.
#pragma once

#include <cstdint>

namespace esttform::app {

/// Start of the random numbers of the file at a position, from 0: the bits of seed + 2654435769 * (idx + 1), in 32 bits, well
/// mixed, so that neighbours have nothing in common.
std::uint32_t batchSeed(std::uint32_t seed, std::int64_t idx) noexcept;

}  // namespace esttform::app

#include "batch/batch_seed.h"

namespace esttform::app {

std::uint32_t batchSeed(std::uint32_t seed, std::int64_t idx) noexcept
{
    std::uint32_t bits = seed + 2654435769U * (static_cast<std::uint32_t>(idx) + 1U);
    bits = (bits ^ (bits >> 16)) * 0x85ebca6bU;          // the finishing steps of MurmurHash3
    bits = (bits ^ (bits >> 13)) * 0xc2b2ae35U;
    return bits ^ (bits >> 16);
}

}  // namespace esttform::app

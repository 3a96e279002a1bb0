// Minimal samples: random drawing from the C library's generator, and deterministic cyclic stepping.
#pragma once

#include <cstdint>
#include <cstdlib>

/// Advances each of the k entries of a sample by one, past n - 1 to 0.
inline void stepSample(std::int32_t k, std::uint32_t n, std::uint32_t* idx)
{
    for (std::int32_t j = 0; j < k; ++j) idx[j] = idx[j] < n - 1 ? idx[j] + 1 : 0;
}

/// True when idx[j] equals an earlier entry of the sample.
inline bool isDuplicate(const std::uint32_t* idx, std::int32_t j)
{
    for (std::int32_t i = 0; i < j; ++i) {
        if (idx[i] == idx[j]) return true;
    }
    return false;
}

/// Draws the next minimal sample: k distinct indices below n, unless a draw fails.
///
/// @param k         sample size
/// @param n         number of pairs, at least k
/// @param maxTries  draws allowed for one position
/// @param isRandom  draw by rand; else step the sample that idx holds
/// @param idx       in/out, k indices
/// @return false when a position met maxTries duplicates in a row: it keeps the last one, later positions are untouched
inline bool drawSample(std::int32_t k, std::uint32_t n, std::uint32_t maxTries, bool isRandom, std::uint32_t* idx)
{
    if (!isRandom) {
        stepSample(k, n, idx);
        return true;
    }
    for (std::int32_t j = 0; j < k; ++j) {
        std::uint32_t tries = 0;
        do {
            if (tries == maxTries) return false;
            idx[j] = static_cast<std::uint32_t>(std::rand()) % n;
            ++tries;
        } while (isDuplicate(idx, j));
    }
    return true;
}

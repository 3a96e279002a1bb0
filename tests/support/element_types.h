// Element types of the block under their codes, and the type lists and name classes of typed tests.
// The fourteen pairs are (points, computation); kernels that know one type run over the two computation types.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace testsupport {

/// Code of an element type: D, R, S8, U8, S16, U16, S32, U32.
template <typename T>
std::string codeOf()
{
    if constexpr (std::is_floating_point_v<T>) return sizeof(T) == 8 ? "D" : "R";
    return (std::is_signed_v<T> ? "S" : "U") + std::to_string(8 * sizeof(T));
}

template <typename In, typename Comp>
struct TypePair {
    using Ti = In;
    using Tc = Comp;
};

using CompTypes = ::testing::Types<double, float>;
using EnginePairs = ::testing::Types<
    TypePair<double, double>, TypePair<std::int8_t, double>, TypePair<std::uint8_t, double>,
    TypePair<std::int16_t, double>, TypePair<std::uint16_t, double>, TypePair<std::int32_t, double>,
    TypePair<std::uint32_t, double>, TypePair<float, float>, TypePair<std::int8_t, float>,
    TypePair<std::uint8_t, float>, TypePair<std::int16_t, float>, TypePair<std::uint16_t, float>,
    TypePair<std::int32_t, float>, TypePair<std::uint32_t, float>>;

struct CompName {
    template <typename T>
    static std::string GetName(int) { return codeOf<T>(); }
};

struct PairName {
    template <typename P>
    static std::string GetName(int) { return codeOf<typename P::Ti>() + "_" + codeOf<typename P::Tc>(); }
};

}  // namespace testsupport

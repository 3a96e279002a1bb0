// Names of the generated utility functions: base name, kind suffix, and a type code per data type.
#pragma once

#include <string>

/// Type codes by data-type id, 0 to 8.
constexpr const char* TYPE_CODES[9] = {"D", "R", "S8", "U8", "S16", "U16", "S32", "U32", "B"};

/// Kind suffixes by [sampleSize - 2].
constexpr const char* KIND_SUFFIXES[3] = {"_Similarity", "_Affine", "_Projective"};

/// "normPts_U8_D" of ("normPts", 3, 0).
inline std::string typedName(const std::string& base, int typeId1, int typeId2)
{
    return base + "_" + TYPE_CODES[typeId1] + "_" + TYPE_CODES[typeId2];
}

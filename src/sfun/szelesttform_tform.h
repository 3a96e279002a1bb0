// From a compact transformation to the elements of the TForm output: one table for simulation and generated code.
#pragma once

#include <cstdint>

/// One element of TForm: an entry of the compact transformation, plain or negated.
struct TFormElement {
    std::int8_t compactIdx;
    bool isNegated;
};

/// Elements of TForm in storage order (column by column), by [sampleSize - 2][points in rows].
///
/// Points in columns: TForm * (x1, y1, 1)' = (x2, y2)' or, projective, (x2*w, y2*w, w)'.
/// Points in rows: (x1, y1, 1) * TForm = (x2, y2) or (x2*w, y2*w, w); the compact values act on (y, x) then.
constexpr TFormElement TFORM_ELEMENTS[3][2][9] = {
    {{{0, false}, {1, true}, {1, false}, {0, false}, {2, false}, {3, false}},
     {{0, false}, {1, true}, {3, false}, {1, false}, {0, false}, {2, false}}},
    {{{0, false}, {3, false}, {1, false}, {4, false}, {2, false}, {5, false}},
     {{4, false}, {3, false}, {5, false}, {1, false}, {0, false}, {2, false}}},
    {{{0, false}, {3, false}, {6, false}, {1, false}, {4, false}, {7, false}, {2, false}, {5, false}, {8, false}},
     {{4, false}, {3, false}, {5, false}, {1, false}, {0, false}, {2, false}, {7, false}, {6, false}, {8, false}}},
};

/// Number of elements of TForm.
constexpr std::int32_t tformWidth(std::int32_t sampleSize)
{
    return sampleSize == 4 ? 9 : 6;
}

/// Writes TForm from a compact transformation.
///
/// @param sampleSize  2, 3 or 4
/// @param isInRows    points in rows
/// @param compact     in, 2*sampleSize + 1 values, the last one 1
/// @param tform       out, tformWidth(sampleSize) values in storage order
template <typename Tc>
inline void writeTForm(std::int32_t sampleSize, bool isInRows, const Tc* compact, Tc* tform)
{
    const TFormElement* const elements = TFORM_ELEMENTS[sampleSize - 2][isInRows ? 1 : 0];
    for (std::int32_t i = 0; i < tformWidth(sampleSize); ++i) {
        const Tc value = compact[elements[i].compactIdx];
        tform[i] = elements[i].isNegated ? -value : value;
    }
}

// Sets of point pairs as the checks feed them: ordinary ones, and every kind of odd one.
#pragma once

#include "check/case.h"
#include "matches/points.h"

#include <array>
#include <vector>

namespace esttform::check {

/// A transformation as (x2 w, y2 w, w)' = matrix (x1, y1, 1)', row by row.
using Matrix = std::array<double, 9>;

/// A transformation of the type that maps the square of points onto about the same square.
Matrix randomMatrix(int transformType, Random& random);

/// Points of a square of 0 to 120, which every type holds, and where the matrix maps them; every wrongEach-th match wrong,
/// none for 0.
std::vector<app::Pair> matchedPairs(const Matrix& matrix, int pairNum, int wrongEach, Random& random);

/// Pairs of one kind of trouble: duplicates, all on a line, all equal, not finite, huge, tiny, the type's limits, no match.
std::vector<app::Pair> oddPairs(int pairNum, Random& random);

/// The pairs as the type holds them: rounded and kept in range, NaN as 0 for integers.
void fitInto(DataType type, std::vector<app::Pair>& pairs);

}  // namespace esttform::check

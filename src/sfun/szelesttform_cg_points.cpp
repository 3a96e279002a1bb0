#include "szelesttform_cg_points.h"

#include <cmath>

#include "szelesttform_cg_names.h"

using namespace CG;
using DSPCG::ConstructionFacade;

namespace {

enum NormPtsInput { PTS, SAMPLES, PTS_NUM, SAMPLE_NUM, PTS_NORM, SCALE, CENTS, NORM_PTS_INPUT_NUM };
constexpr const char* NORM_PTS_NAMES[NORM_PTS_INPUT_NUM] = {"pts",     "samples", "ptsNum", "sampleNum",
                                                            "ptsNorm", "scale",   "cents"};

enum ConstraintInput { PTS1, PTS2, PAIR_NUM, MAX_PAIR_NUM, CONSTRAINT, CONSTRAINT_INPUT_NUM };
constexpr const char* CONSTRAINT_NAMES[CONSTRAINT_INPUT_NUM] = {"pts1", "pts2", "sampleNum", "maxSampleNum", "constraint"};

const Type* arrayOf(const Type* element) { return pointerT(staticUnknownMatrixT(element)); }
const Type* readOnlyArrayOf(const Type* element) { return pointerT(readOnlyT(staticUnknownMatrixT(element))); }

/// Locals that say where coordinates a and b of a point lie.
struct Offsets {
    Expr x;      ///< of coordinate b
    Expr y;      ///< of coordinate a
    Expr point;  ///< from one point to the next
};

/// a is x and b is y for points in columns, a is y and b is x for points in rows.
void setOffsets(ConstructionFacade& f, const Offsets& offset, bool pointsInRows, Expr leadingDim)
{
    f.Assign(offset.x, pointsInRows ? 0 : 1);
    if (pointsInRows) {
        f.Assign(offset.y, leadingDim);
    } else {
        f.Assign(offset.y, 0);
    }
    f.Assign(offset.point, pointsInRows ? 1 : 2);
}

/// One entry of a constraint row: a constant, or a coordinate, negated or not, times another one or not.
struct Entry {
    enum Factor : int { NO_FACTOR = -1, A1 = 0, B1, A2, B2 };
    int constant;    ///< taken when first is NO_FACTOR
    Factor first;
    bool isNegated;
    Factor second;
};

constexpr Entry number(int value) { return {value, Entry::NO_FACTOR, false, Entry::NO_FACTOR}; }
constexpr Entry plus(Entry::Factor first, Entry::Factor second = Entry::NO_FACTOR) { return {0, first, false, second}; }
constexpr Entry minus(Entry::Factor first, Entry::Factor second = Entry::NO_FACTOR) { return {0, first, true, second}; }

constexpr Entry ZERO = number(0);
constexpr Entry ONE = number(1);
constexpr Entry MINUS_ONE = number(-1);

/// Both rows of a pair by [sampleSize - 2], as makeConstraintMatrix in szelesttform_points.h writes them.
constexpr Entry ROWS[3][2][9] = {
    {{minus(Entry::B1), plus(Entry::A1), ZERO, MINUS_ONE, plus(Entry::B2)},
     {plus(Entry::A1), plus(Entry::B1), ONE, ZERO, minus(Entry::A2)}},
    {{ZERO, ZERO, ZERO, minus(Entry::A1), minus(Entry::B1), MINUS_ONE, plus(Entry::B2)},
     {plus(Entry::A1), plus(Entry::B1), ONE, ZERO, ZERO, ZERO, minus(Entry::A2)}},
    {{ZERO, ZERO, ZERO, minus(Entry::A1), minus(Entry::B1), MINUS_ONE, plus(Entry::B2, Entry::A1), plus(Entry::B2, Entry::B1),
      plus(Entry::B2)},
     {plus(Entry::A1), plus(Entry::B1), ONE, ZERO, ZERO, ZERO, minus(Entry::A2, Entry::A1), minus(Entry::A2, Entry::B1),
      minus(Entry::A2)}},
};

}  // namespace

// ---- normPts

generateNormPtsFcn::generateNormPtsFcn(Cfg* owner, int inTypeId, int outTypeId, const Type* inType, const Type* outType,
                                       bool pointsInRows)
    : LibGenerator(owner), mInTypeId(inTypeId), mOutTypeId(outTypeId), mInType(base_type(inType)),
      mOutType(base_type(outType)), mPointsInRows(pointsInRows), mName(typedName("normPts", mInTypeId, mOutTypeId))
{
}

generateNormPtsFcn::~generateNormPtsFcn() = default;

int generateNormPtsFcn::getNumInputs() const { return NORM_PTS_INPUT_NUM; }

const Type* generateNormPtsFcn::getInputType(int idx) const
{
    switch (idx) {
    case PTS: return readOnlyArrayOf(mInType);
    case SAMPLES: return readOnlyArrayOf(uint32T());
    case PTS_NUM:
    case SAMPLE_NUM: return uint32T();
    case PTS_NORM:
    case SCALE:
    case CENTS: return arrayOf(mOutType);
    default: return nullptr;
    }
}

const char* generateNormPtsFcn::getInputName(int idx) const
{
    return idx >= 0 && idx < NORM_PTS_INPUT_NUM ? NORM_PTS_NAMES[idx] : "";
}

void generateNormPtsFcn::constructBody(ConstructionFacade& f)
{
    f.describe("Normalizes a subset of a point set: its centroid is moved to the origin, and the coordinates are scaled to a mean "
               "distance of sqrt(2) from there (isotropic scaling). Coordinate a of a point is x for points in columns and y "
               "for points in rows, coordinate b the other one.",
               "generateNormPtsFcn");
    f.describeInput(PTS, mPointsInRows ? "in, 2*ptsNum coordinates: all x, then all y" : "in, 2*ptsNum coordinates: x and y of each point");
    f.describeInput(SAMPLES, "in, sampleNum indices of points");
    f.describeInput(PTS_NUM, "number of points in pts");
    f.describeInput(SAMPLE_NUM, "number of points to take");
    f.describeInput(PTS_NORM, "out, 2*sampleNum coordinates in the layout of pts: scale * (point - cents)");
    f.describeInput(SCALE, "out, 1 value; left alone when the points coincide");
    f.describeInput(CENTS, "out, centroid (a, b)");

    const Expr pts = f.getInputNumRef(PTS);
    const Expr samples = f.getInputIdxRef(SAMPLES);
    const Expr ptsNum = f.getInputIdxRef(PTS_NUM);
    const Expr sampleNum = f.getInputIdxRef(SAMPLE_NUM);
    const Expr ptsNorm = f.getInputNumRef(PTS_NORM);
    const Expr scale = f.derefToRef(f.getInputNumRef(SCALE));
    const Expr cents = f.getInputNumRef(CENTS);

    f.append("Normalize the points.");
    const Expr i = f.createLocal("i", uint32T());
    const Expr j = f.createLocal("j", uint32T());
    const Expr k = f.createLocal("k", uint32T());
    const Offsets in = {f.createLocal("offsetXIn", uint32T(), 0, "of coordinate b in pts"),
                        f.createLocal("offsetYIn", uint32T(), 0, "of coordinate a in pts"),
                        f.createLocal("offsetPointIn", uint32T(), 0, "from point to point in pts")};
    const Offsets out = {f.createLocal("offsetXOut", uint32T(), 0, "of coordinate b in ptsNorm"),
                         f.createLocal("offsetYOut", uint32T(), 0, "of coordinate a in ptsNorm"),
                         f.createLocal("offsetPointOut", uint32T(), 0, "from point to point in ptsNorm")};
    const Expr dis = f.createLocal("dis", mOutType, 0, "distance of a point from the centroid");
    const Expr sumDis = f.createLocal("sumDis", mOutType);
    const Expr loc = f.createLocal("loc", mOutType, 0, "one coordinate");

    setOffsets(f, in, mPointsInRows, ptsNum);
    setOffsets(f, out, mPointsInRows, sampleNum);
    f.Assign(cents[0], 0);
    f.Assign(cents[1], 0);
    {
        ForBlock perPoint(f, i, sampleNum);
        f.Assign(j, samples[i] * in.point);
        f.Assign(k, i * out.point);
        f.Assign(loc, f.cast(mOutType, pts[j + in.y]));
        f.Assign(ptsNorm[k + out.y], loc);
        f.Assign(cents[0], cents[0] + loc);
        f.Assign(loc, f.cast(mOutType, pts[j + in.x]));
        f.Assign(ptsNorm[k + out.x], loc);
        f.Assign(cents[1], cents[1] + loc);
    }
    f.Assign(cents[0], f.division(cents[0], f.cast(mOutType, sampleNum)));
    f.Assign(cents[1], f.division(cents[1], f.cast(mOutType, sampleNum)));

    f.Assign(sumDis, 0);
    {
        ForBlock perPoint(f, i, sampleNum);
        f.Assign(j, i * out.point);
        f.Assign(ptsNorm[j + out.y], ptsNorm[j + out.y] - cents[0]);
        f.Assign(ptsNorm[j + out.x], ptsNorm[j + out.x] - cents[1]);
        f.Assign(k, j + out.x);
        f.Assign(j, j + out.y);
        f.Assign(dis, (*IntrinsicFcn::lookup("sqrt", mOutType))(ptsNorm[j] * ptsNorm[j] + ptsNorm[k] * ptsNorm[k]));
        f.Assign(sumDis, sumDis + dis);
    }
    IfBlock isSpread(f, sumDis > 0);
    f.Assign(scale, std::sqrt(2.0));
    f.Assign(scale, f.multiply(scale, f.cast(mOutType, sampleNum)));
    f.Assign(scale, f.division(scale, sumDis));
    ForBlock perCoordinate(f, i, 2 * sampleNum);
    f.Assign(ptsNorm[i], f.multiply(ptsNorm[i], scale));
}

// ---- makeConstraintMatrix

generateMakeConstraintMatrixFcn::generateMakeConstraintMatrixFcn(Cfg* owner, std::int32_t sampleSize, int typeId1, int typeId2,
                                                                 const Type* type1, const Type* type2, bool pointsInRows)
    : LibGenerator(owner), mSampleSize(sampleSize), mTypeId1(typeId1), mTypeId2(typeId2), mType1(base_type(type1)),
      mType2(base_type(type2)), mPointsInRows(pointsInRows),
      mName(typedName(std::string("makeConstraintMatrix") + KIND_SUFFIXES[mSampleSize - 2], mTypeId1, mTypeId2))
{
}

generateMakeConstraintMatrixFcn::~generateMakeConstraintMatrixFcn() = default;

int generateMakeConstraintMatrixFcn::getNumInputs() const { return CONSTRAINT_INPUT_NUM; }

const Type* generateMakeConstraintMatrixFcn::getInputType(int idx) const
{
    switch (idx) {
    case PTS1:
    case PTS2: return readOnlyArrayOf(mType1);
    case PAIR_NUM:
    case MAX_PAIR_NUM: return uint32T();
    case CONSTRAINT: return arrayOf(mType2);
    default: return nullptr;
    }
}

const char* generateMakeConstraintMatrixFcn::getInputName(int idx) const
{
    return idx >= 0 && idx < CONSTRAINT_INPUT_NUM ? CONSTRAINT_NAMES[idx] : "";
}

void generateMakeConstraintMatrixFcn::constructBody(ConstructionFacade& f)
{
    f.describe("Builds the homogeneous linear system A*h = 0 that point pairs put on a compact transformation h: two rows for each "
               "pair. Coordinate a of a point is x for points in columns and y for points in rows, coordinate b the other one.",
               "generateMakeConstraintMatrixFcn");
    const char* const layout = mPointsInRows ? "in, coordinates: all x, then all y" : "in, coordinates: x and y of each point";
    f.describeInput(PTS1, layout);
    f.describeInput(PTS2, "in, the matched points, likewise");
    f.describeInput(PAIR_NUM, "number of pairs to use, the first ones");
    f.describeInput(MAX_PAIR_NUM, mPointsInRows ? "number of points in pts1 and in pts2: where the y begin" : "number of points in pts1 and in pts2");
    f.describeInput(CONSTRAINT, "out, 2*sampleNum rows, one row after the other");

    const Expr pts1 = f.getInputNumRef(PTS1);
    const Expr pts2 = f.getInputNumRef(PTS2);
    const Expr constraint = f.getInputNumRef(CONSTRAINT);
    f.append("Generate the constraint matrix.");
    const Expr i = f.createLocal("i", uint32T());
    const Expr j = f.createLocal("j", uint32T(), 0, "where the point begins");
    const Expr k = f.createLocal("k", uint32T(), 0, "next value of the matrix");
    const Offsets offset = {f.createLocal("offsetX", uint32T(), 0, "of coordinate b"),
                            f.createLocal("offsetY", uint32T(), 0, "of coordinate a"),
                            f.createLocal("offsetPoint", uint32T(), 0, "from point to point")};
    setOffsets(f, offset, mPointsInRows, f.getInputIdxRef(MAX_PAIR_NUM));
    f.Assign(j, 0);
    f.Assign(k, 0);
    ForBlock perPair(f, i, f.getInputIdxRef(PAIR_NUM));
    const auto coordinate = [&](Entry::Factor factor) {
        const bool isFirstSet = factor == Entry::A1 || factor == Entry::B1;
        const bool isA = factor == Entry::A1 || factor == Entry::A2;
        return f.cast(mType2, (isFirstSet ? pts1 : pts2)[j + (isA ? offset.y : offset.x)]);
    };
    for (const auto& row : ROWS[mSampleSize - 2]) {
        for (std::int32_t col = 0; col < 2 * mSampleSize + 1; ++col) {
            const Entry& entry = row[col];
            if (entry.first == Entry::NO_FACTOR) {
                f.Assign(constraint[k], entry.constant);
            } else {
                const Expr first = coordinate(entry.first);
                f.Assign(constraint[k], entry.isNegated ? -first : first);
            }
            if (entry.second != Entry::NO_FACTOR)
                f.Assign(constraint[k], f.multiply(constraint[k], coordinate(entry.second)));
            f.increment(k);
        }
    }
    f.Assign(j, j + offset.point);
}

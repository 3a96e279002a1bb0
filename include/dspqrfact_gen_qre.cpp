// The generated factorization with explicit factors.
#include "dspqrfact_gen.h"
#include "dspqrfact_gen_inputs.h"
#include "dspqrfact_gen_ops.h"

using namespace CG;
using DSPCG::ConstructionFacade;
using qrdetail::ElementOps;
using qrdetail::Input;
using qrdetail::InputKind;

namespace {

enum { OUT_Q, OUT_R, OUT_E, QR_AUX, WORK, JPVT, S_PTR, ROWS, COLS, ECONOMY };
constexpr qrdetail::InputTable INPUTS = {
    Input{"outQ", InputKind::ELEMENT_ARRAY, "out, M x L column by column; L = min(M, N) with economy, else M"},
    Input{"outR", InputKind::ELEMENT_ARRAY,
          "in/out, M x N column by column: A; economy and M > N: left as QRDC leaves it; otherwise R, upper triangular"},
    Input{"outE", InputKind::REAL_ARRAY, "out, N values: column of A, counted from 1, that is column k of A*E"},
    Input{"qrAux", InputKind::ELEMENT_ARRAY, "out, N values: leading elements of the Householder vectors"},
    Input{"work", InputKind::ELEMENT_ARRAY, "scratch, N values"},
    Input{"jpvt", InputKind::INDEX_ARRAY, "in/out, N values: marks of columns, 0 for none; then outE counted from 0"},
    Input{"sPtr", InputKind::ELEMENT_ARRAY, "out, N x N column by column: R; written only with economy and M > N"},
    Input{"M", InputKind::INDEX, "rows, at least 1"},
    Input{"N", InputKind::INDEX, "columns, at least 1"},
    Input{"economy", InputKind::FLAG, "form only the first min(M, N) columns of Q"},
};

/// Locals and inputs of the function.
struct Names {
    Expr outQ, outR, outE, qrAux, jpvt, sPtr, M, N, economy;
    Expr i, j, L, pq, pr, ps, pe, pjpvt;
    Expr Zero, One;  ///< null for a real element type
};

/// x := 0 or x := 1, a complex number through "Zero" and "One".
void setZero(ConstructionFacade& f, const ElementOps& ops, const Names& v, Expr x)
{
    if (v.Zero.isNull()) {
        f.Assign(x, 0);
    } else {
        ops.setReal(x, v.Zero, v.Zero);
    }
}

void setOne(ConstructionFacade& f, const ElementOps& ops, const Names& v, Expr x)
{
    if (v.One.isNull()) {
        f.Assign(x, 1);
    } else {
        ops.setReal(x, v.One, v.Zero);
    }
}

void emitQ(ConstructionFacade& f, const ElementOps& ops, const Names& v, QRFactQRSL1Gen& qrsl1)
{
    f.append("explicitly form q by manipulating identity");
    {
        IfBlock isEconomy(f, v.economy);
        {
            IfBlock isWide(f, v.M < v.N);
            f.Assign(v.L, v.M);
            isWide.otherwise();
            f.Assign(v.L, v.N);
        }
        isEconomy.otherwise();
        f.Assign(v.L, v.M);
    }
    f.Assign(v.pq, 0);
    {
        ForBlock perElement(f, v.j, v.L * v.M);
        setZero(f, ops, v, v.outQ[v.j]);
    }
    {
        ForBlock perDiagonal(f, v.j, v.L);
        setOne(f, ops, v, v.outQ[v.pq]);
        f.Assign(v.pq, v.pq + (v.M + 1));
    }
    f.append("Convert cols of identity into cols of q. Use info stored in lower triangle of r and in vector qraux to work "
             "on columns of identity matrix I and transform them into q*I(:,j) i.e. the columns of q.");
    f.Assign(v.pq, 0);
    ForBlock perColumn(f, v.j, v.L);
    ops.call(qrsl1, {v.outR, v.qrAux, v.outQ[v.pq], v.M, v.N});
    f.Assign(v.pq, v.pq + v.M);
}

void emitUpperTriangle(ConstructionFacade& f, const ElementOps& ops, const Names& v)
{
    f.append("Copy upper triangle of r to s");
    f.Assign(v.pr, 0);
    f.Assign(v.ps, 0);
    ForBlock perColumn(f, v.j, v.N);
    {
        CForBlock upper(f, v.i, f.getConstScalar(int32T(), 0), v.i <= v.j);
        f.Assign(v.sPtr[v.ps], v.outR[v.pr]);
        f.increment(v.ps);
        f.increment(v.pr);
    }
    f.Assign(v.pr, v.pr + (v.M - (v.j + 1)));
    ForBlock lower(f, v.i, v.N - (v.j + 1));
    setZero(f, ops, v, v.sPtr[v.ps]);
    f.increment(v.ps);
}

void emitZeroLowerTriangle(ConstructionFacade& f, const ElementOps& ops, const Names& v)
{
    f.append("Zero strict lower triangle of r");
    f.Assign(v.pr, v.M * v.N - 1);
    CForBlock perColumn(f, v.j, v.N - 1, v.j >= 0, -1);
    {
        CForBlock below(f, v.i, v.M, v.i > v.j + 1, -1);
        setZero(f, ops, v, v.outR[v.pr]);
        f.decrement(v.pr);
    }
    IfBlock isAllAbove(f, v.M < v.j + 1);
    f.Assign(v.pr, v.pr - v.M);
    isAllAbove.otherwise();
    f.Assign(v.pr, v.pr - v.j - 1);
}

}  // namespace

const char* QRFactQREGen::fcnName() const { return typedFcnName("QRE", isReal ? "" : "C"); }
int QRFactQREGen::getNumInputs() const { return INPUTS.num(); }
const Type* QRFactQREGen::getInputType(int idx) const { return INPUTS.type(idx, {elemType, realType}); }
const char* QRFactQREGen::getInputName(int idx) const { return INPUTS.name(idx); }

void QRFactQREGen::constructBody(ConstructionFacade& f)
{
    f.describe("Factorization A*E = Q*R by Householder transformations with column pivoting, with explicit factors.",
               "QRFactQREGen");
    INPUTS.describe(f);
    const ElementOps ops(f, realType);
    QRFactQRDCGen qrdc(f, elemType, isReal);
    QRFactQRSL1Gen qrsl1(f, elemType, isReal);
    Names v;
    v.outQ = f.getInputNumRef(OUT_Q);
    v.outR = f.getInputNumRef(OUT_R);
    v.outE = f.getInputNumRef(OUT_E);
    v.qrAux = f.getInputNumRef(QR_AUX);
    v.jpvt = f.getInputIdxRef(JPVT);
    v.sPtr = f.getInputNumRef(S_PTR);
    v.M = f.getInputIdxRef(ROWS);
    v.N = f.getInputIdxRef(COLS);
    v.economy = f.getInputIdxRef(ECONOMY);
    v.i = f.localIdxVar("i");
    v.j = f.localIdxVar("j");
    v.L = f.localIdxVar("L", "columns of Q");
    v.pq = f.localIdxVar("pq", "index into outQ");
    v.pr = f.localIdxVar("pr", "index into outR");
    v.ps = f.localIdxVar("ps", "index into sPtr");
    v.pe = f.localIdxVar("pe", "index into outE");
    v.pjpvt = f.localIdxVar("pjpvt", "index into jpvt");
    if (!isReal) {
        v.Zero = f.localNumVar("Zero", realType);
        v.One = f.localNumVar("One", realType);
        f.Assign(v.Zero, 0);
        f.Assign(v.One, 1);
    }

    ops.call(qrdc, {v.outR, v.qrAux, v.jpvt, f.getInputNumRef(WORK), v.M, v.N});
    emitQ(f, ops, v, qrsl1);
    {
        IfBlock isInS(f, v.economy && v.M > v.N);
        emitUpperTriangle(f, ops, v);
        isInS.otherwise();
        emitZeroLowerTriangle(f, ops, v);
    }
    f.append("form permutation vector e");
    f.Assign(v.pe, 0);
    f.Assign(v.pjpvt, 0);
    ForBlock perColumn(f, v.j, v.N);
    f.Assign(v.outE[v.pe], f.cast(realType, v.jpvt[v.pjpvt]) + 1);
    f.increment(v.pe);
    f.increment(v.pjpvt);
}

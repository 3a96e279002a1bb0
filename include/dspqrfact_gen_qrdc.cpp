// The generated Householder reduction with column pivoting: the function, and the order of its columns.
#include "dspqrfact_gen_qrdc.h"

#include "dspqrfact_gen_inputs.h"

using namespace CG;
using qrdetail::Input;
using qrdetail::InputKind;

namespace {

enum { X_VEC, QR_AUX, JPVT, WORK, ROWS, COLS };
constexpr qrdetail::InputTable INPUTS = {
    Input{"xVec", InputKind::ELEMENT_ARRAY,
          "in/out, M x N column by column: Householder vectors below the diagonal, R on and above it"},
    Input{"qrAux", InputKind::ELEMENT_ARRAY, "out, N values: leading elements of the Householder vectors, 0 for none"},
    Input{"jpvt", InputKind::INDEX_ARRAY,
          "in/out, N values: 0 free, above 0 to the front, below 0 to the back; then the original index of column k"},
    Input{"work", InputKind::ELEMENT_ARRAY, "scratch, N values"},
    Input{"M", InputKind::INDEX, "rows, at least 1"},
    Input{"N", InputKind::INDEX, "columns, at least 1"},
};

}  // namespace

const char* QRFactQRDCGen::fcnName() const { return typedFcnName("QRDC", isReal ? "" : "C"); }
int QRFactQRDCGen::getNumInputs() const { return INPUTS.num(); }
const Type* QRFactQRDCGen::getInputType(int idx) const { return INPUTS.type(idx, {elemType, realType}); }
const char* QRFactQRDCGen::getInputName(int idx) const { return INPUTS.name(idx); }

void QRFactQRDCGen::constructBody(DSPCG::ConstructionFacade& f)
{
    f.describe("Householder reduction with column pivoting, in place: LINPACK's xQRDC with norms by a running hypot.",
               "QRFactQRDCGen");
    INPUTS.describe(f);
    QRFactV2normGen v2norm(f, elemType, isReal);
    qrdetail::QrdcBody body(f, v2norm, base_type(elemType), isReal, realType);
    body.arrangeColumns();
    body.computeNorms();
    body.reduce();
}

namespace qrdetail {

QrdcBody::QrdcBody(DSPCG::ConstructionFacade& facade, QRFactV2normGen& norm, const Type* elemType, bool isElementReal,
                   const Type* realElemType)
    : f(facade), ops(facade, realElemType), v2norm(norm), type(elemType), isReal(isElementReal), realType(realElemType),
      xVec(f.getInputNumRef(X_VEC)), qrAux(f.getInputNumRef(QR_AUX)), jpvt(f.getInputIdxRef(JPVT)),
      work(f.getInputNumRef(WORK)), M(f.getInputIdxRef(ROWS)), N(f.getInputIdxRef(COLS))
{
}

void QrdcBody::setFlag(Expr flag, Expr condition)
{
    IfBlock isSet(f, condition);
    f.Assign(flag, 1);
    isSet.otherwise();
    f.Assign(flag, 0);
}

void QrdcBody::swapColumns(Expr first1, Expr column1, Expr first2, Expr column2)
{
    f.Assign(first1, column1 * M);
    f.Assign(first2, column2 * M);
    f.Assign(px, first1);
    f.Assign(px2, first2);
    CForBlock perElement(f, i, M, i > 0, -1);
    f.Assign(ctmp, xVec[px]);
    f.Assign(xVec[px], xVec[px2]);
    f.Assign(xVec[px2], ctmp);
    f.increment(px);
    f.increment(px2);
}

/// A column that will go to the back is recorded as -index - 1 until it does.
void QrdcBody::moveToFront()
{
    IfBlock isFront(f, swapj != 0);
    {
        IfBlock isElsewhere(f, j != pl);
        f.append("Swap columns pl and j");
        swapColumns(p1k, pl, p1j, j);
    }
    f.Assign(jpvt[j], jpvt[pl]);
    f.Assign(jpvt[pl], j);
    f.increment(pl);
    isFront.otherwise();
    IfBlock isBack(f, jpvt[jpvtp] < 0);
    f.Assign(jpvt[jpvtp], -1 - j);
    isBack.otherwise();
    f.Assign(jpvt[jpvtp], j);
}

void QrdcBody::moveToBack()
{
    IfBlock isBack(f, jpvt[j] < 0);
    f.Assign(jpvt[j], -1 - jpvt[j]);
    {
        IfBlock isElsewhere(f, j != pu);
        f.append("Swap columns pu and j");
        swapColumns(p1k, pu, p1j, j);
        f.Assign(jp, jpvt[pu]);
        f.Assign(jpvt[pu], jpvt[j]);
        f.Assign(jpvt[j], jp);
    }
    f.decrement(pu);
}

void QrdcBody::arrangeColumns()
{
    f.Assign(pl, 0);
    f.Assign(pu, -1);
    {
        ForBlock perColumn(f, j, N);
        f.Assign(jpvtp, j);
        setFlag(swapj, jpvt[jpvtp] > 0);
        moveToFront();
    }
    f.Assign(pu, N - 1);
    CForBlock fromBehind(f, j, pu, j >= 0, -1);
    moveToBack();
}

void QrdcBody::setNorm(Expr number, Expr first, Expr num)
{
    if (isReal) {
        ops.call(v2norm, {xVec[first], num, number});
        return;
    }
    ops.call(v2norm, {xVec[first], num, tmp});
    ops.setReal(number, tmp);
}

void QrdcBody::computeNorms()
{
    f.append("compute the norms of the free columns");
    CForBlock perColumn(f, j, pl, j <= pu);
    f.Assign(p1j, j * M);
    setNorm(qrAux[j], p1j, M);
    f.Assign(work[j], qrAux[j]);
}

void QrdcBody::pivot()
{
    f.append("locate the column of largest norm and bring it into the pivot position");
    IfBlock isFree(f, l >= pl && l < pu);
    f.Assign(maxnrm, 0);
    f.Assign(maxj, l);
    {
        CForBlock perColumn(f, j, l, j <= pu);
        IfBlock isLarger(f, ElementOps::re(qrAux[j]) > maxnrm);
        f.Assign(maxnrm, ElementOps::re(qrAux[j]));
        f.Assign(maxj, j);
    }
    IfBlock isElsewhere(f, maxj != l);
    f.append("Swap columns l and maxj");
    swapColumns(p1l, l, p1j, maxj);
    f.Assign(qrAux[maxj], qrAux[l]);
    f.Assign(work[maxj], work[l]);
    f.Assign(jp, jpvt[maxj]);
    f.Assign(jpvt[maxj], jpvt[l]);
    f.Assign(jpvt[l], jp);
}

void QrdcBody::reduce()
{
    f.append("perform the Householder reduction of x");
    {
        IfBlock isWide(f, M < N);
        f.Assign(minVal, M);
        isWide.otherwise();
        f.Assign(minVal, N);
    }
    ForBlock perColumn(f, l, minVal);
    f.Assign(mml, M - l);
    pivot();
    if (isReal) {
        f.Assign(qrAux[l], 0);
    } else {
        f.Assign(tmp, 0);
        ops.setReal(qrAux[l], tmp, tmp);
    }
    IfBlock isNotLastRow(f, l != M - 1);
    makeTransformation();
}

}  // namespace qrdetail

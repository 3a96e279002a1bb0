// The body of the generated Householder reduction in parts. Private to its sources.
#pragma once

#include "dspqrfact_gen.h"
#include "dspqrfact_gen_ops.h"

namespace qrdetail {

/// Appends the body of QRDC. The operations are called once each, in their order here.
class QrdcBody {
public:
    /// @param v2norm    generator of the norm for the same elements
    /// @param elemType  element type, a real or complex scalar
    QrdcBody(DSPCG::ConstructionFacade& facade, QRFactV2normGen& v2norm, const CG::Type* elemType, bool isReal,
             const CG::Type* realType);

    /// Marked columns go to the front and to the back, and jpvt gets the original indices.
    void arrangeColumns();
    void computeNorms();
    /// One transformation for each l below min(M, N).
    void reduce();

private:
    void moveToFront();
    void moveToBack();
    /// Exchanges the M elements from px and px2 on.
    void swapColumns(CG::Expr first1, CG::Expr column1, CG::Expr first2, CG::Expr column2);
    /// flag := 1 when the condition holds, else 0.
    void setFlag(CG::Expr flag, CG::Expr condition);
    /// number := norm of num elements from xVec[first] on; a complex number gets an imaginary part of 0.
    void setNorm(CG::Expr number, CG::Expr first, CG::Expr num);
    void pivot();
    void makeTransformation();
    /// nrmxl takes the sign, or the phase, of x(l,l).
    void setSign();
    void setRealSign();
    void scaleColumn();
    /// The transformation on column j, plj being the index of its row l.
    void transformColumn();
    void updateNorm();

    DSPCG::ConstructionFacade& f;
    ElementOps ops;
    QRFactV2normGen& v2norm;
    const CG::Type* const type;
    const bool isReal;
    const CG::Type* const realType;

    // Inputs
    const CG::Expr xVec, qrAux, jpvt, work, M, N;

    // Locals, created in this order
    const CG::Expr j = f.localIdxVar("j");
    const CG::Expr i = f.localIdxVar("i");
    const CG::Expr jp = f.localIdxVar("jp", "entry of jpvt while two are exchanged");
    const CG::Expr l = f.localIdxVar("l", "column of the transformation");
    const CG::Expr maxj = f.localIdxVar("maxj", "free column of largest norm");
    const CG::Expr pl = f.localIdxVar("pl", "first free column");
    const CG::Expr pu = f.localIdxVar("pu", "last free column");
    const CG::Expr mml = f.localIdxVar("mml", "M - l");
    const CG::Expr swapj = f.localIdxVar("swapj", "1: column j goes to the front");
    const CG::Expr jpvtp = f.localIdxVar("jpvtp", "index into jpvt");
    const CG::Expr px = f.localIdxVar("px", "index of an element of one column");
    const CG::Expr px2 = f.localIdxVar("px2", "index of an element of the other column");
    const CG::Expr p1k = f.localIdxVar("p1k", "index of the first element of column pl or pu");
    const CG::Expr p1j = f.localIdxVar("p1j", "index of the first element of column j or maxj");
    const CG::Expr p1l = f.localIdxVar("p1l", "index of the first element of column l");
    const CG::Expr pll = f.localIdxVar("pll", "index of x(l,l)");
    const CG::Expr plj = f.localIdxVar("plj", "index of x(l,j)");
    const CG::Expr t = f.localNumVar("t", type);
    const CG::Expr nrmxl = f.localNumVar("nrmxl", type, "norm of column l from row l on, with the sign of x(l,l)");
    const CG::Expr ctmp = f.localNumVar("ctmp", type);
    const CG::Expr ctmp2 = f.localNumVar("ctmp2", type);
    const CG::Expr tst = f.localNumVar("tst", type, "exactly 1 when a norm must be computed afresh");
    const CG::Expr maxnrm = f.localNumVar("maxnrm", realType);
    const CG::Expr tt = f.localNumVar("tt", realType, "square of the norm's factor");
    const CG::Expr tmp = f.localNumVar("tmp", realType);
    const CG::Expr tmp2 = f.localNumVar("tmp2", realType);
    const CG::Expr nrmx1Abs = f.localNumVar("nrmx1Abs", realType, "magnitude of nrmxl");
    const CG::Expr minVal = f.localIdxVar("minVal", "min(M, N)");
    const CG::Expr xAbs = f.localNumVar("xAbs", realType, "magnitude of x(l,l)");
    const CG::Expr cond1 = f.localIdxVar("cond1", "1: column j is fixed at the front");
    const CG::Expr cond2 = f.localIdxVar("cond2", "1: column j is fixed at the back");
    const CG::Expr cond3 = f.localIdxVar("cond3", "1: column j has norm 0");
};

}  // namespace qrdetail

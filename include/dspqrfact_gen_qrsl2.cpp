// The generated least-squares solution with a factorization.
#include "dspqrfact_gen.h"
#include "dspqrfact_gen_inputs.h"
#include "dspqrfact_gen_ops.h"

using namespace CG;
using DSPCG::ConstructionFacade;
using qrdetail::ElementOps;
using qrdetail::Input;
using qrdetail::InputKind;

namespace {

enum { QR, QR_AUX, B, N, K };
constexpr qrdetail::InputTable INPUTS = {
    Input{"qr", InputKind::QR_ARRAY, "in, n x k column by column, as QRDC leaves it; its diagonal is changed and restored"},
    Input{"qrAux", InputKind::QR_ARRAY, "in, k values: leading elements of the Householder vectors"},
    Input{"b", InputKind::ELEMENT_ARRAY,
          "in/out, n values: the solution in the first k, then the rest of Q'*b; stops at a zero on R's diagonal"},
    Input{"n", InputKind::INDEX, "rows"},
    Input{"k", InputKind::INDEX, "columns, at most n"},
};

/// Locals and inputs of the function.
struct Names {
    Expr qr, qrAux, b, n, k;
    Expr j, i, ju, info, pqr, pqraux, pb, pbj, t, qr1;
};

/// b[0] := b[0] / qr[0] for one row, where Q is 1.
void emitSingleRow(ConstructionFacade& f, const ElementOps& ops, const Names& v)
{
    f.append("special action when n=1");
    f.Assign(v.qr1, ops.magnitude(v.qr[0]));
    IfBlock isRegular(f, v.qr1 != 0);
    ops.div(v.b[0], v.b[0], v.qr[0]);
    isRegular.otherwise();
    f.Assign(v.info, 1);
}

/// From the last column to the first one; each solved value is taken out of the rows above it.
void emitBackSubstitution(ConstructionFacade& f, const ElementOps& ops, const Names& v)
{
    f.append("compute x, solution to min(norm(b-a*x)), in place over b");
    CForBlock perColumn(f, v.j, v.k - 1, v.j >= 0 && v.info == 0, -1);
    f.Assign(v.pbj, v.j);
    f.Assign(v.pqr, v.j * (v.n + 1));
    f.Assign(v.qr1, ops.magnitude(v.qr[v.pqr]));
    IfBlock isSingular(f, v.qr1 == 0);
    f.Assign(v.info, v.j + 1);
    isSingular.otherwise();
    ops.div(v.b[v.pbj], v.b[v.pbj], v.qr[v.pqr]);
    ops.negate(v.t, v.b[v.pbj]);
    f.Assign(v.pqr, v.j * v.n);
    f.Assign(v.pb, 0);
    CForBlock perRowAbove(f, v.i, v.j, v.i > 0, -1);
    ops.mulAdd(v.b[v.pb], v.t, v.qr[v.pqr]);
    f.increment(v.pb);
    f.increment(v.pqr);
}

}  // namespace

const char* QRFactQRSL2Gen::fcnName() const
{
    return typedFcnName("QRSL2", (std::string(isReal ? "" : "Cin") + (qrIsReal ? "" : "Cout")).c_str());
}
int QRFactQRSL2Gen::getNumInputs() const { return INPUTS.num(); }
const Type* QRFactQRSL2Gen::getInputType(int idx) const { return INPUTS.type(idx, {elemType, realType, qrType}); }
const char* QRFactQRSL2Gen::getInputName(int idx) const { return INPUTS.name(idx); }

void QRFactQRSL2Gen::constructBody(ConstructionFacade& f)
{
    f.describe("Least-squares solution of A*x = b with the factorization of A: b := Q'*b, then back substitution.",
               "QRFactQRSL2Gen");
    INPUTS.describe(f);
    const ElementOps ops(f, realType);
    QRFactCompQyGen compQy(f, elemType, isReal, qrType, qrIsReal);
    Names v;
    v.qr = f.getInputNumRef(QR);
    v.qrAux = f.getInputNumRef(QR_AUX);
    v.b = f.getInputNumRef(B);
    v.n = f.getInputIdxRef(N);
    v.k = f.getInputIdxRef(K);
    v.j = f.localIdxVar("j");
    v.i = f.localIdxVar("i");
    v.ju = f.localIdxVar("ju", "number of transformations");
    v.info = f.localIdxVar("info", "column, counted from 1, with a zero on the diagonal; 0: none was met");
    v.pqr = f.localIdxVar("pqr", "index into qr");
    v.pqraux = f.localIdxVar("pqraux", "index into qrAux");
    v.pb = f.localIdxVar("pb", "index into b");
    v.pbj = f.localIdxVar("pbj", "index of b(j)");
    v.t = f.localNumVar("t", base_type(elemType));
    v.qr1 = f.localNumVar("qr1", realType, "magnitude of a diagonal element");

    f.Assign(v.info, 0);
    {
        IfBlock isBelowRows(f, v.k < v.n - 1);
        f.Assign(v.ju, v.k);
        isBelowRows.otherwise();
        f.Assign(v.ju, v.n - 1);
    }
    IfBlock isSingleRow(f, v.ju == 0);
    emitSingleRow(f, ops, v);
    isSingleRow.otherwise();
    f.append("compute q'*b in place over b");
    f.Assign(v.pqraux, 0);
    f.Assign(v.pb, 0);
    {
        ForBlock perTransformation(f, v.j, v.ju);
        ops.call(compQy, {v.qr, v.qrAux[v.pqraux], v.b[v.pb], v.n, v.j});
        f.increment(v.pqraux);
        f.increment(v.pb);
    }
    emitBackSubstitution(f, ops, v);
}

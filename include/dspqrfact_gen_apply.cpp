// The generated application of Q to a vector: one Householder transformation, and all of them.
#include "dspqrfact_gen.h"
#include "dspqrfact_gen_inputs.h"
#include "dspqrfact_gen_ops.h"

using namespace CG;
using qrdetail::ElementOps;
using qrdetail::Input;
using qrdetail::InputKind;

namespace {

namespace compqy {
enum { QR, QR_AUX_J, Y, N, J };
constexpr qrdetail::InputTable INPUTS = {
    Input{"qr", InputKind::QR_ARRAY,
          "in, n rows column by column, as QRDC leaves them; a diagonal element is changed and restored"},
    Input{"qrAuxj", InputKind::QR_ARRAY, "in, 1 value: leading element of Householder vector j, 0 for none"},
    Input{"y", InputKind::ELEMENT_ARRAY, "in/out, n - j values: those of the vector from index j on"},
    Input{"n", InputKind::INDEX, "rows of qr"},
    Input{"j", InputKind::INDEX, "index of the transformation"},
};
}  // namespace compqy

namespace qrsl1 {
enum { QR, QR_AUX, Y, N, K };
constexpr qrdetail::InputTable INPUTS = {
    Input{"qr", InputKind::ELEMENT_ARRAY,
          "in, n x k column by column, as QRDC leaves it; its diagonal is changed and restored"},
    Input{"qrAux", InputKind::ELEMENT_ARRAY, "in, k values: leading elements of the Householder vectors"},
    Input{"y", InputKind::ELEMENT_ARRAY, "in/out, n values"},
    Input{"n", InputKind::INDEX, "rows"},
    Input{"k", InputKind::INDEX, "columns of qr that hold transformations"},
};
}  // namespace qrsl1

}  // namespace

// ---- QRCompQy

const char* QRFactCompQyGen::fcnName() const
{
    return typedFcnName("QRCompQy", (std::string(isReal ? "" : "Cin") + (qrIsReal ? "" : "Cout")).c_str());
}
int QRFactCompQyGen::getNumInputs() const { return compqy::INPUTS.num(); }
const Type* QRFactCompQyGen::getInputType(int idx) const { return compqy::INPUTS.type(idx, {elemType, realType, qrType}); }
const char* QRFactCompQyGen::getInputName(int idx) const { return compqy::INPUTS.name(idx); }

void QRFactCompQyGen::constructBody(DSPCG::ConstructionFacade& f)
{
    using namespace compqy;
    f.describe("Applies one Householder transformation: y := H*y.", "QRFactCompQyGen");
    INPUTS.describe(f);
    const ElementOps ops(f, realType);
    const Expr qr = f.getInputNumRef(QR);
    const Expr qrAuxj = f.derefToRef(f.getInputNumRef(QR_AUX_J));
    const Expr y = f.getInputNumRef(Y);
    const Expr n = f.getInputIdxRef(N);
    const Expr j = f.getInputIdxRef(J);
    const Expr auxAbs = f.localNumVar("j", realType, "magnitude of qrAuxj");
    const Expr nmj = f.localIdxVar("nmj", "n - j");
    const Expr i = f.localIdxVar("i");
    const Expr pjj = f.localIdxVar("pjj", "index of the diagonal element");
    const Expr t = f.localNumVar("t", base_type(elemType), "-(v'*y) / v[0]");
    const Expr temp = f.localNumVar("temp", base_type(qrType), "diagonal element of R");
    const Expr pqr = f.localIdxVar("pqr", "index into qr");
    const Expr py = f.localIdxVar("py", "index into y");
    const Expr tmp = f.localNumVar("tmp", realType);

    f.Assign(tmp, 0);
    f.Assign(auxAbs, ops.magnitude(qrAuxj));
    IfBlock hasTransformation(f, auxAbs != 0);
    f.Assign(nmj, n - j);
    f.Assign(pjj, j * (n + 1));
    f.Assign(pqr, pjj);
    f.Assign(temp, qr[pjj]);
    f.Assign(qr[pjj], qrAuxj);

    ops.setReal(t, tmp, tmp);
    f.Assign(py, 0);
    {
        CForBlock perElement(f, i, nmj, i > 0, -1);
        ops.mulSub(t, qr[pqr], y[py]);
        f.increment(pqr);
        f.increment(py);
    }
    f.Assign(pqr, pjj);
    ops.div(t, t, qr[pjj]);

    f.Assign(py, 0);
    {
        CForBlock perElement(f, i, nmj, i > 0, -1);
        ops.mulAdd(y[py], t, qr[pqr]);
        f.increment(pqr);
        f.increment(py);
    }
    f.Assign(pqr, pjj);
    f.Assign(qr[pjj], temp);
}

// ---- QRSL1

const char* QRFactQRSL1Gen::fcnName() const { return typedFcnName("QRSL1", isReal ? "" : "C"); }
int QRFactQRSL1Gen::getNumInputs() const { return qrsl1::INPUTS.num(); }
const Type* QRFactQRSL1Gen::getInputType(int idx) const { return qrsl1::INPUTS.type(idx, {elemType, realType}); }
const char* QRFactQRSL1Gen::getInputName(int idx) const { return qrsl1::INPUTS.name(idx); }

void QRFactQRSL1Gen::constructBody(DSPCG::ConstructionFacade& f)
{
    using namespace qrsl1;
    f.describe("Applies all Householder transformations: y := Q*y.", "QRFactQRSL1Gen");
    INPUTS.describe(f);
    const ElementOps ops(f, realType);
    QRFactCompQyGen compQy(f, elemType, isReal, elemType, isReal);
    const Expr qr = f.getInputNumRef(QR);
    const Expr qrAux = f.getInputNumRef(QR_AUX);
    const Expr y = f.getInputNumRef(Y);
    const Expr n = f.getInputIdxRef(N);
    const Expr k = f.getInputIdxRef(K);
    const Expr j = f.localIdxVar("j", "number of transformations");
    const Expr i = f.localIdxVar("i");
    const Expr pqraux = f.localIdxVar("pqraux", "index into qrAux");
    const Expr py = f.localIdxVar("py", "index into y");

    {
        IfBlock isBelowRows(f, k < n - 1);
        f.Assign(j, k);
        isBelowRows.otherwise();
        f.Assign(j, n - 1);
    }
    IfBlock hasAny(f, j != 0);
    f.Assign(pqraux, j - 1);
    f.Assign(py, j - 1);
    CForBlock perTransformation(f, i, j, i > 0, -1);
    ops.call(compQy, {qr, qrAux[pqraux], y[py], n, i - 1});
    f.decrement(pqraux);
    f.decrement(py);
}

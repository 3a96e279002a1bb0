// The generated norm of a vector.
#include "dspqrfact_gen.h"
#include "dspqrfact_gen_inputs.h"
#include "dspqrfact_gen_ops.h"

using namespace CG;
using qrdetail::ElementOps;
using qrdetail::Input;
using qrdetail::InputKind;

namespace {

enum { V, N, V2NORM };
constexpr qrdetail::InputTable INPUTS = {
    Input{"V", InputKind::ELEMENT_ARRAY, "in, N values"},
    Input{"N", InputKind::INDEX, "number of values, 0 or more"},
    Input{"v2norm", InputKind::REAL_ARRAY, "out, 1 value"},
};

}  // namespace

const char* QRFactV2normGen::fcnName() const { return typedFcnName("QRV2Norm", isReal ? "" : "C"); }
int QRFactV2normGen::getNumInputs() const { return INPUTS.num(); }
const Type* QRFactV2normGen::getInputType(int idx) const { return INPUTS.type(idx, {elemType, realType}); }
const char* QRFactV2normGen::getInputName(int idx) const { return INPUTS.name(idx); }

void QRFactV2normGen::constructBody(DSPCG::ConstructionFacade& f)
{
    f.describe("2-norm of a vector as a running hypot in the order of the values, without overflow.", "QRFactV2normGen");
    INPUTS.describe(f);
    const ElementOps ops(f, realType);
    const Expr v = f.getInputNumRef(V);
    const Expr nrm = f.localNumVar("nrm", realType, "norm of the values so far");
    const Expr vi = f.localIdxVar("vi", "index of the value");
    const Expr i = f.localIdxVar("i");
    const Expr Vd = f.localNumVar("Vd", realType, "next value, or part of it");

    f.Assign(nrm, 0);
    f.Assign(vi, 0);
    {
        ForBlock perValue(f, i, f.getInputIdxRef(N));
        f.Assign(Vd, ElementOps::re(v[vi]));
        f.Assign(nrm, ops.hypot(nrm, Vd));
        if (!isReal) {
            f.Assign(Vd, imag(v[vi]));
            f.Assign(nrm, ops.hypot(nrm, Vd));
        }
        f.increment(vi);
    }
    f.Assign(f.derefToRef(f.getInputNumRef(V2NORM)), nrm);
}

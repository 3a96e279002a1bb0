// The generated Householder reduction: one transformation, and what it does to the columns behind it.
#include "dspqrfact_gen_qrdc.h"

using namespace CG;

namespace qrdetail {

void QrdcBody::makeTransformation()
{
    f.append("Compute the Householder transformation for column l");
    f.Assign(pll, l * (M + 1));
    f.Assign(px, pll);
    setNorm(nrmxl, pll, mml);
    f.Assign(nrmx1Abs, ops.magnitude(nrmxl));
    IfBlock isNorm(f, nrmx1Abs != 0);
    f.Assign(xAbs, ops.magnitude(xVec[pll]));
    {
        IfBlock hasSign(f, xAbs != 0);
        setSign();
    }
    scaleColumn();
    {
        f.append("apply the transformation to the remaining columns, updating the norms.");
        CForBlock perColumn(f, j, l + 1, j < N);
        transformColumn();
        updateNorm();
    }
    f.append("save the transformation.");
    f.Assign(qrAux[l], xVec[pll]);
    ops.negate(xVec[pll], nrmxl);
}

void QrdcBody::setRealSign()
{
    f.Assign(tmp2, ElementOps::re(xVec[pll]));
    const Expr re = ElementOps::re(nrmxl);
    IfBlock isPositive(f, tmp2 >= 0);
    f.Assign(re, ops.abs(re));
    isPositive.otherwise();
    f.Assign(re, -ops.abs(re));
}

/// The modulus of an element that is not 0 may be 0. An element without imaginary part has a sign, as a real one.
void QrdcBody::setSign()
{
    if (isReal) {
        setRealSign();
        return;
    }
    IfBlock isRealElement(f, imag(xVec[pll]) == 0);
    setRealSign();
    isRealElement.otherwise();
    const Expr modulus = ops.modulus(xVec[pll], real(tst));
    IfBlock hasNoModulus(f, modulus == 0);
    f.Assign(real(nrmxl), ops.abs(real(nrmxl)));
    hasNoModulus.otherwise();
    f.Assign(tmp, f.division(nrmx1Abs, modulus));
    f.Assign(real(nrmxl), real(xVec[pll]) * tmp);
    f.Assign(imag(nrmxl), imag(xVec[pll]) * tmp);
}

void QrdcBody::scaleColumn()
{
    f.append("Check if it's safe to multiply by 1/nrmxl instead of dividing by nrmxl");
    f.Assign(px2, px);
    ops.mulRe(ctmp, nrmxl, f.getConstScalar(realType, 5e-20));
    {
        IfBlock isSafe(f, ElementOps::isNonZero(ctmp));
        ops.recip(ctmp2, nrmxl);
        {
            CForBlock perElement(f, i, mml, i > 0, -1);
            ops.mul(xVec[px2], xVec[px2], ctmp2);
            f.increment(px2);
        }
        isSafe.otherwise();
        CForBlock perElement(f, i, mml, i > 0, -1);
        ops.div(xVec[px2], xVec[px2], nrmxl);
        f.increment(px2);
    }
    ops.addOne(xVec[pll]);
}

void QrdcBody::transformColumn()
{
    f.Assign(plj, l + j * M);
    f.Assign(px2, plj);
    ops.setReal(t, f.getConstScalar(realType, 0));
    {
        CForBlock perElement(f, i, mml, i > 0, -1);
        ops.mulSub(t, xVec[px], xVec[px2]);
        f.increment(px);
        f.increment(px2);
    }
    f.Assign(px, pll);
    f.Assign(px2, plj);
    ops.div(t, t, xVec[pll]);
    {
        CForBlock perElement(f, i, mml, i > 0, -1);
        ops.mulAdd(xVec[px2], t, xVec[px]);
        f.increment(px);
        f.increment(px2);
    }
    f.Assign(px, pll);
    f.Assign(px2, plj);
}

void QrdcBody::updateNorm()
{
    setFlag(cond1, j < pl);
    setFlag(cond2, j > pu);
    f.Assign(cond3, 0);
    {
        IfBlock isNormZero(f, ops.magnitude(qrAux[j]) == 0);
        f.Assign(cond3, 1);
    }
    IfBlock isToUpdate(f, cond1 == 0 && cond2 == 0 && cond3 == 0);
    const Expr norm = ElementOps::re(qrAux[j]);
    f.Assign(tt, f.division(ops.modulus(xVec[plj], ElementOps::re(tst)), norm));
    f.Assign(tt, 1 - tt * tt);
    {
        IfBlock isNegative(f, tt < 0);
        f.Assign(tt, 0);
    }
    ops.setReal(t, tt);
    f.Assign(tmp, f.division(norm, ElementOps::re(work[j])));
    ops.setReal(tst, 1 + ((0.05 * tt) * tmp) * tmp);
    IfBlock isAccurate(f, ElementOps::re(tst) != 1);
    ops.mulRe(qrAux[j], qrAux[j], ops.sqrt(ElementOps::re(t)));
    isAccurate.otherwise();
    setNorm(qrAux[j], plj + 1, mml - 1);
    f.Assign(work[j], qrAux[j]);
}

}  // namespace qrdetail

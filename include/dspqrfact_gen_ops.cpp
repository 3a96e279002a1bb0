#include "dspqrfact_gen_ops.h"

using namespace CG;

namespace qrdetail {

bool isComplexExpr(Expr x)
{
    return isComplex(getType(x.node()));
}

// ---- Expressions

Expr ElementOps::re(Expr x)
{
    return isComplexExpr(x) ? real(x) : x;
}

Expr ElementOps::abs(Expr x) const
{
    return (*IntrinsicFcn::lookup("abs", realType))(x);
}

Expr ElementOps::sqrt(Expr x) const
{
    return (*IntrinsicFcn::lookup("sqrt", realType))(x);
}

Expr ElementOps::magnitude(Expr x) const
{
    return isComplexExpr(x) ? abs(real(x)) + abs(imag(x)) : abs(x);
}

Expr ElementOps::isNonZero(Expr x)
{
    return isComplexExpr(x) ? real(x) != 0 || imag(x) != 0 : x != 0;
}

// ---- Real results

Expr ElementOps::hypot(Expr a, Expr b) const
{
    const Expr tmp = f.localNumVar("tmp", realType, "ratio of the smaller to the larger magnitude");
    const Expr val = f.localNumVar("val", realType);
    f.Assign(val, 0);
    IfBlock isFirstLarger(f, abs(a) > abs(b));
    f.Assign(tmp, f.division(b, a));
    f.Assign(val, abs(a) * sqrt(1 + tmp * tmp));
    isFirstLarger.otherwise();
    IfBlock isZero(f, b == 0);
    f.Assign(val, 0);
    isZero.otherwise();
    f.Assign(tmp, f.division(a, b));
    f.Assign(val, abs(b) * sqrt(1 + tmp * tmp));
    return val;
}

Expr ElementOps::modulus(Expr x, Expr store) const
{
    if (!isComplexExpr(x)) return abs(x);
    ScopeBlock scope(f);
    f.Assign(store, hypot(real(x), imag(x)));
    return store;
}

// ---- Statements

void ElementOps::setReal(Expr x, Expr value) const
{
    f.Assign(re(x), value);
    if (isComplexExpr(x)) f.Assign(imag(x), 0);
}

void ElementOps::setReal(Expr x, Expr value, Expr zero) const
{
    f.Assign(re(x), value);
    if (isComplexExpr(x)) f.Assign(imag(x), zero);
}

void ElementOps::mul(Expr product, Expr a, Expr b) const
{
    if (!isComplexExpr(product)) {
        f.Assign(product, f.multiply(a, b));
        return;
    }
    ScopeBlock scope(f);
    const Expr rePart = f.localNumVar("rePart", realType);
    f.Assign(rePart, real(a) * real(b) - imag(a) * imag(b));
    f.Assign(imag(product), real(a) * imag(b) + imag(a) * real(b));
    f.Assign(real(product), rePart);
}

void ElementOps::mulRe(Expr product, Expr a, Expr factor) const
{
    f.Assign(re(product), f.multiply(re(a), factor));
    if (isComplexExpr(product)) f.Assign(imag(product), f.multiply(imag(a), factor));
}

void ElementOps::div(Expr quotient, Expr a, Expr b) const
{
    if (!isComplexExpr(b)) {
        f.Assign(re(quotient), f.division(re(a), b));
        if (isComplexExpr(quotient)) f.Assign(imag(quotient), f.division(imag(a), b));
        return;
    }
    ScopeBlock scope(f);
    const Expr ratio = f.localNumVar("ratio", realType);
    const Expr den = f.localNumVar("den", realType);
    const Expr rePart = f.localNumVar("rePart", realType);
    IfBlock isReLarger(f, abs(real(b)) >= abs(imag(b)));
    f.Assign(ratio, f.division(imag(b), real(b)));
    f.Assign(den, real(b) + imag(b) * ratio);
    f.Assign(rePart, f.division(real(a) + imag(a) * ratio, den));
    f.Assign(imag(quotient), f.division(imag(a) - real(a) * ratio, den));
    f.Assign(real(quotient), rePart);
    isReLarger.otherwise();
    f.Assign(ratio, f.division(real(b), imag(b)));
    f.Assign(den, imag(b) + real(b) * ratio);
    f.Assign(rePart, f.division(real(a) * ratio + imag(a), den));
    f.Assign(imag(quotient), f.division(imag(a) * ratio - real(a), den));
    f.Assign(real(quotient), rePart);
}

void ElementOps::recip(Expr reciprocal, Expr x) const
{
    if (!isComplexExpr(x)) {
        f.Assign(reciprocal, f.division(f.getConstScalar(realType, 1), x));
        return;
    }
    setReal(reciprocal, f.getConstScalar(realType, 1));
    div(reciprocal, reciprocal, x);
}

void ElementOps::mulSub(Expr sum, Expr a, Expr b) const
{
    if (!isComplexExpr(sum)) {
        f.Assign(sum, sum - f.multiply(a, b));
    } else if (!isComplexExpr(a)) {
        f.Assign(real(sum), real(sum) - a * real(b));
        f.Assign(imag(sum), imag(sum) - a * imag(b));
    } else {
        f.Assign(real(sum), real(sum) - (real(a) * real(b) + imag(a) * imag(b)));
        f.Assign(imag(sum), imag(sum) - (real(a) * imag(b) - imag(a) * real(b)));
    }
}

void ElementOps::mulAdd(Expr sum, Expr a, Expr b) const
{
    if (!isComplexExpr(sum)) {
        f.Assign(sum, sum + f.multiply(a, b));
    } else if (!isComplexExpr(b)) {
        f.Assign(real(sum), real(sum) + real(a) * b);
        f.Assign(imag(sum), imag(sum) + imag(a) * b);
    } else {
        f.Assign(real(sum), real(sum) + (real(a) * real(b) - imag(a) * imag(b)));
        f.Assign(imag(sum), imag(sum) + (real(a) * imag(b) + imag(a) * real(b)));
    }
}

void ElementOps::addOne(Expr x) const
{
    f.Assign(re(x), re(x) + 1);
}

void ElementOps::negate(Expr negative, Expr x) const
{
    f.Assign(re(negative), -re(x));
    if (isComplexExpr(x)) f.Assign(imag(negative), -imag(x));
}

void ElementOps::call(DSPCG::LibGenerator& generator, std::initializer_list<Expr> arguments, SourceLoc loc) const
{
    f.callOutlineNumVal(generator, arguments.begin(), static_cast<int>(arguments.size()), loc);
}

}  // namespace qrdetail

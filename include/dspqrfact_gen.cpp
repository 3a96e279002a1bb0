#include "dspqrfact_gen.h"

#include "dspqrfact_gen_inputs.h"

using namespace CG;

QRFactBaseClass::QRFactBaseClass(Cfg* owner, const Type* elementType, bool isElementReal)
    : LibGenerator(owner), elemType(elementType), isReal(isElementReal),
      realType(SingleType::isa(stripMatrixAndComplex(elementType)) ? singleT() : doubleT())
{
}

QRFactBaseClass::QRFactBaseClass(DSPCG::ConstructionFacade& owner, const Type* elementType, bool isElementReal)
    : QRFactBaseClass(owner.GetCfg(), elementType, isElementReal)
{
}

const char* QRFactBaseClass::typedFcnName(const char* base, const char* marker) const
{
    mFcnName = std::string(base) + "_" + marker + cg_type_name(stripMatrixAndComplex(elemType));
    return mFcnName.c_str();
}

QRFactCompQyGen::QRFactCompQyGen(Cfg* owner, const Type* elementType, bool isElementReal,
                                 const Type* factorType, bool isFactorReal)
    : QRFactBaseClass(owner, elementType, isElementReal), qrType(factorType), qrIsReal(isFactorReal)
{
}

QRFactCompQyGen::QRFactCompQyGen(DSPCG::ConstructionFacade& owner, const Type* elementType, bool isElementReal,
                                 const Type* factorType, bool isFactorReal)
    : QRFactBaseClass(owner, elementType, isElementReal), qrType(factorType), qrIsReal(isFactorReal)
{
}

QRFactQRSL2Gen::QRFactQRSL2Gen(Cfg* owner, const Type* elementType, bool isElementReal,
                               const Type* factorType, bool isFactorReal)
    : QRFactBaseClass(owner, elementType, isElementReal), qrType(factorType), qrIsReal(isFactorReal)
{
}

QRFactQRSL2Gen::QRFactQRSL2Gen(DSPCG::ConstructionFacade& owner, const Type* elementType, bool isElementReal,
                               const Type* factorType, bool isFactorReal)
    : QRFactBaseClass(owner, elementType, isElementReal), qrType(factorType), qrIsReal(isFactorReal)
{
}

const Type* qrdetail::typeOf(InputKind kind, const InputTypes& types)
{
    const auto arrayOf = [](const Type* element) { return pointerT(staticUnknownMatrixT(element)); };
    switch (kind) {
    case InputKind::ELEMENT_ARRAY: return arrayOf(base_type(types.element));
    case InputKind::QR_ARRAY: return arrayOf(base_type(types.qr));
    case InputKind::REAL_ARRAY: return arrayOf(types.real);
    case InputKind::INDEX_ARRAY: return arrayOf(int32T());
    case InputKind::INDEX: return readOnlyT(int32T());
    case InputKind::FLAG: return readOnlyT(booleanT());
    }
    return nullptr;
}

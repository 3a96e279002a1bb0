#include "type.h"

#include "../data_types.h"

#include <mutex>
#include <set>
#include <tuple>

namespace CG {

namespace {

bool operator<(const Type& a, const Type& b) noexcept
{
    const auto key = [](const Type& t) { return std::make_tuple(t.kind, t.typeId, t.element, t.isReadOnly); };
    return key(a) < key(b);
}

struct ByContent {
    bool operator()(const Type& a, const Type& b) const noexcept { return a < b; }
};

/// The one object of a type.
const Type* intern(const Type& type)
{
    static std::mutex mutex;
    static std::set<Type, ByContent> types;
    const std::lock_guard<std::mutex> lock(mutex);
    return &*types.insert(type).first;
}

const Type* scalar(int typeId)
{
    Type type;
    type.typeId = typeId;
    return intern(type);
}

const Type* derived(Type::Kind kind, const Type* element)
{
    if (element == nullptr)
        return nullptr;
    Type type;
    type.kind = kind;
    type.element = element;
    return intern(type);
}

}  // namespace

const Type* doubleT() noexcept { return scalar(sysobj::DT_DOUBLE); }
const Type* singleT() noexcept { return scalar(sysobj::DT_SINGLE); }
const Type* int32T() noexcept { return scalar(sysobj::DT_INT32); }
const Type* uint32T() noexcept { return scalar(sysobj::DT_UINT32); }
const Type* booleanT() noexcept { return scalar(sysobj::DT_BOOLEAN); }

const Type* GetCGType(int typeId) noexcept
{
    return blockhost::isDataType(typeId) ? scalar(typeId) : nullptr;
}

const Type* complexT(const Type* realType) noexcept
{
    if (!isReal(realType))
        return nullptr;
    Type type;
    type.kind = Type::Kind::Complex;
    type.typeId = realType->typeId;
    return intern(type);
}

const Type* pointerT(const Type* target) noexcept { return derived(Type::Kind::Pointer, target); }
const Type* staticUnknownMatrixT(const Type* element) noexcept { return derived(Type::Kind::Matrix, element); }

const Type* readOnlyT(const Type* type) noexcept
{
    if (type == nullptr)
        return nullptr;
    Type readOnly = *type;
    readOnly.isReadOnly = true;
    return intern(readOnly);
}

const Type* withoutReadOnly(const Type* type) noexcept
{
    if (type == nullptr || !type->isReadOnly)
        return type;
    Type writable = *type;
    writable.isReadOnly = false;
    return intern(writable);
}

const Type* base_type(const Type* type) noexcept
{
    while (type != nullptr && type->element != nullptr)
        type = type->element;
    return withoutReadOnly(type);
}

const Type* stripMatrixAndComplex(const Type* type) noexcept
{
    const Type* const base = base_type(type);
    return base != nullptr && base->kind == Type::Kind::Complex ? scalar(base->typeId) : base;
}

bool isComplex(const Type* type) noexcept
{
    const Type* const base = base_type(type);
    return base != nullptr && base->kind == Type::Kind::Complex;
}

const char* cg_type_name(const Type* type) noexcept
{
    const Type* const base = stripMatrixAndComplex(type);
    return blockhost::typeName(base == nullptr ? int(sysobj::DT_UNSET) : base->typeId);
}

bool SingleType::isa(const Type* type) noexcept { return isSame(type, singleT()); }

bool isSame(const Type* a, const Type* b) noexcept { return withoutReadOnly(a) == withoutReadOnly(b); }
bool isPointer(const Type* type) noexcept { return type != nullptr && type->kind == Type::Kind::Pointer; }
bool isMatrix(const Type* type) noexcept { return type != nullptr && type->kind == Type::Kind::Matrix; }
bool isBoolean(const Type* type) noexcept { return isSame(type, booleanT()); }
bool isReal(const Type* type) noexcept { return isSame(type, doubleT()) || isSame(type, singleT()); }

bool isInteger(const Type* type) noexcept
{
    return type != nullptr && type->kind == Type::Kind::Scalar && type->typeId >= sysobj::DT_INT8
           && type->typeId <= sysobj::DT_UINT32;
}

std::string typeText(const Type* type)
{
    if (type == nullptr)
        return "no type";
    const std::string readOnly = type->isReadOnly ? "read-only " : "";
    switch (type->kind) {
    case Type::Kind::Scalar: return readOnly + blockhost::typeName(type->typeId);
    case Type::Kind::Complex: return readOnly + "complex " + blockhost::typeName(type->typeId);
    case Type::Kind::Matrix: return readOnly + typeText(type->element) + "[]";
    case Type::Kind::Pointer: return readOnly + "pointer to " + typeText(type->element);
    }
    return "no type";
}

}  // namespace CG

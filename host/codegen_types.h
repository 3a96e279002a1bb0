// Types of the code generator's intermediate representation. Every type exists once: equal types have equal addresses.
#pragma once

#include "block_types.h"

namespace CG {

/// A type: a scalar, a complex scalar, a matrix, a pointer, or one of these read-only. Owned by the host, never freed.
class Type;

// ---- Scalars  [any time; any thread]

const Type* doubleT() noexcept;
const Type* singleT() noexcept;
const Type* int32T() noexcept;
const Type* uint32T() noexcept;
const Type* booleanT() noexcept;
/// The type of a data-type id from 0 to 8; null for any other.
const Type* GetCGType(int typeId) noexcept;
/// The complex type of a real floating-point type: a real part, then an imaginary part.
const Type* complexT(const Type* realType) noexcept;

// ---- Derived types

const Type* pointerT(const Type* target) noexcept;
/// An array whose number of elements the type does not tell.
const Type* staticUnknownMatrixT(const Type* element) noexcept;
const Type* readOnlyT(const Type* type) noexcept;

// ---- Looking into a type

/// The scalar at the bottom of a type, complex or real, without pointers, matrices and read-only.
const Type* base_type(const Type* type) noexcept;
/// As base_type, and of a complex scalar its real type.
const Type* stripMatrixAndComplex(const Type* type) noexcept;
/// True for a complex scalar and what is built of it.
bool isComplex(const Type* type) noexcept;
/// "double", "single", "int8", ..., "boolean" of stripMatrixAndComplex(type).
const char* cg_type_name(const Type* type) noexcept;

/// The single-precision scalar.
struct SingleType {
    /// Whether a type is it, read-only or not.
    static bool isa(const Type* type) noexcept;
};

}  // namespace CG

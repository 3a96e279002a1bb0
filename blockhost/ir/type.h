// Definition of the IR's types. They are interned: one object per type for the life of the process.
#pragma once

#include "../host_api.h"

#include <string>

namespace CG {

class Type {
public:
    enum class Kind { Scalar, Complex, Matrix, Pointer };

    Kind kind = Kind::Scalar;
    int typeId = sysobj::DT_UNSET;      ///< Scalar, Complex: data-type id, of a complex its parts'
    const Type* element = nullptr;      ///< Matrix: of its elements. Pointer: what it points to
    bool isReadOnly = false;
};

/// The same type without read-only at the top.
const Type* withoutReadOnly(const Type* type) noexcept;
/// True for types that are the same but for read-only at the top.
bool isSame(const Type* a, const Type* b) noexcept;
/// True for a pointer, read-only or not.
bool isPointer(const Type* type) noexcept;
bool isMatrix(const Type* type) noexcept;
/// Predicates of scalars; false for null and everything else.
bool isBoolean(const Type* type) noexcept;
bool isReal(const Type* type) noexcept;     ///< double or single
bool isInteger(const Type* type) noexcept;
/// "double", "complex single", "uint32[]", "pointer to read-only double[]"; "no type" for null.
std::string typeText(const Type* type);

}  // namespace CG

// The IR's types in C: their names, and how much memory they take.
#pragma once

#include "../ir/type.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace blockhost::c99 {

/// "double", "uint32_t", "bool", "complexD" of the scalar at the bottom of a type.
std::string cTypeName(const CG::Type* type);
/// A parameter of a function: "const double* pts", "uint32_t ptsNum".
std::string declaration(const CG::Type* type, const std::string& name);
/// True for a type that a function takes as a pointer.
bool isPassedByAddress(const CG::Type* type) noexcept;
/// True for a pointer or array through which nothing may be written.
bool isReadOnlyTarget(const CG::Type* type) noexcept;

bool isUnsigned(const CG::Type* type) noexcept;
/// True for the integers that C converts to int before it computes.
bool isNarrow(const CG::Type* type) noexcept;

/// Bytes of the scalar at the bottom of a type.
std::size_t byteNumOf(const CG::Type* type) noexcept;
/// Its alignment, where double is aligned to 8 bytes.
std::size_t alignmentOf(const CG::Type* type) noexcept;
/// Bytes of a struct with these arrays (element type, number of elements), padding included.
std::size_t structByteNum(const std::vector<std::pair<const CG::Type*, std::size_t>>& fields) noexcept;

}  // namespace blockhost::c99

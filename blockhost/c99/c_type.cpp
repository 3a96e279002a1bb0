#include "c_type.h"

#include "../data_types.h"

#include <algorithm>

namespace blockhost::c99 {

namespace {

/// By data-type id, 0 to 8.
constexpr const char* C_TYPES[9] = {"double",   "float",   "int8_t",   "uint8_t", "int16_t",
                                    "uint16_t", "int32_t", "uint32_t", "bool"};

std::size_t roundUp(std::size_t value, std::size_t multiple) noexcept
{
    return (value + multiple - 1) / multiple * multiple;
}

}  // namespace

std::string cTypeName(const CG::Type* type)
{
    const CG::Type* const scalar = CG::base_type(type);
    if (CG::isComplex(scalar))
        return scalar->typeId == sysobj::DT_SINGLE ? "complexR" : "complexD";
    return C_TYPES[scalar->typeId];
}

std::string declaration(const CG::Type* type, const std::string& name)
{
    if (!isPassedByAddress(type))
        return cTypeName(type) + " " + name;
    return (isReadOnlyTarget(type) ? "const " : "") + cTypeName(type) + "* " + name;
}

bool isPassedByAddress(const CG::Type* type) noexcept
{
    return CG::isPointer(type) || CG::isMatrix(type);
}

bool isReadOnlyTarget(const CG::Type* type) noexcept
{
    const CG::Type* const target = CG::isPointer(type) ? type->element : type;
    return target->isReadOnly || (CG::isMatrix(target) && target->element->isReadOnly);
}

bool isUnsigned(const CG::Type* type) noexcept
{
    const int typeId = CG::base_type(type)->typeId;
    return typeId == sysobj::DT_UINT8 || typeId == sysobj::DT_UINT16 || typeId == sysobj::DT_UINT32;
}

bool isNarrow(const CG::Type* type) noexcept
{
    return CG::isInteger(type) && byteNumOf(type) < 4;
}

std::size_t byteNumOf(const CG::Type* type) noexcept
{
    const std::size_t partNum = CG::isComplex(type) ? 2 : 1;
    return partNum * blockhost::byteNumOf(CG::base_type(type)->typeId);
}

std::size_t alignmentOf(const CG::Type* type) noexcept
{
    return blockhost::byteNumOf(CG::base_type(type)->typeId);
}

std::size_t structByteNum(const std::vector<std::pair<const CG::Type*, std::size_t>>& fields) noexcept
{
    std::size_t byteNum = 0;
    std::size_t alignment = 1;
    for (const auto& [type, elementNum] : fields) {
        byteNum = roundUp(byteNum, alignmentOf(type)) + elementNum * byteNumOf(type);
        alignment = std::max(alignment, alignmentOf(type));
    }
    return roundUp(byteNum, alignment);
}

}  // namespace blockhost::c99

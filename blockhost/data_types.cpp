#include "data_types.h"

#include <array>

namespace blockhost {

namespace {

struct TypeFacts {
    const char* name;
    std::size_t byteNum;
};

constexpr std::array<TypeFacts, 9> TYPES{{{"double", 8},
                                          {"single", 4},
                                          {"int8", 1},
                                          {"uint8", 1},
                                          {"int16", 2},
                                          {"uint16", 2},
                                          {"int32", 4},
                                          {"uint32", 4},
                                          {"boolean", 1}}};

// A double beyond the range of float becomes an infinity, which only IEC 559 defines.
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

template <typename T>
void store(T value, void* element) noexcept
{
    *static_cast<T*>(element) = value;
}

}  // namespace

bool isDataType(int typeId) noexcept
{
    return typeId >= 0 && static_cast<std::size_t>(typeId) < TYPES.size();
}

const char* typeName(int typeId) noexcept
{
    if (isDataType(typeId))
        return TYPES[static_cast<std::size_t>(typeId)].name;
    return typeId == sysobj::DT_UNSET ? "unset" : "unknown type";
}

std::size_t byteNumOf(int typeId) noexcept
{
    return isDataType(typeId) ? TYPES[static_cast<std::size_t>(typeId)].byteNum : 0;
}

void storeReal(double value, int typeId, void* element) noexcept
{
    switch (typeId) {
    case sysobj::DT_DOUBLE: return store(value, element);
    case sysobj::DT_SINGLE: return store(static_cast<float>(value), element);
    case sysobj::DT_INT8: return store(toInteger<std::int8_t>(value), element);
    case sysobj::DT_UINT8: return store(toInteger<std::uint8_t>(value), element);
    case sysobj::DT_INT16: return store(toInteger<std::int16_t>(value), element);
    case sysobj::DT_UINT16: return store(toInteger<std::uint16_t>(value), element);
    case sysobj::DT_INT32: return store(toInteger<std::int32_t>(value), element);
    case sysobj::DT_UINT32: return store(toInteger<std::uint32_t>(value), element);
    case sysobj::DT_BOOLEAN: return store<std::uint8_t>(value != 0.0 && !std::isnan(value), element);
    default: return;
    }
}

}  // namespace blockhost

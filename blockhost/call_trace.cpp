#include "call_trace.h"

#include "data_types.h"

#include <fmt/format.h>

#include <iterator>

namespace blockhost {

const char* modeName(int mode) noexcept
{
    switch (mode) {
    case sysobj::DIMS_MODE_FIXED: return "fixed";
    case sysobj::DIMS_MODE_VARIABLE: return "variable";
    case sysobj::DIMS_MODE_UNSET: return "unset";
    default: return "unknown mode";
    }
}

void CallTrace::append(bool value)
{
    mLine += value ? "true" : "false";
}

void CallTrace::append(int value)
{
    fmt::format_to(std::back_inserter(mLine), "{}", value);
}

void CallTrace::append(double value)
{
    fmt::format_to(std::back_inserter(mLine), "{}", value);
}

void CallTrace::append(const char* text)
{
    if (text == nullptr)
        mLine += "null";
    else
        fmt::format_to(std::back_inserter(mLine), "\"{}\"", text);
}

void CallTrace::append(TypeText type)
{
    mLine += typeName(type.typeId);
}

void CallTrace::append(ModeText mode)
{
    mLine += modeName(mode.mode);
}

void CallTrace::append(DimsText dims)
{
    if (dims.record == nullptr)
        mLine += "null";
    else if (const char* const problem = Dims::problemOf(*dims.record))
        mLine += problem;
    else
        mLine += Dims(*dims.record).text();
}

void CallTrace::append(MaskText mask)
{
    fmt::format_to(std::back_inserter(mLine), "{:#x}", mask.mask);
}

void CallTrace::append(NameText name)
{
    mLine += name.name;
}

void CallTrace::append(PointerText pointer)
{
    mLine += pointer.pointer == nullptr ? "null" : "non-null";
}

void CallTrace::append(const resource_core::BaseMsgID& message)
{
    mLine += message.id();
    for (int i = 0; i < message.argNum(); ++i)
        fmt::format_to(std::back_inserter(mLine), " {}", message.arg(i));
}

}  // namespace blockhost

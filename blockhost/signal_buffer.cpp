#include "signal_buffer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace blockhost {

namespace {

#if defined(ESTTFORM_GUARD_ZONES) || !defined(NDEBUG)
constexpr std::size_t GUARD_BYTE_NUM = SignalBuffer::ALIGNMENT;
#else
constexpr std::size_t GUARD_BYTE_NUM = 0;
#endif

/// No likely value of any element type: not 0, 1 or a small number, and a NaN in neither precision.
constexpr std::byte GUARD_PATTERN{0xA7};

/// Bytes after the front guard: the data, what is missing to the alignment, and the rear guard.
std::size_t paddedByteNum(std::size_t byteNum)
{
    constexpr std::size_t A = SignalBuffer::ALIGNMENT;
    return (byteNum + A - 1) / A * A + std::max(GUARD_BYTE_NUM, byteNum == 0 ? A : 0);
}

bool isIntact(const std::byte* first, const std::byte* last) noexcept
{
    return std::all_of(first, last, [](std::byte b) { return b == GUARD_PATTERN; });
}

}  // namespace

bool hasGuardZones() noexcept
{
    return GUARD_BYTE_NUM > 0;
}

void SignalBuffer::Release::operator()(std::byte* memory) const noexcept
{
    ::operator delete(memory, std::align_val_t{ALIGNMENT});
}

SignalBuffer::SignalBuffer(const std::string& name, std::size_t byteNum) : mByteNum(byteNum)
{
    void* memory = nullptr;
    if (byteNum < std::numeric_limits<std::size_t>::max() / 2)
        memory = ::operator new(GUARD_BYTE_NUM + paddedByteNum(byteNum), std::align_val_t{ALIGNMENT}, std::nothrow);
    if (memory == nullptr)
        throw esttform::Error(esttform::ErrorKind::Usage,
                              fmt::format("{}: cannot allocate {} bytes; use fewer points", name, byteNum));
    mMemory.reset(static_cast<std::byte*>(memory));
    mData = mMemory.get() + GUARD_BYTE_NUM;
    std::memset(mMemory.get(), static_cast<int>(GUARD_PATTERN), GUARD_BYTE_NUM + paddedByteNum(byteNum));
    std::memset(mData, 0, byteNum);
}

const char* SignalBuffer::overwrittenSide() const noexcept
{
    if (GUARD_BYTE_NUM == 0 || mData == nullptr)
        return nullptr;
    if (!isIntact(mMemory.get(), mData))
        return "before the start";
    return isIntact(mData + mByteNum, mData + paddedByteNum(mByteNum)) ? nullptr : "past the end";
}

}  // namespace blockhost

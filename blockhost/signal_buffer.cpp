#include "signal_buffer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace blockhost {

namespace {

#if defined(ESTTFORM_GUARD_ZONES) || !defined(NDEBUG)
constexpr std::size_t GUARD_BYTE_NUM_OF_BUILD = SignalBuffer::ALIGNMENT;
#else
constexpr std::size_t GUARD_BYTE_NUM_OF_BUILD = 0;
#endif

/// Bytes of each guard zone of a new buffer, a multiple of the alignment.
std::size_t newGuardByteNum = GUARD_BYTE_NUM_OF_BUILD;

/// No likely value of any element type: not 0, 1 or a small number, and a NaN in neither precision.
constexpr std::byte GUARD_PATTERN{0xA7};

std::size_t roundedUp(std::size_t byteNum) noexcept
{
    constexpr std::size_t A = SignalBuffer::ALIGNMENT;
    return (byteNum + A - 1) / A * A;
}

/// Bytes after the front guard: the data, what is missing to the alignment, and the rear guard.
std::size_t paddedByteNum(std::size_t byteNum, std::size_t guardByteNum) noexcept
{
    return roundedUp(byteNum) + std::max(guardByteNum, byteNum == 0 ? SignalBuffer::ALIGNMENT : 0);
}

bool isIntact(const std::byte* first, const std::byte* last) noexcept
{
    return std::all_of(first, last, [](std::byte b) { return b == GUARD_PATTERN; });
}

}  // namespace

bool hasGuardZones() noexcept
{
    return newGuardByteNum > 0;
}

void setGuardZones(std::size_t byteNum) noexcept
{
    newGuardByteNum = roundedUp(byteNum);
}

void SignalBuffer::Release::operator()(std::byte* memory) const noexcept
{
    ::operator delete(memory, std::align_val_t{ALIGNMENT});
}

SignalBuffer::SignalBuffer(const std::string& name, std::size_t byteNum) : mByteNum(byteNum), mGuardByteNum(newGuardByteNum)
{
    const std::size_t allByteNum = mGuardByteNum + paddedByteNum(byteNum, mGuardByteNum);
    void* memory = nullptr;
    if (byteNum < std::numeric_limits<std::size_t>::max() / 2)
        memory = ::operator new(allByteNum, std::align_val_t{ALIGNMENT}, std::nothrow);
    if (memory == nullptr)
        throw esttform::Error(esttform::ErrorKind::Usage,
                              fmt::format("{}: cannot allocate {} bytes; use fewer points", name, byteNum));
    mMemory.reset(static_cast<std::byte*>(memory));
    mData = mMemory.get() + mGuardByteNum;
    std::memset(mMemory.get(), static_cast<int>(GUARD_PATTERN), allByteNum);
    std::memset(mData, 0, byteNum);
}

const char* SignalBuffer::overwrittenSide() const noexcept
{
    if (mGuardByteNum == 0 || mData == nullptr)
        return nullptr;
    if (!isIntact(mMemory.get(), mData))
        return "before the start";
    return isIntact(mData + mByteNum, mData + paddedByteNum(mByteNum, mGuardByteNum)) ? nullptr : "past the end";
}

}  // namespace blockhost

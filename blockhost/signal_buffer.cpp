#include "signal_buffer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace blockhost {

namespace {

#if defined(ESTTFORM_GUARD_ZONES) || !defined(NDEBUG)
bool isGuarding = true;
#else
bool isGuarding = false;
#endif

/// No likely value of any element type: not 0, 1 or a small number, and a NaN in neither precision.
constexpr std::byte GUARD_PATTERN{0xA7};

/// Bytes after the front guard: the data, what is missing to the alignment, and the rear guard.
std::size_t paddedByteNum(std::size_t byteNum, std::size_t guardByteNum)
{
    constexpr std::size_t A = SignalBuffer::ALIGNMENT;
    return (byteNum + A - 1) / A * A + std::max(guardByteNum, byteNum == 0 ? A : 0);
}

bool isIntact(const std::byte* first, const std::byte* last) noexcept
{
    return std::all_of(first, last, [](std::byte b) { return b == GUARD_PATTERN; });
}

}  // namespace

bool hasGuardZones() noexcept
{
    return isGuarding;
}

void useGuardZones() noexcept
{
    isGuarding = true;
}

void SignalBuffer::Release::operator()(std::byte* memory) const noexcept
{
    ::operator delete(memory, std::align_val_t{ALIGNMENT});
}

SignalBuffer::SignalBuffer(const std::string& name, std::size_t byteNum)
    : mGuardByteNum(isGuarding ? ALIGNMENT : 0), mByteNum(byteNum)
{
    void* memory = nullptr;
    if (byteNum < std::numeric_limits<std::size_t>::max() / 2)
        memory = ::operator new(mGuardByteNum + paddedByteNum(byteNum, mGuardByteNum), std::align_val_t{ALIGNMENT}, std::nothrow);
    if (memory == nullptr)
        throw esttform::Error(esttform::ErrorKind::Usage,
                              fmt::format("{}: cannot allocate {} bytes; use fewer points", name, byteNum));
    mMemory.reset(static_cast<std::byte*>(memory));
    mData = mMemory.get() + mGuardByteNum;
    std::memset(mMemory.get(), static_cast<int>(GUARD_PATTERN), mGuardByteNum + paddedByteNum(byteNum, mGuardByteNum));
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

// SignalBuffer: memory of a signal, a work vector or a run-time parameter, contiguous and 64-byte aligned.
// With guard zones (Debug builds, the build option ESTTFORM_GUARD_ZONES, or on demand) writing past either end is found out.
#pragma once

#include "estimator.h"

#include <cstddef>
#include <memory>
#include <string>

namespace blockhost {

/// True when buffers are built with guard zones.
ESTTFORM_API bool hasGuardZones() noexcept;
/// Size of the guard zones of buffers that are allocated from now on, whatever the build: 0 for none.
/// [on the host's thread]
ESTTFORM_API void setGuardZones(std::size_t byteNum) noexcept;

/// A zeroed buffer at a fixed address. Move-only; the address survives a move.
class SignalBuffer {
public:
    static constexpr std::size_t ALIGNMENT = 64;

    SignalBuffer() = default;
    /// @throws Error (Usage) if the memory is not to be had; the text names the buffer and its size
    SignalBuffer(const std::string& name, std::size_t byteNum);

    /// The first byte, never null once allocated, even for no elements.
    void* data() const noexcept { return mData; }
    std::size_t byteNum() const noexcept { return mByteNum; }
    bool isAllocated() const noexcept { return mData != nullptr; }

    /// Which guard zone was written to: null for none, else "before the start" or "past the end". Null without guard zones.
    const char* overwrittenSide() const noexcept;

private:
    struct Release {
        void operator()(std::byte* memory) const noexcept;
    };
    std::unique_ptr<std::byte, Release> mMemory;
    std::byte* mData = nullptr;
    std::size_t mByteNum = 0;
    std::size_t mGuardByteNum = 0;
};

}  // namespace blockhost

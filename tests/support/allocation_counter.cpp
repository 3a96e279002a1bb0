#include "allocation_counter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// Not inlined, so that the compiler does not take the pairs of malloc and delete for a mistake.
#define COUNTED __attribute__((visibility("default"), noinline))

namespace {

std::atomic<long> newNum{0};

}  // namespace

long allocationNum()
{
    return newNum;
}

COUNTED void* operator new(std::size_t byteNum, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    ++newNum;
    const auto step = static_cast<std::size_t>(alignment);
    return std::aligned_alloc(step, (byteNum + step) / step * step);
}

COUNTED void* operator new(std::size_t byteNum, const std::nothrow_t& nothrow) noexcept
{
    return operator new(byteNum, std::align_val_t{alignof(std::max_align_t)}, nothrow);
}

COUNTED void* operator new(std::size_t byteNum)
{
    if (void* const memory = operator new(byteNum, std::nothrow)) return memory;
    throw std::bad_alloc();
}

COUNTED void operator delete(void* memory) noexcept
{
    std::free(memory);
}

COUNTED void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

COUNTED void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

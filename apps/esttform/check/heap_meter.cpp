#include "check/heap_meter.h"

#include "check/finding.h"

#include <fmt/format.h>

#include <malloc.h>

/// Of the leak checker, when one is in the process.
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace esttform::check {

namespace {

constexpr int WARM_UP_NUM = 3;
constexpr int MEASURED_NUM = 6;

/// Bytes in use; 0 under an allocator that does not tell.
std::size_t heapInUse() noexcept
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace

void expectNoLoss(const std::function<void()>& action)
{
    for (int i = 0; i < WARM_UP_NUM; ++i)
        action();
    std::size_t first = heapInUse(), last = first;
    bool isGrowing = true;
    for (int i = 0; i < MEASURED_NUM; ++i) {
        action();
        const std::size_t now = heapInUse();
        isGrowing = isGrowing && now > last;
        last = now;
    }
    if (isGrowing)
        throw Finding(fmt::format("memory is lost: {} bytes in {} times", last - first, MEASURED_NUM));
}

void expectNoLeak()
{
    if (__lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0)
        throw Finding("memory is lost, says the leak checker");
}

}  // namespace esttform::check

// What a process has lost of its heap, as far as its allocator or a leak checker in it can tell.
#pragma once

#include <functional>

namespace esttform::check {

/// Does something several times, which must leave as much of the heap in use as there was before.
///
/// @throws Finding  every time takes some, or a leak checker in the process finds lost memory
void expectNoLoss(const std::function<void()>& action);

}  // namespace esttform::check

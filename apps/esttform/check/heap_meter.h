// What a process has lost of its heap, as far as its allocator or a leak checker in it can tell.
#pragma once

#include <functional>

namespace esttform::check {

/// Does something several times, which must leave as much of the heap in use as there was before.
///
/// @throws Finding  every time takes some
void expectNoLoss(const std::function<void()>& action);

/// Asks a leak checker in the process, when there is one. It takes a while.
///
/// @throws Finding  it finds lost memory
void expectNoLeak();

}  // namespace esttform::check

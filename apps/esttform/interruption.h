// What Ctrl-C (SIGINT), SIGTERM and SIGHUP do: outputs are put in order, and the program ends with an exit code of its own.
// The signal takes effect wherever the program is, in a long step too; only a hold puts it off.
#pragma once

namespace esttform::app {

/// From now on a signal runs `finish` and ends the program with ExitCode::Interrupted. A signal that the caller of the
/// program ignores stays ignored; a second one of a kind ends the program without more ado.
///
/// @param finish  called from the signal's handler, so it may use nothing but what such a handler may
void watchInterruption(void (*finish)() noexcept) noexcept;

/// True once a signal came that a hold puts off.
bool isInterrupted() noexcept;

/// Ends the program as the signal does.
[[noreturn]] void endInterrupted() noexcept;

/// Puts signals off while it lives; the end of the last hold makes up for it. For the main thread.
class InterruptionHold {
public:
    InterruptionHold() noexcept;
    ~InterruptionHold();
    InterruptionHold(const InterruptionHold&) = delete;
    InterruptionHold& operator=(const InterruptionHold&) = delete;
};

}  // namespace esttform::app

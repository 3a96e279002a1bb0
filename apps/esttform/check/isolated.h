// Runs a piece of work in a process of its own, so that whatever happens there, the program goes on: a crash, an endless
// loop, an end of the process.
#pragma once

#include <functional>
#include <string>

namespace esttform::check {

enum class Verdict { Ok, Failed, Crashed, TimedOut };

/// "ok", "failed", "crashed", "timed out".
const char* verdictText(Verdict verdict) noexcept;

struct Outcome {
    Verdict verdict = Verdict::Ok;
    std::string found;            ///< one line; unless the work said it itself also what it was at
    bool isNotLoadable = false;   ///< failed: the library cannot be loaded, for the reason found
};

/// Notes what the work is at, for the case that it does not come back.
using Note = std::function<void(const std::string& text)>;

/// Runs the work and waits for its end, at most for a time. Its outputs go nowhere; processes it leaves behind are ended.
///
/// @param work       gives the text for success; an exception makes it Failed
/// @param secondNum  time limit
/// @throws Failure  the system has no process or pipe left
Outcome runIsolated(const std::function<std::string(const Note& note)>& work, double secondNum);

}  // namespace esttform::check

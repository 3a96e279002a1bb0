// Progress: a line at the bottom of a terminal that shows how far long work has come. Elsewhere, nothing.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace esttform::app {

class Progress {
public:
    /// One at a time.
    ///
    /// @param unit      what is counted, in the plural: "files"
    /// @param totalNum  0: not known
    /// @param isQuiet   show nothing
    Progress(const char* unit, std::int64_t totalNum, bool isQuiet);
    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows the line anew when it is time: not in the first second, and ten times a second.
    void show(std::int64_t doneNum);
    /// Takes the line away, so that a message can be printed; the next show brings it back.
    void hide();

    /// For the end by a signal: leaves the line as it is and goes to the next.
    static void leave() noexcept;

    /// The line: bar, counts, rate and remaining time.
    ///
    /// @param seconds  since the work began
    static std::string lineOf(const char* unit, std::int64_t doneNum, std::int64_t totalNum, double seconds);

private:
    using Clock = std::chrono::steady_clock;

    const char* mUnit;
    std::int64_t mTotalNum;
    bool mIsShown;               ///< there is a terminal and somebody who wants to see it
    Clock::time_point mBegin = Clock::now(), mNext;
};

}  // namespace esttform::app

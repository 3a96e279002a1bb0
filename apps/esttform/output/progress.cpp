#include "output/progress.h"

#include "output/standard_error.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace esttform::app {

namespace {

constexpr std::chrono::milliseconds DELAY{1000}, INTERVAL{100};
constexpr std::int64_t BAR_SIZE = 20;

volatile std::sig_atomic_t gIsOnScreen = 0;

std::string timeText(double seconds)
{
    const auto all = static_cast<std::int64_t>(std::min(seconds, 1e9));
    const std::int64_t hours = all / 3600, minutes = all / 60 % 60, rest = all % 60;
    return hours > 0 ? fmt::format("{}:{:02}:{:02}", hours, minutes, rest) : fmt::format("{}:{:02}", minutes, rest);
}

}  // namespace

Progress::Progress(const char* unit, std::int64_t totalNum, bool isQuiet)
    : mUnit(unit), mTotalNum(totalNum), mIsShown(!isQuiet && ::isatty(STDERR_FILENO) == 1), mNext(mBegin + DELAY)
{
}

Progress::~Progress()
{
    hide();
}

std::string Progress::lineOf(const char* unit, std::int64_t doneNum, std::int64_t totalNum, double seconds)
{
    const double rate = seconds > 0.0 ? static_cast<double>(doneNum) / seconds : 0.0;
    const std::string rateText = rate >= 10.0 ? fmt::format("{:.0f}/s", rate) : fmt::format("{:.2f}/s", rate);
    if (totalNum <= 0)
        return fmt::format("{} {}, {}", doneNum, unit, rateText);
    const std::int64_t filled = BAR_SIZE * doneNum / totalNum;
    std::string line = fmt::format("[{:#<{}}{:.<{}}] {} of {} {}, {}", "", filled, "", BAR_SIZE - filled, doneNum, totalNum,
                                   unit, rateText);
    if (doneNum > 0)
        line += fmt::format(", {} left", timeText(static_cast<double>(totalNum - doneNum) / rate));
    return line;
}

void Progress::show(std::int64_t doneNum)
{
    if (!mIsShown || Clock::now() < mNext)
        return;
    const Clock::time_point now = Clock::now();
    mNext = now + INTERVAL;
    gIsOnScreen = 1;
    std::string line = lineOf(mUnit, doneNum, mTotalNum, std::chrono::duration<double>(now - mBegin).count());
    winsize size{};                                      // a line that wraps could not be taken back
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        line.resize(std::min<std::size_t>(line.size(), size.ws_col - 1U));
    writeToStandardError(fmt::format("\r{}\x1b[K", line));
}

void Progress::hide()
{
    if (gIsOnScreen != 0)
        writeToStandardError("\r\x1b[K");
    gIsOnScreen = 0;
}

void Progress::leave() noexcept
{
    if (gIsOnScreen != 0)
        writeToStandardError("\n");
}

}  // namespace esttform::app

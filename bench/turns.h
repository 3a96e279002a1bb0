// Ratio of two running times from one run: both sides are timed in turns, so that what else the machine does meets both.
// The clock is the thread's processor time, which does not count while another program runs; both sides use one thread.
#pragma once

#include <ctime>
#include <vector>

#include "bench_matches.h"

namespace bench {

inline double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Seconds of processor time that one call takes.
template <typename Fcn>
double secondsOf(Fcn&& fcn)
{
    const double begin = threadSeconds();
    fcn();
    return threadSeconds() - begin;
}

class Turns {
public:
    /// One turn: for every case 0 to caseNum - 1 one call of ours, then one of theirs.
    ///
    /// @return seconds of all calls of ours
    template <typename Ours, typename Theirs>
    double run(std::size_t caseNum, Ours&& ours, Theirs&& theirs)
    {
        double oursSum = 0.0;
        double theirsSum = 0.0;
        for (std::size_t i = 0; i < caseNum; ++i) {
            oursSum += secondsOf([&] { ours(i); });
            theirsSum += secondsOf([&] { theirs(i); });
        }
        mRatios.push_back(oursSum / theirsSum);
        mTheirs.push_back(theirsSum);
        return oursSum;
    }

    /// Median over the turns of time of ours / time of theirs.
    double ratio() const { return medianOf(mRatios); }
    /// Median over the turns of the seconds of theirs.
    double theirSeconds() const { return medianOf(mTheirs); }

private:
    std::vector<double> mRatios;
    std::vector<double> mTheirs;
};

}  // namespace bench

// Odd values of dialog parameters, before the block starts and while it runs.
#include "checks.h"
#include "trial.h"

#include <fmt/format.h>

#include <limits>

namespace blockhost::check {

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double ODD_VALUES[] = {std::numeric_limits<double>::quiet_NaN(), INF, -INF, -1.0, -0.0, 0.5, 2.0, 3.0, 4.0, 100.0, 100.5,
                                 256.0, 4294967296.0, 1e300, -1e300, 5e-324};
/// The largest number of samples that a step of a check may draw.
constexpr double MAX_SAMPLE_NUM = 5000.0;

bool isTooMuchWork(int idx, double value)
{
    return (idx == 6 || idx == 7) && !(value <= MAX_SAMPLE_NUM);
}

std::string nameOf(int idx)
{
    return esttform::paramTable()[static_cast<std::size_t>(idx)].name;
}

/// A life with one odd value: refused with a message, or a step that keeps to its memory.
void tryValue(const std::string& path, int idx, double value)
{
    Trial trial(path, plainSettings());
    trial.block().setParam(idx, value);
    try {
        trial.open();
        if (!isTooMuchWork(idx, value))
            trial.block().step();
    } catch (const esttform::Error& error) {
        if (error.kind() == esttform::ErrorKind::Internal)
            throw Finding(fmt::format("{} = {}: {}", nameOf(idx), value, error.what()));
    }
}

}  // namespace

void checkParameters(const std::string& path, unsigned)
{
    // Values that no block may take.
    const std::pair<int, double> forbidden[] = {{0, 0.0}, {0, 4.0}, {1, 2.0}, {2, 3.0}, {3, -1.0}, {7, -1.0}, {7, 0.5}, {9, 2.0}, {11, -1.0}};
    for (const auto& [idx, value] : forbidden) {
        Trial trial(path, plainSettings());
        trial.block().setParam(idx, value);
        bool isRefused = false;
        try {
            trial.open();
        } catch (const esttform::Error&) {
            isRefused = true;
        }
        if (!isRefused)
            throw Finding(fmt::format("{} = {} was accepted; admitted: {}", nameOf(idx), value,
                                      esttform::paramTable()[static_cast<std::size_t>(idx)].values));
    }
    for (int idx = 0; idx < esttform::PARAM_NUM; ++idx)
        for (const double value : ODD_VALUES)
            tryValue(path, idx, value);
}

/// A refused change leaves the value in force, an accepted one takes effect at the next step.
void checkTuning(const std::string& path, unsigned)
{
    constexpr int THRESHOLD = 3, TYPE = 0;
    const Matches matches = shiftedMatches(12);
    Matches noisy = matches;
    noisy[3][2] += 2.0;                                  // a residual of 2 pixels: right for 9, wrong for 1
    const auto inlierNumOf = [](const Outcome& outcome) {
        int num = 0;
        for (std::size_t i = 9 * sizeof(double); i < outcome.outputs.size(); ++i)
            num += outcome.outputs[i];
        return num;
    };
    Trial trial(path, plainSettings());
    openOrFind(trial, "the block");
    const Outcome before = trial.step(noisy);
    for (const auto& [idx, value] : {std::pair(THRESHOLD, -1.0), std::pair(TYPE, 2.0)}) {
        bool isRefused = false;
        try {
            trial.block().setParam(idx, value);
        } catch (const esttform::Error&) {
            isRefused = true;
        }
        if (!isRefused)
            throw Finding(fmt::format("{} = {} was accepted while running", nameOf(idx), value));
        if (trial.step(noisy) != before)
            throw Finding(fmt::format("{} = {} was refused while running, and yet changed the result", nameOf(idx), value));
    }
    trial.block().setParam(THRESHOLD, 1e-6);
    if (inlierNumOf(trial.step(noisy)) >= 12)
        throw Finding("a smaller threshold, set while running, has no effect");
    trial.block().setParam(THRESHOLD, 9.0);
    if (trial.step(noisy) != before)
        throw Finding("the threshold set back while running does not give the result back");
}

}  // namespace blockhost::check

// Whole steps of 1000 samplings: through the estimator, by the engine alone, what takes the time, single against double.
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include "running_engine.h"
#include "szelesttform_step.h"
#include "turns.h"

namespace {

using bench::Matches;
using bench::RunningEngine;
using esttform::Estimator;
using esttform::Method;
using esttform::Settings;
using esttform::TransformType;

constexpr unsigned SEED = 1;
constexpr double INLIER_SHARE = 0.5;
constexpr std::uint32_t SAMPLE_NUM = 1000;

std::int32_t ptsNumOf(const benchmark::State& state)
{
    return static_cast<std::int32_t>(state.range(0));
}

Matches matchesFor(const benchmark::State& state, TransformType type)
{
    return bench::makeMatches(type, ptsNumOf(state), INLIER_SHARE, SEED);
}

template <typename T>
Settings settingsOf(TransformType type, Method method)
{
    Settings settings = bench::fixedSettings(type, SAMPLE_NUM, bench::dataTypeOf<T>());
    settings.method = method;
    return settings;
}

/// An estimator over points of type T, which lie in its own buffers.
template <typename T>
Estimator openEstimator(const Settings& settings, const Matches& matches)
{
    Estimator estimator(settings, matches.ptsNum());
    const auto toT = [](double value) { return static_cast<T>(value); };
    std::transform(matches.pts1.begin(), matches.pts1.end(), static_cast<T*>(estimator.pts1Buffer()), toT);
    std::transform(matches.pts2.begin(), matches.pts2.end(), static_cast<T*>(estimator.pts2Buffer()), toT);
    return estimator;
}

// ---- Steps. Every step begins with the same seed and so draws the same samples.

template <typename T>
void benchStep(benchmark::State& state, TransformType type, Method method)
{
    Estimator estimator = openEstimator<T>(settingsOf<T>(type, method), matchesFor(state, type));
    for (auto _ : state) {
        estimator.seed(SEED);
        benchmark::DoNotOptimize(estimator.step(ptsNumOf(state)).inlierNum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename T>
void benchEngine(benchmark::State& state, TransformType type)
{
    RunningEngine<T> running(settingsOf<T>(type, Method::Threshold), matchesFor(state, type));
    baseEstTForm& engine = running.engine();
    for (auto _ : state) {
        std::srand(SEED);
        engine.output(ptsNumOf(state));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- What takes the time

/// Seconds of wall clock that one call takes: a cheaper clock than that of bench::secondsOf, for short calls.
template <typename Fcn>
double wallSecondsOf(Fcn&& fcn)
{
    const auto begin = std::chrono::steady_clock::now();
    fcn();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// The engine's parts, each call timed.
template <typename T>
class TimedParts {
public:
    TimedParts(estTForm<T, T>& engine, std::int32_t ptsNum) : mParts(engine, ptsNum), mSampleSize(engine.sampleSize) {}

    void makeAllConstraints()
    {
        constraintSeconds += wallSecondsOf([this] { mParts.makeAllConstraints(); });
    }
    bool drawSample()
    {
        bool isDrawn = false;
        samplingSeconds += wallSecondsOf([&] { isDrawn = mParts.drawSample(); });
        return isDrawn;
    }
    bool fitTForm(std::int32_t n)
    {
        bool isOK = false;
        (n == mSampleSize ? samplingSeconds : refitSeconds) += wallSecondsOf([&] { isOK = mParts.fitTForm(n); });
        return isOK;
    }
    T computeDistances()
    {
        T inlierDis = T(0);
        distanceSeconds += wallSecondsOf([&] { inlierDis = mParts.computeDistances(); });
        return inlierDis;
    }
    void writeTForm(const T* compact) { mParts.writeTForm(compact); }

    double constraintSeconds = 0.0;
    double samplingSeconds = 0.0;  ///< drawing and minimal fits
    double refitSeconds = 0.0;     ///< least-squares fits
    double distanceSeconds = 0.0;

private:
    EngineParts<T, T> mParts;
    std::int32_t mSampleSize;
};

/// Shares of a step in percent. Distances include the score of the threshold method; what the
/// parts leave is the search's own loop, the median and the clock.
template <typename T>
void benchStepShares(benchmark::State& state, TransformType type, Method method)
{
    RunningEngine<T> running(settingsOf<T>(type, method), matchesFor(state, type));
    estTForm<T, T>& engine = running.engine();
    TimedParts<T> parts(engine, ptsNumOf(state));
    double all = 0.0;
    for (auto _ : state) {
        std::srand(SEED);
        all += wallSecondsOf([&] { engine.estimate(ptsNumOf(state), parts); });
    }
    state.counters["constraint%"] = 100.0 * parts.constraintSeconds / all;
    state.counters["samplingAndFit%"] = 100.0 * parts.samplingSeconds / all;
    state.counters["refit%"] = 100.0 * parts.refitSeconds / all;
    state.counters["distances%"] = 100.0 * parts.distanceSeconds / all;
    state.counters["rest%"] = 100.0 * (1.0 - (parts.constraintSeconds + parts.samplingSeconds + parts.refitSeconds
                                               + parts.distanceSeconds) / all);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- Single against double

void benchSingleToDouble(benchmark::State& state, TransformType type, Method method)
{
    const Matches matches = matchesFor(state, type);
    Estimator single = openEstimator<float>(settingsOf<float>(type, method), matches);
    Estimator dbl = openEstimator<double>(settingsOf<double>(type, method), matches);
    const auto step = [&state](Estimator& estimator) {
        estimator.seed(SEED);
        benchmark::DoNotOptimize(estimator.step(ptsNumOf(state)).inlierNum);
    };
    bench::Turns turns;
    for (auto _ : state)
        state.SetIterationTime(turns.run(1, [&](std::size_t) { step(single); }, [&](std::size_t) { step(dbl); }));
    state.counters["ratio"] = turns.ratio();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- Registration

template <typename... Args>
benchmark::internal::Benchmark* add(const std::string& name, void (*fcn)(benchmark::State&, Args...), Args... args)
{
    return benchmark::RegisterBenchmark(name.c_str(), fcn, args...)
        ->RangeMultiplier(8)->Range(8, 32768)->Unit(benchmark::kMicrosecond);
}

template <typename T>
void addPrecision(TransformType type)
{
    const std::string suffix = std::string("/") + bench::nameOf(type) + "/" + bench::codeOf<T>();
    add("step" + suffix, benchStep<T>, type, Method::Threshold);
    add("stepMedian" + suffix, benchStep<T>, type, Method::Median);
    add("engine" + suffix, benchEngine<T>, type);
    add("stepShares" + suffix, benchStepShares<T>, type, Method::Threshold)->Arg(1000);
    add("stepSharesMedian" + suffix, benchStepShares<T>, type, Method::Median)->Arg(1000);
}

}  // namespace

int main(int argc, char** argv)
{
    for (const TransformType type : bench::TYPES) {
        addPrecision<double>(type);
        addPrecision<float>(type);
        const std::string suffix = std::string("/") + bench::nameOf(type);
        add("stepSingleToDouble" + suffix, benchSingleToDouble, type, Method::Threshold)->Arg(1000)->UseManualTime();
        add("stepSingleToDoubleMedian" + suffix, benchSingleToDouble, type, Method::Median)->Arg(1000)->UseManualTime();
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

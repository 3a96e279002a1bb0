// What Python adds to a step: the engine alone and the same steps from the module esttform, in turns, in one process.
#include <benchmark/benchmark.h>

#include <pybind11/embed.h>
#include <pybind11/numpy.h>

#include <array>
#include <cstdlib>
#include <string>

#include "running_engine.h"
#include "turns.h"

namespace {

namespace py = pybind11;
using esttform::TransformType;

constexpr unsigned SEED = 1;
constexpr std::int32_t PTS_NUM = 1000;
constexpr double INLIER_SHARE = 0.5;
constexpr std::size_t CALL_NUM = 200;  ///< of a turn

/// N-by-2 in C order, as most programs have their points.
py::array_t<double> pointsOf(const std::vector<double>& pts)
{
    return py::array_t<double>({static_cast<py::ssize_t>(pts.size() / 2), py::ssize_t{2}}, pts.data());
}

/// Median over the calls of (time of a call from Python - time of the engine's step beside it), microseconds.
void benchOverhead(benchmark::State& state, TransformType type, bool isWhole)
{
    const auto sampleNum = static_cast<std::uint32_t>(state.range(0));
    const bench::Matches matches = bench::makeMatches(type, PTS_NUM, INLIER_SHARE, SEED);
    const esttform::Settings settings = bench::fixedSettings(type, sampleNum);
    bench::RunningEngine<double> running(settings, matches);
    baseEstTForm& engine = running.engine();

    const py::module_ module = py::module_::import("esttform");
    const py::object pts1 = pointsOf(matches.pts1), pts2 = pointsOf(matches.pts2);
    py::dict options;
    options["threshold"] = settings.threshold;
    options["samples"] = sampleNum;
    options["seed"] = SEED;
    const py::object estimator = module.attr("Estimator")(bench::nameOf(type), py::arg("max_points") = PTS_NUM, **options);
    const py::object step = estimator.attr("step"), estimate = module.attr("estimate");
    const py::dict seed(py::arg("seed") = SEED);

    const auto stepByPython = [&] {
        if (isWhole)
            benchmark::DoNotOptimize(estimate(pts1, pts2, bench::nameOf(type), **options));
        else
            benchmark::DoNotOptimize(step(pts1, pts2, **seed));
    };
    const auto stepByEngine = [&] {
        std::srand(SEED);
        engine.output(PTS_NUM);
    };
    std::array<std::vector<double>, 2> overheads;        // by who goes first: the second one finds its branches predicted
    for (auto _ : state) {
        double pythonSum = 0.0;
        for (std::size_t i = 0; i < CALL_NUM; ++i) {
            double engineTime = i % 2 == 0 ? bench::secondsOf(stepByEngine) : 0.0;
            const double pythonTime = bench::secondsOf(stepByPython);
            engineTime += i % 2 == 0 ? 0.0 : bench::secondsOf(stepByEngine);
            overheads[i % 2].push_back(pythonTime - engineTime);
            pythonSum += pythonTime;
        }
        state.SetIterationTime(pythonSum);
    }
    state.counters["overhead_us"] = 1e6 * (bench::medianOf(overheads[0]) + bench::medianOf(overheads[1])) / 2.0;
}

}  // namespace

int main(int argc, char** argv)
{
    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    PyConfig_SetBytesString(&config, &config.executable, PYTHON);
    const py::scoped_interpreter interpreter(&config);
    py::module_::import("sys").attr("path").attr("insert")(0, MODULE_FOLDER);
    for (const TransformType type : bench::TYPES) {
        for (const bool isWhole : {false, true}) {
            const std::string name = std::string(isWhole ? "estimate/" : "step/") + bench::nameOf(type);
            benchmark::RegisterBenchmark(name.c_str(), benchOverhead, type, isWhole)
                ->Arg(1)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(25);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

// The generated step against the engine: the same 1000 matches, as many samplings from the same seeds, timed in turns.
// The models are generated and compiled by the build, with the options of their own CMakeLists.txt.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "affine_D.h"
#include "affine_R.h"
#include "affine_adaptive_D.h"
#include "projective_D.h"
#include "projective_R.h"
#include "projective_adaptive_D.h"
#include "similarity_D.h"
#include "similarity_R.h"
#include "similarity_adaptive_D.h"
#include "turns.h"

namespace {

using bench::Matches;
using esttform::Estimator;
using esttform::TransformType;

constexpr std::int32_t PTS_NUM = 1000;
constexpr std::uint32_t SAMPLE_NUM = 1000;
constexpr std::uint32_t SET_NUM = 8;  // point sets of a benchmark; a turn goes through all of them
constexpr int TURN_NUM = 5;

/// A generated model by the names of its header.
template <typename T, typename Model, void (*START)(Model*), int (*STEP)(Model*)>
struct Generated {
    using Element = T;
    std::unique_ptr<Model> model = std::make_unique<Model>();

    explicit Generated(const Matches& matches)
    {
        START(model.get());
        const auto toT = [](double value) { return static_cast<T>(value); };
        std::transform(matches.pts1.begin(), matches.pts1.end(), model->Pts1, toT);
        std::transform(matches.pts2.begin(), matches.pts2.end(), model->Pts2, toT);
    }
    void step() { benchmark::DoNotOptimize(STEP(model.get())); }
};

template <typename Model, auto STEP>
int statusOf(Model* model)
{
    return static_cast<int>(STEP(model));
}

#define GENERATED(name, T) Generated<T, name##_Model, name##_start, statusOf<name##_Model, name##_step>>

template <typename Model>
void benchAgainstEngine(benchmark::State& state, TransformType type, bool isAdaptive, double inlierShare)
{
    using T = typename Model::Element;
    esttform::Settings settings = bench::fixedSettings(
        type, SAMPLE_NUM, std::is_same_v<T, double> ? esttform::DataType::Double : esttform::DataType::Single);
    if (isAdaptive) {                                    // the program's defaults
        settings.sampleNum = esttform::Settings().sampleNum;
        settings.confidence = esttform::Settings().confidence;
    }
    std::vector<std::unique_ptr<Model>> ours;
    std::vector<std::unique_ptr<Estimator>> theirs;
    for (std::uint32_t seed = 1; seed <= SET_NUM; ++seed) {
        const Matches matches = bench::makeMatches(type, PTS_NUM, inlierShare, seed);
        ours.push_back(std::make_unique<Model>(matches));
        theirs.push_back(std::make_unique<Estimator>(settings, PTS_NUM));
        const auto toT = [](double value) { return static_cast<T>(value); };
        std::transform(matches.pts1.begin(), matches.pts1.end(), static_cast<T*>(theirs.back()->pts1Buffer()), toT);
        std::transform(matches.pts2.begin(), matches.pts2.end(), static_cast<T*>(theirs.back()->pts2Buffer()), toT);
    }
    bench::Turns turns;
    const auto seeded = [](std::size_t i) { std::srand(static_cast<unsigned>(i + 1)); };
    for (auto _ : state) {
        state.SetIterationTime(turns.run(SET_NUM,
                                         [&](std::size_t i) { seeded(i); ours[i]->step(); },
                                         [&](std::size_t i) { seeded(i); theirs[i]->step(PTS_NUM); }));
    }
    state.counters["ratio"] = turns.ratio();
    state.SetItemsProcessed(state.iterations() * SET_NUM * PTS_NUM);
}

template <typename Model>
void add(const char* name, TransformType type, bool isAdaptive = false)
{
    for (const int percent : {15, 40, 80}) {
        benchmark::RegisterBenchmark(((isAdaptive ? "adaptive/" : "fixed/") + std::string(name) + "/" + std::to_string(percent)).c_str(),
                                     benchAgainstEngine<Model>, type, isAdaptive, percent / 100.0)
            ->UseManualTime()->Iterations(TURN_NUM)->Unit(benchmark::kMillisecond);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    add<GENERATED(similarity_D, double)>("similarity/D", TransformType::Similarity);
    add<GENERATED(similarity_R, float)>("similarity/R", TransformType::Similarity);
    add<GENERATED(affine_D, double)>("affine/D", TransformType::Affine);
    add<GENERATED(affine_R, float)>("affine/R", TransformType::Affine);
    add<GENERATED(projective_D, double)>("projective/D", TransformType::Projective);
    add<GENERATED(projective_R, float)>("projective/R", TransformType::Projective);
    add<GENERATED(similarity_adaptive_D, double)>("similarity/D", TransformType::Similarity, true);
    add<GENERATED(affine_adaptive_D, double)>("affine/D", TransformType::Affine, true);
    add<GENERATED(projective_adaptive_D, double)>("projective/D", TransformType::Projective, true);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

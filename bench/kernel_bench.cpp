// Times of the kernels: name/type/precision/point pairs. Kernels that do not know the type have none in their name.
#include <benchmark/benchmark.h>

#include <numeric>
#include <string>

#include "running_engine.h"
#include "szelesttform_fit.h"
#include "szelesttform_scoring.h"

namespace {

using bench::Matches;
using bench::RunningEngine;
using esttform::TransformType;

constexpr std::uint32_t SEED = 1;
constexpr double INLIER_SHARE = 0.5;
constexpr std::int32_t SAMPLE_NUM = 256;  // minimal samples that a benchmark goes through in turn
constexpr PointLayout COLUMNS = PointLayout::of(false, 0);

template <std::int32_t SAMPLE_SIZE>
constexpr TransformType TYPE_OF = static_cast<TransformType>(SAMPLE_SIZE - 1);

/// Matches in the computation type, with what the kernels make of them.
template <std::int32_t SAMPLE_SIZE, typename T>
struct KernelInput {
    static constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;

    explicit KernelInput(std::int32_t ptsNum, double inlierShare = INLIER_SHARE)
        : num(static_cast<std::size_t>(ptsNum)),
          matches(bench::makeMatches(TYPE_OF<SAMPLE_SIZE>, ptsNum, inlierShare, SEED)), pts1(2 * num), pts2(2 * num),
          norm1(2 * num), norm2(2 * num), all(num), constraint(2 * num * COL_NUM), distance(num)
    {
        const auto toT = [](double value) { return static_cast<T>(value); };
        std::transform(matches.pts1.begin(), matches.pts1.end(), pts1.begin(), toT);
        std::transform(matches.pts2.begin(), matches.pts2.end(), pts2.begin(), toT);
        std::iota(all.begin(), all.end(), 0U);
        makeConstraintMatrix(pts1.data(), pts2.data(), COLUMNS, FixedSize<SAMPLE_SIZE>{}, ptsNum, constraint.data());
        const bench::Matrix& H = matches.truth;
        const std::array<double, 9> compact = SAMPLE_SIZE == 2
            ? std::array<double, 9>{H[0], H[1], H[2], H[5], 1.0}
            : std::array<double, 9>{H[0], H[1], H[2], H[3], H[4], H[5], SAMPLE_SIZE == 3 ? 1.0 : H[6], H[7], 1.0};
        std::transform(compact.begin(), compact.end(), tformCompact, toT);
        computeDistances<COL_NUM>(constraint.data(), ptsNum, tformCompact, distance.data());
    }

    /// Constraints of the normalized points, row by row.
    std::vector<T> normalizedConstraint()
    {
        const auto ptsNum = static_cast<std::int32_t>(num);
        T scale, cents[2];
        normPts(pts1.data(), COLUMNS, all.data(), ptsNum, norm1.data(), COLUMNS, &scale, cents);
        normPts(pts2.data(), COLUMNS, all.data(), ptsNum, norm2.data(), COLUMNS, &scale, cents);
        std::vector<T> out(constraint.size());
        makeConstraintMatrix(norm1.data(), norm2.data(), COLUMNS, FixedSize<SAMPLE_SIZE>{}, ptsNum, out.data());
        return out;
    }

    std::size_t num;
    Matches matches;
    std::vector<T> pts1, pts2, norm1, norm2;
    std::vector<std::uint32_t> all;
    std::vector<T> constraint;  ///< of all pairs, row by row
    std::vector<T> distance;    ///< of all pairs to the true transformation
    T tformCompact[9];          ///< the true transformation
};

std::int32_t ptsNumOf(const benchmark::State& state)
{
    return static_cast<std::int32_t>(state.range(0));
}

// ---- Points and constraints

template <typename T>
void benchNormPts(benchmark::State& state)
{
    KernelInput<4, T> input(ptsNumOf(state));
    T scale, cents[2];
    for (auto _ : state) {
        normPts(input.pts1.data(), COLUMNS, input.all.data(), ptsNumOf(state), input.norm1.data(), COLUMNS, &scale,
                cents);
        benchmark::DoNotOptimize(input.norm1.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <std::int32_t SAMPLE_SIZE, typename T>
void benchMakeConstraintMatrix(benchmark::State& state)
{
    KernelInput<SAMPLE_SIZE, T> input(ptsNumOf(state));
    for (auto _ : state) {
        makeConstraintMatrix(input.pts1.data(), input.pts2.data(), COLUMNS, std::int32_t(SAMPLE_SIZE), ptsNumOf(state),
                             input.constraint.data());
        benchmark::DoNotOptimize(input.constraint.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- Decompositions. Both destroy their matrix: the time includes one copy of it.

template <std::int32_t SAMPLE_SIZE, typename T>
void benchQrFactor(benchmark::State& state)
{
    constexpr std::int32_t N = 2 * SAMPLE_SIZE;
    constexpr std::int32_t M = N + 1;
    const std::vector<T> samples = KernelInput<SAMPLE_SIZE, T>(SAMPLE_NUM * SAMPLE_SIZE).normalizedConstraint();
    const QRFactRealInBRealFltSFcnCache<T, T, T> cache;
    T A[M * N], Q[M * N], R[N * N], E[N], qraux[N], work[N];
    std::int32_t jpvt[N] = {};
    std::int32_t i = 0;
    for (auto _ : state) {
        std::copy_n(samples.data() + i * M * N, M * N, A);
        qrFactor(cache, FixedSize<M>{}, FixedSize<N>{}, Q, A, E, qraux, work, jpvt, R, true);
        benchmark::DoNotOptimize(Q);
        benchmark::ClobberMemory();
        i = (i + 1) % SAMPLE_NUM;
    }
    state.SetItemsProcessed(state.iterations() * SAMPLE_SIZE);
}

template <std::int32_t SAMPLE_SIZE, typename T>
void benchSvdc(benchmark::State& state)
{
    constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;
    const std::int32_t rows = 2 * ptsNumOf(state);
    const auto rowNum = static_cast<std::size_t>(rows);
    const std::vector<T> byRows = KernelInput<SAMPLE_SIZE, T>(ptsNumOf(state), 1.0).normalizedConstraint();
    std::vector<T> matrix(byRows.size());
    for (std::size_t r = 0; r < rowNum; ++r) {
        for (std::size_t c = 0; c < COL_NUM; ++c) matrix[c * rowNum + r] = byRows[r * COL_NUM + c];
    }
    std::vector<T> X(matrix.size()), U(matrix.size()), work(rowNum);
    T s[COL_NUM], e[COL_NUM], V[COL_NUM * COL_NUM];
    for (auto _ : state) {
        std::copy(matrix.begin(), matrix.end(), X.begin());
        const std::int32_t status = svdc(X.data(), rows, COL_NUM, s, e, work.data(), U.data(), V, true);
        if (status != 0) state.SkipWithError("svdc did not converge");
        benchmark::DoNotOptimize(V);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- Fits, by the engine

template <std::int32_t SAMPLE_SIZE, typename T>
void benchMinimalFit(benchmark::State& state)
{
    RunningEngine<T> running(bench::fixedSettings(TYPE_OF<SAMPLE_SIZE>, 1, bench::dataTypeOf<T>()),
                             bench::makeMatches(TYPE_OF<SAMPLE_SIZE>, ptsNumOf(state), INLIER_SHARE, SEED));
    estTForm<T, T>& engine = running.engine();
    EngineParts<T, T> parts(engine, ptsNumOf(state));
    std::srand(SEED);
    std::vector<std::uint32_t> samples;
    for (std::int32_t i = 0; i < SAMPLE_NUM; ++i) {
        parts.drawSample();
        samples.insert(samples.end(), engine.sampleIdx, engine.sampleIdx + SAMPLE_SIZE);
    }
    std::int32_t i = 0;
    for (auto _ : state) {
        std::copy_n(samples.data() + i * SAMPLE_SIZE, SAMPLE_SIZE, engine.sampleIdx);
        benchmark::DoNotOptimize(parts.fitTForm(SAMPLE_SIZE));
        benchmark::ClobberMemory();
        i = (i + 1) % SAMPLE_NUM;
    }
    state.SetItemsProcessed(state.iterations() * SAMPLE_SIZE);
}

template <std::int32_t SAMPLE_SIZE, typename T>
void benchLeastSquaresFit(benchmark::State& state)
{
    RunningEngine<T> running(bench::fixedSettings(TYPE_OF<SAMPLE_SIZE>, 1, bench::dataTypeOf<T>()),
                             bench::makeMatches(TYPE_OF<SAMPLE_SIZE>, ptsNumOf(state), 1.0, SEED));
    estTForm<T, T>& engine = running.engine();
    EngineParts<T, T> parts(engine, ptsNumOf(state));
    std::iota(engine.sampleIdx, engine.sampleIdx + ptsNumOf(state), 0U);
    for (auto _ : state) {
        if (!parts.fitTForm(ptsNumOf(state))) state.SkipWithError("no transformation found");
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- Distances and scores

template <std::int32_t SAMPLE_SIZE, typename T>
void benchComputeDistances(benchmark::State& state)
{
    KernelInput<SAMPLE_SIZE, T> input(ptsNumOf(state));
    for (auto _ : state) {
        computeDistances<2 * SAMPLE_SIZE + 1>(input.constraint.data(), ptsNumOf(state), input.tformCompact,
                                              input.distance.data());
        benchmark::DoNotOptimize(input.distance.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename T>
void benchSumTruncatedDistances(benchmark::State& state)
{
    KernelInput<4, T> input(ptsNumOf(state));
    for (auto _ : state) {
        benchmark::DoNotOptimize(input.distance.data());
        benchmark::DoNotOptimize(sumTruncatedDistances(input.distance.data(), ptsNumOf(state),
                                                       static_cast<T>(bench::THRESHOLD * bench::THRESHOLD)));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename T>
void benchCollectInliers(benchmark::State& state)
{
    KernelInput<4, T> input(ptsNumOf(state));
    for (auto _ : state) {
        benchmark::DoNotOptimize(collectInliers(input.distance.data(), ptsNumOf(state),
                                                static_cast<T>(bench::THRESHOLD * bench::THRESHOLD), input.all.data()));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename T>
void benchMedianDistance(benchmark::State& state)
{
    KernelInput<4, T> input(ptsNumOf(state));
    std::vector<T> scratch(input.num + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(medianDistance(input.distance.data(), ptsNumOf(state), scratch.data()));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- Registration

void add(const std::string& name, void (*fcn)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name.c_str(), fcn)->RangeMultiplier(8)->Range(8, 32768);
}

template <std::int32_t SAMPLE_SIZE, typename T>
void addTyped()
{
    const std::string suffix = std::string("/") + bench::nameOf(TYPE_OF<SAMPLE_SIZE>) + "/" + bench::codeOf<T>();
    add("makeConstraintMatrix" + suffix, benchMakeConstraintMatrix<SAMPLE_SIZE, T>);
    benchmark::RegisterBenchmark(("qrFactor" + suffix).c_str(), benchQrFactor<SAMPLE_SIZE, T>);
    add("svdc" + suffix, benchSvdc<SAMPLE_SIZE, T>);
    add("minimalFit" + suffix, benchMinimalFit<SAMPLE_SIZE, T>);
    add("leastSquaresFit" + suffix, benchLeastSquaresFit<SAMPLE_SIZE, T>);
    add("computeDistances" + suffix, benchComputeDistances<SAMPLE_SIZE, T>);
}

template <typename T>
void addPrecision()
{
    const std::string suffix = std::string("/") + bench::codeOf<T>();
    add("normPts" + suffix, benchNormPts<T>);
    add("sumTruncatedDistances" + suffix, benchSumTruncatedDistances<T>);
    add("collectInliers" + suffix, benchCollectInliers<T>);
    add("medianDistance" + suffix, benchMedianDistance<T>);
    addTyped<2, T>();
    addTyped<3, T>();
    addTyped<4, T>();
}

}  // namespace

int main(int argc, char** argv)
{
    addPrecision<double>();
    addPrecision<float>();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

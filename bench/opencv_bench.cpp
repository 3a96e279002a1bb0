// A whole step against OpenCV: the same 1000 matches, as many samplings, one thread, both timed in turns.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>

#include "turns.h"

namespace {

using bench::Matches;
using bench::Matrix;
using esttform::Estimator;
using esttform::TransformType;

constexpr std::int32_t PTS_NUM = 1000;
constexpr int SAMPLE_NUM = 1000;
constexpr std::uint32_t SET_NUM = 8;  // point sets of a benchmark; a turn goes through all of them
constexpr int TURN_NUM = 5;

/// The confidence nearest to 1: OpenCV stops as late as it ever does.
const double LATEST_CONFIDENCE = std::nextafter(1.0, 0.0);
constexpr double USUAL_CONFIDENCE = 0.999;

struct MethodName {
    int method;
    const char* name;
};
const MethodName METHODS[] = {{cv::RANSAC, "RANSAC"},           {cv::USAC_DEFAULT, "USAC_DEFAULT"},
                              {cv::USAC_FAST, "USAC_FAST"},     {cv::USAC_ACCURATE, "USAC_ACCURATE"},
                              {cv::USAC_MAGSAC, "USAC_MAGSAC"}, {cv::USAC_PROSAC, "USAC_PROSAC"}};

std::vector<cv::Point2f> pointsOf(const std::vector<double>& pts)
{
    std::vector<cv::Point2f> out;
    for (std::size_t i = 0; i < pts.size(); i += 2)
        out.emplace_back(static_cast<float>(pts[i]), static_cast<float>(pts[i + 1]));
    return out;
}

/// One estimation by OpenCV with its own defaults for the refinement.
struct OpenCvCase {
    TransformType type;
    int method;
    std::vector<cv::Point2f> pts1;
    std::vector<cv::Point2f> pts2;
    cv::Mat tform{};
    cv::Mat mask{};

    void estimate(int maxIters, double confidence)
    {
        switch (type) {
        case TransformType::Similarity:
            tform = cv::estimateAffinePartial2D(pts1, pts2, mask, method, bench::THRESHOLD,
                                                static_cast<std::size_t>(maxIters), confidence);
            break;
        case TransformType::Affine:
            tform = cv::estimateAffine2D(pts1, pts2, mask, method, bench::THRESHOLD, static_cast<std::size_t>(maxIters),
                                         confidence);
            break;
        default:
            tform = cv::findHomography(pts1, pts2, method, bench::THRESHOLD, mask, maxIters, confidence);
        }
    }

    Matrix matrix() const
    {
        Matrix H{};                                      // all zero: nothing found
        if (tform.empty()) return H;
        H[8] = 1.0;
        std::copy(tform.begin<double>(), tform.end<double>(), H.begin());
        return H;
    }
};

/// Samplings that OpenCV's RANSAC draws: fewer than asked for once log(1 - confidence) / log(1 - share^sampleSize) is
/// smaller for the best share of inliers found.
int drawnByRansac(int maxIters, double confidence, int inlierNum, int sampleSize)
{
    const double p = std::pow(static_cast<double>(inlierNum) / PTS_NUM, sampleSize);
    const double needed = std::round(std::log(1.0 - confidence) / std::log(1.0 - p));
    return needed < maxIters ? std::max(1, static_cast<int>(needed)) : maxIters;
}

// ---- The comparison

struct Comparison {
    TransformType type;
    int method;
    double inlierShare;
    bool isAdaptive;  ///< both may stop at the usual confidence; else both draw the same number of samplings
};

/// One point set, for both sides.
struct Duel {
    Duel(const Comparison& comparison, std::uint32_t seed)
        : matches(bench::makeMatches(comparison.type, PTS_NUM, comparison.inlierShare, seed)),
          theirs{comparison.type, comparison.method, pointsOf(matches.pts1), pointsOf(matches.pts2)},
          confidence(comparison.isAdaptive ? USUAL_CONFIDENCE : LATEST_CONFIDENCE)
    {
        theirs.estimate(SAMPLE_NUM, confidence);
        if (comparison.method == cv::RANSAC && !comparison.isAdaptive)
            sampleNum = drawnByRansac(SAMPLE_NUM, confidence, cv::countNonZero(theirs.mask),
                                      static_cast<int>(comparison.type) + 1);
        esttform::Settings settings = bench::fixedSettings(comparison.type, static_cast<std::uint32_t>(sampleNum));
        if (comparison.isAdaptive) settings.confidence = 100.0 * USUAL_CONFIDENCE;
        ours = std::make_unique<Estimator>(settings, PTS_NUM);
    }

    void estimateOurs() { ourResult = &ours->step(matches.pts1.data(), matches.pts2.data(), PTS_NUM); }
    void estimateTheirs() { theirs.estimate(SAMPLE_NUM, confidence); }
    double ourError() const { return bench::cornerError(bench::matrixOf(*ourResult), matches.truth); }
    double theirError() const { return bench::cornerError(theirs.matrix(), matches.truth); }

    Matches matches;
    OpenCvCase theirs;
    double confidence;
    int sampleNum = SAMPLE_NUM;
    std::unique_ptr<Estimator> ours;
    const esttform::StepResult* ourResult = nullptr;
};

void benchAgainstOpenCv(benchmark::State& state, const Comparison& comparison)
{
    std::vector<Duel> duels;
    try {
        for (std::uint32_t seed = 1; seed <= SET_NUM; ++seed) duels.emplace_back(comparison, seed);
    } catch (const cv::Exception& exception) {           // not every method exists for every transformation
        state.SkipWithError(exception.err.c_str());
        return;
    }
    std::srand(1);
    bench::Turns turns;
    std::vector<double> ourErrors;
    for (auto _ : state) {
        state.SetIterationTime(turns.run(duels.size(), [&](std::size_t i) { duels[i].estimateOurs(); },
                                         [&](std::size_t i) { duels[i].estimateTheirs(); }));
        for (const Duel& duel : duels) ourErrors.push_back(duel.ourError());
    }

    std::vector<double> theirErrors, sampleNums;
    for (const Duel& duel : duels) {
        theirErrors.push_back(duel.theirError());
        sampleNums.push_back(duel.sampleNum);
    }
    const auto foundShare = [](const std::vector<double>& errors) {
        const auto isFound = [](double error) { return error < bench::THRESHOLD; };
        return static_cast<double>(std::count_if(errors.begin(), errors.end(), isFound))
            / static_cast<double>(errors.size());
    };
    // With twice as many samplings allowed, whoever draws them all takes about twice the time.
    bench::Turns doubled;
    for (int i = 0; i < TURN_NUM; ++i) {
        doubled.run(duels.size(), [&](std::size_t k) { duels[k].theirs.estimate(2 * SAMPLE_NUM, duels[k].confidence); },
                    [&](std::size_t k) { duels[k].estimateTheirs(); });
    }
    state.counters["ratio"] = turns.ratio();
    state.counters["samplings"] = bench::medianOf(sampleNums);
    state.counters["theirsDoubled"] = doubled.ratio();
    state.counters["foundOurs"] = foundShare(ourErrors);
    state.counters["foundTheirs"] = foundShare(theirErrors);
    state.counters["pxOurs"] = bench::medianOf(ourErrors);
    state.counters["pxTheirs"] = bench::medianOf(theirErrors);
    state.SetItemsProcessed(state.iterations() * SET_NUM * PTS_NUM);
}

const char* functionOf(TransformType type)
{
    switch (type) {
    case TransformType::Similarity: return "estimateAffinePartial2D";
    case TransformType::Affine: return "estimateAffine2D";
    default: return "findHomography";
    }
}

}  // namespace

int main(int argc, char** argv)
{
    cv::setNumThreads(1);
    for (const bool isAdaptive : {false, true}) {
        for (const TransformType type : bench::TYPES) {
            for (const MethodName& method : METHODS) {
                for (const int percent : {15, 40, 80}) {
                    const std::string name = std::string(isAdaptive ? "adaptive/" : "fixed/") + functionOf(type) + "/"
                        + method.name + "/" + std::to_string(percent);
                    benchmark::RegisterBenchmark(name.c_str(), benchAgainstOpenCv,
                                                 Comparison{type, method.method, percent / 100.0, isAdaptive})
                        ->UseManualTime()->Iterations(TURN_NUM)->Unit(benchmark::kMillisecond);
                }
            }
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

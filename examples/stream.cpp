// A camera turns by one degree a frame: one estimator, opened once, follows it through frames of different sizes.
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "estimator.h"

namespace {

constexpr int MAX_PTS_NUM = 200;
constexpr double DEGREE = 3.14159265358979 / 180.0;

struct Matches {
    std::vector<double> pts1, pts2;  // x0, y0, x1, y1, ...
};

/// Points of a frame and where they are in the next one; every third match is wrong.
Matches nextFrame(std::mt19937& random, int ptsNum)
{
    std::uniform_real_distribution<double> coordinate(-300.0, 300.0);
    Matches matches;
    for (int i = 0; i < ptsNum; ++i) {
        const double x = coordinate(random), y = coordinate(random);
        const bool isWrong = i % 3 == 2;
        const double x2 = std::cos(DEGREE) * x - std::sin(DEGREE) * y, y2 = std::sin(DEGREE) * x + std::cos(DEGREE) * y;
        matches.pts1.insert(matches.pts1.end(), {x, y});
        matches.pts2.insert(matches.pts2.end(), {isWrong ? coordinate(random) : x2, isWrong ? coordinate(random) : y2});
    }
    return matches;
}

}  // namespace

int main()
{
    try {
        esttform::Settings settings;
        settings.type = esttform::TransformType::Similarity;
        settings.threshold = 1.0;                        // 1 pixel, squared
        esttform::Options options;
        options.isVariableSize = true;                   // frames of up to MAX_PTS_NUM pairs
        options.seed = 1;                                // the same samples in every run
        esttform::Estimator estimator(settings, MAX_PTS_NUM, options);
        std::mt19937 random(1);
        for (const int ptsNum : {60, 200, 1, 90}) {
            const Matches matches = nextFrame(random, ptsNum);
            const esttform::StepResult& result = estimator.step(matches.pts1.data(), matches.pts2.data(), ptsNum);
            if (result.error)
                std::printf("%d matches: %s\n", ptsNum, result.error->text.c_str());
            else
                std::printf("%d matches, %d right: turned by %.3f degrees\n", ptsNum, result.inlierNum,
                            std::atan2(result.tform(1, 0), result.tform(0, 0)) / DEGREE);
        }
    } catch (const esttform::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

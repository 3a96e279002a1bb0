#include <cstdio>
#include <vector>

#include "estimator.h"

int main()
{
    const std::vector<double> pts1 = {0, 0, 100, 0, 100, 100, 0, 100, 50, 40};        // x0, y0, x1, y1, ...
    const std::vector<double> pts2 = {10, 5, 110, 5, 110, 105, 10, 105, 300, 300};    // the last match is wrong
    try {
        esttform::Settings settings;
        settings.type = esttform::TransformType::Similarity;
        esttform::Estimator estimator(settings, 5);
        const esttform::StepResult& result = estimator.step(pts1.data(), pts2.data(), 5);
        std::printf("%d inliers, shift (%g, %g)\n", result.inlierNum, result.tform(0, 2), result.tform(1, 2));
    } catch (const esttform::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

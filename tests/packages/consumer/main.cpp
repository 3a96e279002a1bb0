// Estimates from the matches on standard input (x1,y1,x2,y2 below a head line) and prints what the program prints as CSV:
// number of pairs, 1 for found, number of inliers, TForm row by row.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <limits>
#include <vector>

#include "codegen.h"
#include "estimator.h"

int main()
{
    std::vector<double> pts1, pts2;
    double x1, y1, x2, y2;
    char comma;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    while (std::cin >> x1 >> comma >> y1 >> comma >> x2 >> comma >> y2) {
        pts1.insert(pts1.end(), {x1, y1});
        pts2.insert(pts2.end(), {x2, y2});
    }
    const auto ptsNum = static_cast<std::int32_t>(pts1.size() / 2);
    try {
        const esttform::Settings settings;
        esttform::Options options;
        options.seed = 1;
        esttform::Estimator estimator(settings, ptsNum, options);
        const esttform::StepResult& result = estimator.step(pts1.data(), pts2.data(), ptsNum);
        std::printf("%d,%d,%d", result.ptsNum, result.isFound() ? 1 : 0, result.inlierNum);
        for (int row = 0; row < result.tformRows; ++row)
            for (int col = 0; col < result.tformCols; ++col) {
                char text[32];
                *std::to_chars(text, text + sizeof text - 1, result.tform(row, col)).ptr = '\0';
                std::printf(",%s", text);
            }
        std::printf("\n");
        return esttform::generateCode(esttform::toParams(settings), settings.pointsType, ptsNum).empty() ? 1 : 0;
    } catch (const esttform::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

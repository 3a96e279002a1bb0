#include "plot/plot_scene.h"

#include "number_text.h"

#include <fmt/format.h>

namespace esttform::app {

namespace {

/// Wild points are a few; more than this share outside an image belong to another image.
constexpr double OUTSIDE_SHARE = 0.01;

}  // namespace

PlotScene sceneOf(const StepLabel& label, const std::vector<Pair>& pairs, const StepResult& result, Layout layout,
                  const BlockSetup& setup)
{
    PlotScene scene;
    scene.pairs = pairs;
    if (result.inliers != nullptr)
        scene.inliers.assign(result.inliers, result.inliers + result.ptsNum);
    if (result.isFound())
        scene.map = mapOf(result, layout);
    scene.step = label;
    scene.threshold = setup.threshold();
    return scene;
}

std::string pictureWarning(const Picture& picture, const std::vector<Pair>& pairs, int setIdx)
{
    const std::size_t x = 2 * static_cast<std::size_t>(setIdx);
    std::int64_t finiteNum = 0, outsideNum = 0;
    for (const Pair& pair : pairs)
        if (isFinite(pair)) {
            ++finiteNum;
            outsideNum += picture.contains(pair[x], pair[x + 1]) ? 0 : 1;
        }
    if (static_cast<double>(outsideNum) <= OUTSIDE_SHARE * static_cast<double>(finiteNum))
        return {};
    return fmt::format("{} of {} lie outside this picture of {} x {} pixels; it is another one, scaled, or the points do not "
                       "count from its top left pixel",
                       outsideNum, counted(finiteNum, setIdx == 0 ? "first point" : "second point"), picture.width, picture.height);
}

}  // namespace esttform::app

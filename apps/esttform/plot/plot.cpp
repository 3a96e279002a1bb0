#include "plot/plot.h"

#include "failure.h"
#include "number_text.h"
#include "plot/plot_canvas.h"
#include "plot/plot_histogram.h"
#include "plot/plot_matches.h"
#include "plot/plot_residuals.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace esttform::app {

namespace {

// Sizes in points of 1/72 inch.
constexpr double RIGHT_MARGIN = 20.0, TOP_MARGIN = 50.0, BOTTOM_MARGIN = 10.0;
constexpr double PANEL_GAP = 12.0, PANEL_HEIGHT = 290.0;

void drawTitle(PlotCanvas& canvas, const PlotScene& scene, const std::string& inputName, const std::string& typeText,
               double left, double width)
{
    const auto pairNum = static_cast<std::int64_t>(scene.pairs.size());
    const auto inlierNum = std::count(scene.inliers.begin(), scene.inliers.end(), 1);
    std::string title = counted(pairNum, "pair");
    if (!scene.inliers.empty())
        title = fmt::format("{} of {} are inliers ({:.1f} %)", inlierNum, title,
                            100.0 * static_cast<double>(inlierNum) / static_cast<double>(pairNum));
    std::string subtitle = scene.map ? fmt::format("{} TForm, maps points of the first picture onto the second", typeText)
                                     : fmt::format("no {} transformation found", typeText);
    if (scene.step.frame)
        subtitle += fmt::format(", step {} (frame {})", scene.step.step, *scene.step.frame);
    if (!inputName.empty())
        subtitle += ", " + fileNameOf(inputName);

    cairo_set_source_rgb(canvas.context(), 0.0, 0.0, 0.0);
    canvas.setFont(TITLE_SIZE, true);
    canvas.drawText(title, left, TOP_MARGIN - 26.0);
    canvas.setFont(TEXT_SIZE, false);
    canvas.drawText(canvas.fitted(subtitle, width), left, TOP_MARGIN - 10.0);
}

}  // namespace

std::string extensionOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return extension;
}

PlotFormat plotFormatOf(const std::string& path)
{
    const std::string extension = extensionOf(path);
    if (extension == ".svg")
        return PlotFormat::Svg;
    if (extension == ".png")
        return PlotFormat::Png;
    if (extension == ".pdf")
        return PlotFormat::Pdf;
    throw Failure(fmt::format("--plot: got {}, expected a name that ends in .svg, .png or .pdf", inQuotes(path)));
}

std::string renderPlot(const PlotScene& scene, const std::string& inputName, const std::string& typeText, PlotFormat format)
{
    PlotCanvas measure(PlotFormat::Svg, 1.0, 1.0);
    const MatchPanel matches(scene, TOP_MARGIN, measure);
    const double right = matches.right(), middle = 0.5 * (right - PANEL_GAP);
    double bottom = matches.bottom();
    std::optional<ResidualPanel> residualPanel;
    std::optional<HistogramPanel> histogramPanel;
    if (scene.map) {
        const std::vector<Residual> residuals = residualsOf(scene.pairs, *scene.map);
        const double top = bottom + PANEL_GAP;
        bottom = top + PANEL_HEIGHT;
        residualPanel.emplace(scene, residuals, PlotBox{0.0, top, middle, bottom}, measure);
        histogramPanel.emplace(scene, residuals, PlotBox{middle + PANEL_GAP, top, right, bottom}, measure);
    }

    PlotCanvas canvas(format, right + RIGHT_MARGIN, bottom + BOTTOM_MARGIN);
    drawTitle(canvas, scene, inputName, typeText, matches.left(), right - matches.left());
    matches.draw(canvas);
    if (residualPanel)
        residualPanel->draw(canvas);
    if (histogramPanel)
        histogramPanel->draw(canvas);
    return canvas.finish();
}

}  // namespace esttform::app

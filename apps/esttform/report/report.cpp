#include "report/report.h"

#include "geometry/residuals.h"
#include "number_text.h"
#include "report/html.h"
#include "report/report_style.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

std::string heading(const Report& report)
{
    const auto inlierNum = std::count(report.scene.inliers.begin(), report.scene.inliers.end(), 1);
    if (!report.result.error.empty())
        return "No result: the block refused the step";
    if (!report.scene.map)
        return "No transformation found";
    if (report.scene.inliers.empty())
        return fmt::format("Fitted to all {}", counted(report.result.ptsNum, "pair"));
    return fmt::format("{} of {} are inliers ({:.1f} %)", inlierNum, counted(report.result.ptsNum, "pair"),
                       100.0 * static_cast<double>(inlierNum) / static_cast<double>(report.result.ptsNum));
}

/// Which input and which of its steps.
std::string subject(const Report& report, const BlockSetup& setup)
{
    std::string text = fmt::format("{} transformation of {}", setup.typeText(), html::escaped(report.inputName));
    if (const StepLabel& step = report.scene.step; step.frame)
        text += fmt::format(", step {} (frame {})", step.step, *step.frame);
    if (report.stepNum > 1)
        text += fmt::format("; {} of {} have a result", report.foundNum, counted(report.stepNum, "step"));
    return text;
}

// ---- Findings

struct SeverityStyle {
    const char* name;
    const char* sign;                    ///< differs in shape, not in colour only
};

SeverityStyle styleOf(Severity severity) noexcept
{
    switch (severity) {
    case Severity::Good: return {"good", "&#x2713;"};
    case Severity::Warning: return {"warning", "&#x25b2;"};
    case Severity::Error: return {"error", "&#x2716;"};
    case Severity::Note: break;
    }
    return {"note", "&#x25cb;"};
}

std::string finding(Severity severity, const std::string& title, const std::string& text)
{
    const SeverityStyle style = styleOf(severity);
    return fmt::format("<div class=\"finding {0}\"><p><span>{1}</span> <strong>{0}: {2}</strong></p>\n<p>{3}</p></div>\n",
                       style.name, style.sign, html::escaped(title), html::escaped(text));
}

std::string findings(const Report& report)
{
    std::string notes, warnings;
    for (const DiagnosisNote& note : report.diagnosis)
        notes += finding(note.severity, note.title, note.text);
    if (!report.result.error.empty())
        warnings += finding(Severity::Error, "step refused", report.result.error);
    const auto isAmongNotes = [&report](const std::string& text) {
        return std::any_of(report.diagnosis.begin(), report.diagnosis.end(), [&text](const DiagnosisNote& note) {
            return note.severity == Severity::Warning && text.size() > note.text.size()
                   && text.compare(text.size() - note.text.size(), note.text.size(), note.text) == 0;
        });
    };
    for (const auto& [where, text] : report.warnings)
        if (!isAmongNotes(text))
            warnings += finding(Severity::Warning, where, text);
    return (notes.empty() ? "" : html::section("Diagnosis", notes)) + (warnings.empty() ? "" : html::section("Warnings", warnings));
}

// ---- Result

std::string matrix(const ShownResult& result)
{
    std::string text = "<table class=\"matrix\">\n";
    for (const auto& row : result.tform) {
        text += "<tr>";
        for (const double value : row)
            text += fmt::format("<td>{}</td>", shortNumber(value));
        text += "</tr>\n";
    }
    return text + "</table>\n";
}

/// Quantiles of the distances of the inliers, or of all pairs without a mask, in pixels.
std::string residualRows(const PlotScene& scene)
{
    std::vector<Pair> measured;
    for (std::size_t i = 0; i < scene.pairs.size(); ++i)
        if ((scene.inliers.empty() || scene.inliers[i] != 0) && isFinite(scene.pairs[i]))
            measured.push_back(scene.pairs[i]);
    const auto distances = quantilesOf(residualsOf(measured, *scene.map));
    if (!distances)
        return {};
    const char* const whose = scene.inliers.empty() ? "pairs" : "inliers";
    return html::row({fmt::format("residual of the {}, median", whose), distanceText(distances->median)})
           + html::row({"nine in ten are below", distanceText(distances->ninetyPercent)})
           + html::row({"largest", distanceText(distances->largest)});
}

std::string resultSection(const Report& report)
{
    if (!report.scene.map)
        return {};
    std::string text = "<p>TForm maps points of the first picture onto the second:</p>\n" + matrix(report.result)
                       + "<p class=\"equation\">" + html::escaped(report.result.equation) + "</p>\n";
    const std::string rows = residualRows(report.scene);
    if (!rows.empty())
        text += "<table>\n" + rows + "</table>\n";
    return html::section("Result", text);
}

// ---- Picture

std::string pictureSection(const Report& report, const BlockSetup& setup)
{
    const std::string svg = renderPlot(report.scene, "", setup.typeText(), PlotFormat::Svg);
    return html::section("Picture",
                         "<figure>\n" + html::inlineSvg(svg, "Matches, residual vectors and histogram of the distances")
                             + "<figcaption>Above: the matches; rings are first points, dots and crosses second ones, the thick "
                               "line is where TForm maps the dashed one. Below: residual vectors from the mapped first point "
                               "(dot) to its partner, and how many pairs lie how far from there, on a logarithmic "
                               "axis.</figcaption>\n</figure>\n");
}

// ---- Settings

std::string settingsSection(const BlockSetup& setup)
{
    std::string text = "<table>\n<thead>" + html::row({"parameter", "value", "unit", "meaning"}, "th") + "</thead>\n";
    for (const ParamInfo& info : paramTable()) {
        if (std::string(info.name).rfind("reserved", 0) == 0)
            continue;
        const double value = setup.params[static_cast<std::size_t>(info.index)];
        const bool isDefault = value == info.defaultValue;
        const std::string otherwise = isDefault ? "" : fmt::format(" (default {})", exactText(info.defaultValue));
        text += html::row({info.name, exactText(value) + otherwise, info.unit, info.meaning});
    }
    text += html::row({"seed", setup.options.seed ? fmt::format("{}", *setup.options.seed) : "none", "",
                       "Start of the random numbers; without one, another run may differ a little."});
    return html::section("Settings", text + "</table>\n");
}

}  // namespace

ShownResult shownResultOf(const StepResult& result, Layout layout)
{
    ShownResult shown;
    shown.ptsNum = result.ptsNum;
    for (int row = 0; row < result.tformRows; ++row) {
        shown.tform.emplace_back();
        for (int col = 0; col < result.tformCols; ++col)
            shown.tform.back().push_back(result.tform(row, col));
    }
    shown.equation = equationOf(result, layout);
    if (result.error)
        shown.error = result.error->id + ": " + result.error->text;
    return shown;
}

std::string renderReport(const Report& report, const BlockSetup& setup)
{
    const std::string title = heading(report);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"color-scheme\" content=\"light dark\">\n<title>"
           + html::escaped(title + " - " + fileNameOf(report.inputName)) + "</title>\n<style>\n" + REPORT_STYLE
           + "</style>\n</head>\n<body>\n<main>\n<h1>" + html::escaped(title) + "</h1>\n<p>" + subject(report, setup) + "</p>\n"
           + findings(report) + resultSection(report) + pictureSection(report, setup) + settingsSection(setup)
           + "</main>\n<footer><p>esttform " ESTTFORM_VERSION "</p></footer>\n</body>\n</html>\n";
}

}  // namespace esttform::app

#include "estimate/estimate_command.h"

#include "diagnosis/not_found.h"
#include "estimate/block_run.h"
#include "estimate/inlier_writer.h"
#include "estimate/shown_step.h"
#include "interruption.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_paths.h"
#include "output/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <limits>
#include <memory>

namespace esttform::app {

namespace {

void refuseWrongOptions(const EstimateOptions& o, const BlockSetup& setup)
{
    if (!o.inliersPath.empty() && !setup.hasInlierOutput)
        throw Failure("--inliers: the block has no inlier output with these settings; leave out --no-robust and "
                      "--no-inlier-output");
    if (o.isDiagnosed && o.isNotDiagnosed)
        throw Failure("--diagnose and --no-diagnose: both given, expected one");
    if (o.plotStep && o.plotPath.empty() && o.reportPath.empty())
        throw Failure("--plot-step: no effect without --plot or --report");
    if ((!o.image1Path.empty() || !o.image2Path.empty()) && o.plotPath.empty() && o.reportPath.empty())
        throw Failure(fmt::format("{}: no effect without --plot or --report", o.image1Path.empty() ? "--image2" : "--image1"));
    if (o.plotPath == "-")
        throw Failure("--plot: got \"-\", expected a file");
    if (o.input.isFollowed && !(o.plotPath.empty() && o.reportPath.empty()))
        throw Failure(fmt::format("{}: no effect with --follow, which never comes to an end", o.plotPath.empty() ? "--report" : "--plot"));
    refuseWrongOutputs({{"--output", o.outputPath}, {"--inliers", o.inliersPath}, {"--plot", o.plotPath}, {"--report", o.reportPath}},
                       {{"MATCHES", o.input.path}, {"--image1", o.image1Path}, {"--image2", o.image2Path}});
}

/// Reads the images and says when the points of a scene do not lie on them.
void addImages(PlotScene& scene, const std::shared_ptr<const Picture>& image1, const std::shared_ptr<const Picture>& image2,
               Warnings& warnings)
{
    scene.image1 = image1;
    scene.image2 = image2;
    int setIdx = 0;
    for (const auto& image : {image1, image2}) {
        const std::string text = image ? pictureWarning(*image, scene.pairs, setIdx) : "";
        if (!text.empty())
            warnings.print(image->name, text);
        ++setIdx;
    }
}

std::shared_ptr<const Picture> imageOf(const std::string& path)
{
    return path.empty() ? nullptr : std::make_shared<const Picture>(readPng(path));
}

std::string whereOf(const StepLabel& label, const MatchReader& reader)
{
    return reader.hasFrames() ? fmt::format("{}: step {}", reader.name(), label.step) : reader.name();
}

/// What a run writes to.
struct Outputs {
    Outputs(const EstimateOptions& o, const std::string& header) : results(o.outputPath, unfinishedOf(o))
    {
        if (!o.inliersPath.empty())
            inliers.emplace(o.inliersPath, header, unfinishedOf(o));
        if (!o.plotPath.empty())
            plot.emplace(o.plotPath);
        if (!o.reportPath.empty())
            report.emplace(o.reportPath);
    }

    /// Hands on the results of a step; the rows of inliers only to those who follow them.
    void flush(bool areInliersFollowed)
    {
        results.flush();
        if (inliers && areInliersFollowed)
            inliers->flush();
    }
    void commitResults()
    {
        results.commit();
        if (inliers)
            inliers->commit();
    }
    void show(const Report& shown, const BlockSetup& setup, PlotFormat plotFormat)
    {
        if (plot)
            plot->write(renderPlot(shown.scene, shown.inputName, setup.typeText(), plotFormat));
        if (report)
            report->write(renderReport(shown, setup));
        for (std::optional<OutputFile>* const file : {&plot, &report})
            if (*file)
                (*file)->commit();
    }

    OutputFile results;
    std::optional<InlierWriter> inliers;
    std::optional<OutputFile> plot, report;

private:
    static Unfinished unfinishedOf(const EstimateOptions& o) { return o.input.isFollowed ? Unfinished::InPlace : Unfinished::Keep; }
};

/// Says what the block and the diagnosis have against a step.
void warnOf(Warnings& warnings, const std::string& where, const StepResult& result, const BlockSetup& setup,
            const std::string& reasonNotFound, const std::optional<Diagnosis>& diagnosis)
{
    for (const Message& warning : result.warnings)
        warnings.print(where, fmt::format("{}: {}{}", warning.id, warning.text,
                                          warning.count > 1 ? fmt::format(" ({} times)", warning.count) : ""));
    if (!result.isFound() && !result.error)
        warnings.print(where, fmt::format("no {} transformation found: {}", setup.typeText(), reasonNotFound));
    if (diagnosis && result.isFound())
        for (const DiagnosisNote& note : diagnosis->warnings)
            warnings.print(where, fmt::format("not to be trusted: {}: {}", note.title, note.text));
}

}  // namespace

void addEstimateOptions(CLI::App& command, EstimateOptions& o)
{
    addInputOptions(command, o.input);
    command.add_flag("--follow", o.input.isFollowed,
                     "wait for more lines at the end of the file until interrupted; a step is complete when the next one "
                     "begins")
        ->group("Input");
    addBlockOptions(command, o.block);
    const char* const OUTPUT = "Output";
    command.add_option("--format", o.format,
                       "text; json: one object a step on one line; csv: one row a step (default text)")
        ->check(oneOf({"text", "json", "csv"}))->type_name("FORMAT")->group(OUTPUT);
    command.add_option("-o,--output", o.outputPath, "file of the results (default: standard output)")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--inliers", o.inliersPath, "CSV file of the input rows with a last column inlier (0 or 1)")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--plot", o.plotPath, "picture of the matches; the name ends in .svg, .png or .pdf")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--report", o.reportPath, "HTML page with settings, result, warnings and picture")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--plot-step", o.plotStep, "step that is drawn or reported, from 0 (default: the first with a result)")
        ->check(wholeBetween(0, std::numeric_limits<std::int64_t>::max()))->type_name("K")->group(OUTPUT);
    command.add_option("--image1", o.image1Path, "PNG image that the first points lie on, in pixels, for --plot and --report")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--image2", o.image2Path, "the same for the second points")->type_name("FILE")->group(OUTPUT);
    command.add_flag("--diagnose", o.isDiagnosed,
                     "say whether the result is to be trusted, and why not; json and csv get one more key or column (default "
                     "with text)")->group(OUTPUT);
    command.add_flag("--no-diagnose", o.isNotDiagnosed, "do not")->group(OUTPUT);
    command.add_flag("-q,--quiet", o.isQuiet, "no warnings on standard error; json and csv still name them")->group(OUTPUT);
}

ExitCode runEstimate(const EstimateOptions& o)
{
    const BlockSetup setup = resolveBlockOptions(o.block);
    refuseWrongOptions(o, setup);
    const PlotFormat plotFormat = o.plotPath.empty() ? PlotFormat::Svg : plotFormatOf(o.plotPath);
    const std::shared_ptr<const Picture> image1 = imageOf(o.image1Path), image2 = imageOf(o.image2Path);

    ReaderOptions readerOptions;
    readerOptions.pointsType = setup.pointsType;
    readerOptions.columns = o.input.columns;
    readerOptions.keepRows = !o.inliersPath.empty();
    FrameSource source(o.input, readerOptions, setup.sampleSize(), setup.typeText());
    const MatchReader& reader = source.reader();
    if (o.plotStep && !source.isStreamed() && *o.plotStep >= source.stepNum())
        throw Failure(fmt::format("--plot-step: got {}, expected a step from 0 to {}", *o.plotStep, source.stepNum() - 1));

    Estimator estimator = openEstimator(setup, source);
    const Layout layout = estimator.layout();
    Outputs outputs(o, reader.header());
    const bool isDiagnosisWritten = o.isDiagnosed || formatOf(o.format) == Format::Text;
    const bool isDiagnosed = !o.isNotDiagnosed && (isDiagnosisWritten || outputs.report);
    ResultWriter writer(formatOf(o.format), {reader.name(), setup.typeText(), layout, reader.hasFrames()}, outputs.results);
    Warnings warnings(o.isQuiet);
    ShownStep shownStep(o.plotStep);
    const bool isOnTerminal = o.outputPath == "-" && ::isatty(STDOUT_FILENO) == 1;   // the results show how far it is
    Progress progress("steps", source.stepNum(), o.isQuiet || isOnTerminal);
    std::int64_t foundNum = 0;
    StepLabel label;
    for (; const MatchFrame* const frame = source.next(); ++label.step) {
        label.frame = frame->number;
        const StepResult& result = runStep(estimator, setup, *frame);
        const std::string reason = result.isFound() || result.error ? "" : reasonNotFound(frame->pairs, setup);
        std::optional<Diagnosis> diagnosis;
        if (isDiagnosed)
            diagnosis = diagnose(frame->pairs, result, layout, setup, reason);
        const InterruptionHold hold;                     // a step is written to all its outputs or to none
        writer.write(label, result, diagnosis && isDiagnosisWritten ? &*diagnosis : nullptr);
        if (outputs.inliers)
            outputs.inliers->write(*frame, result);
        if (source.isStreamed())
            outputs.flush(o.input.isFollowed);
        if (outputs.plot || outputs.report)
            shownStep.offer(label, *frame, result, layout, setup, diagnosis ? notesOf(*diagnosis) : std::vector<DiagnosisNote>());
        if (!result.warnings.empty() || !result.isFound() || (diagnosis && !diagnosis->isTrusted()))
            progress.hide();
        warnOf(warnings, whereOf(label, reader), result, setup, reason, diagnosis);
        foundNum += result.isFound() ? 1 : 0;
        progress.show(label.step + 1);
    }
    progress.hide();
    if (source.nonFiniteNum() > 0)
        warnings.print(reader.name(), fmt::format("{} of {} have a coordinate that is not finite{}", source.nonFiniteNum(),
                                                  counted(source.pairNum(), "pair"),
                                                  setup.isRobust ? "; they are never inliers" : ""));
    outputs.commitResults();                             // a picture that fails takes no results with it
    if (outputs.plot || outputs.report) {
        Report& report = shownStep.report(label.step);
        addImages(report.scene, image1, image2, warnings);
        report.inputName = reader.name();
        report.foundNum = foundNum;
        report.warnings = warnings.kept();
        outputs.show(report, setup, plotFormat);
    }
    return foundNum > 0 ? ExitCode::Done : ExitCode::NothingFound;
}

}  // namespace esttform::app

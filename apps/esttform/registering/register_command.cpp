#include "registering/register_command.h"

#include "diagnosis/not_found.h"
#include "estimate/block_run.h"
#include "estimate/result_writer.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_file.h"
#include "output/output_paths.h"
#include "plot/plot_scene.h"
#include "registering/register_pictures.h"
#include "report/report.h"

#include <fmt/format.h>

#include <optional>

namespace esttform::app {

namespace {

void refuseWrongOptions(const RegisterOptions& o, const BlockSetup& setup)
{
    if (setup.pointsType != DataType::Double && setup.pointsType != DataType::Single)
        throw Failure(fmt::format("--points-type: got {}, expected double or single: features lie between pixels",
                                  typeName(setup.pointsType)));
    refuseWrongOutputs({{"--output", o.outputPath}, {"--matches", o.matchesPath}, {"--plot", o.plotPath},
                       {"--report", o.reportPath}, {"--warped", o.warpedPath}, {"--blended", o.blendedPath}},
                       {{"IMAGE1", o.image1Path}, {"IMAGE2", o.image2Path}});
    for (const auto& [option, path] : {std::pair{"--warped", o.warpedPath}, std::pair{"--blended", o.blendedPath}})
        if (!path.empty())
            checkPictureName(option, path);
}

/// The files that were asked for, each complete or not there at all.
struct Files {
    std::optional<OutputFile> matches, plot, report, warped, blended;

    explicit Files(const RegisterOptions& o)
    {
        for (const auto& [file, path] : {std::pair{&matches, &o.matchesPath}, {&plot, &o.plotPath}, {&report, &o.reportPath},
                                         {&warped, &o.warpedPath}, {&blended, &o.blendedPath}})
            if (!path->empty())
                file->emplace(*path);
    }

    void commit()
    {
        for (std::optional<OutputFile>* const file : {&matches, &plot, &report, &warped, &blended})
            if (*file)
                (*file)->commit();
    }
};

void writeMatches(OutputFile& file, const std::vector<Pair>& pairs)
{
    file.write("x1,y1,x2,y2\n");
    for (const Pair& p : pairs)
        file.write(fmt::format("{},{},{},{}\n", exactText(p[0]), exactText(p[1]), exactText(p[2]), exactText(p[3])));
}

void warn(Warnings& warnings, const std::string& name, const StepResult& result, const Diagnosis& diagnosis)
{
    for (const Message& warning : result.warnings)
        warnings.print(name, fmt::format("{}: {}", warning.id, warning.text));
    for (const DiagnosisNote& note : diagnosis.warnings)
        warnings.print(name, fmt::format("{}{}: {}", result.isFound() ? "not to be trusted: " : "", note.title, note.text));
}

/// Writes what shows the second picture as the first one sees it.
void writeWarped(Files& files, const RegisterOptions& o, Vision& vision, const Picture& image1, const Picture& image2,
                 const PointMap& map)
{
    if (!files.warped && !files.blended)
        return;
    const Picture warped = vision.warped(image2, map, image1.width, image1.height);
    if (files.warped)
        files.warped->write(vision.encoded(warped, extensionOf(o.warpedPath)));
    if (files.blended)
        files.blended->write(vision.encoded(blended(image1, warped, image2, map), extensionOf(o.blendedPath)));
}

}  // namespace

void addRegisterOptions(CLI::App& command, RegisterOptions& o)
{
    const char* const INPUT = "Pictures";
    command.add_option("IMAGE1", o.image1Path, "first picture: PNG, JPEG, TIFF and others")->required()->group(INPUT);
    command.add_option("IMAGE2", o.image2Path, "second picture; the result maps points of the first onto it")
        ->required()->group(INPUT);
    command.add_option("--max-features", o.features.featureMaxNum,
                       fmt::format("features of a picture, the strongest are taken (default {})", o.features.featureMaxNum))
        ->check(wholeBetween(1, 100'000))->type_name("N")->group(INPUT);
    command.add_option("--ratio", o.features.ratioMax,
                       fmt::format("a match is kept if it is nearer than this times the second best (default {})",
                                   o.features.ratioMax))
        ->check(realWithin({0.0, 1.0, ""}))->type_name("R")->group(INPUT);
    addBlockOptions(command, o.block);
    const char* const OUTPUT = "Output";
    command.add_option("--format", o.format, "text, json or csv, as 'estimate' writes them (default text)")
        ->check(oneOf({"text", "json", "csv"}))->type_name("FORMAT")->group(OUTPUT);
    command.add_option("-o,--output", o.outputPath, "file of the result (default: standard output)")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--matches", o.matchesPath, "CSV file of the matches, for 'estimate'")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--plot", o.plotPath, "both pictures with the matches; the name ends in .svg, .png or .pdf")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--report", o.reportPath, "HTML page with settings, result, warnings and picture")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--warped", o.warpedPath, "the second picture as the first one sees it; .png or .jpg")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--blended", o.blendedPath, "that and the first picture, half and half; .png or .jpg")
        ->type_name("FILE")->group(OUTPUT);
    command.add_flag("-q,--quiet", o.isQuiet, "no warnings on standard error; json and csv still name them")->group(OUTPUT);
}

ExitCode runRegister(const RegisterOptions& o)
{
    const BlockSetup setup = resolveBlockOptions(o.block);
    refuseWrongOptions(o, setup);
    const PlotFormat plotFormat = o.plotPath.empty() ? PlotFormat::Svg : plotFormatOf(o.plotPath);
    Vision& vision = loadVision();
    const auto image1 = pictureFrom(vision, o.image1Path), image2 = pictureFrom(vision, o.image2Path);
    if (!o.warpedPath.empty() || !o.blendedPath.empty())
        checkWarpable({image1.get(), image2.get()});
    OutputFile output(o.outputPath);
    Files files(o);

    const FeatureMatches matches = matchesOf(vision, *image1, *image2, o.features);
    MatchFrame frame;
    frame.pairs = matches.pairs;
    const std::string name = fmt::format("{}, {}", o.image1Path, o.image2Path);
    const std::string counts = fmt::format("{} in the first picture, {} in the second, {}", counted(matches.featureNum1, "feature"),
                                           matches.featureNum2, countedMatches(frame.pairs.size()));
    const auto neededNum = static_cast<std::size_t>(setup.sampleSize());
    if (frame.pairs.size() < neededNum)
        throw Failure(fmt::format("{}: {}; the transformation needs at least {}: the pictures may be blank, blurred or of "
                                  "different things", name, counts, countedMatches(neededNum)),
                      ExitCode::NothingFound);

    Estimator estimator(setup.params, setup.pointsType, static_cast<std::int32_t>(frame.pairs.size()), setup.options);
    const StepResult& result = runStep(estimator, setup, frame);
    const Layout layout = estimator.layout();
    if (o.format == "text")
        output.write(counts + "\n");
    const Diagnosis diagnosis = diagnose(frame.pairs, result, layout, setup,
                                         result.isFound() || result.error ? "" : reasonNotFound(frame.pairs, setup));
    ResultWriter(formatOf(o.format), {name, setup.typeText(), layout, false}, output).write({}, result,
                                                                                            o.format == "text" ? &diagnosis : nullptr);
    Warnings warnings(o.isQuiet);
    warn(warnings, name, result, diagnosis);

    if (files.matches)
        writeMatches(*files.matches, frame.pairs);
    Report report;
    report.inputName = name;
    report.scene = sceneOf({}, frame.pairs, result, layout, setup);
    report.scene.image1 = image1;
    report.scene.image2 = image2;
    report.result = shownResultOf(result, layout);
    report.diagnosis = notesOf(diagnosis);
    report.warnings = warnings.kept();
    if (files.plot)
        files.plot->write(renderPlot(report.scene, "", setup.typeText(), plotFormat));
    if (files.report)
        files.report->write(renderReport(report, setup));
    if (report.scene.map) {
        writeWarped(files, o, vision, *image1, *image2, *report.scene.map);
    } else {
        files.warped.reset();
        files.blended.reset();
    }
    output.commit();
    files.commit();
    return result.isFound() ? ExitCode::Done : ExitCode::NothingFound;
}

}  // namespace esttform::app

#include "stabilise/stabilise_command.h"

#include "diagnosis/diagnosis.h"
#include "diagnosis/not_found.h"
#include "estimate/block_run.h"
#include "geometry/point_map.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_file.h"
#include "output/output_paths.h"
#include "output/progress.h"
#include "output/warnings.h"
#include "stabilise/plot_trajectory.h"
#include "stabilise/trajectory_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <memory>

namespace esttform::app {

namespace {

/// Of fewer inliers the motion may be right and still some pixels off, which adds up along the path.
constexpr std::int32_t MIN_INLIER_NUM = 10;
/// A longer gap between two frame numbers is taken for a mistake.
constexpr std::int64_t GAP_MAX = 100'000;

/// The transformation of every frame number from the first to the last.
struct Sequence {
    std::int64_t firstFrame = 0;
    std::vector<std::optional<PointMap>> maps;
    std::string name;                    ///< of the input, for messages
    double left = std::numeric_limits<double>::infinity(), top = left, right = -left, bottom = -left;   ///< of first points

    std::int64_t nextFrame() const { return firstFrame + static_cast<std::int64_t>(maps.size()); }
    void addPoints(const MatchFrame& frame)
    {
        for (const Pair& pair : frame.pairs) {
            if (!isFinite(pair))
                continue;
            left = std::min(left, pair[0]);
            right = std::max(right, pair[0]);
            top = std::min(top, pair[1]);
            bottom = std::max(bottom, pair[1]);
        }
    }
    std::complex<double> middle() const
    {
        return left <= right ? std::complex<double>(0.5 * (left + right), 0.5 * (top + bottom)) : 0.0;
    }
};

std::complex<double> centreOf(const StabiliseOptions& o, const Sequence& sequence)
{
    if (!o.centre)
        return sequence.middle();
    const auto centre = parseTwoReals(*o.centre, ',');
    if (!centre || !std::isfinite((*centre)[0]) || !std::isfinite((*centre)[1]))
        throw Failure(fmt::format("--centre: got {}, expected x and y, for example 320,240", inQuotes(*o.centre)));
    return {(*centre)[0], (*centre)[1]};
}

/// Makes room for the frames that the input leaves out.
void skipTo(Sequence& sequence, std::int64_t frame, const std::string& name, Warnings& warnings)
{
    if (sequence.maps.empty())
        sequence.firstFrame = frame;
    const std::int64_t next = sequence.nextFrame();
    if (frame < next || frame - next > GAP_MAX)
        throw Failure(fmt::format("{}: frame {} after frame {}, expected ascending numbers, one a picture", name, frame, next - 1));
    if (frame == next)
        return;
    warnings.print(name, frame - next == 1 ? fmt::format("frame {}: no rows; bridged", next)
                                           : fmt::format("frames {} to {}: no rows; bridged", next, frame - 1));
    sequence.maps.resize(sequence.maps.size() + static_cast<std::size_t>(frame - next));
}

/// Why a step's result is not used; empty if it is.
std::string refusalOf(const StepResult& result, const MatchFrame& frame, Layout layout, const BlockSetup& setup,
                      std::int32_t minInlierNum)
{
    if (result.error)
        return fmt::format("{}: {}", result.error->id, result.error->text);
    if (!result.isFound())
        return fmt::format("no {} transformation found: {}", setup.typeText(), reasonNotFound(frame.pairs, setup));
    if (result.inliers != nullptr && result.inlierNum < minInlierNum)
        return fmt::format("{}, expected at least {} (--min-inliers)", counted(result.inlierNum, "inlier"), minInlierNum);
    const Diagnosis diagnosis = diagnose(frame.pairs, result, layout, setup, "");
    return diagnosis.isTrusted() ? "" : fmt::format("not to be trusted: {}", diagnosis.warnings.front().title);
}

Sequence readSequence(const StabiliseOptions& o, const BlockSetup& setup, Warnings& warnings)
{
    ReaderOptions readerOptions;
    readerOptions.pointsType = setup.pointsType;
    readerOptions.columns = o.input.columns;
    FrameSource source(o.input, readerOptions, setup.sampleSize(), setup.typeText());
    const std::string& name = source.reader().name();
    if (!source.reader().hasFrames())
        throw Failure(fmt::format("{}: no column frame, expected the number of the first picture of each row's two", name));
    Estimator estimator = openEstimator(setup, source);
    Sequence sequence;
    sequence.name = name;
    std::int64_t doneNum = 0;
    Progress progress("frames", source.stepNum(), o.isQuiet);
    while (const MatchFrame* const frame = source.next()) {
        skipTo(sequence, *frame->number, name, warnings);
        const StepResult& result = runStep(estimator, setup, *frame);
        const std::string refusal = refusalOf(result, *frame, estimator.layout(), setup,
                                              o.minInlierNum.value_or(MIN_INLIER_NUM));
        if (!refusal.empty()) {
            progress.hide();
            warnings.print(name, fmt::format("frame {}: {}; bridged", *frame->number, refusal));
        }
        sequence.maps.push_back(refusal.empty() ? std::optional(mapOf(result, estimator.layout())) : std::nullopt);
        sequence.addPoints(*frame);
        progress.show(++doneNum);
    }
    return sequence;
}

StabilisedPath stabilisedOf(const StabiliseOptions& o, const Sequence& sequence, Warnings& warnings)
{
    StabilisedPath s;
    s.firstFrame = sequence.firstFrame;
    s.centre = centreOf(o, sequence);
    std::vector<std::optional<Motion>> motions;
    for (const auto& map : sequence.maps) {
        motions.push_back(map ? motionOf(*map, s.centre) : std::nullopt);
        s.isFound.push_back(motions.back().has_value());
        if (map && !motions.back())
            warnings.print(sequence.name, fmt::format("frame {}: the transformation mirrors the picture or is not finite at its "
                                                      "centre; bridged", s.firstFrame + static_cast<std::int64_t>(motions.size()) - 1));
    }
    s.path = chained(bridged(motions));
    s.smooth = smoothed(s.path, o.smoothing == "average" ? Smoothing::Average : Smoothing::Gaussian, o.radius);
    return s;
}

}  // namespace

void addStabiliseOptions(CLI::App& command, StabiliseOptions& o)
{
    o.block.type = "similarity";
    addInputOptions(command, o.input);
    addBlockOptions(command, o.block);
    command.get_option("MATCHES")->description(
        "CSV or TSV file of matched pairs with columns frame,x1,y1,x2,y2, '-' for standard input: rows of frame k match picture "
        "k (x1,y1) with picture k + 1 (x2,y2); a number that is skipped is a picture whose motion is bridged");
    command.get_option("--type")->description("similarity, affine or projective; of the last two the similarity nearest at the "
                                              "centre is used (default similarity)");
    const char* const PATH = "Path";
    command.add_option("--smooth", o.smoothing, "gaussian or average: weights of neighbouring pictures (default gaussian)")
        ->check(oneOf({"gaussian", "average"}))->type_name("METHOD")->group(PATH);
    command.add_option("--radius", o.radius, "most pictures to either side that count, 0 for no smoothing; three standard "
                                             "deviations of gaussian (default 30)")
        ->check(wholeBetween(0, 100'000))->type_name("PICTURES")->group(PATH);
    command.add_option("--min-inliers", o.minInlierNum, "least number of inliers of a motion that is used (default 10)")
        ->check(wholeBetween(0, std::numeric_limits<std::int32_t>::max()))->type_name("N")->group(PATH);
    command.add_option("--centre", o.centre, "point whose path is x and y, in pixels (default: the middle of all first points)")
        ->type_name("X,Y")->group(PATH);
    const char* const OUTPUT = "Output";
    command.add_option("-o,--output", o.outputPath, "CSV file of the trajectory, one row a picture (default: standard output)")
        ->type_name("FILE")->group(OUTPUT);
    command.add_option("--plot", o.plotPath, "picture of x, y, angle and scale; the name ends in .svg, .png or .pdf")
        ->type_name("FILE")->group(OUTPUT);
    command.add_flag("-q,--quiet", o.isQuiet, "no warnings on standard error")->group(OUTPUT);
}

ExitCode runStabilise(const StabiliseOptions& o)
{
    const BlockSetup setup = resolveBlockOptions(o.block);
    const PlotFormat plotFormat = o.plotPath.empty() ? PlotFormat::Svg : plotFormatOf(o.plotPath);
    refuseWrongOutputs({{"--output", o.outputPath}, {"--plot", o.plotPath}}, {{"MATCHES", o.input.path}});
    if (o.minInlierNum && !setup.hasInlierOutput)
        throw Failure("--min-inliers: the block has no inlier output with these settings; leave out --no-robust and "
                      "--no-inlier-output");
    OutputFile output(o.outputPath);
    const auto plotFile = o.plotPath.empty() ? nullptr : std::make_unique<OutputFile>(o.plotPath);
    Warnings warnings(o.isQuiet);
    if (o.centre)
        centreOf(o, {});                                 // a wrong one is refused before the work
    const Sequence sequence = readSequence(o, setup, warnings);
    const StabilisedPath stabilised = stabilisedOf(o, sequence, warnings);
    output.write(trajectoryCsv(stabilised));
    if (plotFile)
        plotFile->write(renderTrajectory(stabilised, sequence.name, plotFormat));
    output.commit();
    if (plotFile)
        plotFile->commit();
    const bool isAnyFound = std::find(stabilised.isFound.begin(), stabilised.isFound.end(), true) != stabilised.isFound.end();
    return isAnyFound ? ExitCode::Done : ExitCode::NothingFound;
}

}  // namespace esttform::app

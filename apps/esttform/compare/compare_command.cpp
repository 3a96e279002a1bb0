#include "compare/compare_command.h"

#include "compare/compare_writer.h"
#include "geometry/residuals.h"
#include "matches/frame_source.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_file.h"
#include "output/output_paths.h"

#include <fmt/format.h>

#include <limits>

namespace esttform::app {

namespace {

/// Farthest that a right match may lie from the truth, unless said otherwise: what detectors of features miss by.
constexpr double RIGHT_PX = 3.0;

/// Two numbers of an option's text.
std::array<double, 2> numbersOf(const std::string& text, char separator, const char* option, const char* expected)
{
    const auto numbers = parseTwoReals(text, separator);
    if (!numbers)
        throw Failure(fmt::format("{}: got {}, expected {}", option, inQuotes(text), expected));
    return *numbers;
}

std::array<int, 2> sizeOf(const CompareOptions& o, const ReadResult& a, const ReadResult& b)
{
    if (o.size) {
        const auto size = numbersOf(*o.size, 'x', "--size", "width and height in pixels, for example 640x480");
        for (const double length : size)
            if (!(length >= 1.0 && length <= 1e6) || length != static_cast<int>(length))
                throw Failure(fmt::format("--size: got {}, expected two whole numbers from 1 to 1000000", inQuotes(*o.size)));
        return {static_cast<int>(size[0]), static_cast<int>(size[1])};
    }
    if (!a.size && !b.size)
        throw Failure("--size: missing, expected width and height of the first picture (640x480): neither file names it");
    return a.size ? *a.size : *b.size;
}

/// Gives the truth a mask: the pairs that are right by it.
void addRightPairs(ReadResult& truth, const CompareOptions& o)
{
    ReaderOptions readerOptions;
    readerOptions.columns = o.columns;
    MatchReader reader(o.matchesPath, readerOptions);
    MatchFrame frame;
    for (std::int64_t stepIdx = 0; reader.next(frame); ++stepIdx) {
        const bool isByFrame = frame.number && truth.steps.front().frame;
        const auto idx = static_cast<std::size_t>(isByFrame ? *frame.number : stepIdx);   // steps of a truth count from 0
        if (idx >= truth.steps.size() || !truth.steps[idx].map || !truth.steps[idx].inliers.empty())
            continue;
        for (const Residual& residual : residualsOf(frame.pairs, *truth.steps[idx].map))
            truth.steps[idx].inliers.push_back(residual.distance <= o.rightPx.value_or(RIGHT_PX) ? 1 : 0);
    }
}

}  // namespace

void addCompareOptions(CLI::App& command, CompareOptions& o)
{
    const char* const INPUT = "Input";
    const char* const RESULT = "a result: what 'estimate' or 'batch' wrote with --format json, '-' for standard input; or a truth: a JSON "
                               "object with matrix (3-by-3, maps first points to second ones) or matrices (one a frame)";
    command.add_option("A", o.aPath, RESULT)->required()->group(INPUT);
    command.add_option("B", o.bPath, "the same; steps are matched by file where both are of 'batch', by frame where both have frames, else by "
                                       "step")
        ->required()->group(INPUT);
    command.add_option("--size", o.size, "width and height of the first picture in pixels (default: of the truth)")
        ->type_name("WxH")->group(INPUT);
    command.add_option("--origin", o.origin, "coordinates of the centre of its top-left pixel (default 0,0)")
        ->type_name("X,Y")->group(INPUT);
    for (auto& [name, layout] : {std::pair<const char*, std::string*>{"--layout-a", &o.layoutA}, {"--layout-b", &o.layoutB}})
        command.add_option(name, *layout, "layout that the result was estimated with: columns or rows (default columns); "
                                          "needed for projective ones in rows")
            ->check(oneOf({"columns", "rows"}))->type_name("LAYOUT")->group(INPUT);
    command.add_option("--matches", o.matchesPath, "the matches, to compare the inliers with the pairs that are right by the truth")
        ->type_name("FILE")->group(INPUT);
    addColumnsOption(command, o.columns, INPUT);
    command.add_option("--right-px", o.rightPx, "farthest that a right pair lies from the truth, in pixels (default 3)")
        ->check(realWithin({0.0, std::numeric_limits<double>::infinity(), "pixels"}))->type_name("PX")->group(INPUT);
    const char* const OUTPUT = "Output";
    command.add_option("--tolerance", o.tolerance,
                       "exit with 1 if the corner distance of a step (mean of the four corners) is larger, in pixels, or if only "
                       "one of the results has it")
        ->check(realWithin({0.0, std::numeric_limits<double>::infinity(), "pixels"}))->type_name("PX")->group(OUTPUT);
    command.add_flag("--ignore-missing", o.isMissingIgnored, "steps with a transformation in one result only do not exceed "
                                                             "the tolerance")->group(OUTPUT);
    command.add_option("--format", o.format, "text or json (default text)")
        ->check(oneOf({"text", "json"}))->type_name("FORMAT")->group(OUTPUT);
    command.add_option("-o,--output", o.outputPath, "file of the comparison (default: standard output)")
        ->type_name("FILE")->group(OUTPUT);
}

ExitCode runCompare(const CompareOptions& o)
{
    if (o.aPath == "-" && o.bPath == "-")
        throw Failure("A and B: both are standard input, expected a file for one of them");
    if (o.isMissingIgnored && !o.tolerance)
        throw Failure("--ignore-missing: no effect without --tolerance");
    if (o.rightPx && o.matchesPath.empty())
        throw Failure("--right-px: no effect without --matches");
    refuseWrongOutputs({{"--output", o.outputPath}}, {{"A", o.aPath}, {"B", o.bPath}, {"--matches", o.matchesPath}});
    if (!o.columns.empty() && o.matchesPath.empty())
        throw Failure("--columns: no effect without --matches");
    ReadResult a = readResult(o.aPath, o.layoutA == "rows"), b = readResult(o.bPath, o.layoutB == "rows");
    if (!o.matchesPath.empty()) {
        if (a.isTruth == b.isTruth)
            throw Failure("--matches: no effect unless one of A and B is a truth");
        addRightPairs(a.isTruth ? a : b, o);
    }
    const std::array<int, 2> size = sizeOf(o, a, b);
    const auto origin = o.origin ? numbersOf(*o.origin, ',', "--origin", "x and y, for example 0.5,0.5")
                                 : std::array<double, 2>{0.0, 0.0};
    const auto steps = compareResults(a, b, {origin[0], origin[1], origin[0] + size[0] - 1, origin[1] + size[1] - 1});
    const ComparisonSummary summary = summaryOf(steps, o.tolerance, o.isMissingIgnored);
    OutputFile output(o.outputPath);
    output.write((o.format == "json" ? comparisonJson : comparisonText)(steps, summary, {a.name, b.name, size}));
    output.commit();
    return summary.differingNum > 0 ? ExitCode::Differs : ExitCode::Done;
}

}  // namespace esttform::app

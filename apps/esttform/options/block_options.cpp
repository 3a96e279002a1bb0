#include "options/block_options.h"

#include "matches/points.h"
#include "options/option_checks.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace esttform::app {

void addBlockOptions(CLI::App& command, BlockOptions& o)
{
    const Settings defaults;
    const auto typeWords = typeNames();

    const char* const WHAT = "What is estimated";
    command.add_option("--type", o.type, "similarity, affine or projective (default projective)")
        ->check(oneOf(TYPE_WORDS))->type_name("TYPE")->group(WHAT);
    command.add_option("--points-type", o.pointsType,
                       "element type of the points: double, single, int8 to uint32 (default double)")
        ->check(oneOf(typeWords))->type_name("TYPE")->group(WHAT);
    command.add_option("--tform-type", o.tformType,
                       "element type of the result for integer points: double or single (default double); "
                       "double and single points give their own")
        ->check(oneOf(TFORM_TYPE_WORDS))->type_name("TYPE")->group(WHAT);
    command.add_option("--layout", o.layout,
                       "columns: TForm maps columns (x,y,1)'; rows: TForm is transposed and maps rows (default columns)")
        ->check(oneOf(LAYOUT_WORDS))->type_name("LAYOUT")->group(WHAT);
    command.add_flag("--no-inlier-output", o.isNoInlierOutput, "leave out the block's inlier mask")->group(WHAT);

    const char* const ROBUST = "Robust estimation";
    command.add_flag("--no-robust", o.isNotRobust, "one least-squares fit to all pairs, wrong ones included")->group(ROBUST);
    command.add_option("--method", o.method,
                       "threshold: inliers lie within a distance; median: inliers are the better half (default threshold)")
        ->check(oneOf(METHOD_WORDS))->type_name("METHOD")->group(ROBUST);
    command.add_option("--threshold", o.threshold,
                       fmt::format("largest distance of an inlier, SQUARED: in squared point units (default {})",
                                   defaults.threshold))
        ->check(realWithin(SQUARED_UNITS))->type_name("T")->group(ROBUST);
    command.add_option("--threshold-px", o.thresholdPx,
                       fmt::format("the same, not squared: in point units, pixels as a rule (default {})",
                                   std::sqrt(defaults.threshold)))
        ->check(realWithin(POINT_UNITS))->type_name("T")->group(ROBUST);
    command.add_flag("--refine", o.isRefine, "refit on the inliers while that improves the score (default)")->group(ROBUST);
    command.add_flag("--no-refine", o.isNoRefine, "refit on the inliers once")->group(ROBUST);

    const char* const SAMPLING = "Random sampling";
    command.add_option("--samples", o.sampleNum,
                       fmt::format("fixed number of samplings (default with --method median: {})", MEDIAN_SAMPLE_NUM))
        ->check(wholeBetween(1, SAMPLE_NUM_MAX))->type_name("N")->group(SAMPLING);
    command.add_option("--max-samples", o.maxSampleNum,
                       fmt::format("most samplings; fewer when the confidence is reached (default {})", defaults.sampleNum))
        ->check(wholeBetween(1, SAMPLE_NUM_MAX))->type_name("N")->group(SAMPLING);
    command.add_option("--confidence", o.confidence,
                       fmt::format("confidence to have drawn one sample of right pairs only, in percent (default {})",
                                   *defaults.confidence))
        ->check(realWithin(PERCENT))->type_name("P")->group(SAMPLING);
    command.add_option("--stop-at-inliers", o.stopAtInliers,
                       "stop sampling once this many of the pairs are inliers, in percent (default: off)")
        ->check(realWithin(PERCENT))->type_name("P")->group(SAMPLING);
    command.add_option("--sampling", o.sampling, "random, or cyclic: steps through the pairs (default random)")
        ->check(oneOf(SAMPLING_WORDS))->type_name("KIND")->group(SAMPLING);
    command.add_option("--seed", o.seed,
                       "start of the random numbers; without it the block takes the processor time, so that two runs may "
                       "differ a little")
        ->check(wholeBetween(0, std::numeric_limits<std::uint32_t>::max()))->type_name("N")->group(SAMPLING);

    const char* const BLOCK = "Block";
    command.add_option("--param", o.params,
                       "raw dialog value, NAME=VALUE or INDEX=VALUE, over all other options; repeatable ('esttform "
                       "params' lists them)")
        ->type_name("KEY=VALUE")->allow_extra_args(false)->group(BLOCK);
    command.add_option("--block", o.blockPath, "path of the block's library (default: $ESTTFORM_BLOCK, else beside the program)")
        ->type_name("PATH")->group(BLOCK);
}

}  // namespace esttform::app

#include "estimate/trace_command.h"

#include "estimate/block_run.h"
#include "options/option_checks.h"
#include "output/output_file.h"
#include "output/output_paths.h"

#include <limits>

namespace esttform::app {

void addTraceOptions(CLI::App& command, TraceOptions& o)
{
    addInputOptions(command, o.input);
    addBlockOptions(command, o.block);
    const char* const OUTPUT = "Output";
    command.add_option("--steps", o.stepNum, "number of steps that are run (default 1)")
        ->check(wholeBetween(0, std::numeric_limits<std::int32_t>::max()))->type_name("N")->group(OUTPUT);
    command.add_option("-o,--output", o.outputPath, "file of the trace (default: standard output)")
        ->type_name("FILE")->group(OUTPUT);
}

ExitCode runTrace(const TraceOptions& o)
{
    const BlockSetup setup = resolveBlockOptions(o.block);
    ReaderOptions readerOptions;
    readerOptions.pointsType = setup.pointsType;
    readerOptions.columns = o.input.columns;
    FrameSource source(o.input, readerOptions, setup.sampleSize(), setup.typeText());

    refuseWrongOutputs({{"--output", o.outputPath}}, {{"MATCHES", o.input.path}});
    OutputFile output(o.outputPath);
    std::string lines;                                   // of calls: written between them, where a failure may be thrown
    const auto traceLine = [&lines](std::string_view line) { (lines += line) += '\n'; };
    const auto writeLines = [&output, &lines] {
        output.write(lines);
        lines.clear();
    };
    try {
        Estimator estimator = openEstimator(setup, source, traceLine);
        for (std::int64_t i = 0; i < o.stepNum; ++i) {
            writeLines();
            const MatchFrame* const frame = source.next();
            if (frame == nullptr)
                break;
            runStep(estimator, setup, *frame, traceLine);
        }
    } catch (const Error&) {
        writeLines();
        output.commit();
        throw;
    }
    writeLines();
    output.commit();
    return ExitCode::Done;
}

}  // namespace esttform::app

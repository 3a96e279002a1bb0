#include "batch/batch_command.h"

#include "batch/batch_entry.h"
#include "batch/batch_files.h"
#include "batch/batch_seed.h"
#include "batch/batch_results.h"
#include "batch/worker_pool.h"
#include "interruption.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_paths.h"
#include "output/progress.h"
#include "output/standard_error.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace esttform::app {

namespace {

constexpr int JOB_MAX_NUM = 1024;

Format formatOfOutput(const std::string& path)
{
    const std::string extension = std::filesystem::path(path).extension().string();
    if (extension == ".csv")
        return Format::Csv;
    if (path == "-" || extension == ".jsonl" || extension == ".json")
        return Format::Json;
    throw Failure(fmt::format("--output: got {}, expected a name that ends in .jsonl or .csv, or \"-\" for JSON lines on "
                              "standard output", inQuotes(path)));
}

/// Sees to it that a setting that no file can go with, or a missing block, ends the batch before it begins.
Layout checkedLayout(const BlockSetup& setup)
{
    Options options = setup.options;
    options.isVariableSize = true;
    return Estimator(setup.params, setup.pointsType, std::max(setup.sampleSize(), 1), options).layout();
}

int workerNumOf(const BatchOptions& o, std::int64_t taskNum)
{
    const std::int64_t wanted = o.jobNum > 0 ? o.jobNum : std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN));
    return static_cast<int>(std::min<std::int64_t>({wanted, taskNum, JOB_MAX_NUM}));
}

void printSummary(const BatchCounts& counts, std::int64_t fileNum, std::int64_t keptNum)
{
    std::string text = fmt::format("{}: {} with a transformation, {} without, {} bad", counted(counts.sum(), "file"),
                                   counts.foundNum, counts.notFoundNum, counts.badNum);
    if (keptNum > 0)
        text += fmt::format("; {} done before", keptNum);
    if (counts.sum() < fileNum)
        text += fmt::format("; {} left, --resume goes on", fileNum - counts.sum());
    writeToStandardError(fmt::format("esttform: {}\n", text));
}

}  // namespace

void addBatchOptions(CLI::App& command, BatchOptions& o)
{
    const char* const INPUT = "Input";
    command.add_option("FILES", o.inputs,
                       "CSV or TSV files of matched pairs as 'estimate' takes them, one step each; folders (their *.csv and "
                       "*.tsv); patterns such as 'pairs/*.csv', in quotes")
        ->required()->group(INPUT);
    command.add_option("--columns", o.columns,
                       "columns of x1,y1,x2,y2 and perhaps frame: names of the header or positions counted from 1")
        ->delimiter(',')->allow_extra_args(false)->type_name("LIST")->group(INPUT);
    addBlockOptions(command, o.block);
    command.get_option("--seed")->description("start of the random numbers; each file gets its own from it and from its place in "
                                              "the sorted list (default 0)");
    const char* const OUTPUT = "Output";
    command.add_option("-o,--output", o.outputPath,
                       "file of the results in the order of the files' names: .jsonl, one JSON object a line, or .csv; '-' "
                       "writes JSON lines to standard output")
        ->required()->type_name("FILE")->group(OUTPUT);
    command.add_option("-j,--jobs", o.jobNum, "processes that work at a time (default: one a processor); the results do not "
                                              "depend on it")
        ->check(wholeBetween(1, JOB_MAX_NUM))->type_name("N")->group(OUTPUT);
    command.add_flag("--diagnose", o.isDiagnosed, "say of every result whether it is to be trusted: one more key or column")
        ->group(OUTPUT);
    command.add_flag("--resume", o.isResume, "go on where an earlier run of the same command ended; its results stay")
        ->group(OUTPUT);
    command.add_flag("-q,--quiet", o.isQuiet, "no warnings, progress and summary on standard error; bad files are still named")
        ->group(OUTPUT);
    command.footer("Exit codes: 0 every file could be read and a transformation was found in one at least, 1 in none,\n"
                   "2 a file was bad (the others are done) or wrong usage, 130 interrupted: the results so far are kept.");
}

ExitCode runBatch(const BatchOptions& o)
{
    const BlockSetup setup = resolveBlockOptions(o.block);
    const Format format = formatOfOutput(o.outputPath);
    if (o.isResume && o.outputPath == "-")
        throw Failure("--resume: no effect with standard output; name a file with --output");
    const std::vector<std::string> files = batchFiles(o.inputs, FileIdentity(o.outputPath));
    const auto fileNum = static_cast<std::int64_t>(files.size());
    for (const std::string& file : files)
        if (format == Format::Csv && file.find('\n') != std::string::npos)
            throw Failure(fmt::format("{}: a name with a line break; write the results to a .jsonl file", inQuotes(file)));
    const std::uint32_t seed = o.block.seed.value_or(0);
    const BatchFormat lines(format, setup, checkedLayout(setup), o.isDiagnosed);

    const InterruptionHold hold;                         // its end ends the program
    BatchResults results(o.outputPath, lines, o.isResume, files, seed);
    BatchCounts counts = results.keptCounts();
    const std::int64_t keptNum = counts.sum();
    {
        BatchEstimator estimator(setup, lines, o.columns, o.isDiagnosed, o.isQuiet);
        WorkerPool pool(workerNumOf(o, fileNum - keptNum), [&](std::int64_t idx) {
            return packed(estimator.estimate(files[static_cast<std::size_t>(idx)], batchSeed(seed, idx)));
        });
        Progress progress("files", fileNum - keptNum, o.isQuiet);
        const auto take = [&](std::int64_t idx, const std::string& answer, const std::string& fault) {
            const std::string& file = files[static_cast<std::size_t>(idx)];
            const BatchEntry entry =
                answer.empty() ? BatchEntry{BatchOutcome::Bad, lines.badLine(file, batchSeed(seed, idx), file + ": " + fault),
                                            fmt::format("esttform: error: {}: {}\n", file, fault)}
                               : unpacked(answer);
            if (!entry.messages.empty()) {
                progress.hide();
                writeToStandardError(entry.messages);
            }
            results.append(entry.line);
            counts.add(entry.outcome);
        };
        pool.run(keptNum, fileNum, take, [&] {
            results.flush();
            progress.show(counts.sum() - keptNum);
        });
    }
    if (!o.isQuiet)
        printSummary(counts, fileNum, keptNum);
    return counts.badNum > 0 ? ExitCode::BadInput : counts.foundNum > 0 ? ExitCode::Done : ExitCode::NothingFound;
}

}  // namespace esttform::app

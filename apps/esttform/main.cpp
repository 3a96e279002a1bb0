// The program esttform: subcommands, messages and exit codes.

#include "batch/batch_command.h"
#include "check/check_command.h"
#include "codegen/codegen_command.h"
#include "compare/compare_command.h"
#include "estimate/estimate_command.h"
#include "estimate/trace_command.h"
#include "interruption.h"
#include "number_text.h"
#include "options/config_file.h"
#include "options/help_formatter.h"
#include "options/option_pages.h"
#include "options/params_command.h"
#include "output/output_file.h"
#include "output/progress.h"
#include "output/standard_error.h"
#include "registering/register_command.h"
#include "stabilise/stabilise_command.h"

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <new>
#include <sstream>

namespace {

using namespace esttform::app;

ExitCode codeOf(esttform::ErrorKind kind) noexcept
{
    switch (kind) {
    case esttform::ErrorKind::Usage: return ExitCode::BadInput;
    case esttform::ErrorKind::Load: return ExitCode::NoBlock;
    case esttform::ErrorKind::Internal: break;
    }
    return ExitCode::OurFault;
}

int fail(ExitCode code, const std::string& text)
{
    writeToStandardError("esttform: error: " + text + "\n");
    return static_cast<int>(code);
}

ExitCode printOut(const std::string& text)
{
    OutputFile output("-");
    output.write(text);
    output.commit();
    return ExitCode::Done;
}

/// The library's own message would only say that a command is missing.
void refuseUnknownCommand(const CLI::App& app, int argc, char** argv)
{
    if (argc < 2 || argv[1][0] == '-')
        return;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (command->check_name(argv[1]))
            return;
    throw Failure(fmt::format("no command {}; 'esttform --help' lists them", inQuotes(argv[1])));
}

ExitCode run(int argc, char** argv)
{
    CLI::App app("Estimates 2-D transformations robustly from matched points.", "esttform");
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_version_flag("--version", "esttform " ESTTFORM_VERSION);
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done, 1 no transformation found, a check failed or results differ,\n"
               "2 wrong usage or input, 3 block could not be loaded, 4 fault of the program,\n"
               "130 interrupted.");                     // of each command, too, that has none of its own
    addConfigOption(app);
    addPageOptions(app);

    EstimateOptions estimateOptions;
    CLI::App& estimate = *app.add_subcommand("estimate", "estimate the transformation from a file of matched points");
    addEstimateOptions(estimate, estimateOptions);
    BatchOptions batchOptions;
    CLI::App& batch = *app.add_subcommand("batch", "estimate one transformation from each of many files");
    addBatchOptions(batch, batchOptions);
    const CLI::App& params = *app.add_subcommand("params", "list the block's parameters");
    TraceOptions traceOptions;
    CLI::App& trace = *app.add_subcommand("trace", "show the calls between host and block");
    addTraceOptions(trace, traceOptions);
    CodegenOptions codegenOptions;
    CLI::App& codegen = *app.add_subcommand("codegen", "generate C code that estimates as the block does");
    addCodegenOptions(codegen, codegenOptions);
    RegisterOptions registerOptions;
    CLI::App& registering = *app.add_subcommand("register", "match two pictures and estimate the transformation between them");
    addRegisterOptions(registering, registerOptions);
    CheckOptions checkOptions;
    CLI::App& check = *app.add_subcommand("check", "examine a block as a strict host would");
    addCheckOptions(check, checkOptions);
    CompareOptions compareOptions;
    CLI::App& compare = *app.add_subcommand("compare", "compare two results, or a result with the known truth");
    addCompareOptions(compare, compareOptions);
    StabiliseOptions stabiliseOptions;
    CLI::App& stabilise = *app.add_subcommand("stabilise", "the path of a camera from a sequence of matches, smoothed");
    addStabiliseOptions(stabilise, stabiliseOptions);
    app.footer(app.get_footer() + "\n'esttform COMMAND --help' tells more.");

    refuseUnknownCommand(app, argc, argv);
    const std::string help = argc > 1 && argv[1][0] != '-'
                                 ? fmt::format("see esttform {} --help", argv[1]) : "see esttform --help";
    try {
        app.parse(argc, argv);
    } catch (const CLI::ExtrasError&) {
        throw Failure(fmt::format("not expected: {}; {}", fmt::join(app.remaining(true), " "), help));
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() != 0)
            throw Failure(fmt::format("{}; {}", e.what(), help));
        std::ostringstream text;
        app.exit(e, text, text);
        return printOut(text.str());
    }
    if (params.parsed())
        return printOut(paramsText());
    if (batch.parsed())
        return runBatch(batchOptions);
    if (codegen.parsed())
        return runCodegen(codegenOptions);
    if (registering.parsed())
        return runRegister(registerOptions);
    if (check.parsed())
        return runCheck(checkOptions);
    if (compare.parsed())
        return runCompare(compareOptions);
    if (stabilise.parsed())
        return runStabilise(stabiliseOptions);
    return trace.parsed() ? runTrace(traceOptions) : runEstimate(estimateOptions);
}

/// Opens what the starter has closed, so that no file of results takes its place and gets the messages, too. Reading from it or
/// writing to it fails as before.
void occupyStandardFiles() noexcept
{
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(file, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

}  // namespace

int main(int argc, char** argv)
{
    occupyStandardFiles();
    for (const int signal : {SIGPIPE, SIGXFSZ})          // a write then fails, and what is half-written is removed
        std::signal(signal, SIG_IGN);
    watchInterruption([]() noexcept {
        Progress::leave();
        OutputFile::finishAll();
    });
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const ClosedPipe& e) {
        return static_cast<int>(e.code());
    } catch (const Failure& e) {
        return fail(e.code(), e.what());
    } catch (const esttform::Error& e) {
        return fail(codeOf(e.kind()), e.what());
    } catch (const std::bad_alloc&) {
        return fail(ExitCode::OurFault, "out of memory");
    } catch (const std::exception& e) {
        return fail(ExitCode::OurFault, e.what());
    }
}

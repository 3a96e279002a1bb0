#include "check/check_command.h"

#include "check/case.h"
#include "check/checks.h"
#include "check/heap_meter.h"
#include "check/isolated.h"
#include "check/run_result.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_file.h"
#include "output/progress.h"

#include "blockhost/block_path.h"
#include "blockhost/signal_buffer.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <random>

namespace esttform::app {

namespace {

using check::Check;

/// Wider than the zones of ordinary runs: a write some elements past an end hits them too.
constexpr std::size_t GUARD_BYTE_NUM = 1024;
constexpr double TIMEOUT_MAX = 86400.0;

void print(const std::string& text)
{
    OutputFile output("-");
    output.write(text);
    output.commit();
}

std::vector<const Check*> chosenChecks(const std::vector<std::string>& names)
{
    std::vector<const Check*> chosen;
    for (const std::string& name : names) {
        const auto& all = check::allChecks();
        if (std::none_of(all.begin(), all.end(), [&](const Check& c) { return c.name == name; }))
            throw Failure(fmt::format("--only: got {}, expected names that --list shows", inQuotes(name)));
    }
    for (const Check& c : check::allChecks())
        if (names.empty() || std::find(names.begin(), names.end(), c.name) != names.end())
            chosen.push_back(&c);
    return chosen;
}

check::Outcome run(const Check& c, check::CheckInput input, double timeout)
{
    return check::runIsolated(
        [&](const check::Note& note) {
            blockhost::setGuardZones(GUARD_BYTE_NUM);
            input.note = note;
            note("loading");
            // Keeps the library loaded from one instance to the next, as in a host with many: what it keeps in between shows.
            const blockhost::Block loaded(check::openSetup(input.path, {}));
            const std::string text = c.run(input);
            check::expectNoLeak();
            return text;
        },
        timeout);
}

}  // namespace

void addCheckOptions(CLI::App& command, CheckOptions& o)
{
    command.add_option("PATH", o.path,
                       "library of the block (default: $ESTTFORM_BLOCK, else the block of this program)")->type_name("FILE");
    const char* const CHECKS = "Checks";
    command.add_flag("--list", o.isList, "list the checks instead of running them")->group(CHECKS);
    command.add_option("--only", o.only, "checks that are run, separated by commas (default: all)")
        ->delimiter(',')->type_name("NAME[,NAME]")->group(CHECKS);
    command.add_option("--seed", o.seed, "seed of the random checks (default: another one each time; it is printed)")
        ->check(wholeBetween(0, std::numeric_limits<std::uint32_t>::max()))->type_name("N")->group(CHECKS);
    command.add_option("--timeout", o.timeout, "seconds that each check may take (default 10)")
        ->check(realWithin({0.001, TIMEOUT_MAX, "seconds"}))->type_name("S")->group(CHECKS);
    command.add_option("--format", o.format, "text, or json for one object (default text)")
        ->check(oneOf({"text", "json"}))->type_name("FORMAT")->group("Output");
    command.add_flag("-q,--quiet", o.isQuiet, "no progress on standard error")->group("Output");
    command.footer("Exit codes: 0 all checks passed, 1 not all; others as for every command.");
}

ExitCode runCheck(const CheckOptions& o)
{
    if (o.isList) {
        print(check::listText());
        return ExitCode::Done;
    }
    const std::vector<const Check*> chosen = chosenChecks(o.only);
    const std::string path = blockhost::findBlock(o.path);
    check::RunResult result{path, o.seed ? *o.seed : static_cast<std::uint32_t>(std::random_device{}()), {}};
    const check::CheckInput input{path, result.seed, {}};
    const Check& load = check::allChecks().front();      // what cannot be loaded is not examined
    const check::Outcome loaded = run(load, input, o.timeout);
    if (loaded.isNotLoadable)
        throw Failure(loaded.found, ExitCode::NoBlock);
    {
        Progress progress("checks", static_cast<std::int64_t>(chosen.size()), o.isQuiet);
        for (const Check* const c : chosen) {
            progress.show(static_cast<std::int64_t>(result.results.size()));
            result.results.push_back({c, c == &load ? loaded : run(*c, input, o.timeout)});
        }
    }
    print(o.format == "json" ? check::toJson(result) : check::toTable(result));
    return result.failedNum() == 0 ? ExitCode::Done : ExitCode::CheckFailed;
}

}  // namespace esttform::app

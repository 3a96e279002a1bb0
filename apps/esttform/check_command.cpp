#include "check_command.h"

#include "blockhost/block_check.h"
#include "check_run.h"
#include "number_text.h"
#include "option_checks.h"
#include "output_file.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace esttform::app {

namespace {

const char* textOf(Verdict verdict) noexcept
{
    switch (verdict) {
    case Verdict::Passed: return "ok";
    case Verdict::Failed: return "FAILED";
    case Verdict::Crashed: return "CRASHED";
    case Verdict::TimedOut: return "TIMED OUT";
    }
    return "";
}

std::vector<BlockCheck> wantedChecks(const CheckOptions& o)
{
    std::vector<BlockCheck> wanted;
    for (const std::string& name : o.only)
        if (std::none_of(blockChecks().begin(), blockChecks().end(), [&](const BlockCheck& check) { return name == check.name; }))
            throw Failure(fmt::format("--only: got {}, which is no check; 'esttform check --list' names them", inQuotes(name)));
    for (const BlockCheck& check : blockChecks())
        if (o.only.empty() || std::find(o.only.begin(), o.only.end(), check.name) != o.only.end())
            wanted.push_back(check);
    return wanted;
}

std::string lineOf(const CheckOptions& o, const BlockCheck& check, const CheckResult& result)
{
    if (o.format == "json") {
        nlohmann::ordered_json line = {{"check", check.name}, {"verdict", textOf(result.verdict)}, {"found", result.text}};
        if (check.isRandom)
            line["seed"] = o.seed;
        return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    }
    const std::string seed = check.isRandom ? fmt::format(" (seeds from {})", o.seed) : "";
    std::string line = fmt::format("{:<15} {:<10} {}{}\n", check.name, textOf(result.verdict), check.what, seed);
    if (!result.text.empty())
        line += fmt::format("{:<15} {}\n", "", result.text);
    return line;
}

}  // namespace

void addCheckOptions(CLI::App& command, CheckOptions& o)
{
    command.add_option("BLOCK", o.blockPath, "path of the block's library")->type_name("PATH");
    command.add_option("--only", o.only, "names of checks, separated by commas (default: all)")
        ->delimiter(',')->type_name("NAME,...")->allow_extra_args(false);
    command.add_option("--seed", o.seed, "first seed of the random checks (default 1); a finding names the seed that shows it")
        ->check(wholeBetween(0, std::numeric_limits<std::uint32_t>::max()))->type_name("N");
    command.add_option("--timeout", o.timeout, "seconds that a check may take (default 60)")
        ->check(wholeBetween(1, 86400))->type_name("S");
    command.add_option("--format", o.format, "text: a table; json: one object a check (default text)")
        ->check(oneOf({"text", "json"}))->type_name("FORMAT");
    command.add_flag("--list", o.isList, "list the checks and run none");
}

ExitCode runCheck(const CheckOptions& o)
{
    const std::vector<BlockCheck> checks = wantedChecks(o);
    OutputFile output("-");
    if (o.isList) {
        for (const BlockCheck& check : checks)
            output.write(fmt::format("{:<15} {}\n", check.name, check.what));
        output.commit();
        return ExitCode::Done;
    }
    if (o.blockPath.empty())
        throw Failure("BLOCK: not given, expected the path of a block's library");
    std::int64_t failedNum = 0;
    for (const BlockCheck& check : checks) {
        const CheckResult result = runCheckApart(check.name, o.blockPath, o.seed, o.timeout);
        failedNum += result.verdict == Verdict::Passed ? 0 : 1;
        output.write(lineOf(o, check, result));
        output.flush();
    }
    if (o.format == "text")
        output.write(failedNum == 0 ? fmt::format("\n{}: all {} passed\n", o.blockPath, counted(static_cast<std::int64_t>(checks.size()), "check"))
                                    : fmt::format("\n{}: {} of {} found something\n", o.blockPath, failedNum,
                                                  counted(static_cast<std::int64_t>(checks.size()), "check")));
    output.commit();
    return failedNum == 0 ? ExitCode::Done : ExitCode::NothingFound;
}

}  // namespace esttform::app

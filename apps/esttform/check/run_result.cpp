#include "check/run_result.h"

#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace esttform::check {

namespace {

/// Width of the column of names.
std::size_t nameWidth()
{
    std::size_t width = 0;
    for (const Check& check : allChecks())
        width = std::max(width, std::string(check.name).size());
    return width;
}

}  // namespace

int RunResult::failedNum() const
{
    return static_cast<int>(std::count_if(results.begin(), results.end(), [](const CheckResult& result) {
        return result.outcome.verdict != Verdict::Ok;
    }));
}

std::string toTable(const RunResult& run)
{
    std::string text = fmt::format("{:{}}  {:9}  found\n", "check", nameWidth(), "verdict");
    for (const auto& [check, outcome] : run.results)
        text += fmt::format("{:{}}  {:9}  {}{}\n", check->name, nameWidth(), verdictText(outcome.verdict),
                            check->isRandom ? fmt::format("seed {}: ", run.seed) : "", outcome.found);
    const int num = static_cast<int>(run.results.size());
    text += fmt::format("\n{}: {}, {} ok, {} not\n", run.path, app::counted(num, "check"), num - run.failedNum(),
                        run.failedNum());
    for (const auto& [check, outcome] : run.results)
        if (outcome.verdict != Verdict::Ok)
            text += fmt::format("again: esttform check {} --only {}{}\n", run.path, check->name,
                                check->isRandom ? fmt::format(" --seed {}", run.seed) : "");
    return text;
}

std::string toJson(const RunResult& run)
{
    nlohmann::ordered_json json;
    json["block"] = run.path;
    json["checkNum"] = run.results.size();
    json["failedNum"] = run.failedNum();
    json["checks"] = nlohmann::ordered_json::array();
    for (const auto& [check, outcome] : run.results) {
        nlohmann::ordered_json row;
        row["name"] = check->name;
        row["verdict"] = verdictText(outcome.verdict);
        row["found"] = outcome.found;
        row["seed"] = check->isRandom ? nlohmann::ordered_json(run.seed) : nlohmann::ordered_json();
        json["checks"].push_back(std::move(row));
    }
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string listText()
{
    std::string text;
    for (const Check& check : allChecks())
        text += fmt::format("{:{}}  {}{}\n", check.name, nameWidth(), check.text, check.isRandom ? " (random)" : "");
    return text;
}

}  // namespace esttform::check

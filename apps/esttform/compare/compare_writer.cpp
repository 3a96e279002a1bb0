#include "compare/compare_writer.h"

#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

using Json = nlohmann::ordered_json;

Json pixelsJson(bool isThere, double pixels)
{
    return isThere && std::isfinite(pixels) ? Json(pixels) : Json(nullptr);
}

Json agreementJson(const Agreement& agreement)
{
    return {{"a", agreement.aNum}, {"b", agreement.bNum}, {"both", agreement.bothNum}, {"agreement", agreement.share()}};
}

Json stepJson(const StepComparison& step)
{
    Json object{{"step", step.step}};
    if (step.file)
        object["file"] = *step.file;
    if (step.frame)
        object["frame"] = *step.frame;
    object["foundA"] = step.isFoundA;
    object["foundB"] = step.isFoundB;
    object["meanPx"] = pixelsJson(step.hasDistance(), step.meanPx);
    object["maxPx"] = pixelsJson(step.hasDistance(), step.maxPx);
    object["inliers"] = step.inliers ? agreementJson(*step.inliers) : Json(nullptr);
    if (step.otherMaskSizes)
        object["otherMaskSizes"] = *step.otherMaskSizes;
    return object;
}

std::string agreementText(const Agreement& agreement)
{
    return fmt::format("A {}, B {}, both {}: agreement {:.1f} %", agreement.aNum, agreement.bNum, agreement.bothNum,
                       100.0 * agreement.share());
}

std::string masksText(const StepComparison& step)
{
    if (step.otherMaskSizes)
        return fmt::format("; inliers not compared: of {} pairs in A, of {} in B", (*step.otherMaskSizes)[0], (*step.otherMaskSizes)[1]);
    return step.inliers ? "; inliers " + agreementText(*step.inliers) : "";
}

/// A step that A lacks has no number there, unless the steps were matched by it.
std::string whereOf(const StepComparison& step)
{
    if (step.file)
        return *step.file;
    if (!step.frame)
        return fmt::format("step {}", step.step);
    return step.isInA ? fmt::format("step {} (frame {})", step.step, *step.frame) : fmt::format("frame {}", *step.frame);
}

std::string missingText(const StepComparison& step)
{
    const bool isNone = !step.isFoundA && !step.isFoundB;
    const char* const side = isNone ? "either result" : step.isFoundA ? "B" : "A";
    const bool isStepMissing = !isNone && !(step.isFoundA ? step.isInB : step.isInA);
    return fmt::format("no {} in {}", isStepMissing ? "such step" : "transformation", side);
}

}  // namespace

ComparisonSummary summaryOf(const std::vector<StepComparison>& steps, std::optional<double> tolerance, bool isMissingIgnored)
{
    ComparisonSummary s;
    s.tolerance = tolerance;
    std::vector<double> means;
    for (const StepComparison& step : steps) {
        const bool isOneOnly = step.isFoundA != step.isFoundB;
        s.comparedNum += step.hasDistance();
        s.neitherNum += !step.isFoundA && !step.isFoundB;
        s.onlyANum += isOneOnly && step.isFoundA;
        s.onlyBNum += isOneOnly && step.isFoundB;
        if (step.hasDistance())
            means.push_back(step.meanPx);
        if (tolerance && ((isOneOnly && !isMissingIgnored) || (step.hasDistance() && step.meanPx > *tolerance)))
            ++s.differingNum;
        if (step.inliers) {
            s.hasInliers = true;
            s.inliers.aNum += step.inliers->aNum;
            s.inliers.bNum += step.inliers->bNum;
            s.inliers.bothNum += step.inliers->bothNum;
        }
    }
    if (!means.empty()) {
        std::sort(means.begin(), means.end());
        s.medianPx = means[(means.size() - 1) / 2];
        s.maxMeanPx = means.back();
    }
    return s;
}

std::string comparisonText(const std::vector<StepComparison>& steps, const ComparisonSummary& s, const ComparisonNames& names)
{
    std::string text = fmt::format("A: {}\nB: {}\ncorner distance in pixels, mean of the four corners of {} x {} (largest of them)\n",
                                   names.a, names.b, names.size[0], names.size[1]);
    for (const StepComparison& step : steps) {
        text += whereOf(step) + ": ";
        text += step.hasDistance() ? fmt::format("{:.4g} ({:.4g})", step.meanPx, step.maxPx) : missingText(step);
        text += masksText(step) + "\n";
    }
    if (steps.size() > 1) {
        text += fmt::format("{} compared", counted(s.comparedNum, "step"));
        if (s.comparedNum > 0)
            text += fmt::format(": median {:.4g}, largest {:.4g}", s.medianPx, s.maxMeanPx);
        text += fmt::format("; transformation in A only {}, in B only {}, in neither {}\n", s.onlyANum, s.onlyBNum, s.neitherNum);
        if (s.hasInliers)
            text += fmt::format("inliers of all steps {}\n", agreementText(s.inliers));
    }
    if (s.tolerance)
        text += s.differingNum > 0 ? fmt::format("{} of {} beyond the tolerance of {} pixels\n", s.differingNum,
                                                 counted(static_cast<std::int64_t>(steps.size()), "step"), *s.tolerance)
                                   : fmt::format("within the tolerance of {} pixels\n", *s.tolerance);
    return text;
}

std::string comparisonJson(const std::vector<StepComparison>& steps, const ComparisonSummary& s, const ComparisonNames& names)
{
    std::string text = fmt::format("{{\"a\":{},\"b\":{},\"size\":[{},{}],\"steps\":[\n", Json(names.a).dump(),
                                   Json(names.b).dump(), names.size[0], names.size[1]);
    for (const StepComparison& step : steps)
        text += stepJson(step).dump() + (&step == &steps.back() ? "\n" : ",\n");
    const bool hasDistances = s.comparedNum > 0;
    const Json summary{{"comparedNum", s.comparedNum},
                       {"onlyANum", s.onlyANum},
                       {"onlyBNum", s.onlyBNum},
                       {"neitherNum", s.neitherNum},
                       {"medianPx", pixelsJson(hasDistances, s.medianPx)},
                       {"maxMeanPx", pixelsJson(hasDistances, s.maxMeanPx)},
                       {"inliers", s.hasInliers ? agreementJson(s.inliers) : Json(nullptr)},
                       {"tolerancePx", s.tolerance ? Json(*s.tolerance) : Json(nullptr)},
                       {"differingNum", s.differingNum}};
    return text + "],\"summary\":" + summary.dump() + "}\n";
}

}  // namespace esttform::app

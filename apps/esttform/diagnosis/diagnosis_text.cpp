#include "diagnosis/diagnosis.h"

#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>

namespace esttform::app {

namespace {

std::string distancesText(const Diagnosis& d)
{
    const char* const what = d.inlierNum ? "inliers" : "pairs";
    if (d.distances->largest < SHOWN_MIN_DISTANCE)
        return fmt::format("distances of the {}: all {}", what, distanceText(d.distances->largest));
    return fmt::format("distances of the {}: median {}, nine in ten up to {}, largest {}", what, distanceText(d.distances->median),
                       distanceText(d.distances->ninetyPercent), distanceText(d.distances->largest));
}

std::string chanceText(const Diagnosis& d)
{
    return fmt::format("inliers expected if all matches were wrong: {:.2g}", *d.chanceNum);
}

std::string samplingText(const Diagnosis& d)
{
    return fmt::format("samplings that this share of inliers needs for {:g} %: {:.0f} ({} {:.0f})", d.confidence, *d.neededSampleNum,
                       d.isLimitDrawn ? "drawn nevertheless: up to" : "limit", *d.sampleLimit);
}

std::string spreadText(const Diagnosis& d)
{
    return fmt::format("extent of the inliers beside that of all points: {:.2f} in the first picture, {:.2f} in the second", *d.spread1,
                       *d.spread2);
}

std::vector<std::string> lines(const Diagnosis& d)
{
    std::vector<std::string> texts;
    if (d.distances)
        texts.push_back(distancesText(d));
    if (d.chanceNum)
        texts.push_back(chanceText(d));
    if (d.neededSampleNum)
        texts.push_back(samplingText(d));
    if (d.spread1)
        texts.push_back(spreadText(d));
    return texts;
}

nlohmann::ordered_json number(const std::optional<double>& value)
{
    return value && std::isfinite(*value) ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
}

}  // namespace

std::string toText(const Diagnosis& diagnosis)
{
    std::string text;
    for (const std::string& line : lines(diagnosis))
        text += line + "\n";
    return text;
}

std::string toJson(const Diagnosis& d)
{
    nlohmann::ordered_json json;
    const bool hasShare = d.inlierNum && d.pairNum > 0;
    json["inlierShare"] = number(hasShare ? std::optional(static_cast<double>(*d.inlierNum) / static_cast<double>(d.pairNum)) : std::nullopt);
    json["chanceNum"] = number(d.chanceNum);
    json["log10ChanceResults"] = number(d.log10ChanceResults);
    json["neededSampleNum"] = number(d.neededSampleNum);
    json["sampleLimit"] = number(d.sampleLimit);
    json["spread1"] = number(d.spread1);
    json["spread2"] = number(d.spread2);
    const auto distance = [&d](double DistanceQuantiles::*quantile) {
        return number(d.distances ? std::optional((*d.distances).*quantile) : std::nullopt);
    };
    json["distanceMedian"] = distance(&DistanceQuantiles::median);
    json["distance90"] = distance(&DistanceQuantiles::ninetyPercent);
    json["distanceLargest"] = distance(&DistanceQuantiles::largest);
    json["warnings"] = nlohmann::ordered_json::array();
    for (const DiagnosisNote& warning : d.warnings)
        json["warnings"].push_back({{"code", warning.code}, {"text", warning.text}});
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string warningCodes(const Diagnosis& diagnosis)
{
    std::string codes;
    for (const DiagnosisNote& warning : diagnosis.warnings)
        codes += (codes.empty() ? "" : " ") + warning.code;
    return codes;
}

std::vector<DiagnosisNote> notesOf(const Diagnosis& diagnosis)
{
    std::vector<DiagnosisNote> notes = diagnosis.warnings;
    if (diagnosis.isTrusted())
        notes.push_back({Severity::Good, "nothing speaks against the result", "No rule of the diagnosis was met.", ""});
    for (const std::string& line : lines(diagnosis)) {
        const std::size_t colon = line.find(": ");
        notes.push_back({Severity::Note, line.substr(0, colon), line.substr(colon + 2), ""});
    }
    return notes;
}

}  // namespace esttform::app

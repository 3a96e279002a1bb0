// Diagnosis: whether a result is to be trusted, from what a caller of the block sees - pairs, outputs, settings.
// Nothing here changes a result. docs/diagnosis.md gives every rule with its reason.
#pragma once

#include "geometry/residuals.h"
#include "matches/points.h"
#include "options/block_settings.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

enum class Severity { Good, Note, Warning, Error };

struct DiagnosisNote {
    Severity severity = Severity::Note;
    std::string title;                   ///< a few words; of a warning the rule
    std::string text;                    ///< one or two sentences with the reason and what to do
    std::string code;                    ///< of a warning: one word for programs
};

struct Diagnosis {
    std::int64_t pairNum = 0;
    std::optional<std::int64_t> inlierNum;          ///< empty: fitted to all pairs, or no mask
    std::optional<double> chanceNum;                ///< inliers expected if all matches were wrong
    std::optional<double> log10ChanceResults;       ///< results this good expected by chance, decimal logarithm
    std::optional<double> neededSampleNum;          ///< samplings that the share of inliers asks for
    double confidence = 0.0;                        ///< in percent, for neededSampleNum
    std::optional<double> sampleLimit;              ///< samplings that the settings allow
    bool isLimitDrawn = false;                      ///< all of them are drawn, whatever the share of inliers needs
    std::optional<double> spread1, spread2;         ///< narrow extent of the inliers beside that of all points, per picture
    std::optional<DistanceQuantiles> distances;     ///< of the inliers, or of all pairs without a mask
    std::vector<DiagnosisNote> warnings;            ///< empty: nothing speaks against the result

    bool isTrusted() const noexcept { return warnings.empty(); }
};

/// Diagnoses a step.
///
/// @param pairs         of the step, in its order
/// @param reasonIfNone  why TForm is all zero, when it is
Diagnosis diagnose(const std::vector<Pair>& pairs, const StepResult& result, Layout layout, const BlockSetup& setup,
                   const std::string& reasonIfNone);

/// Lines for people below a result, without the warnings.
std::string toText(const Diagnosis& diagnosis);
/// A JSON object: inlierShare, chanceNum, log10ChanceResults, neededSampleNum, sampleLimit, spread1, spread2,
/// distanceMedian, distance90, distanceLargest (each null when there is none), warnings (list of code and text).
std::string toJson(const Diagnosis& diagnosis);
/// Codes of the warnings, separated by spaces.
std::string warningCodes(const Diagnosis& diagnosis);
/// All findings, for a page: what was measured as a note, then the warnings or that there are none.
std::vector<DiagnosisNote> notesOf(const Diagnosis& diagnosis);

}  // namespace esttform::app

// ResultWriter: the outcome of each step as text for people, JSON lines or CSV.
// Numbers of JSON and CSV read back to the same values; the matrix has TForm's own shape.
#pragma once

#include "diagnosis/diagnosis.h"
#include "options/block_settings.h"
#include "output/output_file.h"

#include <cstdint>
#include <optional>
#include <string>

namespace esttform::app {

enum class Format { Text, Json, Csv };

/// The format of a word that --format admits.
Format formatOf(const std::string& name) noexcept;

/// What a writer needs to know about a step besides its result.
struct StepLabel {
    std::int64_t step = 0;               ///< counted from 0
    std::optional<std::int64_t> frame;   ///< value of the frame column
};

/// What holds for all steps of a run.
struct RunLabel {
    std::string inputName;
    const char* typeText = "";           ///< "similarity", "affine" or "projective"
    Layout layout = Layout::Columns;
    bool hasFrames = false;
};

/// The equation that TForm stands for.
const char* equationOf(const StepResult& result, Layout layout) noexcept;

/// A JSON string; bytes that are not UTF-8 become U+FFFD.
std::string textJson(const std::string& text);

/// One JSON object on one line, with line end. Keys: step, frame (with frames), ptsNum, tform (list of rows), inliers
/// (0 or 1 a pair) and inlierNum (both null without inlier output), warnings (identifiers), error ("id: text" or null).
/// Numbers have the fewest digits that read back; a value that is not finite is null. Single values are written as the
/// doubles they are equal to. With a diagnosis one more key, diagnosis.
std::string toJsonLine(const StepLabel& label, const StepResult& result, bool hasFrames, const Diagnosis* diagnosis = nullptr);

/// Header of the rows of toCsvRow for a TForm of this shape: step, [frame,] ptsNum, found, inlierNum, t00, t01, ... (row
/// and column from 0), warnings (identifiers separated by spaces), error[, diagnosis (codes separated by spaces)].
std::string toCsvHeader(const StepResult& result, bool hasFrames, bool isDiagnosed = false);
/// One row, with line end. inlierNum is empty without inlier output.
std::string toCsvRow(const StepLabel& label, const StepResult& result, bool hasFrames, const Diagnosis* diagnosis = nullptr);

/// Several lines about the only step of an input: counts, TForm and how to use it.
std::string toText(const StepResult& result, const RunLabel& run);
/// How to read the lines of toTextLine, above the first of them.
std::string toTextHead(const StepResult& result, const RunLabel& run);
/// One line about one of many steps, with line end.
std::string toTextLine(const StepLabel& label, const StepResult& result);

/// Writes the steps of a run in one format; the first step decides the head.
class ResultWriter {
public:
    /// @param output  must outlive the writer
    ResultWriter(Format format, RunLabel run, OutputFile& output);

    /// Writes one step. Throws as OutputFile::write.
    ///
    /// @param diagnosis  of the step; null unless the run is diagnosed. Of many steps the text shows none
    void write(const StepLabel& label, const StepResult& result, const Diagnosis* diagnosis = nullptr);

private:
    Format mFormat;
    RunLabel mRun;
    OutputFile& mOutput;
    bool mIsFirst = true;
};

}  // namespace esttform::app

// What a batch says about one file: its line of the results, and what people are told about it.
#pragma once

#include "estimate/result_writer.h"
#include "options/block_settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

enum class BatchOutcome : char {
    Found = 'f',
    NotFound = 'n',
    Bad = 'b',       ///< the file could not be read, or its estimate failed
};

struct BatchEntry {
    BatchOutcome outcome = BatchOutcome::Bad;
    std::string line;       ///< of the results, with line end
    std::string messages;   ///< lines for standard error; often empty
};

/// An entry as one text, for a pipe, and back.
std::string packed(const BatchEntry& entry);
BatchEntry unpacked(const std::string& text);

/// Writes the lines of results as JSON lines or CSV. They are those of 'estimate' with file and seed in the place of step.
class BatchFormat {
public:
    /// @param format       Json or Csv
    /// @param isDiagnosed  the lines come with a diagnosis
    BatchFormat(Format format, const BlockSetup& setup, Layout layout, bool isDiagnosed);

    /// First line of the results; empty for JSON.
    std::string header() const;
    /// @param diagnosis  null unless the lines come with one
    std::string line(const std::string& file, std::uint32_t seed, const StepResult& result, const Diagnosis* diagnosis) const;
    /// Line of a file without a result: null or empty where the others have numbers.
    std::string badLine(const std::string& file, std::uint32_t seed, const std::string& error) const;

    /// Reads a line back as far as a later run needs it.
    ///
    /// @return false for a line that is none of these
    bool parse(const std::string& line, std::string& file, std::uint32_t& seed, BatchOutcome& outcome) const;

private:
    std::string start(const std::string& file, std::uint32_t seed) const;

    Format mFormat;
    bool mIsDiagnosed;
    StepResult mShape;   ///< without a matrix
};

/// Estimates file after file. The block stays open; a result depends on its file and seed alone.
class BatchEstimator {
public:
    /// @param setup, format  must outlive the estimator
    BatchEstimator(const BlockSetup& setup, const BatchFormat& format, std::vector<std::string> columns, bool isDiagnosed,
                   bool isQuiet);

    /// Never throws for a fault of the file: that is the entry.
    BatchEntry estimate(const std::string& file, std::uint32_t seed);

private:
    BatchEntry estimateFile(const std::string& file, std::uint32_t seed);

    const BlockSetup& mSetup;
    const BatchFormat& mFormat;
    std::vector<std::string> mColumns;
    bool mIsDiagnosed;
    bool mIsQuiet;
    std::optional<Estimator> mEstimator;
};

}  // namespace esttform::app

// Estimator: the block as a C++ object. Opens the block in the stand-in host, feeds it matched points, hands out results.
// This header needs nothing but the standard library; programs link with libblockhost.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#if defined(__GNUC__)
#define ESTTFORM_API __attribute__((visibility("default")))
#else
#define ESTTFORM_API
#endif

namespace esttform {

// ---- Settings

enum class TransformType : int { Similarity = 1, Affine = 2, Projective = 3 };
enum class Method : int { Threshold = 1, Median = 2 };
enum class Sampling : int { Cyclic = 0, Random = 1 };

/// How point coordinates lie in memory. n is the number of points of the step.
enum class Layout : int {
    Columns = 0,  ///< 2-by-n, column by column: x0, y0, x1, y1, ...
    Rows = 1,     ///< n-by-2, column by column: x0 ... x(n-1), y0 ... y(n-1)
};

/// Element type of points and of the transformation; the values are the host's data-type ids.
enum class DataType : int { Double = 0, Single = 1, Int8 = 2, Uint8 = 3, Int16 = 4, Uint16 = 5, Int32 = 6, Uint32 = 7 };

/// Bytes of one element.
ESTTFORM_API std::size_t sizeOf(DataType type) noexcept;

constexpr int PARAM_NUM = 18;
/// The block's eighteen dialog values by index, as paramTable describes them.
using Params = std::array<double, PARAM_NUM>;

/// What a dialog parameter means, for people.
struct ParamInfo {
    int index;
    const char* name;      ///< name used by --param; "reserved13" and "reserved15" have no effect on the block
    const char* values;    ///< admitted values, for example "1, 2 or 3" or "0 or 1"
    const char* unit;      ///< "squared points units", "percent", ...; empty when it has none
    double defaultValue;   ///< value that Settings{} gives
    const char* tunable;   ///< "no", or when it may change between steps
    const char* meaning;   ///< one sentence
};

/// The eighteen dialog parameters in index order.
ESTTFORM_API const std::array<ParamInfo, PARAM_NUM>& paramTable() noexcept;

/// Named settings of the block. Every default is a good first try for matches of feature detectors in pixels.
struct Settings {
    TransformType type = TransformType::Projective;
    bool isRobust = true;                    ///< false: one least-squares fit to all points, no inlier output
    Method method = Method::Threshold;       ///< Median needs no threshold but more than half right matches
    double threshold = 9.0;                  ///< squared algebraic distance, in squared point units
    std::uint32_t sampleNum = 10000;         ///< random samplings: the limit with a confidence, else the number
    std::optional<double> confidence = 99.9; ///< percent; empty: always sampleNum samplings
    std::optional<double> stopAtInliers;     ///< percent of the pairs; empty: not used
    bool isRefineIteratively = true;         ///< refit on the inliers while that improves the score
    bool isOutputInliers = true;
    Sampling sampling = Sampling::Random;
    Layout layout = Layout::Columns;
    DataType pointsType = DataType::Double;
    DataType tformType = DataType::Double;   ///< free for integer points; double and single points fix it
};

/// The dialog values that stand for the settings. A percentage that is not used gets its default.
///
/// @throws Error (Usage) if tformType is neither double nor single, or contradicts double or single points
ESTTFORM_API Params toParams(const Settings& settings);

// ---- Failures

/// Why an operation failed; the program's exit codes follow it.
enum class ErrorKind {
    Usage,     ///< a setting, an attribute or a call that cannot be carried out
    Load,      ///< the block's library could not be loaded
    Internal,  ///< a fault of the system: a guard zone was overwritten, a block broke its contract
};

/// Exception of every operation below. what() is one line: what was being done, what was found, what was expected.
class ESTTFORM_API Error : public std::runtime_error {
public:
    Error(ErrorKind kind, const std::string& text) : std::runtime_error(text), mKind(kind) {}
    ErrorKind kind() const noexcept { return mKind; }

private:
    ErrorKind mKind;
};

/// A message of the block: catalogue identifier and finished text.
struct Message {
    std::string id;           ///< for example "invalidRandomSamples"
    std::string text;         ///< the catalogue text with arguments filled in
    std::uint32_t count = 1;  ///< how often it was raised in the step
};

// ---- Estimation

/// Outcome of one step. Its pointers, also those of a copy, refer to the estimator's buffers: the next step overwrites what
/// they show, and they end with the estimator.
struct StepResult {
    std::int32_t ptsNum = 0;               ///< point pairs of the step
    DataType tformType = DataType::Double; ///< Double or Single
    int tformRows = 0;                     ///< 3-by-2 or 3-by-3 for points in rows, else 2-by-3 or 3-by-3
    int tformCols = 0;
    const void* tformData = nullptr;       ///< tformRows*tformCols elements of tformType, column by column
    const std::uint8_t* inliers = nullptr; ///< ptsNum entries 0 or 1; null without inlier output
    std::int32_t inlierNum = 0;            ///< number of ones; 0 without inlier output
    std::vector<Message> warnings;         ///< one entry per identifier
    std::optional<Message> error;          ///< set: the block refused the step; TForm and mask are all zero

    /// Element of TForm, widened without loss; row from 0 to tformRows - 1, col from 0 to tformCols - 1, unchecked.
    ESTTFORM_API double tform(int row, int col) const noexcept;
    /// False when every element of TForm is zero: no transformation was found.
    ESTTFORM_API bool isFound() const noexcept;
};

/// Things about an estimator that are not settings of the block.
struct Options {
    /// Path of the block. Empty: $ESTTFORM_BLOCK, else szelesttform.so beside libblockhost or in esttform/ below it.
    std::string blockPath;
    /// True: steps may have any number of points up to maxPtsNum; false: exactly maxPtsNum.
    bool isVariableSize = false;
    /// Seeds the C library's generator after start; empty: the block's own seed, the processor time.
    std::optional<unsigned> seed;
    /// Arrays that the block reads in place instead of the estimator's own, for the life of the estimator. Both or none;
    /// 2*maxPtsNum elements each, aligned for an element. A step of n points reads the first 2*n; in rows the y follow
    /// the n x at once.
    const void* pts1 = nullptr;
    const void* pts2 = nullptr;
    /// Receives one line per callback and host call, without line end; called by the estimator's destructor too.
    std::function<void(std::string_view line)> trace;
};

/// One running block: opened by the constructor, stepped as often as wanted, closed by the destructor.
///
/// Not for use from two threads at once: blocks share the C library's rand. Move-only: of an estimator that was moved from,
/// step and setParam throw an Error (Usage); its other methods, seed apart, must not be called.
class ESTTFORM_API Estimator {
public:
    /// Opens a block for steps of up to maxPtsNum point pairs.
    ///
    /// @throws Error  Load: the library or a callback of it is missing; Usage: a parameter out of range, a size too
    ///                small for the transformation type. The text says which and what is admitted.
    Estimator(const Settings& settings, std::int32_t maxPtsNum, const Options& options = {});
    /// The same from raw dialog values; the type of TForm follows from pointsType and parameter 14.
    Estimator(const Params& params, DataType pointsType, std::int32_t maxPtsNum, const Options& options = {});
    Estimator(Estimator&&) noexcept;
    Estimator& operator=(Estimator&&) noexcept;
    ~Estimator();

    /// One estimation over ptsNum point pairs in the block's layout and points type.
    ///
    /// The points are copied into the block's inputs, except where pts1 is pts1Buffer() or pts2 is pts2Buffer(). Arrays
    /// elsewhere inside these two buffers are refused.
    /// Allocates nothing unless the block reports something. A refused step is reported in the result, not thrown.
    ///
    /// @param pts1, pts2  in, 2*ptsNum elements each
    /// @throws Error  Usage: ptsNum is negative, above maxPtsNum, or not maxPtsNum for an estimator of fixed size; an array
    ///                is null, lies inside the buffers, or is not the one that Options names; the estimator has failed
    ///                before or was moved from. Internal: the system is at fault, and the estimator has failed.
    const StepResult& step(const void* pts1, const void* pts2, std::int32_t ptsNum);
    /// The same over points that the caller wrote to pts1Buffer() and pts2Buffer(), or whose arrays Options names.
    const StepResult& step(std::int32_t ptsNum);

    /// The block's input arrays, 2*maxPtsNum elements each, at fixed addresses; null when Options names the arrays.
    void* pts1Buffer() noexcept;
    void* pts2Buffer() noexcept;

    /// Changes a dialog value between steps.
    ///
    /// @throws Error (Usage) if the parameter is not tunable with the present settings, or the value is refused;
    ///               the value in force stays. Also if the estimator was moved from or has failed before; it fails
    ///               here when the block cannot take over a value that passed its check.
    void setParam(int index, double value);

    /// Seeds the C library's process-wide generator, which random sampling draws from.
    void seed(unsigned value) noexcept;

    const Params& params() const noexcept;
    DataType pointsType() const noexcept;
    std::int32_t maxPtsNum() const noexcept;
    Layout layout() const noexcept;

private:
    struct Impl;
    /// @throws Error (Usage) if the estimator was moved from or has failed
    Impl& usable() const;

    std::unique_ptr<Impl> mImpl;
};

}  // namespace esttform

// CompiledModel: a block's generated code, compiled by the C compiler of the build and loaded, one step at a time.
#pragma once

#include "blockhost/codegen.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace codegentest {

/// Options of the compiler besides those of every model: optimisation, and what a case wants to try.
struct CompileOptions {
    std::string flags = "-O1";
};

/// Generated code of one block setting. The random generator is this program's rand, counted.
class CompiledModel {
public:
    /// @throws std::runtime_error  with the compiler's output
    CompiledModel(const esttform::Params& params, esttform::DataType pointsType, std::int32_t maxPtsNum, bool isVariable,
                  const CompileOptions& options = {});
    ~CompiledModel();
    CompiledModel(CompiledModel&&) noexcept;

    /// The start code: parameters as generated, outputs cleared, generator seeded.
    void start();
    void seed(unsigned value);
    /// Sets a run-time parameter by name, converted to its type. @return false when the model has none of that name
    bool setParam(const std::string& name, double value);
    /// One step over ptsNum pairs that lie at pts1 and pts2 in the block's layout and type. @return the status, 0 for OK
    int step(const void* pts1, const void* pts2, std::int32_t ptsNum);
    /// The same with sets of different lengths.
    int step(const void* pts1, std::int32_t ptsNum1, const void* pts2, std::int32_t ptsNum2);

    /// The same over the points that lie in the inputs, with any sizes; only for a model of variable size.
    int stepOfSizes(const std::array<std::int32_t, 2>& dims1, const std::array<std::int32_t, 2>& dims2);

    /// Numbers drawn since start or seed.
    std::int64_t randCalls() const;
    std::vector<double> tform() const;               ///< in storage order, widened
    const bool* inliers() const;                     ///< null without inlier output
    std::size_t inlierNum() const;                   ///< length of the mask: the bound of the number of pairs
    /// The first values of a work vector, widened; empty when the model has none of that name.
    std::vector<double> workVector(const std::string& name) const;
    std::size_t modelBytes() const;
    const std::string& folder() const;               ///< where the generated files lie; removed with the object

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

/// A folder below the system's temporary one, removed with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    const std::string& path() const { return mPath; }

private:
    std::string mPath;
};

/// Writes generated files into a folder.
void writeFiles(const std::vector<esttform::GeneratedFile>& files, const std::string& folder);

/// Runs a command. @return its output, standard error included; throws std::runtime_error with it when the command fails
std::string runCommand(const std::string& command);

}  // namespace codegentest

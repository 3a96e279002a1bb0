// Block: any block, loaded into the stand-in host and driven call by call or all at once. The estimator stands on it;
// tests and tools that need the ports, the order or the trace use it directly.
#pragma once

#include "block_context.h"
#include "ir/model_builder.h"
#include "lifecycle.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace blockhost {

/// What is decided about a block before its first callback.
struct BlockSetup {
    std::string libraryPath;
    std::vector<double> params;           ///< dialog values, one real number each
    std::vector<ParamLabel> paramLabels;  ///< names for messages; may be empty
    std::vector<Signal> inputs;           ///< connected signals by port; missing ones leave everything open
    std::vector<Signal> outputs;          ///< likewise; for example the size an output is wanted in
    std::vector<Offer> offerOrder;        ///< propagation offers to make first
    std::function<void(std::string_view line)> trace;
};

/// One instance of a block.
///
/// The methods that call the block follow the order of the lifecycle. Called out of order they throw an Error (Usage)
/// that names the missing call; the same mistake again changes nothing and gives false. When one throws for another
/// reason, the instance has failed and can only be terminated, except where stated. Library, host and callbacks run on
/// the caller's thread.
class ESTTFORM_API Block {
public:
    /// Loads the library. @throws Error (Load)
    explicit Block(BlockSetup setup);
    /// Terminates if that is owed; an error of it is lost.
    ~Block();
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    // ---- The order, call by call. @throws Error: what the block reports, what the host finds
    bool initializeSizes();
    bool checkParameters();
    bool initializeSampleTimes();
    bool propagate();
    bool setWorkWidths();
    bool start();
    /// All of the above. @throws Error (Usage) also for a block that was opened before
    void open();
    /// All of the above but start: what a block needs before it describes its code.
    void prepare();

    /// One step: size rules, then mdlOutputs. An error of the block is not thrown but kept in stepError.
    /// Allocates nothing unless the block reports an error.
    bool step();
    bool terminate();
    /// In place of start and step: adds the block's description of its code to a model. The tree is not yet verified.
    bool describe(ir::Model& model, const ir::BlockLabels& labels);

    // ---- Between the calls

    /// Current size of a variable-size input for the following steps.
    ///
    /// @throws Error (Usage) before start, or for a size beyond the port's bound or, with a fixed size, other than it;
    ///         the instance goes on
    void setInputSize(int port, const Dims& size);
    /// Changes a dialog value: before initializeSizes any, since ports are declared from the values; while running a
    /// tunable one, which goes through mdlCheckParameters and mdlProcessParameters.
    ///
    /// @throws Error (Usage) if it may not change now, or mdlCheckParameters refuses the value; the value in force stays.
    ///               When mdlProcessParameters reports an error, the instance has failed.
    bool setParam(int idx, double value);
    /// Makes call number n, counted from 1, of a host function refuse; for tests. Only functions that can refuse by giving 0
    /// or false do; refusals() tells whether it came to that.
    void refuseCall(const std::string& function, int n);

    // ---- What there is to see

    State state() const noexcept;
    /// Dialog value idx. @throws Error (Usage) for an index that the block does not have
    double param(int idx) const;
    /// Error of the last step.
    const std::optional<esttform::Message>& stepError() const noexcept;
    bool hasWarnings() const noexcept;
    /// The warnings since the last call, which are then forgotten.
    std::vector<esttform::Message> takeWarnings();
    /// Why setters refused, in order, since the set-up began.
    const std::vector<std::string>& refusals() const noexcept;
    /// Elements of a port from start on; null for a port that does not exist.
    void* inputData(int port) const noexcept;
    const void* outputData(int port) const noexcept;
    void clearOutputs() noexcept;
    /// Everything the host keeps of the block; block_instance.h declares it.
    const sysobj::SysObjAdaptorSFun& instance() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace blockhost

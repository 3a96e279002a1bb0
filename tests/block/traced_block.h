// The plug-in in the stand-in host, with its calls as text and short ways to describe what it is connected to.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "block.h"
#include "block_instance.h"
#include "estimator.h"
#include "szelesttform_params.h"

namespace blocktest {

using blockhost::Dims;
using blockhost::Signal;
using ParamChanges = std::vector<std::pair<int, double>>;

/// Dialog values: projective, robust, distance threshold, 100 samplings, inlier output, points in rows; then the changes.
inline std::vector<double> dialogValues(const ParamChanges& changes = {})
{
    std::vector<double> params = {3, 1, 1, 9, 9, 1, 500, 100, 99, 0, 90, 1, 1, 1, 2, 0, 1, 1};
    for (const auto& [idx, value] : changes) params.at(static_cast<std::size_t>(idx)) = value;
    return params;
}

inline Signal signalOf(Dims dims, int typeId = sysobj::DT_DOUBLE, int mode = sysobj::DIMS_MODE_FIXED)
{
    Signal signal;
    signal.dims = dims;
    signal.typeId = typeId;
    signal.mode = mode;
    return signal;
}

/// A block whose calls are recorded, one text a call, without the reads of dialog values.
class TracedBlock {
public:
    explicit TracedBlock(const ParamChanges& changes = {}, std::vector<Signal> inputs = {},
                         std::vector<Signal> outputs = {}, std::vector<blockhost::Offer> offerOrder = {})
    {
        blockhost::BlockSetup setup;
        setup.libraryPath = BLOCK_PATH;
        setup.params = dialogValues(changes);
        setup.inputs = std::move(inputs);
        setup.outputs = std::move(outputs);
        setup.offerOrder = std::move(offerOrder);
        setup.trace = [this](std::string_view line) {
            const std::string text(line.substr(std::min(line.find_first_not_of(' '), line.size())));
            if (text.rfind("bhGetSFcnParam", 0) != 0 && text.rfind("bhGetArrayReal", 0) != 0) mCalls.push_back(text);
        };
        mBlock = std::make_unique<blockhost::Block>(std::move(setup));
    }

    blockhost::Block* operator->() { return mBlock.get(); }
    const sysobj::SysObjAdaptorSFun& instance() const { return mBlock->instance(); }

    /// Every call so far that begins with the text.
    std::vector<std::string> calls(const std::string& beginning) const
    {
        std::vector<std::string> found;
        for (const std::string& call : mCalls) {
            if (call.rfind(beginning, 0) == 0) found.push_back(call);
        }
        return found;
    }
    bool called(const std::string& call) const { return std::find(mCalls.begin(), mCalls.end(), call) != mCalls.end(); }
    const std::vector<std::string>& calls() const { return mCalls; }
    void forgetCalls() { mCalls.clear(); }

    /// Identifiers of the errors that the block raised: "pts1OrPts2TooSmall 4".
    std::vector<std::string> errors() const
    {
        std::vector<std::string> found;
        for (const std::string& call : calls("dspError(")) found.push_back(call.substr(9, call.size() - 10));
        return found;
    }

    /// Runs the set-up as far as it goes. @return the text of the exception that stopped it, empty for none
    std::string tryOpen()
    {
        try {
            mBlock->open();
        } catch (const esttform::Error& error) {
            return error.what();
        }
        return "";
    }

private:
    std::vector<std::string> mCalls;
    std::unique_ptr<blockhost::Block> mBlock;
};

}  // namespace blocktest

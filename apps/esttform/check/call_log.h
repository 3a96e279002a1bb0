// CallLog: what a block did in a set-up, call by call, from the host's trace.
#pragma once

#include "blockhost/block.h"

#include <string>
#include <string_view>
#include <vector>

namespace esttform::check {

class CallLog {
public:
    /// Makes a set-up write here; the log must outlive the block.
    void attachTo(blockhost::BlockSetup& setup);

    /// Every call, callbacks at the margin and host calls indented: "  bhSetNumDWork(8) -> true".
    const std::vector<std::string>& lines() const { return mLines; }
    /// Messages in order: what dspError was given, and helpers of the host that reported and gave false, by name.
    std::vector<std::string> messages() const;

private:
    std::vector<std::string> mLines;
};

/// Name of the host function of a line: "bhSetNumDWork".
std::string functionOf(std::string_view line);
/// True for a line of a host call, false for one of a callback.
bool isHostCall(std::string_view line);
/// True for a host call that was refused.
bool isRefused(std::string_view line);

}  // namespace esttform::check

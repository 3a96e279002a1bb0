#include "../block_check.h"

#include "../signal_buffer.h"
#include "checks.h"
#include "trial.h"

#include <fmt/format.h>

namespace esttform {

using namespace blockhost::check;

namespace {

struct Entry {
    BlockCheck check;
    void (*run)(const std::string& path, unsigned seed);
};

const std::vector<Entry>& entries()
{
    static const std::vector<Entry> TABLE = {
        {{"order", "from the first callback to the last, three lives; a plain shift is found", false}, checkOrder},
        {{"terminate", "the end after each callback, and after a refused set-up", false}, checkTermination},
        {{"instances", "two instances side by side give what each gives alone", false}, checkTwoInstances},
        {{"propagation", "attributes of ports offered in any order end in the same ports", true}, checkPropagation},
        {{"contradictions", "inputs that do not fit each other are refused in any order", true}, checkContradictions},
        {{"refusals", "each call of the host is refused in turn; the block stops or goes on, and lives again", false}, checkRefusals},
        {{"parameters", "odd values of dialog parameters are refused or do no harm", false}, checkParameters},
        {{"tuning", "parameters changed while running take effect, refused ones do not", false}, checkTuning},
        {{"types", "all pairs of data types, layouts and transformations find a shift; inputs stay as they are", false}, checkTypes},
        {{"sizes", "any number of points up to the bound; too few are refused", false}, checkSizes},
        {{"repetition", "the same step gives the same bits, whatever came between", false}, checkRepeatedSteps},
        {{"random", "any settings, any points: repeated, on a line, huge, not finite", true}, checkRandomSteps},
        {{"code", "the description of code keeps to the rules of the tree", false}, checkCode},
    };
    return TABLE;
}

}  // namespace

const std::vector<BlockCheck>& blockChecks()
{
    static const std::vector<BlockCheck> CHECKS = [] {
        std::vector<BlockCheck> checks;
        for (const Entry& entry : entries())
            checks.push_back(entry.check);
        return checks;
    }();
    return CHECKS;
}

std::string runBlockCheck(const std::string& name, const std::string& blockPath, unsigned seed)
{
    for (const Entry& entry : entries()) {
        if (name != entry.check.name)
            continue;
        blockhost::useGuardZones();
        try {
            entry.run(blockPath, seed);
        } catch (const Finding& finding) {
            return finding.what();
        } catch (const Error& error) {
            if (error.kind() == ErrorKind::Load)
                throw;
            return error.what();
        }
        return {};
    }
    throw Error(ErrorKind::Usage, fmt::format("check: got \"{}\", which is none", name));
}

}  // namespace esttform

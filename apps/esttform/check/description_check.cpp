// Code generation: the tree that a block describes is verified by the host, and the same from every instance.
#include "check/case.h"
#include "check/checks.h"
#include "check/finding.h"

#include "blockhost/codegen.h"

#include <fmt/format.h>

namespace esttform::check {

std::string checkDescription(const CheckInput& input)
{
    const std::vector<Case> cases = variety();
    for (const Case& c : cases) {
        input.note(c.text());
        CodeOptions options;
        options.isVariableSize = c.isVariable;
        options.blockPath = input.path;
        const std::string first = dumpIr(c.params, c.pointsType, c.ptsNum, options);
        if (dumpIr(c.params, c.pointsType, c.ptsNum, options) != first)
            throw Finding(fmt::format("{}: described differently the second time", c.text()));
    }
    return fmt::format("{} set-ups described by the rules, twice the same", cases.size());
}

}  // namespace esttform::check

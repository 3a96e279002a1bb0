#include "known_fcns.h"

#include <algorithm>

namespace blockhost::ir {

using CG::Node;
using CG::Type;

namespace {

constexpr const char* KNOWN_HEADERS[] = {"<math.h>", "<stdlib.h>", "<time.h>", "zelendian_rt.h", "zelsvd_rt.h"};

/// int32 NQZEL_SVD_x(X, n, p, s, e, work, U, V, wantVectors)
KnownFcn decomposition(const char* name, const Type* real)
{
    const Type* const array = CG::pointerT(CG::staticUnknownMatrixT(real));
    return {name, "zelsvd_rt.h",
            {array, CG::uint32T(), CG::int32T(), array, array, array, array, array, CG::int32T()}, CG::int32T()};
}

const std::vector<KnownFcn>& externals()
{
    static const std::vector<KnownFcn> FCNS = {
        {"clock", "<time.h>", {}, CG::uint32T()},
        {"srand", "<stdlib.h>", {CG::uint32T()}, nullptr},
        decomposition("NQZEL_SVD_D", CG::doubleT()),
        decomposition("NQZEL_SVD_R", CG::singleT()),
    };
    return FCNS;
}

}  // namespace

const KnownFcn* findExternal(const std::string& name) noexcept
{
    const auto found = std::find_if(externals().begin(), externals().end(),
                                    [&name](const KnownFcn& fcn) { return fcn.name == name; });
    return found != externals().end() ? &*found : nullptr;
}

bool isKnownHeader(const std::string& header) noexcept
{
    return std::find(std::begin(KNOWN_HEADERS), std::end(KNOWN_HEADERS), header) != std::end(KNOWN_HEADERS);
}

std::vector<const Type*> inputTypesOf(const Node& call)
{
    std::vector<const Type*> types;
    switch (call.callee) {
    case Node::Callee::Library:
        for (const CG::Var* const input : call.fcn->inputs)
            types.push_back(input->type);
        break;
    case Node::Callee::External:
        if (const KnownFcn* const fcn = findExternal(call.name))
            types = fcn->inputs;
        break;
    case Node::Callee::Target:
    case Node::Callee::Intrinsic:
        types.assign(call.name == "rand" ? 0 : call.name == "pow" ? 2 : 1, call.type);
        break;
    }
    return types;
}

bool isPointerArgument(const Node& call, std::size_t idx)
{
    const std::vector<const Type*> types = inputTypesOf(call);
    return idx < types.size() && (CG::isPointer(types[idx]) || CG::isMatrix(types[idx]));
}

bool isCallWithSideEffects(const Node& call) noexcept
{
    switch (call.callee) {
    case Node::Callee::Library:
    case Node::Callee::External: return true;
    case Node::Callee::Target: return call.name == "rand";
    case Node::Callee::Intrinsic: return false;
    }
    return true;
}

}  // namespace blockhost::ir

#include "model_layout.h"

#include "c_type.h"
#include "names.h"

#include <fmt/format.h>

#include <algorithm>

namespace blockhost::c99 {

namespace {

/// "2-by-500, column by column"; "at most 2-by-500, column by column in its current size".
std::string shapeOf(const ir::PortInfo& port)
{
    if (!port.isVariable)
        return port.dims.text() + (port.dims.isVector() ? "" : ", column by column");
    return "at most " + port.dims.text() + (port.dims.isVector() ? "" : ", column by column in its current size");
}

std::string joined(const std::string& first, const std::string& second)
{
    return first.empty() || second.empty() ? first + second : first + "; " + second;
}

std::size_t elementNumOf(const CG::Var* var)
{
    return static_cast<std::size_t>(var->width);
}

}  // namespace

ModelLayout::ModelLayout(const ir::Model& model)
{
    NameScope names;
    const auto named = [&](const CG::Var* var) { return mNames[var] = names.add(var->name); };
    const auto addPorts = [&](FieldGroup& group, const std::vector<ir::PortInfo>& ports) {
        for (const ir::PortInfo& port : ports) {
            group.fields.push_back({port.var->type, elementNumOf(port.var), named(port.var), joined(shapeOf(port), port.var->use)});
            if (!port.isVariable)
                continue;
            const std::string sizeName = names.add(group.fields.back().name + "Dims");
            mSizeNames[port.var] = sizeName;
            group.fields.push_back({CG::int32T(), static_cast<std::size_t>(port.dims.num()), sizeName,
                                    "current rows and columns"});
        }
    };
    mGroups = {{"Inputs: to be filled before a step.", {}},
               {"Outputs: valid after a step.", {}},
               {"Parameters: may be changed between steps; the next step uses the new values.", {}},
               {"Work memory: kept between steps, not to be changed.", {}}};
    for (const auto& block : model.blocks)
        addPorts(mGroups[0], block->inputs);
    for (const auto& block : model.blocks)
        addPorts(mGroups[1], block->outputs);
    for (const auto& block : model.blocks)
        for (const ir::ParamInfo& param : block->params)
            mGroups[2].fields.push_back({param.var->type, 0, named(param.var), param.meaning});
    for (const auto& block : model.blocks)
        for (const CG::Var* const vector : block->workVectors)
            mGroups[3].fields.push_back({vector->type, elementNumOf(vector), named(vector), vector->use});
    mGroups.erase(std::remove_if(mGroups.begin(), mGroups.end(), [](const FieldGroup& group) { return group.fields.empty(); }),
                  mGroups.end());
}

std::size_t ModelLayout::byteNum() const
{
    std::vector<std::pair<const CG::Type*, std::size_t>> fields;
    for (const FieldGroup& group : mGroups)
        for (const Field& field : group.fields)
            fields.emplace_back(field.type, std::max<std::size_t>(field.elementNum, 1));
    return structByteNum(fields);
}

}  // namespace blockhost::c99

#include "model_builder.h"

#include "../data_types.h"
#include "block_interface.h"

#include <fmt/format.h>

#include <cstdint>

namespace blockhost::ir {

namespace {

using CG::Var;

/// The value that a dialog value has in a run-time parameter of a type.
double storedValue(double dialogValue, int typeId)
{
    alignas(std::uint64_t) unsigned char element[sizeof(std::uint64_t)] = {};
    storeReal(dialogValue, typeId, element);
    switch (typeId) {
    case sysobj::DT_DOUBLE: return *reinterpret_cast<const double*>(element);
    case sysobj::DT_SINGLE: return static_cast<double>(*reinterpret_cast<const float*>(element));
    case sysobj::DT_UINT32: return *reinterpret_cast<const std::uint32_t*>(element);
    default: return dialogValue;
    }
}

PortInfo portInfo(CG::Module& module, const Port& port, Var::Storage storage, const PortLabel& label)
{
    PortInfo info;
    info.dims = port.dims;
    info.isVariable = port.mode == sysobj::DIMS_MODE_VARIABLE;
    info.var = module.newVar(label.name, storage, CG::GetCGType(port.typeId), port.dims.width(), label.note);
    return info;
}

PortLabel labelAt(const std::vector<PortLabel>& labels, std::size_t idx, const char* kind)
{
    return idx < labels.size() ? labels[idx] : PortLabel{fmt::format("{}{}", kind, idx), ""};
}

/// "Largest number of samplings (0 or more)."
std::string meaningOf(const sysobj::SysObjAdaptorSFun& S, int dlgIdx)
{
    const auto idx = static_cast<std::size_t>(dlgIdx);
    if (idx >= S.paramLabels.size() || S.paramLabels[idx].meaning.empty())
        return S.paramName(dlgIdx);
    const ParamLabel& label = S.paramLabels[idx];
    return label.values.empty() ? label.meaning : fmt::format("{} Admitted: {}.", label.meaning, label.values);
}

/// Variable-size outputs are those with a size rule.
void addSignals(CG::Module& module, BlockCode& code, const sysobj::SysObjAdaptorSFun& S, const BlockLabels& labels)
{
    for (std::size_t i = 0; i < S.inputs.size(); ++i)
        code.inputs.push_back(portInfo(module, S.inputs[i], Var::Storage::InputPort, labelAt(labels.inputs, i, "input")));
    for (std::size_t i = 0; i < S.outputs.size(); ++i) {
        code.outputs.push_back(portInfo(module, S.outputs[i], Var::Storage::OutputPort, labelAt(labels.outputs, i, "output")));
        code.outputs.back().isVariable = S.outputs[i].sizeRule.has_value();
    }
    for (const RunTimeParam& param : S.runTimeParams) {
        ParamInfo info;
        info.var = module.newVar(param.name, Var::Storage::RunTimeParam, CG::GetCGType(param.typeId), 0, "");
        info.value = storedValue(S.params[static_cast<std::size_t>(param.dlgIdx)].value, param.typeId);
        info.meaning = meaningOf(S, param.dlgIdx);
        code.params.push_back(std::move(info));
    }
    for (const WorkVector& vector : S.workVectors)
        code.workVectors.push_back(module.newVar(vector.name, Var::Storage::WorkVector, CG::GetCGType(vector.typeId),
                                                 vector.width, ""));
    code.settings = labels.settings;
}

void describeSizeRules(BlockInterface& blockInterface, sysobj::SysObjAdaptorSFun& S)
{
    for (std::size_t i = 0; i < S.outputs.size(); ++i) {
        const auto& rule = S.outputs[i].sizeRule;
        if (rule && rule->setOutputDimsCG != nullptr)
            rule->setOutputDimsCG(&S, &blockInterface, static_cast<int>(i), rule->inputPorts.data());
    }
}

}  // namespace

BlockCode& addBlock(Model& model, sysobj::SysObjAdaptorSFun& S, const BlockLabels& labels,
                    const std::function<void(CGIR_Block_IF*)>& describe)
{
    model.blocks.push_back(std::make_unique<BlockCode>(model.module));
    ++model.module.blockNum;
    BlockCode& code = *model.blocks.back();
    addSignals(model.module, code, S, labels);
    BlockInterface blockInterface(model.module, code);
    describeSizeRules(blockInterface, S);
    describe(&blockInterface);
    return code;
}

}  // namespace blockhost::ir

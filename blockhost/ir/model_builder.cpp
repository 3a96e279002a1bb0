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

PortInfo portInfo(CG::Module& module, const Port& port, Var::Storage storage, std::string name)
{
    PortInfo info;
    info.dims = port.dims;
    info.isVariable = port.mode == sysobj::DIMS_MODE_VARIABLE;
    info.var = module.newVar(std::move(name), storage, CG::GetCGType(port.typeId), port.dims.width(), "");
    return info;
}

std::string nameAt(const std::vector<std::string>& names, std::size_t idx, const char* kind)
{
    return idx < names.size() ? names[idx] : fmt::format("{}{}", kind, idx);
}

/// Variable-size outputs are those with a size rule.
void addSignals(CG::Module& module, BlockCode& code, const sysobj::SysObjAdaptorSFun& S, const SignalNames& names)
{
    for (std::size_t i = 0; i < S.inputs.size(); ++i)
        code.inputs.push_back(portInfo(module, S.inputs[i], Var::Storage::InputPort, nameAt(names.inputs, i, "input")));
    for (std::size_t i = 0; i < S.outputs.size(); ++i) {
        code.outputs.push_back(portInfo(module, S.outputs[i], Var::Storage::OutputPort, nameAt(names.outputs, i, "output")));
        code.outputs.back().isVariable = S.outputs[i].sizeRule.has_value();
    }
    for (const RunTimeParam& param : S.runTimeParams) {
        ParamInfo info;
        info.var = module.newVar(param.name, Var::Storage::RunTimeParam, CG::GetCGType(param.typeId), 0, "");
        info.value = storedValue(S.params[static_cast<std::size_t>(param.dlgIdx)].value, param.typeId);
        const auto label = static_cast<std::size_t>(param.dlgIdx);
        info.meaning = label < S.paramLabels.size() ? S.paramLabels[label].meaning : S.paramName(param.dlgIdx);
        code.params.push_back(std::move(info));
    }
    for (const WorkVector& vector : S.workVectors)
        code.workVectors.push_back(module.newVar(vector.name, Var::Storage::WorkVector, CG::GetCGType(vector.typeId),
                                                 vector.width, ""));
    for (const sysobj::yrArray& param : S.params)
        code.settings.push_back({S.paramName(param.idx), param.value});
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

BlockCode& addBlock(Model& model, sysobj::SysObjAdaptorSFun& S, const SignalNames& names,
                    const std::function<void(CGIR_Block_IF*)>& describe)
{
    model.blocks.push_back(std::make_unique<BlockCode>(model.module));
    BlockCode& code = *model.blocks.back();
    addSignals(model.module, code, S, names);
    BlockInterface blockInterface(model.module, code);
    describeSizeRules(blockInterface, S);
    describe(&blockInterface);
    return code;
}

}  // namespace blockhost::ir

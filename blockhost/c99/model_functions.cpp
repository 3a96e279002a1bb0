// clearOutputs, NAME_start and NAME_step of a model.
#include "c_type.h"
#include "literal.h"
#include "model_files.h"
#include "statement.h"

#include <fmt/format.h>

#include <functional>

namespace blockhost::c99 {

namespace {

/// What the phases of a model have in common while they are written.
struct Phase {
    const ir::Model& model;
    const ModelLayout& layout;
    const std::string& name;
    Unit& unit;
    Lines& lines;
};

bool hasOutputs(const ir::Model& model)
{
    for (const auto& block : model.blocks)
        if (!block->outputs.empty())
            return true;
    return false;
}

std::string clearCall(const ir::Model& model)
{
    return hasOutputs(model) ? fmt::format("{}(model);", CLEAR_OUTPUTS) : "";
}

void writeClearOutputs(const Phase& phase)
{
    Lines& lines = phase.lines;
    lines.comment("Sets every element of the outputs to zero.");
    lines.openFunction(fmt::format("static void {}({}_Model* model)", CLEAR_OUTPUTS, phase.name));
    lines.line("int32_t i;");
    lines.blank();
    for (const auto& block : phase.model.blocks) {
        for (const ir::PortInfo& output : block->outputs) {
            lines.open(fmt::format("for (i = 0; i < {}; i++)", output.var->width));
            lines.line(fmt::format("model->{}[i] = {};", phase.layout.nameOf(output.var), literalText(output.var->type, 0.0)));
            lines.close();
        }
    }
    lines.close();
    lines.blank();
}

/// Short names for the signals that the statements use: pointers to arrays, copies of parameters.
bool writeSignals(const Phase& phase, const ir::BlockCode& block, const BodyUsage& usage, NameScope& scope)
{
    bool hasAny = false;
    const auto declare = [&](const CG::Var* var, const char* format) {
        if (!usage.isNamed(var))
            return;
        const std::string name = scope.add(var->name);
        phase.unit.varNames[var] = name;
        phase.lines.line(fmt::format(format, cTypeName(var->type), name, phase.layout.nameOf(var)));
        hasAny = true;
    };
    for (const ir::PortInfo& input : block.inputs)
        declare(input.var, "const {}* const {} = model->{};");
    for (const ir::PortInfo& output : block.outputs)
        declare(output.var, "{}* const {} = model->{};");
    for (const ir::ParamInfo& param : block.params)
        declare(param.var, "const {} {} = model->{};");
    for (const CG::Var* const vector : block.workVectors)
        declare(vector, "{}* const {} = model->{};");
    return hasAny;
}

StepText stepText(const Phase& phase, const ir::BlockCode& block)
{
    StepText step{clearCall(phase.model), fmt::format("return {}_SIZE_ERROR;", phase.name), {}};
    for (const ir::PortInfo& output : block.outputs)
        step.outputSizeNames.push_back(output.isVariable ? "model->" + phase.layout.sizeNameOf(output.var) : "");
    for (const ir::PortInfo& input : block.inputs)
        if (input.isVariable)
            phase.unit.sizeNames[input.var] = "model->" + phase.layout.sizeNameOf(input.var);
    return step;
}

/// One block's bodies, which share a C block; between their declarations and statements what the prologue writes.
void writeBodies(const Phase& phase, const ir::BlockCode& block, const std::vector<const CG::Block*>& bodies,
                 const BodyUsage& usage, NameScope& scope, const std::function<void()>& prologue)
{
    const StepText step = stepText(phase, block);
    StatementWriter writer(phase.lines, phase.unit, usage, &step);
    bool hasDeclarations = writeSignals(phase, block, usage, scope);
    for (const CG::Block* const body : bodies)
        hasDeclarations = writer.locals(*body, scope) || hasDeclarations;
    if (hasDeclarations)
        phase.lines.blank();
    prologue();
    for (const CG::Block* const body : bodies)
        writer.statements(*body, scope);
}

using BodiesOf = std::vector<const CG::Block*> (*)(const ir::BlockCode&);

std::vector<const CG::Block*> startOf(const ir::BlockCode& block) { return {&block.start.root}; }
std::vector<const CG::Block*> stepOf(const ir::BlockCode& block) { return {&block.sizeRules.root, &block.output.root}; }

std::vector<const CG::Block*> allBodies(const ir::Model& model, BodiesOf bodiesOf)
{
    std::vector<const CG::Block*> all;
    for (const auto& block : model.blocks)
        for (const CG::Block* const body : bodiesOf(*block))
            all.push_back(body);
    return all;
}

/// The contents of a phase's function: a single block stands in the function itself, several in a C block each.
void writePhase(const Phase& phase, BodiesOf bodiesOf, const std::function<void()>& prologue)
{
    const BodyUsage usage(allBodies(phase.model, bodiesOf));
    NameScope scope(&phase.unit.names);
    scope.take("model");
    if (phase.model.blocks.size() == 1) {
        const ir::BlockCode& block = *phase.model.blocks.front();
        writeBodies(phase, block, bodiesOf(block), usage, scope, prologue);
        return;
    }
    prologue();
    for (std::size_t i = 0; i < phase.model.blocks.size(); ++i) {
        const ir::BlockCode& block = *phase.model.blocks[i];
        NameScope inner(&scope);
        phase.lines.comment(fmt::format("Block {}", i + 1));
        phase.lines.open("");
        writeBodies(phase, block, bodiesOf(block), usage, inner, [] {});
        phase.lines.close();
    }
}

void writeSizes(const Phase& phase, const ir::PortInfo& port)
{
    for (int dim = 0; port.isVariable && dim < port.dims.num(); ++dim)
        phase.lines.line(fmt::format("model->{}[{}] = {};", phase.layout.sizeNameOf(port.var), dim, port.dims.size(dim)));
}

void writeStart(const Phase& phase)
{
    Lines& lines = phase.lines;
    lines.comment("Parameters as generated, sizes at their bounds, outputs cleared; then the blocks' start code.");
    lines.openFunction(fmt::format("void {0}_start({0}_Model* model)", phase.name));
    writePhase(phase, startOf, [&] {
        for (const auto& block : phase.model.blocks) {
            for (const ir::ParamInfo& param : block->params)
                lines.line(fmt::format("model->{} = {};", phase.layout.nameOf(param.var), literalText(param.var->type, param.value)));
            for (const ir::PortInfo& input : block->inputs)
                writeSizes(phase, input);
            for (const ir::PortInfo& output : block->outputs)
                writeSizes(phase, output);
        }
        if (hasOutputs(phase.model))
            lines.line(clearCall(phase.model));
    });
    lines.close();
    lines.blank();
}

/// Refuses sizes that the arrays have no room for.
void writeSizeBounds(const Phase& phase, const ir::PortInfo& input)
{
    const std::string& name = phase.layout.sizeNameOf(input.var);
    std::string isOutside;
    for (int dim = 0; dim < input.dims.num(); ++dim)
        isOutside += fmt::format("{0}model->{1}[{2}] < 0 || model->{1}[{2}] > {3}", dim > 0 ? " || " : "", name, dim,
                                 input.dims.size(dim));
    phase.lines.open(fmt::format("if ({})", isOutside));
    if (hasOutputs(phase.model))
        phase.lines.line(clearCall(phase.model));
    phase.lines.line(fmt::format("return {}_SIZE_ERROR;", phase.name));
    phase.lines.close();
}

void writeStep(const Phase& phase)
{
    Lines& lines = phase.lines;
    lines.comment("One step. Sizes beyond the bounds, or that the blocks refuse, end it with cleared outputs.");
    lines.openFunction(fmt::format("{0}_Status {0}_step({0}_Model* model)", phase.name));
    writePhase(phase, stepOf, [&] {
        for (const auto& block : phase.model.blocks)
            for (const ir::PortInfo& input : block->inputs)
                if (input.isVariable)
                    writeSizeBounds(phase, input);
    });
    lines.line(fmt::format("return {}_OK;", phase.name));
    lines.close();
}

}  // namespace

std::vector<const CG::Block*> stepBodies(const ir::Model& model) { return allBodies(model, stepOf); }
std::vector<const CG::Block*> startBodies(const ir::Model& model) { return allBodies(model, startOf); }

Lines modelFunctions(const ir::Model& model, const ModelLayout& layout, const ModelText& text, Unit& unit)
{
    Lines lines;
    const Phase phase{model, layout, text.modelName, unit, lines};
    if (hasOutputs(model))
        writeClearOutputs(phase);
    writeStart(phase);
    writeStep(phase);
    return lines;
}

}  // namespace blockhost::c99

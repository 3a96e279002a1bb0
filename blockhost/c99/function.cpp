#include "function.h"

#include "c_type.h"
#include "statement.h"

#include <algorithm>

namespace blockhost::c99 {

namespace {

/// "Purpose.\n\n@name text of each input\n\nFrom generator Class."
std::string commentOf(const CG::Fcn& fcn, const Unit& unit)
{
    std::string text = fcn.purpose;
    std::string inputs;
    for (std::size_t i = 0; i < fcn.inputs.size() && i < fcn.inputTexts.size(); ++i)
        if (!fcn.inputTexts[i].empty())
            inputs += "\n    " + unit.varNames.at(fcn.inputs[i]) + ": " + fcn.inputTexts[i];
    if (!inputs.empty())
        text += (text.empty() ? "Inputs:" : "\n\nInputs:") + inputs;
    if (!fcn.generator.empty())
        text += (text.empty() ? "Generator: " : "\n\nGenerator: ") + fcn.generator;
    return text;
}

/// Names the inputs in a function's scope.
void nameInputs(const CG::Fcn& fcn, Unit& unit, NameScope& scope)
{
    for (const CG::Var* const input : fcn.inputs)
        unit.varNames[input] = scope.add(input->name);
}

std::string headOf(const CG::Fcn& fcn, Unit& unit)
{
    std::string parameters;
    for (const CG::Var* const input : fcn.inputs) {
        unit.typeName(input->type);
        parameters += (parameters.empty() ? "" : ", ") + declaration(input->type, unit.varNames.at(input));
    }
    return "void " + unit.fcnNames.at(&fcn) + "(" + (parameters.empty() ? "void" : parameters) + ")";
}

}  // namespace

std::vector<const CG::Fcn*> reachedFcns(const CG::Module& module, const std::vector<const CG::Block*>& bodies)
{
    std::vector<const CG::Fcn*> reached;
    std::vector<BodyUsage> usages;
    for (const CG::Block* const body : bodies)
        usages.emplace_back(*body);
    for (auto fcn = module.fcns.rbegin(); fcn != module.fcns.rend(); ++fcn) {
        const bool isCalled = std::any_of(usages.begin(), usages.end(),
                                          [&](const BodyUsage& usage) { return usage.isCalled(fcn->get()); });
        if (!isCalled)
            continue;
        reached.insert(reached.begin(), fcn->get());
        usages.emplace_back((*fcn)->cfg.root);
    }
    return reached;
}

std::string prototype(const CG::Fcn& fcn, Unit& unit)
{
    NameScope scope(&unit.names);
    nameInputs(fcn, unit, scope);
    return headOf(fcn, unit);
}

Lines functionText(const CG::Fcn& fcn, const std::string& storage, Unit& unit)
{
    NameScope scope(&unit.names);
    nameInputs(fcn, unit, scope);
    const BodyUsage usage(fcn.cfg.root);
    Lines lines;
    const std::string comment = commentOf(fcn, unit);
    if (!comment.empty())
        lines.comment(comment);
    lines.openFunction(storage + headOf(fcn, unit));
    StatementWriter writer(lines, unit, usage);
    const bool hasLocals = writer.locals(fcn.cfg.root, scope);
    if (hasLocals)
        lines.blank();
    for (const CG::Var* const input : fcn.inputs)
        if (!usage.isNamed(input))
            lines.line("(void)" + unit.varNames.at(input) + ";");
    writer.statements(fcn.cfg.root, scope);
    lines.close();
    lines.blank();
    return lines;
}

}  // namespace blockhost::c99

// The tree as text for people.
#include "model.h"

#include <fmt/format.h>

#include <map>
#include <string_view>

namespace blockhost::ir {

using CG::Node;
using CG::Stmt;
using CG::Var;

namespace {

/// Text of one body. The second variable of one name is shown as name#2.
class BodyDump {
public:
    explicit BodyDump(std::string& text, bool withLines = true) : mText(text), mWithLines(withLines) {}

    void block(const CG::Block& block, int depth);
    std::string name(const Var* var);

private:
    void line(int depth, const std::string& text, const CG::Place* place = nullptr);
    void statement(const Stmt& stmt, int depth);
    std::string expression(const Node* node);
    std::string call(const Node& node);

    std::string& mText;
    bool mWithLines;                                     ///< the generator's line behind each statement
    std::map<const Var*, std::string> mNames;
    std::map<std::string, int> mUseNums;
};

std::string BodyDump::name(const Var* var)
{
    const auto [entry, isNew] = mNames.emplace(var, var->name);
    const int num = isNew ? ++mUseNums[var->name] : 1;
    if (num > 1)
        entry->second = fmt::format("{}#{}", var->name, num);
    return entry->second;
}

void BodyDump::line(int depth, const std::string& text, const CG::Place* place)
{
    const std::string indented = std::string(static_cast<std::size_t>(4 * depth), ' ') + text;
    const std::string_view file = mWithLines && place != nullptr ? std::string_view(place->file) : "";
    mText += file.empty() ? indented + "\n"
                          : fmt::format("{:<88} [{}:{}]\n", indented, file.substr(file.rfind('/') + 1), place->line);
}

std::string BodyDump::call(const Node& node)
{
    std::string text = (node.callee == Node::Callee::Library ? node.fcn->name : node.name) + "(";
    for (std::size_t i = 0; i < node.in.size(); ++i)
        text += (i > 0 ? ", " : "") + expression(node.in[i]);
    return text + ")";
}

std::string BodyDump::expression(const Node* node)
{
    if (node == nullptr)
        return "<nothing>";
    switch (node->kind) {
    case Node::Kind::Const: return fmt::format("{}:{}", node->value, CG::typeText(node->type));
    case Node::Kind::Variable: return name(node->var);
    case Node::Kind::Index: return fmt::format("{}[{}]", expression(node->in[0]), expression(node->in[1]));
    case Node::Kind::Real: return fmt::format("real({})", expression(node->in[0]));
    case Node::Kind::Imag: return fmt::format("imag({})", expression(node->in[0]));
    case Node::Kind::Unary: return fmt::format("{}({})", node->op, expression(node->in[0]));
    case Node::Kind::Binary: return fmt::format("({} {} {})", expression(node->in[0]), node->op, expression(node->in[1]));
    case Node::Kind::Cast: return fmt::format("{}({})", CG::typeText(node->type), expression(node->in[0]));
    case Node::Kind::Assign: return fmt::format("({} := {})", expression(node->in[0]), expression(node->in[1]));
    case Node::Kind::Call: return call(*node);
    case Node::Kind::InputDim: return fmt::format("size({}, {})", name(node->var), node->dim);
    case Node::Kind::Invalid: break;
    }
    return fmt::format("<invalid: {}>", node->name);
}

void BodyDump::statement(const Stmt& stmt, int depth)
{
    const CG::Place* const place = &stmt.place;
    switch (stmt.kind) {
    case Stmt::Kind::Assign:
        line(depth, fmt::format("{} := {}", expression(stmt.target), expression(stmt.value)), place);
        break;
    case Stmt::Kind::Call: line(depth, expression(stmt.value), place); break;
    case Stmt::Kind::Comment: line(depth, "-- " + stmt.text); break;
    case Stmt::Kind::Increment: line(depth, expression(stmt.target) + " += 1", place); break;
    case Stmt::Kind::Decrement: line(depth, expression(stmt.target) + " -= 1", place); break;
    case Stmt::Kind::For:
        line(depth, fmt::format("for {} from 0 while below {}", expression(stmt.target), expression(stmt.value)), place);
        break;
    case Stmt::Kind::CFor:
        line(depth, fmt::format("for {} from {} while {} by {}", expression(stmt.target), expression(stmt.value),
                                expression(stmt.condition), stmt.step), place);
        break;
    case Stmt::Kind::While: line(depth, "while " + expression(stmt.condition), place); break;
    case Stmt::Kind::If: line(depth, "if " + expression(stmt.condition), place); break;
    case Stmt::Kind::Scope: line(depth, "scope", place); break;
    case Stmt::Kind::SizeCheck:
        line(depth, fmt::format("end the step unless {} == {}", expression(stmt.value), expression(stmt.condition)), place);
        break;
    case Stmt::Kind::SetOutputDim:
        line(depth, fmt::format("size of output {} along {} := {}", stmt.port, stmt.dim, expression(stmt.value)), place);
        break;
    }
    if (stmt.body)
        block(*stmt.body, depth + 1);
    if (stmt.elseBody) {
        line(depth, "else");
        block(*stmt.elseBody, depth + 1);
    }
}

/// "double tformCompact[9]"
std::string variableText(const std::string& name, const Var& var)
{
    return fmt::format("{} {}{}", CG::typeText(var.type), name, var.width > 0 ? fmt::format("[{}]", var.width) : "");
}

void BodyDump::block(const CG::Block& block, int depth)
{
    for (const Var* const var : block.locals)
        line(depth, "local " + variableText(name(var), *var) + (var->use.empty() ? "" : " -- " + var->use));
    for (const Stmt& stmt : block.stmts)
        statement(stmt, depth);
}

void dumpFcn(const CG::Fcn& fcn, std::string& text, bool withLines)
{
    BodyDump body(text, withLines);
    std::string inputs;
    for (const Var* const input : fcn.inputs)
        inputs += (inputs.empty() ? "" : ", ") + variableText(body.name(input), *input);
    text += fmt::format("function {}({}) by {}\n", fcn.name, inputs, fcn.generator);
    body.block(fcn.cfg.root, 1);
    text += "\n";
}

void dumpBlock(const BlockCode& code, std::string& text)
{
    const auto signal = [&text](const char* kind, const Var* var, const std::string& note) {
        text += fmt::format("    {} {}{}\n", kind, variableText(var->name, *var), note);
    };
    text += "block\n";
    for (const PortInfo& port : code.inputs)
        signal("input", port.var, (port.isVariable ? " of at most " : " of ") + port.dims.text());
    for (const PortInfo& port : code.outputs)
        signal("output", port.var, (port.isVariable ? " of at most " : " of ") + port.dims.text());
    for (const ParamInfo& param : code.params)
        signal("parameter", param.var, fmt::format(" = {}", param.value));
    for (const Var* const vector : code.workVectors)
        signal("work vector", vector, "");
    for (const CG::Cfg* const cfg : {&code.start, &code.sizeRules, &code.output}) {
        text += fmt::format("\n{}\n", cfg->name);
        BodyDump(text).block(cfg->root, 1);
    }
}

}  // namespace

std::string dump(const Model& model)
{
    std::string text;
    for (const std::string& header : model.module.headers)
        text += fmt::format("header {}\n", header);
    for (const CG::BuildModule& module : model.module.buildModules) {
        text += fmt::format("module {}/{}:", module.group, module.name);
        for (const auto* const files : {&module.headers, &module.sources})
            for (const std::string& file : *files)
                text += " " + file;
        text += "\n";
    }
    text += text.empty() ? "" : "\n";
    for (const auto& fcn : model.module.fcns)
        dumpFcn(*fcn, text, true);
    for (const auto& block : model.blocks)
        dumpBlock(*block, text);
    return text;
}

std::string dump(const CG::Fcn& fcn)
{
    std::string text;
    dumpFcn(fcn, text, false);
    return text;
}

}  // namespace blockhost::ir

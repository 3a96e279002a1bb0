#include "described_tree.h"

#include <gtest/gtest.h>

using namespace CG;
using blockhost::ir::BlockCode;
using blockhost::ir::BlockInterface;
using blockhost::ir::Model;

namespace {

/// One block with an input of variable size "in", an output "out" and a parameter "gain", and a function "scale".
struct World {
    World()
    {
        model.blocks.push_back(std::make_unique<BlockCode>(model.module));
        BlockCode& code = *model.blocks.back();
        code.inputs.push_back({model.module.newVar("in", Var::Storage::InputPort, doubleT(), 8, ""), {2, 4}, true});
        code.outputs.push_back({model.module.newVar("out", Var::Storage::OutputPort, doubleT(), 8, ""), {2, 4}, true});
        code.params.push_back({model.module.newVar("gain", Var::Storage::RunTimeParam, doubleT(), 0, ""), 1.0, ""});
        host = std::make_unique<BlockInterface>(model.module, code);
        scale = tree::Function(code.output, "scale", {{"x", tree::arrayOf(doubleT())}, {"factor", doubleT()}},
                               [](auto& f) { f.Assign(f.getInputNumRef(0)[0], f.getInputNumRef(0)[0] * f.getInputNumRef(1)); })
                    .findOrCreateFcn();
        in = host->getInputRef(0);
        out = host->getOutputVar(0);
        gain = host->getParamRef(0);
    }

    Node* callScale(std::vector<Expr> arguments)
    {
        Node* const call = cg_node_create_fcn_call_with_aux_in(scale);
        for (std::size_t i = 0; i < arguments.size(); ++i)
            cg_node_set_in_data(call, static_cast<int>(i) + 1, arguments[i].node());
        return call;
    }
    Node* external(const char* name, int inputNum, std::vector<Expr> arguments, const Type* type = nullptr)
    {
        Node* const call = cg_node_create_untyped_external_function_call(host->GetCfg(), true, name, inputNum, 1);
        for (std::size_t i = 0; i < arguments.size(); ++i)
            cg_node_set_in_data(call, static_cast<int>(i) + 1, arguments[i].node());
        cg_node_set_output_type(call, type);
        return call;
    }
    Expr rand() { return tree::targetCall(model.module, "rand", uint32T(), {}); }
    Cfg& output() { return model.blocks.back()->output; }

    Model model;
    std::unique_ptr<BlockInterface> host;
    Fcn* scale = nullptr;
    Expr in, out, gain;
};

/// A body of the output phase, and what the verifier must say of it; empty: nothing.
struct VerifyCase {
    const char* name;
    void (*describe)(World& w, tree::Builder& f);
    const char* violation;
};

const VerifyCase CASES[] = {
    {"soundBody",
     [](World& w, tree::Builder& f) {
         const Expr i = f.createLocal("i", uint32T());
         const Expr x = f.createLocal("x", doubleT());
         f.Assign(x, 0);
         w.host->AddHeader("<stdlib.h>");
         f.AppendStatement(w.external("srand", 1, {w.rand()}));
         ForBlock loop(f, i, 8);
         f.Assign(x, w.in[i] * w.gain);
         f.AppendStatement(w.callScale({x, w.gain}));
         f.Assign(w.out[i], x);
         w.host->SetCurrentOutputDim(0, 1, w.host->GetCurrentInputDim(0, 1));
     },
     ""},
    {"typesOfAnAssignment",
     [](World&, tree::Builder& f) { f.Assign(f.createLocal("i", int32T()), f.createLocal("j", uint32T())); },
     "output code: statement 1 (verify_test.cpp:"},
    {"typesOfOperands", [](World& w, tree::Builder& f) { f.Assign(w.out[0], w.in[0] + f.createLocal("i", int32T())); },
     "double + int32: expected operands of one type"},
    {"useBehindTheBlock",
     [](World& w, tree::Builder& f) {
         Expr x;
         {
             ScopeBlock scope(f);
             x = f.createLocal("x", doubleT());
         }
         f.Assign(w.out[0], x);
     },
     "x is not known here"},
    {"localOfAnotherBody",
     [](World& w, tree::Builder&) {
         tree::Builder start(w.model.blocks.back()->start);
         start.Assign(w.out[0], tree::Builder(w.output()).createLocal("x", doubleT()));
     },
     "start code: statement 1 (verify_test.cpp:"},
    {"readOnlyInput", [](World& w, tree::Builder& f) { f.Assign(w.in[0], 1); }, "in is read-only"},
    {"readOnlyParameter", [](World& w, tree::Builder& f) { f.Assign(w.gain, 1); }, "gain is read-only"},
    {"targetThatIsNoPlace", [](World& w, tree::Builder& f) { f.Assign(w.gain + 1, 1); }, "the target is no variable"},
    {"conditionOfANumber", [](World& w, tree::Builder& f) { IfBlock block(f, w.gain); }, "condition of double, expected boolean"},
    {"counterOfAReal",
     [](World&, tree::Builder& f) { ForBlock loop(f, f.createLocal("x", doubleT()), 3); },
     "counter of double, expected an integer variable"},
    {"blockThatStaysOpen", [](World& w, tree::Builder& f) { f.beginWhile(), f.whileExpr(w.gain > 0); }, "never closed"},
    {"elseWithoutIf", [](World&, tree::Builder& f) { f.Else(); }, "else where no block is open"},
    {"argumentThatIsMissing", [](World& w, tree::Builder& f) { f.AppendStatement(w.callScale({w.out[0]})); },
     "argument 2 of scale was never set"},
    {"argumentTooMany",
     [](World& w, tree::Builder& f) { f.AppendStatement(w.callScale({w.out[0], w.gain, w.gain})); },
     "scale: got 3 arguments, expected 2"},
    {"argumentOfAnotherType",
     [](World& w, tree::Builder& f) { f.AppendStatement(w.callScale({w.out[0], f.createLocal("i", int32T())})); },
     "argument 2 of scale: got int32, expected double"},
    {"valueForAPointer",
     [](World& w, tree::Builder& f) { f.AppendStatement(w.callScale({w.gain * 2, w.gain})); },
     "argument 1 of scale: got double, expected a variable or an array of double"},
    {"elementOfAnotherTypeForAPointer",
     [](World& w, tree::Builder& f) { f.AppendStatement(w.callScale({f.createLocal("a", singleT(), 4)[0], w.gain})); },
     "argument 1 of scale"},
    {"resultOfAProcedure", [](World& w, tree::Builder& f) { f.Assign(w.out[0], Expr(w.callScale({w.out[0], w.gain}))); },
     "scale gives no result"},
    {"oneDrawInTwoPlaces",
     [](World& w, tree::Builder& f) {
         const Expr i = f.createLocal("i", uint32T());
         const Expr draw = w.rand() % 5;
         f.Assign(i, draw);
         f.Assign(i, draw);
     },
     "one call of rand stands in two places"},
    {"unknownFunction", [](World& w, tree::Builder& f) { f.AppendStatement(w.external("system", 0, {})); },
     "no function system is known"},
    {"headerThatIsMissing", [](World& w, tree::Builder& f) { f.AppendStatement(w.external("clock", 0, {}, uint32T())); },
     "clock needs the header <time.h>"},
    {"unknownHeader", [](World& w, tree::Builder&) { w.host->AddHeader("<conio.h>"); }, "header <conio.h>"},
    {"constantOutOfRange",
     [](World&, tree::Builder& f) { f.Assign(f.createLocal("i", GetCGType(sysobj::DT_UINT8)), 256); },
     "constant 256 does not fit into uint8"},
    {"sizeOfNoOutput",
     [](World& w, tree::Builder&) { w.host->SetCurrentOutputDim(1, 0, w.host->CreateConst(1)); },
     "output port 1 has no variable size along dimension 0"},
    {"indexBehindTheArray", [](World& w, tree::Builder& f) { f.Assign(w.out[8], 1); }, "out[8], but it has 8 elements"},
    {"resultOfAnotherType",
     [](World& w, tree::Builder& f) {
         w.host->AddHeader("<time.h>");
         f.Assign(f.createLocal("i", int32T()), Expr(w.external("clock", 0, {}, int32T())));
     },
     "clock as int32: gives uint32"},
    {"incrementOfABoolean", [](World&, tree::Builder& f) { f.increment(f.createLocal("b", booleanT())); },
     "one more or less of boolean"},
    {"nameOfALocal", [](World&, tree::Builder& f) { f.createLocal("2nd", doubleT()); }, "local \"2nd\": expected letters"},
    {"nameOfAFunction",
     [](World& w, tree::Builder&) { tree::Function(w.output(), "a b", {}, [](auto&) {}).findOrCreateFcn(); },
     "function \"a b\": expected letters"},
    {"divisionByZero",
     [](World&, tree::Builder& f) {
         const Expr i = f.createLocal("i", int32T());
         f.Assign(i, 1);
         f.Assign(i, i % 0);
     },
     "int32 % 0"},
    {"shiftByTooMuch",
     [](World&, tree::Builder& f) {
         const Expr i = f.createLocal("i", uint32T());
         f.Assign(i, 1);
         f.Assign(i, i >> 32);
     },
     "uint32 >> 32: expected 0 to 31"},
    {"localThatNothingWrites", [](World& w, tree::Builder& f) { f.Assign(w.out[0], f.createLocal("x", doubleT())); },
     "x is read, but nothing writes it"},
    {"useBeforeDeclaration",
     [](World& w, tree::Builder& f) {
         Block& block = w.output().innermost();
         f.Assign(w.out[0], 1);
         const Expr x = f.createLocal("x", doubleT());
         f.Assign(x, 1);
         std::swap(block.stmts[0], block.stmts[1]);
     },
     "x is not known here"},
    {"sizeInStartCode",
     [](World& w, tree::Builder&) {
         tree::Builder start(w.model.blocks.back()->start);
         start.Assign(start.createLocal("n", int32T()), Expr(w.host->GetCurrentInputDim(0, 1)));
     },
     "sizes are known in a step only"},
    {"oneNameForTwoFunctions",
     [](World& w, tree::Builder& f) {
         ++w.model.module.blockNum;                      // as another block does
         tree::Function other(w.output(), "scale", {{"x", tree::arrayOf(doubleT())}, {"factor", doubleT()}},
                              [](auto& g) { g.Assign(g.getInputNumRef(0)[0], g.getInputNumRef(1)); });
         f.AppendStatement(cg_node_create_fcn_call_with_aux_in(other.findOrCreateFcn()));
     },
     "scale does something else here than for an earlier block"},
    {"nullExpression", [](World& w, tree::Builder& f) { f.Assign(w.out[0], Expr()); }, "an expression is missing"},
};

class VerifyTest : public ::testing::TestWithParam<VerifyCase> {};

TEST_P(VerifyTest, FindsTheViolation)
{
    World world;
    {
        tree::Builder builder(world.output());
        GetParam().describe(world, builder);
    }
    const std::string expected = GetParam().violation;
    std::string found;
    for (const auto& violation : verify(world.model))
        found += violation.text + "\n";
    if (expected.empty()) {
        EXPECT_EQ(found, "");
    } else {
        EXPECT_NE(found.find(expected), std::string::npos) << "found: " << found;
    }
}

INSTANTIATE_TEST_SUITE_P(, VerifyTest, ::testing::ValuesIn(CASES),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(DumpTest, TellsVariablesOfOneNameApart)
{
    World w;
    tree::Builder f(w.output());
    const Expr x = f.createLocal("x", doubleT(), 0, "outer");
    {
        ScopeBlock scope(f);
        f.Assign(f.createLocal("x", doubleT()), x);
    }
    const std::string text = dump(w.model);
    EXPECT_NE(text.find("    local double x -- outer\n    scope"), std::string::npos) << text;
    EXPECT_NE(text.find("        local double x#2\n        x#2 := x "), std::string::npos) << text;
    EXPECT_EQ(text.find('/'), std::string::npos) << "a folder's name in:\n" << text;
}

}  // namespace

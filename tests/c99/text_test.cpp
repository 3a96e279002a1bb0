// Constants, names and expressions of generated C.
#include "c99/literal.h"
#include "c99/names.h"
#include "c99/writer.h"
#include "described_tree.h"

#include <gtest/gtest.h>

#include <limits>

using namespace CG;
using blockhost::c99::literalText;
using esttform::Error;

namespace {

struct LiteralCase {
    const char* name;
    const Type* type;
    double value;
    const char* text;
};

constexpr double INF = std::numeric_limits<double>::infinity();

const LiteralCase LITERALS[] = {
    {"wholeDouble", doubleT(), 1.0, "1.0"},
    {"shortestDouble", doubleT(), 0.1, "0.1"},
    {"sumOfTenths", doubleT(), 0.1 + 0.2, "0.30000000000000004"},
    {"largeDouble", doubleT(), 1e300, "1e+300"},
    {"smallestDouble", doubleT(), 5e-324, "5e-324"},
    {"negativeZero", doubleT(), -0.0, "-0.0"},
    {"infinity", doubleT(), INF, "(double)INFINITY"},
    {"negativeInfinity", singleT(), -INF, "-(float)INFINITY"},
    {"notANumber", singleT(), std::numeric_limits<double>::quiet_NaN(), "(float)NAN"},
    {"single", singleT(), static_cast<double>(0.1F), "0.1F"},
    {"wholeSingle", singleT(), 3.0, "3.0F"},
    {"negativeZeroSingle", singleT(), -0.0, "-0.0F"},
    {"int32", int32T(), -7.0, "-7"},
    {"smallestInt32", int32T(), -2147483648.0, "(-2147483647 - 1)"},
    {"largestUint32", uint32T(), 4294967295.0, "4294967295U"},
    {"uint8", GetCGType(sysobj::DT_UINT8), 255.0, "255U"},
    {"int16", GetCGType(sysobj::DT_INT16), -32768.0, "-32768"},
    {"boolean", booleanT(), 1.0, "true"},
};

class LiteralTest : public ::testing::TestWithParam<LiteralCase> {};

TEST_P(LiteralTest, Text)
{
    EXPECT_EQ(literalText(GetParam().type, GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(, LiteralTest, ::testing::ValuesIn(LITERALS),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(NameScopeTest, KeepsBasesAndNumbersRepeats)
{
    blockhost::c99::NameScope outer;
    EXPECT_EQ(outer.add("i"), "i");
    EXPECT_EQ(outer.add("i"), "i_1");
    blockhost::c99::NameScope first(&outer);
    EXPECT_EQ(first.add("i"), "i_2");
    EXPECT_EQ(first.add("j"), "j");
    blockhost::c99::NameScope second(&outer);
    EXPECT_EQ(second.add("j"), "j") << "a sibling's names are free";
    EXPECT_EQ(second.add("i_1"), "i_1_1");
    for (const char* const taken : {"int", "class", "sqrt", "powf", "rand", "uint8_t", "INT32_MAX", "true", "NAN", "NQZEL_SVD_D"})
        EXPECT_EQ(second.add(taken), std::string(taken) + "_1");
}

TEST(ModelNameTest, RefusesWhatIsNotFree)
{
    for (const char* const name : {"", "2d", "a-b", "../x", "_x", "int", "operator", "main", "Math", "stdlib", "zelsvd_rt", "\xc3\xa4"})
        EXPECT_THROW(blockhost::c99::checkModelName(name), Error) << name;
    EXPECT_THROW(blockhost::c99::checkModelName(std::string(49, 'a')), Error);
    for (const char* const name : {"esttform", "DW", "Tracker_2", "i"})
        EXPECT_NO_THROW(blockhost::c99::checkModelName(name)) << name;
}

/// Operands: doubles a, b, c, array x; integers i, j; Booleans p, q, r; an 8-bit u; a complex z.
struct Operands {
    Expr a, b, c, x, i, j, p, q, r, u, z;
};

struct ExpressionCase {
    const char* name;
    Expr (*build)(const Operands& v);
    const char* text;
};

const ExpressionCase EXPRESSIONS[] = {
    {"productInSum", [](const Operands& v) { return v.a + v.b * v.c; }, "a + b * c"},
    {"sumInProduct", [](const Operands& v) { return (v.a + v.b) * v.c; }, "(a + b) * c"},
    {"leftAssociation", [](const Operands& v) { return v.a - v.b - v.c; }, "a - b - c"},
    {"rightAssociation", [](const Operands& v) { return v.a - (v.b - v.c); }, "a - (b - c)"},
    {"rightSumStaysGrouped", [](const Operands& v) { return v.a + (v.b + v.c); }, "a + (b + c)"},
    {"quotientOfProduct", [](const Operands& v) { return v.a / (v.b * v.c); }, "a / (b * c)"},
    {"minusOfMinus", [](const Operands& v) { return -(-v.a); }, "-(-a)"},
    {"minusOfNegative", [](const Operands& v) { return v.a - -2.0 * v.b; }, "a - -2.0 * b"},
    {"minusOfSum", [](const Operands& v) { return -(v.a + v.b); }, "-(a + b)"},
    {"andInOr", [](const Operands& v) { return v.p || (v.q && v.r); }, "p || (q && r)"},
    {"orInAnd", [](const Operands& v) { return (v.p || v.q) && v.r; }, "(p || q) && r"},
    {"chainOfOr", [](const Operands& v) { return v.p || v.q || v.r; }, "p || q || r"},
    {"notOfComparison", [](const Operands& v) { return CG::operator!(v.a < v.b); }, "!(a < b)"},
    {"maskInComparison", [](const Operands& v) { return (v.i & 1) == 0; }, "(i & 1) == 0"},
    {"sumInShift", [](const Operands& v) { return (v.i + v.j) >> 1; }, "(i + j) >> 1"},
    {"comparisonOfComparison", [](const Operands& v) { return (v.a < v.b) == v.p; }, "(a < b) == p"},
    {"castOfSum", [](const Operands& v) { return Expr(cg_node_create_cast(doubleT(), (v.i + v.j).node())); }, "(double)(i + j)"},
    {"castOfElement", [](const Operands& v) { return Expr(cg_node_create_cast(singleT(), v.x[v.i + 1].node())); },
     "(float)x[i + 1]"},
    {"truncation", [](const Operands& v) { return Expr(cg_node_create_cast(uint32T(), (v.a / v.b).node())); },
     "realToUint32(a / b)"},
    {"narrowSum", [](const Operands& v) { return v.u + v.u; }, "(uint8_t)(u + u)"},
    {"rootAndMagnitude",
     [](const Operands& v) {
         return (*IntrinsicFcn::lookup("sqrt", doubleT()))((*IntrinsicFcn::lookup("abs", doubleT()))(v.a));
     },
     "sqrt(fabs(a))"},
    {"power",
     [](const Operands& v) { return tree::targetCall(*v.a.node()->module, "pow", singleT(), {v.c.node(), v.c.node()}); },
     "powf(c, c)"},
    {"partsOfComplex", [](const Operands& v) { return real(v.z) - imag(v.z); }, "z.re - z.im"},
};

class ExpressionTest : public ::testing::TestWithParam<ExpressionCase> {};

TEST_P(ExpressionTest, Text)
{
    Module module;
    Cfg owner(module, "owner");
    tree::Function function(owner, "f", {}, [](DSPCG::ConstructionFacade& f) {
        const auto local = [&f](const char* name, const Type* type, int width = 0) { return f.createLocal(name, type, width); };
        const Operands v = {local("a", doubleT()),    local("b", doubleT()),  local("c", doubleT()),
                            local("x", doubleT(), 4), local("i", int32T()),   local("j", int32T()),
                            local("p", booleanT()),   local("q", booleanT()), local("r", booleanT()),
                            local("u", GetCGType(sysobj::DT_UINT8)),          local("z", complexT(doubleT()))};
        const Expr value = GetParam().build(v);
        const Expr result = local("result", getType(value.node()));
        f.Assign(result, value);
        WhileBlock keepsTheResult(f, result == result);
    });
    function.findOrCreateFcn();
    const std::string text = blockhost::c99::writeFunctions(module, {"m", "Test.", "0"})[1].text;
    EXPECT_NE(text.find("    result = " + std::string(GetParam().text) + ";\n"), std::string::npos) << text;
}

INSTANTIATE_TEST_SUITE_P(, ExpressionTest, ::testing::ValuesIn(EXPRESSIONS),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace

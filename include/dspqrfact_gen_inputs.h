// Inputs of the generated QR functions as tables: name, kind of type, and what the input holds.
#pragma once

#include "codegen_generators.h"

namespace qrdetail {

/// Kinds of input types. T is the element type, Tq that of the factored matrix.
enum class InputKind { ELEMENT_ARRAY, QR_ARRAY, REAL_ARRAY, INDEX_ARRAY, INDEX, FLAG };

struct Input {
    char name[20];
    InputKind kind;
    const char* text;  ///< direction, shape, storage order
};

/// The scalars that arrays of a function consist of.
struct InputTypes {
    const CG::Type* element;
    const CG::Type* real;
    const CG::Type* qr = nullptr;
};

const CG::Type* typeOf(InputKind kind, const InputTypes& types);

/// The inputs of one function, in order.
template <int NUM>
struct InputTable {
    Input inputs[NUM];

    static constexpr int num() { return NUM; }
    static constexpr bool has(int idx) { return idx >= 0 && idx < NUM; }
    /// Null beyond the last input.
    const CG::Type* type(int idx, const InputTypes& types) const
    {
        return has(idx) ? typeOf(inputs[idx].kind, types) : nullptr;
    }
    /// Empty beyond the last input.
    const char* name(int idx) const { return has(idx) ? inputs[idx].name : ""; }
    void describe(DSPCG::ConstructionFacade& f) const
    {
        for (int idx = 0; idx < NUM; ++idx) f.describeInput(idx, inputs[idx].text);
    }
};

template <typename... Inputs>
InputTable(Inputs...) -> InputTable<sizeof...(Inputs)>;

}  // namespace qrdetail

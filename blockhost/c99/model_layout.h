// ModelLayout: the struct of a model's signals and memory, field by field.
#pragma once

#include "../ir/model.h"

#include <map>
#include <string>
#include <vector>

namespace blockhost::c99 {

struct Field {
    const CG::Type* type;    ///< of one element
    std::size_t elementNum;  ///< 0: a scalar
    std::string name;
    std::string note;
};

/// Fields of one use, with the comment over them.
struct FieldGroup {
    std::string title;
    std::vector<Field> fields;
};

class ModelLayout {
public:
    explicit ModelLayout(const ir::Model& model);

    /// Inputs, outputs, run-time parameters, work vectors; groups without fields are left out.
    const std::vector<FieldGroup>& groups() const noexcept { return mGroups; }
    /// Field of a signal, a parameter or a work vector.
    const std::string& nameOf(const CG::Var* var) const { return mNames.at(var); }
    /// Field with the current rows and columns of a variable-size port.
    const std::string& sizeNameOf(const CG::Var* var) const { return mSizeNames.at(var); }
    /// Bytes of the struct where double is aligned to 8 bytes.
    std::size_t byteNum() const;

private:
    std::vector<FieldGroup> mGroups;
    std::map<const CG::Var*, std::string> mNames;
    std::map<const CG::Var*, std::string> mSizeNames;
};

}  // namespace blockhost::c99

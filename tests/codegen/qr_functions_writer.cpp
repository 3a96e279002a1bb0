// Writes the generated QR functions of every element type as C files into a folder, for tests to compile and call.
#include "blockhost/c99/writer.h"
#include "dspqrfact_gen.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

namespace {

/// Functions of one element type; of a complex one also those that apply a real factorization to complex vectors.
void describeFunctions(blockhost::ir::Model& model, const CG::Type* realType, bool isReal)
{
    CG::Cfg caller(model.module, "caller");
    const CG::Type* const type = isReal ? realType : CG::complexT(realType);
    QRFactQREGen(&caller, type, isReal).findOrCreateFcn();
    QRFactQRSL2Gen(&caller, type, isReal, type, isReal).findOrCreateFcn();
    if (!isReal)
        QRFactQRSL2Gen(&caller, type, isReal, realType, true).findOrCreateFcn();
}

bool write(const std::string& folder, const std::string& name, const CG::Type* realType, bool isReal)
{
    blockhost::ir::Model model;
    describeFunctions(model, realType, isReal);
    const auto violations = blockhost::ir::verify(model);
    for (const blockhost::ir::Violation& violation : violations)
        std::fprintf(stderr, "%s: %s\n", name.c_str(), violation.text.c_str());
    for (const auto& file : blockhost::c99::writeFunctions(model.module, {name, "QR functions under test.", "the tests"}))
        std::ofstream(folder + "/" + file.name) << file.text;
    return violations.empty();
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try {
        const std::string folder = argv[1];
        const bool isOK = write(folder, "qr_double", CG::doubleT(), true) && write(folder, "qr_single", CG::singleT(), true)
                          && write(folder, "qr_cdouble", CG::doubleT(), false)
                          && write(folder, "qr_csingle", CG::singleT(), false);
        return isOK ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

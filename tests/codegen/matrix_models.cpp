#include "matrix_models.h"

#include <stdexcept>

namespace codegentest {

std::vector<esttform::GeneratedFile> filesOf(const std::string& name, const MatrixSetting& setting)
{
    esttform::CodeOptions options;
    options.name = name;
    options.isVariableSize = setting.isVariable;
    options.withMain = true;
    options.blockPath = BLOCK_PATH;
    return esttform::generateCode(esttform::toParams(setting.settings), setting.settings.pointsType, MATRIX_PTS_NUM, options);
}

std::vector<MatrixModel> matrixModels()
{
    std::vector<MatrixModel> models;
    for (MatrixSetting& setting : optionMatrix()) {
        const std::string name = "m" + std::to_string(models.size());
        std::vector<esttform::GeneratedFile> files = filesOf(name, setting);
        models.push_back({name, std::move(setting), std::move(files)});
    }
    return models;
}

const std::string& textOf(const MatrixModel& model, const std::string& ending)
{
    for (const esttform::GeneratedFile& file : model.files)
        if (file.name == model.name + ending)
            return file.text;
    throw std::runtime_error("no generated file " + model.name + ending);
}

std::size_t numberBefore(const std::string& words, const MatrixModel& model)
{
    std::string header = textOf(model, ".h");
    for (std::size_t at = 0; (at = header.find("\n * ", at)) != std::string::npos;)
        header.replace(at, 4, " ");                      // the comment's lines become one
    const std::size_t end = header.find(words);
    if (end == std::string::npos)
        throw std::runtime_error(model.name + ".h does not say: ..." + words);
    return std::stoul(header.substr(header.rfind(' ', end - 1) + 1));
}

bool isSource(const std::string& name)
{
    return name.size() > 2 && (name.compare(name.size() - 2, 2, ".c") == 0 || name.compare(name.size() - 2, 2, ".h") == 0);
}

bool isRuntimeFile(const std::string& name)
{
    return name.find("_rt.") != std::string::npos;
}

}  // namespace codegentest

#include "codegen.h"

#include "c99/project.h"
#include "c99/writer.h"
#include "code_labels.h"
#include "point_block.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace esttform {

namespace {

using blockhost::Block;
namespace ir = blockhost::ir;

/// Lets the block describe itself and verifies what it said.
void describe(Block& block, ir::Model& model, const PointModel& points)
{
    block.prepare();
    block.describe(model, labelsOf(points));
    const std::vector<ir::Violation> violations = ir::verify(model);
    if (!violations.empty())
        throw Error(ErrorKind::Internal,
                    fmt::format("the block described code that breaks the rules: {}{}", violations.front().text,
                                violations.size() > 1 ? fmt::format(" (and {} more)", violations.size() - 1) : ""));
}

Block blockFor(const Params& params, DataType pointsType, std::int32_t maxPtsNum, const CodeOptions& options)
{
    return Block(blockhost::pointBlockSetup(params, pointsType, maxPtsNum, options.isVariableSize, options.blockPath));
}

blockhost::c99::ProjectInfo projectOf(const Params& params, DataType pointsType, std::int32_t maxPtsNum,
                                      const CodeOptions& options, const ir::Model& model)
{
    blockhost::c99::ProjectInfo info;
    info.name = options.name;
    const auto addNew = [](std::vector<std::string>& names, const std::vector<std::string>& added) {
        for (const std::string& name : added)
            if (std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(name);
    };
    for (const CG::BuildModule& module : model.module.buildModules) {
        addNew(info.headers, module.headers);
        addNew(info.sources, module.sources);
    }
    info.withMain = options.withMain;
    info.isVariableSize = options.isVariableSize;
    info.maxPtsNum = maxPtsNum;
    info.sampleSize = sampleSizeOf(params);
    info.inRows = blockhost::layoutOf(params) == Layout::Rows;
    info.pointsTypeId = static_cast<int>(pointsType);
    const std::vector<ir::PortInfo>& outputs = model.blocks.front()->outputs;
    info.tformRows = outputs.front().dims.size(0);
    info.tformCols = outputs.front().dims.size(1);
    info.hasInliers = outputs.size() > 1;
    return info;
}

}  // namespace

std::vector<GeneratedFile> generateCode(const Params& params, DataType pointsType, std::int32_t maxPtsNum,
                                        const CodeOptions& options)
{
    blockhost::c99::checkModelName(options.name);
    Block block = blockFor(params, pointsType, maxPtsNum, options);
    const PointModel points{params, maxPtsNum, options.isVariableSize};
    ir::Model model;
    describe(block, model, points);
    const blockhost::c99::ModelText text = {options.name, purposeOf(points),
                                              "esttform " ESTTFORM_VERSION};
    std::vector<GeneratedFile> files;
    for (blockhost::c99::SourceFile& file : blockhost::c99::writeModel(model, text))
        files.push_back({std::move(file.name), std::move(file.text)});
    for (blockhost::c99::SourceFile& file :
         blockhost::c99::projectFiles(projectOf(params, pointsType, maxPtsNum, options, model)))
        files.push_back({std::move(file.name), std::move(file.text)});
    return files;
}

std::string dumpIr(const Params& params, DataType pointsType, std::int32_t maxPtsNum, const CodeOptions& options)
{
    Block block = blockFor(params, pointsType, maxPtsNum, options);
    const PointModel points{params, maxPtsNum, options.isVariableSize};
    ir::Model model;
    describe(block, model, points);
    return ir::dump(model);
}

}  // namespace esttform

#include "codegen/codegen_command.h"

#include "blockhost/codegen.h"
#include "matches/match_reader.h"
#include "number_text.h"
#include "options/option_checks.h"
#include "output/output_file.h"
#include "output/output_folder.h"

#include <fmt/format.h>

namespace esttform::app {

namespace {

void refuseContradictions(const CodegenOptions& o)
{
    if (o.block.seed)
        throw Failure("--seed: no effect on generated code, which seeds itself when it starts; give it to the program that "
                      "--with-main adds");
    if (!o.isDumpIr) {
        if (o.outputPath.empty())
            throw Failure("--output: not given, expected the folder of the generated code (or --dump-ir)");
        return;
    }
    const std::pair<bool, const char*> given[] = {
        {!o.outputPath.empty(), "--output"}, {o.withMain, "--with-main"}, {o.isForced, "--force"}};
    for (const auto& [isGiven, name] : given)
        if (isGiven)
            throw Failure(fmt::format("{}: has no effect with --dump-ir, which writes no files; leave one of them out", name));
}

void print(const std::string& text)
{
    OutputFile output("-");
    output.write(text);
    output.commit();
}

}  // namespace

void addCodegenOptions(CLI::App& command, CodegenOptions& o)
{
    addBlockOptions(command, o.block);
    command.get_option("--seed")->group("");            // refused, so not shown
    const char* const CODE = "Generated code";
    command.add_option("--max-points", o.maxPtsNum, "point pairs of every step; with --variable-size the most of a step")
        ->required()->check(wholeBetween(1, static_cast<std::int64_t>(MatchReader::PAIR_MAX_NUM)))->type_name("N")->group(CODE);
    command.add_flag("--variable-size", o.isVariableSize, "steps may have any number of pairs up to --max-points")->group(CODE);
    command.add_option("--name", o.name, "name of the model: NAME.h, NAME.c, NAME_start, NAME_step (default esttform)")
        ->type_name("NAME")->group(CODE);
    command.add_flag("--with-main", o.withMain,
                     "add main.c, a program that reads CSV files with a header and prints the JSON lines of 'estimate'")->group(CODE);
    const char* const OUTPUT = "Output";
    command.add_option("-o,--output", o.outputPath,
                       "folder of the generated code; written whole or not at all, and refused when it is not empty")
        ->type_name("DIR")->group(OUTPUT);
    command.add_flag("--force", o.isForced,
                     "replace the generated files of an earlier run in DIR; other files in it are kept")->group(OUTPUT);
    command.add_flag("--dump-ir", o.isDumpIr, "print what the block describes, as a tree, instead of writing code")
        ->group(OUTPUT);
}

ExitCode runCodegen(const CodegenOptions& o)
{
    refuseContradictions(o);
    const BlockSetup setup = resolveBlockOptions(o.block);
    CodeOptions options;
    options.name = o.name;
    options.isVariableSize = o.isVariableSize;
    options.withMain = o.withMain;
    options.blockPath = setup.options.blockPath;
    if (o.isDumpIr) {
        print(dumpIr(setup.params, setup.pointsType, o.maxPtsNum, options));
        return ExitCode::Done;
    }
    OutputFolder folder(o.outputPath, o.isForced);
    const std::vector<GeneratedFile> files = generateCode(setup.params, setup.pointsType, o.maxPtsNum, options);
    for (const GeneratedFile& file : files)
        folder.write(file.name, file.text);
    folder.commit();
    print(fmt::format("{}: {} written\n", o.outputPath, counted(static_cast<std::int64_t>(files.size()), "file")));
    return ExitCode::Done;
}

}  // namespace esttform::app

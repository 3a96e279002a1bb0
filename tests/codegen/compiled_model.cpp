#include "compiled_model.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

namespace codegentest {

using esttform::DataType;

namespace fs = std::filesystem;

namespace {

/// Exported by the glue below, which sees the model's own header.
struct Field {
    const char* name;
    int typeId;
    std::size_t num;
    void* data;
};

/// One table of all fields, by name, and calls without the model's names.
const char* const GLUE_HEAD = R"(
#include "model.h"
#include <stddef.h>
#include <stdlib.h>
static model_Model theModel;
static long long randNum = 0;
int countedRand(void) { randNum++; return rand(); }
long long glueRandCalls(void) { return randNum; }
void glueSeed(unsigned seed) { srand(seed); randNum = 0; }
void glueStart(void) { model_start(&theModel); randNum = 0; }
int glueStep(void) { return (int)model_step(&theModel); }
unsigned long glueBytes(void) { return (unsigned long)sizeof theModel; }
typedef struct { const char* name; int typeId; size_t num; void* data; } Field;
#define TYPE_ID(x) _Generic((x), double: 0, float: 1, int8_t: 2, uint8_t: 3, int16_t: 4, uint16_t: 5, int32_t: 6, uint32_t: 7, bool: 8)
#define ARRAY(name) {#name, TYPE_ID(theModel.name[0]), sizeof theModel.name / sizeof theModel.name[0], theModel.name}
#define SCALAR(name) {#name, TYPE_ID(theModel.name), 1, &theModel.name}
)";

const char* const ARRAYS[] = {"Pts1", "Pts2", "Pts1Dims", "Pts2Dims", "TForm", "Inlier", "InlierDims", "DW_PTSNORM1",
                              "DW_PTSNORM2", "DW_FACTOR", "DW_SAMPLEIDX", "DW_BEST_SAMPLE", "DW_CONSTRAINT",
                              "DW_CONSTRT_ALL", "DW_DISTANCE"};
const char* const SCALARS[] = {"SAMPLENUM_RTP", "CONFIDENCE_RTP", "DIST_THR_RTP", "BREAKPERCENTAGE_RTP"};

const std::string& textOf(const std::vector<esttform::GeneratedFile>& files, const std::string& name)
{
    for (const esttform::GeneratedFile& file : files)
        if (file.name == name)
            return file.text;
    throw std::runtime_error("no generated file " + name);
}

/// Fields are those that the header declares.
std::string glueText(const std::string& header)
{
    std::string table = "Field glueFields[] = {\n";
    for (const char* const name : ARRAYS)
        if (header.find(" " + std::string(name) + "[") != std::string::npos)
            table += "    ARRAY(" + std::string(name) + "),\n";
    for (const char* const name : SCALARS)
        if (header.find(" " + std::string(name) + ";") != std::string::npos)
            table += "    SCALAR(" + std::string(name) + "),\n";
    return GLUE_HEAD + table + "    {0, 0, 0, 0}};\n";
}

/// With the flags of the build, so that generated code runs under the sanitizers that the tests run under.
std::string compilerWith(const CompileOptions& options)
{
    return std::string(C_COMPILER) + " " + C_FLAGS + " -fPIC -ffp-contract=off " + options.flags + " ";
}

const char* const STRICT = "-std=c99 -pedantic -Wall -Wextra -Wconversion -Wdouble-promotion -Wshadow -Werror ";

bool isRuntimeSource(const std::string& name)
{
    return name.size() > 5 && name.compare(name.size() - 5, 5, "_rt.c") == 0;
}

/// Objects of the runtime sources among the files, compiled once for every set of flags.
std::string runtimeObjects(const std::vector<esttform::GeneratedFile>& files, const CompileOptions& options)
{
    static const TemporaryFolder cache;
    static std::map<std::string, std::string> objects;
    std::string list;
    for (const esttform::GeneratedFile& file : files) {
        if (!isRuntimeSource(file.name))
            continue;
        std::string& object = objects[options.flags + file.name + file.text];
        if (object.empty()) {
            const std::string folder = cache.path() + "/" + std::to_string(objects.size());
            fs::create_directory(folder);
            writeFiles(files, folder);
            const std::string candidate = folder + "/" + file.name + ".o";
            runCommand(compilerWith(options) + STRICT + "-c " + folder + "/" + file.name + " -o " + candidate);
            object = candidate;
        }
        list += object + " ";
    }
    return list;
}

double valueAt(const Field& field, std::size_t i)
{
    switch (field.typeId) {
    case 0: return static_cast<const double*>(field.data)[i];
    case 1: return static_cast<double>(static_cast<const float*>(field.data)[i]);
    case 6: return static_cast<const std::int32_t*>(field.data)[i];
    case 7: return static_cast<const std::uint32_t*>(field.data)[i];
    default: return static_cast<const std::uint8_t*>(field.data)[i];
    }
}

}  // namespace

// ---- Folders and commands

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (fs::temp_directory_path() / "codegen_test_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("cannot make a temporary folder");
    mPath = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

void writeFiles(const std::vector<esttform::GeneratedFile>& files, const std::string& folder)
{
    for (const esttform::GeneratedFile& file : files)
        std::ofstream(fs::path(folder) / file.name, std::ios::binary) << file.text;
}

std::string runCommand(const std::string& command)
{
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + command);
    std::string output;
    std::array<char, 4096> buffer;
    while (const std::size_t num = std::fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), num);
    if (pclose(pipe) != 0)
        throw std::runtime_error(command + "\n" + output);
    return output;
}

// ---- CompiledModel

struct CompiledModel::Impl {
    TemporaryFolder folder;
    bool isInRows = false;
    bool isVariable = false;
    std::size_t elementBytes = 0;
    void* library = nullptr;
    const Field* fields = nullptr;

    ~Impl()
    {
        if (library != nullptr)
            dlclose(library);
    }

    template <typename Function>
    Function* function(const char* name) const
    {
        return reinterpret_cast<Function*>(dlsym(library, name));
    }

    const Field* field(const std::string& name) const
    {
        for (const Field* candidate = fields; candidate->name != nullptr; ++candidate)
            if (name == candidate->name)
                return candidate;
        return nullptr;
    }

    void setInput(const char* name, const char* dimsName, const void* points, std::int32_t ptsNum) const
    {
        const std::size_t bytes = 2 * static_cast<std::size_t>(ptsNum) * elementBytes;
        if (ptsNum <= static_cast<std::int32_t>(field(name)->num / 2))
            std::memcpy(field(name)->data, points, bytes);
        if (!isVariable)
            return;
        auto* const dims = static_cast<std::int32_t*>(field(dimsName)->data);
        dims[0] = isInRows ? ptsNum : 2;
        dims[1] = isInRows ? 2 : ptsNum;
    }
};

CompiledModel::CompiledModel(const esttform::Params& params, DataType pointsType, std::int32_t maxPtsNum, bool isVariable,
                             const CompileOptions& options)
    : mImpl(std::make_unique<Impl>())
{
    Impl& impl = *mImpl;
    impl.isInRows = params[17] != 0.0;
    impl.isVariable = isVariable;
    impl.elementBytes = esttform::sizeOf(pointsType);
    esttform::CodeOptions codeOptions;
    codeOptions.name = "model";
    codeOptions.isVariableSize = isVariable;
    codeOptions.blockPath = BLOCK_PATH;
    const auto files = esttform::generateCode(params, pointsType, maxPtsNum, codeOptions);
    const std::string folder = impl.folder.path();
    writeFiles(files, folder);
    writeFiles({{"glue.c", glueText(textOf(files, "model.h"))}, {"counted.h", "int countedRand(void);\n"}}, folder);
    // The model's file is compiled with every warning, the glue is not part of it.
    runCommand(compilerWith(options) + STRICT + "'-DESTTFORM_RAND()=countedRand()' -include " + folder + "/counted.h -c " + folder
               + "/model.c -o " + folder + "/model.o");
    runCommand(compilerWith(options) + "-std=c11 -shared " + folder + "/glue.c " + folder + "/model.o "
               + runtimeObjects(files, options) + "-lm -o " + folder + "/model.so");
    impl.library = dlopen((folder + "/model.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    if (impl.library == nullptr)
        throw std::runtime_error(dlerror());
    impl.fields = static_cast<const Field*>(dlsym(impl.library, "glueFields"));
    start();
}

CompiledModel::~CompiledModel() = default;
CompiledModel::CompiledModel(CompiledModel&&) noexcept = default;

void CompiledModel::start() { mImpl->function<void()>("glueStart")(); }
void CompiledModel::seed(unsigned value) { mImpl->function<void(unsigned)>("glueSeed")(value); }

bool CompiledModel::setParam(const std::string& name, double value)
{
    const Field* const field = mImpl->field(name);
    if (field == nullptr)
        return false;
    switch (field->typeId) {
    case 0: *static_cast<double*>(field->data) = value; break;
    case 1: *static_cast<float*>(field->data) = static_cast<float>(value); break;
    default: *static_cast<std::uint32_t*>(field->data) = static_cast<std::uint32_t>(value); break;
    }
    return true;
}

int CompiledModel::step(const void* pts1, const void* pts2, std::int32_t ptsNum) { return step(pts1, ptsNum, pts2, ptsNum); }

int CompiledModel::step(const void* pts1, std::int32_t ptsNum1, const void* pts2, std::int32_t ptsNum2)
{
    mImpl->setInput("Pts1", "Pts1Dims", pts1, ptsNum1);
    mImpl->setInput("Pts2", "Pts2Dims", pts2, ptsNum2);
    return mImpl->function<int()>("glueStep")();
}

int CompiledModel::stepOfSizes(const std::array<std::int32_t, 2>& dims1, const std::array<std::int32_t, 2>& dims2)
{
    std::memcpy(mImpl->field("Pts1Dims")->data, dims1.data(), sizeof dims1);
    std::memcpy(mImpl->field("Pts2Dims")->data, dims2.data(), sizeof dims2);
    return mImpl->function<int()>("glueStep")();
}

std::int64_t CompiledModel::randCalls() const { return mImpl->function<long long()>("glueRandCalls")(); }

std::vector<double> CompiledModel::tform() const { return workVector("TForm"); }

const bool* CompiledModel::inliers() const
{
    const Field* const field = mImpl->field("Inlier");
    return field != nullptr ? static_cast<const bool*>(field->data) : nullptr;
}

std::size_t CompiledModel::inlierNum() const
{
    const Field* const field = mImpl->field("Inlier");
    return field != nullptr ? field->num : 0;
}

std::vector<double> CompiledModel::workVector(const std::string& name) const
{
    std::vector<double> values;
    const Field* const field = mImpl->field(name);
    for (std::size_t i = 0; field != nullptr && i < field->num; ++i)
        values.push_back(valueAt(*field, i));
    return values;
}

std::size_t CompiledModel::modelBytes() const { return mImpl->function<unsigned long()>("glueBytes")(); }
const std::string& CompiledModel::folder() const { return mImpl->folder.path(); }

}  // namespace codegentest

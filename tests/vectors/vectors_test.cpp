// Replays every file of a folder of vectors: inputs with results that are exact to the bit. One test per file.
// The folder is the bundled one, or what the environment variable ESTTFORM_VECTORS names.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "vector_values.h"

namespace fs = std::filesystem;

namespace {

using Replay = void (*)(const Json& vector, CaseCheck& check);

/// The format of a file, told by the fields of its first case; null for none that is known.
Replay formatOf(const Json& vectors)
{
    const Json& first = vectors.at(0);
    if (first.contains("steps")) return replayStep;
    if (first.contains("pts1")) return replayFit;
    if (first.contains("economy")) return replayQr;
    if (first.contains("wantVectors")) return replaySvd;
    return nullptr;
}

class VectorFile : public testing::Test {
public:
    explicit VectorFile(fs::path path) : mPath(std::move(path)) {}

    void TestBody() override
    {
        std::ifstream file(mPath);
        const Json vectors = Json::parse(file);
        ASSERT_FALSE(vectors.empty()) << mPath << " holds no vector";
        const Replay replay = formatOf(vectors);
        ASSERT_NE(replay, nullptr) << mPath << " has a format that is not known";
        for (std::size_t i = 0; i < vectors.size(); ++i) {
            const std::string name = vectors[i].at("name").get<std::string>() + " (case " + std::to_string(i) + ")";
            CaseCheck check(name);
            try {
                replay(vectors[i], check);
            } catch (const std::exception& error) {
                check.fail(error.what());
            }
            for (const std::string& difference : check.differences()) ADD_FAILURE() << difference;
        }
    }

private:
    fs::path mPath;
};

/// Files of vectors for the engine; those of generated code have another program.
std::vector<fs::path> vectorFiles(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() == ".json" && name.rfind("generated_", 0) != 0) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const char* const named = std::getenv("ESTTFORM_VECTORS");
    const fs::path folder = named != nullptr ? named : BUNDLED_VECTORS;
    std::error_code error;
    if (!fs::is_directory(folder, error) || vectorFiles(folder).empty()) {
        std::fprintf(stderr, "vectors_test: %s: no folder with vector files (*.json)\n", folder.c_str());
        return 2;
    }
    for (const fs::path& path : vectorFiles(folder)) {
        testing::RegisterTest("Vectors", path.stem().c_str(), nullptr, path.c_str(), __FILE__, __LINE__,
                              [path]() -> testing::Test* { return new VectorFile(path); });
    }
    return RUN_ALL_TESTS();
}

#include "vector_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

using FormatOf = Replay (*)(const Json& firstCase);

class VectorFile : public testing::Test {
public:
    VectorFile(fs::path path, FormatOf formatOf) : mPath(std::move(path)), mFormatOf(formatOf) {}

    void TestBody() override
    {
        std::ifstream file(mPath);
        const Json vectors = Json::parse(file);
        ASSERT_FALSE(vectors.empty()) << mPath << " holds no vector";
        const Replay replay = mFormatOf(vectors.at(0));
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
    FormatOf mFormatOf;
};

std::vector<fs::path> vectorFiles(const fs::path& folder, bool isGenerated)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        const bool isForGenerated = name.rfind("generated_", 0) == 0;
        if (entry.path().extension() == ".json" && isForGenerated == isGenerated) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int runVectorFiles(int argc, char** argv, bool isGenerated, FormatOf formatOf)
{
    testing::InitGoogleTest(&argc, argv);
    const char* const named = std::getenv("ESTTFORM_VECTORS");
    const fs::path folder = named != nullptr ? named : BUNDLED_VECTORS;
    std::error_code error;
    if (!fs::is_directory(folder, error) || vectorFiles(folder, isGenerated).empty()) {
        std::fprintf(stderr, "%s: no folder with vector files (*.json)\n", folder.c_str());
        return 2;
    }
    for (const fs::path& path : vectorFiles(folder, isGenerated)) {
        testing::RegisterTest("Vectors", path.stem().c_str(), nullptr, path.c_str(), __FILE__, __LINE__,
                              [path, formatOf]() -> testing::Test* { return new VectorFile(path, formatOf); });
    }
    return RUN_ALL_TESTS();
}

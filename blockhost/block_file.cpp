#include "block_file.h"

#include "interface_version.h"

#include <elf.h>

#include <algorithm>
#include <cstring>
#include <fstream>

namespace blockhost {

namespace {

/// Longest note segment that is read: notes are a few words each.
constexpr std::uint64_t NOTES_MAX_NUM = 1 << 20;

class ElfReader {
public:
    explicit ElfReader(const std::string& path) : mFile(path, std::ios::binary | std::ios::ate) {}

    std::uint64_t byteNum()
    {
        const std::streamoff end = mFile.tellg();
        return end < 0 ? 0 : static_cast<std::uint64_t>(end);
    }

    bool read(std::uint64_t offset, void* bytes, std::size_t byteNum)
    {
        mFile.seekg(static_cast<std::streamoff>(offset));
        mFile.read(static_cast<char*>(bytes), static_cast<std::streamsize>(byteNum));
        return mFile.good();
    }

private:
    std::ifstream mFile;
};

/// Adds the versions that a segment of notes holds; `alignment` is that of its notes, 4 or 8.
void addVersions(const std::string& notes, std::uint64_t alignment, std::set<std::uint32_t>& versions)
{
    const auto padded = [&](std::uint64_t size) { return (size + alignment - 1) / alignment * alignment; };
    std::uint64_t offset = 0;
    Elf64_Nhdr header;
    while (offset + sizeof header <= notes.size()) {
        std::memcpy(&header, notes.data() + offset, sizeof header);
        const std::uint64_t name = offset + sizeof header;
        const std::uint64_t content = offset + padded(sizeof header + header.n_namesz);
        offset = content + padded(header.n_descsz);
        std::uint32_t version = 0;
        if (offset > notes.size() || header.n_type != sysobj::INTERFACE_NOTE_TYPE || header.n_descsz != sizeof version
            || header.n_namesz != sizeof sysobj::INTERFACE_NOTE_NAME
            || std::memcmp(notes.data() + name, sysobj::INTERFACE_NOTE_NAME, header.n_namesz) != 0)
            continue;
        std::memcpy(&version, notes.data() + content, sizeof version);
        versions.insert(version);
    }
}

}  // namespace

BlockFile readBlockFile(const std::string& path)
{
    ElfReader reader(path);
    BlockFile file;
    file.byteNum = reader.byteNum();
    constexpr int BYTE_ORDER_HERE = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;
    Elf64_Ehdr header{};
    if (!reader.read(0, &header, sizeof header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0
        || header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_ident[EI_DATA] != BYTE_ORDER_HERE
        || header.e_phentsize != sizeof(Elf64_Phdr))
        return file;
    file.neededNum = header.e_phoff + header.e_phnum * sizeof(Elf64_Phdr);
    Elf64_Phdr segment{};
    for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
        if (!reader.read(header.e_phoff + i * sizeof segment, &segment, sizeof segment))
            break;
        if (segment.p_type == PT_LOAD)
            file.neededNum = std::max(file.neededNum, segment.p_offset + segment.p_filesz);
        if (segment.p_type == PT_NOTE && segment.p_filesz <= NOTES_MAX_NUM) {
            std::string notes(segment.p_filesz, '\0');
            if (reader.read(segment.p_offset, notes.data(), notes.size()))
                addVersions(notes, segment.p_align == 8 ? 8 : 4, file.interfaceVersions);
        }
    }
    return file;
}

}  // namespace blockhost

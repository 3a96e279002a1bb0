// What can be told of a block's file before it is loaded, when loading would end the process or run code of a stranger.
#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace blockhost {

/// What the file of a library says of itself.
struct BlockFile {
    std::uint64_t byteNum = 0;
    /// Bytes that its program headers want mapped; 0 when the file is no library of this machine's kind.
    std::uint64_t neededNum = 0;
    /// Versions of the host interface that its parts were compiled for; empty for one compiled without its declarations.
    std::set<std::uint32_t> interfaceVersions;

    bool isCutOff() const noexcept { return byteNum < neededNum; }
};

/// Reads the headers and notes of an ELF file. What is no 64-bit file of this byte order is left for the loader to judge.
BlockFile readBlockFile(const std::string& path);

}  // namespace blockhost

// The version of these declarations. Every block that includes them carries it in its file, as a note that a host reads
// before it runs any of the block's code: it can refuse a block that would call it in another way than it expects.
#pragma once

#include <cstdint>

namespace sysobj {

/// Goes up with every change after which blocks must be compiled again.
constexpr std::uint32_t INTERFACE_VERSION = 1;

/// Who the note is from, and its type.
constexpr char INTERFACE_NOTE_NAME[] = "blockhost";
constexpr std::uint32_t INTERFACE_NOTE_TYPE = 1;

/// A note as the ELF format has it: sizes, type, name and contents, each padded to four bytes.
struct InterfaceNote {
    std::uint32_t nameSize;
    std::uint32_t contentSize;
    std::uint32_t type;
    char name[12];
    std::uint32_t version;
};

[[gnu::used, gnu::section(".note.blockhost")]] alignas(4) static const InterfaceNote interfaceNote{
    sizeof INTERFACE_NOTE_NAME, sizeof(std::uint32_t), INTERFACE_NOTE_TYPE, "blockhost", INTERFACE_VERSION};

}  // namespace sysobj

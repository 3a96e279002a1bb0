// WarningTable: the warnings of one instance, equal ones counted, in a fixed table so that raising one allocates nothing.
// Identifiers are kept by address: the block's library stays loaded as long as its instance.
#pragma once

#include "host_api.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace blockhost {

/// Warnings since the last clear, in order of first occurrence.
class WarningTable {
public:
    static constexpr int MAX_ENTRY_NUM = 16;

    struct Entry {
        resource_core::BaseMsgID message{""};
        std::uint32_t count = 0;
    };

    /// Counts a warning. When the table is full, the last entry becomes "otherWarnings" and counts the rest.
    void add(const resource_core::BaseMsgID& message) noexcept
    {
        for (int i = 0; i < mEntryNum; ++i)
            if (isSame(at(i).message, message)) {
                ++at(i).count;
                return;
            }
        if (mEntryNum < MAX_ENTRY_NUM)
            at(mEntryNum++) = {message, 1};
        else if (std::strcmp(at(MAX_ENTRY_NUM - 1).message.id(), OTHER) == 0)
            ++at(MAX_ENTRY_NUM - 1).count;
        else
            at(MAX_ENTRY_NUM - 1) = {resource_core::BaseMsgID(OTHER), at(MAX_ENTRY_NUM - 1).count + 1};
    }
    void clear() noexcept { mEntryNum = 0; }

    int entryNum() const noexcept { return mEntryNum; }
    const Entry& entry(int idx) const noexcept { return mEntries[static_cast<std::size_t>(idx)]; }

private:
    static constexpr const char* OTHER = "otherWarnings";

    static bool isSame(const resource_core::BaseMsgID& a, const resource_core::BaseMsgID& b) noexcept
    {
        bool isEqual = a.argNum() == b.argNum() && std::strcmp(a.id(), b.id()) == 0;
        for (int i = 0; i < a.argNum(); ++i)
            isEqual = isEqual && a.arg(i) == b.arg(i);
        return isEqual;
    }
    Entry& at(int idx) noexcept { return mEntries[static_cast<std::size_t>(idx)]; }

    std::array<Entry, MAX_ENTRY_NUM> mEntries{};
    int mEntryNum = 0;
};

}  // namespace blockhost

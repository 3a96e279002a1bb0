// GuardedArray: an array that ends, or begins, where the process has no memory, and can be made read-only.
#pragma once

#include <cstddef>

namespace esttform::check {

class GuardedArray {
public:
    /// @param isAtEnd  true: nothing follows the last byte; false: nothing precedes the first
    /// @throws Failure  the system has no memory left
    GuardedArray(std::size_t byteNum, bool isAtEnd);
    ~GuardedArray();
    GuardedArray(const GuardedArray&) = delete;
    GuardedArray& operator=(const GuardedArray&) = delete;

    void* data() const noexcept { return mData; }
    void setWritable(bool isWritable) const noexcept;

private:
    char* mPages = nullptr;
    std::size_t mPagesByteNum = 0;   ///< without the pages around them
    std::size_t mPageByteNum = 0;
    char* mData = nullptr;
};

}  // namespace esttform::check

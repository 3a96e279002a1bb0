#include "check/guarded_array.h"

#include "failure.h"

#include <sys/mman.h>
#include <unistd.h>

namespace esttform::check {

GuardedArray::GuardedArray(std::size_t byteNum, bool isAtEnd) : mPageByteNum(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
{
    mPagesByteNum = (byteNum + mPageByteNum - 1) / mPageByteNum * mPageByteNum;
    void* const memory = mmap(nullptr, mPagesByteNum + 2 * mPageByteNum, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw app::Failure("cannot map memory for an input", app::ExitCode::OurFault);
    mPages = static_cast<char*>(memory) + mPageByteNum;
    mData = isAtEnd ? mPages + (mPagesByteNum - byteNum) : mPages;
    setWritable(true);
}

GuardedArray::~GuardedArray()
{
    munmap(mPages - mPageByteNum, mPagesByteNum + 2 * mPageByteNum);
}

void GuardedArray::setWritable(bool isWritable) const noexcept
{
    mprotect(mPages, mPagesByteNum, isWritable ? PROT_READ | PROT_WRITE : PROT_READ);
}

}  // namespace esttform::check

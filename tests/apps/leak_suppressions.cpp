#include "leak_suppressions.h"

const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

// Dictionary loader of one object kind (FUZZ_KIND); see fuzz::checkDictionary.
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::report(fuzz::checkDictionary(NkrOdict::eObjectType_t(FUZZ_KIND), fuzz::bytes(data, size)));
    return 0;
}

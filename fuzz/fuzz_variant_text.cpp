// CVariant parsing of value texts and byte arrays for every data type; see fuzz::checkVariantText.
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::report(fuzz::checkVariantText(fuzz::bytes(data, size)));
    return 0;
}

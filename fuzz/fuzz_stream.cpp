// QDataStream readers of the value classes, the first byte picks the class; see fuzz::checkStream.
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::report(fuzz::checkStream(fuzz::bytes(data, size)));
    return 0;
}

// Data-file reader in the value or the parameter form (FUZZ_PARAMETERS); see fuzz::checkDataFile.
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::report(fuzz::checkDataFile(FUZZ_PARAMETERS != 0, fuzz::bytes(data, size)));
    return 0;
}

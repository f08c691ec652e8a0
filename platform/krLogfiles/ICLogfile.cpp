#include "ICLogfile.h"

// Out of line so that the vtable and type information live in this library only.
ICLogfile::~ICLogfile() = default;

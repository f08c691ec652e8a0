#pragma once

#include "krcore_export.h"

#include <QString>

/// Well-known directories of the platform.
class KRCORE_EXPORT CPath
{
public:
    /// The program-data directory: the one set with setProgramdataPath, else the generic data
    /// location followed by "/krOdict". With \a withSeparator the text ends in '/'.
    static QString programdataPath(bool withSeparator = false);
    /// Overrides the program-data directory; an empty text restores the default.
    static void setProgramdataPath(const QString &path);
};

#pragma once

#include "NTypes.h"
#include "krcore_export.h"

#include <QString>

/// Text helpers of the platform.
class KRCORE_EXPORT CStr
{
public:
    /// "main.minor.build" in decimal (0x011C002A gives "1.28.42").
    static QString versionToString(NTypes::uVersion_t version);
    /// Reads "main.minor.build"; missing parts are 0. \a ok is false for non-numeric parts,
    /// parts out of range (main and minor 0..255, build 0..65535) or more than three parts.
    static NTypes::uVersion_t stringToVersion(const QString &text, bool *ok = nullptr);
};

#pragma once

#include "CVariant.h"
#include "NTypes.h"
#include "krcore_export.h"

#include <QString>

/// Names, sizes and limits of the firmware data types.
class KRCORE_EXPORT CDataTypeParser
{
public:
    /// Size of one element in bytes; 0 for E_UNKNOWN and unknown numbers.
    static quint16 typeSize(NTypes::eTypes_t type);
    /// File text of the type ("U16", "VISIBLE_STRING"); "UNKNOWN" for unknown numbers.
    static QString typeToStr(NTypes::eTypes_t type);
    /// Type of a file text, case-insensitive; E_UNKNOWN for an unknown text.
    static NTypes::eTypes_t strToType(const QString &text);
    /// Member name without namespace ("E_U16"); "E_UNKNOWN" for unknown numbers.
    static QString typeToEnum(NTypes::eTypes_t type);
    /// Limits of types 1 to 11 and 23 as values of that type; a null value for the others.
    static CVariant minTypeValue(NTypes::eTypes_t type);
    /// The upper limit of types 1 to 11 and 23 as a value of that type; a null value for the others.
    static CVariant maxTypeValue(NTypes::eTypes_t type);
};

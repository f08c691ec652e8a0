#pragma once

#include "krcore_export.h"

#include <QString>

namespace NkrUnits {
/// How a unit is to be shown: as stored, as a rotary unit, or mapped to its linear counterpart.
enum eUnitType_t : unsigned int {
    E_UT_DEFAULT = 0,
    E_UT_ROTARY = 1,
    E_UT_LINEAR = 2
};
} // namespace NkrUnits

/// The drive's unit table: unit codes, their texts and the linear counterparts of rotary units.
class KRCORE_EXPORT CUnitParser
{
public:
    /// Text of a unit code ("rpm", "mm/s"); empty for "no unit" (0, 0xFFFFFFFF) and unknown codes.
    static QString unitText(unsigned int unit);
    /// Code of a unit text (exact match); 0xFFFFFFFF when unknown.
    static unsigned int textToUnit(const QString &text);
    /// The linear counterpart of a rotary unit (rpm becomes mm/s); every other code unchanged.
    static unsigned int toLinear(unsigned int unit);
    /// Whether the code has a linear counterpart.
    static bool isRotary(unsigned int unit);
    /// Whether the code is in the table (0 and 0xFFFFFFFF are "no unit" and count as known).
    static bool isKnown(unsigned int unit);
};

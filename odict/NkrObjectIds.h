#pragma once

#include <QtGlobal>

/// The packed 64-bit object id of the firmware's generated id enumeration: a plain object is its
/// id; a sub-object has the id in the upper and the sub-id in the lower 32 bits. The enumerators
/// themselves come from the generated header; the library needs only the 64-bit type.
namespace NkrObjectIds {
/// A packed object id; the library itself knows only "none".
enum eObjectId_t : quint64 {
    /// no object
    E_OBJECTID_NONE = 0xFFFFFFFFull
};
} // namespace NkrObjectIds

#pragma once

#include <QFlags>

/// Enumerations shared by the whole dictionary library.
namespace NkrOdict {

/// The kind of object a dictionary holds; one kind per dictionary.
enum eObjectType_t : unsigned int {
    E_OT_UNKNOWN = 0,
    E_OT_STD = 1,       ///< COdictObject
    E_OT_VALUE = 2,     ///< COdictValueObject
    E_OT_EDITOR = 3,    ///< COdictEditorObject
    E_OT_PARAMETER = 4  ///< COdictParameterObject
};

/// Usage class of an object (flag word).
enum eObjectUsage_t : unsigned int {
    E_OU_NONE = 0x00,
    E_OU_OBJECT = 0x01,             ///< plain object
    E_OU_PARAMETER = 0x02,          ///< parameter
    E_OU_ACTUAL = 0x04,             ///< actual value
    E_OU_DATABASE_PARAMETER = 0x80  ///< value comes from the device database
};
Q_DECLARE_FLAGS(ObjectUsageFlags, eObjectUsage_t)

/// Access rights (flag word). The firmware assigns the bits two per access path: the even bit
/// (mask 0x55555555) allows writing, the odd bit reading. The library stores them uninterpreted.
enum eAccessRight_t : unsigned int {
    E_AR_NONE = 0x00000000,
    E_AR_WRITE_OPERATOR = 0x00000001,
    E_AR_READ_OPERATOR = 0x00000002,
    E_AR_WRITE_SERVICE = 0x00000004,
    E_AR_READ_SERVICE = 0x00000008,
    E_AR_WRITE_FIELDBUS = 0x00000010,
    E_AR_READ_FIELDBUS = 0x00000020,
    E_AR_WRITE_PLC = 0x00000040,
    E_AR_READ_PLC = 0x00000080,
    E_AR_WRITE_MASK = 0x55555555,
    E_AR_READ_MASK = 0xAAAAAAAA
};
Q_DECLARE_FLAGS(AccessRightFlags, eAccessRight_t)

/// Role of a tree position.
enum eItemType_t : unsigned int {
    E_IT_UNKNOWN = 0,    ///< the default item; the root's item
    E_IT_SUBOBJECT = 1,  ///< a sub-object under an object
    E_IT_OBJECT = 2,     ///< an object
    E_IT_GROUP = 3,      ///< a group (folder) of objects
    E_IT_DICTIONARY = 4  ///< the single top node under the root
};

/// Which objects get virtual sub-objects in an extended dictionary (flag word).
enum eVirtualObjects_t : unsigned int {
    E_VO_NONE = 0x0,
    E_VO_BITSET = 0x1,  ///< one virtual sub-object per bit of a bit-set object
    E_VO_XY = 0x2       ///< X and Y halves of data-type-24 parameters
};
Q_DECLARE_FLAGS(VirtualObjectFlags, eVirtualObjects_t)

} // namespace NkrOdict

Q_DECLARE_OPERATORS_FOR_FLAGS(NkrOdict::ObjectUsageFlags)
Q_DECLARE_OPERATORS_FOR_FLAGS(NkrOdict::AccessRightFlags)
Q_DECLARE_OPERATORS_FOR_FLAGS(NkrOdict::VirtualObjectFlags)

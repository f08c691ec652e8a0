#pragma once

#include "krodict_export.h"

#include "CUnitParser.h"
#include "CVariant.h"
#include "COdictObjectBitSet.h"
#include "COdictObjectEnum.h"
#include "COdictObjectId.h"
#include "COdictObjectName.h"
#include "NTypes.h"
#include "NkrObjectIds.h"
#include "NkrOdict.h"

#include <QList>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>
#include <QUuid>
#include <QVariant>

#include <type_traits>

class QDataStream;
class QDebug;
class COdictObjectPrivate;

/// One object or sub-object of a drive's object dictionary: address (id, sub-id, name), storage
/// (data type, size, array length), access, user levels, unit, digits, limits, default,
/// enumeration or bit-set texts, DS402 and Profinet numbers and usage class.
///
/// Implicitly shared: copies share one record until one of them is changed; every setter
/// detaches first. The X accessors (xUnit(), xMinValue(), ...) are the plain fields; the Y
/// accessors are a second set used by objects of data type 24 (X/Y pairs).
class KRODICT_EXPORT COdictObject
{
    template <typename T>
    using EnableIfOtherInteger = std::enable_if_t<std::is_integral<T>::value && !std::is_same<T, bool>::value, int>;

public:
    /// The value of an absent id, sub-id, DS402 or Profinet number.
    static constexpr unsigned int NoId = 0xFFFFFFFFu;

    /// A default object: no id, name "UNKNOWN", every other field at its default.
    COdictObject();
    /// Shares \a other's record until one of them changes.
    COdictObject(const COdictObject &other);
    /// Shares \a other's record until one of them changes.
    COdictObject &operator=(const COdictObject &other);
    /// Releases this object's share of the record.
    virtual ~COdictObject();

    // Overridable behaviour; the slot order is part of the binary interface.
    /// E_OT_STD for this class; each specialisation answers its own kind.
    virtual NkrOdict::eObjectType_t objectType() const;
    /// Every field equals its default.
    virtual bool isNull() const;
    /// The name is set and not "UNKNOWN", and the id is set.
    virtual bool isValid() const;
    /// Number of DS402 sub-entries one value spans: 3 for type 26, size / 2 for 27 and 30,
    /// size / 4 for 28, 29 and 31, otherwise 0.
    virtual int ds402PartCount() const;
    /// Display text of \a value for this object:
    /// - a null value gives an empty text;
    /// - an object with an enumeration shows the entry's text, or the number in decimal when the
    ///   value has no entry;
    /// - an object with a bit set shows the texts of the set bits joined by ", " in position
    ///   order ("Bit %1" for a set bit without text), or "0" when no bit is set;
    /// - floats are shown with digits() decimals when digits() >= 0, else in their own text;
    /// - integers in decimal, BOOL as 0 or 1, texts as they stand, byte types and arrays as
    ///   hexadecimal digits, X/Y pairs as "x;y".
    /// With \a withUnit and a unit text, " " and the unit text are appended.
    virtual QString valueToStr(const CVariant &value, bool withUnit = false) const;
    /// Whether \a a and \a b are the same value of this object: scalars compared as values of
    /// the data type, arrays (array length 2 or more) byte by byte.
    virtual bool compare(const QVariant &a, const QVariant &b) const;

    /// True when every field is equal.
    bool operator==(const COdictObject &other) const;
    /// True when some field differs.
    bool operator!=(const COdictObject &other) const { return !(*this == other); }

    // Identity across dictionary versions
    /// The reference id that identifies the object across dictionary versions; null when not set.
    QUuid refId() const;
    /// Sets the reference id.
    void setRefId(const QUuid &refId);

    // Address
    /// The object id; NoId when not set.
    unsigned int id() const;
    /// Replaces the id; the sub-id stays.
    void setId(unsigned int id);
    /// Replaces id and sub-id.
    void setId(const COdictObjectId &id);
    /// Unpacks \a packed like COdictObjectId and sets id and sub-id.
    void setId(unsigned long long packed);
    /// Deliberately stores only the lower 32 bits of \a id as id and keeps the sub-id.
    void setId(NkrObjectIds::eObjectId_t id);
    /// Any other integer (plain literals included): up to 32 bits is an id, 64 bits a packed value.
    template <typename T, EnableIfOtherInteger<T> = 0>
    void setId(T value)
    {
        if constexpr (sizeof(T) == 8)
            setId(static_cast<unsigned long long>(value));
        else
            setId(static_cast<unsigned int>(value));
    }
    /// The sub-id; NoId for an object that is not a sub-object.
    unsigned int subId() const;
    /// Sets the sub-id (NoId: not a sub-object).
    void setSubId(unsigned int subId);
    /// The sub-id is set.
    bool isSubObject() const;
    /// Id and sub-id as one key, the key of the dictionary's id index.
    COdictObjectId uniqueId() const;
    /// Same as uniqueId().
    COdictObjectId uId() const { return uniqueId(); }
    /// uniqueId().info(): "ID 8192" or "ID 8192:03".
    QString uniqueIdInfo() const;
    /// Same as uniqueIdInfo().
    QString uIdInfo() const { return uniqueIdInfo(); }
    /// Name and sub-id as one key, the key of the dictionary's name index.
    COdictObjectName uniqueName() const;
    /// Same as uniqueName().
    COdictObjectName uName() const { return uniqueName(); }

    /// The firmware version that introduced the object.
    NTypes::uVersion_t version() const;
    /// Sets the firmware version.
    void setVersion(NTypes::uVersion_t version);
    /// The DS402 number of the object; NoId when it has none.
    unsigned int ds402Id() const;
    /// Sets the DS402 number (NoId: none).
    void setDS402Id(unsigned int ds402Id);
    /// The Profinet number of the object; NoId when it has none.
    unsigned int profinetId() const;
    /// Sets the Profinet number (NoId: none).
    void setProfinetId(unsigned int profinetId);

    // Names
    /// The object's name, "UNKNOWN" by default.
    QString name() const;
    /// Sets the name only.
    void setName(const QString &name);
    /// Sets the name and the sub-id of \a name.
    void setName(const COdictObjectName &name);
    /// The display name; empty when not set.
    QString uiName() const;
    /// Sets the display name.
    void setUiName(const QString &uiName);
    /// The short display name; empty when not set.
    QString uiShortName() const;
    /// Sets the short display name.
    void setUiShortName(const QString &uiShortName);

    // Units (the plain unit is the X unit)
    /// The unit code (the X unit); NoId when the object has no unit.
    unsigned int unit() const;
    /// The stored code, mapped to its linear counterpart when \a type is E_UT_LINEAR.
    unsigned int unit(NkrUnits::eUnitType_t type) const;
    /// The unit code of the X value; NoId when none.
    unsigned int xUnit() const;
    /// xUnit() mapped to its linear counterpart when \a type is E_UT_LINEAR.
    unsigned int xUnit(NkrUnits::eUnitType_t type) const;
    /// The unit code of the Y value of an X/Y pair; NoId when none.
    unsigned int yUnit() const;
    /// yUnit() mapped to its linear counterpart when \a type is E_UT_LINEAR.
    unsigned int yUnit(NkrUnits::eUnitType_t type) const;
    /// Sets the unit code (the X unit).
    void setUnit(unsigned int unit);
    /// Sets the unit code of the X value.
    void setXUnit(unsigned int unit);
    /// Sets the unit code of the Y value.
    void setYUnit(unsigned int unit);
    /// The text of unit(); empty when the object has no unit.
    QString unitText() const;
    /// The text of unit(\a type); empty when none.
    QString unitText(NkrUnits::eUnitType_t type) const;
    /// The text of xUnit(); empty when none.
    QString xUnitText() const;
    /// The text of xUnit(\a type); empty when none.
    QString xUnitText(NkrUnits::eUnitType_t type) const;
    /// The text of yUnit(); empty when none.
    QString yUnitText() const;
    /// The text of yUnit(\a type); empty when none.
    QString yUnitText(NkrUnits::eUnitType_t type) const;

    // Storage
    /// The data type of the object's value.
    NTypes::eTypes_t dataType() const;
    /// Sets the data type.
    void setDataType(NTypes::eTypes_t dataType);
    /// Size of the object's data in bytes.
    unsigned int dataSize() const;
    /// Sets the size of the object's data in bytes.
    void setDataSize(unsigned int dataSize);
    /// Size of one element of the data type in bytes.
    unsigned int dataTypeSize() const;
    /// Number of elements of an array object; 0 or 1 for a scalar.
    unsigned int arrayLength() const;
    /// Sets the number of array elements.
    void setArrayLength(unsigned int arrayLength);
    /// Types 26 to 31.
    static bool isDS402DataType(NTypes::eTypes_t type);
    /// The object's data type is one of the DS402 types (26 to 31).
    bool isDS402DataType() const;
    /// Types 12 to 22 and 24 to 32 (23 is deliberately not complex).
    static bool isComplexDataType(NTypes::eTypes_t type);
    /// The object's data type is complex (see the static form).
    bool isComplexDataType() const;

    // Access rights: a flag word stored without interpretation
    /// The access-right flag word as stored.
    unsigned int accessRights() const;
    /// The access rights as flags.
    NkrOdict::AccessRightFlags accessRightsFlags() const;
    /// Replaces the access-right flag word.
    void setAccessRights(unsigned int rights);
    /// Replaces the access rights.
    void setAccessRights(NkrOdict::AccessRightFlags rights);
    /// Sets the bits of \a rights when \a on, clears them otherwise; other bits stay.
    void setAccessRights(NkrOdict::eAccessRight_t rights, bool on);

    // User levels
    /// The lowest user level that may read the object.
    unsigned int userlevelRead() const;
    /// Same as userlevelRead().
    unsigned int getUserlevelRead() const { return userlevelRead(); }
    /// Sets the user level needed to read.
    void setUserlevelRead(unsigned int level);
    /// The lowest user level that may write the object.
    unsigned int userlevelWrite() const;
    /// Same as userlevelWrite().
    unsigned int getUserlevelWrite() const { return userlevelWrite(); }
    /// Sets the user level needed to write.
    void setUserlevelWrite(unsigned int level);
    /// The lowest user level that sees the object.
    unsigned int userlevelVisible() const;
    /// Same as userlevelVisible().
    unsigned int getUserlevelVisible() const { return userlevelVisible(); }
    /// Sets the user level needed to see the object.
    void setUserlevelVisible(unsigned int level);

    /// Decimal digits for display; -1 when not set.
    int digits() const;
    /// Sets the decimal digits for display (-1: not set).
    void setDigits(int digits);

    // Value and bit texts
    /// The enumeration (value texts); empty when the object has none.
    COdictObjectEnum enumData() const;
    /// Replaces the enumeration.
    void setEnumData(const COdictObjectEnum &enumData);
    /// Points into the record; valid until the object is next changed or destroyed.
    const COdictObjectEnum *enumDataPtr() const;
    /// Detaches first, so changes through the pointer affect only this object.
    COdictObjectEnum *enumDataPtr();
    /// The bit set (bit texts); empty when the object has none.
    COdictObjectBitSet bitSetData() const;
    /// Replaces the bit set.
    void setBitSetData(const COdictObjectBitSet &bitSetData);
    /// Points into the record; valid until the object is next changed or destroyed.
    const COdictObjectBitSet *bitSetDataPtr() const;
    /// Detaches first, so changes through the pointer affect only this object.
    COdictObjectBitSet *bitSetDataPtr();
    /// The object has a non-empty enumeration.
    bool hasEnum() const;
    /// The object has a non-empty bit set.
    bool hasBitSet() const;
    /// The object has an enumeration or a bit set.
    bool hasEnumOrBitSet() const;
    /// Same as hasEnumOrBitSet().
    bool hasBitSetOrEnum() const { return hasEnumOrBitSet(); }

    // Limits and defaults (the plain ones are the X ones)
    /// The minimum (the X minimum); null when not set.
    CVariant minValue() const;
    /// The maximum (the X maximum); null when not set.
    CVariant maxValue() const;
    /// The stored default; with \a expandArray, a default of one element is repeated over the
    /// whole data size (data size / element size elements) when the object holds more than one
    /// element and at most 0xFFFF bytes. A null default, an unknown element size or a default
    /// that already is an array stay as stored.
    CVariant defaultValue(bool expandArray = false) const;
    /// The minimum of the X value; null when not set.
    CVariant xMinValue() const;
    /// The maximum of the X value; null when not set.
    CVariant xMaxValue() const;
    /// The default of the X value; null when not set.
    CVariant xDefaultValue() const;
    /// The minimum of the Y value of an X/Y pair; null when not set.
    CVariant yMinValue() const;
    /// The maximum of the Y value of an X/Y pair; null when not set.
    CVariant yMaxValue() const;
    /// The default of the Y value of an X/Y pair; null when not set.
    CVariant yDefaultValue() const;
    /// Deliberately returns the maximum, not the minimum.
    CVariant getMinValue() const;
    /// Same as maxValue().
    CVariant getMaxValue() const;
    /// Same as defaultValue().
    CVariant getDefaultValue() const;
    /// Same as xMinValue().
    CVariant getXMinValue() const;
    /// Same as xMaxValue().
    CVariant getXMaxValue() const;
    /// Same as xDefaultValue().
    CVariant getXDefaultValue() const;
    /// Same as yMinValue().
    CVariant getYMinValue() const;
    /// Same as yMaxValue().
    CVariant getYMaxValue() const;
    /// Same as yDefaultValue().
    CVariant getYDefaultValue() const;
    /// Sets the minimum (the X minimum).
    void setMinValue(const CVariant &value);
    /// Sets the maximum (the X maximum).
    void setMaxValue(const CVariant &value);
    /// Sets the default (the X default).
    void setDefaultValue(const CVariant &value);
    /// Sets the minimum of the X value.
    void setXMinValue(const CVariant &value);
    /// Sets the maximum of the X value.
    void setXMaxValue(const CVariant &value);
    /// Sets the default of the X value.
    void setXDefaultValue(const CVariant &value);
    /// Sets the minimum of the Y value.
    void setYMinValue(const CVariant &value);
    /// Sets the maximum of the Y value.
    void setYMaxValue(const CVariant &value);
    /// Sets the default of the Y value.
    void setYDefaultValue(const CVariant &value);
    /// valueToStr() of the stored minimum, maximum or default (the default is not expanded).
    QString minValueAsStr(bool withUnit = false) const;
    /// valueToStr() of the stored maximum.
    QString maxValueAsStr(bool withUnit = false) const;
    /// valueToStr() of the stored default (not expanded).
    QString defaultValueAsStr(bool withUnit = false) const;

    // Usage class
    /// The usage flag word (NkrOdict::eObjectUsage_t bits) as stored.
    unsigned int objectUsage() const;
    /// The usage as flags.
    NkrOdict::ObjectUsageFlags objectUsageFlags() const;
    /// Replaces the usage flag word.
    void setObjectUsage(unsigned int usage);
    /// Replaces the usage flags.
    void setObjectUsage(NkrOdict::ObjectUsageFlags usage);
    /// Sets the bits of \a usage when \a on, clears them otherwise; other bits stay.
    void setObjectUsage(NkrOdict::eObjectUsage_t usage, bool on);
    /// One class by priority: database parameter, parameter, actual value, else the object bit
    /// (E_OU_OBJECT or E_OU_NONE).
    NkrOdict::eObjectUsage_t baseObjectUsage() const;
    /// The object bit is set and none of parameter, actual value and database parameter.
    bool isObject() const;
    /// The parameter bit (0x02) is set.
    bool isParameter() const;
    /// The actual-value bit (0x04) is set.
    bool isActual() const;
    /// The database-parameter bit (0x80) is set.
    bool isDatabaseParameter() const;

    // Sub-objects
    /// Sub-ids of the object's sub-objects in ascending order.
    QList<unsigned int> subIdList() const;
    /// Replaces the sub-id list (kept as given).
    void setSubIdList(const QList<unsigned int> &subIds);
    /// Number of entries of the sub-id list.
    int subIdCount() const;
    /// The last (largest) sub-id, 0xFFFFFFFF without sub-objects.
    unsigned int highestSubId() const;
    /// Empties the sub-id list.
    void clearSubIds();
    /// Removes \a subId from the sub-id list; nothing when absent.
    void removeSubIdFromList(unsigned int subId);
    /// Adds \a subId keeping the list ascending: appended when larger than the last entry (the
    /// usual case: loaders add in ascending order), ignored when present, otherwise inserted.
    void addSubId(unsigned int subId);

    /// Created by the library; not an object of the firmware.
    bool isVirtual() const;
    /// Sets the virtual flag.
    void setVirtual(bool isVirtual);
    /// Has a bit set or data type 24, and is valid.
    bool couldHaveVirtualSubObjects() const;
    /// The bit positions of a bit-set object; for data type 24 the element numbers 0 up to
    /// dataSize() / 4 exclusive (nothing above 0xFFFF bytes); otherwise nothing.
    QList<unsigned int> possibleVirtualSubIds() const;

    /// Builds the virtual sub-object \a subId of \a owner; \a ok tells whether \a owner has it.
    /// - Bit-set owner, \a subId one of its positions: a copy of the owner named (name, ui name
    ///   and ui short name) after the bit's text, without bit set and enumeration, data type
    ///   BOOL, data size 1, array length 1, minimum 0, maximum 1 and the bit of the owner's
    ///   default as default.
    /// - Owner of data type 24 without bit set, \a subId below dataSize() / 4: element \a subId
    ///   of type I32 (size 4, array length 1); even numbers are the X halves named
    ///   "X%1-Value", odd ones the Y halves named "Y%1-Value" (%1 the 1-based pair number),
    ///   each with the matching limits, default and unit as its plain ones and empty Y fields.
    /// Both get \a subId as sub-id, an empty sub-id list and the virtual flag. Any other case
    /// gives a default object and \a ok false. \a ok has no default on purpose: a call with two
    /// arguments always means the in-place form below, which changes its argument.
    static COdictObject createVirtualSubObject(const COdictObject &owner, unsigned int subId, bool *ok);
    /// Turns \a target, a copy of the owner, into its virtual sub-object \a subId as above;
    /// false and \a target unchanged when the owner has no such sub-object.
    static bool createVirtualSubObject(COdictObject &target, unsigned int subId);

    // DS402 numbering: dictionary ids below 0x2000 appear at id + 0x2000
    /// The DS402 number of dictionary id \a id: id + 0x2000 below 0x2000, else \a id.
    static unsigned int idToDS402Id(unsigned int id);
    /// Maps 0x2000..0x2FFF back to 0..0xFFF; everything else unchanged (not the inverse of
    /// idToDS402Id outside these ranges).
    static unsigned int ds402IdToId(unsigned int ds402Id);
    /// The dictionary key of DS402 number \a ds402Id with \a subId.
    static COdictObjectId ds402IdToUId(unsigned int ds402Id, unsigned int subId = NoId);
    /// The DS402 number of the object id of \a id; the sub-id is dropped.
    static unsigned int uniqueIdToDS402Id(const COdictObjectId &id);
    /// The DS402 number of the object id of the packed key \a id.
    static unsigned int uniqueIdToDS402Id(NkrObjectIds::eObjectId_t id);
    /// Same as uniqueIdToDS402Id().
    static unsigned int uIdToDS402Id(const COdictObjectId &id) { return uniqueIdToDS402Id(id); }
    /// Same as uniqueIdToDS402Id().
    static unsigned int uIdToDS402Id(NkrObjectIds::eObjectId_t id) { return uniqueIdToDS402Id(id); }

    // Text forms
    /// "Speed (ID 8192)" or "Speed (ID 8192:03)".
    QString longInfo() const;
    /// longInfo() with the ui name.
    QString uiLongInfo() const;
    /// longInfo() with the ui short name.
    QString uiShortInfo() const;

private:
    QString infoWith(const QString &text) const;

    friend KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictObject &object);
    friend KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictObject &object);

    QSharedDataPointer<COdictObjectPrivate> d;
};

Q_DECLARE_METATYPE(COdictObject)

/// Writes the record field by field in declaration order; no header of its own.
KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictObject &object);
/// Reads what operator<< writes; the caller checks the stream's status afterwards.
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictObject &object);
/// Writes "COdictObject( id=8192, subid=4294967295, Speed, NTypes::E_I32 )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictObject &object);

#pragma once

#include "COdictObject.h"

#include <QBitArray>

class COdictValueObjectPrivate;

/// A dictionary object with the values last read from (current) and to be written to
/// (setpoint) a drive, the error code of the last access, an optional partial access (byte
/// index and size) and the choice of hexadecimal display. Implicitly shared like its base,
/// with its own shared record beside the base record.
///
/// Elements of compound values. A sub-object addresses one element of its object's value:
/// - for an object with a bit set, sub-id n is bit n of the integer value (a BOOL);
/// - otherwise the value is taken as its little-endian bytes (a QByteArray as it stands,
///   anything else converted to the object's data type) and sub-id n of element type T is
///   the bytes n * size(T) to (n + 1) * size(T), read as a T.
/// Virtual sub-objects use the same layout with T = BOOL for bit sets and T = I32 for data
/// type 24 (even sub-ids the X, odd sub-ids the Y halves of the pairs).
/// Reading answers \a ok false and a null QVariant when the object does not have the sub-id
/// (neither in subIdList() nor in possibleVirtualSubIds()) or the element lies outside the
/// value. Writing changes only the addressed element or bit and keeps the value's form (bytes
/// stay bytes); a null value is first filled with dataSize() zero bytes.
class KRODICT_EXPORT COdictValueObject : public COdictObject
{
public:
    COdictValueObject();
    /// The base record of \a object; own fields at their defaults.
    COdictValueObject(const COdictObject &object);
    /// Shares \a other's records until one of them changes.
    COdictValueObject(const COdictValueObject &other);
    /// Shares \a other's records until one of them changes.
    COdictValueObject &operator=(const COdictValueObject &other);
    /// Replaces the base part only; the values, error and display flag stay.
    COdictValueObject &operator=(const COdictObject &object);
    ~COdictValueObject() override;

    NkrOdict::eObjectType_t objectType() const override;
    /// The base part and the own fields are at their defaults.
    bool isNull() const override;
    /// The base text, with these refinements:
    /// - with the hexadecimal display on, an integer shows as "0x" and upper-case hex digits,
    ///   two per byte of its type ("0x002A" for a U16 of 42);
    /// - an enumeration object shows number and text ("3 Fault"), or the number alone when
    ///   the value has no text;
    /// - U16 and U32 objects whose name holds STATUSWORD or STATUS_WORD show "Status: %1",
    ///   CONTROLWORD, CONTROL_WORD or COMMANDWORD "Command: %1", ERRORWORD, ERROR_WORD,
    ///   ERRORCODE or ERROR_CODE "Error: %1", where %1 is the bit texts of a bit-set object
    ///   and the hexadecimal number otherwise.
    /// Checked in this order (hexadecimal display, word labels, enumeration).
    QString valueToStr(const CVariant &value, bool withUnit = false) const override;

    // Partial access; overridable in this order.
    /// Sets the first byte of a partial access (-1: from the start).
    virtual void setReadWriteByteIndex(long long index);
    /// The first byte of a partial access; -1 for the whole object.
    virtual long long readWriteByteIndex() const;
    /// Same as readWriteByteIndex().
    virtual long long getReadWriteByteIndex() const;
    /// Sets the byte count of a partial access (-1: the whole object).
    virtual void setReadWriteByteSize(long long size);
    /// Number of bytes of a partial access; -1 for the whole object.
    virtual long long readWriteByteSize() const;
    /// Same as readWriteByteSize().
    virtual long long getReadWriteByteSize() const;

    /// True when the base parts and the value fields are equal.
    bool operator==(const COdictValueObject &other) const;
    /// True when some field differs.
    bool operator!=(const COdictValueObject &other) const { return !(*this == other); }

    /// The error code of the last access to the drive; 0 when none.
    int error() const;
    /// Sets the error code.
    void setError(int error);
    /// Sets the error code to 0.
    void clearError();

    /// The value last read from the drive; null when none.
    QVariant currentValue() const;
    /// Sets the current value.
    void setCurrentValue(const QVariant &value);
    /// Sets the current value from a typed value.
    void setCurrentValue(const CVariant &value);
    /// The value to be written to the drive; null when none.
    QVariant setpointValue() const;
    /// Sets the setpoint value.
    void setSetpointValue(const QVariant &value);
    /// Sets the setpoint value from a typed value.
    void setSetpointValue(const CVariant &value);
    /// The current value as a value of the data type; an array object (array length 2 or
    /// more) gives an array of arrayLength() elements built from the value's bytes.
    CVariant currentCValue() const;
    /// The setpoint value as a value of the data type (arrays as for currentCValue()).
    CVariant setpointCValue() const;
    /// valueToStr() of the current value.
    QString currentValueAsStr(bool withUnit = false) const;
    /// valueToStr() of the setpoint value.
    QString setpointValueAsStr(bool withUnit = false) const;
    /// Turns the value into \a size bytes: longer ones are cut, shorter ones padded with zero
    /// bytes. A negative size does nothing.
    void setCurrentValueByteSize(long long size);
    /// setCurrentValueByteSize() for the setpoint value.
    void setSetpointValueByteSize(long long size);

    /// Integers are shown in hexadecimal by valueToStr().
    bool isValueInHexEnabled() const;
    /// Switches the hexadecimal display of integers.
    void setValueInHexEnabled(bool enabled);

    // Elements of compound values (see the class comment)
    /// Element \a subId of type \a type of the current value; null with \a ok false when it lies outside.
    QVariant currentValueForSubObject(unsigned int subId, NTypes::eTypes_t type, bool *ok = nullptr) const;
    /// Element \a subId of type \a type of the setpoint value; null with \a ok false when it lies outside.
    QVariant setpointValueForSubObject(unsigned int subId, NTypes::eTypes_t type, bool *ok = nullptr) const;
    /// Writes \a value as element \a subId of type \a type; false and nothing changed when the
    /// sub-id is unknown, the element lies outside the value or \a value is null.
    bool setCurrentValueFromSubObject(unsigned int subId, NTypes::eTypes_t type, const CVariant &value);
    /// setCurrentValueFromSubObject() for the setpoint value.
    bool setSetpointValueFromSubObject(unsigned int subId, NTypes::eTypes_t type, const CVariant &value);
    /// The same with sub-id, type and current (setpoint) value taken from \a subObject.
    bool setCurrentValueFromSubObject(const COdictValueObject &subObject);
    /// setCurrentValueFromSubObject() for the setpoint value.
    bool setSetpointValueFromSubObject(const COdictValueObject &subObject);

    // Elements for virtual sub-objects: bits of a bit set, I32 halves of data type 24
    /// The bit or I32 half \a subId of the current value; null with \a ok false when there is none.
    QVariant currentValueForVirtualSubObject(unsigned int subId, bool *ok = nullptr) const;
    /// The bit or I32 half \a subId of the setpoint value; null with \a ok false when there is none.
    QVariant setpointValueForVirtualSubObject(unsigned int subId, bool *ok = nullptr) const;
    /// Writes the current value of \a virtualSub (a virtual sub-object of this object: same id,
    /// sub-id one of possibleVirtualSubIds()) into this object's current value. A null value of
    /// \a virtualSub carries nothing and leaves this object as it is (true).
    bool setCurrentValueFromVirtualSubObject(const COdictValueObject &virtualSub);
    /// setCurrentValueFromVirtualSubObject() for the setpoint value.
    bool setSetpointValueFromVirtualSubObject(const COdictValueObject &virtualSub);

    /// COdictObject::createVirtualSubObject() for a value object; the sub-object's current and
    /// setpoint values are its element of the owner's values, error and display flag are the
    /// owner's, the partial access is reset.
    static COdictValueObject createVirtualSubObject(const COdictValueObject &owner, unsigned int subId, bool *ok);
    /// Turns \a target, a copy of the owner, into its virtual sub-object \a subId; false and unchanged when there is none.
    static bool createVirtualSubObject(COdictValueObject &target, unsigned int subId);

    /// Whether bit \a pos of \a bits is set; false outside the array.
    static bool testBit(const QBitArray &bits, unsigned int pos);

private:
    friend KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictValueObject &object);
    friend KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictValueObject &object);

    QSharedDataPointer<COdictValueObjectPrivate> dv;
};

Q_DECLARE_METATYPE(COdictValueObject)

/// The COdictObject part, then error, byte index, byte size, current, setpoint and hex flag.
KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictValueObject &object);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictValueObject &object);
/// "COdictValueObject( id=%1, subid=%2, %3, NTypes::%4, current=%5, setpoint=%6 )", with
/// " error=%7)" in place of " )" when the error is not 0.
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictValueObject &object);

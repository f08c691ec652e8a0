#pragma once

#include "COdictObject.h"

#include <QMap>

#include <functional>

class COdictParameterObjectPrivate;

/// A dictionary object with one value per parameter set (set index to value), as a parameter
/// data file stores them, and the error code of the last access. Implicitly shared, with its
/// own record beside the base record.
class KRODICT_EXPORT COdictParameterObject : public COdictObject
{
public:
    COdictParameterObject();
    /// The base record of \a object; no values, error 0.
    COdictParameterObject(const COdictObject &object);
    /// Shares \a other's records until one of them changes.
    COdictParameterObject(const COdictParameterObject &other);
    /// Shares \a other's records until one of them changes.
    COdictParameterObject &operator=(const COdictParameterObject &other);
    /// Replaces the base part only; values and error stay.
    COdictParameterObject &operator=(const COdictObject &object);
    ~COdictParameterObject() override;

    NkrOdict::eObjectType_t objectType() const override;
    /// The base part is null, there are no values and the error is 0.
    bool isNull() const override;

    // Values per parameter set; overridable in this order.
    /// Stores or replaces the value of parameter set \a index.
    virtual void setValue(int index, const QVariant &value);
    /// The value of parameter set \a index; without one, an empty value of the data type: a
    /// null QVariant that still has the storage type of the data type (LongLong for I32,
    /// String for texts, ByteArray for byte types...), never an invalid one.
    virtual QVariant value(int index) const;
    /// Replaces all values.
    virtual void setValues(const QMap<int, QVariant> &values);
    /// The values by parameter-set index.
    virtual QMap<int, QVariant> values() const;
    /// Calls \a visit with each parameter-set index and its value, in index order, without
    /// building the map of values().
    void forEachValue(const std::function<void(int set, const QVariant &value)> &visit) const;

    /// True when the base parts, values and error are equal.
    bool operator==(const COdictParameterObject &other) const;
    /// True when some field differs.
    bool operator!=(const COdictParameterObject &other) const { return !(*this == other); }

    /// The error code of the last access; 0 when none.
    int error() const;
    /// Sets the error code.
    void setError(int error);
    /// Sets the error code to 0.
    void clearError();

    /// COdictObject::createVirtualSubObject() for a parameter object; each parameter set's
    /// value is the sub-object's element (bit, or I32 half of a type-24 pair) of the owner's
    /// value of that set. Sets whose value does not hold the element get no value.
    static COdictParameterObject createVirtualSubObject(const COdictParameterObject &parent, unsigned int subId, bool *ok);
    /// Turns \a target, a copy of the owner, into its virtual sub-object \a subId; false and unchanged when there is none.
    static bool createVirtualSubObject(COdictParameterObject &target, unsigned int subId);

private:
    friend KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictParameterObject &object);
    friend KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictParameterObject &object);

    QSharedDataPointer<COdictParameterObjectPrivate> dp;
};

Q_DECLARE_METATYPE(COdictParameterObject)

/// The COdictObject part, then the error and the values as QMap<int, QVariant>.
KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictParameterObject &object);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictParameterObject &object);
/// "COdictParameterObject( %1, %2, %3, NTypes::%4 )" with id, sub-id, name and data type.
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictParameterObject &object);

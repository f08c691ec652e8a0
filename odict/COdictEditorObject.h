#pragma once

#include "COdictObject.h"

class COdictEditorObjectPrivate;

/// A dictionary object with what the authoring tool and the code generators need besides the
/// firmware attributes: description texts, the default as written, and the firmware variable
/// and access function behind the object. Implicitly shared, with its own record beside the
/// base record.
class KRODICT_EXPORT COdictEditorObject : public COdictObject
{
public:
    COdictEditorObject();
    /// The base record of \a object; editor fields at their defaults.
    COdictEditorObject(const COdictObject &object);
    /// Shares \a other's records until one of them changes.
    COdictEditorObject(const COdictEditorObject &other);
    /// Shares \a other's records until one of them changes.
    COdictEditorObject &operator=(const COdictEditorObject &other);
    /// Replaces the base part only; the editor fields stay.
    COdictEditorObject &operator=(const COdictObject &object);
    ~COdictEditorObject() override;

    NkrOdict::eObjectType_t objectType() const override;
    /// The base part is null, all texts are empty and the access type is 1.
    bool isNull() const override;
    /// The base rule; the editor fields are not looked at.
    bool isValid() const override;

    /// True when the base parts and all editor fields are equal.
    bool operator==(const COdictEditorObject &other) const;
    /// True when some field differs.
    bool operator!=(const COdictEditorObject &other) const { return !(*this == other); }

    /// The default value as written by the author.
    QString defString() const;
    /// Sets the default value text.
    void setDefString(const QString &text);
    /// Name of the firmware variable behind the object.
    QString fwVariablename() const;
    /// Sets the firmware variable name.
    void setFwVariablename(const QString &name);
    /// Name of the firmware access function of the object.
    QString fwFunctionname() const;
    /// Sets the firmware access function name.
    void setFwFunctionname(const QString &name);
    /// One-line description for the author; empty when not set.
    QString shortDescription() const;
    /// Sets the one-line description.
    void setShortDescription(const QString &text);
    /// Full description for the author; empty when not set.
    QString description() const;
    /// Sets the full description.
    void setDescription(const QString &text);
    /// The authoring tool's access type; stored without interpretation (default 1).
    int accessType() const;
    /// Sets the access type (stored without interpretation).
    void setAccessType(int accessType);

    /// The file text of the data type ("U16").
    QString dataTypeString() const;

private:
    friend KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictEditorObject &object);
    friend KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictEditorObject &object);

    QSharedDataPointer<COdictEditorObjectPrivate> de;
};

Q_DECLARE_METATYPE(COdictEditorObject)

/// Only the editor fields travel; the COdictObject part is neither written nor read.
KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictEditorObject &object);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictEditorObject &object);
/// "COdictEditorObject( id=%1, subid=%2, %3, NTypes::%4 )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictEditorObject &object);

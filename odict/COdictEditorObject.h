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
    COdictEditorObject(const COdictEditorObject &other);
    COdictEditorObject &operator=(const COdictEditorObject &other);
    /// Replaces the base part only; the editor fields stay.
    COdictEditorObject &operator=(const COdictObject &object);
    ~COdictEditorObject() override;

    NkrOdict::eObjectType_t objectType() const override;
    /// The base part is null, all texts are empty and the access type is 1.
    bool isNull() const override;
    /// The base rule; the editor fields are not looked at.
    bool isValid() const override;

    bool operator==(const COdictEditorObject &other) const;
    bool operator!=(const COdictEditorObject &other) const { return !(*this == other); }

    /// The default value as written by the author.
    QString defString() const;
    void setDefString(const QString &text);
    /// Name of the firmware variable behind the object.
    QString fwVariablename() const;
    void setFwVariablename(const QString &name);
    /// Name of the firmware access function of the object.
    QString fwFunctionname() const;
    void setFwFunctionname(const QString &name);
    QString shortDescription() const;
    void setShortDescription(const QString &text);
    QString description() const;
    void setDescription(const QString &text);
    /// The authoring tool's access type; stored without interpretation (default 1).
    int accessType() const;
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

#pragma once

#include "COdictObjectName.h"
#include "CTreeNode.h"
#include "NkrOdict.h"
#include "krodict_export.h"

#include <QString>
#include <QUuid>

class COdictObject;
class COdictValueObject;
class COdictEditorObject;
class COdictParameterObject;

/// The payload of one tree position: a root, dictionary node or group (names only), or an object
/// or sub-object (owning one dictionary object of the dictionary's kind).
class KRODICT_EXPORT COdictItem
{
public:
    COdictItem();
    /// An item of \a type; an object or sub-object item gets a new default object of \a kind.
    COdictItem(NkrOdict::eObjectType_t kind, NkrOdict::eItemType_t type);
    /// An object item owning a copy of \a object.
    explicit COdictItem(const COdictObject &object);
    /// An object item owning a copy of the value object.
    explicit COdictItem(const COdictValueObject &object);
    /// An object item owning a copy of the editor object.
    explicit COdictItem(const COdictEditorObject &object);
    /// An object item owning a copy of the parameter object.
    explicit COdictItem(const COdictParameterObject &object);
    COdictItem(const COdictItem &other); ///< keeps the reference id; the object is cloned by kind
    /// Takes over type, names and a clone of \a other's object; the reference id stays.
    COdictItem &operator=(const COdictItem &other);
    virtual ~COdictItem();

    /// The default item shared by nodes without an item; lives as long as the library.
    static const COdictItem &sharedDefaultItem();

    /// A new default object of \a kind, owned by the caller; null for E_OT_UNKNOWN and unknown kinds.
    COdictObject *createObject(NkrOdict::eObjectType_t kind) const;
    /// A copy of \a object by its own kind, owned by the caller; null for null or an unknown kind.
    COdictObject *createObject(const COdictObject *object) const;

    /// What the item stands for: root, dictionary node, group, object or sub-object.
    virtual NkrOdict::eItemType_t type() const;
    /// Same as type().
    virtual NkrOdict::eItemType_t getType() const;
    /// Sets what the item stands for.
    void setType(NkrOdict::eItemType_t type) { m_type = type; }
    /// The kind of the owned object; E_OT_UNKNOWN without one.
    virtual NkrOdict::eObjectType_t objectType() const;
    /// Same as objectType().
    virtual NkrOdict::eObjectType_t getObjectType() const;
    /// The item is an object or a sub-object.
    bool isObjectItem() const { return m_type == NkrOdict::E_IT_OBJECT || m_type == NkrOdict::E_IT_SUBOBJECT; }

    /// The object's name for object items (empty without an object), else the item's own name.
    QString name() const;
    /// Same as name().
    QString getName() const { return name(); }
    /// The display name (object items: the object's, falling back to its name; others: the ui name, falling back to the name).
    QString uiName() const;
    /// Same as uiName().
    QString getUiName() const { return uiName(); }
    /// The short display name, falling back to uiName().
    QString uiShortName() const;
    /// Same as uiShortName().
    QString getUiShortName() const { return uiShortName(); }
    /// The object's unique name; for other items the name without sub-id.
    COdictObjectName uniqueName() const;
    /// Same as uniqueName().
    COdictObjectName uName() const { return uniqueName(); }
    /// The item's reference id, made when the item was created and kept by copies.
    QUuid refId() const { return m_refId; }

    /// Sets the name (of the object for object items); false for an object item without object.
    virtual bool setName(const QString &name);
    /// Sets the display name (of the object for object items); false for an object item without object.
    virtual bool setUiName(const QString &uiName);
    /// Sets the short display name of the object; false when the item has no object.
    virtual bool setUiShortName(const QString &uiShortName);

    /// The item owns an object.
    bool hasObject() const { return m_object != nullptr; }
    /// The item owns an object that is virtual.
    bool hasVirtualObject() const;
    /// The owned object; null when none.
    COdictObject *objectPtr() { return m_object; }
    /// The owned object; null when none.
    const COdictObject *objectPtr() const { return m_object; }
    /// Same as objectPtr().
    COdictObject *getObjectPtr() { return m_object; }
    /// Same as objectPtr().
    const COdictObject *getObjectPtr() const { return m_object; }
    /// Same as objectPtr().
    COdictObject *toObjectPtr() { return m_object; }
    /// Same as objectPtr().
    const COdictObject *toObjectPtr() const { return m_object; }
    /// Only valid when hasObject().
    COdictObject &objectRef() { return *m_object; }
    /// The owned object; only valid when hasObject().
    const COdictObject &objectRef() const { return *m_object; }
    /// Same as objectRef().
    COdictObject &getObjectRef() { return *m_object; }
    /// Same as objectRef().
    const COdictObject &getObjectRef() const { return *m_object; }

    /// The owned object as a value object; null when it is of another kind.
    COdictValueObject *toValueObjectPtr();
    /// The owned object as a value object; null when it is of another kind.
    const COdictValueObject *toValueObjectPtr() const;
    /// The owned object as an editor object; null when it is of another kind.
    COdictEditorObject *toEditorObjectPtr();
    /// The owned object as an editor object; null when it is of another kind.
    const COdictEditorObject *toEditorObjectPtr() const;
    /// The owned object as a parameter object; null when it is of another kind.
    COdictParameterObject *toParameterObjectPtr();
    /// The owned object as a parameter object; null when it is of another kind.
    const COdictParameterObject *toParameterObjectPtr() const;

    /// A copy of the owned object's base part; a default object when none.
    COdictObject toObject() const;
    /// A copy as a value object (a plain object gives its base attributes); a default one otherwise.
    COdictValueObject toValueObject() const;
    /// A copy as a parameter object (a plain object gives its base attributes); a default one otherwise.
    COdictParameterObject toParameterObject() const;
    /// Deliberately stricter than toValueObject(): only an editor object is copied, a plain one is not.
    COdictEditorObject toEditorObject() const;

    /// Replaces the owned object by \a object of the same kind; false and unchanged when the kinds differ.
    virtual bool setObject(const COdictObject &object);
    /// Replaces the owned object by a value object; false and unchanged when the item holds another kind.
    virtual bool setObject(const COdictValueObject &object);
    /// Replaces the owned object by an editor object; false and unchanged when the item holds another kind.
    virtual bool setObject(const COdictEditorObject &object);
    /// Replaces the owned object by a parameter object; false and unchanged when the item holds another kind.
    virtual bool setObject(const COdictParameterObject &object);

private:
    bool takeObjectOfKind(const COdictObject &object, NkrOdict::eObjectType_t kind);

    NkrOdict::eItemType_t m_type = NkrOdict::E_IT_UNKNOWN;
    QString m_name;
    QString m_uiName;
    COdictObject *m_object = nullptr;
    QUuid m_refId;
};

using COdictNode = CTreeNode<COdictItem>;

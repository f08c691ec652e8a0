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
    COdictItem(NkrOdict::eObjectType_t kind, NkrOdict::eItemType_t type);
    explicit COdictItem(const COdictObject &object);
    explicit COdictItem(const COdictValueObject &object);
    explicit COdictItem(const COdictEditorObject &object);
    explicit COdictItem(const COdictParameterObject &object);
    COdictItem(const COdictItem &other); ///< keeps the reference id; the object is cloned by kind
    COdictItem &operator=(const COdictItem &other);
    virtual ~COdictItem();

    /// The default item shared by nodes without an item; lives as long as the library.
    static const COdictItem &sharedDefaultItem();

    /// A new default object of \a kind, owned by the caller; null for E_OT_UNKNOWN and unknown kinds.
    COdictObject *createObject(NkrOdict::eObjectType_t kind) const;
    /// A copy of \a object by its own kind, owned by the caller; null for null or an unknown kind.
    COdictObject *createObject(const COdictObject *object) const;

    virtual NkrOdict::eItemType_t type() const;
    virtual NkrOdict::eItemType_t getType() const;
    void setType(NkrOdict::eItemType_t type) { m_type = type; }
    virtual NkrOdict::eObjectType_t objectType() const;
    virtual NkrOdict::eObjectType_t getObjectType() const;
    bool isObjectItem() const { return m_type == NkrOdict::E_IT_OBJECT || m_type == NkrOdict::E_IT_SUBOBJECT; }

    QString name() const;
    QString getName() const { return name(); }
    QString uiName() const;
    QString getUiName() const { return uiName(); }
    QString uiShortName() const;
    QString getUiShortName() const { return uiShortName(); }
    COdictObjectName uniqueName() const;
    COdictObjectName uName() const { return uniqueName(); }
    QUuid refId() const { return m_refId; }

    virtual bool setName(const QString &name);
    virtual bool setUiName(const QString &uiName);
    virtual bool setUiShortName(const QString &uiShortName);

    bool hasObject() const { return m_object != nullptr; }
    bool hasVirtualObject() const;
    COdictObject *objectPtr() { return m_object; }
    const COdictObject *objectPtr() const { return m_object; }
    COdictObject *getObjectPtr() { return m_object; }
    const COdictObject *getObjectPtr() const { return m_object; }
    COdictObject *toObjectPtr() { return m_object; }
    const COdictObject *toObjectPtr() const { return m_object; }
    /// Only valid when hasObject().
    COdictObject &objectRef() { return *m_object; }
    const COdictObject &objectRef() const { return *m_object; }
    COdictObject &getObjectRef() { return *m_object; }
    const COdictObject &getObjectRef() const { return *m_object; }

    COdictValueObject *toValueObjectPtr();
    const COdictValueObject *toValueObjectPtr() const;
    COdictEditorObject *toEditorObjectPtr();
    const COdictEditorObject *toEditorObjectPtr() const;
    COdictParameterObject *toParameterObjectPtr();
    const COdictParameterObject *toParameterObjectPtr() const;

    COdictObject toObject() const;
    COdictValueObject toValueObject() const;
    COdictParameterObject toParameterObject() const;
    /// Deliberately stricter than toValueObject(): only an editor object is copied, a plain one is not.
    COdictEditorObject toEditorObject() const;

    virtual bool setObject(const COdictObject &object);
    virtual bool setObject(const COdictValueObject &object);
    virtual bool setObject(const COdictEditorObject &object);
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

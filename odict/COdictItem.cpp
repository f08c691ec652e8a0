#include "COdictItem.h"

#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"

#include <QRandomGenerator>

using namespace NkrOdict;

namespace {

// Copy-assigns \a source into \a target when both are of the derived class D.
template <class D>
void assignAs(COdictObject *target, const COdictObject &source)
{
    auto *t = dynamic_cast<D *>(target);
    auto *s = dynamic_cast<const D *>(&source);
    if (t && s)
        *t = *s;
}

void assignByKind(COdictObject *target, const COdictObject &source, eObjectType_t kind)
{
    switch (kind) {
    case E_OT_STD:
        *target = source;
        break;
    case E_OT_VALUE:
        assignAs<COdictValueObject>(target, source);
        break;
    case E_OT_EDITOR:
        assignAs<COdictEditorObject>(target, source);
        break;
    case E_OT_PARAMETER:
        assignAs<COdictParameterObject>(target, source);
        break;
    default:
        break;
    }
}

/// A random (version 4) UUID. QUuid::createUuid asks the system generator each time, which took
/// 6 % of a load; the global generator is seeded from it once and as random for a reference id.
QUuid newRefId()
{
    QRandomGenerator *random = QRandomGenerator::global();
    QUuid id;
    id.data1 = random->generate();
    const quint32 middle = random->generate();
    id.data2 = ushort(middle >> 16);
    id.data3 = ushort((middle & 0x0FFF) | 0x4000); // version 4
    const quint64 tail = random->generate64();
    for (int i = 0; i < 8; ++i)
        id.data4[i] = uchar(tail >> (8 * i));
    id.data4[0] = uchar((id.data4[0] & 0x3F) | 0x80); // the RFC 4122 variant
    return id;
}

} // namespace

COdictItem::COdictItem() : m_refId(newRefId()) {}

COdictItem::COdictItem(eObjectType_t kind, eItemType_t type) : m_type(type), m_refId(newRefId())
{
    if (type == E_IT_SUBOBJECT || type == E_IT_OBJECT)
        m_object = createObject(kind);
}

COdictItem::COdictItem(const COdictObject &object) : m_type(E_IT_OBJECT), m_refId(newRefId())
{
    setObject(object);
}

COdictItem::COdictItem(const COdictValueObject &object) : m_type(E_IT_OBJECT), m_refId(newRefId())
{
    setObject(object);
}

COdictItem::COdictItem(const COdictEditorObject &object) : m_type(E_IT_OBJECT), m_refId(newRefId())
{
    setObject(object);
}

COdictItem::COdictItem(const COdictParameterObject &object) : m_type(E_IT_OBJECT), m_refId(newRefId())
{
    setObject(object);
}

COdictItem::COdictItem(const COdictItem &other)
    : m_type(other.m_type)
    , m_name(other.m_name)
    , m_uiName(other.m_uiName)
    , m_object(createObject(other.m_object))
    , m_refId(other.m_refId)
{
}

COdictItem &COdictItem::operator=(const COdictItem &other)
{
    if (this == &other)
        return *this;
    m_type = other.m_type;
    m_name = other.m_name;
    m_uiName = other.m_uiName;
    m_refId = other.m_refId;
    const eObjectType_t kind = objectType();
    if (kind == other.objectType()) {
        if (m_object && other.m_object)
            assignByKind(m_object, *other.m_object, kind);
    } else {
        delete m_object;
        m_object = createObject(other.m_object);
    }
    return *this;
}

COdictItem::~COdictItem()
{
    delete m_object;
}

const COdictItem &COdictItem::sharedDefaultItem()
{
    static const COdictItem item;
    return item;
}

COdictObject *COdictItem::createObject(eObjectType_t kind) const
{
    switch (kind) {
    case E_OT_STD:
        return new COdictObject;
    case E_OT_VALUE:
        return new COdictValueObject;
    case E_OT_EDITOR:
        return new COdictEditorObject;
    case E_OT_PARAMETER:
        return new COdictParameterObject;
    default:
        return nullptr;
    }
}

COdictObject *COdictItem::createObject(const COdictObject *object) const
{
    if (!object)
        return nullptr;
    switch (object->objectType()) {
    case E_OT_STD:
        return new COdictObject(*object);
    case E_OT_VALUE:
        if (auto *v = dynamic_cast<const COdictValueObject *>(object))
            return new COdictValueObject(*v);
        break;
    case E_OT_EDITOR:
        if (auto *e = dynamic_cast<const COdictEditorObject *>(object))
            return new COdictEditorObject(*e);
        break;
    case E_OT_PARAMETER:
        if (auto *p = dynamic_cast<const COdictParameterObject *>(object))
            return new COdictParameterObject(*p);
        break;
    default:
        break;
    }
    return nullptr;
}

eItemType_t COdictItem::type() const
{
    return m_type;
}

eItemType_t COdictItem::getType() const
{
    return type();
}

eObjectType_t COdictItem::objectType() const
{
    return m_object ? m_object->objectType() : E_OT_UNKNOWN;
}

eObjectType_t COdictItem::getObjectType() const
{
    return objectType();
}

QString COdictItem::name() const
{
    if (isObjectItem())
        return m_object ? m_object->name() : QString();
    return m_name;
}

QString COdictItem::uiName() const
{
    if (isObjectItem()) {
        if (!m_object)
            return QString();
        const QString ui = m_object->uiName();
        return ui.isEmpty() ? m_object->name() : ui;
    }
    return m_uiName.isEmpty() ? m_name : m_uiName;
}

QString COdictItem::uiShortName() const
{
    if (isObjectItem()) {
        if (!m_object)
            return QString();
        const QString shortName = m_object->uiShortName();
        return shortName.isEmpty() ? uiName() : shortName;
    }
    return uiName(); // a plain item stores no short name
}

COdictObjectName COdictItem::uniqueName() const
{
    if (isObjectItem())
        return m_object ? m_object->uniqueName() : COdictObjectName();
    return COdictObjectName(name());
}

bool COdictItem::setName(const QString &name)
{
    if (isObjectItem()) {
        if (!m_object)
            return false;
        m_object->setName(name);
        return true;
    }
    m_name = name;
    return true;
}

bool COdictItem::setUiName(const QString &uiName)
{
    if (isObjectItem()) {
        if (!m_object)
            return false;
        m_object->setUiName(uiName);
        return true;
    }
    m_uiName = uiName;
    return true;
}

bool COdictItem::setUiShortName(const QString &uiShortName)
{
    if (isObjectItem()) {
        if (!m_object)
            return false;
        m_object->setUiShortName(uiShortName);
    }
    return true; // plain items have no short name and accept the call
}

bool COdictItem::hasVirtualObject() const
{
    return m_object && m_object->isVirtual();
}

COdictValueObject *COdictItem::toValueObjectPtr()
{
    return objectType() == E_OT_VALUE ? dynamic_cast<COdictValueObject *>(m_object) : nullptr;
}

const COdictValueObject *COdictItem::toValueObjectPtr() const
{
    return objectType() == E_OT_VALUE ? dynamic_cast<const COdictValueObject *>(m_object) : nullptr;
}

COdictEditorObject *COdictItem::toEditorObjectPtr()
{
    return objectType() == E_OT_EDITOR ? dynamic_cast<COdictEditorObject *>(m_object) : nullptr;
}

const COdictEditorObject *COdictItem::toEditorObjectPtr() const
{
    return objectType() == E_OT_EDITOR ? dynamic_cast<const COdictEditorObject *>(m_object) : nullptr;
}

COdictParameterObject *COdictItem::toParameterObjectPtr()
{
    return objectType() == E_OT_PARAMETER ? dynamic_cast<COdictParameterObject *>(m_object) : nullptr;
}

const COdictParameterObject *COdictItem::toParameterObjectPtr() const
{
    return objectType() == E_OT_PARAMETER ? dynamic_cast<const COdictParameterObject *>(m_object) : nullptr;
}

COdictObject COdictItem::toObject() const
{
    return m_object ? COdictObject(*m_object) : COdictObject();
}

COdictValueObject COdictItem::toValueObject() const
{
    if (const COdictValueObject *v = toValueObjectPtr())
        return *v; // a shared copy: lookups allocate nothing
    COdictValueObject result;
    if (objectType() == E_OT_STD)
        result = *m_object; // takes over the base attributes
    return result;
}

COdictParameterObject COdictItem::toParameterObject() const
{
    if (const COdictParameterObject *p = toParameterObjectPtr())
        return *p;
    COdictParameterObject result;
    if (objectType() == E_OT_STD)
        result = *m_object;
    return result;
}

COdictEditorObject COdictItem::toEditorObject() const
{
    const COdictEditorObject *e = toEditorObjectPtr();
    return e ? *e : COdictEditorObject();
}

bool COdictItem::takeObjectOfKind(const COdictObject &object, eObjectType_t kind)
{
    if (!m_object || m_object->objectType() == E_OT_UNKNOWN) {
        delete m_object;
        m_object = createObject(&object);
        return true;
    }
    if (m_object->objectType() != kind)
        return false;
    assignByKind(m_object, object, kind);
    return true;
}

bool COdictItem::setObject(const COdictObject &object)
{
    if (!m_object || m_object->objectType() == E_OT_UNKNOWN)
        return takeObjectOfKind(object, object.objectType());
    if (m_object->objectType() != object.objectType())
        return false;
    *m_object = object; // the base part only, as the argument's class says
    return true;
}

bool COdictItem::setObject(const COdictValueObject &object)
{
    return takeObjectOfKind(object, E_OT_VALUE);
}

bool COdictItem::setObject(const COdictEditorObject &object)
{
    return takeObjectOfKind(object, E_OT_EDITOR);
}

bool COdictItem::setObject(const COdictParameterObject &object)
{
    return takeObjectOfKind(object, E_OT_PARAMETER);
}

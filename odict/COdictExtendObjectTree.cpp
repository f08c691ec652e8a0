#include "COdictExtendObjectTree.h"

#include "COdictExtendObjectTree_p.h"
#include "CDataTypeParser.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"

using namespace NkrOdict;

namespace {

// Bit-set objects wider than a 64-bit word get no virtual bits.
constexpr unsigned int maxBitSetObjectSize = 64;

// The virtual sub-object of each object class, made by that class's own factory.
COdictObject makeVirtual(const COdictObject &owner, unsigned int subId, bool *ok)
{
    return COdictObject::createVirtualSubObject(owner, subId, ok);
}

COdictValueObject makeVirtual(const COdictValueObject &owner, unsigned int subId, bool *ok)
{
    return COdictValueObject::createVirtualSubObject(owner, subId, ok);
}

COdictParameterObject makeVirtual(const COdictParameterObject &owner, unsigned int subId, bool *ok)
{
    return COdictParameterObject::createVirtualSubObject(owner, subId, ok);
}

COdictEditorObject makeVirtual(const COdictEditorObject &owner, unsigned int subId, bool *ok)
{
    COdictEditorObject sub(owner); // keeps the editor texts, turns the base part into the sub-object
    *ok = COdictObject::createVirtualSubObject(sub, subId);
    return sub;
}

} // namespace

COdictExtendObjectTreePrivate::COdictExtendObjectTreePrivate(COdictExtendObjectTree *owner, eObjectType_t kind,
                                                             ICLogfile *log)
    : COdictObjectTreePrivate(owner, kind, log)
{
}

COdictExtendObjectTreePrivate::COdictExtendObjectTreePrivate(COdictExtendObjectTree *owner,
                                                             const COdictExtendObjectTreePrivate &other)
    : COdictObjectTreePrivate(owner, other), filter(other.filter)
{
}

COdictExtendObjectTree::COdictExtendObjectTree(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : COdictObjectTree(*new COdictExtendObjectTreePrivate(this, kind, log), parent)
{
}

COdictExtendObjectTree::COdictExtendObjectTree(const COdictExtendObjectTree &other)
    : COdictObjectTree(*new COdictExtendObjectTreePrivate(this, *other.d_func()), other.parent())
{
}

COdictExtendObjectTree::~COdictExtendObjectTree() = default;

VirtualObjectFlags COdictExtendObjectTree::objectFilter() const { return d_func()->filter; }
void COdictExtendObjectTree::setObjectFilter(VirtualObjectFlags filter) { d_func()->filter = filter; }

template <class X>
COdictNode *COdictExtendObjectTreePrivate::createExtendedNode(const X &object, eItemType_t type, bool *ok)
{
    dropVirtualSubObjectsFor(object);
    bool created = false;
    Q_Q(COdictExtendObjectTree);
    COdictNode *node = q->COdictObjectTree::createObjectNode(object, type, &created);
    if (created)
        addVirtualSubObjects(node);
    if (ok)
        *ok = created;
    return node;
}

COdictNode *COdictExtendObjectTree::createObjectNode(const COdictObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createExtendedNode(object, type, ok);
}

COdictNode *COdictExtendObjectTree::createObjectNode(const COdictValueObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createExtendedNode(object, type, ok);
}

COdictNode *COdictExtendObjectTree::createObjectNode(const COdictEditorObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createExtendedNode(object, type, ok);
}

COdictNode *COdictExtendObjectTree::createObjectNode(const COdictParameterObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createExtendedNode(object, type, ok);
}

template <class X>
void COdictExtendObjectTreePrivate::addVirtualSubObjectsOf(COdictNode *node, X &owner, const QList<unsigned int> &subIds)
{
    for (unsigned int subId : subIds) {
        bool made = false;
        const X sub = makeVirtual(owner, subId, &made);
        if (!made)
            continue;
        bool registered = false;
        // The base class registers: virtual sub-objects get no virtual sub-objects of their own.
        COdictNode *child = q_func()->COdictObjectTree::createObjectNode(sub, E_IT_SUBOBJECT, &registered);
        if (!registered) {
            delete child; // a duplicate id was reported by the registration
            continue;
        }
        node->appendChild(child);
        owner.addSubId(subId);
    }
}

void COdictExtendObjectTreePrivate::dropVirtualSubObjectsFor(const COdictObject &stored)
{
    // The reader registers an object before its stored sub-objects, so its virtual sub-objects
    // already exist when the first stored one arrives. Stored sub-objects take precedence: the
    // virtual ones would share their sub-ids and get them refused as duplicates.
    if (!stored.isSubObject() || stored.isVirtual())
        return;
    COdictNode *owner = idIndex.value(COdictObjectId(stored.id()));
    COdictObject *ownerObject = owner && owner->hasData() ? owner->dataPtr()->objectPtr() : nullptr;
    if (!ownerObject)
        return;
    const QList<COdictNode *> children = owner->children();
    for (COdictNode *child : children) {
        const COdictObject *sub = child->dataRef().objectPtr();
        if (!sub || !sub->isVirtual())
            continue;
        ownerObject->removeSubIdFromList(sub->subId());
        unindexSubtree(child);
        owner->removeChild(child);
    }
}

void COdictExtendObjectTreePrivate::addVirtualSubObjects(COdictNode *node)
{
    COdictItem *item = node->dataPtr();
    COdictObject *object = item ? item->objectPtr() : nullptr;
    if (!object || object->isSubObject())
        return;

    QList<unsigned int> subIds;
    if (object->hasBitSet()) {
        if (!(filter & E_VO_BITSET) || node->childCount() > 0 || object->dataSize() > maxBitSetObjectSize)
            return;
        subIds = object->possibleVirtualSubIds();
    } else if (object->dataType() == NTypes::E_XY && (filter & E_VO_XY)
               && (object->isParameter() || object->isDatabaseParameter())
               && object->dataSize() >= CDataTypeParser::typeSize(NTypes::E_XY)) {
        subIds = object->possibleVirtualSubIds();
    } else {
        return;
    }

    switch (item->objectType()) {
    case E_OT_VALUE:
        addVirtualSubObjectsOf(node, *item->toValueObjectPtr(), subIds);
        break;
    case E_OT_EDITOR:
        addVirtualSubObjectsOf(node, *item->toEditorObjectPtr(), subIds);
        break;
    case E_OT_PARAMETER:
        addVirtualSubObjectsOf(node, *item->toParameterObjectPtr(), subIds);
        break;
    default:
        addVirtualSubObjectsOf(node, *object, subIds);
        break;
    }
}

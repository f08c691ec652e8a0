#include "COdictExtendEdit.h"

#include "COdictExtendEdit_p.h"
#include "COdictExtend_p.h"
#include "COdictObjectTree.h"
#include "COdictValueObject.h"

using namespace NkrOdict;

COdictObjectTree *COdictExtendEditPrivate::newTree(eObjectType_t kind) const
{
    return NOdictExtend::newTree(kind, logfile);
}

COdictObjectTree *COdictExtendEditPrivate::copyTree(const COdictObjectTree &tree) const
{
    return NOdictExtend::copyTree(tree);
}

bool COdictExtendEditPrivate::setValueObject(const COdictValueObject &object)
{
    if (!tree)
        return false;
    if (!object.isVirtual()) {
        // The owner is stored, then each of its virtual sub-objects takes its part of the values.
        bool result = COdictEditPrivate::setValueObject(object);
        if (!result || !object.couldHaveVirtualSubObjects())
            return result;
        for (unsigned int subId : object.subIdList()) {
            const COdictNode *node = tree->node(COdictObjectId(object.id(), subId));
            // Stored sub-objects keep their own values; only virtual ones mirror the owner.
            if (!node || !node->dataRef().hasVirtualObject())
                continue;
            COdictValueObject sub = node->dataRef().toValueObject();
            bool ok = false;
            sub.setCurrentValue(object.currentValueForVirtualSubObject(subId, &ok));
            sub.setSetpointValue(object.setpointValueForVirtualSubObject(subId, &ok));
            sub.setError(object.error());
            result = COdictEditPrivate::setValueObject(sub) && result;
        }
        return result;
    }
    // A virtual sub-object's value lives in its owner: write it there and store the owner.
    const COdictNode *node = tree->node(object.uniqueId());
    const COdictNode *ownerNode = node ? node->parent() : nullptr;
    if (!ownerNode)
        return false;
    COdictValueObject owner = ownerNode->dataRef().toValueObject();
    const bool current = owner.setCurrentValueFromVirtualSubObject(object);
    const bool setpoint = owner.setSetpointValueFromVirtualSubObject(object);
    const bool stored = setValueObject(owner);
    return current && setpoint && stored;
}

COdictExtendEdit::COdictExtendEdit(eObjectType_t kind, QObject *parent) : COdictExtendEdit(kind, nullptr, parent) {}

COdictExtendEdit::COdictExtendEdit(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : COdictEdit(*new COdictExtendEditPrivate(this), parent)
{
    initialise(kind, log);
}

COdictExtendEdit::COdictExtendEdit(COdictExtendEditPrivate &dd, QObject *parent) : COdictEdit(dd, parent) {}

COdictExtendEdit::~COdictExtendEdit() = default;

void COdictExtendEdit::setObjectFilter(VirtualObjectFlags filter)
{
    NOdictExtend::setObjectFilter(objectTree(), filter);
}

VirtualObjectFlags COdictExtendEdit::objectFilter() const
{
    return NOdictExtend::objectFilter(objectTree());
}

bool COdictExtendEdit::hasVirtualSubObjects(const COdictObject &object) const
{
    return NOdictExtend::hasVirtualSubObjects(objectTree(), object);
}

bool COdictExtendEdit::hasVirtualSubObjects(const COdictObjectId &id) const
{
    return NOdictExtend::hasVirtualSubObjects(objectTree(), id);
}

bool COdictExtendEdit::hasVirtualSubObjects(const COdictValueObject &object) const
{
    return NOdictExtend::hasVirtualSubObjects(objectTree(), object);
}

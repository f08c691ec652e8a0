#include "COdictExtend.h"

#include "COdictExtendObjectTree.h"
#include "COdictExtend_p.h"
#include "COdictObject.h"
#include "COdictValueObject.h"

using namespace NkrOdict;

// ---- shared helpers ----

COdictObjectTree *NOdictExtend::newTree(eObjectType_t kind, ICLogfile *log)
{
    return new COdictExtendObjectTree(kind, log);
}

COdictObjectTree *NOdictExtend::copyTree(const COdictObjectTree &tree)
{
    if (const auto *extended = extendTree(&tree))
        return new COdictExtendObjectTree(*extended);
    return new COdictObjectTree(tree);
}

COdictExtendObjectTree *NOdictExtend::extendTree(COdictObjectTree *tree)
{
    return qobject_cast<COdictExtendObjectTree *>(tree);
}

const COdictExtendObjectTree *NOdictExtend::extendTree(const COdictObjectTree *tree)
{
    return qobject_cast<const COdictExtendObjectTree *>(tree);
}

bool NOdictExtend::hasVirtualSubObjects(const COdictObjectTree *tree, const COdictObject &object)
{
    if (!tree)
        return false;
    for (unsigned int subId : object.subIdList()) {
        const COdictObject *sub = tree->objectPtr(COdictObjectId(object.id(), subId));
        if (sub && sub->isVirtual())
            return true;
    }
    return false;
}

void NOdictExtend::setObjectFilter(COdictObjectTree *tree, VirtualObjectFlags filter)
{
    if (COdictExtendObjectTree *extended = extendTree(tree))
        extended->setObjectFilter(filter);
}

VirtualObjectFlags NOdictExtend::objectFilter(const COdictObjectTree *tree)
{
    const COdictExtendObjectTree *extended = extendTree(tree);
    return extended ? extended->objectFilter() : VirtualObjectFlags();
}

bool NOdictExtend::hasVirtualSubObjects(const COdictObjectTree *tree, const COdictObjectId &id)
{
    const COdictObject *object = tree ? tree->objectPtr(id) : nullptr;
    return object && hasVirtualSubObjects(tree, *object);
}

// ---- COdictExtend ----

COdictObjectTree *COdictExtendPrivate::newTree(eObjectType_t kind) const
{
    return NOdictExtend::newTree(kind, logfile);
}

COdictObjectTree *COdictExtendPrivate::copyTree(const COdictObjectTree &tree) const
{
    return NOdictExtend::copyTree(tree);
}

COdictExtend::COdictExtend(eObjectType_t kind, QObject *parent) : COdictExtend(kind, nullptr, parent) {}

COdictExtend::COdictExtend(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : COdict(*new COdictExtendPrivate(this), parent)
{
    initialise(kind, log);
}

COdictExtend::COdictExtend(COdictExtendPrivate &dd, QObject *parent) : COdict(dd, parent) {}

COdictExtend::~COdictExtend() = default;

void COdictExtend::setObjectFilter(VirtualObjectFlags filter)
{
    NOdictExtend::setObjectFilter(objectTree(), filter);
}

VirtualObjectFlags COdictExtend::objectFilter() const
{
    return NOdictExtend::objectFilter(objectTree());
}

bool COdictExtend::hasVirtualSubObjects(const COdictObject &object) const
{
    return NOdictExtend::hasVirtualSubObjects(objectTree(), object);
}

bool COdictExtend::hasVirtualSubObjects(const COdictObjectId &id) const
{
    return NOdictExtend::hasVirtualSubObjects(objectTree(), id);
}

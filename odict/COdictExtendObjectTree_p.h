#pragma once

#include "COdictExtendObjectTree.h"
#include "COdictObjectTree_p.h"

/// State of a COdictExtendObjectTree: the object filter, and the steps that add virtual
/// sub-objects below freshly built nodes.
class COdictExtendObjectTreePrivate : public COdictObjectTreePrivate
{
    Q_DECLARE_PUBLIC(COdictExtendObjectTree)
public:
    COdictExtendObjectTreePrivate(COdictExtendObjectTree *owner, NkrOdict::eObjectType_t kind, ICLogfile *log);
    COdictExtendObjectTreePrivate(COdictExtendObjectTree *owner, const COdictExtendObjectTreePrivate &other);

    /// Registers \a object through the base tree, then adds its virtual sub-objects.
    template <class X>
    COdictNode *createExtendedNode(const X &object, NkrOdict::eItemType_t type, bool *ok);
    /// Removes the virtual sub-objects of the owner of \a stored, a stored sub-object about to
    /// be registered: an object with stored sub-objects has no virtual ones.
    void dropVirtualSubObjectsFor(const COdictObject &stored);
    /// Adds the virtual sub-objects the filter asks for below a freshly built node.
    void addVirtualSubObjects(COdictNode *node);
    template <class X>
    void addVirtualSubObjectsOf(COdictNode *node, X &owner, const QList<unsigned int> &subIds);

    NkrOdict::VirtualObjectFlags filter;
};

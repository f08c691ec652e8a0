#pragma once

#include "COdictObjectTree.h"
#include "krodict_export.h"

/// An object tree that adds virtual sub-objects while it is built: one per bit of a bit-set
/// object, and the X/Y halves of data-type-24 parameters, as the object filter selects.
/// Virtual sub-objects exist only in memory; the writer never stores them.
class KRODICT_EXPORT COdictExtendObjectTree : public COdictObjectTree
{
    Q_OBJECT
public:
    COdictExtendObjectTree(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    COdictExtendObjectTree(const COdictExtendObjectTree &other);
    ~COdictExtendObjectTree() override;

    NkrOdict::VirtualObjectFlags objectFilter() const { return m_filter; }
    /// Acts when nodes are built, so it is set before a dictionary is loaded.
    void setObjectFilter(NkrOdict::VirtualObjectFlags filter) { m_filter = filter; }

    COdictNode *createObjectNode(const COdictObject &object, NkrOdict::eItemType_t type, bool *ok) override;
    COdictNode *createObjectNode(const COdictValueObject &object, NkrOdict::eItemType_t type, bool *ok) override;
    COdictNode *createObjectNode(const COdictEditorObject &object, NkrOdict::eItemType_t type, bool *ok) override;
    COdictNode *createObjectNode(const COdictParameterObject &object, NkrOdict::eItemType_t type, bool *ok) override;

private:
    /// Removes the virtual sub-objects of the owner of \a stored, a stored sub-object about to
    /// be registered: an object with stored sub-objects has no virtual ones.
    void dropVirtualSubObjectsFor(const COdictObject &stored);
    /// Adds the virtual sub-objects the filter asks for below a freshly built node.
    void addVirtualSubObjects(COdictNode *node);
    template <class X>
    COdictNode *createExtendedNode(const X &object, NkrOdict::eItemType_t type, bool *ok);
    template <class X>
    void addVirtualSubObjectsOf(COdictNode *node, X &owner, const QList<unsigned int> &subIds);

    NkrOdict::VirtualObjectFlags m_filter;
};

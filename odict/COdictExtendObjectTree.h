#pragma once

#include "COdictObjectTree.h"
#include "krodict_export.h"

class COdictExtendObjectTreePrivate;

/// An object tree that adds virtual sub-objects while it is built: one per bit of a bit-set
/// object, and the X/Y halves of data-type-24 parameters, as the object filter selects.
/// Virtual sub-objects exist only in memory; the writer never stores them.
class KRODICT_EXPORT COdictExtendObjectTree : public COdictObjectTree
{
    Q_OBJECT
public:
    /// An empty tree of \a kind with an empty object filter; \a log is not owned.
    COdictExtendObjectTree(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    /// A deep copy, object filter included.
    COdictExtendObjectTree(const COdictExtendObjectTree &other);
    ~COdictExtendObjectTree() override;

    /// Which objects get virtual sub-objects; empty after construction.
    NkrOdict::VirtualObjectFlags objectFilter() const;
    /// Acts when nodes are built, so it is set before a dictionary is loaded.
    void setObjectFilter(NkrOdict::VirtualObjectFlags filter);

    /// Registers a plain object and adds the virtual sub-objects the filter asks for.
    COdictNode *createObjectNode(const COdictObject &object, NkrOdict::eItemType_t type, bool *ok) override;
    /// Registers a value object and adds the virtual sub-objects the filter asks for.
    COdictNode *createObjectNode(const COdictValueObject &object, NkrOdict::eItemType_t type, bool *ok) override;
    /// Registers an editor object and adds the virtual sub-objects the filter asks for.
    COdictNode *createObjectNode(const COdictEditorObject &object, NkrOdict::eItemType_t type, bool *ok) override;
    /// Registers a parameter object and adds the virtual sub-objects the filter asks for.
    COdictNode *createObjectNode(const COdictParameterObject &object, NkrOdict::eItemType_t type, bool *ok) override;

private:
    Q_DECLARE_PRIVATE(COdictExtendObjectTree)
};

#pragma once

#include "COdictEdit_p.h"
#include "COdictExtend.h"
#include "COdictExtendEdit.h"
#include "COdict_p.h"

class COdictExtendObjectTree;

/// Shared by both extended dictionaries: their trees are COdictExtendObjectTree.
namespace NOdictExtend {
COdictObjectTree *newTree(NkrOdict::eObjectType_t kind, ICLogfile *log);
COdictObjectTree *copyTree(const COdictObjectTree &tree);
COdictExtendObjectTree *extendTree(COdictObjectTree *tree);
const COdictExtendObjectTree *extendTree(const COdictObjectTree *tree);
bool hasVirtualSubObjects(const COdictObjectTree *tree, const COdictObject &object);
bool hasVirtualSubObjects(const COdictObjectTree *tree, const COdictObjectId &id);
void setObjectFilter(COdictObjectTree *tree, NkrOdict::VirtualObjectFlags filter);
NkrOdict::VirtualObjectFlags objectFilter(const COdictObjectTree *tree);
} // namespace NOdictExtend

class KRODICT_EXPORT COdictExtendPrivate : public COdictPrivate
{
    Q_DECLARE_PUBLIC(COdictExtend)
public:
    explicit COdictExtendPrivate(COdictExtend *owner) : COdictPrivate(owner) {}
    COdictObjectTree *newTree(NkrOdict::eObjectType_t kind) const override;
    COdictObjectTree *copyTree(const COdictObjectTree &tree) const override;
};

class KRODICT_EXPORT COdictExtendEditPrivate : public COdictEditPrivate
{
    Q_DECLARE_PUBLIC(COdictExtendEdit)
public:
    explicit COdictExtendEditPrivate(COdictExtendEdit *owner) : COdictEditPrivate(owner) {}
    COdictObjectTree *newTree(NkrOdict::eObjectType_t kind) const override;
    COdictObjectTree *copyTree(const COdictObjectTree &tree) const override;
    /// Keeps an object and its virtual sub-objects consistent (see COdictExtendEdit).
    bool setValueObject(const COdictValueObject &object) override;
};

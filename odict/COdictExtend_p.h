#pragma once

#include "COdictExtend.h"
#include "COdict_p.h"

class COdictExtendObjectTree;

/// Shared by both extended dictionaries (COdictExtend, COdictExtendEdit): their trees are
/// COdictExtendObjectTree.
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

/// State of a COdictExtend: no data of its own; builds extended trees.
class COdictExtendPrivate : public COdictPrivate
{
    Q_DECLARE_PUBLIC(COdictExtend)
public:
    explicit COdictExtendPrivate(COdictExtend *owner) : COdictPrivate(owner) {}
    COdictObjectTree *newTree(NkrOdict::eObjectType_t kind) const override;
    COdictObjectTree *copyTree(const COdictObjectTree &tree) const override;
};

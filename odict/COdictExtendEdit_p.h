#pragma once

#include "COdictEdit_p.h"
#include "COdictExtendEdit.h"

/// State of a COdictExtendEdit: no data of its own; builds extended trees.
class COdictExtendEditPrivate : public COdictEditPrivate
{
    Q_DECLARE_PUBLIC(COdictExtendEdit)
public:
    explicit COdictExtendEditPrivate(COdictExtendEdit *owner) : COdictEditPrivate(owner) {}
    COdictObjectTree *newTree(NkrOdict::eObjectType_t kind) const override;
    COdictObjectTree *copyTree(const COdictObjectTree &tree) const override;
    /// Keeps an object and its virtual sub-objects consistent (see COdictExtendEdit).
    bool setValueObject(const COdictValueObject &object) override;
};

#pragma once

#include "COdictExportBase_p.h"

#include "COdictItem.h"

/// State of one translation export: the frame's lines and the tree walk.
class COdictExportTranslationPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportTranslationPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToTranslate(const QString &directory);

private:
    void addNode(const COdictNode &node);
    void addTranslation(const QString &text);
};

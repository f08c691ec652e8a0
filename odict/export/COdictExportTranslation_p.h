#pragma once

#include "COdictExportBase_p.h"

#include "COdictItem.h"

/// One translation export: the frame and the tree walk, each item written as it is visited.
class COdictExportTranslationPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportTranslationPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToTranslate(const QString &directory);

private:
    static void addNode(COdictLineSink &out, const COdictNode &node);
    static void addTranslation(COdictLineSink &out, const QString &text);
};

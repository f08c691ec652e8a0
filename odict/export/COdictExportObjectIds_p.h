#pragma once

#include "COdictExportBase_p.h"

/// State of one enumeration export: the frame's lines and the enumeration builder.
class COdictExportObjectIdsPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportObjectIdsPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToEnum(const QString &directory);

private:
    void buildEnumeration();
    void addConstant(const COdictEditorObject &object);
};

#pragma once

#include "COdictExportBase_p.h"

/// One enumeration export: the frame, and one constant per object and sub-object written as the
/// objects are visited.
class COdictExportObjectIdsPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportObjectIdsPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToEnum(const QString &directory);

private:
    static void addConstant(COdictLineSink &out, const COdictEditorObject &object);
};

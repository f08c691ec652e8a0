#pragma once

#include "COdictDataStructure.h"
#include "COdictExportBase_p.h"
#include "CXMLMetaData.h"

#include <QHash>
#include <QSet>

/// One header export: the scalars and the list of plain objects gathered first, then the
/// sections written in file order, each in one pass over the objects (the object and DS402
/// tables visit every number of their range, as they are indexed by number).
class COdictExportFilePrivate : public COdictExportBasePrivate
{
public:
    using Structure = COdictDataStructure::SDataStructure_t;

    explicit COdictExportFilePrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToHeaderfile(const QString &fileName);

private:
    void gather();
    void writeBanner(COdictLineSink &out, const QString &fileName) const;
    static void writeTypeHeader(COdictLineSink &out);
    void writeGlobalDefinitions(COdictLineSink &out) const;
    void writeTypeDeclarations(COdictLineSink &out) const;
    void writeAccessFunctions(COdictLineSink &out) const;
    void writeConstants(COdictLineSink &out) const;
    /// One array per valid object with sub-objects, each followed by an empty line.
    void writeSubObjectArrays(COdictLineSink &out) const;
    /// The object, DS402, DS301 lookup and DS301 tables, separated by empty lines.
    void writeTables(COdictLineSink &out) const;
    void addConstant(COdictLineSink &out, const COdictEditorObject &object) const;

    /// The structure an access type selects; an empty one for an unknown type.
    const Structure &structureOf(int accessType) const;
    QString typeName(const COdictEditorObject &object) const;
    QString accessFunctionName(const COdictEditorObject &object) const;
    QString row(const COdictEditorObject *object, quint32 number, bool sub) const;
    QString headRow(const COdictEditorObject &object, quint32 number) const;

    CXMLMetaData meta;
    quint32 highestTableNumber = 0;
    QList<Structure> structures;
    QHash<int, int> structureById;   ///< id -> position of the first structure with that id
    QSet<int> writableAccessTypes;   ///< access types used by at least one writable object
    QList<QPair<quint32, const COdictEditorObject *>> objects;
};

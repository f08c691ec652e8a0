#pragma once

#include "COdictDataStructure.h"
#include "COdictExportBase_p.h"
#include "CXMLMetaData.h"

#include <QHash>
#include <QSet>

/// State of one header export: one line list per section of the file, and the scalars gathered
/// before the sections are built. Everything is reset at the start of each export.
class COdictExportFilePrivate : public COdictExportBasePrivate
{
public:
    using Structure = COdictDataStructure::SDataStructure_t;

    explicit COdictExportFilePrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToHeaderfile(const QString &fileName);

private:
    void gather();
    void buildBanner(const QString &fileName);
    void buildTypeHeader();
    void buildGlobalDefinitions();
    void buildTypeDeclarations();
    void buildAccessFunctions();
    void buildObjects();
    void addConstant(const COdictEditorObject &object);
    void addSubObjectArray(quint32 number, const COdictEditorObject &object);
    QStringList assemble() const;

    /// The structure an access type selects; an empty one for an unknown type.
    const Structure &structureOf(int accessType) const;
    QString typeName(const COdictEditorObject &object) const;
    QString accessFunctionName(const COdictEditorObject &object) const;
    QString row(const COdictEditorObject *object, quint32 number, bool sub) const;
    QString headRow(const COdictEditorObject &object, quint32 number) const;

    // Sections, in file order.
    QStringList banner;
    QStringList guardOpenLines;
    QStringList typeHeader;
    QStringList globals;
    QStringList types;
    QStringList guardCloseLines;
    QStringList accessFunctions;
    QStringList constants;
    QList<QStringList> subObjectArrays;
    QStringList objectTable;
    QStringList ds402Table;
    QStringList ds301Lookup;
    QStringList ds301Table;

    // Scalars.
    CXMLMetaData meta;
    quint32 highestTableNumber = 0;
    QList<Structure> structures;
    QHash<int, int> structureById;   ///< id -> position of the first structure with that id
    QSet<int> writableAccessTypes;   ///< access types used by at least one writable object
    QList<QPair<quint32, const COdictEditorObject *>> objects;
};

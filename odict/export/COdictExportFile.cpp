#include "COdictExportFile.h"
#include "COdictExportFile_p.h"

#include "COdict.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"

#include <QLocale>

namespace {

// Object ids of the object table stay below this number.
constexpr quint32 tableLimit = 0x1000;
constexpr quint32 ds402First = 0x6000;
constexpr quint32 ds402Last = 0x60FF;
// Access-right bits that allow writing (every even bit).
constexpr unsigned int writeMask = 0x55555555u;

const QString noObjectFunction = QStringLiteral("ODICT_Fct_NoObject");
const QString subObjectFunction = QStringLiteral("ODICT_Fct_SubObject");

bool isValid(const COdictEditorObject *object)
{
    return object && object->isValid();
}

QString variableName(const COdictEditorObject &object)
{
    if (object.isSubObject()) {
        return QStringLiteral("Sub_") + QString::number(object.id()) + QLatin1Char('_')
            + QString::number(object.subId()) + QLatin1Char('_') + object.name();
    }
    return QStringLiteral("Object_") + QString::number(object.id()) + QLatin1Char('_') + object.name();
}

QString subObjectArrayName(const COdictEditorObject &object)
{
    return QStringLiteral("ODICT_SubObject_") + QString::number(object.id()) + QLatin1Char('_') + object.name();
}

// One table element: access-function constant and object pointer, then the number as a comment.
// The name column is one wider without "&", so the closing parenthesis keeps its column.
QString elementLine(const QString &function, bool withAddress, const QString &variable, bool sub, quint32 number)
{
    QString line;
    line.reserve(160);
    line += QLatin1String("    {( &");
    line += function.leftJustified(35);
    line += QLatin1String(" ), (void*)( ");
    if (withAddress) {
        line += QLatin1Char('&');
        line += variable.leftJustified(75);
    } else {
        line += variable.leftJustified(76);
    }
    line += QLatin1String(" )},    //! ");
    line += sub ? QLatin1String("Sub:  ") : QLatin1String("Index:");
    line += QLatin1Char(' ');
    line += QString::number(number).rightJustified(6);
    return line;
}

QString hexVersion(unsigned int value, int digits)
{
    return QStringLiteral("(0x") + QString::number(value, 16).rightJustified(digits, QLatin1Char('0')).toUpper()
        + QStringLiteral("U)");
}

} // namespace

COdictExportFile::COdictExportFile(COdict *odict, QObject *parent)
    : QObject(parent), d_ptr(new COdictExportFilePrivate(odict))
{
}

COdictExportFile::~COdictExportFile() = default;

bool COdictExportFile::exportToHeaderfile(const QString &fileName)
{
    Q_D(COdictExportFile);
    return d->exportToHeaderfile(fileName);
}

void COdictExportFile::setDate(const QDate &date)
{
    Q_D(COdictExportFile);
    d->date = date;
}

bool COdictExportFilePrivate::exportToHeaderfile(const QString &fileName)
{
    path = fileName;
    gather();
    // Four passes over the objects: constants, sub-object arrays, DS301 lookup and DS301 table.
    COdictLineSink out(fileName, COdictLineSink::E_F_SOURCE, progress(), 4 * qint64(objects.size()));
    writeBanner(out, fileName);
    guardOpen(out, fileName);
    writeTypeHeader(out);
    writeGlobalDefinitions(out);
    writeTypeDeclarations(out);
    out << QStringLiteral("//!@}") << QStringLiteral("#endif /* ODICT_%1_H_ */").arg(baseName(fileName).toUpper())
        << QString();
    out << QStringLiteral("#ifdef INCLUDED_FROM_ODICT_C");
    writeAccessFunctions(out);
    writeConstants(out);
    out << QString();
    writeSubObjectArrays(out);
    writeTables(out);
    out << QStringLiteral("#endif  /* INCLUDED_FROM_ODICT_C */");

    const bool written = out.commit();
    objects.clear();
    structures.clear();
    return written;
}

void COdictExportFilePrivate::gather()
{
    structures.clear();
    structureById.clear();
    writableAccessTypes.clear();
    highestTableNumber = 0;

    prepare();
    const COdictObjectTree *tree = odict ? odict->objectTree() : nullptr;
    meta = odict ? odict->odictMetaData() : CXMLMetaData();
    if (tree)
        structures = tree->dataStructures().list();
    for (int i = structures.size() - 1; i >= 0; --i)
        structureById.insert(structures.at(i).id, i);

    // One pass over the objects gives the highest table number and the access types that have a
    // writable object, instead of one scan of all numbers per question.
    objects = plainObjects();
    for (const auto &entry : qAsConst(objects)) {
        const COdictEditorObject *object = entry.second;
        if (!object)
            continue;
        if (entry.first < tableLimit && object->isValid())
            highestTableNumber = entry.first;
        if (object->accessRights() & writeMask)
            writableAccessTypes.insert(object->accessType());
    }
}

void COdictExportFilePrivate::writeBanner(COdictLineSink &out, const QString &fileName) const
{
    out << QStringLiteral("/*!") << starLine() << QStringLiteral(" *")
        << QStringLiteral(" * @file    ") + COdictExportBasePrivate::fileName(fileName) << QStringLiteral(" *")
        << QStringLiteral(" * @brief   Automatically generated object directory") << QStringLiteral(" *")
        << QStringLiteral(" * @author  obdEditor.exe") << QStringLiteral(" *")
        << QStringLiteral(" * @version @v{ $Revision: 1.31 $ }") << QStringLiteral(" *")
        << QStringLiteral(" * @date    ") + QLocale::system().toString(exportDate(), QLocale::ShortFormat)
        << QStringLiteral(" *") << starLine() << QStringLiteral(" */") << QString();
}

void COdictExportFilePrivate::writeTypeHeader(COdictLineSink &out)
{
    out << QStringLiteral("/*!") << starLine() << QStringLiteral(" *")
        << QStringLiteral(" * @ingroup   group_OdictTypes") << QStringLiteral(" *")
        << QStringLiteral(" * @brief     Typ-Deklarationen") << QStringLiteral(" *") << QStringLiteral(" * @{")
        << QStringLiteral(" *") << starLine() << QStringLiteral(" */") << QString();
}

void COdictExportFilePrivate::writeGlobalDefinitions(COdictLineSink &out) const
{
    const quint32 version = meta.version().value;
    const unsigned int main = version >> 24;
    const unsigned int minor = (version >> 16) & 0xFFu;
    const unsigned int build = version & 0xFFFFu;
    const QString fileVersion = QStringLiteral("V%1.%2.%3 from %4 at %5 by %6")
                                    .arg(QString::number(main), QString::number(minor), QString::number(build),
                                         meta.date().toString(QStringLiteral("dd.MM.yyyy")),
                                         meta.time().toString(QStringLiteral("HH:mm:ss")), meta.author());

    out << QStringLiteral("// ObjectDeclaration:") << QStringLiteral("// --- Global definitions ---")
        << QStringLiteral("//! Name des Objektverzeichnisses")
        << QStringLiteral("#define ODICT_NAME          ") + QLatin1Char('"') + odictName + QLatin1Char('"')
        << QStringLiteral("//! Klasse des Objektverzeichnisses") << QStringLiteral("#define ODICT_CLASS          1")
        << QStringLiteral("// Odict-Dateiversion: ") + fileVersion
        << QStringLiteral("//! Odict-Hauptversion")
        << QStringLiteral("#define ODICT_VERSION_MAIN   ") + hexVersion(main, 2)
        << QStringLiteral("//! Odict-Nebenversion")
        << QStringLiteral("#define ODICT_VERSION_MINOR  ") + hexVersion(minor, 2)
        << QStringLiteral("//! Odict-Buildnummer")
        << QStringLiteral("#define ODICT_VERSION_BUILD  ") + hexVersion(build, 4)
        << QStringLiteral("//! Grösse der Objekttabelle bzw. die höchste Objektnummer minus 1")
        << QStringLiteral("#define ODICT_SIZE           ") + QString::number(quint64(highestTableNumber) + 1)
        << QString();
}

void COdictExportFilePrivate::writeTypeDeclarations(COdictLineSink &out) const
{
    for (const Structure &structure : qAsConst(structures)) {
        if (structure.id == -1)
            continue;
        out << QStringLiteral("// ") + structure.name + QStringLiteral(": ") + structure.description
            << QStringLiteral("typedef struct") << QStringLiteral("{");
        for (const COdictDataStructure::SDataStructureMember_t &member : structure.members)
            out << QStringLiteral("     ") + member.cType.leftJustified(20) + QLatin1Char(' ') + member.name + QLatin1Char(';');
        out << QStringLiteral("} ODICT_") + structure.name + QStringLiteral("_t;") << QString();
    }
}

void COdictExportFilePrivate::writeAccessFunctions(COdictLineSink &out) const
{
    for (const Structure &structure : qAsConst(structures)) {
        const QString constant = QStringLiteral("ODICT_Fct_") + structure.name;
        const QString read = QStringLiteral("ODICT_AccessFctRead_") + structure.name;
        const QString write = QStringLiteral("ODICT_AccessFctWrite_")
            + (writableAccessTypes.contains(structure.id) ? structure.name : QStringLiteral("NoAccess"));
        out << QStringLiteral("//! @brief   Objektzugriffsfunktion ") + constant
            << QStringLiteral("//! @ingroup group_ObjFunctions")
            << QStringLiteral("const ODICT_T_AccessFct ") + constant.leftJustified(35) + QStringLiteral(" = {")
                   + read.leftJustified(42) + QStringLiteral(", ") + write.leftJustified(42) + QStringLiteral("};");
    }
    out << QString() << QString();
}

void COdictExportFilePrivate::writeConstants(COdictLineSink &out) const
{
    // Constants only concern valid objects, so they come from the objects that exist rather
    // than from every number up to the highest id.
    for (const auto &entry : qAsConst(objects)) {
        const COdictEditorObject *object = entry.second;
        if (isValid(object)) {
            addConstant(out, *object);
            for (const unsigned int subId : object->subIdList()) {
                // A sub-object's key has no room for sub-objects of its own: the walk ends here.
                const COdictEditorObject *sub = editorObjectAt(COdictObjectId(entry.first, subId));
                if (isValid(sub))
                    addConstant(out, *sub);
            }
        }
        out.advance();
    }
}

void COdictExportFilePrivate::writeSubObjectArrays(COdictLineSink &out) const
{
    for (const auto &entry : qAsConst(objects)) {
        const quint32 number = entry.first;
        const COdictEditorObject *object = entry.second;
        if (isValid(object) && object->subIdCount() != 0) {
            const quint64 highestSubId = object->highestSubId();
            COdictListWriter list(out, QStringLiteral("const ODICT_T_ObjDictElementVarBase ") + subObjectArrayName(*object)
                                           + QLatin1Char('[') + QString::number(highestSubId + 2) + QStringLiteral("] ="));
            list.add(row(object, number, false));
            // The array is indexed by sub-id: gaps get placeholder rows.
            for (quint64 subId = 0; subId <= highestSubId; ++subId) {
                const COdictEditorObject *sub = editorObjectAt(COdictObjectId(number, quint32(subId)));
                list.add(row(isValid(sub) ? sub : nullptr, quint32(subId), true));
            }
            list.close();
            out << QString();
        }
        out.advance();
    }
}

void COdictExportFilePrivate::writeTables(COdictLineSink &out) const
{
    // A row of the object or DS402 table: every number gets one, a placeholder when no valid
    // object has it, so that those tables can be indexed by number.
    const auto tableRow = [this](quint32 number) {
        const COdictEditorObject *object = editorObjectAt(COdictObjectId(number));
        if (isValid(object) && object->subIdCount() != 0)
            return headRow(*object, number);
        return row(isValid(object) ? object : nullptr, number, false);
    };
    COdictListWriter objectTable(out, QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_ObjectDictVarBase[ODICT_SIZE] ="));
    for (quint64 n = 0; n <= highestTableNumber && n < objectCount; ++n)
        objectTable.add(tableRow(quint32(n)));
    objectTable.close();
    out << QString();

    COdictListWriter ds402Table(out, QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_DS402VarBase[] ="));
    for (quint64 n = ds402First; n <= ds402Last && n < objectCount; ++n)
        ds402Table.add(tableRow(quint32(n)));
    ds402Table.close();
    out << QString();

    // The DS301 lists hold the valid objects above the object table outside the DS402 range.
    const auto isDs301 = [this](quint32 n, const COdictEditorObject *object) {
        return isValid(object) && n > highestTableNumber && (n < ds402First || n > ds402Last);
    };
    COdictListWriter lookup(out, QStringLiteral("const uint32_t ODICT_DS301LockupBase[] ="));
    for (const auto &entry : qAsConst(objects)) {
        if (isDs301(entry.first, entry.second)) {
            lookup.add(QStringLiteral("    0x") + QString::number(entry.first, 16).rightJustified(8, QLatin1Char('0'))
                       + QStringLiteral(",    // ") + entry.second->name());
        }
        out.advance();
    }
    lookup.close();
    out << QString();

    COdictListWriter ds301Table(out, QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_DS301VarBase[] ="));
    for (const auto &entry : qAsConst(objects)) {
        const COdictEditorObject *object = entry.second;
        if (isDs301(entry.first, object))
            ds301Table.add(object->subIdCount() != 0 ? headRow(*object, entry.first) : row(object, entry.first, false));
        out.advance();
    }
    ds301Table.close();
}

void COdictExportFilePrivate::addConstant(COdictLineSink &out, const COdictEditorObject &object) const
{
    const Structure &structure = structureOf(object.accessType());
    QStringList values;
    values.reserve(structure.members.size());
    for (const COdictDataStructure::SDataStructureMember_t &member : structure.members)
        values << COdictDataStructure::initialValue(member, object);
    out << QStringLiteral("/*! Object ") + object.name() << QStringLiteral(" * @ingroup group_Objects */")
        << QStringLiteral("const ") + typeName(object).leftJustified(30) + QLatin1Char(' ')
               + variableName(object).leftJustified(75) + QStringLiteral(" = {") + values.join(QStringLiteral(", "))
               + QStringLiteral("};")
        << QString();
}

const COdictExportFilePrivate::Structure &COdictExportFilePrivate::structureOf(int accessType) const
{
    static const Structure none;
    const auto it = structureById.constFind(accessType);
    return it == structureById.cend() ? none : structures.at(it.value());
}

QString COdictExportFilePrivate::typeName(const COdictEditorObject &object) const
{
    return QStringLiteral("ODICT_") + structureOf(object.accessType()).name + QStringLiteral("_t");
}

QString COdictExportFilePrivate::accessFunctionName(const COdictEditorObject &object) const
{
    return QStringLiteral("ODICT_Fct_") + structureOf(object.accessType()).name;
}

QString COdictExportFilePrivate::row(const COdictEditorObject *object, quint32 number, bool sub) const
{
    if (!object)
        return elementLine(noObjectFunction, false, QStringLiteral("NULL"), sub, number);
    return elementLine(accessFunctionName(*object), true, variableName(*object), sub, number);
}

QString COdictExportFilePrivate::headRow(const COdictEditorObject &object, quint32 number) const
{
    return elementLine(subObjectFunction, true, subObjectArrayName(object), false, number);
}

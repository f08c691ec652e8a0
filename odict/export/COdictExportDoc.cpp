#include "COdictExportDoc.h"
#include "COdictExportDoc_p.h"

#include "CDataTypeParser.h"
#include "COdict.h"
#include "COdictDataStructure.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"
#include "CStr.h"
#include "NkrUserLevel.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>

#include <cstring>

namespace {

const char *const conceptId = "-//OASIS//DTD DITA 1.2 Concept//EN";
const char *const referenceId = "-//OASIS//DTD DITA 1.2 Reference//EN";
const char *const bookmapId = "-//OASIS//DTD DITA 1.2 BookMap//EN";

// The fixed texts of the package, translated once per export (context "COdictExportDoc").
enum eLabel_t {
    L_OBJECT_DICTIONARY, L_PROPERTY, L_VALUE, L_NAME, L_DISPLAY_NAME, L_SHORT_NAME, L_ID, L_DS402_INDEX,
    L_SUB_ID, L_DATA_TYPE, L_SIZE, L_ACCESS_RIGHTS, L_USAGE, L_LEVEL_READ, L_LEVEL_WRITE, L_LEVEL_VISIBLE,
    L_MINIMUM, L_MAXIMUM, L_DEFAULT, L_UNIT, L_DIGITS, L_VERSION, L_DATE, L_TIME, L_AUTHOR, L_COMMENT,
    L_GROUPS, L_OBJECTS, L_SUB_OBJECTS, L_EXPORTED, L_HISTORY, L_NO_HISTORY, L_STRUCTURES, L_NO_STRUCTURES,
    L_DESCRIPTION, L_MEMBERS, L_PROPERTIES, L_VALUES, L_BITS, L_BIT, L_TEXT, L_ELEMENTS,
    L_FRONT_SHORTDESC, L_GROUP_SHORTDESC, L_EMPTY_GROUP, L_OBJECT_SHORTDESC, L_SUB_SHORTDESC,
    L_READ, L_WRITE, L_READ_WRITE, L_OPERATOR, L_SERVICE, L_FIELDBUS, L_PLC,
    L_USAGE_NONE, L_USAGE_OBJECT, L_USAGE_PARAMETER, L_USAGE_ACTUAL, L_USAGE_DATABASE,
    L_LEVEL_NONE, L_LEVEL_OPERATOR, L_LEVEL_SERVICE, L_LEVEL_EXPERT, L_LEVEL_MANUFACTURER, L_LEVEL_DEVELOPER,
    L_COUNT
};

const char *const labelTexts[] = {
    QT_TRANSLATE_NOOP("COdictExportDoc", "Object dictionary"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Property"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Value"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Name"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Display name"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Short display name"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Id"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "DS402 index"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Sub-id"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Data type"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Size in bytes"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Access rights"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Usage"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "User level read"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "User level write"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "User level visible"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Minimum"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Maximum"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Default"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Unit"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Digits"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Version"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Date"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Time"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Author"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Comment"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Groups"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Objects"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Sub-objects"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Exported"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Version history"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "No version history is recorded."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Data structures"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "No data structures are defined."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Description"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Members"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Properties"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Values"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Bits"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Bit"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Text"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Elements"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Object dictionary %1, version %2."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "The objects of the group %1."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "This group holds no objects."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Object %1, id %2."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "Sub-object %1, id %2, sub-id %3."),
    QT_TRANSLATE_NOOP("COdictExportDoc", "%1 read"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "%1 write"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "%1 read/write"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "operator"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "service"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "fieldbus"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "PLC"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "none"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "object"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "parameter"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "actual value"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "database parameter"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "none"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "operator"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "service"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "expert"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "manufacturer"),
    QT_TRANSLATE_NOOP("COdictExportDoc", "developer"),
};
static_assert(sizeof(labelTexts) / sizeof(*labelTexts) == L_COUNT, "one text per label");

/// A display text as the application's translation (context "Odict") gives it. Cleaned first:
/// the look-up goes through UTF-8, which would turn a lone surrogate into a "?".
QString translated(const QString &text)
{
    const QString clean = COdictDitaWriter::clean(text);
    return clean.isEmpty() ? clean : QCoreApplication::translate("Odict", clean.toUtf8().constData());
}

/// "0x" and at least \a width upper-case hexadecimal digits.
QString hex(quint64 value, int width)
{
    return QStringLiteral("0x") + QString::number(value, 16).toUpper().rightJustified(width, QLatin1Char('0'));
}

/// The topic id of an object: "obj_" and the id in hexadecimal, "_" and the sub-id for a sub-object.
QByteArray objectTopicId(const COdictObject &object)
{
    QByteArray id = "obj_" + QByteArray::number(object.id(), 16).rightJustified(4, '0');
    if (object.isSubObject())
        id += '_' + QByteArray::number(object.subId(), 16).rightJustified(2, '0');
    return id;
}

/// \a text reduced to lower-case ASCII letters, digits and "_": valid in an XML name after a
/// prefix, and the same file on file systems that ignore case.
QByteArray nameCharacters(const QString &text)
{
    const QString lower = text.toLower();
    QByteArray result(lower.size(), '_');
    for (int i = 0; i < lower.size(); ++i) {
        const ushort u = lower.at(i).unicode();
        if ((u >= 'a' && u <= 'z') || (u >= '0' && u <= '9'))
            result[i] = char(u);
    }
    return result;
}

uint idHash(const char *id, int size)
{
    return qHashBits(id, size_t(size));
}

/// The dictionary's language as an xml:lang value; the C locale's texts are English.
QString languageTag(QLocale::Language language)
{
    if (language == QLocale::C || language == QLocale::AnyLanguage)
        return QStringLiteral("en");
    return QLocale(language).bcp47Name();
}

QString isoDate(const QDate &date)
{
    return date.isValid() ? date.toString(Qt::ISODate) : QString();
}

} // namespace

COdictExportDoc::COdictExportDoc(COdict *odict, QObject *parent)
    : QObject(parent), d_ptr(new COdictExportDocPrivate(odict))
{
}

COdictExportDoc::~COdictExportDoc() = default;

bool COdictExportDoc::exportToPackage(const QString &directory)
{
    Q_D(COdictExportDoc);
    return d->exportToPackage(directory);
}

QString COdictExportDoc::mapFileName() const
{
    Q_D(const COdictExportDoc);
    return d->mapFileName();
}

void COdictExportDoc::setDate(const QDate &date)
{
    Q_D(COdictExportDoc);
    d->date = date;
}

QString COdictExportDocPrivate::mapFileName() const
{
    const COdictNode *root = odict ? odict->odictTree() : nullptr;
    const COdictNode *top = root ? root->child(0) : nullptr;
    QString name = top ? top->dataRef().name() : QString();
    // Letters, digits, "-" and "_" of ASCII only: any file system takes them, and no name can
    // climb out of the directory or hide the file.
    for (QChar &c : name) {
        const ushort u = c.unicode();
        if (!((u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '-' || u == '_'))
            c = QLatin1Char('_');
    }
    return (name.isEmpty() ? QStringLiteral("dictionary") : name) + QStringLiteral(".ditamap");
}

bool COdictExportDocPrivate::exportToPackage(const QString &outputDirectory)
{
    prepare();
    lang = odict ? languageTag(odict->language()) : QStringLiteral("en");
    meta = odict ? odict->odictMetaData() : CXMLMetaData();
    labels.clear();
    escapedLabels.clear();
    for (const char *text : labelTexts) {
        labels << QCoreApplication::translate("COdictExportDoc", text);
        escapedLabels << COdictDitaWriter::escaped(labels.last());
    }
    plan();

    bool written = QDir().mkpath(outputDirectory) && writer.open(outputDirectory) && writeMap() && writeFrontPage();
    for (int i = 0; written && i < topics.size(); ++i)
        written = topics.at(i).kind == E_TK_GROUP ? writeGroup(i) : writeObject(i);
    writer.close();
    topics.clear();
    topics.squeeze();
    ids.clear();
    idTable.clear();
    return written;
}

void COdictExportDocPrivate::plan()
{
    topics.clear();
    ids.clear();
    idTable = QVector<int>(1024, -1);
    groupTopics = objectTopics = subObjectTopics = 0;
    const COdictNode *root = odict ? odict->odictTree() : nullptr;
    const COdictNode *top = root ? root->child(0) : nullptr;
    if (!top)
        return;

    // The topics are counted first, so that their tables are allocated once at their size:
    // growing them would hold the old block and the new one at the same time.
    int count = 0;
    QVector<const COdictNode *> below{top};
    while (!below.isEmpty()) {
        const COdictNode *node = below.takeLast();
        count += node->childCount();
        for (int i = 0; i < node->childCount(); ++i)
            below.append(node->child(i));
    }
    below.squeeze();
    topics.reserve(count);
    ids.reserve(count * 12); // "obj_" and six to eight digits, for most
    int tableSize = idTable.size();
    while (tableSize < 2 * (count + 1))
        tableSize *= 2;
    idTable = QVector<int>(tableSize, -1); // allocated at its size, fill() would round up

    // Pre-order with a work list (trees may be deep); each entry remembers its parent topic so
    // that the subtree ends can be filled in afterwards.
    QVector<int> parents;
    parents.reserve(count);
    QVector<QPair<const COdictNode *, int>> pending;
    for (int i = top->childCount() - 1; i >= 0; --i)
        pending.append(qMakePair(top->child(i), -1));
    while (!pending.isEmpty()) {
        const auto entry = pending.takeLast();
        const COdictItem &item = entry.first->dataRef();
        const COdictObject *object = item.isObjectItem() ? item.objectPtr() : nullptr;
        sTopic_t topic;
        topic.node = entry.first;
        if (object) {
            topic.kind = item.type() == NkrOdict::E_IT_SUBOBJECT ? E_TK_SUBOBJECT : E_TK_OBJECT;
            assignUniqueId(topic, objectTopicId(*object));
            ++(topic.kind == E_TK_OBJECT ? objectTopics : subObjectTopics);
        } else {
            // Anything that is not an object (a group, or a node of another kind) becomes a
            // group topic, so that nothing below it goes missing.
            topic.kind = E_TK_GROUP;
            const QByteArray name = nameCharacters(item.name());
            assignUniqueId(topic, "grp_" + (name.isEmpty() ? QByteArray("group") : name));
            ++groupTopics;
        }
        const int index = topics.size();
        topic.end = index + 1;
        topics.append(topic);
        parents.append(entry.second);
        for (int i = entry.first->childCount() - 1; i >= 0; --i)
            pending.append(qMakePair(entry.first->child(i), index));
    }
    for (int i = topics.size() - 1; i >= 0; --i) {
        if (parents.at(i) >= 0)
            topics[parents.at(i)].end = qMax(topics.at(parents.at(i)).end, topics.at(i).end);
    }
}

void COdictExportDocPrivate::assignUniqueId(sTopic_t &topic, const QByteArray &base)
{
    // Linear probing; the table is at most half full, so a free slot ends every search.
    const auto slotOf = [this](const char *id, int size) {
        const int mask = idTable.size() - 1;
        int slot = int(idHash(id, size) & uint(mask));
        for (int t = idTable.at(slot); t >= 0; t = idTable.at(slot)) {
            if (topics.at(t).idSize == size && std::memcmp(ids.constData() + topics.at(t).idStart, id, size_t(size)) == 0)
                break;
            slot = (slot + 1) & mask;
        }
        return slot;
    };
    if (2 * (topics.size() + 1) > idTable.size()) {
        idTable = QVector<int>(2 * idTable.size(), -1);
        for (int t = 0; t < topics.size(); ++t)
            idTable[slotOf(ids.constData() + topics.at(t).idStart, topics.at(t).idSize)] = t;
    }
    QByteArray id = base;
    int slot = slotOf(id.constData(), id.size());
    for (int n = 2; idTable.at(slot) >= 0; ++n) {
        id = base + '_' + QByteArray::number(n);
        slot = slotOf(id.constData(), id.size());
    }
    idTable[slot] = topics.size(); // the topic is appended next
    topic.idStart = ids.size();
    topic.idSize = id.size();
    ids += id;
}

QLatin1String COdictExportDocPrivate::idOf(int topic) const
{
    return QLatin1String(ids.constData() + topics.at(topic).idStart, topics.at(topic).idSize);
}

QByteArray COdictExportDocPrivate::fileOf(int topic) const
{
    const QLatin1String id = idOf(topic);
    return QByteArray(id.data(), id.size()) + ".dita";
}

QLatin1String COdictExportDocPrivate::hrefOf(int topic)
{
    const QLatin1String id = idOf(topic);
    href.resize(0);
    href.append(id.data(), id.size()).append(".dita#").append(id.data(), id.size());
    return QLatin1String(href);
}

QString COdictExportDocPrivate::titleOf(int topic) const
{
    const QString title = translated(topics.at(topic).node->dataRef().uiName());
    return title.isEmpty() ? QString(idOf(topic)) : title;
}

void COdictExportDocPrivate::row(int label, const QString &value)
{
    writer.start("strow");
    headCell(label);
    writer.element("stentry", value);
    writer.end();
}

void COdictExportDocPrivate::hexRow(int label, quint64 value, int width)
{
    writer.start("strow");
    headCell(label);
    writer.elementHex("stentry", value, width);
    writer.end();
}

void COdictExportDocPrivate::row(std::initializer_list<QString> cells)
{
    writer.start("strow");
    for (const QString &cell : cells)
        writer.element("stentry", cell);
    writer.end();
}

bool COdictExportDocPrivate::writeMap()
{
    const QString title = odictName.isEmpty() ? label(L_OBJECT_DICTIONARY) : odictName;
    writer.begin(mapFileName().toLatin1(), "bookmap", bookmapId, "bookmap.dtd", QLatin1String("bookmap"), lang);
    writer.start("booktitle");
    writer.element("mainbooktitle", title);
    writer.element("booktitlealt", label(L_OBJECT_DICTIONARY));
    writer.end();

    // The children of bookmeta in the order the DTD demands: author, publisher information
    // (the export date), critical dates (from the history), product information (the version).
    writer.start("bookmeta");
    if (!meta.author().isEmpty())
        writer.element("author", meta.author());
    const QDate exported = exportDate();
    writer.start("publisherinformation");
    writer.start("published");
    writer.start("completed");
    writer.element("year", QString::number(exported.year()));
    writer.element("month", QString::number(exported.month()).rightJustified(2, QLatin1Char('0')));
    writer.element("day", QString::number(exported.day()).rightJustified(2, QLatin1Char('0')));
    writer.end();
    writer.end();
    writer.end();
    const COdictHistory history = odict ? odict->odictHistory() : COdictHistory();
    // The history is newest first: its last record is the dictionary's first release.
    const QDate created = history.size() > 0 ? history.at(history.size() - 1).date() : meta.date();
    if (created.isValid() || meta.date().isValid()) {
        writer.start("critdates");
        if (created.isValid())
            writer.emptyElement("created", "date", isoDate(created));
        if (meta.date().isValid())
            writer.emptyElement("revised", "modified", isoDate(meta.date()));
        writer.end();
    }
    const quint32 version = meta.version().value;
    writer.start("prodinfo");
    writer.element("prodname", title);
    writer.start("vrmlist");
    writer.start("vrm");
    writer.attribute("version", QString::number(version >> 24));
    writer.attribute("release", QString::number((version >> 16) & 0xFFu));
    writer.attribute("modification", QString::number(version & 0xFFFFu));
    writer.end();
    writer.end();
    writer.end();
    writer.end(); // bookmeta

    writer.start("frontmatter");
    writer.emptyElement("topicref", "href", QStringLiteral("frontpage.dita"));
    writer.end();

    // Top-level topics are chapters, everything below them nested topic references; the stack
    // holds the subtree ends of the open ones.
    QVector<int> open;
    for (int i = 0; i < topics.size(); ++i) {
        while (!open.isEmpty() && open.last() <= i) {
            writer.end();
            open.removeLast();
        }
        writer.start(open.isEmpty() ? "chapter" : "topicref");
        writer.attribute("href", QLatin1String(fileOf(i)));
        open.append(topics.at(i).end);
    }
    return writer.commit();
}

bool COdictExportDocPrivate::writeFrontPage()
{
    const QString title = odictName.isEmpty() ? label(L_OBJECT_DICTIONARY) : odictName;
    const QString version = CStr::versionToString(meta.version());
    writer.begin(QByteArrayLiteral("frontpage.dita"), "concept", conceptId, "concept.dtd", QLatin1String("frontpage"), lang);
    writer.element("title", title);
    writer.element("shortdesc", label(L_FRONT_SHORTDESC).arg(title, version));
    writer.start("conbody");

    writer.start("simpletable");
    writer.attribute("relcolwidth", QLatin1String("1* 3*"));
    writer.start("sthead");
    headCell(L_PROPERTY);
    headCell(L_VALUE);
    writer.end();
    row(L_NAME, odictName);
    row(L_VERSION, version);
    row(L_DATE, isoDate(meta.date()));
    row(L_AUTHOR, meta.author());
    row(L_COMMENT, meta.comment());
    row(L_GROUPS, QString::number(groupTopics));
    row(L_OBJECTS, QString::number(objectTopics));
    row(L_SUB_OBJECTS, QString::number(subObjectTopics));
    row(L_EXPORTED, isoDate(exportDate()));
    writer.end();

    writer.start("section");
    writer.attribute("id", QLatin1String("history"));
    writer.element("title", label(L_HISTORY));
    const COdictHistory history = odict ? odict->odictHistory() : COdictHistory();
    if (history.size() == 0) {
        writer.element("p", label(L_NO_HISTORY));
    } else {
        writer.start("simpletable");
        writer.attribute("relcolwidth", QLatin1String("1* 1* 1* 2* 4*"));
        writer.start("sthead");
        for (const int l : {L_VERSION, L_DATE, L_TIME, L_AUTHOR, L_COMMENT})
            headCell(l);
        writer.end();
        for (int i = 0; i < history.size(); ++i) {
            const CXMLMetaData record = history.at(i);
            row({CStr::versionToString(record.version()), isoDate(record.date()),
                 record.time().isValid() ? record.time().toString(QStringLiteral("HH:mm:ss")) : QString(),
                 record.author(), record.comment()});
        }
        writer.end();
    }
    writer.end();

    writer.start("section");
    writer.attribute("id", QLatin1String("datastructures"));
    writer.element("title", label(L_STRUCTURES));
    const COdictObjectTree *tree = odict ? odict->objectTree() : nullptr;
    const QList<COdictDataStructure::SDataStructure_t> structures =
        tree ? tree->dataStructures().list() : QList<COdictDataStructure::SDataStructure_t>();
    if (structures.isEmpty()) {
        writer.element("p", label(L_NO_STRUCTURES));
    } else {
        writer.start("simpletable");
        writer.attribute("relcolwidth", QLatin1String("1* 2* 2* 4* 4*"));
        writer.start("sthead");
        for (const int l : {L_ID, L_NAME, L_DISPLAY_NAME, L_DESCRIPTION, L_MEMBERS})
            headCell(l);
        writer.end();
        for (const auto &structure : structures) {
            QStringList members;
            for (const auto &member : structure.members)
                members << member.cType + QLatin1Char(' ') + member.name;
            row({QString::number(structure.id), structure.name, structure.uiName, structure.description,
                 members.join(QStringLiteral(", "))});
        }
        writer.end();
    }
    writer.end();

    writer.end(); // conbody
    return writer.commit();
}

bool COdictExportDocPrivate::writeGroup(int topic)
{
    const sTopic_t &group = topics.at(topic);
    const QString title = titleOf(topic);
    writer.begin(fileOf(topic), "concept", conceptId, "concept.dtd", idOf(topic), lang);
    writer.element("title", title);
    writer.element("shortdesc", label(L_GROUP_SHORTDESC).arg(title));
    writer.start("conbody");

    // The direct children: the subtree of each child is skipped by its end.
    QVector<int> groups;
    QVector<int> objects;
    for (int i = topic + 1; i < group.end; i = topics.at(i).end)
        (topics.at(i).kind == E_TK_GROUP ? groups : objects).append(i);
    if (!groups.isEmpty()) {
        writer.start("ul");
        for (const int i : qAsConst(groups)) {
            writer.start("li");
            writer.xref(hrefOf(i), titleOf(i));
            writer.end();
        }
        writer.end();
    }
    if (!objects.isEmpty())
        writeObjectTable(topic);
    if (groups.isEmpty() && objects.isEmpty())
        writer.element("p", label(L_EMPTY_GROUP));
    writer.end(); // conbody
    return writer.commit();
}

bool COdictExportDocPrivate::writeObject(int topic)
{
    const sTopic_t &entry = topics.at(topic);
    const COdictItem &item = entry.node->dataRef();
    const COdictObject &object = *item.objectPtr();
    const COdictEditorObject *editor = item.toEditorObjectPtr();

    // The object's display names, translated once: the title and the navigation title show the
    // same texts unless they fall back to the name or the display name.
    const QString uiName = object.uiName();
    const QString uiShortName = object.uiShortName();
    const QString displayName = translated(uiName);
    const QString shortName = translated(uiShortName);
    QString title = uiName.isEmpty() ? titleOf(topic) : displayName;
    if (title.isEmpty())
        title = QString(idOf(topic));
    writer.begin(fileOf(topic), "reference", referenceId, "reference.dtd", idOf(topic), lang);
    writer.element("title", title);
    writer.start("titlealts");
    writer.element("navtitle", uiShortName.isEmpty() ? translated(item.uiShortName()) : shortName);
    writer.end();
    QString summary = editor ? editor->shortDescription() : QString();
    if (summary.isEmpty()) {
        summary = object.isSubObject()
            ? label(L_SUB_SHORTDESC).arg(object.name(), hex(object.id(), 4), hex(object.subId(), 2))
            : label(L_OBJECT_SHORTDESC).arg(object.name(), hex(object.id(), 4));
    }
    writer.element("shortdesc", summary);

    writer.start("refbody");
    const QString description = editor ? editor->description() : QString();
    if (!description.trimmed().isEmpty()) {
        writer.start("section");
        writer.attribute("id", QLatin1String("description"));
        writer.element("title", label(L_DESCRIPTION));
        // One paragraph per line of the text.
        for (const QString &line : description.split(QLatin1Char('\n'))) {
            if (!line.trimmed().isEmpty())
                writer.element("p", line.trimmed());
        }
        writer.end();
    }
    writeProperties(object, displayName, shortName);

    const COdictObjectEnum *values = object.enumDataPtr();
    if (!values->isEmpty()) {
        openListSection("values", L_VALUES, L_VALUE);
        for (const auto &value : values->enums())
            row({QString::number(value.value), translated(value.name)});
        closeListSection();
    }
    const COdictObjectBitSet *bits = object.bitSetDataPtr();
    if (!bits->isEmpty()) {
        openListSection("bits", L_BITS, L_BIT);
        for (const auto &bit : bits->bitSet())
            row({QString::number(bit.pos), translated(bit.name)});
        closeListSection();
    }
    if (entry.end > topic + 1) {
        writer.start("section");
        writer.attribute("id", QLatin1String("subobjects"));
        writer.element("title", label(L_SUB_OBJECTS));
        writeObjectTable(topic);
        writer.end();
    }
    writer.end(); // refbody
    return writer.commit();
}

void COdictExportDocPrivate::openListSection(const char *id, int title, int keyLabel)
{
    writer.start("section");
    writer.attribute("id", QLatin1String(id));
    writer.element("title", label(title));
    writer.start("simpletable");
    writer.attribute("relcolwidth", QLatin1String("1* 4*"));
    writer.start("sthead");
    headCell(keyLabel);
    headCell(L_TEXT);
    writer.end();
}

void COdictExportDocPrivate::closeListSection()
{
    writer.end(); // simpletable
    writer.end(); // section
}

void COdictExportDocPrivate::writeObjectTable(int topic)
{
    writer.start("simpletable");
    writer.attribute("relcolwidth", QLatin1String("1* 1* 2* 3*"));
    writer.start("sthead");
    for (const int l : {L_ID, L_SUB_ID, L_NAME, L_DISPLAY_NAME})
        headCell(l);
    writer.end();
    for (int i = topic + 1; i < topics.at(topic).end; i = topics.at(i).end) {
        if (topics.at(i).kind == E_TK_GROUP)
            continue;
        const COdictObject &object = *topics.at(i).node->dataRef().objectPtr();
        writer.start("strow");
        writer.elementHex("stentry", object.id(), 4);
        if (object.isSubObject())
            writer.elementHex("stentry", object.subId(), 2);
        else
            writer.elementBytes("stentry", QByteArray());
        writer.start("stentry");
        writer.xref(hrefOf(i), object.name());
        writer.end();
        writer.element("stentry", titleOf(i));
        writer.end();
    }
    writer.end();
}

void COdictExportDocPrivate::writeProperties(const COdictObject &object, const QString &displayName,
                                             const QString &shortName)
{
    writer.start("section");
    writer.attribute("id", QLatin1String("properties"));
    writer.element("title", label(L_PROPERTIES));
    writer.start("simpletable");
    writer.attribute("relcolwidth", QLatin1String("1* 2*"));
    writer.start("sthead");
    headCell(L_PROPERTY);
    headCell(L_VALUE);
    writer.end();

    row(L_NAME, object.name());
    row(L_DISPLAY_NAME, displayName);
    row(L_SHORT_NAME, shortName);
    hexRow(L_ID, object.id(), 4);
    // Files write 0 for "no DS402 number" as often as the library's 0xFFFFFFFF.
    if (object.ds402Id() != 0 && object.ds402Id() != COdictObject::NoId)
        hexRow(L_DS402_INDEX, object.ds402Id(), 4);
    if (object.isSubObject())
        hexRow(L_SUB_ID, object.subId(), 2);
    row(L_DATA_TYPE, CDataTypeParser::typeToStr(object.dataType()));
    row(L_SIZE, QString::number(object.dataSize()));
    if (object.arrayLength() > 1)
        row(L_ELEMENTS, QString::number(object.arrayLength()));

    // Two bits per access path: the even one allows writing, the odd one reading.
    const unsigned int rights = object.accessRights();
    QStringList paths;
    const int pathLabels[] = {L_OPERATOR, L_SERVICE, L_FIELDBUS, L_PLC};
    for (int p = 0; p < 4; ++p) {
        const bool write = rights & (1u << (2 * p));
        const bool read = rights & (2u << (2 * p));
        if (read || write)
            paths << label(read && write ? L_READ_WRITE : read ? L_READ : L_WRITE).arg(label(pathLabels[p]));
    }
    row(L_ACCESS_RIGHTS, hex(rights, 8) + (paths.isEmpty() ? QString() : QStringLiteral(": ") + paths.join(QStringLiteral(", "))));

    int usage = L_USAGE_NONE;
    switch (object.baseObjectUsage()) {
    case NkrOdict::E_OU_DATABASE_PARAMETER: usage = L_USAGE_DATABASE; break;
    case NkrOdict::E_OU_PARAMETER: usage = L_USAGE_PARAMETER; break;
    case NkrOdict::E_OU_ACTUAL: usage = L_USAGE_ACTUAL; break;
    case NkrOdict::E_OU_OBJECT: usage = L_USAGE_OBJECT; break;
    default: break;
    }
    row(L_USAGE, label(usage) + QStringLiteral(" (") + hex(object.objectUsage(), 2) + QLatin1Char(')'));

    const auto level = [this](unsigned int value) {
        const QString number = QString::number(value);
        return value <= NkrUserLevel::E_UL_DEVELOPER ? label(L_LEVEL_NONE + int(value)) + QStringLiteral(" (") + number + QLatin1Char(')')
                                                      : number;
    };
    row(L_LEVEL_READ, level(object.userlevelRead()));
    row(L_LEVEL_WRITE, level(object.userlevelWrite()));
    row(L_LEVEL_VISIBLE, level(object.userlevelVisible()));
    row(L_MINIMUM, object.minValueAsStr());
    row(L_MAXIMUM, object.maxValueAsStr());
    row(L_DEFAULT, object.defaultValueAsStr());
    row(L_UNIT, object.unitText());
    row(L_DIGITS, object.digits() >= 0 ? QString::number(object.digits()) : QString());
    writer.end(); // simpletable
    writer.end(); // section
}

#include "COdictXmlFile.h"

#include "CDomDoc.h"
#include "COdictDataStructure.h"
#include "COdictEditorObject.h"
#include "COdictHistory.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "COdictXmlObject_p.h"
#include "CMessageBoardHelper.h"
#include "CSaveFile.h"
#include "CXmlPullReader.h"
#include "CXmlInputCheck.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamWriter>

#include <memory>
#include <vector>

using namespace NkrOdict;

const QString COdictXmlFile::dictionaryType = QStringLiteral("KiroObjectDictionary");
const QString COdictXmlFile::parameterSetType = QStringLiteral("KiroParameterSets");
const QString COdictXmlFile::formatVersion = QStringLiteral("1.2.0");

namespace {

using namespace NOdictXml;

COdictNode *createNode(COdictObjectTree &tree, const COdictObject &object, eItemType_t type, bool *ok)
{
    switch (object.objectType()) {
    case E_OT_VALUE:
        return tree.createObjectNode(static_cast<const COdictValueObject &>(object), type, ok);
    case E_OT_EDITOR:
        return tree.createObjectNode(static_cast<const COdictEditorObject &>(object), type, ok);
    case E_OT_PARAMETER:
        return tree.createObjectNode(static_cast<const COdictParameterObject &>(object), type, ok);
    default:
        return tree.createObjectNode(object, type, ok);
    }
}

sText_t attribute(const CXmlPullReader &reader, QLatin1String name)
{
    sText_t t;
    if (reader.attribute(name, &t.text)) {
        t.present = true;
        t.line = int(reader.lineNumber());
    }
    return t;
}

sText_t elementText(CXmlPullReader &reader)
{
    sText_t t;
    t.line = int(reader.lineNumber());
    t.text = reader.elementText();
    t.present = true;
    return t;
}

/// Reads attribute \a name into \a t, reusing the buffer of its text (valid while present).
void readAttribute(const CXmlPullReader &reader, QLatin1String name, sText_t &t)
{
    t.present = reader.attribute(name, &t.text);
    t.line = t.present ? int(reader.lineNumber()) : 0;
}

/// Reads the text of field \a f into \a t. A text the object keeps gets a buffer of its own
/// and its exact size; one that is only parsed refills the buffer of the record's last object.
void readField(CXmlPullReader &reader, int f, sText_t &t)
{
    t.line = int(reader.lineNumber());
    if (keepsText(eField_t(f)))
        t.text = reader.elementText();
    else
        reader.elementText(&t.text);
    t.present = true;
}

/// Reads the entries of an "Enum", "BitSet" or "Param" element: each \a entryTag child with its
/// \a keyAttribute and text.
QList<sListEntry_t> readEntries(CXmlPullReader &reader, QLatin1String entryTag, QLatin1String keyAttribute)
{
    QList<sListEntry_t> entries;
    while (reader.readNextStartElement()) {
        if (reader.name() == entryTag) {
            sListEntry_t entry;
            entry.key = attribute(reader, keyAttribute);
            entry.text = elementText(reader);
            entries.append(entry);
        } else {
            reader.skipCurrentElement();
        }
    }
    return entries;
}

void readHistory(CXmlPullReader &reader, COdictHistory &history)
{
    while (reader.readNextStartElement()) {
        if (reader.name() == QLatin1String("Header"))
            history.append(CXmlAbstractKiroFile::readHeader(reader));
        else
            reader.skipCurrentElement();
    }
}

void readDataStructures(CXmlPullReader &reader, COdictDataStructure &list, const Warn &warn)
{
    while (reader.readNextStartElement()) {
        if (reader.name() != QLatin1String("DataStructure")) {
            reader.skipCurrentElement();
            continue;
        }
        COdictDataStructure::SDataStructure_t entry;
        const sText_t id = attribute(reader, QLatin1String("id"));
        bool ok = false;
        entry.id = id.present ? CDomDoc::toI32(id.text, &ok) : 0;
        if (id.present && !ok)
            warn(CDomDoc::conversionError(id.text, QStringLiteral("DataStructure id"), id.line, QStringLiteral("I32")));
        while (reader.readNextStartElement()) {
            const QLatin1String tag = reader.name();
            if (tag == QLatin1String("Name")) {
                entry.name = reader.readElementText();
            } else if (tag == QLatin1String("UiName")) {
                entry.uiName = reader.readElementText();
            } else if (tag == QLatin1String("Description")) {
                entry.description = reader.readElementText();
            } else if (tag == QLatin1String("Member")) {
                COdictDataStructure::SDataStructureMember_t member;
                member.cType = attribute(reader, QLatin1String("type")).text;
                member.name = attribute(reader, QLatin1String("name")).text;
                const sText_t source = attribute(reader, QLatin1String("source"));
                bool known = true;
                member.source = source.present ? COdictDataStructure::strToSource(source.text, &known)
                                               : COdictDataStructure::E_MS_LITERAL;
                if (!known)
                    warn(QCoreApplication::translate("Odict", "<Member> (line %1): unknown source '%2'; its text is used as it stands.")
                             .arg(source.line).arg(source.text));
                member.literal = reader.readElementText();
                entry.members.append(member);
            } else {
                reader.skipCurrentElement();
            }
        }
        list.append(entry);
    }
}

/// Collects what QXmlStreamWriter writes, piece by piece, and hands it to the file in large
/// chunks: a file device pays for every write call, and the writer makes several per element.
class CChunkedDevice : public QIODevice
{
public:
    explicit CChunkedDevice(QIODevice *target) : m_target(target)
    {
        m_chunk.reserve(s_chunkSize + s_chunkSize / 4);
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }
    /// Writes what is collected; false when the file refused it.
    bool flushChunk()
    {
        if (!m_failed && !m_chunk.isEmpty() && m_target->write(m_chunk) != m_chunk.size())
            m_failed = true;
        m_chunk.resize(0); // keeps the capacity
        return !m_failed;
    }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override
    {
        m_chunk.append(data, int(size));
        if (m_chunk.size() >= s_chunkSize && !flushChunk())
            return -1;
        return size;
    }

private:
    static constexpr int s_chunkSize = 256 * 1024;
    QIODevice *m_target;
    QByteArray m_chunk;
    bool m_failed = false;
};

void writeDataStructures(QXmlStreamWriter &x, const COdictDataStructure &list)
{
    x.writeStartElement(QStringLiteral("DataStructures"));
    for (const COdictDataStructure::SDataStructure_t &s : list.list()) {
        x.writeStartElement(QStringLiteral("DataStructure"));
        x.writeAttribute(QStringLiteral("id"), QString::number(s.id));
        x.writeTextElement(QStringLiteral("Name"), xmlText(s.name));
        x.writeTextElement(QStringLiteral("UiName"), xmlText(s.uiName));
        x.writeTextElement(QStringLiteral("Description"), xmlText(s.description));
        for (const COdictDataStructure::SDataStructureMember_t &m : s.members) {
            x.writeStartElement(QStringLiteral("Member"));
            x.writeAttribute(QStringLiteral("type"), xmlText(m.cType));
            x.writeAttribute(QStringLiteral("name"), xmlText(m.name));
            x.writeAttribute(QStringLiteral("source"), COdictDataStructure::sourceToStr(m.source));
            x.writeCharacters(xmlText(m.literal));
            x.writeEndElement();
        }
        x.writeEndElement();
    }
    x.writeEndElement();
}

/// Nesting levels of the tree that are indented. Deeper levels are written without line breaks
/// and indentation, which would otherwise make the file size grow with the square of the depth.
constexpr int indentedLevels = 32;

/// Writes the children of \a top, depth first without recursion.
void writeChildren(QXmlStreamWriter &x, const COdictNode *top, COdictProgressMeter &meter)
{
    qint64 written = 0;
    struct sFrame_t {
        const COdictNode *node;
        int next;
        int openElements; // elements to close when the node is done
    };
    QVector<sFrame_t> stack{{top, 0, 0}};
    while (!stack.isEmpty()) {
        x.setAutoFormatting(stack.size() <= indentedLevels);
        sFrame_t &frame = stack.last();
        if (frame.next >= frame.node->childCount()) {
            for (int i = 0; i < frame.openElements; ++i)
                x.writeEndElement();
            stack.removeLast();
            continue;
        }
        const COdictNode *child = frame.node->child(frame.next++);
        const COdictItem &item = child->dataRef();
        if (item.isObjectItem()) {
            const COdictObject *object = item.objectPtr();
            if (!object || object->isVirtual())
                continue; // virtual sub-objects are made by the library and never stored
            meter.update(++written);
            startObject(x, *object);
            writeObjectFields(x, *object);
            bool hasStoredChildren = false;
            for (const COdictNode *grandChild : child->children())
                hasStoredChildren = hasStoredChildren || !grandChild->dataRef().hasVirtualObject();
            if (hasStoredChildren) {
                x.writeStartElement(QStringLiteral("SubObjects"));
                stack.append({child, 0, 2});
            } else {
                x.writeEndElement();
            }
        } else if (item.type() == E_IT_GROUP) {
            x.writeStartElement(QStringLiteral("Group"));
            x.writeTextElement(QStringLiteral("Name"), xmlText(item.name()));
            x.writeTextElement(QStringLiteral("UiName"), xmlText(item.uiName()));
            stack.append({child, 0, 1});
        }
    }
}

/// The reason an object read from line \a line is not valid.
QString invalidObjectText(const COdictObject &object, int line, bool idPresent, bool idRead)
{
    if (!idPresent)
        return QCoreApplication::translate("Odict", "<Object> (line %1) has no attribute 'id'; it is skipped.").arg(line);
    if (!idRead)
        return QCoreApplication::translate("Odict", "<Object> (line %1) has an unreadable id; it is skipped.").arg(line);
    if (object.id() == 0xFFFFFFFFu)
        return QCoreApplication::translate("Odict", "<Object> (line %1) has the id 0xffffffff, which means no object; it is skipped.").arg(line);
    return QCoreApplication::translate("Odict", "<Object> (line %1, id 0x%2) has no name; it is skipped.").arg(line).arg(object.id(), 0, 16);
}

/// The dropped-record text of a duplicate: the critical message itself is the tree's.
QString duplicateText(const COdictObjectTree &tree, const COdictObject &object, int line)
{
    const COdictNode *existing = tree.node(object.uniqueId());
    return QCoreApplication::translate("Odict", "<Object> (line %1) '%2' repeats id 0x%3 sub-id 0x%4 of '%5'; it is skipped.")
        .arg(line)
        .arg(object.name())
        .arg(object.id(), 0, 16)
        .arg(object.subId(), 0, 16)
        .arg(existing ? existing->dataRef().name() : QString());
}

} // namespace

COdictXmlFile::COdictXmlFile(ICLogfile *log) : CXmlAbstractKiroFile(log) {}

COdictXmlFile::~COdictXmlFile() = default;

int COdictXmlFile::read(COdictObjectTree &tree, const QString &fileName, const QString &documentType,
                        bool withDocumentData, const COdictProgressCallback &progress)
{
    m_error.clear();
    QFile file;
    if (!CXmlInputCheck::openForReading(file, fileName, &m_error))
        return E_OPEN_NOT_READABLE;
    // The reader checks every token against the limits (depth, sizes, entities) as it reads, so
    // the walk below meets only what it can read in bounded time and memory.
    CXmlPullReader reader(&file, fileName, CXmlInputCheck::E_PARSER_STREAM);
    if (!reader.readNextStartElement()) {
        m_error = reader.hasError() ? reader.errorText()
                                    : CXmlInputCheck::openError(fileName, QStringLiteral("no document element"));
        return E_OPEN_NOT_WELLFORMED;
    }
    QString headError;
    QString foundVersion;
    reader.attribute(QLatin1String("version"), &foundVersion);
    const int head = checkDocumentElement(reader.nameString(), foundVersion, documentType, formatVersion, &headError);
    if (head != E_OPEN_OK) {
        m_error = CXmlInputCheck::readError(fileName, 0, 0, headError);
        return head;
    }
    COdictProgressMeter meter(progress, file.size());

    const Warn warn = [&tree](const QString &text) { tree.addWarning(text); };
    const eObjectType_t kind = tree.objectType();
    COdictHistory history;
    COdictDataStructure dataStructures;
    CXMLMetaData meta;
    QString dictionaryName;
    // Content is read into a detached dictionary node; it is linked at the end when the document names it.
    std::unique_ptr<COdictNode> dictionary(tree.createDictionaryNode(QString()));

    enum eFrameKind_t { E_CONTAINER, E_GROUP, E_OBJECT, E_SKIP };
    struct sFrame_t {
        eFrameKind_t kind;
        COdictNode *node;                        // container: where children go; object: the parent
        std::unique_ptr<sObjectRecord_t> record; // objects until registered
        COdictNode *objectNode = nullptr;        // objects after registration (null when refused)
        bool registered = false;
    };
    std::vector<sFrame_t> stack; // move-only frames
    stack.push_back({E_CONTAINER, dictionary.get(), nullptr});
    // Records of registered objects, reused: their parsed fields keep their buffers.
    std::vector<std::unique_ptr<sObjectRecord_t>> spareRecords;

    // Builds and registers the object of the frame; sub-objects join their owner's sub-id list.
    // An object that is not taken is recorded as dropped, and said so in the log.
    auto registerObject = [&](sFrame_t &frame) {
        frame.registered = true;
        std::unique_ptr<sObjectRecord_t> record = std::move(frame.record);
        struct sGiveBack_t {
            std::vector<std::unique_ptr<sObjectRecord_t>> &spare;
            std::unique_ptr<sObjectRecord_t> &record;
            ~sGiveBack_t()
            {
                record->reset();
                spare.push_back(std::move(record));
            }
        } giveBack{spareRecords, record};
        const int line = record->line;
        const bool idPresent = record->id.present;
        bool idRead = false;
        if (idPresent)
            CDomDoc::toU32(record->id.text, &idRead);
        std::unique_ptr<COdictObject> object(buildObject(*record, kind, warn));
        if (!object->isValid()) {
            const QString text = invalidObjectText(*object, line, idPresent, idRead);
            if (idPresent && idRead)
                warn(text); // a missing or unreadable id has been reported by the object reader
            tree.addDroppedRecord(COdictDroppedRecord(COdictDroppedRecord::E_DR_INVALID_OBJECT, line,
                                                      object->uniqueId(), object->name(), text));
            return;
        }
        bool ok = false;
        const eItemType_t type = object->isSubObject() ? E_IT_SUBOBJECT : E_IT_OBJECT;
        COdictNode *node = createNode(tree, *object, type, &ok);
        if (!ok) {
            delete node; // the tree has logged the duplicate
            tree.addDroppedRecord(COdictDroppedRecord(COdictDroppedRecord::E_DR_DUPLICATE_ID, line, object->uniqueId(),
                                                      object->name(), duplicateText(tree, *object, line)));
            return;
        }
        frame.node->appendChild(node);
        frame.objectNode = node;
        if (object->isSubObject() && frame.node->hasData() && frame.node->dataPtr()->hasObject())
            frame.node->dataPtr()->objectPtr()->addSubId(object->subId());
    };

    // Skips an element of the SubObjects of a sub-object or of a dropped object: every "Object"
    // in it (or the element itself) is reported as dropped.
    auto skipElement = [&]() {
        int depth = 0;
        for (CXmlPullReader::eToken_t token = reader.tokenType();; token = reader.readNext()) {
            if (token == CXmlPullReader::E_TOKEN_START) {
                ++depth;
                if (reader.name() != QLatin1String("Object"))
                    continue;
                const auto number = [](const sText_t &t) {
                    bool ok = false;
                    const quint32 value = t.present ? CDomDoc::toU32(t.text, &ok) : 0u;
                    return ok ? value : 0xFFFFFFFFu;
                };
                const COdictObjectId key(number(attribute(reader, QLatin1String("id"))),
                                         number(attribute(reader, QLatin1String("subid"))));
                const int line = int(reader.lineNumber());
                const QString text = QCoreApplication::translate("Odict", "<Object> (line %1) lies below a sub-object or below an object that was not loaded; it is skipped.").arg(line);
                warn(text);
                tree.addDroppedRecord(COdictDroppedRecord(COdictDroppedRecord::E_DR_UNREAD_SUBOBJECT, line, key, QString(), text));
            } else if (token == CXmlPullReader::E_TOKEN_END) {
                if (--depth == 0)
                    return;
            } else if (token == CXmlPullReader::E_TOKEN_DONE) {
                return;
            }
        }
    };

    int tokens = 0;
    while (!reader.atEnd()) {
        const CXmlPullReader::eToken_t token = reader.readNext();
        if ((++tokens & 0xFFF) == 0)
            meter.update(reader.bytesRead());
        if (token == CXmlPullReader::E_TOKEN_END) {
            if (stack.size() == 1)
                break; // the document element ends
            sFrame_t &frame = stack.back();
            if (frame.kind == E_OBJECT && !frame.registered)
                registerObject(frame);
            stack.pop_back();
            continue;
        }
        if (token != CXmlPullReader::E_TOKEN_START)
            continue;

        const QLatin1String tag = reader.name();
        sFrame_t &top = stack.back();
        if (top.kind == E_OBJECT) {
            if (tag == QLatin1String("SubObjects")) {
                if (!top.registered)
                    registerObject(top);
                // Only an object's own sub-objects are read; a sub-object's "SubObjects" is skipped.
                if (top.objectNode && !top.objectNode->dataRef().objectPtr()->isSubObject())
                    stack.push_back({E_CONTAINER, top.objectNode, nullptr});
                else
                    stack.push_back({E_SKIP, nullptr, nullptr});
                continue;
            }
            if (top.registered) {
                reader.skipCurrentElement(); // fields after "SubObjects" cannot change the registered object
                continue;
            }
            sObjectRecord_t &record = *top.record;
            if (tag == QLatin1String("Enum")) {
                record.hasEnum = true;
                record.enumItems += readEntries(reader, QLatin1String("Item"), QLatin1String("value"));
            } else if (tag == QLatin1String("BitSet")) {
                record.hasBitSet = true;
                record.bits += readEntries(reader, QLatin1String("Bit"), QLatin1String("pos"));
            } else if (tag == QLatin1String("Param")) {
                record.params += readEntries(reader, QLatin1String("Value"), QLatin1String("id"));
            } else if (const int f = fieldOf(tag); f >= 0) {
                readField(reader, f, record.fields[f]);
            } else {
                reader.skipCurrentElement();
            }
            continue;
        }
        if (top.kind == E_SKIP) {
            skipElement();
            continue;
        }
        if (tag == QLatin1String("Group")) {
            COdictNode *group = tree.createGroupNode(QString(), QString());
            top.node->appendChild(group);
            stack.push_back({E_GROUP, group, nullptr});
        } else if (tag == QLatin1String("Object")) {
            std::unique_ptr<sObjectRecord_t> record;
            if (spareRecords.empty()) {
                record = std::make_unique<sObjectRecord_t>();
            } else {
                record = std::move(spareRecords.back());
                spareRecords.pop_back();
            }
            record->line = int(reader.lineNumber());
            readAttribute(reader, QLatin1String("id"), record->id);
            readAttribute(reader, QLatin1String("subid"), record->subId);
            readAttribute(reader, QLatin1String("version"), record->version);
            COdictNode *parent = top.node;
            stack.push_back({E_OBJECT, parent, std::move(record)});
        } else if (top.kind == E_GROUP && tag == QLatin1String("Name")) {
            top.node->dataPtr()->setName(reader.elementText().toUpper());
        } else if (top.kind == E_GROUP && tag == QLatin1String("UiName")) {
            top.node->dataPtr()->setUiName(translated(reader.elementText()));
        } else if (stack.size() == 1 && tag == QLatin1String("Name")) {
            dictionaryName = reader.elementText();
        } else if (stack.size() == 1 && tag == QLatin1String("Header")) {
            meta = readHeader(reader);
        } else if (stack.size() == 1 && tag == QLatin1String("History")) {
            readHistory(reader, history);
        } else if (stack.size() == 1 && tag == QLatin1String("DataStructures")) {
            readDataStructures(reader, dataStructures, warn);
        } else {
            reader.skipCurrentElement(); // unknown elements are skipped without a message
        }
    }

    if (reader.hasError()) {
        m_error = reader.errorText();
        tree.unindexSubtree(dictionary.get());
        return E_OPEN_NOT_WELLFORMED;
    }
    meter.finish();

    setMetaData(meta);
    if (withDocumentData) {
        tree.setMetaDataOnly(meta);
        tree.setHistory(history);
        tree.setDataStructures(dataStructures);
    }
    if (dictionaryName.isEmpty()) {
        // A document without a name loads as an empty dictionary; what it held is reported.
        const int lost = tree.allObjectUIds(dictionary.get()).size();
        tree.unindexSubtree(dictionary.get());
        if (lost > 0) {
            const QString text = QCoreApplication::translate("Odict", "The document names no dictionary (its <Name> is missing or empty); its %1 objects are not loaded.").arg(lost);
            warn(text);
            tree.addDroppedRecord(COdictDroppedRecord(COdictDroppedRecord::E_DR_NO_DICTIONARY, 0, COdictObjectId(), QString(), text));
        }
        return E_OPEN_OK;
    }
    dictionary->dataPtr()->setName(dictionaryName);
    tree.rootNode()->appendChild(dictionary.release());
    return E_OPEN_OK;
}

int COdictXmlFile::write(const COdictObjectTree &tree, const QString &fileName, const QString &documentType,
                         const CXMLMetaData &meta, bool withDocumentData, const COdictProgressCallback &progress)
{
    m_error.clear();
    if (documentType.isEmpty())
        return 1;
    QSaveFile file(fileName);
    if (!CSaveFile::open(file, &m_error))
        return 2;
    COdictProgressMeter meter(progress, tree.objectCount());
    CChunkedDevice chunks(&file);
    QXmlStreamWriter x(&chunks);
    x.setCodec("UTF-8");
    x.setAutoFormatting(true);
    x.setAutoFormattingIndent(2);
    x.writeStartDocument();
    x.writeStartElement(documentType);
    x.writeAttribute(QStringLiteral("version"), formatVersion);
    writeHeader(x, xmlMeta(meta));
    const COdictNode *dictionary = tree.dictionaryNode();
    x.writeTextElement(QStringLiteral("Name"), dictionary ? xmlText(dictionary->dataRef().name()) : QString());
    if (withDocumentData) {
        x.writeStartElement(QStringLiteral("History"));
        for (const CXMLMetaData &record : tree.history().list())
            writeHeader(x, xmlMeta(record));
        x.writeEndElement();
        writeDataStructures(x, tree.dataStructures());
    }
    if (dictionary)
        writeChildren(x, dictionary, meter);
    x.setAutoFormatting(true);
    x.writeEndElement();
    x.writeEndDocument();
    if (!chunks.flushChunk() || x.hasError())
        file.cancelWriting();
    if (!CSaveFile::commit(file)) {
        m_error = CSaveFile::writeError(fileName, file.errorString());
        return 2;
    }
    meter.finish();
    return 0;
}

COdictObject *COdictXmlFile::objectFromElement(const QDomElement &element, eObjectType_t kind, QStringList *warnings)
{
    const QDomElement e = element.tagName() == QLatin1String("Object") ? element : CDomDoc::firstSubElement(element, QStringLiteral("Object"));
    sObjectRecord_t record;
    record.line = e.lineNumber();
    auto attr = [&e](const QString &name) {
        sText_t t;
        if (e.hasAttribute(name)) {
            t.text = e.attribute(name);
            t.present = true;
            t.line = e.lineNumber();
        }
        return t;
    };
    record.id = attr(QStringLiteral("id"));
    record.subId = attr(QStringLiteral("subid"));
    record.version = attr(QStringLiteral("version"));
    auto entries = [](const QDomElement &list, const QString &entryTag, const QString &key) {
        QList<sListEntry_t> result;
        for (QDomElement c = list.firstChildElement(entryTag); !c.isNull(); c = c.nextSiblingElement(entryTag)) {
            sListEntry_t entry;
            entry.key.present = c.hasAttribute(key);
            entry.key.text = c.attribute(key);
            entry.key.line = c.lineNumber();
            entry.text.text = c.text();
            entry.text.present = true;
            result.append(entry);
        }
        return result;
    };
    for (QDomElement c = e.firstChildElement(); !c.isNull(); c = c.nextSiblingElement()) {
        const QString tag = c.tagName();
        if (tag == QLatin1String("Enum")) {
            record.hasEnum = true;
            record.enumItems += entries(c, QStringLiteral("Item"), QStringLiteral("value"));
        } else if (tag == QLatin1String("BitSet")) {
            record.hasBitSet = true;
            record.bits += entries(c, QStringLiteral("Bit"), QStringLiteral("pos"));
        } else if (tag == QLatin1String("Param")) {
            record.params += entries(c, QStringLiteral("Value"), QStringLiteral("id"));
        } else if (const int f = fieldOf(tag); f >= 0 && !record.fields[f].present) {
            record.fields[f] = {c.text(), c.lineNumber(), true};
        }
    }
    const Warn warn = [warnings](const QString &text) {
        if (warnings)
            warnings->append(text);
    };
    return buildObject(record, kind, warn);
}

QDomElement COdictXmlFile::objectToElement(CDomDoc &doc, QDomElement parent, const COdictObject &object)
{
    return appendObjectElement(doc, parent, object);
}

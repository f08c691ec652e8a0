#include "COdictXmlFile.h"

#include "CDataTypeParser.h"
#include "CDomDoc.h"
#include "COdictDataStructure.h"
#include "COdictEditorObject.h"
#include "COdictHistory.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "CSaveFile.h"
#include "CStr.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <functional>
#include <vector>
#include <memory>

using namespace NkrOdict;

const QString COdictXmlFile::dictionaryType = QStringLiteral("KiroObjectDictionary");
const QString COdictXmlFile::parameterSetType = QStringLiteral("KiroParameterSets");
const QString COdictXmlFile::formatVersion = QStringLiteral("1.2.0");

namespace {

using Warn = std::function<void(const QString &)>;

// The sub-elements of an "Object" that carry one value each.
enum eField_t {
    F_SUBID, F_NAME, F_UINAME, F_UISHORTNAME, F_TYPE, F_DATASIZE, F_OBJECTVERSION, F_OBJECTUSAGE,
    F_ACCESSRIGHTS, F_UNIT, F_YUNIT, F_DIGITS, F_DS402ID, F_PROFINETID, F_ULREAD, F_ULVISIBLE,
    F_ULWRITE, F_MINVAL, F_MAXVAL, F_DEFVAL, F_REFID,
    // value objects
    F_ARRAYLENGTH, F_ARRAYINDEX, F_HEXADECIMAL,
    // editor objects
    F_DEFSTRING, F_FWVARIABLE, F_FWFUNCTION, F_ACCESSTYPE, F_SHORTDESCRIPTION, F_DESCRIPTION,
    // parameter objects
    F_ERROR,
    F_COUNT
};

const char *const fieldTags[F_COUNT] = {
    "SubId", "Name", "UiName", "UiShortName", "Type", "DataSize", "ObjectVersion", "ObjectUsage",
    "AccessRights", "Unit", "Y-Unit", "Digits", "DS402Id", "ProfinetId", "UserLevelRead", "UserLevelVisible",
    "UserLevelWrite", "MinVal", "MaxVal", "DefVal", "RefId",
    "ArrayLength", "ArrayIndex", "Hexadecimal",
    "DefString", "FwVariable", "FwFunction", "AccessType", "ShortDescription", "Description",
    "Error",
};

int fieldOf(QStringView tag)
{
    for (int f = 0; f < F_COUNT; ++f) {
        if (tag == QLatin1String(fieldTags[f]))
            return f;
    }
    return -1;
}

struct sText_t {
    QString text;
    int line = 0;
    bool present = false;
};

struct sListEntry_t {
    sText_t key; ///< the "value" or "pos" (or parameter "id") attribute
    sText_t text;
};

/// Everything read of one "Object" element before the object is built from it.
struct sObjectRecord_t {
    int line = 0;
    sText_t id;       ///< attribute "id"
    sText_t subId;    ///< attribute "subid"
    sText_t version;  ///< attribute "version"
    sText_t fields[F_COUNT];
    bool hasEnum = false;
    bool hasBitSet = false;
    QList<sListEntry_t> enumItems;
    QList<sListEntry_t> bits;
    QList<sListEntry_t> params;
};

QString translated(const QString &text)
{
    return text.isEmpty() ? text : QCoreApplication::translate("Odict", text.toUtf8().constData());
}

class CFieldReader
{
public:
    CFieldReader(const sObjectRecord_t &record, const Warn &warn) : r(record), warn(warn) {}

    quint32 u32(eField_t f, quint32 def) const { return number<quint32>(r.fields[f], fieldTags[f], def, CDomDoc::toU32, "U32"); }
    qint32 i32(eField_t f, qint32 def) const { return number<qint32>(r.fields[f], fieldTags[f], def, CDomDoc::toI32, "I32"); }
    qint64 i64(eField_t f, qint64 def) const { return number<qint64>(r.fields[f], fieldTags[f], def, CDomDoc::toI64, "I64"); }
    bool boolean(eField_t f, bool def) const { return number<bool>(r.fields[f], fieldTags[f], def, CDomDoc::toBool, "BOOL"); }
    QString text(eField_t f) const { return r.fields[f].text; }
    bool present(eField_t f) const { return r.fields[f].present; }

    template <class T>
    T number(const sText_t &t, const char *tag, T def, T (*convert)(const QString &, bool *), const char *typeName) const
    {
        if (!t.present)
            return def;
        bool ok = false;
        const T value = convert(t.text, &ok);
        if (ok)
            return value;
        warn(CDomDoc::conversionError(t.text, QLatin1String(tag), t.line, QLatin1String(typeName)));
        return def;
    }

    /// Splits a "MinVal"/"MaxVal"/"DefVal" text into its X and Y values.
    void values(eField_t f, NTypes::eTypes_t type, CVariant &x, CVariant &y, bool &hasX, bool &hasY) const
    {
        hasX = hasY = false;
        const sText_t &t = r.fields[f];
        const QStringList parts = t.text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
        // The pair type holds two I32 values; each part is read as one of them.
        const NTypes::eTypes_t partType = type == NTypes::E_XY ? NTypes::E_I32 : type;
        if (parts.size() > 2)
            warn(QCoreApplication::translate("Odict", "<%1> (line %2) holds %3 values; only the first two (X and Y) are used.")
                     .arg(QLatin1String(fieldTags[f])).arg(t.line).arg(parts.size()));
        if (parts.isEmpty()) {
            // An empty text is how a null value is stored: a null value of the object's type,
            // the same as a missing limit of a complex type.
            x = CVariant(type);
            hasX = true;
        } else {
            x = part(parts.at(0), partType, f, t.line);
            hasX = true;
        }
        if (parts.size() > 1) {
            y = part(parts.at(1), partType, f, t.line);
            hasY = true;
        }
    }

private:
    CVariant part(const QString &text, NTypes::eTypes_t type, eField_t f, int line) const
    {
        CVariant value(text, type);
        if (value.isNull() && !text.trimmed().isEmpty())
            warn(CDomDoc::conversionError(text, QLatin1String(fieldTags[f]), line, CDataTypeParser::typeToStr(type)));
        return value;
    }

    const sObjectRecord_t &r;
    const Warn &warn;
};

void readCommonFields(COdictObject &o, const sObjectRecord_t &r, const Warn &warn)
{
    const CFieldReader f(r, warn);

    // The id attribute is required: without it the id is cleared, which makes the object invalid.
    bool idOk = false;
    const quint32 id = r.id.present ? CDomDoc::toU32(r.id.text, &idOk) : 0u;
    if (!r.id.present)
        warn(QCoreApplication::translate("Odict", "<Object> (line %1) has no attribute 'id'; it is skipped.").arg(r.line));
    else if (!idOk)
        warn(CDomDoc::conversionError(r.id.text, QStringLiteral("Object id"), r.line, QStringLiteral("U32")));
    if (idOk)
        o.setId(COdictObjectId(id));
    else
        o.setId(COdictObjectId(0xFFFFFFFFu, 0xFFFFFFFFu));

    unsigned int subId = 0xFFFFFFFFu;
    if (f.present(F_SUBID))
        subId = f.u32(F_SUBID, 0xFFFFFFFFu);
    else if (r.subId.present)
        subId = f.number<quint32>(r.subId, "Object subid", 0xFFFFFFFFu, CDomDoc::toU32, "U32");
    o.setSubId(subId);

    o.setName(f.text(F_NAME).toUpper());
    o.setUiName(translated(f.text(F_UINAME)));
    o.setUiShortName(translated(f.text(F_UISHORTNAME)));
    const NTypes::eTypes_t type = CDataTypeParser::strToType(f.text(F_TYPE));
    o.setDataType(type);
    o.setDataSize(f.u32(F_DATASIZE, 0));
    if (const quint16 elementSize = CDataTypeParser::typeSize(type))
        o.setArrayLength(o.dataSize() / elementSize);

    const sText_t &version = f.present(F_OBJECTVERSION) ? r.fields[F_OBJECTVERSION] : r.version;
    if (version.present) {
        bool ok = false;
        const NTypes::uVersion_t v = CStr::stringToVersion(version.text, &ok);
        if (ok)
            o.setVersion(v);
        else
            warn(CDomDoc::conversionError(version.text, QStringLiteral("ObjectVersion"), version.line, QStringLiteral("version")));
    }

    o.setObjectUsage(f.u32(F_OBJECTUSAGE, 1));
    o.setAccessRights(f.u32(F_ACCESSRIGHTS, 0));
    o.setUnit(f.u32(F_UNIT, 0));
    o.setYUnit(f.u32(F_YUNIT, 0));
    o.setDigits(f.i32(F_DIGITS, -1));
    o.setDS402Id(f.u32(F_DS402ID, 0));
    o.setProfinetId(f.u32(F_PROFINETID, 0));
    o.setUserlevelRead(f.u32(F_ULREAD, 0));
    o.setUserlevelVisible(f.u32(F_ULVISIBLE, 0));
    o.setUserlevelWrite(f.u32(F_ULWRITE, 0));
    if (f.present(F_REFID))
        o.setRefId(QUuid(f.text(F_REFID).trimmed()));

    CVariant x, y;
    bool hasX = false, hasY = false;
    if (f.present(F_MINVAL)) {
        f.values(F_MINVAL, type, x, y, hasX, hasY);
        if (hasX)
            o.setXMinValue(x);
        if (hasY)
            o.setYMinValue(y);
    } else {
        o.setXMinValue(CDataTypeParser::minTypeValue(type));
    }
    if (f.present(F_MAXVAL)) {
        f.values(F_MAXVAL, type, x, y, hasX, hasY);
        if (hasX)
            o.setXMaxValue(x);
        if (hasY)
            o.setYMaxValue(y);
    } else {
        o.setXMaxValue(CDataTypeParser::maxTypeValue(type));
    }
    if (f.present(F_DEFVAL)) {
        f.values(F_DEFVAL, type, x, y, hasX, hasY);
        if (hasX)
            o.setXDefaultValue(x);
        if (hasY)
            o.setYDefaultValue(y);
    } else {
        o.setXDefaultValue(COdictObject::isComplexDataType(type) ? CVariant(QString(), type) : CVariant(QStringLiteral("0"), type));
    }

    if (r.hasEnum) {
        COdictObjectEnum enumeration;
        for (const sListEntry_t &item : r.enumItems) {
            const qint64 value = f.number<qint64>(item.key, "Item value", Q_INT64_C(0x7FFFFFFFFFFFFFFF), CDomDoc::toI64, "I64");
            enumeration.insert(value, translated(item.text.text));
        }
        if (!enumeration.isEmpty())
            o.setEnumData(enumeration);
    }
    if (r.hasBitSet) {
        COdictObjectBitSet bits;
        for (const sListEntry_t &bit : r.bits) {
            const quint32 pos = f.number<quint32>(bit.key, "Bit pos", 0xFFFFFFFFu, CDomDoc::toU32, "U32");
            bits.insert(pos, translated(bit.text.text));
        }
        if (!bits.isEmpty())
            o.setBitSetData(bits);
    }
}

/// Builds the object of \a kind that \a record describes; owned by the caller.
COdictObject *buildObject(const sObjectRecord_t &r, eObjectType_t kind, const Warn &warn)
{
    const CFieldReader f(r, warn);
    switch (kind) {
    case E_OT_VALUE: {
        auto *v = new COdictValueObject;
        readCommonFields(*v, r, warn);
        v->setReadWriteByteSize(f.i64(F_ARRAYLENGTH, -1));
        v->setReadWriteByteIndex(f.i64(F_ARRAYINDEX, 0));
        v->setValueInHexEnabled(f.boolean(F_HEXADECIMAL, false));
        return v;
    }
    case E_OT_EDITOR: {
        auto *e = new COdictEditorObject;
        readCommonFields(*e, r, warn);
        e->setDefString(f.text(F_DEFSTRING));
        e->setFwVariablename(f.text(F_FWVARIABLE));
        e->setFwFunctionname(f.text(F_FWFUNCTION));
        e->setAccessType(f.i32(F_ACCESSTYPE, 1));
        e->setShortDescription(f.text(F_SHORTDESCRIPTION));
        e->setDescription(f.text(F_DESCRIPTION));
        return e;
    }
    case E_OT_PARAMETER: {
        auto *p = new COdictParameterObject;
        readCommonFields(*p, r, warn);
        p->setError(f.i32(F_ERROR, 0));
        for (const sListEntry_t &entry : r.params) {
            bool ok = false;
            const int set = entry.key.present ? CDomDoc::toI32(entry.key.text, &ok) : -1;
            if (!ok || set < 0 || set > 62)
                continue; // parameter sets are numbered 0 to 62; others are skipped silently
            if (p->arrayLength() >= 2)
                p->setValue(set, QByteArray::fromHex(entry.text.text.toLatin1()));
            else
                p->setValue(set, CVariant(entry.text.text, p->dataType()).toVariant());
        }
        return p;
    }
    default: {
        auto *o = new COdictObject;
        readCommonFields(*o, r, warn);
        return o;
    }
    }
}

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

sText_t attribute(const QXmlStreamReader &reader, const QString &name)
{
    sText_t t;
    const QXmlStreamAttributes attributes = reader.attributes();
    if (attributes.hasAttribute(name)) {
        t.text = attributes.value(name).toString();
        t.present = true;
        t.line = int(reader.lineNumber());
    }
    return t;
}

sText_t elementText(QXmlStreamReader &reader)
{
    sText_t t;
    t.line = int(reader.lineNumber());
    t.text = reader.readElementText(QXmlStreamReader::IncludeChildElements);
    t.present = true;
    return t;
}

/// Reads the entries of an "Enum", "BitSet" or "Param" element: each \a entryTag child with its
/// \a keyAttribute and text.
QList<sListEntry_t> readEntries(QXmlStreamReader &reader, QLatin1String entryTag, const QString &keyAttribute)
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

void readHistory(QXmlStreamReader &reader, COdictHistory &history)
{
    while (reader.readNextStartElement()) {
        if (reader.name() == QLatin1String("Header"))
            history.append(CXmlAbstractKiroFile::readHeader(reader));
        else
            reader.skipCurrentElement();
    }
}

void readDataStructures(QXmlStreamReader &reader, COdictDataStructure &list, const Warn &warn)
{
    while (reader.readNextStartElement()) {
        if (reader.name() != QLatin1String("DataStructure")) {
            reader.skipCurrentElement();
            continue;
        }
        COdictDataStructure::SDataStructure_t entry;
        const sText_t id = attribute(reader, QStringLiteral("id"));
        bool ok = false;
        entry.id = id.present ? CDomDoc::toI32(id.text, &ok) : 0;
        if (id.present && !ok)
            warn(CDomDoc::conversionError(id.text, QStringLiteral("DataStructure id"), id.line, QStringLiteral("I32")));
        while (reader.readNextStartElement()) {
            const QStringRef tag = reader.name();
            if (tag == QLatin1String("Name")) {
                entry.name = reader.readElementText();
            } else if (tag == QLatin1String("UiName")) {
                entry.uiName = reader.readElementText();
            } else if (tag == QLatin1String("Description")) {
                entry.description = reader.readElementText();
            } else if (tag == QLatin1String("Member")) {
                COdictDataStructure::SDataStructureMember_t member;
                member.cType = attribute(reader, QStringLiteral("type")).text;
                member.name = attribute(reader, QStringLiteral("name")).text;
                const sText_t source = attribute(reader, QStringLiteral("source"));
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

// ---- writing ----

/// \a text without the characters XML 1.0 cannot carry (control characters other than tab,
/// line feed and carriage return, U+FFFE, U+FFFF, unpaired surrogates). The stream writer refuses
/// them, which would make the whole dictionary unsavable because of one text.
QString xmlText(const QString &text)
{
    const auto allowed = [](ushort u) {
        return u >= 0x20 ? u != 0xFFFE && u != 0xFFFF : u == 0x09 || u == 0x0A || u == 0x0D;
    };
    const int size = text.size();
    int i = 0;
    while (i < size && allowed(text.at(i).unicode()) && !text.at(i).isSurrogate())
        ++i;
    if (i == size)
        return text; // the usual case: nothing to drop, no copy
    QString clean = text.left(i);
    for (; i < size; ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
            clean += c;
            clean += text.at(++i);
        } else if (!c.isSurrogate() && allowed(c.unicode())) {
            clean += c;
        }
    }
    return clean;
}

CXMLMetaData xmlMeta(CXMLMetaData meta)
{
    meta.setAuthor(xmlText(meta.author()));
    meta.setComment(xmlText(meta.comment()));
    return meta;
}

QString hex(quint32 value)
{
    return QStringLiteral("0x%1").arg(value, 0, 16);
}

QString valueText(const CVariant &x, const CVariant &y)
{
    QString text = x.toStr();
    if (!y.isNull())
        text += QLatin1Char(';') + y.toStr();
    return text;
}

/// Writes the fields of \a o (not its sub-objects) as the children of an open "Object" element.
template <class W>
void writeFields(W &w, const COdictObject &o)
{
    w.text("Name", o.name());
    w.text("UiName", o.uiName());
    w.text("UiShortName", o.uiShortName());
    if (!o.refId().isNull())
        w.text("RefId", o.refId().toString());
    w.text("Type", CDataTypeParser::typeToStr(o.dataType()));
    w.text("DataSize", QString::number(o.dataSize()));
    w.text("ObjectVersion", CStr::versionToString(o.version()));
    w.text("ObjectUsage", hex(o.objectUsage()));
    w.text("AccessRights", hex(o.accessRights()));
    w.text("Unit", QString::number(o.unit()));
    w.text("Y-Unit", QString::number(o.yUnit()));
    w.text("Digits", QString::number(o.digits()));
    w.text("DS402Id", hex(o.ds402Id()));
    w.text("ProfinetId", hex(o.profinetId()));
    w.text("UserLevelRead", QString::number(o.userlevelRead()));
    w.text("UserLevelVisible", QString::number(o.userlevelVisible()));
    w.text("UserLevelWrite", QString::number(o.userlevelWrite()));
    w.text("MinVal", valueText(o.xMinValue(), o.yMinValue()));
    w.text("MaxVal", valueText(o.xMaxValue(), o.yMaxValue()));
    w.text("DefVal", valueText(o.xDefaultValue(), o.yDefaultValue()));
    if (o.hasEnum()) {
        w.start("Enum");
        for (const auto &entry : o.enumDataPtr()->enums())
            w.entry("Item", "value", QString::number(entry.value), entry.name);
        w.end();
    }
    if (o.hasBitSet()) {
        w.start("BitSet");
        for (const auto &bit : o.bitSetDataPtr()->bitSet())
            w.entry("Bit", "pos", QString::number(bit.pos), bit.name);
        w.end();
    }
    switch (o.objectType()) {
    case E_OT_VALUE: {
        const auto &v = static_cast<const COdictValueObject &>(o);
        w.text("ArrayLength", QString::number(v.readWriteByteSize()));
        w.text("ArrayIndex", QString::number(v.readWriteByteIndex()));
        w.text("Hexadecimal", v.isValueInHexEnabled() ? QStringLiteral("true") : QStringLiteral("false"));
        break;
    }
    case E_OT_EDITOR: {
        const auto &e = static_cast<const COdictEditorObject &>(o);
        w.text("DefString", e.defString());
        w.text("FwVariable", e.fwVariablename());
        w.text("FwFunction", e.fwFunctionname());
        w.text("AccessType", QString::number(e.accessType()));
        w.text("ShortDescription", e.shortDescription());
        w.text("Description", e.description());
        break;
    }
    case E_OT_PARAMETER: {
        const auto &p = static_cast<const COdictParameterObject &>(o);
        w.text("Error", QString::number(p.error()));
        const QMap<int, QVariant> values = p.values();
        if (!values.isEmpty()) {
            w.start("Param");
            for (auto it = values.cbegin(); it != values.cend(); ++it) {
                const QString text = p.arrayLength() >= 2
                    ? QString::fromLatin1(it.value().toByteArray().toHex())
                    : CVariant::fromVariant(it.value(), p.dataType()).toStr();
                w.entry("Value", "id", QString::number(it.key()), text);
            }
            w.end();
        }
        break;
    }
    default:
        break;
    }
}

/// The writer interface writeFields needs, over a QXmlStreamWriter.
struct sStreamSink_t {
    QXmlStreamWriter &x;
    void text(const char *tag, const QString &value) { x.writeTextElement(QLatin1String(tag), xmlText(value)); }
    void start(const char *tag) { x.writeStartElement(QLatin1String(tag)); }
    void end() { x.writeEndElement(); }
    void entry(const char *tag, const char *key, const QString &keyValue, const QString &value)
    {
        x.writeStartElement(QLatin1String(tag));
        x.writeAttribute(QLatin1String(key), keyValue);
        x.writeCharacters(xmlText(value));
        x.writeEndElement();
    }
};

/// The same over a DOM element.
struct sDomSink_t {
    CDomDoc &doc;
    QList<QDomElement> open;
    void text(const char *tag, const QString &value) { doc.addSubElement(open.last(), QLatin1String(tag), xmlText(value)); }
    void start(const char *tag) { open.append(doc.addSubElement(open.last(), QLatin1String(tag))); }
    void end() { open.removeLast(); }
    void entry(const char *tag, const char *key, const QString &keyValue, const QString &value)
    {
        QDomElement e = doc.addSubElement(open.last(), QLatin1String(tag), xmlText(value));
        e.setAttribute(QLatin1String(key), keyValue);
    }
};

void startObject(QXmlStreamWriter &x, const COdictObject &o)
{
    x.writeStartElement(QStringLiteral("Object"));
    x.writeAttribute(QStringLiteral("id"), hex(o.id()));
    if (o.isSubObject())
        x.writeAttribute(QStringLiteral("subid"), QString::number(o.subId()));
}

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
void writeChildren(QXmlStreamWriter &x, const COdictNode *top)
{
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
            startObject(x, *object);
            sStreamSink_t sink{x};
            writeFields(sink, *object);
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

} // namespace

COdictXmlFile::COdictXmlFile(ICLogfile *log) : CXmlAbstractKiroFile(log) {}

COdictXmlFile::~COdictXmlFile() = default;

int COdictXmlFile::read(COdictObjectTree &tree, const QString &fileName, const QString &documentType, bool withDocumentData)
{
    m_error.clear();
    QFile file(fileName);
    if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly)) {
        m_error = QCoreApplication::translate("Odict", "Cannot open '%1'.").arg(fileName);
        return E_OPEN_NOT_READABLE;
    }
    QXmlStreamReader reader(&file);
    if (!reader.readNextStartElement()) {
        m_error = reader.hasError()
            ? QStringLiteral("Line %1, column %2: %3").arg(reader.lineNumber()).arg(reader.columnNumber()).arg(reader.errorString())
            : QCoreApplication::translate("Odict", "'%1' holds no document.").arg(fileName);
        return E_OPEN_NOT_WELLFORMED;
    }
    const int head = checkDocumentElement(reader, documentType, formatVersion, &m_error);
    if (head != E_OPEN_OK)
        return head;

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

    // Builds and registers the object of the frame; sub-objects join their owner's sub-id list.
    auto registerObject = [&](sFrame_t &frame) {
        frame.registered = true;
        std::unique_ptr<COdictObject> object(buildObject(*frame.record, kind, warn));
        frame.record.reset();
        if (!object->isValid())
            return;
        bool ok = false;
        const eItemType_t type = object->isSubObject() ? E_IT_SUBOBJECT : E_IT_OBJECT;
        COdictNode *node = createNode(tree, *object, type, &ok);
        if (!ok) {
            delete node;
            return;
        }
        frame.node->appendChild(node);
        frame.objectNode = node;
        if (object->isSubObject() && frame.node->hasData() && frame.node->dataPtr()->hasObject())
            frame.node->dataPtr()->objectPtr()->addSubId(object->subId());
    };

    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement) {
            if (stack.size() == 1)
                break; // the document element ends
            sFrame_t &frame = stack.back();
            if (frame.kind == E_OBJECT && !frame.registered)
                registerObject(frame);
            stack.pop_back();
            continue;
        }
        if (token != QXmlStreamReader::StartElement)
            continue;

        const QStringRef tag = reader.name();
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
                record.enumItems += readEntries(reader, QLatin1String("Item"), QStringLiteral("value"));
            } else if (tag == QLatin1String("BitSet")) {
                record.hasBitSet = true;
                record.bits += readEntries(reader, QLatin1String("Bit"), QStringLiteral("pos"));
            } else if (tag == QLatin1String("Param")) {
                record.params += readEntries(reader, QLatin1String("Value"), QStringLiteral("id"));
            } else if (const int f = fieldOf(tag); f >= 0) {
                record.fields[f] = elementText(reader);
            } else {
                reader.skipCurrentElement();
            }
            continue;
        }
        if (top.kind == E_SKIP) {
            reader.skipCurrentElement();
            continue;
        }
        if (tag == QLatin1String("Group")) {
            COdictNode *group = tree.createGroupNode(QString(), QString());
            top.node->appendChild(group);
            stack.push_back({E_GROUP, group, nullptr});
        } else if (tag == QLatin1String("Object")) {
            auto record = std::make_unique<sObjectRecord_t>();
            record->line = int(reader.lineNumber());
            record->id = attribute(reader, QStringLiteral("id"));
            record->subId = attribute(reader, QStringLiteral("subid"));
            record->version = attribute(reader, QStringLiteral("version"));
            COdictNode *parent = top.node;
            stack.push_back({E_OBJECT, parent, std::move(record)});
        } else if (top.kind == E_GROUP && tag == QLatin1String("Name")) {
            top.node->dataPtr()->setName(reader.readElementText(QXmlStreamReader::IncludeChildElements).toUpper());
        } else if (top.kind == E_GROUP && tag == QLatin1String("UiName")) {
            top.node->dataPtr()->setUiName(translated(reader.readElementText(QXmlStreamReader::IncludeChildElements)));
        } else if (stack.size() == 1 && tag == QLatin1String("Name")) {
            dictionaryName = reader.readElementText(QXmlStreamReader::IncludeChildElements);
        } else if (stack.size() == 1 && tag == QLatin1String("Header")) {
            meta = readHeader(reader);
        } else if (stack.size() == 1 && tag == QLatin1String("History")) {
            readHistory(reader, history);
        } else if (stack.size() == 1 && tag == QLatin1String("DataStructures")) {
            readDataStructures(reader, dataStructures, warn);
        } else {
            reader.skipCurrentElement();
        }
    }

    if (reader.hasError()) {
        m_error = QStringLiteral("Line %1, column %2: %3").arg(reader.lineNumber()).arg(reader.columnNumber()).arg(reader.errorString());
        tree.unindexSubtree(dictionary.get());
        return E_OPEN_NOT_WELLFORMED;
    }

    setMetaData(meta);
    if (withDocumentData) {
        tree.setMetaDataOnly(meta);
        tree.setHistory(history);
        tree.setDataStructures(dataStructures);
    }
    if (dictionaryName.isEmpty()) {
        // A document without a name loads as an empty dictionary.
        tree.unindexSubtree(dictionary.get());
        return E_OPEN_OK;
    }
    dictionary->dataPtr()->setName(dictionaryName);
    tree.rootNode()->appendChild(dictionary.release());
    return E_OPEN_OK;
}

int COdictXmlFile::write(const COdictObjectTree &tree, const QString &fileName, const QString &documentType,
                         const CXMLMetaData &meta, bool withDocumentData)
{
    m_error.clear();
    if (documentType.isEmpty())
        return 1;
    QSaveFile file(fileName);
    if (QFileInfo(fileName).isDir() || !file.open(QIODevice::WriteOnly)) {
        m_error = QCoreApplication::translate("Odict", "Cannot write '%1': %2").arg(fileName, file.errorString());
        return 2;
    }
    QXmlStreamWriter x(&file);
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
        writeChildren(x, dictionary);
    x.setAutoFormatting(true);
    x.writeEndElement();
    x.writeEndDocument();
    if (x.hasError())
        file.cancelWriting();
    if (!CSaveFile::commit(file)) {
        m_error = QCoreApplication::translate("Odict", "Cannot write '%1': %2").arg(fileName, file.errorString());
        return 2;
    }
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
    QDomElement e = doc.addSubElement(parent, QStringLiteral("Object"));
    e.setAttribute(QStringLiteral("id"), hex(object.id()));
    if (object.isSubObject())
        e.setAttribute(QStringLiteral("subid"), QString::number(object.subId()));
    sDomSink_t sink{doc, {e}};
    writeFields(sink, object);
    return e;
}

// ---- the tree's load and save ----

int COdictObjectTree::load(const QString &fileName, const QString &documentType)
{
    m_warnings.clear();
    // A parameter dictionary reads the type it is asked for; every other kind reads dictionaries,
    // whatever was asked (a parameter-set file only fits a parameter dictionary).
    const bool parameters = objectType() == E_OT_PARAMETER;
    const QString type = parameters ? (documentType.isEmpty() ? COdictXmlFile::parameterSetType : documentType)
                                    : COdictXmlFile::dictionaryType;
    COdictXmlFile reader(m_log);
    const int opened = reader.read(*this, fileName, type, !parameters);
    m_fileName = fileName;
    if (opened != 0) {
        if (!reader.errorString().isEmpty())
            addWarning(reader.errorString());
        return 1;
    }
    if (!parameters && objectType() != E_OT_EDITOR) {
        // Only editor dictionaries keep history and data structures.
        m_history.clear();
        m_dataStructures.clear();
    }
    return 0;
}

int COdictObjectTree::save(const QString &fileName)
{
    COdictXmlFile writer(m_log);
    int result;
    if (objectType() == E_OT_PARAMETER) {
        const CXMLMetaData meta(QDate::currentDate(), QTime::currentTime(), QStringLiteral("veltrasuite4"),
                                QStringLiteral("Values of all parameter setzt."), m_metaData.version());
        result = writer.write(*this, fileName, COdictXmlFile::parameterSetType, meta, false);
    } else {
        result = writer.write(*this, fileName, COdictXmlFile::dictionaryType, m_metaData, true);
    }
    if (result == 0)
        m_fileName = fileName; // the dictionary now lives in the file it was saved to
    return result;
}

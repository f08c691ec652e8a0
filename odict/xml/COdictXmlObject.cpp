#include "COdictXmlObject_p.h"

#include "CDataTypeParser.h"
#include "CDomDoc.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "CStr.h"
#include "CXmlText.h"

#include <QCoreApplication>
#include <QHash>
#include <QVector>
#include <QXmlStreamWriter>

#include <array>
#include <cstring>

using namespace NkrOdict;

namespace NOdictXml {

namespace {

const char *const fieldTags[F_COUNT] = {
    "SubId", "Name", "UiName", "UiShortName", "Type", "DataSize", "ObjectVersion", "ObjectUsage",
    "AccessRights", "Unit", "Y-Unit", "Digits", "DS402Id", "ProfinetId", "UserLevelRead", "UserLevelVisible",
    "UserLevelWrite", "MinVal", "MaxVal", "DefVal", "RefId",
    "ArrayLength", "ArrayIndex", "Hexadecimal",
    "DefString", "FwVariable", "FwFunction", "AccessType", "ShortDescription", "Description",
    "Error",
};

} // namespace

int fieldOf(QStringView tag)
{
    // Every sub-element of every object is looked up here: one hash lookup instead of comparing
    // with each tag in turn. The views point into the static names, which live as long.
    static const QVector<QString> names = [] {
        QVector<QString> list;
        for (const char *tagName : fieldTags)
            list.append(QLatin1String(tagName));
        return list;
    }();
    static const QHash<QStringView, int> index = [] {
        QHash<QStringView, int> hash;
        for (int f = 0; f < F_COUNT; ++f)
            hash.insert(QStringView(names.at(f)), f);
        return hash;
    }();
    return index.value(tag, -1);
}

int fieldOf(QLatin1String tag)
{
    // Length and first letter tell nearly every tag apart, so most lookups compare one name.
    static const std::array<int, F_COUNT> sizes = [] {
        std::array<int, F_COUNT> list{};
        for (int f = 0; f < F_COUNT; ++f)
            list[size_t(f)] = int(std::strlen(fieldTags[f]));
        return list;
    }();
    const int size = tag.size();
    if (size == 0)
        return -1;
    const char first = tag.data()[0];
    for (int f = 0; f < F_COUNT; ++f) {
        if (sizes[size_t(f)] == size && fieldTags[f][0] == first && std::memcmp(fieldTags[f], tag.data(), size_t(size)) == 0)
            return f;
    }
    return -1;
}

bool keepsText(eField_t f)
{
    switch (f) {
    case F_NAME: case F_UINAME: case F_UISHORTNAME: case F_DEFSTRING: case F_FWVARIABLE: case F_FWFUNCTION:
    case F_SHORTDESCRIPTION: case F_DESCRIPTION:
        return true;
    default:
        // Numbers, types and values are parsed. A value of a text type keeps its part of MinVal,
        // MaxVal or DefVal, which may share the reader's buffer: the reader then writes the next
        // object's text into a buffer of its own.
        return false;
    }
}

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
    QString text(eField_t f) const { return r.fields[f].present ? r.fields[f].text : QString(); }
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

QString xmlText(const QString &text)
{
    return CXmlText::clean(text);
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

QString valueText(const CVariant &x, const CVariant &y, NTypes::eTypes_t type)
{
    // Each part is written so that the reader gives back the same value, nulls and their types
    // included: the reader takes an empty text for a null of the object's type, a blank part for a
    // null of the part's type (and keeps a null X before a Y from being taken for the Y), and no
    // second part for a Y that was never set, a null of no type.
    const bool yGiven = !y.isNull() || y.type() != NTypes::E_UNKNOWN;
    QString text = x.toStr();
    if (text.isEmpty() && x.isNull() && (yGiven || x.type() != type))
        text = QStringLiteral(" ");
    if (yGiven)
        text += QLatin1Char(';') + (y.isNull() ? QStringLiteral(" ") : y.toStr());
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
    w.text("MinVal", valueText(o.xMinValue(), o.yMinValue(), o.dataType()));
    w.text("MaxVal", valueText(o.xMaxValue(), o.yMaxValue(), o.dataType()));
    w.text("DefVal", valueText(o.xDefaultValue(), o.yDefaultValue(), o.dataType()));
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
        bool open = false;
        p.forEachValue([&](int set, const QVariant &value) {
            if (!open)
                w.start("Param");
            open = true;
            const QString text = p.arrayLength() >= 2 ? QString::fromLatin1(value.toByteArray().toHex())
                                                       : CVariant::fromVariant(value, p.dataType()).toStr();
            w.entry("Value", "id", QString::number(set), text);
        });
        if (open)
            w.end();
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

void writeObjectFields(QXmlStreamWriter &writer, const COdictObject &object)
{
    sStreamSink_t sink{writer};
    writeFields(sink, object);
}

QDomElement appendObjectElement(CDomDoc &doc, QDomElement parent, const COdictObject &object)
{
    QDomElement e = doc.addSubElement(parent, QStringLiteral("Object"));
    e.setAttribute(QStringLiteral("id"), hex(object.id()));
    if (object.isSubObject())
        e.setAttribute(QStringLiteral("subid"), QString::number(object.subId()));
    sDomSink_t sink{doc, {e}};
    writeFields(sink, object);
    return e;
}

} // namespace NOdictXml

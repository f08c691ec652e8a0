#include "COdictExportEds.h"
#include "COdictExportEds_p.h"

#include "CDataTypeParser.h"
#include "CMessageBoardHelper.h"
#include "COdict.h"
#include "COdictCanOpen.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "CStr.h"
#include "CVariant.h"

#include <QVector>

#include <cmath>

namespace {

// The longest ParameterName and Description that the format allows.
const int maxParameterName = 241;
const int maxDescription = 243;
const unsigned int typeUnsigned8 = 0x0005;

QString hex4(unsigned int value)
{
    return COdictCanOpen::indexText(value);
}

/// The AccessType of the fieldbus pair of the access rights; empty when the bus has no access.
QString accessType(const COdictObject &object)
{
    const bool read = object.accessRights() & NkrOdict::E_AR_READ_FIELDBUS;
    const bool write = object.accessRights() & NkrOdict::E_AR_WRITE_FIELDBUS;
    if (read && write)
        return QStringLiteral("rw");
    if (write)
        return QStringLiteral("wo");
    if (!read)
        return QString();
    // A plain object (neither parameter nor value) that the bus only reads never changes.
    return object.isObject() ? QStringLiteral("const") : QStringLiteral("ro");
}

/// \a value as an EDS number or text of CANopen type \a code; empty when it has no such form.
QString valueText(const CVariant &value, unsigned int code)
{
    if (value.isNull() || value.isArray())
        return QString();
    switch (code) {
    case 0x0001: case 0x0002: case 0x0003: case 0x0004: case 0x0015: {
        bool ok = false;
        const qint64 v = value.toI64(&ok);
        return ok ? QString::number(v) : QString();
    }
    case 0x0005: case 0x0006: case 0x0007: case 0x001B: {
        bool ok = false;
        const quint64 v = value.toU64(&ok);
        return ok ? QString::number(v) : QString();
    }
    case 0x0008: case 0x0011: {
        bool ok = false;
        const double v = value.toF64(&ok);
        return ok && std::isfinite(v) ? value.toStr() : QString();
    }
    case 0x0009: case 0x000B:
        return value.toStr();
    default:
        return QString(); // bytes, times of day and domains have no default in an EDS
    }
}

QString displayName(const COdictObject &object)
{
    return (object.uiName().isEmpty() ? object.name() : object.uiName()).left(maxParameterName);
}

/// "MM-dd-yyyy" and "hh:mmAP", the forms of the file information.
QString edsDate(const QDate &date) { return date.toString(QStringLiteral("MM-dd-yyyy")); }
QString edsTime(const QTime &time) { return time.toString(QStringLiteral("hh:mmAP")); }

} // namespace

COdictExportEds::COdictExportEds(COdict *odict, QObject *parent)
    : QObject(parent), d_ptr(new COdictExportEdsPrivate(odict))
{
}

COdictExportEds::~COdictExportEds() = default;

bool COdictExportEds::exportToEds(const QString &fileName)
{
    Q_D(COdictExportEds);
    return d->exportToEds(fileName);
}

void COdictExportEds::setDate(const QDate &date)
{
    Q_D(COdictExportEds);
    d->date = date;
}

void COdictExportEds::setVendorName(const QString &name)
{
    Q_D(COdictExportEds);
    d->vendorName = name;
}

QStringList COdictExportEds::leftOut() const
{
    Q_D(const COdictExportEds);
    QStringList texts;
    texts.reserve(d->leftOutEnds.size());
    for (int i = 0; i < d->leftOutEnds.size(); ++i)
        texts << d->leftOutAt(i);
    return texts;
}

bool COdictExportEdsPrivate::exportToEds(const QString &fileName)
{
    prepare();
    leftOutTexts.clear();
    leftOutEnds.clear();
    m_noting = true;
    const COdictCanOpenMap map(odict);
    for (const sOdictCanOpenPlace_t &place : map.collisions()) {
        leaveOut(*place.object, QStringLiteral("its CANopen index %1 is also claimed by %2")
                                    .arg(hex4(place.index), place.rivals.join(QStringLiteral(", "))));
    }
    for (const sOdictCanOpenPlace_t &place : map.withoutIndex())
        leaveOut(*place.object, QStringLiteral("its id has no CANopen index"));

    // The file lists the objects and counts the comment lines before the object sections come,
    // so a first pass finds the objects that yield a section (an object that yields none is not
    // listed), counts their value and bit texts and notes what is left out. The sections and
    // texts themselves are written by later passes, one object at a time.
    QVector<sSection_t> sections;
    QList<unsigned int> indexes[E_C_COUNT];
    int valueTextCount = 0;
    for (const sOdictCanOpenPlace_t &place : map.placed()) {
        sSection_t section{place.index, place.object, E_C_OPTIONAL};
        sEntries_t entries;
        if (!collect(*place.object, entries))
            continue;
        if (place.index == 0x1000 || place.index == 0x1001 || place.index == 0x1018)
            section.category = E_C_MANDATORY;
        else if (place.index >= 0x2000 && place.index <= 0x5FFF)
            section.category = E_C_MANUFACTURER;
        sections.append(section);
        indexes[section.category].append(place.index);
        valueTexts(section, entries, [&valueTextCount](const QString &) { ++valueTextCount; });
    }
    m_noting = false;

    for (int i = 0; i < leftOutEnds.size(); ++i)
        CMessageBoardHelper::setWarning(QStringLiteral("EDS export: ") + leftOutAt(i), odict ? odict->logfile() : nullptr);

    // CR LF and no byte-order mark: the form every INI reader of the field takes.
    COdictLineSink out(fileName, COdictLineSink::E_F_INI, progress(), sections.size());
    fileInfo(out, fileName);
    deviceInfo(out, indexes[E_C_MANDATORY] + indexes[E_C_OPTIONAL] + indexes[E_C_MANUFACTURER]);
    out << QStringLiteral("[DummyUsage]");
    for (int type = 1; type <= 7; ++type) // the integer types up to 32 bits; BOOLEAN cannot be a dummy
        out << QStringLiteral("Dummy%1=%2").arg(type, 4, 10, QLatin1Char('0')).arg(type == 1 ? 0 : 1);
    out << QString();

    const int commentCount = 1 + (valueTextCount > 0 ? valueTextCount + 1 : 0)
        + (leftOutEnds.isEmpty() ? 0 : leftOutEnds.size() + 1);
    int line = 0;
    const auto comment = [&out, &line](const QString &text) { out << QStringLiteral("Line%1=").arg(++line) + text; };
    out << QStringLiteral("[Comments]") << QStringLiteral("Lines=%1").arg(commentCount);
    comment(QStringLiteral("Exported from %1 %2 on %3 by krOdict.")
                .arg(odictName, CStr::versionToString(odict ? odict->odictMetaData().version() : 0),
                     exportDate().toString(Qt::ISODate)));
    if (valueTextCount > 0) {
        comment(QStringLiteral("Value and bit texts:"));
        for (const sSection_t &section : qAsConst(sections)) {
            sEntries_t entries;
            collect(*section.object, entries);
            valueTexts(section, entries, comment);
        }
    }
    if (!leftOutEnds.isEmpty()) {
        comment(QStringLiteral("Left out:"));
        for (int i = 0; i < leftOutEnds.size(); ++i)
            comment(leftOutAt(i));
    }
    out << QString();

    const char *const titles[E_C_COUNT] = {"MandatoryObjects", "OptionalObjects", "ManufacturerObjects"};
    for (int category = 0; category < E_C_COUNT; ++category) {
        const QList<unsigned int> &list = indexes[category];
        out << QLatin1Char('[') + QLatin1String(titles[category]) + QLatin1Char(']')
            << QStringLiteral("SupportedObjects=%1").arg(list.size());
        for (int i = 0; i < list.size(); ++i)
            out << QStringLiteral("%1=%2").arg(i + 1).arg(hex4(list.at(i)));
        out << QString();
        for (const sSection_t &section : qAsConst(sections)) {
            if (section.category != category)
                continue;
            sEntries_t entries;
            collect(*section.object, entries);
            writeSection(out, section, entries);
            out.advance();
        }
    }
    return out.commit();
}

void COdictExportEdsPrivate::fileInfo(COdictLineSink &out, const QString &fileName) const
{
    const CXMLMetaData meta = odict ? odict->odictMetaData() : CXMLMetaData();
    const COdictHistory history = odict ? odict->odictHistory() : COdictHistory();
    const CXMLMetaData first = history.size() > 0 ? history.at(history.size() - 1) : meta; // newest first
    const NTypes::uVersion_t version = meta.version();
    QString description = odictName + QLatin1Char(' ') + CStr::versionToString(version);
    if (!meta.comment().isEmpty())
        description += QStringLiteral(": ") + meta.comment();
    out << QStringLiteral("[FileInfo]") << QStringLiteral("FileName=") + COdictExportBasePrivate::fileName(fileName)
          << QStringLiteral("FileVersion=%1").arg(version.mainNumber())
          << QStringLiteral("FileRevision=%1").arg(version.minorNumber())
          << QStringLiteral("EDSVersion=4.0") << QStringLiteral("Description=") + description.left(maxDescription)
          << QStringLiteral("CreationTime=") + edsTime(first.time()) << QStringLiteral("CreationDate=") + edsDate(first.date())
          << QStringLiteral("CreatedBy=") + first.author()
          << QStringLiteral("ModificationTime=") + edsTime(meta.time())
          << QStringLiteral("ModificationDate=") + edsDate(meta.date())
          << QStringLiteral("ModifiedBy=") + meta.author() << QString();
}

void COdictExportEdsPrivate::deviceInfo(COdictLineSink &out, const QList<unsigned int> &indexes) const
{
    int rxPdos = 0, txPdos = 0;
    for (const unsigned int index : indexes) {
        rxPdos += index >= 0x1600 && index <= 0x17FF;
        txPdos += index >= 0x1A00 && index <= 0x1BFF;
    }
    const quint32 version = odict ? odict->odictMetaData().version().value : 0;
    out << QStringLiteral("[DeviceInfo]")
          << QStringLiteral("VendorName=") + (vendorName.isEmpty() ? odictName : vendorName)
          << QStringLiteral("ProductName=") + odictName
          << QStringLiteral("RevisionNumber=0x") + QString::number(version, 16).toUpper().rightJustified(8, QLatin1Char('0'));
    for (const int rate : {10, 20, 50, 125, 250, 500, 800, 1000})
        out << QStringLiteral("BaudRate_%1=1").arg(rate);
    out << QStringLiteral("SimpleBootUpMaster=0") << QStringLiteral("SimpleBootUpSlave=1")
          << QStringLiteral("Granularity=8") << QStringLiteral("DynamicChannelsSupported=0")
          << QStringLiteral("GroupMessaging=0") << QStringLiteral("NrOfRXPDO=%1").arg(rxPdos)
          << QStringLiteral("NrOfTXPDO=%1").arg(txPdos) << QStringLiteral("LSS_Supported=0") << QString();
}

QString COdictExportEdsPrivate::leftOutAt(int i) const
{
    const int start = i == 0 ? 0 : leftOutEnds.at(i - 1);
    return QString::fromUtf8(leftOutTexts.constData() + start, leftOutEnds.at(i) - start);
}

QString COdictExportEdsPrivate::entryName(unsigned int index, unsigned int subIndex) const
{
    QString name = QString::number(index, 16).toUpper().rightJustified(4, QLatin1Char('0'));
    if (subIndex != COdictObject::NoId)
        name += QStringLiteral("sub") + QString::number(subIndex, 16).toUpper();
    return name;
}

void COdictExportEdsPrivate::leaveOut(const COdictObject &object, const QString &reason)
{
    if (m_noting)
    {
        leftOutTexts += QStringLiteral("%1: %2").arg(object.longInfo(), reason).toUtf8();
        leftOutEnds.append(leftOutTexts.size());
    }
}

bool COdictExportEdsPrivate::entryOf(const COdictObject &object, NTypes::eTypes_t type, sEntry_t &entry)
{
    entry.dataType = COdictCanOpen::dataType(type);
    if (entry.dataType == 0) {
        leaveOut(object, QStringLiteral("CANopen has no data type for %1").arg(CDataTypeParser::typeToStr(type)));
        return false;
    }
    entry.access = accessType(object);
    if (entry.access.isEmpty()) {
        leaveOut(object, QStringLiteral("the fieldbus may neither read nor write it"));
        return false;
    }
    entry.name = displayName(object);
    const bool numeric = entry.dataType <= 0x0008 || entry.dataType == 0x0011 || entry.dataType == 0x0015
        || entry.dataType == 0x001B;
    if (numeric) {
        entry.low = valueText(object.minValue(), entry.dataType);
        entry.high = valueText(object.maxValue(), entry.dataType);
    }
    entry.value = valueText(object.defaultValue(), entry.dataType);
    // Process values are what a drive maps into PDOs; communication objects never are.
    entry.pdo = object.isActual() && (object.id() < 0x1000 || object.id() > 0x1FFF);
    return true;
}

bool COdictExportEdsPrivate::collect(const COdictObject &object, sEntries_t &entries)
{
    entries.objectType = 0x7;
    const COdictObjectTree *tree = odict->objectTree();
    if (object.subIdCount() > 0) {
        entries.objectType = 0x9;
        for (const unsigned int subId : object.subIdList()) {
            const COdictObject *sub = tree->objectPtr(object.id(), subId);
            if (!sub || sub->uniqueId() != COdictObjectId(object.id(), subId) || !sub->isValid() || sub->isVirtual())
                continue; // a listed sub-id without sub-object: the check reports it
            if (subId == 0 || subId > 0xFE) {
                leaveOut(*sub, subId == 0 ? QStringLiteral("sub-index 0 holds the number of entries")
                                          : QStringLiteral("sub-indexes end at 254"));
                continue;
            }
            sEntry_t entry;
            entry.subIndex = subId;
            if (entryOf(*sub, sub->dataType(), entry))
                entries.list.append(entry);
        }
    } else if (object.isDS402DataType()) {
        const NTypes::eTypes_t part = COdictCanOpen::partType(object.dataType(), object.dataSize());
        const int parts = object.ds402PartCount();
        if (part == NTypes::E_UNKNOWN || parts < 1 || parts > 0xFE) {
            leaveOut(object, QStringLiteral("its %1 bytes do not divide into CANopen parts").arg(object.dataSize()));
            return false;
        }
        entries.objectType = object.dataType() == NTypes::E_DS402_RECORD ? 0x9 : 0x8;
        const QByteArray defaults = object.defaultValue().toByteArray();
        const int partSize = CDataTypeParser::typeSize(part);
        for (int i = 1; i <= parts; ++i) {
            sEntry_t entry;
            if (!entryOf(object, part, entry))
                return false;
            entry.subIndex = i;
            entry.name = displayName(object).left(maxParameterName - 4) + QLatin1Char(' ') + QString::number(i);
            entry.low.clear();
            entry.high.clear();
            entry.value = defaults.size() >= i * partSize
                ? valueText(CVariant(defaults.mid((i - 1) * partSize, partSize), part, 1), entry.dataType)
                : QString();
            entries.list.append(entry);
        }
    } else {
        sEntry_t entry;
        entry.subIndex = COdictObject::NoId;
        if (!entryOf(object, object.dataType(), entry))
            return false;
        entries.list.append(entry);
    }
    return true;
}

void COdictExportEdsPrivate::valueTexts(const sSection_t &section, const sEntries_t &entries,
                                        const std::function<void(const QString &)> &add) const
{
    const auto addTexts = [&add](const QString &title, const COdictObject &o) {
        const QString where = QLatin1Char('[') + title + QStringLiteral("] ");
        QStringList texts;
        for (const auto &e : o.enumData().enums())
            texts << QString::number(e.value) + QStringLiteral(" = ") + e.name;
        if (!texts.isEmpty())
            add(where + o.name() + QStringLiteral(" values: ") + texts.join(QStringLiteral(", ")));
        texts.clear();
        for (const auto &b : o.bitSetData().bitSet())
            texts << QString::number(b.pos) + QStringLiteral(" = ") + b.name;
        if (!texts.isEmpty())
            add(where + o.name() + QStringLiteral(" bits: ") + texts.join(QStringLiteral(", ")));
    };
    const COdictObject &object = *section.object;
    addTexts(entryName(section.index, COdictObject::NoId), object);
    if (entries.objectType == 0x7 || object.subIdCount() == 0)
        return;
    const COdictObjectTree *tree = odict->objectTree();
    for (const sEntry_t &e : entries.list) {
        if (const COdictObject *sub = tree->objectPtr(object.id(), e.subIndex))
            addTexts(entryName(section.index, e.subIndex), *sub);
    }
}

void COdictExportEdsPrivate::writeSection(COdictLineSink &out, const sSection_t &section, const sEntries_t &entries) const
{
    const auto writeEntry = [&out](const QString &title, const sEntry_t &e) {
        out << QLatin1Char('[') + title + QLatin1Char(']') << QStringLiteral("ParameterName=") + e.name
            << QStringLiteral("ObjectType=0x7") << QStringLiteral("DataType=") + hex4(e.dataType)
            << QStringLiteral("AccessType=") + e.access;
        if (!e.low.isEmpty())
            out << QStringLiteral("LowLimit=") + e.low;
        if (!e.high.isEmpty())
            out << QStringLiteral("HighLimit=") + e.high;
        if (!e.value.isEmpty())
            out << QStringLiteral("DefaultValue=") + e.value;
        out << QStringLiteral("PDOMapping=%1").arg(e.pdo ? 1 : 0) << QString();
    };
    const unsigned int index = section.index;
    if (entries.objectType == 0x7) {
        writeEntry(entryName(index, COdictObject::NoId), entries.list.first());
        return;
    }
    const unsigned int highest = entries.list.isEmpty() ? 0 : entries.list.last().subIndex;
    out << QLatin1Char('[') + entryName(index, COdictObject::NoId) + QLatin1Char(']')
        << QStringLiteral("ParameterName=") + displayName(*section.object)
        << QStringLiteral("ObjectType=0x%1").arg(entries.objectType)
        << QStringLiteral("SubNumber=%1").arg(entries.list.size() + 1) << QString();
    sEntry_t count;
    count.name = QStringLiteral("Highest sub-index supported");
    count.dataType = typeUnsigned8;
    count.access = QStringLiteral("ro");
    count.value = QString::number(highest);
    writeEntry(entryName(index, 0), count);
    for (const sEntry_t &e : entries.list)
        writeEntry(entryName(index, e.subIndex), e);
}

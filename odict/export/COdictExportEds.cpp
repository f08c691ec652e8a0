#include "COdictExportEds.h"
#include "COdictExportEds_p.h"

#include "CDataTypeParser.h"
#include "CMessageBoardHelper.h"
#include "COdict.h"
#include "COdictCanOpen.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "CSaveFile.h"
#include "CStr.h"
#include "CVariant.h"

#include <QSaveFile>

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
    return d->leftOut;
}

bool COdictExportEdsPrivate::exportToEds(const QString &fileName)
{
    prepare();
    leftOut.clear();
    m_valueTexts.clear();
    const COdictCanOpenMap map(odict);
    for (const sOdictCanOpenPlace_t &place : map.collisions()) {
        leaveOut(*place.object, QStringLiteral("its CANopen index %1 is also claimed by %2")
                                    .arg(hex4(place.index), place.rivals.join(QStringLiteral(", "))));
    }
    for (const sOdictCanOpenPlace_t &place : map.withoutIndex())
        leaveOut(*place.object, QStringLiteral("its id has no CANopen index"));

    // Object sections by category; an object that yields no section is not listed.
    QList<unsigned int> mandatory, optional, manufacturer;
    QStringList mandatorySections, optionalSections, manufacturerSections;
    for (const sOdictCanOpenPlace_t &place : map.placed()) {
        const QStringList section = objectSection(place.index, *place.object);
        if (section.isEmpty())
            continue;
        if (place.index == 0x1000 || place.index == 0x1001 || place.index == 0x1018) {
            mandatory.append(place.index);
            mandatorySections << section;
        } else if (place.index >= 0x2000 && place.index <= 0x5FFF) {
            manufacturer.append(place.index);
            manufacturerSections << section;
        } else {
            optional.append(place.index);
            optionalSections << section;
        }
    }

    fileInfo(fileName);
    deviceInfo(mandatory + optional + manufacturer);
    lines << QStringLiteral("[DummyUsage]");
    for (int type = 1; type <= 7; ++type) // the integer types up to 32 bits; BOOLEAN cannot be a dummy
        lines << QStringLiteral("Dummy%1=%2").arg(type, 4, 10, QLatin1Char('0')).arg(type == 1 ? 0 : 1);
    lines << QString();

    QStringList comments{QStringLiteral("Exported from %1 %2 on %3 by krOdict.")
                             .arg(odictName, CStr::versionToString(odict ? odict->odictMetaData().version() : 0),
                                  exportDate().toString(Qt::ISODate))};
    if (!m_valueTexts.isEmpty())
        comments << QStringLiteral("Value and bit texts:") << m_valueTexts;
    if (!leftOut.isEmpty())
        comments << QStringLiteral("Left out:") << leftOut;
    lines << QStringLiteral("[Comments]") << QStringLiteral("Lines=%1").arg(comments.size());
    for (int i = 0; i < comments.size(); ++i)
        lines << QStringLiteral("Line%1=").arg(i + 1) + comments.at(i);
    lines << QString();

    const auto list = [this](const char *title, const QList<unsigned int> &indexes, const QStringList &sections) {
        lines << QLatin1Char('[') + QLatin1String(title) + QLatin1Char(']')
              << QStringLiteral("SupportedObjects=%1").arg(indexes.size());
        for (int i = 0; i < indexes.size(); ++i)
            lines << QStringLiteral("%1=%2").arg(i + 1).arg(hex4(indexes.at(i)));
        lines << QString() << sections;
    };
    list("MandatoryObjects", mandatory, mandatorySections);
    list("OptionalObjects", optional, optionalSections);
    list("ManufacturerObjects", manufacturer, manufacturerSections);

    for (const QString &text : qAsConst(leftOut))
        CMessageBoardHelper::setWarning(QStringLiteral("EDS export: ") + text, odict ? odict->logfile() : nullptr);

    // CR LF and no byte-order mark: the form every INI reader of the field takes.
    // A line break inside a text would end its key early: texts keep to their line.
    QByteArray bytes;
    for (QString line : qAsConst(lines))
        bytes += line.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' ')).toUtf8() + "\r\n";
    lines.clear();
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size())
        file.cancelWriting();
    return CSaveFile::commit(file);
}

void COdictExportEdsPrivate::fileInfo(const QString &fileName)
{
    const CXMLMetaData meta = odict ? odict->odictMetaData() : CXMLMetaData();
    const COdictHistory history = odict ? odict->odictHistory() : COdictHistory();
    const CXMLMetaData first = history.size() > 0 ? history.at(history.size() - 1) : meta; // newest first
    const NTypes::uVersion_t version = meta.version();
    QString description = odictName + QLatin1Char(' ') + CStr::versionToString(version);
    if (!meta.comment().isEmpty())
        description += QStringLiteral(": ") + meta.comment();
    lines << QStringLiteral("[FileInfo]") << QStringLiteral("FileName=") + COdictExportBasePrivate::fileName(fileName)
          << QStringLiteral("FileVersion=%1").arg(version.mainNumber())
          << QStringLiteral("FileRevision=%1").arg(version.minorNumber())
          << QStringLiteral("EDSVersion=4.0") << QStringLiteral("Description=") + description.left(maxDescription)
          << QStringLiteral("CreationTime=") + edsTime(first.time()) << QStringLiteral("CreationDate=") + edsDate(first.date())
          << QStringLiteral("CreatedBy=") + first.author()
          << QStringLiteral("ModificationTime=") + edsTime(meta.time())
          << QStringLiteral("ModificationDate=") + edsDate(meta.date())
          << QStringLiteral("ModifiedBy=") + meta.author() << QString();
}

void COdictExportEdsPrivate::deviceInfo(const QList<unsigned int> &indexes)
{
    int rxPdos = 0, txPdos = 0;
    for (const unsigned int index : indexes) {
        rxPdos += index >= 0x1600 && index <= 0x17FF;
        txPdos += index >= 0x1A00 && index <= 0x1BFF;
    }
    const quint32 version = odict ? odict->odictMetaData().version().value : 0;
    lines << QStringLiteral("[DeviceInfo]")
          << QStringLiteral("VendorName=") + (vendorName.isEmpty() ? odictName : vendorName)
          << QStringLiteral("ProductName=") + odictName
          << QStringLiteral("RevisionNumber=0x") + QString::number(version, 16).toUpper().rightJustified(8, QLatin1Char('0'));
    for (const int rate : {10, 20, 50, 125, 250, 500, 800, 1000})
        lines << QStringLiteral("BaudRate_%1=1").arg(rate);
    lines << QStringLiteral("SimpleBootUpMaster=0") << QStringLiteral("SimpleBootUpSlave=1")
          << QStringLiteral("Granularity=8") << QStringLiteral("DynamicChannelsSupported=0")
          << QStringLiteral("GroupMessaging=0") << QStringLiteral("NrOfRXPDO=%1").arg(rxPdos)
          << QStringLiteral("NrOfTXPDO=%1").arg(txPdos) << QStringLiteral("LSS_Supported=0") << QString();
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
    leftOut.append(QStringLiteral("%1: %2").arg(object.longInfo(), reason));
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

QStringList COdictExportEdsPrivate::objectSection(unsigned int index, const COdictObject &object)
{
    QList<sEntry_t> entries;
    unsigned int objectType = 0x7;
    const COdictObjectTree *tree = odict->objectTree();
    if (object.subIdCount() > 0) {
        objectType = 0x9;
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
                entries.append(entry);
        }
    } else if (object.isDS402DataType()) {
        const NTypes::eTypes_t part = COdictCanOpen::partType(object.dataType(), object.dataSize());
        const int parts = object.ds402PartCount();
        if (part == NTypes::E_UNKNOWN || parts < 1 || parts > 0xFE) {
            leaveOut(object, QStringLiteral("its %1 bytes do not divide into CANopen parts").arg(object.dataSize()));
            return {};
        }
        objectType = object.dataType() == NTypes::E_DS402_RECORD ? 0x9 : 0x8;
        const QByteArray defaults = object.defaultValue().toByteArray();
        const int partSize = CDataTypeParser::typeSize(part);
        for (int i = 1; i <= parts; ++i) {
            sEntry_t entry;
            if (!entryOf(object, part, entry))
                return {};
            entry.subIndex = i;
            entry.name = displayName(object).left(maxParameterName - 4) + QLatin1Char(' ') + QString::number(i);
            entry.low.clear();
            entry.high.clear();
            entry.value = defaults.size() >= i * partSize
                ? valueText(CVariant(defaults.mid((i - 1) * partSize, partSize), part, 1), entry.dataType)
                : QString();
            entries.append(entry);
        }
    } else {
        sEntry_t entry;
        entry.subIndex = COdictObject::NoId;
        if (!entryOf(object, object.dataType(), entry))
            return {};
        entries.append(entry);
    }

    const auto addTexts = [this](const QString &title, const COdictObject &o) {
        const QString where = QLatin1Char('[') + title + QStringLiteral("] ");
        QStringList texts;
        for (const auto &e : o.enumData().enums())
            texts << QString::number(e.value) + QStringLiteral(" = ") + e.name;
        if (!texts.isEmpty())
            m_valueTexts << where + o.name() + QStringLiteral(" values: ") + texts.join(QStringLiteral(", "));
        texts.clear();
        for (const auto &b : o.bitSetData().bitSet())
            texts << QString::number(b.pos) + QStringLiteral(" = ") + b.name;
        if (!texts.isEmpty())
            m_valueTexts << where + o.name() + QStringLiteral(" bits: ") + texts.join(QStringLiteral(", "));
    };
    addTexts(entryName(index, COdictObject::NoId), object);

    QStringList section;
    const auto writeEntry = [&section](const QString &title, const sEntry_t &e) {
        section << QLatin1Char('[') + title + QLatin1Char(']') << QStringLiteral("ParameterName=") + e.name
                << QStringLiteral("ObjectType=0x7") << QStringLiteral("DataType=") + hex4(e.dataType)
                << QStringLiteral("AccessType=") + e.access;
        if (!e.low.isEmpty())
            section << QStringLiteral("LowLimit=") + e.low;
        if (!e.high.isEmpty())
            section << QStringLiteral("HighLimit=") + e.high;
        if (!e.value.isEmpty())
            section << QStringLiteral("DefaultValue=") + e.value;
        section << QStringLiteral("PDOMapping=%1").arg(e.pdo ? 1 : 0) << QString();
    };
    if (objectType == 0x7) {
        writeEntry(entryName(index, COdictObject::NoId), entries.first());
        return section;
    }
    const unsigned int highest = entries.isEmpty() ? 0 : entries.last().subIndex;
    section << QLatin1Char('[') + entryName(index, COdictObject::NoId) + QLatin1Char(']')
            << QStringLiteral("ParameterName=") + displayName(object)
            << QStringLiteral("ObjectType=0x%1").arg(objectType)
            << QStringLiteral("SubNumber=%1").arg(entries.size() + 1) << QString();
    sEntry_t count;
    count.name = QStringLiteral("Highest sub-index supported");
    count.dataType = typeUnsigned8;
    count.access = QStringLiteral("ro");
    count.value = QString::number(highest);
    writeEntry(entryName(index, 0), count);
    for (const sEntry_t &e : qAsConst(entries)) {
        writeEntry(entryName(index, e.subIndex), e);
        const COdictObject *sub = object.subIdCount() > 0 ? tree->objectPtr(object.id(), e.subIndex) : nullptr;
        if (sub)
            addTexts(entryName(index, e.subIndex), *sub);
    }
    return section;
}

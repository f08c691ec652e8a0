#include "COdictObject.h"

#include "COdictObject_p.h"

#include "CDataTypeParser.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDebug>
#include <QStringList>

#include <algorithm>
#include <cstring>

using NkrOdict::eObjectUsage_t;

namespace {

constexpr unsigned int kNone = 0xFFFFFFFFu;
// Above this size, array defaults are not expanded and no X/Y elements are listed.
constexpr unsigned int kMaxExpandedSize = 0xFFFF;

bool isIntegerType(NTypes::eTypes_t type)
{
    return type == NTypes::E_BOOL || CVariant::isSignedType(type) || CVariant::isUnsignedType(type);
}

// Writes one of the Y limits; the rare block is allocated for a value other than the default
// and released when the last rare field returns to its default.
void setRareValue(COdictObjectPrivate &p, CVariant COdictObjectRareFields::*field, const CVariant &value)
{
    if (p.rare().*field == value)
        return;
    p.rareForWrite().*field = value;
    p.releaseRareIfDefault();
}

// The X limits: nearly all are a number of the object's type or a null value, and a CVariant
// takes 24 bytes for what fits in 9. A record keeps per limit a code byte (the type in the low
// six bits, the form in the top two) and the number's 64 bits; a limit that does not come back
// bit for bit from that (texts, bytes, arrays, values outside their type) is kept whole in the
// rare fields.
constexpr quint8 kLimitTypeMask = 0x3F;
constexpr quint8 kLimitNull = 0x00;      // CVariant(type)
constexpr quint8 kLimitNumber = 0x40;    // a number of the type, in limitBits
constexpr quint8 kLimitOutOfLine = 0x80; // rare().xLimits[which]

CVariant numberOf(NTypes::eTypes_t type, quint64 bits)
{
    if (type == NTypes::E_BOOL || CVariant::isUnsignedType(type))
        return CVariant::fromU64(bits, type);
    if (CVariant::isSignedType(type))
        return CVariant::fromI64(qint64(bits), type);
    if (CVariant::isFloatType(type)) {
        double number;
        std::memcpy(&number, &bits, sizeof number);
        return CVariant::fromF64(number, type);
    }
    return CVariant(type);
}

/// The 64 bits of a number held as \a type stores it; false when \a value holds something else.
bool bitsOf(const QVariant &value, NTypes::eTypes_t type, quint64 &bits)
{
    const int stored = value.userType();
    if (type == NTypes::E_BOOL && stored == QMetaType::Bool) {
        bits = value.toBool() ? 1 : 0;
        return true;
    }
    if (CVariant::isSignedType(type) && stored == QMetaType::LongLong) {
        bits = quint64(value.toLongLong());
        return true;
    }
    if (CVariant::isUnsignedType(type) && stored == QMetaType::ULongLong) {
        bits = value.toULongLong();
        return true;
    }
    if (CVariant::isFloatType(type) && stored == QMetaType::Double) {
        const double number = value.toDouble();
        std::memcpy(&bits, &number, sizeof bits);
        return true;
    }
    return false;
}

} // namespace

bool COdictObjectPrivate::isStoredOutOfLine(quint8 code)
{
    return (code & ~kLimitTypeMask) == kLimitOutOfLine;
}

CVariant COdictObjectPrivate::limit(eLimit_t which) const
{
    const quint8 code = limitCode[which];
    const auto type = NTypes::eTypes_t(code & kLimitTypeMask);
    switch (code & ~kLimitTypeMask) {
    case kLimitNumber:
        return numberOf(type, limitBits[which]);
    case kLimitOutOfLine:
        return rare().xLimits[which];
    default:
        return CVariant(type);
    }
}

void COdictObjectPrivate::setLimit(eLimit_t which, const CVariant &value)
{
    const bool wasOutOfLine = isStoredOutOfLine(limitCode[which]);
    const int type = int(value.type());
    bool compact = false;
    if (type >= 0 && type <= kLimitTypeMask && value.count() == 1) {
        if (value.isNull()) {
            limitCode[which] = quint8(kLimitNull | type);
            limitBits[which] = 0;
            compact = true;
        } else {
            // Compact only when the number gives back exactly this value: the same stored type,
            // the same bits, not a null QVariant of a type.
            const QVariant stored = value.toVariant();
            quint64 bits = 0;
            quint64 rebuiltBits = 0;
            if (!stored.isNull() && bitsOf(stored, value.type(), bits)) {
                const QVariant rebuilt = numberOf(value.type(), bits).toVariant();
                if (rebuilt.userType() == stored.userType() && !rebuilt.isNull()
                    && bitsOf(rebuilt, value.type(), rebuiltBits) && rebuiltBits == bits) {
                    limitCode[which] = quint8(kLimitNumber | type);
                    limitBits[which] = bits;
                    compact = true;
                }
            }
        }
    }
    if (compact) {
        if (wasOutOfLine) {
            rareForWrite().xLimits[which] = CVariant();
            releaseRareIfDefault();
        }
        return;
    }
    limitCode[which] = kLimitOutOfLine;
    limitBits[which] = 0;
    rareForWrite().xLimits[which] = value;
}

namespace {

bool bitOf(const QByteArray &bytes, unsigned int pos)
{
    const unsigned int byte = pos / 8;
    return byte < unsigned(bytes.size()) && ((static_cast<unsigned char>(bytes.at(int(byte))) >> (pos % 8)) & 1u);
}

} // namespace

COdictObject::COdictObject() : d(new COdictObjectPrivate) {}
COdictObject::COdictObject(const COdictObject &) = default;
COdictObject &COdictObject::operator=(const COdictObject &) = default;
COdictObject::~COdictObject() = default;

NkrOdict::eObjectType_t COdictObject::objectType() const
{
    return NkrOdict::E_OT_STD;
}

bool COdictObject::isNull() const
{
    static const COdictObjectPrivate defaults;
    return d->equals(defaults);
}

bool COdictObject::isValid() const
{
    return !d->name.isEmpty() && d->name != QLatin1String("UNKNOWN") && d->id != kNone;
}

int COdictObject::ds402PartCount() const
{
    switch (d->dataType) {
    case NTypes::E_DS402_RECORD:
        return 3;
    case NTypes::E_DS402_U16ARRAY:
    case NTypes::E_DS402_I16ARRAY:
        return int(d->dataSize / 2);
    case NTypes::E_DS402_U32ARRAY:
    case NTypes::E_DS402_I32ARRAY:
    case NTypes::E_DS402_F32ARRAY:
        return int(d->dataSize / 4);
    default:
        return 0;
    }
}

QString COdictObject::valueToStr(const CVariant &value, bool withUnit) const
{
    if (value.isNull())
        return QString();

    const NTypes::eTypes_t type = value.type();
    const bool integer = !value.isArray() && isIntegerType(type);
    QString text;
    bool ok = false;
    const qint64 number = integer ? value.toI64(&ok) : 0;
    if (ok && hasEnum()) {
        text = d->rare().enumData.name(number);
    } else if (hasBitSet() && (integer || CVariant::isByteType(type))) {
        const QByteArray bytes = value.toByteArray();
        QStringList names;
        const unsigned int bitCount = unsigned(bytes.size()) * 8;
        for (unsigned int pos = 0; pos < bitCount; ++pos) {
            if (!bitOf(bytes, pos))
                continue;
            const QString name = d->rare().bitSetData.name(pos);
            names << (name.isEmpty() ? QCoreApplication::translate("COdictObject", "Bit %1").arg(pos) : name);
        }
        text = names.isEmpty() ? QStringLiteral("0") : names.join(QLatin1String(", "));
    } else if (CVariant::isFloatType(type) && !value.isArray() && d->digits >= 0) {
        text = QString::number(value.toF64(), 'f', d->digits);
    } else {
        text = value.toStr();
    }

    if (withUnit) {
        const QString unit = unitText();
        if (!unit.isEmpty())
            text += QLatin1Char(' ') + unit;
    }
    return text;
}

bool COdictObject::compare(const QVariant &a, const QVariant &b) const
{
    if (d->arrayLength < 2)
        return CVariant::fromVariant(a, d->dataType) == CVariant::fromVariant(b, d->dataType);
    return a.toByteArray() == b.toByteArray();
}

bool COdictObject::operator==(const COdictObject &other) const
{
    return d == other.d || d->equals(*other.d);
}

QUuid COdictObject::refId() const { return d->refId; }
void COdictObject::setRefId(const QUuid &refId) { d->refId = refId; }

unsigned int COdictObject::id() const { return d->id; }
void COdictObject::setId(unsigned int id) { d->id = id; }

void COdictObject::setId(const COdictObjectId &id)
{
    d->id = id.id();
    d->subId = id.subId();
}

void COdictObject::setId(unsigned long long packed)
{
    setId(COdictObjectId(packed));
}

void COdictObject::setId(NkrObjectIds::eObjectId_t id)
{
    d->id = static_cast<unsigned int>(static_cast<unsigned long long>(id));
}

unsigned int COdictObject::subId() const { return d->subId; }
void COdictObject::setSubId(unsigned int subId) { d->subId = subId; }
bool COdictObject::isSubObject() const { return d->subId != kNone; }
COdictObjectId COdictObject::uniqueId() const { return COdictObjectId(d->id, d->subId); }
QString COdictObject::uniqueIdInfo() const { return uniqueId().info(); }
COdictObjectName COdictObject::uniqueName() const { return COdictObjectName(d->name, d->subId); }

NTypes::uVersion_t COdictObject::version() const { return d->version; }
void COdictObject::setVersion(NTypes::uVersion_t version) { d->version = version; }
unsigned int COdictObject::ds402Id() const { return d->ds402Id; }
void COdictObject::setDS402Id(unsigned int ds402Id) { d->ds402Id = ds402Id; }
unsigned int COdictObject::profinetId() const { return d->profinetId; }
void COdictObject::setProfinetId(unsigned int profinetId) { d->profinetId = profinetId; }

QString COdictObject::name() const { return d->name; }
void COdictObject::setName(const QString &name) { d->name = name; }

void COdictObject::setName(const COdictObjectName &name)
{
    d->name = name.name();
    d->subId = name.subId();
}

QString COdictObject::uiName() const { return d->uiName; }
void COdictObject::setUiName(const QString &uiName) { d->uiName = uiName; }
QString COdictObject::uiShortName() const { return d->uiShortName; }
void COdictObject::setUiShortName(const QString &uiShortName) { d->uiShortName = uiShortName; }

namespace {
unsigned int unitFor(unsigned int code, NkrUnits::eUnitType_t type)
{
    return type == NkrUnits::E_UT_LINEAR ? CUnitParser::toLinear(code) : code;
}
} // namespace

unsigned int COdictObject::unit() const { return d->unit; }
unsigned int COdictObject::unit(NkrUnits::eUnitType_t type) const { return unitFor(d->unit, type); }
unsigned int COdictObject::xUnit() const { return d->unit; }
unsigned int COdictObject::xUnit(NkrUnits::eUnitType_t type) const { return unitFor(d->unit, type); }
unsigned int COdictObject::yUnit() const { return d->yUnit; }
unsigned int COdictObject::yUnit(NkrUnits::eUnitType_t type) const { return unitFor(d->yUnit, type); }
void COdictObject::setUnit(unsigned int unit) { d->unit = unit; }
void COdictObject::setXUnit(unsigned int unit) { d->unit = unit; }
void COdictObject::setYUnit(unsigned int unit) { d->yUnit = unit; }
QString COdictObject::unitText() const { return CUnitParser::unitText(d->unit); }
QString COdictObject::unitText(NkrUnits::eUnitType_t type) const { return CUnitParser::unitText(unit(type)); }
QString COdictObject::xUnitText() const { return CUnitParser::unitText(d->unit); }
QString COdictObject::xUnitText(NkrUnits::eUnitType_t type) const { return CUnitParser::unitText(xUnit(type)); }
QString COdictObject::yUnitText() const { return CUnitParser::unitText(d->yUnit); }
QString COdictObject::yUnitText(NkrUnits::eUnitType_t type) const { return CUnitParser::unitText(yUnit(type)); }

NTypes::eTypes_t COdictObject::dataType() const { return d->dataType; }
void COdictObject::setDataType(NTypes::eTypes_t dataType) { d->dataType = dataType; }
unsigned int COdictObject::dataSize() const { return d->dataSize; }
void COdictObject::setDataSize(unsigned int dataSize) { d->dataSize = dataSize; }
unsigned int COdictObject::dataTypeSize() const { return CDataTypeParser::typeSize(d->dataType); }
unsigned int COdictObject::arrayLength() const { return d->arrayLength; }
void COdictObject::setArrayLength(unsigned int arrayLength) { d->arrayLength = arrayLength; }

bool COdictObject::isDS402DataType(NTypes::eTypes_t type)
{
    return type >= NTypes::E_DS402_RECORD && type <= NTypes::E_DS402_F32ARRAY;
}

bool COdictObject::isDS402DataType() const { return isDS402DataType(d->dataType); }

bool COdictObject::isComplexDataType(NTypes::eTypes_t type)
{
    return (type >= NTypes::E_STRING && type <= NTypes::E_RECORD) || (type >= NTypes::E_XY && type <= NTypes::E_STRUCT);
}

bool COdictObject::isComplexDataType() const { return isComplexDataType(d->dataType); }

unsigned int COdictObject::accessRights() const { return unsigned(d->accessRights); }
NkrOdict::AccessRightFlags COdictObject::accessRightsFlags() const { return d->accessRights; }
void COdictObject::setAccessRights(unsigned int rights) { d->accessRights = NkrOdict::AccessRightFlags(NkrOdict::eAccessRight_t(rights)); }
void COdictObject::setAccessRights(NkrOdict::AccessRightFlags rights) { d->accessRights = rights; }
void COdictObject::setAccessRights(NkrOdict::eAccessRight_t rights, bool on) { d->accessRights.setFlag(rights, on); }

unsigned int COdictObject::userlevelRead() const { return d->userlevelRead; }
void COdictObject::setUserlevelRead(unsigned int level) { d->userlevelRead = level; }
unsigned int COdictObject::userlevelWrite() const { return d->userlevelWrite; }
void COdictObject::setUserlevelWrite(unsigned int level) { d->userlevelWrite = level; }
unsigned int COdictObject::userlevelVisible() const { return d->userlevelVisible; }
void COdictObject::setUserlevelVisible(unsigned int level) { d->userlevelVisible = level; }
int COdictObject::digits() const { return d->digits; }
void COdictObject::setDigits(int digits) { d->digits = digits; }

COdictObjectEnum COdictObject::enumData() const { return d->rare().enumData; }
void COdictObject::setEnumData(const COdictObjectEnum &enumData)
{
    if (enumData.isEmpty() && !d.constData()->rare().enumData.isEmpty()) {
        d->rareForWrite().enumData = enumData;
        d->releaseRareIfDefault();
    } else if (!enumData.isEmpty()) {
        d->rareForWrite().enumData = enumData;
    }
}
const COdictObjectEnum *COdictObject::enumDataPtr() const { return &d->rare().enumData; }
COdictObjectEnum *COdictObject::enumDataPtr() { return &d->rareForWrite().enumData; }
COdictObjectBitSet COdictObject::bitSetData() const { return d->rare().bitSetData; }
void COdictObject::setBitSetData(const COdictObjectBitSet &bitSetData)
{
    if (bitSetData.isEmpty() && !d.constData()->rare().bitSetData.isEmpty()) {
        d->rareForWrite().bitSetData = bitSetData;
        d->releaseRareIfDefault();
    } else if (!bitSetData.isEmpty()) {
        d->rareForWrite().bitSetData = bitSetData;
    }
}
const COdictObjectBitSet *COdictObject::bitSetDataPtr() const { return &d->rare().bitSetData; }
COdictObjectBitSet *COdictObject::bitSetDataPtr() { return &d->rareForWrite().bitSetData; }
bool COdictObject::hasEnum() const { return !d->rare().enumData.isEmpty(); }
bool COdictObject::hasBitSet() const { return !d->rare().bitSetData.isEmpty(); }
bool COdictObject::hasEnumOrBitSet() const { return hasEnum() || hasBitSet(); }

CVariant COdictObject::minValue() const { return d->limit(COdictObjectPrivate::L_MIN); }
CVariant COdictObject::maxValue() const { return d->limit(COdictObjectPrivate::L_MAX); }

CVariant COdictObject::defaultValue(bool expandArray) const
{
    const CVariant stored = d->limit(COdictObjectPrivate::L_DEFAULT);
    if (!expandArray || stored.isNull() || stored.isArray())
        return stored;
    const unsigned int elementSize = CDataTypeParser::typeSize(d->dataType);
    if (elementSize == 0 || d->dataSize <= elementSize || d->dataSize > kMaxExpandedSize)
        return stored;

    // Every element of the array takes the default.
    QByteArray element = CVariant::fromVariant(stored.toVariant(), d->dataType).toByteArray().left(int(elementSize));
    if (element.isEmpty())
        return stored;
    element.append(QByteArray(int(elementSize) - element.size(), '\0'));
    const int count = int(d->dataSize / elementSize);
    QByteArray bytes;
    bytes.reserve(count * int(elementSize));
    for (int i = 0; i < count; ++i)
        bytes.append(element);
    return CVariant(bytes, d->dataType, count);
}

CVariant COdictObject::xMinValue() const { return d->limit(COdictObjectPrivate::L_MIN); }
CVariant COdictObject::xMaxValue() const { return d->limit(COdictObjectPrivate::L_MAX); }
CVariant COdictObject::xDefaultValue() const { return d->limit(COdictObjectPrivate::L_DEFAULT); }
CVariant COdictObject::yMinValue() const { return d->rare().yMinValue; }
CVariant COdictObject::yMaxValue() const { return d->rare().yMaxValue; }
CVariant COdictObject::yDefaultValue() const { return d->rare().yDefaultValue; }
CVariant COdictObject::getMinValue() const { return d->limit(COdictObjectPrivate::L_MAX); } // the maximum, on purpose
CVariant COdictObject::getMaxValue() const { return d->limit(COdictObjectPrivate::L_MAX); }
CVariant COdictObject::getDefaultValue() const { return d->limit(COdictObjectPrivate::L_DEFAULT); }
CVariant COdictObject::getXMinValue() const { return d->limit(COdictObjectPrivate::L_MIN); }
CVariant COdictObject::getXMaxValue() const { return d->limit(COdictObjectPrivate::L_MAX); }
CVariant COdictObject::getXDefaultValue() const { return d->limit(COdictObjectPrivate::L_DEFAULT); }
CVariant COdictObject::getYMinValue() const { return d->rare().yMinValue; }
CVariant COdictObject::getYMaxValue() const { return d->rare().yMaxValue; }
CVariant COdictObject::getYDefaultValue() const { return d->rare().yDefaultValue; }
void COdictObject::setMinValue(const CVariant &value) { d->setLimit(COdictObjectPrivate::L_MIN, value); }
void COdictObject::setMaxValue(const CVariant &value) { d->setLimit(COdictObjectPrivate::L_MAX, value); }
void COdictObject::setDefaultValue(const CVariant &value) { d->setLimit(COdictObjectPrivate::L_DEFAULT, value); }
void COdictObject::setXMinValue(const CVariant &value) { d->setLimit(COdictObjectPrivate::L_MIN, value); }
void COdictObject::setXMaxValue(const CVariant &value) { d->setLimit(COdictObjectPrivate::L_MAX, value); }
void COdictObject::setXDefaultValue(const CVariant &value) { d->setLimit(COdictObjectPrivate::L_DEFAULT, value); }
void COdictObject::setYMinValue(const CVariant &value) { setRareValue(*d, &COdictObjectRareFields::yMinValue, value); }
void COdictObject::setYMaxValue(const CVariant &value) { setRareValue(*d, &COdictObjectRareFields::yMaxValue, value); }
void COdictObject::setYDefaultValue(const CVariant &value) { setRareValue(*d, &COdictObjectRareFields::yDefaultValue, value); }
QString COdictObject::minValueAsStr(bool withUnit) const { return valueToStr(d->limit(COdictObjectPrivate::L_MIN), withUnit); }
QString COdictObject::maxValueAsStr(bool withUnit) const { return valueToStr(d->limit(COdictObjectPrivate::L_MAX), withUnit); }
QString COdictObject::defaultValueAsStr(bool withUnit) const { return valueToStr(d->limit(COdictObjectPrivate::L_DEFAULT), withUnit); }

unsigned int COdictObject::objectUsage() const { return unsigned(d->objectUsage); }
NkrOdict::ObjectUsageFlags COdictObject::objectUsageFlags() const { return d->objectUsage; }
void COdictObject::setObjectUsage(unsigned int usage) { d->objectUsage = NkrOdict::ObjectUsageFlags(eObjectUsage_t(usage)); }
void COdictObject::setObjectUsage(NkrOdict::ObjectUsageFlags usage) { d->objectUsage = usage; }
void COdictObject::setObjectUsage(eObjectUsage_t usage, bool on) { d->objectUsage.setFlag(usage, on); }

eObjectUsage_t COdictObject::baseObjectUsage() const
{
    const NkrOdict::ObjectUsageFlags usage = d->objectUsage;
    if (usage.testFlag(NkrOdict::E_OU_DATABASE_PARAMETER))
        return NkrOdict::E_OU_DATABASE_PARAMETER;
    if (usage.testFlag(NkrOdict::E_OU_PARAMETER))
        return NkrOdict::E_OU_PARAMETER;
    if (usage.testFlag(NkrOdict::E_OU_ACTUAL))
        return NkrOdict::E_OU_ACTUAL;
    return usage.testFlag(NkrOdict::E_OU_OBJECT) ? NkrOdict::E_OU_OBJECT : NkrOdict::E_OU_NONE;
}

bool COdictObject::isObject() const
{
    const unsigned int usage = objectUsage();
    return (usage & NkrOdict::E_OU_OBJECT)
        && !(usage & (NkrOdict::E_OU_PARAMETER | NkrOdict::E_OU_ACTUAL | NkrOdict::E_OU_DATABASE_PARAMETER));
}

bool COdictObject::isParameter() const { return d->objectUsage.testFlag(NkrOdict::E_OU_PARAMETER); }
bool COdictObject::isActual() const { return d->objectUsage.testFlag(NkrOdict::E_OU_ACTUAL); }
bool COdictObject::isDatabaseParameter() const { return d->objectUsage.testFlag(NkrOdict::E_OU_DATABASE_PARAMETER); }

QList<unsigned int> COdictObject::subIdList() const { return d->subIdList; }
void COdictObject::setSubIdList(const QList<unsigned int> &subIds) { d->subIdList = subIds; }
int COdictObject::subIdCount() const { return d->subIdList.size(); }
unsigned int COdictObject::highestSubId() const { return d->subIdList.isEmpty() ? kNone : d->subIdList.last(); }
void COdictObject::clearSubIds() { d->subIdList.clear(); }
void COdictObject::removeSubIdFromList(unsigned int subId) { d->subIdList.removeAll(subId); }

void COdictObject::addSubId(unsigned int subId)
{
    const QList<unsigned int> &list = d.constData()->subIdList; // no detach for a duplicate
    if (list.isEmpty() || subId > list.last()) {
        d->subIdList.append(subId);
        return;
    }
    const auto it = std::lower_bound(list.cbegin(), list.cend(), subId);
    if (it != list.cend() && *it == subId)
        return;
    const int index = int(it - list.cbegin());
    d->subIdList.insert(index, subId);
}

bool COdictObject::isVirtual() const { return d->isVirtual; }
void COdictObject::setVirtual(bool isVirtual) { d->isVirtual = isVirtual; }

bool COdictObject::couldHaveVirtualSubObjects() const
{
    return (hasBitSet() || d->dataType == NTypes::E_XY) && isValid();
}

QList<unsigned int> COdictObject::possibleVirtualSubIds() const
{
    if (hasBitSet())
        return d->rare().bitSetData.positions();
    QList<unsigned int> ids;
    const unsigned int elementSize = CDataTypeParser::typeSize(NTypes::E_I32);
    if (d->dataType == NTypes::E_XY && elementSize != 0 && d->dataSize <= kMaxExpandedSize) {
        const unsigned int count = d->dataSize / elementSize;
        ids.reserve(int(count));
        for (unsigned int i = 0; i < count; ++i)
            ids.append(i);
    }
    return ids;
}

COdictObject COdictObject::createVirtualSubObject(const COdictObject &owner, unsigned int subId, bool *ok)
{
    COdictObject sub(owner);
    const bool made = createVirtualSubObject(sub, subId);
    if (ok)
        *ok = made;
    return made ? sub : COdictObject();
}

bool COdictObject::createVirtualSubObject(COdictObject &target, unsigned int subId)
{
    const COdictObject owner(target); // shares the record; target detaches below
    const COdictObjectPrivate &o = *owner.d;

    if (owner.hasBitSet()) {
        if (!o.rare().bitSetData.contains(subId))
            return false;
        const QString text = o.rare().bitSetData.name(subId);
        CVariant bitDefault(NTypes::E_BOOL);
        const CVariant ownerDefault = o.limit(COdictObjectPrivate::L_DEFAULT);
        if (!ownerDefault.isNull()) {
            const QByteArray bytes = ownerDefault.toByteArray();
            if (subId / 8 < unsigned(bytes.size()))
                bitDefault = CVariant::fromU64(bitOf(bytes, subId) ? 1 : 0, NTypes::E_BOOL);
        }
        COdictObjectPrivate &p = *target.d;
        p.name = text;
        p.uiName = text;
        p.uiShortName = text;
        if (p.rare().hasEnumOrBitSet()) {
            COdictObjectRareFields &rare = p.rareForWrite();
            rare.enumData = COdictObjectEnum();
            rare.bitSetData = COdictObjectBitSet();
        }
        p.dataType = NTypes::E_BOOL;
        p.dataSize = 1;
        p.arrayLength = 1;
        p.setLimit(COdictObjectPrivate::L_MIN, CVariant(QStringLiteral("0"), NTypes::E_BOOL));
        p.setLimit(COdictObjectPrivate::L_MAX, CVariant(QStringLiteral("1"), NTypes::E_BOOL));
        p.setLimit(COdictObjectPrivate::L_DEFAULT, bitDefault);
    } else if (o.dataType == NTypes::E_XY) {
        const unsigned int elementSize = CDataTypeParser::typeSize(NTypes::E_I32);
        if (elementSize == 0 || subId >= o.dataSize / elementSize)
            return false;
        // Elements alternate X, Y, X, Y...; each pair shares one number, counted from 1.
        const bool isX = subId % 2 == 0;
        const QString text = (isX ? QStringLiteral("X%1-Value") : QStringLiteral("Y%1-Value")).arg(subId / 2 + 1);
        COdictObjectPrivate &p = *target.d;
        p.name = text;
        p.uiName = text;
        p.uiShortName = text;
        if (!p.rare().enumData.isEmpty())
            p.rareForWrite().enumData = COdictObjectEnum();
        p.dataType = NTypes::E_I32;
        p.dataSize = elementSize;
        p.arrayLength = 1;
        if (!isX) {
            p.setLimit(COdictObjectPrivate::L_MIN, o.rare().yMinValue);
            p.setLimit(COdictObjectPrivate::L_MAX, o.rare().yMaxValue);
            p.setLimit(COdictObjectPrivate::L_DEFAULT, o.rare().yDefaultValue);
            p.unit = o.yUnit;
        }
        if (p.hasRare()) {
            COdictObjectRareFields &rare = p.rareForWrite();
            rare.yMinValue = CVariant();
            rare.yMaxValue = CVariant();
            rare.yDefaultValue = CVariant();
        }
        p.yUnit = kNone;
    } else {
        return false;
    }

    COdictObjectPrivate &p = *target.d;
    p.subId = subId;
    p.subIdList.clear();
    p.isVirtual = true;
    p.releaseRareIfDefault();
    return true;
}

unsigned int COdictObject::idToDS402Id(unsigned int id)
{
    return id < 0x2000 ? id + 0x2000 : id;
}

unsigned int COdictObject::ds402IdToId(unsigned int ds402Id)
{
    return (ds402Id >= 0x2000 && ds402Id <= 0x2FFF) ? ds402Id - 0x2000 : ds402Id;
}

COdictObjectId COdictObject::ds402IdToUId(unsigned int ds402Id, unsigned int subId)
{
    return COdictObjectId(ds402IdToId(ds402Id), subId);
}

unsigned int COdictObject::uniqueIdToDS402Id(const COdictObjectId &id)
{
    return id.id() <= 0x1FFF ? id.id() + 0x2000 : id.id();
}

unsigned int COdictObject::uniqueIdToDS402Id(NkrObjectIds::eObjectId_t id)
{
    return uniqueIdToDS402Id(COdictObjectId(id));
}

QString COdictObject::infoWith(const QString &text) const
{
    const QString word = QCoreApplication::translate("COdictObject", "ID");
    if (!isSubObject())
        return QStringLiteral("%1 (%2 %3)").arg(text, word, QString::number(d->id));
    return QStringLiteral("%1 (%2 %3:%4)")
        .arg(text, word, QString::number(d->id), QStringLiteral("%1").arg(d->subId, 2, 10, QLatin1Char('0')));
}

QString COdictObject::longInfo() const { return infoWith(d->name); }
QString COdictObject::uiLongInfo() const { return infoWith(d->uiName); }
QString COdictObject::uiShortInfo() const { return infoWith(d->uiShortName); }

QDataStream &operator<<(QDataStream &out, const COdictObject &object)
{
    const COdictObjectPrivate &p = *object.d;
    const quint32 version = p.version.value;
    out << p.refId << quint32(p.id) << quint32(p.subId)
        << quint16(version & 0xFFFF) << qint8((version >> 16) & 0xFF) << qint8(version >> 24)
        << quint32(p.ds402Id) << quint32(p.profinetId)
        << p.name << p.uiName << p.uiShortName
        << quint32(p.unit) << quint32(p.yUnit)
        << quint32(p.dataType) << quint32(p.dataSize) << quint32(p.accessRights)
        << quint32(p.arrayLength)
        << quint32(p.userlevelRead) << quint32(p.userlevelWrite) << quint32(p.userlevelVisible)
        << qint32(p.digits)
        << p.rare().enumData << p.rare().bitSetData
        << p.limit(COdictObjectPrivate::L_MIN) << p.limit(COdictObjectPrivate::L_MAX)
        << p.limit(COdictObjectPrivate::L_DEFAULT)
        << p.rare().yMinValue << p.rare().yMaxValue << p.rare().yDefaultValue
        << quint32(p.objectUsage)
        << quint32(p.subIdList.size());
    for (const unsigned int subId : p.subIdList)
        out << quint32(subId);
    out << p.isVirtual;
    return out;
}

QDataStream &operator>>(QDataStream &in, COdictObject &object)
{
    COdictObjectPrivate &p = *object.d;
    quint16 build = 0;
    qint8 minor = 0;
    qint8 main = 0;
    quint32 dataType = 0;
    quint32 accessRights = 0;
    quint32 usage = 0;
    COdictObjectRareFields rare;
    CVariant limits[COdictObjectPrivate::L_COUNT];
    in >> p.refId >> p.id >> p.subId >> build >> minor >> main
        >> p.ds402Id >> p.profinetId
        >> p.name >> p.uiName >> p.uiShortName
        >> p.unit >> p.yUnit
        >> dataType >> p.dataSize >> accessRights >> p.arrayLength
        >> p.userlevelRead >> p.userlevelWrite >> p.userlevelVisible
        >> p.digits
        >> rare.enumData >> rare.bitSetData
        >> limits[COdictObjectPrivate::L_MIN] >> limits[COdictObjectPrivate::L_MAX]
        >> limits[COdictObjectPrivate::L_DEFAULT]
        >> rare.yMinValue >> rare.yMaxValue >> rare.yDefaultValue
        >> usage;
    p.setRare(rare);
    for (int i = 0; i < COdictObjectPrivate::L_COUNT; ++i)
        p.setLimit(COdictObjectPrivate::eLimit_t(i), limits[i]);
    p.version = NTypes::uVersion_t::fromParts(main, minor, build);
    p.dataType = NTypes::eTypes_t(dataType);
    p.accessRights = NkrOdict::AccessRightFlags(NkrOdict::eAccessRight_t(accessRights));
    p.objectUsage = NkrOdict::ObjectUsageFlags(eObjectUsage_t(usage));

    quint32 count = 0;
    in >> count;
    p.subIdList.clear();
    // A corrupt count must not drive the loop: it ends as soon as the stream runs dry.
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        quint32 subId = 0;
        in >> subId;
        if (in.status() == QDataStream::Ok)
            p.subIdList.append(subId);
    }
    in >> p.isVirtual;
    return in;
}

QDebug operator<<(QDebug debug, const COdictObject &object)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "COdictObject( id=" << object.id() << ", subid=" << object.subId() << ", "
                              << object.name() << ", NTypes::" << CDataTypeParser::typeToEnum(object.dataType())
                              << " )";
    return debug;
}

#include "COdictValueObject.h"

#include "COdictSubValue_p.h"
#include "COdictValueObject_p.h"

#include "CDataTypeParser.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDebug>

#include <algorithm>

namespace {

// Values are resized only up to this many bytes.
constexpr long long kMaxValueBytes = 0xFFFFFF;
// Array values are built from bytes only up to this many bytes.
constexpr quint64 kMaxArrayBytes = 0xFFFFFF;

/// "0x" and the value's bytes in upper-case hex, most significant first.
QString hexText(const CVariant &value)
{
    QByteArray bytes = value.toByteArray();
    std::reverse(bytes.begin(), bytes.end());
    return QLatin1String("0x") + QString::fromLatin1(bytes.toHex().toUpper());
}

/// The label of a status, command or error word by its name; empty for any other name.
QString wordLabel(const QString &name)
{
    const QString upper = name.toUpper();
    const auto holds = [&upper](const char *word) { return upper.contains(QLatin1String(word)); };
    if (holds("STATUSWORD") || holds("STATUS_WORD"))
        return QCoreApplication::translate("COdictValueObject", "Status: %1");
    if (holds("CONTROLWORD") || holds("CONTROL_WORD") || holds("COMMANDWORD"))
        return QCoreApplication::translate("COdictValueObject", "Command: %1");
    if (holds("ERRORWORD") || holds("ERROR_WORD") || holds("ERRORCODE") || holds("ERROR_CODE"))
        return QCoreApplication::translate("COdictValueObject", "Error: %1");
    return QString();
}

/// \a value as a value of \a object's data type; array objects give an array of their length.
CVariant cValueOf(const COdictObject &object, const QVariant &value)
{
    const NTypes::eTypes_t type = object.dataType();
    const quint64 length = object.arrayLength();
    if (length >= 2 && length * CDataTypeParser::typeSize(type) <= kMaxArrayBytes) {
        if (!value.isValid() || value.isNull())
            return CVariant(type);
        return CVariant(OdictSubValue::bytesOf(object, value), type, int(length));
    }
    return CVariant::fromVariant(value, type);
}

QVariant resized(const COdictObject &object, const QVariant &value, long long size)
{
    QByteArray bytes = OdictSubValue::bytesOf(object, value);
    if (bytes.size() > size)
        bytes.truncate(int(size));
    else
        bytes.append(QByteArray(int(size) - bytes.size(), '\0'));
    return QVariant(bytes);
}

/// Debug text of a stored value: bytes in hex, everything else in Qt's text form.
QString debugText(const QVariant &value)
{
    if (value.userType() == QMetaType::QByteArray)
        return QString::fromLatin1(value.toByteArray().toHex());
    return value.toString();
}

} // namespace

COdictValueObject::COdictValueObject() : dv(new COdictValueObjectPrivate) {}
COdictValueObject::COdictValueObject(const COdictObject &object) : COdictObject(object), dv(new COdictValueObjectPrivate) {}
COdictValueObject::COdictValueObject(const COdictValueObject &) = default;
COdictValueObject &COdictValueObject::operator=(const COdictValueObject &) = default;

COdictValueObject &COdictValueObject::operator=(const COdictObject &object)
{
    COdictObject::operator=(object);
    return *this;
}

COdictValueObject::~COdictValueObject() = default;

NkrOdict::eObjectType_t COdictValueObject::objectType() const
{
    return NkrOdict::E_OT_VALUE;
}

bool COdictValueObject::isNull() const
{
    static const COdictValueObjectPrivate defaults;
    return COdictObject::isNull() && dv->equals(defaults);
}

QString COdictValueObject::valueToStr(const CVariant &value, bool withUnit) const
{
    if (value.isNull())
        return QString();

    const NTypes::eTypes_t type = value.type();
    const bool integer = !value.isArray() && (CVariant::isSignedType(type) || CVariant::isUnsignedType(type));
    const bool word = dataType() == NTypes::E_U16 || dataType() == NTypes::E_U32;
    const QString label = integer && word ? wordLabel(name()) : QString();
    QString text;
    if (integer && isValueInHexEnabled()) {
        text = hexText(value);
    } else if (!label.isEmpty()) {
        text = label.arg(hasBitSet() ? COdictObject::valueToStr(value, false) : hexText(value));
    } else if (integer && hasEnum()) {
        bool ok = false;
        const qint64 number = value.toI64(&ok);
        bool named = false;
        const QString entry = ok ? enumDataPtr()->name(number, &named) : QString();
        text = named ? QStringLiteral("%1 %2").arg(value.toStr(), entry) : value.toStr();
    } else {
        return COdictObject::valueToStr(value, withUnit);
    }

    if (withUnit) {
        const QString unit = unitText();
        if (!unit.isEmpty())
            text += QLatin1Char(' ') + unit;
    }
    return text;
}

void COdictValueObject::setReadWriteByteIndex(long long index) { dv->setReadWriteByteRange(index, dv->readWriteByteSize()); }
long long COdictValueObject::readWriteByteIndex() const { return dv->readWriteByteIndex(); }
long long COdictValueObject::getReadWriteByteIndex() const { return dv->readWriteByteIndex(); }
void COdictValueObject::setReadWriteByteSize(long long size) { dv->setReadWriteByteRange(dv->readWriteByteIndex(), size); }
long long COdictValueObject::readWriteByteSize() const { return dv->readWriteByteSize(); }
long long COdictValueObject::getReadWriteByteSize() const { return dv->readWriteByteSize(); }

bool COdictValueObject::operator==(const COdictValueObject &other) const
{
    return COdictObject::operator==(other) && (dv == other.dv || dv->equals(*other.dv));
}

int COdictValueObject::error() const { return dv->error; }
void COdictValueObject::setError(int error) { dv->error = error; }
void COdictValueObject::clearError() { dv->error = 0; }

QVariant COdictValueObject::currentValue() const { return dv->currentValue; }
void COdictValueObject::setCurrentValue(const QVariant &value) { dv->currentValue = value; }
void COdictValueObject::setCurrentValue(const CVariant &value) { dv->currentValue = value.toVariant(); }
QVariant COdictValueObject::setpointValue() const { return dv->setpointValue; }
void COdictValueObject::setSetpointValue(const QVariant &value) { dv->setpointValue = value; }
void COdictValueObject::setSetpointValue(const CVariant &value) { dv->setpointValue = value.toVariant(); }
CVariant COdictValueObject::currentCValue() const { return cValueOf(*this, dv->currentValue); }
CVariant COdictValueObject::setpointCValue() const { return cValueOf(*this, dv->setpointValue); }
QString COdictValueObject::currentValueAsStr(bool withUnit) const { return valueToStr(currentCValue(), withUnit); }
QString COdictValueObject::setpointValueAsStr(bool withUnit) const { return valueToStr(setpointCValue(), withUnit); }

void COdictValueObject::setCurrentValueByteSize(long long size)
{
    if (size >= 0 && size <= kMaxValueBytes)
        dv->currentValue = resized(*this, dv->currentValue, size);
}

void COdictValueObject::setSetpointValueByteSize(long long size)
{
    if (size >= 0 && size <= kMaxValueBytes)
        dv->setpointValue = resized(*this, dv->setpointValue, size);
}

bool COdictValueObject::isValueInHexEnabled() const { return dv->valueInHex; }
void COdictValueObject::setValueInHexEnabled(bool enabled) { dv->valueInHex = enabled; }

QVariant COdictValueObject::currentValueForSubObject(unsigned int subId, NTypes::eTypes_t type, bool *ok) const
{
    return OdictSubValue::element(*this, dv->currentValue, subId, type, ok);
}

QVariant COdictValueObject::setpointValueForSubObject(unsigned int subId, NTypes::eTypes_t type, bool *ok) const
{
    return OdictSubValue::element(*this, dv->setpointValue, subId, type, ok);
}

bool COdictValueObject::setCurrentValueFromSubObject(unsigned int subId, NTypes::eTypes_t type, const CVariant &value)
{
    QVariant updated = dv.constData()->currentValue;
    if (!OdictSubValue::setElement(*this, updated, subId, type, value))
        return false;
    dv->currentValue = updated;
    return true;
}

bool COdictValueObject::setSetpointValueFromSubObject(unsigned int subId, NTypes::eTypes_t type, const CVariant &value)
{
    QVariant updated = dv.constData()->setpointValue;
    if (!OdictSubValue::setElement(*this, updated, subId, type, value))
        return false;
    dv->setpointValue = updated;
    return true;
}

bool COdictValueObject::setCurrentValueFromSubObject(const COdictValueObject &subObject)
{
    return setCurrentValueFromSubObject(subObject.subId(), subObject.dataType(), subObject.currentCValue());
}

bool COdictValueObject::setSetpointValueFromSubObject(const COdictValueObject &subObject)
{
    return setSetpointValueFromSubObject(subObject.subId(), subObject.dataType(), subObject.setpointCValue());
}

QVariant COdictValueObject::currentValueForVirtualSubObject(unsigned int subId, bool *ok) const
{
    return OdictSubValue::virtualElement(*this, dv->currentValue, subId, ok);
}

QVariant COdictValueObject::setpointValueForVirtualSubObject(unsigned int subId, bool *ok) const
{
    return OdictSubValue::virtualElement(*this, dv->setpointValue, subId, ok);
}

bool COdictValueObject::setCurrentValueFromVirtualSubObject(const COdictValueObject &virtualSub)
{
    if (virtualSub.id() != id())
        return false;
    QVariant updated = dv.constData()->currentValue;
    if (!OdictSubValue::setVirtualElement(*this, updated, virtualSub.subId(), virtualSub.currentCValue()))
        return false;
    dv->currentValue = updated;
    return true;
}

bool COdictValueObject::setSetpointValueFromVirtualSubObject(const COdictValueObject &virtualSub)
{
    if (virtualSub.id() != id())
        return false;
    QVariant updated = dv.constData()->setpointValue;
    if (!OdictSubValue::setVirtualElement(*this, updated, virtualSub.subId(), virtualSub.setpointCValue()))
        return false;
    dv->setpointValue = updated;
    return true;
}

COdictValueObject COdictValueObject::createVirtualSubObject(const COdictValueObject &owner, unsigned int subId, bool *ok)
{
    COdictValueObject sub(owner);
    const bool made = createVirtualSubObject(sub, subId);
    if (ok)
        *ok = made;
    return made ? sub : COdictValueObject();
}

bool COdictValueObject::createVirtualSubObject(COdictValueObject &target, unsigned int subId)
{
    // The values are cut out while target still is the owner.
    const QVariant current = target.currentValueForVirtualSubObject(subId);
    const QVariant setpoint = target.setpointValueForVirtualSubObject(subId);
    COdictObject &base = target;
    if (!COdictObject::createVirtualSubObject(base, subId))
        return false;
    COdictValueObjectPrivate &p = *target.dv;
    p.currentValue = current;
    p.setpointValue = setpoint;
    p.setReadWriteByteRange(0, -1);
    return true;
}

bool COdictValueObject::testBit(const QBitArray &bits, unsigned int pos)
{
    return pos < unsigned(bits.size()) && bits.testBit(int(pos));
}

QDataStream &operator<<(QDataStream &out, const COdictValueObject &object)
{
    const COdictValueObjectPrivate &p = *object.dv;
    out << static_cast<const COdictObject &>(object);
    out << qint32(p.error) << qint64(p.readWriteByteIndex()) << qint64(p.readWriteByteSize())
        << p.currentValue << p.setpointValue << p.valueInHex;
    return out;
}

QDataStream &operator>>(QDataStream &in, COdictValueObject &object)
{
    in >> static_cast<COdictObject &>(object);
    COdictValueObjectPrivate &p = *object.dv;
    qint64 index = 0;
    qint64 size = -1;
    in >> p.error >> index >> size;
    p.setReadWriteByteRange(index, size);
    CVariant::readPlainVariant(in, p.currentValue);
    CVariant::readPlainVariant(in, p.setpointValue);
    in >> p.valueInHex;
    return in;
}

QDebug operator<<(QDebug debug, const COdictValueObject &object)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "COdictValueObject( id=" << object.id() << ", subid=" << object.subId() << ", "
                              << object.name() << ", NTypes::" << CDataTypeParser::typeToEnum(object.dataType())
                              << ", current=" << debugText(object.currentValue())
                              << ", setpoint=" << debugText(object.setpointValue());
    if (object.error() != 0)
        debug << " error=" << object.error() << ')'; // deliberately no comma before, no blank after
    else
        debug << " )";
    return debug;
}

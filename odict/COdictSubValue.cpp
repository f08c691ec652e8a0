#include "COdictSubValue_p.h"

#include "COdictObject.h"

#include "CDataTypeParser.h"

namespace OdictSubValue {

namespace {

// Zero bytes are made up for a missing value only up to this size.
constexpr unsigned int kMaxZeroFill = 0xFFFFFF;

bool isNullValue(const QVariant &value)
{
    return !value.isValid() || value.isNull();
}

/// Whether values of \a object are kept in the storage of their data type rather than as bytes.
bool storesScalar(const COdictObject &object)
{
    const NTypes::eTypes_t type = object.dataType();
    if (object.arrayLength() >= 2)
        return false;
    return type == NTypes::E_BOOL || CVariant::isSignedType(type) || CVariant::isUnsignedType(type)
        || CVariant::isFloatType(type) || CVariant::isTextType(type);
}

/// Turns \a bytes back into a value of the form \a original had (bytes stay bytes).
QVariant fromBytes(const COdictObject &object, const QVariant &original, const QByteArray &bytes)
{
    if (original.userType() == QMetaType::QByteArray || !storesScalar(object))
        return QVariant(bytes);
    return CVariant(bytes, object.dataType(), 1).toVariant();
}

/// The bytes to write into: the value's, or zero bytes of the object's size for a null value.
bool startBytes(const COdictObject &object, const QVariant &value, QByteArray &bytes)
{
    if (!isNullValue(value)) {
        bytes = bytesOf(object, value);
        return true;
    }
    unsigned int size = object.dataSize();
    if (size == 0)
        size = object.dataTypeSize();
    if (size == 0 || size > kMaxZeroFill)
        return false;
    bytes = QByteArray(int(size), '\0');
    return true;
}

bool bitOf(const QByteArray &bytes, unsigned int pos)
{
    return (static_cast<unsigned char>(bytes.at(int(pos / 8))) >> (pos % 8)) & 1u;
}

} // namespace

QByteArray bytesOf(const COdictObject &object, const QVariant &value)
{
    if (isNullValue(value))
        return QByteArray();
    if (value.userType() == QMetaType::QByteArray)
        return value.toByteArray();
    return CVariant::fromVariant(value, object.dataType()).toByteArray();
}

bool hasSubId(const COdictObject &object, unsigned int subId)
{
    return object.subIdList().contains(subId) || object.possibleVirtualSubIds().contains(subId);
}

QVariant element(const COdictObject &object, const QVariant &value, unsigned int subId,
                 NTypes::eTypes_t type, bool *ok)
{
    if (ok)
        *ok = false;

    if (object.hasBitSet()) {
        if (!object.bitSetDataPtr()->contains(subId))
            return QVariant();
        const QByteArray bytes = bytesOf(object, value);
        if (subId / 8 >= unsigned(bytes.size()))
            return QVariant();
        if (ok)
            *ok = true;
        return QVariant(bitOf(bytes, subId));
    }

    if (!hasSubId(object, subId))
        return QVariant();
    const quint64 size = CDataTypeParser::typeSize(type);
    const QByteArray bytes = bytesOf(object, value);
    const quint64 offset = quint64(subId) * size;
    if (size == 0 || offset + size > quint64(bytes.size()))
        return QVariant();
    if (ok)
        *ok = true;
    return CVariant(bytes.mid(int(offset), int(size)), type, 1).toVariant();
}

bool setElement(const COdictObject &object, QVariant &value, unsigned int subId,
                NTypes::eTypes_t type, const CVariant &element)
{
    if (element.isNull())
        return false;

    if (object.hasBitSet()) {
        if (!object.bitSetDataPtr()->contains(subId))
            return false;
        bool valid = false;
        const bool on = element.toBool(&valid);
        QByteArray bytes;
        if (!valid || !startBytes(object, value, bytes) || subId / 8 >= unsigned(bytes.size()))
            return false;
        const int index = int(subId / 8);
        const unsigned char mask = static_cast<unsigned char>(1u << (subId % 8));
        unsigned char byte = static_cast<unsigned char>(bytes.at(index));
        byte = on ? (byte | mask) : (byte & ~mask);
        bytes[index] = char(byte);
        value = fromBytes(object, value, bytes);
        return true;
    }

    if (!hasSubId(object, subId))
        return false;
    const quint64 size = CDataTypeParser::typeSize(type);
    if (size == 0)
        return false;
    const CVariant converted = element.type() == type && !element.isArray()
        ? element
        : CVariant::fromVariant(element.isArray() ? QVariant(element.toByteArray()) : element.toVariant(), type);
    QByteArray elementBytes = converted.toByteArray();
    // Texts may be shorter than their slot and are padded; nothing is cut off.
    if (elementBytes.isEmpty() || quint64(elementBytes.size()) > size)
        return false;
    elementBytes.append(QByteArray(int(size) - elementBytes.size(), '\0'));

    QByteArray bytes;
    if (!startBytes(object, value, bytes))
        return false;
    const quint64 offset = quint64(subId) * size;
    if (offset + size > quint64(bytes.size()))
        return false;
    bytes.replace(int(offset), int(size), elementBytes);
    value = fromBytes(object, value, bytes);
    return true;
}

NTypes::eTypes_t virtualElementType(const COdictObject &object)
{
    if (object.hasBitSet())
        return NTypes::E_BOOL;
    if (object.dataType() == NTypes::E_XY)
        return NTypes::E_I32;
    return NTypes::E_UNKNOWN;
}

QVariant virtualElement(const COdictObject &object, const QVariant &value, unsigned int subId, bool *ok)
{
    const NTypes::eTypes_t type = virtualElementType(object);
    if (type == NTypes::E_UNKNOWN || !object.possibleVirtualSubIds().contains(subId)) {
        if (ok)
            *ok = false;
        return QVariant();
    }
    return element(object, value, subId, type, ok);
}

bool setVirtualElement(const COdictObject &object, QVariant &value, unsigned int subId, const CVariant &element)
{
    const NTypes::eTypes_t type = virtualElementType(object);
    if (type == NTypes::E_UNKNOWN || !object.possibleVirtualSubIds().contains(subId))
        return false;
    if (element.isNull())
        return true;
    return setElement(object, value, subId, type, element);
}

QVariant typedNull(NTypes::eTypes_t type)
{
    if (type == NTypes::E_BOOL)
        return QVariant(QVariant::Bool);
    if (CVariant::isSignedType(type))
        return QVariant(QVariant::LongLong);
    if (CVariant::isUnsignedType(type))
        return QVariant(QVariant::ULongLong);
    if (CVariant::isFloatType(type))
        return QVariant(QVariant::Double);
    if (CVariant::isTextType(type))
        return QVariant(QVariant::String);
    return QVariant(QVariant::ByteArray);
}

} // namespace OdictSubValue

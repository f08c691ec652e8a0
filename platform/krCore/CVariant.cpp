#include "CVariant.h"

#include "CDataTypeParser.h"

#include <QDataStream>
#include <QDebug>
#include <QStringList>

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

/// How a type keeps its value in the QVariant.
enum class Storage { None, Bool, Signed, Unsigned, Float, Text, Bytes };

Storage storageOf(NTypes::eTypes_t type)
{
    switch (type) {
    case NTypes::E_BOOL:
        return Storage::Bool;
    case NTypes::E_I8:
    case NTypes::E_I16:
    case NTypes::E_I32:
    case NTypes::E_I64:
        return Storage::Signed;
    case NTypes::E_U8:
    case NTypes::E_U16:
    case NTypes::E_U32:
    case NTypes::E_U64:
    case NTypes::E_TIME:
    case NTypes::E_TIME_OF_DAY:
    case NTypes::E_TIME_DIFF:
        return Storage::Unsigned;
    case NTypes::E_F32:
    case NTypes::E_F64:
        return Storage::Float;
    case NTypes::E_STRING:
    case NTypes::E_USTRING:
    case NTypes::E_VSTRING:
    case NTypes::E_UTF8STRING:
    case NTypes::E_CHARARRAY:
    case NTypes::E_WCHARARRAY:
        return Storage::Text;
    case NTypes::E_OCTETS:
    case NTypes::E_DOMAIN:
    case NTypes::E_RECORD:
    case NTypes::E_XY:
    case NTypes::E_RAW:
    case NTypes::E_DS402_RECORD:
    case NTypes::E_DS402_U16ARRAY:
    case NTypes::E_DS402_U32ARRAY:
    case NTypes::E_DS402_I32ARRAY:
    case NTypes::E_DS402_I16ARRAY:
    case NTypes::E_DS402_F32ARRAY:
    case NTypes::E_STRUCT:
        return Storage::Bytes;
    default:
        return Storage::None;
    }
}

/// Whether a text type is kept as UTF-16 in byte form.
bool isWideText(NTypes::eTypes_t type)
{
    return type == NTypes::E_USTRING || type == NTypes::E_WCHARARRAY;
}

/// Value range of a signed integer type.
void signedRange(NTypes::eTypes_t type, qint64 &min, qint64 &max)
{
    const int bits = CDataTypeParser::typeSize(type) * 8;
    if (bits >= 64) {
        min = std::numeric_limits<qint64>::min();
        max = std::numeric_limits<qint64>::max();
    } else {
        max = (qint64(1) << (bits - 1)) - 1;
        min = -max - 1;
    }
}

/// Largest value of an unsigned integer type (TIME_OF_DAY and TIME_DIFFERENCE are 48 bits).
quint64 unsignedMax(NTypes::eTypes_t type)
{
    const int bits = CDataTypeParser::typeSize(type) * 8;
    return bits >= 64 ? std::numeric_limits<quint64>::max() : (quint64(1) << bits) - 1;
}

/// Reads an optionally signed decimal or "0x" hexadecimal integer (blanks already trimmed).
/// The magnitude must fit 64 bits.
bool parseInteger(const QString &text, bool &negative, quint64 &magnitude)
{
    int pos = 0;
    const int len = text.size();
    negative = false;
    if (pos < len && (text[pos] == QLatin1Char('-') || text[pos] == QLatin1Char('+'))) {
        negative = text[pos] == QLatin1Char('-');
        ++pos;
    }
    int base = 10;
    if (pos + 1 < len && text[pos] == QLatin1Char('0') && (text[pos + 1] == QLatin1Char('x') || text[pos + 1] == QLatin1Char('X'))) {
        base = 16;
        pos += 2;
    }
    if (pos >= len)
        return false;
    quint64 value = 0;
    for (; pos < len; ++pos) {
        const ushort c = text[pos].unicode();
        unsigned digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else
            return false;
        if (value > (std::numeric_limits<quint64>::max() - digit) / base)
            return false; // overflow
        value = value * base + digit;
    }
    magnitude = value;
    return true;
}

bool parseSigned(const QString &text, qint64 min, qint64 max, qint64 &out)
{
    bool negative;
    quint64 magnitude;
    if (!parseInteger(text, negative, magnitude))
        return false;
    if (negative) {
        if (magnitude > quint64(std::numeric_limits<qint64>::max()) + 1)
            return false;
        // Two's complement negation of the magnitude; well defined also for 2^63.
        const qint64 value = magnitude == 0 ? 0 : qint64(~magnitude + 1);
        if (value < min)
            return false;
        out = value;
        return true;
    }
    if (magnitude > quint64(max))
        return false;
    out = qint64(magnitude);
    return true;
}

bool parseUnsigned(const QString &text, quint64 max, quint64 &out)
{
    bool negative;
    quint64 magnitude;
    if (!parseInteger(text, negative, magnitude))
        return false;
    if ((negative && magnitude != 0) || magnitude > max)
        return false;
    out = magnitude;
    return true;
}

/// Reads a C-locale floating point text ("1.5", "-2e-3", "inf", "nan"). Values that do not fit
/// the target (overflow, or a non-zero value that underflows to zero) are refused.
template<typename T>
bool parseFloat(const QString &text, T &out)
{
    QByteArray latin = text.toLatin1();
    const char *begin = latin.constData();
    const char *end = begin + latin.size();
    // from_chars does not take a leading '+'; a sign after it is still refused.
    if (begin != end && *begin == '+' && (end - begin) > 1 && begin[1] != '-' && begin[1] != '+')
        ++begin;
    T value{};
    const auto result = std::from_chars(begin, end, value, std::chars_format::general);
    if (result.ec != std::errc() || result.ptr != end)
        return false;
    out = value;
    return true;
}

template<typename T>
QString floatText(T value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return QString::fromLatin1(buffer, int(result.ptr - buffer));
}

bool parseBool(const QString &text, bool &out)
{
    if (text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) {
        out = true;
        return true;
    }
    if (text == QLatin1String("0") || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0) {
        out = false;
        return true;
    }
    return false;
}

/// Hexadecimal digits in pairs, an optional "0x" prefix, blanks anywhere ignored.
bool parseHex(const QString &text, QByteArray &out)
{
    QByteArray digits;
    digits.reserve(text.size());
    for (const QChar c : text) {
        if (!c.isSpace())
            digits.append(char(c.unicode() < 0x80 ? c.unicode() : '?'));
    }
    if (digits.startsWith("0x") || digits.startsWith("0X"))
        digits.remove(0, 2);
    if (digits.isEmpty() || digits.size() % 2 != 0)
        return false;
    for (const char c : qAsConst(digits)) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
    }
    out = QByteArray::fromHex(digits);
    return true;
}

QByteArray toLittleEndian(quint64 value, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = char((value >> (8 * i)) & 0xFF);
    return bytes;
}

quint64 fromLittleEndian(const char *data, int size)
{
    quint64 value = 0;
    for (int i = 0; i < size; ++i)
        value |= quint64(static_cast<unsigned char>(data[i])) << (8 * i);
    return value;
}

/// Sign-extends the low \a bits of \a value.
qint64 signExtend(quint64 value, int bits)
{
    if (bits >= 64)
        return qint64(value);
    const quint64 sign = quint64(1) << (bits - 1);
    value &= (sign << 1) - 1;
    return qint64(value ^ sign) - qint64(sign);
}

/// Whether a double lies inside the range of quint64 / qint64 (exclusive upper bound 2^64 / 2^63).
constexpr double kTwo63 = 9223372036854775808.0;
constexpr double kTwo64 = 18446744073709551616.0;

} // namespace

CVariant::CVariant() = default;

CVariant::CVariant(NTypes::eTypes_t type) : m_type(type) {}

CVariant::CVariant(const QString &text, NTypes::eTypes_t type) : m_type(type)
{
    const Storage storage = storageOf(type);
    if (storage == Storage::Text) {
        // Texts are kept exactly as given, blanks included.
        if (!text.isEmpty())
            m_value = text;
        return;
    }

    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return;

    switch (storage) {
    case Storage::Bool: {
        bool value;
        if (parseBool(trimmed, value))
            m_value = value;
        break;
    }
    case Storage::Signed: {
        qint64 min, max, value;
        signedRange(type, min, max);
        if (parseSigned(trimmed, min, max, value))
            m_value = qlonglong(value);
        break;
    }
    case Storage::Unsigned: {
        quint64 value;
        if (parseUnsigned(trimmed, unsignedMax(type), value))
            m_value = qulonglong(value);
        break;
    }
    case Storage::Float:
        if (type == NTypes::E_F32) {
            float value;
            if (parseFloat(trimmed, value))
                m_value = double(value);
        } else {
            double value;
            if (parseFloat(trimmed, value))
                m_value = value;
        }
        break;
    case Storage::Bytes:
        if (type == NTypes::E_XY) {
            const QStringList parts = trimmed.split(QLatin1Char(';'));
            qint64 x = 0, y = 0;
            if (parts.size() == 2 && parseSigned(parts[0].trimmed(), std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), x)
                && parseSigned(parts[1].trimmed(), std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), y)) {
                m_value = toLittleEndian(quint64(x), 4) + toLittleEndian(quint64(y), 4);
            }
        } else {
            QByteArray bytes;
            if (parseHex(trimmed, bytes))
                m_value = bytes;
        }
        break;
    case Storage::Text:
    case Storage::None:
        break;
    }
}

CVariant::CVariant(const QByteArray &bytes, NTypes::eTypes_t type, int count) : m_type(type)
{
    const int size = CDataTypeParser::typeSize(type);
    if (size == 0 || count < 1 || bytes.isEmpty())
        return;

    if (count > 1) {
        // An array: exactly count elements, missing trailing bytes are zero.
        const int total = count * size;
        if (total / size != count)
            return; // count too large
        QByteArray data = bytes.left(total);
        if (data.size() < total)
            data.append(QByteArray(total - data.size(), '\0'));
        m_count = count;
        m_value = data;
        return;
    }

    switch (storageOf(type)) {
    case Storage::Bool:
        m_value = bytes.at(0) != 0;
        break;
    case Storage::Signed:
        if (bytes.size() >= size)
            m_value = qlonglong(signExtend(fromLittleEndian(bytes.constData(), size), size * 8));
        break;
    case Storage::Unsigned:
        if (bytes.size() >= size)
            m_value = qulonglong(fromLittleEndian(bytes.constData(), size));
        break;
    case Storage::Float:
        if (bytes.size() >= size) {
            if (type == NTypes::E_F32) {
                const quint32 bits = quint32(fromLittleEndian(bytes.constData(), 4));
                float value;
                std::memcpy(&value, &bits, sizeof(value));
                m_value = double(value);
            } else {
                const quint64 bits = fromLittleEndian(bytes.constData(), 8);
                double value;
                std::memcpy(&value, &bits, sizeof(value));
                m_value = value;
            }
        }
        break;
    case Storage::Text: {
        // Firmware texts are often padded with NULs: the text ends at the first one.
        QString text;
        if (isWideText(type)) {
            const int units = bytes.size() / 2;
            text.reserve(units);
            for (int i = 0; i < units; ++i) {
                const ushort unit = ushort(fromLittleEndian(bytes.constData() + 2 * i, 2));
                if (unit == 0)
                    break;
                text.append(QChar(unit));
            }
        } else {
            const int nul = bytes.indexOf('\0');
            text = QString::fromUtf8(nul < 0 ? bytes : bytes.left(nul));
        }
        if (!text.isEmpty())
            m_value = text;
        break;
    }
    case Storage::Bytes:
        if (type == NTypes::E_XY) {
            if (bytes.size() >= size)
                m_value = bytes.left(size);
        } else {
            m_value = bytes;
        }
        break;
    case Storage::None:
        break;
    }
}

CVariant CVariant::fromVariant(const QVariant &value, NTypes::eTypes_t type)
{
    if (!value.isValid() || value.isNull())
        return CVariant(type);

    const int userType = value.userType();
    if (userType == qMetaTypeId<CVariant>()) {
        const CVariant inner = value.value<CVariant>();
        if (inner.type() == type)
            return inner;
        if (inner.isArray())
            return fromVariant(inner.toByteArray(), type);
        return fromVariant(inner.toVariant(), type);
    }

    switch (userType) {
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        const Storage storage = storageOf(type);
        const int size = CDataTypeParser::typeSize(type);
        // Byte and text types have no fixed length: their bytes are one value.
        if (storage == Storage::Bytes && type != NTypes::E_XY)
            return CVariant(bytes, type, 1);
        if (storage == Storage::Text || size == 0)
            return CVariant(bytes, type, 1);
        if (bytes.size() == size)
            return CVariant(bytes, type, 1);
        if (bytes.size() > size && bytes.size() % size == 0)
            return CVariant(bytes, type, bytes.size() / size);
        return CVariant(type);
    }
    case QMetaType::Bool:
        return fromI64(value.toBool() ? 1 : 0, type);
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
        return fromI64(value.toLongLong(), type);
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return fromU64(value.toULongLong(), type);
    case QMetaType::Double:
    case QMetaType::Float:
        return fromF64(value.toDouble(), type);
    case QMetaType::QString:
        return CVariant(value.toString(), type);
    default:
        if (value.canConvert<QString>())
            return CVariant(value.toString(), type);
        return CVariant(type);
    }
}

CVariant CVariant::fromI64(qint64 value, NTypes::eTypes_t type)
{
    if (value < 0) {
        CVariant result(type);
        switch (storageOf(type)) {
        case Storage::Signed: {
            qint64 min, max;
            signedRange(type, min, max);
            if (value >= min)
                result.m_value = qlonglong(value);
            return result;
        }
        case Storage::Float:
            return fromF64(double(value), type);
        case Storage::Text:
            return CVariant(QString::number(value), type);
        default:
            return result; // out of range or not a number type
        }
    }
    return fromU64(quint64(value), type);
}

CVariant CVariant::fromU64(quint64 value, NTypes::eTypes_t type)
{
    CVariant result(type);
    switch (storageOf(type)) {
    case Storage::Bool:
        if (value <= 1)
            result.m_value = value == 1;
        break;
    case Storage::Signed: {
        qint64 min, max;
        signedRange(type, min, max);
        if (value <= quint64(max))
            result.m_value = qlonglong(value);
        break;
    }
    case Storage::Unsigned:
        if (value <= unsignedMax(type))
            result.m_value = qulonglong(value);
        break;
    case Storage::Float:
        return fromF64(double(value), type);
    case Storage::Text:
        return CVariant(QString::number(value), type);
    case Storage::Bytes:
    case Storage::None:
        break;
    }
    return result;
}

CVariant CVariant::fromF64(double value, NTypes::eTypes_t type)
{
    CVariant result(type);
    const Storage storage = storageOf(type);
    if (storage == Storage::Float) {
        if (type == NTypes::E_F32) {
            // Doubles at or beyond FLT_MAX plus half a float step would round to infinity.
            static const double limit = std::ldexp(1.0, 128) - std::ldexp(1.0, 103);
            if (std::isfinite(value) && std::fabs(value) >= limit)
                return result;
            result.m_value = double(float(value));
        } else {
            result.m_value = value;
        }
        return result;
    }
    if (storage == Storage::Text)
        return CVariant(floatText(value), type);
    if (storage == Storage::Bool || storage == Storage::Signed || storage == Storage::Unsigned) {
        // Integer types take whole numbers only.
        if (!std::isfinite(value) || std::trunc(value) != value)
            return result;
        if (value < 0) {
            if (value < -kTwo63)
                return result;
            return fromI64(qint64(value), type);
        }
        if (value >= kTwo64)
            return result;
        return fromU64(quint64(value), type);
    }
    return result;
}

bool CVariant::isNull() const
{
    return !m_value.isValid();
}

QString CVariant::toStr() const
{
    if (isNull())
        return QString();
    if (isArray())
        return QString::fromLatin1(m_value.toByteArray().toHex());

    switch (storageOf(m_type)) {
    case Storage::Bool:
        return m_value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case Storage::Signed:
        return QString::number(m_value.toLongLong());
    case Storage::Unsigned:
        return QString::number(m_value.toULongLong());
    case Storage::Float:
        if (m_type == NTypes::E_F32)
            return floatText(float(m_value.toDouble()));
        return floatText(m_value.toDouble());
    case Storage::Text:
        return m_value.toString();
    case Storage::Bytes: {
        const QByteArray bytes = m_value.toByteArray();
        if (m_type == NTypes::E_XY && bytes.size() >= 8) {
            const qint64 x = signExtend(fromLittleEndian(bytes.constData(), 4), 32);
            const qint64 y = signExtend(fromLittleEndian(bytes.constData() + 4, 4), 32);
            return QString::number(x) + QLatin1Char(';') + QString::number(y);
        }
        return QString::fromLatin1(bytes.toHex());
    }
    case Storage::None:
        break;
    }
    return QString();
}

qint64 CVariant::toI64(bool *ok) const
{
    bool good = false;
    qint64 result = 0;
    if (!isNull() && !isArray()) {
        switch (storageOf(m_type)) {
        case Storage::Bool:
            result = m_value.toBool() ? 1 : 0;
            good = true;
            break;
        case Storage::Signed:
            result = m_value.toLongLong();
            good = true;
            break;
        case Storage::Unsigned: {
            const quint64 value = m_value.toULongLong();
            good = value <= quint64(std::numeric_limits<qint64>::max());
            result = good ? qint64(value) : 0;
            break;
        }
        case Storage::Float: {
            const double value = std::round(m_value.toDouble());
            good = std::isfinite(value) && value >= -kTwo63 && value < kTwo63;
            result = good ? qint64(value) : 0;
            break;
        }
        case Storage::Text:
            good = parseSigned(m_value.toString().trimmed(), std::numeric_limits<qint64>::min(),
                               std::numeric_limits<qint64>::max(), result);
            if (!good)
                result = 0;
            break;
        case Storage::Bytes:
        case Storage::None:
            break;
        }
    }
    if (ok)
        *ok = good;
    return result;
}

quint64 CVariant::toU64(bool *ok) const
{
    bool good = false;
    quint64 result = 0;
    if (!isNull() && !isArray()) {
        switch (storageOf(m_type)) {
        case Storage::Bool:
            result = m_value.toBool() ? 1 : 0;
            good = true;
            break;
        case Storage::Signed: {
            const qint64 value = m_value.toLongLong();
            good = value >= 0;
            result = good ? quint64(value) : 0;
            break;
        }
        case Storage::Unsigned:
            result = m_value.toULongLong();
            good = true;
            break;
        case Storage::Float: {
            const double value = std::round(m_value.toDouble());
            good = std::isfinite(value) && value >= 0 && value < kTwo64;
            result = good ? quint64(value) : 0;
            break;
        }
        case Storage::Text:
            good = parseUnsigned(m_value.toString().trimmed(), std::numeric_limits<quint64>::max(), result);
            if (!good)
                result = 0;
            break;
        case Storage::Bytes:
        case Storage::None:
            break;
        }
    }
    if (ok)
        *ok = good;
    return result;
}

double CVariant::toF64(bool *ok) const
{
    bool good = false;
    double result = 0.0;
    if (!isNull() && !isArray()) {
        switch (storageOf(m_type)) {
        case Storage::Bool:
            result = m_value.toBool() ? 1.0 : 0.0;
            good = true;
            break;
        case Storage::Signed:
            result = double(m_value.toLongLong());
            good = true;
            break;
        case Storage::Unsigned:
            result = double(m_value.toULongLong());
            good = true;
            break;
        case Storage::Float:
            result = m_value.toDouble();
            good = true;
            break;
        case Storage::Text: {
            const QString text = m_value.toString().trimmed();
            qint64 integer;
            if (parseSigned(text, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), integer)) {
                result = double(integer);
                good = true;
            } else if (parseFloat(text, result)) {
                good = true;
            } else {
                result = 0.0;
            }
            break;
        }
        case Storage::Bytes:
        case Storage::None:
            break;
        }
    }
    if (ok)
        *ok = good;
    return result;
}

bool CVariant::toBool(bool *ok) const
{
    bool good = false;
    bool result = false;
    if (!isNull() && !isArray()) {
        switch (storageOf(m_type)) {
        case Storage::Bool:
            result = m_value.toBool();
            good = true;
            break;
        case Storage::Signed:
            result = m_value.toLongLong() != 0;
            good = true;
            break;
        case Storage::Unsigned:
            result = m_value.toULongLong() != 0;
            good = true;
            break;
        case Storage::Float:
            result = m_value.toDouble() != 0.0;
            good = true;
            break;
        case Storage::Text:
            good = parseBool(m_value.toString().trimmed(), result);
            break;
        case Storage::Bytes:
        case Storage::None:
            break;
        }
    }
    if (ok)
        *ok = good;
    return result;
}

QByteArray CVariant::toByteArray() const
{
    if (isNull())
        return QByteArray();
    if (isArray())
        return m_value.toByteArray();

    const int size = CDataTypeParser::typeSize(m_type);
    switch (storageOf(m_type)) {
    case Storage::Bool:
        return QByteArray(1, m_value.toBool() ? '\1' : '\0');
    case Storage::Signed:
        return toLittleEndian(quint64(m_value.toLongLong()), size);
    case Storage::Unsigned:
        return toLittleEndian(m_value.toULongLong(), size);
    case Storage::Float:
        if (m_type == NTypes::E_F32) {
            const float value = float(m_value.toDouble());
            quint32 bits;
            std::memcpy(&bits, &value, sizeof(bits));
            return toLittleEndian(bits, 4);
        } else {
            const double value = m_value.toDouble();
            quint64 bits;
            std::memcpy(&bits, &value, sizeof(bits));
            return toLittleEndian(bits, 8);
        }
    case Storage::Text: {
        const QString text = m_value.toString();
        if (!isWideText(m_type))
            return text.toUtf8();
        QByteArray bytes;
        bytes.reserve(text.size() * 2);
        for (const QChar c : text)
            bytes.append(toLittleEndian(c.unicode(), 2));
        return bytes;
    }
    case Storage::Bytes:
        return m_value.toByteArray();
    case Storage::None:
        break;
    }
    return QByteArray();
}

bool CVariant::operator==(const CVariant &other) const
{
    if (m_type != other.m_type || m_count != other.m_count || isNull() != other.isNull())
        return false;
    if (isNull())
        return true;
    if (isArray())
        return m_value.toByteArray() == other.m_value.toByteArray();

    switch (storageOf(m_type)) {
    case Storage::Bool:
        return m_value.toBool() == other.m_value.toBool();
    case Storage::Signed:
        return m_value.toLongLong() == other.m_value.toLongLong();
    case Storage::Unsigned:
        return m_value.toULongLong() == other.m_value.toULongLong();
    case Storage::Float: {
        // Exact comparison; two NaNs count as the same value so that text round trips hold.
        const double a = m_value.toDouble();
        const double b = other.m_value.toDouble();
        return a == b || (std::isnan(a) && std::isnan(b));
    }
    case Storage::Text:
        return m_value.toString() == other.m_value.toString();
    case Storage::Bytes:
        return m_value.toByteArray() == other.m_value.toByteArray();
    case Storage::None:
        break;
    }
    return m_value == other.m_value;
}

bool CVariant::isByteType(NTypes::eTypes_t type)
{
    return storageOf(type) == Storage::Bytes && type != NTypes::E_XY;
}

bool CVariant::isTextType(NTypes::eTypes_t type)
{
    return storageOf(type) == Storage::Text;
}

bool CVariant::isSignedType(NTypes::eTypes_t type)
{
    return storageOf(type) == Storage::Signed;
}

bool CVariant::isUnsignedType(NTypes::eTypes_t type)
{
    return storageOf(type) == Storage::Unsigned;
}

bool CVariant::isFloatType(NTypes::eTypes_t type)
{
    return storageOf(type) == Storage::Float;
}

QDataStream &operator<<(QDataStream &out, const CVariant &value)
{
    out << quint32(value.m_type) << qint32(value.m_count) << value.m_value;
    return out;
}

namespace {

/// The QVariant type id that a value of this type and count is stored as.
int storedMetaType(NTypes::eTypes_t type, int count)
{
    if (count > 1)
        return QMetaType::QByteArray;
    switch (storageOf(type)) {
    case Storage::Bool:
        return QMetaType::Bool;
    case Storage::Signed:
        return QMetaType::LongLong;
    case Storage::Unsigned:
        return QMetaType::ULongLong;
    case Storage::Float:
        return QMetaType::Double;
    case Storage::Text:
        return QMetaType::QString;
    case Storage::Bytes:
        return QMetaType::QByteArray;
    case Storage::None:
        break;
    }
    return QMetaType::UnknownType;
}

} // namespace

void CVariant::readPlainVariant(QDataStream &in, QVariant &value)
{
    value = QVariant();
    // Qt's readers go on reading after a failure, so a failed stream gets no further look.
    if (in.status() != QDataStream::Ok)
        return;
    // A stored QVariant starts with its type id; look at it before Qt's reader acts on it.
    const QByteArray head = in.device() ? in.device()->peek(4) : QByteArray();
    if (head.size() < 4) {
        in.setStatus(QDataStream::ReadPastEnd);
        return;
    }
    const auto b = [&head](int i) { return quint32(quint8(head.at(i))); };
    const quint32 id = in.byteOrder() == QDataStream::BigEndian ? b(0) << 24 | b(1) << 16 | b(2) << 8 | b(3)
                                                                : b(3) << 24 | b(2) << 16 | b(1) << 8 | b(0);
    switch (id) {
    case QMetaType::UnknownType: case QMetaType::Bool: case QMetaType::Int: case QMetaType::UInt:
    case QMetaType::LongLong: case QMetaType::ULongLong: case QMetaType::Double: case QMetaType::Float:
    case QMetaType::QChar: case QMetaType::QString: case QMetaType::QByteArray: case QMetaType::Long:
    case QMetaType::Short: case QMetaType::Char: case QMetaType::ULong: case QMetaType::UShort:
    case QMetaType::UChar: case QMetaType::SChar:
        break;
    default:
        in.setStatus(QDataStream::ReadCorruptData);
        return;
    }
    in >> value;
}

QDataStream &operator>>(QDataStream &in, CVariant &value)
{
    quint32 type = 0;
    qint32 count = 0;
    QVariant stored;
    in >> type >> count;
    CVariant::readPlainVariant(in, stored);
    value = CVariant();
    if (in.status() != QDataStream::Ok)
        return in;

    const auto t = NTypes::eTypes_t(type);
    const bool sane = type < NTypes::E_TYPE_COUNT && count >= 1;
    if (sane && !stored.isValid()) {
        value = CVariant(t);
        return in;
    }
    CVariant candidate;
    if (sane && stored.userType() == storedMetaType(t, count)) {
        if (count > 1) {
            const QByteArray bytes = stored.toByteArray();
            // In 64 bits: a hostile count must not overflow the expected size.
            if (qint64(bytes.size()) == qint64(count) * CDataTypeParser::typeSize(t))
                candidate = CVariant(bytes, t, count);
        } else {
            // Goes through the checks of fromVariant: ranges, XY length, empty texts.
            candidate = CVariant::fromVariant(stored, t);
        }
    }
    if (candidate.isNull()) {
        in.setStatus(QDataStream::ReadCorruptData);
        return in;
    }
    value = candidate;
    return in;
}

QDebug operator<<(QDebug debug, const CVariant &value)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "CVariant(" << CDataTypeParser::typeToStr(value.type()) << ", ";
    if (value.isNull())
        debug << "null";
    else
        debug << value.toStr();
    if (value.isArray())
        debug << ", count " << value.count();
    debug << ')';
    return debug;
}

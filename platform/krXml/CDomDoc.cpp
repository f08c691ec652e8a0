#include "CDomDoc.h"

#include <QLocale>

#include <limits>

namespace {

/// Reads the magnitude of a number: "0x"/"0X" followed by hexadecimal digits, or decimal digits.
/// False on an empty text, a foreign character or a value beyond 64 bits.
bool parseMagnitude(const QStringRef &text, quint64 *value)
{
    int base = 10;
    QStringRef digits = text;
    if (digits.size() > 2 && digits.at(0) == QLatin1Char('0')
        && (digits.at(1) == QLatin1Char('x') || digits.at(1) == QLatin1Char('X'))) {
        base = 16;
        digits = digits.mid(2);
    }
    if (digits.isEmpty())
        return false;

    quint64 result = 0;
    for (const QChar c : digits) {
        int digit;
        const ushort u = c.unicode();
        if (u >= '0' && u <= '9')
            digit = u - '0';
        else if (base == 16 && u >= 'a' && u <= 'f')
            digit = u - 'a' + 10;
        else if (base == 16 && u >= 'A' && u <= 'F')
            digit = u - 'A' + 10;
        else
            return false;
        if (result > (std::numeric_limits<quint64>::max() - quint64(digit)) / quint64(base))
            return false;
        result = result * quint64(base) + quint64(digit);
    }
    *value = result;
    return true;
}

/// An unsigned number no larger than \a max; a sign is not accepted.
quint64 toUnsigned(const QString &text, quint64 max, bool *ok)
{
    quint64 value = 0;
    const QString trimmed = text.trimmed();
    const bool good = parseMagnitude(QStringRef(&trimmed), &value) && value <= max;
    if (ok)
        *ok = good;
    return good ? value : 0;
}

/// A signed number in [min, max]; a leading '-' is accepted on decimal and hexadecimal text.
qint64 toSigned(const QString &text, qint64 min, qint64 max, bool *ok)
{
    const QString trimmed = text.trimmed();
    QStringRef digits(&trimmed);
    const bool negative = digits.startsWith(QLatin1Char('-'));
    if (negative)
        digits = digits.mid(1);

    quint64 magnitude = 0;
    bool good = parseMagnitude(digits, &magnitude);
    qint64 value = 0;
    if (good) {
        if (negative) {
            // -min does not fit into qint64 for the 64-bit minimum, so compare unsigned.
            good = magnitude <= quint64(-(min + 1)) + 1;
            if (good)
                value = magnitude == 0 ? 0 : -qint64(magnitude - 1) - 1;
        } else {
            good = magnitude <= quint64(max);
            if (good)
                value = qint64(magnitude);
        }
    }
    if (ok)
        *ok = good;
    return good ? value : 0;
}

template<typename T, typename Convert>
T elementValue(const QString &tag, const QDomElement &parent, T def, QString *errorText,
               const char *typeName, Convert convert)
{
    const QDomElement element = CDomDoc::firstSubElement(parent, tag);
    if (element.isNull())
        return def;
    bool ok = false;
    const QString text = element.text();
    const T value = convert(text, &ok);
    if (ok)
        return value;
    if (errorText)
        *errorText = CDomDoc::conversionError(text, tag, element.lineNumber(), QLatin1String(typeName));
    return def;
}

template<typename T, typename Convert>
T attributeValue(const QDomElement &element, const QString &name, T def, QString *errorText,
                 const char *typeName, Convert convert)
{
    if (element.isNull() || !element.hasAttribute(name))
        return def;
    bool ok = false;
    const QString text = element.attribute(name);
    const T value = convert(text, &ok);
    if (ok)
        return value;
    if (errorText) {
        // Attributes have no line of their own: the element's line and "tag@name" locate them.
        *errorText = CDomDoc::conversionError(text, element.tagName() + QLatin1Char('@') + name,
                                              element.lineNumber(), QLatin1String(typeName));
    }
    return def;
}

} // namespace

CDomDoc::CDomDoc() = default;

CDomDoc::CDomDoc(const QDomDocument &document)
    : m_doc(document)
{
}

quint32 CDomDoc::toU32(const QString &text, bool *ok)
{
    return quint32(toUnsigned(text, std::numeric_limits<quint32>::max(), ok));
}

qint32 CDomDoc::toI32(const QString &text, bool *ok)
{
    return qint32(toSigned(text, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), ok));
}

quint64 CDomDoc::toU64(const QString &text, bool *ok)
{
    return toUnsigned(text, std::numeric_limits<quint64>::max(), ok);
}

qint64 CDomDoc::toI64(const QString &text, bool *ok)
{
    return toSigned(text, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), ok);
}

double CDomDoc::toF64(const QString &text, bool *ok)
{
    const QString trimmed = text.trimmed();
    bool good = false;
    double value = 0.0;
    if (trimmed.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)
        || trimmed.startsWith(QLatin1String("-0x"), Qt::CaseInsensitive)) {
        value = double(toI64(trimmed, &good));
    } else if (!trimmed.isEmpty()) {
        value = QLocale::c().toDouble(trimmed, &good);
    }
    if (ok)
        *ok = good;
    return good ? value : 0.0;
}

bool CDomDoc::toBool(const QString &text, bool *ok)
{
    const QString trimmed = text.trimmed();
    bool good = true;
    bool value = false;
    if (trimmed == QLatin1String("1") || trimmed.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        value = true;
    else if (trimmed == QLatin1String("0") || trimmed.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        value = false;
    else
        good = false;
    if (ok)
        *ok = good;
    return value;
}

QString CDomDoc::conversionError(const QString &text, const QString &tag, int line, const QString &typeName)
{
    return QStringLiteral("Cannot convert '%1' of <%2> (line %3) to %4.")
        .arg(text, tag, QString::number(line), typeName);
}

QDomElement CDomDoc::firstSubElement(const QDomElement &parent, const QString &tag)
{
    return parent.firstChildElement(tag);
}

bool CDomDoc::hasSubElement(const QDomElement &parent, const QString &tag)
{
    return !parent.firstChildElement(tag).isNull();
}

QString CDomDoc::existingSubElementAsString(const QString &tag, const QDomElement &parent, const QString &def)
{
    const QDomElement element = firstSubElement(parent, tag);
    return element.isNull() ? def : element.text();
}

quint32 CDomDoc::existingSubElementAsU32(const QString &tag, const QDomElement &parent, quint32 def, QString *errorText)
{
    return elementValue(tag, parent, def, errorText, "U32", &CDomDoc::toU32);
}

qint32 CDomDoc::existingSubElementAsI32(const QString &tag, const QDomElement &parent, qint32 def, QString *errorText)
{
    return elementValue(tag, parent, def, errorText, "I32", &CDomDoc::toI32);
}

quint64 CDomDoc::existingSubElementAsU64(const QString &tag, const QDomElement &parent, quint64 def, QString *errorText)
{
    return elementValue(tag, parent, def, errorText, "U64", &CDomDoc::toU64);
}

qint64 CDomDoc::existingSubElementAsI64(const QString &tag, const QDomElement &parent, qint64 def, QString *errorText)
{
    return elementValue(tag, parent, def, errorText, "I64", &CDomDoc::toI64);
}

bool CDomDoc::existingSubElementAsBool(const QString &tag, const QDomElement &parent, bool def, QString *errorText)
{
    return elementValue(tag, parent, def, errorText, "BOOL", &CDomDoc::toBool);
}

QString CDomDoc::attributeAsString(const QDomElement &element, const QString &name, const QString &def)
{
    return element.hasAttribute(name) ? element.attribute(name) : def;
}

quint32 CDomDoc::attributeAsU32(const QDomElement &element, const QString &name, quint32 def, QString *errorText)
{
    return attributeValue(element, name, def, errorText, "U32", &CDomDoc::toU32);
}

qint32 CDomDoc::attributeAsI32(const QDomElement &element, const QString &name, qint32 def, QString *errorText)
{
    return attributeValue(element, name, def, errorText, "I32", &CDomDoc::toI32);
}

qint64 CDomDoc::attributeAsI64(const QDomElement &element, const QString &name, qint64 def, QString *errorText)
{
    return attributeValue(element, name, def, errorText, "I64", &CDomDoc::toI64);
}

QDomElement CDomDoc::addSubElement(QDomElement parent, const QString &tag, const QString &text)
{
    QDomElement element = m_doc.createElement(tag);
    if (!text.isEmpty())
        element.appendChild(m_doc.createTextNode(text));
    parent.appendChild(element);
    return element;
}

QDomElement CDomDoc::findOrCreateSubElement(QDomElement parent, const QString &tag)
{
    QDomElement element = parent.firstChildElement(tag);
    if (element.isNull())
        element = addSubElement(parent, tag);
    return element;
}

QDomElement CDomDoc::setSubElementText(QDomElement parent, const QString &tag, const QString &text)
{
    QDomElement element = findOrCreateSubElement(parent, tag);
    while (!element.firstChild().isNull())
        element.removeChild(element.firstChild());
    if (!text.isEmpty())
        element.appendChild(m_doc.createTextNode(text));
    return element;
}

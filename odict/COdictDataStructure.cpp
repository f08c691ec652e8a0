#include "COdictDataStructure.h"

#include "COdictEditorObject.h"

#include <cmath>
#include <limits>

namespace {

struct sSourceName_t {
    COdictDataStructure::eMemberSource_t source;
    const char *text;
};

const sSourceName_t sourceNames[] = {
    {COdictDataStructure::E_MS_LITERAL, "literal"},
    {COdictDataStructure::E_MS_ID, "id"},
    {COdictDataStructure::E_MS_SUBID, "subId"},
    {COdictDataStructure::E_MS_DATATYPE, "dataType"},
    {COdictDataStructure::E_MS_DATASIZE, "dataSize"},
    {COdictDataStructure::E_MS_ARRAYLENGTH, "arrayLength"},
    {COdictDataStructure::E_MS_ACCESSRIGHTS, "accessRights"},
    {COdictDataStructure::E_MS_OBJECTUSAGE, "objectUsage"},
    {COdictDataStructure::E_MS_USERLEVEL_READ, "userLevelRead"},
    {COdictDataStructure::E_MS_USERLEVEL_WRITE, "userLevelWrite"},
    {COdictDataStructure::E_MS_MIN, "min"},
    {COdictDataStructure::E_MS_MAX, "max"},
    {COdictDataStructure::E_MS_DEFAULT, "default"},
    {COdictDataStructure::E_MS_NAME, "name"},
    {COdictDataStructure::E_MS_FW_VARIABLE, "fwVariable"},
    {COdictDataStructure::E_MS_FW_FUNCTION, "fwFunction"},
};

QString hex(quint64 value, int digits)
{
    return QStringLiteral("0x%1U").arg(value, digits, 16, QLatin1Char('0')).toUpper().replace(QLatin1String("0X"), QLatin1String("0x"));
}

QString unsignedLiteral(quint64 value)
{
    return QString::number(value) + QLatin1Char('U');
}

// A limit or default as a C number: integers in decimal (with the suffix C needs for their
// range), floats with a decimal point; the member's literal when the value is missing or not a number.
QString numberLiteral(const CVariant &value, const QString &fallback)
{
    if (value.isNull() || value.isArray())
        return fallback;
    bool ok = false;
    if (CVariant::isFloatType(value.type())) {
        const double d = value.toF64(&ok);
        if (!ok || !std::isfinite(d))
            return fallback;
        QString text = QString::number(d, 'g', 17);
        if (!text.contains(QLatin1Char('.')) && !text.contains(QLatin1Char('e')))
            text += QLatin1String(".0");
        return value.type() == NTypes::E_F32 ? text + QLatin1Char('f') : text;
    }
    if (CVariant::isSignedType(value.type())) {
        const qint64 v = value.toI64(&ok);
        if (!ok)
            return fallback;
        // The lowest values are no literals in C (the literal is the positive number, negated):
        // write them as expressions.
        if (v == std::numeric_limits<qint64>::min())
            return QStringLiteral("(-9223372036854775807LL - 1)");
        if (v == -2147483647LL - 1)
            return QStringLiteral("(-2147483647 - 1)");
        if (v < -2147483647LL || v > 2147483647LL)
            return QString::number(v) + QLatin1String("LL");
        return QString::number(v);
    }
    const quint64 u = value.toU64(&ok);
    if (!ok)
        return fallback;
    return QString::number(u) + (u > 0xFFFFFFFFull ? QLatin1String("ULL") : QLatin1String("U"));
}

QString cString(const QString &text)
{
    QString escaped;
    escaped.reserve(text.size() + 2);
    escaped += QLatin1Char('"');
    for (const QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    escaped += QLatin1Char('"');
    return escaped;
}

} // namespace

COdictDataStructure::SDataStructure_t COdictDataStructure::data(int id) const
{
    for (const SDataStructure_t &entry : m_list) {
        if (entry.id == id)
            return entry;
    }
    return SDataStructure_t();
}

QString COdictDataStructure::findUiName(int id) const
{
    for (const SDataStructure_t &entry : m_list) {
        if (entry.id == id)
            return entry.uiName;
    }
    return QString();
}

QMap<int, QString> COdictDataStructure::idToUiNameMap() const
{
    QMap<int, QString> map;
    for (const SDataStructure_t &entry : m_list) {
        if (entry.id > 0)
            map.insert(entry.id, entry.uiName);
    }
    return map;
}

QString COdictDataStructure::sourceToStr(eMemberSource_t source)
{
    for (const sSourceName_t &s : sourceNames) {
        if (s.source == source)
            return QLatin1String(s.text);
    }
    return QStringLiteral("literal");
}

COdictDataStructure::eMemberSource_t COdictDataStructure::strToSource(const QString &text, bool *ok)
{
    for (const sSourceName_t &s : sourceNames) {
        if (text == QLatin1String(s.text)) {
            if (ok)
                *ok = true;
            return s.source;
        }
    }
    if (ok)
        *ok = false;
    return E_MS_LITERAL;
}

QString COdictDataStructure::initialValue(const SDataStructureMember_t &member, const COdictEditorObject &object)
{
    switch (member.source) {
    case E_MS_LITERAL:
        return member.literal;
    case E_MS_ID:
        return hex(object.id(), 8);
    case E_MS_SUBID:
        return object.isSubObject() ? hex(object.subId(), 2) : QStringLiteral("0xFFFFFFFFU");
    case E_MS_DATATYPE:
        return unsignedLiteral(object.dataType());
    case E_MS_DATASIZE:
        return unsignedLiteral(object.dataSize());
    case E_MS_ARRAYLENGTH:
        return unsignedLiteral(object.arrayLength());
    case E_MS_ACCESSRIGHTS:
        return hex(object.accessRights(), 8);
    case E_MS_OBJECTUSAGE:
        return hex(object.objectUsage(), 2);
    case E_MS_USERLEVEL_READ:
        return unsignedLiteral(object.userlevelRead());
    case E_MS_USERLEVEL_WRITE:
        return unsignedLiteral(object.userlevelWrite());
    case E_MS_MIN:
        return numberLiteral(object.minValue(), member.literal);
    case E_MS_MAX:
        return numberLiteral(object.maxValue(), member.literal);
    case E_MS_DEFAULT:
        return numberLiteral(object.defaultValue(false), member.literal);
    case E_MS_NAME:
        return cString(object.name());
    case E_MS_FW_VARIABLE:
        return object.fwVariablename().isEmpty() ? member.literal : QLatin1Char('&') + object.fwVariablename();
    case E_MS_FW_FUNCTION:
        return object.fwFunctionname().isEmpty() ? member.literal : object.fwFunctionname();
    }
    return member.literal;
}

#include "CDataTypeParser.h"

#include <QHash>

#include <cfloat>
#include <limits>

namespace {

struct TypeInfo {
    const char *text;
    const char *enumName;
    quint16 size;
};

// Indexed by type number; the texts and sizes are part of every file format.
const TypeInfo kTypes[NTypes::E_TYPE_COUNT] = {
    {"UNKNOWN", "E_UNKNOWN", 0},
    {"BOOL", "E_BOOL", 1},
    {"U8", "E_U8", 1},
    {"I8", "E_I8", 1},
    {"U16", "E_U16", 2},
    {"I16", "E_I16", 2},
    {"U32", "E_U32", 4},
    {"I32", "E_I32", 4},
    {"U64", "E_U64", 8},
    {"I64", "E_I64", 8},
    {"F32", "E_F32", 4},
    {"F64", "E_F64", 8},
    {"STRING", "E_STRING", 1},
    {"USTRING", "E_USTRING", 2},
    {"VISIBLE_STRING", "E_VSTRING", 1},
    {"OCTET_STRING", "E_OCTETS", 1},
    {"UTF8_STRING", "E_UTF8STRING", 1},
    {"CHAR_ARRAY", "E_CHARARRAY", 1},
    {"WCHAR_ARRAY", "E_WCHARARRAY", 2},
    {"DOMAIN", "E_DOMAIN", 1},
    {"TIME_OF_DAY", "E_TIME_OF_DAY", 6},
    {"TIME_DIFFERENCE", "E_TIME_DIFF", 6},
    {"RECORD", "E_RECORD", 1},
    {"TIME", "E_TIME", 4},
    {"XY", "E_XY", 8},
    {"RAW", "E_RAW", 1},
    {"DS402_RECORD", "E_DS402_RECORD", 1},
    {"DS402_U16_ARRAY", "E_DS402_U16ARRAY", 2},
    {"DS402_U32_ARRAY", "E_DS402_U32ARRAY", 4},
    {"DS402_I32_ARRAY", "E_DS402_I32ARRAY", 4},
    {"DS402_I16_ARRAY", "E_DS402_I16ARRAY", 2},
    {"DS402_F32_ARRAY", "E_DS402_F32ARRAY", 4},
    {"STRUCT", "E_STRUCT", 1},
};

bool known(NTypes::eTypes_t type)
{
    return quint32(type) < NTypes::E_TYPE_COUNT;
}

} // namespace

quint16 CDataTypeParser::typeSize(NTypes::eTypes_t type)
{
    return known(type) ? kTypes[type].size : 0;
}

QString CDataTypeParser::typeToStr(NTypes::eTypes_t type)
{
    return QString::fromLatin1(kTypes[known(type) ? type : NTypes::E_UNKNOWN].text);
}

NTypes::eTypes_t CDataTypeParser::strToType(const QString &text)
{
    static const QHash<QString, NTypes::eTypes_t> byText = [] {
        QHash<QString, NTypes::eTypes_t> hash;
        for (quint32 t = 0; t < NTypes::E_TYPE_COUNT; ++t)
            hash.insert(QString::fromLatin1(kTypes[t].text), NTypes::eTypes_t(t));
        return hash;
    }();
    return byText.value(text.trimmed().toUpper(), NTypes::E_UNKNOWN);
}

QString CDataTypeParser::typeToEnum(NTypes::eTypes_t type)
{
    return QString::fromLatin1(kTypes[known(type) ? type : NTypes::E_UNKNOWN].enumName);
}

CVariant CDataTypeParser::minTypeValue(NTypes::eTypes_t type)
{
    switch (type) {
    case NTypes::E_BOOL:
    case NTypes::E_U8:
    case NTypes::E_U16:
    case NTypes::E_U32:
    case NTypes::E_U64:
    case NTypes::E_TIME:
        return CVariant::fromU64(0, type);
    case NTypes::E_I8:
        return CVariant::fromI64(std::numeric_limits<qint8>::min(), type);
    case NTypes::E_I16:
        return CVariant::fromI64(std::numeric_limits<qint16>::min(), type);
    case NTypes::E_I32:
        return CVariant::fromI64(std::numeric_limits<qint32>::min(), type);
    case NTypes::E_I64:
        return CVariant::fromI64(std::numeric_limits<qint64>::min(), type);
    case NTypes::E_F32:
        return CVariant::fromF64(-double(FLT_MAX), type);
    case NTypes::E_F64:
        return CVariant::fromF64(-DBL_MAX, type);
    default:
        return CVariant(type);
    }
}

CVariant CDataTypeParser::maxTypeValue(NTypes::eTypes_t type)
{
    switch (type) {
    case NTypes::E_BOOL:
        return CVariant::fromU64(1, type);
    case NTypes::E_U8:
        return CVariant::fromU64(std::numeric_limits<quint8>::max(), type);
    case NTypes::E_I8:
        return CVariant::fromI64(std::numeric_limits<qint8>::max(), type);
    case NTypes::E_U16:
        return CVariant::fromU64(std::numeric_limits<quint16>::max(), type);
    case NTypes::E_I16:
        return CVariant::fromI64(std::numeric_limits<qint16>::max(), type);
    case NTypes::E_U32:
    case NTypes::E_TIME:
        return CVariant::fromU64(std::numeric_limits<quint32>::max(), type);
    case NTypes::E_I32:
        return CVariant::fromI64(std::numeric_limits<qint32>::max(), type);
    case NTypes::E_U64:
        return CVariant::fromU64(std::numeric_limits<quint64>::max(), type);
    case NTypes::E_I64:
        return CVariant::fromI64(std::numeric_limits<qint64>::max(), type);
    case NTypes::E_F32:
        return CVariant::fromF64(double(FLT_MAX), type);
    case NTypes::E_F64:
        return CVariant::fromF64(DBL_MAX, type);
    default:
        return CVariant(type);
    }
}

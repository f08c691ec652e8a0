// CVariant parsing of value texts for every data type (the first byte picks the type), and of
// byte arrays when its top bit is set (the second byte gives the element count). Every
// conversion is exercised; a value's own text must read back to the same text.
#include "fuzzsupport.h"

#include <CVariant.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    fuzz::scratch(QString()); // quiet Qt
    const auto type = NTypes::eTypes_t(data[0] % 33);
    const bool bytes = data[0] & 0x80;
    const CVariant value = bytes
        ? CVariant(QByteArray(reinterpret_cast<const char *>(data) + 2, int(size) - 2), type, data[1] % 17)
        : CVariant(QString::fromUtf8(reinterpret_cast<const char *>(data) + 1, int(size) - 1), type);
    bool ok = false;
    value.toI64(&ok);
    value.toU64(&ok);
    value.toF64(&ok);
    const QString text = value.toStr();
    const CVariant fromQVariant = CVariant::fromVariant(value.toVariant(), type);
    fromQVariant.toStr();
    if (value.isNull() || bytes)
        return 0;
    const CVariant again(text, type);
    if (again.toStr() != text)
        fuzz::finding(QStringLiteral("type %1: '%2' reads back as '%3'").arg(type).arg(text, again.toStr()));
    return 0;
}

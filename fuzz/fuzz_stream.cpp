// QDataStream readers of the value classes; the first byte picks the class. Whatever reads
// cleanly must write and read again to the very same bytes, and print.
#include "fuzzsupport.h"

#include <COdictEditorObject.h>
#include <COdictObjectBitSet.h>
#include <COdictObjectEnum.h>
#include <COdictObjectId.h>
#include <COdictObjectName.h>
#include <COdictParameterObject.h>
#include <COdictValueObject.h>
#include <CVariant.h>

#include <QDataStream>
#include <QDebug>

namespace {

template <class T>
QByteArray written(const T &value)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << value;
    return bytes;
}

template <class T>
void check(const QByteArray &input)
{
    QDataStream in(input);
    T value;
    in >> value;
    QString text;
    QDebug(&text) << value;
    if (in.status() != QDataStream::Ok)
        return;
    const QByteArray once = written(value);
    QDataStream again(once);
    T back;
    again >> back;
    if (again.status() != QDataStream::Ok || !again.atEnd())
        fuzz::finding(QStringLiteral("a written value does not read back whole"));
    if (written(back) != once)
        fuzz::finding(QStringLiteral("write, read, write gives other bytes"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    fuzz::scratch(QString()); // quiet Qt
    const QByteArray input(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    switch (data[0] % 9) {
    case 0: check<COdictObjectId>(input); break;
    case 1: check<COdictObjectName>(input); break;
    case 2: check<COdictObjectEnum>(input); break;
    case 3: check<COdictObjectBitSet>(input); break;
    case 4: check<CVariant>(input); break;
    case 5: check<COdictObject>(input); break;
    case 6: check<COdictValueObject>(input); break;
    case 7: check<COdictEditorObject>(input); break;
    default: check<COdictParameterObject>(input); break;
    }
    return 0;
}

// Data-file reader, values form or parameter form (FUZZ_PARAMETERS): whatever it reads is
// written again and must read back with the same records.
#include "fuzzsupport.h"

#include <COdictDataFile.h>

namespace {

template <class T>
QString idsOf(const QList<T> &objects)
{
    QStringList ids;
    for (const T &o : objects)
        ids << QStringLiteral("%1.%2").arg(o.id()).arg(o.subId());
    return ids.join(QLatin1Char(' '));
}

template <class T, class Load, class Save>
void roundTrip(const QString &in, Load load, Save save)
{
    QList<T> objects;
    COdictDataFile reader;
    if (!load(reader, in, objects) && objects.isEmpty())
        return;
    const QString out = fuzz::scratch(QStringLiteral("out.xml"));
    COdictDataFile writer;
    if (!save(writer, out, objects))
        fuzz::finding(QStringLiteral("records that were read cannot be written"));
    QList<T> back;
    COdictDataFile again;
    load(again, out, back);
    if (idsOf(back) != idsOf(objects))
        fuzz::finding(QStringLiteral("write and read changed the records: %1 | %2").arg(idsOf(objects), idsOf(back)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (fuzz::beyondReaderLimits(data, size))
        return -1;
    const QString in = fuzz::writeScratch(QStringLiteral("in.xml"), data, size);
    const QString app = QStringLiteral("fuzz");
    if (FUZZ_PARAMETERS) {
        roundTrip<COdictParameterObject>(
            in, [](COdictDataFile &f, const QString &p, QList<COdictParameterObject> &o) { return f.loadParameters(p, o); },
            [&app](COdictDataFile &f, const QString &p, const QList<COdictParameterObject> &o) { return f.saveParameters(p, o, app, app); });
        QMap<COdictObjectId, COdictParameterObject> byId;
        COdictDataFile().loadParameters(in, byId);
    } else {
        roundTrip<COdictValueObject>(
            in, [](COdictDataFile &f, const QString &p, QList<COdictValueObject> &o) { return f.loadValues(p, o); },
            [&app](COdictDataFile &f, const QString &p, const QList<COdictValueObject> &o) { return f.saveValues(p, o, app, app); });
    }
    return 0;
}

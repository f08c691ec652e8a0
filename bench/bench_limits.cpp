// The cost of the input checks, and of data files nested up to the depth limit.
#include <COdictDataFile.h>
#include <CXmlInputCheck.h>

#include <QBuffer>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

QByteArray record(int id)
{
    return QStringLiteral("<Object id=\"0x%1\" subid=\"0xffffffff\"><Name>OBJECT_%1</Name><Type>U16</Type><Size>2</Size>"
                          "<ObjectUsage>4</ObjectUsage><Value>%1</Value><Unit>0</Unit><Y-Unit>0</Y-Unit>")
        .arg(id)
        .toUtf8();
}

/// A data file of \a count records, nested \a depth deep in runs (depth 1: flat).
QByteArray dataFile(int count, int depth)
{
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroDataFile version=\"1.0.0\"><Data>\n";
    for (int i = 0; i < count; i += depth) {
        for (int d = 0; d < depth; ++d)
            text += record(i + d);
        for (int d = 0; d < depth; ++d)
            text += "</Object>\n";
    }
    return text + "</Data></KiroDataFile>\n";
}

/// The stream check alone, in bytes per second.
void BM_CheckContent(benchmark::State &state)
{
    QByteArray text = dataFile(int(state.range(0)), 1);
    for (auto _ : state) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(CXmlInputCheck::checkContent(buffer, QStringLiteral("f.xml"), CXmlInputCheck::E_PARSER_STREAM, nullptr));
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(BM_CheckContent)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Loading 25,300 records nested 1 to 253 deep (with the document element, "Data" and the
/// records' fields, the depth limit of 256): the time per record grows with the depth, and the
/// depth limit bounds it.
void BM_LoadNestedDataFile(benchmark::State &state)
{
    static QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("nested_%1.xml").arg(state.range(0)));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(dataFile(25300, int(state.range(0)))) < 0) {
        state.SkipWithError("cannot write the data file");
        return;
    }
    file.close();
    QList<COdictValueObject> read;
    if (!COdictDataFile().loadValues(path, read)) {
        state.SkipWithError("the data file is refused");
        return;
    }
    for (auto _ : state) {
        COdictDataFile reader;
        QList<COdictValueObject> objects;
        benchmark::DoNotOptimize(reader.loadValues(path, objects));
    }
    state.SetItemsProcessed(state.iterations() * 25300);
}
BENCHMARK(BM_LoadNestedDataFile)->Arg(1)->Arg(16)->Arg(253)->Unit(benchmark::kMillisecond);

} // namespace

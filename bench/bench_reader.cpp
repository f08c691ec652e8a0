// Loading a dictionary beside the two parser floors on the same generated files: a bare expat
// pass and a bare QXmlStreamReader pass, each touching every element, attribute and text, and
// the dictionary reader's pull reader alone (its share of the load; the rest is the model).
// Arguments: object kind (NkrOdict::eObjectType_t), objects. Compare the load with BM_ExpatFloor
// of the same arguments; run one size at a time with --benchmark_filter=/100000 and pin it
// (taskset -c 1) on a busy machine.
#include <COdictEdit.h>
#include <COdictGenerator.h>
#include <CXmlPullReader.h>

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <benchmark/benchmark.h>
#include <expat.h>

#include <map>
#include <memory>

namespace {

using namespace NkrOdict;

/// A generated dictionary of \a kind with \a objects objects (seed 1), written once per run.
QString generated(eObjectType_t kind, int objects)
{
    static QTemporaryDir dir;
    static std::map<std::pair<int, int>, QString> files;
    QString &path = files[{int(kind), objects}];
    if (!path.isEmpty())
        return path;
    path = dir.filePath(QStringLiteral("reader_%1_%2.xml").arg(int(kind)).arg(objects));
    COdictEdit dictionary(kind);
    COdictGenerator(1).generate(dictionary, objects);
    dictionary.saveDictionary(path);
    return path;
}

struct sTouched_t {
    qint64 elements = 0;
    qint64 bytes = 0;
};

void XMLCALL expatStart(void *data, const XML_Char *name, const XML_Char **attributes)
{
    auto *t = static_cast<sTouched_t *>(data);
    ++t->elements;
    t->bytes += qint64(strlen(name));
    for (; *attributes; attributes += 2)
        t->bytes += qint64(strlen(attributes[1]));
}

void XMLCALL expatText(void *data, const XML_Char *, int length)
{
    static_cast<sTouched_t *>(data)->bytes += length;
}

/// Reads the file in 64 KiB pieces, as the dictionary reader does.
void BM_ExpatFloor(benchmark::State &state)
{
    const QString path = generated(eObjectType_t(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        sTouched_t touched;
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &touched);
        XML_SetStartElementHandler(parser, expatStart);
        XML_SetCharacterDataHandler(parser, expatText);
        for (;;) {
            void *buffer = XML_GetBuffer(parser, 65536);
            const qint64 read = file.read(static_cast<char *>(buffer), 65536);
            if (XML_ParseBuffer(parser, int(qMax<qint64>(read, 0)), read <= 0) != XML_STATUS_OK) {
                state.SkipWithError("expat failed");
                break;
            }
            if (read <= 0)
                break;
        }
        XML_ParserFree(parser);
        benchmark::DoNotOptimize(touched);
        state.counters["elements"] = double(touched.elements);
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}

void BM_QtStreamFloor(benchmark::State &state)
{
    const QString path = generated(eObjectType_t(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QXmlStreamReader reader(&file);
        sTouched_t touched;
        while (!reader.atEnd()) {
            switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                ++touched.elements;
                touched.bytes += reader.name().size();
                for (const QXmlStreamAttribute &attribute : reader.attributes())
                    touched.bytes += attribute.value().size();
                break;
            case QXmlStreamReader::Characters:
                touched.bytes += reader.text().size();
                break;
            default:
                break;
            }
        }
        if (reader.hasError())
            state.SkipWithError("QXmlStreamReader failed");
        benchmark::DoNotOptimize(touched);
        state.counters["elements"] = double(touched.elements);
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}

/// The dictionary reader's own share: its pull reader over the file, taking every attribute the
/// reader asks for and the text of every element that is not a container, without the model.
void BM_PullFloor(benchmark::State &state)
{
    const QString path = generated(eObjectType_t(state.range(0)), int(state.range(1)));
    static const QSet<QLatin1String> containers = {
        QLatin1String("KiroObjectDictionary"), QLatin1String("Header"), QLatin1String("History"),
        QLatin1String("DataStructures"), QLatin1String("DataStructure"), QLatin1String("Group"),
        QLatin1String("Object"), QLatin1String("SubObjects"), QLatin1String("Enum"),
        QLatin1String("BitSet"), QLatin1String("Param")};
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        CXmlPullReader reader(&file, path, CXmlInputCheck::E_PARSER_STREAM);
        sTouched_t touched;
        QString value;
        while (!reader.atEnd()) {
            if (reader.readNext() != CXmlPullReader::E_TOKEN_START)
                continue;
            ++touched.elements;
            for (const char *name : {"id", "subid", "value", "pos"}) {
                if (reader.attribute(QLatin1String(name), &value))
                    touched.bytes += value.size();
            }
            if (!containers.contains(reader.name()))
                touched.bytes += reader.elementText().size();
        }
        if (reader.hasError())
            state.SkipWithError("pull reader failed");
        benchmark::DoNotOptimize(touched);
        state.counters["elements"] = double(touched.elements);
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}

void BM_Load(benchmark::State &state)
{
    const eObjectType_t kind = eObjectType_t(state.range(0));
    const QString path = generated(kind, int(state.range(1)));
    for (auto _ : state) {
        auto dictionary = std::make_unique<COdictEdit>(kind);
        if (dictionary->loadDictionary(path) != 0)
            state.SkipWithError("load failed");
        state.PauseTiming(); // the load is measured, not freeing the dictionary
        dictionary.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}

void sizesAndKinds(benchmark::internal::Benchmark *b)
{
    for (const int objects : {1000, 10000, 100000}) {
        for (const eObjectType_t kind : {E_OT_EDITOR, E_OT_STD, E_OT_VALUE, E_OT_PARAMETER})
            b->Args({kind, objects});
    }
    b->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(false);
}

} // namespace

BENCHMARK(BM_ExpatFloor)->Apply(sizesAndKinds);
BENCHMARK(BM_QtStreamFloor)->Apply(sizesAndKinds);
BENCHMARK(BM_PullFloor)->Apply(sizesAndKinds);
BENCHMARK(BM_Load)->Apply(sizesAndKinds);

BENCHMARK_MAIN();

// The benchmark suite: every figure of docs/performance.md, measured on the same generated files
// in one run, each beside its floor.
//
// The files are generated once per run into a temporary directory (COdictGenerator, seed 1): one
// per object kind (editor, std, value, parameter) and size. KRODICT_BENCH_SIZES selects the sizes
// (default "1000,10000,100000"); --benchmark_filter selects benchmarks as usual.
//
// Counters: ns_per_rec is the time per record (objects and sub-objects of the file); x_expat is
// the time over a bare expat pass over the same file, x_load over loading the same file, both
// floors measured in this run (or on demand, when a filter left them out). The memory figures
// come from a fresh child process per measurement (see probeMemory()).

#include <COdict.h>
#include <COdictObjectTree.h>
#include <COdictDataFile.h>
#include <COdictEdit.h>
#include <COdictExportDoc.h>
#include <COdictExportEds.h>
#include <COdictExportFile.h>
#include <COdictExportObjectIds.h>
#include <COdictExportTranslation.h>
#include <COdictGenerator.h>
#include <COdictValueObject.h>

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <benchmark/benchmark.h>
#include <expat.h>
#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>

namespace {

using NkrOdict::eObjectType_t;

struct SKind
{
    eObjectType_t kind;
    const char *name;
};

const SKind kinds[] = {{NkrOdict::E_OT_EDITOR, "editor"},
                       {NkrOdict::E_OT_STD, "std"},
                       {NkrOdict::E_OT_VALUE, "value"},
                       {NkrOdict::E_OT_PARAMETER, "parameter"}};

const quint64 seed = 1;
const char *const probeOption = "--memory-probe";

QString kindName(eObjectType_t kind)
{
    for (const SKind &k : kinds) {
        if (k.kind == kind)
            return QLatin1String(k.name);
    }
    return QString();
}

/// The generated files of this run, written on first use and removed at exit.
class CSuiteFiles
{
public:
    /// The file of \a kind with \a objects objects.
    QString path(eObjectType_t kind, int objects)
    {
        const QString file = dir.filePath(QStringLiteral("%1_%2.xml").arg(kindName(kind)).arg(objects));
        if (!records.contains(file)) {
            COdictEdit dictionary(kind);
            COdictGenerator generator(seed);
            generator.generate(dictionary, objects);
            dictionary.saveDictionary(file);
            records.insert(file, dictionary.allObjectUIds().size());
        }
        return file;
    }
    /// Objects and sub-objects in \a file.
    int recordCount(const QString &file) const { return records.value(file); }
    /// A scratch path in the run's directory; the directory itself for an empty \a name.
    QString scratch(const QString &name) const { return name.isEmpty() ? dir.path() : dir.filePath(name); }

private:
    QTemporaryDir dir;
    QHash<QString, int> records;
};

CSuiteFiles &files()
{
    static CSuiteFiles instance;
    return instance;
}

// ---- floors ---------------------------------------------------------------------------------

// Every element name, attribute name and value, and text is read once, so the floor pays what a
// reader must pay at least: tokenizing and looking at every byte that carries data.
struct SExpatTouch
{
    quint64 sum = 0;
};

void XMLCALL expatStart(void *data, const XML_Char *name, const XML_Char **attributes)
{
    auto *touch = static_cast<SExpatTouch *>(data);
    touch->sum += std::strlen(name);
    for (const XML_Char **a = attributes; *a; ++a)
        touch->sum += std::strlen(*a);
}

void XMLCALL expatEnd(void *data, const XML_Char *name)
{
    static_cast<SExpatTouch *>(data)->sum += std::strlen(name);
}

void XMLCALL expatText(void *data, const XML_Char *text, int length)
{
    static_cast<SExpatTouch *>(data)->sum += quint64(length) + (length > 0 ? quint8(text[0]) : 0);
}

/// A bare expat pass over \a path, read in 64 KiB blocks; 0 when it fails.
quint64 expatPass(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    XML_Parser parser = XML_ParserCreate(nullptr);
    SExpatTouch touch;
    XML_SetUserData(parser, &touch);
    XML_SetElementHandler(parser, expatStart, expatEnd);
    XML_SetCharacterDataHandler(parser, expatText);
    bool ok = true;
    for (bool last = false; ok && !last;) {
        void *buffer = XML_GetBuffer(parser, 64 * 1024);
        const qint64 n = file.read(static_cast<char *>(buffer), 64 * 1024);
        last = n <= 0;
        ok = XML_ParseBuffer(parser, int(std::max<qint64>(n, 0)), last) == XML_STATUS_OK;
    }
    XML_ParserFree(parser);
    return ok ? touch.sum : 0;
}

/// A bare QXmlStreamReader pass over \a path; 0 when it fails.
quint64 qtPass(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    QXmlStreamReader reader(&file);
    quint64 sum = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            sum += quint64(reader.name().size());
            for (const QXmlStreamAttribute &a : reader.attributes())
                sum += quint64(a.name().size() + a.value().size());
            break;
        case QXmlStreamReader::EndElement:
            sum += quint64(reader.name().size());
            break;
        case QXmlStreamReader::Characters:
            sum += quint64(reader.text().size());
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? 0 : sum;
}

/// CPU seconds of this process: on a shared machine wall time measures the neighbours as well.
double cpuSeconds()
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// ---- reference times of this run ------------------------------------------------------------

/// Seconds per iteration of every measured repetition, by "what:file", for the ratio counters.
QHash<QString, QVector<double>> &measured()
{
    static QHash<QString, QVector<double>> times;
    return times;
}

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    const int n = values.size();
    return n % 2 ? values.at(n / 2) : (values.at(n / 2 - 1) + values.at(n / 2)) / 2;
}

/// Median seconds of \a run, measured in this run under \a key, or now (three times) when no
/// benchmark has measured it yet.
double reference(const QString &key, const std::function<void()> &run)
{
    QVector<double> &times = measured()[key];
    for (int i = 0; times.size() < 3 && i < 3; ++i) {
        const double start = cpuSeconds();
        run();
        times.append(cpuSeconds() - start);
    }
    return median(times);
}

bool loadInto(COdictEdit &dictionary, const QString &path)
{
    return dictionary.loadDictionary(path) == 0 && dictionary.warningMessages().isEmpty();
}

double expatFloor(const QString &path)
{
    return reference(QStringLiteral("expat:") + path, [&path] { benchmark::DoNotOptimize(expatPass(path)); });
}

double loadReference(eObjectType_t kind, const QString &path)
{
    return reference(QStringLiteral("load:") + path, [&] {
        COdictEdit dictionary(kind);
        benchmark::DoNotOptimize(dictionary.loadDictionary(path));
    });
}

/// Runs \a body once per iteration and answers its CPU seconds per iteration; -1 after a failure.
double measure(benchmark::State &state, const std::function<bool()> &body)
{
    double seconds = 0;
    for (auto _ : state) {
        const double start = cpuSeconds();
        const bool ok = body();
        seconds += cpuSeconds() - start;
        if (!ok) {
            state.SkipWithError("the operation failed");
            return -1;
        }
    }
    return seconds / double(state.iterations());
}

/// Times \a body on \a path and reports it per record and beside the floors (x_load when
/// \a loadSeconds is given); stores the time under \a key when one is given.
void timed(benchmark::State &state, const QString &path, const std::function<bool()> &body,
           const QString &key = QString(), double loadSeconds = 0)
{
    const double perIteration = measure(state, body);
    if (perIteration < 0)
        return;
    if (!key.isEmpty())
        measured()[key].append(perIteration);
    const int records = files().recordCount(path);
    state.counters["records"] = records;
    state.counters["ns_per_rec"] = perIteration * 1e9 / std::max(records, 1);
    state.counters["x_expat"] = perIteration / expatFloor(path);
    if (loadSeconds > 0)
        state.counters["x_load"] = perIteration / loadSeconds;
}

// ---- loading and its floors -----------------------------------------------------------------

void BM_FloorExpat(benchmark::State &state, eObjectType_t kind, int objects)
{
    const QString path = files().path(kind, objects);
    timed(state, path, [&] { return expatPass(path) != 0; }, QStringLiteral("expat:") + path);
}

void BM_FloorQXmlStreamReader(benchmark::State &state, eObjectType_t kind, int objects)
{
    const QString path = files().path(kind, objects);
    timed(state, path, [&] { return qtPass(path) != 0; });
}

void BM_Load(benchmark::State &state, eObjectType_t kind, int objects)
{
    const QString path = files().path(kind, objects);
    timed(state, path, [&] {
        COdictEdit dictionary(kind);
        return loadInto(dictionary, path);
    }, QStringLiteral("load:") + path);
}

// ---- copy, save, exporters, data files ------------------------------------------------------

/// The loaded file of \a kind and \a objects; null when it does not load cleanly. The last one
/// is kept: Google Benchmark calls a benchmark several times while it settles the iterations,
/// and a load of 100,000 objects each time would cost more than the measurements.
COdictEdit *loaded(eObjectType_t kind, int objects)
{
    static std::unique_ptr<COdictEdit> dictionary;
    static QString path;
    const QString wanted = files().path(kind, objects);
    if (!dictionary || path != wanted || dictionary->objectType() != kind) {
        dictionary.reset(); // the previous one goes first, so that two never coexist
        dictionary = std::make_unique<COdictEdit>(kind);
        path = wanted;
        if (!loadInto(*dictionary, path))
            dictionary.reset();
    }
    return dictionary.get();
}

/// Times \a body on the loaded file of \a kind and \a objects.
void onLoaded(benchmark::State &state, eObjectType_t kind, int objects,
              const std::function<bool(COdictEdit &)> &body)
{
    COdictEdit *dictionary = loaded(kind, objects);
    if (!dictionary) {
        state.SkipWithError("load failed");
        return;
    }
    const QString path = files().path(kind, objects);
    const double load = loadReference(kind, path);
    timed(state, path, [&] { return body(*dictionary); }, QString(), load);
}

void BM_Copy(benchmark::State &state, eObjectType_t kind, int objects)
{
    onLoaded(state, kind, objects, [](COdictEdit &dictionary) {
        const COdict copy(dictionary);
        return copy.isValid();
    });
}

void BM_Save(benchmark::State &state, eObjectType_t kind, int objects)
{
    const QString target = files().scratch(QStringLiteral("saved.xml"));
    onLoaded(state, kind, objects, [&](COdictEdit &dictionary) { return dictionary.saveDictionary(target) == 0; });
}

/// One exporter: its name in the benchmark and how it writes into the run's scratch space.
struct SExporter
{
    const char *name;
    std::function<bool(COdict &)> run;
};

const QVector<SExporter> &exporters()
{
    static const QVector<SExporter> list{
        {"Header", [](COdict &d) { return COdictExportFile(&d).exportToHeaderfile(files().scratch(QStringLiteral("odict.h"))); }},
        {"Ids", [](COdict &d) { return COdictExportObjectIds(&d).exportToEnum(files().scratch(QString())); }},
        {"Translation", [](COdict &d) { return COdictExportTranslation(&d).exportToTranslate(files().scratch(QString())); }},
        {"DocPackage", [](COdict &d) { return COdictExportDoc(&d).exportToPackage(files().scratch(QStringLiteral("doc"))); }},
        {"Eds", [](COdict &d) { return COdictExportEds(&d).exportToEds(files().scratch(QStringLiteral("odict.eds"))); }},
    };
    return list;
}

void BM_Export(benchmark::State &state, int exporter, int objects)
{
    onLoaded(state, NkrOdict::E_OT_EDITOR, objects,
             [exporter](COdictEdit &dictionary) { return exporters().at(exporter).run(dictionary); });
}

/// The first \a count value objects of the 10,000-object value file, each with a current value.
QList<COdictValueObject> valuesToWrite(int count)
{
    COdictEdit dictionary(NkrOdict::E_OT_VALUE);
    loadInto(dictionary, files().path(NkrOdict::E_OT_VALUE, 10000));
    COdictGenerator generator(seed);
    QList<COdictValueObject> values;
    const QList<COdictObjectId> ids = dictionary.allObjectUIds();
    for (int i = 0; i < ids.size() && values.size() < count; ++i) {
        COdictValueObject object = dictionary.valueObject(ids.at(i));
        const QVariant value = generator.value(object);
        if (value.isNull())
            continue;
        object.setCurrentValue(value);
        values.append(object);
    }
    return values;
}

void reportValues(benchmark::State &state, double perIteration, int values)
{
    if (perIteration < 0)
        return;
    state.counters["values"] = values;
    state.counters["ns_per_value"] = perIteration * 1e9 / std::max(values, 1);
}

void BM_DataFileWrite(benchmark::State &state)
{
    const QList<COdictValueObject> values = valuesToWrite(10000);
    const QString path = files().scratch(QStringLiteral("values_write.xml"));
    const double perIteration = measure(state, [&] {
        return COdictDataFile().saveValues(path, values, QStringLiteral("bench"), QStringLiteral("1"));
    });
    reportValues(state, perIteration, values.size());
}

void BM_DataFileRead(benchmark::State &state)
{
    const QString path = files().scratch(QStringLiteral("values_read.xml"));
    const QList<COdictValueObject> written = valuesToWrite(10000);
    COdictDataFile().saveValues(path, written, QStringLiteral("bench"), QStringLiteral("1"));
    int read = 0;
    const double perIteration = measure(state, [&] {
        QList<COdictValueObject> values;
        const bool ok = COdictDataFile().loadValues(path, values);
        read = values.size();
        return ok;
    });
    reportValues(state, perIteration, read);
}

// ---- lookups -----------------------------------------------------------------------------

// Every malloc, calloc and realloc of the process, counted so that the lookups can show that
// they allocate nothing. The program's own definitions take the place of the C library's for
// Qt and the dictionary library too; the C library still does the work.
std::atomic<quint64> allocations{0};

} // namespace

// Sanitizers bring their own malloc, which must stay in place.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#define KRODICT_BENCH_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KRODICT_BENCH_SANITIZED
#endif

#if defined(__GLIBC__) && !defined(KRODICT_BENCH_SANITIZED)
#define KRODICT_BENCH_COUNTS_ALLOCATIONS
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *pointer, size_t size);

__attribute__((visibility("default"))) void *malloc(size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void *calloc(size_t count, size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void *realloc(void *pointer, size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(pointer, size);
}
}
#endif

namespace {

/// Keys of every object and sub-object of a loaded dictionary, in a shuffled but fixed order.
struct SKeys
{
    QVector<COdictObjectId> ids;
    QVector<COdictObjectName> names;        // plain objects: name without sub-id
    QVector<COdictObjectName> subNames;     // sub-objects: name with sub-id
    QVector<QString> texts;                 // plain objects' names as plain strings
    QVector<QUuid> refIds;
};

SKeys keysOf(const COdictEdit &dictionary)
{
    SKeys keys;
    QList<COdictObjectId> ids = dictionary.allObjectUIds();
    COdictGenerator shuffle(seed);
    for (int i = ids.size() - 1; i > 0; --i)
        ids.swapItemsAt(i, int(shuffle.next() % quint64(i + 1)));
    for (const COdictObjectId &id : ids) {
        const COdictObject *object = dictionary.objectPtr(id);
        const COdictNode *node = dictionary.node(id);
        keys.ids.append(id);
        if (object->subId() == 0xFFFFFFFFu) {
            keys.names.append(COdictObjectName(object->name()));
            keys.texts.append(object->name());
        } else {
            keys.subNames.append(COdictObjectName(object->name(), object->subId()));
        }
        keys.refIds.append(node->dataRef().refId());
    }
    return keys;
}

template <class Key, class Lookup>
void lookups(benchmark::State &state, int objects, QVector<Key> SKeys::*member, Lookup lookup)
{
    const COdictEdit *loadedDictionary = loaded(NkrOdict::E_OT_EDITOR, objects);
    if (!loadedDictionary) {
        state.SkipWithError("load failed");
        return;
    }
    const COdictEdit &dictionary = *loadedDictionary;
    const QVector<Key> keys = keysOf(dictionary).*member;
    int i = 0;
    int missed = 0;
    const quint64 allocationsBefore = allocations.load();
    for (auto _ : state) {
        missed += lookup(dictionary, keys.at(i)) ? 0 : 1;
        if (++i == keys.size())
            i = 0;
    }
#ifdef KRODICT_BENCH_COUNTS_ALLOCATIONS
    state.counters["allocs_per_lookup"] = double(allocations.load() - allocationsBefore) / double(state.iterations());
#else
    Q_UNUSED(allocationsBefore)
#endif
    if (missed)
        state.SkipWithError("a key was not found");
    state.SetItemsProcessed(state.iterations());
    state.counters["M_per_s"] = benchmark::Counter(double(state.iterations()) / 1e6, benchmark::Counter::kIsRate);
}

void BM_LookupId(benchmark::State &state, int objects)
{
    lookups(state, objects, &SKeys::ids, [](const COdictEdit &d, const COdictObjectId &k) { return d.objectPtr(k); });
}

void BM_LookupName(benchmark::State &state, int objects)
{
    lookups(state, objects, &SKeys::names, [](const COdictEdit &d, const COdictObjectName &k) { return d.objectPtr(k); });
}

void BM_LookupNameSubId(benchmark::State &state, int objects)
{
    lookups(state, objects, &SKeys::subNames, [](const COdictEdit &d, const COdictObjectName &k) { return d.objectPtr(k); });
}

void BM_LookupText(benchmark::State &state, int objects)
{
    lookups(state, objects, &SKeys::texts, [](const COdictEdit &d, const QString &k) { return d.objectPtr(k); });
}

void BM_LookupRefId(benchmark::State &state, int objects)
{
    lookups(state, objects, &SKeys::refIds, [](const COdictEdit &d, const QUuid &k) { return d.odictItemPtr(k); });
}

// ---- memory ---------------------------------------------------------------------------------

// A figure from /proc/self/status in bytes ("VmRSS", "VmHWM"); 0 when unreadable.
qint64 statusBytes(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return 0;
    const QByteArray prefix = QByteArray(field) + ':';
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

qint64 heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
}

/// Returns freed heap to the system and restarts the peak (VmHWM, the figure getrusage's
/// ru_maxrss reports) at the current resident size; the current resident size.
qint64 restartPeak()
{
    malloc_trim(0);
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
    return statusBytes("VmRSS");
}

qint64 peakSince(qint64 residentAtStart)
{
    qint64 peak = statusBytes("VmHWM");
    if (peak == 0) { // no /proc: ru_maxrss, which was not restarted
        struct rusage usage;
        getrusage(RUSAGE_SELF, &usage);
        peak = qint64(usage.ru_maxrss) * 1024;
    }
    return peak - residentAtStart;
}

/// The child's side: loads \a path as \a kind, then runs \a operation ("load", "Ordered", an
/// exporter name, or "Save") and prints "retained PEAK" in bytes: the heap the loaded dictionary
/// holds, and the peak resident size above the start of the operation (the load itself for
/// "load" and "Ordered"). "Ordered" retains the dictionary after an ordered result was asked
/// for: the tree builds its ordered id and name maps on that first request.
int memoryProbe(const QString &operation, eObjectType_t kind, const QString &path)
{
    const qint64 heapBefore = heapInUse();
    qint64 start = restartPeak();
    COdictEdit dictionary(kind);
    if (!loadInto(dictionary, path))
        return 2;
    qint64 retained = heapInUse() - heapBefore;
    if (operation == QLatin1String("Ordered")) {
        const COdictObjectTree *tree = dictionary.objectTree();
        benchmark::DoNotOptimize(tree->idIndex().size() + tree->nameIndex().size());
        retained = heapInUse() - heapBefore;
    } else if (operation != QLatin1String("load")) {
        start = restartPeak();
        bool ok = false;
        if (operation == QLatin1String("Save"))
            ok = dictionary.saveDictionary(files().scratch(QStringLiteral("saved.xml"))) == 0;
        for (const SExporter &e : exporters()) {
            if (operation == QLatin1String(e.name))
                ok = e.run(dictionary);
        }
        if (!ok)
            return 2;
    }
    const qint64 peak = peakSince(start);
    printf("%lld %lld\n", static_cast<long long>(retained), static_cast<long long>(peak));
    return 0;
}

/// Runs memoryProbe() in a fresh child process, so that no earlier benchmark's heap counts.
void BM_Memory(benchmark::State &state, const QString &operation, eObjectType_t kind, int objects)
{
    const QString path = files().path(kind, objects);
    QList<QByteArray> figures;
    for (auto _ : state) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QLatin1String(probeOption), operation, QString::number(int(kind)), path});
        if (!child.waitForFinished(-1) || child.exitCode() != 0) {
            state.SkipWithError("the memory probe failed");
            return;
        }
        figures = child.readAllStandardOutput().trimmed().split(' ');
    }
    const double retained = figures.value(0).toDouble();
    const double peak = figures.value(1).toDouble();
    const int records = files().recordCount(path);
    state.counters["retained_MiB"] = retained / 1048576;
    state.counters["B_per_rec"] = retained / std::max(records, 1);
    state.counters["peak_MiB"] = peak / 1048576;
    state.counters["peak_x_retained"] = peak / std::max(retained, 1.0);
}

// ---- registration ---------------------------------------------------------------------------

QVector<int> selectedSizes()
{
    const QByteArray text = qgetenv("KRODICT_BENCH_SIZES");
    QVector<int> sizes;
    for (const QByteArray &part : (text.isEmpty() ? QByteArray("1000,10000,100000") : text).split(',')) {
        bool ok = false;
        const int n = part.trimmed().toInt(&ok);
        if (ok && n > 0)
            sizes.append(n);
    }
    return sizes;
}

void registerAll()
{
    using benchmark::RegisterBenchmark;
    const QVector<int> sizes = selectedSizes();
    auto name = [](const char *what, const char *kind, int n) {
        return QStringLiteral("%1/%2/%3").arg(QLatin1String(what), QLatin1String(kind)).arg(n).toStdString();
    };
    // Floors first: the load benchmarks divide by the floor measured just before them.
    for (int n : sizes) {
        for (const SKind &k : kinds) {
            RegisterBenchmark(name("FloorExpat", k.name, n).c_str(), BM_FloorExpat, k.kind, n)->Unit(benchmark::kMillisecond);
            RegisterBenchmark(name("FloorQXmlStreamReader", k.name, n).c_str(), BM_FloorQXmlStreamReader, k.kind, n)
                ->Unit(benchmark::kMillisecond);
            RegisterBenchmark(name("Load", k.name, n).c_str(), BM_Load, k.kind, n)->Unit(benchmark::kMillisecond);
        }
    }
    for (int n : sizes) {
        for (const SKind &k : kinds)
            RegisterBenchmark(name("Save", k.name, n).c_str(), BM_Save, k.kind, n)->Unit(benchmark::kMillisecond);
        RegisterBenchmark(name("Copy", "editor", n).c_str(), BM_Copy, NkrOdict::E_OT_EDITOR, n)->Unit(benchmark::kMillisecond);
        for (int e = 0; e < exporters().size(); ++e) {
            const std::string what = std::string("Export") + exporters().at(e).name;
            RegisterBenchmark(name(what.c_str(), "editor", n).c_str(), BM_Export, e, n)->Unit(benchmark::kMillisecond);
        }
    }
    for (int n : sizes) {
        RegisterBenchmark(name("LookupId", "editor", n).c_str(), BM_LookupId, n);
        RegisterBenchmark(name("LookupName", "editor", n).c_str(), BM_LookupName, n);
        RegisterBenchmark(name("LookupNameSubId", "editor", n).c_str(), BM_LookupNameSubId, n);
        RegisterBenchmark(name("LookupText", "editor", n).c_str(), BM_LookupText, n);
        RegisterBenchmark(name("LookupRefId", "editor", n).c_str(), BM_LookupRefId, n);
    }
    RegisterBenchmark("DataFileWrite/value/10000", BM_DataFileWrite)->Unit(benchmark::kMillisecond);
    RegisterBenchmark("DataFileRead/value/10000", BM_DataFileRead)->Unit(benchmark::kMillisecond);
    // One child per figure; the figures hardly vary, so one repetition is enough.
    for (int n : sizes) {
        for (const SKind &k : kinds) {
            RegisterBenchmark(name("MemoryLoad", k.name, n).c_str(), BM_Memory, QStringLiteral("load"), k.kind, n)
                ->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);
        }
        RegisterBenchmark(name("MemoryOrdered", "editor", n).c_str(), BM_Memory, QStringLiteral("Ordered"),
                          NkrOdict::E_OT_EDITOR, n)
            ->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);
        QStringList operations{QStringLiteral("Save")};
        for (const SExporter &e : exporters())
            operations.append(QLatin1String(e.name));
        for (const QString &operation : operations) {
            const std::string what = "Memory" + operation.toStdString();
            RegisterBenchmark(name(what.c_str(), "editor", n).c_str(), BM_Memory, operation, NkrOdict::E_OT_EDITOR, n)
                ->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 5 && std::strcmp(argv[1], probeOption) == 0)
        return memoryProbe(QString::fromLocal8Bit(argv[2]), eObjectType_t(std::atoi(argv[3])), QString::fromLocal8Bit(argv[4]));
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 64;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Lookups, copy, save and the exporters of a generated dictionary, each beside the load of the
// same file measured in the same run (the machine is noisy: compare ratios, not milliseconds).
//   bench_index --benchmark_filter=Lookup        lookups by id, by name, by plain text, by reference id
//   bench_index --benchmark_filter='/100000'     load, copy, save and exports at 100,000 objects
// BM_Memory reports the heap that a loaded dictionary keeps per record, and the heap's peak
// during the load, during save and during each export over what the loaded dictionary keeps.

#include <COdictEdit.h>
#include <COdictExportDoc.h>
#include <COdictExportEds.h>
#include <COdictExportFile.h>
#include <COdictExportObjectIds.h>
#include <COdictExportTranslation.h>
#include <COdictGenerator.h>
#include <COdictObject.h>
#include <COdictObjectTree.h>

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <malloc.h>
#include <memory>
#include <random>

// Heap accounting: every malloc of the process (Qt's included) goes through here, so the bytes
// in use and their high-water mark are exact, not the allocator's page-level view.
extern "C" {
void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void __libc_free(void *);
void *__libc_memalign(size_t, size_t);
}

namespace {
std::atomic<long long> g_inUse{0};
std::atomic<long long> g_peak{0};

void account(long long delta)
{
    const long long now = g_inUse += delta;
    long long peak = g_peak.load();
    while (now > peak && !g_peak.compare_exchange_weak(peak, now)) {
    }
}
} // namespace

extern "C" {
void *malloc(size_t size)
{
    void *p = __libc_malloc(size);
    if (p)
        account(static_cast<long long>(malloc_usable_size(p)));
    return p;
}
void *calloc(size_t count, size_t size)
{
    void *p = __libc_calloc(count, size);
    if (p)
        account(static_cast<long long>(malloc_usable_size(p)));
    return p;
}
void *realloc(void *old, size_t size)
{
    const long long before = old ? static_cast<long long>(malloc_usable_size(old)) : 0;
    void *p = __libc_realloc(old, size);
    if (p)
        account(static_cast<long long>(malloc_usable_size(p)) - before);
    else if (size == 0)
        account(-before);
    return p;
}
void free(void *p)
{
    if (p)
        account(-static_cast<long long>(malloc_usable_size(p)));
    __libc_free(p);
}
void *memalign(size_t alignment, size_t size)
{
    void *p = __libc_memalign(alignment, size);
    if (p)
        account(static_cast<long long>(malloc_usable_size(p)));
    return p;
}
int posix_memalign(void **out, size_t alignment, size_t size)
{
    *out = memalign(alignment, size);
    return *out ? 0 : 12; // ENOMEM
}
void *aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}
}

namespace {

/// A generated editor dictionary of \a objects objects, saved once per size and seed.
QString generatedFile(int objects)
{
    static QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("generated_%1.xml").arg(objects));
    if (!QFile::exists(path)) {
        COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
        COdictGenerator(13).generate(dictionary, objects);
        dictionary.saveDictionary(path);
    }
    return path;
}

/// The loaded dictionary of \a objects objects, kept for the benchmarks that only read it.
COdictEdit &loaded(int objects)
{
    static int loadedObjects = -1;
    static std::unique_ptr<COdictEdit> dictionary;
    if (loadedObjects != objects) {
        dictionary.reset(); // the old one first: only one large dictionary at a time
        loadedObjects = -1;
        if (objects < 0)
            return *dictionary; // only dropped (the caller does not use the result)
        dictionary = std::make_unique<COdictEdit>(NkrOdict::E_OT_EDITOR);
        dictionary->loadDictionary(generatedFile(objects));
        loadedObjects = objects;
    }
    return *dictionary;
}

void BM_Load(benchmark::State &state)
{
    const QString path = generatedFile(int(state.range(0)));
    for (auto _ : state) {
        COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
        benchmark::DoNotOptimize(dictionary.loadDictionary(path));
    }
}
BENCHMARK(BM_Load)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Copy(benchmark::State &state)
{
    const COdictEdit &source = loaded(int(state.range(0)));
    for (auto _ : state) {
        COdict copy(source);
        benchmark::DoNotOptimize(copy.objectTree());
    }
}
BENCHMARK(BM_Copy)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Save(benchmark::State &state)
{
    COdictEdit &dictionary = loaded(int(state.range(0)));
    QTemporaryDir dir;
    const QString target = dir.filePath(QStringLiteral("saved.xml"));
    for (auto _ : state)
        benchmark::DoNotOptimize(dictionary.saveDictionary(target));
}
BENCHMARK(BM_Save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

using Export = std::function<bool(COdict *, const QString &)>;

const QList<QPair<const char *, Export>> &exporters()
{
    static const QList<QPair<const char *, Export>> list{
        {"header", [](COdict *d, const QString &dir) { return COdictExportFile(d).exportToHeaderfile(dir + QStringLiteral("/odict.h")); }},
        {"ids", [](COdict *d, const QString &dir) { return COdictExportObjectIds(d).exportToEnum(dir); }},
        {"translation", [](COdict *d, const QString &dir) { return COdictExportTranslation(d).exportToTranslate(dir); }},
        {"doc", [](COdict *d, const QString &dir) { return COdictExportDoc(d).exportToPackage(dir + QStringLiteral("/doc")); }},
        {"eds", [](COdict *d, const QString &dir) { return COdictExportEds(d).exportToEds(dir + QStringLiteral("/odict.eds")); }},
    };
    return list;
}

void BM_Export(benchmark::State &state)
{
    COdictEdit &dictionary = loaded(int(state.range(1)));
    const auto &exporter = exporters().at(int(state.range(0)));
    state.SetLabel(exporter.first);
    QTemporaryDir dir;
    for (auto _ : state)
        benchmark::DoNotOptimize(exporter.second(&dictionary, dir.path()));
}
BENCHMARK(BM_Export)->ArgsProduct({{0, 1, 2, 3, 4}, {10000, 100000}})->Unit(benchmark::kMillisecond)->Iterations(3);

/// Keys of every object and sub-object of the loaded dictionary: for state.range(0) 0 in id
/// order, which walks memory about in the order the load allocated it; for 1 shuffled, so that
/// nearly every lookup misses the caches.
template <class Key>
QVector<Key> shuffledKeys(const benchmark::State &state, const std::function<Key(const COdictObject &)> &key)
{
    QVector<Key> keys;
    const COdictObjectTree *tree = loaded(100000).objectTree();
    for (const COdictNode *node : tree->idIndex())
        keys.append(key(*node->dataRef().objectPtr()));
    if (state.range(0) == 1)
        std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
    return keys;
}

template <class Key, class Lookup>
void lookupLoop(benchmark::State &state, const QVector<Key> &keys, Lookup lookup)
{
    int i = 0;
    const long long before = g_inUse;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lookup(keys.at(i)));
        if (++i == keys.size())
            i = 0;
    }
    state.counters["bytes_allocated"] = double(g_inUse - before);
    state.counters["lookups"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_LookupById(benchmark::State &state)
{
    const COdictObjectTree *tree = loaded(100000).objectTree();
    const auto keys = shuffledKeys<COdictObjectId>(state, [](const COdictObject &o) { return o.uniqueId(); });
    lookupLoop(state, keys, [tree](const COdictObjectId &key) { return tree->node(key); });
}
BENCHMARK(BM_LookupById)->Arg(0)->Arg(1);

void BM_LookupObjectById(benchmark::State &state)
{
    const COdictEdit &dictionary = loaded(100000);
    const auto keys = shuffledKeys<COdictObjectId>(state, [](const COdictObject &o) { return o.uniqueId(); });
    lookupLoop(state, keys, [&dictionary](const COdictObjectId &key) { return dictionary.objectPtr(key.id(), key.subId()); });
}
BENCHMARK(BM_LookupObjectById)->Arg(0)->Arg(1);

void BM_LookupByName(benchmark::State &state)
{
    const COdictObjectTree *tree = loaded(100000).objectTree();
    const auto keys = shuffledKeys<COdictObjectName>(state, [](const COdictObject &o) { return o.uniqueName(); });
    lookupLoop(state, keys, [tree](const COdictObjectName &key) { return tree->node(key); });
}
BENCHMARK(BM_LookupByName)->Arg(0)->Arg(1);

void BM_LookupByNameAndSubId(benchmark::State &state)
{
    const COdictEdit &dictionary = loaded(100000);
    const auto keys = shuffledKeys<COdictObjectName>(state, [](const COdictObject &o) { return o.uniqueName(); });
    lookupLoop(state, keys, [&dictionary](const COdictObjectName &key) { return dictionary.objectPtr(key.name(), key.subId()); });
}
BENCHMARK(BM_LookupByNameAndSubId)->Arg(0)->Arg(1);

void BM_LookupByPlainText(benchmark::State &state)
{
    const COdictEdit &dictionary = loaded(100000);
    // Plain texts are the objects' own names (no sub-id), as an application types them.
    const auto keys = shuffledKeys<QString>(state, [](const COdictObject &o) { return o.uniqueName().mergedName(); });
    lookupLoop(state, keys, [&dictionary](const QString &key) { return dictionary.objectPtr(key); });
}
BENCHMARK(BM_LookupByPlainText)->Arg(0)->Arg(1);

void BM_LookupByRefId(benchmark::State &state)
{
    const COdictEdit &dictionary = loaded(100000);
    QVector<QUuid> keys;
    const COdictObjectTree *tree = dictionary.objectTree();
    for (const COdictNode *node : tree->idIndex())
        keys.append(node->dataRef().refId());
    if (state.range(0) == 1)
        std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
    lookupLoop(state, keys, [&dictionary](const QUuid &key) { return dictionary.odictItemPtr(key); });
}
BENCHMARK(BM_LookupByRefId)->Arg(0)->Arg(1);

// Heap figures, one run each: retained bytes per record of a loaded dictionary, and the peaks of
// load, save and each export as a ratio of that.
void BM_Memory(benchmark::State &state)
{
    const int objects = int(state.range(0));
    const QString path = generatedFile(objects);
    loaded(-1); // nothing else loaded
    for (auto _ : state) {
        const long long base = g_inUse;
        g_peak = base;
        auto dictionary = std::make_unique<COdictEdit>(NkrOdict::E_OT_EDITOR);
        dictionary->loadDictionary(path);
        const long long retained = g_inUse - base;
        const long long loadPeak = g_peak - base;
        const int records = dictionary->objectTree()->idIndex().size();
        state.counters["records"] = records;
        state.counters["retained_per_record"] = double(retained) / records;
        state.counters["load_peak_ratio"] = double(loadPeak) / double(retained);
        QTemporaryDir dir;
        const auto extra = [&](const std::function<void()> &run) {
            const long long now = g_inUse;
            g_peak = now;
            run();
            return double(g_peak - now) / double(retained);
        };
        state.counters["save_peak_ratio"] = extra([&] { dictionary->saveDictionary(dir.filePath(QStringLiteral("s.xml"))); });
        {
            const long long now = g_inUse;
            g_peak = now;
            COdict copy(*dictionary);
            state.counters["copy_ratio"] = double(g_inUse - now) / double(retained);
        }
        for (const auto &exporter : exporters()) {
            state.counters[QStringLiteral("%1_peak_ratio").arg(QLatin1String(exporter.first)).toStdString()] =
                extra([&] { exporter.second(dictionary.get(), dir.path()); });
        }
    }
}
BENCHMARK(BM_Memory)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

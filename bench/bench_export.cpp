// Export speed: the C header, the object-id enumeration, the translation source and the
// documentation package of a small dictionary, a generated 100,000-object dictionary and a
// dictionary whose only object sits at 0x7FFFFFF0 (which must cost no more than a small one).
// BM_LoadSaved loads each dictionary from a saved file: the documentation package, one file per
// object, should take no longer than that.

#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictExportDoc.h"
#include "COdictExportFile.h"
#include "COdictExportObjectIds.h"
#include "COdictExportTranslation.h"
#include "COdictObjectTree.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using Structure = COdictDataStructure::SDataStructure_t;
using Member = COdictDataStructure::SDataStructureMember_t;

Member member(const char *cType, const char *name, COdictDataStructure::eMemberSource_t source)
{
    Member m;
    m.cType = QLatin1String(cType);
    m.name = QLatin1String(name);
    m.source = source;
    m.literal = QStringLiteral("0");
    return m;
}

void addStructures(COdictDataStructure &list)
{
    using D = COdictDataStructure;
    const QList<Member> common{member("uint32_t", "id", D::E_MS_ID), member("uint32_t", "subId", D::E_MS_SUBID),
                               member("uint16_t", "dataType", D::E_MS_DATATYPE),
                               member("uint32_t", "access", D::E_MS_ACCESSRIGHTS),
                               member("int32_t", "min", D::E_MS_MIN), member("int32_t", "max", D::E_MS_MAX),
                               member("const char *", "name", D::E_MS_NAME)};
    const char *names[] = {"NoObject", "SubObject", "RawValue", "String", "Array"};
    const int ids[] = {-1, -1, 1, 2, 3};
    for (int i = 0; i < 5; ++i) {
        Structure s;
        s.name = QLatin1String(names[i]);
        s.uiName = s.name;
        s.id = ids[i];
        if (ids[i] > 0)
            s.members = common;
        list.append(s);
    }
}

class Generator
{
public:
    Generator() : dict(new COdictEdit(NkrOdict::E_OT_EDITOR))
    {
        tree = dict->objectTree();
        top = tree->createDictionaryNode(QStringLiteral("BenchDict"));
        tree->rootNode()->appendChild(top);
        addStructures(dict->odictDataStructureList());
    }

    COdictNode *group(int number)
    {
        COdictNode *node = tree->createGroupNode(QStringLiteral("Group%1").arg(number), QStringLiteral("Gruppe %1").arg(number));
        top->appendChild(node);
        return node;
    }

    void add(COdictNode *parent, unsigned int id, int subObjects)
    {
        COdictEditorObject object;
        object.setId(id);
        object.setName(QStringLiteral("Object%1").arg(id));
        object.setUiName(QStringLiteral("Object %1").arg(id));
        object.setUiShortName(QStringLiteral("Obj %1").arg(id));
        object.setAccessType(int(id % 3) + 1);
        object.setAccessRights(id % 4 == 0 ? 0x3 : 0x2);
        object.setDataType(NTypes::E_I32);
        object.setDataSize(4);
        object.setMinValue(CVariant::fromI64(-1000, NTypes::E_I32));
        object.setMaxValue(CVariant::fromI64(1000, NTypes::E_I32));
        bool ok = false;
        COdictNode *node = tree->createObjectNode(object, NkrOdict::E_IT_OBJECT, &ok);
        parent->appendChild(node);
        ++count;
        COdictEditorObject *owner = node->dataPtr()->toEditorObjectPtr();
        for (int i = 0; i < subObjects; ++i) {
            const unsigned int subId = i < 3 ? unsigned(i) : unsigned(i + 1); // a gap at 3
            COdictEditorObject sub = object;
            sub.setSubId(subId);
            sub.setName(object.name() + QLatin1Char('_') + QString::number(subId));
            COdictNode *subNode = tree->createObjectNode(sub, NkrOdict::E_IT_SUBOBJECT, &ok);
            node->appendChild(subNode);
            owner->addSubId(subId);
            ++count;
        }
    }

    std::unique_ptr<COdictEdit> dict;
    COdictObjectTree *tree = nullptr;
    COdictNode *top = nullptr;
    int count = 0;
};

std::unique_ptr<COdictEdit> generated(int objects)
{
    Generator g;
    COdictNode *group = g.group(0);
    int groups = 1;
    auto next = [&](unsigned int id, int subs) {
        if (g.count >= objects)
            return;
        if (g.count / 500 >= groups)
            group = g.group(groups++);
        g.add(group, id, subs);
    };
    for (unsigned int id = 0; id < 0x1000; ++id) {
        if (id % 5 != 4)
            next(id, id % 50 == 7 ? 4 : 0);
    }
    for (unsigned int id = 0x6000; id <= 0x60FF; id += 2)
        next(id, id % 16 == 0 ? 4 : 0);
    for (unsigned int id = 0x2000; g.count < objects; ++id) {
        if (id >= 0x6000 && id <= 0x60FF)
            continue;
        next(id, id % 10 == 0 ? 4 : 0);
    }
    return std::move(g.dict);
}

std::unique_ptr<COdictEdit> farObject()
{
    Generator g;
    g.add(g.top, 0x7FFFFFF0u, 0);
    return std::move(g.dict);
}

/// The bundled demo dictionary, as the main job exports it.
std::unique_ptr<COdictEdit> bundledDemo()
{
    auto dict = std::make_unique<COdictEdit>(NkrOdict::E_OT_EDITOR);
    dict->loadDictionary(QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml"));
    return dict;
}

COdictEdit *dictionary(int which)
{
    static std::unique_ptr<COdictEdit> demo = bundledDemo();
    static std::unique_ptr<COdictEdit> large = generated(100000);
    static std::unique_ptr<COdictEdit> far = farObject();
    switch (which) {
    case 0:
        return demo.get();
    case 1:
        return large.get();
    default:
        return far.get();
    }
}

const char *label(int which)
{
    return which == 0 ? "demo_drive.xml (187 objects)" : which == 1 ? "100k objects" : "one object at 0x7FFFFFF0";
}

void BM_ExportHeader(benchmark::State &state)
{
    COdictEdit *dict = dictionary(int(state.range(0)));
    QTemporaryDir dir;
    COdictExportFile exporter(dict);
    const QString path = dir.filePath(QStringLiteral("odict.h"));
    for (auto _ : state)
        benchmark::DoNotOptimize(exporter.exportToHeaderfile(path));
    state.SetLabel(label(int(state.range(0))));
}

void BM_ExportEnum(benchmark::State &state)
{
    COdictEdit *dict = dictionary(int(state.range(0)));
    QTemporaryDir dir;
    COdictExportObjectIds exporter(dict);
    for (auto _ : state)
        benchmark::DoNotOptimize(exporter.exportToEnum(dir.path()));
    state.SetLabel(label(int(state.range(0))));
}

void BM_ExportTranslate(benchmark::State &state)
{
    COdictEdit *dict = dictionary(int(state.range(0)));
    QTemporaryDir dir;
    COdictExportTranslation exporter(dict);
    for (auto _ : state)
        benchmark::DoNotOptimize(exporter.exportToTranslate(dir.path()));
    state.SetLabel(label(int(state.range(0))));
}

void BM_ExportDoc(benchmark::State &state)
{
    COdictEdit *dict = dictionary(int(state.range(0)));
    QTemporaryDir dir;
    COdictExportDoc exporter(dict);
    for (auto _ : state)
        benchmark::DoNotOptimize(exporter.exportToPackage(dir.path()));
    state.SetLabel(label(int(state.range(0))));
}

void BM_LoadSaved(benchmark::State &state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("saved.xml"));
    dictionary(int(state.range(0)))->saveDictionary(path);
    for (auto _ : state) {
        COdictEdit loaded(NkrOdict::E_OT_EDITOR);
        benchmark::DoNotOptimize(loaded.loadDictionary(path));
    }
    state.SetLabel(label(int(state.range(0))));
}

} // namespace

BENCHMARK(BM_ExportHeader)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportEnum)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportTranslate)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportDoc)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSaved)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

// Loading and saving dictionaries: the bundled demo and a generated 100,000-object dictionary.
#include <CDataTypeParser.h>
#include <COdictEdit.h>
#include <COdictEditorObject.h>
#include <COdictObjectTree.h>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

/// Writes a dictionary of \a count objects in groups of 100, every tenth with four sub-objects.
QString generatedDictionary(int count)
{
    static QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("generated_%1.xml").arg(count));
    if (QFile::exists(path))
        return path;
    COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
    COdictObjectTree *tree = dictionary.objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Generated"));
    tree->rootNode()->appendChild(top);
    COdictNode *group = nullptr;
    for (int i = 0; i < count; ++i) {
        if (i % 100 == 0) {
            group = tree->createGroupNode(QStringLiteral("GROUP_%1").arg(i / 100), QStringLiteral("Gruppe %1").arg(i / 100));
            top->appendChild(group);
        }
        COdictEditorObject o;
        o.setId(unsigned(i + 1));
        o.setName(QStringLiteral("OBJECT_%1").arg(i + 1));
        o.setUiName(QStringLiteral("Objekt %1").arg(i + 1));
        o.setDataType(NTypes::E_I32);
        o.setDataSize(4);
        o.setMinValue(CDataTypeParser::minTypeValue(NTypes::E_I32));
        o.setMaxValue(CDataTypeParser::maxTypeValue(NTypes::E_I32));
        o.setDefaultValue(CVariant(QStringLiteral("0"), NTypes::E_I32));
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, NkrOdict::E_IT_OBJECT, &ok);
        group->appendChild(node);
        if (i % 10 != 0)
            continue;
        for (unsigned int s = 1; s <= 4; ++s) {
            COdictEditorObject sub(o);
            sub.setSubId(s);
            sub.setName(QStringLiteral("OBJECT_%1_%2").arg(i + 1).arg(s));
            COdictNode *subNode = tree->createObjectNode(sub, NkrOdict::E_IT_SUBOBJECT, &ok);
            node->appendChild(subNode);
            node->dataPtr()->objectPtr()->addSubId(s);
        }
    }
    dictionary.saveDictionary(path);
    return path;
}

void loadFile(benchmark::State &state, const QString &path)
{
    for (auto _ : state) {
        COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
        const int result = dictionary.loadDictionary(path);
        benchmark::DoNotOptimize(result);
        if (result != 0)
            state.SkipWithError("load failed");
        state.counters["objects"] = dictionary.allObjectUIds().size();
    }
}

void BM_LoadDemo(benchmark::State &state)
{
    loadFile(state, QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml"));
}
BENCHMARK(BM_LoadDemo)->Unit(benchmark::kMillisecond);

void BM_LoadGenerated(benchmark::State &state)
{
    loadFile(state, generatedDictionary(int(state.range(0))));
}
BENCHMARK(BM_LoadGenerated)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_SaveGenerated(benchmark::State &state)
{
    COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
    dictionary.loadDictionary(generatedDictionary(int(state.range(0))));
    QTemporaryDir dir;
    const QString target = dir.filePath(QStringLiteral("saved.xml"));
    for (auto _ : state)
        benchmark::DoNotOptimize(dictionary.saveDictionary(target));
}
BENCHMARK(BM_SaveGenerated)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_LookupById(benchmark::State &state)
{
    COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
    dictionary.loadDictionary(generatedDictionary(100000));
    unsigned int id = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dictionary.objectPtr(id, 0xFFFFFFFFu));
        id = id % 100000 + 1;
    }
}
BENCHMARK(BM_LookupById);

void BM_LookupByName(benchmark::State &state)
{
    COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
    dictionary.loadDictionary(generatedDictionary(100000));
    QVector<COdictObjectName> names;
    for (int i = 1; i <= 1000; ++i)
        names.append(COdictObjectName(QStringLiteral("OBJECT_%1").arg(i * 97)));
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dictionary.objectPtr(names.at(i)));
        i = (i + 1) % names.size();
    }
}
BENCHMARK(BM_LookupByName);

} // namespace

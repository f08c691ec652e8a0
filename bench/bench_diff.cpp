// The semantic diff of two generated dictionaries; compare with BM_LoadGenerated of bench_load.
#include <CDataTypeParser.h>
#include <COdictDiff.h>
#include <COdictEdit.h>
#include <COdictEditorObject.h>
#include <COdictObjectTree.h>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

/// \a count objects in groups of 100, every tenth with four sub-objects; with \a edited, every
/// hundredth object has another maximum and every thousandth another group.
std::unique_ptr<COdictEdit> generated(int count, bool edited)
{
    auto dictionary = std::make_unique<COdictEdit>(NkrOdict::E_OT_EDITOR);
    COdictObjectTree *tree = dictionary->objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Generated"));
    tree->rootNode()->appendChild(top);
    QVector<COdictNode *> groups;
    for (int g = 0; g <= count / 100; ++g) {
        groups.append(tree->createGroupNode(QStringLiteral("GROUP_%1").arg(g), QStringLiteral("Gruppe %1").arg(g)));
        top->appendChild(groups.last());
    }
    for (int i = 0; i < count; ++i) {
        COdictEditorObject o;
        o.setId(unsigned(i + 1));
        o.setName(QStringLiteral("OBJECT_%1").arg(i + 1));
        o.setUiName(QStringLiteral("Objekt %1").arg(i + 1));
        o.setDataType(NTypes::E_I32);
        o.setDataSize(4);
        o.setMinValue(CDataTypeParser::minTypeValue(NTypes::E_I32));
        o.setMaxValue(edited && i % 100 == 0 ? CVariant(QStringLiteral("1000"), NTypes::E_I32) : CDataTypeParser::maxTypeValue(NTypes::E_I32));
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, NkrOdict::E_IT_OBJECT, &ok);
        groups.at(edited && i % 1000 == 0 ? (i / 100 + 1) : i / 100)->appendChild(node);
        if (i % 10 != 0)
            continue;
        for (unsigned int s = 1; s <= 4; ++s) {
            COdictEditorObject sub(o);
            sub.setSubId(s);
            sub.setName(QStringLiteral("OBJECT_%1_%2").arg(i + 1).arg(s));
            node->appendChild(tree->createObjectNode(sub, NkrOdict::E_IT_SUBOBJECT, &ok));
            node->dataPtr()->objectPtr()->addSubId(s);
        }
    }
    return dictionary;
}

void BM_DiffGenerated(benchmark::State &state)
{
    const auto older = generated(int(state.range(0)), false);
    const auto newer = generated(int(state.range(0)), true);
    for (auto _ : state) {
        const QList<COdictDiff::sChange_t> changes = COdictDiff::compare(older.get(), newer.get());
        benchmark::DoNotOptimize(changes.size());
        state.counters["changes"] = changes.size();
    }
}
BENCHMARK(BM_DiffGenerated)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();

// Dictionary loader of one object kind (FUZZ_KIND): the input as a dictionary file is loaded;
// whatever loads must save, load again without a warning and give an equal tree.
#include "fuzzsupport.h"

#include <COdictEdit.h>
#include <COdictObjectTree.h>

#include "odicttreecompare.h"

namespace {

constexpr auto kKind = NkrOdict::eObjectType_t(FUZZ_KIND);

int load(COdictEdit &dict, const QString &path)
{
    // Parameter dictionaries read parameter-set files; every other kind reads dictionary files.
    return kKind == NkrOdict::E_OT_PARAMETER ? dict.loadParameterSets(path) : dict.loadDictionary(path);
}

/// The first difference between two trees, empty when they are equal (as compareTrees() checks).
QString treeDiff(const COdictObjectTree &a, const COdictObjectTree &b)
{
    QVector<QPair<const COdictNode *, const COdictNode *>> pending{{a.rootNode(), b.rootNode()}};
    while (!pending.isEmpty()) {
        const auto [x, y] = pending.takeLast();
        const COdictItem &xi = x->dataRef();
        const COdictItem &yi = y->dataRef();
        if (xi.type() != yi.type() || x->childCount() != y->childCount())
            return QStringLiteral("shape differs at '%1'").arg(xi.name());
        if (xi.isObjectItem() && !sameObject(xi, yi))
            return QStringLiteral("object '%1' differs: %2").arg(xi.name(), fieldDiff(xi.objectRef(), yi.objectRef()));
        if (!xi.isObjectItem() && (xi.name() != yi.name() || xi.uiName() != yi.uiName()))
            return QStringLiteral("group '%1' differs from '%2'").arg(xi.name(), yi.name());
        for (int i = 0; i < x->childCount(); ++i)
            pending.append(qMakePair(x->child(i), y->child(i)));
    }
    if (a.idIndex().keys() != b.idIndex().keys() || a.nameIndex().keys() != b.nameIndex().keys())
        return QStringLiteral("indexes differ");
    if (!(a.history() == b.history()) || !(a.dataStructures() == b.dataStructures()))
        return QStringLiteral("history or data structures differ");
    return QString();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (fuzz::beyondReaderLimits(data, size))
        return -1;
    const QString in = fuzz::writeScratch(QStringLiteral("in.xml"), data, size);
    COdictEdit first(kKind);
    if (load(first, in) != 0 || !first.isValid())
        return 0;
    const QString out = fuzz::scratch(QStringLiteral("out.xml"));
    if (first.saveDictionary(out) != 0)
        fuzz::finding(QStringLiteral("a loaded dictionary cannot be saved"));
    COdictEdit second(kKind);
    if (load(second, out) != 0 || !second.isValid())
        fuzz::finding(QStringLiteral("the saved dictionary does not load: %1").arg(second.warningMessages().join(QLatin1Char('\n'))));
    if (!second.warningMessages().isEmpty())
        fuzz::finding(QStringLiteral("the saved dictionary loads with warnings: %1").arg(second.warningMessages().join(QLatin1Char('\n'))));
    const QString diff = treeDiff(*first.objectTree(), *second.objectTree());
    if (!diff.isEmpty())
        fuzz::finding(QStringLiteral("save and load changed the tree: %1").arg(diff));
    return 0;
}

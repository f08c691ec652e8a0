#include "COdictExportTranslation.h"
#include "COdictExportTranslation_p.h"

#include "COdict.h"
#include "COdictObject.h"

#include <QVector>

COdictExportTranslation::COdictExportTranslation(COdict *odict, QObject *parent)
    : QObject(parent), d_ptr(new COdictExportTranslationPrivate(odict))
{
}

COdictExportTranslation::~COdictExportTranslation() = default;

bool COdictExportTranslation::exportToTranslate(const QString &directory)
{
    Q_D(COdictExportTranslation);
    return d->exportToTranslate(directory);
}

void COdictExportTranslation::setDate(const QDate &date)
{
    Q_D(COdictExportTranslation);
    d->date = date;
}

bool COdictExportTranslationPrivate::exportToTranslate(const QString &directory)
{
    path = targetPath(directory, QStringLiteral("NkrOdictTranslate.h"));
    prepare();

    // Depth first, pre-order, with a work list instead of recursion (trees may be deep). The
    // first walk only counts the items, so that the progress has its total before writing.
    const COdictNode *root = odict ? odict->odictTree() : nullptr;
    QVector<const COdictNode *> pending;
    const auto walk = [root, &pending](const auto &visit) {
        if (root)
            pending.append(root);
        while (!pending.isEmpty()) {
            const COdictNode *node = pending.takeLast();
            visit(*node);
            for (int i = node->childCount() - 1; i >= 0; --i)
                pending.append(node->child(i));
        }
    };
    qint64 items = 0;
    walk([&items](const COdictNode &) { ++items; });

    COdictLineSink out(path, COdictLineSink::E_F_SOURCE, progress(), items);
    fileBanner(out, path, QStringLiteral("Automatic generated header file for translation"));
    guardOpen(out, path);
    walk([&out](const COdictNode &node) {
        addNode(out, node);
        out.advance();
    });
    out << QString();
    guardClose(out, path);
    return out.commit();
}

void COdictExportTranslationPrivate::addNode(COdictLineSink &out, const COdictNode &node)
{
    const COdictItem &item = node.dataRef();
    if (item.type() == NkrOdict::E_IT_GROUP) {
        out << QString() << QStringLiteral("// Group ") + item.name();
        addTranslation(out, item.uiName());
        return;
    }
    // The root and the dictionary node carry no display text of their own; only objects and
    // sub-objects contribute theirs.
    const COdictObject *object = item.isObjectItem() ? item.objectPtr() : nullptr;
    if (!object)
        return;
    out << QStringLiteral("// Object ") + object->name();
    addTranslation(out, object->uiName());
    addTranslation(out, object->uiShortName());
    const COdictObjectBitSet *bits = object->bitSetDataPtr();
    if (!bits->isEmpty()) {
        out << QStringLiteral("// Bitset");
        for (const QString &name : bits->names())
            addTranslation(out, name);
    }
    const COdictObjectEnum *values = object->enumDataPtr();
    if (!values->isEmpty()) {
        out << QStringLiteral("// Enum");
        for (const QString &name : values->names())
            addTranslation(out, name);
    }
}

void COdictExportTranslationPrivate::addTranslation(COdictLineSink &out, const QString &text)
{
    // The text goes in as it stands: the file is read by the translation tools' scanner only.
    out << QStringLiteral("QT_TRANSLATE_NOOP( \"Odict\", \"") + text + QStringLiteral("\" );");
}

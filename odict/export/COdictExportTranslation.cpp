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
    fileBanner(path, QStringLiteral("Automatic generated header file for translation"));
    guardOpen(path);

    // Depth first, pre-order, with a work list instead of recursion (trees may be deep).
    const COdictNode *root = odict ? odict->odictTree() : nullptr;
    QVector<const COdictNode *> pending;
    if (root)
        pending.append(root);
    while (!pending.isEmpty()) {
        const COdictNode *node = pending.takeLast();
        addNode(*node);
        for (int i = node->childCount() - 1; i >= 0; --i)
            pending.append(node->child(i));
    }

    lines << QString();
    guardClose(path);
    const bool written = write(path);
    lines.clear();
    return written;
}

void COdictExportTranslationPrivate::addNode(const COdictNode &node)
{
    const COdictItem &item = node.dataRef();
    if (item.type() == NkrOdict::E_IT_GROUP) {
        lines << QString() << QStringLiteral("// Group ") + item.name();
        addTranslation(item.uiName());
        return;
    }
    // The root and the dictionary node carry no display text of their own; only objects and
    // sub-objects contribute theirs.
    const COdictObject *object = item.isObjectItem() ? item.objectPtr() : nullptr;
    if (!object)
        return;
    lines << QStringLiteral("// Object ") + object->name();
    addTranslation(object->uiName());
    addTranslation(object->uiShortName());
    const COdictObjectBitSet *bits = object->bitSetDataPtr();
    if (!bits->isEmpty()) {
        lines << QStringLiteral("// Bitset");
        for (const QString &name : bits->names())
            addTranslation(name);
    }
    const COdictObjectEnum *values = object->enumDataPtr();
    if (!values->isEmpty()) {
        lines << QStringLiteral("// Enum");
        for (const QString &name : values->names())
            addTranslation(name);
    }
}

void COdictExportTranslationPrivate::addTranslation(const QString &text)
{
    // The text goes in as it stands: the file is read by the translation tools' scanner only.
    lines << QStringLiteral("QT_TRANSLATE_NOOP( \"Odict\", \"") + text + QStringLiteral("\" );");
}

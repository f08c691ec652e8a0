#include "COdictExportBase_p.h"

#include "COdict.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"

#include <QDir>
#include <QFileInfo>

COdictExportBasePrivate::COdictExportBasePrivate(COdict *odict) : odict(odict) {}

COdictExportBasePrivate::~COdictExportBasePrivate() = default;

void COdictExportBasePrivate::prepare()
{
    odictName.clear();
    objectCount = 0;
    if (!odict)
        return;
    const COdictNode *root = odict->odictTree();
    const COdictNode *first = root ? root->child(0) : nullptr;
    odictName = first ? first->dataRef().name() : QString();
    objectCount = odict->highestId() + 1u;
}

COdictProgressCallback COdictExportBasePrivate::progress() const
{
    return odict ? odict->progressCallback() : COdictProgressCallback();
}

void COdictExportBasePrivate::fileBanner(COdictLineSink &out, const QString &path, const QString &brief) const
{
    out << QStringLiteral("/*!") << starLine() << QStringLiteral(" *")
        << QStringLiteral(" * @file    ") + fileName(path) << QStringLiteral(" *")
        << QStringLiteral(" * @brief   ") + brief << QStringLiteral(" *")
        << QStringLiteral(" * @author  obdEditor.exe") << QStringLiteral(" *")
        << QStringLiteral(" * @version @v{ $Revision: 1.3 $ }") << QStringLiteral(" *")
        << QStringLiteral(" * @date    ") + exportDate().toString(QStringLiteral("dd.MM.yyyy"))
        << QStringLiteral(" *") << starLine() << QStringLiteral(" */") << QString();
}

void COdictExportBasePrivate::namespaceBanner(COdictLineSink &out, const QString &path, const QString &brief,
                                              const QStringList &details) const
{
    out << dashLine() << QStringLiteral("/*!") << QStringLiteral(" * @namespace   ") + baseName(path)
        << QStringLiteral(" *") << QStringLiteral(" * @brief       ") + brief << QStringLiteral(" *");
    for (int i = 0; i < details.size(); ++i)
        out << (i == 0 ? QStringLiteral(" * @details     ") : QStringLiteral(" *              ")) + details.at(i);
    if (!details.isEmpty())
        out << QStringLiteral(" *");
    out << QStringLiteral(" * @date        ") + exportDate().toString(QStringLiteral("dd.MM.yyyy"))
        << QStringLiteral(" */") << dashLine() << QString();
}

void COdictExportBasePrivate::guardOpen(COdictLineSink &out, const QString &path)
{
    const QString base = baseName(path).toUpper();
    out << QStringLiteral("#ifndef ODICT_%1_H_").arg(base) << QStringLiteral("#define ODICT_%1_H_").arg(base)
        << QString();
}

void COdictExportBasePrivate::guardClose(COdictLineSink &out, const QString &path)
{
    out << QStringLiteral("#endif /* ODICT_%1_H_ */").arg(baseName(path).toUpper()) << QString();
}

QString COdictExportBasePrivate::targetPath(const QString &directory, const QString &fileName)
{
#ifdef Q_OS_WIN
    return directory + QLatin1Char('\\') + fileName;
#else
    // A backslash is an ordinary file-name character here: join with the native separator so
    // that the file lands inside the directory.
    return QDir(directory).filePath(fileName);
#endif
}

QString COdictExportBasePrivate::fileName(const QString &path)
{
    return QFileInfo(path).fileName();
}

QString COdictExportBasePrivate::baseName(const QString &path)
{
    return QFileInfo(path).baseName();
}

QString COdictExportBasePrivate::starLine()
{
    return QLatin1Char(' ') + QString(89, QLatin1Char('*'));
}

QString COdictExportBasePrivate::dashLine()
{
    return QStringLiteral("//") + QString(88, QLatin1Char('-'));
}

const COdictEditorObject *COdictExportBasePrivate::editorObjectAt(const COdictObjectId &key) const
{
    const COdictObjectTree *tree = odict ? odict->objectTree() : nullptr;
    if (!tree)
        return nullptr;
    // The node of the packed key, if its object has exactly this key.
    const COdictNode *node = tree->node(key);
    const COdictObject *object = node ? node->dataRef().objectPtr() : nullptr;
    if (!object || !(object->uniqueId() == key))
        return nullptr;
    return node->dataRef().toEditorObjectPtr();
}

QList<QPair<quint32, const COdictEditorObject *>> COdictExportBasePrivate::plainObjects() const
{
    QList<QPair<quint32, const COdictEditorObject *>> result;
    const COdictObjectTree *tree = odict ? odict->objectTree() : nullptr;
    if (!tree)
        return result;
    const QList<COdictObjectId> keys = tree->allObjectUIds();
    result.reserve(keys.size());
    // Plain keys pack to their id and sort before every sub-object key (apart from the
    // sub-objects of object 0, which are skipped by their sub-id), so the walk ends at the
    // first key of id 1 or above that has a sub-id.
    for (const COdictObjectId &key : keys) {
        if (key.subId() != COdictObject::NoId) {
            if (key.id() != 0)
                break;
            continue;
        }
        if (key.id() >= objectCount)
            break;
        const COdictNode *node = tree->node(key);
        result.append(qMakePair(key.id(), node ? node->dataRef().toEditorObjectPtr() : nullptr));
    }
    return result;
}

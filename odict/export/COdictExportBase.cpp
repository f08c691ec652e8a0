#include "COdictExportBase_p.h"

#include "COdict.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"
#include "CSaveFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

COdictExportBasePrivate::COdictExportBasePrivate(COdict *odict) : odict(odict) {}

COdictExportBasePrivate::~COdictExportBasePrivate() = default;

void COdictExportBasePrivate::prepare()
{
    lines.clear();
    odictName.clear();
    objectCount = 0;
    if (!odict)
        return;
    const COdictNode *root = odict->odictTree();
    const COdictNode *first = root ? root->child(0) : nullptr;
    odictName = first ? first->dataRef().name() : QString();
    objectCount = odict->highestId() + 1u;
}

void COdictExportBasePrivate::fileBanner(const QString &path, const QString &brief)
{
    lines << QStringLiteral("/*!") << starLine() << QStringLiteral(" *")
          << QStringLiteral(" * @file    ") + fileName(path) << QStringLiteral(" *")
          << QStringLiteral(" * @brief   ") + brief << QStringLiteral(" *")
          << QStringLiteral(" * @author  obdEditor.exe") << QStringLiteral(" *")
          << QStringLiteral(" * @version @v{ $Revision: 1.3 $ }") << QStringLiteral(" *")
          << QStringLiteral(" * @date    ") + exportDate().toString(QStringLiteral("dd.MM.yyyy"))
          << QStringLiteral(" *") << starLine() << QStringLiteral(" */") << QString();
}

void COdictExportBasePrivate::namespaceBanner(const QString &path, const QString &brief)
{
    namespaceBanner(path, brief, QStringList());
}

void COdictExportBasePrivate::namespaceBanner(const QString &path, const QString &brief, const QStringList &details)
{
    lines << dashLine() << QStringLiteral("/*!") << QStringLiteral(" * @namespace   ") + baseName(path)
          << QStringLiteral(" *") << QStringLiteral(" * @brief       ") + brief << QStringLiteral(" *");
    for (int i = 0; i < details.size(); ++i)
        lines << (i == 0 ? QStringLiteral(" * @details     ") : QStringLiteral(" *              ")) + details.at(i);
    if (!details.isEmpty())
        lines << QStringLiteral(" *");
    lines << QStringLiteral(" * @date        ") + exportDate().toString(QStringLiteral("dd.MM.yyyy"))
          << QStringLiteral(" */") << dashLine() << QString();
}

void COdictExportBasePrivate::guardOpen(const QString &path)
{
    const QString base = baseName(path).toUpper();
    lines << QStringLiteral("#ifndef ODICT_%1_H_").arg(base) << QStringLiteral("#define ODICT_%1_H_").arg(base)
          << QString();
}

void COdictExportBasePrivate::guardClose(const QString &path)
{
    lines << QStringLiteral("#endif /* ODICT_%1_H_ */").arg(baseName(path).toUpper()) << QString();
}

bool COdictExportBasePrivate::write(const QString &path) const
{
    return writeLines(path, lines, odict ? odict->progressCallback() : COdictProgressCallback());
}

bool COdictExportBasePrivate::writeLines(const QString &path, const QStringList &lines, const COdictProgressCallback &progress)
{
    if (!CSaveFile::checkTarget(path))
        return false; // a FIFO or device is never replaced by a regular file
    COdictProgressMeter meter(progress, lines.size());
    qint64 done = 0;

    // A save file keeps an existing file untouched until the new content is complete. The text is
    // encoded and written in chunks, so the export never holds a second copy of the whole file.
    QSaveFile file(path);
    bool writing = file.open(QIODevice::WriteOnly | QIODevice::Text);
    const bool opened = writing;
    constexpr int chunkSize = 256 * 1024;
    QByteArray chunk("\xEF\xBB\xBF");
    chunk.reserve(chunkSize + chunkSize / 4);
    const auto flush = [&file, &chunk, &writing]() {
        if (writing && file.write(chunk) != chunk.size()) {
            file.cancelWriting();
            writing = false;
        }
        chunk.resize(0); // keeps the capacity
    };
    for (const QString &line : lines) {
        chunk += line.toUtf8();
        chunk += '\n';
        if (chunk.size() >= chunkSize)
            flush();
        meter.update(++done);
    }
    flush();
    if (!opened || !CSaveFile::commit(file))
        return false;
    meter.finish();
    return true;
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
    const auto it = tree->idIndex().constFind(key);
    if (it == tree->idIndex().cend() || !(it.key() == key) || !it.value())
        return nullptr;
    return it.value()->dataRef().toEditorObjectPtr();
}

QList<QPair<quint32, const COdictEditorObject *>> COdictExportBasePrivate::plainObjects() const
{
    QList<QPair<quint32, const COdictEditorObject *>> result;
    const COdictObjectTree *tree = odict ? odict->objectTree() : nullptr;
    if (!tree)
        return result;
    const COdictObjectTree::IdIndex &index = tree->idIndex();
    result.reserve(index.size());
    // Plain keys pack to their id and sort before every sub-object key (apart from the
    // sub-objects of object 0, which are skipped by their sub-id), so the walk ends at the
    // first key of id 1 or above that has a sub-id.
    for (auto it = index.cbegin(); it != index.cend(); ++it) {
        const COdictObjectId &key = it.key();
        if (key.subId() != COdictObject::NoId) {
            if (key.id() != 0)
                break;
            continue;
        }
        if (key.id() >= objectCount)
            break;
        result.append(qMakePair(key.id(), it.value() ? it.value()->dataRef().toEditorObjectPtr() : nullptr));
    }
    return result;
}

#pragma once

// The checks of the fuzz targets, one per input kind. Each takes the input and answers what
// went wrong, empty when nothing did; a crash stays a crash. tst_regressions replays stored
// inputs through the same checks.

#include "../autotests/odicttreecompare.h"

#include <CVariant.h>
#include <COdictDataFile.h>
#include <COdictEdit.h>
#include <COdictEditorObject.h>
#include <COdictObjectBitSet.h>
#include <COdictObjectEnum.h>
#include <COdictObjectId.h>
#include <COdictObjectName.h>
#include <COdictObjectTree.h>
#include <COdictParameterObject.h>
#include <COdictValueObject.h>

#include <QDataStream>
#include <QDebug>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace fuzz {

/// A path in the process's scratch directory (created once, removed at a normal exit).
inline QString scratch(const QString &name)
{
    static QTemporaryDir dir;
    return dir.filePath(name);
}

/// Writes \a bytes to the scratch file \a name and answers its path.
inline QString writeScratch(const QString &name, const QByteArray &bytes)
{
    const QString path = scratch(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
    return path;
}

/// The first difference between two trees, empty when they are equal (what compareTrees() checks).
inline QString treeDiff(const COdictObjectTree &a, const COdictObjectTree &b)
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

/// A dictionary file of \a kind (a parameter-set file for parameter dictionaries): what loads
/// must save, load again without a warning and give an equal tree.
inline QString checkDictionary(NkrOdict::eObjectType_t kind, const QByteArray &input)
{
    const auto load = [kind](COdictEdit &dict, const QString &path) {
        return kind == NkrOdict::E_OT_PARAMETER ? dict.loadParameterSets(path) : dict.loadDictionary(path);
    };
    const QString in = writeScratch(QStringLiteral("in.xml"), input);
    COdictEdit first(kind);
    if (load(first, in) != 0 || !first.isValid())
        return QString();
    const QString out = scratch(QStringLiteral("out.xml"));
    if (first.saveDictionary(out) != 0)
        return QStringLiteral("a loaded dictionary cannot be saved");
    COdictEdit second(kind);
    if (load(second, out) != 0 || !second.isValid())
        return QStringLiteral("the saved dictionary does not load: %1").arg(second.warningMessages().join(QLatin1Char('\n')));
    if (!second.warningMessages().isEmpty())
        return QStringLiteral("the saved dictionary loads with warnings: %1").arg(second.warningMessages().join(QLatin1Char('\n')));
    const QString diff = treeDiff(*first.objectTree(), *second.objectTree());
    return diff.isEmpty() ? QString() : QStringLiteral("save and load changed the tree: %1").arg(diff);
}

template <class T>
QString idsOf(const QList<T> &objects)
{
    QStringList ids;
    for (const T &o : objects)
        ids << QStringLiteral("%1.%2").arg(o.id()).arg(o.subId());
    return ids.join(QLatin1Char(' '));
}

/// A data file in the parameter or the value form: the records read are written and must
/// read back with the same ids.
inline QString checkDataFile(bool parameters, const QByteArray &input)
{
    const QString in = writeScratch(QStringLiteral("in.xml"), input);
    const QString out = scratch(QStringLiteral("out.xml"));
    const QString app = QStringLiteral("fuzz");
    if (parameters) {
        QMap<COdictObjectId, COdictParameterObject> byId;
        COdictDataFile().loadParameters(in, byId);
        QList<COdictParameterObject> objects;
        if (!COdictDataFile().loadParameters(in, objects) && objects.isEmpty())
            return QString();
        if (!COdictDataFile().saveParameters(out, objects, app, app))
            return QStringLiteral("records that were read cannot be written");
        QList<COdictParameterObject> back;
        COdictDataFile().loadParameters(out, back);
        return idsOf(back) == idsOf(objects) ? QString()
            : QStringLiteral("write and read changed the records: %1 | %2").arg(idsOf(objects), idsOf(back));
    }
    QList<COdictValueObject> objects;
    if (!COdictDataFile().loadValues(in, objects) && objects.isEmpty())
        return QString();
    if (!COdictDataFile().saveValues(out, objects, app, app))
        return QStringLiteral("records that were read cannot be written");
    QList<COdictValueObject> back;
    COdictDataFile().loadValues(out, back);
    return idsOf(back) == idsOf(objects) ? QString()
        : QStringLiteral("write and read changed the records: %1 | %2").arg(idsOf(objects), idsOf(back));
}

template <class T>
QByteArray streamBytes(const T &value)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << value;
    return bytes;
}

template <class T>
QString checkStreamOf(const QByteArray &input)
{
    QDataStream in(input);
    T value;
    in >> value;
    QString text;
    QDebug(&text) << value;
    if (in.status() != QDataStream::Ok)
        return QString();
    const QByteArray once = streamBytes(value);
    QDataStream again(once);
    T back;
    again >> back;
    if (again.status() != QDataStream::Ok || !again.atEnd())
        return QStringLiteral("a written value does not read back whole");
    return streamBytes(back) == once ? QString() : QStringLiteral("write, read, write gives other bytes");
}

/// The QDataStream form of a value class picked by the first byte: what reads cleanly must
/// write, read and write again to the same bytes, and print.
inline QString checkStream(const QByteArray &input)
{
    if (input.isEmpty())
        return QString();
    const QByteArray rest = input.mid(1);
    switch (quint8(input.at(0)) % 9) {
    case 0: return checkStreamOf<COdictObjectId>(rest);
    case 1: return checkStreamOf<COdictObjectName>(rest);
    case 2: return checkStreamOf<COdictObjectEnum>(rest);
    case 3: return checkStreamOf<COdictObjectBitSet>(rest);
    case 4: return checkStreamOf<CVariant>(rest);
    case 5: return checkStreamOf<COdictObject>(rest);
    case 6: return checkStreamOf<COdictValueObject>(rest);
    case 7: return checkStreamOf<COdictEditorObject>(rest);
    default: return checkStreamOf<COdictParameterObject>(rest);
    }
}

/// A value text of the data type the first byte picks, or (top bit set) bytes with the second
/// byte as element count: every conversion runs, and a value's own text reads back the same.
inline QString checkVariantText(const QByteArray &input)
{
    if (input.size() < 2)
        return QString();
    const quint8 selector = quint8(input.at(0));
    const auto type = NTypes::eTypes_t(selector % 33);
    const bool bytes = selector & 0x80;
    const CVariant value = bytes ? CVariant(input.mid(2), type, quint8(input.at(1)) % 17)
                                 : CVariant(QString::fromUtf8(input.mid(1)), type);
    bool ok = false;
    value.toI64(&ok);
    value.toU64(&ok);
    value.toF64(&ok);
    const QString text = value.toStr();
    CVariant::fromVariant(value.toVariant(), type).toStr();
    if (value.isNull() || bytes)
        return QString();
    const CVariant again(text, type);
    return again.toStr() == text ? QString()
        : QStringLiteral("type %1: '%2' reads back as '%3'").arg(type).arg(text, again.toStr());
}

} // namespace fuzz

#include "COdictDiff.h"

#include "CDataTypeParser.h"
#include "COdict.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"
#include "CStr.h"

#include <QHash>
#include <QMap>
#include <QVector>

#include <algorithm>

namespace {

using Change = COdictDiff::sChange_t;

/// A text that is never null, so that an empty value and an absent one stay apart.
QString present(const QString &text)
{
    return text.isNull() ? QString(QLatin1String("")) : text;
}

QString hex(unsigned int value)
{
    return QStringLiteral("0x") + QString::number(value, 16);
}

QString valueText(const CVariant &value)
{
    return value.isNull() ? QString() : present(value.toStr());
}

QString metaText(const CXMLMetaData &meta)
{
    return QStringLiteral("%1 %2 %3: %4").arg(meta.date().toString(Qt::ISODate), meta.time().toString(QStringLiteral("HH:mm:ss")),
                                              meta.author(), meta.comment());
}

QString structureMembers(const COdictDataStructure::SDataStructure_t &s)
{
    QStringList members;
    for (const auto &m : s.members)
        members << QStringLiteral("%1 %2 = %3(%4)").arg(m.cType, m.name, COdictDataStructure::sourceToStr(m.source), m.literal);
    return present(members.join(QStringLiteral("; ")));
}

/// The objects of one dictionary by unique id, with the group path of each object.
struct sSide_t {
    struct sEntry_t {
        const COdictObject *object = nullptr;
        QString group; ///< "/MOTOR/ENCODER", "/" at the top; empty for sub-objects
    };
    QHash<COdictObjectId, sEntry_t> byId;

    explicit sSide_t(const COdictObjectTree *tree)
    {
        if (!tree)
            return;
        byId.reserve(tree->objectCount());
        // One walk from the dictionary node gives every node its group path.
        QVector<QPair<const COdictNode *, QString>> pending;
        if (const COdictNode *top = tree->dictionaryNode())
            pending.append({top, QString()});
        while (!pending.isEmpty()) {
            const auto [node, path] = pending.takeLast();
            for (const COdictNode *child : node->children()) {
                const COdictItem &item = child->dataRef();
                if (item.type() == NkrOdict::E_IT_GROUP) {
                    pending.append({child, path + QLatin1Char('/') + item.name()});
                    continue;
                }
                const COdictObject *object = item.objectPtr();
                if (!object || object->isVirtual())
                    continue;
                const QString group = object->isSubObject() ? QString() : path.isEmpty() ? QStringLiteral("/") : path;
                byId.insert(object->uniqueId(), {object, group});
                if (item.type() == NkrOdict::E_IT_OBJECT)
                    pending.append({child, path});
            }
        }
    }
};

class CDiffer
{
public:
    QList<Change> changes;

    void add(COdictDiff::eChange_t kind, const COdictObject *object, const QString &field, const QString &oldValue,
             const QString &newValue)
    {
        Change c;
        c.kind = kind;
        if (object) {
            c.id = object->id();
            c.subId = object->subId();
            c.label = object->longInfo();
        }
        c.field = field;
        c.oldValue = oldValue;
        c.newValue = newValue;
        changes.append(c);
    }

    /// A changed field when the two texts differ (only objects that differ get here).
    void field(const COdictObject &b, const char *name, const QString &oldValue, const QString &newValue)
    {
        if (oldValue != newValue || oldValue.isNull() != newValue.isNull())
            add(COdictDiff::E_DC_CHANGED, &b, QLatin1String(name), oldValue, newValue);
    }

    void document(const COdict &a, const COdict &b)
    {
        const COdictObjectTree *ta = a.objectTree();
        const COdictObjectTree *tb = b.objectTree();
        const auto nameOf = [](const COdictObjectTree *t) {
            return t && t->dictionaryNode() ? present(t->dictionaryNode()->dataRef().name()) : QString();
        };
        const auto meta = [this](const char *f, const QString &x, const QString &y) {
            if (x != y)
                add(COdictDiff::E_DC_METADATA, nullptr, QLatin1String(f), present(x), present(y));
        };
        meta("name", nameOf(ta), nameOf(tb));
        const CXMLMetaData ma = a.odictMetaData(), mb = b.odictMetaData();
        meta("version", CStr::versionToString(ma.version()), CStr::versionToString(mb.version()));
        meta("date", ma.date().toString(Qt::ISODate), mb.date().toString(Qt::ISODate));
        meta("time", ma.time().toString(QStringLiteral("HH:mm:ss")), mb.time().toString(QStringLiteral("HH:mm:ss")));
        meta("author", ma.author(), mb.author());
        meta("comment", ma.comment(), mb.comment());

        // History records by version, in the newer file's order, then the ones that went.
        const COdictHistory ha = a.odictHistory(), hb = b.odictHistory();
        QHash<quint32, CXMLMetaData> oldHistory;
        for (const CXMLMetaData &m : ha.list())
            oldHistory.insert(m.version().value, m);
        for (const CXMLMetaData &m : hb.list()) {
            const auto it = oldHistory.constFind(m.version().value);
            const QString key = QStringLiteral("history ") + CStr::versionToString(m.version());
            if (it == oldHistory.cend())
                add(COdictDiff::E_DC_HISTORY, nullptr, key, QString(), metaText(m));
            else if (*it != m)
                add(COdictDiff::E_DC_HISTORY, nullptr, key, metaText(*it), metaText(m));
            oldHistory.remove(m.version().value);
        }
        for (const CXMLMetaData &m : ha.list()) {
            if (oldHistory.contains(m.version().value))
                add(COdictDiff::E_DC_HISTORY, nullptr, QStringLiteral("history ") + CStr::versionToString(m.version()), metaText(m), QString());
        }

        // Data structures by name (their ids may repeat).
        const COdictDataStructure none;
        const COdictDataStructure &sa = ta ? ta->dataStructures() : none;
        const COdictDataStructure &sb = tb ? tb->dataStructures() : none;
        QMap<QString, COdictDataStructure::SDataStructure_t> oldStructures;
        for (const auto &s : sa.list())
            oldStructures.insert(s.name, s);
        for (const auto &s : sb.list()) {
            const QString key = QStringLiteral("structure ") + s.name;
            const auto it = oldStructures.constFind(s.name);
            if (it == oldStructures.cend()) {
                add(COdictDiff::E_DC_STRUCTURE, nullptr, key, QString(), structureMembers(s));
                continue;
            }
            const auto part = [&](const char *f, const QString &x, const QString &y) {
                if (x != y)
                    add(COdictDiff::E_DC_STRUCTURE, nullptr, key + QLatin1Char(' ') + QLatin1String(f), present(x), present(y));
            };
            part("id", QString::number(it->id), QString::number(s.id));
            part("uiName", it->uiName, s.uiName);
            part("description", it->description, s.description);
            part("members", structureMembers(*it), structureMembers(s));
            oldStructures.remove(s.name);
        }
        for (auto it = oldStructures.cbegin(); it != oldStructures.cend(); ++it)
            add(COdictDiff::E_DC_STRUCTURE, nullptr, QStringLiteral("structure ") + it.key(), structureMembers(*it), QString());
    }

    void object(const sSide_t::sEntry_t &ea, const sSide_t::sEntry_t &eb)
    {
        const COdictObject &a = *ea.object;
        const COdictObject &b = *eb.object;
        if (!b.isSubObject() && ea.group != eb.group)
            add(COdictDiff::E_DC_MOVED, &b, QStringLiteral("group"), ea.group, eb.group);
        const COdictEditorObject *xa = dynamic_cast<const COdictEditorObject *>(&a);
        const COdictEditorObject *xb = dynamic_cast<const COdictEditorObject *>(&b);
        if (a == b && (!xa || !xb || *xa == *xb))
            return; // the common case, decided without building texts
        if (a.name() != b.name())
            add(COdictDiff::E_DC_RENAMED, &b, QStringLiteral("name"), present(a.name()), present(b.name()));

        const auto num = [](unsigned int n) { return n == COdictObject::NoId ? QString() : QString::number(n); };
        const auto hx = [](unsigned int n) { return n == COdictObject::NoId ? QString() : hex(n); };
        const auto uuid = [](const QUuid &u) { return u.isNull() ? QString() : u.toString(); };
        field(b, "uiName", present(a.uiName()), present(b.uiName()));
        field(b, "uiShortName", present(a.uiShortName()), present(b.uiShortName()));
        field(b, "dataType", CDataTypeParser::typeToStr(a.dataType()), CDataTypeParser::typeToStr(b.dataType()));
        field(b, "dataSize", num(a.dataSize()), num(b.dataSize()));
        field(b, "arrayLength", num(a.arrayLength()), num(b.arrayLength()));
        field(b, "accessRights", hx(a.accessRights()), hx(b.accessRights()));
        field(b, "objectUsage", hx(a.objectUsage()), hx(b.objectUsage()));
        field(b, "userlevelRead", num(a.userlevelRead()), num(b.userlevelRead()));
        field(b, "userlevelWrite", num(a.userlevelWrite()), num(b.userlevelWrite()));
        field(b, "userlevelVisible", num(a.userlevelVisible()), num(b.userlevelVisible()));
        field(b, "minValue", valueText(a.minValue()), valueText(b.minValue()));
        field(b, "maxValue", valueText(a.maxValue()), valueText(b.maxValue()));
        field(b, "defaultValue", valueText(a.defaultValue()), valueText(b.defaultValue()));
        field(b, "yMinValue", valueText(a.yMinValue()), valueText(b.yMinValue()));
        field(b, "yMaxValue", valueText(a.yMaxValue()), valueText(b.yMaxValue()));
        field(b, "yDefaultValue", valueText(a.yDefaultValue()), valueText(b.yDefaultValue()));
        field(b, "unit", num(a.unit()), num(b.unit()));
        field(b, "yUnit", num(a.yUnit()), num(b.yUnit()));
        field(b, "digits", QString::number(a.digits()), QString::number(b.digits()));
        field(b, "version", CStr::versionToString(a.version()), CStr::versionToString(b.version()));
        field(b, "ds402Id", hx(a.ds402Id()), hx(b.ds402Id()));
        field(b, "profinetId", hx(a.profinetId()), hx(b.profinetId()));
        field(b, "refId", uuid(a.refId()), uuid(b.refId()));
        QStringList subsA, subsB;
        for (const unsigned int s : a.subIdList())
            subsA << QString::number(s);
        for (const unsigned int s : b.subIdList())
            subsB << QString::number(s);
        field(b, "subIdList", present(subsA.join(QStringLiteral(", "))), present(subsB.join(QStringLiteral(", "))));

        // Enumeration and bit texts entry by entry: both lists are ordered, so one merge pass.
        entries(b, "enum", a.enumData().enums(), b.enumData().enums());
        entries(b, "bit", a.bitSetData().bitSet(), b.bitSetData().bitSet());

        if (xa && xb) {
            field(b, "defString", present(xa->defString()), present(xb->defString()));
            field(b, "fwVariable", present(xa->fwVariablename()), present(xb->fwVariablename()));
            field(b, "fwFunction", present(xa->fwFunctionname()), present(xb->fwFunctionname()));
            field(b, "shortDescription", present(xa->shortDescription()), present(xb->shortDescription()));
            field(b, "description", present(xa->description()), present(xb->description()));
            field(b, "accessType", QString::number(xa->accessType()), QString::number(xb->accessType()));
        }
    }

private:
    template <class E>
    static long long keyOf(const E &e)
    {
        if constexpr (std::is_same_v<E, COdictObjectEnum::sOdictObjectEnumData_t>)
            return e.value;
        else
            return e.pos;
    }

    template <class E>
    void entries(const COdictObject &b, const char *name, const QList<E> &x, const QList<E> &y)
    {
        int i = 0, j = 0;
        while (i < x.size() || j < y.size()) {
            const bool takeOld = j >= y.size() || (i < x.size() && keyOf(x.at(i)) < keyOf(y.at(j)));
            const bool takeNew = i >= x.size() || (j < y.size() && keyOf(y.at(j)) < keyOf(x.at(i)));
            const long long key = takeOld ? keyOf(x.at(i)) : keyOf(y.at(j));
            const QString f = QStringLiteral("%1[%2]").arg(QLatin1String(name)).arg(key);
            if (takeOld) {
                add(COdictDiff::E_DC_CHANGED, &b, f, present(x.at(i++).name), QString());
            } else if (takeNew) {
                add(COdictDiff::E_DC_CHANGED, &b, f, QString(), present(y.at(j++).name));
            } else {
                if (x.at(i).name != y.at(j).name)
                    add(COdictDiff::E_DC_CHANGED, &b, f, present(x.at(i).name), present(y.at(j).name));
                ++i;
                ++j;
            }
        }
    }
};

} // namespace

QList<COdictDiff::sChange_t> COdictDiff::compare(const COdict *older, const COdict *newer)
{
    if (!older || !newer)
        return {};
    CDiffer differ;
    differ.document(*older, *newer);
    const int documentChanges = differ.changes.size();

    const sSide_t a(older->objectTree());
    const sSide_t b(newer->objectTree());
    for (auto ours = a.byId.cbegin(); ours != a.byId.cend(); ++ours) {
        const auto theirs = b.byId.constFind(ours.key());
        if (theirs == b.byId.cend())
            differ.add(E_DC_REMOVED, ours->object, QStringLiteral("object"), present(ours->object->name()), QString());
        else
            differ.object(*ours, *theirs);
    }
    for (auto theirs = b.byId.cbegin(); theirs != b.byId.cend(); ++theirs) {
        if (!a.byId.contains(theirs.key()))
            differ.add(E_DC_ADDED, theirs->object, QStringLiteral("object"), QString(), present(theirs->object->name()));
    }
    // Hash order is no order: objects by id, each followed by its sub-objects (the object's own
    // sub-id, none, counts as the lowest); the stable sort keeps an object's fields in order.
    std::stable_sort(differ.changes.begin() + documentChanges, differ.changes.end(), [](const sChange_t &x, const sChange_t &y) {
        return x.id != y.id ? x.id < y.id : x.subId + 1u < y.subId + 1u;
    });
    return differ.changes;
}

QString COdictDiff::kindName(eChange_t kind)
{
    static const char *const names[] = {"metadata", "history", "structure", "added", "removed", "moved", "renamed", "changed"};
    return kind >= E_DC_METADATA && kind <= E_DC_CHANGED ? QLatin1String(names[kind]) : QString();
}

#include "COdictCheck.h"

#include "COdict.h"
#include "COdictCanOpen.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "CVariant.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace {

const char *const ruleIds[] = {
    "limits-inverted", "default-outside-limits", "enum-outside-limits", "bit-beyond-size",
    "duplicate-name", "display-name-missing", "subid-list-mismatch", "canopen-index-collision",
};

bool isNumber(const CVariant &v)
{
    return !v.isNull() && !v.isArray()
        && (CVariant::isSignedType(v.type()) || CVariant::isUnsignedType(v.type()) || CVariant::isFloatType(v.type()));
}

/// -1, 0 or 1 as \a a is below, equal to or above \a b; 2 when they are no comparable numbers.
int compareNumbers(const CVariant &a, const CVariant &b)
{
    if (!isNumber(a) || !isNumber(b))
        return 2;
    bool okA = false, okB = false;
    if (!CVariant::isFloatType(a.type()) && !CVariant::isFloatType(b.type())) {
        const qint64 x = a.toI64(&okA), y = b.toI64(&okB);
        if (okA && okB)
            return x < y ? -1 : x > y ? 1 : 0;
        const quint64 ux = a.toU64(&okA), uy = b.toU64(&okB);
        if (okA && okB)
            return ux < uy ? -1 : ux > uy ? 1 : 0;
    }
    const double x = a.toF64(&okA), y = b.toF64(&okB);
    if (!okA || !okB || x != x || y != y) // NaN is no bound
        return 2;
    return x < y ? -1 : x > y ? 1 : 0;
}

/// Collects the findings of one dictionary.
class CChecker
{
public:
    explicit CChecker(const COdict *odict) : m_odict(odict) {}

    QList<sOdictFinding_t> run()
    {
        const COdictObjectTree *tree = m_odict ? m_odict->objectTree() : nullptr;
        if (!tree)
            return {};
        QHash<COdictObjectName, const COdictObject *> names;
        for (const COdictObjectId &key : tree->allObjectUIds()) {
            const COdictObject *object = tree->objectPtr(key);
            if (!object || object->isVirtual())
                continue;
            limits(*object, object->minValue(), object->maxValue(), object->defaultValue(), QString());
            limits(*object, object->yMinValue(), object->yMaxValue(), object->yDefaultValue(), QStringLiteral("Y "));
            texts(*object);
            const auto seen = names.constFind(object->uniqueName());
            if (seen != names.cend()) {
                add("duplicate-name", *object, QStringLiteral("%1: the name is also used by %2; lookups by name find only one of them")
                                                   .arg(object->longInfo(), (*seen)->longInfo()));
            } else {
                names.insert(object->uniqueName(), object);
            }
            if (object->uiName().isEmpty())
                add("display-name-missing", *object, QStringLiteral("%1: no display name").arg(object->longInfo()),
                    NkrLogfiles::E_SEV_INFO);
            if (!object->isSubObject())
                subObjects(*object, tree->node(key));
        }
        const COdictCanOpenMap canOpen(m_odict);
        for (const sOdictCanOpenPlace_t &place : canOpen.collisions()) {
            add("canopen-index-collision", *place.object,
                QStringLiteral("%1: CANopen index %2 is also claimed by %3")
                    .arg(place.object->longInfo(), COdictCanOpen::indexText(place.index),
                         place.rivals.join(QStringLiteral(", "))));
        }
        // Object by object in id order, whatever rule found it.
        std::stable_sort(m_findings.begin(), m_findings.end(), [](const sOdictFinding_t &a, const sOdictFinding_t &b) {
            return a.id != b.id ? a.id < b.id : a.subId + 1u < b.subId + 1u; // sub-objects after their object
        });
        return m_findings;
    }

private:
    void add(const char *rule, const COdictObject &object, const QString &message,
             NkrLogfiles::eSeverity_t severity = NkrLogfiles::E_SEV_WARNING)
    {
        m_findings.append({QLatin1String(rule), severity, object.id(), object.subId(), message});
    }

    void limits(const COdictObject &object, const CVariant &min, const CVariant &max, const CVariant &def, const QString &axis)
    {
        const QString who = object.longInfo();
        if (compareNumbers(min, max) == 1) {
            add("limits-inverted", object, QStringLiteral("%1: %2minimum %3 lies above the maximum %4")
                                               .arg(who, axis, min.toStr(), max.toStr()));
            return; // every default would lie outside
        }
        if (compareNumbers(def, min) == -1 || compareNumbers(def, max) == 1) {
            add("default-outside-limits", object, QStringLiteral("%1: %2default %3 lies outside the limits %4..%5")
                                                      .arg(who, axis, def.toStr(), min.toStr(), max.toStr()));
        }
    }

    void texts(const COdictObject &object)
    {
        const CVariant min = object.minValue(), max = object.maxValue();
        for (const auto &entry : object.enumData().enums()) {
            const CVariant value = CVariant::fromI64(entry.value, NTypes::E_I64);
            if (compareNumbers(value, min) == -1 || compareNumbers(value, max) == 1) {
                add("enum-outside-limits", object, QStringLiteral("%1: enumeration value %2 (%3) lies outside the limits %4..%5")
                                                       .arg(object.longInfo(), QString::number(entry.value), entry.name,
                                                            min.toStr(), max.toStr()));
            }
        }
        const unsigned int bytes = object.dataSize() > 0 ? object.dataSize() : object.dataTypeSize();
        for (const auto &bit : object.bitSetData().bitSet()) {
            if (quint64(bit.pos) >= quint64(bytes) * 8) {
                add("bit-beyond-size", object, QStringLiteral("%1: bit %2 (%3) lies beyond its %4 bytes of data")
                                                   .arg(object.longInfo(), QString::number(bit.pos), bit.name,
                                                        QString::number(bytes)));
            }
        }
    }

    void subObjects(const COdictObject &object, const COdictNode *node)
    {
        QList<unsigned int> present;
        for (const COdictNode *child : node->children()) {
            const COdictItem &item = child->dataRef();
            if (item.type() == NkrOdict::E_IT_SUBOBJECT && item.objectPtr() && !item.objectPtr()->isVirtual())
                present.append(item.objectPtr()->subId());
        }
        std::sort(present.begin(), present.end());
        const QList<unsigned int> listed = object.subIdList();
        if (listed == present)
            return;
        const QSet<unsigned int> listedSet(listed.cbegin(), listed.cend());
        const QSet<unsigned int> presentSet(present.cbegin(), present.cend());
        const auto join = [](QSet<unsigned int> set) {
            QList<unsigned int> sorted(set.cbegin(), set.cend());
            std::sort(sorted.begin(), sorted.end());
            QStringList texts;
            for (const unsigned int n : sorted)
                texts << QString::number(n);
            return texts.join(QStringLiteral(", "));
        };
        QStringList problems;
        if (!(listedSet - presentSet).isEmpty())
            problems << QStringLiteral("lists sub-ids without sub-object: %1").arg(join(listedSet - presentSet));
        if (!(presentSet - listedSet).isEmpty())
            problems << QStringLiteral("has sub-objects it does not list: %1").arg(join(presentSet - listedSet));
        if (problems.isEmpty())
            problems << QStringLiteral("its sub-id list is not in ascending order or repeats a sub-id");
        add("subid-list-mismatch", object, object.longInfo() + QStringLiteral(": ") + problems.join(QStringLiteral("; ")));
    }

    const COdict *m_odict;
    QList<sOdictFinding_t> m_findings;
};

} // namespace

QList<sOdictFinding_t> COdictCheck::check(const COdict *odict)
{
    return CChecker(odict).run();
}

QStringList COdictCheck::rules()
{
    QStringList ids;
    for (const char *id : ruleIds)
        ids << QLatin1String(id);
    return ids;
}

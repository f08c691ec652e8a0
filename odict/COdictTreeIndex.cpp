#include "COdictTreeIndex_p.h"
#include "COdictMergedKey_p.h"

#include "COdictObject.h"

#include <QMutex>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// Maps are built rarely; one lock for all of them keeps the indexes small.
QBasicMutex mapBuildLock;

} // namespace

template <class D, class M, class S>
std::vector<std::pair<typename M::key_type, COdictNode *>> COdictOrderedHashIndex<D, M, S>::sortedEntries() const
{
    std::vector<std::pair<typename M::key_type, COdictNode *>> entries;
    entries.reserve(size_t(m_table.count()));
    const D &index = static_cast<const D &>(*this);
    m_table.forEach([&index, &entries](const S &slot) { entries.emplace_back(index.keyOf(slot), slot.node); });
    std::sort(entries.begin(), entries.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    return entries;
}

template <class D, class M, class S>
void COdictOrderedHashIndex<D, M, S>::buildMap() const
{
    QMutexLocker locker(&mapBuildLock);
    if (m_mapBuilt.load(std::memory_order_relaxed))
        return;
    m_map.clear();
    for (const auto &entry : sortedEntries())
        m_map.insert(m_map.cend(), entry.first, entry.second); // in order: each lands at the end
    m_mapBuilt.store(true, std::memory_order_release);
}

template class COdictOrderedHashIndex<COdictIdIndex, COdictObjectTree::IdIndex, COdictIdSlot>;
template class COdictOrderedHashIndex<COdictNameIndex, COdictObjectTree::NameIndex, COdictNameSlot>;

// ---- COdictIdIndex ----

bool COdictIdIndex::contains(const COdictObjectId &key) const
{
    return find(key.toU64()) != nullptr;
}

void COdictIdIndex::insert(const COdictObjectId &key, COdictNode *node)
{
    if (mapInStep())
        m_map.insert(key, node);
    const quint64 packed = key.toU64();
    if (Slot *slot = m_table.find(packed, [packed](const Slot &s) { return s.key == packed; })) {
        slot->node = node;
        slot->object = objectOfNode(node);
        return;
    }
    if (key.id() == 0 && key.subId() != COdictObject::NoId)
        m_zeroSubKeys.insert(packed, key);
    Slot slot;
    slot.key = packed;
    slot.node = node;
    slot.object = objectOfNode(node);
    m_table.add(std::move(slot));
}

COdictObjectId COdictIdIndex::keyOf(const COdictIdSlot &slot) const
{
    const auto zero = m_zeroSubKeys.constFind(slot.key);
    return zero != m_zeroSubKeys.cend() ? zero.value() : COdictObjectId(quint64(slot.key));
}

QList<COdictObjectId> COdictIdIndex::keys() const
{
    if (hasMap())
        return m_map.keys();
    // Sorting the keys alone costs 8 bytes a key for a moment; the map would keep 48 for good.
    QList<COdictObjectId> keys;
    keys.reserve(size());
    std::vector<COdictObjectId> sorted;
    sorted.reserve(size_t(size()));
    forEachKey([&sorted](const COdictObjectId &key) { sorted.push_back(key); });
    std::sort(sorted.begin(), sorted.end());
    for (const COdictObjectId &key : sorted)
        keys.append(key);
    return keys;
}

unsigned int COdictIdIndex::highestId() const
{
    unsigned int highest = 0;
    forEachKey([&highest](const COdictObjectId &key) { highest = qMax(highest, key.id()); });
    return highest;
}

void COdictIdIndex::remove(const COdictObjectId &key)
{
    if (mapInStep())
        m_map.remove(key);
    const quint64 packed = key.toU64();
    m_zeroSubKeys.remove(packed);
    if (Slot *slot = m_table.find(packed, [packed](const Slot &s) { return s.key == packed; }))
        m_table.erase(slot);
}

void COdictIdIndex::clear()
{
    m_zeroSubKeys.clear();
    clearEntries();
}

// ---- COdictNameIndex ----

namespace {

// Hashes a sequence of UTF-16 code units four at a time, the same value however the sequence is
// fed in pieces: the name and the sub-id suffix of a merged key go in one after the other.
class CMergedKeyHasher
{
public:
    void add(const char16_t *units, qsizetype count)
    {
        for (; m_pending != 0 && count > 0; --count)
            addUnit(*units++);
        for (; count >= 4; count -= 4, units += 4)
            mix(qFromLittleEndian<quint64>(units)); // the same word addUnit() assembles
        for (; count > 0; --count)
            addUnit(*units++);
    }
    quint32 finish()
    {
        mix(m_word ^ (quint64(m_length) << 48));
        quint64 h = m_hash;
        h ^= h >> 33;
        h *= Q_UINT64_C(0xFF51AFD7ED558CCD);
        h ^= h >> 33;
        const quint32 result = quint32(h);
        return result ? result : 1u; // 0 marks a free slot
    }

private:
    void addUnit(char16_t unit)
    {
        m_word |= quint64(unit) << (16 * m_pending);
        if (++m_pending == 4) {
            mix(m_word);
            m_word = 0;
            m_pending = 0;
        }
    }
    void mix(quint64 word)
    {
        m_hash = (m_hash ^ word) * Q_UINT64_C(0x9E3779B97F4A7C15);
        m_hash ^= m_hash >> 29;
        m_length += 4;
    }

    quint64 m_hash = Q_UINT64_C(0x243F6A8885A308D3);
    quint64 m_word = 0;
    quint64 m_length = 0; // counts whole words; the pending units are in m_word
    int m_pending = 0;
};

} // namespace

quint32 COdictNameIndex::mergedHash(QStringView name, unsigned int subId)
{
    CMergedKeyHasher hasher;
    hasher.add(reinterpret_cast<const char16_t *>(name.utf16()), name.size());
    char16_t suffix[kMergedSuffixMax];
    hasher.add(suffix, mergedKeySuffix(subId, suffix));
    return hasher.finish();
}

bool COdictNameIndex::sameMergedKeyOfOtherSubIds(QStringView a, unsigned int subA, QStringView b, unsigned int subB)
{
    // Different sub-ids can still give one key: ("Speed_1", none) and ("Speed", 1). With a the
    // shorter name, b must start with a, and b's further characters and then b's suffix must
    // spell a's suffix.
    if (a.size() > b.size()) {
        std::swap(a, b);
        std::swap(subA, subB);
    }
    char16_t suffixA[kMergedSuffixMax];
    char16_t suffixB[kMergedSuffixMax];
    const qsizetype lengthA = mergedKeySuffix(subA, suffixA);
    const qsizetype lengthB = mergedKeySuffix(subB, suffixB);
    const qsizetype extra = b.size() - a.size();
    if (extra + lengthB != lengthA)
        return false;
    if (std::memcmp(a.data(), b.data(), size_t(a.size()) * sizeof(QChar)) != 0)
        return false;
    for (qsizetype i = 0; i < extra; ++i) {
        if (b[a.size() + i].unicode() != suffixA[i])
            return false;
    }
    return std::memcmp(suffixB, suffixA + extra, size_t(lengthB) * sizeof(char16_t)) == 0;
}

bool COdictNameIndex::contains(const COdictObjectName &name) const
{
    return find(name.name(), name.subId()) != nullptr;
}

void COdictNameIndex::insert(const COdictObjectName &name, COdictNode *node)
{
    if (mapInStep())
        m_map.insert(name, node);
    if (Slot *slot = const_cast<Slot *>(find(name.name(), name.subId()))) {
        slot->node = node; // like the map, the entry keeps its first key
        slot->object = objectOfNode(node);
        return;
    }
    Slot slot;
    slot.hashValue = mergedHash(name.name(), name.subId());
    slot.subId = name.subId();
    slot.name = name.name();
    slot.node = node;
    slot.object = objectOfNode(node);
    m_table.add(std::move(slot));
}

void COdictNameIndex::remove(const COdictObjectName &name)
{
    if (mapInStep())
        m_map.remove(name);
    if (const Slot *slot = find(name.name(), name.subId()))
        m_table.erase(const_cast<Slot *>(slot));
}

void COdictNameIndex::clear()
{
    clearEntries();
}

// ---- COdictRefIdIndex ----

namespace {

// Calls visit for top and its descendants in pre-order, with a work list instead of recursion.
template <class Visit>
void forSubtree(const COdictNode *top, Visit visit)
{
    QVector<const COdictNode *> pending{top};
    while (!pending.isEmpty()) {
        const COdictNode *current = pending.takeLast();
        visit(current);
        for (int i = current->childCount() - 1; i >= 0; --i) // reversed, so the first child comes first
            pending.append(current->child(i));
    }
}

// The row of each node on the way from the top of its tree down to it (the top itself excluded).
QVector<int> pathOf(const COdictNode *node)
{
    QVector<int> rows;
    for (; node->parent(); node = node->parent())
        rows.prepend(node->parent()->children().indexOf(const_cast<COdictNode *>(node)));
    return rows;
}

// True when a comes before b in a pre-order walk of their tree: an ancestor before its
// descendants, else the one below the earlier child where their paths part.
bool precedes(const COdictNode *a, const COdictNode *b)
{
    const QVector<int> pathA = pathOf(a);
    const QVector<int> pathB = pathOf(b);
    const int common = qMin(pathA.size(), pathB.size());
    for (int i = 0; i < common; ++i) {
        if (pathA.at(i) != pathB.at(i))
            return pathA.at(i) < pathB.at(i);
    }
    return pathA.size() < pathB.size();
}

} // namespace

COdictRefIdIndex::Key COdictRefIdIndex::keyOf(const QUuid &refId)
{
    Key key;
    key.low = quint64(refId.data1) | quint64(refId.data2) << 32 | quint64(refId.data3) << 48;
    std::memcpy(&key.high, refId.data4, sizeof key.high);
    return key;
}

void COdictRefIdIndex::addNode(COdictNode *node)
{
    const QUuid refId = node->dataRef().refId();
    if (refId.isNull())
        return; // no item has it; the tree walks for it
    const Key key = keyOf(refId);
    Slot *slot = m_table.find(key.hash(), [&key](const Slot &s) { return s.key == key; });
    if (!slot) {
        Slot entered;
        entered.key = key;
        entered.node = node;
        m_table.add(std::move(entered));
        return;
    }
    if (slot->node == node)
        return;
    // A second node of that reference id (items copied with their id): the earlier keeps the entry.
    m_shared.insert(refId);
    if (precedes(node, slot->node))
        slot->node = node;
}

void COdictRefIdIndex::addSubtree(COdictNode *top)
{
    forSubtree(top, [this](const COdictNode *node) { addNode(const_cast<COdictNode *>(node)); });
}

void COdictRefIdIndex::leave(const COdictNode *node, const QUuid &refId, QSet<QUuid> *unsettled)
{
    if (refId.isNull())
        return;
    if (!m_shared.isEmpty() && m_shared.contains(refId)) {
        unsettled->insert(refId);
        return;
    }
    const Key key = keyOf(refId);
    if (Slot *slot = m_table.find(key.hash(), [&key](const Slot &s) { return s.key == key; })) {
        if (slot->node == node)
            m_table.erase(slot);
    }
}

void COdictRefIdIndex::removeNode(const COdictNode *node, const QUuid &refId)
{
    QSet<QUuid> unsettled;
    leave(node, refId, &unsettled);
    if (!unsettled.isEmpty())
        settle(unsettled);
}

void COdictRefIdIndex::removeSubtree(COdictNode *top)
{
    if (m_table.count() == 0)
        return;
    QSet<QUuid> unsettled;
    forSubtree(top, [&](const COdictNode *node) { leave(node, node->dataRef().refId(), &unsettled); });
    if (!unsettled.isEmpty())
        settle(unsettled);
}

void COdictRefIdIndex::settle(const QSet<QUuid> &refIds)
{
    for (const QUuid &refId : refIds) {
        const Key key = keyOf(refId);
        if (Slot *slot = m_table.find(key.hash(), [&key](const Slot &s) { return s.key == key; }))
            m_table.erase(slot);
    }
    QHash<QUuid, int> holders;
    if (m_root) {
        forSubtree(m_root, [&](const COdictNode *node) {
            const QUuid refId = node->dataRef().refId();
            if (!refIds.contains(refId))
                return;
            if (holders[refId]++ == 0) {
                Slot entered;
                entered.key = keyOf(refId);
                entered.node = const_cast<COdictNode *>(node);
                m_table.add(std::move(entered));
            }
        });
    }
    for (const QUuid &refId : refIds) {
        if (holders.value(refId) < 2)
            m_shared.remove(refId);
    }
}

void COdictRefIdIndex::clear()
{
    m_table.clear();
    m_shared.clear();
}

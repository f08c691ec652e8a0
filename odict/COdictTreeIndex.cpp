#include "COdictTreeIndex_p.h"
#include "COdictMergedKey_p.h"

#include <QtEndian>

#include <utility>

namespace {

constexpr size_t minCapacity = 16;


// The smallest power of two that holds count entries at most three quarters full.
size_t capacityFor(size_t count)
{
    size_t capacity = minCapacity;
    while (capacity / 4 * 3 < count)
        capacity *= 2;
    return capacity;
}

// True when slot j (home h) may move back into the hole at i: its home does not lie
// cyclically within (i, j].
bool mayFill(size_t i, size_t j, size_t home)
{
    return i <= j ? (home <= i || home > j) : (home <= i && home > j);
}

} // namespace

// ---- COdictIdIndex ----

bool COdictIdIndex::contains(const COdictObjectId &key) const
{
    return m_map.contains(key);
}

void COdictIdIndex::insert(const COdictObjectId &key, COdictNode *node)
{
    m_map.insert(key, node);
    put(key.toU64(), node);
}

void COdictIdIndex::put(quint64 packed, COdictNode *node)
{
    if (size_t(m_used + 1) > m_slots.size() / 4 * 3)
        rehash(capacityFor(size_t(m_used) + 1));
    for (size_t i = slotOf(packed);; i = (i + 1) & m_mask) {
        Slot &slot = m_slots[i];
        if (slot.key == packed) {
            slot.node = node;
            return;
        }
        if (slot.key == s_empty) {
            slot.key = packed;
            slot.node = node;
            ++m_used;
            return;
        }
    }
}

void COdictIdIndex::remove(const COdictObjectId &key)
{
    m_map.remove(key);
    if (m_slots.empty())
        return;
    const quint64 packed = key.toU64();
    size_t hole = slotOf(packed);
    while (m_slots[hole].key != packed) {
        if (m_slots[hole].key == s_empty)
            return;
        hole = (hole + 1) & m_mask;
    }
    // Backward shift: later slots of the probe run move into the hole, so no tombstones are left.
    for (size_t j = (hole + 1) & m_mask; m_slots[j].key != s_empty; j = (j + 1) & m_mask) {
        if (mayFill(hole, j, slotOf(m_slots[j].key))) {
            m_slots[hole] = m_slots[j];
            hole = j;
        }
    }
    m_slots[hole] = Slot();
    --m_used;
}

void COdictIdIndex::clear()
{
    m_map.clear();
    std::vector<Slot>().swap(m_slots);
    m_mask = 0;
    m_shift = 64;
    m_used = 0;
}

void COdictIdIndex::reserve(int count)
{
    const size_t capacity = capacityFor(size_t(qMax(count, m_used)));
    if (capacity > m_slots.size())
        rehash(capacity);
}

void COdictIdIndex::rehash(size_t capacity)
{
    std::vector<Slot> old(capacity);
    old.swap(m_slots);
    m_mask = capacity - 1;
    m_shift = 64;
    for (size_t c = capacity; c > 1; c /= 2)
        --m_shift;
    m_used = 0;
    for (const Slot &slot : old) {
        if (slot.key != s_empty)
            put(slot.key, slot.node);
    }
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

bool COdictNameIndex::sameMergedKey(QStringView a, unsigned int subA, QStringView b, unsigned int subB)
{
    if (subA == subB)
        return a == b;
    // Different sub-ids can still give one key: ("Speed_1", none) and ("Speed", 1).
    char16_t suffixA[kMergedSuffixMax];
    char16_t suffixB[kMergedSuffixMax];
    const qsizetype lengthA = a.size() + mergedKeySuffix(subA, suffixA);
    const qsizetype lengthB = b.size() + mergedKeySuffix(subB, suffixB);
    if (lengthA != lengthB)
        return false;
    for (qsizetype i = 0; i < lengthA; ++i) {
        const char16_t ca = i < a.size() ? a[i].unicode() : suffixA[i - a.size()];
        const char16_t cb = i < b.size() ? b[i].unicode() : suffixB[i - b.size()];
        if (ca != cb)
            return false;
    }
    return true;
}

int COdictNameIndex::find(QStringView name, unsigned int subId, quint32 hash) const
{
    if (m_slots.empty())
        return -1;
    for (size_t i = hash & m_mask;; i = (i + 1) & m_mask) {
        const Slot &slot = m_slots[i];
        if (slot.hash == 0)
            return -1;
        if (slot.hash == hash && sameMergedKey(slot.name, slot.subId, name, subId))
            return int(i);
    }
}

COdictNode *COdictNameIndex::value(QStringView name, unsigned int subId) const
{
    const int i = find(name, subId, mergedHash(name, subId));
    return i < 0 ? nullptr : m_slots[size_t(i)].node;
}

bool COdictNameIndex::contains(const COdictObjectName &name) const
{
    return m_map.contains(name);
}

void COdictNameIndex::insert(const COdictObjectName &name, COdictNode *node)
{
    m_map.insert(name, node);
    Slot slot;
    slot.name = name.name();
    slot.subId = name.subId();
    slot.hash = mergedHash(name.name(), name.subId());
    slot.node = node;
    put(std::move(slot));
}

void COdictNameIndex::put(Slot &&entry)
{
    if (size_t(m_used + 1) > m_slots.size() / 4 * 3)
        rehash(capacityFor(size_t(m_used) + 1));
    for (size_t i = entry.hash & m_mask;; i = (i + 1) & m_mask) {
        Slot &slot = m_slots[i];
        if (slot.hash == 0) {
            slot = std::move(entry);
            ++m_used;
            return;
        }
        if (slot.hash == entry.hash && sameMergedKey(slot.name, slot.subId, entry.name, entry.subId)) {
            slot.node = entry.node; // like the map, the entry keeps its first key
            return;
        }
    }
}

void COdictNameIndex::remove(const COdictObjectName &name)
{
    m_map.remove(name);
    int found = find(name.name(), name.subId(), mergedHash(name.name(), name.subId()));
    if (found < 0)
        return;
    size_t hole = size_t(found);
    // Backward shift: later slots of the probe run move into the hole, so no tombstones are left.
    for (size_t j = (hole + 1) & m_mask; m_slots[j].hash != 0; j = (j + 1) & m_mask) {
        if (mayFill(hole, j, m_slots[j].hash & m_mask)) {
            m_slots[hole] = std::move(m_slots[j]);
            hole = j;
        }
    }
    m_slots[hole] = Slot();
    --m_used;
}

void COdictNameIndex::clear()
{
    m_map.clear();
    std::vector<Slot>().swap(m_slots);
    m_mask = 0;
    m_used = 0;
}

void COdictNameIndex::reserve(int count)
{
    const size_t capacity = capacityFor(size_t(qMax(count, m_used)));
    if (capacity > m_slots.size())
        rehash(capacity);
}

void COdictNameIndex::rehash(size_t capacity)
{
    std::vector<Slot> old(capacity);
    old.swap(m_slots);
    m_mask = capacity - 1;
    m_used = 0;
    for (Slot &slot : old) {
        if (slot.hash != 0)
            put(std::move(slot));
    }
}

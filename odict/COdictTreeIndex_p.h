#pragma once

#include "COdictObjectTree.h"

#include <QHash>
#include <QSet>
#include <QStringView>

#include <atomic>
#include <cstring>
#include <vector>

// The indexes of a tree. The id and name indexes each keep an open-addressing hash table, so that
// lookups cost a hash and a probe or two instead of a walk down a tree of string or id
// comparisons, and the ordered map that the tree hands out (and that the ordered results walk).
// The map is built from the table the first time it is asked for and kept in step from then on:
// loading a dictionary fills only the tables, and a dictionary whose order nobody asks for never
// pays for the map. Every change goes through these classes, which keeps the map and the table in
// step. A slot holds what a lookup answers: the node and its object, so that a lookup of an
// object reads one slot and nothing else.

/// Open addressing with linear probing over slots of type S, which has `bool isFree() const`
/// (a default-constructed slot is free) and `quint64 hash() const`. Removal shifts the later
/// slots of a probe run back, so no tombstones are left; the table is a power of two long and at
/// most seven eighths full. So full a table probes a few slots more than a sparser one, but with
/// slots of 24 or 32 bytes a run still lies in one or two cache lines, and for many sizes the
/// table is half as long as at three quarters.
template <class S>
class COdictHashTable
{
public:
    /// The slot for which \a matches answers true, searched from the home of \a hash; null when none.
    template <class Match>
    const S *find(quint64 hash, Match matches) const
    {
        if (m_slots.empty())
            return nullptr;
        for (size_t i = homeOf(hash);; i = (i + 1) & m_mask) {
            const S &slot = m_slots[i];
            if (slot.isFree())
                return nullptr;
            if (matches(slot))
                return &slot;
        }
    }
    /// The mutable form of find().
    template <class Match>
    S *find(quint64 hash, Match matches)
    {
        return const_cast<S *>(static_cast<const COdictHashTable *>(this)->find(hash, matches));
    }
    /// Takes \a slot into the table; the caller has made sure that its key is not there yet.
    void add(S &&slot)
    {
        if (size_t(m_used + 1) > m_slots.size() / 8 * 7)
            rehash(capacityFor(size_t(m_used) + 1));
        place(std::move(slot));
    }
    /// Removes \a slot, a slot of this table.
    void erase(S *slot)
    {
        size_t hole = size_t(slot - m_slots.data());
        for (size_t j = (hole + 1) & m_mask; !m_slots[j].isFree(); j = (j + 1) & m_mask) {
            // Slot j may move back into the hole unless its home lies cyclically within (hole, j].
            const size_t home = homeOf(m_slots[j].hash());
            if (hole <= j ? (home <= hole || home > j) : (home <= hole && home > j)) {
                m_slots[hole] = std::move(m_slots[j]);
                hole = j;
            }
        }
        m_slots[hole] = S();
        --m_used;
    }
    /// Removes every slot and gives the memory back.
    void clear()
    {
        std::vector<S>().swap(m_slots);
        m_mask = 0;
        m_shift = 64;
        m_used = 0;
    }
    /// Makes room for \a count slots without growing again.
    void reserve(int count)
    {
        const size_t capacity = capacityFor(size_t(qMax(count, m_used)));
        if (capacity > m_slots.size())
            rehash(capacity);
    }
    /// Slots in use.
    int count() const { return m_used; }
    /// Calls \a visit for every slot in use (in table order), which may change what it holds
    /// but not its key.
    template <class Visit>
    void forEach(Visit visit)
    {
        for (S &slot : m_slots) {
            if (!slot.isFree())
                visit(slot);
        }
    }
    /// Calls \a visit for every slot in use (in table order).
    template <class Visit>
    void forEach(Visit visit) const
    {
        for (const S &slot : m_slots) {
            if (!slot.isFree())
                visit(slot);
        }
    }

private:
    static size_t capacityFor(size_t count)
    {
        size_t capacity = 16;
        while (capacity / 8 * 7 < count)
            capacity *= 2;
        return capacity;
    }
    // Fibonacci hashing: the top bits of the product, so keys that differ only in high bits
    // (packed ids) or only in low bits spread alike.
    size_t homeOf(quint64 hash) const { return size_t((hash * Q_UINT64_C(0x9E3779B97F4A7C15)) >> m_shift); }
    void place(S &&slot)
    {
        size_t i = homeOf(slot.hash());
        while (!m_slots[i].isFree())
            i = (i + 1) & m_mask;
        m_slots[i] = std::move(slot);
        ++m_used;
    }
    void rehash(size_t capacity)
    {
        std::vector<S> old(capacity);
        old.swap(m_slots);
        m_mask = capacity - 1;
        m_shift = 64;
        for (size_t c = capacity; c > 1; c /= 2)
            --m_shift;
        m_used = 0;
        for (S &slot : old) {
            if (!slot.isFree())
                place(std::move(slot));
        }
    }

    std::vector<S> m_slots;
    size_t m_mask = 0;
    int m_shift = 64;
    int m_used = 0;
};

/// The object of \a node's item; null without node, item or object.
inline COdictObject *objectOfNode(const COdictNode *node)
{
    return node && node->hasData() ? node->dataPtr()->objectPtr() : nullptr;
}

/// What the id and name indexes share: the hash table of slots of type S (each with a node and
/// its object), the ordered map of type M built from it on demand by D::keyOf(slot), and the
/// bookkeeping of both.
template <class D, class M, class S>
class COdictOrderedHashIndex
{
public:
    /// The ordered map, built on the first call.
    const M &map() const
    {
        if (!m_mapBuilt.load(std::memory_order_acquire))
            buildMap();
        return m_map;
    }
    /// Makes room for \a count entries without growing again.
    void reserve(int count) { m_table.reserve(count); }
    /// Entries.
    int size() const { return m_table.count(); }
    /// True when there are no entries.
    bool isEmpty() const { return m_table.count() == 0; }
    /// Entries of the hash table (the same as size()).
    int hashedCount() const { return m_table.count(); }
    /// Whether the ordered map has been built (it then holds size() entries).
    bool hasMap() const { return m_mapBuilt.load(std::memory_order_acquire); }
    /// Takes the object of \a node afresh into every entry that holds \a node.
    void refreshObject(const COdictNode *node)
    {
        m_table.forEach([node](S &slot) {
            if (slot.node == node)
                slot.object = objectOfNode(node);
        });
    }

protected:
    /// Whether changes must reach the map too.
    bool mapInStep() const { return m_mapBuilt.load(std::memory_order_relaxed); }
    /// Empties the table and the map, which is built afresh when next asked for.
    void clearEntries()
    {
        m_map.clear();
        m_mapBuilt.store(false, std::memory_order_release);
        m_table.clear();
    }
    /// Sorts the table's entries by key and fills the map with them, each at its end.
    void buildMap() const;
    /// The table's entries (key, node) sorted by key.
    std::vector<std::pair<typename M::key_type, COdictNode *>> sortedEntries() const;

    mutable M m_map;
    mutable std::atomic<bool> m_mapBuilt{false};
    COdictHashTable<S> m_table;
};

/// A slot of the id index.
struct COdictIdSlot
{
    // All ones is no packed id (a lower half of all ones means no sub-id, and then the upper half
    // is zero), so it marks a free slot.
    static constexpr quint64 s_free = ~quint64(0);
    quint64 key = s_free;
    // The node's object as it was entered. Null when it had none: the node is asked then, so an
    // object that an item gets later is still found.
    COdictObject *object = nullptr;
    COdictNode *node = nullptr;

    bool isFree() const { return key == s_free; }
    quint64 hash() const { return key; }
    COdictObject *objectOrNode() const { return object ? object : objectOfNode(node); }
};

/// A slot of the name index; two to a cache line, so the hash, the key and the answer of a probe
/// lie together.
struct alignas(32) COdictNameSlot
{
    quint32 hashValue = 0; // 0: free slot
    quint32 subId = 0;
    QString name;          // shares its characters with the object's name
    COdictNode *node = nullptr;
    COdictObject *object = nullptr; // as in COdictIdSlot: null means ask the node

    bool isFree() const { return hashValue == 0; }
    quint64 hash() const { return hashValue; }
    COdictObject *objectOrNode() const { return object ? object : objectOfNode(node); }
};

/// Unique id to node: the ordered map and a hash table keyed by the packed id.
class COdictIdIndex : public COdictOrderedHashIndex<COdictIdIndex, COdictObjectTree::IdIndex, COdictIdSlot>
{
public:
    /// The node entered under \a key (the entry may hold null); null when there is none.
    COdictNode *value(const COdictObjectId &key) const
    {
        const Slot *slot = find(key.toU64());
        return slot ? slot->node : nullptr;
    }
    /// The object of the node entered under \a key; null when there is none.
    COdictObject *object(const COdictObjectId &key) const
    {
        const Slot *slot = find(key.toU64());
        return slot ? slot->objectOrNode() : nullptr;
    }
    /// True when \a key has an entry (which may hold null).
    bool contains(const COdictObjectId &key) const;
    /// Enters \a node under \a key, replacing an entry of an equal key.
    void insert(const COdictObjectId &key, COdictNode *node);
    /// Removes the entry of \a key.
    void remove(const COdictObjectId &key);
    /// Removes every entry.
    void clear();

    /// The key of the map for \a slot: the key it was first entered with.
    COdictObjectId keyOf(const COdictIdSlot &slot) const;
    /// Every key in key order, without building the map when it is not there yet.
    QList<COdictObjectId> keys() const;
    /// The greatest id of any key; 0 without keys.
    unsigned int highestId() const;
    /// Calls \a visit(key) for every key, in no particular order.
    template <class Visit>
    void forEachKey(Visit visit) const
    {
        m_table.forEach([this, &visit](const COdictIdSlot &slot) { visit(keyOf(slot)); });
    }

private:
    // Keys are packed ids: the map orders by the packed form, so ids of equal packed form are the
    // same key there, and must be here.
    using Slot = COdictIdSlot;
    const Slot *find(quint64 packed) const
    {
        return m_table.find(packed, [packed](const Slot &slot) { return slot.key == packed; });
    }

    // The packed form of a sub-object of object 0 is that of the plain id of its sub-id. Like
    // the map, an entry keeps the key it was first entered with: those keys are kept here, as the
    // packed key cannot tell them.
    QHash<quint64, COdictObjectId> m_zeroSubKeys;
};

/// Unique name to node: the ordered map and a hash table keyed by the merged name.
class COdictNameIndex : public COdictOrderedHashIndex<COdictNameIndex, COdictObjectTree::NameIndex, COdictNameSlot>
{
public:
    /// The node entered under the merged key of \a name (the entry may hold null); null when none.
    COdictNode *value(const COdictObjectName &name) const { return value(name.name(), name.subId()); }
    /// The node entered under the merged key of (\a name, \a subId); null when none.
    COdictNode *value(QStringView name, unsigned int subId) const
    {
        const Slot *slot = find(name, subId);
        return slot ? slot->node : nullptr;
    }
    /// True when the merged key of (\a name, \a subId) has an entry holding a node (as value()
    /// answers it); \a object is set to that node's object (null when the node has none).
    bool findObject(QStringView name, unsigned int subId, COdictObject **object) const
    {
        const Slot *slot = find(name, subId);
        if (!slot || !slot->node)
            return false;
        *object = slot->objectOrNode();
        return true;
    }
    /// True when the merged key of \a name has an entry (which may hold null).
    bool contains(const COdictObjectName &name) const;
    /// Enters \a node under \a name, replacing an entry of the same merged key.
    void insert(const COdictObjectName &name, COdictNode *node);
    /// Removes the entry of \a name's merged key.
    void remove(const COdictObjectName &name);
    /// Removes every entry.
    void clear();

    /// The hash of the merged key of (\a name, \a subId), computed over the name's characters
    /// and then those of "_" and the sub-id's digits, without building the merged text. Never 0.
    static quint32 mergedHash(QStringView name, unsigned int subId);
    /// True when (\a a, \a subA) and (\a b, \a subB) have the same merged key.
    static bool sameMergedKey(QStringView a, unsigned int subA, QStringView b, unsigned int subB)
    {
        if (subA != subB)
            return sameMergedKeyOfOtherSubIds(a, subA, b, subB);
        // Names taken from the dictionary's objects share their characters with the entries.
        return a.size() == b.size()
            && (a.data() == b.data() || std::memcmp(a.data(), b.data(), size_t(a.size()) * sizeof(QChar)) == 0);
    }

    /// The key of the map for \a slot.
    COdictObjectName keyOf(const COdictNameSlot &slot) const { return COdictObjectName(slot.name, slot.subId); }

private:
    using Slot = COdictNameSlot;
    static bool sameMergedKeyOfOtherSubIds(QStringView a, unsigned int subA, QStringView b, unsigned int subB);
    const Slot *find(QStringView name, unsigned int subId) const
    {
        const quint32 hash = mergedHash(name, subId);
        // The stored hash is compared first: the name's characters are read only for a likely match.
        return m_table.find(hash, [&](const Slot &slot) {
            return slot.hashValue == hash && sameMergedKey(slot.name, slot.subId, name, subId);
        });
    }

};

/// Reference id to node over every node of a tree, the root included: the nodes a walk from the
/// root reaches. With several nodes of one reference id the entry holds the first of them in
/// pre-order, as a walk would find it. The tree's root reports every node that joins or leaves
/// the tree and every item replaced in it, so the index follows CTreeNode's own calls.
class COdictRefIdIndex
{
public:
    /// The node of \a refId; null when none (and for the null id, which no item has).
    COdictNode *value(const QUuid &refId) const
    {
        const Key key = keyOf(refId);
        const Slot *slot = m_table.find(key.hash(), [&key](const Slot &s) { return s.key == key; });
        return slot ? slot->node : nullptr;
    }
    /// The tree whose nodes are indexed; set once, before the first node is added.
    void setRoot(const COdictNode *root) { m_root = root; }
    /// Enters \a top and its descendants.
    void addSubtree(COdictNode *top);
    /// Removes \a top and its descendants, which are no longer linked into the tree.
    void removeSubtree(COdictNode *top);
    /// Enters \a node alone (its children are left as they are).
    void addNode(COdictNode *node);
    /// Removes the entry of \a refId when it holds \a node, which no longer has that reference id
    /// or is no longer in the tree.
    void removeNode(const COdictNode *node, const QUuid &refId);
    /// Removes every entry.
    void clear();
    /// Makes room for \a count entries without growing again.
    void reserve(int count) { m_table.reserve(count); }
    /// Number of entries.
    int size() const { return m_table.count(); }

private:
    struct Key
    {
        quint64 low = 0;
        quint64 high = 0;
        bool operator==(const Key &other) const { return low == other.low && high == other.high; }
        quint64 hash() const { return low ^ high; } // reference ids are random: any bits will do
    };
    struct Slot
    {
        Key key; // the null id: free slot
        COdictNode *node = nullptr;

        bool isFree() const { return key.low == 0 && key.high == 0; }
        quint64 hash() const { return key.hash(); }
    };
    static Key keyOf(const QUuid &refId);
    // Removes the entry of \a refId when it holds \a node; a shared reference id goes to \a unsettled.
    void leave(const COdictNode *node, const QUuid &refId, QSet<QUuid> *unsettled);
    // Enters the first holder of each of \a refIds in pre-order afresh, by one walk of the tree.
    void settle(const QSet<QUuid> &refIds);

    COdictHashTable<Slot> m_table;
    // Reference ids that more than one node has had since they were last settled; when a node of
    // one of them leaves, a walk finds the first remaining one.
    QSet<QUuid> m_shared;
    const COdictNode *m_root = nullptr;
};

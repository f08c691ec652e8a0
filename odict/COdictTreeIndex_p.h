#pragma once

#include "COdictObjectTree.h"

#include <QStringView>

#include <vector>

// The two indexes of a tree. Each keeps the ordered map that the tree hands out (and that the
// ordered results walk) and beside it an open-addressing hash table of exactly the same entries,
// so that lookups cost a hash and a probe or two instead of a walk down a tree of string or id
// comparisons. Every change goes through these classes, which keeps the map and the table in step.

/// Unique id to node: the ordered map and a hash table keyed by the packed id.
class COdictIdIndex
{
public:
    /// The ordered map (key order as COdictObjectId orders).
    const COdictObjectTree::IdIndex &map() const { return m_map; }
    /// The node entered under \a key (the entry may hold null); null when there is none.
    COdictNode *value(const COdictObjectId &key) const
    {
        if (m_slots.empty())
            return nullptr;
        const quint64 packed = key.toU64();
        for (size_t i = slotOf(packed);; i = (i + 1) & m_mask) {
            const Slot &slot = m_slots[i];
            if (slot.key == packed)
                return slot.node;
            if (slot.key == s_empty)
                return nullptr;
        }
    }
    /// True when \a key has an entry (which may hold null).
    bool contains(const COdictObjectId &key) const;
    /// Enters \a node under \a key, replacing an entry of an equal key.
    void insert(const COdictObjectId &key, COdictNode *node);
    /// Removes the entry of \a key.
    void remove(const COdictObjectId &key);
    /// Removes every entry.
    void clear();
    /// Makes room for \a count entries without growing again.
    void reserve(int count);
    /// Entries of the map.
    int size() const { return m_map.size(); }
    /// True when there are no entries.
    bool isEmpty() const { return m_map.isEmpty(); }
    /// Entries of the hash table (the same as size() while the two are in step).
    int hashedCount() const { return m_used; }

private:
    // Keys are packed ids: the map orders by the packed form, so ids of equal packed form are the
    // same key there, and must be here. All ones is no packed id (a lower half of all ones means
    // no sub-id, and then the upper half is zero), so it marks a free slot.
    static constexpr quint64 s_empty = ~quint64(0);
    struct Slot
    {
        quint64 key = s_empty;
        COdictNode *node = nullptr;
    };
    size_t slotOf(quint64 packed) const { return size_t((packed * Q_UINT64_C(0x9E3779B97F4A7C15)) >> m_shift) & m_mask; }
    void rehash(size_t capacity);
    void put(quint64 packed, COdictNode *node);

    COdictObjectTree::IdIndex m_map;
    std::vector<Slot> m_slots; // a power of two long, at most three quarters used
    size_t m_mask = 0;
    int m_shift = 64;
    int m_used = 0;
};

/// Unique name to node: the ordered map and a hash table keyed by the merged name.
class COdictNameIndex
{
public:
    /// The ordered map (key order as COdictObjectName orders).
    const COdictObjectTree::NameIndex &map() const { return m_map; }
    /// The node entered under the merged key of \a name (the entry may hold null); null when none.
    COdictNode *value(const COdictObjectName &name) const { return value(name.name(), name.subId()); }
    /// The node entered under the merged key of (\a name, \a subId); null when none.
    COdictNode *value(QStringView name, unsigned int subId) const;
    /// True when the merged key of \a name has an entry (which may hold null).
    bool contains(const COdictObjectName &name) const;
    /// Enters \a node under \a name, replacing an entry of the same merged key.
    void insert(const COdictObjectName &name, COdictNode *node);
    /// Removes the entry of \a name's merged key.
    void remove(const COdictObjectName &name);
    /// Removes every entry.
    void clear();
    /// Makes room for \a count entries without growing again.
    void reserve(int count);
    /// Entries of the map.
    int size() const { return m_map.size(); }
    /// True when there are no entries.
    bool isEmpty() const { return m_map.isEmpty(); }
    /// Entries of the hash table (the same as size() while the two are in step).
    int hashedCount() const { return m_used; }

    /// The hash of the merged key of (\a name, \a subId), computed over the name's characters
    /// and then those of "_" and the sub-id's digits, without building the merged text. Never 0.
    static quint32 mergedHash(QStringView name, unsigned int subId);
    /// True when (\a a, \a subA) and (\a b, \a subB) have the same merged key.
    static bool sameMergedKey(QStringView a, unsigned int subA, QStringView b, unsigned int subB);

private:
    struct Slot
    {
        QString name;          // shares its characters with the object's name
        quint32 subId = 0;
        quint32 hash = 0;      // 0: free slot
        COdictNode *node = nullptr;
    };
    int find(QStringView name, unsigned int subId, quint32 hash) const;
    void rehash(size_t capacity);
    void put(Slot &&slot);

    COdictObjectTree::NameIndex m_map;
    std::vector<Slot> m_slots; // a power of two long, at most three quarters used
    size_t m_mask = 0;
    int m_used = 0;
};

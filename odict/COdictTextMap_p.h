#pragma once

#include <QDataStream>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <algorithm>

// The storage shared by the enumeration and the bit set, which both map a key to a text: a
// vector of entries sorted by key. A loaded dictionary holds thousands of these small maps; a
// vector takes one heap block of 16 bytes per entry, a QMap one block of 48 bytes per entry
// plus one for the map. The vector is kept at its exact size, so no capacity is left over.
// E is the public entry type, Key its key member.
namespace NOdictTextMap {

template <class E, class K>
typename QVector<E>::const_iterator lowerBound(const QVector<E> &entries, K E::*key, K k)
{
    return std::lower_bound(entries.cbegin(), entries.cend(), k, [key](const E &e, K x) { return e.*key < x; });
}

/// The entry of \a k; null when there is none.
template <class E, class K>
const E *find(const QVector<E> &entries, K E::*key, K k)
{
    const auto it = lowerBound(entries, key, k);
    return it != entries.cend() && (*it).*key == k ? &*it : nullptr;
}

/// Adds the entry, or replaces the text of the key already present.
template <class E, class K>
void insert(QVector<E> &entries, K E::*key, K k, const QString &text)
{
    const int at = int(lowerBound(entries, key, k) - entries.cbegin());
    if (at < entries.size() && entries.at(at).*key == k) {
        entries[at].name = text;
        return;
    }
    entries.reserve(entries.size() + 1); // exactly one more: append() would round the capacity up
    E entry;
    entry.*key = k;
    entry.name = text;
    entries.insert(at, entry);
}

/// Removes every entry of \a k.
template <class E, class K>
void remove(QVector<E> &entries, K E::*key, K k)
{
    const auto first = lowerBound(entries, key, k);
    auto last = first;
    while (last != entries.cend() && (*last).*key == k)
        ++last;
    if (first == last)
        return;
    const int at = int(first - entries.cbegin());
    const int count = int(last - first);
    QVector<E> rest;
    rest.reserve(entries.size() - count);
    for (int i = 0; i < entries.size(); ++i) {
        if (i < at || i >= at + count)
            rest.append(entries.at(i));
    }
    entries = rest;
}

/// Whether some entry has exactly the text \a name.
template <class E>
bool containsText(const QVector<E> &entries, const QString &name)
{
    return std::any_of(entries.cbegin(), entries.cend(), [&name](const E &e) { return e.name == name; });
}

/// The key of the last entry (in ascending key order) whose text is \a name; \a notFound otherwise.
template <class E, class K>
K lastKeyWithText(const QVector<E> &entries, K E::*key, const QString &name, K notFound, bool *ok)
{
    // From the largest key down: the first match is the last one in ascending order.
    for (auto it = entries.crbegin(); it != entries.crend(); ++it) {
        if (it->name == name) {
            if (ok)
                *ok = true;
            return (*it).*key;
        }
    }
    if (ok)
        *ok = false;
    return notFound;
}

template <class E>
QStringList texts(const QVector<E> &entries)
{
    QStringList list;
    list.reserve(entries.size());
    for (const E &e : entries)
        list.append(e.name);
    return list;
}

template <class E, class K>
QList<K> keys(const QVector<E> &entries, K E::*key)
{
    QList<K> list;
    list.reserve(entries.size());
    for (const E &e : entries)
        list.append(e.*key);
    return list;
}

/// Writes what Qt writes for a QMap<K, QString> of the same entries.
template <class E, class K>
QDataStream &write(QDataStream &out, const QVector<E> &entries, K E::*key)
{
    out << quint32(entries.size());
    // Qt writes a map from its last entry to its first.
    for (auto it = entries.crbegin(); it != entries.crend(); ++it)
        out << (*it).*key << it->name;
    return out;
}

/// Reads what write() (or Qt for a QMap<K, QString>) writes. Qt's reader does the parsing: a
/// stream with a key twice gives both entries, as it gives a map.
template <class E, class K>
QDataStream &read(QDataStream &in, QVector<E> &entries, K E::*key)
{
    QMap<K, QString> map;
    in >> map;
    QVector<E> list;
    list.reserve(map.size());
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        E entry;
        entry.*key = it.key();
        entry.name = it.value();
        list.append(entry);
    }
    entries = list;
    return in;
}

} // namespace NOdictTextMap

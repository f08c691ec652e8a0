#pragma once

#include <QMap>
#include <QSharedData>
#include <QVariant>

#include <algorithm>
#include <memory>

/// The own shared record of COdictParameterObject.
///
/// The values per parameter set are an array sorted by set index, allocated to size: one heap
/// block of 24 bytes per value instead of a map with a block per value and one for the map.
/// Records hold one or two values, set in ascending order while loading.
class COdictParameterObjectPrivate : public QSharedData
{
public:
    struct sEntry
    {
        int set = 0;
        QVariant value;
    };

    COdictParameterObjectPrivate() = default;
    COdictParameterObjectPrivate(const COdictParameterObjectPrivate &o) : QSharedData(o), error(o.error)
    {
        assign(o.m_entries.get(), o.m_count);
    }
    COdictParameterObjectPrivate &operator=(const COdictParameterObjectPrivate &) = delete;

    qint32 error = 0;

    int count() const { return m_count; }
    const sEntry *begin() const { return m_entries.get(); }
    const sEntry *end() const { return m_entries.get() + m_count; }

    /// The entry of \a set; null when there is none.
    const sEntry *find(int set) const
    {
        const sEntry *it = lowerBound(set);
        return it != end() && it->set == set ? it : nullptr;
    }

    /// Stores or replaces the value of \a set.
    void insert(int set, const QVariant &value)
    {
        sEntry *it = const_cast<sEntry *>(lowerBound(set));
        if (it != m_entries.get() + m_count && it->set == set) {
            it->value = value;
            return;
        }
        const int at = int(it - m_entries.get());
        std::unique_ptr<sEntry[]> entries(new sEntry[size_t(m_count) + 1]);
        std::move(m_entries.get(), m_entries.get() + at, entries.get());
        entries[size_t(at)] = sEntry{set, value};
        std::move(m_entries.get() + at, m_entries.get() + m_count, entries.get() + at + 1);
        m_entries = std::move(entries);
        ++m_count;
    }

    /// All values as a map by set index.
    QMap<int, QVariant> toMap() const
    {
        QMap<int, QVariant> map;
        for (const sEntry &e : *this)
            map.insert(map.cend(), e.set, e.value);
        return map;
    }

    /// Replaces all values by those of \a map.
    void setMap(const QMap<int, QVariant> &map)
    {
        std::unique_ptr<sEntry[]> entries(map.isEmpty() ? nullptr : new sEntry[size_t(map.size())]);
        int i = 0;
        for (auto it = map.cbegin(); it != map.cend(); ++it, ++i)
            entries[size_t(i)] = sEntry{it.key(), it.value()};
        m_entries = std::move(entries);
        m_count = map.size();
    }

    bool equals(const COdictParameterObjectPrivate &o) const
    {
        return error == o.error && m_count == o.m_count
            && std::equal(begin(), end(), o.begin(),
                          [](const sEntry &a, const sEntry &b) { return a.set == b.set && a.value == b.value; });
    }

private:
    const sEntry *lowerBound(int set) const
    {
        return std::lower_bound(begin(), end(), set, [](const sEntry &e, int s) { return e.set < s; });
    }
    void assign(const sEntry *entries, int count)
    {
        m_entries.reset(count ? new sEntry[size_t(count)] : nullptr);
        std::copy(entries, entries + count, m_entries.get());
        m_count = count;
    }

    int m_count = 0;
    std::unique_ptr<sEntry[]> m_entries;
};

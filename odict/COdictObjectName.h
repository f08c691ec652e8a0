#pragma once

#include "krodict_export.h"

#include <QMetaType>
#include <QString>

class QDataStream;
class QDebug;

/// Symbolic address of a dictionary object: a name and a sub-id (0xFFFFFFFF = none). The merged
/// key is "name_subId", or the name alone without sub-id.
class KRODICT_EXPORT COdictObjectName
{
public:
    COdictObjectName() = default;
    /// The key of \a name without sub-id.
    COdictObjectName(const QString &name) : m_name(name) {}
    /// The key of \a name with \a subId (0xFFFFFFFF: none).
    COdictObjectName(const QString &name, unsigned int subId) : m_name(name), m_subId(subId) {}
    /// A copy of \a other.
    COdictObjectName(const COdictObjectName &other) = default;

    /// Takes over name and sub-id of \a other.
    COdictObjectName &operator=(const COdictObjectName &other) = default;
    /// Replaces the name and drops the sub-id (setName() keeps it).
    COdictObjectName &operator=(const QString &name)
    {
        m_name = name;
        m_subId = s_none;
        return *this;
    }

    /// The plain name.
    const QString &name() const { return m_name; }
    /// The sub-id; 0xFFFFFFFF when none.
    unsigned int subId() const { return m_subId; }
    /// The name for writing in place.
    QString &rName() { return m_name; }
    /// The sub-id for writing in place.
    unsigned int &rSubId() { return m_subId; }
    /// Replaces the name; the sub-id stays.
    void setName(const QString &name) { m_name = name; }
    /// Replaces the sub-id (0xFFFFFFFF: none).
    void setSubId(unsigned int subId) { m_subId = subId; }
    /// Empty name, no sub-id.
    void clear()
    {
        m_name.clear();
        m_subId = s_none;
    }

    /// Empty name and no sub-id.
    bool isNull() const { return m_name.isEmpty() && m_subId == s_none; }
    /// The name is not empty; the sub-id is not looked at.
    bool isValid() const { return !m_name.isEmpty(); }

    /// "Speed_3" for the name Speed with sub-id 3; the name alone without sub-id.
    QString mergedName() const;

    /// Orders like mergedName().compare(other.mergedName()) without building either string.
    int compare(const COdictObjectName &other) const;

    /// True when name and sub-id are equal.
    bool operator==(const COdictObjectName &other) const { return m_subId == other.m_subId && m_name == other.m_name; }
    /// True when name or sub-id differ.
    bool operator!=(const COdictObjectName &other) const { return !(*this == other); }
    // Deliberately ordered by merged key, so Speed_1 and (Speed, 1) are unequal yet neither is less.
    /// Orders by merged key (see compare()).
    bool operator<(const COdictObjectName &other) const { return compare(other) < 0; }
    /// Orders by merged key (see compare()).
    bool operator>(const COdictObjectName &other) const { return compare(other) > 0; }
    /// Orders by merged key (see compare()).
    bool operator<=(const COdictObjectName &other) const { return compare(other) <= 0; }
    /// Orders by merged key (see compare()).
    bool operator>=(const COdictObjectName &other) const { return compare(other) >= 0; }

private:
    static constexpr unsigned int s_none = 0xFFFFFFFFu;

    QString m_name;
    unsigned int m_subId = s_none;
};

Q_DECLARE_TYPEINFO(COdictObjectName, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(COdictObjectName)

/// qHash of the merged key.
KRODICT_EXPORT uint qHash(const COdictObjectName &name, uint seed = 0) noexcept;

KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictObjectName &name);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictObjectName &name);
/// Writes "COdictObjectName( Speed, 3 )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictObjectName &name);

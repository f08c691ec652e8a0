#include "COdictObjectBitSet.h"

#include "COdictTextMap_p.h"

#include <QDataStream>
#include <QDebug>

COdictObjectBitSet::COdictObjectBitSet() = default;
COdictObjectBitSet::COdictObjectBitSet(const COdictObjectBitSet &other) = default;
COdictObjectBitSet &COdictObjectBitSet::operator=(const COdictObjectBitSet &other) = default;
COdictObjectBitSet::~COdictObjectBitSet() = default;

void COdictObjectBitSet::insert(const unsigned int &pos, const QString &name)
{
    m_map.insert(pos, name);
}

void COdictObjectBitSet::insert(const sOdictObjectBitData_t &data)
{
    m_map.insert(data.pos, data.name);
}

void COdictObjectBitSet::remove(const unsigned int &pos)
{
    m_map.remove(pos);
}

bool COdictObjectBitSet::contains(const unsigned int &pos) const
{
    return m_map.contains(pos);
}

bool COdictObjectBitSet::contains(const QString &name) const
{
    return NOdictTextMap::containsText(m_map, name);
}

QString COdictObjectBitSet::name(const unsigned int &pos, bool *ok) const
{
    const auto it = m_map.constFind(pos);
    const bool found = it != m_map.constEnd();
    if (ok)
        *ok = found;
    return found ? it.value() : QString();
}

unsigned int COdictObjectBitSet::pos(const QString &name, bool *ok) const
{
    return NOdictTextMap::lastKeyWithText(m_map, name, 0xFFFFFFFFu, ok);
}

COdictObjectBitSet::sOdictObjectBitData_t COdictObjectBitSet::bit(int pos) const
{
    const auto it = m_map.constFind(static_cast<unsigned int>(pos));
    if (it == m_map.constEnd())
        return {};
    return {it.key(), it.value()};
}

QList<COdictObjectBitSet::sOdictObjectBitData_t> COdictObjectBitSet::bitSet() const
{
    QList<sOdictObjectBitData_t> list;
    list.reserve(m_map.size());
    for (auto it = m_map.constBegin(); it != m_map.constEnd(); ++it)
        list.append({it.key(), it.value()});
    return list;
}

QStringList COdictObjectBitSet::names() const
{
    return m_map.values();
}

QList<unsigned int> COdictObjectBitSet::positions() const
{
    return m_map.keys();
}

int COdictObjectBitSet::size() const
{
    return m_map.size();
}

bool COdictObjectBitSet::isEmpty() const
{
    return m_map.isEmpty();
}

bool COdictObjectBitSet::isValid() const
{
    return !m_map.isEmpty();
}

bool COdictObjectBitSet::operator==(const COdictObjectBitSet &other) const
{
    return m_map == other.m_map;
}

QDataStream &operator<<(QDataStream &out, const COdictObjectBitSet &bitSet)
{
    return out << bitSet.m_map;
}

QDataStream &operator>>(QDataStream &in, COdictObjectBitSet &bitSet)
{
    return in >> bitSet.m_map;
}

QDebug operator<<(QDebug debug, const COdictObjectBitSet &bitSet)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "COdictObjectBitSet(";
    const QList<COdictObjectBitSet::sOdictObjectBitData_t> entries = bitSet.bitSet();
    for (int i = 0; i < entries.size(); ++i)
        debug << (i ? ", " : " ") << entries.at(i).pos << ": " << entries.at(i).name.toUtf8().constData();
    debug << " )";
    return debug;
}

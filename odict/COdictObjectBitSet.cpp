#include "COdictObjectBitSet.h"

#include "COdictTextMap_p.h"

#include <QDataStream>
#include <QDebug>

COdictObjectBitSet::COdictObjectBitSet() = default;
COdictObjectBitSet::COdictObjectBitSet(const COdictObjectBitSet &other) = default;
COdictObjectBitSet &COdictObjectBitSet::operator=(const COdictObjectBitSet &other) = default;
COdictObjectBitSet::~COdictObjectBitSet() = default;

namespace {
constexpr auto key = &COdictObjectBitSet::sOdictObjectBitData_t::pos;
} // namespace

void COdictObjectBitSet::insert(const unsigned int &pos, const QString &name)
{
    NOdictTextMap::insert(m_entries, key, pos, name);
}

void COdictObjectBitSet::insert(const sOdictObjectBitData_t &data)
{
    NOdictTextMap::insert(m_entries, key, data.pos, data.name);
}

void COdictObjectBitSet::remove(const unsigned int &pos)
{
    NOdictTextMap::remove(m_entries, key, pos);
}

bool COdictObjectBitSet::contains(const unsigned int &pos) const
{
    return NOdictTextMap::find(m_entries, key, pos) != nullptr;
}

bool COdictObjectBitSet::contains(const QString &name) const
{
    return NOdictTextMap::containsText(m_entries, name);
}

QString COdictObjectBitSet::name(const unsigned int &pos, bool *ok) const
{
    const sOdictObjectBitData_t *entry = NOdictTextMap::find(m_entries, key, pos);
    if (ok)
        *ok = entry != nullptr;
    return entry ? entry->name : QString();
}

unsigned int COdictObjectBitSet::pos(const QString &name, bool *ok) const
{
    return NOdictTextMap::lastKeyWithText(m_entries, key, name, 0xFFFFFFFFu, ok);
}

COdictObjectBitSet::sOdictObjectBitData_t COdictObjectBitSet::bit(int pos) const
{
    const sOdictObjectBitData_t *entry = NOdictTextMap::find(m_entries, key, static_cast<unsigned int>(pos));
    return entry ? *entry : sOdictObjectBitData_t();
}

QList<COdictObjectBitSet::sOdictObjectBitData_t> COdictObjectBitSet::bitSet() const
{
    return m_entries.toList();
}

QStringList COdictObjectBitSet::names() const
{
    return NOdictTextMap::texts(m_entries);
}

QList<unsigned int> COdictObjectBitSet::positions() const
{
    return NOdictTextMap::keys(m_entries, key);
}

int COdictObjectBitSet::size() const
{
    return m_entries.size();
}

bool COdictObjectBitSet::isEmpty() const
{
    return m_entries.isEmpty();
}

bool COdictObjectBitSet::isValid() const
{
    return !m_entries.isEmpty();
}

bool COdictObjectBitSet::operator==(const COdictObjectBitSet &other) const
{
    return m_entries == other.m_entries;
}

QDataStream &operator<<(QDataStream &out, const COdictObjectBitSet &bitSet)
{
    return NOdictTextMap::write(out, bitSet.m_entries, key);
}

QDataStream &operator>>(QDataStream &in, COdictObjectBitSet &bitSet)
{
    return NOdictTextMap::read(in, bitSet.m_entries, key);
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

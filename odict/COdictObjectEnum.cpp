#include "COdictObjectEnum.h"

#include "COdictTextMap_p.h"

#include <QDataStream>
#include <QDebug>

COdictObjectEnum::COdictObjectEnum() = default;
COdictObjectEnum::COdictObjectEnum(const COdictObjectEnum &other) = default;
COdictObjectEnum &COdictObjectEnum::operator=(const COdictObjectEnum &other) = default;
COdictObjectEnum::~COdictObjectEnum() = default;

namespace {
constexpr auto key = &COdictObjectEnum::sOdictObjectEnumData_t::value;
} // namespace

void COdictObjectEnum::insert(const long long &value, const QString &name)
{
    NOdictTextMap::insert(m_entries, key, value, name);
}

void COdictObjectEnum::insert(const sOdictObjectEnumData_t &data)
{
    NOdictTextMap::insert(m_entries, key, data.value, data.name);
}

void COdictObjectEnum::remove(const long long &value)
{
    NOdictTextMap::remove(m_entries, key, value);
}

bool COdictObjectEnum::contains(const long long &value) const
{
    return NOdictTextMap::find(m_entries, key, value) != nullptr;
}

bool COdictObjectEnum::contains(const QString &name) const
{
    return NOdictTextMap::containsText(m_entries, name);
}

QString COdictObjectEnum::name(const long long &value, bool *ok) const
{
    const sOdictObjectEnumData_t *entry = NOdictTextMap::find(m_entries, key, value);
    if (ok)
        *ok = entry != nullptr;
    return entry ? entry->name : QString::number(value, 10);
}

long long COdictObjectEnum::value(const QString &name, bool *ok) const
{
    return NOdictTextMap::lastKeyWithText(m_entries, key, name, static_cast<long long>(-1), ok);
}

QStringList COdictObjectEnum::names() const
{
    return NOdictTextMap::texts(m_entries);
}

QList<long long> COdictObjectEnum::values() const
{
    return NOdictTextMap::keys(m_entries, key);
}

QList<COdictObjectEnum::sOdictObjectEnumData_t> COdictObjectEnum::enums() const
{
    return m_entries.toList();
}

int COdictObjectEnum::size() const
{
    return m_entries.size();
}

bool COdictObjectEnum::isEmpty() const
{
    return m_entries.isEmpty();
}

bool COdictObjectEnum::isValid() const
{
    return !m_entries.isEmpty();
}

bool COdictObjectEnum::operator==(const COdictObjectEnum &other) const
{
    return m_entries == other.m_entries;
}

QDataStream &operator<<(QDataStream &out, const COdictObjectEnum &enumeration)
{
    return NOdictTextMap::write(out, enumeration.m_entries, key);
}

QDataStream &operator>>(QDataStream &in, COdictObjectEnum &enumeration)
{
    return NOdictTextMap::read(in, enumeration.m_entries, key);
}

QDebug operator<<(QDebug debug, const COdictObjectEnum &enumeration)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "COdictObjectEnum(";
    const QList<COdictObjectEnum::sOdictObjectEnumData_t> entries = enumeration.enums();
    for (int i = 0; i < entries.size(); ++i)
        debug << (i ? ", " : " ") << entries.at(i).value << ": " << entries.at(i).name.toUtf8().constData();
    debug << " )";
    return debug;
}

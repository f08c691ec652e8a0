#include "COdictObjectEnum.h"

#include "COdictTextMap_p.h"

#include <QDataStream>
#include <QDebug>

COdictObjectEnum::COdictObjectEnum() = default;
COdictObjectEnum::COdictObjectEnum(const COdictObjectEnum &other) = default;
COdictObjectEnum &COdictObjectEnum::operator=(const COdictObjectEnum &other) = default;
COdictObjectEnum::~COdictObjectEnum() = default;

void COdictObjectEnum::insert(const long long &value, const QString &name)
{
    m_map.insert(value, name);
}

void COdictObjectEnum::insert(const sOdictObjectEnumData_t &data)
{
    m_map.insert(data.value, data.name);
}

void COdictObjectEnum::remove(const long long &value)
{
    m_map.remove(value);
}

bool COdictObjectEnum::contains(const long long &value) const
{
    return m_map.contains(value);
}

bool COdictObjectEnum::contains(const QString &name) const
{
    return NOdictTextMap::containsText(m_map, name);
}

QString COdictObjectEnum::name(const long long &value, bool *ok) const
{
    const auto it = m_map.constFind(value);
    const bool found = it != m_map.constEnd();
    if (ok)
        *ok = found;
    return found ? it.value() : QString::number(value, 10);
}

long long COdictObjectEnum::value(const QString &name, bool *ok) const
{
    return NOdictTextMap::lastKeyWithText(m_map, name, static_cast<long long>(-1), ok);
}

QStringList COdictObjectEnum::names() const
{
    return m_map.values();
}

QList<long long> COdictObjectEnum::values() const
{
    return m_map.keys();
}

QList<COdictObjectEnum::sOdictObjectEnumData_t> COdictObjectEnum::enums() const
{
    QList<sOdictObjectEnumData_t> list;
    list.reserve(m_map.size());
    for (auto it = m_map.constBegin(); it != m_map.constEnd(); ++it)
        list.append({it.key(), it.value()});
    return list;
}

int COdictObjectEnum::size() const
{
    return m_map.size();
}

bool COdictObjectEnum::isEmpty() const
{
    return m_map.isEmpty();
}

bool COdictObjectEnum::isValid() const
{
    return !m_map.isEmpty();
}

bool COdictObjectEnum::operator==(const COdictObjectEnum &other) const
{
    return m_map == other.m_map;
}

QDataStream &operator<<(QDataStream &out, const COdictObjectEnum &enumeration)
{
    return out << enumeration.m_map;
}

QDataStream &operator>>(QDataStream &in, COdictObjectEnum &enumeration)
{
    return in >> enumeration.m_map;
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

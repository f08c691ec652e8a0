#pragma once

#include <QMap>
#include <QString>

// Text searches shared by the enumeration and the bit set, which both map a key to a text.
namespace NOdictTextMap {

/// Whether some entry has exactly the text \a name.
template <class K>
bool containsText(const QMap<K, QString> &map, const QString &name)
{
    for (const QString &text : map) {
        if (text == name)
            return true;
    }
    return false;
}

/// The key of the last entry (in ascending key order) whose text is \a name; \a notFound otherwise.
template <class K>
K lastKeyWithText(const QMap<K, QString> &map, const QString &name, K notFound, bool *ok)
{
    // From the largest key down: the first match is the last one in ascending order.
    for (auto it = map.constEnd(); it != map.constBegin();) {
        --it;
        if (it.value() == name) {
            if (ok)
                *ok = true;
            return it.key();
        }
    }
    if (ok)
        *ok = false;
    return notFound;
}

} // namespace NOdictTextMap

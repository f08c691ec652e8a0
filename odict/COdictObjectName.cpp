#include "COdictObjectName.h"
#include "COdictMergedKey_p.h"

#include <QDataStream>
#include <QDebug>
#include <QHash>
#include <QStringView>

QString COdictObjectName::mergedName() const
{
    if (m_subId == s_none)
        return m_name;
    return m_name + QLatin1Char('_') + QString::number(m_subId);
}

int COdictObjectName::compare(const COdictObjectName &other) const
{
    // The merged keys are name + suffix. Compare the common part of the names first; after it at
    // most one name has characters left, so the rest of one key is its short suffix only.
    const QStringView a(m_name);
    const QStringView b(other.m_name);
    const qsizetype common = qMin(a.size(), b.size());
    if (const int result = a.left(common).compare(b.left(common)))
        return result;

    char16_t suffixA[kMergedSuffixMax];
    char16_t suffixB[kMergedSuffixMax];
    const int suffixLengthA = mergedKeySuffix(m_subId, suffixA);
    const int suffixLengthB = mergedKeySuffix(other.m_subId, suffixB);
    const QStringView tailA = a.mid(common);
    const QStringView tailB = b.mid(common);
    const auto at = [](QStringView tail, const char16_t *suffix, qsizetype i) -> char16_t {
        return i < tail.size() ? tail[i].unicode() : suffix[i - tail.size()];
    };

    const qsizetype restA = tailA.size() + suffixLengthA;
    const qsizetype restB = tailB.size() + suffixLengthB;
    const qsizetype restCommon = qMin(restA, restB); // at most kMergedSuffixMax
    for (qsizetype i = 0; i < restCommon; ++i) {
        const char16_t ca = at(tailA, suffixA, i);
        const char16_t cb = at(tailB, suffixB, i);
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    return restA < restB ? -1 : (restA > restB ? 1 : 0);
}

uint qHash(const COdictObjectName &name, uint seed) noexcept
{
    return qHash(name.mergedName(), seed);
}

QDataStream &operator<<(QDataStream &out, const COdictObjectName &name)
{
    return out << name.name() << quint32(name.subId());
}

QDataStream &operator>>(QDataStream &in, COdictObjectName &name)
{
    return in >> name.rName() >> name.rSubId();
}

QDebug operator<<(QDebug debug, const COdictObjectName &name)
{
    const QDebugStateSaver saver(debug);
    // The name as UTF-8 bytes, so that it is not quoted.
    debug.nospace() << "COdictObjectName( " << name.name().toUtf8().constData() << ", " << name.subId() << " )";
    return debug;
}

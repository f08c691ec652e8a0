#include "COdictObjectId.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDebug>

QString COdictObjectId::toStr(const QString &prefix) const
{
    return toStr(QLatin1Char('0'), prefix);
}

QString COdictObjectId::toStr(const QChar &fill, const QString &prefix) const
{
    if (fill.isNull())
        return prefix + QString::number(toU64(), 16);
    return prefix + QStringLiteral("%1").arg(toU64(), 16, 16, fill);
}

QString COdictObjectId::info() const
{
    const QString word = QCoreApplication::translate("COdictObject", "ID");
    if (m_subId == s_none)
        return QStringLiteral("%1 %2").arg(word, QString::number(m_id));
    return QStringLiteral("%1 %2:%3").arg(word, QString::number(m_id),
                                          QStringLiteral("%1").arg(m_subId, 2, 10, QLatin1Char('0')));
}

QDataStream &operator<<(QDataStream &out, const COdictObjectId &id)
{
    return out << quint32(id.id()) << quint32(id.subId());
}

QDataStream &operator>>(QDataStream &in, COdictObjectId &id)
{
    return in >> id.rId() >> id.rSubId();
}

QDebug operator<<(QDebug debug, const COdictObjectId &id)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "COdictObjectId( " << id.id() << (id.subId() < 10 ? ":0" : ":") << id.subId() << " )";
    return debug;
}

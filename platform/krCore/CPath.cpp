#include "CPath.h"

#include <QMutex>
#include <QMutexLocker>
#include <QStandardPaths>

namespace {

struct PathState {
    QMutex mutex;
    QString programdata; // empty: the default
};

PathState &state()
{
    static PathState s;
    return s;
}

} // namespace

QString CPath::programdataPath(bool withSeparator)
{
    QString path;
    {
        QMutexLocker lock(&state().mutex);
        path = state().programdata;
    }
    if (path.isEmpty())
        path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/krOdict");
    if (withSeparator && !path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    return path;
}

void CPath::setProgramdataPath(const QString &path)
{
    QMutexLocker lock(&state().mutex);
    state().programdata = path;
}

#include "CSaveFile.h"

#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

bool CSaveFile::commit(QSaveFile &file)
{
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        file.cancelWriting();
        file.commit(); // closes the file and removes the temporary one
        return false;
    }
    return file.commit();
}

bool CSaveFile::checkTarget(const QString &fileName, QString *errorText)
{
    const auto refuse = [&](const QString &reason) {
        if (errorText)
            *errorText = writeError(fileName, reason);
        return false;
    };
    if (fileName.isEmpty())
        return refuse(QString::fromLocal8Bit(std::strerror(ENOENT)));
    struct stat status;
    // stat follows symbolic links: a link to a device is refused like the device.
    if (::stat(QFile::encodeName(fileName).constData(), &status) != 0)
        return true; // missing: QSaveFile creates it (or names the reason it cannot)
    if (S_ISDIR(status.st_mode))
        return refuse(QString::fromLocal8Bit(std::strerror(EISDIR)));
    if (!S_ISREG(status.st_mode))
        return refuse(QStringLiteral("not a regular file"));
    return true;
}

bool CSaveFile::open(QSaveFile &file, QString *errorText)
{
    if (!checkTarget(file.fileName(), errorText))
        return false;
    if (!file.open(QIODevice::WriteOnly)) {
        if (errorText)
            *errorText = writeError(file.fileName(), file.errorString());
        return false;
    }
    return true;
}

QString CSaveFile::writeError(const QString &fileName, const QString &reason)
{
    return QStringLiteral("cannot write '%1': %2").arg(fileName, reason);
}

#include "CXmlInputCheck.h"

#include "CXmlCheckedReader.h"

#include <QFile>
#include <QXmlStreamReader>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString systemReason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

/// Why a file of mode \a mode is not read; empty for a regular file.
QString kindReason(mode_t mode)
{
    if (S_ISREG(mode))
        return QString();
    if (S_ISDIR(mode))
        return systemReason(EISDIR);
    return QStringLiteral("not a regular file");
}

QString tooLarge()
{
    return QStringLiteral("larger than the limit of %1 bytes").arg(CXmlInputCheck::maxInputSize);
}

} // namespace

bool CXmlInputCheck::openForReading(QFile &file, const QString &fileName, QString *errorText)
{
    const auto refuse = [&](const QString &reason) {
        if (errorText)
            *errorText = openError(fileName, reason);
        return false;
    };
    if (fileName.isEmpty())
        return refuse(systemReason(ENOENT)); // QFile would warn on the terminal
    const QByteArray path = QFile::encodeName(fileName);
    struct stat status;
    // The kind is checked before opening: opening a FIFO blocks, opening a device may act on it.
    if (::stat(path.constData(), &status) != 0)
        return refuse(systemReason(errno));
    if (const QString reason = kindReason(status.st_mode); !reason.isEmpty())
        return refuse(reason);
    // Non-blocking, and checked again on the open file: the path may have changed meanwhile.
    const int fd = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return refuse(systemReason(errno));
    QString reason;
    if (::fstat(fd, &status) != 0)
        reason = systemReason(errno);
    else
        reason = kindReason(status.st_mode);
    if (reason.isEmpty() && status.st_size > maxInputSize)
        reason = tooLarge();
    if (reason.isEmpty())
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    if (!reason.isEmpty() || !file.open(fd, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
        if (reason.isEmpty())
            reason = file.errorString();
        ::close(fd);
        return refuse(reason);
    }
    return true;
}

bool CXmlInputCheck::checkContent(QIODevice &device, const QString &fileName, eParser_t parser, QString *errorText)
{
    CXmlCheckedReader reader(&device, fileName, parser);
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError()) {
        if (errorText)
            *errorText = reader.errorText();
        return false;
    }
    return true;
}

QString CXmlInputCheck::elementText(QXmlStreamReader &reader)
{
    QString result;
    if (!reader.isStartElement())
        return result;
    int depth = 1;
    while (depth > 0 && !reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            ++depth;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference:
            result += reader.text();
            break;
        default:
            break;
        }
    }
    return result;
}

QString CXmlInputCheck::openError(const QString &fileName, const QString &reason)
{
    return QStringLiteral("cannot open '%1': %2").arg(fileName, reason);
}

QString CXmlInputCheck::readError(const QString &fileName, qint64 line, qint64 column, const QString &reason)
{
    if (line <= 0)
        return openError(fileName, reason);
    return openError(fileName, QStringLiteral("line %1, column %2: %3").arg(line).arg(column).arg(reason));
}

QString CXmlInputCheck::readError(const QString &fileName, const QXmlStreamReader &reader)
{
    return readError(fileName, reader.lineNumber(), reader.columnNumber(), reader.errorString());
}

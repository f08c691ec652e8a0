#include "CFileLogfile.h"

#include <QDateTime>
#include <QFile>

namespace {

QLatin1String severityWord(NkrLogfiles::eSeverity_t severity)
{
    switch (severity) {
    case NkrLogfiles::E_SEV_INFO:
        return QLatin1String("INFO");
    case NkrLogfiles::E_SEV_WARNING:
        return QLatin1String("WARNING");
    case NkrLogfiles::E_SEV_CRITICAL:
        return QLatin1String("CRITICAL");
    }
    return QLatin1String("UNKNOWN");
}

} // namespace

CFileLogfile::CFileLogfile(const QString &fileName)
    : m_fileName(fileName)
{
}

void CFileLogfile::addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags)
{
    Q_UNUSED(flags)

    // The file is opened per entry: nothing stays locked, and a file that cannot be
    // opened (missing directory, no rights) only loses this entry.
    QFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;

    // One entry is one line, so line breaks inside the text become blanks.
    QString oneLine = text;
    oneLine.replace(QLatin1String("\r\n"), QLatin1String(" "));
    oneLine.replace(QLatin1Char('\n'), QLatin1Char(' '));
    oneLine.replace(QLatin1Char('\r'), QLatin1Char(' '));

    const QString line = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss"))
        + QLatin1Char(' ') + severityWord(severity) + QLatin1Char(' ') + oneLine + QLatin1Char('\n');
    file.write(line.toUtf8());
}

#include "CStr.h"

#include <QStringList>

QString CStr::versionToString(NTypes::uVersion_t version)
{
    return QStringLiteral("%1.%2.%3")
        .arg(version.mainNumber())
        .arg(version.minorNumber())
        .arg(version.buildNumber());
}

NTypes::uVersion_t CStr::stringToVersion(const QString &text, bool *ok)
{
    static const int maxima[3] = {255, 255, 65535};
    int parts[3] = {0, 0, 0};
    bool good = false;

    const QString trimmed = text.trimmed();
    const QStringList fields = trimmed.split(QLatin1Char('.'));
    if (!trimmed.isEmpty() && fields.size() <= 3) {
        good = true;
        for (int i = 0; i < fields.size() && good; ++i) {
            const QString field = fields[i].trimmed();
            // Decimal digits only: toUInt would also take a sign.
            good = !field.isEmpty();
            for (const QChar c : field)
                good = good && c >= QLatin1Char('0') && c <= QLatin1Char('9');
            bool numberOk = false;
            const uint value = good ? field.toUInt(&numberOk) : 0;
            good = good && numberOk && value <= uint(maxima[i]);
            parts[i] = int(value);
        }
    }
    if (ok)
        *ok = good;
    if (!good)
        return NTypes::uVersion_t(0);
    return NTypes::uVersion_t::fromParts(parts[0], parts[1], parts[2]);
}

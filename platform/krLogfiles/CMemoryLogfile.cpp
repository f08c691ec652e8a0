#include "CMemoryLogfile.h"

#include <QStringList>

void CMemoryLogfile::addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags)
{
    m_entries.append(sEntry_t{severity, text, flags});
}

QStringList CMemoryLogfile::texts(NkrLogfiles::eSeverity_t severity) const
{
    QStringList result;
    for (const sEntry_t &entry : m_entries) {
        if (entry.severity == severity)
            result.append(entry.text);
    }
    return result;
}

int CMemoryLogfile::count(NkrLogfiles::eSeverity_t severity) const
{
    int n = 0;
    for (const sEntry_t &entry : m_entries) {
        if (entry.severity == severity)
            ++n;
    }
    return n;
}

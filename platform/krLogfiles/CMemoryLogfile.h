#pragma once

#include "ICLogfile.h"
#include "krlogfiles_export.h"

#include <QList>

/// Keeps every entry in memory, in the order received.
class KRLOGFILES_EXPORT CMemoryLogfile : public ICLogfile
{
public:
    /// One message as received.
    struct sEntry_t {
        /// info, warning or critical
        NkrLogfiles::eSeverity_t severity;
        /// the message text
        QString text;
        /// the flag word given with the message
        unsigned int flags;
    };

    /// Appends the entry.
    void addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags) override;
    /// Every entry, in the order received.
    const QList<sEntry_t> &entries() const { return m_entries; }
    /// Texts of the entries of one severity, in order.
    QStringList texts(NkrLogfiles::eSeverity_t severity) const;
    /// Number of entries of one severity.
    int count(NkrLogfiles::eSeverity_t severity) const;
    /// Forgets every entry.
    void clear() { m_entries.clear(); }

private:
    QList<sEntry_t> m_entries;
};

#pragma once

#include "ICLogfile.h"
#include "krlogfiles_export.h"

#include <QList>

/// Keeps every entry in memory, in the order received.
class KRLOGFILES_EXPORT CMemoryLogfile : public ICLogfile
{
public:
    struct sEntry_t {
        NkrLogfiles::eSeverity_t severity;
        QString text;
        unsigned int flags;
    };

    void addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags) override;
    const QList<sEntry_t> &entries() const { return m_entries; }
    /// Texts of the entries of one severity, in order.
    QStringList texts(NkrLogfiles::eSeverity_t severity) const;
    int count(NkrLogfiles::eSeverity_t severity) const;
    void clear() { m_entries.clear(); }

private:
    QList<sEntry_t> m_entries;
};

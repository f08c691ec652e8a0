#pragma once

#include "ICLogfile.h"
#include "krlogfiles_export.h"

#include <QString>

/// Appends one line per entry to a UTF-8 text file: "yyyy-MM-ddTHH:mm:ss SEVERITY text".
class KRLOGFILES_EXPORT CFileLogfile : public ICLogfile
{
public:
    /// Appends to \a fileName (created when missing).
    explicit CFileLogfile(const QString &fileName);
    /// Appends one line; the flags are not written.
    void addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags) override;
    /// The file the entries go to.
    QString fileName() const { return m_fileName; }

private:
    QString m_fileName;
};

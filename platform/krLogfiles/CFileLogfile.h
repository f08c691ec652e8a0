#pragma once

#include "ICLogfile.h"
#include "krlogfiles_export.h"

#include <QString>

/// Appends one line per entry to a UTF-8 text file: "yyyy-MM-ddTHH:mm:ss SEVERITY text".
class KRLOGFILES_EXPORT CFileLogfile : public ICLogfile
{
public:
    explicit CFileLogfile(const QString &fileName);
    void addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags) override;
    QString fileName() const { return m_fileName; }

private:
    QString m_fileName;
};

#pragma once

#include "krlogfiles_export.h"

#include <QString>

namespace NkrLogfiles {
enum eSeverity_t : unsigned int {
    E_SEV_INFO = 0,
    E_SEV_WARNING = 1,
    E_SEV_CRITICAL = 2
};
} // namespace NkrLogfiles

/// A sink for messages. Implementations decide where an entry goes.
class KRLOGFILES_EXPORT ICLogfile
{
public:
    virtual ~ICLogfile();
    /// Takes one message of \a severity with the caller's \a flags word.
    virtual void addEntry(NkrLogfiles::eSeverity_t severity, const QString &text, unsigned int flags) = 0;
};

#pragma once

#include "ICLogfile.h"
#include "krlogfiles_export.h"

/// Sends info, warning and critical messages to a log; a null log does nothing.
class KRLOGFILES_EXPORT CMessageBoardHelper
{
public:
    /// Sends an information message to \a log (not owned; null: nothing happens).
    static void setText(const QString &text, ICLogfile *log, unsigned int flags = 0);
    /// Sends a warning to \a log (not owned; null: nothing happens).
    static void setWarning(const QString &text, ICLogfile *log, unsigned int flags = 0);
    /// Sends a critical message to \a log (not owned; null: nothing happens).
    static void setCritical(const QString &text, ICLogfile *log, unsigned int flags = 0);
};

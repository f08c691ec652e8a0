#pragma once

#include "ICLogfile.h"
#include "krlogfiles_export.h"

/// Sends info, warning and critical messages to a log; a null log does nothing.
class KRLOGFILES_EXPORT CMessageBoardHelper
{
public:
    static void setText(const QString &text, ICLogfile *log, unsigned int flags = 0);
    static void setWarning(const QString &text, ICLogfile *log, unsigned int flags = 0);
    static void setCritical(const QString &text, ICLogfile *log, unsigned int flags = 0);
};

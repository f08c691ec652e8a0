#include "CMessageBoardHelper.h"

void CMessageBoardHelper::setText(const QString &text, ICLogfile *log, unsigned int flags)
{
    if (log)
        log->addEntry(NkrLogfiles::E_SEV_INFO, text, flags);
}

void CMessageBoardHelper::setWarning(const QString &text, ICLogfile *log, unsigned int flags)
{
    if (log)
        log->addEntry(NkrLogfiles::E_SEV_WARNING, text, flags);
}

void CMessageBoardHelper::setCritical(const QString &text, ICLogfile *log, unsigned int flags)
{
    if (log)
        log->addEntry(NkrLogfiles::E_SEV_CRITICAL, text, flags);
}

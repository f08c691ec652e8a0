#include "COdictDroppedRecord.h"

COdictDroppedRecord::COdictDroppedRecord(eDropReason_t reason, int line, const COdictObjectId &id,
                                         const QString &name, const QString &text)
    : m_reason(reason)
    , m_line(line)
    , m_id(id)
    , m_name(name)
    , m_text(text)
{
}

bool COdictDroppedRecord::operator==(const COdictDroppedRecord &other) const
{
    return m_reason == other.m_reason && m_line == other.m_line && m_id == other.m_id
        && m_name == other.m_name && m_text == other.m_text;
}

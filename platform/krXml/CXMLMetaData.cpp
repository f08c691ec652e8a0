#include "CXMLMetaData.h"

CXMLMetaData::CXMLMetaData(const QDate &date, const QTime &time, const QString &author,
                           const QString &comment, NTypes::uVersion_t version)
    : m_date(date)
    , m_time(time)
    , m_author(author)
    , m_comment(comment)
    , m_version(version)
{
}

bool CXMLMetaData::operator==(const CXMLMetaData &other) const
{
    return m_date == other.m_date && m_time == other.m_time && m_author == other.m_author
        && m_comment == other.m_comment && m_version == other.m_version;
}

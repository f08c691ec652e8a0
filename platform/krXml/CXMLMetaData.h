#pragma once

#include "NTypes.h"
#include "krxml_export.h"

#include <QDate>
#include <QString>
#include <QTime>

/// The head of a document file: date, time, author, comment and version.
class KRXML_EXPORT CXMLMetaData
{
public:
    CXMLMetaData() = default;
    CXMLMetaData(const QDate &date, const QTime &time, const QString &author,
                 const QString &comment, NTypes::uVersion_t version);

    QDate date() const { return m_date; }
    QTime time() const { return m_time; }
    QString author() const { return m_author; }
    QString comment() const { return m_comment; }
    NTypes::uVersion_t version() const { return m_version; }

    void setDate(const QDate &date) { m_date = date; }
    void setTime(const QTime &time) { m_time = time; }
    void setAuthor(const QString &author) { m_author = author; }
    void setComment(const QString &comment) { m_comment = comment; }
    void setVersion(NTypes::uVersion_t version) { m_version = version; }

    bool operator==(const CXMLMetaData &other) const;
    bool operator!=(const CXMLMetaData &other) const { return !(*this == other); }

private:
    QDate m_date;
    QTime m_time;
    QString m_author;
    QString m_comment;
    NTypes::uVersion_t m_version;
};

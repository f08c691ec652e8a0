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
    /// A head with every field given.
    CXMLMetaData(const QDate &date, const QTime &time, const QString &author,
                 const QString &comment, NTypes::uVersion_t version);

    /// The date the document was written; null when not set.
    QDate date() const { return m_date; }
    /// The time the document was written; null when not set.
    QTime time() const { return m_time; }
    /// Who or what wrote the document.
    QString author() const { return m_author; }
    /// A free comment.
    QString comment() const { return m_comment; }
    /// The version of the document's content.
    NTypes::uVersion_t version() const { return m_version; }

    /// Sets the date.
    void setDate(const QDate &date) { m_date = date; }
    /// Sets the time.
    void setTime(const QTime &time) { m_time = time; }
    /// Sets the author.
    void setAuthor(const QString &author) { m_author = author; }
    /// Sets the comment.
    void setComment(const QString &comment) { m_comment = comment; }
    /// Sets the version.
    void setVersion(NTypes::uVersion_t version) { m_version = version; }

    /// True when every field is equal.
    bool operator==(const CXMLMetaData &other) const;
    /// True when some field differs.
    bool operator!=(const CXMLMetaData &other) const { return !(*this == other); }

private:
    QDate m_date;
    QTime m_time;
    QString m_author;
    QString m_comment;
    NTypes::uVersion_t m_version;
};

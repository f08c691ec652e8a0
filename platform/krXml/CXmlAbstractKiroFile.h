#pragma once

#include "CDomDoc.h"
#include "CXMLMetaData.h"
#include "krxml_export.h"

#include <QString>

class CXmlCheckedReader;
class CXmlPullReader;
class ICLogfile;
class QXmlStreamReader;
class QXmlStreamWriter;

/// A typed XML document file of the family: the document element's tag is the document type,
/// its "version" attribute the format version, and its first child the "Header" with the meta data.
class KRXML_EXPORT CXmlAbstractKiroFile
{
public:
    /// Results of open().
    enum eOpenResult_t {
        E_OPEN_OK = 0,             ///< the document was read
        E_OPEN_NOT_READABLE = 1,   ///< the file does not exist or cannot be read
        E_OPEN_NOT_WELLFORMED = 2, ///< not well-formed XML; the error text names line and column
        E_OPEN_WRONG_TYPE = 3,     ///< the document element's tag differs from the expected type
        E_OPEN_WRONG_VERSION = 4   ///< the version differs and handleVersionError answered false
    };

    /// An empty document file whose messages go to \a log (not owned; null silences).
    explicit CXmlAbstractKiroFile(ICLogfile *log = nullptr);
    virtual ~CXmlAbstractKiroFile();

    /// Starts a new document of \a type and \a version with a "Header" from \a meta.
    /// \a encoding goes into the XML declaration ("UTF-8" when empty). False when the head
    /// could not be written (an empty type).
    bool create(const QString &type, const QString &version, const CXMLMetaData &meta,
                const QString &encoding = QString());

    /// Reads \a fileName as a document of \a type and \a version. Returns an eOpenResult_t;
    /// \a errorText receives the reason for every result but 0.
    int open(const QString &fileName, const QString &type, const QString &version, QString *errorText = nullptr);

    /// Writes the document atomically (QSaveFile): a failed save leaves an existing file as it was.
    /// \a encoding empty means the encoding given to create(), else UTF-8.
    bool save(const QString &fileName, const QString &encoding = QString());

    /// The head of the document read or created.
    CXMLMetaData metaData() const { return m_metaData; }
    /// Stores the meta data and rewrites the document's "Header" when there is a document.
    void setMetaData(const CXMLMetaData &meta);

    /// The document.
    CDomDoc &domDoc() { return m_domDoc; }
    /// The document.
    const CDomDoc &domDoc() const { return m_domDoc; }
    /// The document element; null without a document.
    QDomElement documentElement() const { return m_domDoc.documentElement(); }
    /// The tag of the document element; empty without a document.
    QString documentType() const;
    /// The "version" attribute of the document element; empty without one.
    QString documentVersion() const;
    /// The log sink; not owned, null when silenced.
    ICLogfile *logfile() const { return m_log; }
    /// Sets the log sink (not owned; null silences).
    void setLogfile(ICLogfile *log) { m_log = log; }

    // Head handling shared with streaming readers and writers of large documents.
    /// The head stored in the "Header" element \a header; defaults for missing fields.
    static CXMLMetaData metaDataFromElement(const QDomElement &header);
    /// Writes \a meta as the children of the "Header" element \a header of \a doc.
    static void writeHeaderElement(QDomDocument &doc, QDomElement header, const CXMLMetaData &meta);
    /// Reads the "Header" element the stream reader stands on (a StartElement) up to its end.
    static CXMLMetaData readHeader(QXmlStreamReader &reader);
    /// The same for a reader that checks the limits of CXmlInputCheck.
    static CXMLMetaData readHeader(CXmlCheckedReader &reader);
    /// The same for the expat pull reader.
    static CXMLMetaData readHeader(CXmlPullReader &reader);
    /// Writes \a meta as a "Header" element.
    static void writeHeader(QXmlStreamWriter &writer, const CXMLMetaData &meta);
    /// Checks the document element the stream reader stands on (a StartElement) against type and
    /// version and calls handleVersionError on a version mismatch; answers an eOpenResult_t.
    int checkDocumentElement(QXmlStreamReader &reader, const QString &type, const QString &version, QString *errorText);
    /// The same for a document element of tag \a tag whose "version" attribute is \a foundVersion.
    int checkDocumentElement(const QString &tag, const QString &foundVersion, const QString &type,
                             const QString &version, QString *errorText);

protected:
    /// Called when the version differs from the expected one; true accepts the document.
    virtual bool handleVersionError(const QString &found, const QString &expected);

private:
    ICLogfile *m_log = nullptr;
    CDomDoc m_domDoc;
    CXMLMetaData m_metaData;
    QString m_encoding;
};

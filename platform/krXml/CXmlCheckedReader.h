#pragma once

#include "CXmlInputCheck.h"
#include "krxml_export.h"

#include <QXmlStreamReader>

/// A QXmlStreamReader that enforces the limits of CXmlInputCheck on every token it reads:
/// nesting depth, text and attribute sizes, and no entity declarations. A token beyond a limit
/// stops the reader with an error, as a syntax error would, so a reading loop needs no checks
/// of its own and the document is read in one pass. Every way of moving on (readNext, skipping,
/// reading texts) goes through the check; none of them recurses.
class KRXML_EXPORT CXmlCheckedReader
{
public:
    /// Reads from \a device (not owned) with the depth limit of \a parser; \a fileName is named
    /// in errorText().
    CXmlCheckedReader(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser);

    /// The next token, after checking it; Invalid once the reader has stopped.
    QXmlStreamReader::TokenType readNext();
    /// Reads up to the next start element of the current element; false at its end or on error.
    bool readNextStartElement();
    /// Reads past the end of the current element (the reader stands on its start).
    void skipCurrentElement();
    /// The text of the current element, children's texts included, up to its end.
    QString elementText();
    /// The text of the current element, which must hold no child elements (an error otherwise).
    QString readElementText();

    /// The underlying reader, for names, attributes and positions.
    QXmlStreamReader &stream() { return m_reader; }
    /// The underlying reader, read-only.
    const QXmlStreamReader &stream() const { return m_reader; }
    /// The name of the current element.
    QStringRef name() const { return m_reader.name(); }
    /// The attributes of the current start element.
    QXmlStreamAttributes attributes() const { return m_reader.attributes(); }
    /// The line of the current token, from 1.
    qint64 lineNumber() const { return m_reader.lineNumber(); }
    /// Whether the current token is a start element.
    bool isStartElement() const { return m_reader.isStartElement(); }
    /// True at the end of the document and after an error.
    bool atEnd() const { return m_reader.atEnd(); }
    /// Whether reading stopped on a syntax error or a limit.
    bool hasError() const { return m_reader.hasError(); }

    /// The failure as CXmlInputCheck::readError() words it: file, line, column and reason.
    QString errorText() const;

private:
    // Reads past the end of the element the reader stands in, adding its texts to text when set.
    void readToEndOfElement(QString *text);
    /// Empty when the current token is within the limits, else the reason.
    QString checkToken();

    QXmlStreamReader m_reader;
    QString m_fileName;
    int m_depthLimit;
    int m_depth = 0;
    qint64 m_text = 0; ///< characters of the current element's text so far
};

#pragma once

#include "CXmlInputCheck.h"
#include "krxml_export.h"

#include <QLatin1String>
#include <QScopedPointer>
#include <QString>

class CXmlPullReaderPrivate;
class QIODevice;

/// A pull reader of elements on expat that enforces the limits of CXmlInputCheck as it reads:
/// nesting depth, text, comment and attribute sizes, input size, no entity declarations; external
/// entities are never read. It moves from tag to tag; the character data between two tags is
/// gathered, so texts cost one conversion each. Names are namespace-local, as QXmlStreamReader
/// gives them. Reading stops after the document element ends. A token beyond a limit stops the
/// reader with an error, as a syntax error would. Nothing recurses.
class KRXML_EXPORT CXmlPullReader
{
public:
    /// What the reader stands on.
    enum eToken_t {
        E_TOKEN_NONE = 0,  ///< nothing read yet
        E_TOKEN_START = 1, ///< a start tag
        E_TOKEN_END = 2,   ///< an end tag
        E_TOKEN_DONE = 3   ///< the document element has ended, or reading stopped on an error
    };

    /// Reads from \a device (not owned) with the depth limit of \a parser; \a fileName is named
    /// in errorText().
    CXmlPullReader(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser);
    ~CXmlPullReader();

    /// Moves to the next start or end tag.
    eToken_t readNext();
    /// Reads up to the next start tag inside the current element; false at its end or on error.
    bool readNextStartElement();
    /// Reads past the end of the current element (the reader stands on its start).
    void skipCurrentElement();
    /// The text of the current element, children's texts included, up to its end.
    QString elementText();
    /// The same into \a text, whose buffer is reused when it is not shared and the text is
    /// ASCII: a caller that parses texts and keeps none of them refills one string.
    void elementText(QString *text);
    /// The text of the current element, which must hold no child elements (an error otherwise).
    QString readElementText();

    /// The current token.
    eToken_t tokenType() const;
    /// Whether the reader stands on a start tag.
    bool isStartElement() const { return tokenType() == E_TOKEN_START; }
    /// The local name of the current element as UTF-8 bytes: compare it with ASCII names only.
    QLatin1String name() const;
    /// The local name of the current element.
    QString nameString() const;
    /// Whether the current start tag has the attribute \a name (without prefix); its value goes
    /// to \a value, whose buffer is reused as elementText(QString *) reuses it.
    bool attribute(QLatin1String name, QString *value) const;
    /// The line of the end of the current tag, from 1.
    qint64 lineNumber() const;
    /// The bytes handed to the parser so far.
    qint64 bytesRead() const;
    /// True after the document element and after an error.
    bool atEnd() const { return tokenType() == E_TOKEN_DONE; }
    /// Whether reading stopped on a syntax error or a limit.
    bool hasError() const;
    /// Stops reading with \a reason at the current place.
    void raiseError(const QString &reason);
    /// The failure as CXmlInputCheck::readError() words it: file, line, column and reason.
    QString errorText() const;

private:
    Q_DISABLE_COPY(CXmlPullReader)
    const QScopedPointer<CXmlPullReaderPrivate> d;
};

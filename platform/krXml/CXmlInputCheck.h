#pragma once

#include "krxml_export.h"

#include <QString>

class QFile;
class QIODevice;
class QXmlStreamReader;

/// The checks and limits every reader of the document family applies before it trusts a file,
/// and the texts of their failures. Stream readers and the DOM path share them, so a file is
/// refused for the same reason with the same words whichever class reads it.
///
/// Failure texts name the file once: "cannot open '<file>': <reason>", with "line <l>, column
/// <c>: " before the reason when the content is refused.
class KRXML_EXPORT CXmlInputCheck
{
public:
    /// The parser that reads the document after the check; it decides the depth limit.
    enum eParser_t {
        E_PARSER_DOM = 0,   ///< QDomDocument: recursive, and its cost per node grows with the depth
        E_PARSER_STREAM = 1 ///< a QXmlStreamReader loop with its own stack: constant cost per level
    };
    /// Deepest element nesting accepted for the DOM parser, the document element being level 1.
    static constexpr int maxDomDepth = 256;
    /// Deepest element nesting accepted for stream readers.
    static constexpr int maxStreamDepth = 16384;
    /// Longest text (characters) of one element, comment or processing instruction.
    static constexpr qint64 maxTextSize = 64 * 1024 * 1024;
    /// Longest attribute value (characters).
    static constexpr qint64 maxAttributeSize = 1024 * 1024;
    /// Largest file read (bytes).
    static constexpr qint64 maxInputSize = 256 * 1024 * 1024;

    /// Opens \a fileName read-only into \a file: it must exist, be a regular file (a FIFO,
    /// device or directory is refused without being opened) and be at most maxInputSize bytes.
    /// False with the reason in \a errorText.
    static bool openForReading(QFile &file, const QString &fileName, QString *errorText);

    /// Reads the document from the current position of \a device to its end, with a stream
    /// reader, and checks that it is well-formed XML in a valid encoding without NUL bytes, DTD
    /// entity declarations, deeper nesting than maxDepth or texts and attributes longer than
    /// the limits; the depth limit is that of \a parser. False with the reason, naming
    /// \a fileName and the line, in \a errorText.
    static bool checkContent(QIODevice &device, const QString &fileName, eParser_t parser, QString *errorText);
    /// The depth limit for \a parser.
    static int maxDepth(eParser_t parser) { return parser == E_PARSER_STREAM ? maxStreamDepth : maxDomDepth; }

    /// The text of the element the reader stands on (a StartElement), children's texts
    /// included, up to its end; without recursion, unlike QXmlStreamReader::readElementText.
    static QString elementText(QXmlStreamReader &reader);

    /// "cannot open '<file>': <reason>".
    static QString openError(const QString &fileName, const QString &reason);
    /// "cannot open '<file>': line <l>, column <c>: <reason>" (the place left out when \a line is 0).
    static QString readError(const QString &fileName, qint64 line, qint64 column, const QString &reason);
    /// readError() at the reader's position with its error text.
    static QString readError(const QString &fileName, const QXmlStreamReader &reader);
};

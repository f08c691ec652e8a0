#pragma once

// The state behind CXmlPullReader: expat's parser and the tags it has reported from the last
// piece of input and not yet handed out. expat parses a whole piece at once and the tags wait in
// a queue: pausing expat after every tag and resuming it costs more than the parse of the tag.
// Names, attributes and texts of the queued tags live in one byte buffer, reused piece by piece.

#include "CXmlPullReader.h"

#include <expat.h>

#include <string>
#include <vector>

class CXmlPullReaderPrivate
{
public:
    /// A place in the byte buffer.
    struct sSpan_t {
        size_t offset = 0;
        size_t size = 0;
    };
    /// An attribute of a queued start tag.
    struct sAttribute_t {
        sSpan_t name;  ///< a prefixed name keeps its namespace and matches no plain name
        sSpan_t value;
    };
    /// A tag expat has reported.
    struct sTag_t {
        CXmlPullReader::eToken_t token = CXmlPullReader::E_TOKEN_NONE;
        int depth = 0;              ///< elements open after the tag: 0 after the document element
        sSpan_t name;               ///< the local name
        sSpan_t text;               ///< the character data between the tag before and this one
        size_t attributes = 0;      ///< the first attribute in the attribute list
        size_t attributeCount = 0;
        qint64 line = 0;            ///< the line of the end of the tag
        qint64 column = 0;          ///< the column of the end of the tag
    };

    CXmlPullReaderPrivate(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser);
    ~CXmlPullReaderPrivate();

    /// Refills the queue from the next piece of input; false when nothing more comes.
    bool parseMore();
    /// Stops expat with \a reason at \a line and \a column (our own limits). The error shows
    /// once the tags queued before it have been handed out.
    void fail(const QString &reason, qint64 line, qint64 column);
    /// Stops expat with \a reason at its current place.
    void failHere(const QString &reason);
    /// Makes the pending error the reader's error.
    void showError();
    /// Counts the UTF-16 units of \a size bytes of UTF-8 at \a data, as QString would hold them.
    static qint64 utf16Size(const char *data, size_t size);
    /// Adds \a size bytes of character data to the text, within the text limit.
    void addText(const char *data, int size);
    /// Copies \a size bytes to the byte buffer.
    sSpan_t store(const char *data, size_t size);
    /// Queues a tag with the character data gathered before it.
    sTag_t &queue(CXmlPullReader::eToken_t token, const char *name, qint64 line, qint64 column);
    /// The tag handed out, or null.
    const sTag_t *current() const { return index < tags.size() ? &tags[index] : nullptr; }
    /// The character data before the tag handed out; after the last tag, what came after it.
    sSpan_t textBefore() const
    {
        if (const sTag_t *tag = current())
            return tag->text;
        return sSpan_t{textStart, bytes.size() - textStart};
    }
    /// \a span as a pointer into the byte buffer.
    const char *at(const sSpan_t &span) const { return bytes.data() + span.offset; }

    static void XMLCALL onStart(void *data, const XML_Char *name, const XML_Char **attributes);
    static void XMLCALL onEnd(void *data, const XML_Char *name);
    static void XMLCALL onText(void *data, const XML_Char *text, int size);
    static void XMLCALL onComment(void *data, const XML_Char *text);
    static void XMLCALL onProcessingInstruction(void *data, const XML_Char *target, const XML_Char *text);
    static void XMLCALL onEntityDeclaration(void *data, const XML_Char *, int, const XML_Char *, int,
                                            const XML_Char *, const XML_Char *, const XML_Char *, const XML_Char *);
    static int XMLCALL onUnknownEncoding(void *data, const XML_Char *name, XML_Encoding *info);

    XML_Parser parser = nullptr;
    QIODevice *device;
    QString fileName;
    int depthLimit;
    int depth = 0;              ///< elements open where expat stands

    std::vector<sTag_t> tags;   ///< queued tags of the current piece
    size_t index = size_t(-1);  ///< the tag handed out; beyond the queue before the first
    std::vector<sAttribute_t> attributes;
    std::string bytes;          ///< names, attribute values and texts of the queued tags
    size_t textStart = 0;       ///< where the character data since the last tag starts in bytes
    qint64 textUnits = -1;      ///< its size in UTF-16 units once it is long enough to be counted; -1 before
    std::string gathered;       ///< elementText() collects here
    qint64 fed = 0;             ///< bytes handed to expat

    bool finalFed = false;      ///< the end of the input has been handed to expat
    bool rootEnded = false;     ///< expat has reported the end of the document element and pauses
    bool parserStopped = false; ///< expat failed or was stopped: nothing more is parsed
    bool done = false;          ///< the reader has handed out its last tag, or failed

    bool pending = false;       ///< an error waits behind the queued tags
    bool failed = false;        ///< the reader stopped on an error
    QString errorReason;
    qint64 errorLine = 0;
    qint64 errorColumn = 0;
};

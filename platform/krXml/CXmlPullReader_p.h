#pragma once

// The state behind CXmlPullReader: expat's parser, the tags it has reported and not yet handed
// out, and the character data gathered since the last tag. Buffers are reused from tag to tag.

#include "CXmlPullReader.h"

#include <expat.h>

#include <string>
#include <vector>

class CXmlPullReaderPrivate
{
public:
    /// A tag expat has reported; a start tag with its attributes (name, value, name, ...).
    struct sTag_t {
        CXmlPullReader::eToken_t token = CXmlPullReader::E_TOKEN_NONE;
        std::string name;
        std::vector<std::string> attributes;
        int attributeCount = 0; ///< name-value pairs in use; the vector keeps its strings for reuse
        qint64 line = 0;
    };

    CXmlPullReaderPrivate(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser);
    ~CXmlPullReaderPrivate();

    /// Parses until expat has reported a tag or stops; false at the end or on an error.
    bool parseMore();
    /// Stops expat with \a reason at \a line and \a column (our own limits).
    void fail(const QString &reason, qint64 line, qint64 column);
    /// Stops expat with \a reason at its current place.
    void failHere(const QString &reason);
    /// Counts the UTF-16 units of \a size bytes of UTF-8 at \a data, as QString would hold them.
    static qint64 utf16Size(const char *data, size_t size);
    /// Adds \a size bytes of character data to the text, within the text limit.
    void addText(const char *data, int size);
    /// Queues a tag reported by expat and asks it to pause after the current token.
    sTag_t &queue(CXmlPullReader::eToken_t token, const char *name);

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
    int depth = 0;

    sTag_t tags[2];         ///< an empty element tag reports its start and end in one token
    int tagCount = 0;       ///< tags queued
    int tagIndex = -1;      ///< the tag handed out; -1 before the first
    bool suspended = false; ///< expat pauses after the current token
    bool finalFed = false;  ///< the end of the input has been handed to expat
    bool done = false;      ///< the document element has ended or reading failed

    std::string text;       ///< character data since the last tag (UTF-8)
    qint64 textUnits = -1;  ///< its size in UTF-16 units once it is long enough to be counted; -1 before
    std::string gathered;   ///< elementText() collects here
    qint64 fed = 0;         ///< bytes handed to expat

    bool failed = false;
    QString errorReason;
    qint64 errorLine = 0;
    qint64 errorColumn = 0;
};

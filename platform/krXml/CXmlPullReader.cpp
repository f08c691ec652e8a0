#include "CXmlPullReader.h"

#include "CXmlPullReader_p.h"

#include <QIODevice>
#include <QTextCodec>

#include <cstring>

namespace {

/// Separates the namespace from the local name in the names expat reports; no XML name or
/// namespace text can hold it.
constexpr XML_Char namespaceSeparator = '\x01';

/// Bytes handed to expat at a time: its own buffer, filled by the device without a copy.
constexpr int chunkSize = 64 * 1024;

/// The local part of a name expat reports as "namespace<separator>local".
const char *localName(const char *name)
{
    const char *separator = std::strrchr(name, namespaceSeparator);
    return separator ? separator + 1 : name;
}

QString tooLong(const char *what, qint64 limit)
{
    return QStringLiteral("%1 longer than the limit of %2 characters").arg(QLatin1String(what)).arg(limit);
}

} // namespace

CXmlPullReaderPrivate::CXmlPullReaderPrivate(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser)
    : device(device)
    , fileName(fileName)
    , depthLimit(CXmlInputCheck::maxDepth(parser))
{
    this->parser = XML_ParserCreateNS(nullptr, namespaceSeparator);
    XML_SetUserData(this->parser, this);
    XML_SetElementHandler(this->parser, onStart, onEnd);
    XML_SetCharacterDataHandler(this->parser, onText);
    XML_SetCommentHandler(this->parser, onComment);
    XML_SetProcessingInstructionHandler(this->parser, onProcessingInstruction);
    XML_SetEntityDeclHandler(this->parser, onEntityDeclaration);
    XML_SetUnknownEncodingHandler(this->parser, onUnknownEncoding, this);
    // The external subset and external entities are never read: no handler fetches them.
    XML_SetParamEntityParsing(this->parser, XML_PARAM_ENTITY_PARSING_NEVER);
}

CXmlPullReaderPrivate::~CXmlPullReaderPrivate()
{
    XML_ParserFree(parser);
}

qint64 CXmlPullReaderPrivate::utf16Size(const char *data, size_t size)
{
    // Every byte but a continuation byte starts a character; four-byte ones become two units.
    qint64 units = 0;
    for (size_t i = 0; i < size; ++i) {
        const unsigned char byte = static_cast<unsigned char>(data[i]);
        units += (byte & 0xC0) != 0x80;
        units += byte >= 0xF0;
    }
    return units;
}

void CXmlPullReaderPrivate::fail(const QString &reason, qint64 line, qint64 column)
{
    if (failed)
        return;
    failed = true;
    done = true;
    errorReason = reason;
    errorLine = line;
    errorColumn = column;
    XML_StopParser(parser, XML_FALSE);
}

void CXmlPullReaderPrivate::failHere(const QString &reason)
{
    fail(reason, qint64(XML_GetCurrentLineNumber(parser)), qint64(XML_GetCurrentColumnNumber(parser)));
}

void CXmlPullReaderPrivate::addText(const char *data, int size)
{
    text.append(data, size_t(size));
    // UTF-8 never takes fewer bytes than UTF-16 units, so short texts need no counting.
    if (textUnits < 0 && qint64(text.size()) <= CXmlInputCheck::maxTextSize)
        return;
    textUnits = textUnits < 0 ? utf16Size(text.data(), text.size()) : textUnits + utf16Size(data, size_t(size));
    if (textUnits > CXmlInputCheck::maxTextSize)
        failHere(tooLong("text", CXmlInputCheck::maxTextSize));
}

CXmlPullReaderPrivate::sTag_t &CXmlPullReaderPrivate::queue(CXmlPullReader::eToken_t token, const char *name)
{
    sTag_t &tag = tags[tagCount++];
    tag.token = token;
    tag.name.assign(localName(name));
    tag.attributeCount = 0;
    if (token == CXmlPullReader::E_TOKEN_END)
        tag.line = qint64(XML_GetCurrentLineNumber(parser)); // a start tag's line is counted by onStart
    if (!suspended) {
        suspended = true;
        XML_StopParser(parser, XML_TRUE);
    }
    return tag;
}

void XMLCALL CXmlPullReaderPrivate::onStart(void *data, const XML_Char *name, const XML_Char **attributes)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    if (d->failed)
        return;
    // The place after the tag, where QXmlStreamReader reports it: expat gives its start.
    qint64 line = qint64(XML_GetCurrentLineNumber(d->parser));
    qint64 column = qint64(XML_GetCurrentColumnNumber(d->parser));
    int offset = 0;
    int size = 0;
    if (const char *buffer = XML_GetInputContext(d->parser, &offset, &size)) {
        const int count = XML_GetCurrentByteCount(d->parser);
        if (count > 0 && offset + count <= size) {
            for (const char *p = buffer + offset, *end = p + count; p < end; ++p) {
                const unsigned char byte = static_cast<unsigned char>(*p);
                if (byte == '\n' || (byte == '\r' && (p + 1 == end || p[1] != '\n'))) {
                    ++line;
                    column = 0;
                } else {
                    column += ((byte & 0xC0) != 0x80) + (byte >= 0xF0); // in UTF-16 units, as Qt counts
                }
            }
        }
    }
    if (++d->depth > d->depthLimit) {
        d->fail(QStringLiteral("elements nested deeper than the limit of %1 levels").arg(d->depthLimit), line, column);
        return;
    }
    // The attributes go into the next free slot first, so that each value is measured once.
    sTag_t &next = d->tags[d->tagCount];
    size_t count = 0;
    for (const XML_Char **a = attributes; *a; a += 2, count += 2) {
        if (next.attributes.size() < count + 2)
            next.attributes.resize(count + 2);
        next.attributes[count].assign(a[0]); // a prefixed name keeps its namespace and matches no plain name
        const std::string &value = next.attributes[count + 1].assign(a[1]);
        if (qint64(value.size()) > CXmlInputCheck::maxAttributeSize
            && utf16Size(value.data(), value.size()) > CXmlInputCheck::maxAttributeSize) {
            d->fail(QStringLiteral("attribute '%1' longer than the limit of %2 characters")
                        .arg(QString::fromUtf8(localName(a[0]))).arg(CXmlInputCheck::maxAttributeSize),
                    line, column);
            return;
        }
    }
    sTag_t &tag = d->queue(CXmlPullReader::E_TOKEN_START, name);
    tag.line = line;
    tag.attributeCount = int(count / 2);
}

void XMLCALL CXmlPullReaderPrivate::onEnd(void *data, const XML_Char *name)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    if (d->failed)
        return;
    --d->depth;
    d->queue(CXmlPullReader::E_TOKEN_END, name);
}

void XMLCALL CXmlPullReaderPrivate::onText(void *data, const XML_Char *text, int size)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    if (!d->failed)
        d->addText(text, size);
}

void XMLCALL CXmlPullReaderPrivate::onComment(void *data, const XML_Char *text)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    const size_t bytes = std::strlen(text);
    if (!d->failed && qint64(bytes) > CXmlInputCheck::maxTextSize && utf16Size(text, bytes) > CXmlInputCheck::maxTextSize)
        d->failHere(tooLong("text", CXmlInputCheck::maxTextSize));
}

void XMLCALL CXmlPullReaderPrivate::onProcessingInstruction(void *data, const XML_Char *, const XML_Char *text)
{
    onComment(data, text);
}

void XMLCALL CXmlPullReaderPrivate::onEntityDeclaration(void *data, const XML_Char *, int, const XML_Char *, int,
                                                        const XML_Char *, const XML_Char *, const XML_Char *, const XML_Char *)
{
    // Entities are the road to expansion bombs and to files outside the document.
    static_cast<CXmlPullReaderPrivate *>(data)->failHere(QStringLiteral("entity declarations are not accepted"));
}

int XMLCALL CXmlPullReaderPrivate::onUnknownEncoding(void *, const XML_Char *name, XML_Encoding *info)
{
    // expat knows UTF-8, UTF-16, ISO-8859-1 and US-ASCII; other single-byte encodings are read
    // through Qt's codec of that name, as QXmlStreamReader reads them.
    QTextCodec *codec = QTextCodec::codecForName(name);
    if (!codec)
        return XML_STATUS_ERROR;
    for (int byte = 0; byte < 256; ++byte) {
        const char c = char(byte);
        QTextCodec::ConverterState state;
        const QString decoded = codec->toUnicode(&c, 1, &state);
        if (decoded.size() != 1 || state.remainingChars != 0 || decoded.at(0).isSurrogate())
            return XML_STATUS_ERROR; // a multi-byte encoding
        info->map[byte] = decoded.at(0).unicode();
    }
    info->data = nullptr;
    info->convert = nullptr;
    info->release = nullptr;
    return XML_STATUS_OK;
}

bool CXmlPullReaderPrivate::parseMore()
{
    while (!done && tagCount == 0) {
        XML_Status status;
        if (suspended) {
            suspended = false;
            status = XML_ResumeParser(parser);
        } else if (finalFed) {
            done = true; // expat finished without an error: the document element has ended
            return false;
        } else {
            void *buffer = XML_GetBuffer(parser, chunkSize);
            if (!buffer) {
                failHere(QStringLiteral("out of memory"));
                return false;
            }
            const qint64 read = device->read(static_cast<char *>(buffer), chunkSize);
            if (read < 0) {
                failHere(device->errorString());
                return false;
            }
            fed += read;
            if (fed > CXmlInputCheck::maxInputSize) {
                failHere(QStringLiteral("larger than the limit of %1 bytes").arg(CXmlInputCheck::maxInputSize)); // grew after opening
                return false;
            }
            finalFed = read == 0;
            status = XML_ParseBuffer(parser, int(read), finalFed);
        }
        if (status == XML_STATUS_ERROR && !failed) {
            failed = true;
            done = true;
            errorReason = QString::fromUtf8(XML_ErrorString(XML_GetErrorCode(parser)));
            errorLine = qint64(XML_GetErrorLineNumber(parser));
            errorColumn = qint64(XML_GetErrorColumnNumber(parser));
        }
    }
    return tagCount > 0;
}

CXmlPullReader::CXmlPullReader(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser)
    : d(new CXmlPullReaderPrivate(device, fileName, parser))
{
}

CXmlPullReader::~CXmlPullReader() = default;

CXmlPullReader::eToken_t CXmlPullReader::readNext()
{
    if (d->done && d->failed)
        return E_TOKEN_DONE;
    if (d->tagIndex >= 0 && d->tags[d->tagIndex].token == E_TOKEN_END && d->depth == 0 && d->tagIndex + 1 >= d->tagCount) {
        d->done = true; // the document element has ended; what follows it is not read
        d->tagIndex = -1;
        d->tagCount = 0;
        return E_TOKEN_DONE;
    }
    d->text.clear();
    d->textUnits = -1;
    if (d->tagIndex + 1 < d->tagCount) {
        ++d->tagIndex; // the end of an empty element tag: no text before it
        return d->tags[d->tagIndex].token;
    }
    d->tagCount = 0;
    d->tagIndex = -1;
    if (!d->parseMore())
        return E_TOKEN_DONE;
    d->tagIndex = 0;
    return d->tags[0].token;
}

CXmlPullReader::eToken_t CXmlPullReader::tokenType() const
{
    if (d->done && (d->failed || d->tagIndex < 0))
        return E_TOKEN_DONE;
    return d->tagIndex >= 0 ? d->tags[d->tagIndex].token : E_TOKEN_NONE;
}

bool CXmlPullReader::readNextStartElement()
{
    for (;;) {
        switch (readNext()) {
        case E_TOKEN_START:
            return true;
        case E_TOKEN_END:
        case E_TOKEN_DONE:
            return false;
        default:
            break;
        }
    }
}

void CXmlPullReader::skipCurrentElement()
{
    int depth = 1;
    while (depth > 0) {
        switch (readNext()) {
        case E_TOKEN_START:
            ++depth;
            break;
        case E_TOKEN_END:
            --depth;
            break;
        case E_TOKEN_DONE:
            return;
        default:
            break;
        }
    }
}

QString CXmlPullReader::elementText()
{
    if (!isStartElement())
        return QString();
    d->gathered.clear();
    int depth = 1;
    while (depth > 0) {
        const eToken_t token = readNext();
        d->gathered += d->text;
        if (token == E_TOKEN_START)
            ++depth;
        else if (token == E_TOKEN_END)
            --depth;
        else
            break;
    }
    return d->gathered.empty() ? QString() : QString::fromUtf8(d->gathered.data(), int(d->gathered.size()));
}

QString CXmlPullReader::readElementText()
{
    if (!isStartElement())
        return QString();
    switch (readNext()) {
    case E_TOKEN_END:
        break;
    case E_TOKEN_START:
        raiseError(QStringLiteral("Expected character data."));
        break; // the text before the child, as QXmlStreamReader answers
    default:
        return QString();
    }
    return d->text.empty() ? QString() : QString::fromUtf8(d->text.data(), int(d->text.size()));
}

QLatin1String CXmlPullReader::name() const
{
    if (d->tagIndex < 0)
        return QLatin1String();
    const std::string &name = d->tags[d->tagIndex].name;
    return QLatin1String(name.data(), int(name.size()));
}

QString CXmlPullReader::nameString() const
{
    const QLatin1String bytes = name();
    return QString::fromUtf8(bytes.data(), bytes.size());
}

bool CXmlPullReader::attribute(QLatin1String name, QString *value) const
{
    if (d->tagIndex < 0)
        return false;
    const CXmlPullReaderPrivate::sTag_t &tag = d->tags[d->tagIndex];
    for (int i = 0; i < tag.attributeCount; ++i) {
        const std::string &key = tag.attributes[size_t(2 * i)];
        if (key.size() == size_t(name.size()) && std::memcmp(key.data(), name.data(), key.size()) == 0) {
            const std::string &text = tag.attributes[size_t(2 * i + 1)];
            if (value)
                *value = QString::fromUtf8(text.data(), int(text.size()));
            return true;
        }
    }
    return false;
}

qint64 CXmlPullReader::lineNumber() const
{
    if (d->tagIndex >= 0)
        return d->tags[d->tagIndex].line;
    return qint64(XML_GetCurrentLineNumber(d->parser));
}

qint64 CXmlPullReader::bytesRead() const
{
    return d->fed;
}

bool CXmlPullReader::hasError() const
{
    return d->failed;
}

void CXmlPullReader::raiseError(const QString &reason)
{
    if (d->failed)
        return;
    d->failed = true;
    d->done = true;
    d->errorReason = reason;
    d->errorLine = lineNumber();
    d->errorColumn = qint64(XML_GetCurrentColumnNumber(d->parser));
}

QString CXmlPullReader::errorText() const
{
    return CXmlInputCheck::readError(d->fileName, d->errorLine, d->errorColumn, d->errorReason);
}

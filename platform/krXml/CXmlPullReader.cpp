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

/// Sets \a target to \a size bytes of UTF-8 at \a data. ASCII, nearly every text of a
/// dictionary, is widened into the target's own buffer when it has one that is not shared.
void assignUtf8(QString &target, const char *data, size_t size)
{
    const char *end = data + size;
    const char *p = data;
    while (p < end && static_cast<signed char>(*p) >= 0)
        ++p;
    if (p != end || size == 0) {
        target = QString::fromUtf8(data, int(size));
        return;
    }
    target.resize(int(size)); // detaches a shared buffer
    QChar *out = target.data();
    for (p = data; p < end; ++p)
        *out++ = QLatin1Char(*p);
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
    if (pending || failed)
        return;
    pending = true;
    parserStopped = true;
    errorReason = reason;
    errorLine = line;
    errorColumn = column;
    XML_StopParser(parser, XML_FALSE);
}

void CXmlPullReaderPrivate::failHere(const QString &reason)
{
    fail(reason, qint64(XML_GetCurrentLineNumber(parser)), qint64(XML_GetCurrentColumnNumber(parser)));
}

void CXmlPullReaderPrivate::showError()
{
    failed = true;
    done = true;
    tags.clear();
    index = size_t(-1);
}

CXmlPullReaderPrivate::sSpan_t CXmlPullReaderPrivate::store(const char *data, size_t size)
{
    const sSpan_t span{bytes.size(), size};
    bytes.append(data, size);
    return span;
}

void CXmlPullReaderPrivate::addText(const char *data, int size)
{
    bytes.append(data, size_t(size));
    // UTF-8 never takes fewer bytes than UTF-16 units, so short texts need no counting.
    const size_t gatheredSize = bytes.size() - textStart;
    if (textUnits < 0 && qint64(gatheredSize) <= CXmlInputCheck::maxTextSize)
        return;
    textUnits = textUnits < 0 ? utf16Size(bytes.data() + textStart, gatheredSize) : textUnits + utf16Size(data, size_t(size));
    if (textUnits > CXmlInputCheck::maxTextSize)
        failHere(tooLong("text", CXmlInputCheck::maxTextSize));
}

CXmlPullReaderPrivate::sTag_t &CXmlPullReaderPrivate::queue(CXmlPullReader::eToken_t token, const char *name,
                                                            qint64 line, qint64 column)
{
    tags.emplace_back();
    sTag_t &tag = tags.back();
    tag.token = token;
    tag.depth = depth;
    tag.text = sSpan_t{textStart, bytes.size() - textStart};
    const char *local = localName(name);
    tag.name = store(local, std::strlen(local));
    tag.line = line;
    tag.column = column;
    textStart = bytes.size();
    textUnits = -1;
    return tag;
}

/// The place after the token expat reports, where QXmlStreamReader reports a tag: expat gives
/// its start. Columns count UTF-16 units, as Qt counts them.
static void endOfToken(XML_Parser parser, qint64 *line, qint64 *column)
{
    *line = qint64(XML_GetCurrentLineNumber(parser));
    *column = qint64(XML_GetCurrentColumnNumber(parser));
    int offset = 0;
    int size = 0;
    const char *buffer = XML_GetInputContext(parser, &offset, &size);
    const int count = XML_GetCurrentByteCount(parser);
    if (!buffer || count <= 0 || offset + count > size)
        return;
    const char *token = buffer + offset;
    // Nearly every tag stands on one line: then only the characters count.
    if (!std::memchr(token, '\n', size_t(count)) && !std::memchr(token, '\r', size_t(count))) {
        *column += CXmlPullReaderPrivate::utf16Size(token, size_t(count));
        return;
    }
    for (const char *p = token, *end = p + count; p < end; ++p) {
        const unsigned char byte = static_cast<unsigned char>(*p);
        if (byte == '\n' || (byte == '\r' && (p + 1 == end || p[1] != '\n'))) {
            ++*line;
            *column = 0;
        } else {
            *column += ((byte & 0xC0) != 0x80) + (byte >= 0xF0);
        }
    }
}

void XMLCALL CXmlPullReaderPrivate::onStart(void *data, const XML_Char *name, const XML_Char **attributes)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    if (d->parserStopped)
        return;
    qint64 line = 0;
    qint64 column = 0;
    endOfToken(d->parser, &line, &column);
    if (++d->depth > d->depthLimit) {
        d->fail(QStringLiteral("elements nested deeper than the limit of %1 levels").arg(d->depthLimit), line, column);
        return;
    }
    sTag_t &tag = d->queue(CXmlPullReader::E_TOKEN_START, name, line, column);
    tag.attributes = d->attributes.size();
    for (const XML_Char **a = attributes; *a; a += 2) {
        sAttribute_t attribute;
        attribute.name = d->store(a[0], std::strlen(a[0]));
        attribute.value = d->store(a[1], std::strlen(a[1]));
        if (qint64(attribute.value.size) > CXmlInputCheck::maxAttributeSize
            && utf16Size(a[1], attribute.value.size) > CXmlInputCheck::maxAttributeSize) {
            // The tag is taken back: the reader stops before it, with the text before it.
            const sSpan_t text = tag.text;
            d->attributes.resize(tag.attributes);
            d->tags.pop_back();
            d->bytes.resize(text.offset + text.size);
            d->textStart = text.offset;
            d->fail(QStringLiteral("attribute '%1' longer than the limit of %2 characters")
                        .arg(QString::fromUtf8(localName(a[0]))).arg(CXmlInputCheck::maxAttributeSize),
                    line, column);
            return;
        }
        d->attributes.push_back(attribute);
    }
    tag.attributeCount = d->attributes.size() - tag.attributes;
    d->textStart = d->bytes.size();
}

void XMLCALL CXmlPullReaderPrivate::onEnd(void *data, const XML_Char *name)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    if (d->parserStopped)
        return;
    --d->depth;
    // An end tag counts from the line it starts on, as the reader always has.
    qint64 line = qint64(XML_GetCurrentLineNumber(d->parser));
    qint64 column = 0;
    if (XML_GetCurrentByteCount(d->parser) > 0 || d->tags.empty() || d->tags.back().token != CXmlPullReader::E_TOKEN_START) {
        qint64 after = 0;
        endOfToken(d->parser, &after, &column);
    } else {
        column = d->tags.back().column; // the end of an empty element tag: the same token as its start
    }
    d->queue(CXmlPullReader::E_TOKEN_END, name, line, column);
    if (d->depth == 0) {
        // What follows the document element is not read: expat pauses here for good.
        d->rootEnded = true;
        XML_StopParser(d->parser, XML_TRUE);
    }
}

void XMLCALL CXmlPullReaderPrivate::onText(void *data, const XML_Char *text, int size)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    if (!d->parserStopped)
        d->addText(text, size);
}

void XMLCALL CXmlPullReaderPrivate::onComment(void *data, const XML_Char *text)
{
    auto *d = static_cast<CXmlPullReaderPrivate *>(data);
    const size_t bytes = std::strlen(text);
    if (!d->parserStopped && qint64(bytes) > CXmlInputCheck::maxTextSize && utf16Size(text, bytes) > CXmlInputCheck::maxTextSize)
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
    // The queue has been handed out: only the character data after its last tag is kept.
    tags.clear();
    attributes.clear();
    bytes.erase(0, textStart);
    textStart = 0;
    index = size_t(-1);
    while (tags.empty() && !parserStopped && !rootEnded && !finalFed) {
        void *buffer = XML_GetBuffer(parser, chunkSize);
        if (!buffer) {
            failHere(QStringLiteral("out of memory"));
            break;
        }
        const qint64 read = device->read(static_cast<char *>(buffer), chunkSize);
        if (read < 0) {
            failHere(device->errorString());
            break;
        }
        fed += read;
        if (fed > CXmlInputCheck::maxInputSize) {
            failHere(QStringLiteral("larger than the limit of %1 bytes").arg(CXmlInputCheck::maxInputSize)); // grew after opening
            break;
        }
        finalFed = read == 0;
        if (XML_ParseBuffer(parser, int(read), finalFed) == XML_STATUS_ERROR && !pending) {
            pending = true;
            parserStopped = true;
            errorReason = QString::fromUtf8(XML_ErrorString(XML_GetErrorCode(parser)));
            errorLine = qint64(XML_GetErrorLineNumber(parser));
            errorColumn = qint64(XML_GetErrorColumnNumber(parser));
        }
    }
    return !tags.empty();
}

CXmlPullReader::CXmlPullReader(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser)
    : d(new CXmlPullReaderPrivate(device, fileName, parser))
{
}

CXmlPullReader::~CXmlPullReader() = default;

CXmlPullReader::eToken_t CXmlPullReader::readNext()
{
    if (d->done)
        return E_TOKEN_DONE;
    const CXmlPullReaderPrivate::sTag_t *tag = d->current();
    if (tag && tag->token == E_TOKEN_END && tag->depth == 0) {
        d->done = true; // the document element has ended; what follows it is not read
        d->index = size_t(-1);
        return E_TOKEN_DONE;
    }
    if (d->index + 1 < d->tags.size()) { // the index starts beyond the queue, at size_t(-1)
        ++d->index;
        return d->tags[d->index].token;
    }
    if (!d->parseMore()) {
        if (d->pending)
            d->showError();
        d->done = true;
        return E_TOKEN_DONE;
    }
    d->index = 0;
    return d->tags[0].token;
}

CXmlPullReader::eToken_t CXmlPullReader::tokenType() const
{
    if (d->done)
        return E_TOKEN_DONE;
    const CXmlPullReaderPrivate::sTag_t *tag = d->current();
    return tag ? tag->token : E_TOKEN_NONE;
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
    QString text;
    elementText(&text);
    return text;
}

void CXmlPullReader::elementText(QString *text)
{
    if (!isStartElement()) {
        *text = QString();
        return;
    }
    // The texts before inner tags are gathered; the last one, nearly always the only one, is
    // converted where it stands (it stays valid until the next tag is read).
    d->gathered.clear();
    const char *last = nullptr;
    size_t lastSize = 0;
    int depth = 1;
    for (;;) {
        const eToken_t token = readNext();
        const CXmlPullReaderPrivate::sSpan_t piece = d->textBefore();
        if (token == E_TOKEN_START)
            ++depth;
        else if (token == E_TOKEN_END)
            --depth;
        if (token == E_TOKEN_START || (token == E_TOKEN_END && depth > 0)) {
            d->gathered.append(d->at(piece), piece.size);
            continue;
        }
        if (d->gathered.empty()) {
            last = d->at(piece);
            lastSize = piece.size;
        } else {
            d->gathered.append(d->at(piece), piece.size);
        }
        break;
    }
    if (!d->gathered.empty())
        assignUtf8(*text, d->gathered.data(), d->gathered.size());
    else if (lastSize != 0)
        assignUtf8(*text, last, lastSize);
    else
        *text = QString();
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
    const CXmlPullReaderPrivate::sSpan_t text = d->textBefore();
    return text.size == 0 ? QString() : QString::fromUtf8(d->at(text), int(text.size));
}

QLatin1String CXmlPullReader::name() const
{
    const CXmlPullReaderPrivate::sTag_t *tag = d->current();
    return tag ? QLatin1String(d->at(tag->name), int(tag->name.size)) : QLatin1String();
}

QString CXmlPullReader::nameString() const
{
    const QLatin1String bytes = name();
    return QString::fromUtf8(bytes.data(), bytes.size());
}

bool CXmlPullReader::attribute(QLatin1String name, QString *value) const
{
    const CXmlPullReaderPrivate::sTag_t *tag = d->current();
    if (!tag)
        return false;
    for (size_t i = tag->attributes, end = i + tag->attributeCount; i < end; ++i) {
        const CXmlPullReaderPrivate::sAttribute_t &attribute = d->attributes[i];
        if (attribute.name.size == size_t(name.size()) && std::memcmp(d->at(attribute.name), name.data(), attribute.name.size) == 0) {
            if (value)
                assignUtf8(*value, d->at(attribute.value), attribute.value.size);
            return true;
        }
    }
    return false;
}

qint64 CXmlPullReader::lineNumber() const
{
    if (const CXmlPullReaderPrivate::sTag_t *tag = d->current())
        return tag->line;
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
    const CXmlPullReaderPrivate::sTag_t *tag = d->current();
    d->errorReason = reason;
    d->errorLine = lineNumber();
    d->errorColumn = tag ? tag->column : qint64(XML_GetCurrentColumnNumber(d->parser));
    d->parserStopped = true;
    d->failed = true;
    d->done = true; // the tag stays readable, as it does after QXmlStreamReader::raiseError()
}

QString CXmlPullReader::errorText() const
{
    return CXmlInputCheck::readError(d->fileName, d->errorLine, d->errorColumn, d->errorReason);
}

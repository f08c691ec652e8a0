#include "CXmlAbstractKiroFile.h"

#include "CMessageBoardHelper.h"
#include "CSaveFile.h"
#include "CStr.h"
#include "CXmlCheckedReader.h"
#include "CXmlInputCheck.h"
#include "CXmlPullReader.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTextCodec>
#include <QTextStream>
#include <QXmlStreamReader>
#include <QMap>
#include <QVector>
#include <QXmlStreamWriter>

namespace {

const QString kHeader = QStringLiteral("Header");
const QString kDate = QStringLiteral("Date");
const QString kTime = QStringLiteral("Time");
const QString kAuthor = QStringLiteral("Author");
const QString kComment = QStringLiteral("Comment");
const QString kVersion = QStringLiteral("Version");
const QString kVersionAttribute = QStringLiteral("version");
const QString kDateFormat = QStringLiteral("yyyy-MM-dd");
const QString kTimeFormat = QStringLiteral("HH:mm:ss");
const QString kUtf8 = QStringLiteral("UTF-8");

/// Writes \a doc with its attributes in name order and without recursion. QDomDocument::save
/// writes attributes in hash order, which changes from run to run; files written from the same
/// document must be the same bytes.
void writeDocument(QXmlStreamWriter &writer, const QDomDocument &doc)
{
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartDocument();
    struct sFrame_t {
        QDomNode node;
        bool opened;
    };
    QVector<sFrame_t> pending{{doc.documentElement(), false}};
    while (!pending.isEmpty()) {
        sFrame_t frame = pending.takeLast();
        if (frame.opened) {
            writer.writeEndElement();
            continue;
        }
        const QDomNode &node = frame.node;
        if (node.isElement()) {
            const QDomElement element = node.toElement();
            const bool empty = !element.hasChildNodes();
            if (empty)
                writer.writeEmptyElement(element.tagName());
            else
                writer.writeStartElement(element.tagName());
            const QDomNamedNodeMap attributes = element.attributes();
            QMap<QString, QString> sorted;
            for (int i = 0; i < attributes.count(); ++i) {
                const QDomAttr attribute = attributes.item(i).toAttr();
                sorted.insert(attribute.name(), attribute.value());
            }
            for (auto it = sorted.cbegin(); it != sorted.cend(); ++it)
                writer.writeAttribute(it.key(), it.value());
            if (empty)
                continue;
            pending.append({node, true});
            // Children are pushed last to first so that the first is written first.
            for (QDomNode child = node.lastChild(); !child.isNull(); child = child.previousSibling())
                pending.append({child, false});
        } else if (node.isCDATASection()) {
            writer.writeCDATA(node.nodeValue());
        } else if (node.isText()) {
            writer.writeCharacters(node.nodeValue());
        } else if (node.isComment()) {
            writer.writeComment(node.nodeValue());
        }
    }
    writer.writeEndDocument();
}

QString dateText(const QDate &date) { return date.isValid() ? date.toString(kDateFormat) : QString(); }
QString timeText(const QTime &time) { return time.isValid() ? time.toString(kTimeFormat) : QString(); }

/// Fills one part of the meta data from a Header child; unknown children are ignored.
void setMetaPart(CXMLMetaData &meta, const QStringRef &tag, const QString &text)
{
    if (tag == kDate) {
        meta.setDate(QDate::fromString(text.trimmed(), kDateFormat));
    } else if (tag == kTime) {
        meta.setTime(QTime::fromString(text.trimmed(), kTimeFormat));
    } else if (tag == kAuthor) {
        meta.setAuthor(text);
    } else if (tag == kComment) {
        meta.setComment(text);
    } else if (tag == kVersion) {
        bool ok = false;
        const NTypes::uVersion_t version = CStr::stringToVersion(text.trimmed(), &ok);
        meta.setVersion(ok ? version : NTypes::uVersion_t(0));
    }
}

/// The encoding named in the document's XML declaration; empty when there is none.
QString declaredEncoding(const QDomDocument &doc)
{
    const QDomNode first = doc.firstChild();
    if (!first.isProcessingInstruction() || first.nodeName() != QLatin1String("xml"))
        return QString();
    static const QRegularExpression encoding(QStringLiteral("encoding\\s*=\\s*[\"']([^\"']*)[\"']"));
    return encoding.match(first.toProcessingInstruction().data()).captured(1);
}

/// Compares a document element's tag and version attribute with the expected ones; \a accept
/// is asked on a version mismatch. Answers a CXmlAbstractKiroFile::eOpenResult_t.
template<typename Accept>
int checkRoot(const QString &tag, const QString &foundVersion, const QString &type, const QString &version,
              QString *errorText, Accept accept)
{
    if (tag != type) {
        if (errorText)
            *errorText = QStringLiteral("The document element is <%1>, expected <%2>.").arg(tag, type);
        return CXmlAbstractKiroFile::E_OPEN_WRONG_TYPE;
    }
    if (foundVersion != version && !accept(foundVersion, version)) {
        if (errorText)
            *errorText = QStringLiteral("Version '%1' of <%2> found, '%3' expected.").arg(foundVersion, tag, version);
        return CXmlAbstractKiroFile::E_OPEN_WRONG_VERSION;
    }
    return CXmlAbstractKiroFile::E_OPEN_OK;
}

} // namespace

CXmlAbstractKiroFile::CXmlAbstractKiroFile(ICLogfile *log)
    : m_log(log)
{
}

CXmlAbstractKiroFile::~CXmlAbstractKiroFile() = default;

bool CXmlAbstractKiroFile::create(const QString &type, const QString &version, const CXMLMetaData &meta,
                                  const QString &encoding)
{
    if (type.trimmed().isEmpty())
        return false;

    m_encoding = encoding.isEmpty() ? kUtf8 : encoding;
    QDomDocument doc;
    doc.appendChild(doc.createProcessingInstruction(
        QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"%1\"").arg(m_encoding)));
    QDomElement root = doc.createElement(type);
    root.setAttribute(kVersionAttribute, version);
    doc.appendChild(root);
    QDomElement header = doc.createElement(kHeader);
    root.appendChild(header);
    writeHeaderElement(doc, header, meta);

    m_domDoc = CDomDoc(doc);
    m_metaData = meta;
    return true;
}

int CXmlAbstractKiroFile::open(const QString &fileName, const QString &type, const QString &version,
                               QString *errorText)
{
    const auto fail = [errorText](int result, const QString &text) {
        if (errorText)
            *errorText = text;
        return result;
    };

    // One set of checks for every reader: the kind and size of the file, then the content with
    // a stream reader (depth, sizes, entities, encoding) before the DOM parser, which recurses
    // once per level and expands entities, ever sees it.
    QFile file;
    QString reason;
    if (!CXmlInputCheck::openForReading(file, fileName, &reason))
        return fail(E_OPEN_NOT_READABLE, reason);
    const QByteArray content = file.readAll(); // the size was checked on the open file
    if (file.error() != QFileDevice::NoError)
        return fail(E_OPEN_NOT_READABLE, CXmlInputCheck::openError(fileName, file.errorString()));
    file.close();
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    if (!CXmlInputCheck::checkContent(buffer, fileName, CXmlInputCheck::E_PARSER_DOM, &reason))
        return fail(E_OPEN_NOT_WELLFORMED, reason);

    QDomDocument doc;
    QString message;
    int line = 0;
    int column = 0;
    if (!doc.setContent(content, false, &message, &line, &column))
        return fail(E_OPEN_NOT_WELLFORMED, CXmlInputCheck::readError(fileName, line, column, message));

    const QDomElement root = doc.documentElement();
    QString checkText;
    const int check = checkRoot(root.tagName(), root.attribute(kVersionAttribute), type, version, &checkText,
                                [this](const QString &found, const QString &expected) {
                                    return handleVersionError(found, expected);
                                });
    if (check != E_OPEN_OK)
        return fail(check, CXmlInputCheck::readError(fileName, 0, 0, checkText));

    m_domDoc = CDomDoc(doc);
    m_metaData = metaDataFromElement(root.firstChildElement(kHeader));
    const QString encoding = declaredEncoding(doc);
    m_encoding = encoding.isEmpty() ? kUtf8 : encoding;
    if (errorText)
        errorText->clear();
    return E_OPEN_OK;
}

bool CXmlAbstractKiroFile::save(const QString &fileName, const QString &encoding)
{
    const QDomDocument &doc = m_domDoc.document();
    if (doc.documentElement().isNull()) {
        CMessageBoardHelper::setWarning(CSaveFile::writeError(fileName, QStringLiteral("there is no document")), m_log);
        return false;
    }

    QString name = encoding.isEmpty() ? m_encoding : encoding;
    QTextCodec *codec = QTextCodec::codecForName(name.toLatin1());
    if (!codec)
        codec = QTextCodec::codecForName("UTF-8");

    // QSaveFile writes a temporary file beside the target and renames it on commit, so the old
    // file stays untouched until the new one is complete.
    QSaveFile file(fileName);
    QString reason;
    if (!CSaveFile::open(file, &reason)) {
        CMessageBoardHelper::setWarning(reason, m_log);
        return false;
    }
    {
        QXmlStreamWriter writer(&file);
        writer.setCodec(codec); // the declaration names the codec, so it always names the bytes written
        writeDocument(writer, doc);
        if (writer.hasError())
            file.cancelWriting();
    }
    if (!CSaveFile::commit(file)) {
        CMessageBoardHelper::setWarning(CSaveFile::writeError(fileName, file.errorString()), m_log);
        return false;
    }
    return true;
}

void CXmlAbstractKiroFile::setMetaData(const CXMLMetaData &meta)
{
    m_metaData = meta;
    QDomElement root = m_domDoc.documentElement();
    if (root.isNull())
        return;
    QDomDocument &doc = m_domDoc.document();
    QDomElement header = root.firstChildElement(kHeader);
    if (header.isNull()) {
        header = doc.createElement(kHeader);
        root.insertBefore(header, root.firstChild());
    }
    writeHeaderElement(doc, header, meta);
}

QString CXmlAbstractKiroFile::documentType() const
{
    return m_domDoc.documentElement().tagName();
}

QString CXmlAbstractKiroFile::documentVersion() const
{
    return m_domDoc.documentElement().attribute(kVersionAttribute);
}

CXMLMetaData CXmlAbstractKiroFile::metaDataFromElement(const QDomElement &header)
{
    CXMLMetaData meta;
    if (header.isNull())
        return meta;
    for (QDomElement child = header.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        setMetaPart(meta, QStringRef(&tag), child.text());
    }
    return meta;
}

void CXmlAbstractKiroFile::writeHeaderElement(QDomDocument &doc, QDomElement header, const CXMLMetaData &meta)
{
    while (!header.firstChild().isNull())
        header.removeChild(header.firstChild());

    const auto add = [&doc, &header](const QString &tag, const QString &text) {
        QDomElement element = doc.createElement(tag);
        if (!text.isEmpty())
            element.appendChild(doc.createTextNode(text));
        header.appendChild(element);
    };
    add(kDate, dateText(meta.date()));
    add(kTime, timeText(meta.time()));
    add(kAuthor, meta.author());
    add(kComment, meta.comment());
    add(kVersion, CStr::versionToString(meta.version()));
}

namespace {

// The parts of a "Header" element on which \a reader stands, from any of the readers: \a name
// and \a text give the name and the text of the child element the reader stands on.
template <class Reader, class Name, class Text>
CXMLMetaData readHeaderWith(Reader &reader, Name name, Text text)
{
    CXMLMetaData meta;
    if (!reader.isStartElement())
        return meta;
    while (reader.readNextStartElement()) {
        const QString tag = name(reader);
        setMetaPart(meta, QStringRef(&tag), text(reader));
    }
    return meta;
}

} // namespace

CXMLMetaData CXmlAbstractKiroFile::readHeader(QXmlStreamReader &reader)
{
    return readHeaderWith(reader, [](QXmlStreamReader &r) { return r.name().toString(); },
                          [](QXmlStreamReader &r) { return CXmlInputCheck::elementText(r); });
}

CXMLMetaData CXmlAbstractKiroFile::readHeader(CXmlCheckedReader &reader)
{
    return readHeaderWith(reader, [](CXmlCheckedReader &r) { return r.name().toString(); },
                          [](CXmlCheckedReader &r) { return r.elementText(); });
}

CXMLMetaData CXmlAbstractKiroFile::readHeader(CXmlPullReader &reader)
{
    return readHeaderWith(reader, [](CXmlPullReader &r) { return r.nameString(); },
                          [](CXmlPullReader &r) { return r.elementText(); });
}

void CXmlAbstractKiroFile::writeHeader(QXmlStreamWriter &writer, const CXMLMetaData &meta)
{
    writer.writeStartElement(kHeader);
    writer.writeTextElement(kDate, dateText(meta.date()));
    writer.writeTextElement(kTime, timeText(meta.time()));
    writer.writeTextElement(kAuthor, meta.author());
    writer.writeTextElement(kComment, meta.comment());
    writer.writeTextElement(kVersion, CStr::versionToString(meta.version()));
    writer.writeEndElement();
}

int CXmlAbstractKiroFile::checkDocumentElement(QXmlStreamReader &reader, const QString &type,
                                               const QString &version, QString *errorText)
{
    if (!reader.isStartElement()) {
        if (errorText)
            *errorText = QStringLiteral("No document element found, expected <%1>.").arg(type);
        return E_OPEN_WRONG_TYPE;
    }
    return checkRoot(reader.name().toString(), reader.attributes().value(kVersionAttribute).toString(),
                     type, version, errorText, [this](const QString &found, const QString &expected) {
                         return handleVersionError(found, expected);
                     });
}

int CXmlAbstractKiroFile::checkDocumentElement(const QString &tag, const QString &foundVersion, const QString &type,
                                               const QString &version, QString *errorText)
{
    return checkRoot(tag, foundVersion, type, version, errorText, [this](const QString &found, const QString &expected) {
        return handleVersionError(found, expected);
    });
}

bool CXmlAbstractKiroFile::handleVersionError(const QString &found, const QString &expected)
{
    Q_UNUSED(found)
    Q_UNUSED(expected)
    return false;
}

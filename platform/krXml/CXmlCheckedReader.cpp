#include "CXmlCheckedReader.h"

#include <QIODevice>

CXmlCheckedReader::CXmlCheckedReader(QIODevice *device, const QString &fileName, CXmlInputCheck::eParser_t parser)
    : m_reader(device)
    , m_fileName(fileName)
    , m_depthLimit(CXmlInputCheck::maxDepth(parser))
{
}

QXmlStreamReader::TokenType CXmlCheckedReader::readNext()
{
    const QXmlStreamReader::TokenType token = m_reader.readNext();
    if (token == QXmlStreamReader::Invalid)
        return token;
    const QString reason = checkToken();
    if (reason.isEmpty())
        return token;
    m_reader.raiseError(reason);
    return QXmlStreamReader::Invalid;
}

QString CXmlCheckedReader::checkToken()
{
    const auto tooLong = [](const char *what, qint64 limit) {
        return QStringLiteral("%1 longer than the limit of %2 characters").arg(QLatin1String(what)).arg(limit);
    };
    switch (m_reader.tokenType()) {
    case QXmlStreamReader::DTD:
        // Entities are the road to expansion bombs and to files outside the document.
        if (!m_reader.entityDeclarations().isEmpty())
            return QStringLiteral("entity declarations are not accepted");
        break;
    case QXmlStreamReader::StartElement:
        if (++m_depth > m_depthLimit)
            return QStringLiteral("elements nested deeper than the limit of %1 levels").arg(m_depthLimit);
        for (const QXmlStreamAttribute &attribute : m_reader.attributes()) {
            if (attribute.value().size() > CXmlInputCheck::maxAttributeSize)
                return QStringLiteral("attribute '%1' longer than the limit of %2 characters")
                    .arg(attribute.qualifiedName().toString()).arg(CXmlInputCheck::maxAttributeSize);
        }
        m_text = 0;
        break;
    case QXmlStreamReader::EndElement:
        --m_depth;
        m_text = 0;
        break;
    case QXmlStreamReader::Characters:
    case QXmlStreamReader::EntityReference:
        m_text += m_reader.text().size();
        if (m_text > CXmlInputCheck::maxTextSize)
            return tooLong("text", CXmlInputCheck::maxTextSize);
        break;
    case QXmlStreamReader::Comment:
    case QXmlStreamReader::ProcessingInstruction:
        if (m_reader.text().size() + m_reader.processingInstructionData().size() > CXmlInputCheck::maxTextSize)
            return tooLong("text", CXmlInputCheck::maxTextSize);
        break;
    default:
        break;
    }
    const QIODevice *device = m_reader.device();
    if (device && device->pos() > CXmlInputCheck::maxInputSize)
        return QStringLiteral("larger than the limit of %1 bytes").arg(CXmlInputCheck::maxInputSize); // grew after opening
    return QString();
}

bool CXmlCheckedReader::readNextStartElement()
{
    for (;;) {
        switch (readNext()) {
        case QXmlStreamReader::StartElement:
            return true;
        case QXmlStreamReader::EndElement:
        case QXmlStreamReader::Invalid:
        case QXmlStreamReader::EndDocument:
            return false;
        default:
            break;
        }
    }
}

void CXmlCheckedReader::skipCurrentElement()
{
    readToEndOfElement(nullptr);
}

QString CXmlCheckedReader::elementText()
{
    QString result;
    if (isStartElement())
        readToEndOfElement(&result);
    return result;
}

void CXmlCheckedReader::readToEndOfElement(QString *text)
{
    int depth = 1;
    while (depth > 0) {
        switch (readNext()) {
        case QXmlStreamReader::StartElement:
            ++depth;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference:
            if (text)
                *text += m_reader.text();
            break;
        case QXmlStreamReader::Invalid:
        case QXmlStreamReader::EndDocument:
            return;
        default:
            break;
        }
    }
}

QString CXmlCheckedReader::readElementText()
{
    QString result;
    if (!isStartElement())
        return result;
    for (;;) {
        switch (readNext()) {
        case QXmlStreamReader::EndElement:
            return result;
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference:
            result += m_reader.text();
            break;
        case QXmlStreamReader::StartElement:
            m_reader.raiseError(QStringLiteral("Expected character data."));
            return result;
        case QXmlStreamReader::Invalid:
        case QXmlStreamReader::EndDocument:
            return result;
        default:
            break;
        }
    }
}

QString CXmlCheckedReader::errorText() const
{
    return CXmlInputCheck::readError(m_fileName, m_reader);
}

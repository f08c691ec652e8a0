// The expat pull reader against QXmlStreamReader, which the dictionary reader used before: the
// same elements, names, lines and texts for the same bytes, and the same limit messages.
#include "CXmlCheckedReader.h"
#include "CXmlInputCheck.h"
#include "CXmlPullReader.h"

#include <QBuffer>
#include <QTest>
#include <QTextCodec>
#include <QXmlStreamReader>

namespace {

/// What a walk of the QXmlStreamReader checker saw: "S name line id=value" for start tags, "E name" for end tags, "T text" for
/// the text of elements named "t" (no children) and "m" (children's texts included).
QStringList qtWalk(const QByteArray &content)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    CXmlCheckedReader reader(&buffer, QStringLiteral("x.xml"), CXmlInputCheck::E_PARSER_STREAM);
    QStringList seen;
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            ++depth;
            QString line = QStringLiteral("S %1 %2").arg(reader.name().toString()).arg(reader.lineNumber());
            if (reader.attributes().hasAttribute(QStringLiteral("id")))
                line += QStringLiteral(" id=") + reader.attributes().value(QStringLiteral("id")).toString();
            seen << line;
            const QString name = reader.name().toString();
            if (name == QLatin1String("t") || name == QLatin1String("m")) {
                seen << QStringLiteral("T ") + (name == QLatin1String("t") ? reader.readElementText() : reader.elementText());
                seen << QStringLiteral("E ") + name;
                --depth;
            }
        } else if (token == QXmlStreamReader::EndElement) {
            seen << QStringLiteral("E ") + reader.name().toString();
            if (--depth == 0)
                break;
        }
    }
    if (reader.hasError())
        seen << QStringLiteral("error");
    return seen;
}

QStringList pullWalk(const QByteArray &content)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    CXmlPullReader reader(&buffer, QStringLiteral("x.xml"), CXmlInputCheck::E_PARSER_STREAM);
    QStringList seen;
    for (CXmlPullReader::eToken_t token = reader.readNext(); token != CXmlPullReader::E_TOKEN_DONE; token = reader.readNext()) {
        if (token == CXmlPullReader::E_TOKEN_START) {
            QString line = QStringLiteral("S %1 %2").arg(reader.nameString()).arg(reader.lineNumber());
            QString id;
            if (reader.attribute(QLatin1String("id"), &id))
                line += QStringLiteral(" id=") + id;
            seen << line;
            const QString name = reader.nameString();
            if (name == QLatin1String("t") || name == QLatin1String("m")) {
                seen << QStringLiteral("T ") + (name == QLatin1String("t") ? reader.readElementText() : reader.elementText());
                seen << QStringLiteral("E ") + name;
            }
        } else {
            seen << QStringLiteral("E ") + reader.nameString();
        }
    }
    if (reader.hasError())
        seen << QStringLiteral("error");
    return seen;
}

/// The error text of the QXmlStreamReader checker and of the pull reader for \a content.
QPair<QString, QString> errors(const QByteArray &content)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    QString checked;
    CXmlInputCheck::checkContent(buffer, QStringLiteral("x.xml"), CXmlInputCheck::E_PARSER_STREAM, &checked);
    buffer.seek(0);
    CXmlPullReader reader(&buffer, QStringLiteral("x.xml"), CXmlInputCheck::E_PARSER_STREAM);
    while (!reader.atEnd())
        reader.readNext();
    return {checked, reader.hasError() ? reader.errorText() : QString()};
}

QByteArray nested(int levels)
{
    return QByteArray("<a>").repeated(levels) + QByteArray("</a>").repeated(levels);
}

} // namespace

class tst_PlatformXmlPull : public QObject
{
    Q_OBJECT

private slots:
    void sameAsQtStreamReader_data()
    {
        QTest::addColumn<QByteArray>("content");

        QTest::newRow("start tag over lines") << QByteArray("<r>\n<a\n id='1'\n>\n<t>x</t></a>\n</r>");
        QTest::newRow("CRLF and CR") << QByteArray("<r>\r\n<a\r\n id='1'>\r<t>x\r\ny\rz</t></a></r>");
        QTest::newRow("namespaces") << QByteArray("<p:r xmlns:p='urn:p'><p:a id='1'/><q p:id='2'/><b xmlns='urn:d'><t>x</t></b></p:r>");
        QTest::newRow("references and CDATA") << QByteArray("<r><t>a<![CDATA[<b>&amp;]]>&lt;&#x41;&#228;&amp;</t></r>");
        QTest::newRow("mixed content") << QByteArray("<r><m>a<!--c-->b<x>c<y>d</y></x>e<?pi x?>f</m><t/></r>");
        QTest::newRow("empty elements") << QByteArray("<r><a/><b id=''/><t/><c id='3'></c></r>");
        QTest::newRow("attribute whitespace") << QByteArray("<r><a id='x&#10;y\tz\nw'/></r>");
        QTest::newRow("undeclared entity, external DTD") << QByteArray("<!DOCTYPE r SYSTEM 'none.dtd'><r><t>a&u;b</t></r>");
        QTest::newRow("DTD without declarations") << QByteArray("<!DOCTYPE r [<!ELEMENT r ANY>]>\n<r><t>x</t></r>");
        QTest::newRow("content after the document element") << QByteArray("<r><t>x</t></r><junk");
        QTest::newRow("non-ASCII names") << QByteArray("<r><\xc3\xa4 id='\xe2\x82\xac'><t>\xf0\x9f\x98\x80</t></\xc3\xa4></r>");
        QTest::newRow("ISO-8859-15") << QByteArray("<?xml version='1.0' encoding='ISO-8859-15'?><r><t>\xa4</t></r>");
        QTest::newRow("windows-1252") << QByteArray("<?xml version='1.0' encoding='windows-1252'?><r id='\x80'><t>\x93x\x94</t></r>");
        QTest::newRow("UTF-16") << QTextCodec::codecForName("UTF-16")->fromUnicode(QStringLiteral("<r>\n<t>\u00e4\u20ac</t></r>"));
        QTest::newRow("unclosed") << QByteArray("<r><a id='1'><t>x</t>");
        QTest::newRow("mismatched") << QByteArray("<r><a></b></r>");
        QTest::newRow("element in a text") << QByteArray("<r><t>x<b/></t></r>");
        // Tags and texts across the reader's 64 KiB pieces, with the line count running on.
        QByteArray padding;
        for (int i = 0; i < 3000; ++i)
            padding += "<p>\xc3\xa4\xc3\xb6 some text</p>\n";
        QTest::newRow("across pieces") << "<r>" + padding + "<a\n\n id='7'\n/><t>" + padding.replace('<', '(') + "</t>" + padding + "<a\r\n id='8'/></r>";
    }

    void sameAsQtStreamReader()
    {
        QFETCH(QByteArray, content);
        const QStringList qt = qtWalk(content);
        const QStringList pull = pullWalk(content);
        QCOMPARE(pull, qt);
    }

    void limitsAsTheCheckedReader_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason"); // empty: the document is accepted

        const QString depth = QStringLiteral("elements nested deeper than the limit of 16384 levels");
        const QString attribute = QStringLiteral("attribute 'id' longer than the limit of 1048576 characters");
        const int half = int(CXmlInputCheck::maxAttributeSize / 2);
        QTest::newRow("deepest") << nested(CXmlInputCheck::maxStreamDepth) << QString();
        QTest::newRow("one level deeper") << nested(CXmlInputCheck::maxStreamDepth + 1) << depth;
        QTest::newRow("one level deeper, over lines") << "<r>\n" + nested(CXmlInputCheck::maxStreamDepth).replace("<a>", "<a\n>") + "</r>" << depth;
        QTest::newRow("longest attribute") << "<r id='" + QByteArray(int(CXmlInputCheck::maxAttributeSize), 'x') + "'/>" << QString();
        QTest::newRow("attribute too long") << "<r>\n<a id='" + QByteArray(int(CXmlInputCheck::maxAttributeSize) + 1, 'x') + "'/></r>" << attribute;
        // Two bytes, one character: within the limit although the bytes are not.
        QTest::newRow("longest attribute, two-byte characters") << "<r id='" + QByteArray("\xc3\xa4").repeated(int(CXmlInputCheck::maxAttributeSize)) + "'/>" << QString();
        // Four bytes, two characters (a surrogate pair).
        QTest::newRow("longest attribute, four-byte characters") << "<r id='" + QByteArray("\xf0\x9f\x98\x80").repeated(half) + "'/>" << QString();
        QTest::newRow("attribute too long, four-byte characters") << "<r id='" + QByteArray("\xf0\x9f\x98\x80").repeated(half) + "x'/>" << attribute;
        QTest::newRow("entity declaration") << QByteArray("<!DOCTYPE r [<!ENTITY e 'x'>]><r/>") << QStringLiteral("entity declarations are not accepted");
        QTest::newRow("external entity declaration") << QByteArray("<!DOCTYPE r [<!ENTITY e SYSTEM '/etc/passwd'>]><r>&e;</r>") << QStringLiteral("entity declarations are not accepted");
    }

    void limitsAsTheCheckedReader()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);

        const QPair<QString, QString> texts = errors(content);
        if (reason.isEmpty()) {
            QCOMPARE(texts.first, QString());
            QCOMPARE(texts.second, QString());
            return;
        }
        QVERIFY2(texts.second.endsWith(QStringLiteral(": ") + reason), qPrintable(texts.second));
        // Our own limits are placed where QXmlStreamReader's checker places them, after the tag;
        // a DTD is placed at its end there, at the declaration here.
        if (!content.startsWith("<!DOCTYPE"))
            QCOMPARE(texts.second, texts.first);
    }

    void stopsAtTheEndOfTheDocumentElement()
    {
        // Nothing after the document element is read: trailing bytes of any kind do not matter.
        const QByteArray content = "<r><t>x</t></r>" + QByteArray(1 << 20, '\0');
        QBuffer buffer;
        buffer.setData(content);
        buffer.open(QIODevice::ReadOnly);
        CXmlPullReader reader(&buffer, QStringLiteral("x.xml"), CXmlInputCheck::E_PARSER_STREAM);
        while (!reader.atEnd())
            reader.readNext();
        QVERIFY(!reader.hasError());
        QVERIFY(reader.bytesRead() < content.size());
    }
};

QTEST_GUILESS_MAIN(tst_PlatformXmlPull)
#include "tst_platform_xmlpull.moc"

#include "CDomDoc.h"
#include "CMemoryLogfile.h"
#include "CStr.h"
#include "CXMLMetaData.h"
#include "CXmlAbstractKiroFile.h"
#include "conversioncheck.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

const QString kType = QStringLiteral("KiroObjectDictionary");
const QString kVersion = QStringLiteral("1.2.0");

QByteArray document(const QString &type, const QString &version, const QByteArray &body = QByteArray())
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<" + type.toUtf8() + " version=\"" + version.toUtf8()
        + "\">\n  <Header>\n    <Author>someone</Author>\n    <Version>1.28.42</Version>\n  </Header>\n"
        + body + "</" + type.toUtf8() + ">\n";
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A file type that accepts other versions and records what it was asked.
class CLenientFile : public CXmlAbstractKiroFile
{
public:
    bool accept = true;
    QStringList asked;

protected:
    bool handleVersionError(const QString &found, const QString &expected) override
    {
        asked << found << expected;
        return accept;
    }
};

CXMLMetaData sampleMeta()
{
    return CXMLMetaData(QDate(2026, 11, 21), QTime(13, 45, 10), QStringLiteral("someone"), QStringLiteral("free text"),
                        NTypes::uVersion_t(0x011C002A));
}

} // namespace

Q_DECLARE_METATYPE(CXMLMetaData)

char *toString(const CXMLMetaData &meta)
{
    const QString text = QStringLiteral("%1 %2 '%3' '%4' %5").arg(meta.date().toString(Qt::ISODate), meta.time().toString(Qt::ISODate),
                                                                  meta.author(), meta.comment(), CStr::versionToString(meta.version()));
    return qstrdup(text.toUtf8().constData());
}

class tst_PlatformXml : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void openResult_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QByteArray>("content"); // written unless the file is missing or a directory
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("errorPattern");

        const QString lineColumn = QStringLiteral("^cannot open .*: line \\d+, column \\d+: .+");
        QTest::newRow("readable") << "ok.xml" << document(kType, kVersion) << 0 << "^$";
        QTest::newRow("missing") << "missing.xml" << QByteArray() << 1 << "missing\\.xml";
        QTest::newRow("directory") << "adir" << QByteArray() << 1 << "adir";
        QTest::newRow("empty") << "empty.xml" << QByteArray("") << 2 << lineColumn;
        QTest::newRow("not xml") << "text.xml" << QByteArray("just some text\n") << 2 << lineColumn;
        QTest::newRow("truncated") << "cut.xml" << document(kType, kVersion).left(120) << 2 << lineColumn;
        QTest::newRow("mismatched tag") << "tag.xml" << QByteArray("<?xml version=\"1.0\"?>\n<A version=\"1\">\n  <B></C>\n</A>\n")
                                        << 2 << "tag\\.xml.: line 3, column \\d+: ";
        QTest::newRow("wrong type") << "type.xml" << document(QStringLiteral("OtherFile"), kVersion) << 3
                                    << "<OtherFile>.*<KiroObjectDictionary>";
        QTest::newRow("wrong version") << "version.xml" << document(kType, QStringLiteral("9.9")) << 4 << "'9\\.9'.*'1\\.2\\.0'";
        QTest::newRow("version missing") << "noversion.xml" << QByteArray("<KiroObjectDictionary><Header/></KiroObjectDictionary>")
                                         << 4 << "'1\\.2\\.0'";
    }

    void openResult()
    {
        QFETCH(QString, fileName);
        QFETCH(QByteArray, content);
        QFETCH(int, result);
        QFETCH(QString, errorPattern);

        const QString path = m_dir.filePath(fileName);
        if (fileName == QLatin1String("adir"))
            QVERIFY(QDir(m_dir.path()).mkpath(fileName));
        else if (fileName != QLatin1String("missing.xml"))
            QVERIFY(writeFile(path, content));

        // A document read before stays when the next open fails.
        const QString previous = m_dir.filePath(QStringLiteral("previous.xml"));
        QVERIFY(writeFile(previous, document(kType, kVersion, "  <Name>Previous</Name>\n")));
        CXmlAbstractKiroFile file;
        QCOMPARE(file.open(previous, kType, kVersion), 0);

        QString errorText = QStringLiteral("untouched");
        QCOMPARE(file.open(path, kType, kVersion, &errorText), result);
        QVERIFY2(QRegularExpression(errorPattern).match(errorText).hasMatch(), qPrintable(errorText));
        if (result == 0) {
            QCOMPARE(file.documentType() + QLatin1Char(' ') + file.documentVersion() + QLatin1Char(' ') + file.metaData().author(),
                     QStringLiteral("KiroObjectDictionary 1.2.0 someone"));
            QVERIFY(!CDomDoc::hasSubElement(file.documentElement(), QStringLiteral("Name")));
        } else {
            QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("Name"), file.documentElement(), QString()),
                     QStringLiteral("Previous"));
        }
        QVERIFY(fileName != QLatin1String("missing.xml") || !QFile::exists(path));
    }

    void openAcceptsVersionThroughHook()
    {
        const QString path = m_dir.filePath(QStringLiteral("old.xml"));
        QVERIFY(writeFile(path, document(kType, QStringLiteral("1.0.0"))));
        CLenientFile file;
        QCOMPARE(file.open(path, kType, kVersion), 0);
        QCOMPARE(file.asked, QStringList({QStringLiteral("1.0.0"), kVersion}));
        QCOMPARE(file.documentVersion(), QStringLiteral("1.0.0"));
        QCOMPARE(file.metaData().version(), NTypes::uVersion_t(0x011C002A));
    }

    void streamHeader_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("version");
        QTest::addColumn<CXMLMetaData>("meta");
        QTest::addColumn<bool>("accept"); // what the version hook answers
        QTest::addColumn<int>("result");

        const QString other = QStringLiteral("2.0");
        QTest::newRow("matching") << kType << kVersion << sampleMeta() << false << 0;
        QTest::newRow("empty header") << kType << kVersion << CXMLMetaData() << false << 0;
        QTest::newRow("wrong type") << QStringLiteral("Other") << kVersion << sampleMeta() << true << 3;
        QTest::newRow("wrong version refused") << kType << other << sampleMeta() << false << 4;
        QTest::newRow("wrong version accepted") << kType << other << sampleMeta() << true << 0;
    }

    void streamHeader()
    {
        QFETCH(QString, type);
        QFETCH(QString, version);
        QFETCH(CXMLMetaData, meta);
        QFETCH(bool, accept);
        QFETCH(int, result);

        QByteArray bytes;
        QXmlStreamWriter writer(&bytes);
        writer.writeStartDocument();
        writer.writeStartElement(type);
        writer.writeAttribute(QStringLiteral("version"), version);
        CXmlAbstractKiroFile::writeHeader(writer, meta);
        writer.writeTextElement(QStringLiteral("Name"), QStringLiteral("Drive"));
        writer.writeEndDocument();

        QXmlStreamReader reader(bytes);
        QVERIFY(reader.readNextStartElement());
        CLenientFile file;
        file.accept = accept;
        QString errorText;
        QCOMPARE(file.checkDocumentElement(reader, kType, kVersion, &errorText), result);
        QCOMPARE(errorText.isEmpty(), result == 0);
        // The hook is asked only when the type matches and the version does not.
        QCOMPARE(file.asked.isEmpty(), version == kVersion || type != kType);
        if (result != 0)
            return;

        QVERIFY(reader.readNextStartElement());
        QCOMPARE(CXmlAbstractKiroFile::readHeader(reader), meta);
        // The reader continues behind the header.
        QVERIFY(reader.readNextStartElement());
        QCOMPARE(reader.name().toString(), QStringLiteral("Name"));
        // The DOM reads what the stream writer wrote.
        QDomDocument doc;
        QVERIFY(doc.setContent(bytes));
        QCOMPARE(CXmlAbstractKiroFile::metaDataFromElement(doc.documentElement().firstChildElement()), meta);
    }

    void metaDataRoundTrip_data()
    {
        QTest::addColumn<CXMLMetaData>("meta");
        QTest::addColumn<QByteArray>("golden"); // the saved file, when given

        QTest::newRow("complete") << sampleMeta()
                                  << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n"
                                                "  <Header>\n    <Date>2026-11-21</Date>\n    <Time>13:45:10</Time>\n"
                                                "    <Author>someone</Author>\n    <Comment>free text</Comment>\n"
                                                "    <Version>1.28.42</Version>\n  </Header>\n"
                                                "  <Name>DemoDrive</Name>\n</KiroObjectDictionary>\n");
        QTest::newRow("empty") << CXMLMetaData() << QByteArray();
        QTest::newRow("markup and umlauts") << CXMLMetaData(QDate(1999, 1, 2), QTime(0, 0, 1), QStringLiteral("Jürgen <&> \"x\""),
                                                            QStringLiteral("line 1\nline 2 ©"), NTypes::uVersion_t(0xFFFFFFFF))
                                            << QByteArray();
    }

    void metaDataRoundTrip()
    {
        QFETCH(CXMLMetaData, meta);
        QFETCH(QByteArray, golden);

        CXmlAbstractKiroFile written;
        QVERIFY(!written.create(QString(), kVersion, meta));
        QVERIFY(!written.save(m_dir.filePath(QStringLiteral("nothing.xml"))));
        QVERIFY(written.create(kType, kVersion, meta));
        QCOMPARE(written.metaData(), meta);
        written.domDoc().addSubElement(written.documentElement(), QStringLiteral("Name"), QStringLiteral("DemoDrive"));
        const QString path = m_dir.filePath(QStringLiteral("roundtrip.xml"));
        QVERIFY(written.save(path));
        if (!golden.isEmpty())
            QCOMPARE(readFile(path), golden);

        CXmlAbstractKiroFile read;
        QCOMPARE(read.open(path, kType, kVersion), 0);
        QCOMPARE(read.metaData(), meta);
        // Saving what was read gives the same bytes.
        const QString again = m_dir.filePath(QStringLiteral("roundtrip2.xml"));
        QVERIFY(read.save(again));
        QCOMPARE(readFile(again), readFile(path));
    }

    void headerPartsAndRewrite()
    {
        // Without a header the meta data are the defaults; setMetaData adds one as the first child.
        const QString path = m_dir.filePath(QStringLiteral("partial.xml"));
        QVERIFY(writeFile(path, "<KiroObjectDictionary version=\"1.2.0\"><Name>n</Name></KiroObjectDictionary>"));
        CXmlAbstractKiroFile file;
        QCOMPARE(file.open(path, kType, kVersion), 0);
        QCOMPARE(file.metaData(), CXMLMetaData());
        file.setMetaData(sampleMeta());
        QCOMPARE(file.metaData(), sampleMeta());
        QDomElement first = file.documentElement().firstChildElement();
        QCOMPARE(first.tagName(), QStringLiteral("Header"));
        QCOMPARE(CXmlAbstractKiroFile::metaDataFromElement(first), sampleMeta());

        // Unreadable or missing parts read as defaults; a rewrite replaces parts instead of adding more.
        QVERIFY(writeFile(path, "<KiroObjectDictionary version=\"1.2.0\"><Header><Date>2020-02-30</Date>"
                                "<Comment>only this</Comment><Version>x.y</Version><Extra/></Header></KiroObjectDictionary>"));
        QCOMPARE(file.open(path, kType, kVersion), 0);
        CXMLMetaData expected;
        expected.setComment(QStringLiteral("only this"));
        QCOMPARE(file.metaData(), expected);
        CXMLMetaData changed = sampleMeta();
        changed.setAuthor(QStringLiteral("other"));
        file.setMetaData(changed);
        first = file.documentElement().firstChildElement();
        for (const char *part : {"Date", "Author", "Comment", "Version"})
            QCOMPARE(first.elementsByTagName(QLatin1String(part)).size(), 1);
        QCOMPARE(CXmlAbstractKiroFile::metaDataFromElement(first), changed);
        QCOMPARE(file.documentElement().elementsByTagName(QStringLiteral("Header")).size(), 1);

        // Without a document only the stored meta data change.
        CXmlAbstractKiroFile empty;
        empty.setMetaData(changed);
        QCOMPARE(empty.metaData(), changed);
        QVERIFY(empty.documentElement().isNull());
    }

    void saveInDeclaredEncoding()
    {
        CXMLMetaData meta = sampleMeta();
        meta.setAuthor(QStringLiteral("Grüße"));
        CXmlAbstractKiroFile file;
        QVERIFY(file.create(kType, kVersion, meta, QStringLiteral("ISO-8859-1")));
        const QString path = m_dir.filePath(QStringLiteral("latin1.xml"));
        QVERIFY(file.save(path));

        const QByteArray bytes = readFile(path);
        QVERIFY2(bytes.startsWith("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"), bytes.constData());
        QVERIFY(bytes.contains("Gr\xFC\xDF" "e"));
        CXmlAbstractKiroFile read;
        QCOMPARE(read.open(path, kType, kVersion), 0);
        QCOMPARE(read.metaData().author(), meta.author());
        // An explicit encoding wins over the one of the document.
        QVERIFY(read.save(path, QStringLiteral("UTF-8")));
        QVERIFY(readFile(path).contains("Gr\xC3\xBC\xC3\x9F" "e"));
    }

    // A write failing half-way (a full disk) is covered for every writer by tst_atomicsave.
    void saveKeepsOldFileOnFailure_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("parent is a file") << "blocker/file.xml";
        QTest::newRow("missing directory") << "nodir/file.xml";
        QTest::newRow("target is a directory") << "targetdir";
    }

    void saveKeepsOldFileOnFailure()
    {
        QFETCH(QString, target);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QByteArray old = "old content, not even XML\n";
        QVERIFY(writeFile(dir.filePath(QStringLiteral("blocker")), old));
        QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("targetdir")));
        QVERIFY(writeFile(dir.filePath(QStringLiteral("targetdir/inside")), old));
        const auto entries = [&dir] { return QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden); };
        const QStringList before = entries();

        CMemoryLogfile log;
        CXmlAbstractKiroFile file(&log);
        QVERIFY(file.create(kType, kVersion, sampleMeta()));
        QVERIFY(!file.save(dir.filePath(target)));
        QCOMPARE(log.count(NkrLogfiles::E_SEV_WARNING), 1);
        QCOMPARE(readFile(dir.filePath(QStringLiteral("blocker"))), old);
        QCOMPARE(readFile(dir.filePath(QStringLiteral("targetdir/inside"))), old);
        QCOMPARE(entries(), before); // no temporary file is left behind
    }

    void conversions_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("results"); // of toU32 toU64 toI32 toI64 toF64 toBool; "-" when refused

        QTest::newRow("zero with blanks") << " \t0 \n" << "0 0 0 0 0 0";
        QTest::newRow("one") << "1" << "1 1 1 1 1 1";
        QTest::newRow("two") << "2" << "2 2 2 2 2 -";
        QTest::newRow("hex") << "0x2A" << "42 42 42 42 42 -";
        QTest::newRow("hex upper prefix, lower digits") << "0X2a" << "42 42 42 42 42 -";
        QTest::newRow("32-bit signed maximum") << "2147483647" << "2147483647 2147483647 2147483647 2147483647 2147483647 -";
        QTest::newRow("above 32 bits signed") << "2147483648" << "2147483648 2147483648 - 2147483648 2147483648 -";
        QTest::newRow("hex is a value, no pattern") << "0x80000000" << "2147483648 2147483648 - 2147483648 2147483648 -";
        QTest::newRow("32-bit maximum") << "4294967295" << "4294967295 4294967295 - 4294967295 4294967295 -";
        QTest::newRow("beyond 32 bits") << "4294967296" << "- 4294967296 - 4294967296 4294967296 -";
        QTest::newRow("hex beyond 32 bits") << "0x100000000" << "- 4294967296 - 4294967296 4294967296 -";
        QTest::newRow("above 64 bits signed") << "9223372036854775808" << "- 9223372036854775808 - - 9.2233720368547758e+18 -";
        QTest::newRow("64-bit maximum") << "18446744073709551615" << "- 18446744073709551615 - - 1.8446744073709552e+19 -";
        QTest::newRow("64-bit maximum hex") << "0xFFFFFFFFFFFFFFFF" << "- 18446744073709551615 - - - -";
        QTest::newRow("beyond 64 bits") << "18446744073709551616" << "- - - - 1.8446744073709552e+19 -";
        QTest::newRow("negative") << "-5" << "- - -5 -5 -5 -";
        QTest::newRow("negative zero") << "-0" << "- - 0 0 0 -";
        QTest::newRow("plus sign") << "+1" << "- - - - 1 -";
        QTest::newRow("negative hex") << "-0x10" << "- - -16 -16 -16 -";
        QTest::newRow("32-bit minimum") << "-2147483648" << "- - -2147483648 -2147483648 -2147483648 -";
        QTest::newRow("below 32 bits") << "-2147483649" << "- - - -2147483649 -2147483649 -";
        QTest::newRow("64-bit minimum") << "-9223372036854775808" << "- - - -9223372036854775808 -9.2233720368547758e+18 -";
        QTest::newRow("below 64 bits") << "-9223372036854775809" << "- - - - -9.2233720368547758e+18 -";
        QTest::newRow("fraction") << "1.5" << "- - - - 1.5 -";
        QTest::newRow("exponent") << "-2e3" << "- - - - -2000 -";
        QTest::newRow("true any case") << "TrUe" << "- - - - - 1";
        QTest::newRow("false") << "false" << "- - - - - 0";
        for (const char *bad : {"", "  ", "0x", "yes", "12abc", "0x1G", "1 2", "--1", "-", "- 1", "1,5"})
            QTest::newRow(qPrintable(QStringLiteral("refused '%1'").arg(QLatin1String(bad)))) << bad << "- - - - - -";
    }

    void conversions()
    {
        QFETCH(QString, text);
        QFETCH(QString, results);
        CConversionResults got(results);
        got.add([&](bool *ok) { return QString::number(CDomDoc::toU32(text, ok)); });
        got.add([&](bool *ok) { return QString::number(CDomDoc::toU64(text, ok)); });
        got.add([&](bool *ok) { return QString::number(CDomDoc::toI32(text, ok)); });
        got.add([&](bool *ok) { return QString::number(CDomDoc::toI64(text, ok)); });
        // + 0.0: the sign of zero is no concern
        got.add([&](bool *ok) { return QString::number(CDomDoc::toF64(text, ok) + 0.0, 'g', 17); });
        got.add([&](bool *ok) { return QString::number(int(CDomDoc::toBool(text, ok))); });
        QCOMPARE(got.text(), results);
    }

    void typedReaders_data()
    {
        QTest::addColumn<QString>("reader");
        QTest::addColumn<QString>("name"); // sub-element tag or attribute name of <Root>
        QTest::addColumn<qint64>("value"); // 7 is the default
        QTest::addColumn<QString>("errorText");

        const auto row = [](const char *tag, const char *reader, const char *name, qint64 value, const char *error = "") {
            QTest::newRow(tag) << reader << name << value << QString::fromLatin1(error);
        };
        row("element hex", "U32", "Good", 16);
        row("element missing", "U32", "None", 7);
        row("element garbage", "U32", "Bad", 7, "Cannot convert 'abc' of <Bad> (line 3) to U32.");
        row("element negative as unsigned", "U64", "Neg", 7, "Cannot convert ' -5 ' of <Neg> (line 4) to U64.");
        row("element negative as I32", "I32", "Neg", -5);
        row("element empty", "I32", "Empty", 7, "Cannot convert '' of <Empty> (line 5) to I32.");
        row("element bool", "BOOL", "Flag", 1);
        row("element bool garbage", "BOOL", "Bad", 7, "Cannot convert 'abc' of <Bad> (line 3) to BOOL.");
        row("attribute", "attrU32", "id", 0x2000);
        row("attribute missing", "attrI64", "none", 7);
        row("attribute negative", "attrI32", "offset", -3);
        row("attribute garbage", "attrI64", "size", 7, "Cannot convert 'big' of <Root@size> (line 1) to I64.");
        row("attribute out of range", "attrU32", "offset", 7, "Cannot convert '-3' of <Root@offset> (line 1) to U32.");
    }

    void typedReaders()
    {
        QFETCH(QString, reader);
        QFETCH(QString, name);
        QFETCH(qint64, value);
        QFETCH(QString, errorText);

        QDomDocument doc;
        QVERIFY(doc.setContent(QByteArray("<Root id=\"0x2000\" offset=\"-3\" size=\"big\">\n  <Good>0x10</Good>\n  <Bad>abc</Bad>\n"
                                          "  <Neg> -5 </Neg>\n  <Empty/>\n  <Flag>true</Flag>\n</Root>\n")));
        const QDomElement root = doc.documentElement();
        QString error;
        // The bool reader answers its default (true) on garbage; 7 marks that.
        const qint64 result =
            reader == QLatin1String("U32")     ? qint64(CDomDoc::existingSubElementAsU32(name, root, 7, &error))
            : reader == QLatin1String("I32")   ? CDomDoc::existingSubElementAsI32(name, root, 7, &error)
            : reader == QLatin1String("U64")   ? qint64(CDomDoc::existingSubElementAsU64(name, root, 7, &error))
            : reader == QLatin1String("BOOL")  ? (!CDomDoc::existingSubElementAsBool(name, root, true, &error) ? 0 : error.isEmpty() ? 1 : 7)
            : reader == QLatin1String("attrU32") ? qint64(CDomDoc::attributeAsU32(root, name, 7, &error))
            : reader == QLatin1String("attrI32") ? CDomDoc::attributeAsI32(root, name, 7, &error)
                                                 : CDomDoc::attributeAsI64(root, name, 7, &error); // attrI64
        QCOMPARE(result, value);
        QCOMPARE(error, errorText);
    }

    void stringReadersAndBuilders()
    {
        CDomDoc dom;
        QDomElement root = dom.document().createElement(QStringLiteral("Root"));
        dom.document().appendChild(root);
        QCOMPARE(dom.documentElement().tagName(), QStringLiteral("Root"));
        dom.addSubElement(root, QStringLiteral("Name"), QStringLiteral("first"));
        dom.addSubElement(root, QStringLiteral("Name"), QStringLiteral("second"));
        dom.addSubElement(root, QStringLiteral("Blank"));
        root.setAttribute(QStringLiteral("kind"), QStringLiteral("k"));

        const QString d = QStringLiteral("d");
        const auto element = [&](const char *tag) { return CDomDoc::existingSubElementAsString(QLatin1String(tag), root, d); };
        const auto attribute = [&](const char *name) { return CDomDoc::attributeAsString(root, QLatin1String(name), d); };
        QCOMPARE(QStringList({element("Name"), element("Blank"), element("None"), attribute("kind"), attribute("none")}),
                 QStringList({"first", "", "d", "k", "d"}));

        // findOrCreate and setSubElementText reuse the first element and replace its whole text.
        QCOMPARE(dom.findOrCreateSubElement(root, QStringLiteral("Name")).text(), QStringLiteral("first"));
        dom.setSubElementText(root, QStringLiteral("Name"), QStringLiteral("renamed"));
        dom.setSubElementText(root, QStringLiteral("Fresh"), QStringLiteral("new"));
        QCOMPARE(root.elementsByTagName(QStringLiteral("Name")).size(), 2);
        QCOMPARE(root.firstChildElement(QStringLiteral("Name")).childNodes().size(), 1);
        QCOMPARE(element("Name") + QLatin1Char(' ') + element("Fresh"), QStringLiteral("renamed new"));
        QVERIFY(!dom.findOrCreateSubElement(root, QStringLiteral("Other")).isNull());
        QVERIFY(CDomDoc::hasSubElement(root, QStringLiteral("Other")));
        QCOMPARE(root.ownerDocument(), dom.document());
    }
};

QTEST_GUILESS_MAIN(tst_PlatformXml)
#include "tst_platform_xml.moc"

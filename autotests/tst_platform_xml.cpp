#include "CDomDoc.h"
#include "CMemoryLogfile.h"
#include "CStr.h"
#include "CXMLMetaData.h"
#include "CXmlAbstractKiroFile.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <limits>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#endif

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
    return CXMLMetaData(QDate(2026, 11, 21), QTime(13, 45, 10), QStringLiteral("someone"),
                        QStringLiteral("free text"), NTypes::uVersion_t(0x011C002A));
}

} // namespace

Q_DECLARE_METATYPE(CXMLMetaData)

namespace QTest {
template<>
char *toString(const CXMLMetaData &meta)
{
    return qstrdup(QStringLiteral("%1 %2 '%3' '%4' %5")
                       .arg(meta.date().toString(Qt::ISODate), meta.time().toString(Qt::ISODate), meta.author(),
                            meta.comment(), CStr::versionToString(meta.version()))
                       .toUtf8()
                       .constData());
}
} // namespace QTest

class tst_PlatformXml : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void openResult_data();
    void openResult();
    void openAcceptsVersionThroughHook();
    void streamHelpers_data();
    void streamHelpers();
    void streamHeaderRoundTrip();

    void createWritesFileHead();
    void metaDataRoundTrip_data();
    void metaDataRoundTrip();
    void missingHeaderPartsReadAsDefaults();
    void setMetaDataRewritesHeader();
    void saveInDeclaredEncoding();
    void saveKeepsOldFileOnFailure_data();
    void saveKeepsOldFileOnFailure();
#ifdef Q_OS_LINUX
    void saveKeepsOldFileWhenWriteFails();
#endif

    void unsignedConversions_data();
    void unsignedConversions();
    void signedConversions_data();
    void signedConversions();
    void boolAndFloatConversions_data();
    void boolAndFloatConversions();
    void typedReaders_data();
    void typedReaders();
    void stringReadersAndBuilders();

private:
    QTemporaryDir m_dir;
};

void tst_PlatformXml::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

void tst_PlatformXml::openResult_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("content"); // written unless the file is missing or a directory
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("errorPattern");

    const QString lineColumn = QStringLiteral("^Line \\d+, column \\d+: .+");
    QTest::newRow("readable") << "ok.xml" << document(kType, kVersion) << 0 << "^$";
    QTest::newRow("missing") << "missing.xml" << QByteArray() << 1 << "missing\\.xml";
    QTest::newRow("directory") << "adir" << QByteArray() << 1 << "adir";
    QTest::newRow("empty") << "empty.xml" << QByteArray("") << 2 << lineColumn;
    QTest::newRow("not xml") << "text.xml" << QByteArray("just some text\n") << 2 << lineColumn;
    QTest::newRow("truncated") << "cut.xml" << document(kType, kVersion).left(120) << 2 << lineColumn;
    QTest::newRow("mismatched tag") << "tag.xml"
                                    << QByteArray("<?xml version=\"1.0\"?>\n<A version=\"1\">\n  <B></C>\n</A>\n")
                                    << 2 << "^Line 3, column \\d+: ";
    QTest::newRow("wrong type") << "type.xml" << document(QStringLiteral("OtherFile"), kVersion) << 3
                                << "<OtherFile>.*<KiroObjectDictionary>";
    QTest::newRow("wrong version") << "version.xml" << document(kType, QStringLiteral("9.9")) << 4
                                   << "'9\\.9'.*'1\\.2\\.0'";
    QTest::newRow("version missing") << "noversion.xml"
                                     << QByteArray("<KiroObjectDictionary><Header/></KiroObjectDictionary>") << 4
                                     << "'1\\.2\\.0'";
}

void tst_PlatformXml::openResult()
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
        QCOMPARE(file.documentType(), kType);
        QCOMPARE(file.documentVersion(), kVersion);
        QCOMPARE(file.metaData().author(), QStringLiteral("someone"));
        QVERIFY(!CDomDoc::hasSubElement(file.documentElement(), QStringLiteral("Name")));
    } else {
        QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("Name"), file.documentElement(), QString()),
                 QStringLiteral("Previous"));
    }
    QVERIFY(fileName != QLatin1String("missing.xml") || !QFile::exists(path));
}

void tst_PlatformXml::openAcceptsVersionThroughHook()
{
    const QString path = m_dir.filePath(QStringLiteral("old.xml"));
    QVERIFY(writeFile(path, document(kType, QStringLiteral("1.0.0"))));

    CLenientFile file;
    QString errorText;
    QCOMPARE(file.open(path, kType, kVersion, &errorText), 0);
    QCOMPARE(file.asked, QStringList({QStringLiteral("1.0.0"), kVersion}));
    QCOMPARE(file.documentVersion(), QStringLiteral("1.0.0"));
    QCOMPARE(file.metaData().version(), NTypes::uVersion_t(0x011C002A));

    // The hook is not asked when the version matches or the type is wrong.
    file.asked.clear();
    QCOMPARE(file.open(path, kType, QStringLiteral("1.0.0")), 0);
    QCOMPARE(file.open(path, QStringLiteral("Other"), kVersion), 3);
    QVERIFY(file.asked.isEmpty());

    file.accept = false;
    QCOMPARE(file.open(path, kType, kVersion, &errorText), 4);
    QVERIFY(!errorText.isEmpty());
}

void tst_PlatformXml::streamHelpers_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("accept");
    QTest::addColumn<int>("result");

    QTest::newRow("matching") << document(kType, kVersion) << false << 0;
    QTest::newRow("wrong type") << document(QStringLiteral("Other"), kVersion) << true << 3;
    QTest::newRow("wrong version refused") << document(kType, QStringLiteral("2.0")) << false << 4;
    QTest::newRow("wrong version accepted") << document(kType, QStringLiteral("2.0")) << true << 0;
}

void tst_PlatformXml::streamHelpers()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, accept);
    QFETCH(int, result);

    QXmlStreamReader reader(content);
    QVERIFY(reader.readNextStartElement());
    CLenientFile file;
    file.accept = accept;
    QString errorText;
    QCOMPARE(file.checkDocumentElement(reader, kType, kVersion, &errorText), result);
    QCOMPARE(errorText.isEmpty(), result == 0);
    if (result != 0)
        return;

    QVERIFY(reader.readNextStartElement());
    QCOMPARE(reader.name().toString(), QStringLiteral("Header"));
    const CXMLMetaData meta = CXmlAbstractKiroFile::readHeader(reader);
    QCOMPARE(meta.author(), QStringLiteral("someone"));
    QCOMPARE(meta.version(), NTypes::uVersion_t(0x011C002A));
    QVERIFY(meta.date().isNull());
    QVERIFY(reader.isEndElement());
    QCOMPARE(reader.name().toString(), QStringLiteral("Header"));
}

void tst_PlatformXml::streamHeaderRoundTrip()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QXmlStreamWriter writer(&buffer);
    writer.writeStartDocument();
    writer.writeStartElement(kType);
    CXmlAbstractKiroFile::writeHeader(writer, sampleMeta());
    writer.writeTextElement(QStringLiteral("Name"), QStringLiteral("Drive"));
    writer.writeEndElement();
    writer.writeEndDocument();
    buffer.close();

    QXmlStreamReader reader(bytes);
    QVERIFY(reader.readNextStartElement());
    QVERIFY(reader.readNextStartElement());
    QCOMPARE(CXmlAbstractKiroFile::readHeader(reader), sampleMeta());
    // The reader continues behind the header.
    QVERIFY(reader.readNextStartElement());
    QCOMPARE(reader.name().toString(), QStringLiteral("Name"));

    // The DOM reads what the stream writer wrote.
    QDomDocument doc;
    QVERIFY(doc.setContent(bytes));
    QCOMPARE(CXmlAbstractKiroFile::metaDataFromElement(doc.documentElement().firstChildElement()), sampleMeta());
}

void tst_PlatformXml::createWritesFileHead()
{
    CXmlAbstractKiroFile file;
    QVERIFY(!file.create(QString(), kVersion, sampleMeta()));
    QVERIFY(!file.save(m_dir.filePath(QStringLiteral("nothing.xml"))));
    QVERIFY(file.create(kType, kVersion, sampleMeta()));
    file.domDoc().addSubElement(file.documentElement(), QStringLiteral("Name"), QStringLiteral("DemoDrive"));

    const QString path = m_dir.filePath(QStringLiteral("head.xml"));
    QVERIFY(file.save(path));
    const QByteArray expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<KiroObjectDictionary version=\"1.2.0\">\n"
                                "  <Header>\n"
                                "    <Date>2026-11-21</Date>\n"
                                "    <Time>13:45:10</Time>\n"
                                "    <Author>someone</Author>\n"
                                "    <Comment>free text</Comment>\n"
                                "    <Version>1.28.42</Version>\n"
                                "  </Header>\n"
                                "  <Name>DemoDrive</Name>\n"
                                "</KiroObjectDictionary>\n";
    QCOMPARE(readFile(path), expected);
}

void tst_PlatformXml::metaDataRoundTrip_data()
{
    QTest::addColumn<CXMLMetaData>("meta");

    QTest::newRow("complete") << sampleMeta();
    QTest::newRow("empty") << CXMLMetaData();
    QTest::newRow("markup and umlauts")
        << CXMLMetaData(QDate(1999, 1, 2), QTime(0, 0, 1), QStringLiteral("Jürgen <&> \"x\""),
                        QStringLiteral("line 1\nline 2 ©"), NTypes::uVersion_t::fromParts(255, 255, 65535));
}

void tst_PlatformXml::metaDataRoundTrip()
{
    QFETCH(CXMLMetaData, meta);

    CXmlAbstractKiroFile written;
    QVERIFY(written.create(kType, kVersion, meta));
    QCOMPARE(written.metaData(), meta);
    const QString path = m_dir.filePath(QStringLiteral("roundtrip.xml"));
    QVERIFY(written.save(path));

    CXmlAbstractKiroFile read;
    QString errorText;
    QCOMPARE(read.open(path, kType, kVersion, &errorText), 0);
    QCOMPARE(read.metaData(), meta);

    // Saving what was read gives the same bytes.
    const QString again = m_dir.filePath(QStringLiteral("roundtrip2.xml"));
    QVERIFY(read.save(again));
    QCOMPARE(readFile(again), readFile(path));
}

void tst_PlatformXml::missingHeaderPartsReadAsDefaults()
{
    const QString path = m_dir.filePath(QStringLiteral("partial.xml"));
    QVERIFY(writeFile(path, "<KiroObjectDictionary version=\"1.2.0\"><Header><Date>2020-02-30</Date>"
                            "<Comment>only this</Comment><Version>x.y</Version><Extra/></Header>"
                            "</KiroObjectDictionary>"));
    CXmlAbstractKiroFile file;
    QCOMPARE(file.open(path, kType, kVersion), 0);
    CXMLMetaData expected;
    expected.setComment(QStringLiteral("only this"));
    QCOMPARE(file.metaData(), expected);

    QVERIFY(writeFile(path, "<KiroObjectDictionary version=\"1.2.0\"/>"));
    QCOMPARE(file.open(path, kType, kVersion), 0);
    QCOMPARE(file.metaData(), CXMLMetaData());
}

void tst_PlatformXml::setMetaDataRewritesHeader()
{
    // A document without a header gets one as the first child.
    const QString path = m_dir.filePath(QStringLiteral("noheader.xml"));
    QVERIFY(writeFile(path, "<KiroObjectDictionary version=\"1.2.0\"><Name>n</Name></KiroObjectDictionary>"));
    CXmlAbstractKiroFile file;
    QCOMPARE(file.open(path, kType, kVersion), 0);
    file.setMetaData(sampleMeta());
    QCOMPARE(file.metaData(), sampleMeta());
    const QDomElement first = file.documentElement().firstChildElement();
    QCOMPARE(first.tagName(), QStringLiteral("Header"));
    QCOMPARE(CXmlAbstractKiroFile::metaDataFromElement(first), sampleMeta());

    // A second call replaces the parts instead of adding more.
    CXMLMetaData changed = sampleMeta();
    changed.setAuthor(QStringLiteral("other"));
    file.setMetaData(changed);
    QCOMPARE(first.elementsByTagName(QStringLiteral("Author")).size(), 1);
    QCOMPARE(CXmlAbstractKiroFile::metaDataFromElement(first), changed);
    QCOMPARE(file.documentElement().elementsByTagName(QStringLiteral("Header")).size(), 1);

    // Without a document only the stored meta data changes.
    CXmlAbstractKiroFile empty;
    empty.setMetaData(changed);
    QCOMPARE(empty.metaData(), changed);
    QVERIFY(empty.documentElement().isNull());
}

void tst_PlatformXml::saveInDeclaredEncoding()
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

void tst_PlatformXml::saveKeepsOldFileOnFailure_data()
{
    QTest::addColumn<QString>("target");

    QTest::newRow("parent is a file") << "blocker/file.xml";
    QTest::newRow("missing directory") << "nodir/file.xml";
    QTest::newRow("target is a directory") << "targetdir";
}

void tst_PlatformXml::saveKeepsOldFileOnFailure()
{
    QFETCH(QString, target);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QByteArray old = "old content, not even XML\n";
    QVERIFY(writeFile(dir.filePath(QStringLiteral("blocker")), old));
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("targetdir")));
    QVERIFY(writeFile(dir.filePath(QStringLiteral("targetdir/inside")), old));
    const QStringList before = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);

    CMemoryLogfile log;
    CXmlAbstractKiroFile file(&log);
    QVERIFY(file.create(kType, kVersion, sampleMeta()));
    QVERIFY(!file.save(dir.filePath(target)));
    QCOMPARE(log.count(NkrLogfiles::E_SEV_WARNING), 1);

    QCOMPARE(readFile(dir.filePath(QStringLiteral("blocker"))), old);
    QCOMPARE(readFile(dir.filePath(QStringLiteral("targetdir/inside"))), old);
    QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("nodir"))));
    // No temporary file is left behind.
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), before);
}

#ifdef Q_OS_LINUX
void tst_PlatformXml::saveKeepsOldFileWhenWriteFails()
{
    // A file size limit makes writing the new content fail half-way, as a full disk would;
    // root is not exempt from it.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("doc.xml"));
    const QByteArray old = "<old/>\n";
    QVERIFY(writeFile(path, old));

    CXmlAbstractKiroFile file;
    QVERIFY(file.create(kType, kVersion, sampleMeta()));
    for (int i = 0; i < 200; ++i)
        file.domDoc().addSubElement(file.documentElement(), QStringLiteral("Item"), QString::number(i));

    rlimit saved {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 512;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved512 = file.save(path);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);

    QVERIFY(!saved512);
    QCOMPARE(readFile(path), old);
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("doc.xml")});
    QVERIFY(file.save(path));
    QVERIFY(readFile(path).size() > 512);
}
#endif

void tst_PlatformXml::unsignedConversions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok32");
    QTest::addColumn<bool>("ok64");
    QTest::addColumn<quint64>("value"); // when read

    QTest::newRow("zero") << "0" << true << true << Q_UINT64_C(0);
    QTest::newRow("decimal") << "42" << true << true << Q_UINT64_C(42);
    QTest::newRow("blanks") << " \t42 \n" << true << true << Q_UINT64_C(42);
    QTest::newRow("hex") << "0x2A" << true << true << Q_UINT64_C(42);
    QTest::newRow("hex upper prefix, lower digits") << "0X2a" << true << true << Q_UINT64_C(42);
    QTest::newRow("32-bit maximum") << "4294967295" << true << true << Q_UINT64_C(4294967295);
    QTest::newRow("beyond 32 bits") << "4294967296" << false << true << Q_UINT64_C(4294967296);
    QTest::newRow("hex beyond 32 bits") << "0x100000000" << false << true << Q_UINT64_C(0x100000000);
    QTest::newRow("64-bit maximum hex") << "0xFFFFFFFFFFFFFFFF" << false << true << Q_UINT64_C(0xFFFFFFFFFFFFFFFF);
    QTest::newRow("64-bit maximum") << "18446744073709551615" << false << true << Q_UINT64_C(0xFFFFFFFFFFFFFFFF);
    QTest::newRow("beyond 64 bits") << "18446744073709551616" << false << false << Q_UINT64_C(0);
    QTest::newRow("negative") << "-1" << false << false << Q_UINT64_C(0);
    QTest::newRow("plus sign") << "+1" << false << false << Q_UINT64_C(0);
    QTest::newRow("empty") << "" << false << false << Q_UINT64_C(0);
    QTest::newRow("blank") << "  " << false << false << Q_UINT64_C(0);
    QTest::newRow("prefix only") << "0x" << false << false << Q_UINT64_C(0);
    QTest::newRow("garbage") << "abc" << false << false << Q_UINT64_C(0);
    QTest::newRow("trailing garbage") << "12abc" << false << false << Q_UINT64_C(0);
    QTest::newRow("bad hex digit") << "0x1G" << false << false << Q_UINT64_C(0);
    QTest::newRow("inner blank") << "1 2" << false << false << Q_UINT64_C(0);
}

void tst_PlatformXml::unsignedConversions()
{
    QFETCH(QString, text);
    QFETCH(bool, ok32);
    QFETCH(bool, ok64);
    QFETCH(quint64, value);

    bool ok = !ok32;
    const quint32 v32 = CDomDoc::toU32(text, &ok);
    QCOMPARE(ok, ok32);
    if (ok32)
        QCOMPARE(quint64(v32), value);
    ok = !ok64;
    const quint64 v64 = CDomDoc::toU64(text, &ok);
    QCOMPARE(ok, ok64);
    if (ok64)
        QCOMPARE(v64, value);
}

void tst_PlatformXml::signedConversions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok32");
    QTest::addColumn<bool>("ok64");
    QTest::addColumn<qint64>("value");

    QTest::newRow("negative") << "-5" << true << true << Q_INT64_C(-5);
    QTest::newRow("negative zero") << "-0" << true << true << Q_INT64_C(0);
    QTest::newRow("negative hex") << "-0x10" << true << true << Q_INT64_C(-16);
    QTest::newRow("32-bit minimum") << "-2147483648" << true << true << Q_INT64_C(-2147483648);
    QTest::newRow("below 32 bits") << "-2147483649" << false << true << Q_INT64_C(-2147483649);
    QTest::newRow("32-bit maximum") << " 2147483647 " << true << true << Q_INT64_C(2147483647);
    QTest::newRow("above 32 bits") << "2147483648" << false << true << Q_INT64_C(2147483648);
    QTest::newRow("hex 32-bit maximum") << "0x7FFFFFFF" << true << true << Q_INT64_C(0x7FFFFFFF);
    QTest::newRow("hex above 32 bits") << "0x80000000" << false << true << Q_INT64_C(0x80000000);
    QTest::newRow("64-bit minimum") << "-9223372036854775808" << false << true << (std::numeric_limits<qint64>::min)();
    QTest::newRow("below 64 bits") << "-9223372036854775809" << false << false << Q_INT64_C(0);
    QTest::newRow("above 64 bits") << "9223372036854775808" << false << false << Q_INT64_C(0);
    QTest::newRow("double minus") << "--1" << false << false << Q_INT64_C(0);
    QTest::newRow("minus only") << "-" << false << false << Q_INT64_C(0);
    QTest::newRow("blank after minus") << "- 1" << false << false << Q_INT64_C(0);
    QTest::newRow("decimal point") << "1.0" << false << false << Q_INT64_C(0);
}

void tst_PlatformXml::signedConversions()
{
    QFETCH(QString, text);
    QFETCH(bool, ok32);
    QFETCH(bool, ok64);
    QFETCH(qint64, value);

    bool ok = !ok32;
    const qint32 v32 = CDomDoc::toI32(text, &ok);
    QCOMPARE(ok, ok32);
    if (ok32)
        QCOMPARE(qint64(v32), value);
    ok = !ok64;
    const qint64 v64 = CDomDoc::toI64(text, &ok);
    QCOMPARE(ok, ok64);
    if (ok64)
        QCOMPARE(v64, value);
}

void tst_PlatformXml::boolAndFloatConversions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("boolOk");
    QTest::addColumn<bool>("boolValue");
    QTest::addColumn<bool>("floatOk");
    QTest::addColumn<double>("floatValue");

    QTest::newRow("one") << "1" << true << true << true << 1.0;
    QTest::newRow("zero") << " 0 " << true << false << true << 0.0;
    QTest::newRow("true any case") << "TrUe" << true << true << false << 0.0;
    QTest::newRow("false") << "false" << true << false << false << 0.0;
    QTest::newRow("two") << "2" << false << false << true << 2.0;
    QTest::newRow("yes") << "yes" << false << false << false << 0.0;
    QTest::newRow("empty") << "" << false << false << false << 0.0;
    QTest::newRow("fraction") << "1.5" << false << false << true << 1.5;
    QTest::newRow("exponent") << "-2e3" << false << false << true << -2000.0;
    QTest::newRow("hex") << "0x10" << false << false << true << 16.0;
    QTest::newRow("decimal comma") << "1,5" << false << false << false << 0.0;
}

void tst_PlatformXml::boolAndFloatConversions()
{
    QFETCH(QString, text);
    QFETCH(bool, boolOk);
    QFETCH(bool, boolValue);
    QFETCH(bool, floatOk);
    QFETCH(double, floatValue);

    bool ok = !boolOk;
    const bool b = CDomDoc::toBool(text, &ok);
    QCOMPARE(ok, boolOk);
    if (boolOk)
        QCOMPARE(b, boolValue);
    ok = !floatOk;
    const double f = CDomDoc::toF64(text, &ok);
    QCOMPARE(ok, floatOk);
    if (floatOk)
        QCOMPARE(f, floatValue);
}

void tst_PlatformXml::typedReaders_data()
{
    QTest::addColumn<QString>("reader");
    QTest::addColumn<QString>("name"); // sub-element tag or attribute name of <Root>
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("errorText");

    const qint64 def = 7;
    QTest::newRow("element hex") << "U32" << "Good" << Q_INT64_C(16) << QString();
    QTest::newRow("element missing") << "U32" << "None" << def << QString();
    QTest::newRow("element garbage")
        << "U32" << "Bad" << def << QStringLiteral("Cannot convert 'abc' of <Bad> (line 3) to U32.");
    QTest::newRow("element negative as unsigned")
        << "U64" << "Neg" << def << QStringLiteral("Cannot convert ' -5 ' of <Neg> (line 4) to U64.");
    QTest::newRow("element negative as I32") << "I32" << "Neg" << Q_INT64_C(-5) << QString();
    QTest::newRow("element negative as I64") << "I64" << "Neg" << Q_INT64_C(-5) << QString();
    QTest::newRow("element empty")
        << "I32" << "Empty" << def << QStringLiteral("Cannot convert '' of <Empty> (line 5) to I32.");
    QTest::newRow("element bool") << "BOOL" << "Flag" << Q_INT64_C(1) << QString();
    QTest::newRow("element bool garbage")
        << "BOOL" << "Bad" << def << QStringLiteral("Cannot convert 'abc' of <Bad> (line 3) to BOOL.");
    QTest::newRow("attribute") << "attrU32" << "id" << Q_INT64_C(0x2000) << QString();
    QTest::newRow("attribute missing") << "attrI64" << "none" << def << QString();
    QTest::newRow("attribute negative") << "attrI32" << "offset" << Q_INT64_C(-3) << QString();
    QTest::newRow("attribute garbage")
        << "attrI64" << "size" << def << QStringLiteral("Cannot convert 'big' of <Root@size> (line 1) to I64.");
    QTest::newRow("attribute out of range")
        << "attrU32" << "offset" << def << QStringLiteral("Cannot convert '-3' of <Root@offset> (line 1) to U32.");
}

void tst_PlatformXml::typedReaders()
{
    QFETCH(QString, reader);
    QFETCH(QString, name);
    QFETCH(qint64, value);
    QFETCH(QString, errorText);

    QDomDocument doc;
    QVERIFY(doc.setContent(QByteArray("<Root id=\"0x2000\" offset=\"-3\" size=\"big\">\n"
                                      "  <Good>0x10</Good>\n"
                                      "  <Bad>abc</Bad>\n"
                                      "  <Neg> -5 </Neg>\n"
                                      "  <Empty/>\n"
                                      "  <Flag>true</Flag>\n"
                                      "</Root>\n")));
    const QDomElement root = doc.documentElement();

    QString error;
    qint64 result = 0;
    if (reader == QLatin1String("U32"))
        result = CDomDoc::existingSubElementAsU32(name, root, 7, &error);
    else if (reader == QLatin1String("I32"))
        result = CDomDoc::existingSubElementAsI32(name, root, 7, &error);
    else if (reader == QLatin1String("U64"))
        result = qint64(CDomDoc::existingSubElementAsU64(name, root, 7, &error));
    else if (reader == QLatin1String("I64"))
        result = CDomDoc::existingSubElementAsI64(name, root, 7, &error);
    else if (reader == QLatin1String("BOOL"))
        result = CDomDoc::existingSubElementAsBool(name, root, true, &error) ? (error.isEmpty() ? 1 : 7) : 0;
    else if (reader == QLatin1String("attrU32"))
        result = CDomDoc::attributeAsU32(root, name, 7, &error);
    else if (reader == QLatin1String("attrI32"))
        result = CDomDoc::attributeAsI32(root, name, 7, &error);
    else if (reader == QLatin1String("attrI64"))
        result = CDomDoc::attributeAsI64(root, name, 7, &error);
    else
        QFAIL("unknown reader");

    QCOMPARE(result, value);
    QCOMPARE(error, errorText);
}

void tst_PlatformXml::stringReadersAndBuilders()
{
    CDomDoc dom;
    QDomElement root = dom.document().createElement(QStringLiteral("Root"));
    dom.document().appendChild(root);
    QCOMPARE(dom.documentElement().tagName(), QStringLiteral("Root"));

    dom.addSubElement(root, QStringLiteral("Name"), QStringLiteral("first"));
    dom.addSubElement(root, QStringLiteral("Name"), QStringLiteral("second"));
    dom.addSubElement(root, QStringLiteral("Blank"));
    root.setAttribute(QStringLiteral("kind"), QStringLiteral("k"));

    QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("Name"), root, QStringLiteral("d")), QStringLiteral("first"));
    QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("Blank"), root, QStringLiteral("d")), QString());
    QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("None"), root, QStringLiteral("d")), QStringLiteral("d"));
    QCOMPARE(CDomDoc::attributeAsString(root, QStringLiteral("kind"), QStringLiteral("d")), QStringLiteral("k"));
    QCOMPARE(CDomDoc::attributeAsString(root, QStringLiteral("none"), QStringLiteral("d")), QStringLiteral("d"));

    // findOrCreate and setSubElementText reuse the first element and replace its whole text.
    QCOMPARE(dom.findOrCreateSubElement(root, QStringLiteral("Name")).text(), QStringLiteral("first"));
    dom.setSubElementText(root, QStringLiteral("Name"), QStringLiteral("renamed"));
    dom.setSubElementText(root, QStringLiteral("Fresh"), QStringLiteral("new"));
    QCOMPARE(root.elementsByTagName(QStringLiteral("Name")).size(), 2);
    QCOMPARE(root.firstChildElement(QStringLiteral("Name")).childNodes().size(), 1);
    QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("Name"), root, QString()), QStringLiteral("renamed"));
    QCOMPARE(CDomDoc::existingSubElementAsString(QStringLiteral("Fresh"), root, QString()), QStringLiteral("new"));
    QVERIFY(!dom.findOrCreateSubElement(root, QStringLiteral("Other")).isNull());
    QVERIFY(CDomDoc::hasSubElement(root, QStringLiteral("Other")));
    QCOMPARE(root.ownerDocument(), dom.document());
}

QTEST_GUILESS_MAIN(tst_PlatformXml)
#include "tst_platform_xml.moc"

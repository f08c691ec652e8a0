#include "COdictDataFile.h"

#include "CDataTypeParser.h"
#include "CDomDoc.h"

#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

using ValueMap = QMap<int, QVariant>;
Q_DECLARE_METATYPE(ValueMap)

namespace {

QString documentText(const QString &records, const QString &type = QStringLiteral("KiroDataFile"),
                     const QString &version = QStringLiteral("1.0.0"))
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<%1 version=\"%2\"><Header/>"
                          "<Application><Name>app</Name><Version>1.2</Version></Application>"
                          "<Data>%3</Data></%1>")
        .arg(type, version, records);
}

/// Reads \a records, wrapped into a data file document, into \a read; false when a record does not
/// read or the text is no XML.
template <class C>
bool readRecords(const QString &records, C &read)
{
    QDomDocument dom;
    return dom.setContent(documentText(records)) && COdictDataFile(CDomDoc(dom), nullptr).objects(read);
}

/// A T with \a id and \a name holding \a size bytes of \a type, an array when that makes two or more elements.
template <class T>
T makeObject(const COdictObjectId &id, const QString &name, int type, uint size)
{
    T object;
    object.setId(id);
    object.setName(name);
    object.setDataType(NTypes::eTypes_t(type));
    object.setDataSize(size);
    const uint elements = size / CDataTypeParser::typeSize(NTypes::eTypes_t(type));
    object.setArrayLength(elements >= 2 ? elements : 1);
    return object;
}

/// Id, name, type, size times array length, usage and units of \a o as one text, "0x20/0x1 N U16 2x1 usage 4 units 12/7".
QString shape(const COdictObject &o)
{
    return QStringLiteral("0x%1/0x%2 %3 %4 %5x%6 usage %7 units %8/%9")
        .arg(o.id(), 0, 16).arg(o.subId(), 0, 16).arg(o.name(), CDataTypeParser::typeToStr(o.dataType()))
        .arg(o.dataSize()).arg(o.arrayLength()).arg(o.objectUsage()).arg(o.unit()).arg(o.yUnit());
}

bool writeFile(const QString &path, const QString &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0;
}

} // namespace

class tst_DataFile : public QObject
{
    Q_OBJECT

private slots:
    void valueRoundTrip_data();
    void valueRoundTrip();
    void parameterRoundTrip_data();
    void parameterRoundTrip();
    void valueRecords_data();
    void valueRecords();
    void parameterRecords_data();
    void parameterRecords();
    void nestedAndRepeatedRecords();
    void deepNestingDoesNotExhaustStack();
    void otherVersionsLoad_data();
    void otherVersionsLoad();
    void fileLayout();
    void refusals();

private:
    QTemporaryDir m_dir;
};

void tst_DataFile::valueRoundTrip_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<uint>("size");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text"); // in the file
    QTest::addColumn<QVariant>("readBack");
    QTest::addColumn<QString>("encoded"); // valueToStr, where it differs from the text

    const QByteArray bytes = QByteArray::fromHex("01020aff");
    const QByteArray xy = QByteArray::fromHex("03000000fcffffff");
    const QVariant i32Min(qlonglong(-2147483648LL));
    const QVariant markup("a <b> & c");
    const QString same;
    QTest::newRow("U8") << int(NTypes::E_U8) << 1u << QVariant(200u) << "200" << QVariant(qulonglong(200)) << same;
    QTest::newRow("I32 minimum") << int(NTypes::E_I32) << 4u << i32Min << "-2147483648" << i32Min << same;
    QTest::newRow("U32 maximum") << int(NTypes::E_U32) << 4u << QVariant(0xFFFFFFFFu) << "4294967295"
                                 << QVariant(qulonglong(0xFFFFFFFFu)) << same;
    QTest::newRow("F32") << int(NTypes::E_F32) << 4u << QVariant(1.5) << "1.5" << QVariant(1.5) << same;
    QTest::newRow("F64") << int(NTypes::E_F64) << 8u << QVariant(-0.125) << "-0.125" << QVariant(-0.125) << same;
    QTest::newRow("BOOL") << int(NTypes::E_BOOL) << 1u << QVariant(true) << "1" << QVariant(true) << same;
    QTest::newRow("VISIBLE_STRING with markup") << int(NTypes::E_VSTRING) << 1u << markup << "a <b> & c" << markup << same;
    QTest::newRow("XY") << int(NTypes::E_XY) << 8u << QVariant(xy) << "3;-4" << QVariant(xy) << same;
    QTest::newRow("U8 array") << int(NTypes::E_U8) << 4u << QVariant(bytes) << "01020aff" << QVariant(bytes) << same;
    QTest::newRow("STRING array as bytes") << int(NTypes::E_STRING) << 5u << QVariant("hello") << "68656c6c6f"
                                           << QVariant(QByteArray("hello")) << same;
    QTest::newRow("no value") << int(NTypes::E_U16) << 2u << QVariant() << "" << QVariant() << same;
    // Erased memory (0xFFFF) becomes a terminator and control characters are left out of the file:
    // the saved file must load again, whatever the text held.
    const QChar erased(0xFFFF);
    const QString middle = QString("ab") + erased + "cd";
    const QString greeting = QString::fromUtf8("Grüße");
    QTest::newRow("USTRING erased tail") << int(NTypes::E_USTRING) << 2u << QVariant("abc" + QString(2, erased)) << "abc"
                                         << QVariant("abc") << "abc" + QString(2, QChar(0));
    QTest::newRow("VISIBLE_STRING erased middle") << int(NTypes::E_VSTRING) << 1u << QVariant(middle) << "ab" << QVariant("ab") << middle;
    QTest::newRow("CHAR_ARRAY control character") << int(NTypes::E_CHARARRAY) << 1u << QVariant("a\x01z") << "az" << QVariant("az")
                                                  << "a\x01z";
    QTest::newRow("UTF8_STRING unchanged") << int(NTypes::E_UTF8STRING) << 1u << QVariant(greeting) << greeting << QVariant(greeting)
                                           << same;
}

void tst_DataFile::valueRoundTrip()
{
    QFETCH(int, type);
    QFETCH(uint, size);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QFETCH(QVariant, readBack);
    QFETCH(QString, encoded);

    auto object = makeObject<COdictValueObject>(COdictObjectId(0xABCDEF12u, 0x1Fu), "SPEED_LIMIT", type, size);
    object.setObjectUsage(4u);
    object.setUnit(12u);
    object.setYUnit(7u);
    object.setCurrentValue(value);

    const QString path = m_dir.filePath("values.xml");
    COdictDataFile writer;
    if (!encoded.isNull())
        QCOMPARE(writer.valueToStr(object.currentValue(), object), encoded);
    QVERIFY(writer.saveValues(path, {object}, "tool", "2.0"));
    const QDomElement record = writer.documentElement().firstChildElement("Data").firstChildElement("Object");
    // Ids as eight lower-case hexadecimal digits.
    QCOMPARE(QStringList({record.attribute("id"), record.attribute("subid"), record.firstChildElement("Value").text()}),
             QStringList({"0xabcdef12", "0x0000001f", text}));

    QList<COdictValueObject> read;
    QString error;
    QVERIFY2(COdictDataFile().loadValues(path, read, &error), qPrintable(error));
    QCOMPARE(read.size(), 1);
    QCOMPARE(shape(read[0]), shape(object));
    QCOMPARE(read[0].currentValue(), readBack);
}

void tst_DataFile::parameterRoundTrip_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<uint>("size");
    QTest::addColumn<ValueMap>("values");
    QTest::addColumn<ValueMap>("readBack");

    const ValueMap texts{{0, "x"}, {5, "y z"}};
    const ValueMap bytes{{2, QByteArray::fromHex("00ff10")}};
    QTest::newRow("I32") << int(NTypes::E_I32) << 4u << ValueMap{{62, -5}, {0, 7}, {3, 0}}
                         << ValueMap{{62, qlonglong(-5)}, {0, qlonglong(7)}, {3, qlonglong(0)}};
    QTest::newRow("VISIBLE_STRING") << int(NTypes::E_VSTRING) << 1u << texts << texts;
    QTest::newRow("U8 array") << int(NTypes::E_U8) << 3u << bytes << bytes;
}

void tst_DataFile::parameterRoundTrip()
{
    QFETCH(int, type);
    QFETCH(uint, size);
    QFETCH(ValueMap, values);
    QFETCH(ValueMap, readBack);

    auto object = makeObject<COdictParameterObject>(0x2200u, "GAIN", type, size);
    object.setValues(values);

    const QString path = m_dir.filePath("parameters.xml");
    COdictDataFile writer;
    QVERIFY(writer.saveParameters(path, {object}, "tool", "2.0"));
    // Set numbers in ascending order.
    QStringList sets, ascending;
    for (int set : values.keys())
        ascending << QString::number(set);
    const QDomElement param = writer.documentElement().firstChildElement("Data").firstChildElement("Object").firstChildElement("Param");
    for (QDomElement e = param.firstChildElement("Value"); !e.isNull(); e = e.nextSiblingElement("Value"))
        sets << e.attribute("id");
    QCOMPARE(sets, ascending);

    QList<COdictParameterObject> read;
    QString error;
    QVERIFY2(COdictDataFile().loadParameters(path, read, &error), qPrintable(error));
    QCOMPARE(read.size(), 1);
    QCOMPARE(read[0].uniqueId(), object.uniqueId());
    QCOMPARE(read[0].values(), readBack);
}

void tst_DataFile::valueRecords_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("shape");
    QTest::addColumn<QVariant>("value");

    // A record with the elements whose text is not null.
    const auto record = [](const QString &type, const QString &size, const QString &value) {
        const auto element = [](const char *tag, const QString &text) {
            return text.isNull() ? QString() : QStringLiteral("<%1>%2</%1>").arg(QLatin1String(tag), text);
        };
        return "<Object id=\"0x20\" subid=\"0x1\"><Name>N</Name>" + element("Type", type) + element("Size", size)
            + element("Value", value) + "</Object>";
    };
    const QString noSize;
    const QVariant five(qulonglong(5));
    QTest::newRow("complete") << record("U16", "2", "513") << true << "0x20/0x1 N U16 2x1" << QVariant(qulonglong(513));
    QTest::newRow("missing attributes") << "<Object><Type>U8</Type><Value>5</Value></Object>" << true
                                        << "0xffffffff/0xffffffff  U8 1x1" << five;
    QTest::newRow("no Size takes the type's size") << record("U32", noSize, "5") << true << "0x20/0x1 N U32 4x1" << five;
    QTest::newRow("Size of four elements") << record("U16", "8", "0100020003000400") << true << "0x20/0x1 N U16 8x4"
                                           << QVariant(QByteArray::fromHex("0100020003000400"));
    QTest::newRow("Size 0") << record("U8", "0", "5") << true << "0x20/0x1 N U8 0x1" << five;
    QTest::newRow("no Value") << record("U8", "1", QString()) << true << "0x20/0x1 N U8 1x1" << QVariant();
    QTest::newRow("empty array text") << record("U8", "4", "") << true << "0x20/0x1 N U8 4x4" << QVariant();
    QTest::newRow("unknown type name") << record("FOO", "4", "5") << false << "0x20/0x1 N UNKNOWN 4x1" << QVariant();
    QTest::newRow("no Type") << record(QString(), "4", "5") << false << "0x20/0x1 N UNKNOWN 4x1" << QVariant();
    QTest::newRow("300 for U8") << record("U8", "1", "300") << false << "0x20/0x1 N U8 1x1" << QVariant();
    QTest::newRow("odd-length array text") << record("U8", "4", "01020") << false << "0x20/0x1 N U8 4x4" << QVariant();
    QTest::newRow("non-hex array text") << record("U8", "4", "01zz0304") << false << "0x20/0x1 N U8 4x4" << QVariant();
    QTest::newRow("non-Latin-1 array text") << record("U8", "2", QString::fromUtf8("0\u4e2d")) << false
                                            << "0x20/0x1 N U8 2x2" << QVariant();
    QTest::newRow("unreadable Size") << record("U32", "big", "5") << false << "0x20/0x1 N U32 4x1" << five;
    QTest::newRow("unreadable id") << "<Object id=\"0xZZ\"><Type>U8</Type><Value>5</Value></Object>" << false
                                   << "0xffffffff/0xffffffff  U8 1x1" << five;
}

void tst_DataFile::valueRecords()
{
    QFETCH(QString, record);
    QFETCH(bool, ok);
    QFETCH(QString, shape);
    QFETCH(QVariant, value);

    QList<COdictValueObject> read;
    QCOMPARE(readRecords(record, read), ok);
    QCOMPARE(read.size(), 1);
    QCOMPARE(::shape(read[0]), shape + " usage 0 units 0/0");
    QCOMPARE(read[0].currentValue(), value);
}

void tst_DataFile::parameterRecords_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<ValueMap>("values");

    const auto param = [](const char *type, const char *values) {
        return QStringLiteral("<Object><Type>%1</Type><Param>%2</Param></Object>").arg(QLatin1String(type), QString::fromUtf8(values));
    };
    QTest::newRow("set 0") << param("U16", "<Value id=\"0\">9</Value>") << true << ValueMap{{0, qulonglong(9)}};
    QTest::newRow("set 62") << param("U16", "<Value id=\"62\">9</Value>") << true << ValueMap{{62, qulonglong(9)}};
    QTest::newRow("set 63 skipped") << param("U16", "<Value id=\"63\">9</Value>") << true << ValueMap();
    QTest::newRow("set -1 skipped") << param("U16", "<Value id=\"-1\">9</Value>") << true << ValueMap();
    QTest::newRow("set not a number skipped") << param("U16", "<Value id=\"one\">9</Value>") << true << ValueMap();
    QTest::newRow("no set number skipped") << param("U16", "<Value>9</Value>") << true << ValueMap();
    QTest::newRow("unknown type with values") << param("FOO", "<Value id=\"1\">5</Value>") << false << ValueMap();
    QTest::newRow("unknown type without values") << "<Object><Type>FOO</Type></Object>" << true << ValueMap();
    QTest::newRow("value too large") << param("I8", "<Value id=\"1\">200</Value><Value id=\"2\">-3</Value>") << false
                                     << ValueMap{{2, qlonglong(-3)}};
    QTest::newRow("empty entry") << param("I8", "<Value id=\"4\"/>") << true << ValueMap{{4, QVariant()}};
    QTest::newRow("later entry of a set wins") << param("U8", "<Value id=\"4\">1</Value><Value id=\"4\">2</Value>") << true
                                               << ValueMap{{4, qulonglong(2)}};
}

void tst_DataFile::parameterRecords()
{
    QFETCH(QString, record);
    QFETCH(bool, ok);
    QFETCH(ValueMap, values);

    QList<COdictParameterObject> read;
    QCOMPARE(readRecords(record, read), ok);
    QCOMPARE(read.size(), 1);
    QCOMPARE(read[0].values(), values);
}

void tst_DataFile::nestedAndRepeatedRecords()
{
    // Records nested in records or groups are read once each; of two records with one id the map
    // keeps the later.
    const QString records(
        "<Object id=\"1\"><Name>A</Name><Type>U8</Type><Param><Value id=\"0\">1</Value></Param>"
        "  <Object id=\"2\"><Name>B</Name><Type>U8</Type>"
        "    <Object id=\"3\"><Name>C</Name><Type>U8</Type></Object></Object>"
        "  <Group><Object id=\"4\"><Name>D</Name><Type>U8</Type></Object></Group></Object>"
        "<Object id=\"1\" subid=\"0x1\"><Name>E</Name><Type>U8</Type><Param><Value id=\"0\">2</Value></Param></Object>"
        "<Object id=\"1\"><Name>F</Name><Type>U8</Type><Param><Value id=\"0\">3</Value></Param></Object>");

    const auto names = [](const auto &objects) {
        QStringList texts;
        for (const auto &object : objects)
            texts << object.name();
        return texts.join(' ');
    };
    QList<COdictValueObject> values;
    QList<COdictParameterObject> list;
    QMap<COdictObjectId, COdictParameterObject> map;
    QVERIFY(readRecords(records, values) && readRecords(records, list) && readRecords(records, map));
    QCOMPARE(names(values), QStringLiteral("A B C D E F"));
    QCOMPARE(names(list), QStringLiteral("A B C D E F"));
    QCOMPARE(names(map), QStringLiteral("F B C D E")); // in the order of the ids' keys
    QCOMPARE(map.value(COdictObjectId(1u)).value(0), QVariant(qulonglong(3)));
    QCOMPARE(map.value(COdictObjectId(1u, 1u)).value(0), QVariant(qulonglong(2)));
}

void tst_DataFile::deepNestingDoesNotExhaustStack()
{
    // Files deeper than the reader's depth limit are refused (tst_hostile); a document built in
    // memory can still nest records this deep.
    const int depth = 10000;
    QDomDocument doc;
    QDomElement parent = doc.createElement(COdictDataFile::fileType);
    doc.appendChild(parent);
    parent = parent.appendChild(doc.createElement(QStringLiteral("Data"))).toElement();
    for (int i = 0; i < depth; ++i) {
        QDomElement record = doc.createElement(QStringLiteral("Object"));
        record.setAttribute(QStringLiteral("id"), i);
        record.appendChild(doc.createElement(QStringLiteral("Type"))).appendChild(doc.createTextNode(QStringLiteral("U8")));
        record.appendChild(doc.createElement(QStringLiteral("Value"))).appendChild(doc.createTextNode(QStringLiteral("1")));
        parent = parent.appendChild(record).toElement();
    }
    const COdictDataFile file{CDomDoc(doc), nullptr};

    // Read on a thread with a small stack: a walk that recursed once per level would overflow it.
    QList<COdictValueObject> read;
    bool ok = false;
    QScopedPointer<QThread> thread(QThread::create([&file, &read, &ok] { ok = file.objects(read); }));
    thread->setStackSize(256 * 1024);
    thread->start();
    QVERIFY(thread->wait(60000));
    QVERIFY(ok);
    QCOMPARE(read.size(), depth);
    QCOMPARE(QStringLiteral("%1..%2").arg(read.first().id()).arg(read.last().id()), QStringLiteral("0..%1").arg(depth - 1));
}

void tst_DataFile::otherVersionsLoad_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("loads");

    QTest::newRow("current") << "KiroDataFile" << "1.0.0" << true;
    QTest::newRow("older") << "KiroDataFile" << "0.9.0" << true;
    QTest::newRow("newer") << "KiroDataFile" << "3.1.4" << true;
    QTest::newRow("other document type") << "KiroObjectDictionary" << "1.0.0" << false;
}

void tst_DataFile::otherVersionsLoad()
{
    QFETCH(QString, type);
    QFETCH(QString, version);
    QFETCH(bool, loads);

    const QString path = m_dir.filePath("version.xml");
    QVERIFY(writeFile(path, documentText("<Object id=\"7\"><Type>U8</Type><Value>1</Value></Object>", type, version)));
    QList<COdictValueObject> read;
    QString error;
    QCOMPARE(COdictDataFile().loadValues(path, read, &error), loads);
    QCOMPARE(read.size(), loads ? 1 : 0);
    QCOMPARE(error.isEmpty(), loads);
}

void tst_DataFile::fileLayout()
{
    const auto object = makeObject<COdictValueObject>(0x2001u, QString(), NTypes::E_U8, 1);
    CXMLMetaData meta;
    meta.setAuthor("tester");
    const QString path = m_dir.filePath("layout.xml");
    COdictDataFile writer;
    writer.setMetaData(meta);
    QVERIFY(writer.saveValues(path, {object}, "Commissioning", "4.2.1"));

    COdictDataFile reader;
    QCOMPARE(reader.open(path, COdictDataFile::fileType, COdictDataFile::fileVersion), 0);
    const QDomElement root = reader.documentElement();
    QCOMPARE(root.tagName(), QStringLiteral("KiroDataFile"));
    QCOMPARE(root.attribute("version"), QStringLiteral("1.0.0"));
    const auto childTags = [](const QDomElement &parent) {
        QStringList tags;
        for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
            tags << e.tagName();
        return tags;
    };
    QCOMPARE(childTags(root), QStringList({"Header", "Application", "Data"}));
    const QDomElement record = root.firstChildElement("Data").firstChildElement("Object");
    QCOMPARE(childTags(record), QStringList({"Name", "Type", "Size", "ObjectUsage", "Value", "Unit", "Y-Unit"}));
    QCOMPARE(record.attribute("id") + ' ' + record.attribute("subid"), QStringLiteral("0x00002001 0xffffffff"));
    QCOMPARE(QStringList({reader.applicationName(), reader.applicationVersion(), reader.metaData().author()}),
             QStringList({"Commissioning", "4.2.1", "tester"}));
    QVERIFY(reader.metaData().date().isValid());
}

void tst_DataFile::refusals()
{
    COdictDataFile file;
    COdictValueObject value;
    COdictParameterObject parameter;
    QList<COdictValueObject> values;
    QList<COdictParameterObject> parameters;
    QMap<COdictObjectId, COdictParameterObject> map;

    // No document yet.
    QVERIFY(!file.setApplicationData("app", "1"));
    QVERIFY(!file.setObjects(values));
    QVERIFY(!file.objects(values));

    QVERIFY(!file.addObjectToElement(QDomElement(), value));
    QVERIFY(!file.addObjectToElement(QDomElement(), parameter));
    QVERIFY(!file.objectFromElement(value, QDomElement()));
    QVERIFY(!file.objectFromElement(parameter, QDomElement()));
    QVERIFY(!file.objectsFromElement(values, QDomElement()));
    QVERIFY(!file.objectsFromElement(parameters, QDomElement()));
    QVERIFY(!file.objectsFromElement(map, QDomElement()));

    QDomDocument dom;
    QDomElement foreign = dom.createElement("Param");
    dom.appendChild(foreign);
    QVERIFY(!file.objectFromElement(value, foreign));
    QVERIFY(file.objectsFromElement(values, foreign)); // nothing below: nothing failed
    QVERIFY(values.isEmpty());

    // A file without "Data" loads, but reports it.
    const QString path = m_dir.filePath("nodata.xml");
    QVERIFY(writeFile(path, "<KiroDataFile version=\"1.0.0\"><Header/></KiroDataFile>"));
    QString error;
    QVERIFY(!file.loadValues(path, values, &error));
    QVERIFY(error.contains("Data"));
    QVERIFY(!file.loadValues(m_dir.filePath("missing.xml"), values, &error));
}

QTEST_GUILESS_MAIN(tst_DataFile)
#include "tst_datafile.moc"

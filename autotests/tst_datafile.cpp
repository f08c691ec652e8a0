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

constexpr uint none = 0xFFFFFFFFu;

QString documentText(const QString &records, const QString &type = QStringLiteral("KiroDataFile"),
                     const QString &version = QStringLiteral("1.0.0"))
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<%1 version=\"%2\"><Header/>"
                          "<Application><Name>app</Name><Version>1.2</Version></Application>"
                          "<Data>%3</Data></%1>")
        .arg(type, version, records);
}

/// A data file holding the document \a text, taken over from a parsed DOM.
COdictDataFile *parsed(const QString &text)
{
    QDomDocument dom;
    if (!dom.setContent(text))
        return nullptr;
    return new COdictDataFile(CDomDoc(dom), nullptr);
}

void setStorage(COdictObject &object, NTypes::eTypes_t type, uint size)
{
    object.setDataType(type);
    object.setDataSize(size);
    const uint elements = size / CDataTypeParser::typeSize(type);
    object.setArrayLength(elements >= 2 ? elements : 1);
}

/// Id, name, type, size and array length of \a o as one text, "0x20/0x1 N U16 2x1".
QString shape(const COdictObject &o)
{
    return QStringList{QStringLiteral("0x%1/0x%2").arg(o.id(), 0, 16).arg(o.subId(), 0, 16), o.name(),
                       CDataTypeParser::typeToStr(o.dataType()), QStringLiteral("%1x%2").arg(o.dataSize()).arg(o.arrayLength())}
        .join(QLatin1Char(' '));
}

/// The usage and units of \a o, "usage 4 units 12/7".
QString usageAndUnits(const COdictObject &o)
{
    return QStringLiteral("usage %1 units %2/%3").arg(o.objectUsage()).arg(o.unit()).arg(o.yUnit());
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
    void erasedMemoryBecomesTerminator_data();
    void erasedMemoryBecomesTerminator();
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
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("readBack");

    const QByteArray bytes = QByteArray::fromHex("01020aff");
    QTest::newRow("U8") << int(NTypes::E_U8) << 1u << QVariant(200u) << "200" << QVariant(qulonglong(200));
    QTest::newRow("I32 minimum") << int(NTypes::E_I32) << 4u << QVariant(qlonglong(-2147483648LL))
                                 << "-2147483648" << QVariant(qlonglong(-2147483648LL));
    QTest::newRow("U32 maximum") << int(NTypes::E_U32) << 4u << QVariant(0xFFFFFFFFu) << "4294967295"
                                 << QVariant(qulonglong(0xFFFFFFFFu));
    QTest::newRow("F32") << int(NTypes::E_F32) << 4u << QVariant(1.5) << "1.5" << QVariant(1.5);
    QTest::newRow("F64") << int(NTypes::E_F64) << 8u << QVariant(-0.125) << "-0.125" << QVariant(-0.125);
    QTest::newRow("BOOL") << int(NTypes::E_BOOL) << 1u << QVariant(true) << "1" << QVariant(true);
    QTest::newRow("VISIBLE_STRING with markup") << int(NTypes::E_VSTRING) << 1u << QVariant("a <b> & c")
                                                << "a <b> & c" << QVariant("a <b> & c");
    QTest::newRow("XY") << int(NTypes::E_XY) << 8u << QVariant(QByteArray::fromHex("03000000fcffffff"))
                        << "3;-4" << QVariant(QByteArray::fromHex("03000000fcffffff"));
    QTest::newRow("U8 array") << int(NTypes::E_U8) << 4u << QVariant(bytes) << "01020aff" << QVariant(bytes);
    QTest::newRow("STRING array as bytes") << int(NTypes::E_STRING) << 5u << QVariant("hello") << "68656c6c6f"
                                           << QVariant(QByteArray("hello"));
    QTest::newRow("no value") << int(NTypes::E_U16) << 2u << QVariant() << "" << QVariant();
}

void tst_DataFile::valueRoundTrip()
{
    QFETCH(int, type);
    QFETCH(uint, size);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QFETCH(QVariant, readBack);

    COdictValueObject object;
    object.setId(COdictObjectId(0xABCDEF12u, 0x1Fu));
    object.setName("SPEED_LIMIT");
    setStorage(object, NTypes::eTypes_t(type), size);
    object.setObjectUsage(4u);
    object.setUnit(12u);
    object.setYUnit(7u);
    object.setCurrentValue(value);

    const QString path = m_dir.filePath("values.xml");
    COdictDataFile writer;
    QVERIFY(writer.saveValues(path, {object}, "tool", "2.0"));
    const QDomElement record = writer.documentElement().firstChildElement("Data").firstChildElement("Object");
    // Ids as eight lower-case hexadecimal digits.
    QCOMPARE(record.attribute("id"), QStringLiteral("0xabcdef12"));
    QCOMPARE(record.attribute("subid"), QStringLiteral("0x0000001f"));
    QCOMPARE(record.firstChildElement("Value").text(), text);

    QList<COdictValueObject> read;
    QString error;
    QVERIFY2(COdictDataFile().loadValues(path, read, &error), qPrintable(error));
    QCOMPARE(read.size(), 1);
    const COdictValueObject &back = read[0];
    QCOMPARE(shape(back), shape(object));
    QCOMPARE(usageAndUnits(back), QStringLiteral("usage 4 units 12/7"));
    QCOMPARE(back.currentValue(), readBack);
}

void tst_DataFile::erasedMemoryBecomesTerminator_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("encoded"); // valueToStr
    QTest::addColumn<QString>("stored");  // text in the file

    const QChar erased(0xFFFF);
    const QChar nul(0);
    QTest::newRow("USTRING erased tail") << int(NTypes::E_USTRING) << QString("abc") + erased + erased
                                         << QString("abc") + nul + nul << "abc";
    QTest::newRow("VISIBLE_STRING erased middle") << int(NTypes::E_VSTRING) << QString("ab") + erased + "cd"
                                                  << QString("ab") + erased + "cd" << "ab";
    QTest::newRow("CHAR_ARRAY control character") << int(NTypes::E_CHARARRAY) << QString("a\x01z")
                                                  << QString("a\x01z") << "az";
    QTest::newRow("UTF8_STRING unchanged") << int(NTypes::E_UTF8STRING) << QString::fromUtf8("Grüße")
                                           << QString::fromUtf8("Grüße") << QString::fromUtf8("Grüße");
}

void tst_DataFile::erasedMemoryBecomesTerminator()
{
    QFETCH(int, type);
    QFETCH(QString, value);
    QFETCH(QString, encoded);
    QFETCH(QString, stored);

    COdictValueObject object;
    object.setId(0x3000u);
    setStorage(object, NTypes::eTypes_t(type), CDataTypeParser::typeSize(NTypes::eTypes_t(type)));
    object.setCurrentValue(QVariant(value));

    COdictDataFile writer;
    QCOMPARE(writer.valueToStr(object.currentValue(), object), encoded);

    // The saved file must load again, whatever the text held.
    const QString path = m_dir.filePath("erased.xml");
    QVERIFY(writer.saveValues(path, {object}, "tool", "2.0"));
    QList<COdictValueObject> read;
    QString error;
    QVERIFY2(COdictDataFile().loadValues(path, read, &error), qPrintable(error));
    QCOMPARE(read.value(0).currentValue().toString(), stored);
}

void tst_DataFile::parameterRoundTrip_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<uint>("size");
    QTest::addColumn<ValueMap>("values");
    QTest::addColumn<ValueMap>("readBack");

    QTest::newRow("I32") << int(NTypes::E_I32) << 4u << ValueMap{{62, -5}, {0, 7}, {3, 0}}
                         << ValueMap{{62, qlonglong(-5)}, {0, qlonglong(7)}, {3, qlonglong(0)}};
    QTest::newRow("VISIBLE_STRING") << int(NTypes::E_VSTRING) << 1u << ValueMap{{0, "x"}, {5, "y z"}}
                                    << ValueMap{{0, "x"}, {5, "y z"}};
    QTest::newRow("U8 array") << int(NTypes::E_U8) << 3u << ValueMap{{2, QByteArray::fromHex("00ff10")}}
                              << ValueMap{{2, QByteArray::fromHex("00ff10")}};
}

void tst_DataFile::parameterRoundTrip()
{
    QFETCH(int, type);
    QFETCH(uint, size);
    QFETCH(ValueMap, values);
    QFETCH(ValueMap, readBack);

    COdictParameterObject object;
    object.setId(0x2200u);
    object.setName("GAIN");
    setStorage(object, NTypes::eTypes_t(type), size);
    object.setValues(values);

    const QString path = m_dir.filePath("parameters.xml");
    COdictDataFile writer;
    QVERIFY(writer.saveParameters(path, {object}, "tool", "2.0"));
    QStringList setNumbers;
    const QDomElement param = writer.documentElement().firstChildElement("Data").firstChildElement("Object")
                                  .firstChildElement("Param");
    for (QDomElement e = param.firstChildElement("Value"); !e.isNull(); e = e.nextSiblingElement("Value"))
        setNumbers << e.attribute("id");
    QStringList ascending;
    for (int set : values.keys())
        ascending << QString::number(set);
    QCOMPARE(setNumbers, ascending);

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

    const auto record = [](const QString &type, const QString &size, const QString &value) {
        return QStringLiteral("<Object id=\"0x20\" subid=\"0x1\"><Name>N</Name>%1%2%3</Object>")
            .arg(type.isNull() ? QString() : "<Type>" + type + "</Type>",
                 size.isNull() ? QString() : "<Size>" + size + "</Size>",
                 value.isNull() ? QString() : "<Value>" + value + "</Value>");
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

    const QScopedPointer<COdictDataFile> file(parsed(documentText(record)));
    QVERIFY(file);
    QList<COdictValueObject> read;
    QCOMPARE(file->objects(read), ok);
    QCOMPARE(read.size(), 1);
    QCOMPARE(::shape(read[0]), shape);
    QCOMPARE(read[0].currentValue(), value);
    QCOMPARE(usageAndUnits(read[0]), QStringLiteral("usage 0 units 0/0"));
}

void tst_DataFile::parameterRecords_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<ValueMap>("values");

    const auto entry = [](const QString &attribute) {
        return QStringLiteral("<Object><Type>U16</Type><Param><Value %1>9</Value></Param></Object>").arg(attribute);
    };
    QTest::newRow("set 0") << entry("id=\"0\"") << true << ValueMap{{0, qulonglong(9)}};
    QTest::newRow("set 62") << entry("id=\"62\"") << true << ValueMap{{62, qulonglong(9)}};
    QTest::newRow("set 63 skipped") << entry("id=\"63\"") << true << ValueMap();
    QTest::newRow("set -1 skipped") << entry("id=\"-1\"") << true << ValueMap();
    QTest::newRow("set not a number skipped") << entry("id=\"one\"") << true << ValueMap();
    QTest::newRow("no set number skipped") << entry("") << true << ValueMap();
    QTest::newRow("unknown type with values")
        << "<Object><Type>FOO</Type><Param><Value id=\"1\">5</Value></Param></Object>" << false << ValueMap();
    QTest::newRow("unknown type without values") << "<Object><Type>FOO</Type></Object>" << true << ValueMap();
    QTest::newRow("value too large") << "<Object><Type>I8</Type><Param><Value id=\"1\">200</Value>"
                                        "<Value id=\"2\">-3</Value></Param></Object>"
                                     << false << ValueMap{{2, qlonglong(-3)}};
    QTest::newRow("empty entry") << "<Object><Type>I8</Type><Param><Value id=\"4\"/></Param></Object>" << true
                                 << ValueMap{{4, QVariant()}};
    QTest::newRow("later entry of a set wins")
        << "<Object><Type>U8</Type><Param><Value id=\"4\">1</Value><Value id=\"4\">2</Value></Param></Object>"
        << true << ValueMap{{4, qulonglong(2)}};
}

void tst_DataFile::parameterRecords()
{
    QFETCH(QString, record);
    QFETCH(bool, ok);
    QFETCH(ValueMap, values);

    const QScopedPointer<COdictDataFile> file(parsed(documentText(record)));
    QVERIFY(file);
    QList<COdictParameterObject> read;
    QCOMPARE(file->objects(read), ok);
    QCOMPARE(read.size(), 1);
    QCOMPARE(read[0].values(), values);
}

void tst_DataFile::nestedAndRepeatedRecords()
{
    // Records nested in records or groups are read once each; of two records with one id the map
    // keeps the later.
    const QScopedPointer<COdictDataFile> file(parsed(documentText(
        "<Object id=\"1\"><Name>A</Name><Type>U8</Type><Param><Value id=\"0\">1</Value></Param>"
        "  <Object id=\"2\"><Name>B</Name><Type>U8</Type>"
        "    <Object id=\"3\"><Name>C</Name><Type>U8</Type></Object></Object>"
        "  <Group><Object id=\"4\"><Name>D</Name><Type>U8</Type></Object></Group></Object>"
        "<Object id=\"1\" subid=\"0x1\"><Name>E</Name><Type>U8</Type><Param><Value id=\"0\">2</Value></Param></Object>"
        "<Object id=\"1\"><Name>F</Name><Type>U8</Type><Param><Value id=\"0\">3</Value></Param></Object>")));
    QVERIFY(file);

    QList<COdictValueObject> values;
    QVERIFY(file->objects(values));
    QStringList names;
    for (const COdictValueObject &object : qAsConst(values))
        names << object.name();
    QCOMPARE(names, QStringList({"A", "B", "C", "D", "E", "F"}));
    QList<COdictParameterObject> list;
    QVERIFY(file->objects(list));
    QCOMPARE(list.size(), 6);

    QMap<COdictObjectId, COdictParameterObject> map;
    QVERIFY(file->objects(map));
    QCOMPARE(map.size(), 5);
    QCOMPARE(map.value(COdictObjectId(3u)).name(), QStringLiteral("C"));
    QCOMPARE(map.value(COdictObjectId(1u)).name(), QStringLiteral("F"));
    QCOMPARE(map.value(COdictObjectId(1u)).value(0), QVariant(qulonglong(3)));
    QCOMPARE(map.value(COdictObjectId(1u, 1u)).value(0), QVariant(qulonglong(2)));
}

void tst_DataFile::deepNestingDoesNotExhaustStack()
{
    const int depth = 10000;
    QString records;
    records.reserve(depth * 60);
    for (int i = 0; i < depth; ++i)
        records += QStringLiteral("<Object id=\"%1\"><Type>U8</Type><Value>1</Value>").arg(i);
    for (int i = 0; i < depth; ++i)
        records += QLatin1String("</Object>");
    const QString path = m_dir.filePath("deep.xml");
    QVERIFY(writeFile(path, documentText(records)));
    COdictDataFile file;
    QCOMPARE(file.open(path, COdictDataFile::fileType, COdictDataFile::fileVersion), 0);

    // Read on a thread with a small stack: a walk that recursed once per level would overflow it.
    QList<COdictValueObject> read;
    bool ok = false;
    QScopedPointer<QThread> thread(QThread::create([&file, &read, &ok] { ok = file.objects(read); }));
    thread->setStackSize(256 * 1024);
    thread->start();
    QVERIFY(thread->wait(60000));
    QVERIFY(ok);
    QCOMPARE(read.size(), depth);
    QCOMPARE(read.first().id(), 0u);
    QCOMPARE(read.last().id(), uint(depth - 1));
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
    COdictValueObject object;
    object.setId(0x2001u);
    setStorage(object, NTypes::E_U8, 1);
    CXMLMetaData meta;
    meta.setAuthor("tester");
    const QString path = m_dir.filePath("layout.xml");
    COdictDataFile writer;
    writer.setMetaData(meta);
    QVERIFY(writer.saveValues(path, {object}, "Commissioning", "4.2.1"));

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QDomDocument dom;
    QVERIFY(dom.setContent(&file));
    const QDomElement root = dom.documentElement();
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
    QCOMPARE(record.attribute("id"), QStringLiteral("0x00002001"));
    QCOMPARE(record.attribute("subid"), QStringLiteral("0xffffffff"));

    const COdictDataFile reader(CDomDoc(dom), nullptr);
    QCOMPARE(reader.applicationName(), QStringLiteral("Commissioning"));
    QCOMPARE(reader.applicationVersion(), QStringLiteral("4.2.1"));
    QCOMPARE(reader.metaData().author(), QStringLiteral("tester"));
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

#include "CDataTypeParser.h"
#include "CPath.h"
#include "CStr.h"
#include "CUnitParser.h"
#include "CVariant.h"

#include <QDataStream>
#include <QDebug>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QtTest>

#include <cmath>

char *toString(const CVariant &value)
{
    QString text;
    QDebug(&text) << value;
    return qstrdup(text.toUtf8().constData());
}

namespace {

NTypes::eTypes_t T(int type)
{
    return NTypes::eTypes_t(type);
}

} // namespace

class tst_PlatformCore : public QObject
{
    Q_OBJECT

private slots:
    void parseAndFormat_data();
    void parseAndFormat();
    void fromBytes_data();
    void fromBytes();
    void numericAccessors_data();
    void numericAccessors();
    void equality_data();
    void equality();
    void fromVariant_data();
    void fromVariant();
    void stream_data();
    void stream();
    void garbageStreamLeavesNull();
    void typeTable_data();
    void typeTable();
    void typeLimits_data();
    void typeLimits();
    void unknownTypes();
    void rotaryUnits_data();
    void rotaryUnits();
    void unitTableConsistent();
    void versions_data();
    void versions();
    void programdataPath();
};

void tst_PlatformCore::parseAndFormat_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("text"); // toStr; empty for a null value

    auto ok = [](const char *name, int type, const QString &in, const QString &out) { QTest::newRow(name) << type << in << out; };
    auto bad = [](const char *name, int type, const QString &in) { QTest::newRow(name) << type << in << QString(); };

    ok("bool 1", NTypes::E_BOOL, "1", "1");
    ok("bool true", NTypes::E_BOOL, " True ", "1");
    ok("bool FALSE", NTypes::E_BOOL, "FALSE", "0");
    bad("bool 2", NTypes::E_BOOL, "2");
    bad("bool empty", NTypes::E_BOOL, "");

    ok("u8 hex", NTypes::E_U8, "0xFF", "255");
    ok("u8 upper prefix", NTypes::E_U8, "0X1f", "31");
    ok("u8 blanks", NTypes::E_U8, " \t42 ", "42");
    ok("u8 minus zero", NTypes::E_U8, "-0", "0");
    bad("u8 over", NTypes::E_U8, "256");
    bad("u8 negative", NTypes::E_U8, "-1");
    bad("u8 inner blank", NTypes::E_U8, "4 2");
    bad("u8 bare prefix", NTypes::E_U8, "0x");
    bad("u8 float", NTypes::E_U8, "1.0");
    ok("i8 min", NTypes::E_I8, "-128", "-128");
    ok("i8 plus", NTypes::E_I8, "+5", "5");
    ok("i8 hex max", NTypes::E_I8, "0x7F", "127");
    ok("i8 negative hex", NTypes::E_I8, "-0x80", "-128");
    bad("i8 hex over", NTypes::E_I8, "0x80");
    bad("i8 under", NTypes::E_I8, "-129");
    bad("i16 hex pattern", NTypes::E_I16, "0xFFFF");
    ok("u64 max", NTypes::E_U64, "0xFFFFFFFFFFFFFFFF", "18446744073709551615");
    bad("u64 over", NTypes::E_U64, "18446744073709551616");
    bad("u64 hex over", NTypes::E_U64, "0x10000000000000000");
    ok("i64 min", NTypes::E_I64, "-9223372036854775808", "-9223372036854775808");
    bad("i64 over", NTypes::E_I64, "9223372036854775808");
    bad("i64 under", NTypes::E_I64, "-9223372036854775809");
    bad("time over", NTypes::E_TIME, "4294967296");
    ok("time of day 48 bits", NTypes::E_TIME_OF_DAY, "281474976710655", "281474976710655");
    bad("time of day over", NTypes::E_TIME_OF_DAY, "0x1000000000000");
    ok("time difference hex", NTypes::E_TIME_DIFF, "0x123456789ABC", "20015998343868");

    ok("f32 shortest", NTypes::E_F32, "0.1", "0.1");
    ok("f32 rounds", NTypes::E_F32, "16777217", "16777216");
    ok("f32 exponent", NTypes::E_F32, "-2e-3", "-0.002");
    ok("f32 inf", NTypes::E_F32, "-inf", "-inf");
    bad("f32 over", NTypes::E_F32, "1e39");
    bad("f32 comma", NTypes::E_F32, "1,5");
    ok("f64 shortest", NTypes::E_F64, "0.1", "0.1");
    ok("f64 denormal", NTypes::E_F64, "5e-324", "5e-324");
    ok("f64 minus zero", NTypes::E_F64, "-0", "-0");
    ok("f64 nan", NTypes::E_F64, "nan", "nan");
    bad("f64 over", NTypes::E_F64, "1e309");
    bad("f64 hex", NTypes::E_F64, "0x10");

    ok("string keeps blanks", NTypes::E_STRING, " padded ", " padded ");
    bad("string empty", NTypes::E_STRING, "");
    ok("ustring", NTypes::E_USTRING, QString::fromUtf8("äöü€"), QString::fromUtf8("äöü€"));
    ok("utf8 string", NTypes::E_UTF8STRING, QString::fromUtf8("°C"), QString::fromUtf8("°C"));

    ok("octets", NTypes::E_OCTETS, "0102FF", "0102ff");
    ok("octets prefix", NTypes::E_OCTETS, "0x0A0B", "0a0b");
    ok("octets blanks", NTypes::E_OCTETS, "01 02\n03", "010203");
    bad("octets odd", NTypes::E_OCTETS, "123");
    bad("octets not hex", NTypes::E_OCTETS, "zz");
    ok("ds402 u16 array", NTypes::E_DS402_U16ARRAY, "01000200", "01000200");
    ok("struct", NTypes::E_STRUCT, "ab", "ab");

    ok("xy", NTypes::E_XY, "1;2", "1;2");
    ok("xy negative and hex", NTypes::E_XY, " -5 ; 0x10 ", "-5;16");
    ok("xy limits", NTypes::E_XY, "-2147483648;2147483647", "-2147483648;2147483647");
    bad("xy over", NTypes::E_XY, "2147483648;0");
    bad("xy one part", NTypes::E_XY, "1");
    bad("xy three parts", NTypes::E_XY, "1;2;3");
    bad("xy empty parts", NTypes::E_XY, ";");

    bad("unknown type", NTypes::E_UNKNOWN, "5");
}

void tst_PlatformCore::parseAndFormat()
{
    QFETCH(int, type);
    QFETCH(QString, input);
    QFETCH(QString, text);

    const CVariant value(input, T(type));
    QCOMPARE(value.type(), T(type));
    QCOMPARE(value.isNull(), text.isEmpty());
    QCOMPARE(value.count(), 1);
    QCOMPARE(value.toStr(), text);
    // What toStr writes, the text constructor reads back to the same value.
    QCOMPARE(CVariant(value.toStr(), T(type)), value);
}

void tst_PlatformCore::fromBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text"); // toStr; empty for a null value
    QTest::addColumn<QByteArray>("written"); // toByteArray in hex, when it differs from the input

    auto row = [](const char *name, const char *hex, int type, int count, const char *text, const char *written = nullptr) {
        QTest::newRow(name) << QByteArray::fromHex(hex) << type << count << QString::fromUtf8(text)
                            << QByteArray(written ? written : hex);
    };
    row("u16 array", "0100ffff", NTypes::E_U16, 2, "0100ffff");
    row("array padded with zeros", "01", NTypes::E_U16, 3, "010000000000", "010000000000");
    row("array cut to count", "010002000300", NTypes::E_U16, 2, "01000200", "01000200");
    row("octet array", "0a0b0c", NTypes::E_OCTETS, 3, "0a0b0c");
    row("i16 scalar", "feff", NTypes::E_I16, 1, "-2");
    row("time of day", "060504030201", NTypes::E_TIME_OF_DAY, 1, "1108152157446");
    row("f32 scalar", "0000c03f", NTypes::E_F32, 1, "1.5");
    row("f64 scalar", "000000000000f0bf", NTypes::E_F64, 1, "-1");
    row("bool", "02", NTypes::E_BOOL, 1, "1", "01");
    row("xy", "01000000feffffff", NTypes::E_XY, 1, "1;-2");
    row("string stops at nul", "41420000", NTypes::E_STRING, 1, "AB", "4142");
    row("wchar array", "4100e400", NTypes::E_WCHARARRAY, 1, "Aä");
    row("utf8 string", "c2b043", NTypes::E_UTF8STRING, 1, "°C");
    row("too short for i32", "010203", NTypes::E_I32, 1, nullptr);
    row("too short for xy", "01000000", NTypes::E_XY, 1, nullptr);
    row("empty", "", NTypes::E_U16, 2, nullptr);
    row("only nul text", "00", NTypes::E_CHARARRAY, 1, nullptr);
    row("count zero", "0100", NTypes::E_U16, 0, nullptr);
    row("unknown type", "0100", NTypes::E_UNKNOWN, 1, nullptr);
}

void tst_PlatformCore::fromBytes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, type);
    QFETCH(int, count);
    QFETCH(QString, text);
    QFETCH(QByteArray, written);

    const CVariant value(bytes, T(type), count);
    QCOMPARE(value.isNull(), text.isEmpty());
    QCOMPARE(value.toStr(), text);
    if (value.isNull()) {
        QVERIFY(value.toByteArray().isEmpty());
        return;
    }
    QCOMPARE(value.toByteArray().toHex(), written);
    QCOMPARE(value.count(), count);
    QCOMPARE(value.isArray(), count > 1);
    QCOMPARE(CVariant(value.toByteArray(), T(type), count), value);
}

void tst_PlatformCore::numericAccessors_data()
{
    QTest::addColumn<CVariant>("value");
    QTest::addColumn<QString>("results"); // of toI64 toU64 toF64 and whether toBool reads; "-" when refused

    QTest::newRow("i8 negative") << CVariant("-5", NTypes::E_I8) << "-5 - -5 ok";
    QTest::newRow("u64 max") << CVariant("18446744073709551615", NTypes::E_U64) << "- 18446744073709551615 1.8446744073709552e+19 ok";
    QTest::newRow("f64 rounds") << CVariant("2.5", NTypes::E_F64) << "3 3 2.5 ok";
    QTest::newRow("f64 huge") << CVariant("-1e300", NTypes::E_F64) << "- - -1.0000000000000001e+300 ok";
    QTest::newRow("bool") << CVariant("true", NTypes::E_BOOL) << "1 1 1 ok";
    QTest::newRow("numeric text") << CVariant("0x10", NTypes::E_STRING) << "16 16 16 -";
    QTest::newRow("float text") << CVariant("1.5", NTypes::E_STRING) << "- - 1.5 -";
    QTest::newRow("word text") << CVariant("abc", NTypes::E_STRING) << "- - - -";
    QTest::newRow("xy") << CVariant("1;2", NTypes::E_XY) << "- - - -";
    QTest::newRow("null") << CVariant(NTypes::E_U8) << "- - - -";
    QTest::newRow("array") << CVariant(QByteArray(4, '\1'), NTypes::E_U16, 2) << "- - - -";
}

void tst_PlatformCore::numericAccessors()
{
    QFETCH(CVariant, value);
    QFETCH(QString, results);

    // A refused conversion also answers 0.
    QStringList got;
    const auto add = [&got](bool ok, const QString &result) {
        got << (ok ? result : result == QLatin1String("0") ? QStringLiteral("-") : QStringLiteral("refused, yet ") + result);
    };
    // The flag starts opposite to the expectation, so one left untouched shows.
    const QStringList want = results.split(QLatin1Char(' '));
    bool ok = false;
    const auto prime = [&want, &ok](int i) { ok = want.value(i) == QLatin1String("-"); };
    prime(0);
    const qint64 i64 = value.toI64(&ok);
    add(ok, QString::number(i64));
    prime(1);
    const quint64 u64 = value.toU64(&ok);
    add(ok, QString::number(u64));
    prime(2);
    const double f64 = value.toF64(&ok);
    add(ok, QString::number(f64, 'g', 17));
    prime(3);
    value.toBool(&ok);
    got << (ok ? QStringLiteral("ok") : QStringLiteral("-"));
    QCOMPARE(got.join(QLatin1Char(' ')), results);
}

void tst_PlatformCore::equality_data()
{
    QTest::addColumn<CVariant>("a");
    QTest::addColumn<CVariant>("b");
    QTest::addColumn<bool>("equal");

    QTest::newRow("hex and decimal") << CVariant("0x10", NTypes::E_U8) << CVariant("16", NTypes::E_U8) << true;
    QTest::newRow("other type") << CVariant("5", NTypes::E_U8) << CVariant("5", NTypes::E_U16) << false;
    QTest::newRow("both null") << CVariant(NTypes::E_U8) << CVariant("", NTypes::E_U8) << true;
    QTest::newRow("nulls of other types") << CVariant(NTypes::E_U8) << CVariant(NTypes::E_U16) << false;
    QTest::newRow("null and zero") << CVariant(NTypes::E_U8) << CVariant("0", NTypes::E_U8) << false;
    QTest::newRow("nan") << CVariant("nan", NTypes::E_F64) << CVariant("nan", NTypes::E_F64) << true;
    QTest::newRow("signed zeros") << CVariant("0", NTypes::E_F64) << CVariant("-0", NTypes::E_F64) << true;
    QTest::newRow("f32 from double") << CVariant("0.1", NTypes::E_F32) << CVariant::fromF64(0.1, NTypes::E_F32) << true;
    QTest::newRow("close doubles") << CVariant("0.1", NTypes::E_F64) << CVariant("0.10000000000000002", NTypes::E_F64) << false;
    QTest::newRow("case of text") << CVariant("a", NTypes::E_STRING) << CVariant("A", NTypes::E_STRING) << false;
    QTest::newRow("array and scalar") << CVariant(QByteArray("\1\2", 2), NTypes::E_OCTETS, 2)
                                      << CVariant(QByteArray("\1\2", 2), NTypes::E_OCTETS, 1) << false;
    QTest::newRow("arrays") << CVariant(QByteArray("\1\0\2\0", 4), NTypes::E_U16, 2)
                            << CVariant(QByteArray("\1\0\2\0\3\0", 6), NTypes::E_U16, 2) << true;
}

void tst_PlatformCore::equality()
{
    QFETCH(CVariant, a);
    QFETCH(CVariant, b);
    QFETCH(bool, equal);

    QCOMPARE(a == b, equal);
    QCOMPARE(b == a, equal);
    QCOMPARE(a != b, !equal);
}

void tst_PlatformCore::fromVariant_data()
{
    QTest::addColumn<QVariant>("input");
    QTest::addColumn<int>("type");
    QTest::addColumn<CVariant>("expected");

    QTest::newRow("invalid") << QVariant() << int(NTypes::E_U16) << CVariant(NTypes::E_U16);
    QTest::newRow("int") << QVariant(42) << int(NTypes::E_U8) << CVariant("42", NTypes::E_U8);
    QTest::newRow("int over") << QVariant(256) << int(NTypes::E_U8) << CVariant(NTypes::E_U8);
    QTest::newRow("u64 max") << QVariant(qulonglong(~0ULL)) << int(NTypes::E_U64) << CVariant("0xFFFFFFFFFFFFFFFF", NTypes::E_U64);
    QTest::newRow("bool") << QVariant(true) << int(NTypes::E_BOOL) << CVariant("1", NTypes::E_BOOL);
    QTest::newRow("int to bool") << QVariant(2) << int(NTypes::E_BOOL) << CVariant(NTypes::E_BOOL);
    QTest::newRow("whole double") << QVariant(3.0) << int(NTypes::E_I32) << CVariant("3", NTypes::E_I32);
    QTest::newRow("fraction to int") << QVariant(3.5) << int(NTypes::E_I32) << CVariant(NTypes::E_I32);
    QTest::newRow("double to f32") << QVariant(0.1) << int(NTypes::E_F32) << CVariant("0.1", NTypes::E_F32);
    QTest::newRow("number to text") << QVariant(12) << int(NTypes::E_VSTRING) << CVariant("12", NTypes::E_VSTRING);
    QTest::newRow("text") << QVariant(QStringLiteral("0x10")) << int(NTypes::E_U16) << CVariant("16", NTypes::E_U16);
    QTest::newRow("bytes scalar") << QVariant(QByteArray("\x34\x12", 2)) << int(NTypes::E_U16) << CVariant("4660", NTypes::E_U16);
    QTest::newRow("bytes array") << QVariant(QByteArray("\1\0\2\0", 4)) << int(NTypes::E_U16)
                                 << CVariant(QByteArray("\1\0\2\0", 4), NTypes::E_U16, 2);
    QTest::newRow("bytes odd size") << QVariant(QByteArray("\1\2\3", 3)) << int(NTypes::E_U16) << CVariant(NTypes::E_U16);
    QTest::newRow("bytes of byte type") << QVariant(QByteArray("\1\2\3", 3)) << int(NTypes::E_OCTETS) << CVariant("010203", NTypes::E_OCTETS);
    QTest::newRow("bytes of text") << QVariant(QByteArray("ab")) << int(NTypes::E_STRING) << CVariant("ab", NTypes::E_STRING);
    QTest::newRow("other CVariant") << QVariant::fromValue(CVariant("7", NTypes::E_U8)) << int(NTypes::E_I64) << CVariant("7", NTypes::E_I64);
}

void tst_PlatformCore::fromVariant()
{
    QFETCH(QVariant, input);
    QFETCH(int, type);
    QFETCH(CVariant, expected);

    QCOMPARE(CVariant::fromVariant(input, T(type)), expected);
}

void tst_PlatformCore::stream_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<CVariant>("value"); // what is read; null when the record is refused

    const auto streamed = [](const CVariant &value) {
        QByteArray buffer;
        QDataStream out(&buffer, QIODevice::WriteOnly);
        out << value;
        return buffer;
    };
    for (const CVariant &value : {CVariant(), CVariant(NTypes::E_U16), CVariant("1", NTypes::E_BOOL),
                                  CVariant("-9223372036854775808", NTypes::E_I64), CVariant("18446744073709551615", NTypes::E_U64),
                                  CVariant("0.1", NTypes::E_F32), CVariant(QString::fromUtf8("€uro"), NTypes::E_USTRING),
                                  CVariant("00ff00", NTypes::E_OCTETS), CVariant("-1;1", NTypes::E_XY),
                                  CVariant(QByteArray(12, '\x7f'), NTypes::E_I32, 3)}) {
        QTest::newRow(qPrintable(QStringLiteral("round trip %1 %2").arg(CDataTypeParser::typeToStr(value.type()), value.toStr())))
            << streamed(value) << true << value;
    }

    // Records written by hand: type number, count, stored QVariant.
    const auto record = [](quint32 type, qint32 count, const QVariant &stored) {
        QByteArray buffer;
        QDataStream out(&buffer, QIODevice::WriteOnly);
        out << type << count << stored;
        return buffer;
    };
    const quint32 u8 = NTypes::E_U8;
    QTest::newRow("unknown type number") << record(99u, 1, QVariant(qulonglong(1))) << false << CVariant();
    QTest::newRow("count zero") << record(u8, 0, QVariant(qulonglong(1))) << false << CVariant();
    QTest::newRow("wrong storage") << record(u8, 1, QVariant(QStringLiteral("x"))) << false << CVariant();
    QTest::newRow("out of range") << record(u8, 1, QVariant(qulonglong(300))) << false << CVariant();
    QTest::newRow("array size") << record(NTypes::E_U16, 3, QVariant(QByteArray(4, '\0'))) << false << CVariant();
    QTest::newRow("short xy") << record(NTypes::E_XY, 1, QVariant(QByteArray(4, '\0'))) << false << CVariant();
}

void tst_PlatformCore::stream()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, ok);
    QFETCH(CVariant, value);

    QDataStream in(bytes);
    CVariant read("1", NTypes::E_U8);
    in >> read;
    QCOMPARE(in.status(), ok ? QDataStream::Ok : QDataStream::ReadCorruptData);
    QVERIFY(!ok || in.atEnd());
    QCOMPARE(read, value);

    // Every cut-off record is refused as well.
    for (int length = 0; length < bytes.size(); ++length) {
        QDataStream cut(bytes.left(length));
        CVariant partial("1", NTypes::E_U8);
        cut >> partial;
        QVERIFY2(cut.status() != QDataStream::Ok && partial.isNull(), qPrintable(QString::number(length)));
    }
}

void tst_PlatformCore::garbageStreamLeavesNull()
{
    // Random bytes: must not crash, and a failed read leaves a null value. QVariant complains
    // about the invalid type ids it finds; that noise is muted here.
    const QtMessageHandler previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QRandomGenerator random(1234);
    int failures = 0;
    for (int i = 0; i < 300; ++i) {
        QByteArray garbage(int(random.bounded(40)), '\0');
        for (char &c : garbage)
            c = char(random.bounded(256));
        QDataStream in(garbage);
        CVariant read("1", NTypes::E_U8);
        in >> read;
        if (in.status() != QDataStream::Ok && !read.isNull())
            failures += 1;
    }
    qInstallMessageHandler(previous);
    QCOMPARE(failures, 0);
}

void tst_PlatformCore::typeTable_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("enumName");

    const struct {
        const char *text;
        int size;
        const char *enumName;
    } table[] = {
        {"UNKNOWN", 0, "E_UNKNOWN"}, {"BOOL", 1, "E_BOOL"}, {"U8", 1, "E_U8"}, {"I8", 1, "E_I8"},
        {"U16", 2, "E_U16"}, {"I16", 2, "E_I16"}, {"U32", 4, "E_U32"}, {"I32", 4, "E_I32"},
        {"U64", 8, "E_U64"}, {"I64", 8, "E_I64"}, {"F32", 4, "E_F32"}, {"F64", 8, "E_F64"},
        {"STRING", 1, "E_STRING"}, {"USTRING", 2, "E_USTRING"}, {"VISIBLE_STRING", 1, "E_VSTRING"},
        {"OCTET_STRING", 1, "E_OCTETS"}, {"UTF8_STRING", 1, "E_UTF8STRING"}, {"CHAR_ARRAY", 1, "E_CHARARRAY"},
        {"WCHAR_ARRAY", 2, "E_WCHARARRAY"}, {"DOMAIN", 1, "E_DOMAIN"}, {"TIME_OF_DAY", 6, "E_TIME_OF_DAY"},
        {"TIME_DIFFERENCE", 6, "E_TIME_DIFF"}, {"RECORD", 1, "E_RECORD"}, {"TIME", 4, "E_TIME"},
        {"XY", 8, "E_XY"}, {"RAW", 1, "E_RAW"}, {"DS402_RECORD", 1, "E_DS402_RECORD"},
        {"DS402_U16_ARRAY", 2, "E_DS402_U16ARRAY"}, {"DS402_U32_ARRAY", 4, "E_DS402_U32ARRAY"},
        {"DS402_I32_ARRAY", 4, "E_DS402_I32ARRAY"}, {"DS402_I16_ARRAY", 2, "E_DS402_I16ARRAY"},
        {"DS402_F32_ARRAY", 4, "E_DS402_F32ARRAY"}, {"STRUCT", 1, "E_STRUCT"},
    };
    static_assert(sizeof(table) / sizeof(table[0]) == NTypes::E_TYPE_COUNT, "one row per type");
    for (int t = 0; t < int(NTypes::E_TYPE_COUNT); ++t) {
        QTest::newRow(table[t].text) << t << QString::fromLatin1(table[t].text) << table[t].size
                                     << QString::fromLatin1(table[t].enumName);
    }
}

void tst_PlatformCore::typeTable()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    QFETCH(int, size);
    QFETCH(QString, enumName);

    QCOMPARE(CDataTypeParser::typeToStr(T(type)), text);
    QCOMPARE(int(CDataTypeParser::typeSize(T(type))), size);
    QCOMPARE(CDataTypeParser::typeToEnum(T(type)), enumName);
    QCOMPARE(CDataTypeParser::strToType(text), T(type));
    QCOMPARE(CDataTypeParser::strToType(text.toLower()), T(type));
    QCOMPARE(CDataTypeParser::strToType(QLatin1Char(' ') + text + QLatin1Char('\t')), T(type));
}

void tst_PlatformCore::typeLimits_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("min");
    QTest::addColumn<QString>("max");

    QTest::newRow("BOOL") << int(NTypes::E_BOOL) << "0" << "1";
    QTest::newRow("U8") << int(NTypes::E_U8) << "0" << "255";
    QTest::newRow("I8") << int(NTypes::E_I8) << "-128" << "127";
    QTest::newRow("I32") << int(NTypes::E_I32) << "-2147483648" << "2147483647";
    QTest::newRow("U64") << int(NTypes::E_U64) << "0" << "18446744073709551615";
    QTest::newRow("I64") << int(NTypes::E_I64) << "-9223372036854775808" << "9223372036854775807";
    QTest::newRow("F32") << int(NTypes::E_F32) << "-3.4028235e+38" << "3.4028235e+38";
    QTest::newRow("F64") << int(NTypes::E_F64) << "-1.7976931348623157e+308" << "1.7976931348623157e+308";
    QTest::newRow("TIME") << int(NTypes::E_TIME) << "0" << "4294967295";
    QTest::newRow("TIME_OF_DAY") << int(NTypes::E_TIME_OF_DAY) << "" << "";
    QTest::newRow("XY") << int(NTypes::E_XY) << "" << "";
    QTest::newRow("UNKNOWN") << int(NTypes::E_UNKNOWN) << "" << "";
}

void tst_PlatformCore::typeLimits()
{
    QFETCH(int, type);
    QFETCH(QString, min);
    QFETCH(QString, max);

    const CVariant low = CDataTypeParser::minTypeValue(T(type));
    const CVariant high = CDataTypeParser::maxTypeValue(T(type));
    QCOMPARE(low.type(), T(type));
    QCOMPARE(high.type(), T(type));
    QCOMPARE(low.toStr(), min);
    QCOMPARE(high.toStr(), max);
    QCOMPARE(CVariant(min, T(type)), low);
    QCOMPARE(CVariant(max, T(type)), high);
}

void tst_PlatformCore::unknownTypes()
{
    QCOMPARE(CDataTypeParser::strToType(QStringLiteral("U17")), NTypes::E_UNKNOWN);
    QCOMPARE(CDataTypeParser::strToType(QString()), NTypes::E_UNKNOWN);
    QCOMPARE(CDataTypeParser::typeToStr(T(99)), QStringLiteral("UNKNOWN"));
    QCOMPARE(CDataTypeParser::typeToEnum(T(99)), QStringLiteral("E_UNKNOWN"));
    QCOMPARE(int(CDataTypeParser::typeSize(T(99))), 0);
    QVERIFY(CDataTypeParser::maxTypeValue(T(99)).isNull());
}

void tst_PlatformCore::rotaryUnits_data()
{
    QTest::addColumn<QString>("rotary");
    QTest::addColumn<QString>("linear");

    QTest::newRow("revolution") << "rev" << "mm";
    QTest::newRow("speed") << "rpm" << "mm/s";
    QTest::newRow("acceleration") << "rpm/s" << QString::fromUtf8("mm/s²");
    QTest::newRow("torque") << "Nm" << "N";
    QTest::newRow("torque constant") << "Nm/A" << "N/A";
    QTest::newRow("inertia") << QString::fromUtf8("kgm²") << "kg";
    QTest::newRow("resolution") << "inc/rev" << "inc/mm";
    QTest::newRow("voltage constant") << "V/krpm" << "Vs/m";
}

void tst_PlatformCore::rotaryUnits()
{
    QFETCH(QString, rotary);
    QFETCH(QString, linear);

    const unsigned int code = CUnitParser::textToUnit(rotary);
    QVERIFY(CUnitParser::isKnown(code));
    QVERIFY(CUnitParser::isRotary(code));
    QCOMPARE(CUnitParser::unitText(CUnitParser::toLinear(code)), linear);
    QCOMPARE(CUnitParser::toLinear(code), CUnitParser::textToUnit(linear));
}

void tst_PlatformCore::unitTableConsistent()
{
    int known = 0;
    for (unsigned int code = 1; code < 1000; ++code) {
        const QString text = CUnitParser::unitText(code);
        if (!CUnitParser::isKnown(code)) {
            QVERIFY(text.isEmpty());
            QCOMPARE(CUnitParser::toLinear(code), code);
            continue;
        }
        ++known;
        QVERIFY2(!text.isEmpty(), qPrintable(QString::number(code)));
        QCOMPARE(CUnitParser::textToUnit(text), code); // texts are unique
        const unsigned int linear = CUnitParser::toLinear(code);
        if (CUnitParser::isRotary(code)) {
            QVERIFY(linear != code);
            QVERIFY(CUnitParser::isKnown(linear));
            QVERIFY(!CUnitParser::isRotary(linear));
            QVERIFY(!CUnitParser::unitText(linear).isEmpty());
        } else {
            QCOMPARE(linear, code);
        }
    }
    QVERIFY(known >= 25);

    for (unsigned int none : {0u, 0xFFFFFFFFu}) {
        QVERIFY(CUnitParser::isKnown(none));
        QVERIFY(!CUnitParser::isRotary(none));
        QVERIFY(CUnitParser::unitText(none).isEmpty());
        QCOMPARE(CUnitParser::toLinear(none), none);
    }
    QCOMPARE(CUnitParser::textToUnit(QString()), 0xFFFFFFFFu);
    QCOMPARE(CUnitParser::textToUnit(QStringLiteral("RPM")), 0xFFFFFFFFu); // exact match only
}

void tst_PlatformCore::versions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<quint32>("value");
    QTest::addColumn<QString>("written"); // versionToString of the value

    QTest::newRow("full") << "1.28.42" << true << 0x011C002Au << "1.28.42";
    QTest::newRow("main only") << "1" << true << 0x01000000u << "1.0.0";
    QTest::newRow("limits, written unsigned") << "255.255.65535" << true << 0xFFFFFFFFu << "255.255.65535";
    QTest::newRow("high bits") << "128.128.0" << true << 0x80800000u << "128.128.0";
    QTest::newRow("blanks") << " 2.3.4 " << true << 0x02030004u << "2.3.4";
    QTest::newRow("main over") << "256.0.0" << false << 0u << "0.0.0";
    QTest::newRow("minor over") << "1.256" << false << 0u << "0.0.0";
    QTest::newRow("build over") << "1.2.65536" << false << 0u << "0.0.0";
    QTest::newRow("four parts") << "1.2.3.4" << false << 0u << "0.0.0";
    QTest::newRow("empty") << "" << false << 0u << "0.0.0";
    QTest::newRow("empty part") << "1..2" << false << 0u << "0.0.0";
    QTest::newRow("sign") << "+1.2.3" << false << 0u << "0.0.0";
}

void tst_PlatformCore::versions()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(quint32, value);
    QFETCH(QString, written);

    bool parsed = !ok;
    QCOMPARE(CStr::stringToVersion(text, &parsed).value, value);
    QCOMPARE(parsed, ok);
    QCOMPARE(CStr::versionToString(NTypes::uVersion_t(value)), written);
}

void tst_PlatformCore::programdataPath()
{
    const QString standard = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/krOdict");
    QCOMPARE(CPath::programdataPath(), standard);
    QCOMPARE(CPath::programdataPath(true), standard + QLatin1Char('/'));

    CPath::setProgramdataPath(QStringLiteral("/tmp/kr"));
    QCOMPARE(CPath::programdataPath(), QStringLiteral("/tmp/kr"));
    QCOMPARE(CPath::programdataPath(true), QStringLiteral("/tmp/kr/"));
    CPath::setProgramdataPath(QStringLiteral("/tmp/kr/"));
    QCOMPARE(CPath::programdataPath(true), QStringLiteral("/tmp/kr/"));

    CPath::setProgramdataPath(QString());
    QCOMPARE(CPath::programdataPath(), standard);
}

QTEST_GUILESS_MAIN(tst_PlatformCore)
#include "tst_platform_core.moc"

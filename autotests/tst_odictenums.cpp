#include "COdictObjectBitSet.h"
#include "COdictObjectEnum.h"

#include <QDataStream>
#include <QtTest>

namespace {

template <typename T>
QString debugText(const T &value)
{
    QString text;
    QDebug(&text) << value;
    return text;
}

template <typename T>
QByteArray bigEndian(const T &value)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::BigEndian);
    out << value;
    return bytes;
}

COdictObjectEnum makeEnum(const QList<QPair<long long, QString>> &entries)
{
    COdictObjectEnum enumeration;
    for (const auto &entry : entries)
        enumeration.insert(entry.first, entry.second);
    return enumeration;
}

COdictObjectBitSet makeBitSet(const QList<QPair<uint, QString>> &entries)
{
    COdictObjectBitSet bitSet;
    for (const auto &entry : entries)
        bitSet.insert(entry.first, entry.second);
    return bitSet;
}

} // namespace

char *toString(const COdictObjectEnum &enumeration)
{
    return qstrdup(debugText(enumeration).toUtf8().constData());
}

char *toString(const COdictObjectBitSet &bitSet)
{
    return qstrdup(debugText(bitSet).toUtf8().constData());
}

class tst_OdictEnums : public QObject
{
    Q_OBJECT

private slots:
    void enumName_data();
    void enumName();
    void enumValue_data();
    void enumValue();
    void enumContents();
    void enumInsertReplacesAndRemove();
    void enumEquality();
    void enumDebug();
    void enumStreamLayout();
    void enumStreamRoundTrip_data();
    void enumStreamRoundTrip();

    void bitName();
    void bitPos_data();
    void bitPos();
    void bitLookup();
    void bitContents();
    void bitSetStreamLayout();
    void bitSetStreamRoundTrip();

    void truncatedStreams_data();
    void truncatedStreams();
};

void tst_OdictEnums::enumName_data()
{
    QTest::addColumn<long long>("value");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("found");

    QTest::newRow("present") << 3LL << "Fault" << true;
    QTest::newRow("negative present") << -2LL << "Minus" << true;
    QTest::newRow("missing") << 4LL << "4" << false;
    QTest::newRow("missing -1") << -1LL << "-1" << false;
    QTest::newRow("missing -5") << -5LL << "-5" << false;
    QTest::newRow("missing 64-bit") << 0x7FFFFFFFFFFFFFFFLL << "9223372036854775807" << false;
}

void tst_OdictEnums::enumName()
{
    QFETCH(long long, value);
    QFETCH(QString, name);
    QFETCH(bool, found);

    const COdictObjectEnum enumeration = makeEnum({{-2, "Minus"}, {0, "Ok"}, {3, "Fault"}});
    bool ok = !found;
    QCOMPARE(enumeration.name(value, &ok), name);
    QCOMPARE(ok, found);
    QCOMPARE(enumeration.name(value), name);
}

void tst_OdictEnums::enumValue_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<long long>("value");
    QTest::addColumn<bool>("found");

    QTest::newRow("unique") << "Ok" << 0LL << true;
    QTest::newRow("shared by 2 and 7 gives 7") << "Twin" << 7LL << true;
    QTest::newRow("case-sensitive") << "fault" << -1LL << false;
    QTest::newRow("missing") << "Nothing" << -1LL << false;
    QTest::newRow("negative value") << "Minus" << -2LL << true;
}

void tst_OdictEnums::enumValue()
{
    QFETCH(QString, name);
    QFETCH(long long, value);
    QFETCH(bool, found);

    const COdictObjectEnum enumeration = makeEnum({{-2, "Minus"}, {0, "Ok"}, {2, "Twin"}, {3, "Fault"}, {7, "Twin"}});
    bool ok = !found;
    QCOMPARE(enumeration.value(name, &ok), value);
    QCOMPARE(ok, found);
    QCOMPARE(enumeration.contains(name), found);
}

void tst_OdictEnums::enumContents()
{
    COdictObjectEnum enumeration;
    QVERIFY(enumeration.isEmpty());
    QVERIFY(!enumeration.isValid());
    QCOMPARE(enumeration.size(), 0);

    enumeration.insert(5, "On");
    enumeration.insert(COdictObjectEnum::sOdictObjectEnumData_t{-1, "Off"});
    enumeration.insert(2, "Idle");
    QVERIFY(enumeration.isValid());
    QCOMPARE(enumeration.size(), 3);
    QVERIFY(enumeration.contains(-1));
    QVERIFY(!enumeration.contains(0));
    QCOMPARE(enumeration.values(), (QList<long long>{-1, 2, 5}));
    QCOMPARE(enumeration.names(), (QStringList{"Off", "Idle", "On"}));
    const QList<COdictObjectEnum::sOdictObjectEnumData_t> expected{{-1, "Off"}, {2, "Idle"}, {5, "On"}};
    QVERIFY(enumeration.enums() == expected);
}

void tst_OdictEnums::enumInsertReplacesAndRemove()
{
    COdictObjectEnum enumeration;
    enumeration.insert(3, "First");
    enumeration.insert(3, "Second");
    QCOMPARE(enumeration.size(), 1);
    QCOMPARE(enumeration.name(3), QStringLiteral("Second"));
    QVERIFY(!enumeration.contains(QStringLiteral("First")));

    enumeration.remove(4); // missing: nothing happens
    QCOMPARE(enumeration.size(), 1);
    enumeration.remove(3);
    QVERIFY(enumeration.isEmpty());
}

void tst_OdictEnums::enumEquality()
{
    const COdictObjectEnum a = makeEnum({{1, "A"}, {2, "B"}});
    COdictObjectEnum b = a;
    QCOMPARE(b, a);
    b.insert(2, "b");
    QVERIFY(b != a);
    QCOMPARE(a.name(2), QStringLiteral("B")); // copies are independent
    QVERIFY(makeEnum({{1, "A"}}) != makeEnum({{2, "A"}}));

    const COdictObjectEnum::sOdictObjectEnumData_t entry{1, "A"};
    QVERIFY(entry == (COdictObjectEnum::sOdictObjectEnumData_t{1, "A"}));
    QVERIFY(entry != (COdictObjectEnum::sOdictObjectEnumData_t{1, "a"}));
    QVERIFY(entry != (COdictObjectEnum::sOdictObjectEnumData_t{2, "A"}));
}

void tst_OdictEnums::enumDebug()
{
    QCOMPARE(debugText(makeEnum({{5, "On"}, {-1, "Off"}})), QStringLiteral("COdictObjectEnum( -1: Off, 5: On ) "));
    QCOMPARE(debugText(COdictObjectEnum()), QStringLiteral("COdictObjectEnum( ) "));
    QCOMPARE(debugText(makeBitSet({{5, "Enabled"}, {0, "Ready"}})),
             QStringLiteral("COdictObjectBitSet( 0: Ready, 5: Enabled ) "));
}

void tst_OdictEnums::enumStreamLayout()
{
    const QByteArray bytes = bigEndian(makeEnum({{-1, "Off"}, {5, "On"}}));
    const QByteArray expected = QByteArray::fromHex("00000002") + QByteArray::fromHex("0000000000000005")
        + bigEndian(QStringLiteral("On")) + QByteArray::fromHex("ffffffffffffffff") + bigEndian(QStringLiteral("Off"));
    QCOMPARE(bytes.toHex(), expected.toHex());
    QCOMPARE(bigEndian(COdictObjectEnum()), QByteArray::fromHex("00000000"));
}

void tst_OdictEnums::enumStreamRoundTrip_data()
{
    QTest::addColumn<COdictObjectEnum>("enumeration");

    QTest::newRow("empty") << COdictObjectEnum();
    QTest::newRow("entries") << makeEnum({{-1, "Off"}, {5, "On"}, {0x7FFFFFFFFFFFFFFFLL, "Max"}});
    QTest::newRow("empty text") << makeEnum({{0, QString()}});
}

void tst_OdictEnums::enumStreamRoundTrip()
{
    QFETCH(COdictObjectEnum, enumeration);

    const QByteArray bytes = bigEndian(enumeration);
    QDataStream in(bytes);
    COdictObjectEnum read = makeEnum({{99, "stale"}});
    in >> read;
    QCOMPARE(in.status(), QDataStream::Ok);
    QVERIFY(in.atEnd());
    QCOMPARE(read, enumeration);
}

void tst_OdictEnums::bitName()
{
    const COdictObjectBitSet bitSet = makeBitSet({{0, "Ready"}, {5, "Enabled"}});
    bool ok = false;
    QCOMPARE(bitSet.name(5, &ok), QStringLiteral("Enabled"));
    QVERIFY(ok);
    QCOMPARE(bitSet.name(6, &ok), QString());
    QVERIFY(!ok);
}

void tst_OdictEnums::bitPos_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<uint>("pos");
    QTest::addColumn<bool>("found");

    QTest::newRow("unique") << "Ready" << 0u << true;
    QTest::newRow("shared by 2 and 7 gives 7") << "Twin" << 7u << true;
    QTest::newRow("case-sensitive") << "ready" << 0xFFFFFFFFu << false;
    QTest::newRow("missing") << "Nothing" << 0xFFFFFFFFu << false;
}

void tst_OdictEnums::bitPos()
{
    QFETCH(QString, name);
    QFETCH(uint, pos);
    QFETCH(bool, found);

    const COdictObjectBitSet bitSet = makeBitSet({{0, "Ready"}, {2, "Twin"}, {5, "Enabled"}, {7, "Twin"}});
    bool ok = !found;
    QCOMPARE(bitSet.pos(name, &ok), pos);
    QCOMPARE(ok, found);
    QCOMPARE(bitSet.contains(name), found);
}

void tst_OdictEnums::bitLookup()
{
    const COdictObjectBitSet bitSet = makeBitSet({{5, "Enabled"}, {31, "Fault"}});
    QVERIFY(bitSet.bit(5) == (COdictObjectBitSet::sOdictObjectBitData_t{5, "Enabled"}));
    QVERIFY(bitSet.bit(31) == (COdictObjectBitSet::sOdictObjectBitData_t{31, "Fault"}));
    const COdictObjectBitSet::sOdictObjectBitData_t missing = bitSet.bit(6);
    QCOMPARE(missing.pos, 0u);
    QVERIFY(missing.name.isEmpty());
    QVERIFY(bitSet.bit(-1) == missing);

    // A missing bit looks like an entry for bit 0 with an empty text; only contains() tells.
    const COdictObjectBitSet withZero = makeBitSet({{0, QString()}});
    QVERIFY(withZero.bit(0) == missing);
    QVERIFY(withZero.contains(0u));
    QVERIFY(!bitSet.contains(0u));
}

void tst_OdictEnums::bitContents()
{
    COdictObjectBitSet bitSet;
    QVERIFY(bitSet.isEmpty() && !bitSet.isValid());
    bitSet.insert(COdictObjectBitSet::sOdictObjectBitData_t{7, "Seven"});
    bitSet.insert(1, "One");
    bitSet.insert(7, "Again");
    QCOMPARE(bitSet.size(), 2);
    QVERIFY(bitSet.isValid());
    QCOMPARE(bitSet.positions(), (QList<uint>{1, 7}));
    QCOMPARE(bitSet.names(), (QStringList{"One", "Again"}));
    const QList<COdictObjectBitSet::sOdictObjectBitData_t> expected{{1, "One"}, {7, "Again"}};
    QVERIFY(bitSet.bitSet() == expected);

    COdictObjectBitSet copy = bitSet;
    QCOMPARE(copy, bitSet);
    copy.remove(7);
    QVERIFY(copy != bitSet);
    QCOMPARE(bitSet.size(), 2);
}

void tst_OdictEnums::bitSetStreamLayout()
{
    const QByteArray bytes = bigEndian(makeBitSet({{0, "R"}, {31, "F"}}));
    const QByteArray expected = QByteArray::fromHex("00000002") + QByteArray::fromHex("0000001f")
        + bigEndian(QStringLiteral("F")) + QByteArray::fromHex("00000000") + bigEndian(QStringLiteral("R"));
    QCOMPARE(bytes.toHex(), expected.toHex());
}

void tst_OdictEnums::bitSetStreamRoundTrip()
{
    const COdictObjectBitSet bitSet = makeBitSet({{0, "Ready"}, {5, "Enabled"}, {0xFFFFFFFFu, "Top"}});
    const QByteArray bytes = bigEndian(bitSet);
    QDataStream in(bytes);
    COdictObjectBitSet read = makeBitSet({{3, "stale"}});
    in >> read;
    QCOMPARE(in.status(), QDataStream::Ok);
    QVERIFY(in.atEnd());
    QCOMPARE(read, bitSet);
}

void tst_OdictEnums::truncatedStreams_data()
{
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray full = bigEndian(makeEnum({{-1, "Off"}, {5, "On"}}));
    QTest::newRow("count only") << full.left(4);
    QTest::newRow("half a count") << full.left(2);
    QTest::newRow("inside a value") << full.left(8);
    QTest::newRow("inside a text") << full.left(full.size() - 1);
    QTest::newRow("count too large") << QByteArray::fromHex("7fffffff");
}

void tst_OdictEnums::truncatedStreams()
{
    QFETCH(QByteArray, bytes);

    {
        QDataStream in(bytes);
        COdictObjectEnum read;
        in >> read;
        QVERIFY(in.status() != QDataStream::Ok);
        QVERIFY(read.isEmpty());
    }
    {
        QDataStream in(bytes);
        COdictObjectBitSet read;
        in >> read;
        QVERIFY(in.status() != QDataStream::Ok);
        QVERIFY(read.isEmpty());
    }
}

QTEST_GUILESS_MAIN(tst_OdictEnums)
#include "tst_odictenums.moc"

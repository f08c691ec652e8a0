#include "COdictObjectBitSet.h"
#include "COdictObjectEnum.h"
#include "streamcheck.h"

#include <QDataStream>
#include <QtTest>

namespace {

using EnumEntry = COdictObjectEnum::sOdictObjectEnumData_t;
using BitEntry = COdictObjectBitSet::sOdictObjectBitData_t;

COdictObjectEnum makeEnum(const QList<EnumEntry> &entries)
{
    COdictObjectEnum enumeration;
    for (const EnumEntry &entry : entries)
        enumeration.insert(entry);
    return enumeration;
}

COdictObjectBitSet makeBitSet(const QList<BitEntry> &entries)
{
    COdictObjectBitSet bitSet;
    for (const BitEntry &entry : entries)
        bitSet.insert(entry);
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
    void enumName_data()
    {
        QTest::addColumn<long long>("value");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("found");

        QTest::newRow("present") << 3LL << "Fault" << true;
        QTest::newRow("negative present") << -2LL << "Minus" << true;
        QTest::newRow("missing") << 4LL << "4" << false;
        QTest::newRow("missing -1") << -1LL << "-1" << false;
        QTest::newRow("missing 64-bit") << 0x7FFFFFFFFFFFFFFFLL << "9223372036854775807" << false;
    }

    void enumName()
    {
        QFETCH(long long, value);
        QFETCH(QString, name);
        QFETCH(bool, found);

        const COdictObjectEnum enumeration = makeEnum({{-2, "Minus"}, {0, "Ok"}, {3, "Fault"}});
        bool ok = !found;
        QCOMPARE(enumeration.name(value, &ok), name);
        QCOMPARE(ok, found);
    }

    void lookupByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<long long>("value");
        QTest::addColumn<bool>("found");

        QTest::newRow("unique") << "Ready" << 0LL << true;
        QTest::newRow("shared by 2 and 7 gives 7") << "Twin" << 7LL << true;
        QTest::newRow("case-sensitive") << "ready" << -1LL << false;
        QTest::newRow("missing") << "Nothing" << -1LL << false;
    }

    void lookupByName()
    {
        QFETCH(QString, name);
        QFETCH(long long, value);
        QFETCH(bool, found);

        const COdictObjectEnum enumeration = makeEnum({{0, "Ready"}, {2, "Twin"}, {5, "Enabled"}, {7, "Twin"}});
        bool ok = !found;
        QCOMPARE(enumeration.value(name, &ok), value);
        QCOMPARE(ok, found);
        QCOMPARE(enumeration.contains(name), found);

        const COdictObjectBitSet bitSet = makeBitSet({{0, "Ready"}, {2, "Twin"}, {5, "Enabled"}, {7, "Twin"}});
        ok = !found;
        QCOMPARE(bitSet.pos(name, &ok), found ? uint(value) : 0xFFFFFFFFu);
        QCOMPARE(ok, found);
        QCOMPARE(bitSet.contains(name), found);
    }

    void enumContents()
    {
        COdictObjectEnum enumeration;
        QVERIFY(enumeration.isEmpty() && !enumeration.isValid());
        enumeration.insert(5, "On");
        enumeration.insert(-1, "Off");
        enumeration.insert(2, "Idle");
        enumeration.insert(3, "First");
        enumeration.insert(3, "Second"); // replaces the text
        enumeration.remove(4); // missing: nothing happens
        QVERIFY(enumeration.isValid());
        QVERIFY(enumeration.contains(-1) && !enumeration.contains(0));
        QVERIFY(!enumeration.contains(QStringLiteral("First")));
        QCOMPARE(enumeration.values(), (QList<long long>{-1, 2, 3, 5}));
        QCOMPARE(enumeration.names(), (QStringList{"Off", "Idle", "Second", "On"}));
        QVERIFY(enumeration.enums() == (QList<EnumEntry>{{-1, "Off"}, {2, "Idle"}, {3, "Second"}, {5, "On"}}));

        COdictObjectEnum copy = enumeration;
        QCOMPARE(copy, enumeration);
        copy.remove(3);
        QVERIFY(copy != enumeration);
        QCOMPARE(enumeration.size(), 4); // copies are independent
        QVERIFY(makeEnum({{1, "A"}}) != makeEnum({{2, "A"}}));
    }

    void bitLookup()
    {
        const COdictObjectBitSet bitSet = makeBitSet({{5, "Enabled"}, {31, "Fault"}});
        bool ok = false;
        QCOMPARE(bitSet.name(5, &ok), QStringLiteral("Enabled"));
        QVERIFY(ok);
        QCOMPARE(bitSet.name(6, &ok), QString());
        QVERIFY(!ok);
        QVERIFY(bitSet.bit(31) == (BitEntry{31, "Fault"}));

        // A missing bit looks like an entry for bit 0 with an empty text; only contains() tells.
        const BitEntry missing = bitSet.bit(6);
        QCOMPARE(missing.pos, 0u);
        QVERIFY(missing.name.isEmpty());
        QVERIFY(bitSet.bit(-1) == missing);
        const COdictObjectBitSet withZero = makeBitSet({{0, QString()}});
        QVERIFY(withZero.bit(0) == missing);
        QVERIFY(withZero.contains(0u));
        QVERIFY(!bitSet.contains(0u));
    }

    void bitContents()
    {
        COdictObjectBitSet bitSet;
        QVERIFY(bitSet.isEmpty() && !bitSet.isValid());
        bitSet.insert(7, "Seven");
        bitSet.insert(1, "One");
        bitSet.insert(7, "Again");
        QVERIFY(bitSet.isValid());
        QCOMPARE(bitSet.positions(), (QList<uint>{1, 7}));
        QCOMPARE(bitSet.names(), (QStringList{"One", "Again"}));
        QVERIFY(bitSet.bitSet() == (QList<BitEntry>{{1, "One"}, {7, "Again"}}));

        COdictObjectBitSet copy = bitSet;
        copy.remove(7);
        QVERIFY(copy != bitSet);
        QCOMPARE(bitSet.size(), 2);
    }

    void debugTexts()
    {
        QCOMPARE(debugText(makeEnum({{5, "On"}, {-1, "Off"}})), QStringLiteral("COdictObjectEnum( -1: Off, 5: On ) "));
        QCOMPARE(debugText(COdictObjectEnum()), QStringLiteral("COdictObjectEnum( ) "));
        QCOMPARE(debugText(makeBitSet({{5, "Enabled"}, {0, "Ready"}})),
                 QStringLiteral("COdictObjectBitSet( 0: Ready, 5: Enabled ) "));
    }

    void streams()
    {
        // A count, then the entries from the highest value down, each value before its text.
        const auto hex = [](const char *digits) { return QByteArray::fromHex(digits); };
        checkStream(makeEnum({{-1, "Off"}, {5, "On"}, {0x7FFFFFFFFFFFFFFFLL, QString()}}),
                    hex("00000003" "7fffffffffffffff" "ffffffff" "0000000000000005") + bigEndian(QStringLiteral("On"))
                        + hex("ffffffffffffffff") + bigEndian(QStringLiteral("Off")),
                    makeEnum({{99, "stale"}}));
        checkStream(COdictObjectEnum(), hex("00000000"), makeEnum({{99, "stale"}}));
        checkStream(makeBitSet({{0, "R"}, {31, "F"}, {0xFFFFFFFFu, "T"}}),
                    hex("00000003" "ffffffff") + bigEndian(QStringLiteral("T")) + hex("0000001f")
                        + bigEndian(QStringLiteral("F")) + hex("00000000") + bigEndian(QStringLiteral("R")),
                    makeBitSet({{3, "stale"}}));

        // A count far beyond the data fails instead of allocating or looping.
        QDataStream enumIn(hex("7fffffff"));
        COdictObjectEnum enumeration;
        enumIn >> enumeration;
        QVERIFY(enumIn.status() != QDataStream::Ok && enumeration.isEmpty());
        QDataStream bitIn(hex("7fffffff"));
        COdictObjectBitSet bitSet;
        bitIn >> bitSet;
        QVERIFY(bitIn.status() != QDataStream::Ok && bitSet.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_OdictEnums)
#include "tst_odictenums.moc"

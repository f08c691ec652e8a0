#include "COdictObjectId.h"
#include "COdictObjectName.h"
#include "streamcheck.h"

#include <QDataStream>
#include <QHash>
#include <QRandomGenerator>
#include <QtTest>

#include <cstdint>
#include <iterator>
#include <type_traits>

namespace {

constexpr uint none = 0xFFFFFFFFu;
using Packed = NkrObjectIds::eObjectId_t;

} // namespace

char *toString(const COdictObjectId &id)
{
    return qstrdup(debugText(id).toUtf8().constData());
}

char *toString(const COdictObjectName &name)
{
    return qstrdup(debugText(name).toUtf8().constData());
}

class tst_OdictIds : public QObject
{
    Q_OBJECT

private slots:
    void overloadsWithLiterals()
    {
        // Each common call form must compile unambiguously and pick the intended overload:
        // up to 32 bits is an id, 64 bits a packed value.
        QCOMPARE(COdictObjectId(0x2000), COdictObjectId(0x2000u, none));
        QCOMPARE(COdictObjectId(0x2000, 3), COdictObjectId(0x2000u, 3u));
        QCOMPARE(COdictObjectId(std::uint64_t(0x0000200000000005)), COdictObjectId(0x2000u, 5u));
        QCOMPARE(COdictObjectId(Q_UINT64_C(0x0000200000000005), 7), COdictObjectId(0x2000u, 7u));
        const COdictObjectId copyInit = 0x2000u;
        QCOMPARE(copyInit, COdictObjectId(0x2000u, none));

        COdictObjectId id(1u, 2u);
        id.setId(0x3000); // int: replaces the id only
        QCOMPARE(id, COdictObjectId(0x3000u, 2u));
        id.setId(Q_UINT64_C(0x0000400000000009)); // 64-bit: unpacks
        QCOMPARE(id, COdictObjectId(0x4000u, 9u));

        // Assignment, unlike the constructor, keeps the lower half as id and drops the sub-id.
        id = Packed(0x0000200000000005);
        QCOMPARE(id, COdictObjectId(5u, none));

        QVERIFY(COdictObjectId(5u) == 5);
        QVERIFY(COdictObjectId(5u) < 6);
        QVERIFY((!std::is_convertible<COdictObjectId, unsigned long long>::value));
        QCOMPARE(static_cast<unsigned long long>(COdictObjectId(0x2000u, 3u)), Q_UINT64_C(0x0000200000000003));
        QCOMPARE(static_cast<Packed>(COdictObjectId(0x2000u)), Packed(0x2000));
    }

    void unpack_data()
    {
        QTest::addColumn<quint64>("packed");
        QTest::addColumn<uint>("subIdArg");
        QTest::addColumn<uint>("id");
        QTest::addColumn<uint>("subId");

        QTest::newRow("plain object") << Q_UINT64_C(0x2000) << none << 0x2000u << none;
        QTest::newRow("sub-object") << Q_UINT64_C(0x0000200000000005) << none << 0x2000u << 5u;
        QTest::newRow("sub-id 0") << Q_UINT64_C(0x0000200000000000) << none << 0x2000u << 0u;
        QTest::newRow("zero") << Q_UINT64_C(0) << none << 0u << none;
        QTest::newRow("lower half all ones") << Q_UINT64_C(0xFFFFFFFF) << none << none << none;
        QTest::newRow("packed no sub-id") << Q_UINT64_C(0x00002000FFFFFFFF) << none << 0x2000u << none;
        QTest::newRow("all ones") << Q_UINT64_C(0xFFFFFFFFFFFFFFFF) << none << none << none;
        QTest::newRow("explicit sub-id replaces packed") << Q_UINT64_C(0x0000200000000005) << 7u << 0x2000u << 7u;
        QTest::newRow("explicit sub-id on plain") << Q_UINT64_C(0x2000) << 0u << 0x2000u << 0u;
    }

    void unpack()
    {
        QFETCH(quint64, packed);
        QFETCH(uint, subIdArg);
        QFETCH(uint, id);
        QFETCH(uint, subId);
        const COdictObjectId expected(id, subId);

        QCOMPARE(COdictObjectId(Packed(packed), subIdArg), expected);
        COdictObjectId key(1u, 1u);
        key.setObjectId(Packed(packed), subIdArg);
        QCOMPARE(key, expected);
        if (subIdArg != none)
            return;
        QCOMPARE(COdictObjectId(packed), expected);
        QCOMPARE(COdictObjectId(Packed(packed)), expected);
        key = COdictObjectId(1u, 1u);
        key.setId(packed);
        QCOMPARE(key, expected);
    }

    void pack_data()
    {
        QTest::addColumn<uint>("id");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<quint64>("packed");

        QTest::newRow("plain") << 0x2000u << none << Q_UINT64_C(0x2000);
        QTest::newRow("sub-object") << 0x2000u << 3u << Q_UINT64_C(0x0000200000000003);
        QTest::newRow("sub-id 0") << 0x2000u << 0u << Q_UINT64_C(0x0000200000000000);
        QTest::newRow("cleared") << none << none << Q_UINT64_C(0xFFFFFFFF);
        QTest::newRow("id 0 sub-id 5 collides with id 5") << 0u << 5u << Q_UINT64_C(5);
    }

    void pack()
    {
        QFETCH(uint, id);
        QFETCH(uint, subId);
        QFETCH(quint64, packed);

        QCOMPARE(COdictObjectId(id, subId).toU64(), packed);
        QCOMPARE(quint64(COdictObjectId(id, subId).toId()), packed);
    }

    void nullAndValid()
    {
        QVERIFY(COdictObjectId().isNull() && !COdictObjectId().isValid());
        const COdictObjectId zero(Q_UINT64_C(0)); // id 0 is a real id
        QVERIFY(!zero.isNull() && zero.isValid());
        const COdictObjectId subOnly(none, 1u);
        QVERIFY(!subOnly.isNull() && !subOnly.isValid());
    }

    void equalityWithPackedUnpacksFirst()
    {
        const COdictObjectId plain(0x2000u);
        QVERIFY(plain == Packed(0x00002000FFFFFFFF));
        QVERIFY(!(plain != Packed(0x00002000FFFFFFFF)));
        QVERIFY(plain.toU64() != Q_UINT64_C(0x00002000FFFFFFFF));
        QVERIFY(plain == Packed(0x2000));
        QVERIFY(COdictObjectId(0x2000u, 5u) == Packed(0x0000200000000005));
        QVERIFY(COdictObjectId(0x2000u, 5u) != Packed(0x0000200000000006));
    }

    void orderingByPackedValue()
    {
        // Packed order: every plain object, the cleared id included, before every sub-object.
        const QList<COdictObjectId> sorted{COdictObjectId(0x2000u), COdictObjectId(0x7000u), COdictObjectId(),
                                           COdictObjectId(1u, 0u), COdictObjectId(0x2000u, 1u),
                                           COdictObjectId(0x2000u, 2u), COdictObjectId(0x2001u, 1u)};
        QMap<COdictObjectId, int> map;
        for (int i = 0; i < sorted.size(); ++i) {
            map.insert(sorted.at(sorted.size() - 1 - i), i);
            for (int j = i + 1; j < sorted.size(); ++j) {
                const COdictObjectId &a = sorted.at(i);
                const COdictObjectId &b = sorted.at(j);
                QVERIFY2(a < b && b > a && a <= b && !(a >= b) && !(b < a), qPrintable(debugText(a) + debugText(b)));
            }
        }
        QCOMPARE(map.keys(), sorted);

        const COdictObjectId plain(0x7000u);
        const COdictObjectId sub(1u, 0u);
        QVERIFY(plain <= plain && plain >= plain && !(plain < plain));
        QVERIFY(plain < Packed(sub.toU64()) && sub > Packed(plain.toU64()));
        QVERIFY(plain <= Packed(0x7000) && plain >= Packed(0x7000));
        QVERIFY(plain < Q_UINT64_C(0x0000000100000000) && sub > Q_UINT64_C(0xFFFFFFFF));
        QVERIFY(sub >= Q_UINT64_C(0x0000000100000000) && sub <= Q_UINT64_C(0x0000000100000000));
    }

    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");

        const COdictObjectId sub(0x2000u, 3u);
        const COdictObjectId plain(0x2000u);
        QTest::newRow("sub zero-padded") << sub.toStr("0x") << "0x0000200000000003";
        QTest::newRow("plain zero-padded") << plain.toStr(QChar('0'), "0x") << "0x0000000000002000";
        QTest::newRow("plain space-padded") << plain.toStr(QChar(' '), "#") << "#            2000";
        QTest::newRow("plain unpadded") << plain.toStr(QChar(), "0x") << "0x2000";
        QTest::newRow("sub unpadded") << COdictObjectId(0xABCDu, 0xEFu).toStr(QChar(), "") << "abcd000000ef";
        QTest::newRow("percent prefix") << plain.toStr(QChar(), "%1") << "%12000";
        QTest::newRow("info plain") << COdictObjectId(8192u).info() << "ID 8192";
        QTest::newRow("info padded sub-id") << COdictObjectId(8192u, 3u).info() << "ID 8192:03";
        QTest::newRow("info sub-id 0") << COdictObjectId(8192u, 0u).info() << "ID 8192:00";
        QTest::newRow("info large sub-id") << COdictObjectId(8192u, 4294967294u).info() << "ID 8192:4294967294";
        QTest::newRow("debug id") << debugText(sub) << "COdictObjectId( 8192:03 ) ";
        QTest::newRow("debug plain id") << debugText(plain) << "COdictObjectId( 8192:4294967295 ) ";
        QTest::newRow("debug name") << debugText(COdictObjectName("Speed", 3u)) << "COdictObjectName( Speed, 3 ) ";
        QTest::newRow("debug plain name") << debugText(COdictObjectName("Speed"))
                                          << "COdictObjectName( Speed, 4294967295 ) ";
        // The stream's own spacing and quoting come back after the id or name.
        QString text;
        QDebug(&text) << COdictObjectId(1u, 12u) << QStringLiteral("x");
        QTest::newRow("debug id then string") << text << "COdictObjectId( 1:12 ) \"x\" ";
        text.clear();
        QDebug(&text) << COdictObjectName(QString::fromUtf8("Drehzahl\u00e9"), 0u) << QStringLiteral("x");
        QTest::newRow("debug name then string") << text << QString::fromUtf8("COdictObjectName( Drehzahl\u00e9, 0 ) \"x\" ");
    }

    void texts()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);

        QCOMPARE(text, expected);
    }

    void hashes()
    {
        const COdictObjectId key(0x2000u, 3u);
        // seed 0x12340000 ^ id 0x2000 = 0x12342000, rotated by 16 = 0x20001234, ^ 3
        QCOMPARE(qHash(key, 0x12340000u), uint(0x20001237u));
        QHash<COdictObjectId, int> ids{{key, 1}, {COdictObjectId(0x2000u), 2}};
        QCOMPARE(ids.value(key), 1);
        QCOMPARE(ids.value(COdictObjectId(0x2000u)), 2);
        QVERIFY(!ids.contains(COdictObjectId(0x2000u, 4u)));

        // A name hashes as its merged key, yet "Speed_3" and ("Speed", 3) stay distinct keys.
        QCOMPARE(qHash(COdictObjectName("Speed", 3u), 42u), qHash(QStringLiteral("Speed_3"), 42u));
        QHash<COdictObjectName, int> names{{COdictObjectName("Speed", 3u), 1}, {COdictObjectName("Speed_3"), 2}};
        QCOMPARE(names.size(), 2);
        QCOMPARE(names.value(COdictObjectName("Speed", 3u)), 1);
    }

    void streams()
    {
        checkStream(COdictObjectId(0x2000u, 3u), QByteArray::fromHex("0000200000000003"));
        checkStream(COdictObjectId(0x2000u), QByteArray::fromHex("00002000ffffffff"));
        // QString: byte length, then UTF-16; then the sub-id.
        checkStream(COdictObjectName("Ab", 3u), QByteArray::fromHex("00000004" "00410062" "00000003"));
    }

    void nameBasics()
    {
        QVERIFY(COdictObjectName().isNull() && !COdictObjectName().isValid());
        QCOMPARE(COdictObjectName().subId(), none);
        QVERIFY(!COdictObjectName(QString(), 1u).isNull());
        QVERIFY(!COdictObjectName(QString(), 1u).isValid());
        QVERIFY(COdictObjectName("Speed").isValid());

        COdictObjectName name("Speed", 3u);
        name.setName("Torque");
        QCOMPARE(name, COdictObjectName("Torque", 3u));
        name = QStringLiteral("Current"); // drops the sub-id, unlike setName()
        QCOMPARE(name, COdictObjectName("Current"));

        QVERIFY(COdictObjectName("Speed") != COdictObjectName("speed"));
        QVERIFY(COdictObjectName("Speed", 1u) != COdictObjectName("Speed"));
        // Same merged key, different fields: unequal, yet neither sorts before the other.
        const COdictObjectName merged("Speed_1");
        const COdictObjectName split("Speed", 1u);
        QVERIFY(merged != split);
        QVERIFY(!(merged < split) && !(split < merged));
        QVERIFY(merged <= split && merged >= split);
    }

    void mergedName_data()
    {
        QTest::addColumn<COdictObjectName>("name");
        QTest::addColumn<QString>("merged");

        QTest::newRow("no sub-id") << COdictObjectName("Speed") << "Speed";
        QTest::newRow("sub-id 0") << COdictObjectName("Speed", 0u) << "Speed_0";
        QTest::newRow("largest sub-id") << COdictObjectName("Speed", 4294967294u) << "Speed_4294967294";
        QTest::newRow("empty name") << COdictObjectName(QString(), 7u) << "_7";
    }

    void mergedName()
    {
        QFETCH(COdictObjectName, name);
        QFETCH(QString, merged);

        QCOMPARE(name.mergedName(), merged);
    }

    void nameOrdering_data()
    {
        QTest::addColumn<COdictObjectName>("lower");
        QTest::addColumn<COdictObjectName>("higher");

        QTest::newRow("name before name_0") << COdictObjectName("Speed") << COdictObjectName("Speed", 0u);
        QTest::newRow("_0 before _10") << COdictObjectName("Speed", 0u) << COdictObjectName("Speed", 10u);
        QTest::newRow("_10 before _2") << COdictObjectName("Speed", 10u) << COdictObjectName("Speed", 2u);
        QTest::newRow("upper before lower case") << COdictObjectName("Speed") << COdictObjectName("speed");
        QTest::newRow("'_' after upper case") << COdictObjectName("SpeedMax") << COdictObjectName("Speed", 5u);
        QTest::newRow("'_' before lower case") << COdictObjectName("Speed", 5u) << COdictObjectName("Speedmax");
        QTest::newRow("underscore name vs sub-id") << COdictObjectName("Speed_1") << COdictObjectName("Speed", 12u);
        QTest::newRow("longer name vs suffix") << COdictObjectName("Speed", 12u) << COdictObjectName("Speed_13");
        QTest::newRow("empty vs sub-id") << COdictObjectName() << COdictObjectName(QString(), 0u);
    }

    void nameOrdering()
    {
        QFETCH(COdictObjectName, lower);
        QFETCH(COdictObjectName, higher);

        QVERIFY(lower < higher && higher > lower && lower <= higher && higher >= lower);
        QVERIFY(!(higher < lower) && !(lower >= higher));
        QVERIFY(lower.compare(higher) < 0 && higher.compare(lower) > 0);
    }

    void nameOrderingMatchesMergedKeys()
    {
        // A small alphabet makes prefixes, names holding "_digits" and equal merged keys frequent.
        const QString alphabet = QStringLiteral("_019aBz") + QChar(0x00E9) + QChar(0xD83D) + QChar(0xDE00);
        const uint subIds[] = {none, none, none, 0u, 1u, 2u, 9u, 10u, 19u, 100u, 4294967294u};
        QRandomGenerator random(20240611);
        const auto randomName = [&]() {
            COdictObjectName name;
            const int length = int(random.bounded(6u));
            for (int i = 0; i < length; ++i)
                name.rName().append(alphabet.at(int(random.bounded(uint(alphabet.size())))));
            const uint pick = random.bounded(uint(std::size(subIds)) + 1);
            name.setSubId(pick < std::size(subIds) ? subIds[pick] : random.generate());
            return name;
        };

        int equalKeys = 0;
        for (int i = 0; i < 20000; ++i) {
            const COdictObjectName a = randomName();
            const COdictObjectName b = randomName();
            const QString ma = a.mergedName();
            const QString mb = b.mergedName();
            if (ma == mb)
                ++equalKeys;
            if ((a < b) != (ma < mb) || (a > b) != (ma > mb) || (a <= b) != (ma <= mb) || (a >= b) != (ma >= mb))
                QFAIL(qPrintable(QStringLiteral("order differs for %1 and %2").arg(debugText(a), debugText(b))));
        }
        QVERIFY(equalKeys > 0);
    }
};

QTEST_GUILESS_MAIN(tst_OdictIds)
#include "tst_odictids.moc"

#include "COdictObjectId.h"
#include "COdictObjectName.h"

#include <QDataStream>
#include <QHash>
#include <QRandomGenerator>
#include <QtTest>

#include <cstdint>
#include <iterator>
#include <type_traits>

namespace {

constexpr uint none = 0xFFFFFFFFu;

template <typename T>
QString debugText(const T &value)
{
    QString text;
    QDebug(&text) << value;
    return text;
}

QByteArray bigEndian(void (*write)(QDataStream &))
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::BigEndian);
    write(out);
    return bytes;
}

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
    void overloadsWithLiterals();
    void unpack_data();
    void unpack();
    void explicitSubIdWinsOverPacked_data();
    void explicitSubIdWinsOverPacked();
    void assignmentFromPackedKeepsLowerHalfOnly();
    void setters();
    void pack_data();
    void pack();
    void nullAndValid();
    void equalityWithPackedUnpacksFirst();
    void orderingByPackedValue();
    void orderedMapPutsObjectsBeforeSubObjects();
    void toStr_data();
    void toStr();
    void info_data();
    void info();
    void idHash();
    void idDebug();
    void idStream();
    void idStreamTruncated();

    void nameBasics();
    void mergedName_data();
    void mergedName();
    void nameOrdering_data();
    void nameOrdering();
    void nameOrderingMatchesMergedKeys();
    void nameHash();
    void nameDebug();
    void nameStream();
    void nameStreamTruncated();
};

void tst_OdictIds::overloadsWithLiterals()
{
    // Each common call form must compile unambiguously and pick the intended overload.
    QCOMPARE(COdictObjectId(0x2000u), COdictObjectId(0x2000u, none));
    QCOMPARE(COdictObjectId(0x2000), COdictObjectId(0x2000u, none));
    QCOMPARE(COdictObjectId(0x2000u, 3u), COdictObjectId(0x2000u, 3u));
    QCOMPARE(COdictObjectId(0x2000, 3), COdictObjectId(0x2000u, 3u));
    QCOMPARE(COdictObjectId(Q_UINT64_C(0x0000200000000005)), COdictObjectId(0x2000u, 5u));
    QCOMPARE(COdictObjectId(std::uint64_t(0x0000200000000005)), COdictObjectId(0x2000u, 5u));
    QCOMPARE(COdictObjectId(Q_UINT64_C(0x0000200000000005), 7), COdictObjectId(0x2000u, 7u));
    QCOMPARE(COdictObjectId(NkrObjectIds::eObjectId_t(0x0000200000000005), 7), COdictObjectId(0x2000u, 7u));
    QCOMPARE(COdictObjectId(NkrObjectIds::E_OBJECTID_NONE), COdictObjectId());

    const COdictObjectId copyInit = 0x2000u;
    QCOMPARE(copyInit, COdictObjectId(0x2000u, none));

    COdictObjectId id(1u, 2u);
    id.setId(0x3000); // int: replaces the id only
    QCOMPARE(id, COdictObjectId(0x3000u, 2u));
    id.setId(Q_UINT64_C(0x0000400000000009)); // 64-bit: unpacks
    QCOMPARE(id, COdictObjectId(0x4000u, 9u));

    QVERIFY(COdictObjectId(5u) == 5);
    QVERIFY(COdictObjectId(5u) < 6);
    QVERIFY(COdictObjectId(5u) < 6u);
    QVERIFY((!std::is_convertible<COdictObjectId, unsigned long long>::value));
    QCOMPARE(static_cast<unsigned long long>(COdictObjectId(0x2000u, 3u)), Q_UINT64_C(0x0000200000000003));
    QCOMPARE(static_cast<NkrObjectIds::eObjectId_t>(COdictObjectId(0x2000u)), NkrObjectIds::eObjectId_t(0x2000));
}

void tst_OdictIds::unpack_data()
{
    QTest::addColumn<quint64>("packed");
    QTest::addColumn<uint>("id");
    QTest::addColumn<uint>("subId");

    QTest::newRow("plain object") << Q_UINT64_C(0x2000) << 0x2000u << none;
    QTest::newRow("sub-object") << Q_UINT64_C(0x0000200000000005) << 0x2000u << 5u;
    QTest::newRow("sub-id 0") << Q_UINT64_C(0x0000200000000000) << 0x2000u << 0u;
    QTest::newRow("zero") << Q_UINT64_C(0) << 0u << none;
    QTest::newRow("lower half all ones") << Q_UINT64_C(0xFFFFFFFF) << none << none;
    QTest::newRow("packed no sub-id") << Q_UINT64_C(0x00002000FFFFFFFF) << 0x2000u << none;
    QTest::newRow("all ones") << Q_UINT64_C(0xFFFFFFFFFFFFFFFF) << none << none;
}

void tst_OdictIds::unpack()
{
    QFETCH(quint64, packed);
    QFETCH(uint, id);
    QFETCH(uint, subId);
    const COdictObjectId expected(id, subId);

    QCOMPARE(COdictObjectId(packed), expected);
    QCOMPARE(COdictObjectId(NkrObjectIds::eObjectId_t(packed)), expected);
    QCOMPARE(COdictObjectId(NkrObjectIds::eObjectId_t(packed), none), expected);

    COdictObjectId key(1u, 1u);
    key.setObjectId(NkrObjectIds::eObjectId_t(packed));
    QCOMPARE(key, expected);
    key = COdictObjectId(1u, 1u);
    key.setId(NkrObjectIds::eObjectId_t(packed));
    QCOMPARE(key, expected);
    key = COdictObjectId(1u, 1u);
    key.setId(packed);
    QCOMPARE(key, expected);
}

void tst_OdictIds::explicitSubIdWinsOverPacked_data()
{
    QTest::addColumn<quint64>("packed");
    QTest::addColumn<uint>("subIdArg");
    QTest::addColumn<uint>("subId");

    QTest::newRow("explicit replaces packed") << Q_UINT64_C(0x0000200000000005) << 7u << 7u;
    QTest::newRow("none keeps packed") << Q_UINT64_C(0x0000200000000005) << none << 5u;
    QTest::newRow("explicit on plain") << Q_UINT64_C(0x2000) << 0u << 0u;
    QTest::newRow("none on plain") << Q_UINT64_C(0x2000) << none << none;
}

void tst_OdictIds::explicitSubIdWinsOverPacked()
{
    QFETCH(quint64, packed);
    QFETCH(uint, subIdArg);
    QFETCH(uint, subId);

    const COdictObjectId key(NkrObjectIds::eObjectId_t(packed), subIdArg);
    QCOMPARE(key.id(), 0x2000u);
    QCOMPARE(key.subId(), subId);

    COdictObjectId set;
    set.setObjectId(NkrObjectIds::eObjectId_t(packed), subIdArg);
    QCOMPARE(set, key);
}

void tst_OdictIds::assignmentFromPackedKeepsLowerHalfOnly()
{
    COdictObjectId key(1u, 2u);
    key = NkrObjectIds::eObjectId_t(0x0000200000000005);
    QCOMPARE(key, COdictObjectId(5u, none));

    // The constructor, by contrast, unpacks.
    QCOMPARE(COdictObjectId(NkrObjectIds::eObjectId_t(0x0000200000000005)), COdictObjectId(0x2000u, 5u));

    key = COdictObjectId(0x3000u, 4u);
    QCOMPARE(key, COdictObjectId(0x3000u, 4u));
}

void tst_OdictIds::setters()
{
    COdictObjectId key(0x2000u, 3u);
    key.setId(0x3000u);
    QCOMPARE(key, COdictObjectId(0x3000u, 3u));
    key.setSubId(none);
    QCOMPARE(key, COdictObjectId(0x3000u, none));
    key.rId() = 7;
    key.rSubId() = 8;
    QCOMPARE(key, COdictObjectId(7u, 8u));
    key.clear();
    QVERIFY(key.isNull());
    QCOMPARE(key, COdictObjectId());
}

void tst_OdictIds::pack_data()
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

void tst_OdictIds::pack()
{
    QFETCH(uint, id);
    QFETCH(uint, subId);
    QFETCH(quint64, packed);

    const COdictObjectId key(id, subId);
    QCOMPARE(key.toU64(), packed);
    QCOMPARE(quint64(key.toId()), packed);
}

void tst_OdictIds::nullAndValid()
{
    QVERIFY(COdictObjectId().isNull() && !COdictObjectId().isValid());
    const COdictObjectId zero(Q_UINT64_C(0)); // id 0 is a real id
    QVERIFY(!zero.isNull() && zero.isValid());
    const COdictObjectId subOnly(none, 1u);
    QVERIFY(!subOnly.isNull() && !subOnly.isValid());
}

void tst_OdictIds::equalityWithPackedUnpacksFirst()
{
    const COdictObjectId plain(0x2000u);
    QVERIFY(plain == NkrObjectIds::eObjectId_t(0x00002000FFFFFFFF));
    QVERIFY(!(plain != NkrObjectIds::eObjectId_t(0x00002000FFFFFFFF)));
    QVERIFY(plain.toU64() != Q_UINT64_C(0x00002000FFFFFFFF));
    QVERIFY(plain == NkrObjectIds::eObjectId_t(0x2000));

    const COdictObjectId sub(0x2000u, 5u);
    QVERIFY(sub == NkrObjectIds::eObjectId_t(0x0000200000000005));
    QVERIFY(sub != NkrObjectIds::eObjectId_t(0x0000200000000006));
    QVERIFY(sub != COdictObjectId(0x2000u, 6u));
    QVERIFY(sub != COdictObjectId(0x2001u, 5u));
}

void tst_OdictIds::orderingByPackedValue()
{
    const COdictObjectId plain(0x7000u);
    const COdictObjectId sub(1u, 0u);
    QVERIFY(plain < sub);
    QVERIFY(sub > plain);
    QVERIFY(plain <= sub && !(plain >= sub));
    QVERIFY(plain <= plain && plain >= plain && !(plain < plain));

    QVERIFY(plain < NkrObjectIds::eObjectId_t(sub.toU64()));
    QVERIFY(sub > NkrObjectIds::eObjectId_t(plain.toU64()));
    QVERIFY(plain <= NkrObjectIds::eObjectId_t(0x7000) && plain >= NkrObjectIds::eObjectId_t(0x7000));
    QVERIFY(plain < Q_UINT64_C(0x0000000100000000));
    QVERIFY(sub > Q_UINT64_C(0xFFFFFFFF));
    QVERIFY(sub >= Q_UINT64_C(0x0000000100000000) && sub <= Q_UINT64_C(0x0000000100000000));

    // No sub-id sorts as the bare id, hence before any sub-object of a non-zero id.
    QVERIFY(COdictObjectId() < COdictObjectId(1u, 0u));
}

void tst_OdictIds::orderedMapPutsObjectsBeforeSubObjects()
{
    QMap<COdictObjectId, int> map;
    map.insert(COdictObjectId(0x2001u, 1u), 0);
    map.insert(COdictObjectId(0x2000u, 2u), 0);
    map.insert(COdictObjectId(0x3000u), 0);
    map.insert(COdictObjectId(0x2000u, 1u), 0);
    map.insert(COdictObjectId(0x2000u), 0);

    const QList<COdictObjectId> expected{COdictObjectId(0x2000u), COdictObjectId(0x3000u),
                                         COdictObjectId(0x2000u, 1u), COdictObjectId(0x2000u, 2u),
                                         COdictObjectId(0x2001u, 1u)};
    QCOMPARE(map.keys(), expected);
}

void tst_OdictIds::toStr_data()
{
    QTest::addColumn<COdictObjectId>("key");
    QTest::addColumn<QChar>("fill");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("expected");

    const COdictObjectId sub(0x2000u, 3u);
    const COdictObjectId plain(0x2000u);
    QTest::newRow("sub zero-padded") << sub << QChar('0') << "0x" << "0x0000200000000003";
    QTest::newRow("plain zero-padded") << plain << QChar('0') << "0x" << "0x0000000000002000";
    QTest::newRow("plain space-padded") << plain << QChar(' ') << "#" << "#            2000";
    QTest::newRow("plain unpadded") << plain << QChar() << "0x" << "0x2000";
    QTest::newRow("sub unpadded") << COdictObjectId(0xABCDu, 0xEFu) << QChar() << "" << "abcd000000ef";
    QTest::newRow("percent prefix") << plain << QChar() << "%1" << "%12000";
}

void tst_OdictIds::toStr()
{
    QFETCH(COdictObjectId, key);
    QFETCH(QChar, fill);
    QFETCH(QString, prefix);
    QFETCH(QString, expected);

    QCOMPARE(key.toStr(fill, prefix), expected);
    if (fill == QChar('0'))
        QCOMPARE(key.toStr(prefix), expected);
}

void tst_OdictIds::info_data()
{
    QTest::addColumn<COdictObjectId>("key");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plain") << COdictObjectId(8192u) << "ID 8192";
    QTest::newRow("padded sub-id") << COdictObjectId(8192u, 3u) << "ID 8192:03";
    QTest::newRow("sub-id 0") << COdictObjectId(8192u, 0u) << "ID 8192:00";
    QTest::newRow("two digits") << COdictObjectId(8192u, 12u) << "ID 8192:12";
    QTest::newRow("large sub-id") << COdictObjectId(8192u, 4294967294u) << "ID 8192:4294967294";
}

void tst_OdictIds::info()
{
    QFETCH(COdictObjectId, key);
    QFETCH(QString, expected);

    QCOMPARE(key.info(), expected);
}

void tst_OdictIds::idHash()
{
    const COdictObjectId key(0x2000u, 3u);
    QCOMPARE(qHash(key), uint(0x20000000u ^ 3u));
    QCOMPARE(qHash(key, 0), qHash(key));
    // seed 0x12340000 ^ id 0x2000 = 0x12342000, rotated by 16 = 0x20001234, ^ 3
    QCOMPARE(qHash(key, 0x12340000u), uint(0x20001237u));
    QCOMPARE(qHash(COdictObjectId()), uint(0xFFFFFFFFu ^ 0xFFFFFFFFu));

    QHash<COdictObjectId, int> hash;
    hash.insert(COdictObjectId(0x2000u, 3u), 1);
    hash.insert(COdictObjectId(0x2000u), 2);
    QCOMPARE(hash.value(COdictObjectId(0x2000u, 3u)), 1);
    QCOMPARE(hash.value(COdictObjectId(0x2000u)), 2);
    QVERIFY(!hash.contains(COdictObjectId(0x2000u, 4u)));
}

void tst_OdictIds::idDebug()
{
    QCOMPARE(debugText(COdictObjectId(8192u, 3u)), QStringLiteral("COdictObjectId( 8192:03 ) "));
    QCOMPARE(debugText(COdictObjectId(8192u)), QStringLiteral("COdictObjectId( 8192:4294967295 ) "));

    // The stream's own spacing and quoting come back after the id.
    QString text;
    QDebug(&text) << COdictObjectId(1u, 12u) << QStringLiteral("x");
    QCOMPARE(text, QStringLiteral("COdictObjectId( 1:12 ) \"x\" "));
}

void tst_OdictIds::idStream()
{
    const QByteArray bytes = bigEndian([](QDataStream &out) { out << COdictObjectId(0x2000u, 3u); });
    QCOMPARE(bytes, QByteArray::fromHex("0000200000000003"));
    const QByteArray none = bigEndian([](QDataStream &out) { out << COdictObjectId(0x2000u); });
    QCOMPARE(none, QByteArray::fromHex("00002000ffffffff"));

    QDataStream in(bytes);
    COdictObjectId read;
    in >> read;
    QCOMPARE(in.status(), QDataStream::Ok);
    QCOMPARE(read, COdictObjectId(0x2000u, 3u));
}

void tst_OdictIds::idStreamTruncated()
{
    QDataStream in(QByteArray::fromHex("000020000000"));
    COdictObjectId read(1u, 2u);
    in >> read;
    QCOMPARE(in.status(), QDataStream::ReadPastEnd);
    QCOMPARE(read.id(), 0x2000u);
}

void tst_OdictIds::nameBasics()
{
    const COdictObjectName empty;
    QVERIFY(empty.isNull());
    QVERIFY(!empty.isValid());
    QCOMPARE(empty.subId(), none);
    QVERIFY(!COdictObjectName(QString(), 1u).isNull());
    QVERIFY(!COdictObjectName(QString(), 1u).isValid());
    QVERIFY(COdictObjectName("Speed").isValid());

    COdictObjectName name("Speed", 3u);
    name.setName("Torque");
    QCOMPARE(name, COdictObjectName("Torque", 3u));
    name = QStringLiteral("Current"); // drops the sub-id, unlike setName()
    QCOMPARE(name, COdictObjectName("Current"));
    name.setSubId(4u);
    name.rName() = "Power";
    QCOMPARE(name, COdictObjectName("Power", 4u));
    name.rSubId() = 5u;
    QCOMPARE(name.subId(), 5u);
    name.clear();
    QVERIFY(name.isNull());

    QVERIFY(COdictObjectName("Speed") != COdictObjectName("speed"));
    QVERIFY(COdictObjectName("Speed", 1u) != COdictObjectName("Speed"));

    // Same merged key, different fields: unequal, yet neither sorts before the other.
    const COdictObjectName merged("Speed_1");
    const COdictObjectName split("Speed", 1u);
    QVERIFY(merged != split);
    QVERIFY(!(merged < split) && !(split < merged));
    QVERIFY(merged <= split && merged >= split);
}

void tst_OdictIds::mergedName_data()
{
    QTest::addColumn<COdictObjectName>("name");
    QTest::addColumn<QString>("merged");

    QTest::newRow("no sub-id") << COdictObjectName("Speed") << "Speed";
    QTest::newRow("sub-id") << COdictObjectName("Speed", 3u) << "Speed_3";
    QTest::newRow("sub-id 0") << COdictObjectName("Speed", 0u) << "Speed_0";
    QTest::newRow("largest sub-id") << COdictObjectName("Speed", 4294967294u) << "Speed_4294967294";
    QTest::newRow("empty name") << COdictObjectName(QString(), 7u) << "_7";
}

void tst_OdictIds::mergedName()
{
    QFETCH(COdictObjectName, name);
    QFETCH(QString, merged);

    QCOMPARE(name.mergedName(), merged);
}

void tst_OdictIds::nameOrdering_data()
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

void tst_OdictIds::nameOrdering()
{
    QFETCH(COdictObjectName, lower);
    QFETCH(COdictObjectName, higher);

    QVERIFY(lower < higher);
    QVERIFY(lower <= higher);
    QVERIFY(higher > lower);
    QVERIFY(higher >= lower);
    QVERIFY(!(higher < lower));
    QVERIFY(!(lower >= higher));
    QVERIFY(lower.compare(higher) < 0);
    QVERIFY(higher.compare(lower) > 0);
}

void tst_OdictIds::nameOrderingMatchesMergedKeys()
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

void tst_OdictIds::nameHash()
{
    QCOMPARE(qHash(COdictObjectName("Speed", 3u)), qHash(QStringLiteral("Speed_3")));
    QCOMPARE(qHash(COdictObjectName("Speed", 3u), 42u), qHash(QStringLiteral("Speed_3"), 42u));
    QCOMPARE(qHash(COdictObjectName("Speed")), qHash(QStringLiteral("Speed")));

    QHash<COdictObjectName, int> hash;
    hash.insert(COdictObjectName("Speed", 3u), 1);
    hash.insert(COdictObjectName("Speed_3"), 2);
    QCOMPARE(hash.size(), 2);
    QCOMPARE(hash.value(COdictObjectName("Speed", 3u)), 1);
}

void tst_OdictIds::nameDebug()
{
    QCOMPARE(debugText(COdictObjectName("Speed", 3u)), QStringLiteral("COdictObjectName( Speed, 3 ) "));
    QCOMPARE(debugText(COdictObjectName("Speed")), QStringLiteral("COdictObjectName( Speed, 4294967295 ) "));

    QString text;
    QDebug(&text) << COdictObjectName(QString::fromUtf8("Drehzahl\u00e9"), 0u) << QStringLiteral("x");
    QCOMPARE(text, QString::fromUtf8("COdictObjectName( Drehzahl\u00e9, 0 ) \"x\" "));
}

void tst_OdictIds::nameStream()
{
    const QByteArray bytes = bigEndian([](QDataStream &out) { out << COdictObjectName("Ab", 3u); });
    // QString: byte length, then UTF-16; then the sub-id.
    QCOMPARE(bytes, QByteArray::fromHex("00000004" "00410062" "00000003"));

    QDataStream in(bytes);
    COdictObjectName read;
    in >> read;
    QCOMPARE(in.status(), QDataStream::Ok);
    QCOMPARE(read, COdictObjectName("Ab", 3u));
}

void tst_OdictIds::nameStreamTruncated()
{
    QDataStream in(QByteArray::fromHex("00000004004100"));
    COdictObjectName read("Speed", 3u);
    in >> read;
    QVERIFY(in.status() != QDataStream::Ok);
}

QTEST_GUILESS_MAIN(tst_OdictIds)
#include "tst_odictids.moc"

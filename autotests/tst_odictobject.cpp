#include "COdictObject.h"
#include "streamcheck.h"

#include <QDataStream>
#include <QDebug>
#include <QtTest>

#include <cmath>
#include <limits>
#include <utility>

char *toString(const COdictObject &object)
{
    return qstrdup(debugText(object).toUtf8().constData());
}

namespace {

CVariant i32(const char *text)
{
    return CVariant(QString::fromLatin1(text), NTypes::E_I32);
}

COdictObject typed(unsigned int id, const char *name, NTypes::eTypes_t type, unsigned int size)
{
    COdictObject o;
    o.setId(id);
    o.setName(QString::fromLatin1(name));
    o.setDataType(type);
    o.setDataSize(size);
    return o;
}

// Every field but the Y set (see xyObject()) away from its default, so that a field missing
// from copying, comparing or streaming shows up.
COdictObject makeObject()
{
    COdictObject o = typed(0x2000u, "Speed", NTypes::E_I32, 4);
    o.setSubId(3);
    o.setRefId(QUuid(QStringLiteral("{12345678-9abc-def0-1234-56789abcdef0}")));
    o.setVersion(NTypes::uVersion_t(0x011C002A));
    o.setDS402Id(0x4000);
    o.setProfinetId(17);
    o.setUiName(QStringLiteral("Speed setpoint"));
    o.setUiShortName(QStringLiteral("n set"));
    o.setUnit(10); // rpm
    o.setAccessRights(0x0Au);
    o.setUserlevelRead(2);
    o.setUserlevelWrite(3);
    o.setUserlevelVisible(4);
    o.setDigits(2);
    COdictObjectEnum e;
    e.insert(-1, QStringLiteral("Off"));
    e.insert(5, QStringLiteral("On"));
    o.setEnumData(e);
    o.setMinValue(i32("-100"));
    o.setMaxValue(i32("100"));
    o.setDefaultValue(i32("5"));
    o.setObjectUsage(0x82u);
    o.setSubIdList({1, 4});
    o.setVirtual(true);
    return o;
}

// Bits 0 "Ready" and 5 "Enabled", default 0x21.
COdictObject bitSetObject()
{
    COdictObject o = typed(0x100u, "STATUS", NTypes::E_U16, 2);
    COdictObjectBitSet bits;
    bits.insert(0, QStringLiteral("Ready"));
    bits.insert(5, QStringLiteral("Enabled"));
    o.setBitSetData(bits);
    o.setDefaultValue(CVariant(QStringLiteral("0x21"), NTypes::E_U16));
    return o;
}

// X in [-10, 10] default 1 unit 3; Y in [-20, 20] default 2 unit 20.
COdictObject xyObject(unsigned int size)
{
    COdictObject o = typed(0x200u, "CURVE", NTypes::E_XY, size);
    o.setXMinValue(i32("-10"));
    o.setXMaxValue(i32("10"));
    o.setXDefaultValue(i32("1"));
    o.setYMinValue(i32("-20"));
    o.setYMaxValue(i32("20"));
    o.setYDefaultValue(i32("2"));
    o.setXUnit(3);
    o.setYUnit(20);
    o.setObjectUsage(NkrOdict::E_OU_PARAMETER, true);
    o.addSubId(9);
    return o;
}


} // namespace

class tst_OdictObject : public QObject
{
    Q_OBJECT

private slots:
    void nullAndValid_data()
    {
        QTest::addColumn<COdictObject>("object");
        QTest::addColumn<QString>("expected");

        COdictObject named;
        named.setName(QStringLiteral("Speed"));
        QTest::newRow("default") << COdictObject() << "null invalid";
        QTest::newRow("name without id") << named << "set invalid";
        named.setId(0u);
        QTest::newRow("name and id 0") << named << "set valid";
        named.setName(QStringLiteral("UNKNOWN"));
        QTest::newRow("UNKNOWN with id") << named << "set invalid";
        named.setName(QStringLiteral("unknown"));
        QTest::newRow("lower-case unknown") << named << "set valid";
        named.setName(QString());
        QTest::newRow("empty name") << named << "set invalid";
        COdictObject flagOnly;
        flagOnly.setVirtual(true);
        QTest::newRow("virtual flag only") << flagOnly << "set invalid";
    }

    void nullAndValid()
    {
        QFETCH(COdictObject, object);
        QFETCH(QString, expected);

        QCOMPARE(QStringLiteral("%1 %2").arg(object.isNull() ? "null" : "set", object.isValid() ? "valid" : "invalid"), expected);
    }

    void copiesShareUntilChanged()
    {
        const COdictObject first = makeObject();
        COdictObject second = first;
        // The const pointer accessors point into the record: equal pointers mean one record.
        QCOMPARE(std::as_const(second).enumDataPtr(), first.enumDataPtr());
        second.setName(QStringLiteral("Torque"));
        QVERIFY(std::as_const(second).enumDataPtr() != first.enumDataPtr());

        // Writing through the non-const pointer detaches as well.
        COdictObject third = first;
        third.bitSetDataPtr()->insert(3, QStringLiteral("Bit3"));
        QVERIFY(third.hasBitSet());
        QCOMPARE(first, makeObject());
    }

    void getMinValueReturnsMaximum()
    {
        const COdictObject o = makeObject();
        QCOMPARE(o.getMinValue(), i32("100"));
        QCOMPARE(o.minValue(), i32("-100"));
        QCOMPARE(o.getXMinValue(), i32("-100"));
    }

    void usage_data()
    {
        QTest::addColumn<uint>("initial");
        QTest::addColumn<uint>("flag");
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("expected"); // usage, base usage, and o(bject) p(arameter) d(atabase parameter)

        QTest::newRow("0x81 + parameter") << 0x81u << 0x02u << true << "83 80 -pd";
        QTest::newRow("0x05") << 0x05u << 0x00u << true << "05 04 ---";
        QTest::newRow("0x01") << 0x01u << 0x00u << true << "01 01 o--";
        QTest::newRow("0x83 - database") << 0x83u << 0x80u << false << "03 02 -p-";
        QTest::newRow("other bit kept") << 0x41u << 0x01u << false << "40 00 ---";
    }

    void usage()
    {
        QFETCH(uint, initial);
        QFETCH(uint, flag);
        QFETCH(bool, on);
        QFETCH(QString, expected);

        COdictObject o;
        o.setObjectUsage(initial);
        o.setObjectUsage(NkrOdict::eObjectUsage_t(flag), on);
        QCOMPARE(QString::asprintf("%02x %02x %c%c%c", o.objectUsage(), uint(o.baseObjectUsage()), o.isObject() ? 'o' : '-',
                                   o.isParameter() ? 'p' : '-', o.isDatabaseParameter() ? 'd' : '-'),
                 expected);
    }

    void ds402Numbering_data()
    {
        QTest::addColumn<uint>("id");
        QTest::addColumn<uint>("ds402");
        QTest::addColumn<uint>("back");

        QTest::newRow("0x1FFF") << 0x1FFFu << 0x3FFFu << 0x3FFFu;
        QTest::newRow("0x0FFF") << 0x0FFFu << 0x2FFFu << 0x0FFFu;
        QTest::newRow("0x2000 stays") << 0x2000u << 0x2000u << 0u;
        QTest::newRow("0x3000 stays") << 0x3000u << 0x3000u << 0x3000u;
    }

    void ds402Numbering()
    {
        QFETCH(uint, id);
        QFETCH(uint, ds402);
        QFETCH(uint, back);

        QCOMPARE(COdictObject::idToDS402Id(id), ds402);
        QCOMPARE(COdictObject::ds402IdToId(ds402), back);
        QCOMPARE(COdictObject::ds402IdToUId(ds402, 4), COdictObjectId(back, 4u));
        QCOMPARE(COdictObject::uniqueIdToDS402Id(COdictObjectId(id, 7u)), ds402);
    }

    void dataTypeClasses_data()
    {
        QTest::addColumn<uint>("type");
        QTest::addColumn<uint>("size");
        QTest::addColumn<QString>("expected"); // the DS402 part count, then the classes the type is in

        QTest::newRow("STRING") << 12u << 8u << "0 complex";
        QTest::newRow("TIME is not complex") << 23u << 4u << "0";
        QTest::newRow("record, any size") << 26u << 40u << "3 ds402 complex";
        QTest::newRow("u16 array") << 27u << 10u << "5 ds402 complex";
        QTest::newRow("i32 array rounds down") << 29u << 10u << "2 ds402 complex";
    }

    void dataTypeClasses()
    {
        QFETCH(uint, type);
        QFETCH(uint, size);
        QFETCH(QString, expected);

        const COdictObject o = typed(1u, "X", NTypes::eTypes_t(type), size);
        QCOMPARE(QString::number(o.ds402PartCount()) + QLatin1String(o.isDS402DataType() ? " ds402" : "")
                     + QLatin1String(o.isComplexDataType() ? " complex" : ""),
                 expected);
    }

    void idAndNameSetters()
    {
        COdictObject o;
        o.setId(COdictObjectId(0x2000u, 7u));
        o.setId(NkrObjectIds::eObjectId_t(0x0000200000000005ull)); // lower half only, sub-id kept
        QCOMPARE(o.uniqueId(), COdictObjectId(5u, 7u));
        o.setId(0x0000300000000002ull); // unpacked
        QCOMPARE(o.uniqueId(), COdictObjectId(0x3000u, 2u));
        o.setId(0x10); // a plain literal replaces the id only
        QCOMPARE(o.uniqueId(), COdictObjectId(0x10u, 2u));

        o.setName(COdictObjectName(QStringLiteral("Speed"), 3));
        o.setName(QStringLiteral("Torque"));
        QCOMPARE(o.uName(), COdictObjectName(QStringLiteral("Torque"), 3));
    }

    void addSubIdKeepsAscendingOrder()
    {
        COdictObject o;
        for (const uint subId : {0u, 10u, 4u, 7u, 4u, 10u})
            o.addSubId(subId);
        QCOMPARE(o.subIdList(), (QList<uint>{0, 4, 7, 10}));
        QCOMPARE(o.highestSubId(), 10u);
        o.removeSubIdFromList(4);
        QCOMPARE(o.subIdList(), (QList<uint>{0, 7, 10}));
    }

    void expandedDefault_data()
    {
        QTest::addColumn<uint>("size");
        QTest::addColumn<CVariant>("stored");
        QTest::addColumn<CVariant>("expanded");

        const CVariant u16(QStringLiteral("0x1234"), NTypes::E_U16);
        QTest::newRow("u16 x4") << 8u << u16 << CVariant(QByteArray::fromHex("3412341234123412"), NTypes::E_U16, 4);
        QTest::newRow("partial element dropped") << 5u << u16 << CVariant(QByteArray::fromHex("34123412"), NTypes::E_U16, 2);
        QTest::newRow("one element") << 2u << u16 << u16;
        QTest::newRow("too large") << 0x10000u << u16 << u16;
        QTest::newRow("null default") << 8u << CVariant(NTypes::E_U16) << CVariant(NTypes::E_U16);
    }

    void expandedDefault()
    {
        QFETCH(uint, size);
        QFETCH(CVariant, stored);
        QFETCH(CVariant, expanded);

        COdictObject o = typed(1u, "X", NTypes::E_U16, size);
        o.setDefaultValue(stored);
        QCOMPARE(o.defaultValue(), stored);
        QCOMPARE(o.defaultValue(true), expanded);
    }

    void possibleVirtualSubIds_data()
    {
        QTest::addColumn<COdictObject>("object");
        QTest::addColumn<QList<uint>>("subIds");
        QTest::addColumn<bool>("could");

        QTest::newRow("bit set") << bitSetObject() << QList<uint>{0, 5} << true;
        QTest::newRow("xy 16 bytes") << xyObject(16) << QList<uint>{0, 1, 2, 3} << true;
        QTest::newRow("xy 6 bytes") << xyObject(6) << QList<uint>{0} << true;
        QTest::newRow("xy too small") << xyObject(3) << QList<uint>() << true;
        QTest::newRow("plain") << makeObject() << QList<uint>() << false;
        COdictObject invalid = xyObject(16);
        invalid.setId(COdictObject::NoId);
        QTest::newRow("xy without id") << invalid << QList<uint>{0, 1, 2, 3} << false;
    }

    void possibleVirtualSubIds()
    {
        QFETCH(COdictObject, object);
        QFETCH(QList<uint>, subIds);
        QFETCH(bool, could);

        QCOMPARE(object.possibleVirtualSubIds(), subIds);
        QCOMPARE(object.couldHaveVirtualSubObjects(), could);
        // Exactly the listed sub-ids can be made.
        for (uint subId = 0; subId < 8; ++subId) {
            bool ok = false;
            const COdictObject sub = COdictObject::createVirtualSubObject(object, subId, &ok);
            QCOMPARE(ok, subIds.contains(subId));
            QCOMPARE(sub.isNull(), !ok);
            COdictObject target = object;
            QCOMPARE(COdictObject::createVirtualSubObject(target, subId), ok);
            QCOMPARE(target, ok ? sub : object);
        }
    }

    void virtualSubObject_data()
    {
        QTest::addColumn<COdictObject>("owner");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<CVariant>("max");
        QTest::addColumn<CVariant>("def");
        QTest::addColumn<uint>("unit");

        const CVariant one(QStringLiteral("1"), NTypes::E_BOOL);
        // Bit 5 of the default 0x21 is set.
        QTest::newRow("bit 5") << bitSetObject() << 5u << "Enabled" << one << one << COdictObject::NoId;
        QTest::newRow("X1") << xyObject(16) << 0u << "X1-Value" << i32("10") << i32("1") << 3u;
        QTest::newRow("Y2") << xyObject(16) << 3u << "Y2-Value" << i32("20") << i32("2") << 20u;
    }

    void virtualSubObject()
    {
        QFETCH(COdictObject, owner);
        QFETCH(uint, subId);
        QFETCH(QString, name);
        QFETCH(CVariant, max);
        QFETCH(CVariant, def);
        QFETCH(uint, unit);

        const COdictObject sub = COdictObject::createVirtualSubObject(owner, subId, nullptr);
        QCOMPARE(sub.name(), name);
        QCOMPARE(sub.uiName(), name);
        QCOMPARE(sub.uniqueId(), COdictObjectId(owner.id(), subId));
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.dataType(), max.type());
        QCOMPARE(sub.dataSize(), max.type() == NTypes::E_BOOL ? 1u : 4u);
        QCOMPARE(sub.maxValue(), max);
        QCOMPARE(sub.defaultValue(), def);
        QCOMPARE(sub.unit(), unit);
        // Nothing of the owner's structure is carried over.
        QVERIFY(!sub.hasEnumOrBitSet() && sub.yMaxValue().isNull() && sub.yUnit() == COdictObject::NoId
                && sub.subIdList().isEmpty());
    }

    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");

        COdictObject o = makeObject(); // -1 Off, 5 On; rpm; 2 digits
        QTest::newRow("null value") << o.valueToStr(CVariant(NTypes::E_I32), true) << QString();
        QTest::newRow("enum without entry") << o.valueToStr(i32("7")) << "7";
        QTest::newRow("enum with unit") << o.valueToStr(i32("-1"), true) << "Off rpm";
        QTest::newRow("long info") << o.longInfo() << "Speed (ID 8192:03)";
        QTest::newRow("ui short info") << o.uiShortInfo() << "n set (ID 8192:03)";
        QTest::newRow("x unit text") << o.xUnitText(NkrUnits::E_UT_LINEAR) << "mm/s";
        o.setSubId(COdictObject::NoId);
        QTest::newRow("ui long info") << o.uiLongInfo() << "Speed setpoint (ID 8192)";
        QTest::newRow("default as text") << o.defaultValueAsStr(true) << "On rpm";
        QString debug;
        QDebug(&debug) << o;
        QTest::newRow("debug") << debug.trimmed() << "COdictObject( id=8192, subid=4294967295, Speed, NTypes::E_I32 )";

        const COdictObject bits = bitSetObject();
        const auto u16 = [](const char *text) { return CVariant(QString::fromLatin1(text), NTypes::E_U16); };
        QTest::newRow("bits") << bits.valueToStr(u16("0x21")) << "Ready, Enabled";
        QTest::newRow("no bit set") << bits.valueToStr(u16("0")) << "0";
        QTest::newRow("unnamed bit") << bits.valueToStr(u16("0x0120")) << "Enabled, Bit 8";

        COdictObject plain;
        plain.setDigits(2);
        plain.setUnit(10);
        QTest::newRow("float digits") << plain.valueToStr(CVariant(QStringLiteral("1.5"), NTypes::E_F32), true) << "1.50 rpm";
        plain.setDigits(-1);
        QTest::newRow("float own text") << plain.valueToStr(CVariant(QStringLiteral("1.25"), NTypes::E_F64)) << "1.25";
        QTest::newRow("bool") << plain.valueToStr(CVariant(QStringLiteral("true"), NTypes::E_BOOL)) << "1";
        QTest::newRow("octets") << plain.valueToStr(CVariant(QStringLiteral("0A0b"), NTypes::E_OCTETS)) << "0a0b";
        QTest::newRow("u16 array") << plain.valueToStr(CVariant(QByteArray::fromHex("01000200"), NTypes::E_U16, 2)) << "01000200";
    }

    void texts()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);

        QCOMPARE(text, expected);
    }

    void compare()
    {
        // Scalars compare as values of the data type, arrays byte by byte.
        COdictObject o = typed(1u, "X", NTypes::E_I32, 4);
        QVERIFY(o.compare(QVariant(5), QVariant(QStringLiteral("5"))));
        QVERIFY(!o.compare(QVariant(5), QVariant(6)));
        o.setArrayLength(2);
        QVERIFY(!o.compare(QVariant(QByteArray::fromHex("0100")), QVariant(QByteArray::fromHex("010000"))));
    }

    void streamLayout()
    {
        const QByteArray bytes = bigEndian(COdictObject());
        const QByteArray head = QByteArray(16, '\0') // null reference id
            + QByteArray::fromHex("ffffffff" "ffffffff" // id, sub-id
                                  "0000" "00" "00" // version: build, minor, main
                                  "ffffffff" "ffffffff" // DS402 and Profinet ids
                                  "0000000e" "0055004e004b004e004f0057004e"); // "UNKNOWN"
        QCOMPARE(bytes.left(head.size()).toHex(), head.toHex());
        // The tail: usage 0, empty sub-id list, virtual flag off.
        QCOMPARE(bytes.right(9).toHex(), QByteArray("000000000000000000"));

        const QByteArray full = bigEndian(makeObject());
        QCOMPARE(full.mid(24, 4).toHex(), QByteArray("002a1c01"));
        QCOMPARE(full.right(17).toHex(), QByteArray("00000082" "00000002" "00000001" "00000004" "01"));
    }

    void streamRoundTrip_data()
    {
        QTest::addColumn<COdictObject>("object");

        QTest::newRow("default") << COdictObject();
        QTest::newRow("every field") << makeObject();
        QTest::newRow("bit set") << bitSetObject();
        QTest::newRow("xy") << xyObject(16);
    }

    void streamRoundTrip()
    {
        QFETCH(COdictObject, object);

        const QByteArray bytes = bigEndian(object);
        QDataStream in(bytes);
        COdictObject read = makeObject();
        in >> read;
        QCOMPARE(in.status(), QDataStream::Ok);
        QVERIFY(in.atEnd());
        QCOMPARE(read, object);

        for (int length = 0; length < bytes.size(); ++length) {
            QDataStream cut(bytes.left(length));
            COdictObject partial;
            cut >> partial;
            QVERIFY2(cut.status() != QDataStream::Ok, qPrintable(QString::number(length)));
        }
    }

    void limitsComeBackExactly_data()
    {
        QTest::addColumn<CVariant>("value");

        QTest::newRow("null") << CVariant();
        QTest::newRow("null of a type") << CVariant(NTypes::E_U16);
        QTest::newRow("negative") << i32("-100");
        QTest::newRow("I64 minimum") << CVariant::fromI64(std::numeric_limits<qint64>::min(), NTypes::E_I64);
        QTest::newRow("U64 maximum") << CVariant::fromU64(std::numeric_limits<quint64>::max(), NTypes::E_U64);
        QTest::newRow("bool") << CVariant(QStringLiteral("1"), NTypes::E_BOOL);
        QTest::newRow("F32") << CVariant(QStringLiteral("0.1"), NTypes::E_F32);
        QTest::newRow("negative zero") << CVariant::fromF64(-0.0, NTypes::E_F64);
        QTest::newRow("NaN") << CVariant::fromF64(std::nan(""), NTypes::E_F64);
        QTest::newRow("text") << CVariant(QStringLiteral("abc"), NTypes::E_STRING);
        QTest::newRow("bytes") << CVariant(QStringLiteral("0a0b"), NTypes::E_OCTETS);
        QTest::newRow("array") << CVariant(QByteArray::fromHex("010002000300"), NTypes::E_U16, 3);
    }

    void limitsComeBackExactly()
    {
        // The stream form holds type, count and the stored QVariant: equal bytes mean the same value.
        QFETCH(CVariant, value);

        COdictObject o = makeObject();
        o.setMinValue(value);
        o.setMaxValue(value);
        o.setDefaultValue(value);
        QCOMPARE(bigEndian(o.minValue()).toHex(), bigEndian(value).toHex());
        QCOMPARE(bigEndian(o.maxValue()).toHex(), bigEndian(value).toHex());
        QCOMPARE(bigEndian(o.defaultValue()).toHex(), bigEndian(value).toHex());

        COdictObject copy = o;
        copy.setName(QStringLiteral("Other")); // a detached record
        QCOMPARE(bigEndian(copy.defaultValue()).toHex(), bigEndian(value).toHex());

        // Back to a number: nothing of the value stays behind.
        o.setMinValue(i32("-100"));
        o.setMaxValue(i32("100"));
        o.setDefaultValue(i32("5"));
        QCOMPARE(o, makeObject());
    }

    void rareFieldsReturnToDefault_data()
    {
        QTest::addColumn<int>("field");
        QTest::newRow("enumeration") << 0;
        QTest::newRow("bit set") << 1;
        QTest::newRow("Y minimum") << 2;
        QTest::newRow("Y default") << 3;
        QTest::newRow("text default") << 4;
    }

    void rareFieldsReturnToDefault()
    {
        // A field set and reset again leaves an object equal to one that never had it.
        QFETCH(int, field);

        COdictObject o;
        COdictObjectEnum enumeration;
        enumeration.insert(1, QStringLiteral("On"));
        COdictObjectBitSet bits;
        bits.insert(1, QStringLiteral("Ready"));
        switch (field) {
        case 0:
            o.setEnumData(enumeration);
            QVERIFY(o.hasEnum() && !o.isNull());
            o.setEnumData(COdictObjectEnum());
            break;
        case 1:
            o.setBitSetData(bits);
            QVERIFY(o.hasBitSet() && !o.isNull());
            o.bitSetDataPtr()->remove(1);
            break;
        case 2:
            o.setYMinValue(i32("3"));
            QVERIFY(!o.isNull());
            o.setYMinValue(CVariant());
            break;
        case 3:
            o.setYDefaultValue(CVariant(NTypes::E_I32)); // null, but of a type: not the default
            QVERIFY(!o.isNull());
            o.setYDefaultValue(CVariant());
            break;
        default:
            o.setDefaultValue(CVariant(QStringLiteral("text"), NTypes::E_STRING));
            QVERIFY(!o.isNull());
            o.setDefaultValue(CVariant());
            break;
        }
        QVERIFY(o.isNull());
        QCOMPARE(o, COdictObject());
        QCOMPARE(bigEndian(o), bigEndian(COdictObject()));
    }

    void garbageSubIdCountFails()
    {
        // A sub-id count of 0xFFFFFFFF with one entry behind it: the loop ends with the data.
        QByteArray bytes = bigEndian(COdictObject());
        bytes.chop(5);
        bytes += QByteArray::fromHex("ffffffff" "00000001");
        QDataStream in(bytes);
        COdictObject read;
        in >> read;
        QVERIFY(in.status() != QDataStream::Ok);
        QCOMPARE(read.subIdList(), QList<uint>{1});
    }
};

QTEST_GUILESS_MAIN(tst_OdictObject)
#include "tst_odictobject.moc"

#include "COdictObject.h"

#include <QDataStream>
#include <QDebug>
#include <QtTest>

#include <utility>

char *toString(const COdictObject &object)
{
    QString text;
    QDebug(&text) << object;
    return qstrdup(text.toUtf8().constData());
}

namespace {

CVariant i32(const char *text)
{
    return CVariant(QString::fromLatin1(text), NTypes::E_I32);
}

COdictObject makeObject()
{
    COdictObject o;
    o.setRefId(QUuid(QStringLiteral("{12345678-9abc-def0-1234-56789abcdef0}")));
    o.setId(COdictObjectId(0x2000u, 3u));
    o.setVersion(NTypes::uVersion_t(0x011C002A));
    o.setDS402Id(0x4000);
    o.setProfinetId(17);
    o.setName(QStringLiteral("Speed"));
    o.setUiName(QStringLiteral("Speed setpoint"));
    o.setUiShortName(QStringLiteral("n set"));
    o.setUnit(10); // rpm
    o.setYUnit(30);
    o.setDataType(NTypes::E_I32);
    o.setDataSize(4);
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
    o.setYMinValue(i32("-7"));
    o.setYMaxValue(i32("7"));
    o.setYDefaultValue(i32("1"));
    o.setObjectUsage(0x82u);
    o.addSubId(1);
    o.addSubId(4);
    o.setVirtual(true);
    return o;
}

COdictObject bitSetObject()
{
    COdictObject o;
    o.setId(0x100u);
    o.setName(QStringLiteral("STATUS"));
    o.setDataType(NTypes::E_U16);
    o.setDataSize(2);
    COdictObjectBitSet bits;
    bits.insert(0, QStringLiteral("Ready"));
    bits.insert(5, QStringLiteral("Enabled"));
    o.setBitSetData(bits);
    o.setDefaultValue(CVariant(QStringLiteral("0x21"), NTypes::E_U16));
    return o;
}

COdictObject xyObject(unsigned int size)
{
    COdictObject o;
    o.setId(0x200u);
    o.setName(QStringLiteral("CURVE"));
    o.setDataType(NTypes::E_XY);
    o.setDataSize(size);
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

QByteArray streamed(const COdictObject &object)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << object;
    return bytes;
}

} // namespace

class tst_OdictObject : public QObject
{
    Q_OBJECT

private slots:
    void validity_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<uint>("id");
        QTest::addColumn<bool>("valid");

        QTest::newRow("name without id") << QStringLiteral("Speed") << 0xFFFFFFFFu << false;
        QTest::newRow("UNKNOWN with id") << QStringLiteral("UNKNOWN") << 5u << false;
        QTest::newRow("lower-case unknown") << QStringLiteral("unknown") << 5u << true;
        QTest::newRow("empty name") << QString() << 5u << false;
        QTest::newRow("name and id 0") << QStringLiteral("Speed") << 0u << true;
    }

    void validity()
    {
        QFETCH(QString, name);
        QFETCH(uint, id);
        QFETCH(bool, valid);

        COdictObject o;
        QVERIFY(o.isNull());
        QVERIFY(!o.isValid());
        o.setName(name);
        o.setId(id);
        QCOMPARE(o.isValid(), valid);
        QVERIFY(!o.isNull());
    }

    void nullTracksEveryField()
    {
        COdictObject o;
        o.setUserlevelWrite(2);
        QVERIFY(!o.isNull());
        o.setUserlevelWrite(1);
        QVERIFY(o.isNull());
        o.setVirtual(true);
        QVERIFY(!o.isNull());
        QCOMPARE(COdictObject().highestSubId(), 0xFFFFFFFFu);
    }

    void copiesShareUntilChanged()
    {
        const COdictObject first = makeObject();
        COdictObject second = first;
        // The const pointer accessors point into the record: equal pointers mean one record.
        QCOMPARE(std::as_const(second).enumDataPtr(), first.enumDataPtr());
        second.setName(QStringLiteral("Torque"));
        QVERIFY(std::as_const(second).enumDataPtr() != first.enumDataPtr());
        QCOMPARE(first.name(), QStringLiteral("Speed"));
        QVERIFY(first != second);

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
        QTest::addColumn<uint>("usage");
        QTest::addColumn<uint>("base");
        QTest::addColumn<bool>("isObject");

        QTest::newRow("0x81 + parameter") << 0x81u << 0x02u << true << 0x83u << 0x80u << false;
        QTest::newRow("0x05") << 0x05u << 0x00u << true << 0x05u << 0x04u << false;
        QTest::newRow("0x01") << 0x01u << 0x00u << true << 0x01u << 0x01u << true;
        QTest::newRow("0x83 - database") << 0x83u << 0x80u << false << 0x03u << 0x02u << false;
        QTest::newRow("other bit kept") << 0x41u << 0x01u << false << 0x40u << 0x00u << false;
    }

    void usage()
    {
        QFETCH(uint, initial);
        QFETCH(uint, flag);
        QFETCH(bool, on);
        QFETCH(uint, usage);
        QFETCH(uint, base);
        QFETCH(bool, isObject);

        COdictObject o;
        o.setObjectUsage(initial);
        o.setObjectUsage(NkrOdict::eObjectUsage_t(flag), on);
        QCOMPARE(o.objectUsage(), usage);
        QCOMPARE(uint(o.baseObjectUsage()), base);
        QCOMPARE(o.isObject(), isObject);
        QCOMPARE(o.isParameter(), bool(usage & 0x02));
        QCOMPARE(o.isActual(), bool(usage & 0x04));
        QCOMPARE(o.isDatabaseParameter(), bool(usage & 0x80));
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
        QCOMPARE(COdictObject::uIdToDS402Id(NkrObjectIds::eObjectId_t((quint64(id) << 32) | 7u)), ds402);
    }

    void dataTypeClasses_data()
    {
        QTest::addColumn<uint>("type");
        QTest::addColumn<uint>("size");
        QTest::addColumn<int>("parts");
        QTest::addColumn<bool>("ds402");
        QTest::addColumn<bool>("complex");

        QTest::newRow("F64") << 11u << 8u << 0 << false << false;
        QTest::newRow("STRING") << 12u << 8u << 0 << false << true;
        QTest::newRow("TIME is not complex") << 23u << 4u << 0 << false << false;
        QTest::newRow("XY") << 24u << 8u << 0 << false << true;
        QTest::newRow("record, any size") << 26u << 40u << 3 << true << true;
        QTest::newRow("u16 array") << 27u << 10u << 5 << true << true;
        QTest::newRow("u32 array of 12 bytes") << 28u << 12u << 3 << true << true;
        QTest::newRow("i32 array rounds down") << 29u << 10u << 2 << true << true;
        QTest::newRow("f32 array") << 31u << 16u << 4 << true << true;
        QTest::newRow("STRUCT") << 32u << 8u << 0 << false << true;
    }

    void dataTypeClasses()
    {
        QFETCH(uint, type);
        QFETCH(uint, size);
        QFETCH(int, parts);
        QFETCH(bool, ds402);
        QFETCH(bool, complex);

        COdictObject o;
        o.setDataType(NTypes::eTypes_t(type));
        o.setDataSize(size);
        QCOMPARE(o.ds402PartCount(), parts);
        QCOMPARE(o.isDS402DataType(), ds402);
        QCOMPARE(o.isComplexDataType(), complex);
        QCOMPARE(COdictObject::isComplexDataType(NTypes::eTypes_t(type)), complex);
    }

    void idNameAndAccessSetters()
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

        o.setAccessRights(0x0Fu);
        o.setAccessRights(NkrOdict::E_AR_READ_OPERATOR, false);
        o.setAccessRights(NkrOdict::E_AR_WRITE_PLC, true);
        QCOMPARE(o.accessRights(), 0x4Du);
    }

    void addSubIdKeepsAscendingOrder_data()
    {
        QTest::addColumn<QList<uint>>("added");
        QTest::addColumn<QList<uint>>("expected");

        QTest::newRow("ascending") << QList<uint>{0, 1, 5} << QList<uint>{0, 1, 5};
        QTest::newRow("duplicate last") << QList<uint>{0, 5, 5} << QList<uint>{0, 5};
        QTest::newRow("duplicate inside") << QList<uint>{1, 3, 5, 3} << QList<uint>{1, 3, 5};
        QTest::newRow("descending") << QList<uint>{5, 2, 0} << QList<uint>{0, 2, 5};
        QTest::newRow("in between") << QList<uint>{0, 10, 4, 7} << QList<uint>{0, 4, 7, 10};
    }

    void addSubIdKeepsAscendingOrder()
    {
        QFETCH(QList<uint>, added);
        QFETCH(QList<uint>, expected);

        COdictObject o;
        for (const uint subId : added)
            o.addSubId(subId);
        QCOMPARE(o.subIdList(), expected);
        QCOMPARE(o.highestSubId(), expected.last());
        o.removeSubIdFromList(expected.first());
        QCOMPARE(o.subIdCount(), expected.size() - 1);
    }

    void expandedDefault_data()
    {
        QTest::addColumn<uint>("type");
        QTest::addColumn<uint>("size");
        QTest::addColumn<CVariant>("stored");
        QTest::addColumn<CVariant>("expanded");

        const CVariant u16(QStringLiteral("0x1234"), NTypes::E_U16);
        QTest::newRow("u16 x4") << 4u << 8u << u16 << CVariant(QByteArray::fromHex("3412341234123412"), NTypes::E_U16, 4);
        QTest::newRow("partial element dropped") << 4u << 5u << u16 << CVariant(QByteArray::fromHex("34123412"), NTypes::E_U16, 2);
        QTest::newRow("one element") << 4u << 2u << u16 << u16;
        QTest::newRow("too large") << 4u << 0x10000u << u16 << u16;
        QTest::newRow("null default") << 4u << 8u << CVariant(NTypes::E_U16) << CVariant(NTypes::E_U16);
    }

    void expandedDefault()
    {
        QFETCH(uint, type);
        QFETCH(uint, size);
        QFETCH(CVariant, stored);
        QFETCH(CVariant, expanded);

        COdictObject o;
        o.setDataType(NTypes::eTypes_t(type));
        o.setDataSize(size);
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
        invalid.setId(0xFFFFFFFFu);
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

    void virtualBitSubObject()
    {
        const COdictObject owner = bitSetObject();
        bool ok = false;
        const COdictObject sub = COdictObject::createVirtualSubObject(owner, 5, &ok);
        QVERIFY(ok);
        QCOMPARE(sub.name(), QStringLiteral("Enabled"));
        QCOMPARE(sub.uiName(), QStringLiteral("Enabled"));
        QCOMPARE(sub.uniqueId(), COdictObjectId(0x100u, 5u));
        QVERIFY(sub.isVirtual());
        QVERIFY(!sub.hasEnumOrBitSet());
        QCOMPARE(sub.dataType(), NTypes::E_BOOL);
        QCOMPARE(sub.dataSize(), 1u);
        QCOMPARE(sub.maxValue(), CVariant(QStringLiteral("1"), NTypes::E_BOOL));
        QCOMPARE(sub.defaultValue(), CVariant(QStringLiteral("1"), NTypes::E_BOOL)); // 0x21 has bit 5
        QCOMPARE(owner, bitSetObject());
    }

    void virtualXYSubObject_data()
    {
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<CVariant>("min");
        QTest::addColumn<CVariant>("def");
        QTest::addColumn<uint>("unit");

        QTest::newRow("X1") << 0u << QStringLiteral("X1-Value") << i32("-10") << i32("1") << 3u;
        QTest::newRow("Y1") << 1u << QStringLiteral("Y1-Value") << i32("-20") << i32("2") << 20u;
        QTest::newRow("X2") << 2u << QStringLiteral("X2-Value") << i32("-10") << i32("1") << 3u;
        QTest::newRow("Y2") << 3u << QStringLiteral("Y2-Value") << i32("-20") << i32("2") << 20u;
    }

    void virtualXYSubObject()
    {
        QFETCH(uint, subId);
        QFETCH(QString, name);
        QFETCH(CVariant, min);
        QFETCH(CVariant, def);
        QFETCH(uint, unit);

        const COdictObject sub = COdictObject::createVirtualSubObject(xyObject(16), subId, nullptr);
        QCOMPARE(sub.name(), name);
        QCOMPARE(sub.uiName(), name);
        QCOMPARE(sub.uniqueId(), COdictObjectId(0x200u, subId));
        QCOMPARE(sub.dataType(), NTypes::E_I32);
        QCOMPARE(sub.dataSize(), 4u);
        QCOMPARE(sub.minValue(), min);
        QCOMPARE(sub.defaultValue(), def);
        QCOMPARE(sub.unit(), unit);
        QVERIFY(sub.yMaxValue().isNull());
        QCOMPARE(sub.yUnit(), 0xFFFFFFFFu);
        QVERIFY(sub.subIdList().isEmpty());
        QVERIFY(sub.isVirtual());
    }

    void valueToStr_data()
    {
        QTest::addColumn<COdictObject>("object");
        QTest::addColumn<CVariant>("value");
        QTest::addColumn<bool>("withUnit");
        QTest::addColumn<QString>("text");

        const COdictObject withEnum = makeObject(); // -1 Off, 5 On; rpm; 2 digits
        QTest::newRow("null") << withEnum << CVariant(NTypes::E_I32) << true << QString();
        QTest::newRow("enum entry") << withEnum << i32("5") << false << QStringLiteral("On");
        QTest::newRow("enum without entry") << withEnum << i32("7") << false << QStringLiteral("7");
        QTest::newRow("enum with unit") << withEnum << i32("-1") << true << QStringLiteral("Off rpm");

        const COdictObject bits = bitSetObject();
        QTest::newRow("bits") << bits << CVariant(QStringLiteral("0x21"), NTypes::E_U16) << false << QStringLiteral("Ready, Enabled");
        QTest::newRow("no bit set") << bits << CVariant(QStringLiteral("0"), NTypes::E_U16) << false << QStringLiteral("0");
        QTest::newRow("unnamed bit") << bits << CVariant(QStringLiteral("0x0120"), NTypes::E_U16) << false << QStringLiteral("Enabled, Bit 8");

        COdictObject plain;
        plain.setDigits(2);
        plain.setUnit(10);
        QTest::newRow("float digits") << plain << CVariant(QStringLiteral("1.5"), NTypes::E_F32) << true << QStringLiteral("1.50 rpm");
        plain.setDigits(-1);
        QTest::newRow("float own text") << plain << CVariant(QStringLiteral("1.25"), NTypes::E_F64) << false << QStringLiteral("1.25");
        QTest::newRow("bool") << plain << CVariant(QStringLiteral("true"), NTypes::E_BOOL) << false << QStringLiteral("1");
        QTest::newRow("octets") << plain << CVariant(QStringLiteral("0A0b"), NTypes::E_OCTETS) << false << QStringLiteral("0a0b");
        QTest::newRow("u16 array") << plain << CVariant(QByteArray::fromHex("01000200"), NTypes::E_U16, 2) << false << QStringLiteral("01000200");
    }

    void valueToStr()
    {
        QFETCH(COdictObject, object);
        QFETCH(CVariant, value);
        QFETCH(bool, withUnit);
        QFETCH(QString, text);

        QCOMPARE(object.valueToStr(value, withUnit), text);
    }

    void compare_data()
    {
        QTest::addColumn<uint>("arrayLength");
        QTest::addColumn<QVariant>("a");
        QTest::addColumn<QVariant>("b");
        QTest::addColumn<bool>("equal");

        QTest::newRow("same number, other form") << 1u << QVariant(5) << QVariant(QStringLiteral("5")) << true;
        QTest::newRow("different numbers") << 1u << QVariant(5) << QVariant(6) << false;
        QTest::newRow("array, same bytes") << 2u << QVariant(QByteArray::fromHex("01000200")) << QVariant(QByteArray::fromHex("01000200")) << true;
        QTest::newRow("array, other length") << 2u << QVariant(QByteArray::fromHex("0100")) << QVariant(QByteArray::fromHex("010000")) << false;
    }

    void compare()
    {
        QFETCH(uint, arrayLength);
        QFETCH(QVariant, a);
        QFETCH(QVariant, b);
        QFETCH(bool, equal);

        COdictObject o;
        o.setDataType(NTypes::E_I32);
        o.setArrayLength(arrayLength);
        QCOMPARE(o.compare(a, b), equal);
    }

    void textForms()
    {
        COdictObject o = makeObject();
        QCOMPARE(o.longInfo(), QStringLiteral("Speed (ID 8192:03)"));
        QCOMPARE(o.uiShortInfo(), QStringLiteral("n set (ID 8192:03)"));
        QCOMPARE(o.xUnitText(NkrUnits::E_UT_LINEAR), QStringLiteral("mm/s"));
        o.setSubId(0xFFFFFFFFu);
        QCOMPARE(o.uiLongInfo(), QStringLiteral("Speed setpoint (ID 8192)"));
        QCOMPARE(o.defaultValueAsStr(true), QStringLiteral("On rpm"));

        QString text;
        QDebug(&text) << o;
        QCOMPARE(text.trimmed(), QStringLiteral("COdictObject( id=8192, subid=4294967295, Speed, NTypes::E_I32 )"));
    }

    void streamLayout()
    {
        const QByteArray bytes = streamed(COdictObject());
        const QByteArray head = QByteArray(16, '\0') // null reference id
            + QByteArray::fromHex("ffffffff" "ffffffff" // id, sub-id
                                  "0000" "00" "00" // version: build, minor, main
                                  "ffffffff" "ffffffff" // DS402 and Profinet ids
                                  "0000000e" "0055004e004b004e004f0057004e"); // "UNKNOWN"
        QCOMPARE(bytes.left(head.size()).toHex(), head.toHex());
        // The tail: usage 0, empty sub-id list, virtual flag off.
        QCOMPARE(bytes.right(9).toHex(), QByteArray("000000000000000000"));

        const QByteArray full = streamed(makeObject());
        QCOMPARE(full.mid(24, 4).toHex(), QByteArray("002a1c01"));
        QCOMPARE(full.right(17).toHex(), QByteArray("00000082" "00000002" "00000001" "00000004" "01"));
    }

    void streamRoundTrip_data()
    {
        QTest::addColumn<COdictObject>("object");

        QTest::newRow("default") << COdictObject();
        QTest::newRow("every field") << makeObject();
        QTest::newRow("bit set") << bitSetObject();
        QTest::newRow("virtual xy half") << COdictObject::createVirtualSubObject(xyObject(16), 3, nullptr);
    }

    void streamRoundTrip()
    {
        QFETCH(COdictObject, object);

        const QByteArray bytes = streamed(object);
        QDataStream in(bytes);
        COdictObject read = makeObject();
        in >> read;
        QCOMPARE(in.status(), QDataStream::Ok);
        QVERIFY(in.atEnd());
        QCOMPARE(read, object);
        QCOMPARE(read.isNull(), object.isNull());

        for (int length = 0; length < bytes.size(); ++length) {
            QDataStream cut(bytes.left(length));
            COdictObject partial;
            cut >> partial;
            QVERIFY2(cut.status() != QDataStream::Ok, qPrintable(QString::number(length)));
        }
    }

    void garbageSubIdCountFails()
    {
        // A sub-id count of 0xFFFFFFFF with one entry behind it: the loop ends with the data.
        QByteArray bytes = streamed(COdictObject());
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

#include "COdictValueObject.h"

#include <QDataStream>
#include <QDebug>
#include <QtTest>

Q_DECLARE_METATYPE(NTypes::eTypes_t)

namespace {

COdictObject plainObject(const char *name, NTypes::eTypes_t type, unsigned int size)
{
    COdictObject o;
    o.setId(0x300u);
    o.setName(QString::fromLatin1(name));
    o.setDataType(type);
    o.setDataSize(size);
    return o;
}

/// Two X/Y pairs: (1, -2) and (3, 0x10000).
COdictValueObject xyValue()
{
    COdictValueObject v = plainObject("CURVE", NTypes::E_XY, 16);
    v.setObjectUsage(NkrOdict::E_OU_PARAMETER, true);
    v.setCurrentValue(QVariant(QByteArray::fromHex("01000000" "feffffff" "03000000" "00000100")));
    return v;
}

COdictValueObject bitValue()
{
    COdictValueObject v = plainObject("DRIVE_STATUSWORD", NTypes::E_U16, 2);
    v.bitSetDataPtr()->insert(0, QStringLiteral("Ready"));
    v.bitSetDataPtr()->insert(5, QStringLiteral("Enabled"));
    v.bitSetDataPtr()->insert(9, QStringLiteral("Remote"));
    v.setCurrentValue(QVariant(qulonglong(0x0021)));
    return v;
}

COdictValueObject u16Array()
{
    COdictValueObject v = plainObject("TABLE", NTypes::E_U16, 6);
    v.setArrayLength(3);
    for (unsigned int subId = 0; subId < 3; ++subId)
        v.addSubId(subId);
    v.setCurrentValue(QVariant(QByteArray::fromHex("0100" "0200" "ff7f")));
    return v;
}

} // namespace

class tst_OdictValueObject : public QObject
{
    Q_OBJECT

private slots:
    void baseAndOwnParts()
    {
        const COdictObject plain = plainObject("Speed", NTypes::E_U32, 4);
        const COdictValueObject v(plain);
        QCOMPARE(v.objectType(), NkrOdict::E_OT_VALUE);
        QCOMPARE(static_cast<const COdictObject &>(v), plain);
        QVERIFY(COdictValueObject().isNull());

        // The own fields count for equality and isNull(), and copies do not share changes.
        const COdictValueObject a = xyValue();
        COdictValueObject b = a;
        b.setError(1);
        QVERIFY(b != a);
        QCOMPARE(a.error(), 0);
        COdictValueObject withError;
        withError.setError(1);
        QVERIFY(!withError.isNull());

        // Assigning a plain object replaces the base part only.
        b = plain;
        QCOMPARE(b.name(), QStringLiteral("Speed"));
        QCOMPARE(b.currentValue(), a.currentValue());
        QCOMPARE(b.error(), 1);
    }

    void debugText()
    {
        COdictValueObject v = bitValue();
        v.setSetpointValue(QVariant(12));
        QString plain, withError;
        QDebug(&plain) << v;
        v.setError(5);
        QDebug(&withError) << v;
        const QString head = QStringLiteral("COdictValueObject( id=768, subid=4294967295, DRIVE_STATUSWORD, NTypes::E_U16, current=33, setpoint=12");
        QCOMPARE(plain.trimmed(), head + QStringLiteral(" )"));
        QCOMPARE(withError.trimmed(), head + QStringLiteral(" error=5)"));
    }

    void elements_data()
    {
        QTest::addColumn<COdictValueObject>("object");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<NTypes::eTypes_t>("type");
        QTest::addColumn<QVariant>("element"); // read; invalid when there is none
        QTest::addColumn<CVariant>("write");
        QTest::addColumn<QVariant>("after"); // the current value after the write; unchanged when refused

        const QVariant xy = xyValue().currentValue(), u16 = u16Array().currentValue();
        const auto c = [](const char *text, NTypes::eTypes_t type) { return CVariant(QString::fromLatin1(text), type); };
        const auto hex = [](const char *bytes) { return QVariant(QByteArray::fromHex(bytes)); };
        const auto i64 = [](qlonglong value) { return QVariant(value); };
        const auto u64 = [](qulonglong value) { return QVariant(value); };
        using namespace NTypes;
        QTest::newRow("X1, null element") << xyValue() << 0u << E_I32 << i64(1) << CVariant(E_I32) << xy;
        QTest::newRow("Y1") << xyValue() << 1u << E_I32 << i64(-2) << c("-1", E_I32) << hex("01000000" "ffffffff" "03000000" "00000100");
        QTest::newRow("X2 from a U8") << xyValue() << 2u << E_I32 << i64(3) << c("9", E_U8) << hex("01000000" "feffffff" "09000000" "00000100");
        QTest::newRow("Y2") << xyValue() << 3u << E_I32 << i64(0x10000) << c("-3", E_I32) << hex("01000000" "feffffff" "03000000" "fdffffff");
        QTest::newRow("second pair as one XY") << xyValue() << 1u << E_XY << hex("0300000000000100") << CVariant(E_XY) << xy;
        QTest::newRow("xy beyond") << xyValue() << 4u << E_I32 << QVariant() << c("1", E_I32) << xy;
        QTest::newRow("bit 0") << bitValue() << 0u << E_BOOL << QVariant(true) << c("0", E_BOOL) << u64(0x0020);
        QTest::newRow("bit 9") << bitValue() << 9u << E_BOOL << QVariant(false) << c("1", E_BOOL) << u64(0x0221);
        QTest::newRow("bit without entry") << bitValue() << 1u << E_BOOL << QVariant() << c("1", E_BOOL) << bitValue().currentValue();
        QTest::newRow("u16 element 1") << u16Array() << 1u << E_U16 << u64(2) << c("0xABCD", E_U16) << hex("0100" "cdab" "ff7f");
        QTest::newRow("u16 element 2, out of range") << u16Array() << 2u << E_U16 << u64(0x7FFF) << c("70000", E_U32) << u16;
        QTest::newRow("u16 element 0 as I16") << u16Array() << 0u << E_I16 << i64(1) << CVariant(E_I16) << u16;
        QTest::newRow("unknown sub-id") << u16Array() << 3u << E_U16 << QVariant() << c("1", E_U16) << u16;
        COdictValueObject shortValue = u16Array();
        shortValue.setCurrentValue(hex("0100"));
        QTest::newRow("element outside the value") << shortValue << 1u << E_U16 << QVariant() << CVariant(E_U16) << hex("0100");
        COdictValueObject empty = xyValue();
        empty.setCurrentValue(QVariant());
        QTest::newRow("null value") << empty << 3u << E_I32 << QVariant() << c("2", E_I32) << hex("00000000" "00000000" "00000000" "02000000");
    }

    void elements()
    {
        QFETCH(COdictValueObject, object);
        QFETCH(uint, subId);
        QFETCH(NTypes::eTypes_t, type);
        QFETCH(QVariant, element);
        QFETCH(CVariant, write);
        QFETCH(QVariant, after);

        bool found = !element.isValid();
        const QVariant read = object.currentValueForSubObject(subId, type, &found);
        QCOMPARE(found, element.isValid());
        QCOMPARE(read.userType(), element.userType());
        QCOMPARE(read, element);
        // The setpoint side reads its own value.
        COdictValueObject setpoint = object;
        setpoint.setSetpointValue(object.currentValue());
        setpoint.setCurrentValue(QVariant());
        QCOMPARE(setpoint.setpointValueForSubObject(subId, type, &found), element);
        QCOMPARE(found, element.isValid());

        // A written element changes the current value only.
        const bool written = after != object.currentValue();
        const QVariant untouched(QStringLiteral("untouched"));
        object.setSetpointValue(untouched);
        QCOMPARE(object.setCurrentValueFromSubObject(subId, type, write), written);
        QCOMPARE(object.currentValue().userType(), after.userType());
        QCOMPARE(object.currentValue(), after);
        QCOMPARE(object.setpointValue(), untouched);
    }

    void virtualSubObjects_data()
    {
        QTest::addColumn<COdictValueObject>("owner");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("current");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("after");

        QTest::newRow("bit") << bitValue() << 5u << "Enabled" << QVariant(true) << QVariant(false) << QVariant(qulonglong(0x0001));
        QTest::newRow("Y1") << xyValue() << 1u << "Y1-Value" << QVariant(qlonglong(-2)) << QVariant(5)
                            << QVariant(QByteArray::fromHex("01000000" "05000000" "03000000" "00000100"));
    }

    void virtualSubObjects()
    {
        QFETCH(COdictValueObject, owner);
        QFETCH(uint, subId);
        QFETCH(QString, name);
        QFETCH(QVariant, current);
        QFETCH(QVariant, written);
        QFETCH(QVariant, after);

        owner.setError(3);
        owner.setReadWriteByteSize(2);
        bool ok = false;
        QCOMPARE(owner.currentValueForVirtualSubObject(subId, &ok), current);
        QVERIFY(ok);
        COdictValueObject sub = COdictValueObject::createVirtualSubObject(owner, subId, &ok);
        QVERIFY(ok && sub.isVirtual());
        QCOMPARE(sub.name(), name);
        QCOMPARE(sub.currentValue(), current);
        // The error is carried over; the setpoint and the byte window are not.
        QVERIFY(sub.error() == 3 && sub.setpointValue().isNull() && sub.readWriteByteSize() == -1);

        // A null setpoint carries nothing; the current value goes back into its element.
        QVERIFY(owner.setSetpointValueFromVirtualSubObject(sub));
        QVERIFY(owner.setpointValue().isNull());
        sub.setCurrentValue(written);
        COdictValueObject viaSubObject = owner; // takes sub-id, type and value from the sub-object
        QVERIFY(viaSubObject.setCurrentValueFromSubObject(sub));
        QCOMPARE(viaSubObject.currentValue(), after);
        QVERIFY(owner.setCurrentValueFromVirtualSubObject(sub));
        QCOMPARE(owner.currentValue(), after);

        // A sub-object of another object is refused; an unknown sub-id is not made.
        sub.setId(0x301u);
        QVERIFY(!owner.setCurrentValueFromVirtualSubObject(sub));
        QVERIFY(COdictValueObject::createVirtualSubObject(owner, 100, &ok).isNull() && !ok);
        QVERIFY(owner.currentValueForVirtualSubObject(100, &ok).isNull() && !ok);
    }

    void valueToStr_data()
    {
        QTest::addColumn<COdictValueObject>("object");
        QTest::addColumn<CVariant>("value");
        QTest::addColumn<QString>("text");

        using namespace NTypes;
        const auto value = [](const char *name, eTypes_t type, unsigned int size) { return COdictValueObject(plainObject(name, type, size)); };
        const CVariant u16(QStringLiteral("0x21"), E_U16);
        QTest::newRow("status with bits") << bitValue() << u16 << QStringLiteral("Status: Ready, Enabled");
        COdictValueObject hex = bitValue();
        hex.setValueInHexEnabled(true);
        QTest::newRow("hex display wins") << hex << u16 << QStringLiteral("0x0021");
        QTest::newRow("control word") << value("CONTROL_WORD", E_U32, 4) << CVariant(QStringLiteral("0x1F"), E_U32) << "Command: 0x0000001F";
        QTest::newRow("error code") << value("LastErrorCode", E_U16, 2) << u16 << QStringLiteral("Error: 0x0021");
        QTest::newRow("status name, but I32") << value("STATUSWORD", E_I32, 4) << CVariant(QStringLiteral("33"), E_I32) << "33";
        COdictValueObject negative = value("OFFSET", E_I16, 2);
        negative.setValueInHexEnabled(true);
        QTest::newRow("hex of a negative") << negative << CVariant(QStringLiteral("-2"), E_I16) << QStringLiteral("0xFFFE");
        COdictValueObject mode = value("MODE", E_I16, 2);
        mode.enumDataPtr()->insert(3, QStringLiteral("Fault"));
        QTest::newRow("enum") << mode << CVariant(QStringLiteral("3"), E_I16) << QStringLiteral("3 Fault");
    }

    void valueToStr()
    {
        QFETCH(COdictValueObject, object);
        QFETCH(CVariant, value);
        QFETCH(QString, text);

        QCOMPARE(object.valueToStr(value), text);
        object.setCurrentValue(value);
        QCOMPARE(object.currentValueAsStr(), text);
    }

    void arrayCValueAndByteSize()
    {
        COdictValueObject table = u16Array();
        const CVariant array = table.currentCValue();
        QCOMPARE(array.count(), 3);
        QCOMPARE(array.type(), NTypes::E_U16);
        QCOMPARE(array.toByteArray().toHex(), QByteArray("01000200ff7f"));
        QVERIFY(table.setpointCValue().isNull());
        QCOMPARE(table.setpointCValue().type(), NTypes::E_U16);

        table.setCurrentValueByteSize(8);
        QCOMPARE(table.currentValue().toByteArray().toHex(), QByteArray("01000200ff7f0000"));
        table.setCurrentValueByteSize(2);
        QCOMPARE(table.currentValue().toByteArray().toHex(), QByteArray("0100"));
        table.setSetpointValueByteSize(3);
        QCOMPARE(table.setpointValue().toByteArray().toHex(), QByteArray("000000"));
        table.setSetpointValueByteSize(-1);
        QCOMPARE(table.setpointValue().toByteArray().size(), 3);
    }

    void streamLayoutAndRoundTrip()
    {
        COdictValueObject v = bitValue();
        v.setError(5);
        v.setReadWriteByteIndex(2);
        v.setSetpointValue(QVariant(QStringLiteral("x")));
        v.setValueInHexEnabled(true);
        QByteArray base, bytes;
        QDataStream baseOut(&base, QIODevice::WriteOnly), out(&bytes, QIODevice::WriteOnly);
        baseOut << static_cast<const COdictObject &>(v);
        out << v;
        // The base part, then error, byte index and byte size, the two values and the hex flag.
        QVERIFY(bytes.startsWith(base));
        QCOMPARE(bytes.mid(base.size(), 20).toHex(), QByteArray("00000005" "0000000000000002" "ffffffffffffffff"));
        QCOMPARE(bytes.right(1).toHex(), QByteArray("01"));

        QDataStream in(bytes);
        COdictValueObject read;
        in >> read;
        QCOMPARE(in.status(), QDataStream::Ok);
        QVERIFY(in.atEnd());
        QCOMPARE(read, v);
        for (int length = 0; length < bytes.size(); ++length) {
            QDataStream cut(bytes.left(length));
            COdictValueObject partial;
            cut >> partial;
            QVERIFY2(cut.status() != QDataStream::Ok, qPrintable(QString::number(length)));
        }
    }

    void testBit()
    {
        QBitArray bits(4);
        bits.setBit(2);
        QVERIFY(COdictValueObject::testBit(bits, 2));
        QVERIFY(!COdictValueObject::testBit(bits, 1));
        QVERIFY(!COdictValueObject::testBit(bits, 4));
        QVERIFY(!COdictValueObject::testBit(bits, 0xFFFFFFFFu));
    }
};

QTEST_GUILESS_MAIN(tst_OdictValueObject)
#include "tst_odictvalueobject.moc"

#include "COdictValueObject.h"

#include <QDataStream>
#include <QDebug>
#include <QtTest>

#include <utility>

char *toString(const CVariant &value)
{
    QString text;
    QDebug(&text) << value;
    return qstrdup(text.toUtf8().constData());
}

namespace {

COdictValueObject valueObject(const QString &name, NTypes::eTypes_t type, unsigned int size)
{
    COdictObject o;
    o.setId(0x300u);
    o.setName(name);
    o.setDataType(type);
    o.setDataSize(size);
    return COdictValueObject(o);
}

/// Two X/Y pairs: (1, -2) and (3, 0x10000).
COdictValueObject xyValue()
{
    COdictValueObject v = valueObject(QStringLiteral("CURVE"), NTypes::E_XY, 16);
    v.setObjectUsage(NkrOdict::E_OU_PARAMETER, true);
    v.setCurrentValue(QVariant(QByteArray::fromHex("01000000" "feffffff" "03000000" "00000100")));
    return v;
}

COdictValueObject bitValue()
{
    COdictValueObject v = valueObject(QStringLiteral("DRIVE_STATUSWORD"), NTypes::E_U16, 2);
    COdictObjectBitSet bits;
    bits.insert(0, QStringLiteral("Ready"));
    bits.insert(5, QStringLiteral("Enabled"));
    bits.insert(9, QStringLiteral("Remote"));
    v.setBitSetData(bits);
    v.setCurrentValue(QVariant(qulonglong(0x0021)));
    return v;
}

COdictValueObject u16Array()
{
    COdictValueObject v = valueObject(QStringLiteral("TABLE"), NTypes::E_U16, 6);
    v.setArrayLength(3);
    for (unsigned int subId = 0; subId < 3; ++subId)
        v.addSubId(subId);
    v.setCurrentValue(QVariant(QByteArray::fromHex("0100" "0200" "ff7f")));
    return v;
}

template <typename T>
QByteArray streamed(const T &object)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << object;
    return bytes;
}

} // namespace

class tst_OdictValueObject : public QObject
{
    Q_OBJECT

private slots:
    void baseAndOwnParts()
    {
        COdictObject plain;
        plain.setId(0x10u);
        plain.setName(QStringLiteral("Speed"));
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
        const auto text = [&v]() {
            QString written;
            QDebug(&written) << v;
            return written.trimmed();
        };
        const QString head = QStringLiteral("COdictValueObject( id=768, subid=4294967295, DRIVE_STATUSWORD, NTypes::E_U16, current=33, setpoint=12");
        QCOMPARE(text(), head + QStringLiteral(" )"));
        v.setError(5);
        QCOMPARE(text(), head + QStringLiteral(" error=5)"));
    }

    void elementExtraction_data()
    {
        QTest::addColumn<COdictValueObject>("object");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<uint>("type");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QVariant>("element");

        QTest::newRow("X1") << xyValue() << 0u << 7u << true << QVariant(qlonglong(1));
        QTest::newRow("Y1") << xyValue() << 1u << 7u << true << QVariant(qlonglong(-2));
        QTest::newRow("Y2") << xyValue() << 3u << 7u << true << QVariant(qlonglong(0x10000));
        QTest::newRow("second pair as one XY") << xyValue() << 1u << 24u << true << QVariant(QByteArray::fromHex("0300000000000100"));
        QTest::newRow("xy beyond") << xyValue() << 4u << 7u << false << QVariant();
        QTest::newRow("bit 0") << bitValue() << 0u << 1u << true << QVariant(true);
        QTest::newRow("bit 9") << bitValue() << 9u << 1u << true << QVariant(false);
        QTest::newRow("bit without entry") << bitValue() << 1u << 1u << false << QVariant();
        QTest::newRow("u16 element 2") << u16Array() << 2u << 4u << true << QVariant(qulonglong(0x7FFF));
        QTest::newRow("u16 element 0 as I16") << u16Array() << 0u << 5u << true << QVariant(qlonglong(1));
        QTest::newRow("unknown sub-id") << u16Array() << 3u << 4u << false << QVariant();
        COdictValueObject shortValue = u16Array();
        shortValue.setCurrentValue(QVariant(QByteArray::fromHex("0100")));
        QTest::newRow("element outside the value") << shortValue << 1u << 4u << false << QVariant();
        COdictValueObject empty = u16Array();
        empty.setCurrentValue(QVariant());
        QTest::newRow("null value") << empty << 0u << 4u << false << QVariant();
    }

    void elementExtraction()
    {
        QFETCH(COdictValueObject, object);
        QFETCH(uint, subId);
        QFETCH(uint, type);
        QFETCH(bool, ok);
        QFETCH(QVariant, element);

        bool found = !ok;
        const QVariant result = object.currentValueForSubObject(subId, NTypes::eTypes_t(type), &found);
        QCOMPARE(found, ok);
        QCOMPARE(result.isNull(), !ok);
        if (ok) {
            QCOMPARE(result.userType(), element.userType());
            QCOMPARE(result, element);
        }
        // The setpoint side reads its own value.
        object.setSetpointValue(object.currentValue());
        object.setCurrentValue(QVariant());
        QCOMPARE(object.setpointValueForSubObject(subId, NTypes::eTypes_t(type), &found), element);
        QCOMPARE(found, ok);
    }

    void elementWriteBack_data()
    {
        QTest::addColumn<COdictValueObject>("object");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<uint>("type");
        QTest::addColumn<CVariant>("element");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QVariant>("value");

        QTest::newRow("Y1") << xyValue() << 1u << 7u << CVariant(QStringLiteral("-1"), NTypes::E_I32) << true
                            << QVariant(QByteArray::fromHex("01000000" "ffffffff" "03000000" "00000100"));
        QTest::newRow("X2 from a U8") << xyValue() << 2u << 7u << CVariant(QStringLiteral("9"), NTypes::E_U8) << true
                                      << QVariant(QByteArray::fromHex("01000000" "feffffff" "09000000" "00000100"));
        QTest::newRow("xy beyond") << xyValue() << 4u << 7u << CVariant(QStringLiteral("1"), NTypes::E_I32) << false << xyValue().currentValue();
        QTest::newRow("null element") << xyValue() << 0u << 7u << CVariant(NTypes::E_I32) << false << xyValue().currentValue();
        QTest::newRow("set bit 9") << bitValue() << 9u << 1u << CVariant(QStringLiteral("1"), NTypes::E_BOOL) << true << QVariant(qulonglong(0x0221));
        QTest::newRow("clear bit 0") << bitValue() << 0u << 1u << CVariant(QStringLiteral("0"), NTypes::E_BOOL) << true << QVariant(qulonglong(0x0020));
        QTest::newRow("bit without entry") << bitValue() << 3u << 1u << CVariant(QStringLiteral("1"), NTypes::E_BOOL) << false << QVariant(qulonglong(0x0021));
        QTest::newRow("u16 element 1") << u16Array() << 1u << 4u << CVariant(QStringLiteral("0xABCD"), NTypes::E_U16) << true
                                       << QVariant(QByteArray::fromHex("0100" "cdab" "ff7f"));
        QTest::newRow("u16 out of range") << u16Array() << 1u << 4u << CVariant(QStringLiteral("70000"), NTypes::E_U32) << false << u16Array().currentValue();
        COdictValueObject empty = xyValue();
        empty.setCurrentValue(QVariant());
        QTest::newRow("into a null value") << empty << 3u << 7u << CVariant(QStringLiteral("2"), NTypes::E_I32) << true
                                           << QVariant(QByteArray::fromHex("00000000" "00000000" "00000000" "02000000"));
    }

    void elementWriteBack()
    {
        QFETCH(COdictValueObject, object);
        QFETCH(uint, subId);
        QFETCH(uint, type);
        QFETCH(CVariant, element);
        QFETCH(bool, written);
        QFETCH(QVariant, value);

        const QVariant setpoint(QStringLiteral("untouched"));
        object.setSetpointValue(setpoint);
        QCOMPARE(object.setCurrentValueFromSubObject(subId, NTypes::eTypes_t(type), element), written);
        QCOMPARE(object.currentValue().userType(), value.userType());
        QCOMPARE(object.currentValue(), value);
        QCOMPARE(object.setpointValue(), setpoint);
    }

    void virtualSubObjects_data()
    {
        QTest::addColumn<COdictValueObject>("owner");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("current");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("after");

        QTest::newRow("bit") << bitValue() << 5u << QStringLiteral("Enabled") << QVariant(true) << QVariant(false)
                             << QVariant(qulonglong(0x0001));
        QTest::newRow("Y1") << xyValue() << 1u << QStringLiteral("Y1-Value") << QVariant(qlonglong(-2)) << QVariant(5)
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
        QVERIFY(ok);
        QCOMPARE(sub.name(), name);
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.currentValue(), current);
        QVERIFY(sub.setpointValue().isNull());
        QCOMPARE(sub.error(), 3);
        QCOMPARE(sub.readWriteByteSize(), -1LL);

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
        QVERIFY(COdictValueObject::createVirtualSubObject(owner, 100, &ok).isNull());
        QVERIFY(!ok);
        owner.currentValueForVirtualSubObject(100, &ok);
        QVERIFY(!ok);
    }

    void valueToStr_data()
    {
        QTest::addColumn<COdictValueObject>("object");
        QTest::addColumn<CVariant>("value");
        QTest::addColumn<QString>("text");

        const CVariant u16(QStringLiteral("0x21"), NTypes::E_U16);
        QTest::newRow("status with bits") << bitValue() << u16 << QStringLiteral("Status: Ready, Enabled");
        COdictValueObject hex = bitValue();
        hex.setValueInHexEnabled(true);
        QTest::newRow("hex display wins") << hex << u16 << QStringLiteral("0x0021");
        QTest::newRow("control word") << valueObject(QStringLiteral("CONTROL_WORD"), NTypes::E_U32, 4)
                                      << CVariant(QStringLiteral("0x1F"), NTypes::E_U32) << QStringLiteral("Command: 0x0000001F");
        QTest::newRow("error code") << valueObject(QStringLiteral("LastErrorCode"), NTypes::E_U16, 2) << u16 << QStringLiteral("Error: 0x0021");
        QTest::newRow("status name, but I32") << valueObject(QStringLiteral("STATUSWORD"), NTypes::E_I32, 4)
                                              << CVariant(QStringLiteral("33"), NTypes::E_I32) << QStringLiteral("33");

        COdictValueObject mode = valueObject(QStringLiteral("MODE"), NTypes::E_I16, 2);
        COdictObjectEnum modes;
        modes.insert(3, QStringLiteral("Fault"));
        mode.setEnumData(modes);
        QTest::newRow("enum") << mode << CVariant(QStringLiteral("3"), NTypes::E_I16) << QStringLiteral("3 Fault");
        COdictValueObject negative = valueObject(QStringLiteral("OFFSET"), NTypes::E_I16, 2);
        negative.setValueInHexEnabled(true);
        QTest::newRow("hex of a negative") << negative << CVariant(QStringLiteral("-2"), NTypes::E_I16) << QStringLiteral("0xFFFE");
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
        const QByteArray base = streamed(static_cast<const COdictObject &>(v));
        const QByteArray bytes = streamed(v);
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

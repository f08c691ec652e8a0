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

} // namespace

class tst_OdictValueObject : public QObject
{
    Q_OBJECT

private slots:
    void builtFromPlainObject()
    {
        COdictObject plain;
        plain.setId(0x10u);
        plain.setName(QStringLiteral("Speed"));
        const COdictValueObject v(plain);
        QCOMPARE(v.objectType(), NkrOdict::E_OT_VALUE);
        QCOMPARE(v.error(), 0);
        QCOMPARE(v.readWriteByteIndex(), 0LL);
        QCOMPARE(v.getReadWriteByteSize(), -1LL);
        QVERIFY(v.currentValue().isNull());
        QVERIFY(v.setpointValue().isNull());
        QVERIFY(!v.isValueInHexEnabled());
        QCOMPARE(static_cast<const COdictObject &>(v), plain);

        QVERIFY(COdictValueObject().isNull());
        COdictValueObject withError;
        withError.setError(1);
        QVERIFY(!withError.isNull());
        withError.clearError();
        QVERIFY(withError.isNull());
    }

    void equalityAndSharing()
    {
        const COdictValueObject a = xyValue();
        COdictValueObject b = a;
        QCOMPARE(b, a);
        b.setSetpointValue(QVariant(7));
        QVERIFY(b != a);
        QVERIFY(a.setpointValue().isNull());

        // Assigning a plain object replaces the base part only.
        COdictValueObject c = a;
        COdictObject other;
        other.setName(QStringLiteral("OTHER"));
        c = other;
        QCOMPARE(c.name(), QStringLiteral("OTHER"));
        QCOMPARE(c.currentValue(), a.currentValue());
        QCOMPARE(a.name(), QStringLiteral("CURVE"));
    }

    void debugText_data()
    {
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("text");

        QTest::newRow("no error") << 0 << QStringLiteral("COdictValueObject( id=768, subid=4294967295, DRIVE_STATUSWORD, NTypes::E_U16, current=33, setpoint=12 )");
        QTest::newRow("error") << 5 << QStringLiteral("COdictValueObject( id=768, subid=4294967295, DRIVE_STATUSWORD, NTypes::E_U16, current=33, setpoint=12 error=5)");
    }

    void debugText()
    {
        QFETCH(int, error);
        QFETCH(QString, text);

        COdictValueObject v = bitValue();
        v.setSetpointValue(QVariant(12));
        v.setError(error);
        QString written;
        QDebug(&written) << v;
        QCOMPARE(written.trimmed(), text);
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
        QTest::newRow("X2") << xyValue() << 2u << 7u << true << QVariant(qlonglong(3));
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
        if (written) {
            bool ok = false;
            QCOMPARE(CVariant::fromVariant(object.currentValueForSubObject(subId, NTypes::eTypes_t(type), &ok), NTypes::eTypes_t(type)).toI64(),
                     element.toI64());
            QVERIFY(ok);
        }
    }

    void virtualSubObjects_data()
    {
        QTest::addColumn<COdictValueObject>("owner");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("current");

        QTest::newRow("bit") << bitValue() << 5u << QStringLiteral("Enabled") << QVariant(true);
        QTest::newRow("Y2") << xyValue() << 3u << QStringLiteral("Y2-Value") << QVariant(qlonglong(0x10000));
    }

    void virtualSubObjects()
    {
        QFETCH(COdictValueObject, owner);
        QFETCH(uint, subId);
        QFETCH(QString, name);
        QFETCH(QVariant, current);

        owner.setError(3);
        owner.setReadWriteByteSize(2);
        bool ok = false;
        QCOMPARE(owner.currentValueForVirtualSubObject(subId, &ok), current);
        QVERIFY(ok);
        const COdictValueObject sub = COdictValueObject::createVirtualSubObject(owner, subId, &ok);
        QVERIFY(ok);
        QCOMPARE(sub.name(), name);
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.currentValue(), current);
        QVERIFY(sub.setpointValue().isNull());
        QCOMPARE(sub.error(), 3);
        QCOMPARE(sub.readWriteByteSize(), -1LL);

        QVERIFY(COdictValueObject::createVirtualSubObject(owner, 100, &ok).isNull());
        QVERIFY(!ok);
        owner.currentValueForVirtualSubObject(100, &ok);
        QVERIFY(!ok);
    }

    void virtualWriteBack()
    {
        COdictValueObject owner = xyValue();
        COdictValueObject y1 = COdictValueObject::createVirtualSubObject(owner, 1, nullptr);
        y1.setCurrentValue(CVariant(QStringLiteral("5"), NTypes::E_I32));
        QVERIFY(owner.setCurrentValueFromVirtualSubObject(y1));
        QCOMPARE(owner.currentValue().toByteArray().toHex(), QByteArray("01000000" "05000000" "03000000" "00000100"));
        // Its setpoint is null: nothing to carry, nothing changes.
        QVERIFY(owner.setSetpointValueFromVirtualSubObject(y1));
        QVERIFY(owner.setpointValue().isNull());

        COdictValueObject status = bitValue();
        COdictValueObject remote = COdictValueObject::createVirtualSubObject(status, 9, nullptr);
        QCOMPARE(remote.currentValue(), QVariant(false));
        remote.setCurrentValue(QVariant(true));
        QVERIFY(status.setCurrentValueFromVirtualSubObject(remote));
        QCOMPARE(status.currentValue(), QVariant(qulonglong(0x0221)));
        QVERIFY(status.setCurrentValueFromSubObject(COdictValueObject::createVirtualSubObject(bitValue(), 0, nullptr)));
        QCOMPARE(status.currentValue(), QVariant(qulonglong(0x0221)));

        // A sub-object of another object is refused.
        remote.setId(0x301u);
        QVERIFY(!status.setCurrentValueFromVirtualSubObject(remote));
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
        QTest::newRow("enum without entry") << mode << CVariant(QStringLiteral("4"), NTypes::E_I16) << QStringLiteral("4");
        COdictValueObject negative = valueObject(QStringLiteral("OFFSET"), NTypes::E_I16, 2);
        negative.setValueInHexEnabled(true);
        QTest::newRow("hex of a negative") << negative << CVariant(QStringLiteral("-2"), NTypes::E_I16) << QStringLiteral("0xFFFE");
        QTest::newRow("hex off: base text") << valueObject(QStringLiteral("OFFSET"), NTypes::E_I16, 2)
                                            << CVariant(QStringLiteral("-2"), NTypes::E_I16) << QStringLiteral("-2");
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

        QByteArray base;
        {
            QDataStream out(&base, QIODevice::WriteOnly);
            out << static_cast<const COdictObject &>(v);
        }
        QByteArray bytes;
        {
            QDataStream out(&bytes, QIODevice::WriteOnly);
            out << v;
        }
        QVERIFY(bytes.startsWith(base));
        QCOMPARE(bytes.mid(base.size(), 20).toHex(), QByteArray("00000005" "0000000000000002" "ffffffffffffffff"));
        QCOMPARE(bytes.right(1).toHex(), QByteArray("01"));

        QDataStream in(bytes);
        COdictValueObject read;
        in >> read;
        QCOMPARE(in.status(), QDataStream::Ok);
        QVERIFY(in.atEnd());
        QCOMPARE(read, v);
    }

    void truncatedStreamFails()
    {
        COdictValueObject v = xyValue();
        v.setSetpointValue(QVariant(3.5));
        QByteArray bytes;
        {
            QDataStream out(&bytes, QIODevice::WriteOnly);
            out << v;
        }
        for (int length = 0; length < bytes.size(); ++length) {
            QDataStream in(bytes.left(length));
            COdictValueObject read;
            in >> read;
            QVERIFY2(in.status() != QDataStream::Ok, qPrintable(QString::number(length)));
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

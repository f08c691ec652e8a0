#include "COdictEditorObject.h"
#include "COdictParameterObject.h"
#include "streamcheck.h"

#include <QDataStream>
#include <QDebug>
#include <QtTest>

namespace {

using ValueMap = QMap<int, QVariant>;

COdictObject baseObject(NTypes::eTypes_t type, unsigned int size)
{
    COdictObject o;
    o.setId(0x400u);
    o.setName(QStringLiteral("LIMITS"));
    o.setDataType(type);
    o.setDataSize(size);
    return o;
}


// The five editor texts by number, in stream order.
QString editorText(const COdictEditorObject &e, int which)
{
    switch (which) {
    case 0:
        return e.defString();
    case 1:
        return e.fwVariablename();
    case 2:
        return e.fwFunctionname();
    case 3:
        return e.shortDescription();
    default:
        return e.description();
    }
}

void setEditorText(COdictEditorObject &e, int which, const QString &text)
{
    switch (which) {
    case 0:
        return e.setDefString(text);
    case 1:
        return e.setFwVariablename(text);
    case 2:
        return e.setFwFunctionname(text);
    case 3:
        return e.setShortDescription(text);
    default:
        return e.setDescription(text);
    }
}

// Latin-1 texts of every kind: set, null and empty.
const QStringList &otherTexts()
{
    static const QStringList texts = {QStringLiteral("-19360"), QStringLiteral("g_speed"), QString(),
                                      QStringLiteral("\u00C4nderung 5\u00B0"), QStringLiteral("")};
    return texts;
}

// Text \a which is \a expected and the others are otherTexts(), null and empty apart.
bool hasEditorTexts(const COdictEditorObject &e, int which, const QString &expected)
{
    for (int t = 0; t < 5; ++t) {
        const QString want = t == which ? expected : otherTexts().at(t);
        const QString have = editorText(e, t);
        if (have != want || have.isNull() != want.isNull()) {
            qWarning() << "text" << t << "is" << have << "instead of" << want;
            return false;
        }
    }
    return true;
}

// Every shortened copy of \a bytes fails to read.
template <typename T>
void checkTruncatedFails(const QByteArray &bytes)
{
    for (int length = 0; length < bytes.size(); ++length) {
        QDataStream in(bytes.left(length));
        T read;
        in >> read;
        QVERIFY2(in.status() != QDataStream::Ok, qPrintable(QString::number(length)));
    }
}

} // namespace

class tst_OdictEditorParameter : public QObject
{
    Q_OBJECT

private slots:
    void editorNullAndEquality()
    {
        // The access type defaults to 1, so 0 is a change.
        COdictEditorObject e;
        QVERIFY(e.isNull());
        QCOMPARE(e.objectType(), NkrOdict::E_OT_EDITOR);
        e.setAccessType(0);
        QVERIFY(!e.isNull());

        COdictEditorObject named(baseObject(NTypes::E_U16, 2));
        QVERIFY(named.isValid());
        QCOMPARE(named.dataTypeString(), QStringLiteral("U16"));
        COdictEditorObject copy = named;
        copy.setDescription(QStringLiteral("text"));
        QVERIFY(copy != named);
        QVERIFY(named.description().isEmpty());
    }

    void editorStreamsOnlyItsOwnPart()
    {
        COdictEditorObject e(baseObject(NTypes::E_U16, 2));
        e.setDefString(QStringLiteral("A"));
        const QByteArray bytes = bigEndian(e);
        QCOMPARE(bytes.toHex(), QByteArray("00000002" "0041" "ffffffff" "ffffffff" "ffffffff" "ffffffff" "00000001"));

        COdictEditorObject read(baseObject(NTypes::E_I32, 4));
        QDataStream in(bytes);
        in >> read;
        QCOMPARE(in.status(), QDataStream::Ok);
        QCOMPARE(read.defString(), QStringLiteral("A"));
        QCOMPARE(read.dataType(), NTypes::E_I32); // base attributes are not read
        QCOMPARE(read.dataSize(), 4u);
        checkTruncatedFails<COdictEditorObject>(bytes);
    }

    void editorTexts_data()
    {
        QTest::addColumn<int>("which");
        QTest::addColumn<QString>("text");

        const QString wide = QStringLiteral("Drehzahl \u8F6C\u901F");
        for (int which = 0; which < 5; ++which) {
            const QByteArray n = QByteArray::number(which);
            QTest::newRow("Latin-1 " + n) << which << QStringLiteral("\u00DCbertemperatur L\u00FCfter");
            QTest::newRow("wide " + n) << which << wide;
            QTest::newRow("empty " + n) << which << QStringLiteral("");
            QTest::newRow("null " + n) << which << QString();
        }
    }

    void editorTexts()
    {
        // Each text is set over others of every kind, replaced and given back exactly; the
        // others stay as they were, null and empty apart.
        QFETCH(int, which);
        QFETCH(QString, text);

        COdictEditorObject e;
        for (int t = 0; t < 5; ++t)
            setEditorText(e, t, t == which ? QStringLiteral("old") : otherTexts().at(t));
        const COdictEditorObject before = e;
        setEditorText(e, which, text);
        QVERIFY(hasEditorTexts(e, which, text));
        QVERIFY(hasEditorTexts(before, which, QStringLiteral("old"))); // the copy kept its texts

        // A stream keeps null and empty apart.
        COdictEditorObject read;
        QDataStream in(bigEndian(e));
        in >> read;
        QVERIFY(hasEditorTexts(read, which, text));
        QCOMPARE(read, e);

        setEditorText(e, which, QStringLiteral("back"));
        QVERIFY(hasEditorTexts(e, which, QStringLiteral("back")));
    }

    void parameterValuesInAnyOrder()
    {
        COdictParameterObject p(baseObject(NTypes::E_U16, 2));
        p.setValue(5, 50);
        p.setValue(1, 10);
        p.setValue(3, 30);
        p.setValue(1, 11); // replaces
        QCOMPARE(p.values(), (ValueMap{{1, 11}, {3, 30}, {5, 50}}));
        QCOMPARE(p.value(3), QVariant(30));

        COdictParameterObject q(baseObject(NTypes::E_U16, 2));
        q.setValues(ValueMap{{1, 11}, {3, 30}, {5, 50}});
        QCOMPARE(q, p);
        q.setValue(4, 40);
        QVERIFY(q != p);
        QCOMPARE(p.values().size(), 3); // copies are independent
    }

    void parameterValueWithoutSet_data()
    {
        QTest::addColumn<uint>("type");
        QTest::addColumn<int>("metaType");

        QTest::newRow("I32") << 7u << int(QMetaType::LongLong);
        QTest::newRow("U16") << 4u << int(QMetaType::ULongLong);
        QTest::newRow("F32") << 10u << int(QMetaType::Double);
        QTest::newRow("XY") << 24u << int(QMetaType::QByteArray);
    }

    void parameterValueWithoutSet()
    {
        QFETCH(uint, type);
        QFETCH(int, metaType);

        COdictParameterObject p(baseObject(NTypes::eTypes_t(type), 4));
        p.setValue(1, QVariant(5));
        const QVariant missing = p.value(2);
        QVERIFY(missing.isValid() && missing.isNull());
        QCOMPARE(missing.userType(), metaType);
    }

    void parameterNullEqualityAndDebug()
    {
        COdictParameterObject p;
        QVERIFY(p.isNull());
        QCOMPARE(p.objectType(), NkrOdict::E_OT_PARAMETER);
        p.setError(2);
        QVERIFY(!p.isNull());
        p.clearError();
        p.setValues({{0, QVariant(1)}});
        QVERIFY(!p.isNull());

        const COdictParameterObject a(baseObject(NTypes::E_U16, 2));
        COdictParameterObject b = a;
        b.setValue(3, QVariant(9));
        QVERIFY(b != a);
        QVERIFY(a.values().isEmpty());

        QString text;
        QDebug(&text) << a;
        QCOMPARE(text.trimmed(), QStringLiteral("COdictParameterObject( 1024, 4294967295, LIMITS, NTypes::E_U16 )"));
    }

    void parameterStreamRoundTrip()
    {
        COdictParameterObject p(baseObject(NTypes::E_U16, 2));
        p.setError(-3);
        p.setValue(1, QVariant(qulonglong(7)));
        p.setValue(4, QVariant(QStringLiteral("x")));
        const QByteArray base = bigEndian(static_cast<const COdictObject &>(p));
        const QByteArray bytes = bigEndian(p);
        QVERIFY(bytes.startsWith(base));
        // error, count 2, then the highest index first
        QCOMPARE(bytes.mid(base.size(), 16).toHex(), QByteArray("fffffffd" "00000002" "00000004" "0000000a"));

        QDataStream in(bytes);
        COdictParameterObject read;
        in >> read;
        QCOMPARE(in.status(), QDataStream::Ok);
        QCOMPARE(read, p);
        checkTruncatedFails<COdictParameterObject>(bytes);
    }

    void parameterVirtualSubObject_data()
    {
        QTest::addColumn<COdictParameterObject>("owner");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<ValueMap>("values");

        COdictParameterObject xy(baseObject(NTypes::E_XY, 16));
        xy.setValue(0, QVariant(QByteArray::fromHex("01000000" "02000000" "03000000" "04000000")));
        xy.setValue(1, QVariant(QByteArray::fromHex("05000000" "06000000")));
        QTest::newRow("X2") << xy << 2u << QStringLiteral("X2-Value") << ValueMap{{0, QVariant(qlonglong(3))}};
        QTest::newRow("Y1") << xy << 1u << QStringLiteral("Y1-Value")
                            << ValueMap{{0, QVariant(qlonglong(2))}, {1, QVariant(qlonglong(6))}};

        COdictObject bitObject = baseObject(NTypes::E_U8, 1);
        COdictObjectBitSet bits;
        bits.insert(1, QStringLiteral("Brake"));
        bitObject.setBitSetData(bits);
        COdictParameterObject flags(bitObject);
        flags.setValue(0, QVariant(2));
        flags.setValue(3, QVariant(1));
        QTest::newRow("bit") << flags << 1u << QStringLiteral("Brake")
                             << ValueMap{{0, QVariant(true)}, {3, QVariant(false)}};
    }

    void parameterVirtualSubObject()
    {
        QFETCH(COdictParameterObject, owner);
        QFETCH(uint, subId);
        QFETCH(QString, name);
        QFETCH(ValueMap, values);

        bool ok = false;
        const COdictParameterObject sub = COdictParameterObject::createVirtualSubObject(owner, subId, &ok);
        QVERIFY(ok);
        QCOMPARE(sub.name(), name);
        QCOMPARE(sub.subId(), subId);
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.values(), values);

        QVERIFY(COdictParameterObject::createVirtualSubObject(owner, 40, &ok).isNull());
        QVERIFY(!ok);
    }
};

QTEST_GUILESS_MAIN(tst_OdictEditorParameter)
#include "tst_odicteditorparameter.moc"

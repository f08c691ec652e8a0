#include "CMemoryLogfile.h"
#include "COdictEdit.h"
#include "COdictExtend.h"
#include "COdictExtendEdit.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictValueObject.h"
#include "invariants.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

using namespace NkrOdict;

Q_DECLARE_METATYPE(NkrOdict::eObjectType_t)

namespace {

// Objects of the test dictionary.
constexpr unsigned int idStatus = 0x10;     // U16 with bits 0, 1, 5
constexpr unsigned int idWide = 0x11;       // 65 bytes with a bit set: too wide
constexpr unsigned int idEdge = 0x12;       // 64 bytes with a bit set: just wide enough
constexpr unsigned int idRecord = 0x13;     // bit set and stored sub-objects
constexpr unsigned int idCurve = 0x20;      // XY parameter, 16 bytes
constexpr unsigned int idDbCurve = 0x21;    // XY database parameter, 8 bytes
constexpr unsigned int idActCurve = 0x22;   // XY actual value: never split
constexpr unsigned int idShortCurve = 0x23; // XY parameter smaller than one pair
constexpr unsigned int idPlain = 0x30;      // U32 parameter

/// One object element; \a bits lists "position=name" pairs separated by commas, and an empty
/// \a subId makes an object rather than a sub-object.
QString objectXml(unsigned int id, const char *name, const char *type, int size, const char *usage,
                  const char *bits = "", const char *subId = "", const QString &subObjects = QString())
{
    QString bitSet;
    for (const QString &bit : QString::fromLatin1(bits).split(QLatin1Char(','), Qt::SkipEmptyParts))
        bitSet += QStringLiteral("<Bit pos=\"%1\">%2</Bit>").arg(bit.section(QLatin1Char('='), 0, 0), bit.section(QLatin1Char('='), 1));
    if (!bitSet.isEmpty())
        bitSet = QStringLiteral("<BitSet>%1</BitSet>").arg(bitSet);
    return QStringLiteral("<Object id=\"0x%1\"%2><Name>%3</Name><UiName>%3 ui</UiName><UiShortName>%3 short</UiShortName>"
                          "<Type>%4</Type><DataSize>%5</DataSize><ObjectUsage>%6</ObjectUsage>%7%8</Object>\n")
        .arg(QString::number(id, 16), *subId ? QStringLiteral(" subid=\"%1\"").arg(QLatin1String(subId)) : QString(),
             QLatin1String(name), QLatin1String(type), QString::number(size), QLatin1String(usage), bitSet,
             subObjects.isEmpty() ? QString() : QStringLiteral("<SubObjects>%1</SubObjects>").arg(subObjects));
}

QString dictionaryXml(const QString &objects)
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n"
                          "<Header><Date>2026-01-02</Date><Time>10:00:00</Time><Author>tst</Author>"
                          "<Comment></Comment><Version>1.2.3</Version></Header>\n"
                          "<Name>ExtendTest</Name>\n%1</KiroObjectDictionary>\n")
        .arg(objects);
}

QString standardObjects()
{
    return QStringLiteral("<Group><Name>Status</Name><UiName>Status</UiName>\n")
        + objectXml(idStatus, "STATUS", "U16", 2, "0x4", "0=Ready,1=Enabled,5=Fault")
        + objectXml(idWide, "WIDE", "OCTET_STRING", 65, "0x4", "0=Wide0")
        + objectXml(idEdge, "EDGE", "OCTET_STRING", 64, "0x4", "63=Last") + QStringLiteral("</Group>\n")
        + objectXml(idCurve, "CURVE", "XY", 16, "0x2") + objectXml(idDbCurve, "DB_CURVE", "XY", 8, "0x80")
        + objectXml(idActCurve, "ACT_CURVE", "XY", 16, "0x4") + objectXml(idShortCurve, "SHORT_CURVE", "XY", 4, "0x2")
        + objectXml(idPlain, "PLAIN", "U32", 4, "0x2");
}

bool writeFile(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(text.toUtf8()) > 0;
}

int virtualObjectCount(const COdict &dict)
{
    int count = 0;
    for (const COdictObjectId &uid : dict.allObjectUIds()) {
        if (dict.objectPtr(uid)->isVirtual())
            ++count;
    }
    return count;
}

} // namespace

class tst_OdictExtend : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("extend.xml"));
        QVERIFY(writeFile(m_file, dictionaryXml(standardObjects())));
    }

    void virtualSubObjects_data()
    {
        QTest::addColumn<NkrOdict::eObjectType_t>("kind");
        QTest::addColumn<int>("filter");
        QTest::addColumn<uint>("id");
        QTest::addColumn<QString>("subs"); // "sub-id=name" of the virtual sub-objects
        QTest::addColumn<int>("total");    // virtual objects in the whole dictionary

        const QString status = QStringLiteral("0=Ready 1=Enabled 5=Fault");
        const QString halves = QStringLiteral("0=X1-Value 1=Y1-Value 2=X2-Value 3=Y2-Value");
        QTest::newRow("no filter, bit set") << E_OT_VALUE << 0 << idStatus << QString() << 0;
        QTest::newRow("no filter, XY") << E_OT_PARAMETER << 0 << idCurve << QString() << 0;
        for (const eObjectType_t kind : {E_OT_STD, E_OT_VALUE, E_OT_EDITOR, E_OT_PARAMETER})
            QTest::addRow("bits, object kind %d", int(kind)) << kind << int(E_VO_BITSET) << idStatus << status << 4;
        QTest::newRow("bits, 64 bytes") << E_OT_STD << int(E_VO_BITSET) << idEdge << "63=Last" << 4;
        QTest::newRow("bits, 65 bytes is too wide") << E_OT_STD << int(E_VO_BITSET) << idWide << QString() << 4;
        QTest::newRow("bits, XY stays whole") << E_OT_STD << int(E_VO_BITSET) << idCurve << QString() << 4;
        QTest::newRow("XY, parameter of two pairs") << E_OT_PARAMETER << int(E_VO_XY) << idCurve << halves << 6;
        QTest::newRow("XY, database parameter") << E_OT_PARAMETER << int(E_VO_XY) << idDbCurve << halves.left(21) << 6;
        QTest::newRow("XY, actual value") << E_OT_PARAMETER << int(E_VO_XY) << idActCurve << QString() << 6;
        QTest::newRow("XY, smaller than one pair") << E_OT_PARAMETER << int(E_VO_XY) << idShortCurve << QString() << 6;
        QTest::newRow("XY, other data type") << E_OT_PARAMETER << int(E_VO_XY) << idPlain << QString() << 6;
        QTest::newRow("XY, bit set stays whole") << E_OT_PARAMETER << int(E_VO_XY) << idStatus << QString() << 6;
    }

    void virtualSubObjects()
    {
        QFETCH(NkrOdict::eObjectType_t, kind);
        QFETCH(int, filter);
        QFETCH(uint, id);
        QFETCH(QString, subs);
        QFETCH(int, total);

        CMemoryLogfile log;
        COdictExtend dict(kind, &log);
        dict.setObjectFilter(VirtualObjectFlags(filter));
        log.clear();
        // A parameter dictionary's loadDictionary expects a parameter-set file.
        QCOMPARE(kind == E_OT_PARAMETER ? dict.loadParameterDictionary(m_file) : dict.loadDictionary(m_file), 0);
        QCOMPARE(log.count(NkrLogfiles::E_SEV_CRITICAL), 0);
        QCOMPARE(dict.objectFilter(), VirtualObjectFlags(filter));
        QCOMPARE(virtualObjectCount(dict), total);

        // One virtual sub-object per bit or XY half, numbered by its position and named after it.
        QStringList found;
        QList<unsigned int> subIds;
        for (const COdictNode *node : dict.node(id)->children()) {
            const COdictObject *sub = node->dataRef().objectPtr();
            if (!sub || !sub->isVirtual())
                continue;
            found << QStringLiteral("%1=%2").arg(sub->subId()).arg(sub->name());
            subIds << sub->subId();
            QCOMPARE(dict.node(id, sub->subId()), node);
            QCOMPARE(node->dataRef().type(), E_IT_SUBOBJECT);
            QCOMPARE(node->dataRef().objectType(), kind);
            QVERIFY(!sub->hasBitSet() && sub->subIdList().isEmpty());
            if (filter == E_VO_XY)
                QVERIFY(sub->dataType() == NTypes::E_I32 && sub->dataSize() == 4u);
            else
                QCOMPARE(sub->uiName(), sub->name());
            // The halves of every XY object share their names; the name index holds one of them.
            const COdictNode *named = dict.node(sub->uniqueName());
            QCOMPARE(named ? named->dataRef().name() : QString(), sub->name());
        }
        QCOMPARE(found.join(QLatin1Char(' ')), subs);
        QCOMPARE(dict.object(id).subIdList(), subIds);
        QCOMPARE(dict.hasVirtualSubObjects(COdictObjectId(id)), !subIds.isEmpty());
        QCOMPARE(dict.hasVirtualSubObjects(dict.object(id)), !subIds.isEmpty());
        checkIndexInvariants(*dict.objectTree());
    }

    void storedSubObjectsReplaceVirtualOnes()
    {
        // RECORD has a bit set and stored sub-objects, the first with a bit set of its own: none of
        // them gets virtual sub-objects, and writing the owner leaves the stored sub-objects alone.
        const QString subs = objectXml(idRecord, "RECORD_0", "U16", 2, "0x4", "0=Inner", "0")
            + objectXml(idRecord, "RECORD_3", "U16", 2, "0x4", "", "3");
        const QString path = m_dir.filePath(QStringLiteral("record.xml"));
        QVERIFY(writeFile(path, dictionaryXml(standardObjects()
                                              + objectXml(idRecord, "RECORD", "U32", 4, "0x4", "0=Low,1=High", "", subs))));

        CMemoryLogfile log;
        COdictExtendEdit dict(E_OT_VALUE, &log);
        dict.setObjectFilter(E_VO_BITSET);
        log.clear();
        QCOMPARE(dict.loadDictionary(path), 0);
        QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), QStringList());

        QCOMPARE(virtualObjectCount(dict), 4); // those of the standard objects only
        QCOMPARE(dict.node(idRecord)->childCount(), 2);
        QCOMPARE(dict.node(idRecord, 0)->childCount(), 0);
        QCOMPARE(dict.object(idRecord, 0).name(), QStringLiteral("RECORD_0"));
        QCOMPARE(dict.object(idRecord).subIdList(), (QList<unsigned int>{0, 3}));
        QVERIFY(!dict.hasVirtualSubObjects(COdictObjectId(idRecord)));
        QVERIFY(dict.hasVirtualSubObjects(COdictObjectId(idStatus)));
        QVERIFY(!dict.hasVirtualSubObjects(COdictObjectId(0x999)));
        QVERIFY(!dict.hasVirtualSubObjects(COdictObject()));
        // An object is asked about by its id and its own sub-id list, not by the dictionary's copy.
        COdictObject copy = dict.object(idStatus);
        copy.clearSubIds();
        QVERIFY(!dict.hasVirtualSubObjects(copy));
        checkIndexInvariants(*dict.objectTree());

        // The two stored sub-objects, then the owner.
        for (const unsigned int subId : {0u, 3u, 0xFFFFFFFFu}) {
            COdictValueObject stored = dict.valueObject(idRecord, subId);
            stored.setCurrentValue(CVariant::fromU64(subId > 3 ? 1 : 0x1234 + subId, stored.dataType()));
            QVERIFY(dict.setValueObject(stored));
        }
        const auto value = [&dict](unsigned int subId) { return dict.valueObject(idRecord, subId).currentCValue().toU64(); };
        QCOMPARE(QStringLiteral("%1 %2 %3").arg(value(0xFFFFFFFFu)).arg(value(0), 0, 16).arg(value(3), 0, 16),
                 QStringLiteral("1 1234 1237"));
    }

    void filterWithoutTreeIsIgnored()
    {
        CMemoryLogfile log;
        COdictExtend extend(E_OT_UNKNOWN, &log);
        QVERIFY(!extend.objectTree());
        extend.setObjectFilter(E_VO_BITSET | E_VO_XY);
        QCOMPARE(extend.objectFilter(), VirtualObjectFlags());
        QVERIFY(!extend.hasVirtualSubObjects(COdictObjectId(idStatus)));

        COdictExtendEdit edit(E_OT_UNKNOWN, &log);
        edit.setObjectFilter(E_VO_BITSET);
        QCOMPARE(edit.objectFilter(), VirtualObjectFlags());
        COdictValueObject status;
        status.setId(idStatus);
        QVERIFY(!edit.setValueObject(status));
    }

    void saveLeavesVirtualObjectsOut()
    {
        COdictExtendEdit dict(E_OT_EDITOR);
        dict.setObjectFilter(E_VO_BITSET | E_VO_XY);
        QCOMPARE(dict.loadDictionary(m_file), 0);
        QCOMPARE(virtualObjectCount(dict), 10); // 3 + 1 bits, 4 + 2 halves

        const QString saved = m_dir.filePath(QStringLiteral("saved.xml"));
        QCOMPARE(dict.saveDictionary(saved), 0);
        COdictEdit plain(E_OT_EDITOR);
        QCOMPARE(plain.loadDictionary(saved), 0);
        QCOMPARE(plain.allObjectUIds().size(), dict.allObjectUIds().size() - 10);
        for (const COdictObjectId &uid : plain.allObjectUIds())
            QVERIFY(plain.object(uid).subIdList().isEmpty() && plain.node(uid)->childCount() == 0);

        // Loading the saved file with the filter again gives the same objects.
        COdictExtend again(E_OT_EDITOR);
        again.setObjectFilter(E_VO_BITSET | E_VO_XY);
        QCOMPARE(again.loadDictionary(saved), 0);
        QCOMPARE(again.allObjectUIds(), dict.allObjectUIds());
    }

    void bitValues_data()
    {
        QTest::addColumn<uint>("value");
        QTest::addColumn<uint>("bit");
        QTest::addColumn<bool>("set");
        QTest::addColumn<uint>("owner"); // after the bit is written

        QTest::newRow("0b101, set bit 1") << 0x5u << 1u << true << 0x7u;
        QTest::newRow("0b101, clear bit 0") << 0x5u << 0u << false << 0x4u;
        QTest::newRow("bits outside the bit set survive, set bit 5") << 0xFFDCu << 5u << true << 0xFFFCu;
    }

    void bitValues()
    {
        QFETCH(uint, value);
        QFETCH(uint, bit);
        QFETCH(bool, set);
        QFETCH(uint, owner);

        COdictExtendEdit dict(E_OT_VALUE);
        dict.setObjectFilter(E_VO_BITSET | E_VO_XY);
        QCOMPARE(dict.loadDictionary(m_file), 0);
        QVERIFY(dict.hasVirtualSubObjects(dict.valueObject(idStatus)));

        // The owner's value reaches its bits.
        COdictValueObject start = dict.valueObject(idStatus);
        start.setCurrentValue(CVariant::fromU64(value, NTypes::E_U16));
        start.setSetpointValue(CVariant::fromU64(~value & 0xFFFF, NTypes::E_U16));
        start.setError(7);
        QVERIFY(dict.setValueObject(start));
        for (const unsigned int b : {0u, 1u, 5u}) {
            const COdictValueObject sub = dict.valueObject(idStatus, b);
            QVERIFY(sub.isVirtual() && sub.error() == 7);
            QCOMPARE(sub.currentValue().toBool(), bool(value & (1u << b)));
            QCOMPARE(sub.setpointValue().toBool(), !(value & (1u << b)));
        }

        // A bit written reaches the owner, whose other values are written back unchanged.
        COdictValueObject sub = dict.valueObject(idStatus, bit);
        sub.setCurrentValue(QVariant(set));
        QVERIFY(dict.setValueObject(sub));
        QCOMPARE(dict.valueObject(idStatus).currentCValue().toU64(), quint64(owner));
        QCOMPARE(dict.valueObject(idStatus).setpointCValue().toU64(), quint64(~value & 0xFFFF));
        for (const unsigned int b : {0u, 1u, 5u})
            QCOMPARE(dict.valueObject(idStatus, b).currentValue().toBool(), bool(owner & (1u << b)));
        QVERIFY(dict.valueObject(idStatus, bit).isVirtual());

        // A virtual object the dictionary does not hold has no owner to write into.
        const COdictValueObject before = dict.valueObject(idStatus);
        COdictValueObject stray = dict.valueObject(idStatus, 1);
        stray.setSubId(7);
        stray.setCurrentValue(QVariant(true));
        QVERIFY(!dict.setValueObject(stray));
        QVERIFY(dict.valueObject(idStatus) == before);
        checkIndexInvariants(*dict.objectTree());
    }

    void halfWritesOwner_data()
    {
        QTest::addColumn<uint>("subId");
        QTest::addColumn<int>("value");
        QTest::newRow("Y1") << 1u << -2;
        QTest::newRow("Y2") << 3u << 0x01020304;
    }

    void halfWritesOwner()
    {
        QFETCH(uint, subId);
        QFETCH(int, value);

        COdictExtendEdit dict(E_OT_VALUE);
        dict.setObjectFilter(E_VO_XY);
        QCOMPARE(dict.loadDictionary(m_file), 0);
        const QByteArray start = QByteArray::fromHex("a0a1a2a3a4a5a6a7a8a9aaabacadaeaf");
        COdictValueObject owner = dict.valueObject(idCurve);
        owner.setCurrentValue(QVariant(start));
        QVERIFY(dict.setValueObject(owner));
        // Each half reads its four bytes as a little-endian signed number.
        for (unsigned int i = 0; i < 4; ++i)
            QCOMPARE(dict.valueObject(idCurve, i).currentCValue().toI64(), qint64(qFromLittleEndian<qint32>(start.constData() + 4 * i)));

        COdictValueObject half = dict.valueObject(idCurve, subId);
        QVERIFY(half.isVirtual());
        half.setCurrentValue(CVariant::fromI64(value, NTypes::E_I32));
        QVERIFY(dict.setValueObject(half));

        // Only the four bytes of the half written change.
        QByteArray expected = start;
        qToLittleEndian<qint32>(value, expected.data() + 4 * subId);
        QByteArray bytes = dict.valueObject(idCurve).currentValue().toByteArray();
        bytes.resize(16);
        QCOMPARE(bytes, expected);
        QCOMPARE(dict.valueObject(idCurve, subId).currentCValue().toI64(), qint64(value));
    }
};

QTEST_GUILESS_MAIN(tst_OdictExtend)
#include "tst_odictextend.moc"

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

/// The sub-ids of the virtual objects directly below the object \a id, in child order.
QList<unsigned int> virtualChildren(const COdict &dict, unsigned int id)
{
    QList<unsigned int> subIds;
    for (const COdictNode *child : dict.node(id)->children()) {
        const COdictObject *object = child->dataRef().objectPtr();
        if (object && object->isVirtual())
            subIds << object->subId();
    }
    return subIds;
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

/// Reads a dictionary file; a parameter dictionary reads it with loadParameterDictionary, since
/// its loadDictionary expects a parameter-set file.
int load(COdict &dict, const QString &path)
{
    return dict.objectType() == E_OT_PARAMETER ? dict.loadParameterDictionary(path) : dict.loadDictionary(path);
}

constexpr unsigned int idControl = 0x40; // U16 with bits 0, 1, 2
constexpr unsigned int idXy = 0x41;      // XY of two pairs

/// A value dictionary built by hand: a bit-set object and a data-type-24 parameter.
void buildValueTree(COdictExtendEdit &dict)
{
    COdictObjectTree *tree = dict.objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Values"));
    tree->rootNode()->appendChild(top);
    auto add = [&](unsigned int id, const char *name, NTypes::eTypes_t type, unsigned int size, const COdictObjectBitSet &bits) {
        COdictValueObject o;
        o.setId(id);
        o.setName(QString::fromLatin1(name));
        o.setDataType(type);
        o.setDataSize(size);
        o.setObjectUsage(E_OU_PARAMETER);
        o.setBitSetData(bits);
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, E_IT_OBJECT, &ok);
        QVERIFY(ok);
        top->appendChild(node);
    };
    COdictObjectBitSet bits;
    bits.insert(0, QStringLiteral("Enable"));
    bits.insert(1, QStringLiteral("Start"));
    bits.insert(2, QStringLiteral("Reset"));
    add(idControl, "CONTROL", NTypes::E_U16, 2, bits);
    add(idXy, "XY_TABLE", NTypes::E_XY, 16, COdictObjectBitSet());
}

} // namespace

class tst_OdictExtend : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void virtualSubObjects_data();
    void virtualSubObjects();
    void storedSubObjectsReplaceVirtualOnes();
    void filterWithoutTreeIsIgnored();
    void saveLeavesVirtualObjectsOut();

    void bitValues_data();
    void bitValues();
    void halfWritesOwner_data();
    void halfWritesOwner();

private:
    QTemporaryDir m_dir;
    QString m_file;
};

void tst_OdictExtend::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_file = m_dir.filePath(QStringLiteral("extend.xml"));
    QVERIFY(writeFile(m_file, dictionaryXml(standardObjects())));
}

void tst_OdictExtend::virtualSubObjects_data()
{
    QTest::addColumn<NkrOdict::eObjectType_t>("kind");
    QTest::addColumn<int>("filter");
    QTest::addColumn<uint>("id");
    QTest::addColumn<QStringList>("names"); // of the virtual sub-objects, "" for a sub-id not used
    QTest::addColumn<int>("total");         // virtual objects in the whole dictionary

    const QStringList status{QStringLiteral("Ready"), QStringLiteral("Enabled"), QString(), QString(), QString(),
                             QStringLiteral("Fault")};
    const QStringList halves{QStringLiteral("X1-Value"), QStringLiteral("Y1-Value"), QStringLiteral("X2-Value"),
                             QStringLiteral("Y2-Value")};
    QStringList last = QVector<QString>(63).toList();
    last << QStringLiteral("Last");

    QTest::newRow("no filter, bit set") << E_OT_VALUE << 0 << idStatus << QStringList() << 0;
    QTest::newRow("no filter, XY") << E_OT_PARAMETER << 0 << idCurve << QStringList() << 0;
    QTest::newRow("bits, plain objects") << E_OT_STD << int(E_VO_BITSET) << idStatus << status << 4;
    QTest::newRow("bits, value objects") << E_OT_VALUE << int(E_VO_BITSET) << idStatus << status << 4;
    QTest::newRow("bits, editor objects") << E_OT_EDITOR << int(E_VO_BITSET) << idStatus << status << 4;
    QTest::newRow("bits, parameter objects") << E_OT_PARAMETER << int(E_VO_BITSET) << idStatus << status << 4;
    QTest::newRow("bits, 64 bytes") << E_OT_STD << int(E_VO_BITSET) << idEdge << last << 4;
    QTest::newRow("bits, 65 bytes is too wide") << E_OT_STD << int(E_VO_BITSET) << idWide << QStringList() << 4;
    QTest::newRow("bits, XY stays whole") << E_OT_STD << int(E_VO_BITSET) << idCurve << QStringList() << 4;
    QTest::newRow("XY, parameter of two pairs") << E_OT_PARAMETER << int(E_VO_XY) << idCurve << halves << 6;
    QTest::newRow("XY, database parameter") << E_OT_PARAMETER << int(E_VO_XY) << idDbCurve << QStringList(halves.mid(0, 2)) << 6;
    QTest::newRow("XY, actual value") << E_OT_PARAMETER << int(E_VO_XY) << idActCurve << QStringList() << 6;
    QTest::newRow("XY, smaller than one pair") << E_OT_PARAMETER << int(E_VO_XY) << idShortCurve << QStringList() << 6;
    QTest::newRow("XY, other data type") << E_OT_PARAMETER << int(E_VO_XY) << idPlain << QStringList() << 6;
    QTest::newRow("XY, bit set stays whole") << E_OT_PARAMETER << int(E_VO_XY) << idStatus << QStringList() << 6;
}

void tst_OdictExtend::virtualSubObjects()
{
    QFETCH(NkrOdict::eObjectType_t, kind);
    QFETCH(int, filter);
    QFETCH(uint, id);
    QFETCH(QStringList, names);
    QFETCH(int, total);

    CMemoryLogfile log;
    COdictExtend dict(kind, &log);
    dict.setObjectFilter(VirtualObjectFlags(filter));
    log.clear();
    QCOMPARE(load(dict, m_file), 0);
    QCOMPARE(log.count(NkrLogfiles::E_SEV_CRITICAL), 0);
    QCOMPARE(dict.objectFilter(), VirtualObjectFlags(filter));
    QCOMPARE(virtualObjectCount(dict), total);

    // One virtual sub-object per bit or XY half, numbered by its position and named after it.
    QList<unsigned int> subIds;
    for (int i = 0; i < names.size(); ++i) {
        if (!names.at(i).isEmpty())
            subIds << unsigned(i);
    }
    QCOMPARE(virtualChildren(dict, id), subIds);
    QCOMPARE(dict.object(id).subIdList(), subIds);
    QCOMPARE(dict.hasVirtualSubObjects(COdictObjectId(id)), !subIds.isEmpty());
    QCOMPARE(dict.hasVirtualSubObjects(dict.object(id)), !subIds.isEmpty());
    for (unsigned int subId : subIds) {
        const COdictNode *node = dict.node(id, subId);
        QVERIFY(node);
        QCOMPARE(node->parent(), dict.node(id));
        QCOMPARE(node->dataRef().type(), E_IT_SUBOBJECT);
        QCOMPARE(node->dataRef().objectType(), kind);
        const COdictObject *sub = node->dataRef().objectPtr();
        QVERIFY(sub->isVirtual());
        QCOMPARE(sub->name(), names.at(int(subId)));
        QVERIFY(!sub->hasBitSet());
        QVERIFY(sub->subIdList().isEmpty());
        if (filter == E_VO_XY) {
            QCOMPARE(sub->dataType(), NTypes::E_I32);
            QCOMPARE(sub->dataSize(), 4u);
        } else {
            QCOMPARE(sub->uiName(), sub->name());
        }
        // The halves of every XY object share their names; the name index holds one of them.
        QVERIFY(dict.node(sub->uniqueName()));
        QCOMPARE(dict.node(sub->uniqueName())->dataRef().name(), sub->name());
    }
    checkIndexInvariants(*dict.objectTree());
}

void tst_OdictExtend::storedSubObjectsReplaceVirtualOnes()
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

    for (unsigned int subId : {0u, 3u}) {
        COdictValueObject stored = dict.valueObject(idRecord, subId);
        stored.setCurrentValue(CVariant::fromU64(0x1234 + subId, NTypes::E_U16));
        QVERIFY(dict.setValueObject(stored));
    }
    COdictValueObject owner = dict.valueObject(idRecord);
    owner.setCurrentValue(CVariant::fromU64(0x1, NTypes::E_U32));
    QVERIFY(dict.setValueObject(owner));
    QCOMPARE(dict.valueObject(idRecord).currentCValue().toU64(), quint64(1));
    QCOMPARE(dict.valueObject(idRecord, 0).currentCValue().toU64(), quint64(0x1234));
    QCOMPARE(dict.valueObject(idRecord, 3).currentCValue().toU64(), quint64(0x1237));
}

void tst_OdictExtend::filterWithoutTreeIsIgnored()
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
    COdictValueObject control;
    control.setId(idControl);
    QVERIFY(!edit.setValueObject(control));
}

void tst_OdictExtend::saveLeavesVirtualObjectsOut()
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
    for (const COdictObjectId &uid : plain.allObjectUIds()) {
        QVERIFY(plain.object(uid).subIdList().isEmpty());
        QCOMPARE(plain.node(uid)->childCount(), 0);
    }

    // Loading the saved file with the filter again gives the same objects.
    COdictExtend again(E_OT_EDITOR);
    again.setObjectFilter(E_VO_BITSET | E_VO_XY);
    QCOMPARE(again.loadDictionary(saved), 0);
    QCOMPARE(again.allObjectUIds(), dict.allObjectUIds());
}

void tst_OdictExtend::bitValues_data()
{
    QTest::addColumn<uint>("value");
    QTest::addColumn<uint>("bit");
    QTest::addColumn<bool>("set");
    QTest::addColumn<uint>("owner"); // after the bit is written

    QTest::newRow("0b101, set bit 1") << 0x5u << 1u << true << 0x7u;
    QTest::newRow("0b101, clear bit 0") << 0x5u << 0u << false << 0x4u;
    QTest::newRow("only bits above the bit set, set bit 2") << 0xFFF8u << 2u << true << 0xFFFCu;
}

void tst_OdictExtend::bitValues()
{
    QFETCH(uint, value);
    QFETCH(uint, bit);
    QFETCH(bool, set);
    QFETCH(uint, owner);

    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_BITSET | E_VO_XY);
    buildValueTree(dict);
    QCOMPARE(dict.object(idControl).subIdList(), (QList<unsigned int>{0, 1, 2}));
    QVERIFY(dict.hasVirtualSubObjects(dict.valueObject(idControl)));

    // The owner's value reaches its bits.
    COdictValueObject start = dict.valueObject(idControl);
    start.setCurrentValue(CVariant::fromU64(value, NTypes::E_U16));
    start.setSetpointValue(CVariant::fromU64(~value & 0xFFFF, NTypes::E_U16));
    start.setError(7);
    QVERIFY(dict.setValueObject(start));
    for (unsigned int b = 0; b < 3; ++b) {
        const COdictValueObject sub = dict.valueObject(idControl, b);
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.currentValue().toBool(), bool(value & (1u << b)));
        QCOMPARE(sub.setpointValue().toBool(), !(value & (1u << b)));
        QCOMPARE(sub.error(), 7);
    }

    // A bit written reaches the owner, whose other values are written back unchanged.
    COdictValueObject sub = dict.valueObject(idControl, bit);
    sub.setCurrentValue(QVariant(set));
    QVERIFY(dict.setValueObject(sub));
    QCOMPARE(dict.valueObject(idControl).currentCValue().toU64(), quint64(owner));
    QCOMPARE(dict.valueObject(idControl).setpointCValue().toU64(), quint64(~value & 0xFFFF));
    for (unsigned int b = 0; b < 3; ++b)
        QCOMPARE(dict.valueObject(idControl, b).currentValue().toBool(), bool(owner & (1u << b)));
    QVERIFY(dict.valueObject(idControl, bit).isVirtual());

    // A virtual object the dictionary does not hold has no owner to write into.
    const COdictValueObject before = dict.valueObject(idControl);
    COdictValueObject stray = dict.valueObject(idControl, 1);
    stray.setSubId(7);
    stray.setCurrentValue(QVariant(true));
    QVERIFY(!dict.setValueObject(stray));
    QVERIFY(dict.valueObject(idControl) == before);
    checkIndexInvariants(*dict.objectTree());
}

void tst_OdictExtend::halfWritesOwner_data()
{
    QTest::addColumn<uint>("subId");
    QTest::addColumn<int>("value");
    QTest::newRow("Y1") << 1u << -2;
    QTest::newRow("Y2") << 3u << 0x01020304;
}

void tst_OdictExtend::halfWritesOwner()
{
    QFETCH(uint, subId);
    QFETCH(int, value);

    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_XY);
    buildValueTree(dict);
    QCOMPARE(virtualChildren(dict, idXy), (QList<unsigned int>{0, 1, 2, 3}));
    QByteArray start(16, '\0');
    for (int i = 0; i < start.size(); ++i)
        start[i] = char(0xA0 + i);
    COdictValueObject owner = dict.valueObject(idXy);
    owner.setCurrentValue(QVariant(start));
    QVERIFY(dict.setValueObject(owner));
    // Each half reads its four bytes as a little-endian signed number.
    for (unsigned int i = 0; i < 4; ++i)
        QCOMPARE(dict.valueObject(idXy, i).currentCValue().toI64(), qint64(qFromLittleEndian<qint32>(start.constData() + 4 * i)));

    COdictValueObject half = dict.valueObject(idXy, subId);
    QVERIFY(half.isVirtual());
    half.setCurrentValue(CVariant::fromI64(value, NTypes::E_I32));
    QVERIFY(dict.setValueObject(half));

    // Only the four bytes of the half written change.
    QByteArray expected = start;
    qToLittleEndian<qint32>(value, expected.data() + 4 * subId);
    QByteArray bytes = dict.valueObject(idXy).currentValue().toByteArray();
    bytes.resize(16);
    QCOMPARE(bytes, expected);
    QCOMPARE(dict.valueObject(idXy, subId).currentCValue().toI64(), qint64(value));
}

QTEST_GUILESS_MAIN(tst_OdictExtend)
#include "tst_odictextend.moc"

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

struct sXmlObject_t {
    unsigned int id;
    QString name;
    QString type;
    int size;
    QString usage;
    QList<QPair<int, QString>> bits;
    QString subId = QString(); // empty: an object
    QString subObjects = QString();
};

QString objectXml(const sXmlObject_t &o)
{
    QString bits;
    if (!o.bits.isEmpty()) {
        bits = QStringLiteral("<BitSet>");
        for (const auto &bit : o.bits)
            bits += QStringLiteral("<Bit pos=\"%1\">%2</Bit>").arg(bit.first).arg(bit.second);
        bits += QStringLiteral("</BitSet>");
    }
    const QString subId = o.subId.isEmpty() ? QString() : QStringLiteral(" subid=\"%1\"").arg(o.subId);
    const QString subs = o.subObjects.isEmpty() ? QString() : QStringLiteral("<SubObjects>%1</SubObjects>").arg(o.subObjects);
    return QStringLiteral("<Object id=\"0x%1\"%2><Name>%3</Name><UiName>%3 ui</UiName><UiShortName>%3 short</UiShortName>"
                          "<Type>%4</Type><DataSize>%5</DataSize><ObjectUsage>%6</ObjectUsage>%7%8</Object>\n")
        .arg(QString::number(o.id, 16), subId, o.name, o.type, QString::number(o.size), o.usage, bits, subs);
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
    const QString octets = QStringLiteral("OCTET_STRING");
    QString xml = QStringLiteral("<Group><Name>Status</Name><UiName>Status</UiName>\n");
    xml += objectXml({idStatus, QStringLiteral("STATUS"), QStringLiteral("U16"), 2, QStringLiteral("0x4"),
                      {{0, QStringLiteral("Ready")}, {1, QStringLiteral("Enabled")}, {5, QStringLiteral("Fault")}}});
    xml += objectXml({idWide, QStringLiteral("WIDE"), octets, 65, QStringLiteral("0x4"), {{0, QStringLiteral("Wide0")}}});
    xml += objectXml({idEdge, QStringLiteral("EDGE"), octets, 64, QStringLiteral("0x4"), {{63, QStringLiteral("Last")}}});
    xml += QStringLiteral("</Group>\n");
    xml += objectXml({idCurve, QStringLiteral("CURVE"), QStringLiteral("XY"), 16, QStringLiteral("0x2"), {}});
    xml += objectXml({idDbCurve, QStringLiteral("DB_CURVE"), QStringLiteral("XY"), 8, QStringLiteral("0x80"), {}});
    xml += objectXml({idActCurve, QStringLiteral("ACT_CURVE"), QStringLiteral("XY"), 16, QStringLiteral("0x4"), {}});
    xml += objectXml({idShortCurve, QStringLiteral("SHORT_CURVE"), QStringLiteral("XY"), 4, QStringLiteral("0x2"), {}});
    xml += objectXml({idPlain, QStringLiteral("PLAIN"), QStringLiteral("U32"), 4, QStringLiteral("0x2"), {}});
    return xml;
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
    const COdictNode *node = dict.node(id);
    if (!node)
        return subIds;
    for (const COdictNode *child : node->children()) {
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

COdictValueObject valueObject(unsigned int id, const QString &name, NTypes::eTypes_t type, unsigned int size)
{
    COdictValueObject o;
    o.setId(id);
    o.setName(name);
    o.setDataType(type);
    o.setDataSize(size);
    o.setObjectUsage(E_OU_PARAMETER);
    return o;
}

constexpr unsigned int idControl = 0x40; // U16 with bits 0, 1, 2
constexpr unsigned int idXy = 0x41;      // XY of two pairs

/// A value dictionary built by hand: a bit-set object and a data-type-24 parameter.
void buildValueTree(COdictExtendEdit &dict)
{
    COdictObjectTree *tree = dict.objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Values"));
    tree->rootNode()->appendChild(top);

    COdictValueObject control = valueObject(idControl, QStringLiteral("CONTROL"), NTypes::E_U16, 2);
    COdictObjectBitSet bits;
    bits.insert(0, QStringLiteral("Enable"));
    bits.insert(1, QStringLiteral("Start"));
    bits.insert(2, QStringLiteral("Reset"));
    control.setBitSetData(bits);
    COdictValueObject xy = valueObject(idXy, QStringLiteral("XY_TABLE"), NTypes::E_XY, 16);

    for (const COdictValueObject &o : {control, xy}) {
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, E_IT_OBJECT, &ok);
        QVERIFY(ok);
        top->appendChild(node);
    }
}

QByteArray bytesOf(const QVariant &value, int size)
{
    QByteArray bytes = value.toByteArray();
    bytes.resize(size);
    return bytes;
}

} // namespace

class tst_OdictExtend : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void emptyFilterAddsNothing_data();
    void emptyFilterAddsNothing();
    void bitSetFilter_data();
    void bitSetFilter();
    void xyFilter_data();
    void xyFilter();
    void bitSetObjectWithStoredSubObjects();
    void filterWithoutTreeIsIgnored();
    void hasVirtualSubObjectsByKey();
    void saveLeavesVirtualObjectsOut();

    void ownerValueReachesBits_data();
    void ownerValueReachesBits();
    void bitWritesOwner_data();
    void bitWritesOwner();
    void ownerValueReachesHalves();
    void halfWritesOwner_data();
    void halfWritesOwner();
    void unknownVirtualObjectIsRefused();
    void ownerLeavesStoredSubObjectsAlone();

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

void tst_OdictExtend::emptyFilterAddsNothing_data()
{
    QTest::addColumn<bool>("editable");
    QTest::newRow("COdictExtend") << false;
    QTest::newRow("COdictExtendEdit") << true;
}

void tst_OdictExtend::emptyFilterAddsNothing()
{
    QFETCH(bool, editable);

    QScopedPointer<COdict> dict(editable ? static_cast<COdict *>(new COdictExtendEdit(E_OT_VALUE))
                                         : static_cast<COdict *>(new COdictExtend(E_OT_VALUE)));
    QCOMPARE(dict->loadDictionary(m_file), 0);
    QCOMPARE(dict->allObjectUIds().size(), 8);
    QCOMPARE(virtualObjectCount(*dict), 0);
    for (const COdictObjectId &uid : dict->allObjectUIds()) {
        const COdictObject object = dict->object(uid);
        QVERIFY(object.subIdList().isEmpty());
        if (editable) {
            auto *edit = static_cast<COdictExtendEdit *>(dict.data());
            QVERIFY(!edit->hasVirtualSubObjects(object));
            QVERIFY(!edit->hasVirtualSubObjects(uid));
            QVERIFY(!edit->hasVirtualSubObjects(dict->valueObject(uid)));
        } else {
            auto *extend = static_cast<COdictExtend *>(dict.data());
            QVERIFY(!extend->hasVirtualSubObjects(object));
            QVERIFY(!extend->hasVirtualSubObjects(uid));
        }
    }
}

void tst_OdictExtend::bitSetFilter_data()
{
    QTest::addColumn<NkrOdict::eObjectType_t>("kind");
    QTest::newRow("plain objects") << E_OT_STD;
    QTest::newRow("value objects") << E_OT_VALUE;
    QTest::newRow("editor objects") << E_OT_EDITOR;
    QTest::newRow("parameter objects") << E_OT_PARAMETER;
}

void tst_OdictExtend::bitSetFilter()
{
    QFETCH(NkrOdict::eObjectType_t, kind);

    CMemoryLogfile log;
    COdictExtend dict(kind, &log);
    dict.setObjectFilter(E_VO_BITSET);
    QCOMPARE(dict.objectFilter(), VirtualObjectFlags(E_VO_BITSET));
    log.clear();
    QCOMPARE(load(dict, m_file), 0);
    QCOMPARE(log.count(NkrLogfiles::E_SEV_CRITICAL), 0);

    // One virtual sub-object per bit, named after the bit, numbered by its position.
    QCOMPARE(virtualChildren(dict, idStatus), (QList<unsigned int>{0, 1, 5}));
    QCOMPARE(dict.object(idStatus).subIdList(), (QList<unsigned int>{0, 1, 5}));
    QVERIFY(dict.hasVirtualSubObjects(COdictObjectId(idStatus)));
    QVERIFY(dict.hasVirtualSubObjects(dict.object(idStatus)));
    const QStringList names{QStringLiteral("Ready"), QStringLiteral("Enabled"), QStringLiteral("Fault")};
    const QList<unsigned int> positions{0, 1, 5};
    const COdictNode *owner = dict.node(idStatus);
    for (int i = 0; i < positions.size(); ++i) {
        const COdictNode *node = dict.node(idStatus, positions.at(i));
        QVERIFY(node);
        QCOMPARE(node->parent(), owner);
        QCOMPARE(node->dataRef().type(), E_IT_SUBOBJECT);
        QCOMPARE(node->dataRef().objectType(), kind);
        const COdictObject *sub = node->dataRef().objectPtr();
        QVERIFY(sub->isVirtual());
        QCOMPARE(sub->name(), names.at(i));
        QCOMPARE(sub->uiName(), names.at(i));
        QCOMPARE(sub->id(), idStatus);
        QCOMPARE(sub->subId(), positions.at(i));
        QVERIFY(!sub->hasBitSet());
        QVERIFY(sub->subIdList().isEmpty());
        QCOMPARE(dict.node(names.at(i), positions.at(i)), node);
    }

    // The size limit is 64 bytes, inclusive.
    QCOMPARE(virtualChildren(dict, idWide), QList<unsigned int>());
    QVERIFY(!dict.hasVirtualSubObjects(COdictObjectId(idWide)));
    QCOMPARE(virtualChildren(dict, idEdge), QList<unsigned int>{63});

    // Filter bit 0x2 is not set: data-type-24 parameters stay whole.
    QCOMPARE(virtualChildren(dict, idCurve), QList<unsigned int>());
    QCOMPARE(virtualChildren(dict, idDbCurve), QList<unsigned int>());
    QCOMPARE(virtualObjectCount(dict), 4);

    checkIndexInvariants(*dict.objectTree());
}

void tst_OdictExtend::xyFilter_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<QList<unsigned int>>("subIds");

    QTest::newRow("parameter of two pairs") << idCurve << QList<unsigned int>{0, 1, 2, 3};
    QTest::newRow("database parameter of one pair") << idDbCurve << QList<unsigned int>{0, 1};
    QTest::newRow("actual value") << idActCurve << QList<unsigned int>();
    QTest::newRow("smaller than one pair") << idShortCurve << QList<unsigned int>();
    QTest::newRow("other data type") << idPlain << QList<unsigned int>();
    QTest::newRow("bit-set object, filter 0x1 not set") << idStatus << QList<unsigned int>();
}

void tst_OdictExtend::xyFilter()
{
    QFETCH(uint, id);
    QFETCH(QList<unsigned int>, subIds);

    COdictExtend dict(E_OT_PARAMETER);
    dict.setObjectFilter(E_VO_XY);
    QCOMPARE(load(dict, m_file), 0);

    QCOMPARE(virtualChildren(dict, id), subIds);
    QCOMPARE(dict.object(id).subIdList(), subIds);
    QCOMPARE(dict.hasVirtualSubObjects(COdictObjectId(id)), !subIds.isEmpty());
    const QStringList names{QStringLiteral("X1-Value"), QStringLiteral("Y1-Value"), QStringLiteral("X2-Value"),
                            QStringLiteral("Y2-Value")};
    for (unsigned int subId : subIds) {
        const COdictObject sub = dict.object(id, subId);
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.name(), names.at(int(subId)));
        QCOMPARE(sub.dataType(), NTypes::E_I32);
        QCOMPARE(sub.dataSize(), 4u);
        // The halves of every XY object share these names; the name index holds one of them.
        QVERIFY(dict.node(sub.uniqueName()));
        QCOMPARE(dict.node(sub.uniqueName())->dataRef().name(), sub.name());
    }
    checkIndexInvariants(*dict.objectTree());
}

void tst_OdictExtend::bitSetObjectWithStoredSubObjects()
{
    // An object whose sub-objects are stored in the file keeps them and gets no virtual ones,
    // and a stored sub-object with a bit set of its own gets none either.
    const QString subs = objectXml({idRecord, QStringLiteral("RECORD_0"), QStringLiteral("U16"), 2, QStringLiteral("0x4"),
                                    {{0, QStringLiteral("Inner")}}, QStringLiteral("0")})
        + objectXml({idRecord, QStringLiteral("RECORD_1"), QStringLiteral("U16"), 2, QStringLiteral("0x4"), {},
                     QStringLiteral("1")});
    const QString xml = objectXml({idRecord, QStringLiteral("RECORD"), QStringLiteral("U32"), 4, QStringLiteral("0x4"),
                                   {{0, QStringLiteral("Low")}, {1, QStringLiteral("High")}}, QString(), subs});
    const QString path = m_dir.filePath(QStringLiteral("record.xml"));
    QVERIFY(writeFile(path, dictionaryXml(xml)));

    CMemoryLogfile log;
    COdictExtend dict(E_OT_VALUE, &log);
    dict.setObjectFilter(E_VO_BITSET | E_VO_XY);
    log.clear();
    QCOMPARE(dict.loadDictionary(path), 0);

    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), QStringList());
    QCOMPARE(virtualObjectCount(dict), 0);
    QCOMPARE(dict.node(idRecord)->childCount(), 2);
    QCOMPARE(dict.object(idRecord, 0).name(), QStringLiteral("RECORD_0"));
    QCOMPARE(dict.object(idRecord, 1).name(), QStringLiteral("RECORD_1"));
    QCOMPARE(dict.object(idRecord).subIdList(), (QList<unsigned int>{0, 1}));
    QVERIFY(!dict.hasVirtualSubObjects(COdictObjectId(idRecord)));
    checkIndexInvariants(*dict.objectTree());
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
    QVERIFY(!edit.setValueObject(valueObject(idControl, QStringLiteral("CONTROL"), NTypes::E_U16, 2)));

    // With a tree the filter is kept, also across loads.
    COdictExtendEdit withTree(E_OT_VALUE);
    withTree.setObjectFilter(E_VO_XY);
    QCOMPARE(withTree.loadDictionary(m_file), 0);
    QCOMPARE(withTree.objectFilter(), VirtualObjectFlags(E_VO_XY));
}

void tst_OdictExtend::hasVirtualSubObjectsByKey()
{
    const QString path = m_dir.filePath(QStringLiteral("mixed.xml"));
    const QString subs = objectXml({idRecord, QStringLiteral("RECORD_0"), QStringLiteral("U16"), 2, QStringLiteral("0x4"),
                                    {}, QStringLiteral("0")});
    QVERIFY(writeFile(path, dictionaryXml(standardObjects()
                                          + objectXml({idRecord, QStringLiteral("RECORD"), QStringLiteral("U32"), 4,
                                                       QStringLiteral("0x4"), {}, QString(), subs}))));
    COdictExtend dict(E_OT_STD);
    dict.setObjectFilter(E_VO_BITSET);
    QCOMPARE(dict.loadDictionary(path), 0);

    QVERIFY(dict.hasVirtualSubObjects(COdictObjectId(idStatus)));
    QVERIFY(!dict.hasVirtualSubObjects(COdictObjectId(idRecord))); // stored sub-objects only
    QVERIFY(!dict.hasVirtualSubObjects(COdictObjectId(0x999)));    // unknown object
    QVERIFY(!dict.hasVirtualSubObjects(COdictObject()));
    // An object is asked about by its id and its own sub-id list, not by the dictionary's copy.
    COdictObject copy = dict.object(idStatus);
    copy.clearSubIds();
    QVERIFY(!dict.hasVirtualSubObjects(copy));
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
    QCOMPARE(virtualObjectCount(plain), 0);
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

void tst_OdictExtend::ownerValueReachesBits_data()
{
    QTest::addColumn<uint>("value");
    QTest::newRow("0b101") << 0x5u;
    QTest::newRow("0b010") << 0x2u;
    QTest::newRow("zero") << 0x0u;
    QTest::newRow("bits above the bit set") << 0xFFF8u;
}

void tst_OdictExtend::ownerValueReachesBits()
{
    QFETCH(uint, value);

    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_BITSET | E_VO_XY);
    buildValueTree(dict);
    QCOMPARE(dict.object(idControl).subIdList(), (QList<unsigned int>{0, 1, 2}));
    QVERIFY(dict.hasVirtualSubObjects(dict.valueObject(idControl)));

    COdictValueObject owner = dict.valueObject(idControl);
    owner.setCurrentValue(CVariant::fromU64(value, NTypes::E_U16));
    owner.setSetpointValue(CVariant::fromU64(~value & 0xFFFF, NTypes::E_U16));
    owner.setError(7);
    QVERIFY(dict.setValueObject(owner));

    QCOMPARE(dict.valueObject(idControl).currentCValue().toU64(), quint64(value));
    for (unsigned int bit = 0; bit < 3; ++bit) {
        const COdictValueObject sub = dict.valueObject(idControl, bit);
        QVERIFY(sub.isVirtual());
        QCOMPARE(sub.currentValue().toBool(), bool(value & (1u << bit)));
        QCOMPARE(sub.setpointValue().toBool(), !(value & (1u << bit)));
        QCOMPARE(sub.error(), 7);
    }
    checkIndexInvariants(*dict.objectTree());
}

void tst_OdictExtend::bitWritesOwner_data()
{
    QTest::addColumn<uint>("bit");
    QTest::addColumn<bool>("set");
    QTest::addColumn<uint>("owner");

    // The owner starts at 0b101.
    QTest::newRow("set bit 1") << 1u << true << 0x7u;
    QTest::newRow("clear bit 0") << 0u << false << 0x4u;
    QTest::newRow("clear bit 2") << 2u << false << 0x1u;
    QTest::newRow("set a bit already set") << 2u << true << 0x5u;
}

void tst_OdictExtend::bitWritesOwner()
{
    QFETCH(uint, bit);
    QFETCH(bool, set);
    QFETCH(uint, owner);

    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_BITSET);
    buildValueTree(dict);
    COdictValueObject start = dict.valueObject(idControl);
    start.setCurrentValue(CVariant::fromU64(0x5, NTypes::E_U16));
    start.setSetpointValue(CVariant::fromU64(0x2, NTypes::E_U16));
    QVERIFY(dict.setValueObject(start));

    COdictValueObject sub = dict.valueObject(idControl, bit);
    QVERIFY(sub.isVirtual());
    sub.setCurrentValue(QVariant(set));
    QVERIFY(dict.setValueObject(sub));

    QCOMPARE(dict.valueObject(idControl).currentCValue().toU64(), quint64(owner));
    QCOMPARE(dict.valueObject(idControl).setpointCValue().toU64(), quint64(0x2)); // written back unchanged
    // Every bit reads as the owner's value says, the written one included.
    for (unsigned int b = 0; b < 3; ++b)
        QCOMPARE(dict.valueObject(idControl, b).currentValue().toBool(), bool(owner & (1u << b)));
    QVERIFY(dict.valueObject(idControl, bit).isVirtual());
}

void tst_OdictExtend::ownerValueReachesHalves()
{
    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_XY);
    buildValueTree(dict);
    QCOMPARE(virtualChildren(dict, idXy), (QList<unsigned int>{0, 1, 2, 3}));

    const QList<qint32> halves{10, -20, 300000, -4};
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    for (qint32 half : halves)
        out << half;

    COdictValueObject owner = dict.valueObject(idXy);
    owner.setCurrentValue(QVariant(bytes));
    QVERIFY(dict.setValueObject(owner));
    for (int i = 0; i < halves.size(); ++i)
        QCOMPARE(dict.valueObject(idXy, unsigned(i)).currentCValue().toI64(), qint64(halves.at(i)));
}

void tst_OdictExtend::halfWritesOwner_data()
{
    QTest::addColumn<uint>("subId");
    QTest::addColumn<int>("value");
    QTest::newRow("Y1") << 1u << -2;
    QTest::newRow("X1") << 0u << 0x01020304;
    QTest::newRow("Y2") << 3u << 77;
}

void tst_OdictExtend::halfWritesOwner()
{
    QFETCH(uint, subId);
    QFETCH(int, value);

    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_XY);
    buildValueTree(dict);
    QByteArray start(16, '\0');
    for (int i = 0; i < start.size(); ++i)
        start[i] = char(0xA0 + i);
    COdictValueObject owner = dict.valueObject(idXy);
    owner.setCurrentValue(QVariant(start));
    QVERIFY(dict.setValueObject(owner));

    COdictValueObject half = dict.valueObject(idXy, subId);
    QVERIFY(half.isVirtual());
    half.setCurrentValue(CVariant::fromI64(value, NTypes::E_I32));
    QVERIFY(dict.setValueObject(half));

    QByteArray expected = start;
    for (int i = 0; i < 4; ++i)
        expected[int(subId) * 4 + i] = char((quint32(value) >> (8 * i)) & 0xFF);
    QCOMPARE(bytesOf(dict.valueObject(idXy).currentValue(), 16), expected);
    QCOMPARE(dict.valueObject(idXy, subId).currentCValue().toI64(), qint64(value));
}

void tst_OdictExtend::unknownVirtualObjectIsRefused()
{
    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_BITSET);
    buildValueTree(dict);
    const COdictValueObject before = dict.valueObject(idControl);

    // A virtual object the dictionary does not hold has no owner to write into.
    COdictValueObject stray = dict.valueObject(idControl, 1);
    stray.setSubId(7);
    stray.setCurrentValue(QVariant(true));
    QVERIFY(!dict.setValueObject(stray));
    QVERIFY(dict.valueObject(idControl) == before);
}

void tst_OdictExtend::ownerLeavesStoredSubObjectsAlone()
{
    // A bit-set object with stored sub-objects has no virtual ones; setting it must not write
    // bits into its stored sub-objects.
    const QString subs = objectXml({idRecord, QStringLiteral("RECORD_0"), QStringLiteral("U16"), 2, QStringLiteral("0x4"),
                                    {}, QStringLiteral("0")})
        + objectXml({idRecord, QStringLiteral("RECORD_3"), QStringLiteral("U16"), 2, QStringLiteral("0x4"), {},
                     QStringLiteral("3")});
    const QString path = m_dir.filePath(QStringLiteral("stored.xml"));
    QVERIFY(writeFile(path, dictionaryXml(objectXml({idRecord, QStringLiteral("RECORD"), QStringLiteral("U32"), 4,
                                                     QStringLiteral("0x4"), {{0, QStringLiteral("Low")}}, QString(),
                                                     subs}))));
    COdictExtendEdit dict(E_OT_VALUE);
    dict.setObjectFilter(E_VO_BITSET);
    QCOMPARE(dict.loadDictionary(path), 0);
    QCOMPARE(virtualObjectCount(dict), 0);

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

QTEST_GUILESS_MAIN(tst_OdictExtend)
#include "tst_odictextend.moc"

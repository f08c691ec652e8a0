#include "CDomDoc.h"
#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictEdit.h"
#include "COdictValueObject.h"
#include "invariants.h"
#include "odicttreecompare.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <type_traits>

using namespace NkrOdict;

namespace {

constexpr unsigned int NoSub = 0xFFFFFFFFu;

QString dataFile(const char *name)
{
    return QFINDTESTDATA(QStringLiteral("data/%1").arg(QLatin1String(name)));
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The fields of object \a id / \a subId of the basic file as "field=value" texts: the common ones
/// and the editor extras as an editor dictionary reads them, the value extras as a value dictionary does.
QStringList basicFields(unsigned int id, unsigned int subId)
{
    COdict editorDict(E_OT_EDITOR);
    COdict valueDict(E_OT_VALUE);
    if (editorDict.loadDictionary(dataFile("xml_basic.xml")) != 0 || valueDict.loadDictionary(dataFile("xml_basic.xml")) != 0
        || !editorDict.objectPtr(id, subId))
        return {};
    const COdictEditorObject e = editorDict.editorObject(id, subId);
    const COdictValueObject v = valueDict.valueObject(id, subId);
    return objectFields(e) << QStringLiteral("defString=") + e.defString() << QStringLiteral("fwVariable=") + e.fwVariablename()
                           << QStringLiteral("fwFunction=") + e.fwFunctionname()
                           << QStringLiteral("accessType=%1").arg(e.accessType())
                           << QStringLiteral("description=") + e.description()
                           << QStringLiteral("rwSize=%1").arg(v.readWriteByteSize())
                           << QStringLiteral("rwIndex=%1").arg(v.readWriteByteIndex())
                           << QStringLiteral("hex=%1").arg(v.isValueInHexEnabled());
}

/// The item types of a node's children, for shape checks ("G:MOTOR O:0x2002 S:1 ...").
QString childShape(const COdictNode *node)
{
    QStringList parts;
    for (const COdictNode *child : node->children()) {
        const COdictItem &item = child->dataRef();
        if (item.type() == E_IT_OBJECT)
            parts << QStringLiteral("O:0x%1").arg(item.objectPtr()->id(), 0, 16);
        else if (item.type() == E_IT_SUBOBJECT)
            parts << QStringLiteral("S:%1").arg(item.objectPtr()->subId());
        else
            parts << QStringLiteral("%1:%2").arg(item.type() == E_IT_GROUP ? QStringLiteral("G") : QStringLiteral("?"), item.name());
    }
    return parts.join(QLatin1Char(' '));
}

/// Writes a dictionary document named \a name whose content \a body writes, straight into the file,
/// so that large documents are never held in memory.
template <class Body>
bool writeDocument(const QString &path, const char *name, Body body)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n"
               "<Header><Version>1.0.0</Version></Header>\n<Name>");
    file.write(name);
    file.write("</Name>\n");
    body(file);
    file.write("</KiroObjectDictionary>\n");
    return file.error() == QFile::NoError;
}

/// Depth of the deepest group chain below \a node (first children only), walked without recursion.
int firstChildDepth(const COdictNode *node)
{
    int depth = 0;
    while (node->childCount() > 0 && COdictObjectTree::isGroup(node->child(0))) {
        node = node->child(0);
        ++depth;
    }
    return depth;
}

/// Fills \a object of any kind with one set of test values: limits and default of \a type,
/// reference id, enumeration or bit set, and the extras of its own class.
template <class X>
void fill(X &o, unsigned int id, const QString &name, NTypes::eTypes_t type, int variant)
{
    o.setId(id);
    o.setName(name);
    o.setUiName(QStringLiteral("%1 ui <&> \"quoted\"").arg(name.toLower()));
    o.setUiShortName(QStringLiteral("%1 short").arg(variant));
    o.setDataType(type);
    o.setDataSize(CDataTypeParser::typeSize(type) * (variant == 3 ? 4 : 1));
    o.setArrayLength(variant == 3 ? 4 : 1);
    o.setVersion(NTypes::uVersion_t::fromParts(1, variant, 300 + variant));
    o.setObjectUsage(0x80u | 0x02u);
    o.setAccessRights(0xAAu >> variant);
    o.setUnit(10 + variant);
    o.setYUnit(20 + variant);
    o.setDigits(variant - 1);
    o.setDS402Id(0x6000u + variant);
    o.setProfinetId(variant);
    o.setUserlevelRead(1);
    o.setUserlevelVisible(2);
    o.setUserlevelWrite(3);
    if (variant % 2 == 0)
        o.setRefId(QUuid::createUuid());
    if (type == NTypes::E_XY) {
        o.setXMinValue(CVariant(QStringLiteral("-5"), NTypes::E_I32));
        o.setYMinValue(CVariant(QStringLiteral("-6"), NTypes::E_I32));
        o.setXMaxValue(CVariant(QStringLiteral("50"), NTypes::E_I32));
        o.setYMaxValue(CVariant(QStringLiteral("60"), NTypes::E_I32));
        o.setXDefaultValue(CVariant(QStringLiteral("1"), NTypes::E_I32));
        o.setYDefaultValue(CVariant(QStringLiteral("2"), NTypes::E_I32));
    } else if (type == NTypes::E_VSTRING) {
        // A text has no limits: null values of its own type, as a file without them gives.
        o.setXMinValue(CVariant(type));
        o.setXMaxValue(CVariant(type));
        o.setXDefaultValue(CVariant(QStringLiteral("plain <text> & more"), type));
    } else {
        o.setMinValue(CVariant(QStringLiteral("%1").arg(variant), type));
        o.setMaxValue(CVariant(QStringLiteral("%1").arg(100 + variant), type));
        o.setDefaultValue(CVariant(QStringLiteral("%1").arg(10 + variant), type));
    }
    if (variant == 1) {
        COdictObjectEnum e;
        e.insert(-3, QStringLiteral("Minus three"));
        e.insert(0, QStringLiteral("Off"));
        e.insert(Q_INT64_C(0x7FFFFFFFFFFFFFFF), QStringLiteral("Unset"));
        o.setEnumData(e);
    } else if (variant == 2) {
        COdictObjectBitSet b;
        b.insert(0u, QStringLiteral("Ready"));
        b.insert(31u, QStringLiteral("Fault"));
        o.setBitSetData(b);
    }
}

void fillExtras(COdictEditorObject &e, int variant)
{
    e.setDefString(QStringLiteral("DEF_%1").arg(variant));
    e.setFwVariablename(QStringLiteral("g_var%1").arg(variant));
    e.setFwFunctionname(QStringLiteral("access%1").arg(variant));
    e.setAccessType(variant + 2);
    e.setShortDescription(QStringLiteral("Short %1").arg(variant));
    e.setDescription(QStringLiteral("Line one\nLine two of %1").arg(variant));
}

void fillExtras(COdictValueObject &v, int variant)
{
    v.setReadWriteByteSize(variant * 2);
    v.setReadWriteByteIndex(variant);
    v.setValueInHexEnabled(variant % 2 == 1);
}

void fillExtras(COdictParameterObject &p, int variant)
{
    p.setError(variant);
    if (p.arrayLength() >= 2) {
        p.setValue(0, CVariant(QByteArray::fromHex("01020304050607080910111213141516"), p.dataType(), int(p.arrayLength())).toByteArray());
    } else if (p.dataType() != NTypes::E_XY && p.dataType() != NTypes::E_VSTRING) {
        p.setValue(0, CVariant(QStringLiteral("%1").arg(variant), p.dataType()).toVariant());
        p.setValue(62, CVariant(QStringLiteral("%1").arg(variant + 7), p.dataType()).toVariant());
    }
}

void fillExtras(COdictObject &, int) {}

/// Builds one object of the class X into a node under \a parent; sub-objects get their owner's sub-id.
template <class X>
COdictNode *addObject(COdictObjectTree &tree, COdictNode *parent, unsigned int id, unsigned int subId,
                      const QString &name, NTypes::eTypes_t type, int variant)
{
    X o;
    fill(o, id, name, type, variant);
    fillExtras(o, variant);
    const bool sub = subId != NoSub;
    if (sub)
        o.setSubId(subId);
    bool ok = false;
    COdictNode *node = tree.createObjectNode(o, sub ? E_IT_SUBOBJECT : E_IT_OBJECT, &ok);
    if (!ok) {
        delete node;
        return nullptr;
    }
    parent->appendChild(node);
    if (sub)
        parent->dataPtr()->objectPtr()->addSubId(subId);
    return node;
}

/// Builds a dictionary of objects of the class X into \a dict: nested and empty groups, sub-objects,
/// an array, an XY pair and a text; editor dictionaries also get a history and data structures.
template <class X>
void buildDictionary(COdictEdit &dict)
{
    COdictObjectTree &tree = *dict.objectTree();
    COdictNode *dictionary = tree.createDictionaryNode(QStringLiteral("Built in code"));
    tree.rootNode()->appendChild(dictionary);
    COdictNode *outer = tree.createGroupNode(QStringLiteral("OUTER"), QStringLiteral("Outer group"));
    dictionary->appendChild(outer);
    COdictNode *inner = tree.createGroupNode(QStringLiteral("INNER"), QStringLiteral("Inner group"));
    outer->appendChild(inner);
    outer->appendChild(tree.createGroupNode(QStringLiteral("EMPTY"), QString()));

    addObject<X>(tree, dictionary, 0x1000, NoSub, QStringLiteral("TOP"), NTypes::E_U32, 0);
    addObject<X>(tree, outer, 0x2000, NoSub, QStringLiteral("WITH_ENUM"), NTypes::E_I16, 1);
    COdictNode *owner = addObject<X>(tree, inner, 0x2001, NoSub, QStringLiteral("OWNER"), NTypes::E_U16, 2);
    addObject<X>(tree, owner, 0x2001, 0, QStringLiteral("OWNER_0"), NTypes::E_U8, 0);
    addObject<X>(tree, owner, 0x2001, 7, QStringLiteral("OWNER_7"), NTypes::E_I32, 1);
    addObject<X>(tree, inner, 0x2002, NoSub, QStringLiteral("PAIR"), NTypes::E_XY, 4);
    addObject<X>(tree, outer, 0x2003, NoSub, QStringLiteral("TABLE"), NTypes::E_U32, 3);
    addObject<X>(tree, dictionary, 0x2004, NoSub, QStringLiteral("TEXT"), NTypes::E_VSTRING, 5);
    if constexpr (std::is_same_v<X, COdictEditorObject>) {
        // Three versions, newest first; times without milliseconds, as the file keeps seconds.
        for (int v = 0; v < 3; ++v)
            dict.setOdictMetaData(CXMLMetaData(QDate(2020 + v, 1, 2), QTime(8, v, 0), QStringLiteral("Author %1").arg(v),
                                               QStringLiteral("Release %1").arg(v), NTypes::uVersion_t::fromParts(1, v, 0)));
        QCOMPARE(dict.odictHistory().size(), 3);
        COdictDataStructure::SDataStructure_t s;
        s.id = 4;
        s.name = QStringLiteral("PARAM");
        s.uiName = QStringLiteral("Parameter");
        s.description = QStringLiteral("All <parameters> & more");
        s.members.append({QStringLiteral("uint32_t"), QStringLiteral("id"), COdictDataStructure::E_MS_ID, QString()});
        s.members.append({QStringLiteral("int"), QStringLiteral("fixed"), COdictDataStructure::E_MS_LITERAL, QStringLiteral("-1")});
        dict.odictDataStructureList().append(s);
        s.id = 0;
        s.members.clear();
        dict.odictDataStructureList().append(s);
    }
}

} // namespace

using Builder = void (*)(COdictEdit &);
Q_DECLARE_METATYPE(Builder)

class tst_OdictXml : public QObject
{
    Q_OBJECT

private slots:
    void loadsGroupsObjectsAndSubObjects();
    void readsFields_data();
    void readsFields();
    void badContentWarnsAndSkips();
    void badFilesAreRejected_data();
    void badFilesAreRejected();
    void documentKindMustMatch();
    void secondLoadReplacesEverything();
    void deepNestingLoadsCopiesAndSaves();
    void hugeNameLoads();
    void roundTrip_data();
    void roundTrip();
    void saveKeepsOldFileOnFailure_data();
    void saveKeepsOldFileOnFailure();
    void saveLeavesOutWhatCannotBeStored();
    void valueObjectThroughXmlElement();
};

void tst_OdictXml::loadsGroupsObjectsAndSubObjects()
{
    CMemoryLogfile log;
    COdictEdit dict(E_OT_EDITOR, &log);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    QVERIFY(dict.isValid());
    QCOMPARE(dict.warningMessages(), QStringList());
    QCOMPARE(log.count(NkrLogfiles::E_SEV_WARNING), 0);
    QCOMPARE(log.count(NkrLogfiles::E_SEV_CRITICAL), 0);

    const COdictObjectTree &tree = *dict.objectTree();
    checkIndexInvariants(tree);
    const COdictNode *dictionary = tree.dictionaryNode();
    QVERIFY(dictionary);
    QCOMPARE(dictionary->dataRef().type(), E_IT_DICTIONARY);
    QCOMPARE(dictionary->dataRef().name(), QStringLiteral("Basic"));
    // The unknown element and the object inside it are skipped.
    QCOMPARE(childShape(dictionary), QStringLiteral("G:MOTOR O:0x2002 O:0x2003"));
    const COdictNode *motor = dictionary->child(0);
    QCOMPARE(motor->dataRef().uiName(), QStringLiteral("Motor data"));
    QCOMPARE(childShape(motor), QStringLiteral("O:0x2000 G:STATUS"));
    QCOMPARE(childShape(motor->child(1)), QStringLiteral("O:0x2001"));
    const COdictNode *curve = dictionary->child(1);
    QCOMPARE(childShape(curve), QStringLiteral("S:1 S:2"));
    QCOMPARE(curve->dataRef().objectPtr()->subIdList(), (QList<unsigned int>{1, 2}));
    QCOMPARE(tree.idIndex().size(), 6);
    QVERIFY(!dict.contains(0x3000u));
    QCOMPARE(dict.node(0x2002u, 2u), curve->child(1));

    // The head is read by all kinds; history and data structures by editor dictionaries only.
    QCOMPARE(dict.odictMetaData().author(), QStringLiteral("Test bench"));
    QCOMPARE(dict.odictMetaData().time(), QTime(10, 11, 12));
    const COdictHistory history = dict.odictHistory();
    QCOMPARE(history.size(), 2);
    QCOMPARE(history.at(0).comment(), QStringLiteral("Second"));
    QCOMPARE(history.at(1).version(), NTypes::uVersion_t::fromParts(1, 2, 0));
    QCOMPARE(dict.odictDataStructureList().size(), 1);
    const COdictDataStructure::SDataStructure_t s = dict.odictDataStructureList().at(0);
    QCOMPARE(s.id, 3);
    QCOMPARE(s.name, QStringLiteral("PARAM"));
    QCOMPARE(s.uiName, QStringLiteral("Parameter"));
    QCOMPARE(s.members.size(), 2);
    QCOMPARE(s.members.at(0).source, COdictDataStructure::E_MS_ID);
    QCOMPARE(s.members.at(1).literal, QStringLiteral("42"));
    for (eObjectType_t kind : {E_OT_VALUE, E_OT_STD}) {
        COdictEdit other(kind);
        QCOMPARE(other.loadDictionary(dataFile("xml_basic.xml")), 0);
        QCOMPARE(other.odictMetaData().author(), QStringLiteral("Test bench"));
        QCOMPARE(other.odictHistory().size(), 0);
        QCOMPARE(other.odictDataStructureList().size(), 0);
    }
}

void tst_OdictXml::readsFields_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<uint>("subId");
    QTest::addColumn<QString>("expected");

    QTest::newRow("name upper-cased") << 0x2000u << NoSub << "name=SPEED";
    QTest::newRow("ui name keeps case") << 0x2000u << NoSub << "uiName=Speed Setpoint";
    QTest::newRow("reference id") << 0x2000u << NoSub << "refId={12345678-9abc-def0-1234-56789abcdef0}";
    QTest::newRow("array length from size") << 0x2000u << NoSub << "arrayLength=1";
    QTest::newRow("version element") << 0x2000u << NoSub << "version=1.2.0";
    QTest::newRow("version attribute") << 0x2001u << NoSub << "version=2.0.1";
    QTest::newRow("hex usage") << 0x2000u << NoSub << "usage=0x2";
    QTest::newRow("user levels") << 0x2000u << NoSub << "levels=2/3/4";
    QTest::newRow("missing usage is 1") << 0x2003u << NoSub << "usage=0x1";
    QTest::newRow("missing digits are -1") << 0x2003u << NoSub << "digits=-1";
    QTest::newRow("missing user levels are 0") << 0x2003u << NoSub << "levels=0/0/0";
    QTest::newRow("maximum") << 0x2000u << NoSub << "xMax=U16 3000";
    QTest::newRow("missing default of U16 is 0") << 0x2000u << NoSub << "xDef=U16 0";
    QTest::newRow("missing limits are type limits") << 0x2001u << NoSub << "xMax=U32 4294967295";
    QTest::newRow("missing default of a text is empty") << 0x2003u << NoSub << "xDef=null VISIBLE_STRING";
    QTest::newRow("XY minimum Y as I32") << 0x2002u << NoSub << "yMin=I32 2";
    QTest::newRow("XY empty parts dropped") << 0x2002u << NoSub << "yMax=I32 200";
    QTest::newRow("XY single part is X only") << 0x2002u << NoSub << "yDef=null UNKNOWN";
    QTest::newRow("enum, item without value") << 0x2000u << NoSub << "enum=-1:Reverse,0:Off,9223372036854775807:Unset";
    QTest::newRow("bit set, bit without pos") << 0x2001u << NoSub << "bits=0:Ready,3:Fault,4294967295:Nowhere";
    QTest::newRow("sub-id attribute") << 0x2002u << 1u << "name=CURVE_1";
    QTest::newRow("sub-id element") << 0x2002u << 2u << "subId=0x2";
    QTest::newRow("sub-object default") << 0x2002u << 1u << "xDef=I32 7";
    QTest::newRow("editor default text") << 0x2000u << NoSub << "defString=SPEED_DEFAULT";
    QTest::newRow("editor variable") << 0x2000u << NoSub << "fwVariable=g_speed";
    QTest::newRow("editor access type") << 0x2000u << NoSub << "accessType=3";
    QTest::newRow("editor missing access type is 1") << 0x2003u << NoSub << "accessType=1";
    QTest::newRow("editor description") << 0x2000u << NoSub << "description=Speed setpoint of the motor";
    QTest::newRow("value byte size") << 0x2000u << NoSub << "rwSize=2";
    QTest::newRow("value byte index") << 0x2000u << NoSub << "rwIndex=1";
    QTest::newRow("value in hex") << 0x2000u << NoSub << "hex=1";
    QTest::newRow("value missing byte size is -1") << 0x2003u << NoSub << "rwSize=-1";
    QTest::newRow("value missing hex is off") << 0x2003u << NoSub << "hex=0";
}

void tst_OdictXml::readsFields()
{
    QFETCH(uint, id);
    QFETCH(uint, subId);
    QFETCH(QString, expected);

    const QStringList fields = basicFields(id, subId);
    QVERIFY2(fields.contains(expected), qPrintable(fields.join(QLatin1Char('\n'))));
}

void tst_OdictXml::badContentWarnsAndSkips()
{
    CMemoryLogfile log;
    COdict dict(E_OT_EDITOR, &log);
    log.clear();
    QCOMPARE(dict.loadDictionary(dataFile("xml_bad_content.xml")), 0);
    QVERIFY(dict.isValid());
    checkIndexInvariants(*dict.objectTree());

    // No id: no node, one warning.
    const QStringList warnings = dict.warningMessages();
    QCOMPARE(warnings.filter(QStringLiteral("'id'")).size(), 1);
    QVERIFY(!dict.node(QStringLiteral("NO_ID")));

    // Unreadable numbers: the conversion error text, and the default.
    for (const char *bad : {"'two'", "'-x'", "'0x1FFFFFFFF'", "'low'"})
        QVERIFY2(warnings.filter(QLatin1String(bad)).size() == 1, bad);
    QCOMPARE(warnings.filter(QStringLiteral("<DataSize>")).size(), 1);
    const COdictObject numbers = dict.object(0x2000u);
    QCOMPARE(numbers.name(), QStringLiteral("NUMBERS"));
    QCOMPARE(numbers.dataSize(), 0u);
    QCOMPARE(numbers.digits(), -1);
    QCOMPARE(numbers.userlevelRead(), 0u);
    // Three parts: the first two are used, with a warning.
    QCOMPARE(warnings.filter(QStringLiteral("3 values")).size(), 1);
    QCOMPARE(variantText(numbers.xDefaultValue()), QStringLiteral("U16 1"));
    QCOMPARE(variantText(numbers.yDefaultValue()), QStringLiteral("U16 2"));
    // Every warning reached the log as well.
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_WARNING), warnings);

    // Duplicates are dropped with a critical message; the first object stays.
    const QStringList criticals = log.texts(NkrLogfiles::E_SEV_CRITICAL);
    QCOMPARE(criticals.size(), 2);
    QCOMPARE(criticals.at(0),
             QStringLiteral("Double Object-ID detected : ID 0x2000 Sub-ID 0xffffffff; NUMBERS, DUPLICATE"));
    QCOMPARE(criticals.at(1), QStringLiteral("Double Object-ID detected : ID 0x2001 Sub-ID 0x1; OWNER_1, OWNER_1_AGAIN"));
    QCOMPARE(dict.object(0x2001u, 1u).name(), QStringLiteral("OWNER_1"));
    // The owner's sub-id list is unchanged by the dropped duplicate, and the sub-object's own
    // "SubObjects" is not read.
    const COdictNode *owner = dict.node(0x2001u);
    QCOMPARE(owner->dataRef().objectPtr()->subIdList(), QList<unsigned int>{1});
    QCOMPARE(childShape(owner), QStringLiteral("S:1"));
    QCOMPARE(owner->child(0)->childCount(), 0);
    QVERIFY(!dict.contains(0x2001u, 5u));
    QVERIFY(!dict.node(QStringLiteral("NESTED")));
    QCOMPARE(dict.allObjectUIds().size(), 3);
}

void tst_OdictXml::badFilesAreRejected_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("missing file") << QStringLiteral("/nonexistent/dictionary.xml");
    QTest::newRow("directory") << QFINDTESTDATA("data");
    QTest::newRow("empty file") << dataFile("xml_empty.xml");
    QTest::newRow("not XML") << dataFile("xml_not_xml.xml");
    QTest::newRow("truncated") << dataFile("xml_truncated.xml");
    QTest::newRow("other document type") << dataFile("xml_wrong_type.xml");
    QTest::newRow("other version") << dataFile("xml_wrong_version.xml");
}

void tst_OdictXml::badFilesAreRejected()
{
    QFETCH(QString, path);

    CMemoryLogfile log;
    COdict dict(E_OT_EDITOR, &log);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    QCOMPARE(dict.loadDictionary(path), 1);
    QVERIFY(!dict.isValid());
    QCOMPARE(dict.fileName(), path);
    // Nothing of the failed file nor of the previous one is left, not even in the indexes.
    QVERIFY(!dict.objectTree()->dictionaryNode());
    QVERIFY(dict.allObjectUIds().isEmpty());
    QVERIFY(dict.objectTree()->nameIndex().isEmpty());
    QVERIFY(!dict.contains(0x2000u));
    QCOMPARE(dict.warningMessages().size(), 1); // the reason
}

void tst_OdictXml::documentKindMustMatch()
{
    // An editor dictionary reads "parameter sets" only from a dictionary document.
    COdict editor(E_OT_EDITOR);
    editor.loadParameterSets(dataFile("xml_basic.xml"));
    QVERIFY(editor.isValid());
    QVERIFY(editor.contains(0x2000u));
    editor.loadParameterSets(dataFile("xml_parameter_sets.xml"));
    QVERIFY(!editor.isValid());

    CMemoryLogfile log;
    COdict unknown(E_OT_UNKNOWN, &log);
    QCOMPARE(unknown.loadDictionary(dataFile("xml_basic.xml")), 1);
    QVERIFY(!unknown.isValid());
    QVERIFY(!unknown.odictTree());
    unknown.loadParameterSets(dataFile("xml_basic.xml"));
    QVERIFY(!unknown.isValid());

    COdict dict(E_OT_PARAMETER);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 1);
    QCOMPARE(dict.loadDictionary(dataFile("xml_parameter_sets.xml")), 0);
    QVERIFY(dict.isValid());
    const COdictParameterObject gain = dict.parameterObject(0x2000u);
    QCOMPARE(gain.error(), 5);
    // Sets 0 to 62 only; entries without a set number are skipped.
    QCOMPARE(gain.values().keys(), (QList<int>{0, 62}));
    QCOMPARE(gain.value(0).toLongLong(), -12LL);
    QCOMPARE(gain.value(62).toLongLong(), 40LL);
    // Arrays travel as hexadecimal bytes.
    const COdictParameterObject table = dict.parameterObject(0x2001u);
    QCOMPARE(table.arrayLength(), 3u);
    QCOMPARE(table.value(1).toByteArray(), QByteArray::fromHex("0a0b0c"));
    // loadParameterDictionary asks for a dictionary document, which the parameter path accepts.
    dict.loadParameterDictionary(dataFile("xml_basic.xml"));
    QVERIFY(dict.isValid());
    QVERIFY(dict.contains(0x2002u, 1u));
}

void tst_OdictXml::secondLoadReplacesEverything()
{
    COdict dict(E_OT_EDITOR);
    QSignalSpy spy(dict.objectTree(), &COdictObjectTree::objectDictionaryChanged);
    QCOMPARE(dict.loadDictionary(dataFile("xml_bad_content.xml")), 0);
    QVERIFY(!dict.warningMessages().isEmpty());
    QVERIFY(dict.contains(0x2001u, 1u));

    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    QCOMPARE(dict.warningMessages(), QStringList());
    QVERIFY(!dict.contains(0x2001u, 1u));
    QCOMPARE(dict.object(0x2000u).name(), QStringLiteral("SPEED"));
    QCOMPARE(dict.allObjectUIds().size(), 6);
    QCOMPARE(dict.objectTree()->rootNode()->childCount(), 1);
    checkIndexInvariants(*dict.objectTree());

    QCOMPARE(dict.loadDictionary(dataFile("xml_empty.xml")), 1);
    QCOMPARE(spy.count(), 3); // the failed load emptied the tree

    // A document without a name is valid, and empty.
    QCOMPARE(dict.loadDictionary(dataFile("xml_noname.xml")), 0);
    QVERIFY(dict.isValid());
    QVERIFY(!dict.objectTree()->dictionaryNode());
    QVERIFY(dict.allObjectUIds().isEmpty());
    QVERIFY(dict.objectTree()->nameIndex().isEmpty());
}

void tst_OdictXml::deepNestingLoadsCopiesAndSaves()
{
    const int depth = 10000;
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("deep.xml"));
    QVERIFY(writeDocument(path, "Deep", [depth](QFile &file) {
        for (int i = 0; i < depth; ++i)
            file.write(QStringLiteral("<Group><Name>g%1</Name><UiName>Level %1</UiName>\n").arg(i).toUtf8());
        file.write("<Object id=\"0x2000\"><Name>BOTTOM</Name><Type>U16</Type><DataSize>2</DataSize></Object>\n");
        for (int i = 0; i < depth; ++i)
            file.write("</Group>\n");
    }));

    auto dict = std::make_unique<COdictEdit>(E_OT_EDITOR);
    QCOMPARE(dict->loadDictionary(path), 0);
    QCOMPARE(dict->warningMessages(), QStringList());
    QCOMPARE(firstChildDepth(dict->objectTree()->dictionaryNode()), depth);
    const COdictNode *bottom = dict->node(0x2000u);
    QVERIFY(bottom);
    QCOMPARE(bottom->parent()->dataRef().name(), QStringLiteral("G%1").arg(depth - 1));

    // Saving and reading back keeps the depth. Indentation stops at some depth, so the file grows
    // linearly with the nesting.
    const QString saved = dir.filePath(QStringLiteral("saved.xml"));
    QCOMPARE(dict->saveDictionary(saved), 0);
    QVERIFY2(QFileInfo(saved).size() < 2 * QFileInfo(path).size(), qPrintable(QString::number(QFileInfo(saved).size())));
    COdict reread(E_OT_EDITOR);
    QCOMPARE(reread.loadDictionary(saved), 0);
    compareTrees(*dict->objectTree(), *reread.objectTree());

    // A copy has its own nodes and indexes.
    const COdict copy(*dict);
    QVERIFY(copy.node(0x2000u));
    QVERIFY(copy.node(0x2000u) != bottom);
    QCOMPARE(firstChildDepth(copy.objectTree()->dictionaryNode()), depth);
    dict.reset();
    QCOMPARE(copy.object(0x2000u).name(), QStringLiteral("BOTTOM"));
}

void tst_OdictXml::hugeNameLoads()
{
    // 50 MB of name text, written in slices so the test itself never holds it twice.
    const int sliceSize = 1 << 20;
    const int slices = 50;
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("huge.xml"));
    QVERIFY(writeDocument(path, "Huge", [&](QFile &file) {
        file.write("<Object id=\"0x2000\"><Name>");
        const QByteArray slice(sliceSize, 'n');
        for (int i = 0; i < slices; ++i)
            file.write(slice);
        file.write("</Name><Type>U16</Type></Object>\n<Object id=\"0x2001\"><Name>AFTER</Name></Object>\n");
    }));
    COdict dict(E_OT_STD);
    QCOMPARE(dict.loadDictionary(path), 0);
    const COdictObject *huge = dict.objectPtr(0x2000u);
    QVERIFY(huge);
    QCOMPARE(huge->name().size(), sliceSize * slices);
    QVERIFY(huge->name().startsWith(QStringLiteral("NNNN")));
    QCOMPARE(dict.object(0x2001u).name(), QStringLiteral("AFTER"));
}

void tst_OdictXml::roundTrip_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<Builder>("build"); // builds the dictionary in code, or:
    QTest::addColumn<QString>("path");  // loads it from this file

    QTest::newRow("built, editor") << int(E_OT_EDITOR) << &buildDictionary<COdictEditorObject> << QString();
    QTest::newRow("built, value") << int(E_OT_VALUE) << &buildDictionary<COdictValueObject> << QString();
    QTest::newRow("built, parameter") << int(E_OT_PARAMETER) << &buildDictionary<COdictParameterObject> << QString();
    QTest::newRow("built, plain") << int(E_OT_STD) << &buildDictionary<COdictObject> << QString();
    QTest::newRow("file, editor") << int(E_OT_EDITOR) << Builder() << dataFile("xml_basic.xml");
    QTest::newRow("file, value") << int(E_OT_VALUE) << Builder() << dataFile("xml_basic.xml");
    QTest::newRow("file, bad content") << int(E_OT_EDITOR) << Builder() << dataFile("xml_bad_content.xml");
}

void tst_OdictXml::roundTrip()
{
    QFETCH(int, kind);
    QFETCH(Builder, build);
    QFETCH(QString, path);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    CMemoryLogfile log;
    COdictEdit original(eObjectType_t(kind), &log);
    if (build) {
        build(original);
        QCOMPARE(original.allObjectUIds().size(), 8);
    } else {
        QCOMPARE(original.loadDictionary(path), 0);
    }
    checkIndexInvariants(*original.objectTree());
    log.clear();

    // Saving over an older file replaces all of it and records the new name.
    const QString first = dir.filePath(QStringLiteral("first.xml"));
    QVERIFY(QFile::copy(dataFile("xml_noname.xml"), first));
    QCOMPARE(original.saveDictionary(first), 0);
    QCOMPARE(original.fileName(), first);
    QCOMPARE(log.count(NkrLogfiles::E_SEV_WARNING), 0);

    COdictEdit reread{eObjectType_t(kind)};
    QCOMPARE(reread.loadDictionary(first), 0);
    QCOMPARE(reread.warningMessages(), QStringList());
    compareTrees(*original.objectTree(), *reread.objectTree());
    if (QTest::currentTestFailed())
        return;
    checkIndexInvariants(*reread.objectTree());
    if (kind != E_OT_PARAMETER)
        QVERIFY(reread.odictMetaData() == original.odictMetaData());

    // What was read saves to the same bytes.
    const QString second = dir.filePath(QStringLiteral("second.xml"));
    QCOMPARE(reread.saveDictionary(second), 0);
    QByteArray a = fileBytes(first);
    QByteArray b = fileBytes(second);
    if (kind == E_OT_PARAMETER) {
        // The head of a parameter-set file carries the time of saving.
        const auto withoutHeader = [](QByteArray bytes) {
            const int from = bytes.indexOf("<Header>");
            const int to = bytes.indexOf("</Header>");
            return bytes.remove(from, to - from);
        };
        a = withoutHeader(a);
        b = withoutHeader(b);
    }
    QVERIFY(!a.isEmpty());
    QCOMPARE(b, a);
}

void tst_OdictXml::saveKeepsOldFileOnFailure_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("existing");

    QTest::newRow("target is a directory") << QStringLiteral("dir") << QStringLiteral("dir/keep.xml");
    QTest::newRow("parent is a regular file") << QStringLiteral("keep.xml/new.xml") << QStringLiteral("keep.xml");
}

void tst_OdictXml::saveKeepsOldFileOnFailure()
{
    QFETCH(QString, target);
    QFETCH(QString, existing);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("dir")));
    const QString existingPath = dir.filePath(existing);
    QVERIFY(QFile::copy(dataFile("xml_basic.xml"), existingPath));
    const QByteArray before = fileBytes(existingPath);
    const QStringList entries = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);

    COdictEdit dict(E_OT_EDITOR);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    QVERIFY(dict.saveDictionary(dir.filePath(target)) != 0);
    QCOMPARE(fileBytes(existingPath), before);
    QCOMPARE(dict.fileName(), dataFile("xml_basic.xml"));
    // Nothing else was left behind (no temporary file).
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), entries);
    QCOMPARE(QDir(dir.filePath(QStringLiteral("dir"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size(),
             existing.startsWith(QLatin1String("dir/")) ? 1 : 0);
}

void tst_OdictXml::saveLeavesOutWhatCannotBeStored()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    COdictEdit dict(E_OT_EDITOR);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    // A virtual sub-object,
    COdictNode *owner = dict.node(0x2001u);
    COdictEditorObject bit = owner->dataRef().toEditorObject();
    bit.setSubId(3);
    bit.setName(QStringLiteral("STATUS_WORD_3"));
    bit.setVirtual(true);
    bool ok = false;
    owner->appendChild(dict.objectTree()->createObjectNode(bit, E_IT_SUBOBJECT, &ok));
    QVERIFY(ok);
    // and characters that XML cannot carry.
    COdictEditorObject o = dict.editorObject(0x2000u);
    o.setDescription(QStringLiteral("bell\x07 tab\t end") + QChar(0xFFFF));
    o.setUiName(QStringLiteral("vertical\x0Btab"));
    QVERIFY(dict.setEditorObject(o));
    dict.objectTree()->dictionaryNode()->child(0)->dataPtr()->setUiName(QStringLiteral("group\x01"));

    const QString path = dir.filePath(QStringLiteral("out.xml"));
    QCOMPARE(dict.saveDictionary(path), 0);
    const QByteArray bytes = fileBytes(path);
    QVERIFY(!bytes.contains("STATUS_WORD_3"));
    QVERIFY(!bytes.contains("<SubObjects/>"));
    COdictEdit reread(E_OT_EDITOR);
    QCOMPARE(reread.loadDictionary(path), 0);
    QCOMPARE(reread.node(0x2001u)->childCount(), 0);
    // The rest of the text stays.
    const COdictEditorObject back = reread.editorObject(0x2000u);
    QCOMPARE(back.description(), QStringLiteral("bell tab\t end"));
    QCOMPARE(back.uiName(), QStringLiteral("verticaltab"));
    QCOMPARE(reread.objectTree()->dictionaryNode()->child(0)->dataRef().uiName(), QStringLiteral("group"));
}

void tst_OdictXml::valueObjectThroughXmlElement()
{
    // The facade's element helpers carry one value object's description through a DOM element.
    COdictValueObject object;
    object.setId(0x2001u);
    object.setSubId(2);
    object.setName(QStringLiteral("SPEED_LIMIT"));
    object.setDataType(NTypes::E_XY);
    object.setDataSize(8);
    object.setXMinValue(CVariant(QStringLiteral("-5"), NTypes::E_I32));
    object.setYMinValue(CVariant(QStringLiteral("7"), NTypes::E_I32));
    object.setReadWriteByteSize(4);
    object.setValueInHexEnabled(true);
    CDomDoc doc;
    QDomElement parent = doc.document().createElement(QStringLiteral("Data"));
    doc.document().appendChild(parent);
    QVERIFY(COdict::setObjectToXml(doc, object, parent));
    COdictValueObject back;
    QVERIFY(COdict::valueObjectFromXml(doc, back, parent)); // finds the "Object" child
    QCOMPARE(back.uniqueId(), object.uniqueId());
    QCOMPARE(back.yMinValue(), object.yMinValue());
    QCOMPARE(back.readWriteByteSize(), 4LL);
    QVERIFY(back.isValueInHexEnabled());
    QVERIFY(!COdict::valueObjectFromXml(doc, back, QDomElement()));
    QVERIFY(!COdict::setObjectToXml(doc, object, QDomElement()));
}

QTEST_GUILESS_MAIN(tst_OdictXml)
#include "tst_odictxml.moc"

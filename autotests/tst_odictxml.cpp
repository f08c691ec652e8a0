#include "CDomDoc.h"
#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictEdit.h"
#include "invariants.h"
#include "odicttreecompare.h"

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
    COdict editorDict(E_OT_EDITOR), valueDict(E_OT_VALUE);
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

/// The items below \a node, each with its own children in brackets: "G:MOTOR(O:0x2000) O:0x2002(S:1 S:2)".
QString treeShape(const COdictNode *node)
{
    QStringList parts;
    for (const COdictNode *child : node->children()) {
        const COdictItem &item = child->dataRef();
        const QString part = item.type() == E_IT_OBJECT      ? QStringLiteral("O:0x%1").arg(item.objectPtr()->id(), 0, 16)
                             : item.type() == E_IT_SUBOBJECT ? QStringLiteral("S:%1").arg(item.objectPtr()->subId())
                             : item.type() == E_IT_GROUP     ? "G:" + item.name()
                             : item.type() == E_IT_DICTIONARY ? "D:" + item.name() : "?:" + item.name();
        parts << (child->childCount() > 0 ? part + '(' + treeShape(child) + ')' : part);
    }
    return parts.join(' ');
}

/// The \a expected "field=value" texts missing from \a fields, with all of \a fields; empty when none is missing.
QString lacking(const QStringList &fields, const QStringList &expected)
{
    QStringList missing;
    for (const QString &text : expected)
        if (!fields.contains(text))
            missing << text;
    return missing.isEmpty() ? QString() : missing.join(", ") + " missing from:\n" + fields.join('\n');
}

/// The tree of the basic file; its unknown element and the object inside it are skipped.
const QString basicShape = QStringLiteral("D:Basic(G:MOTOR(O:0x2000 G:STATUS(O:0x2001)) O:0x2002(S:1 S:2) O:0x2003)");

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

/// Builds one object of the class X under \a parent, filled with one set of test values: limits and
/// default of \a type, reference id, enumeration or bit set, and the extras of its own class.
/// Sub-objects are registered with their owner.
template <class X>
COdictNode *addObject(COdictObjectTree &tree, COdictNode *parent, unsigned int id, unsigned int subId,
                      const QString &name, NTypes::eTypes_t type, int variant)
{
    X o;
    o.setId(id);
    if (subId != NoSub)
        o.setSubId(subId);
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
        o.setMinValue(CVariant(QString::number(variant), type));
        o.setMaxValue(CVariant(QString::number(100 + variant), type));
        o.setDefaultValue(CVariant(QString::number(10 + variant), type));
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
    if constexpr (std::is_same_v<X, COdictEditorObject>) {
        o.setDefString(QStringLiteral("DEF_%1").arg(variant));
        o.setFwVariablename(QStringLiteral("g_var%1").arg(variant));
        o.setFwFunctionname(QStringLiteral("access%1").arg(variant));
        o.setAccessType(variant + 2);
        o.setShortDescription(QStringLiteral("Short %1").arg(variant));
        o.setDescription(QStringLiteral("Line one\nLine two of %1").arg(variant));
    } else if constexpr (std::is_same_v<X, COdictValueObject>) {
        o.setReadWriteByteSize(variant * 2);
        o.setReadWriteByteIndex(variant);
        o.setValueInHexEnabled(variant % 2 == 1);
    } else if constexpr (std::is_same_v<X, COdictParameterObject>) {
        o.setError(variant);
        if (variant == 3) {
            o.setValue(0, CVariant(QByteArray::fromHex("01020304050607080910111213141516"), type, 4).toByteArray());
        } else if (type != NTypes::E_XY && type != NTypes::E_VSTRING) {
            o.setValue(0, CVariant(QString::number(variant), type).toVariant());
            o.setValue(62, CVariant(QString::number(variant + 7), type).toVariant());
        }
    }
    bool ok = false;
    COdictNode *node = tree.createObjectNode(o, subId != NoSub ? E_IT_SUBOBJECT : E_IT_OBJECT, &ok);
    if (!ok) {
        delete node;
        return nullptr;
    }
    parent->appendChild(node);
    if (subId != NoSub)
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
        const QString text = QStringLiteral("All <parameters> & more");
        dict.odictDataStructureList().append(
            {QStringLiteral("PARAM"), QStringLiteral("Parameter"), text, 4,
             {{QStringLiteral("uint32_t"), QStringLiteral("id"), COdictDataStructure::E_MS_ID, QString()},
              {QStringLiteral("int"), QStringLiteral("fixed"), COdictDataStructure::E_MS_LITERAL, QStringLiteral("-1")}}});
        dict.odictDataStructureList().append({QStringLiteral("PARAM"), QStringLiteral("Parameter"), text, 0, {}});
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
    void missingFieldsAfterAFullObjectReadAsDefaults_data();
    void missingFieldsAfterAFullObjectReadAsDefaults();
    void saveKeepsOldFileOnFailure_data();
    void saveKeepsOldFileOnFailure();
    void saveLeavesOutWhatCannotBeStored();
    void valueObjectThroughXmlElement();

private:
    QTemporaryDir m_dir;
};

void tst_OdictXml::loadsGroupsObjectsAndSubObjects()
{
    CMemoryLogfile log;
    COdictEdit dict(E_OT_EDITOR, &log);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    QVERIFY(dict.isValid());
    QCOMPARE(dict.warningMessages(), QStringList());
    QCOMPARE(log.count(NkrLogfiles::E_SEV_WARNING) + log.count(NkrLogfiles::E_SEV_CRITICAL), 0);
    const COdictObjectTree &tree = *dict.objectTree();
    checkIndexInvariants(tree);
    QCOMPARE(treeShape(tree.rootNode()), basicShape);
    QCOMPARE(tree.dictionaryNode()->child(0)->dataRef().uiName(), QStringLiteral("Motor data"));
    QCOMPARE(dict.object(0x2002u).subIdList(), (QList<unsigned int>{1, 2}));

    // The head is read by all kinds; history and data structures by editor dictionaries only.
    QCOMPARE(dict.odictMetaData().time(), QTime(10, 11, 12));
    QCOMPARE(dict.odictHistory().at(0).comment(), QStringLiteral("Second"));
    QCOMPARE(dict.odictHistory().at(1).version(), NTypes::uVersion_t::fromParts(1, 2, 0));
    const COdictDataStructure::SDataStructure_t param{
        QStringLiteral("PARAM"), QStringLiteral("Parameter"), QStringLiteral("Plain parameter"), 3,
        {{QStringLiteral("uint32_t"), QStringLiteral("id"), COdictDataStructure::E_MS_ID, QString()},
         {QStringLiteral("int32_t"), QStringLiteral("fixed"), COdictDataStructure::E_MS_LITERAL, QStringLiteral("42")}}};
    QVERIFY(dict.odictDataStructureList().list() == QList<COdictDataStructure::SDataStructure_t>{param});
    for (eObjectType_t kind : {E_OT_EDITOR, E_OT_VALUE, E_OT_STD}) {
        COdictEdit other(kind);
        QCOMPARE(other.loadDictionary(dataFile("xml_basic.xml")), 0);
        QCOMPARE(QStringLiteral("%1, %2 versions, %3 structures")
                     .arg(other.odictMetaData().author())
                     .arg(other.odictHistory().size())
                     .arg(other.odictDataStructureList().size()),
                 QLatin1String(kind == E_OT_EDITOR ? "Test bench, 2 versions, 1 structures" : "Test bench, 0 versions, 0 structures"));
    }
}

void tst_OdictXml::readsFields_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<uint>("subId");
    QTest::addColumn<QStringList>("expected");

    // Names upper-cased, ui names as written; the array length follows the size; usage in hex; a missing
    // default of U16 is 0; an enum item without value takes the largest value; editor and value extras.
    QTest::newRow("every element") << 0x2000u << NoSub << QStringList{
        "name=SPEED", "uiName=Speed Setpoint", "refId={12345678-9abc-def0-1234-56789abcdef0}", "arrayLength=1",
        "version=1.2.0", "usage=0x2", "levels=2/3/4", "xMax=U16 3000", "xDef=U16 0",
        "enum=-1:Reverse,0:Off,9223372036854775807:Unset", "defString=SPEED_DEFAULT", "fwVariable=g_speed",
        "accessType=3", "description=Speed setpoint of the motor", "rwSize=2", "rwIndex=1", "hex=1"};
    // Version attribute; missing limits are the type's; a bit without position takes the largest one.
    QTest::newRow("attributes") << 0x2001u << NoSub << QStringList{
        "version=2.0.1", "xMax=U32 4294967295", "bits=0:Ready,3:Fault,4294967295:Nowhere"};
    // Y as I32; empty parts are dropped; a single part is X only.
    QTest::newRow("XY") << 0x2002u << NoSub << QStringList{"yMin=I32 2", "yMax=I32 200", "yDef=null UNKNOWN"};
    QTest::newRow("sub-id attribute") << 0x2002u << 1u << QStringList{"name=CURVE_1", "xDef=I32 7"};
    QTest::newRow("sub-id element") << 0x2002u << 2u << QStringList{"subId=0x2"};
    QTest::newRow("missing elements") << 0x2003u << NoSub << QStringList{
        "usage=0x1", "digits=-1", "levels=0/0/0", "xDef=null VISIBLE_STRING", "accessType=1", "rwSize=-1", "hex=0"};
}

void tst_OdictXml::readsFields()
{
    QFETCH(uint, id);
    QFETCH(uint, subId);
    QFETCH(QStringList, expected);
    const QString gaps = lacking(basicFields(id, subId), expected);
    QVERIFY2(gaps.isEmpty(), qPrintable(gaps));
}

void tst_OdictXml::badContentWarnsAndSkips()
{
    CMemoryLogfile log;
    COdict dict(E_OT_EDITOR, &log);
    log.clear();
    QCOMPARE(dict.loadDictionary(dataFile("xml_bad_content.xml")), 0);
    QVERIFY(dict.isValid());
    checkIndexInvariants(*dict.objectTree());

    // One warning each: no id (no node), unreadable numbers (the conversion error text, and the
    // default), three parts of a pair (the first two are used).
    const QStringList warnings = dict.warningMessages();
    for (const char *bad : {"'id'", "'two'", "'-x'", "'0x1FFFFFFFF'", "'low'", "<DataSize>", "3 values"})
        QVERIFY2(warnings.filter(QLatin1String(bad)).size() == 1, bad);
    QVERIFY(!dict.node(QStringLiteral("NO_ID")));
    const QString gaps = lacking(objectFields(dict.object(0x2000u)), {"name=NUMBERS", "dataSize=0", "digits=-1",
                                                                      "levels=0/0/0", "xDef=U16 1", "yDef=U16 2"});
    QVERIFY2(gaps.isEmpty(), qPrintable(gaps));
    // Every warning reached the log as well.
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_WARNING), warnings);

    // Duplicates are dropped with a critical message; the first object stays.
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL),
             (QStringList{QStringLiteral("Double Object-ID detected : ID 0x2000 Sub-ID 0xffffffff; NUMBERS, DUPLICATE"),
                          QStringLiteral("Double Object-ID detected : ID 0x2001 Sub-ID 0x1; OWNER_1, OWNER_1_AGAIN")}));
    QCOMPARE(dict.object(0x2001u, 1u).name(), QStringLiteral("OWNER_1"));
    // The owner's sub-id list is unchanged by the dropped duplicate, and the sub-object's own
    // "SubObjects" is not read.
    const COdictNode *owner = dict.node(0x2001u);
    QCOMPARE(owner->dataRef().objectPtr()->subIdList(), QList<unsigned int>{1});
    QCOMPARE(treeShape(owner), QStringLiteral("S:1"));
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
    QCOMPARE(dict.objectTree()->rootNode()->childCount(), 0);
    checkIndexInvariants(*dict.objectTree());
    QCOMPARE(dict.warningMessages().size(), 1); // the reason
}

void tst_OdictXml::documentKindMustMatch()
{
    // An editor dictionary reads "parameter sets" only from a dictionary document.
    COdict editor(E_OT_EDITOR);
    editor.loadParameterSets(dataFile("xml_basic.xml"));
    QVERIFY(editor.isValid() && editor.contains(0x2000u));
    editor.loadParameterSets(dataFile("xml_parameter_sets.xml"));
    QVERIFY(!editor.isValid());

    CMemoryLogfile log;
    COdict unknown(E_OT_UNKNOWN, &log);
    QCOMPARE(unknown.loadDictionary(dataFile("xml_basic.xml")), 1);
    QVERIFY(!unknown.isValid() && !unknown.odictTree());
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
    QCOMPARE(QStringLiteral("%1 %2").arg(gain.value(0).toLongLong()).arg(gain.value(62).toLongLong()), QStringLiteral("-12 40"));
    // Arrays travel as hexadecimal bytes.
    QCOMPARE(dict.parameterObject(0x2001u).arrayLength(), 3u);
    QCOMPARE(dict.parameterObject(0x2001u).value(1).toByteArray(), QByteArray::fromHex("0a0b0c"));
    // loadParameterDictionary asks for a dictionary document, which the parameter path accepts.
    dict.loadParameterDictionary(dataFile("xml_basic.xml"));
    QVERIFY(dict.isValid() && dict.contains(0x2002u, 1u));
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
    QCOMPARE(treeShape(dict.objectTree()->rootNode()), basicShape);
    QCOMPARE(dict.object(0x2000u).name(), QStringLiteral("SPEED"));
    checkIndexInvariants(*dict.objectTree());

    QCOMPARE(dict.loadDictionary(dataFile("xml_empty.xml")), 1);
    QCOMPARE(spy.count(), 3); // the failed load emptied the tree

    // A document without a name is valid, and empty.
    QCOMPARE(dict.loadDictionary(dataFile("xml_noname.xml")), 0);
    QVERIFY(dict.isValid());
    QCOMPARE(dict.objectTree()->rootNode()->childCount(), 0);
    checkIndexInvariants(*dict.objectTree());
}

void tst_OdictXml::deepNestingLoadsCopiesAndSaves()
{
    const int depth = 10000;
    const QString path = m_dir.filePath(QStringLiteral("deep.xml"));
    QVERIFY(writeDocument(path, "Deep", [&](QFile &file) {
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
    const QString saved = m_dir.filePath(QStringLiteral("deep-saved.xml"));
    QCOMPARE(dict->saveDictionary(saved), 0);
    QVERIFY2(QFileInfo(saved).size() < 2 * QFileInfo(path).size(), qPrintable(QString::number(QFileInfo(saved).size())));
    COdict reread(E_OT_EDITOR);
    QCOMPARE(reread.loadDictionary(saved), 0);
    compareTrees(*dict->objectTree(), *reread.objectTree());

    // A copy has its own nodes and indexes.
    const COdict copy(*dict);
    QVERIFY(copy.node(0x2000u) && copy.node(0x2000u) != bottom);
    QCOMPARE(firstChildDepth(copy.objectTree()->dictionaryNode()), depth);
    dict.reset();
    QCOMPARE(copy.object(0x2000u).name(), QStringLiteral("BOTTOM"));
}

void tst_OdictXml::hugeNameLoads()
{
    // 50 MB of name text, written in slices so the test itself never holds it twice.
    const int sliceSize = 1 << 20;
    const int slices = 50;
    const QString path = m_dir.filePath(QStringLiteral("huge.xml"));
    QVERIFY(writeDocument(path, "Huge", [&](QFile &file) {
        file.write("<Object id=\"0x2000\"><Name>");
        const QByteArray slice(sliceSize, 'n');
        for (int i = 0; i < slices; ++i)
            file.write(slice);
        file.write("</Name><Type>U16</Type></Object>\n<Object id=\"0x2001\"><Name>AFTER</Name></Object>\n");
    }));
    COdict dict(E_OT_STD);
    QCOMPARE(dict.loadDictionary(path), 0);
    const QString name = dict.object(0x2000u).name();
    QCOMPARE(name.size(), sliceSize * slices);
    QVERIFY(name.startsWith(QStringLiteral("NNNN")));
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

    CMemoryLogfile log;
    COdictEdit original(eObjectType_t(kind), &log);
    if (build)
        build(original);
    else
        QCOMPARE(original.loadDictionary(path), 0);
    QVERIFY(!build || original.allObjectUIds().size() == 8);
    checkIndexInvariants(*original.objectTree());
    log.clear();

    // Saving over an older file replaces all of it and records the new name.
    const QString first = m_dir.filePath(QStringLiteral("%1 first.xml").arg(QTest::currentDataTag()));
    const QString second = m_dir.filePath(QStringLiteral("%1 second.xml").arg(QTest::currentDataTag()));
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

    // What was read saves to the same bytes; the head of a parameter-set file carries the time of saving.
    QCOMPARE(reread.saveDictionary(second), 0);
    QByteArray bytes[] = {fileBytes(first), fileBytes(second)};
    for (QByteArray &b : bytes)
        if (kind == E_OT_PARAMETER)
            b.remove(b.indexOf("<Header>"), b.indexOf("</Header>") - b.indexOf("<Header>"));
    QVERIFY(!bytes[0].isEmpty());
    QCOMPARE(bytes[1], bytes[0]);
}

void tst_OdictXml::missingFieldsAfterAFullObjectReadAsDefaults_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("editor") << int(E_OT_EDITOR);
    QTest::newRow("value") << int(E_OT_VALUE);
    QTest::newRow("parameter") << int(E_OT_PARAMETER);
    QTest::newRow("plain") << int(E_OT_STD);
}

// The reader refills the texts of one object's fields for the next: an object that lacks a field
// must read exactly as it does alone, whatever the object before it held.
void tst_OdictXml::missingFieldsAfterAFullObjectReadAsDefaults()
{
    QFETCH(int, kind);
    const QByteArray full =
        "<Object id=\"0x2000\" subid=\"7\" version=\"2.0.1\"><SubId>3</SubId><Name>full</Name><UiName>Full</UiName>"
        "<UiShortName>F</UiShortName><RefId>{12345678-9abc-def0-1234-56789abcdef0}</RefId><Type>I32</Type>"
        "<DataSize>4</DataSize><ObjectVersion>1.2.0</ObjectVersion><ObjectUsage>0x2</ObjectUsage>"
        "<AccessRights>0xA</AccessRights><Unit>10</Unit><Y-Unit>11</Y-Unit><Digits>1</Digits><DS402Id>0x4000</DS402Id>"
        "<ProfinetId>17</ProfinetId><UserLevelRead>2</UserLevelRead><UserLevelVisible>3</UserLevelVisible>"
        "<UserLevelWrite>4</UserLevelWrite><MinVal>-5</MinVal><MaxVal>3000</MaxVal><DefVal>12</DefVal>"
        "<ArrayLength>2</ArrayLength><ArrayIndex>1</ArrayIndex><Hexadecimal>true</Hexadecimal>"
        "<DefString>D</DefString><FwVariable>g_v</FwVariable><FwFunction>f</FwFunction><AccessType>3</AccessType>"
        "<ShortDescription>S</ShortDescription><Description>Long</Description><Error>5</Error>"
        "<Param><Value id=\"1\">7</Value></Param></Object>\n";
    const QByteArray bare = "<Object id=\"0x2100\"><Name>bare</Name></Object>\n";
    const QString both = m_dir.filePath(QStringLiteral("reuse both %1.xml").arg(QTest::currentDataTag()));
    const QString alone = m_dir.filePath(QStringLiteral("reuse alone %1.xml").arg(QTest::currentDataTag()));
    const QByteArray root = kind == E_OT_PARAMETER ? "KiroParameterSets" : "KiroObjectDictionary";
    const auto write = [&root](const QString &path, const QByteArray &objects) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly)
            && file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<" + root + " version=\"1.2.0\">\n"
                          "<Header><Version>1.0.0</Version></Header>\n<Name>Reuse</Name>\n" + objects + "</" + root + ">\n") > 0;
    };
    QVERIFY(write(both, full + bare));
    QVERIFY(write(alone, bare));

    COdictEdit afterFull{eObjectType_t(kind)};
    COdictEdit single{eObjectType_t(kind)};
    QCOMPARE(afterFull.loadDictionary(both), 0);
    QCOMPARE(single.loadDictionary(alone), 0);
    const COdictObject *read = afterFull.objectPtr(COdictObjectId(0x2100u));
    const COdictObject *expected = single.objectPtr(COdictObjectId(0x2100u));
    QVERIFY(read && expected);
    QCOMPARE(read->objectType(), expected->objectType());
    switch (kind) {
    case E_OT_EDITOR:
        QVERIFY(*static_cast<const COdictEditorObject *>(read) == *static_cast<const COdictEditorObject *>(expected));
        break;
    case E_OT_VALUE:
        QVERIFY(*static_cast<const COdictValueObject *>(read) == *static_cast<const COdictValueObject *>(expected));
        break;
    case E_OT_PARAMETER:
        QVERIFY(*static_cast<const COdictParameterObject *>(read) == *static_cast<const COdictParameterObject *>(expected));
        break;
    default:
        QVERIFY(*read == *expected);
        break;
    }
    QCOMPARE(read->version().value, expected->version().value);
    QCOMPARE(read->subId(), expected->subId());
    QVERIFY(read->uiName().isNull() == expected->uiName().isNull());
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
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("dir")));
    const auto entries = [&dir] {
        const auto filter = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden;
        return QDir(dir.path()).entryList(filter) << QDir(dir.filePath(QStringLiteral("dir"))).entryList(filter);
    };
    const QString existingPath = dir.filePath(existing);
    QVERIFY(QFile::copy(dataFile("xml_basic.xml"), existingPath));
    const QByteArray before = fileBytes(existingPath);
    const QStringList entriesBefore = entries();

    COdictEdit dict(E_OT_EDITOR);
    QCOMPARE(dict.loadDictionary(dataFile("xml_basic.xml")), 0);
    QVERIFY(dict.saveDictionary(dir.filePath(target)) != 0);
    QCOMPARE(fileBytes(existingPath), before);
    QCOMPARE(dict.fileName(), dataFile("xml_basic.xml"));
    QCOMPARE(entries(), entriesBefore); // no temporary file left behind
}

void tst_OdictXml::saveLeavesOutWhatCannotBeStored()
{
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

    const QString path = m_dir.filePath(QStringLiteral("unstorable.xml"));
    QCOMPARE(dict.saveDictionary(path), 0);
    const QByteArray bytes = fileBytes(path);
    QVERIFY(!bytes.contains("STATUS_WORD_3") && !bytes.contains("<SubObjects/>"));
    COdictEdit reread(E_OT_EDITOR);
    QCOMPARE(reread.loadDictionary(path), 0);
    QCOMPARE(reread.node(0x2001u)->childCount(), 0);
    // The rest of the text stays.
    QCOMPARE((QStringList{reread.editorObject(0x2000u).description(), reread.editorObject(0x2000u).uiName(),
                          reread.objectTree()->dictionaryNode()->child(0)->dataRef().uiName()}),
             (QStringList{"bell tab\t end", "verticaltab", "group"}));
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
    QVERIFY(back.readWriteByteSize() == 4 && back.isValueInHexEnabled());
    QVERIFY(!COdict::valueObjectFromXml(doc, back, QDomElement()));
    QVERIFY(!COdict::setObjectToXml(doc, object, QDomElement()));
}

QTEST_GUILESS_MAIN(tst_OdictXml)
#include "tst_odictxml.moc"

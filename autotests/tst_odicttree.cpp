#include "CMemoryLogfile.h"
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictExtendEdit.h"
#include "COdictGenerator.h"
#include "COdictItem.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictValueObject.h"
#include "invariants.h"

#include <QSet>
#include <QTemporaryDir>
#include <QVector>
#include <QtTest>

#include <algorithm>
#include <functional>

using namespace NkrOdict;

namespace {

constexpr uint none = 0xFFFFFFFFu;

// A new node for an object of the tree's kind, registered with the tree but not linked.
COdictNode *objectNode(COdictObjectTree &tree, const COdictObjectId &uid, const QString &name, bool *ok)
{
    QScopedPointer<COdictObject> object(COdictItem().createObject(tree.objectType()));
    object->setId(uid);
    object->setName(name);
    return tree.createObjectNode(*object, uid.subId() == none ? E_IT_OBJECT : E_IT_SUBOBJECT, ok);
}

// Registers an object of the tree's kind and links it below \a parent; null when refused.
COdictNode *addObject(COdictObjectTree &tree, COdictNode *parent, const COdictObjectId &uid, const QString &name)
{
    bool ok = false;
    QScopedPointer<COdictNode> node(objectNode(tree, uid, name, &ok));
    if (ok)
        parent->appendChild(node.get());
    return ok ? node.take() : nullptr;
}

COdictNode *addGroup(const COdictObjectTree &tree, COdictNode *parent, const QString &name, const QString &label)
{
    COdictNode *group = tree.createGroupNode(name, label);
    parent->appendChild(group);
    return group;
}

COdictNode *addDictionary(COdictObjectTree &tree)
{
    tree.rootNode()->appendChild(tree.createDictionaryNode(QStringLiteral("Demo")));
    return tree.dictionaryNode();
}

// root / "Demo" / { Alpha 0x1000, Motor { Speed 0x2001 {:1, :2}, Limits { Torque 0x2005 },
// Current 0x2003 }, Empty {}, Torque 0x1002 }
// The two objects named Torque are no duplicates; the one registered later owns the name. Deeper in
// the tree but registered earlier, 0x2005 catches index rebuilds that walk in another order.
void fillSample(COdictObjectTree &tree)
{
    COdictNode *dictionary = addDictionary(tree);
    addObject(tree, dictionary, 0x1000u, QStringLiteral("Alpha"));
    COdictNode *motor = addGroup(tree, dictionary, QStringLiteral("Motor"), QStringLiteral("Antrieb"));
    COdictNode *speed = addObject(tree, motor, 0x2001u, QStringLiteral("Speed"));
    addObject(tree, speed, COdictObjectId(0x2001u, 1u), QStringLiteral("Speed"));
    addObject(tree, speed, COdictObjectId(0x2001u, 2u), QStringLiteral("Speed"));
    COdictNode *limits = addGroup(tree, motor, QStringLiteral("Limits"), QString());
    addObject(tree, limits, 0x2005u, QStringLiteral("Torque"));
    addObject(tree, motor, 0x2003u, QStringLiteral("Current"));
    addGroup(tree, dictionary, QStringLiteral("Empty"), QString());
    addObject(tree, dictionary, 0x1002u, QStringLiteral("Torque"));
}

void preOrder(const COdictNode *node, QList<const COdictNode *> &nodes)
{
    nodes << node;
    for (const COdictNode *child : node->children())
        preOrder(child, nodes);
}

// The first node in pre-order from the root whose item has \a refId, found by a walk.
const COdictNode *walkForRefId(const COdictObjectTree &tree, const QUuid &refId)
{
    QList<const COdictNode *> nodes;
    preOrder(tree.rootNode(), nodes);
    for (const COdictNode *node : qAsConst(nodes)) {
        if (node->dataRef().refId() == refId)
            return node;
    }
    return nullptr;
}

QSet<QUuid> refIdsOf(const COdictObjectTree &tree)
{
    QList<const COdictNode *> nodes;
    preOrder(tree.rootNode(), nodes);
    QSet<QUuid> ids;
    for (const COdictNode *node : qAsConst(nodes))
        ids.insert(node->dataRef().refId());
    return ids;
}

// The first node in pre-order below \a top that \a wanted accepts; null when none.
template <class Wanted>
COdictNode *firstNode(COdictNode *top, Wanted wanted)
{
    QList<const COdictNode *> nodes;
    preOrder(top, nodes);
    for (const COdictNode *node : qAsConst(nodes)) {
        if (wanted(node))
            return const_cast<COdictNode *>(node);
    }
    return nullptr;
}

enum eRefIdEdit_t {
    E_RE_LOAD, E_RE_RELOAD, E_RE_ADD_OBJECT, E_RE_INSERT_BEYOND_CHILDREN, E_RE_ADD_SUBOBJECT, E_RE_ADD_GROUP,
    E_RE_MOVE_SUBOBJECT, E_RE_MOVE_GROUP, E_RE_DELETE_OBJECT, E_RE_DELETE_GROUP, E_RE_SET_BY_REF_ID,
    E_RE_SET_DATA, E_RE_SET_DATA_OTHER_KIND, E_RE_SET_ITEM, E_RE_SET_ITEM_WITH_OBJECT, E_RE_COPY_BEFORE_ORIGINAL, E_RE_COPY_AFTER_ORIGINAL,
    E_RE_REMOVE_EARLIER_COPY, E_RE_TAKE_AND_RELINK, E_RE_TAKE, E_RE_REMOVE_CHILDREN, E_RE_CLEAR, E_RE_COPY_TREE,
    E_RE_VIRTUAL_SUBOBJECTS_DROPPED
};

} // namespace

char *toString(const COdictObjectId &id)
{
    return qstrdup(qPrintable(id.toStr(QStringLiteral("0x"))));
}

class tst_OdictTree : public QObject
{
    Q_OBJECT

private slots:
    void lookupsAndObjectLists()
    {
        COdictObjectTree tree(E_OT_VALUE, nullptr);
        fillSample(tree);
        checkIndexInvariants(tree);
        const COdictNode *dictionary = tree.dictionaryNode();
        const COdictNode *motor = dictionary->child(1);
        const COdictNode *speed = motor->child(0);

        QCOMPARE(tree.node(0x2001u, none), speed);
        QCOMPARE(tree.node(COdictObjectName(QStringLiteral("Speed"))), speed);
        QCOMPARE(tree.node(QStringLiteral("Speed"), 2u), speed->child(1));
        QCOMPARE(tree.objectPtr(0x2001u, 2u), speed->child(1)->dataRef().objectPtr());
        QCOMPARE(tree.objectPtr(QStringLiteral("Torque"), none)->id(), 0x1002u); // the later of two
        QCOMPARE(tree.findNodeByRefId(speed->dataRef().refId()), speed);
        QCOMPARE(tree.findNodeByRefId(tree.rootNode()->dataRef().refId()), tree.rootNode());
        // An unknown sub-id, an unknown id, a name in another case, an unknown name and ref id.
        QCOMPARE((QVector<const void *>{tree.node(0x2001u, 3u), tree.objectPtr(0x2002u, none), tree.node(QStringLiteral("speed"), none),
                                        tree.objectPtr(QStringLiteral("Nothing"), none), tree.findNodeByRefId(QUuid::createUuid())}),
                 QVector<const void *>(5, nullptr));

        // The whole dictionary: objects by key, then sub-objects.
        QCOMPARE(tree.allObjectUIds(), (QList<COdictObjectId>{0x1000u, 0x1002u, 0x2001u, 0x2003u, 0x2005u,
                                                              COdictObjectId(0x2001u, 1u), COdictObjectId(0x2001u, 2u)}));
        QCOMPARE(tree.allObjectUIds(dictionary), tree.allObjectUIds());
        QCOMPARE(tree.allObjectIds(), (QList<uint>{0x1000u, 0x1002u, 0x2001u, 0x2003u, 0x2005u, 0x2001u, 0x2001u}));
        // Of a group: child order, the nested group spliced in at its place, no sub-objects.
        QCOMPARE(tree.allObjectUIds(motor), (QList<COdictObjectId>{0x2001u, 0x2005u, 0x2003u}));
        QCOMPARE(tree.allObjectUIds(motor->child(1)), QList<COdictObjectId>{0x2005u});
        // An empty group, an object, a sub-object and the root.
        for (const COdictNode *node : QList<const COdictNode *>{dictionary->child(2), speed, speed->child(0), tree.rootNode()})
            QVERIFY(tree.allObjectUIds(node).isEmpty());
        QVERIFY(tree.allObjectIds(nullptr).isEmpty());
    }

    void duplicateIdIsRejected_data()
    {
        QTest::addColumn<COdictObjectId>("uid");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<QString>("message"); // after "Double Object-ID detected : "

        QTest::newRow("sub-object") << COdictObjectId(0x2001u, 3u) << "First" << "Second" << "ID 0x2001 Sub-ID 0x3; First, Second";
        QTest::newRow("object") << COdictObjectId(0xABCDu) << "Alpha" << "Beta" << "ID 0xabcd Sub-ID 0xffffffff; Alpha, Beta";
        QTest::newRow("names with percent signs") << COdictObjectId(0x10u, 0x1Fu) << "A%1" << "B%2" << "ID 0x10 Sub-ID 0x1f; A%1, B%2";
    }

    void duplicateIdIsRejected()
    {
        QFETCH(COdictObjectId, uid);
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(QString, message);

        CMemoryLogfile log;
        COdictObjectTree tree(E_OT_EDITOR, &log);
        COdictNode *firstNode = addObject(tree, addDictionary(tree), uid, first);
        QVERIFY(firstNode);

        bool ok = true;
        QScopedPointer<COdictNode> rejected(objectNode(tree, uid, second, &ok));
        QVERIFY(!ok);
        QVERIFY(rejected && !rejected->parent());

        QCOMPARE(log.entries().size(), 1);
        QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), QStringList{QStringLiteral("Double Object-ID detected : ") + message});
        QCOMPARE(log.entries().at(0).flags, 0u);

        QCOMPARE(tree.node(uid), firstNode);
        checkIndexInvariants(tree); // no entry for the rejected node either
    }

    void groupFallbackByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("expected"); // ui name of the node found; empty for none

        QTest::newRow("first non-empty group") << "GROUP" << none << "nested";
        QTest::newRow("fallback ignores the sub-id") << "GROUP" << 5u << "nested";
        QTest::newRow("group of its own name") << "Motor" << none << "Antrieb";
        QTest::newRow("empty group never matches") << "Empty" << none << "";
        QTest::newRow("index wins over a group") << "Speed" << none << "Speed";
        QTest::newRow("object with children is skipped") << "Speed" << 7u << "shadow";
        QTest::newRow("unknown name") << "Nothing" << none << "";
    }

    void groupFallbackByName()
    {
        QFETCH(QString, name);
        QFETCH(uint, subId);
        QFETCH(QString, expected);

        // The sample plus Motor { ..., GROUP "first" {}, GROUP "nested" { A } }, GROUP "last" { B } and a
        // group "shadow" named Speed { C }: depth first, "nested" comes before "last".
        COdictObjectTree tree(E_OT_VALUE, nullptr);
        fillSample(tree);
        COdictNode *dictionary = tree.dictionaryNode();
        COdictNode *motor = dictionary->child(1);
        addGroup(tree, motor, QStringLiteral("GROUP"), QStringLiteral("first"));
        addObject(tree, addGroup(tree, motor, QStringLiteral("GROUP"), QStringLiteral("nested")), 1u, QStringLiteral("A"));
        addObject(tree, addGroup(tree, dictionary, QStringLiteral("GROUP"), QStringLiteral("last")), 2u, QStringLiteral("B"));
        addObject(tree, addGroup(tree, dictionary, QStringLiteral("Speed"), QStringLiteral("shadow")), 3u, "C");

        const COdictNode *found = tree.node(COdictObjectName(name, subId));
        QCOMPARE(found ? found->dataRef().uiName() : QString(), expected);
        QCOMPARE(tree.node(name, subId), found);
        // A group's item has no object.
        if (found && found->dataRef().type() == E_IT_GROUP)
            QVERIFY(!tree.objectPtr(COdictObjectName(name, subId)));
    }

    void highestIds_data()
    {
        QTest::addColumn<QList<COdictObjectId>>("keys");
        QTest::addColumn<uint>("highestId");
        QTest::addColumn<COdictObjectId>("highestUId");

        using Id = COdictObjectId;
        QTest::newRow("empty") << QList<Id>{} << 0u << Id(none, none);
        QTest::newRow("gaps") << QList<Id>{1u, 0x2000u, 5u} << 0x2000u << Id(0x2000u);
        QTest::newRow("sub-objects of the highest id") << QList<Id>{0x10u, 0x20u, Id(0x20u, 0u), Id(0x20u, 3u), Id(0x20u, 1u), Id(0x10u, 9u)}
                                                       << 0x20u << Id(0x20u, 3u);
        QTest::newRow("sub-id 0 only") << QList<Id>{0x40u, Id(0x40u, 0u)} << 0x40u << Id(0x40u, 0u);
        // Plain keys sort before every sub-object key; the highest id may still be a plain one.
        QTest::newRow("plain id above the sub-objects") << QList<Id>{0x30u, 0x20u, Id(0x20u, 3u)} << 0x30u << Id(0x30u);
        // Sub-objects of id 0 pack among the plain ids.
        QTest::newRow("sub-objects of id 0") << QList<Id>{0u, 3u, Id(0u, 7u)} << 3u << Id(3u);
        QTest::newRow("only id 0") << QList<Id>{0u, Id(0u, 9u), Id(0u, 7u)} << 0u << Id(0u, 9u);
    }

    void highestIds()
    {
        QFETCH(QList<COdictObjectId>, keys);
        QFETCH(uint, highestId);
        QFETCH(COdictObjectId, highestUId);

        COdictObjectTree tree(E_OT_STD, nullptr);
        COdictNode *dictionary = addDictionary(tree);
        for (const COdictObjectId &key : keys)
            QVERIFY(addObject(tree, dictionary, key, QStringLiteral("O") + key.toStr(QString())));

        QCOMPARE(tree.highestId(), highestId);
        QCOMPARE(tree.highestUId(), highestUId);
    }

    void copyAnswersWithItsOwnNodesAndClears()
    {
        CMemoryLogfile log;
        auto *source = new COdictObjectTree(E_OT_EDITOR, &log);
        fillSample(*source);
        QVERIFY(log.entries().isEmpty()); // a shared name is no duplicate
        source->setFileName(QStringLiteral("demo.xml"));
        source->setMetaData(CXMLMetaData(QDate(2024, 5, 1), QTime(12, 0), QStringLiteral("me"), QString(), NTypes::uVersion_t(0x01000000)));
        source->addWarning(QStringLiteral("careful"));
        source->dataStructures().append({QStringLiteral("S"), QStringLiteral("Standard"), QString(), 4, {}});

        COdictObjectTree copy(*source);
        checkIndexInvariants(copy);
        QList<const COdictNode *> sourceNodes, copyNodes;
        preOrder(source->rootNode(), sourceNodes);
        preOrder(copy.rootNode(), copyNodes);
        QCOMPARE(copyNodes.size(), sourceNodes.size());
        QSet<const void *> sourceParts;
        for (const COdictNode *node : sourceNodes)
            sourceParts << node << node->dataPtr() << node->dataRef().objectPtr();
        for (int i = 0; i < copyNodes.size(); ++i) {
            const COdictItem &item = copyNodes.at(i)->dataRef();
            QVERIFY(!sourceParts.contains(copyNodes.at(i)) && !sourceParts.contains(&item));
            QVERIFY(!item.hasObject() || !sourceParts.contains(item.objectPtr()));
            QCOMPARE(item.refId(), sourceNodes.at(i)->dataRef().refId());
        }
        QCOMPARE(copy.allObjectUIds(), source->allObjectUIds());
        QCOMPARE(copy.metaData(), source->metaData());
        QCOMPARE(copy.history(), source->history());
        QCOMPARE(copy.dataStructures(), source->dataStructures());
        QCOMPARE(copy.warningMessages(), QStringList{QStringLiteral("careful")});
        QCOMPARE(copy.fileName(), QStringLiteral("demo.xml"));
        QCOMPARE(copy.logfile(), static_cast<ICLogfile *>(&log));

        // Nothing of the copy depends on the source.
        delete source;
        checkIndexInvariants(copy);
        QCOMPARE(copy.node(0x2001u, 2u)->parent(), copy.node(0x2001u, none));
        QCOMPARE(copy.node(COdictObjectName(QStringLiteral("Motor"))), copy.dictionaryNode()->child(1));
        QCOMPARE(copy.objectPtr(COdictObjectName(QStringLiteral("Torque")))->id(), 0x1002u);

        // Clearing empties the indexes and everything but the history; the tree is usable again.
        copy.clear();
        checkIndexInvariants(copy);
        QVERIFY(!copy.dictionaryNode() && !copy.node(COdictObjectName(QStringLiteral("Motor"))));
        QCOMPARE(copy.metaData(), CXMLMetaData());
        QVERIFY(copy.dataStructures().size() == 0 && copy.warningMessages().isEmpty());
        QCOMPARE(copy.history().size(), 1);
        fillSample(copy);
        checkIndexInvariants(copy);
    }

    void replaceObject_data()
    {
        QTest::addColumn<bool>("asEditor");
        QTest::addColumn<uint>("newId");
        QTest::addColumn<QString>("newName");
        QTest::addColumn<bool>("accepted");

        QTest::newRow("new id and name") << true << 0x3000u << "Renamed" << true;
        QTest::newRow("same id, new name") << true << 0x2003u << "Renamed" << true;
        QTest::newRow("same id and name") << true << 0x2003u << "Current" << true;
        QTest::newRow("id of another node") << true << 0x2005u << "Renamed" << false;
        QTest::newRow("invalid object") << true << 0x3000u << "UNKNOWN" << false;
        QTest::newRow("refused kind") << false << 0x3000u << "Renamed" << false;
        QTest::newRow("refused kind, same id") << false << 0x2003u << "Renamed" << false;
    }

    void replaceObject()
    {
        QFETCH(bool, asEditor);
        QFETCH(uint, newId);
        QFETCH(QString, newName);
        QFETCH(bool, accepted);

        COdictObjectTree tree(E_OT_EDITOR, nullptr);
        fillSample(tree);
        COdictNode *current = tree.node(0x2003u, none);
        const COdictObjectId oldId(0x2003u);

        COdictEditorObject editor;
        editor.setId(newId);
        editor.setName(newName);
        const bool result = asEditor ? tree.replaceObject(editor, oldId) : tree.replaceObject(COdictValueObject(editor), oldId);
        QCOMPARE(result, accepted);
        checkIndexInvariants(tree);
        // The node keeps its place and answers to the id and name it has afterwards, and only to them.
        const uint id = accepted ? newId : oldId.id();
        const QString name = accepted ? newName : QStringLiteral("Current");
        QCOMPARE(tree.node(id, none), current);
        QCOMPARE(tree.node(COdictObjectName(name)), current);
        QCOMPARE(current->dataRef().name(), name);
        QCOMPARE(current->dataRef().objectType(), E_OT_EDITOR);
        if (id != oldId.id())
            QVERIFY(!tree.node(oldId));
    }

    // Names are keyed by their merged text, so a name with a sub-id and a name that already ends
    // in "_<number>" are the same key, for the hash lookups as for the ordered map.
    void lookupByMergedKey_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("found"); // the merged key of the node found; empty for none

        QTest::newRow("as registered") << "Motor_1_2" << none << "Motor_1_2";
        QTest::newRow("name and sub-id") << "Motor_1" << 2u << "Motor_1_2";
        QTest::newRow("digits joined") << "Motor" << 12u << "";
        QTest::newRow("other sub-id") << "Motor_1" << 4u << "";
        QTest::newRow("extra sub-id") << "Motor_1_2" << 0u << "";
        QTest::newRow("other case") << "motor_1" << 2u << "";
        QTest::newRow("prefix only") << "Motor_1_" << none << "";
        // A sub-object (Pump, 7) asked for by its merged text and by other splits of it.
        QTest::newRow("sub-object as text") << "Pump_7" << none << "Pump_7";
        QTest::newRow("sub-object by name and sub-id") << "Pump" << 7u << "Pump_7";
        QTest::newRow("sub-object, name with the underscore") << "Pump_" << 7u << "";
        QTest::newRow("sub-object, sub-id with more digits") << "Pump_70" << none << "";
        QTest::newRow("sub-object, other name of the same length") << "Pimp_7" << none << "";
    }

    void lookupByMergedKey()
    {
        QFETCH(QString, name);
        QFETCH(uint, subId);
        QFETCH(QString, found);

        COdictObjectTree tree(E_OT_VALUE, nullptr);
        COdictNode *dictionary = addDictionary(tree);
        addObject(tree, dictionary, 0x3000u, QStringLiteral("Motor_1_2"));
        addObject(tree, dictionary, 0x3001u, QStringLiteral("Motor_1_3")); // a near miss
        COdictNode *pump = addObject(tree, dictionary, 0x3002u, QStringLiteral("Pump"));
        addObject(tree, pump, COdictObjectId(0x3002u, 7u), QStringLiteral("Pump"));
        const auto mergedKeyOf = [](const COdictNode *node) { return node ? node->dataRef().uniqueName().mergedName() : QString(); };
        QCOMPARE(mergedKeyOf(tree.node(name, subId)), found);
        QCOMPARE(mergedKeyOf(tree.node(COdictObjectName(name, subId))), found);
        const COdictObject *object = tree.objectPtr(name, subId);
        QCOMPARE(object ? object->uniqueName().mergedName() : QString(), found);
    }

    void refIdLookupMatchesWalkAfterEachEdit_data()
    {
        QTest::addColumn<int>("edit");
        QTest::newRow("load") << int(E_RE_LOAD);
        QTest::newRow("load again") << int(E_RE_RELOAD);
        QTest::newRow("add object") << int(E_RE_ADD_OBJECT);
        QTest::newRow("insert object beyond the children (linked nowhere)") << int(E_RE_INSERT_BEYOND_CHILDREN);
        QTest::newRow("add sub-object") << int(E_RE_ADD_SUBOBJECT);
        QTest::newRow("add group") << int(E_RE_ADD_GROUP);
        QTest::newRow("move sub-object to another owner") << int(E_RE_MOVE_SUBOBJECT);
        QTest::newRow("move group into another group") << int(E_RE_MOVE_GROUP);
        QTest::newRow("delete object with sub-objects") << int(E_RE_DELETE_OBJECT);
        QTest::newRow("delete group") << int(E_RE_DELETE_GROUP);
        QTest::newRow("set item by reference id") << int(E_RE_SET_BY_REF_ID);
        QTest::newRow("setData with a new item") << int(E_RE_SET_DATA);
        QTest::newRow("setData with an object of another kind") << int(E_RE_SET_DATA_OTHER_KIND);
        QTest::newRow("setItem") << int(E_RE_SET_ITEM);
        QTest::newRow("setItem with an object of the same key") << int(E_RE_SET_ITEM_WITH_OBJECT);
        QTest::newRow("item copy linked before its original") << int(E_RE_COPY_BEFORE_ORIGINAL);
        QTest::newRow("item copy linked below its original") << int(E_RE_COPY_AFTER_ORIGINAL);
        QTest::newRow("earlier of two holders removed") << int(E_RE_REMOVE_EARLIER_COPY);
        QTest::newRow("subtree taken and linked elsewhere") << int(E_RE_TAKE_AND_RELINK);
        QTest::newRow("subtree taken") << int(E_RE_TAKE);
        QTest::newRow("removeChildren") << int(E_RE_REMOVE_CHILDREN);
        QTest::newRow("clear") << int(E_RE_CLEAR);
        QTest::newRow("copy of the dictionary") << int(E_RE_COPY_TREE);
        QTest::newRow("virtual sub-objects dropped for a stored one") << int(E_RE_VIRTUAL_SUBOBJECTS_DROPPED);
    }

    // After each kind of edit, every reference id seen before or after it finds what a walk of
    // the tree finds: the first holder in pre-order, or nothing for ids that left the tree.
    void refIdLookupMatchesWalkAfterEachEdit()
    {
        QFETCH(int, edit);
        const bool extended = edit == E_RE_VIRTUAL_SUBOBJECTS_DROPPED;
        QScopedPointer<COdictEdit> dict(extended ? new COdictExtendEdit(E_OT_EDITOR) : new COdictEdit(E_OT_EDITOR));
        if (extended)
            static_cast<COdictExtendEdit *>(dict.get())->setObjectFilter(E_VO_BITSET);
        QVERIFY(COdictGenerator(3).generate(*dict, 60));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("generated.xml"));
        if (extended || edit == E_RE_LOAD || edit == E_RE_RELOAD) {
            QCOMPARE(dict->saveDictionary(path), 0);
            if (edit != E_RE_RELOAD)
                dict->objectTree()->clear();
        }
        COdictObjectTree &tree = *dict->objectTree();
        COdictNode *top = tree.dictionaryNode();
        COdictNode *group = nullptr; // { object with a sub-object, object }
        COdictNode *other = nullptr; // { object }
        COdictNode *owner = nullptr;
        if (top) {
            // Beside the generated part (whose shape depends on the compiler's order of evaluating
            // arguments), a known one that the edits work on.
            QVERIFY(dict->addEditorGroup(top) && dict->addEditorGroup(top));
            group = top->child(top->childCount() - 2);
            other = top->child(top->childCount() - 1);
            QVERIFY(dict->addEditorObject(group) && dict->addEditorObject(group) && dict->addEditorObject(other));
            owner = group->child(0);
            QVERIFY(dict->addEditorSubobject(owner));
        }
        QSet<QUuid> seen = refIdsOf(tree);
        QScopedPointer<COdictNode> unlinked;
        QScopedPointer<COdict> copy;

        switch (eRefIdEdit_t(edit)) {
        case E_RE_LOAD:
        case E_RE_RELOAD:
        case E_RE_VIRTUAL_SUBOBJECTS_DROPPED:
            QCOMPARE(dict->loadDictionary(path), 0);
            if (edit == E_RE_VIRTUAL_SUBOBJECTS_DROPPED) {
                // An owner with virtual sub-objects gets a stored one: the virtual ones leave.
                COdictNode *bits = firstNode(tree.dictionaryNode(), [](const COdictNode *n) {
                    return n->childCount() > 0 && n->child(0)->dataRef().hasVirtualObject();
                });
                QVERIFY(bits);
                seen += refIdsOf(tree);
                COdictEditorObject stored = bits->dataRef().toEditorObject();
                stored.clearSubIds();
                stored.setSubId(40);
                bool ok = false;
                COdictNode *created = tree.createObjectNode(stored, E_IT_SUBOBJECT, &ok);
                QVERIFY(ok);
                bits->appendChild(created);
                QCOMPARE(bits->childCount(), 1);
            }
            break;
        case E_RE_ADD_OBJECT:
            QVERIFY(dict->addEditorObject(group));
            break;
        case E_RE_INSERT_BEYOND_CHILDREN:
            QVERIFY(dict->insertEditorObject(group, group->childCount() + 5));
            break;
        case E_RE_ADD_SUBOBJECT:
            QVERIFY(dict->addEditorSubobject(owner));
            break;
        case E_RE_ADD_GROUP:
            QVERIFY(dict->insertEditorGroup(group, 0));
            break;
        case E_RE_MOVE_SUBOBJECT:
            QVERIFY(dict->moveEditorObject(owner->child(0), other->child(0), 0));
            break;
        case E_RE_MOVE_GROUP:
            QVERIFY(dict->moveEditorObject(group, other, 0));
            break;
        case E_RE_DELETE_OBJECT:
            QVERIFY(dict->delEditorObject(owner->dataRef().toEditorObject()));
            break;
        case E_RE_DELETE_GROUP:
            QVERIFY(dict->delEditorGroup(group));
            break;
        case E_RE_SET_BY_REF_ID: {
            COdictItem item = owner->data();
            item.setName(QStringLiteral("RENAMED"));
            QVERIFY(dict->setOdictItemByRefId(item));
            break;
        }
        case E_RE_SET_DATA:
            group->setData(COdictItem(E_OT_EDITOR, E_IT_GROUP));
            break;
        case E_RE_SET_DATA_OTHER_KIND:
        case E_RE_SET_ITEM_WITH_OBJECT: {
            // Same key, a new object (setItem's is allocated while the old one lives, so it is
            // sure to lie elsewhere): lookups must answer it.
            COdictValueObject value;
            value.setId(owner->dataRef().objectPtr()->uniqueId());
            value.setName(owner->dataRef().name());
            if (edit == E_RE_SET_ITEM_WITH_OBJECT)
                owner->setItem(new COdictItem(value));
            else
                owner->setData(COdictItem(value));
            QVERIFY(dict->objectPtr(value.uniqueId()) == owner->dataRef().objectPtr());
            QVERIFY(dict->objectPtr(value.uniqueName()) == owner->dataRef().objectPtr());
            break;
        }
        case E_RE_SET_ITEM:
            group->setItem(new COdictItem(E_OT_EDITOR, E_IT_GROUP));
            break;
        case E_RE_COPY_BEFORE_ORIGINAL:
        case E_RE_REMOVE_EARLIER_COPY: {
            QVERIFY(top->insertChild(new COdictNode(group->data()), 0));
            QCOMPARE(tree.findNodeByRefId(group->dataRef().refId()), top->child(0));
            if (edit == E_RE_REMOVE_EARLIER_COPY) {
                QVERIFY(top->removeChild(0));
                QCOMPARE(tree.findNodeByRefId(group->dataRef().refId()), group);
            }
            break;
        }
        case E_RE_COPY_AFTER_ORIGINAL:
            group->child(group->childCount() - 1)->appendChild(new COdictNode(group->data()));
            QCOMPARE(tree.findNodeByRefId(group->dataRef().refId()), group);
            // The original leaves: the copy, below it, leaves with it.
            tree.unindexSubtree(group);
            QVERIFY(group->parent()->removeChild(group));
            break;
        case E_RE_TAKE_AND_RELINK:
            QVERIFY(top->takeChild(group));
            QVERIFY(other->child(0)->insertChild(group, 0));
            break;
        case E_RE_TAKE:
            tree.unindexSubtree(group);
            unlinked.reset(group->parent()->takeChild(group));
            QVERIFY(unlinked);
            break;
        case E_RE_REMOVE_CHILDREN:
            for (int i = 0; i < 2; ++i)
                tree.unindexSubtree(top->child(i));
            QVERIFY(top->removeChildren(0, 2));
            break;
        case E_RE_CLEAR:
            tree.clear();
            break;
        case E_RE_COPY_TREE:
            copy.reset(new COdict(*dict));
            break;
        }

        seen += refIdsOf(tree);
        for (const QUuid &refId : qAsConst(seen)) {
            const COdictNode *expected = walkForRefId(tree, refId);
            QVERIFY2(tree.findNodeByRefId(refId) == expected, qPrintable(refId.toString()));
            QVERIFY(dict->odictItemPtr(refId) == (expected ? expected->dataPtr() : nullptr));
        }
        if (edit != E_RE_INSERT_BEYOND_CHILDREN) // there the id index keeps the unlinked object on purpose
            checkIndexInvariants(tree);
        if (copy) {
            // The copy answers with its own nodes, also after the source has lost some.
            QVERIFY(dict->delEditorGroup(group));
            const COdictObjectTree &copied = *copy->objectTree();
            for (const QUuid &refId : qAsConst(seen)) {
                const COdictNode *found = copied.findNodeByRefId(refId);
                QVERIFY(found && found == walkForRefId(copied, refId));
            }
            checkIndexInvariants(copied);
        }
    }

    void laterNameOfSameMergedKeyTakesTheEntry()
    {
        COdictObjectTree tree(E_OT_VALUE, nullptr);
        COdictNode *dictionary = addDictionary(tree);
        addObject(tree, dictionary, 0x3000u, QStringLiteral("Motor_12"));
        COdictNode *owner = addObject(tree, dictionary, 0x3002u, QStringLiteral("Motor"));
        COdictNode *later = addObject(tree, owner, COdictObjectId(0x3002u, 12u), QStringLiteral("Motor"));
        QCOMPARE(tree.node(QStringLiteral("Motor_12"), none), later);
        QCOMPARE(tree.nameIndex().size(), 2);
        checkIndexInvariants(tree);
        // Unindexing the later node removes the shared entry, in the map and in the hash.
        tree.unindexSubtree(later);
        QVERIFY(!tree.node(QStringLiteral("Motor"), 12u));
        owner->removeChild(later);
    }

    // The ordered maps are built from the hash tables when first asked for and kept in step from
    // then on: whenever that happens, they hold what maps fed every change would hold, including
    // the first key of entries whose keys collide (a sub-object of object 0 packs like the plain
    // id of its sub-id; "Motor_12" merges like "Motor" with sub-id 12).
    void orderedMapsAgreeWhenBuiltLate_data()
    {
        QTest::addColumn<int>("askAfter"); // the step after which the maps are first asked for
        for (const int step : {-1, 0, 2, 4, 6, 8, 9, 10})
            QTest::newRow(qPrintable(QStringLiteral("after step %1").arg(step))) << step;
    }

    void orderedMapsAgreeWhenBuiltLate()
    {
        QFETCH(int, askAfter);
        // The entries hold nodes of another tree, which stay alive; the tree under test starts empty.
        COdictObjectTree source(E_OT_VALUE, nullptr);
        COdictNode *a = addObject(source, addDictionary(source), 0x10u, QStringLiteral("A"));
        COdictNode *b = addObject(source, source.dictionaryNode(), 0x11u, QStringLiteral("B"));
        COdictObjectTree tree(E_OT_VALUE, nullptr);
        COdictObjectTree::IdIndex ids;
        COdictObjectTree::NameIndex names;
        const QVector<std::function<void()>> steps = {
            [&] { tree.insertId(COdictObjectId(0u, 5u), a); ids.insert(COdictObjectId(0u, 5u), a); },
            [&] { tree.insertId(COdictObjectId(5u), b); ids.insert(COdictObjectId(5u), b); }, // keeps the key (0, 5)
            [&] { tree.insertId(COdictObjectId(0x2000u, 1u), a); ids.insert(COdictObjectId(0x2000u, 1u), a); },
            [&] { tree.insertName(COdictObjectName(QStringLiteral("Motor_12")), a); names.insert(COdictObjectName(QStringLiteral("Motor_12")), a); },
            [&] { tree.insertName(COdictObjectName(QStringLiteral("Motor"), 12u), b); names.insert(COdictObjectName(QStringLiteral("Motor"), 12u), b); },
            [&] { tree.removeId(COdictObjectId(5u)); ids.remove(COdictObjectId(5u)); },
            [&] { tree.insertId(COdictObjectId(5u), b); ids.insert(COdictObjectId(5u), b); }, // now keeps (5)
            [&] { tree.removeName(COdictObjectName(QStringLiteral("Motor"), 12u), b); names.remove(COdictObjectName(QStringLiteral("Motor"), 12u)); },
            [&] { tree.insertName(COdictObjectName(QStringLiteral("Zeta")), nullptr); names.insert(COdictObjectName(QStringLiteral("Zeta")), nullptr); },
            [&] { tree.insertId(COdictObjectId(0u, 7u), a); ids.insert(COdictObjectId(0u, 7u), a); },
            [&] { tree.insertId(COdictObjectId(7u), b); ids.insert(COdictObjectId(7u), b); }, // keeps the key (0, 7)
        };
        for (int step = 0; step < steps.size(); ++step) {
            steps[step]();
            if (step == askAfter) {
                tree.idIndex();
                tree.nameIndex();
            }
        }
        // The sorted keys come from the table while the map is not built, from the map after.
        for (int pass = 0; pass < 2; ++pass) {
            const QList<COdictObjectId> keys = tree.allObjectUIds();
            QCOMPARE(keys.size(), ids.size());
            for (int i = 0; i < keys.size(); ++i) {
                QCOMPARE(keys.at(i).id(), ids.keys().at(i).id());
                QCOMPARE(keys.at(i).subId(), ids.keys().at(i).subId());
            }
            QCOMPARE(tree.highestId(), ids.isEmpty() ? 0u : std::max_element(ids.keyBegin(), ids.keyEnd(), [](const auto &x, const auto &y) { return x.id() < y.id(); })->id());
            tree.idIndex();
        }
        QCOMPARE(tree.idIndex().keys(), ids.keys());
        for (auto i = tree.idIndex().cbegin(); i != tree.idIndex().cend(); ++i) {
            QCOMPARE(i.key().id(), ids.find(i.key()).key().id()); // the first key, not only an equal one
            QCOMPARE(i.key().subId(), ids.find(i.key()).key().subId());
            QCOMPARE(i.value(), ids.value(i.key()));
        }
        QCOMPARE(tree.nameIndex().size(), names.size());
        for (auto i = tree.nameIndex().cbegin(), e = names.cbegin(); i != tree.nameIndex().cend(); ++i, ++e) {
            QCOMPARE(i.key().name(), e.key().name());
            QCOMPARE(i.key().subId(), e.key().subId());
            QCOMPARE(i.value(), e.value());
        }
    }

    // Many objects, then renames, re-numberings and removals in a fixed pseudo-random order: the
    // hash tables grow, and entries leave from the middle of probe runs, while every lookup must
    // keep answering what the maps hold.
    void indexesStayInStepThroughChurn()
    {
        COdictObjectTree tree(E_OT_EDITOR, nullptr);
        COdictNode *dictionary = addDictionary(tree);
        const uint count = 3000;
        for (uint i = 0; i < count; ++i) {
            COdictNode *node = addObject(tree, dictionary, 0x2000u + i, QStringLiteral("OBJ_%1").arg(i));
            if (i % 5 == 0)
                addObject(tree, node, COdictObjectId(0x2000u + i, 1u), QStringLiteral("OBJ_%1").arg(i));
        }
        checkIndexInvariants(tree);
        quint32 random = 12345;
        const auto next = [&random](uint bound) {
            random = random * 1103515245u + 12345u;
            return (random >> 8) % bound;
        };
        for (int step = 0; step < 4000; ++step) {
            const uint id = 0x2000u + next(count);
            COdictNode *node = tree.node(id, none);
            if (!node)
                continue;
            switch (next(3)) {
            case 0: {
                COdictEditorObject renamed(*static_cast<const COdictEditorObject *>(node->dataRef().objectPtr()));
                renamed.setName(QStringLiteral("NEW_%1").arg(step)); // names stay unique: each has an entry
                QVERIFY(tree.replaceObject(renamed));
                break;
            }
            case 1: {
                COdictEditorObject moved(*static_cast<const COdictEditorObject *>(node->dataRef().objectPtr()));
                moved.setId(0x9000u + next(count));
                tree.replaceObject(moved, COdictObjectId(id)); // refused when the new id is taken
                break;
            }
            default:
                tree.unindexSubtree(node);
                dictionary->removeChild(node);
                break;
            }
            if (step % 1000 == 999) {
                checkIndexInvariants(tree);
                if (QTest::currentTestFailed())
                    return;
            }
        }
        checkIndexInvariants(tree);
        tree.clear();
        checkIndexInvariants(tree);
        QVERIFY(!tree.node(0x2001u, none));
    }
};

QTEST_GUILESS_MAIN(tst_OdictTree)
#include "tst_odicttree.moc"

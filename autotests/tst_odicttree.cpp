#include "CMemoryLogfile.h"
#include "COdictEditorObject.h"
#include "COdictItem.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictValueObject.h"
#include "invariants.h"

#include <QSet>
#include <QtTest>

using namespace NkrOdict;

namespace {

constexpr uint none = 0xFFFFFFFFu;

template <typename T>
QString debugText(const T &value)
{
    QString text;
    QDebug(&text) << value;
    return text;
}

// Registers an object of the tree's kind and links it below \a parent; null when refused.
COdictNode *addObject(COdictObjectTree &tree, COdictNode *parent, const COdictObjectId &uid, const QString &name)
{
    QScopedPointer<COdictObject> object(COdictItem().createObject(tree.objectType()));
    object->setId(uid);
    object->setName(name);
    bool ok = false;
    COdictNode *node = tree.createObjectNode(*object, uid.subId() == none ? E_IT_OBJECT : E_IT_SUBOBJECT, &ok);
    if (!ok) {
        delete node;
        return nullptr;
    }
    parent->appendChild(node);
    return node;
}

COdictNode *addGroup(const COdictObjectTree &tree, COdictNode *parent, const QString &name, const QString &label)
{
    COdictNode *group = tree.createGroupNode(name, label);
    parent->appendChild(group);
    return group;
}

// root / "Demo" / { Alpha 0x1000, Motor { Speed 0x2001 {:1, :2}, Limits { Torque 0x2005 },
// Current 0x2003 }, Empty {}, Beta 0x1002 }
void fillSample(COdictObjectTree &tree)
{
    COdictNode *dictionary = tree.createDictionaryNode(QStringLiteral("Demo"));
    tree.rootNode()->appendChild(dictionary);
    addObject(tree, dictionary, 0x1000u, QStringLiteral("Alpha"));
    COdictNode *motor = addGroup(tree, dictionary, QStringLiteral("Motor"), QStringLiteral("Antrieb"));
    COdictNode *speed = addObject(tree, motor, 0x2001u, QStringLiteral("Speed"));
    addObject(tree, speed, COdictObjectId(0x2001u, 1u), QStringLiteral("Speed"));
    addObject(tree, speed, COdictObjectId(0x2001u, 2u), QStringLiteral("Speed"));
    COdictNode *limits = addGroup(tree, motor, QStringLiteral("Limits"), QString());
    addObject(tree, limits, 0x2005u, QStringLiteral("Torque"));
    addObject(tree, motor, 0x2003u, QStringLiteral("Current"));
    addGroup(tree, dictionary, QStringLiteral("Empty"), QString());
    addObject(tree, dictionary, 0x1002u, QStringLiteral("Beta"));
}

QList<const COdictNode *> preOrder(const COdictNode *top)
{
    QList<const COdictNode *> nodes;
    QVector<const COdictNode *> pending{top};
    while (!pending.isEmpty()) {
        const COdictNode *current = pending.takeLast();
        nodes.append(current);
        for (int i = current->childCount() - 1; i >= 0; --i)
            pending.append(current->child(i));
    }
    return nodes;
}

CXMLMetaData meta(quint32 version, const QString &author)
{
    return CXMLMetaData(QDate(2024, 5, 1), QTime(12, 0), author, QString(), NTypes::uVersion_t(version));
}

} // namespace

char *toString(const COdictObjectId &id)
{
    return qstrdup(debugText(id).toUtf8().constData());
}

class tst_OdictTree : public QObject
{
    Q_OBJECT

private slots:
    void emptyTree();
    void lookups();
    void duplicateIdIsRejected_data();
    void duplicateIdIsRejected();
    void duplicateNameIsNoDuplicate();
    void groupFallbackByName_data();
    void groupFallbackByName();
    void highestIds_data();
    void highestIds();
    void allObjectUIdsOfNodes();
    void findNodeByRefId();
    void copyAnswersWithItsOwnNodes();
    void copyKeepsLaterNodeForSharedName();
    void clearEmptiesIndexes();
    void replaceObject_data();
    void replaceObject();
};

void tst_OdictTree::emptyTree()
{
    const COdictObjectTree tree(E_OT_EDITOR, nullptr);
    QCOMPARE(tree.objectType(), E_OT_EDITOR);
    QVERIFY(tree.rootNode());
    QCOMPARE(tree.rootNode()->dataRef().type(), E_IT_UNKNOWN);
    QVERIFY(!tree.dictionaryNode());
    QCOMPARE(tree.highestId(), 0u);
    QVERIFY(!tree.highestUId().isValid());
    QVERIFY(tree.allObjectUIds().isEmpty());
    QVERIFY(tree.allObjectIds().isEmpty());
    QVERIFY(!tree.node(0x2000u, none));
    QVERIFY(!tree.node(COdictObjectName(QStringLiteral("GROUP"))));
    checkIndexInvariants(tree);
}

void tst_OdictTree::lookups()
{
    COdictObjectTree tree(E_OT_VALUE, nullptr);
    fillSample(tree);
    checkIndexInvariants(tree);
    if (QTest::currentTestFailed())
        return;

    const COdictNode *speed = tree.node(0x2001u, none);
    QVERIFY(speed);
    QCOMPARE(speed->dataRef().name(), QStringLiteral("Speed"));
    QCOMPARE(tree.node(COdictObjectId(0x2001u)), speed);
    QCOMPARE(tree.node(COdictObjectName(QStringLiteral("Speed"))), speed);
    QCOMPARE(tree.node(0x2001u, 2u), speed->child(1));
    QCOMPARE(tree.node(QStringLiteral("Speed"), 2u), speed->child(1));
    QCOMPARE(tree.objectPtr(0x2001u, 2u), speed->child(1)->dataRef().objectPtr());
    QCOMPARE(tree.objectPtr(QStringLiteral("Torque"), none)->id(), 0x2005u);

    QVERIFY(!tree.node(0x2001u, 3u));
    QVERIFY(!tree.node(0x2002u, none));
    QVERIFY(!tree.objectPtr(0x2002u, none));
    QVERIFY(!tree.node(QStringLiteral("speed"), none)); // exact, case included
    QVERIFY(!tree.objectPtr(QStringLiteral("Nothing"), none));
}

void tst_OdictTree::duplicateIdIsRejected_data()
{
    QTest::addColumn<COdictObjectId>("uid");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("message");

    QTest::newRow("sub-object") << COdictObjectId(0x2001u, 3u) << "First" << "Second"
                                << "Double Object-ID detected : ID 0x2001 Sub-ID 0x3; First, Second";
    QTest::newRow("object") << COdictObjectId(0xABCDu) << "Alpha" << "Beta"
                            << "Double Object-ID detected : ID 0xabcd Sub-ID 0xffffffff; Alpha, Beta";
    QTest::newRow("names with percent signs") << COdictObjectId(0x10u, 0x1Fu) << "A%1" << "B%2"
                                              << "Double Object-ID detected : ID 0x10 Sub-ID 0x1f; A%1, B%2";
}

void tst_OdictTree::duplicateIdIsRejected()
{
    QFETCH(COdictObjectId, uid);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, message);

    CMemoryLogfile log;
    COdictObjectTree tree(E_OT_EDITOR, &log);
    tree.rootNode()->appendChild(tree.createDictionaryNode(QStringLiteral("Demo")));
    COdictNode *firstNode = addObject(tree, tree.dictionaryNode(), uid, first);
    QVERIFY(firstNode);
    QVERIFY(log.entries().isEmpty());

    COdictEditorObject duplicate;
    duplicate.setId(uid);
    duplicate.setName(second);
    bool ok = true;
    QScopedPointer<COdictNode> rejected(tree.createObjectNode(duplicate, E_IT_OBJECT, &ok));
    QVERIFY(!ok);
    QVERIFY(rejected);
    QVERIFY(!rejected->parent());

    QCOMPARE(log.entries().size(), 1);
    QCOMPARE(log.entries().at(0).severity, NkrLogfiles::E_SEV_CRITICAL);
    QCOMPARE(log.entries().at(0).text, message);
    QCOMPARE(log.entries().at(0).flags, 0u);

    QCOMPARE(tree.node(uid), firstNode);
    QVERIFY(!tree.nameIndex().contains(COdictObjectName(second, uid.subId())));
    checkIndexInvariants(tree);
}

void tst_OdictTree::duplicateNameIsNoDuplicate()
{
    CMemoryLogfile log;
    COdictObjectTree tree(E_OT_STD, &log);
    tree.rootNode()->appendChild(tree.createDictionaryNode(QStringLiteral("Demo")));
    COdictNode *first = addObject(tree, tree.dictionaryNode(), 1u, QStringLiteral("Twin"));
    COdictNode *second = addObject(tree, tree.dictionaryNode(), 2u, QStringLiteral("Twin"));
    QVERIFY(first && second);
    QVERIFY(log.entries().isEmpty());
    QCOMPARE(tree.node(COdictObjectName(QStringLiteral("Twin"))), second); // the later insert wins
    QCOMPARE(tree.node(1u, none), first);
    checkIndexInvariants(tree);
}

void tst_OdictTree::groupFallbackByName_data()
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

void tst_OdictTree::groupFallbackByName()
{
    QFETCH(QString, name);
    QFETCH(uint, subId);
    QFETCH(QString, expected);

    // Demo { GROUP "first" {}, Motor { GROUP "nested" { A }, Speed { :1 } }, GROUP "last" { B },
    //        Empty {}, Speed group "shadow" { C } }
    COdictObjectTree tree(E_OT_VALUE, nullptr);
    COdictNode *dictionary = tree.createDictionaryNode(QStringLiteral("Demo"));
    tree.rootNode()->appendChild(dictionary);
    addGroup(tree, dictionary, QStringLiteral("GROUP"), QStringLiteral("first"));
    COdictNode *motor = addGroup(tree, dictionary, QStringLiteral("Motor"), QStringLiteral("Antrieb"));
    addObject(tree, addGroup(tree, motor, QStringLiteral("GROUP"), QStringLiteral("nested")), 1u, QStringLiteral("A"));
    COdictNode *speed = addObject(tree, motor, 0x10u, QStringLiteral("Speed"));
    addObject(tree, speed, COdictObjectId(0x10u, 1u), QStringLiteral("Speed"));
    addObject(tree, addGroup(tree, dictionary, QStringLiteral("GROUP"), QStringLiteral("last")), 2u, QStringLiteral("B"));
    addGroup(tree, dictionary, QStringLiteral("Empty"), QString());
    addObject(tree, addGroup(tree, dictionary, QStringLiteral("Speed"), QStringLiteral("shadow")), 3u,
              QStringLiteral("C"));

    const COdictNode *found = tree.node(COdictObjectName(name, subId));
    QCOMPARE(found ? found->dataRef().uiName() : QString(), expected);
    QCOMPARE(tree.node(name, subId), found);
    // A group's item has no object.
    if (found && found->dataRef().type() == E_IT_GROUP)
        QVERIFY(!tree.objectPtr(COdictObjectName(name, subId)));
}

void tst_OdictTree::highestIds_data()
{
    QTest::addColumn<QList<COdictObjectId>>("keys");
    QTest::addColumn<uint>("highestId");
    QTest::addColumn<COdictObjectId>("highestUId");

    using Id = COdictObjectId;
    QTest::newRow("empty") << QList<Id>{} << 0u << Id(none, none);
    QTest::newRow("gaps") << QList<Id>{1u, 0x2000u, 5u} << 0x2000u << Id(0x2000u);
    QTest::newRow("sub-objects of the highest id")
        << QList<Id>{0x10u, 0x20u, Id(0x20u, 0u), Id(0x20u, 3u), Id(0x20u, 1u), Id(0x10u, 9u)} << 0x20u << Id(0x20u, 3u);
    QTest::newRow("sub-id 0 only") << QList<Id>{0x40u, Id(0x40u, 0u)} << 0x40u << Id(0x40u, 0u);
    // Plain keys sort before every sub-object key; the highest id may still be a plain one.
    QTest::newRow("plain id above the sub-objects")
        << QList<Id>{0x30u, 0x20u, Id(0x20u, 3u)} << 0x30u << Id(0x30u);
    // Sub-objects of id 0 pack among the plain ids.
    QTest::newRow("sub-objects of id 0") << QList<Id>{0u, 3u, Id(0u, 7u)} << 3u << Id(3u);
    QTest::newRow("only id 0") << QList<Id>{0u, Id(0u, 9u), Id(0u, 7u)} << 0u << Id(0u, 9u);
}

void tst_OdictTree::highestIds()
{
    QFETCH(QList<COdictObjectId>, keys);
    QFETCH(uint, highestId);
    QFETCH(COdictObjectId, highestUId);

    COdictObjectTree tree(E_OT_STD, nullptr);
    tree.rootNode()->appendChild(tree.createDictionaryNode(QStringLiteral("Demo")));
    for (const COdictObjectId &key : keys)
        QVERIFY(addObject(tree, tree.dictionaryNode(), key, QStringLiteral("O") + key.toStr(QString())));
    QCOMPARE(tree.idIndex().size(), keys.size());

    QCOMPARE(tree.highestId(), highestId);
    QCOMPARE(tree.highestUId(), highestUId);
}

void tst_OdictTree::allObjectUIdsOfNodes()
{
    COdictObjectTree tree(E_OT_VALUE, nullptr);
    fillSample(tree);
    const COdictNode *dictionary = tree.dictionaryNode();
    const COdictNode *motor = dictionary->child(1);

    const QList<COdictObjectId> all{0x1000u, 0x1002u, 0x2001u, 0x2003u, 0x2005u, COdictObjectId(0x2001u, 1u),
                                    COdictObjectId(0x2001u, 2u)};
    QCOMPARE(tree.allObjectUIds(), all);
    QCOMPARE(tree.allObjectUIds(dictionary), tree.allObjectUIds());
    QCOMPARE(tree.allObjectIds(), (QList<uint>{0x1000u, 0x1002u, 0x2001u, 0x2003u, 0x2005u, 0x2001u, 0x2001u}));

    // Child order, the nested group spliced in at its place, no sub-objects.
    QCOMPARE(tree.allObjectUIds(motor), (QList<COdictObjectId>{0x2001u, 0x2005u, 0x2003u}));
    QCOMPARE(tree.allObjectIds(motor), (QList<uint>{0x2001u, 0x2005u, 0x2003u}));
    QCOMPARE(tree.allObjectUIds(motor->child(1)), QList<COdictObjectId>{0x2005u});

    QVERIFY(tree.allObjectUIds(dictionary->child(2)).isEmpty()); // empty group
    QVERIFY(tree.allObjectUIds(motor->child(0)).isEmpty());      // object
    QVERIFY(tree.allObjectUIds(motor->child(0)->child(0)).isEmpty());
    QVERIFY(tree.allObjectUIds(tree.rootNode()).isEmpty());
    QVERIFY(tree.allObjectUIds(nullptr).isEmpty());
    QVERIFY(tree.allObjectIds(nullptr).isEmpty());
}

void tst_OdictTree::findNodeByRefId()
{
    COdictObjectTree tree(E_OT_VALUE, nullptr);
    fillSample(tree);
    const COdictNode *torque = tree.node(0x2005u, none);
    QCOMPARE(tree.findNodeByRefId(torque->dataRef().refId()), torque);
    QCOMPARE(tree.findNodeByRefId(tree.rootNode()->dataRef().refId()), tree.rootNode());
    QVERIFY(!tree.findNodeByRefId(QUuid::createUuid()));
}

void tst_OdictTree::copyAnswersWithItsOwnNodes()
{
    CMemoryLogfile log;
    auto *source = new COdictObjectTree(E_OT_EDITOR, &log);
    fillSample(*source);
    source->setFileName(QStringLiteral("demo.xml"));
    source->setMetaData(meta(0x01000000, QStringLiteral("me")));
    source->addWarning(QStringLiteral("careful"));
    COdictDataStructure::SDataStructure_t structure;
    structure.id = 4;
    structure.uiName = QStringLiteral("Standard");
    source->dataStructures().append(structure);

    const COdictObjectTree copy(*source);
    checkIndexInvariants(copy);
    if (QTest::currentTestFailed())
        return;

    const QList<const COdictNode *> sourceNodes = preOrder(source->rootNode());
    const QList<const COdictNode *> copyNodes = preOrder(copy.rootNode());
    QCOMPARE(copyNodes.size(), sourceNodes.size());
    QSet<const void *> sourceParts;
    for (const COdictNode *node : sourceNodes)
        sourceParts << node << node->dataPtr() << node->dataRef().objectPtr();
    for (int i = 0; i < copyNodes.size(); ++i) {
        const COdictItem &item = copyNodes.at(i)->dataRef();
        QVERIFY(!sourceParts.contains(copyNodes.at(i)));
        QVERIFY(!sourceParts.contains(copyNodes.at(i)->dataPtr()));
        if (item.hasObject())
            QVERIFY(!sourceParts.contains(item.objectPtr()));
        QCOMPARE(item.type(), sourceNodes.at(i)->dataRef().type());
        QCOMPARE(item.name(), sourceNodes.at(i)->dataRef().name());
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
    const COdictNode *motor = copy.node(COdictObjectName(QStringLiteral("Motor")));
    QVERIFY(motor);
    QCOMPARE(motor->dataRef().uiName(), QStringLiteral("Antrieb"));
}

void tst_OdictTree::copyKeepsLaterNodeForSharedName()
{
    // Rebuilding the indexes of a copy must visit nodes in the order they were registered, so
    // that a shared name keeps pointing at the same position as in the source.
    COdictObjectTree source(E_OT_STD, nullptr);
    COdictNode *dictionary = source.createDictionaryNode(QStringLiteral("Demo"));
    source.rootNode()->appendChild(dictionary);
    COdictNode *group = addGroup(source, dictionary, QStringLiteral("G"), QString());
    addObject(source, group, 1u, QStringLiteral("Twin"));
    addObject(source, group, 2u, QStringLiteral("Twin"));
    addObject(source, dictionary, 3u, QStringLiteral("Twin"));
    QCOMPARE(source.objectPtr(COdictObjectName(QStringLiteral("Twin")))->id(), 3u);

    const COdictObjectTree copy(source);
    QCOMPARE(copy.objectPtr(COdictObjectName(QStringLiteral("Twin")))->id(), 3u);
    checkIndexInvariants(copy);
}

void tst_OdictTree::clearEmptiesIndexes()
{
    COdictObjectTree tree(E_OT_EDITOR, nullptr);
    fillSample(tree);
    tree.setMetaData(meta(0x01000000, QStringLiteral("me")));
    tree.addWarning(QStringLiteral("careful"));
    tree.dataStructures().append(COdictDataStructure::SDataStructure_t());

    tree.clear();
    QVERIFY(tree.idIndex().isEmpty());
    QVERIFY(tree.nameIndex().isEmpty());
    QVERIFY(!tree.dictionaryNode());
    QCOMPARE(tree.rootNode()->childCount(), 0);
    QVERIFY(!tree.node(0x2001u, none));
    QVERIFY(!tree.node(COdictObjectName(QStringLiteral("Motor"))));
    QCOMPARE(tree.highestId(), 0u);
    QCOMPARE(tree.metaData(), CXMLMetaData());
    QCOMPARE(tree.dataStructures().size(), 0);
    QVERIFY(tree.warningMessages().isEmpty());
    QCOMPARE(tree.history().size(), 1); // the history stays
    checkIndexInvariants(tree);

    // The cleared tree is usable again.
    fillSample(tree);
    checkIndexInvariants(tree);
}

void tst_OdictTree::replaceObject_data()
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

void tst_OdictTree::replaceObject()
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
    if (QTest::currentTestFailed())
        return;

    if (accepted) {
        QCOMPARE(tree.node(newId, none), current);
        QCOMPARE(tree.node(COdictObjectName(newName)), current);
        QCOMPARE(current->dataRef().name(), newName);
        if (newId != 0x2003u)
            QVERIFY(!tree.node(oldId));
    } else {
        QCOMPARE(tree.node(oldId), current);
        QCOMPARE(current->dataRef().name(), QStringLiteral("Current"));
        QCOMPARE(current->dataRef().objectType(), E_OT_EDITOR);
        QCOMPARE(tree.node(COdictObjectName(QStringLiteral("Current"))), current);
    }
}

QTEST_GUILESS_MAIN(tst_OdictTree)
#include "tst_odicttree.moc"

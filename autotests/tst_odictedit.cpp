#include "CMemoryLogfile.h"
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"
#include "invariants.h"

#include <QSignalSpy>
#include <QtTest>

using namespace NkrOdict;

namespace {

constexpr unsigned int NoSub = 0xFFFFFFFFu;

/// An editor dictionary with its dictionary node, ready for editing.
struct sFixture_t {
    CMemoryLogfile log;
    COdictEdit dict{E_OT_EDITOR, &log};
    COdictObjectTree &tree() { return *dict.objectTree(); }
    COdictNode *top = nullptr;

    sFixture_t()
    {
        top = tree().createDictionaryNode(QStringLiteral("Edit"));
        tree().rootNode()->appendChild(top);
        log.clear();
    }

    /// An object with \a id and \a name appended to \a parent (the dictionary node by default).
    COdictNode *object(unsigned int id, const QString &name, COdictNode *parent = nullptr)
    {
        COdictEditorObject o;
        o.setId(id);
        o.setName(name);
        o.setUiName(name.toLower());
        bool ok = false;
        COdictNode *node = tree().createObjectNode(o, E_IT_OBJECT, &ok);
        if (!ok) {
            delete node;
            return nullptr;
        }
        (parent ? parent : top)->appendChild(node);
        return node;
    }

    COdictNode *group(const QString &name, COdictNode *parent = nullptr)
    {
        COdictNode *node = tree().createGroupNode(name, name.toLower());
        (parent ? parent : top)->appendChild(node);
        return node;
    }
};

COdictEditorObject editorObjectOf(const COdictNode *node)
{
    return node->dataRef().toEditorObject();
}

/// The names of a node's children, space separated.
QString childNames(const COdictNode *node)
{
    QStringList names;
    for (const COdictNode *child : node->children())
        names << child->dataRef().name();
    return names.join(QLatin1Char(' '));
}

/// Whether some node of the tree holds an object with \a uid.
bool treeHolds(const COdictObjectTree &tree, const COdictObjectId &uid)
{
    QVector<const COdictNode *> pending{tree.rootNode()};
    while (!pending.isEmpty()) {
        const COdictNode *node = pending.takeLast();
        const COdictItem &item = node->dataRef();
        if (item.hasObject() && item.objectPtr()->uniqueId() == uid)
            return true;
        for (const COdictNode *child : node->children())
            pending.append(child);
    }
    return false;
}

} // namespace

class tst_OdictEdit : public QObject
{
    Q_OBJECT

private slots:
    void addObjectTakesNextId_data();
    void addObjectTakesNextId();
    void insertObjectAtPosition();
    void insertBeyondChildrenAnswersTrue();
    void addSubObjectTakesNextSubId();
    void addSubObjectRefusals();
    void moveWithinParent_data();
    void moveWithinParent();
    void moveRefusalsAndParentlessNode();
    void moveSubObjectRehomes();
    void changeObjectIdRefusesTakenId();
    void changeObjectIdRekeysSubObjects();
    void delEditorObjectWithSubObjects();
    void delEditorGroupRemovesObjects();
    void setEditorObjectRefusals();
    void setEditorObjectRenames();
    void replaceChangesId();
    void setOdictItemByRefId();
    void setOdictItemByObjectIdRefusesGroups();
    void addGroup();
    void withoutTreeEverythingRefuses();
};

void tst_OdictEdit::addObjectTakesNextId_data()
{
    QTest::addColumn<QList<uint>>("existing");
    QTest::addColumn<uint>("expected");

    QTest::newRow("empty dictionary") << QList<uint>{} << 1u;
    QTest::newRow("after 0x2000, whatever the gaps") << QList<uint>{0x10, 0x2000, 0x500} << 0x2001u;
    QTest::newRow("after id 0") << QList<uint>{0} << 1u;
}

void tst_OdictEdit::addObjectTakesNextId()
{
    QFETCH(QList<uint>, existing);
    QFETCH(uint, expected);

    sFixture_t f;
    for (uint id : existing)
        QVERIFY(f.object(id, QStringLiteral("OBJ_%1").arg(id)));
    QSignalSpy spy(f.dict.objectTree(), &COdictObjectTree::objectDictionaryChanged);
    COdictNode *group = f.group(QStringLiteral("G"));
    QVERIFY(f.dict.addEditorObject(group));
    checkIndexInvariants(f.tree());
    QCOMPARE(spy.count(), 1);

    QCOMPARE(group->childCount(), 1);
    const COdictNode *added = group->child(0);
    QCOMPARE(added->dataRef().type(), E_IT_OBJECT);
    const COdictEditorObject o = editorObjectOf(added);
    QCOMPARE(o.uniqueId(), COdictObjectId(expected));
    QCOMPARE(o.name(), QStringLiteral("OBJECT_NAME_WITH_ID_%1").arg(expected));
    QCOMPARE(f.dict.node(expected), added);
    QCOMPARE(f.dict.node(o.name()), added);
    QVERIFY(!f.dict.addEditorObject(nullptr));
}

void tst_OdictEdit::insertObjectAtPosition()
{
    sFixture_t f;
    f.object(0x10, QStringLiteral("A"));
    f.object(0x11, QStringLiteral("B"));
    QVERIFY(f.dict.insertEditorObject(f.top, 1));
    QVERIFY(f.dict.insertEditorObject(f.top, 3)); // == child count: appended
    QCOMPARE(childNames(f.top), QStringLiteral("A OBJECT_NAME_WITH_ID_18 B OBJECT_NAME_WITH_ID_19"));
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::insertBeyondChildrenAnswersTrue()
{
    sFixture_t f;
    f.object(0x10, QStringLiteral("A"));
    QVERIFY(f.dict.insertEditorObject(f.top, f.top->childCount() + 1));
    // Registered but linked nowhere: the id is indexed, no node of the tree holds it.
    QVERIFY(f.dict.contains(0x11u));
    QVERIFY(!treeHolds(f.tree(), COdictObjectId(0x11u)));
    QCOMPARE(childNames(f.top), QStringLiteral("A"));

    QVERIFY(f.dict.insertEditorGroup(f.top, 5));
    QCOMPARE(f.top->childCount(), 1);
    // The unlinked nodes go with the tree (checked for leaks under the sanitizer build).
    f.tree().clear();
    QVERIFY(f.tree().idIndex().isEmpty());
}

void tst_OdictEdit::addSubObjectTakesNextSubId()
{
    sFixture_t f;
    COdictNode *owner = f.object(0x2000, QStringLiteral("OWNER"));
    COdictEditorObject withTexts = editorObjectOf(owner);
    withTexts.setUiShortName(QStringLiteral("own"));
    withTexts.setDescription(QStringLiteral("copied into sub-objects"));
    QVERIFY(f.dict.setEditorObject(withTexts));

    QVERIFY(f.dict.addEditorSubobject(owner));
    QVERIFY(f.dict.addEditorSubobject(owner));
    checkIndexInvariants(f.tree());
    QCOMPARE(owner->childCount(), 2);
    const COdictEditorObject second = editorObjectOf(owner->child(1));
    QCOMPARE(owner->child(1)->dataRef().type(), E_IT_SUBOBJECT);
    QCOMPARE(second.uniqueId(), COdictObjectId(0x2000u, 1u));
    QCOMPARE(second.name(), QStringLiteral("OWNER_1"));
    QCOMPARE(second.uiName(), QStringLiteral("owner Sub 1"));
    QCOMPARE(second.uiShortName(), QStringLiteral("own Sub 1"));
    QCOMPARE(second.description(), QStringLiteral("copied into sub-objects"));
    QVERIFY(second.subIdList().isEmpty());
    QCOMPARE(editorObjectOf(owner).subIdList(), (QList<unsigned int>{0, 1}));

    // Deleting the lower sub-object does not make its sub-id the next one.
    QVERIFY(f.dict.delEditorObject(editorObjectOf(owner->child(0))));
    QCOMPARE(editorObjectOf(owner).subIdList(), QList<unsigned int>{1});
    QVERIFY(f.dict.addEditorSubobject(owner));
    QCOMPARE(editorObjectOf(owner->child(1)).subId(), 2u);
    QCOMPARE(editorObjectOf(owner).subIdList(), (QList<unsigned int>{1, 2}));
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::addSubObjectRefusals()
{
    sFixture_t f;
    COdictNode *group = f.group(QStringLiteral("G"));
    QVERIFY(!f.dict.addEditorSubobject(nullptr));
    QVERIFY(!f.dict.addEditorSubobject(group));

    // A sub-id already taken (registered behind the owner's back) is refused with a critical.
    COdictNode *owner = f.object(0x2000, QStringLiteral("OWNER"));
    COdictEditorObject stray = editorObjectOf(owner);
    stray.setSubId(0);
    stray.setName(QStringLiteral("STRAY"));
    bool ok = false;
    owner->appendChild(f.tree().createObjectNode(stray, E_IT_SUBOBJECT, &ok));
    QVERIFY(ok);
    QVERIFY(!f.dict.addEditorSubobject(owner));
    QCOMPARE(f.log.texts(NkrLogfiles::E_SEV_CRITICAL),
             QStringList{QStringLiteral("Double Object-ID detected : ID 0x2000 Sub-ID 0x0; STRAY, OWNER_0")});
    QCOMPARE(owner->childCount(), 1);
    QVERIFY(editorObjectOf(owner).subIdList().isEmpty());
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::moveWithinParent_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("order");

    QTest::newRow("to a later row") << 0 << 3 << true << "B C A D";
    QTest::newRow("to the end") << 1 << 4 << true << "A C D B";
    QTest::newRow("to an earlier row") << 3 << 0 << true << "D A B C";
    QTest::newRow("onto itself") << 2 << 2 << true << "A B C D";
    QTest::newRow("beyond the end: refused, nothing lost") << 0 << 5 << false << "A B C D";
}

void tst_OdictEdit::moveWithinParent()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, result);
    QFETCH(QString, order);

    sFixture_t f;
    for (const char *name : {"A", "B", "C", "D"})
        f.object(f.tree().highestId() + 1, QLatin1String(name));
    QCOMPARE(f.dict.moveEditorObject(f.top->child(from), f.top, to), result);
    QCOMPARE(childNames(f.top), order);
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::moveRefusalsAndParentlessNode()
{
    sFixture_t f;
    COdictNode *a = f.object(1, QStringLiteral("A"));
    COdictNode *group = f.group(QStringLiteral("G"));
    COdictNode *inner = f.group(QStringLiteral("INNER"), group);

    QVERIFY(!f.dict.moveEditorObject(a, group, -1));
    QVERIFY(!f.dict.moveEditorObject(nullptr, group, 0));
    QVERIFY(!f.dict.moveEditorObject(a, nullptr, 0));
    QVERIFY(!f.dict.moveEditorObject(group, inner, 0)); // into its own subtree
    QCOMPARE(childNames(f.top), QStringLiteral("A G"));

    // A node without parent: nothing happens, and the call succeeds.
    COdictNode *loose = f.tree().createGroupNode(QStringLiteral("LOOSE"), QString());
    QVERIFY(f.dict.moveEditorObject(loose, group, 0));
    QVERIFY(!loose->parent());
    QCOMPARE(childNames(group), QStringLiteral("INNER"));
    delete loose;

    QVERIFY(f.dict.moveEditorObject(a, inner, 0));
    QCOMPARE(childNames(f.top), QStringLiteral("G"));
    QCOMPARE(a->parent(), inner);
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::moveSubObjectRehomes()
{
    sFixture_t f;
    COdictNode *first = f.object(0x10, QStringLiteral("FIRST"));
    COdictNode *second = f.object(0x20, QStringLiteral("SECOND"));
    QVERIFY(f.dict.addEditorSubobject(first));  // 0x10:0
    QVERIFY(f.dict.addEditorSubobject(first));  // 0x10:1
    QVERIFY(f.dict.addEditorSubobject(second)); // 0x20:0

    // Sub-id 1 is free at the new owner: kept.
    COdictNode *moved = first->child(1);
    QVERIFY(f.dict.moveEditorObject(moved, second, 1));
    checkIndexInvariants(f.tree());
    QCOMPARE(moved->parent(), second);
    QCOMPARE(editorObjectOf(moved).uniqueId(), COdictObjectId(0x20u, 1u));
    QCOMPARE(editorObjectOf(moved).name(), QStringLiteral("SECOND_1"));
    QVERIFY(!f.dict.contains(0x10u, 1u));
    QCOMPARE(f.dict.node(QStringLiteral("SECOND_1"), 1u), moved);
    QCOMPARE(editorObjectOf(first).subIdList(), QList<unsigned int>{0});
    QCOMPARE(editorObjectOf(second).subIdList(), (QList<unsigned int>{0, 1}));

    // Sub-id 0 is taken at the new owner: the next free one is used.
    moved = first->child(0);
    QVERIFY(f.dict.moveEditorObject(moved, second, 0));
    checkIndexInvariants(f.tree());
    QCOMPARE(editorObjectOf(moved).uniqueId(), COdictObjectId(0x20u, 2u));
    QCOMPARE(editorObjectOf(moved).name(), QStringLiteral("SECOND_2"));
    QVERIFY(editorObjectOf(first).subIdList().isEmpty());
    QCOMPARE(editorObjectOf(second).subIdList(), (QList<unsigned int>{0, 1, 2}));
    QCOMPARE(childNames(second), QStringLiteral("SECOND_2 SECOND_0 SECOND_1"));
    QCOMPARE(first->childCount(), 0);
}

void tst_OdictEdit::changeObjectIdRefusesTakenId()
{
    sFixture_t f;
    f.object(0x10, QStringLiteral("A"));
    f.object(0x20, QStringLiteral("B"));
    const auto keys = f.tree().idIndex().keys();
    QVERIFY(!f.dict.changeObjectId(0x10u, 0x20u));
    QVERIFY(!f.dict.changeObjectId(0x30u, 0x40u));
    QCOMPARE(f.tree().idIndex().keys(), keys);
    QCOMPARE(f.dict.object(0x20u).name(), QStringLiteral("B"));
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::changeObjectIdRekeysSubObjects()
{
    sFixture_t f;
    COdictNode *owner = f.object(0x10, QStringLiteral("OWNER"));
    QVERIFY(f.dict.addEditorSubobject(owner));
    QVERIFY(f.dict.addEditorSubobject(owner));

    QVERIFY(f.dict.changeObjectId(0x10u, 0x30u));
    QCOMPARE(f.tree().idIndex().keys(),
             (QList<COdictObjectId>{COdictObjectId(0x30u), COdictObjectId(0x30u, 0u), COdictObjectId(0x30u, 1u)}));
    QCOMPARE(f.dict.node(0x30u, 1u), owner->child(1));
    // Writing the new id into the objects is the caller's part; then the indexes agree again.
    for (const COdictNode *node : QVector<const COdictNode *>{owner, owner->child(0), owner->child(1)}) {
        COdictEditorObject o = editorObjectOf(node);
        const COdictObjectId key(0x30u, o.subId());
        o.setId(0x30u);
        QVERIFY(f.dict.replaceOdictEditorObject(key, o));
    }
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::delEditorObjectWithSubObjects()
{
    sFixture_t f;
    f.object(0x10, QStringLiteral("KEEP"));
    COdictNode *owner = f.object(0x20, QStringLiteral("OWNER"));
    QVERIFY(f.dict.addEditorSubobject(owner));
    QVERIFY(f.dict.addEditorSubobject(owner));
    const COdictEditorObject victim = editorObjectOf(owner);

    COdictEditorObject unknown = victim;
    unknown.setId(0x99u);
    QVERIFY(!f.dict.delEditorObject(unknown));
    QVERIFY(!f.dict.delEditorObject(COdictEditorObject()));

    QVERIFY(f.dict.delEditorObject(victim));
    checkIndexInvariants(f.tree());
    QCOMPARE(childNames(f.top), QStringLiteral("KEEP"));
    QCOMPARE(f.tree().idIndex().keys(), QList<COdictObjectId>{COdictObjectId(0x10u)});
    QVERIFY(!f.dict.node(QStringLiteral("OWNER_1"), 1u));
}

void tst_OdictEdit::delEditorGroupRemovesObjects()
{
    sFixture_t f;
    f.object(0x10, QStringLiteral("KEEP"));
    COdictNode *group = f.group(QStringLiteral("DOOMED"));
    COdictNode *owner = f.object(0x20, QStringLiteral("OWNER"), group);
    QVERIFY(f.dict.addEditorSubobject(owner));
    COdictNode *inner = f.group(QStringLiteral("INNER"), group);
    f.object(0x30, QStringLiteral("NESTED"), inner);
    f.object(0x40, QStringLiteral("LAST"), group);

    QVERIFY(!f.dict.delEditorGroup(nullptr));
    QVERIFY(!f.dict.delEditorGroup(f.tree().rootNode()));
    QVERIFY(f.dict.delEditorGroup(group));
    checkIndexInvariants(f.tree());
    QCOMPARE(childNames(f.top), QStringLiteral("KEEP"));
    QCOMPARE(f.tree().idIndex().keys(), QList<COdictObjectId>{COdictObjectId(0x10u)});
    QCOMPARE(f.tree().nameIndex().size(), 1);
    QVERIFY(!f.dict.node(QStringLiteral("INNER")));

    QVERIFY(f.dict.delEditorGroup(f.group(QStringLiteral("EMPTY"))));
    QCOMPARE(childNames(f.top), QStringLiteral("KEEP"));
}

void tst_OdictEdit::setEditorObjectRefusals()
{
    sFixture_t f;
    f.object(0x10, QStringLiteral("A"));
    const COdictEditorObject before = f.dict.editorObject(0x10u);

    COdictEditorObject invalid = before;
    invalid.setName(QStringLiteral("UNKNOWN"));
    QVERIFY(!f.dict.setEditorObject(invalid));
    COdictEditorObject unknown = before;
    unknown.setId(0x11u);
    QVERIFY(!f.dict.setEditorObject(unknown));
    QVERIFY(!f.dict.replaceOdictEditorObject(0x11u, unknown));
    QVERIFY(f.dict.editorObject(0x10u) == before);
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::setEditorObjectRenames()
{
    sFixture_t f;
    const COdictNode *node = f.object(0x10, QStringLiteral("OLD"));
    COdictEditorObject o = editorObjectOf(node);
    o.setName(QStringLiteral("NEW"));
    o.setFwVariablename(QStringLiteral("g_new"));
    QVERIFY(f.dict.setEditorObject(o));
    checkIndexInvariants(f.tree());
    QCOMPARE(f.dict.node(QStringLiteral("NEW")), node);
    QVERIFY(!f.dict.node(QStringLiteral("OLD")));
    QVERIFY(f.dict.editorObject(0x10u) == o);
}

void tst_OdictEdit::replaceChangesId()
{
    sFixture_t f;
    const COdictNode *node = f.object(0x10, QStringLiteral("A"));
    f.object(0x20, QStringLiteral("B"));
    COdictEditorObject o = editorObjectOf(node);
    o.setId(0x15u);
    o.setName(QStringLiteral("A_MOVED"));
    QVERIFY(f.dict.replaceOdictEditorObject(0x10u, o));
    checkIndexInvariants(f.tree());
    QCOMPARE(f.dict.node(0x15u), node);
    QVERIFY(!f.dict.contains(0x10u));

    // The id of another object is not taken over.
    o.setId(0x20u);
    QVERIFY(!f.dict.replaceOdictEditorObject(0x15u, o));
    QCOMPARE(f.dict.object(0x20u).name(), QStringLiteral("B"));
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::setOdictItemByRefId()
{
    sFixture_t f;
    COdictNode *node = f.object(0x10, QStringLiteral("A"));
    COdictItem item = node->data();
    item.toEditorObjectPtr()->setUiName(QStringLiteral("Changed"));
    item.toEditorObjectPtr()->setName(QStringLiteral("RENAMED"));
    QVERIFY(f.dict.setOdictItemByRefId(item));
    checkIndexInvariants(f.tree());
    QCOMPARE(f.dict.editorObject(0x10u).uiName(), QStringLiteral("Changed"));
    QCOMPARE(f.dict.node(QStringLiteral("RENAMED")), node);

    QVERIFY(!f.dict.setOdictItemByRefId(COdictItem(COdictEditorObject())));
}

void tst_OdictEdit::setOdictItemByObjectIdRefusesGroups()
{
    sFixture_t f;
    COdictNode *node = f.object(0x10, QStringLiteral("A"));
    QVERIFY(!f.dict.setOdictItemByObjectId(f.group(QStringLiteral("G"))->data()));
    COdictItem item = node->data();
    item.toEditorObjectPtr()->setDescription(QStringLiteral("by id"));
    QVERIFY(f.dict.setOdictItemByObjectId(item));
    QCOMPARE(f.dict.editorObject(0x10u).description(), QStringLiteral("by id"));
}

void tst_OdictEdit::addGroup()
{
    sFixture_t f;
    QVERIFY(!f.dict.addEditorGroup(nullptr));
    QVERIFY(f.dict.addEditorGroup(f.top));
    QVERIFY(f.dict.insertEditorGroup(f.top, 0));
    QCOMPARE(f.top->childCount(), 2);
    for (const COdictNode *group : f.top->children()) {
        QCOMPARE(group->dataRef().type(), E_IT_GROUP);
        QCOMPARE(group->dataRef().name(), QStringLiteral("GROUP"));
        QCOMPARE(group->dataRef().uiName(), QStringLiteral("Gruppe"));
    }
    QVERIFY(f.tree().idIndex().isEmpty());
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::withoutTreeEverythingRefuses()
{
    COdictEdit dict(E_OT_UNKNOWN);
    COdictNode node{COdictItem()};
    COdictEditorObject o;
    o.setId(1u);
    o.setName(QStringLiteral("A"));
    QCOMPARE(dict.saveDictionary(QStringLiteral("/tmp/never-written.xml")), 1);
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/never-written.xml")));
    QVERIFY(!dict.addEditorObject(&node));
    QVERIFY(!dict.addEditorGroup(&node));
    QVERIFY(!dict.setEditorObject(o));
    QVERIFY(!dict.delEditorObject(o));
    QVERIFY(!dict.changeObjectId(1u, 2u));
    QVERIFY(!dict.setOdictItemByRefId(node.data()));
    QCOMPARE(dict.odictDataStructureList().size(), 0);
}

QTEST_GUILESS_MAIN(tst_OdictEdit)
#include "tst_odictedit.moc"

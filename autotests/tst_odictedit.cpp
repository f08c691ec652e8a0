#include "CMemoryLogfile.h"
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"
#include "invariants.h"

#include <QSignalSpy>
#include <QtTest>

using namespace NkrOdict;

namespace {

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

    /// \a node appended to \a parent, the dictionary node by default.
    COdictNode *add(COdictNode *node, COdictNode *parent)
    {
        (parent ? parent : top)->appendChild(node);
        return node;
    }
    COdictNode *group(const QString &name, COdictNode *in = nullptr) { return add(tree().createGroupNode(name, name.toLower()), in); }
    COdictNode *object(unsigned int id, const QString &name, COdictNode *parent = nullptr)
    {
        COdictEditorObject o;
        o.setId(id);
        o.setName(name);
        o.setUiName(name.toLower());
        bool ok = false;
        COdictNode *node = tree().createObjectNode(o, E_IT_OBJECT, &ok);
        return ok ? add(node, parent) : nullptr;
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

/// An owner's sub-id list and its children's ids and names: "[0,1] 0x20/0:SECOND_0 0x20/1:SECOND_1".
QString subObjects(const COdictNode *owner)
{
    QStringList ids;
    for (unsigned int subId : editorObjectOf(owner).subIdList())
        ids << QString::number(subId);
    QStringList parts{'[' + ids.join(',') + ']'};
    for (const COdictNode *child : owner->children()) {
        const COdictEditorObject o = editorObjectOf(child);
        parts << QStringLiteral("0x%1/%2:%3").arg(o.id(), 0, 16).arg(o.subId()).arg(o.name());
    }
    return parts.join(' ');
}

enum eUpdate_t { E_SET, E_REPLACE, E_BY_REF_ID, E_BY_OBJECT_ID };

} // namespace

class tst_OdictEdit : public QObject
{
    Q_OBJECT

private slots:
    void newObjectTakesNextId_data();
    void newObjectTakesNextId();
    void addSubObjectTakesNextSubId();
    void moveWithinParent_data();
    void moveWithinParent();
    void moveParentlessNodeAndIntoGroup();
    void moveSubObjectRehomes();
    void changeObjectIdRekeysOnly();
    void deleteRemovesFromBothIndexes_data();
    void deleteRemovesFromBothIndexes();
    void updateObject_data();
    void updateObject();
    void refusals();
    void addGroup();
    void withoutTreeEverythingRefuses();
};

void tst_OdictEdit::newObjectTakesNextId_data()
{
    QTest::addColumn<QList<uint>>("existing");
    QTest::addColumn<int>("position"); // -1: appended by addEditorObject
    QTest::addColumn<uint>("expected");
    QTest::addColumn<int>("row"); // -1: linked nowhere

    QTest::newRow("empty dictionary") << QList<uint>{} << -1 << 1u << 0;
    QTest::newRow("after 0x2000, whatever the gaps") << QList<uint>{0x10, 0x2000, 0x500} << -1 << 0x2001u << 3;
    QTest::newRow("after id 0") << QList<uint>{0} << -1 << 1u << 1;
    QTest::newRow("inserted between") << QList<uint>{0x10, 0x11} << 1 << 0x12u << 1;
    QTest::newRow("inserted at the child count") << QList<uint>{0x10, 0x11} << 2 << 0x12u << 2;
    QTest::newRow("inserted beyond the child count") << QList<uint>{0x10, 0x11} << 3 << 0x12u << -1;
}

void tst_OdictEdit::newObjectTakesNextId()
{
    QFETCH(QList<uint>, existing);
    QFETCH(int, position);
    QFETCH(uint, expected);
    QFETCH(int, row);

    sFixture_t f;
    for (uint id : existing)
        QVERIFY(f.object(id, QStringLiteral("OBJ_%1").arg(id)));
    QSignalSpy spy(f.dict.objectTree(), &COdictObjectTree::objectDictionaryChanged);
    // Inserting answers true even beyond the child count, where the new object is registered but
    // no node of the tree holds it.
    QVERIFY(position < 0 ? f.dict.addEditorObject(f.top) : f.dict.insertEditorObject(f.top, position));
    QCOMPARE(spy.count(), 1);
    const COdictNode *added = f.dict.node(QStringLiteral("OBJECT_NAME_WITH_ID_%1").arg(expected));
    QVERIFY(added && added == f.dict.node(expected));
    QCOMPARE(added->dataRef().type(), E_IT_OBJECT);
    QCOMPARE(editorObjectOf(added).uniqueId(), COdictObjectId(expected));
    QCOMPARE(f.top->children().indexOf(const_cast<COdictNode *>(added)), row);
    QCOMPARE(f.top->childCount(), existing.size() + (row < 0 ? 0 : 1));
    if (row >= 0)
        checkIndexInvariants(f.tree());
    // Unlinked nodes go with the tree (checked for leaks under the sanitizer build).
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
    QCOMPARE(subObjects(owner), QStringLiteral("[0,1] 0x2000/0:OWNER_0 0x2000/1:OWNER_1"));
    QCOMPARE(owner->child(1)->dataRef().type(), E_IT_SUBOBJECT);
    // The texts come from the owner; the sub-id list does not.
    const COdictEditorObject second = editorObjectOf(owner->child(1));
    QCOMPARE(QStringList({second.uiName(), second.uiShortName(), second.description()}),
             QStringList({"owner Sub 1", "own Sub 1", "copied into sub-objects"}));
    QVERIFY(second.subIdList().isEmpty());

    // Deleting the lower sub-object does not make its sub-id the next one.
    QVERIFY(f.dict.delEditorObject(editorObjectOf(owner->child(0))));
    QCOMPARE(subObjects(owner), QStringLiteral("[1] 0x2000/1:OWNER_1"));
    QVERIFY(f.dict.addEditorSubobject(owner));
    QCOMPARE(subObjects(owner), QStringLiteral("[1,2] 0x2000/1:OWNER_1 0x2000/2:OWNER_2"));
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

void tst_OdictEdit::moveParentlessNodeAndIntoGroup()
{
    sFixture_t f;
    COdictNode *a = f.object(1, QStringLiteral("A"));
    COdictNode *group = f.group(QStringLiteral("G"));
    COdictNode *inner = f.group(QStringLiteral("INNER"), group);

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
    QVERIFY(f.dict.moveEditorObject(first->child(1), second, 1));
    checkIndexInvariants(f.tree());
    QCOMPARE(subObjects(first), QStringLiteral("[0] 0x10/0:FIRST_0"));
    QCOMPARE(subObjects(second), QStringLiteral("[0,1] 0x20/0:SECOND_0 0x20/1:SECOND_1"));

    // Sub-id 0 is taken at the new owner: the next free one is used.
    QVERIFY(f.dict.moveEditorObject(first->child(0), second, 0));
    checkIndexInvariants(f.tree());
    QCOMPARE(subObjects(first), QStringLiteral("[]"));
    QCOMPARE(subObjects(second), QStringLiteral("[0,1,2] 0x20/2:SECOND_2 0x20/0:SECOND_0 0x20/1:SECOND_1"));
}

void tst_OdictEdit::changeObjectIdRekeysOnly()
{
    sFixture_t f;
    COdictNode *owner = f.object(0x10, QStringLiteral("OWNER"));
    f.object(0x20, QStringLiteral("B"));
    QVERIFY(f.dict.addEditorSubobject(owner));
    QVERIFY(f.dict.addEditorSubobject(owner));

    // A taken or an unknown id is refused.
    const auto keys = f.tree().idIndex().keys();
    QVERIFY(!f.dict.changeObjectId(0x10u, 0x20u));
    QVERIFY(!f.dict.changeObjectId(0x30u, 0x40u));
    QCOMPARE(f.tree().idIndex().keys(), keys);
    QCOMPARE(f.dict.object(0x20u).name(), QStringLiteral("B"));
    checkIndexInvariants(f.tree());

    QVERIFY(f.dict.changeObjectId(0x10u, 0x30u));
    QCOMPARE(f.tree().idIndex().keys(), (QList<COdictObjectId>{COdictObjectId(0x20u), COdictObjectId(0x30u),
                                                               COdictObjectId(0x30u, 0u), COdictObjectId(0x30u, 1u)}));
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

void tst_OdictEdit::deleteRemovesFromBothIndexes_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("left"); // the dictionary's children afterwards
    QTest::addColumn<int>("objectsLeft");

    QTest::newRow("object with its sub-objects") << "OWNER" << "KEEP DOOMED EMPTY" << 3;
    QTest::newRow("group with nested groups and objects") << "DOOMED" << "KEEP EMPTY" << 1;
    QTest::newRow("empty group") << "EMPTY" << "KEEP DOOMED" << 6;
}

void tst_OdictEdit::deleteRemovesFromBothIndexes()
{
    QFETCH(QString, target);
    QFETCH(QString, left);
    QFETCH(int, objectsLeft);

    sFixture_t f;
    f.object(0x10, QStringLiteral("KEEP"));
    COdictNode *doomed = f.group(QStringLiteral("DOOMED"));
    COdictNode *owner = f.object(0x20, QStringLiteral("OWNER"), doomed);
    QVERIFY(f.dict.addEditorSubobject(owner));
    QVERIFY(f.dict.addEditorSubobject(owner));
    f.object(0x30, QStringLiteral("NESTED"), f.group(QStringLiteral("INNER"), doomed));
    f.object(0x40, QStringLiteral("LAST"), doomed);
    COdictNode *empty = f.group(QStringLiteral("EMPTY"));

    if (target == QLatin1String("OWNER"))
        QVERIFY(f.dict.delEditorObject(editorObjectOf(owner)));
    else
        QVERIFY(f.dict.delEditorGroup(target == QLatin1String("EMPTY") ? empty : doomed));
    checkIndexInvariants(f.tree());
    QCOMPARE(childNames(f.top), left);
    QCOMPARE(f.tree().idIndex().size(), objectsLeft); // and, by the index check, as many names
}

void tst_OdictEdit::updateObject_data()
{
    QTest::addColumn<int>("how");
    QTest::addColumn<uint>("key"); // the id replaced
    QTest::addColumn<uint>("id");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("ok");

    QTest::newRow("set, renamed") << int(E_SET) << 0x10u << 0x10u << "NEW" << true;
    QTest::newRow("set, named UNKNOWN") << int(E_SET) << 0x10u << 0x10u << "UNKNOWN" << false;
    QTest::newRow("set, unknown id") << int(E_SET) << 0x10u << 0x11u << "A" << false;
    QTest::newRow("replace, new id and name") << int(E_REPLACE) << 0x10u << 0x15u << "A_MOVED" << true;
    QTest::newRow("replace, unknown key") << int(E_REPLACE) << 0x11u << 0x11u << "A" << false;
    QTest::newRow("replace, id of another object") << int(E_REPLACE) << 0x10u << 0x20u << "A" << false;
    QTest::newRow("by reference id, renamed") << int(E_BY_REF_ID) << 0x10u << 0x10u << "RENAMED" << true;
    QTest::newRow("by object id") << int(E_BY_OBJECT_ID) << 0x10u << 0x10u << "A" << true;
}

void tst_OdictEdit::updateObject()
{
    QFETCH(int, how);
    QFETCH(uint, key);
    QFETCH(uint, id);
    QFETCH(QString, name);
    QFETCH(bool, ok);

    sFixture_t f;
    const COdictNode *node = f.object(0x10, QStringLiteral("A"));
    f.object(0x20, QStringLiteral("B"));
    const COdictEditorObject before = editorObjectOf(node);
    COdictItem item = node->data();
    COdictEditorObject &o = *item.toEditorObjectPtr();
    o.setId(id);
    o.setName(name);
    o.setDescription(QStringLiteral("changed"));
    const bool done = how == E_SET       ? f.dict.setEditorObject(o)
                      : how == E_REPLACE ? f.dict.replaceOdictEditorObject(key, o)
                      : how == E_BY_REF_ID ? f.dict.setOdictItemByRefId(item)
                                           : f.dict.setOdictItemByObjectId(item);
    QCOMPARE(done, ok);
    checkIndexInvariants(f.tree());
    QCOMPARE(f.dict.object(0x20u).name(), QStringLiteral("B"));
    // Refused: nothing changed. Done: the node holds the new object under its new keys only (the
    // index check above finds stale keys).
    QVERIFY(ok ? f.dict.editorObject(id) == o && f.dict.node(name) == node : editorObjectOf(node) == before);
}

void tst_OdictEdit::refusals()
{
    sFixture_t f;
    COdictNode *owner = f.object(0x2000, QStringLiteral("OWNER"));
    COdictNode *group = f.group(QStringLiteral("G"));
    COdictNode *inner = f.group(QStringLiteral("INNER"), group);
    COdictEditorObject unknown = editorObjectOf(owner);
    unknown.setId(0x99u);
    QVERIFY(!f.dict.addEditorObject(nullptr));
    QVERIFY(!f.dict.addEditorGroup(nullptr));
    QVERIFY(!f.dict.addEditorSubobject(nullptr));
    QVERIFY(!f.dict.addEditorSubobject(group));
    QVERIFY(!f.dict.delEditorObject(unknown));
    QVERIFY(!f.dict.delEditorObject(COdictEditorObject()));
    QVERIFY(!f.dict.delEditorGroup(nullptr));
    QVERIFY(!f.dict.delEditorGroup(f.tree().rootNode()));
    QVERIFY(!f.dict.setOdictItemByRefId(COdictItem(COdictEditorObject())));
    QVERIFY(!f.dict.setOdictItemByObjectId(group->data()));
    QVERIFY(!f.dict.moveEditorObject(owner, group, -1));
    QVERIFY(!f.dict.moveEditorObject(nullptr, group, 0));
    QVERIFY(!f.dict.moveEditorObject(owner, nullptr, 0));
    QVERIFY(!f.dict.moveEditorObject(group, inner, 0)); // into its own subtree
    QCOMPARE(childNames(f.top), QStringLiteral("OWNER G"));
    QCOMPARE(childNames(group), QStringLiteral("INNER"));

    // A sub-id already taken (registered behind the owner's back) is refused with a critical.
    COdictEditorObject stray = editorObjectOf(owner);
    stray.setSubId(0);
    stray.setName(QStringLiteral("STRAY"));
    bool ok = false;
    owner->appendChild(f.tree().createObjectNode(stray, E_IT_SUBOBJECT, &ok));
    QVERIFY(ok);
    f.log.clear();
    QVERIFY(!f.dict.addEditorSubobject(owner));
    QCOMPARE(f.log.texts(NkrLogfiles::E_SEV_CRITICAL),
             QStringList{QStringLiteral("Double Object-ID detected : ID 0x2000 Sub-ID 0x0; STRAY, OWNER_0")});
    QCOMPARE(subObjects(owner), QStringLiteral("[] 0x2000/0:STRAY"));
    checkIndexInvariants(f.tree());
}

void tst_OdictEdit::addGroup()
{
    sFixture_t f;
    QVERIFY(f.dict.addEditorGroup(f.top));
    QVERIFY(f.dict.insertEditorGroup(f.top, 0));
    QVERIFY(f.dict.insertEditorGroup(f.top, 5)); // beyond the child count: true, linked nowhere
    QCOMPARE(f.top->childCount(), 2);
    for (const COdictNode *group : f.top->children())
        QCOMPARE(QStringLiteral("%1 %2 %3").arg(group->dataRef().type()).arg(group->dataRef().name(), group->dataRef().uiName()),
                 QStringLiteral("%1 GROUP Gruppe").arg(E_IT_GROUP));
    checkIndexInvariants(f.tree()); // no object, so no index entry
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

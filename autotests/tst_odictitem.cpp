#include "COdictEditorObject.h"
#include "COdictItem.h"
#include "COdictObject.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "CTreeNode.h"

#include <QSet>
#include <QtTest>

using namespace NkrOdict;

Q_DECLARE_METATYPE(NkrOdict::eObjectType_t)
Q_DECLARE_METATYPE(NkrOdict::eItemType_t)

namespace {

// A named object of \a kind, owned by the caller.
COdictObject *namedObject(eObjectType_t kind, const QString &name)
{
    COdictObject *object = COdictItem().createObject(kind);
    object->setId(0x2000u);
    object->setName(name);
    return object;
}

COdictItem objectItem(eObjectType_t kind, const QString &name)
{
    COdictItem item(kind, E_IT_OBJECT);
    item.setName(name);
    return item;
}

COdictNode *namedNode(const QString &name)
{
    COdictItem item(E_OT_UNKNOWN, E_IT_GROUP);
    item.setName(name);
    return new COdictNode(item);
}

// "a,b,c" from the names of the children of \a node.
QString childNames(const COdictNode *node)
{
    QStringList names;
    for (const COdictNode *child : node->children())
        names << child->dataRef().name();
    return names.join(QLatin1Char(','));
}

// A parent with the children "a", "b", "c", "d".
COdictNode *parentOfFour()
{
    auto *parent = namedNode(QStringLiteral("p"));
    for (const char *name : {"a", "b", "c", "d"})
        parent->appendChild(namedNode(QLatin1String(name)));
    return parent;
}

} // namespace

class tst_OdictItem : public QObject
{
    Q_OBJECT

private slots:
    void objectsByKind_data();
    void objectsByKind();
    void nameFallbacks_data();
    void nameFallbacks();
    void typedViews_data();
    void typedViews();
    void refIdIsKeptByCopyAndFreshPerConstructor();
    void assignmentByKind_data();
    void assignmentByKind();
    void setObject_data();
    void setObject();

    void insertChildBounds_data();
    void insertChildBounds();
    void takeChildDetachesWithoutDeleting();
    void removeChildren_data();
    void removeChildren();
    void cloneIsDeepWithParentsSet();
    void cloneAndDeleteVeryDeepTree();
    void nodeItems();
};

void tst_OdictItem::objectsByKind_data()
{
    QTest::addColumn<uint>("kind");
    QTest::addColumn<eItemType_t>("type");
    QTest::addColumn<eObjectType_t>("expected");

    QTest::newRow("object of std kind") << uint(E_OT_STD) << E_IT_OBJECT << E_OT_STD;
    QTest::newRow("object of value kind") << uint(E_OT_VALUE) << E_IT_OBJECT << E_OT_VALUE;
    QTest::newRow("sub-object of editor kind") << uint(E_OT_EDITOR) << E_IT_SUBOBJECT << E_OT_EDITOR;
    QTest::newRow("object of parameter kind") << uint(E_OT_PARAMETER) << E_IT_OBJECT << E_OT_PARAMETER;
    QTest::newRow("object of unknown kind") << uint(E_OT_UNKNOWN) << E_IT_OBJECT << E_OT_UNKNOWN;
    QTest::newRow("object of kind 5") << 5u << E_IT_OBJECT << E_OT_UNKNOWN;
    QTest::newRow("group ignores the kind") << uint(E_OT_VALUE) << E_IT_GROUP << E_OT_UNKNOWN;
    QTest::newRow("dictionary ignores the kind") << uint(E_OT_EDITOR) << E_IT_DICTIONARY << E_OT_UNKNOWN;
    QTest::newRow("unknown item ignores the kind") << uint(E_OT_STD) << E_IT_UNKNOWN << E_OT_UNKNOWN;
}

void tst_OdictItem::objectsByKind()
{
    QFETCH(uint, kind);
    QFETCH(eItemType_t, type);
    QFETCH(eObjectType_t, expected);

    const COdictItem item(eObjectType_t(kind), type);
    QCOMPARE(item.type(), type);
    QCOMPARE(item.objectType(), expected);
    QCOMPARE(item.hasObject(), expected != E_OT_UNKNOWN);
    // A new object carries the default object name; a plain item has none.
    QCOMPARE(item.name(), item.hasObject() ? COdictObject().name() : QString());
    QVERIFY(!item.refId().isNull());
    if (!item.isObjectItem())
        return;

    // The factory behind it; its clones are made by the argument's dynamic kind, even when handed
    // over as the base class.
    QScopedPointer<COdictObject> created(item.createObject(eObjectType_t(kind)));
    QCOMPARE(!created.isNull(), item.hasObject());
    QVERIFY(!item.createObject(static_cast<const COdictObject *>(nullptr)));
    if (!created)
        return;
    QCOMPARE(created->objectType(), expected);
    created->setName(QStringLiteral("Speed"));
    QScopedPointer<COdictObject> clone(item.createObject(created.data()));
    QVERIFY(clone && clone.data() != created.data());
    QCOMPARE(clone->objectType(), expected);
    QCOMPARE(clone->name(), QStringLiteral("Speed"));
}

void tst_OdictItem::nameFallbacks_data()
{
    QTest::addColumn<eItemType_t>("type");
    QTest::addColumn<eObjectType_t>("kind");
    QTest::addColumn<QString>("names");    // "name|ui name|ui short name" handed to the setters
    QTest::addColumn<QString>("expected"); // the same read back; all empty where the setters refuse

    // Plain items store no short name of their own; an object's names live in the object.
    QTest::newRow("group without ui name") << E_IT_GROUP << E_OT_UNKNOWN << "GROUP||" << "GROUP|GROUP|GROUP";
    QTest::newRow("group with ui name") << E_IT_GROUP << E_OT_UNKNOWN << "GROUP|Gruppe|" << "GROUP|Gruppe|Gruppe";
    QTest::newRow("group, short name") << E_IT_GROUP << E_OT_UNKNOWN << "GROUP|Gruppe|Gr" << "GROUP|Gruppe|Gruppe";
    QTest::newRow("nameless group") << E_IT_GROUP << E_OT_UNKNOWN << "||" << "||";
    QTest::newRow("dictionary") << E_IT_DICTIONARY << E_OT_UNKNOWN << "D|Dict|Di" << "D|Dict|Dict";
    QTest::newRow("object with name only") << E_IT_OBJECT << E_OT_EDITOR << "Speed||" << "Speed|Speed|Speed";
    QTest::newRow("object with ui name") << E_IT_OBJECT << E_OT_VALUE << "Speed|Drehzahl|" << "Speed|Drehzahl|Drehzahl";
    QTest::newRow("object with short name only") << E_IT_OBJECT << E_OT_EDITOR << "Speed||n" << "Speed|Speed|n";
    QTest::newRow("object with all names") << E_IT_SUBOBJECT << E_OT_STD << "Speed|Drehzahl|n" << "Speed|Drehzahl|n";
    QTest::newRow("object without object") << E_IT_OBJECT << E_OT_UNKNOWN << "X|Y|Z" << "||";
    QTest::newRow("sub-object without object") << E_IT_SUBOBJECT << E_OT_UNKNOWN << "X|Y|Z" << "||";
}

void tst_OdictItem::nameFallbacks()
{
    QFETCH(eItemType_t, type);
    QFETCH(eObjectType_t, kind);
    QFETCH(QString, names);
    QFETCH(QString, expected);
    const QStringList in = names.split(QLatin1Char('|'));
    const QStringList out = expected.split(QLatin1Char('|'));

    COdictItem item(kind, type);
    const bool accepted = out.at(0) == in.at(0);
    QCOMPARE(item.setName(in.at(0)), accepted);
    QCOMPARE(item.setUiName(in.at(1)), accepted);
    QCOMPARE(item.setUiShortName(in.at(2)), accepted);
    QCOMPARE(QStringList({item.name(), item.uiName(), item.uiShortName()}), out);
    QCOMPARE(item.uniqueName(), COdictObjectName(out.at(0)));
    if (item.hasObject()) {
        QCOMPARE(item.objectPtr()->name(), in.at(0));
        QCOMPARE(item.objectPtr()->uiShortName(), in.at(2));
    }
}

void tst_OdictItem::typedViews_data()
{
    QTest::addColumn<eObjectType_t>("kind");
    QTest::addColumn<bool>("asValue");
    QTest::addColumn<bool>("asEditor");
    QTest::addColumn<bool>("asParameter");

    // Plain objects pass their base part on to value and parameter objects, never to editor objects.
    QTest::newRow("std") << E_OT_STD << true << false << true;
    QTest::newRow("value") << E_OT_VALUE << true << false << false;
    QTest::newRow("editor") << E_OT_EDITOR << false << true << false;
    QTest::newRow("parameter") << E_OT_PARAMETER << false << false << true;
    QTest::newRow("no object") << E_OT_UNKNOWN << false << false << false;
}

void tst_OdictItem::typedViews()
{
    QFETCH(eObjectType_t, kind);
    QFETCH(bool, asValue);
    QFETCH(bool, asEditor);
    QFETCH(bool, asParameter);

    const COdictItem item = objectItem(kind, QStringLiteral("Speed"));
    const QString unknown = COdictObject().name();
    QCOMPARE(item.toValueObject().name(), asValue ? QStringLiteral("Speed") : unknown);
    QCOMPARE(item.toEditorObject().name(), asEditor ? QStringLiteral("Speed") : unknown);
    QCOMPARE(item.toParameterObject().name(), asParameter ? QStringLiteral("Speed") : unknown);
    QCOMPARE(item.toObject().name(), kind == E_OT_UNKNOWN ? unknown : QStringLiteral("Speed"));

    // The pointer views are strict: only the object's own kind.
    QCOMPARE(item.toValueObjectPtr() != nullptr, kind == E_OT_VALUE);
    QCOMPARE(item.toEditorObjectPtr() != nullptr, kind == E_OT_EDITOR);
    QCOMPARE(item.toParameterObjectPtr() != nullptr, kind == E_OT_PARAMETER);
}

void tst_OdictItem::refIdIsKeptByCopyAndFreshPerConstructor()
{
    const COdictItem items[] = {COdictItem(),
                                COdictItem(),
                                COdictItem(E_OT_EDITOR, E_IT_OBJECT),
                                COdictItem(E_OT_VALUE, E_IT_GROUP),
                                COdictItem(COdictObject()),
                                COdictItem(COdictValueObject()),
                                COdictItem(COdictEditorObject()),
                                COdictItem(COdictParameterObject())};
    QSet<QUuid> seen;
    for (const COdictItem &item : items) {
        QVERIFY(!item.refId().isNull());
        seen.insert(item.refId());
    }
    QCOMPARE(seen.size(), int(std::size(items)));

    // The reference id belongs to the item and travels with copies; the object is copied deeply.
    COdictItem copy(items[2]);
    QCOMPARE(copy.refId(), items[2].refId());
    QVERIFY(copy.objectPtr() != items[2].objectPtr());
    QCOMPARE(copy.objectType(), E_OT_EDITOR);
    QVERIFY(copy.setName(QStringLiteral("Torque")));
    QCOMPARE(items[2].name(), COdictObject().name());
    const COdictItem empty(E_OT_UNKNOWN, E_IT_OBJECT);
    QVERIFY(!COdictItem(empty).hasObject());
}

void tst_OdictItem::assignmentByKind_data()
{
    QTest::addColumn<eObjectType_t>("targetKind");
    QTest::addColumn<eObjectType_t>("sourceKind");

    QTest::newRow("same kind") << E_OT_EDITOR << E_OT_EDITOR;
    QTest::newRow("same kind std") << E_OT_STD << E_OT_STD;
    QTest::newRow("value into editor") << E_OT_EDITOR << E_OT_VALUE;
    QTest::newRow("parameter into nothing") << E_OT_UNKNOWN << E_OT_PARAMETER;
    QTest::newRow("nothing into value") << E_OT_VALUE << E_OT_UNKNOWN;
}

void tst_OdictItem::assignmentByKind()
{
    QFETCH(eObjectType_t, targetKind);
    QFETCH(eObjectType_t, sourceKind);

    COdictItem target = objectItem(targetKind, QStringLiteral("Old"));
    const COdictObject *before = target.objectPtr();
    COdictItem source = objectItem(sourceKind, QStringLiteral("New"));
    source.setType(E_IT_SUBOBJECT);

    target = source;
    QCOMPARE(target.type(), E_IT_SUBOBJECT);
    QCOMPARE(target.refId(), source.refId());
    QCOMPARE(target.objectType(), sourceKind);
    QCOMPARE(target.hasObject(), source.hasObject());
    if (target.hasObject()) {
        QCOMPARE(target.name(), QStringLiteral("New"));
        QVERIFY(target.objectPtr() != source.objectPtr());
    }
    // Of the same kind, the source is assigned into the existing object.
    if (targetKind == sourceKind && targetKind != E_OT_UNKNOWN)
        QCOMPARE(target.objectPtr(), before);
}

void tst_OdictItem::setObject_data()
{
    QTest::addColumn<eObjectType_t>("heldKind");
    QTest::addColumn<eObjectType_t>("argumentKind");
    QTest::addColumn<bool>("asBase"); // handed over as a plain COdictObject
    QTest::addColumn<bool>("accepted");

    QTest::newRow("value onto editor") << E_OT_EDITOR << E_OT_VALUE << false << false;
    QTest::newRow("std onto editor") << E_OT_EDITOR << E_OT_STD << false << false;
    QTest::newRow("editor onto parameter") << E_OT_PARAMETER << E_OT_EDITOR << false << false;
    QTest::newRow("parameter onto value") << E_OT_VALUE << E_OT_PARAMETER << false << false;
    QTest::newRow("editor onto editor") << E_OT_EDITOR << E_OT_EDITOR << false << true;
    QTest::newRow("std onto std") << E_OT_STD << E_OT_STD << false << true;
    QTest::newRow("value onto value") << E_OT_VALUE << E_OT_VALUE << false << true;
    QTest::newRow("parameter onto parameter") << E_OT_PARAMETER << E_OT_PARAMETER << false << true;
    QTest::newRow("value onto nothing") << E_OT_UNKNOWN << E_OT_VALUE << false << true;
    QTest::newRow("std onto nothing") << E_OT_UNKNOWN << E_OT_STD << false << true;
    // As the base class only the base part is assigned into a held object; an item without
    // object takes a copy of the argument's dynamic kind.
    QTest::newRow("editor as base onto editor") << E_OT_EDITOR << E_OT_EDITOR << true << true;
    QTest::newRow("editor as base onto nothing") << E_OT_UNKNOWN << E_OT_EDITOR << true << true;
}

void tst_OdictItem::setObject()
{
    QFETCH(eObjectType_t, heldKind);
    QFETCH(eObjectType_t, argumentKind);
    QFETCH(bool, asBase);
    QFETCH(bool, accepted);

    COdictItem item = objectItem(heldKind, QStringLiteral("Held"));
    if (COdictEditorObject *editor = item.toEditorObjectPtr())
        editor->setFwVariablename(QStringLiteral("g_held"));
    const COdictObject *before = item.objectPtr();
    QScopedPointer<COdictObject> argument(namedObject(argumentKind, QStringLiteral("Given")));
    if (argumentKind == E_OT_EDITOR)
        static_cast<COdictEditorObject *>(argument.data())->setFwVariablename(QStringLiteral("g_given"));

    bool result = false;
    if (asBase || argumentKind == E_OT_STD)
        result = item.setObject(*argument);
    else if (argumentKind == E_OT_VALUE)
        result = item.setObject(*static_cast<COdictValueObject *>(argument.data()));
    else if (argumentKind == E_OT_EDITOR)
        result = item.setObject(*static_cast<COdictEditorObject *>(argument.data()));
    else
        result = item.setObject(*static_cast<COdictParameterObject *>(argument.data()));
    QCOMPARE(result, accepted);
    QCOMPARE(item.type(), E_IT_OBJECT);
    if (!accepted) {
        QCOMPARE(item.objectPtr(), before);
        QCOMPARE(item.objectType(), heldKind);
        QCOMPARE(item.name(), QStringLiteral("Held"));
        if (heldKind == E_OT_EDITOR)
            QCOMPARE(item.toEditorObject().fwVariablename(), QStringLiteral("g_held"));
        return;
    }
    QCOMPARE(item.objectType(), argumentKind);
    QCOMPARE(item.name(), QStringLiteral("Given"));
    if (heldKind != E_OT_UNKNOWN)
        QCOMPARE(item.objectPtr(), before); // assigned in place
    if (argumentKind == E_OT_EDITOR) {
        const bool basePartOnly = asBase && heldKind == E_OT_EDITOR;
        QCOMPARE(item.toEditorObject().fwVariablename(), QLatin1String(basePartOnly ? "g_held" : "g_given"));
    }
}

void tst_OdictItem::insertChildBounds_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("inserted");
    QTest::addColumn<QString>("names");

    QTest::newRow("front") << 0 << true << "x,a,b,c,d";
    QTest::newRow("middle") << 2 << true << "a,b,x,c,d";
    QTest::newRow("at the count appends") << 4 << true << "a,b,c,d,x";
    QTest::newRow("past the count") << 5 << false << "a,b,c,d";
    QTest::newRow("negative") << -1 << false << "a,b,c,d";
}

void tst_OdictItem::insertChildBounds()
{
    QFETCH(int, index);
    QFETCH(bool, inserted);
    QFETCH(QString, names);

    QScopedPointer<COdictNode> parent(parentOfFour());
    QScopedPointer<COdictNode> child(namedNode(QStringLiteral("x")));
    QCOMPARE(parent->insertChild(child.data(), index), inserted);
    QCOMPARE(childNames(parent.data()), names);
    if (inserted) {
        QCOMPARE(child->parent(), parent.data());
        QCOMPARE(child->row(), index);
        child.take(); // owned by the parent now
    } else {
        QVERIFY(!child->parent());
    }
    QVERIFY(!parent->insertChild(nullptr, 0));
}

void tst_OdictItem::takeChildDetachesWithoutDeleting()
{
    QScopedPointer<COdictNode> parent(parentOfFour());
    QScopedPointer<COdictNode> stranger(namedNode(QStringLiteral("x")));
    QVERIFY(!parent->takeChild(stranger.data()));
    QVERIFY(!parent->removeChild(stranger.data()));
    QCOMPARE(stranger->row(), 0); // detached
    QVERIFY(!parent->child(-1));
    QVERIFY(!parent->child(4));

    QScopedPointer<COdictNode> taken(parent->takeChild(parent->child(1)));
    QVERIFY(taken);
    QVERIFY(!taken->parent());
    QCOMPARE(taken->dataRef().name(), QStringLiteral("b"));
    QCOMPARE(taken->row(), 0);
    QCOMPARE(childNames(parent.data()), QStringLiteral("a,c,d"));
    QCOMPARE(parent->child(1)->row(), 1);
    // A parent link to a node that does not list it gives row 0 as well.
    taken->setParent(parent.data());
    QCOMPARE(taken->row(), 0);
    taken->setParent(nullptr);

    QVERIFY(parent->removeChild(parent->child(0)));
    QCOMPARE(childNames(parent.data()), QStringLiteral("c,d"));
    QVERIFY(parent->removeAllChildren());
    QCOMPARE(parent->childCount(), 0);
}

void tst_OdictItem::removeChildren_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("count"); // -1: removeChild(start)
    QTest::addColumn<bool>("removed");
    QTest::addColumn<QString>("names");

    QTest::newRow("middle two") << 1 << 2 << true << "a,d";
    QTest::newRow("all") << 0 << 4 << true << "";
    QTest::newRow("none") << 4 << 0 << true << "a,b,c,d";
    QTest::newRow("past the end") << 3 << 2 << false << "a,b,c,d";
    QTest::newRow("negative start") << -1 << 1 << false << "a,b,c,d";
    QTest::newRow("single") << 2 << -1 << true << "a,b,d";
    QTest::newRow("single past the end") << 4 << -1 << false << "a,b,c,d";
    QTest::newRow("single negative") << -1 << -1 << false << "a,b,c,d";
}

void tst_OdictItem::removeChildren()
{
    QFETCH(int, start);
    QFETCH(int, count);
    QFETCH(bool, removed);
    QFETCH(QString, names);

    QScopedPointer<COdictNode> parent(parentOfFour());
    QCOMPARE(count < 0 ? parent->removeChild(start) : parent->removeChildren(start, count), removed);
    QCOMPARE(childNames(parent.data()), names);
}

void tst_OdictItem::cloneIsDeepWithParentsSet()
{
    QScopedPointer<COdictNode> source(parentOfFour());
    source->child(1)->appendChild(namedNode(QStringLiteral("b1")));
    source->child(1)->appendChild(new COdictNode); // a node without item
    COdictNode *inner = source->child(1);

    QScopedPointer<COdictNode> clone(inner->clone());
    QVERIFY(!clone->parent());
    QCOMPARE(clone->dataRef().refId(), inner->dataRef().refId());
    QCOMPARE(childNames(clone.data()), QStringLiteral("b1,"));
    for (int i = 0; i < clone->childCount(); ++i) {
        QVERIFY(clone->child(i) != inner->child(i));
        QCOMPARE(clone->child(i)->parent(), clone.data());
        QCOMPARE(clone->child(i)->dataRef().refId(), inner->child(i)->dataRef().refId());
    }
    // The clone of an item-less node carries a copy of the default item of its own.
    QVERIFY(clone->child(1)->hasData());
    QVERIFY(clone->child(1)->dataPtr() != &COdictItem::sharedDefaultItem());

    // Changes to the clone stay there.
    QVERIFY(clone->child(0)->dataPtr()->setName(QStringLiteral("changed")));
    QCOMPARE(inner->child(0)->dataRef().name(), QStringLiteral("b1"));
    clone->removeAllChildren();
    QCOMPARE(inner->childCount(), 2);
}

void tst_OdictItem::cloneAndDeleteVeryDeepTree()
{
    // A chain far deeper than any recursion could handle on a default stack.
    constexpr int depth = 200000;
    auto *root = new COdictNode(COdictItem(E_OT_STD, E_IT_GROUP));
    COdictNode *tip = root;
    for (int i = 0; i < depth; ++i) {
        auto *next = new COdictNode;
        tip->appendChild(next);
        tip = next;
    }
    COdictNode *copy = root->clone();
    delete root;
    int levels = 0;
    for (const COdictNode *node = copy; node->childCount() == 1; node = node->child(0))
        ++levels;
    QCOMPARE(levels, depth);
    delete copy;
}

void tst_OdictItem::nodeItems()
{
    // Nodes without an item answer with the one shared default item.
    COdictNode empty;
    const COdictNode other;
    QVERIFY(!empty.hasData());
    QCOMPARE(&empty.dataRef(), &COdictItem::sharedDefaultItem());
    QCOMPARE(&other.dataRef(), &COdictItem::sharedDefaultItem());
    QCOMPARE(empty.data().type(), E_IT_UNKNOWN);
    QVERIFY(!empty.dataRef().hasObject());

    // setData() assigns into an existing item, and gives an item-less node a copy of its own.
    COdictNode node(objectItem(E_OT_VALUE, QStringLiteral("Old")));
    const COdictItem *held = node.dataPtr();
    const COdictItem replacement = objectItem(E_OT_VALUE, QStringLiteral("New"));
    node.setData(replacement);
    QCOMPARE(node.dataPtr(), held);
    QCOMPARE(node.dataRef().refId(), replacement.refId());
    QCOMPARE(node.data().name(), QStringLiteral("New"));
    empty.setData(replacement);
    QVERIFY(empty.hasData());
    QVERIFY(empty.dataPtr() != &replacement);
    QCOMPARE(empty.dataRef().refId(), replacement.refId());
    QCOMPARE(&other.dataRef(), &COdictItem::sharedDefaultItem());
}

QTEST_GUILESS_MAIN(tst_OdictItem)
#include "tst_odictitem.moc"

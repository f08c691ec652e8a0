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

constexpr uint none = 0xFFFFFFFFu;

// A named object of \a kind, owned by the caller.
COdictObject *namedObject(eObjectType_t kind, const QString &name, const QString &uiName = QString(),
                          const QString &uiShortName = QString())
{
    COdictObject *object = COdictItem().createObject(kind);
    if (object) {
        object->setId(0x2000u);
        object->setName(name);
        object->setUiName(uiName);
        object->setUiShortName(uiShortName);
    }
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
    void constructorMakesObjectForObjectItemsOnly_data();
    void constructorMakesObjectForObjectItemsOnly();
    void factory_data();
    void factory();
    void nameFallbacks_data();
    void nameFallbacks();
    void setterResults_data();
    void setterResults();
    void typedViews_data();
    void typedViews();
    void refIdIsKeptByCopyAndFreshPerConstructor();
    void copyIsDeep();
    void assignmentByKind_data();
    void assignmentByKind();
    void setObject_data();
    void setObject();
    void setObjectAsBaseKeepsDerivedFields();

    void insertChildBounds_data();
    void insertChildBounds();
    void rowOfDetachedAndTakenNodes();
    void takeChildDetachesWithoutDeleting();
    void removeChildren_data();
    void removeChildren();
    void removeSingleChild();
    void cloneIsDeepWithParentsSet();
    void cloneAndDeleteVeryDeepTree();
    void setDataAssignsIntoExistingItem();
    void nodeWithoutItemUsesSharedDefault();
};

void tst_OdictItem::constructorMakesObjectForObjectItemsOnly_data()
{
    QTest::addColumn<eObjectType_t>("kind");
    QTest::addColumn<eItemType_t>("type");
    QTest::addColumn<eObjectType_t>("expected");

    QTest::newRow("object of value kind") << E_OT_VALUE << E_IT_OBJECT << E_OT_VALUE;
    QTest::newRow("sub-object of editor kind") << E_OT_EDITOR << E_IT_SUBOBJECT << E_OT_EDITOR;
    QTest::newRow("object of std kind") << E_OT_STD << E_IT_OBJECT << E_OT_STD;
    QTest::newRow("object of parameter kind") << E_OT_PARAMETER << E_IT_OBJECT << E_OT_PARAMETER;
    QTest::newRow("object of unknown kind") << E_OT_UNKNOWN << E_IT_OBJECT << E_OT_UNKNOWN;
    QTest::newRow("object of kind 7") << eObjectType_t(7) << E_IT_OBJECT << E_OT_UNKNOWN;
    QTest::newRow("group ignores the kind") << E_OT_VALUE << E_IT_GROUP << E_OT_UNKNOWN;
    QTest::newRow("dictionary ignores the kind") << E_OT_EDITOR << E_IT_DICTIONARY << E_OT_UNKNOWN;
    QTest::newRow("unknown item ignores the kind") << E_OT_STD << E_IT_UNKNOWN << E_OT_UNKNOWN;
}

void tst_OdictItem::constructorMakesObjectForObjectItemsOnly()
{
    QFETCH(eObjectType_t, kind);
    QFETCH(eItemType_t, type);
    QFETCH(eObjectType_t, expected);

    const COdictItem item(kind, type);
    QCOMPARE(item.type(), type);
    QCOMPARE(item.getType(), type);
    QCOMPARE(item.objectType(), expected);
    QCOMPARE(item.getObjectType(), expected);
    QCOMPARE(item.hasObject(), expected != E_OT_UNKNOWN);
    // A new object carries the default object name; a plain item has none.
    QCOMPARE(item.name(), item.hasObject() ? COdictObject().name() : QString());
    QVERIFY(!item.refId().isNull());
}

void tst_OdictItem::factory_data()
{
    QTest::addColumn<uint>("kind");
    QTest::addColumn<bool>("made");

    QTest::newRow("unknown") << 0u << false;
    QTest::newRow("std") << 1u << true;
    QTest::newRow("value") << 2u << true;
    QTest::newRow("editor") << 3u << true;
    QTest::newRow("parameter") << 4u << true;
    QTest::newRow("above the kinds") << 5u << false;
}

void tst_OdictItem::factory()
{
    QFETCH(uint, kind);
    QFETCH(bool, made);

    const COdictItem item;
    QScopedPointer<COdictObject> created(item.createObject(eObjectType_t(kind)));
    QCOMPARE(!created.isNull(), made);
    if (!made)
        return;
    QCOMPARE(uint(created->objectType()), kind);

    // The clone is made by the argument's dynamic kind, even when handed over as the base class.
    created->setName(QStringLiteral("Speed"));
    QScopedPointer<COdictObject> clone(item.createObject(created.data()));
    QVERIFY(clone);
    QVERIFY(clone.data() != created.data());
    QCOMPARE(uint(clone->objectType()), kind);
    QCOMPARE(clone->name(), QStringLiteral("Speed"));
    QVERIFY(!item.createObject(static_cast<const COdictObject *>(nullptr)));
}

void tst_OdictItem::nameFallbacks_data()
{
    QTest::addColumn<bool>("isObject");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("uiName");
    QTest::addColumn<QString>("uiShortName");
    QTest::addColumn<QString>("expectedUiName");
    QTest::addColumn<QString>("expectedShortName");

    const QString e;
    QTest::newRow("group without ui name") << false << "GROUP" << e << e << "GROUP" << "GROUP";
    QTest::newRow("group with ui name") << false << "GROUP" << "Gruppe" << e << "Gruppe" << "Gruppe";
    QTest::newRow("group stores no short name") << false << "GROUP" << "Gruppe" << "Gr" << "Gruppe" << "Gruppe";
    QTest::newRow("nameless group") << false << e << e << e << e << e;
    QTest::newRow("object with name only") << true << "Speed" << e << e << "Speed" << "Speed";
    QTest::newRow("object with ui name") << true << "Speed" << "Drehzahl" << e << "Drehzahl" << "Drehzahl";
    QTest::newRow("object with short name only") << true << "Speed" << e << "n" << "Speed" << "n";
    QTest::newRow("object with all names") << true << "Speed" << "Drehzahl" << "n" << "Drehzahl" << "n";
}

void tst_OdictItem::nameFallbacks()
{
    QFETCH(bool, isObject);
    QFETCH(QString, name);
    QFETCH(QString, uiName);
    QFETCH(QString, uiShortName);
    QFETCH(QString, expectedUiName);
    QFETCH(QString, expectedShortName);

    COdictItem item(E_OT_EDITOR, isObject ? E_IT_OBJECT : E_IT_GROUP);
    QVERIFY(item.setName(name));
    QVERIFY(item.setUiName(uiName));
    QVERIFY(item.setUiShortName(uiShortName));

    QCOMPARE(item.name(), name);
    QCOMPARE(item.getName(), name);
    QCOMPARE(item.uiName(), expectedUiName);
    QCOMPARE(item.getUiName(), expectedUiName);
    QCOMPARE(item.uiShortName(), expectedShortName);
    QCOMPARE(item.getUiShortName(), expectedShortName);
    QCOMPARE(item.uniqueName(), COdictObjectName(name));
    QCOMPARE(item.uName(), COdictObjectName(name));
    if (isObject) {
        // The names live in the object, not in the item.
        QCOMPARE(item.objectPtr()->name(), name);
        QCOMPARE(item.objectPtr()->uiShortName(), uiShortName);
    }
}

void tst_OdictItem::setterResults_data()
{
    QTest::addColumn<eItemType_t>("type");
    QTest::addColumn<eObjectType_t>("kind");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("object without object") << E_IT_OBJECT << E_OT_UNKNOWN << false;
    QTest::newRow("sub-object without object") << E_IT_SUBOBJECT << E_OT_UNKNOWN << false;
    QTest::newRow("object with object") << E_IT_OBJECT << E_OT_VALUE << true;
    QTest::newRow("group") << E_IT_GROUP << E_OT_UNKNOWN << true;
    QTest::newRow("dictionary") << E_IT_DICTIONARY << E_OT_UNKNOWN << true;
}

void tst_OdictItem::setterResults()
{
    QFETCH(eItemType_t, type);
    QFETCH(eObjectType_t, kind);
    QFETCH(bool, accepted);

    COdictItem item(kind, type);
    QCOMPARE(item.setName(QStringLiteral("X")), accepted);
    QCOMPARE(item.setUiName(QStringLiteral("Y")), accepted);
    QCOMPARE(item.setUiShortName(QStringLiteral("Z")), accepted);
    QCOMPARE(item.name(), accepted ? QStringLiteral("X") : QString());
    QCOMPARE(item.uiName(), accepted ? QStringLiteral("Y") : QString());
    const bool plain = type != E_IT_OBJECT && type != E_IT_SUBOBJECT;
    QCOMPARE(item.uiShortName(), !accepted ? QString() : plain ? QStringLiteral("Y") : QStringLiteral("Z"));
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
    QCOMPARE(item.toObjectPtr(), item.objectPtr());
    QCOMPARE(item.getObjectPtr(), item.objectPtr());
}

void tst_OdictItem::refIdIsKeptByCopyAndFreshPerConstructor()
{
    const COdictValueObject valueObject;
    const COdictItem items[] = {COdictItem(),
                                COdictItem(),
                                COdictItem(E_OT_VALUE, E_IT_OBJECT),
                                COdictItem(E_OT_VALUE, E_IT_GROUP),
                                COdictItem(COdictObject()),
                                COdictItem(valueObject),
                                COdictItem(COdictEditorObject()),
                                COdictItem(COdictParameterObject())};
    QSet<QUuid> seen;
    for (const COdictItem &item : items) {
        QVERIFY(!item.refId().isNull());
        seen.insert(item.refId());
    }
    QCOMPARE(seen.size(), int(std::size(items)));

    // The reference id belongs to the item and travels with copies and assignments.
    const COdictItem copy(items[2]);
    QCOMPARE(copy.refId(), items[2].refId());
    COdictItem assigned;
    assigned = items[5];
    QCOMPARE(assigned.refId(), items[5].refId());
}

void tst_OdictItem::copyIsDeep()
{
    const COdictItem source = objectItem(E_OT_EDITOR, QStringLiteral("Speed"));
    COdictItem copy(source);
    QVERIFY(copy.objectPtr() != source.objectPtr());
    QCOMPARE(copy.objectType(), E_OT_EDITOR);
    QVERIFY(copy.setName(QStringLiteral("Torque")));
    QCOMPARE(source.name(), QStringLiteral("Speed"));

    const COdictItem empty(E_OT_UNKNOWN, E_IT_OBJECT);
    const COdictItem emptyCopy(empty);
    QVERIFY(!emptyCopy.hasObject());
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
    QTest::addColumn<bool>("accepted");

    QTest::newRow("value onto editor") << E_OT_EDITOR << E_OT_VALUE << false;
    QTest::newRow("std onto editor") << E_OT_EDITOR << E_OT_STD << false;
    QTest::newRow("editor onto parameter") << E_OT_PARAMETER << E_OT_EDITOR << false;
    QTest::newRow("parameter onto value") << E_OT_VALUE << E_OT_PARAMETER << false;
    QTest::newRow("editor onto editor") << E_OT_EDITOR << E_OT_EDITOR << true;
    QTest::newRow("std onto std") << E_OT_STD << E_OT_STD << true;
    QTest::newRow("value onto value") << E_OT_VALUE << E_OT_VALUE << true;
    QTest::newRow("parameter onto parameter") << E_OT_PARAMETER << E_OT_PARAMETER << true;
    QTest::newRow("value onto nothing") << E_OT_UNKNOWN << E_OT_VALUE << true;
    QTest::newRow("std onto nothing") << E_OT_UNKNOWN << E_OT_STD << true;
}

void tst_OdictItem::setObject()
{
    QFETCH(eObjectType_t, heldKind);
    QFETCH(eObjectType_t, argumentKind);
    QFETCH(bool, accepted);

    COdictItem item = objectItem(heldKind, QStringLiteral("Held"));
    if (COdictEditorObject *editor = item.toEditorObjectPtr())
        editor->setFwVariablename(QStringLiteral("g_held"));
    const COdictObject *before = item.objectPtr();
    QScopedPointer<COdictObject> argument(namedObject(argumentKind, QStringLiteral("Given")));

    bool result = false;
    switch (argumentKind) {
    case E_OT_VALUE:
        result = item.setObject(*static_cast<COdictValueObject *>(argument.data()));
        break;
    case E_OT_EDITOR:
        result = item.setObject(*static_cast<COdictEditorObject *>(argument.data()));
        break;
    case E_OT_PARAMETER:
        result = item.setObject(*static_cast<COdictParameterObject *>(argument.data()));
        break;
    default:
        result = item.setObject(*argument);
        break;
    }
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
}

void tst_OdictItem::setObjectAsBaseKeepsDerivedFields()
{
    // Handed over as a plain object, only the base part is assigned into a held editor object.
    COdictItem item = objectItem(E_OT_EDITOR, QStringLiteral("Held"));
    item.toEditorObjectPtr()->setFwVariablename(QStringLiteral("g_held"));
    COdictEditorObject other;
    other.setName(QStringLiteral("Given"));
    other.setFwVariablename(QStringLiteral("g_given"));

    QVERIFY(item.setObject(static_cast<const COdictObject &>(other)));
    QCOMPARE(item.name(), QStringLiteral("Given"));
    QCOMPARE(item.toEditorObject().fwVariablename(), QStringLiteral("g_held"));

    // An item without object takes a copy of the argument's dynamic kind.
    COdictItem empty(E_OT_UNKNOWN, E_IT_OBJECT);
    QVERIFY(empty.setObject(static_cast<const COdictObject &>(other)));
    QCOMPARE(empty.objectType(), E_OT_EDITOR);
    QCOMPARE(empty.toEditorObject().fwVariablename(), QStringLiteral("g_given"));
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

void tst_OdictItem::rowOfDetachedAndTakenNodes()
{
    QScopedPointer<COdictNode> detached(namedNode(QStringLiteral("x")));
    QCOMPARE(detached->row(), 0);

    QScopedPointer<COdictNode> parent(parentOfFour());
    QScopedPointer<COdictNode> taken(parent->takeChild(parent->child(3)));
    QCOMPARE(taken->row(), 0);
    // A parent link to a node that does not list it gives 0 as well.
    taken->setParent(parent.data());
    QCOMPARE(taken->row(), 0);
    taken->setParent(nullptr);
}

void tst_OdictItem::takeChildDetachesWithoutDeleting()
{
    QScopedPointer<COdictNode> parent(parentOfFour());
    QScopedPointer<COdictNode> stranger(namedNode(QStringLiteral("x")));
    QVERIFY(!parent->takeChild(stranger.data()));

    QScopedPointer<COdictNode> taken(parent->takeChild(parent->child(1)));
    QVERIFY(taken);
    QVERIFY(!taken->parent());
    QCOMPARE(taken->dataRef().name(), QStringLiteral("b"));
    QCOMPARE(childNames(parent.data()), QStringLiteral("a,c,d"));
    QCOMPARE(parent->child(1)->row(), 1);
}

void tst_OdictItem::removeChildren_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("removed");
    QTest::addColumn<QString>("names");

    QTest::newRow("middle two") << 1 << 2 << true << "a,d";
    QTest::newRow("all") << 0 << 4 << true << "";
    QTest::newRow("none") << 4 << 0 << true << "a,b,c,d";
    QTest::newRow("past the end") << 3 << 2 << false << "a,b,c,d";
    QTest::newRow("negative start") << -1 << 1 << false << "a,b,c,d";
}

void tst_OdictItem::removeChildren()
{
    QFETCH(int, start);
    QFETCH(int, count);
    QFETCH(bool, removed);
    QFETCH(QString, names);

    QScopedPointer<COdictNode> parent(parentOfFour());
    QCOMPARE(parent->removeChildren(start, count), removed);
    QCOMPARE(childNames(parent.data()), names);
}

void tst_OdictItem::removeSingleChild()
{
    QScopedPointer<COdictNode> parent(parentOfFour());
    QScopedPointer<COdictNode> stranger(namedNode(QStringLiteral("x")));
    QVERIFY(!parent->removeChild(stranger.data()));
    QVERIFY(!parent->removeChild(4));
    QVERIFY(!parent->removeChild(-1));
    QVERIFY(!parent->child(-1));
    QVERIFY(!parent->child(4));
    QVERIFY(parent->removeChild(parent->child(0)));
    QVERIFY(parent->removeChild(2));
    QCOMPARE(childNames(parent.data()), QStringLiteral("b,c"));
    QVERIFY(parent->removeAllChildren());
    QCOMPARE(parent->childCount(), 0);
}

void tst_OdictItem::cloneIsDeepWithParentsSet()
{
    QScopedPointer<COdictNode> source(parentOfFour());
    source->child(1)->appendChild(namedNode(QStringLiteral("b1")));
    source->child(1)->appendChild(new COdictNode); // a node without item
    COdictNode *inner = source->child(1);

    QScopedPointer<COdictNode> clone(inner->clone());
    QVERIFY(!clone->parent());
    QCOMPARE(clone->dataRef().name(), QStringLiteral("b"));
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

void tst_OdictItem::setDataAssignsIntoExistingItem()
{
    COdictNode node(objectItem(E_OT_VALUE, QStringLiteral("Old")));
    const COdictItem *held = node.dataPtr();
    const COdictItem replacement = objectItem(E_OT_VALUE, QStringLiteral("New"));

    node.setData(replacement);
    QCOMPARE(node.dataPtr(), held);
    QCOMPARE(node.dataRef().refId(), replacement.refId());
    QCOMPARE(node.data().name(), QStringLiteral("New"));

    COdictNode empty;
    QVERIFY(!empty.hasData());
    empty.setData(replacement);
    QVERIFY(empty.hasData());
    QVERIFY(empty.dataPtr() != &replacement);
    QCOMPARE(empty.dataRef().refId(), replacement.refId());
}

void tst_OdictItem::nodeWithoutItemUsesSharedDefault()
{
    const COdictNode first;
    const COdictNode second;
    QVERIFY(!first.dataPtr());
    QCOMPARE(&first.dataRef(), &second.dataRef());
    QCOMPARE(&first.dataRef(), &COdictItem::sharedDefaultItem());
    QCOMPARE(first.data().type(), E_IT_UNKNOWN);
    QCOMPARE(first.data().refId(), COdictItem::sharedDefaultItem().refId());
    QVERIFY(!first.dataRef().hasObject());
    QCOMPARE(first.dataRef().uniqueName().subId(), none);
}

QTEST_GUILESS_MAIN(tst_OdictItem)
#include "tst_odictitem.moc"

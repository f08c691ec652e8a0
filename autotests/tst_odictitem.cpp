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
    void objectsByKind_data()
    {
        QTest::addColumn<uint>("kind");
        QTest::addColumn<eItemType_t>("type");
        QTest::addColumn<eObjectType_t>("expected");

        QTest::newRow("object of std kind") << uint(E_OT_STD) << E_IT_OBJECT << E_OT_STD;
        QTest::newRow("object of value kind") << uint(E_OT_VALUE) << E_IT_OBJECT << E_OT_VALUE;
        QTest::newRow("sub-object of editor kind") << uint(E_OT_EDITOR) << E_IT_SUBOBJECT << E_OT_EDITOR;
        QTest::newRow("object of parameter kind") << uint(E_OT_PARAMETER) << E_IT_OBJECT << E_OT_PARAMETER;
        QTest::newRow("object of kind 5") << 5u << E_IT_OBJECT << E_OT_UNKNOWN;
        QTest::newRow("group ignores the kind") << uint(E_OT_VALUE) << E_IT_GROUP << E_OT_UNKNOWN;
        QTest::newRow("unknown item ignores the kind") << uint(E_OT_STD) << E_IT_UNKNOWN << E_OT_UNKNOWN;
    }

    void objectsByKind()
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
        QVERIFY(!item.createObject(static_cast<const COdictObject *>(nullptr)));
        if (!item.hasObject())
            return;

        // The factory behind it; its clones are made by the argument's dynamic kind, even when handed
        // over as the base class.
        QScopedPointer<COdictObject> created(item.createObject(eObjectType_t(kind)));
        created->setName(QStringLiteral("Speed"));
        QScopedPointer<COdictObject> clone(item.createObject(created.data()));
        QVERIFY(clone && clone.data() != created.data());
        QCOMPARE(clone->objectType(), expected);
        QCOMPARE(clone->name(), QStringLiteral("Speed"));
    }

    void nameFallbacks_data()
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

    void nameFallbacks()
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

    void typedViews_data()
    {
        QTest::addColumn<eObjectType_t>("kind");
        QTest::addColumn<QString>("named"); // the by-value views (object, value, editor, parameter) that carry the name

        // Plain objects pass their base part on to value and parameter objects, never to editor objects.
        QTest::newRow("std") << E_OT_STD << "ov-p";
        QTest::newRow("value") << E_OT_VALUE << "ov--";
        QTest::newRow("editor") << E_OT_EDITOR << "o-e-";
        QTest::newRow("parameter") << E_OT_PARAMETER << "o--p";
        QTest::newRow("no object") << E_OT_UNKNOWN << "----";
    }

    void typedViews()
    {
        QFETCH(eObjectType_t, kind);
        QFETCH(QString, named);

        const COdictItem item = objectItem(kind, QStringLiteral("Speed"));
        const QString views[] = {item.toObject().name(), item.toValueObject().name(), item.toEditorObject().name(),
                                 item.toParameterObject().name()};
        QString actual;
        for (int i = 0; i < 4; ++i)
            actual += views[i] == QLatin1String("Speed") ? QLatin1Char("ovep"[i]) : QLatin1Char('-');
        QCOMPARE(actual, named);
        // The pointer views are strict: only the object's own kind.
        QCOMPARE(item.toValueObjectPtr() != nullptr, kind == E_OT_VALUE);
        QCOMPARE(item.toEditorObjectPtr() != nullptr, kind == E_OT_EDITOR);
        QCOMPARE(item.toParameterObjectPtr() != nullptr, kind == E_OT_PARAMETER);
    }

    void refIdIsKeptByCopyAndFreshPerConstructor()
    {
        const COdictItem items[] = {COdictItem(), COdictItem(), COdictItem(E_OT_EDITOR, E_IT_OBJECT),
                                    COdictItem(E_OT_VALUE, E_IT_GROUP), COdictItem(COdictObject()),
                                    COdictItem(COdictValueObject()), COdictItem(COdictEditorObject()),
                                    COdictItem(COdictParameterObject())};
        QSet<QUuid> seen;
        for (const COdictItem &item : items) {
            seen.insert(item.refId());
            QCOMPARE(item.refId().version(), QUuid::Random); // a random UUID, as QUuid::createUuid makes
            QCOMPARE(item.refId().variant(), QUuid::DCE);
        }
        QVERIFY(!seen.contains(QUuid()));
        QCOMPARE(seen.size(), int(std::size(items)));

        // The reference id belongs to the item and travels with copies; the object is copied deeply.
        COdictItem copy(items[2]);
        QCOMPARE(copy.refId(), items[2].refId());
        QVERIFY(copy.objectPtr() != items[2].objectPtr());
        QCOMPARE(copy.objectType(), E_OT_EDITOR);
        QVERIFY(copy.setName(QStringLiteral("Torque")));
        QCOMPARE(items[2].name(), COdictObject().name());
        QVERIFY(!COdictItem(items[0]).hasObject());
    }

    void assignmentByKind_data()
    {
        QTest::addColumn<eObjectType_t>("targetKind");
        QTest::addColumn<eObjectType_t>("sourceKind");

        QTest::newRow("same kind") << E_OT_EDITOR << E_OT_EDITOR;
        QTest::newRow("same kind std") << E_OT_STD << E_OT_STD;
        QTest::newRow("value into editor") << E_OT_EDITOR << E_OT_VALUE;
        QTest::newRow("parameter into nothing") << E_OT_UNKNOWN << E_OT_PARAMETER;
        QTest::newRow("nothing into value") << E_OT_VALUE << E_OT_UNKNOWN;
    }

    void assignmentByKind()
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
        QCOMPARE(target.name(), source.name());
        QVERIFY(!target.hasObject() || target.objectPtr() != source.objectPtr());
        // Of the same kind, the source is assigned into the existing object.
        if (targetKind == sourceKind && targetKind != E_OT_UNKNOWN)
            QCOMPARE(target.objectPtr(), before);
    }

    void setObject_data()
    {
        QTest::addColumn<eObjectType_t>("heldKind");
        QTest::addColumn<eObjectType_t>("argumentKind");
        QTest::addColumn<bool>("asBase"); // handed over as a plain COdictObject
        QTest::addColumn<QString>("after"); // name and firmware variable read back; "Held" where refused

        QTest::newRow("value onto editor") << E_OT_EDITOR << E_OT_VALUE << false << "Held g_held";
        QTest::newRow("std onto editor") << E_OT_EDITOR << E_OT_STD << false << "Held g_held";
        QTest::newRow("editor onto parameter") << E_OT_PARAMETER << E_OT_EDITOR << false << "Held ";
        QTest::newRow("editor onto editor") << E_OT_EDITOR << E_OT_EDITOR << false << "Given g_given";
        QTest::newRow("std onto std") << E_OT_STD << E_OT_STD << false << "Given ";
        QTest::newRow("value onto value") << E_OT_VALUE << E_OT_VALUE << false << "Given ";
        QTest::newRow("parameter onto parameter") << E_OT_PARAMETER << E_OT_PARAMETER << false << "Given ";
        QTest::newRow("value onto nothing") << E_OT_UNKNOWN << E_OT_VALUE << false << "Given ";
        // As the base class only the base part is assigned into a held object; an item without
        // object takes a copy of the argument's dynamic kind.
        QTest::newRow("editor as base onto editor") << E_OT_EDITOR << E_OT_EDITOR << true << "Given g_held";
        QTest::newRow("editor as base onto nothing") << E_OT_UNKNOWN << E_OT_EDITOR << true << "Given g_given";
    }

    void setObject()
    {
        QFETCH(eObjectType_t, heldKind);
        QFETCH(eObjectType_t, argumentKind);
        QFETCH(bool, asBase);
        QFETCH(QString, after);

        COdictItem item = objectItem(heldKind, QStringLiteral("Held"));
        if (COdictEditorObject *editor = item.toEditorObjectPtr())
            editor->setFwVariablename(QStringLiteral("g_held"));
        const COdictObject *before = item.objectPtr();
        QScopedPointer<COdictObject> argument(item.createObject(argumentKind));
        argument->setName(QStringLiteral("Given"));
        if (auto *editor = dynamic_cast<COdictEditorObject *>(argument.data()))
            editor->setFwVariablename(QStringLiteral("g_given"));

        const COdictObject &arg = *argument;
        const bool accepted = asBase || argumentKind == E_OT_STD ? item.setObject(arg)
            : argumentKind == E_OT_VALUE  ? item.setObject(static_cast<const COdictValueObject &>(arg))
            : argumentKind == E_OT_EDITOR ? item.setObject(static_cast<const COdictEditorObject &>(arg))
                                          : item.setObject(static_cast<const COdictParameterObject &>(arg));
        QCOMPARE(accepted, after.startsWith(QLatin1String("Given")));
        QCOMPARE(item.objectType(), accepted ? argumentKind : heldKind);
        if (heldKind != E_OT_UNKNOWN)
            QCOMPARE(item.objectPtr(), before); // assigned in place, or left alone
        QCOMPARE(item.name() + QLatin1Char(' ') + item.toEditorObject().fwVariablename(), after);
    }

    void childEdits_data()
    {
        QTest::addColumn<QString>("edit"); // "insert <row>", "remove <row>" or "remove <start> <count>"
        QTest::addColumn<bool>("done");
        QTest::addColumn<QString>("names"); // the children after the edit of a,b,c,d

        QTest::newRow("insert at the front") << "insert 0" << true << "x,a,b,c,d";
        QTest::newRow("insert in the middle") << "insert 2" << true << "a,b,x,c,d";
        QTest::newRow("insert at the count appends") << "insert 4" << true << "a,b,c,d,x";
        QTest::newRow("insert past the count") << "insert 5" << false << "a,b,c,d";
        QTest::newRow("insert at a negative row") << "insert -1" << false << "a,b,c,d";
        QTest::newRow("remove the middle two") << "remove 1 2" << true << "a,d";
        QTest::newRow("remove all") << "remove 0 4" << true << "";
        QTest::newRow("remove none") << "remove 4 0" << true << "a,b,c,d";
        QTest::newRow("remove past the end") << "remove 3 2" << false << "a,b,c,d";
        QTest::newRow("remove from a negative start") << "remove -1 1" << false << "a,b,c,d";
        QTest::newRow("remove one") << "remove 2" << true << "a,b,d";
        QTest::newRow("remove one past the end") << "remove 4" << false << "a,b,c,d";
        QTest::newRow("remove one at a negative row") << "remove -1" << false << "a,b,c,d";
    }

    void childEdits()
    {
        QFETCH(QString, edit);
        QFETCH(bool, done);
        QFETCH(QString, names);

        QScopedPointer<COdictNode> parent(parentOfFour());
        QScopedPointer<COdictNode> x(namedNode(QStringLiteral("x")));
        const QStringList args = edit.split(QLatin1Char(' '));
        const int row = args.at(1).toInt();
        if (args.at(0) == QLatin1String("insert"))
            QCOMPARE(parent->insertChild(x.data(), row), done);
        else
            QCOMPARE(args.size() == 3 ? parent->removeChildren(row, args.at(2).toInt()) : parent->removeChild(row), done);
        QCOMPARE(childNames(parent.data()), names);
        QCOMPARE(x->parent(), names.contains(QLatin1Char('x')) ? parent.data() : nullptr);
        if (x->parent()) {
            QCOMPARE(x->row(), row);
            x.take(); // owned by the parent now
        }
    }

    void takeChildDetachesWithoutDeleting()
    {
        QScopedPointer<COdictNode> parent(parentOfFour());
        QScopedPointer<COdictNode> stranger(namedNode(QStringLiteral("x")));
        QVERIFY(!parent->insertChild(nullptr, 0));
        QVERIFY(!parent->takeChild(stranger.data()));
        QVERIFY(!parent->removeChild(stranger.data()));
        QCOMPARE(stranger->row(), 0); // detached
        QVERIFY(!parent->child(-1) && !parent->child(4));

        QScopedPointer<COdictNode> taken(parent->takeChild(parent->child(1)));
        QVERIFY(taken && !taken->parent());
        QCOMPARE(taken->dataRef().name() + QLatin1Char('|') + childNames(parent.data()), QStringLiteral("b|a,c,d"));
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

    void cloneIsDeepWithParentsSet()
    {
        QScopedPointer<COdictNode> source(parentOfFour());
        COdictNode *inner = source->child(1);
        inner->appendChild(namedNode(QStringLiteral("b1")));
        inner->appendChild(new COdictNode); // a node without item

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
        // Changes to the clone stay there.
        QVERIFY(clone->child(0)->dataPtr()->setName(QStringLiteral("changed")));
        QCOMPARE(inner->child(0)->dataRef().name(), QStringLiteral("b1"));
    }

    void cloneAndDeleteVeryDeepTree()
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

    void nodeItems()
    {
        // Nodes without an item answer with the one shared default item.
        COdictNode empty;
        const COdictNode other;
        QVERIFY(!empty.hasData());
        QCOMPARE(&empty.dataRef(), &COdictItem::sharedDefaultItem());
        QCOMPARE(empty.data().type(), E_IT_UNKNOWN);

        // setData() assigns into an existing item, and gives an item-less node a copy of its own.
        COdictNode node(objectItem(E_OT_VALUE, QStringLiteral("Old")));
        const COdictItem *held = node.dataPtr();
        const COdictItem replacement = objectItem(E_OT_VALUE, QStringLiteral("New"));
        node.setData(replacement);
        QCOMPARE(node.dataPtr(), held);
        QCOMPARE(node.dataRef().refId(), replacement.refId());
        QCOMPARE(node.data().name(), QStringLiteral("New"));
        empty.setData(replacement);
        QVERIFY(empty.hasData() && empty.dataPtr() != &replacement);
        QCOMPARE(empty.dataRef().refId(), replacement.refId());
        QCOMPARE(&other.dataRef(), &COdictItem::sharedDefaultItem()); // the shared item is untouched
    }
};

QTEST_GUILESS_MAIN(tst_OdictItem)
#include "tst_odictitem.moc"

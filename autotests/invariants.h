#pragma once

#include "COdictItem.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictObjectTree_p.h"

#include <QHash>
#include <QMap>
#include <QSet>
#include <QVector>
#include <QtTest>

/// Walks \a tree and verifies that its two indexes agree with its nodes:
/// - every child's parent link points at the node that holds it;
/// - exactly the object and sub-object nodes that carry an object are in the id index, each
///   under its object's uniqueId();
/// - every name index entry points at an object node of this tree whose uniqueName() is the
///   entry's key (with duplicate names the entry belongs to one of the nodes of that name), and
///   every object node's uniqueName() has an entry;
/// - no entry of either index points outside the tree, and the sizes agree;
/// - the hash tables beside the two maps hold the same entries: every lookup answers what the
///   map holds, and each table has as many entries as its map.
/// - objects looked up by id and by name are those of the nodes the maps hold;
/// - a lookup by reference id answers, for every node of the tree, the first node in pre-order
///   with that reference id, and the reference-id index has one entry per distinct id.
/// Failures are reported with QVERIFY/QCOMPARE; callers check QTest::currentTestFailed() afterwards.
inline void checkIndexInvariants(const COdictObjectTree &tree)
{
    QVector<const COdictNode *> objectNodes;
    QSet<const COdictNode *> objectNodeSet;
    QSet<const COdictNode *> allNodes;

    // Pre-order walk from the root.
    QVector<const COdictNode *> pending{tree.rootNode()};
    while (!pending.isEmpty()) {
        const COdictNode *current = pending.takeLast();
        QVERIFY2(!allNodes.contains(current), "a node is linked twice");
        allNodes.insert(current);
        const COdictItem &item = current->dataRef();
        if (item.isObjectItem() && item.hasObject()) {
            objectNodes.append(current);
            objectNodeSet.insert(current);
        }
        const QList<COdictNode *> children = current->children();
        for (int i = children.size() - 1; i >= 0; --i) {
            QVERIFY2(children.at(i), "null child");
            QVERIFY2(children.at(i)->parent() == current, "child with a wrong parent link");
            pending.append(children.at(i));
        }
    }

    const COdictObjectTree::IdIndex &ids = tree.idIndex();
    const COdictObjectTree::NameIndex &names = tree.nameIndex();

    // Id index: one entry per object node, each under that node's own unique id.
    for (const COdictNode *node : qAsConst(objectNodes)) {
        const COdictObjectId uid = node->dataRef().objectPtr()->uniqueId();
        QVERIFY2(ids.value(uid, nullptr) == node,
                 qPrintable(QStringLiteral("id index does not map %1 to its node").arg(uid.toStr(QStringLiteral("0x")))));
    }
    for (auto it = ids.cbegin(); it != ids.cend(); ++it) {
        QVERIFY2(objectNodeSet.contains(it.value()),
                 qPrintable(QStringLiteral("id index entry %1 points outside the tree's object nodes")
                                .arg(it.key().toStr(QStringLiteral("0x")))));
    }
    QCOMPARE(ids.size(), objectNodes.size());

    // Name index: every object node's name is present; every entry points at a node of that name.
    QMap<COdictObjectName, int> distinctNames;
    for (const COdictNode *node : qAsConst(objectNodes)) {
        const COdictObjectName name = node->dataRef().uniqueName();
        distinctNames.insert(name, 0);
        QVERIFY2(names.contains(name),
                 qPrintable(QStringLiteral("name index lacks %1").arg(name.mergedName())));
    }
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        QVERIFY2(objectNodeSet.contains(it.value()),
                 qPrintable(QStringLiteral("name index entry %1 points outside the tree's object nodes")
                                .arg(it.key().mergedName())));
        QCOMPARE(it.value()->dataRef().uniqueName().mergedName(), it.key().mergedName());
    }
    QCOMPARE(names.size(), distinctNames.size());

    // The hash tables: lookups (which use them) agree with the maps, and no table keeps an entry
    // that its map has dropped.
    for (auto it = ids.cbegin(); it != ids.cend(); ++it)
        QVERIFY2(tree.node(it.key()) == it.value(), qPrintable(QStringLiteral("id lookup of %1 disagrees with the map")
                                                                  .arg(it.key().toStr(QStringLiteral("0x")))));
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        QVERIFY2(tree.node(it.key()) == it.value(),
                 qPrintable(QStringLiteral("name lookup of %1 disagrees with the map").arg(it.key().mergedName())));
    // The objects held beside the nodes.
    const auto objectOf = [](const COdictNode *node) { return node && node->hasData() ? node->dataPtr()->objectPtr() : nullptr; };
    for (auto it = ids.cbegin(); it != ids.cend(); ++it)
        QVERIFY2(tree.objectPtr(it.key()) == objectOf(it.value()),
                 qPrintable(QStringLiteral("object of %1 is not its node's").arg(it.key().toStr(QStringLiteral("0x")))));
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        QVERIFY2(tree.objectPtr(it.key()) == objectOf(it.value()),
                 qPrintable(QStringLiteral("object of %1 is not its node's").arg(it.key().mergedName())));

    // Reference ids: the first holder in pre-order, as a walk finds it.
    QHash<QUuid, const COdictNode *> firstHolder;
    QVector<const COdictNode *> walk{tree.rootNode()};
    while (!walk.isEmpty()) {
        const COdictNode *current = walk.takeLast();
        if (!firstHolder.contains(current->dataRef().refId()))
            firstHolder.insert(current->dataRef().refId(), current);
        for (int i = current->childCount() - 1; i >= 0; --i)
            walk.append(current->child(i));
    }
    for (auto it = firstHolder.cbegin(); it != firstHolder.cend(); ++it)
        QVERIFY2(tree.findNodeByRefId(it.key()) == it.value(),
                 qPrintable(QStringLiteral("reference id %1 does not find its first node").arg(it.key().toString())));

    struct Peek : COdictObjectTree // reaches the protected private object, read-only
    {
        static const COdictObjectTreePrivate *d(const COdictObjectTree &t) { return (t.*(&Peek::d_ptr)).data(); }
    };
    QCOMPARE(Peek::d(tree)->idIndex.hashedCount(), ids.size());
    QCOMPARE(Peek::d(tree)->nameIndex.hashedCount(), names.size());
    QCOMPARE(Peek::d(tree)->refIdIndex.size(), firstHolder.size());
}

// Copies of object trees and dictionaries carry all of a tree's state (kept in its private
// object): the extended tree's object filter, the document data and the log, with indexes over
// the copy's own nodes.
#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictExtend.h"
#include "COdictEditorObject.h"
#include "COdictExtendObjectTree.h"
#include "COdictObject.h"
#include "COdictObjectBitSet.h"

#include <QtTest>

using namespace NkrOdict;

Q_DECLARE_METATYPE(NkrOdict::VirtualObjectFlags)

namespace {

// A U16 parameter with two named bits.
COdictObject bitSetObject(unsigned int id)
{
    COdictObject object;
    object.setId(id);
    object.setName(QStringLiteral("STATUS"));
    object.setDataType(NTypes::E_U16);
    object.setDataSize(2);
    object.setObjectUsage(E_OU_PARAMETER, true);
    COdictObjectBitSet bits;
    bits.insert(0u, QStringLiteral("Ready"));
    bits.insert(5u, QStringLiteral("Fault"));
    object.setBitSetData(bits);
    return object;
}

int virtualObjectCount(const COdictObjectTree &tree)
{
    int count = 0;
    for (const COdictNode *node : tree.idIndex())
        count += node->dataRef().hasVirtualObject() ? 1 : 0;
    return count;
}

} // namespace

class tst_OdictTreeCopy : public QObject
{
    Q_OBJECT

private slots:
    void extendedCopyKeepsFilter_data()
    {
        QTest::addColumn<VirtualObjectFlags>("filter");
        QTest::addColumn<int>("virtualBits");

        QTest::newRow("no filter") << VirtualObjectFlags() << 0;
        QTest::newRow("bit sets") << VirtualObjectFlags(E_VO_BITSET) << 2;
        QTest::newRow("bit sets and pairs") << VirtualObjectFlags(E_VO_BITSET | E_VO_XY) << 2;
        QTest::newRow("pairs only") << VirtualObjectFlags(E_VO_XY) << 0;
    }

    void extendedCopyKeepsFilter()
    {
        QFETCH(VirtualObjectFlags, filter);
        QFETCH(int, virtualBits);

        COdictExtendObjectTree tree(E_OT_STD, nullptr);
        tree.setObjectFilter(filter);
        COdictExtendObjectTree copy(tree);
        QCOMPARE(copy.objectFilter(), filter);

        // The filter acts in the copy: a bit-set object built there gets its virtual bits.
        bool ok = false;
        QScopedPointer<COdictNode> node(copy.createObjectNode(bitSetObject(0x2000), E_IT_OBJECT, &ok));
        QVERIFY(ok);
        QCOMPARE(node->childCount(), virtualBits);
        QCOMPARE(copy.idIndex().size(), 1 + virtualBits);
        QVERIFY(tree.idIndex().isEmpty());
    }

    void copyCarriesDocumentData()
    {
        CMemoryLogfile log;
        COdictObjectTree tree(E_OT_EDITOR, &log);
        COdictNode *dictionary = tree.createDictionaryNode(QStringLiteral("Demo"));
        tree.rootNode()->appendChild(dictionary);
        bool ok = false;
        dictionary->appendChild(tree.createObjectNode(COdictEditorObject(bitSetObject(0x2000)), E_IT_OBJECT, &ok));
        QVERIFY(ok);
        tree.setMetaData(CXMLMetaData(QDate(2024, 5, 1), QTime(12, 0), QStringLiteral("me"), QStringLiteral("first"),
                                      NTypes::uVersion_t(0x01020003)));
        tree.setFileName(QStringLiteral("demo.xml"));
        tree.addWarning(QStringLiteral("line 3: unknown unit"));
        COdictDataStructure::SDataStructure_t structure;
        structure.name = QStringLiteral("PARAM");
        structure.id = 2;
        tree.dataStructures().append(structure);

        const COdictObjectTree copy(tree);
        QCOMPARE(copy.objectType(), E_OT_EDITOR);
        QCOMPARE(copy.logfile(), &log);
        QCOMPARE(copy.metaData(), tree.metaData());
        QCOMPARE(copy.history(), tree.history());
        QCOMPARE(copy.fileName(), QStringLiteral("demo.xml"));
        QCOMPARE(copy.warningMessages(), tree.warningMessages());
        QCOMPARE(copy.dataStructures(), tree.dataStructures());
        // Both indexes point into the copy's own nodes.
        const COdictNode *copied = copy.node(COdictObjectId(0x2000u));
        QVERIFY(copied && copied != tree.node(COdictObjectId(0x2000u)));
        QCOMPARE(copied->parent(), copy.dictionaryNode());
        QCOMPARE(copy.node(COdictObjectName(QStringLiteral("STATUS"))), copied);
    }

    void copiedExtendedDictionaryLoadsWithFilter()
    {
        const QString demo = QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml");
        COdictExtend original(E_OT_VALUE);
        original.setObjectFilter(E_VO_BITSET | E_VO_XY);
        COdict copy(original); // copies the extended tree, filter included
        QCOMPARE(copy.loadDictionary(demo), 0);
        QCOMPARE(original.loadDictionary(demo), 0);

        // Loading reads through the registered file format into the copy's tree.
        const int virtualObjects = virtualObjectCount(*copy.objectTree());
        QVERIFY(virtualObjects > 0);
        QCOMPARE(virtualObjects, virtualObjectCount(*original.objectTree()));
        QCOMPARE(copy.allObjectUIds(), original.allObjectUIds());
    }
};

QTEST_GUILESS_MAIN(tst_OdictTreeCopy)
#include "tst_odicttreecopy.moc"

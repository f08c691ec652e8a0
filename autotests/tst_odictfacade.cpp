#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "COdict_p.h"
#include "invariants.h"

#include <QtTest>

#include <cstdlib>
#include <new>

using namespace NkrOdict;

// Counts every operator new of the process (the libraries included) while g_counting is set.
// Qt's containers and strings allocate with malloc and are not counted.
namespace {
bool g_counting = false;
int g_allocations = 0;
} // namespace

void *operator new(std::size_t size)
{
    if (g_counting)
        ++g_allocations;
    if (void *p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}

void operator delete(void *p) noexcept
{
    std::free(p);
}

void operator delete(void *p, std::size_t) noexcept
{
    std::free(p);
}

Q_DECLARE_METATYPE(NkrOdict::eObjectType_t)
Q_DECLARE_METATYPE(NkrLogfiles::eSeverity_t)

namespace {

constexpr uint none = 0xFFFFFFFFu;

// Reaches the private object, to re-create the tree of a living dictionary.
class COdictProbe : public COdict
{
public:
    using COdict::COdict;
    COdictPrivate *priv() { return d_ptr.data(); }
};

COdictNode *addObject(COdictObjectTree *tree, COdictNode *parent, const COdictObjectId &uid, const QString &name,
                      uint visible)
{
    QScopedPointer<COdictObject> object(COdictItem().createObject(tree->objectType()));
    object->setId(uid);
    object->setName(name);
    object->setUserlevelRead(visible + 10);
    object->setUserlevelWrite(visible + 20);
    object->setUserlevelVisible(visible);
    bool ok = false;
    COdictNode *node = tree->createObjectNode(*object, uid.subId() == none ? E_IT_OBJECT : E_IT_SUBOBJECT, &ok);
    if (!ok) {
        delete node;
        return nullptr;
    }
    parent->appendChild(node);
    return node;
}

// "Demo" { Alpha 0x1000 (visible 5), Motor { Speed 0x2001 (visible 3) { Gain :2 (visible 6) } } }
void fill(COdict &dict)
{
    COdictObjectTree *tree = dict.objectTree();
    COdictNode *dictionary = tree->createDictionaryNode(QStringLiteral("Demo"));
    tree->rootNode()->appendChild(dictionary);
    addObject(tree, dictionary, 0x1000u, QStringLiteral("Alpha"), 5);
    COdictNode *motor = tree->createGroupNode(QStringLiteral("Motor"), QStringLiteral("Antrieb"));
    dictionary->appendChild(motor);
    COdictNode *speed = addObject(tree, motor, 0x2001u, QStringLiteral("Speed"), 3);
    addObject(tree, speed, COdictObjectId(0x2001u, 2u), QStringLiteral("Gain"), 6);
}

enum eKeyForm_t { E_KF_UID, E_KF_ID_SUBID, E_KF_ID, E_KF_PACKED, E_KF_ENUM, E_KF_ENUM_SUBID, E_KF_NAME, E_KF_STRING, E_KF_STRING_SUBID };

} // namespace

class tst_OdictFacade : public QObject
{
    Q_OBJECT

private slots:
    void creationMessages_data();
    void creationMessages();
    void recreatingTheTree();
    void setLogfileReachesTheTree();
    void lookupFamilies_data();
    void lookupFamilies();
    void containsDependsOnTheSubId();
    void hasVisibleObjects_data();
    void hasVisibleObjects();
    void kindDependentLookups_data();
    void kindDependentLookups();
    void loadOfMissingFile();
    void copyAnswersWithItsOwnNodes();
    void dictionaryWithoutTree();
    void metaDataAndHistory();
};

void tst_OdictFacade::creationMessages_data()
{
    QTest::addColumn<eObjectType_t>("kind");
    QTest::addColumn<NkrLogfiles::eSeverity_t>("severity");
    QTest::addColumn<QString>("text");
    QTest::addColumn<uint>("flags");
    QTest::addColumn<bool>("hasTree");

    const auto created = [](const char *kind) {
        return QStringLiteral("A new empty object dictionary of type '%1' has been created.").arg(QLatin1String(kind));
    };
    QTest::newRow("std") << E_OT_STD << NkrLogfiles::E_SEV_INFO << created("E_OT_STD") << 0xC0000008u << true;
    QTest::newRow("value") << E_OT_VALUE << NkrLogfiles::E_SEV_INFO << created("E_OT_VALUE") << 0xC0000008u << true;
    QTest::newRow("editor") << E_OT_EDITOR << NkrLogfiles::E_SEV_INFO << created("E_OT_EDITOR") << 0xC0000008u << true;
    QTest::newRow("parameter") << E_OT_PARAMETER << NkrLogfiles::E_SEV_INFO << created("E_OT_PARAMETER") << 0xC0000008u
                               << true;
    QTest::newRow("unknown") << E_OT_UNKNOWN << NkrLogfiles::E_SEV_CRITICAL << "No object directory was created." << 0u
                             << false;
}

void tst_OdictFacade::creationMessages()
{
    QFETCH(eObjectType_t, kind);
    QFETCH(NkrLogfiles::eSeverity_t, severity);
    QFETCH(QString, text);
    QFETCH(uint, flags);
    QFETCH(bool, hasTree);

    CMemoryLogfile log;
    const COdict dict(kind, &log);
    QCOMPARE(log.entries().size(), 1);
    QCOMPARE(log.entries().at(0).severity, severity);
    QCOMPARE(log.entries().at(0).text, text);
    QCOMPARE(log.entries().at(0).flags, flags);
    QCOMPARE(dict.objectType(), hasTree ? kind : E_OT_UNKNOWN);
    QCOMPARE(dict.odictTree() != nullptr, hasTree);
}

void tst_OdictFacade::recreatingTheTree()
{
    CMemoryLogfile log;
    COdictProbe dict(E_OT_EDITOR, &log);
    fill(dict);
    const COdictObjectTree *tree = dict.objectTree();
    log.clear();

    // The same kind again: refused, the loaded tree stays.
    dict.priv()->createDictionary(E_OT_EDITOR);
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), QStringList{QStringLiteral("No object directory was created.")});
    QCOMPARE(log.entries().size(), 1);
    QCOMPARE(dict.objectTree(), tree);
    QVERIFY(dict.contains(0x2001u));

    log.clear();
    dict.priv()->createDictionary(E_OT_VALUE);
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_INFO),
             QStringList{QStringLiteral("A new empty object dictionary of type 'E_OT_VALUE' has been created.")});
    QCOMPARE(dict.objectType(), E_OT_VALUE);
    QVERIFY(!dict.contains(0x2001u));
    QCOMPARE(dict.objectTree()->logfile(), static_cast<ICLogfile *>(&log));

    log.clear();
    dict.priv()->createDictionary(E_OT_UNKNOWN);
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), QStringList{QStringLiteral("No object directory was created.")});
    QCOMPARE(dict.objectType(), E_OT_UNKNOWN);
    QVERIFY(!dict.objectTree());
}

void tst_OdictFacade::setLogfileReachesTheTree()
{
    COdict dict(E_OT_VALUE);
    fill(dict);
    CMemoryLogfile log;
    dict.setLogfile(&log);
    QVERIFY(!addObject(dict.objectTree(), dict.odictTree(), 0x2001u, QStringLiteral("Again"), 0));
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL),
             QStringList{QStringLiteral("Double Object-ID detected : ID 0x2001 Sub-ID 0xffffffff; Speed, Again")});
}

void tst_OdictFacade::lookupFamilies_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<uint>("id");
    QTest::addColumn<uint>("subId");
    QTest::addColumn<QString>("name");

    const char *labels[] = {"COdictObjectId",     "id, subId",        "id",   "packed",     "eObjectId_t",
                            "eObjectId_t, subId", "COdictObjectName", "name", "name, subId"};
    for (int form = E_KF_UID; form <= E_KF_STRING_SUBID; ++form) {
        QTest::addRow("%s: object", labels[form]) << form << 0x2001u << none << "Speed";
        QTest::addRow("%s: missing object", labels[form]) << form << 0x2002u << none << "Nothing";
        if (form != E_KF_ID && form != E_KF_STRING) { // the forms without a sub-id
            QTest::addRow("%s: sub-object", labels[form]) << form << 0x2001u << 2u << "Gain";
            QTest::addRow("%s: missing sub-object", labels[form]) << form << 0x2001u << 3u << "Gain";
        }
    }
}

void tst_OdictFacade::lookupFamilies()
{
    QFETCH(int, form);
    QFETCH(uint, id);
    QFETCH(uint, subId);
    QFETCH(QString, name);

    COdict dict(E_OT_VALUE);
    fill(dict);
    const COdict &cdict = dict;
    const COdictObjectId uid(id, subId);
    COdictNode *expected = dict.objectTree()->node(uid);
    const COdictItem *item = expected ? expected->dataPtr() : nullptr;
    const COdictObject *object = item ? item->objectPtr() : nullptr;
    const uint visible = !item ? 0 : subId == none ? 3 : 6;
    if (item) {
        QCOMPARE(object->name(), name);
        QCOMPARE(object->uniqueId(), uid);
    }

    // The answers are the tree's own nodes and objects, never copies of them; a miss gives defaults.
    const auto check = [&](const auto &...key) {
        QCOMPARE(dict.node(key...), expected);
        QCOMPARE(cdict.node(key...), expected);
        QCOMPARE(dict.objectPtr(key...), object);
        QCOMPARE(cdict.objectPtr(key...), object);
        QVERIFY(cdict.object(key...) == (object ? *object : COdictObject()));
        QVERIFY(cdict.valueObject(key...) == (item ? *item->toValueObjectPtr() : COdictValueObject()));
        // A value dictionary has no editor or parameter objects to give.
        QVERIFY(cdict.editorObject(key...) == COdictEditorObject());
        QVERIFY(cdict.parameterObject(key...) == COdictParameterObject());
        QCOMPARE(cdict.userlevelVisible(key...), visible);
        QCOMPARE(cdict.userlevelRead(key...), item ? visible + 10 : 0u);
        QCOMPARE(cdict.userlevelWrite(key...), item ? visible + 20 : 0u);
    };
    int contained = -1; // -1: the form has no contains()
    switch (eKeyForm_t(form)) {
    case E_KF_UID:
        check(uid);
        contained = cdict.contains(uid);
        break;
    case E_KF_ID_SUBID:
        check(id, subId);
        contained = cdict.contains(id, subId);
        break;
    case E_KF_ID:
        check(id);
        contained = cdict.contains(id);
        break;
    case E_KF_PACKED:
        check(uid.toU64());
        contained = cdict.contains(uid.toU64());
        break;
    case E_KF_ENUM:
        check(uid.toId());
        contained = cdict.contains(uid.toId());
        break;
    case E_KF_ENUM_SUBID:
        check(NkrObjectIds::eObjectId_t(id), subId);
        break;
    case E_KF_NAME:
        check(COdictObjectName(name, subId));
        break;
    case E_KF_STRING:
        check(name);
        break;
    case E_KF_STRING_SUBID:
        check(name, subId);
        break;
    }
    if (contained >= 0)
        QCOMPARE(bool(contained), expected != nullptr);
}

void tst_OdictFacade::containsDependsOnTheSubId()
{
    COdict dict(E_OT_STD);
    fill(dict);
    // A sub-object registered without its object.
    QVERIFY(addObject(dict.objectTree(), dict.odictTree(), COdictObjectId(0x3000u, 1u), QStringLiteral("Orphan"), 0));

    QVERIFY(dict.contains(0x3000u, 1u));
    QVERIFY(!dict.contains(0x3000u));
    QVERIFY(!dict.contains(NkrObjectIds::eObjectId_t(0x3000u)));
    QVERIFY(dict.contains(Q_UINT64_C(0x0000300000000001)));
    QVERIFY(!dict.contains(0x2001u, 0u)); // sub-id 0 is a sub-id like any other
}

void tst_OdictFacade::hasVisibleObjects_data()
{
    QTest::addColumn<bool>("filled");
    QTest::addColumn<uint>("level");
    QTest::addColumn<bool>("visible");

    QTest::newRow("empty, any level") << false << 0xFFFFFFFFu << false;
    QTest::newRow("empty, level 0") << false << 0u << false;
    QTest::newRow("below every object") << true << 2u << false;
    QTest::newRow("the lowest object level") << true << 3u << true;
    QTest::newRow("above") << true << 100u << true;
}

void tst_OdictFacade::hasVisibleObjects()
{
    QFETCH(bool, filled);
    QFETCH(uint, level);
    QFETCH(bool, visible);

    COdict dict(E_OT_VALUE);
    if (filled)
        fill(dict);
    QCOMPARE(dict.hasVisibleObjects(level), visible);
    if (level <= NkrUserLevel::E_UL_DEVELOPER)
        QCOMPARE(dict.hasVisibleObjects(NkrUserLevel::eUserLevel_t(level)), visible);
}

void tst_OdictFacade::kindDependentLookups_data()
{
    QTest::addColumn<eObjectType_t>("kind");
    QTest::addColumn<bool>("asValue");
    QTest::addColumn<bool>("asEditor");
    QTest::addColumn<bool>("asParameter");

    QTest::newRow("std") << E_OT_STD << true << false << true;
    QTest::newRow("value") << E_OT_VALUE << true << false << false;
    QTest::newRow("editor") << E_OT_EDITOR << false << true << false;
    QTest::newRow("parameter") << E_OT_PARAMETER << false << false << true;
}

void tst_OdictFacade::kindDependentLookups()
{
    QFETCH(eObjectType_t, kind);
    QFETCH(bool, asValue);
    QFETCH(bool, asEditor);
    QFETCH(bool, asParameter);

    COdict dict(kind);
    fill(dict);
    const COdict &cdict = dict;
    const COdictObjectId uid(0x2001u, 2u);
    const COdictObjectName name(QStringLiteral("Gain"), 2u);
    const COdictNode *expected = dict.objectTree()->node(uid);
    QVERIFY(expected);

    // The typed families give an object of their class only where the dictionary's kind converts.
    QCOMPARE(dict.valueObject(uid).name() == QStringLiteral("Gain"), asValue);
    QCOMPARE(dict.editorObject(uid).name() == QStringLiteral("Gain"), asEditor);
    QCOMPARE(dict.parameterObject(uid).name() == QStringLiteral("Gain"), asParameter);
    QCOMPARE(dict.objectPtr(uid)->objectType(), kind);

    g_allocations = 0;
    g_counting = true;
    delete new COdictObjectId;
    g_counting = false;
    QCOMPARE(g_allocations, 1); // the counter sees allocations made here

    // Hits through every id form and the name index: map look-ups and shared copies only.
    g_allocations = 0;
    g_counting = true;
    const COdictNode *found[] = {cdict.node(uid), cdict.node(0x2001u, 2u), cdict.node(uid.toU64()),
                                 cdict.node(uid.toId()), cdict.node(name)};
    const COdictNode *byString = cdict.node(QStringLiteral("Speed"));
    const COdictObject *object = cdict.objectPtr(0x2001u, 2u);
    const bool contained = cdict.contains(uid);
    const uint levels = cdict.userlevelRead(uid) + cdict.userlevelWrite(uid) + cdict.userlevelVisible(name);
    const COdictObject copy = cdict.object(uid);
    const QString typedName = kind == E_OT_VALUE    ? cdict.valueObject(uid).name()
                              : kind == E_OT_EDITOR ? cdict.editorObject(uid).name()
                              : kind == E_OT_PARAMETER ? cdict.parameterObject(uid).name()
                                                       : copy.name();
    g_counting = false;

    QCOMPARE(g_allocations, 0);
    for (const COdictNode *node : found)
        QCOMPARE(node, expected);
    QCOMPARE(byString, dict.objectTree()->node(0x2001u, none));
    QCOMPARE(object, expected->dataRef().objectPtr());
    QVERIFY(contained);
    QCOMPARE(levels, 16u + 26u + 6u);
    QCOMPARE(copy.name(), QStringLiteral("Gain"));
    QCOMPARE(typedName, QStringLiteral("Gain"));
}

void tst_OdictFacade::loadOfMissingFile()
{
    const QLocale saved;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    COdict dict(E_OT_VALUE);
    fill(dict);
    QSignalSpy changed(dict.objectTree(), &COdictObjectTree::objectDictionaryChanged);
    const int result = dict.loadDictionary(QStringLiteral("/nonexistent/dictionary.xml"));
    QLocale::setDefault(saved);

    QCOMPARE(result, 1);
    QVERIFY(!dict.isValid());
    QCOMPARE(dict.language(), QLocale::German);
    QVERIFY(!dict.contains(0x2001u)); // the tree is cleared before reading
    QVERIFY(!dict.node(QStringLiteral("Motor")));
    checkIndexInvariants(*dict.objectTree());
    QCOMPARE(changed.count(), 1);
}

void tst_OdictFacade::copyAnswersWithItsOwnNodes()
{
    CMemoryLogfile log;
    auto *source = new COdict(E_OT_EDITOR, &log);
    fill(*source);
    log.clear();

    const COdict copy(*source);
    QVERIFY(log.entries().isEmpty());
    QVERIFY(copy.objectTree() != source->objectTree());
    QCOMPARE(copy.logfile(), static_cast<ICLogfile *>(&log));
    checkIndexInvariants(*copy.objectTree());
    if (QTest::currentTestFailed())
        return;

    const QList<COdictObjectId> keys = source->allObjectUIds();
    QCOMPARE(copy.allObjectUIds(), keys);
    for (const COdictObjectId &key : keys) {
        QVERIFY(copy.node(key) != source->node(key));
        QCOMPARE(copy.node(key), copy.objectTree()->node(key));
        QVERIFY(copy.objectPtr(key) != source->objectPtr(key));
        // Items are found by the reference id they share with the source's items.
        const QUuid refId = source->node(key)->dataRef().refId();
        QCOMPARE(copy.odictItemPtr(refId), copy.node(key)->dataPtr());
        const COdictItem item = copy.odictItem(refId); // by value
        QCOMPARE(item.refId(), refId);
        QVERIFY(item.hasObject() && item.objectPtr() != copy.objectPtr(key));
    }
    const QUuid unknown = QUuid::createUuid();
    QVERIFY(!copy.odictItemPtr(unknown));
    QCOMPARE(copy.odictItem(unknown).type(), E_IT_UNKNOWN);
    QCOMPARE(copy.node(QStringLiteral("Motor")), copy.objectTree()->dictionaryNode()->child(1));

    delete source;
    QCOMPARE(copy.object(0x2001u, 2u).name(), QStringLiteral("Gain"));
    QCOMPARE(copy.allObjectUIds(copy.objectTree()->dictionaryNode()), copy.allObjectUIds());
}

void tst_OdictFacade::dictionaryWithoutTree()
{
    COdict dict(E_OT_UNKNOWN);
    QVERIFY(!dict.node(0x2001u));
    QVERIFY(!dict.node(QStringLiteral("Speed")));
    QVERIFY(!dict.objectPtr(COdictObjectId(0x2001u, 2u)));
    QVERIFY(dict.valueObject(0x2001u) == COdictValueObject());
    QCOMPARE(dict.userlevelVisible(0x2001u), 0u);
    QVERIFY(!dict.contains(0x2001u));
    QCOMPARE(dict.highestId(), 0u);
    QVERIFY(!dict.highestUId().isValid());
    QVERIFY(dict.allObjectIds().isEmpty());
    QVERIFY(!dict.hasVisibleObjects(100u));
    QVERIFY(!dict.odictItemPtr(QUuid::createUuid()));
    QVERIFY(dict.odictHistory().list().isEmpty());

    // There is nowhere to load into.
    QCOMPARE(dict.loadDictionary(QStringLiteral("does-not-exist.xml")), 1);
    QVERIFY(!dict.isValid());
}

void tst_OdictFacade::metaDataAndHistory()
{
    COdict dict(E_OT_EDITOR);
    const CXMLMetaData first(QDate(2024, 1, 2), QTime(3, 4), QStringLiteral("a"), QString(), 0x01000000u);
    const CXMLMetaData second(QDate(2024, 2, 3), QTime(4, 5), QStringLiteral("b"), QString(), 0x01010000u);
    dict.setOdictMetaData(first);
    dict.setOdictMetaData(second);
    QCOMPARE(dict.odictMetaData(), second);
    QCOMPARE(dict.odictHistory().list(), (QList<CXMLMetaData>{second, first})); // newest first
}

QTEST_GUILESS_MAIN(tst_OdictFacade)
#include "tst_odictfacade.moc"

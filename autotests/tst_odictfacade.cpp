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

// Every lookup family's answer for one key.
struct sAnswers_t {
    COdictNode *node = nullptr;
    const COdictNode *constNode = nullptr;
    COdictObject *objectPtr = nullptr;
    const COdictObject *constObjectPtr = nullptr;
    COdictObject object;
    COdictValueObject valueObject;
    COdictEditorObject editorObject;
    COdictParameterObject parameterObject;
    uint read = 0;
    uint write = 0;
    uint visible = 0;
};

} // namespace

class tst_OdictFacade : public QObject
{
    Q_OBJECT

private slots:
    void creationMessages_data();
    void creationMessages();
    void recreatingTheTree();
    void stateAfterConstruction();
    void setLogfileReachesTheTree();
    void lookupFamilies_data();
    void lookupFamilies();
    void typedFamiliesFollowTheKind_data();
    void typedFamiliesFollowTheKind();
    void containsDependsOnTheSubId();
    void hasVisibleObjects_data();
    void hasVisibleObjects();
    void lookupsAllocateNothing_data();
    void lookupsAllocateNothing();
    void loadOfMissingFile();
    void itemsByRefId();
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
    QCOMPARE(dict.getObjectType(), dict.objectType());
    QCOMPARE(dict.odictTree() != nullptr, hasTree);
    QCOMPARE(dict.logfile(), static_cast<ICLogfile *>(&log));
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

void tst_OdictFacade::stateAfterConstruction()
{
    const COdict dict(E_OT_VALUE);
    QVERIFY(!dict.isValid());
    QCOMPARE(dict.language(), QLocale::C);
    QVERIFY(!dict.logfile());
    QVERIFY(dict.fileName().isEmpty());
    QVERIFY(dict.warningMessages().isEmpty());
    QCOMPARE(dict.highestId(), 0u);
    QVERIFY(dict.allObjectUIds().isEmpty());
    QVERIFY(dict.odictTree());
    QCOMPARE(dict.odictTree()->childCount(), 0);
}

void tst_OdictFacade::setLogfileReachesTheTree()
{
    COdict dict(E_OT_VALUE);
    fill(dict);
    CMemoryLogfile log;
    dict.setLogfile(&log);
    QCOMPARE(dict.logfile(), static_cast<ICLogfile *>(&log));
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

    const struct {
        eKeyForm_t form;
        const char *label;
        bool takesSubId;
    } forms[] = {{E_KF_UID, "COdictObjectId", true},
                 {E_KF_ID_SUBID, "id, subId", true},
                 {E_KF_ID, "id", false},
                 {E_KF_PACKED, "packed", true},
                 {E_KF_ENUM, "eObjectId_t", true},
                 {E_KF_ENUM_SUBID, "eObjectId_t, subId", true},
                 {E_KF_NAME, "COdictObjectName", true},
                 {E_KF_STRING, "name", false},
                 {E_KF_STRING_SUBID, "name, subId", true}};
    for (const auto &f : forms) {
        QTest::addRow("%s: object", f.label) << int(f.form) << 0x2001u << none << "Speed";
        QTest::addRow("%s: missing object", f.label) << int(f.form) << 0x2002u << none << "Nothing";
        if (f.takesSubId) {
            QTest::addRow("%s: sub-object", f.label) << int(f.form) << 0x2001u << 2u << "Gain";
            QTest::addRow("%s: missing sub-object", f.label) << int(f.form) << 0x2001u << 3u << "Gain";
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

    const auto ask = [&](const auto &...key) {
        sAnswers_t a;
        a.node = dict.node(key...);
        a.constNode = cdict.node(key...);
        a.objectPtr = dict.objectPtr(key...);
        a.constObjectPtr = cdict.objectPtr(key...);
        a.object = cdict.object(key...);
        a.valueObject = cdict.valueObject(key...);
        a.editorObject = cdict.editorObject(key...);
        a.parameterObject = cdict.parameterObject(key...);
        a.read = cdict.userlevelRead(key...);
        a.write = cdict.userlevelWrite(key...);
        a.visible = cdict.userlevelVisible(key...);
        return a;
    };
    sAnswers_t a;
    int contained = -1; // -1: the form has no contains()
    switch (eKeyForm_t(form)) {
    case E_KF_UID:
        a = ask(uid);
        contained = cdict.contains(uid);
        break;
    case E_KF_ID_SUBID:
        a = ask(id, subId);
        contained = cdict.contains(id, subId);
        break;
    case E_KF_ID:
        a = ask(id);
        contained = cdict.contains(id);
        break;
    case E_KF_PACKED:
        a = ask(uid.toU64());
        contained = cdict.contains(uid.toU64());
        break;
    case E_KF_ENUM:
        a = ask(uid.toId());
        contained = cdict.contains(uid.toId());
        break;
    case E_KF_ENUM_SUBID:
        a = ask(NkrObjectIds::eObjectId_t(id), subId);
        break;
    case E_KF_NAME:
        a = ask(COdictObjectName(name, subId));
        break;
    case E_KF_STRING:
        a = ask(name);
        break;
    case E_KF_STRING_SUBID:
        a = ask(name, subId);
        break;
    }

    // The answers are the tree's own nodes and objects, never copies of them.
    COdictNode *expected = dict.objectTree()->node(uid);
    const COdictItem *item = expected ? expected->dataPtr() : nullptr;
    QCOMPARE(a.node, expected);
    QCOMPARE(a.constNode, expected);
    QCOMPARE(a.objectPtr, item ? expected->dataPtr()->objectPtr() : nullptr);
    QCOMPARE(a.constObjectPtr, a.objectPtr);
    if (contained >= 0)
        QCOMPARE(bool(contained), expected != nullptr);

    if (!item) {
        QVERIFY(a.object == COdictObject());
        QVERIFY(a.valueObject == COdictValueObject());
        QVERIFY(a.editorObject == COdictEditorObject());
        QVERIFY(a.parameterObject == COdictParameterObject());
        QCOMPARE(a.read, 0u);
        QCOMPARE(a.write, 0u);
        QCOMPARE(a.visible, 0u);
        return;
    }
    QCOMPARE(a.object.name(), name);
    QCOMPARE(a.object.uniqueId(), uid);
    QVERIFY(a.valueObject == *item->toValueObjectPtr());
    // A value dictionary has no editor or parameter objects to give.
    QVERIFY(a.editorObject == COdictEditorObject());
    QVERIFY(a.parameterObject == COdictParameterObject());
    const uint visible = subId == none ? 3 : 6;
    QCOMPARE(a.visible, visible);
    QCOMPARE(a.read, visible + 10);
    QCOMPARE(a.write, visible + 20);
}

void tst_OdictFacade::typedFamiliesFollowTheKind_data()
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

void tst_OdictFacade::typedFamiliesFollowTheKind()
{
    QFETCH(eObjectType_t, kind);
    QFETCH(bool, asValue);
    QFETCH(bool, asEditor);
    QFETCH(bool, asParameter);

    COdict dict(kind);
    fill(dict);
    const QString speed = QStringLiteral("Speed");
    QCOMPARE(dict.object(0x2001u).name(), speed);
    QCOMPARE(dict.valueObject(0x2001u).name() == speed, asValue);
    QCOMPARE(dict.editorObject(0x2001u).name() == speed, asEditor);
    QCOMPARE(dict.parameterObject(0x2001u).name() == speed, asParameter);
    QCOMPARE(dict.objectPtr(0x2001u)->objectType(), kind);
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
    QVERIFY(dict.contains(COdictObjectId(0x3000u, 1u)));
    QVERIFY(dict.contains(0x2001u));
    QVERIFY(dict.contains(0x2001u, 2u));
    QVERIFY(!dict.contains(0x2001u, 0u));
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

void tst_OdictFacade::lookupsAllocateNothing_data()
{
    QTest::addColumn<eObjectType_t>("kind");

    QTest::newRow("value") << E_OT_VALUE;
    QTest::newRow("editor") << E_OT_EDITOR;
    QTest::newRow("parameter") << E_OT_PARAMETER;
}

void tst_OdictFacade::lookupsAllocateNothing()
{
    QFETCH(eObjectType_t, kind);

    COdict dict(kind);
    fill(dict);
    const COdict &cdict = dict;
    const COdictObjectId uid(0x2001u, 2u);
    const COdictObjectName name(QStringLiteral("Gain"), 2u);
    const QString plainName = QStringLiteral("Speed");
    const COdictNode *expected = dict.objectTree()->node(uid);
    QVERIFY(expected);

    g_allocations = 0;
    g_counting = true;
    delete new COdictObjectId;
    g_counting = false;
    QCOMPARE(g_allocations, 1); // the counter sees allocations made here

    // Hits through every id form and the name index: map look-ups and shared copies only.
    g_allocations = 0;
    g_counting = true;
    const COdictNode *byUid = cdict.node(uid);
    const COdictNode *byPair = cdict.node(0x2001u, 2u);
    const COdictNode *byPacked = cdict.node(uid.toU64());
    const COdictNode *byEnum = cdict.node(uid.toId());
    const COdictNode *byName = cdict.node(name);
    const COdictNode *byString = cdict.node(plainName);
    const COdictObject *object = cdict.objectPtr(0x2001u, 2u);
    const bool contained = cdict.contains(uid);
    const uint levels = cdict.userlevelRead(uid) + cdict.userlevelWrite(uid) + cdict.userlevelVisible(name);
    const COdictObject copy = cdict.object(uid);
    const QString typedName = kind == E_OT_VALUE    ? cdict.valueObject(uid).name()
                              : kind == E_OT_EDITOR ? cdict.editorObject(uid).name()
                                                    : cdict.parameterObject(uid).name();
    g_counting = false;

    QCOMPARE(g_allocations, 0);
    QCOMPARE(byUid, expected);
    QCOMPARE(byPair, expected);
    QCOMPARE(byPacked, expected);
    QCOMPARE(byEnum, expected);
    QCOMPARE(byName, expected);
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

void tst_OdictFacade::itemsByRefId()
{
    COdict dict(E_OT_EDITOR);
    fill(dict);
    COdictNode *gain = dict.node(0x2001u, 2u);
    const QUuid refId = gain->dataRef().refId();

    QCOMPARE(dict.odictItemPtr(refId), gain->dataPtr());
    const COdictItem copy = dict.odictItem(refId);
    QCOMPARE(copy.refId(), refId);
    QCOMPARE(copy.name(), QStringLiteral("Gain"));
    QVERIFY(copy.objectPtr() != gain->dataRef().objectPtr());

    const QUuid unknown = QUuid::createUuid();
    QVERIFY(!dict.odictItemPtr(unknown));
    QCOMPARE(dict.odictItem(unknown).type(), E_IT_UNKNOWN);
    QVERIFY(!dict.odictItem(unknown).hasObject());
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
    QCOMPARE(copy.objectType(), E_OT_EDITOR);
    QCOMPARE(copy.logfile(), static_cast<ICLogfile *>(&log));
    QCOMPARE(copy.isValid(), source->isValid());
    checkIndexInvariants(*copy.objectTree());
    if (QTest::currentTestFailed())
        return;

    const QList<COdictObjectId> keys = source->allObjectUIds();
    QCOMPARE(copy.allObjectUIds(), keys);
    for (const COdictObjectId &key : keys) {
        QVERIFY(copy.node(key) != source->node(key));
        QCOMPARE(copy.node(key), copy.objectTree()->node(key));
        QVERIFY(copy.objectPtr(key) != source->objectPtr(key));
        const QUuid refId = source->node(key)->dataRef().refId();
        QCOMPARE(copy.odictItemPtr(refId), copy.node(key)->dataPtr());
    }
    QCOMPARE(copy.node(QStringLiteral("Motor")), copy.objectTree()->dictionaryNode()->child(1));

    delete source;
    QCOMPARE(copy.object(0x2001u, 2u).name(), QStringLiteral("Gain"));
    QCOMPARE(copy.allObjectUIds(copy.objectTree()->dictionaryNode()), copy.allObjectUIds());
}

void tst_OdictFacade::dictionaryWithoutTree()
{
    COdict dict(E_OT_UNKNOWN);
    QVERIFY(!dict.odictTree());
    QVERIFY(!dict.objectTree());
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
    QCOMPARE(dict.odictHistory().size(), 2);
    QCOMPARE(dict.odictHistory().at(0), second);
    QCOMPARE(dict.odictHistory().at(1), first);
}

QTEST_GUILESS_MAIN(tst_OdictFacade)
#include "tst_odictfacade.moc"

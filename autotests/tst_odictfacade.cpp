#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "COdict_p.h"

#include <QtTest>

#include <cstdlib>
#include <new>
#include <optional>

using namespace NkrOdict;

// Counts every operator new of the process (the libraries included) while g_counting is set.
// Qt's containers and strings allocate with malloc and are not counted.
static bool g_counting = false;
static int g_allocations = 0;

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
    QScopedPointer<COdictNode> node(tree->createObjectNode(*object, uid.subId() == none ? E_IT_OBJECT : E_IT_SUBOBJECT, &ok));
    if (ok)
        parent->appendChild(node.data());
    return ok ? node.take() : nullptr;
}

// The entries of \a log, one "severity flags: text" a line.
QString logged(const CMemoryLogfile &log)
{
    static const char *const severities[] = {"info", "warning", "critical"};
    QStringList lines;
    for (const CMemoryLogfile::sEntry_t &e : log.entries())
        lines << QStringLiteral("%1 %2: %3").arg(QLatin1String(severities[e.severity])).arg(e.flags, 0, 16).arg(e.text);
    return lines.join(QLatin1Char('\n'));
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
    void creationMessages_data()
    {
        QTest::addColumn<eObjectType_t>("kind");
        QTest::addColumn<QString>("message");

        const auto created = [](const char *kind) {
            return QStringLiteral("info c0000008: A new empty object dictionary of type '%1' has been created.").arg(QLatin1String(kind));
        };
        QTest::newRow("std") << E_OT_STD << created("E_OT_STD");
        QTest::newRow("value") << E_OT_VALUE << created("E_OT_VALUE");
        QTest::newRow("editor") << E_OT_EDITOR << created("E_OT_EDITOR");
        QTest::newRow("parameter") << E_OT_PARAMETER << created("E_OT_PARAMETER");
        QTest::newRow("unknown") << E_OT_UNKNOWN << "critical 0: No object directory was created.";
    }

    void creationMessages()
    {
        QFETCH(eObjectType_t, kind);
        QFETCH(QString, message);

        CMemoryLogfile log;
        const COdict dict(kind, &log);
        QCOMPARE(logged(log), message);
        QCOMPARE(dict.objectType(), kind);
        QCOMPARE(dict.odictTree() != nullptr, kind != E_OT_UNKNOWN);
    }

    void recreatingTheTree()
    {
        CMemoryLogfile log;
        COdictProbe dict(E_OT_EDITOR, &log);
        fill(dict);
        const COdictObjectTree *tree = dict.objectTree();
        const auto recreate = [&](eObjectType_t kind) {
            log.clear();
            dict.priv()->createDictionary(kind);
            return logged(log);
        };
        const QString refused = QStringLiteral("critical 0: No object directory was created.");

        // The same kind again: refused, the loaded tree stays.
        QCOMPARE(recreate(E_OT_EDITOR), refused);
        QCOMPARE(dict.objectTree(), tree);
        QVERIFY(dict.contains(0x2001u));

        QCOMPARE(recreate(E_OT_VALUE),
                 QStringLiteral("info c0000008: A new empty object dictionary of type 'E_OT_VALUE' has been created."));
        QCOMPARE(dict.objectType(), E_OT_VALUE);
        QVERIFY(!dict.contains(0x2001u));
        QCOMPARE(dict.objectTree()->logfile(), static_cast<ICLogfile *>(&log));

        QCOMPARE(recreate(E_OT_UNKNOWN), refused);
        QCOMPARE(dict.objectType(), E_OT_UNKNOWN);
        QVERIFY(!dict.objectTree());
    }

    void setLogfileReachesTheTree()
    {
        COdict dict(E_OT_VALUE);
        fill(dict);
        CMemoryLogfile log;
        dict.setLogfile(&log);
        QVERIFY(!addObject(dict.objectTree(), dict.odictTree(), 0x2001u, QStringLiteral("Again"), 0));
        QCOMPARE(logged(log), QStringLiteral("critical 0: Double Object-ID detected : ID 0x2001 Sub-ID 0xffffffff; Speed, Again"));
    }

    void lookupFamilies_data()
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

    void lookupFamilies()
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
        QCOMPARE(bool(object), name != QLatin1String("Nothing") && subId != 3u);
        QVERIFY(!object || (object->name() == name && object->uniqueId() == uid));

        // The answers are the tree's own nodes and objects, never copies of them; a miss gives defaults.
        // contains() exists for the id forms only.
        const auto check = [&](std::optional<bool> contained, const auto &...key) {
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
            if (contained)
                QCOMPARE(*contained, expected != nullptr);
        };
        switch (eKeyForm_t(form)) {
        case E_KF_UID: return check(cdict.contains(uid), uid);
        case E_KF_ID_SUBID: return check(cdict.contains(id, subId), id, subId);
        case E_KF_ID: return check(cdict.contains(id), id);
        case E_KF_PACKED: return check(cdict.contains(uid.toU64()), uid.toU64());
        case E_KF_ENUM: return check(cdict.contains(uid.toId()), uid.toId());
        case E_KF_ENUM_SUBID: return check(std::nullopt, NkrObjectIds::eObjectId_t(id), subId);
        case E_KF_NAME: return check(std::nullopt, COdictObjectName(name, subId));
        case E_KF_STRING: return check(std::nullopt, name);
        case E_KF_STRING_SUBID: return check(std::nullopt, name, subId);
        }
    }

    void containsDependsOnTheSubId()
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

    void hasVisibleObjects_data()
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

    void hasVisibleObjects()
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

    void kindDependentLookups_data()
    {
        QTest::addColumn<eObjectType_t>("kind");
        QTest::addColumn<QString>("typed"); // the typed families (value, editor, parameter) that give the object

        QTest::newRow("std") << E_OT_STD << "v-p";
        QTest::newRow("value") << E_OT_VALUE << "v--";
        QTest::newRow("editor") << E_OT_EDITOR << "-e-";
        QTest::newRow("parameter") << E_OT_PARAMETER << "--p";
    }

    void kindDependentLookups()
    {
        QFETCH(eObjectType_t, kind);
        QFETCH(QString, typed);

        COdict dict(kind);
        fill(dict);
        const COdict &cdict = dict;
        const COdictObjectId uid(0x2001u, 2u);
        const COdictObjectName name(QStringLiteral("Gain"), 2u);
        const COdictNode *expected = dict.objectTree()->node(uid);
        QVERIFY(expected);

        // The typed families give an object of their class only where the dictionary's kind converts.
        const QString gain = QStringLiteral("Gain");
        QCOMPARE(QString(dict.valueObject(uid).name() == gain ? 'v' : '-') + (dict.editorObject(uid).name() == gain ? 'e' : '-')
                     + (dict.parameterObject(uid).name() == gain ? 'p' : '-'),
                 typed);
        QCOMPARE(dict.objectPtr(uid)->objectType(), kind);

        // Hits through every id form and the name index: map look-ups and shared copies only. The one
        // allocation made here on purpose proves that the counter sees them.
        g_allocations = 0;
        g_counting = true;
        delete new COdictObjectId;
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

        QCOMPARE(g_allocations, 1);
        for (const COdictNode *node : found)
            QCOMPARE(node, expected);
        QCOMPARE(byString, dict.objectTree()->node(0x2001u, none));
        QCOMPARE(object, expected->dataRef().objectPtr());
        QVERIFY(contained);
        QCOMPARE(levels, 16u + 26u + 6u);
        QCOMPARE(copy.name(), gain);
        QCOMPARE(typedName, gain);
    }

    void loadTakesTheLanguageEvenWhenItFails()
    {
        const QLocale saved;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        COdict dict(E_OT_VALUE);
        const int result = dict.loadDictionary(QStringLiteral("/nonexistent/dictionary.xml"));
        QLocale::setDefault(saved);
        QCOMPARE(result, 1);
        QCOMPARE(dict.language(), QLocale::German);
    }

    void copyAnswersWithItsOwnNodes()
    {
        CMemoryLogfile log;
        auto *source = new COdict(E_OT_EDITOR, &log);
        fill(*source);
        log.clear();

        // The tree itself is copied deeply; the copy's look-ups must answer from that tree.
        const COdict copy(*source);
        QVERIFY(log.entries().isEmpty());
        QVERIFY(copy.objectTree() != source->objectTree());
        QCOMPARE(copy.logfile(), static_cast<ICLogfile *>(&log));
        const QList<COdictObjectId> keys = source->allObjectUIds();
        QCOMPARE(copy.allObjectUIds(), keys);
        for (const COdictObjectId &key : keys) {
            QCOMPARE(copy.node(key), copy.objectTree()->node(key));
            QCOMPARE(copy.objectPtr(key), copy.node(key)->dataRef().objectPtr());
            // Items are found by the reference id they share with the source's items.
            const QUuid refId = source->node(key)->dataRef().refId();
            QCOMPARE(copy.odictItemPtr(refId), copy.node(key)->dataPtr());
            const COdictItem item = copy.odictItem(refId); // by value
            QCOMPARE(item.refId(), refId);
            QVERIFY(item.hasObject() && item.objectPtr() != copy.objectPtr(key));
        }
        QVERIFY(!copy.odictItemPtr(QUuid::createUuid()));
        QCOMPARE(copy.odictItem(QUuid::createUuid()).type(), E_IT_UNKNOWN);
        QCOMPARE(copy.node(QStringLiteral("Motor")), copy.objectTree()->dictionaryNode()->child(1));

        delete source;
        QCOMPARE(copy.object(0x2001u, 2u).name(), QStringLiteral("Gain"));
        QCOMPARE(copy.allObjectUIds(copy.objectTree()->dictionaryNode()), copy.allObjectUIds());
    }

    void dictionaryWithoutTree()
    {
        COdict dict(E_OT_UNKNOWN);
        QVERIFY(!dict.node(0x2001u) && !dict.node(QStringLiteral("Speed")) && !dict.objectPtr(COdictObjectId(0x2001u, 2u)));
        QVERIFY(dict.valueObject(0x2001u) == COdictValueObject());
        QVERIFY(!dict.contains(0x2001u) && !dict.hasVisibleObjects(100u));
        QVERIFY(dict.userlevelVisible(0x2001u) == 0u && dict.highestId() == 0u);
        QVERIFY(!dict.highestUId().isValid() && dict.allObjectIds().isEmpty());
        QVERIFY(!dict.odictItemPtr(QUuid::createUuid()) && dict.odictHistory().list().isEmpty());
    }

    void metaDataAndHistory()
    {
        COdict dict(E_OT_EDITOR);
        const CXMLMetaData first(QDate(2024, 1, 2), QTime(3, 4), QStringLiteral("a"), QString(), 0x01000000u);
        const CXMLMetaData second(QDate(2024, 2, 3), QTime(4, 5), QStringLiteral("b"), QString(), 0x01010000u);
        dict.setOdictMetaData(first);
        dict.setOdictMetaData(second);
        QCOMPARE(dict.odictMetaData(), second);
        QCOMPARE(dict.odictHistory().list(), (QList<CXMLMetaData>{second, first})); // newest first
    }
};

QTEST_GUILESS_MAIN(tst_OdictFacade)
#include "tst_odictfacade.moc"

#include "COdictDataStructure.h"
#include "COdictEditorObject.h"
#include "COdictHistory.h"

#include <QtTest>

#include <limits>

using Structure = COdictDataStructure::SDataStructure_t;
using Member = COdictDataStructure::SDataStructureMember_t;

Q_DECLARE_METATYPE(COdictDataStructure::eMemberSource_t)

namespace {

Structure structure(int id, const QString &name, const QString &uiName)
{
    Structure s;
    s.id = id;
    s.name = name;
    s.uiName = uiName;
    s.description = name + QStringLiteral(" text");
    s.members.append(Member{QStringLiteral("uint32_t"), QStringLiteral("id"), COdictDataStructure::E_MS_ID, QString()});
    return s;
}

// Ids 4 "first", 0 "zero", 7 "seven", 4 "second", -2 "negative".
COdictDataStructure sampleList()
{
    COdictDataStructure list;
    list.append(structure(4, QStringLiteral("A"), QStringLiteral("first")));
    list.append(structure(0, QStringLiteral("Z"), QStringLiteral("zero")));
    list.append(structure(7, QStringLiteral("S"), QStringLiteral("seven")));
    list.append(structure(4, QStringLiteral("B"), QStringLiteral("second")));
    list.append(structure(-2, QStringLiteral("N"), QStringLiteral("negative")));
    return list;
}

COdictEditorObject editorObject(uint id, uint subId = 0xFFFFFFFFu)
{
    COdictEditorObject object;
    object.setId(id);
    object.setSubId(subId);
    object.setName(QStringLiteral("Speed"));
    return object;
}

COdictEditorObject withMin(const CVariant &value)
{
    COdictEditorObject object = editorObject(0x2000u);
    object.setMinValue(value);
    return object;
}

CXMLMetaData version(quint32 value, const QString &author)
{
    return CXMLMetaData(QDate(2024, 1, 1), QTime(8, 0), author, QString(), NTypes::uVersion_t(value));
}

QStringList authors(const COdictHistory &history)
{
    QStringList list;
    for (int i = 0; i < history.size(); ++i)
        list << history.at(i).author();
    return list;
}

} // namespace

class tst_OdictDataStructures : public QObject
{
    Q_OBJECT

private slots:
    void lookupsById_data();
    void lookupsById();
    void idToUiNameMapTakesTheLaterEntry();
    void initialValue_data();
    void initialValue();
    void sourceKeywords();

    void historyReplacesInPlace_data();
    void historyReplacesInPlace();
    void historyIndexOfVersion();
};

void tst_OdictDataStructures::lookupsById_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("uiName");

    QTest::newRow("shared id answers the first entry") << 4 << "A" << "first";
    QTest::newRow("id 0 is found") << 0 << "Z" << "zero";
    QTest::newRow("single entry") << 7 << "S" << "seven";
    QTest::newRow("negative id") << -2 << "N" << "negative";
    QTest::newRow("missing id") << 5 << "" << "";
}

void tst_OdictDataStructures::lookupsById()
{
    QFETCH(int, id);
    QFETCH(QString, name);
    QFETCH(QString, uiName);

    const COdictDataStructure list = sampleList();
    const Structure found = list.data(id);
    QCOMPARE(found.name, name);
    QCOMPARE(found.uiName, uiName);
    QCOMPARE(list.findUiName(id), uiName);
    if (name.isEmpty()) {
        QVERIFY(found == Structure());
        QCOMPARE(found.id, 0);
        QVERIFY(found.members.isEmpty());
    } else {
        QCOMPARE(found.id, id);
        QCOMPARE(found.members.size(), 1);
    }
}

void tst_OdictDataStructures::idToUiNameMapTakesTheLaterEntry()
{
    COdictDataStructure list = sampleList();
    const QMap<int, QString> expected{{4, QStringLiteral("second")}, {7, QStringLiteral("seven")}};
    QCOMPARE(list.idToUiNameMap(), expected);
    QCOMPARE(list.size(), 5);
    QCOMPARE(list.at(3).name, QStringLiteral("B"));

    list.append(list.at(0)); // duplicates are kept
    QCOMPARE(list.size(), 6);
    QCOMPARE(list.idToUiNameMap().value(4), QStringLiteral("first"));
    list.clear();
    QCOMPARE(list.size(), 0);
    QVERIFY(list.idToUiNameMap().isEmpty());
}

void tst_OdictDataStructures::initialValue_data()
{
    using D = COdictDataStructure;
    QTest::addColumn<D::eMemberSource_t>("source");
    QTest::addColumn<QString>("literal");
    QTest::addColumn<COdictEditorObject>("object");
    QTest::addColumn<QString>("expected");

    const COdictEditorObject plain = editorObject(0x2001u);
    COdictEditorObject rich = editorObject(0xABu, 0x1Fu);
    rich.setDataType(NTypes::E_U16);
    rich.setDataSize(8);
    rich.setArrayLength(4);
    rich.setAccessRights(0xAAu);
    rich.setObjectUsage(0x82u);
    rich.setUserlevelRead(2);
    rich.setUserlevelWrite(5);
    rich.setName(QStringLiteral("Sp\"e\\d"));
    rich.setFwVariablename(QStringLiteral("g_speed"));
    rich.setFwFunctionname(QStringLiteral("speedAccess"));

    QTest::newRow("literal") << D::E_MS_LITERAL << "NULL" << plain << "NULL";
    QTest::newRow("id") << D::E_MS_ID << "" << plain << "0x00002001U";
    QTest::newRow("id with hex letters") << D::E_MS_ID << "" << rich << "0x000000ABU";
    QTest::newRow("sub-id") << D::E_MS_SUBID << "" << rich << "0x1FU";
    QTest::newRow("without sub-id") << D::E_MS_SUBID << "" << plain << "0xFFFFFFFFU";
    QTest::newRow("data type") << D::E_MS_DATATYPE << "" << rich << "4U";
    QTest::newRow("data size") << D::E_MS_DATASIZE << "" << rich << "8U";
    QTest::newRow("array length") << D::E_MS_ARRAYLENGTH << "" << rich << "4U";
    QTest::newRow("access rights") << D::E_MS_ACCESSRIGHTS << "" << rich << "0x000000AAU";
    QTest::newRow("object usage") << D::E_MS_OBJECTUSAGE << "" << rich << "0x82U";
    QTest::newRow("user level read") << D::E_MS_USERLEVEL_READ << "" << rich << "2U";
    QTest::newRow("user level write") << D::E_MS_USERLEVEL_WRITE << "" << rich << "5U";
    QTest::newRow("name escaped") << D::E_MS_NAME << "" << rich << "\"Sp\\\"e\\\\d\"";
    QTest::newRow("firmware variable") << D::E_MS_FW_VARIABLE << "NULL" << rich << "&g_speed";
    QTest::newRow("no firmware variable") << D::E_MS_FW_VARIABLE << "NULL" << plain << "NULL";
    QTest::newRow("firmware function") << D::E_MS_FW_FUNCTION << "0" << rich << "speedAccess";
    QTest::newRow("no firmware function") << D::E_MS_FW_FUNCTION << "0" << plain << "0";

    // Limits and defaults are C numbers of their type, or the literal when there is none.
    QTest::newRow("no minimum") << D::E_MS_MIN << "0" << plain << "0";
    QTest::newRow("signed minimum") << D::E_MS_MIN << "0" << withMin(CVariant::fromI64(-5, NTypes::E_I32)) << "-5";
    QTest::newRow("lowest 32-bit") << D::E_MS_MIN << "0"
                                   << withMin(CVariant::fromI64(std::numeric_limits<qint32>::min(), NTypes::E_I32))
                                   << "(-2147483647 - 1)";
    QTest::newRow("lowest 64-bit") << D::E_MS_MIN << "0"
                                   << withMin(CVariant::fromI64(std::numeric_limits<qint64>::min(), NTypes::E_I64))
                                   << "(-9223372036854775807LL - 1)";
    QTest::newRow("wide signed") << D::E_MS_MIN << "0" << withMin(CVariant::fromI64(-3000000000LL, NTypes::E_I64))
                                 << "-3000000000LL";
    QTest::newRow("unsigned") << D::E_MS_MIN << "0" << withMin(CVariant::fromU64(4294967295ULL, NTypes::E_U32))
                              << "4294967295U";
    QTest::newRow("wide unsigned") << D::E_MS_MIN << "0" << withMin(CVariant::fromU64(4294967296ULL, NTypes::E_U64))
                                   << "4294967296ULL";
    QTest::newRow("double") << D::E_MS_MIN << "0" << withMin(CVariant::fromF64(1.5, NTypes::E_F64)) << "1.5";
    QTest::newRow("whole double") << D::E_MS_MIN << "0" << withMin(CVariant::fromF64(2.0, NTypes::E_F64)) << "2.0";
    QTest::newRow("float") << D::E_MS_MIN << "0" << withMin(CVariant::fromF64(-0.5, NTypes::E_F32)) << "-0.5f";

    COdictEditorObject limits = editorObject(0x2000u);
    limits.setMaxValue(CVariant::fromI64(100, NTypes::E_I16));
    limits.setDefaultValue(CVariant::fromU64(7, NTypes::E_U8));
    QTest::newRow("maximum") << D::E_MS_MAX << "0" << limits << "100";
    QTest::newRow("default") << D::E_MS_DEFAULT << "0" << limits << "7U";
}

void tst_OdictDataStructures::initialValue()
{
    QFETCH(COdictDataStructure::eMemberSource_t, source);
    QFETCH(QString, literal);
    QFETCH(COdictEditorObject, object);
    QFETCH(QString, expected);

    const Member member{QStringLiteral("uint32_t"), QStringLiteral("value"), source, literal};
    QCOMPARE(COdictDataStructure::initialValue(member, object), expected);
}

void tst_OdictDataStructures::sourceKeywords()
{
    for (int s = COdictDataStructure::E_MS_LITERAL; s <= COdictDataStructure::E_MS_FW_FUNCTION; ++s) {
        const auto source = COdictDataStructure::eMemberSource_t(s);
        bool ok = false;
        QCOMPARE(COdictDataStructure::strToSource(COdictDataStructure::sourceToStr(source), &ok), source);
        QVERIFY(ok);
    }
    bool ok = true;
    QCOMPARE(COdictDataStructure::strToSource(QStringLiteral("Id"), &ok), COdictDataStructure::E_MS_LITERAL);
    QVERIFY(!ok);
}

void tst_OdictDataStructures::historyReplacesInPlace_data()
{
    QTest::addColumn<bool>("prepend");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QStringList>("expected");

    // The history holds versions 1..5 by the authors a..e.
    QTest::newRow("prepend of a known version") << true << 4u << QStringList{"a", "b", "c", "new", "e"};
    QTest::newRow("append of a known version") << false << 1u << QStringList{"new", "b", "c", "d", "e"};
    QTest::newRow("prepend of a new version") << true << 9u << QStringList{"new", "a", "b", "c", "d", "e"};
    QTest::newRow("append of a new version") << false << 9u << QStringList{"a", "b", "c", "d", "e", "new"};
}

void tst_OdictDataStructures::historyReplacesInPlace()
{
    QFETCH(bool, prepend);
    QFETCH(quint32, version);
    QFETCH(QStringList, expected);

    COdictHistory history;
    const QStringList initial{"a", "b", "c", "d", "e"};
    for (int i = 0; i < initial.size(); ++i)
        history.append(::version(quint32(i + 1), initial.at(i)));
    const COdictHistory before = history;

    const CXMLMetaData record = ::version(version, QStringLiteral("new"));
    if (prepend)
        history.prepend(record);
    else
        history.append(record);
    QCOMPARE(authors(history), expected);
    QCOMPARE(history.at(expected.indexOf(QStringLiteral("new"))), record);
    QCOMPARE(authors(before), initial); // copies are independent
}

void tst_OdictDataStructures::historyIndexOfVersion()
{
    COdictHistory history;
    QCOMPARE(history.indexOfVersion(version(1, QStringLiteral("a"))), -1);
    history.prepend(version(1, QStringLiteral("a")));
    history.prepend(version(2, QStringLiteral("b")));
    QCOMPARE(history.indexOfVersion(version(1, QStringLiteral("other"))), 1);
    QCOMPARE(history.indexOfVersion(version(3, QStringLiteral("a"))), -1);
    history.clear();
    QCOMPARE(history.size(), 0);
}

QTEST_GUILESS_MAIN(tst_OdictDataStructures)
#include "tst_odictdatastructures.moc"

#include "COdictDataStructure.h"
#include "COdictEditorObject.h"
#include "COdictHistory.h"

#include <QtTest>

#include <limits>

using Structure = COdictDataStructure::SDataStructure_t;
using Member = COdictDataStructure::SDataStructureMember_t;
using D = COdictDataStructure;

Q_DECLARE_METATYPE(COdictDataStructure::eMemberSource_t)

namespace {

// Ids 4 "first", 0 "zero", 7 "seven", 4 "second", -2 "negative".
const Structure samples[] = {
    {"A", "first", "text", 4, {Member{"uint32_t", "id", D::E_MS_ID, QString()}}},
    {"Z", "zero", "", 0, {}},
    {"S", "seven", "", 7, {}},
    {"B", "second", "", 4, {}},
    {"N", "negative", "", -2, {}}};

COdictDataStructure sampleList()
{
    COdictDataStructure list;
    for (const Structure &s : samples)
        list.append(s);
    return list;
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
    void lookupsById();
    void initialValue_data();
    void initialValue();
    void sourceKeywords();
    void historyReplacesInPlace_data();
    void historyReplacesInPlace();
};

void tst_OdictDataStructures::lookupsById()
{
    COdictDataStructure list = sampleList();
    // Entry 3 shares its id with entry 0, so the lookups answer entry 0; ids 0 and -2 are found as well.
    for (const int index : {0, 1, 2, 4}) {
        const int id = samples[index].id;
        QVERIFY2(list.data(id) == samples[index], qPrintable(QString::number(id)));
        QCOMPARE(list.findUiName(id), samples[index].uiName);
    }
    QVERIFY(list.data(5) == Structure());
    QCOMPARE(list.findUiName(5), QString());

    // The map has only positive ids; of a shared id the later entry wins.
    QCOMPARE(list.idToUiNameMap(), (QMap<int, QString>{{4, QStringLiteral("second")}, {7, QStringLiteral("seven")}}));
    list.append(list.at(0)); // duplicates are kept
    QCOMPARE(list.idToUiNameMap().value(4), QStringLiteral("first"));
    list.clear();
    QVERIFY(list.idToUiNameMap().isEmpty());
}

void tst_OdictDataStructures::initialValue_data()
{
    QTest::addColumn<D::eMemberSource_t>("source");
    QTest::addColumn<COdictEditorObject>("object");
    QTest::addColumn<QString>("expected");

    COdictEditorObject plain;
    plain.setId(0x2001u);
    plain.setName(QStringLiteral("Speed"));
    COdictEditorObject rich = plain;
    rich.setId(0xABu);
    rich.setSubId(0x1Fu);
    rich.setDataType(NTypes::E_U16);
    rich.setDataSize(8);
    rich.setArrayLength(3);
    rich.setAccessRights(0xAAu);
    rich.setObjectUsage(0x82u);
    rich.setUserlevelRead(2);
    rich.setUserlevelWrite(5);
    rich.setName(QStringLiteral("Sp\"e\\d"));
    rich.setFwVariablename(QStringLiteral("g_speed"));
    rich.setFwFunctionname(QStringLiteral("speedAccess"));

    QTest::newRow("literal") << D::E_MS_LITERAL << plain << "FB";
    QTest::newRow("id with hex letters") << D::E_MS_ID << rich << "0x000000ABU";
    QTest::newRow("sub-id") << D::E_MS_SUBID << rich << "0x1FU";
    QTest::newRow("without sub-id") << D::E_MS_SUBID << plain << "0xFFFFFFFFU";
    QTest::newRow("data type") << D::E_MS_DATATYPE << rich << "4U";
    QTest::newRow("data size") << D::E_MS_DATASIZE << rich << "8U";
    QTest::newRow("array length") << D::E_MS_ARRAYLENGTH << rich << "3U";
    QTest::newRow("access rights") << D::E_MS_ACCESSRIGHTS << rich << "0x000000AAU";
    QTest::newRow("object usage") << D::E_MS_OBJECTUSAGE << rich << "0x82U";
    QTest::newRow("user level read") << D::E_MS_USERLEVEL_READ << rich << "2U";
    QTest::newRow("user level write") << D::E_MS_USERLEVEL_WRITE << rich << "5U";
    QTest::newRow("name escaped") << D::E_MS_NAME << rich << "\"Sp\\\"e\\\\d\"";
    QTest::newRow("firmware variable") << D::E_MS_FW_VARIABLE << rich << "&g_speed";
    QTest::newRow("no firmware variable") << D::E_MS_FW_VARIABLE << plain << "FB";
    QTest::newRow("firmware function") << D::E_MS_FW_FUNCTION << rich << "speedAccess";
    QTest::newRow("no firmware function") << D::E_MS_FW_FUNCTION << plain << "FB";

    // Limits and defaults are C numbers of their type, or the literal when there is none.
    rich.setMaxValue(CVariant::fromI64(100, NTypes::E_I16));
    rich.setDefaultValue(CVariant::fromU64(7, NTypes::E_U8));
    QTest::newRow("maximum") << D::E_MS_MAX << rich << "100";
    QTest::newRow("default") << D::E_MS_DEFAULT << rich << "7U";
    QTest::newRow("no minimum") << D::E_MS_MIN << plain << "FB";
    const auto minimum = [&](const char *row, const CVariant &value, const char *expected) {
        COdictEditorObject object = plain;
        object.setMinValue(value);
        QTest::newRow(row) << D::E_MS_MIN << object << QString::fromLatin1(expected);
    };
    using L32 = std::numeric_limits<qint32>;
    using L64 = std::numeric_limits<qint64>;
    minimum("signed", CVariant::fromI64(-5, NTypes::E_I32), "-5");
    minimum("lowest 32-bit", CVariant::fromI64(L32::min(), NTypes::E_I32), "(-2147483647 - 1)");
    minimum("lowest 64-bit", CVariant::fromI64(L64::min(), NTypes::E_I64), "(-9223372036854775807LL - 1)");
    minimum("wide signed", CVariant::fromI64(-3000000000LL, NTypes::E_I64), "-3000000000LL");
    minimum("unsigned", CVariant::fromU64(4294967295ULL, NTypes::E_U32), "4294967295U");
    minimum("wide unsigned", CVariant::fromU64(4294967296ULL, NTypes::E_U64), "4294967296ULL");
    minimum("whole double", CVariant::fromF64(2.0, NTypes::E_F64), "2.0");
    minimum("float", CVariant::fromF64(-0.5, NTypes::E_F32), "-0.5f");
}

void tst_OdictDataStructures::initialValue()
{
    QFETCH(D::eMemberSource_t, source);
    QFETCH(COdictEditorObject, object);
    QFETCH(QString, expected);

    // Every member falls back to the literal "FB".
    const Member member{QStringLiteral("uint32_t"), QStringLiteral("value"), source, QStringLiteral("FB")};
    QCOMPARE(D::initialValue(member, object), expected);
}

void tst_OdictDataStructures::sourceKeywords()
{
    for (int s = D::E_MS_LITERAL; s <= D::E_MS_FW_FUNCTION; ++s) {
        bool ok = false;
        QCOMPARE(D::strToSource(D::sourceToStr(D::eMemberSource_t(s)), &ok), D::eMemberSource_t(s));
        QVERIFY(ok);
    }
    bool ok = true;
    QCOMPARE(D::strToSource(QStringLiteral("Id"), &ok), D::E_MS_LITERAL); // keywords are case-sensitive
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

    // A version is found by its number alone, whoever wrote it.
    const CXMLMetaData record = ::version(version, QStringLiteral("new"));
    QCOMPARE(before.indexOfVersion(record), version <= 5 ? int(version) - 1 : -1);
    if (prepend)
        history.prepend(record);
    else
        history.append(record);
    QCOMPARE(authors(history), expected);
    QCOMPARE(history.indexOfVersion(record), expected.indexOf(QStringLiteral("new")));
    QCOMPARE(authors(before), initial); // copies are independent
}

QTEST_GUILESS_MAIN(tst_OdictDataStructures)
#include "tst_odictdatastructures.moc"

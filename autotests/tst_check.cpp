// The library's dictionary checks and the tool's check --format json.
#include "CDataTypeParser.h"
#include "COdictCheck.h"
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

using Fault = std::function<void(COdictEdit &)>;

void add(COdictEdit &dict, unsigned int id, const char *name, NTypes::eTypes_t type, unsigned int subId = COdictObject::NoId)
{
    COdictEditorObject object;
    object.setId(id);
    object.setSubId(subId);
    object.setName(QLatin1String(name));
    object.setUiName(QLatin1String(name));
    object.setDataType(type);
    object.setDataSize(CDataTypeParser::typeSize(type));
    bool ok = false;
    const bool sub = subId != COdictObject::NoId;
    COdictNode *node = dict.objectTree()->createObjectNode(object, sub ? NkrOdict::E_IT_SUBOBJECT : NkrOdict::E_IT_OBJECT, &ok);
    Q_ASSERT(ok);
    COdictNode *parent = sub ? dict.objectTree()->node(id, COdictObject::NoId) : dict.objectTree()->dictionaryNode();
    parent->appendChild(node);
    if (sub)
        dict.objectTree()->objectPtr(id, COdictObject::NoId)->addSubId(subId);
}

/// A dictionary that passes every check: limits, a default, texts and a record.
std::unique_ptr<COdictEdit> cleanDictionary()
{
    auto dict = std::make_unique<COdictEdit>(NkrOdict::E_OT_EDITOR);
    dict->objectTree()->rootNode()->appendChild(dict->objectTree()->createDictionaryNode(QStringLiteral("Check")));
    add(*dict, 1, "SPEED", NTypes::E_U16);
    add(*dict, 2, "GAIN", NTypes::E_F32);
    add(*dict, 3, "STATUS", NTypes::E_U8);
    add(*dict, 4, "RECORD", NTypes::E_U8);
    add(*dict, 4, "RECORD_1", NTypes::E_U32, 1);
    add(*dict, 4, "RECORD_2", NTypes::E_U32, 2);
    COdictObject *speed = dict->objectTree()->objectPtr(1, COdictObject::NoId);
    speed->setMinValue(CVariant::fromU64(0, NTypes::E_U16));
    speed->setMaxValue(CVariant::fromU64(100, NTypes::E_U16));
    speed->setDefaultValue(CVariant::fromU64(100, NTypes::E_U16)); // on the limit is inside
    speed->enumDataPtr()->insert(0, QStringLiteral("Off"));
    speed->enumDataPtr()->insert(100, QStringLiteral("Full"));
    COdictObject *gain = dict->objectTree()->objectPtr(2, COdictObject::NoId);
    gain->setMinValue(CVariant::fromF64(-1.5, NTypes::E_F32));
    gain->setMaxValue(CVariant::fromF64(1.5, NTypes::E_F32));
    gain->setDefaultValue(CVariant::fromF64(0.25, NTypes::E_F32));
    dict->objectTree()->objectPtr(3, COdictObject::NoId)->bitSetDataPtr()->insert(7, QStringLiteral("Last bit"));
    return dict;
}

COdictObject *object(COdictEdit &dict, unsigned int id, unsigned int subId = COdictObject::NoId)
{
    return dict.objectTree()->objectPtr(id, subId);
}

/// "rule id[:subId] severity" of each finding, comparable in one go.
QStringList summary(const QList<sOdictFinding_t> &findings)
{
    QStringList lines;
    for (const sOdictFinding_t &f : findings) {
        QString where = QString::number(f.id);
        if (f.subId != COdictObject::NoId)
            where += QLatin1Char(':') + QString::number(f.subId);
        lines << QStringLiteral("%1 %2 %3").arg(f.rule, where, f.severity == NkrLogfiles::E_SEV_INFO ? QStringLiteral("info") : QStringLiteral("warning"));
    }
    return lines;
}

struct sRun_t {
    int exitCode;
    QByteArray output;
};

sRun_t odict(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(ODICT_TOOL), arguments);
    if (!process.waitForFinished(60000))
        return {-1, QByteArray()};
    return {process.exitCode(), process.readAllStandardOutput()};
}

} // namespace

Q_DECLARE_METATYPE(Fault)

class tst_Check : public QObject
{
    Q_OBJECT

private slots:
    void cleanDictionaryHasNoFindings()
    {
        const auto dict = cleanDictionary();
        QCOMPARE(summary(COdictCheck::check(dict.get())), QStringList());
    }

    void findsTheFault_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("minimum above maximum") << Fault([](COdictEdit &d) {
            object(d, 1)->setMinValue(CVariant::fromU64(101, NTypes::E_U16));
        }) << QStringList{"limits-inverted 1 warning", "enum-outside-limits 1 warning", "enum-outside-limits 1 warning"};
        QTest::newRow("Y minimum above Y maximum") << Fault([](COdictEdit &d) {
            object(d, 2)->setYMinValue(CVariant::fromI64(5, NTypes::E_I32));
            object(d, 2)->setYMaxValue(CVariant::fromI64(-5, NTypes::E_I32));
        }) << QStringList{"limits-inverted 2 warning"};
        QTest::newRow("default below the minimum") << Fault([](COdictEdit &d) {
            object(d, 2)->setDefaultValue(CVariant::fromF64(-1.75, NTypes::E_F32));
        }) << QStringList{"default-outside-limits 2 warning"};
        QTest::newRow("default above a maximum of 0") << Fault([](COdictEdit &d) {
            object(d, 1)->setMaxValue(CVariant::fromU64(0, NTypes::E_U16));
            object(d, 1)->enumDataPtr()->remove(100);
        }) << QStringList{"default-outside-limits 1 warning"};
        QTest::newRow("negative enumeration value of an unsigned object") << Fault([](COdictEdit &d) {
            object(d, 1)->enumDataPtr()->insert(-1, QStringLiteral("Minus"));
        }) << QStringList{"enum-outside-limits 1 warning"};
        QTest::newRow("bit beyond one byte") << Fault([](COdictEdit &d) {
            object(d, 3)->bitSetDataPtr()->insert(8, QStringLiteral("Ninth"));
        }) << QStringList{"bit-beyond-size 3 warning"};
        QTest::newRow("duplicate name") << Fault([](COdictEdit &d) {
            object(d, 2)->setName(QStringLiteral("SPEED"));
        }) << QStringList{"duplicate-name 2 warning"};
        QTest::newRow("display name missing") << Fault([](COdictEdit &d) {
            object(d, 4, 2)->setUiName(QString());
        }) << QStringList{"display-name-missing 4:2 info"};
        QTest::newRow("listed sub-id without sub-object") << Fault([](COdictEdit &d) {
            object(d, 4)->addSubId(5);
        }) << QStringList{"subid-list-mismatch 4 warning"};
        QTest::newRow("sub-object missing from the list") << Fault([](COdictEdit &d) {
            object(d, 4)->removeSubIdFromList(1);
        }) << QStringList{"subid-list-mismatch 4 warning"};
        QTest::newRow("CANopen index shared") << Fault([](COdictEdit &d) {
            add(d, 0x2003, "USER", NTypes::E_I32);
        }) << QStringList{"canopen-index-collision 3 warning", "canopen-index-collision 8195 warning"};
        QTest::newRow("DS402 id onto another object") << Fault([](COdictEdit &d) {
            add(d, 0x6040, "CONTROLWORD", NTypes::E_U16);
            object(d, 1)->setDS402Id(0x6040);
        }) << QStringList{"canopen-index-collision 1 warning", "canopen-index-collision 24640 warning"};
    }

    void findsTheFault()
    {
        QFETCH(Fault, fault);
        QFETCH(QStringList, expected);

        const auto dict = cleanDictionary();
        fault(*dict);
        QCOMPARE(summary(COdictCheck::check(dict.get())), expected);
    }

    void toolPrintsJsonRecords()
    {
        const auto dict = cleanDictionary();
        object(*dict, 1)->setMinValue(CVariant::fromU64(0, NTypes::E_U16));
        object(*dict, 1)->setDefaultValue(CVariant::fromU64(200, NTypes::E_U16));
        object(*dict, 4, 2)->setUiName(QString());
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("faulty.xml"));
        QCOMPARE(dict->saveDictionary(path), 0);

        const sRun_t json = odict({QStringLiteral("check"), path, QStringLiteral("--format"), QStringLiteral("json")});
        QCOMPARE(json.exitCode, 1);
        QJsonParseError error;
        const QJsonArray records = QJsonDocument::fromJson(json.output, &error).array();
        QVERIFY2(error.error == QJsonParseError::NoError, json.output.constData());
        QCOMPARE(records.size(), 2);
        const QJsonObject first = records.at(0).toObject();
        QCOMPARE(first.value(QStringLiteral("rule")).toString(), QStringLiteral("default-outside-limits"));
        QCOMPARE(first.value(QStringLiteral("severity")).toString(), QStringLiteral("warning"));
        QCOMPARE(first.value(QStringLiteral("id")).toInt(), 1);
        QVERIFY(first.value(QStringLiteral("subId")).isNull());
        QCOMPARE(first.value(QStringLiteral("message")).toString(), QStringLiteral("SPEED (ID 1): default 200 lies outside the limits 0..100"));
        const QJsonObject second = records.at(1).toObject();
        QCOMPARE(second.value(QStringLiteral("rule")).toString(), QStringLiteral("display-name-missing"));
        QCOMPARE(second.value(QStringLiteral("severity")).toString(), QStringLiteral("info"));
        QCOMPARE(second.value(QStringLiteral("subId")).toInt(), 2);

        // The text lists warnings only, as the loader's messages always were.
        const sRun_t text = odict({QStringLiteral("check"), path});
        QCOMPARE(text.exitCode, 1);
        QCOMPARE(QString::fromUtf8(text.output),
                 QStringLiteral("warning: SPEED (ID 1): default 200 lies outside the limits 0..100\n%1: 1 problem(s)\n").arg(path));

        QCOMPARE(odict({QStringLiteral("check"), path, QStringLiteral("--format"), QStringLiteral("xml")}).exitCode, 64);
    }

    void loaderMessagesAreRecordsToo()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("noid.xml"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n<Name>D</Name>\n"
                   "<Object><Name>A</Name></Object>\n</KiroObjectDictionary>\n");
        file.close();
        const sRun_t json = odict({QStringLiteral("check"), path, QStringLiteral("--format=json")});
        QCOMPARE(json.exitCode, 1);
        const QJsonObject record = QJsonDocument::fromJson(json.output).array().at(0).toObject();
        QCOMPARE(record.value(QStringLiteral("rule")).toString(), QStringLiteral("load"));
        QVERIFY(record.value(QStringLiteral("id")).isNull());
        QVERIFY(record.value(QStringLiteral("message")).toString().contains(QLatin1String("has no attribute 'id'")));
    }

    void everyRuleIsDocumented()
    {
        QFile doc(QStringLiteral(KRODICT_SOURCE_DIR "/docs/odict-tool.md"));
        QVERIFY(doc.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(doc.readAll());
        const QStringList rules = COdictCheck::rules() << QStringLiteral("load");
        for (const QString &rule : rules)
            QVERIFY2(text.contains(QLatin1Char('`') + rule + QLatin1Char('`')), qPrintable(rule));
    }
};

QTEST_GUILESS_MAIN(tst_Check)
#include "tst_check.moc"

// The EDS exporter and the CANopen index rule it shares with the check and the tool.
#include "CDataTypeParser.h"
#include "CMemoryLogfile.h"
#include "COdictCanOpen.h"
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictExportEds.h"
#include "COdictObjectTree.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

/// Adds an editor object to \a parent of \a dict's tree; answers the new node.
COdictNode *add(COdictEdit &dict, COdictNode *parent, unsigned int id, const char *name, NTypes::eTypes_t type,
                unsigned int rights, unsigned int usage = NkrOdict::E_OU_PARAMETER, unsigned int subId = COdictObject::NoId)
{
    COdictEditorObject object;
    object.setId(id);
    object.setSubId(subId);
    object.setName(QLatin1String(name));
    object.setUiName(QString::fromLatin1(name).toLower().replace(QLatin1Char('_'), QLatin1Char(' ')));
    object.setDataType(type);
    object.setDataSize(CDataTypeParser::typeSize(type));
    object.setAccessRights(rights);
    object.setObjectUsage(usage);
    bool ok = false;
    COdictNode *node = dict.objectTree()->createObjectNode(
        object, subId == COdictObject::NoId ? NkrOdict::E_IT_OBJECT : NkrOdict::E_IT_SUBOBJECT, &ok);
    Q_ASSERT(ok);
    parent->appendChild(node);
    if (subId != COdictObject::NoId)
        parent->dataPtr()->toEditorObjectPtr()->addSubId(subId);
    return node;
}

const unsigned int ro = NkrOdict::E_AR_READ_FIELDBUS;
const unsigned int rw = NkrOdict::E_AR_READ_FIELDBUS | NkrOdict::E_AR_WRITE_FIELDBUS;

/// A small dictionary with one object of every kind the EDS distinguishes, and one of every
/// reason to leave an object out.
std::unique_ptr<COdictEdit> smallDictionary()
{
    using namespace NTypes;
    auto dict = std::make_unique<COdictEdit>(NkrOdict::E_OT_EDITOR);
    const CXMLMetaData first(QDate(2023, 1, 2), QTime(8, 0, 0), QStringLiteral("First Author"), QStringLiteral("first"), 0x01000000);
    dict->objectTree()->setHistory(COdictHistory());
    dict->setOdictMetaData(first);
    dict->setOdictMetaData(CXMLMetaData(QDate(2024, 2, 29), QTime(13, 5, 9), QStringLiteral("Demo Author"),
                                        QStringLiteral("small"), 0x01020003));
    COdictObjectTree *tree = dict->objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("EdsDict"));
    tree->rootNode()->appendChild(top);
    COdictNode *comm = tree->createGroupNode(QStringLiteral("COMM"), QStringLiteral("Kommunikation"));
    COdictNode *drive = tree->createGroupNode(QStringLiteral("DRIVE"), QStringLiteral("Antrieb"));
    top->appendChild(comm);
    top->appendChild(drive);
    COdict &d = *dict;
    const auto set = [&d](unsigned int id, unsigned int subId = COdictObject::NoId) {
        return d.objectTree()->objectPtr(id, subId);
    };

    add(*dict, comm, 0x1000, "CO_DEVICE_TYPE", E_U32, ro, NkrOdict::E_OU_ACTUAL);
    set(0x1000)->setDefaultValue(CVariant::fromU64(0x20192, E_U32));
    COdictNode *identity = add(*dict, comm, 0x1018, "CO_IDENTITY", E_U8, ro, NkrOdict::E_OU_ACTUAL);
    add(*dict, identity, 0x1018, "CO_VENDOR", E_U32, ro, NkrOdict::E_OU_ACTUAL, 1);
    add(*dict, identity, 0x1018, "CO_PRODUCT", E_U32, ro, NkrOdict::E_OU_ACTUAL, 2);
    COdictNode *rxPdo = add(*dict, comm, 0x1600, "CO_RXPDO1", E_U8, rw);
    add(*dict, rxPdo, 0x1600, "CO_RXPDO1_ENTRY1", E_U32, rw, NkrOdict::E_OU_PARAMETER, 1);

    add(*dict, drive, 1, "SPEED", E_U16, rw);
    set(1)->setMinValue(CVariant::fromU64(0, E_U16));
    set(1)->setMaxValue(CVariant::fromU64(6000, E_U16));
    set(1)->setDefaultValue(CVariant::fromU64(1500, E_U16));
    set(1)->enumDataPtr()->insert(0, QStringLiteral("Off"));
    set(1)->enumDataPtr()->insert(1500, QStringLiteral("Nominal"));
    add(*dict, drive, 2, "CURRENT", E_F32, ro, NkrOdict::E_OU_ACTUAL);
    set(2)->setMinValue(CVariant::fromF64(-10.5, E_F32));
    set(2)->setMaxValue(CVariant::fromF64(10.5, E_F32));
    add(*dict, drive, 3, "STATE", E_U8, ro, NkrOdict::E_OU_OBJECT);
    set(3)->bitSetDataPtr()->insert(0, QStringLiteral("Ready"));
    set(3)->bitSetDataPtr()->insert(3, QStringLiteral("Fault"));
    add(*dict, drive, 4, "LABEL", E_VSTRING, rw);
    set(4)->setDataSize(16);
    set(4)->setDefaultValue(CVariant(QStringLiteral("Axis"), E_VSTRING));
    add(*dict, drive, 5, "TABLE", E_DS402_I16ARRAY, rw);
    set(5)->setDataSize(6);
    set(5)->setDefaultValue(CVariant(QStringLiteral("0100ffff0200"), E_DS402_I16ARRAY));
    add(*dict, drive, 6, "CURVE", E_XY, rw);
    add(*dict, drive, 7, "HIDDEN", E_U8, NkrOdict::E_AR_READ_OPERATOR);
    add(*dict, drive, 8, "CLASH", E_U8, rw);
    add(*dict, drive, 0x2008, "CLASH_TOO", E_U8, rw);
    add(*dict, drive, 9, "POSITION", E_I32, ro, NkrOdict::E_OU_ACTUAL);
    set(9)->setDS402Id(0x6064);
    COdictNode *record = add(*dict, drive, 10, "LIMITS", E_U8, rw);
    add(*dict, record, 10, "LIMITS_COUNT", E_U32, rw, NkrOdict::E_OU_PARAMETER, 0);
    add(*dict, record, 10, "LIMITS_LOW", E_I8, rw, NkrOdict::E_OU_PARAMETER, 1);
    add(*dict, record, 10, "LIMITS_HIGH", E_U16, rw, NkrOdict::E_OU_PARAMETER, 3);
    add(*dict, drive, 11, "LONG", E_U8, rw);
    set(11)->setUiName(QString(300, QLatin1Char('x')));
    add(*dict, drive, 0x10000, "FAR", E_U8, rw);
    add(*dict, drive, 0x6040, "CONTROLWORD", E_U16, rw);
    return dict;
}

const QDate exportDate(2024, 3, 5);

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_ExportEds : public QObject
{
    Q_OBJECT

private slots:
    void canOpenIndex_data()
    {
        QTest::addColumn<uint>("id");
        QTest::addColumn<uint>("ds402Id");
        QTest::addColumn<uint>("index");

        const uint none = COdictObject::NoId;
        QTest::newRow("manufacturer object 0") << 0u << none << 0x2000u;
        QTest::newRow("last manufacturer object, DS402 id 0") << 0xFFFu << 0u << 0x2FFFu;
        QTest::newRow("communication object at its own index") << 0x1000u << none << 0x1000u;
        QTest::newRow("PDO mapping") << 0x1A01u << 0u << 0x1A01u;
        QTest::newRow("manufacturer area keeps its number") << 0x2005u << none << 0x2005u;
        QTest::newRow("profile object") << 0x6040u << 0x6040u << 0x6040u;
        QTest::newRow("DS402 id wins") << 5u << 0x6064u << 0x6064u;
        QTest::newRow("DS402 id among the type entries is ignored") << 5u << 0x500u << 0x2005u;
        QTest::newRow("highest index") << 0xFFFFu << none << 0xFFFFu;
        QTest::newRow("id beyond 16 bits") << 0x10000u << none << none;
        QTest::newRow("id beyond 16 bits with DS402 id") << 0x10000u << 0x3000u << 0x3000u;
    }

    void canOpenIndex()
    {
        QFETCH(uint, id);
        QFETCH(uint, ds402Id);
        QFETCH(uint, index);
        QCOMPARE(COdictCanOpen::index(id, ds402Id), index);
    }

    void matchesExpectedFile()
    {
        const auto dict = smallDictionary();
        CMemoryLogfile log;
        dict->setLogfile(&log);
        log.clear();
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("small.eds"));
        COdictExportEds exporter(dict.get());
        exporter.setDate(exportDate);
        exporter.setVendorName(QStringLiteral("Demo Vendor"));
        QVERIFY(exporter.exportToEds(path));

        // KRODICT_UPDATE_EXPECTED=1 rewrites the expected file; review every changed line.
        const QString expected = QStringLiteral("data/eds_expected.eds");
        if (qEnvironmentVariableIsSet("KRODICT_UPDATE_EXPECTED")) {
            const QString target = QStringLiteral(KRODICT_SOURCE_DIR "/autotests/") + expected;
            QFile::remove(target);
            QVERIFY(QFile::copy(path, target));
        }
        const QByteArray actual = contents(path);
        QCOMPARE(QString::fromUtf8(actual).split(QStringLiteral("\r\n")),
                 QString::fromUtf8(contents(QFINDTESTDATA(expected))).split(QStringLiteral("\r\n")));
        QVERIFY(!actual.startsWith("\xEF\xBB\xBF"));

        const QStringList leftOut{
            QStringLiteral("CLASH (ID 8): its CANopen index 0x2008 is also claimed by CLASH_TOO"),
            QStringLiteral("CLASH_TOO (ID 8200): its CANopen index 0x2008 is also claimed by CLASH"),
            QStringLiteral("FAR (ID 65536): its id has no CANopen index"),
            QStringLiteral("CURVE (ID 6): CANopen has no data type for XY"),
            QStringLiteral("HIDDEN (ID 7): the fieldbus may neither read nor write it"),
            QStringLiteral("LIMITS_COUNT (ID 10:00): sub-index 0 holds the number of entries"),
        };
        QCOMPARE(exporter.leftOut(), leftOut);
        // Each one is also a warning in the dictionary's log.
        QCOMPARE(log.entries().size(), leftOut.size());
        QCOMPARE(log.entries().last().severity, NkrLogfiles::E_SEV_WARNING);
        QVERIFY(log.entries().last().text.endsWith(leftOut.last()));

        // A second export starts clean.
        QVERIFY(exporter.exportToEds(path));
        QCOMPARE(contents(path), actual);
        QCOMPARE(exporter.leftOut(), leftOut);
    }

    void demoPassesAnIndependentReader()
    {
        const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
        if (python.isEmpty())
            QSKIP("python3 is not installed");
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("demo.eds"));
        QProcess tool;
        tool.setProcessChannelMode(QProcess::MergedChannels);
        tool.start(QStringLiteral(ODICT_TOOL), {QStringLiteral("export"), QStringLiteral("eds"),
                                                QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml"),
                                                QStringLiteral("-o"), path});
        QVERIFY(tool.waitForFinished(60000));
        const QString output = QString::fromUtf8(tool.readAll());
        // Left out: two X/Y curves and one sub-index 0.
        QCOMPARE(tool.exitCode(), 1);
        QCOMPARE(output.count(QStringLiteral("left out: ")), 3);
        QVERIFY(output.contains(QStringLiteral("left out: TORQUE_CHARACTERISTIC (ID 430): CANopen has no data type for XY")));
        QVERIFY(output.contains(QStringLiteral("left out: ERROR_HISTORY_0 (ID 602:00): sub-index 0 holds the number of entries")));

        QProcess reader;
        reader.setProcessChannelMode(QProcess::MergedChannels);
        reader.start(python, {QFINDTESTDATA("data/eds_check.py"), path});
        QVERIFY(reader.waitForFinished(60000));
        const QString result = QString::fromUtf8(reader.readAll());
        QVERIFY2(reader.exitStatus() == QProcess::NormalExit && reader.exitCode() == 0, qPrintable(result));
        // 153 objects less the two curves and the sub-index 0 of a record.
        QCOMPARE(result.trimmed(), QStringLiteral("objects 151"));

        // The summary counts by the same rule.
        QProcess info;
        info.start(QStringLiteral(ODICT_TOOL), {QStringLiteral("info"), QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml")});
        QVERIFY(info.waitForFinished(60000));
        QVERIFY(QString::fromUtf8(info.readAllStandardOutput())
                    .contains(QStringLiteral("CANopen:       153 objects at an index of their own, 0 sharing one, 0 without\n")));
    }

    void failedWriteKeepsOldFile()
    {
        const auto dict = smallDictionary();
        QTemporaryDir dir;
        COdictExportEds exporter(dict.get());
        QVERIFY(!exporter.exportToEds(dir.filePath(QStringLiteral("missing/x.eds"))));
        const QString path = dir.filePath(QStringLiteral("old.eds"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("old.eds")));
        QVERIFY(!exporter.exportToEds(path));
        QVERIFY(QFileInfo(path).isDir());
    }
};

QTEST_GUILESS_MAIN(tst_ExportEds)
#include "tst_exporteds.moc"

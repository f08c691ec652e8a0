#include "CDataTypeParser.h"
#include "CDeviceData.h"
#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictObject.h"
#include "COdictObjectEnum.h"
#include "COdictObjectTree.h"
#include "CPath.h"

#include <QFile>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace NkrDeviceDatabase;
using Values = QList<long long>;

namespace {

// The objects a device narrows and the device keys it reads.
constexpr unsigned int objBrake = 231;
constexpr unsigned int objMask = 206;
constexpr unsigned int objSwitch = 207;
constexpr unsigned int objMin = 235;
constexpr unsigned int objMax = 236;
constexpr unsigned int objMax2 = 237;
const QList<unsigned int> allObjects{objBrake, objMask, objSwitch, objMin, objMax, objMax2};
const Values allBrake{0, 1, 2};
const Values allMask{1, 2, 3, 8, Q_INT64_C(0x100000000)};
const Values allSwitch{1, 2, 4};

/// A dictionary with the six narrowed objects, except those listed in \a missing.
std::unique_ptr<COdict> makeDictionary(ICLogfile *log, const QList<unsigned int> &missing = {})
{
    auto dict = std::make_unique<COdict>(NkrOdict::E_OT_STD, log);
    COdictObjectTree *tree = dict->objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Drive"));
    tree->rootNode()->appendChild(top);

    // Entry texts are paired with \a values in order; limits are set when given.
    auto add = [&](unsigned int id, const char *name, NTypes::eTypes_t type, const Values &values = {},
                   const QStringList &texts = {}, const char *min = nullptr, const char *max = nullptr) {
        if (missing.contains(id))
            return;
        COdictObject o;
        o.setId(id);
        o.setName(QString::fromLatin1(name));
        o.setUiShortName(o.name().toLower());
        o.setDataType(type);
        o.setDataSize(CDataTypeParser::typeSize(type));
        COdictObjectEnum e;
        for (int i = 0; i < values.size(); ++i)
            e.insert(values.at(i), texts.at(i));
        o.setEnumData(e);
        if (min)
            o.setMinValue(CVariant(QString::fromLatin1(min), type));
        if (max)
            o.setMaxValue(CVariant(QString::fromLatin1(max), type));
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, NkrOdict::E_IT_OBJECT, &ok);
        QVERIFY(ok);
        top->appendChild(node);
    };
    add(objBrake, "BRAKE_MODE", NTypes::E_U8, allBrake, {QStringLiteral("Off"), QStringLiteral("Brake"), QStringLiteral("Hold")});
    add(objMask, "FEEDBACK", NTypes::E_U64, allMask,
        {QStringLiteral("Resolver"), QStringLiteral("Encoder"), QStringLiteral("Both"), QStringLiteral("Hiperface"),
         QStringLiteral("High word")});
    add(objSwitch, "PWM_FREQUENCY", NTypes::E_U8, allSwitch,
        {QStringLiteral("4 kHz"), QStringLiteral("8 kHz"), QStringLiteral("16 kHz")});
    add(objMin, "BRAKE_DELAY", NTypes::E_F64, {}, {}, "-10", "10");
    add(objMax, "CURRENT_LIMIT", NTypes::E_F64, {}, {}, nullptr, "1000");
    add(objMax2, "SPEED_LIMIT", NTypes::E_I32, {}, {}, nullptr, "20000");
    return dict;
}

Values enumValues(const COdict &dict, unsigned int id)
{
    const COdictObject *o = dict.objectPtr(id);
    return o ? o->enumData().values() : Values();
}

/// Every narrowed object of \a dict, for "nothing changed" comparisons.
QList<COdictObject> snapshot(const COdict &dict)
{
    QList<COdictObject> objects;
    for (unsigned int id : allObjects)
        objects << dict.object(id);
    return objects;
}

CDeviceData makeDevice(const QString &brake, qint64 mask, qint64 switches)
{
    CDeviceData device(7, QStringLiteral("Drive A"), 0, 0xFFFFFFFF);
    device.setValue(243, E_SDP_MAIN, CVariant(brake, NTypes::E_F64));
    device.setValue(225, E_SDP_MAIN, CVariant::fromI64(mask, NTypes::E_I64));
    device.setValue(214, E_SDP_MAIN, CVariant::fromI64(switches, NTypes::E_U32));
    device.setValue(244, E_SDP_MAIN, CVariant(QStringLiteral("300.5"), NTypes::E_F64));
    device.setValue(245, E_SDP_MAIN, CVariant(QStringLiteral("6000"), NTypes::E_I32));
    return device;
}

/// Runs \a statements on a fresh SQLite file.
bool writeDatabase(const QString &file, const QStringList &statements)
{
    const QString connection = QStringLiteral("tst_odicthardware_writer");
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        ok = db.open();
        QSqlQuery q(db);
        for (const QString &statement : statements)
            ok = ok && q.exec(statement);
        if (!ok)
            qWarning() << q.lastError().text();
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok;
}

/// A device database with "Drive A" for versions 1.2.0 to 1.4.0; key 243 is set for position 1,
/// and for the main device unless \a withBrake is false.
QStringList deviceDatabase(bool withBrake)
{
    QStringList sql{
        QStringLiteral("CREATE TABLE device (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                       "version_min INTEGER NOT NULL, version_max INTEGER NOT NULL)"),
        QStringLiteral("CREATE TABLE property (device_id INTEGER NOT NULL REFERENCES device(id), "
                       "key INTEGER NOT NULL, pos INTEGER NOT NULL DEFAULT 0, type INTEGER NOT NULL, "
                       "value TEXT NOT NULL, PRIMARY KEY (device_id, key, pos))"),
        QStringLiteral("INSERT INTO device VALUES (3, 'Drive A', %1, %2)").arg(0x01020000).arg(0x01040000),
        QStringLiteral("INSERT INTO device VALUES (4, 'Drive B', 0, %1)").arg(0x7FFFFFFF)};
    auto property = [&sql](int key, int pos, NTypes::eTypes_t type, const char *value) {
        sql << QStringLiteral("INSERT INTO property VALUES (3, %1, %2, %3, '%4')")
                   .arg(key).arg(pos).arg(int(type)).arg(QLatin1String(value));
    };
    property(225, 0, NTypes::E_U64, "0x2");
    property(214, 0, NTypes::E_U32, "0x300");
    property(244, 0, NTypes::E_F64, "300.5");
    property(245, 0, NTypes::E_I32, "6000");
    property(243, 1, NTypes::E_F64, "2.5");
    if (withBrake)
        property(243, 0, NTypes::E_F64, "0");
    return sql;
}

} // namespace

class tst_OdictHardware : public QObject
{
    Q_OBJECT

private slots:
    void deviceNarrowsSelections_data();
    void deviceNarrowsSelections();
    void missingObjectGivesFalseButOtherStepsRun_data();
    void missingObjectGivesFalseButOtherStepsRun();
    void unusableInputChangesNothing();
    void lookup_data();
    void lookup();
};

void tst_OdictHardware::deviceNarrowsSelections_data()
{
    QTest::addColumn<QString>("brake");
    QTest::addColumn<qint64>("mask");
    QTest::addColumn<qint64>("switches");
    QTest::addColumn<Values>("brakeValues");
    QTest::addColumn<Values>("maskValues");
    QTest::addColumn<Values>("switchValues");
    QTest::addColumn<QStringList>("messages");

    const QString maskEmpty = QStringLiteral("The selection for 'feedback (ID 206)' is empty.");
    const QString switchEmpty = QStringLiteral("The selection for 'pwm_frequency (ID 207)' is empty. '4 kHz' is added.");

    QTest::newRow("brake 0.0 removes entry 1") << "0.0" << qint64(-1) << qint64(0x700) << Values{0, 2} << allMask
                                               << allSwitch << QStringList();
    QTest::newRow("negative brake removes entry 1") << "-0.25" << qint64(-1) << qint64(0x700) << Values{0, 2} << allMask
                                                    << allSwitch << QStringList();
    QTest::newRow("mask keeps entries sharing a bit") << "1.5" << qint64(0x1) << qint64(0x700) << allBrake << Values{1, 3}
                                                      << allSwitch << QStringList();
    QTest::newRow("mask in the high word") << "1" << Q_INT64_C(0x100000008) << qint64(0x500) << allBrake
                                           << Values{8, Q_INT64_C(0x100000000)} << Values{1, 4} << QStringList();
    QTest::newRow("only bits 0x700 of the switch word count")
        << "1" << qint64(-1) << qint64(0xFF) << allBrake << allMask << Values{1} << QStringList{switchEmpty};
    QTest::newRow("mask 0 and no switches, messages in step order")
        << "0" << qint64(0) << qint64(0) << Values{0, 2} << Values() << Values{1} << QStringList{maskEmpty, switchEmpty};
}

void tst_OdictHardware::deviceNarrowsSelections()
{
    QFETCH(QString, brake);
    QFETCH(qint64, mask);
    QFETCH(qint64, switches);
    QFETCH(Values, brakeValues);
    QFETCH(Values, maskValues);
    QFETCH(Values, switchValues);
    QFETCH(QStringList, messages);

    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    const COdictObjectEnum maskBefore = dict->object(objMask).enumData();
    log.clear();

    QVERIFY(dict->applyHardwareDependencies(makeDevice(brake, mask, switches), 0));

    QCOMPARE(enumValues(*dict, objBrake), brakeValues);
    QCOMPARE(enumValues(*dict, objMask), maskValues);
    QCOMPARE(enumValues(*dict, objSwitch), switchValues);
    // Entries kept keep their texts.
    for (long long value : maskValues)
        QCOMPARE(dict->object(objMask).enumData().name(value), maskBefore.name(value));
    QCOMPARE(dict->object(objSwitch).enumData().name(1), QStringLiteral("4 kHz"));
    // Key 243 is also the minimum of 235; only the minimum changes.
    QCOMPARE(dict->object(objMin).minValue().toF64(), brake.toDouble());
    QCOMPARE(dict->object(objMin).maxValue().toF64(), 10.0);
    QCOMPARE(dict->object(objMax).maxValue().toF64(), 300.5);
    QCOMPARE(dict->object(objMax2).maxValue().toI64(), qint64(6000));

    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), messages);
    QCOMPARE(log.entries().size(), messages.size());
    for (const CMemoryLogfile::sEntry_t &entry : log.entries())
        QCOMPARE(entry.flags, 0u);
}

void tst_OdictHardware::missingObjectGivesFalseButOtherStepsRun_data()
{
    QTest::addColumn<uint>("missing");
    for (unsigned int id : allObjects)
        QTest::newRow(qPrintable(QString::number(id))) << id;
}

void tst_OdictHardware::missingObjectGivesFalseButOtherStepsRun()
{
    QFETCH(uint, missing);

    CMemoryLogfile log;
    auto dict = makeDictionary(&log, {missing});
    QVERIFY(!dict->contains(missing));
    log.clear();

    const CDeviceData device = makeDevice(QStringLiteral("0"), 0x2, 0x200);
    QVERIFY(!dict->applyHardwareDependencies(device, 0));

    // Object 237 is the last step, so even its absence leaves the earlier steps done: every other
    // object ends up as in a complete dictionary.
    auto complete = makeDictionary(nullptr);
    QVERIFY(complete->applyHardwareDependencies(device, 0));
    for (unsigned int id : allObjects) {
        if (id != missing)
            QVERIFY2(dict->object(id) == complete->object(id), qPrintable(QString::number(id)));
    }
    QVERIFY(log.entries().isEmpty());
}

void tst_OdictHardware::unusableInputChangesNothing()
{
    // Device data not read from a database is not valid, even with properties set.
    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    const QList<COdictObject> before = snapshot(*dict);
    log.clear();
    CDeviceData invalid;
    invalid.setValue(243, E_SDP_MAIN, CVariant(QStringLiteral("0"), NTypes::E_F64));
    QVERIFY(!invalid.isValid());
    QVERIFY(!dict->applyHardwareDependencies(invalid, 0));
    QVERIFY(snapshot(*dict) == before);
    QVERIFY(log.entries().isEmpty());

    // A dictionary without a tree refuses both ways in, and opens no connection.
    COdict empty(NkrOdict::E_OT_UNKNOWN);
    QVERIFY(!empty.objectTree());
    QVERIFY(!empty.applyHardwareDependencies(makeDevice(QStringLiteral("0"), 0, 0), 0));
    const QStringList connections = QSqlDatabase::connectionNames();
    QVERIFY(!empty.applyHardwareDependencies(NTypes::uVersion_t(0x01030000), QStringLiteral("Drive A"), 0));
    QCOMPARE(QSqlDatabase::connectionNames(), connections);
}

void tst_OdictHardware::lookup_data()
{
    QTest::addColumn<QString>("file"); // "db", "db without 243", "none", "empty", "garbage", "schema"
    QTest::addColumn<QString>("device");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<int>("pos");
    QTest::addColumn<bool>("result");

    QTest::newRow("lowest version of the range") << "db" << "Drive A" << 0x01020000u << 0 << true;
    QTest::newRow("highest version of the range") << "db" << "Drive A" << 0x01040000u << 0 << true;
    QTest::newRow("per-axis value, the rest from the main device") << "db" << "Drive A" << 0x01030000u << 1 << true;
    QTest::newRow("version below the range") << "db" << "Drive A" << 0x0101FFFFu << 0 << false;
    QTest::newRow("version above the range") << "db" << "Drive A" << 0x01040001u << 0 << false;
    QTest::newRow("unknown device") << "db" << "Drive C" << 0x01030000u << 0 << false;
    QTest::newRow("name differs in case") << "db" << "drive a" << 0x01030000u << 0 << false;
    QTest::newRow("property missing") << "db without 243" << "Drive A" << 0x01030000u << 0 << true;
    QTest::newRow("no database file") << "none" << "Drive A" << 0x01030000u << 0 << false;
    QTest::newRow("empty file") << "empty" << "Drive A" << 0x01030000u << 0 << false;
    QTest::newRow("corrupt file") << "garbage" << "Drive A" << 0x01030000u << 0 << false;
    QTest::newRow("other schema") << "schema" << "Drive A" << 0x01030000u << 0 << false;
}

void tst_OdictHardware::lookup()
{
    QFETCH(QString, file);
    QFETCH(QString, device);
    QFETCH(quint32, version);
    QFETCH(int, pos);
    QFETCH(bool, result);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("mx8dd.db"));
    const bool withBrake = file == QLatin1String("db");
    if (file.startsWith(QLatin1String("db"))) {
        QVERIFY(writeDatabase(path, deviceDatabase(withBrake)));
    } else if (file == QLatin1String("schema")) {
        QVERIFY(writeDatabase(path, {QStringLiteral("CREATE TABLE devices (id INTEGER, name TEXT)")}));
    } else if (file != QLatin1String("none")) {
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        if (file == QLatin1String("garbage"))
            out.write(QByteArray("\x13\x37 not a database \xfe").repeated(200));
    }

    const QString previous = CPath::programdataPath(false);
    CPath::setProgramdataPath(dir.path());
    const auto restore = qScopeGuard([&previous] { CPath::setProgramdataPath(previous); });
    QVERIFY(CPath::programdataPath(true).endsWith(QLatin1Char('/')));

    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    const QList<COdictObject> before = snapshot(*dict);
    const QStringList connections = QSqlDatabase::connectionNames();
    const auto apply = [&] {
        return dict->applyHardwareDependencies(NTypes::uVersion_t(version), device, static_cast<unsigned char>(pos));
    };

    QCOMPARE(apply(), result);
    QCOMPARE(QSqlDatabase::connectionNames(), connections);
    if (!result) {
        QVERIFY(snapshot(*dict) == before);
        return;
    }
    // A second call opens its own connection again and gives the same result.
    QVERIFY(apply());
    QCOMPARE(QSqlDatabase::connectionNames(), connections);

    QCOMPARE(enumValues(*dict, objMask), (Values{2, 3}));
    QCOMPARE(enumValues(*dict, objSwitch), (Values{1, 2}));
    QCOMPARE(dict->object(objMax).maxValue().toF64(), 300.5);
    QCOMPARE(dict->object(objMax2).maxValue().toI64(), qint64(6000));
    const double minimum = pos == 1 ? 2.5 : 0.0;
    // Without key 243 the minimum becomes a null value; as a number it is 0 either way.
    QCOMPARE(dict->object(objMin).minValue().isNull(), !withBrake);
    QCOMPARE(dict->object(objMin).minValue().toF64(), minimum);
    QCOMPARE(enumValues(*dict, objBrake), minimum > 0 ? allBrake : (Values{0, 2}));
}

QTEST_GUILESS_MAIN(tst_OdictHardware)
#include "tst_odicthardware.moc"

#include "CDataTypeParser.h"
#include "CDeviceData.h"
#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictObject.h"
#include "COdictObjectEnum.h"
#include "COdictObjectTree.h"
#include "CPath.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace NkrDeviceDatabase;

namespace {

// The objects a device narrows and the device keys it reads.
constexpr unsigned int objBrake = 231;
constexpr unsigned int objMask = 206;
constexpr unsigned int objSwitch = 207;
constexpr unsigned int objMin = 235;
constexpr unsigned int objMax = 236;
constexpr unsigned int objMax2 = 237;
const QList<unsigned int> allObjects{objBrake, objMask, objSwitch, objMin, objMax, objMax2};

COdictObjectEnum makeEnum(const QList<QPair<long long, QString>> &entries)
{
    COdictObjectEnum e;
    for (const auto &entry : entries)
        e.insert(entry.first, entry.second);
    return e;
}

COdictObject makeObject(unsigned int id, const QString &name, NTypes::eTypes_t type)
{
    COdictObject o;
    o.setId(id);
    o.setName(name);
    o.setUiName(name + QStringLiteral(" long"));
    o.setUiShortName(name.toLower());
    o.setDataType(type);
    o.setDataSize(CDataTypeParser::typeSize(type));
    return o;
}

/// A dictionary with the six narrowed objects, except those listed in \a missing.
std::unique_ptr<COdict> makeDictionary(ICLogfile *log, const QList<unsigned int> &missing = {})
{
    auto dict = std::make_unique<COdict>(NkrOdict::E_OT_STD, log);
    COdictObjectTree *tree = dict->objectTree();
    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Drive"));
    tree->rootNode()->appendChild(top);

    QList<COdictObject> objects;
    COdictObject brake = makeObject(objBrake, QStringLiteral("BRAKE_MODE"), NTypes::E_U8);
    brake.setEnumData(makeEnum({{0, QStringLiteral("Off")}, {1, QStringLiteral("Brake")}, {2, QStringLiteral("Hold")}}));
    objects << brake;
    COdictObject masked = makeObject(objMask, QStringLiteral("FEEDBACK"), NTypes::E_U64);
    masked.setEnumData(makeEnum({{1, QStringLiteral("Resolver")},
                                 {2, QStringLiteral("Encoder")},
                                 {3, QStringLiteral("Both")},
                                 {8, QStringLiteral("Hiperface")},
                                 {Q_INT64_C(0x100000000), QStringLiteral("High word")}}));
    objects << masked;
    COdictObject switched = makeObject(objSwitch, QStringLiteral("PWM_FREQUENCY"), NTypes::E_U8);
    switched.setEnumData(makeEnum({{1, QStringLiteral("4 kHz")}, {2, QStringLiteral("8 kHz")}, {4, QStringLiteral("16 kHz")}}));
    objects << switched;
    COdictObject minimum = makeObject(objMin, QStringLiteral("BRAKE_DELAY"), NTypes::E_F64);
    minimum.setMinValue(CVariant(QStringLiteral("-10"), NTypes::E_F64));
    minimum.setMaxValue(CVariant(QStringLiteral("10"), NTypes::E_F64));
    objects << minimum;
    COdictObject maximum = makeObject(objMax, QStringLiteral("CURRENT_LIMIT"), NTypes::E_F64);
    maximum.setMaxValue(CVariant(QStringLiteral("1000"), NTypes::E_F64));
    objects << maximum;
    COdictObject maximum2 = makeObject(objMax2, QStringLiteral("SPEED_LIMIT"), NTypes::E_I32);
    maximum2.setMaxValue(CVariant(QStringLiteral("20000"), NTypes::E_I32));
    objects << maximum2;

    for (const COdictObject &o : qAsConst(objects)) {
        if (missing.contains(o.id()))
            continue;
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, NkrOdict::E_IT_OBJECT, &ok);
        if (ok)
            top->appendChild(node);
        else
            delete node;
    }
    return dict;
}

QList<long long> enumValues(const COdict &dict, unsigned int id)
{
    const COdictObject *o = dict.objectPtr(id);
    return o ? o->enumData().values() : QList<long long>();
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

/// Points the program-data directory elsewhere for the lifetime of the guard.
class ProgramdataGuard
{
public:
    explicit ProgramdataGuard(const QString &path) : m_previous(CPath::programdataPath(false))
    {
        CPath::setProgramdataPath(path);
    }
    ~ProgramdataGuard() { CPath::setProgramdataPath(m_previous); }

private:
    QString m_previous;
};

struct sProperty_t {
    int key;
    int pos;
    NTypes::eTypes_t type;
    QString value;
};

/// Writes a device database with one device "Drive A" for versions 1.2.0 to 1.4.0.
bool writeDatabase(const QString &file, const QList<sProperty_t> &properties)
{
    const QString connection = QStringLiteral("tst_odicthardware_writer");
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        ok = db.open();
        QSqlQuery q(db);
        ok = ok
            && q.exec(QStringLiteral("CREATE TABLE device (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                                     "version_min INTEGER NOT NULL, version_max INTEGER NOT NULL)"))
            && q.exec(QStringLiteral("CREATE TABLE property (device_id INTEGER NOT NULL REFERENCES device(id), "
                                     "key INTEGER NOT NULL, pos INTEGER NOT NULL DEFAULT 0, type INTEGER NOT NULL, "
                                     "value TEXT NOT NULL, PRIMARY KEY (device_id, key, pos))"))
            && q.exec(QStringLiteral("INSERT INTO device VALUES (3, 'Drive A', %1, %2)").arg(0x01020000).arg(0x01040000))
            && q.exec(QStringLiteral("INSERT INTO device VALUES (4, 'Drive B', %1, %2)").arg(0).arg(0x7FFFFFFF));
        for (const sProperty_t &p : properties) {
            q.prepare(QStringLiteral("INSERT INTO property VALUES (3, ?, ?, ?, ?)"));
            q.addBindValue(p.key);
            q.addBindValue(p.pos);
            q.addBindValue(int(p.type));
            q.addBindValue(p.value);
            ok = ok && q.exec();
        }
        if (!ok)
            qWarning() << q.lastError().text();
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok;
}

NTypes::uVersion_t makeVersion(quint32 value)
{
    NTypes::uVersion_t v;
    v.value = value;
    return v;
}

} // namespace

class tst_OdictHardware : public QObject
{
    Q_OBJECT

private slots:
    void deviceNarrowsSelections_data();
    void deviceNarrowsSelections();
    void deviceSetsLimits();
    void missingObjectGivesFalseButOtherStepsRun_data();
    void missingObjectGivesFalseButOtherStepsRun();
    void subDevicePositionFallsBackToMain_data();
    void subDevicePositionFallsBackToMain();
    void deviceWithoutProperties();
    void invalidDeviceChangesNothing();
    void dictionaryWithoutTree();
    void lookup_data();
    void lookup();
};

void tst_OdictHardware::deviceNarrowsSelections_data()
{
    QTest::addColumn<QString>("brake");
    QTest::addColumn<qint64>("mask");
    QTest::addColumn<qint64>("switches");
    QTest::addColumn<QList<long long>>("brakeValues");
    QTest::addColumn<QList<long long>>("maskValues");
    QTest::addColumn<QList<long long>>("switchValues");
    QTest::addColumn<QStringList>("messages");

    const QList<long long> allBrake{0, 1, 2};
    const QList<long long> allMask{1, 2, 3, 8, Q_INT64_C(0x100000000)};
    const QList<long long> allSwitch{1, 2, 4};

    QTest::newRow("device offers everything")
        << "1.5" << qint64(-1) << qint64(0x700) << allBrake << allMask << allSwitch << QStringList();
    QTest::newRow("brake 0.0 removes entry 1")
        << "0.0" << qint64(-1) << qint64(0x700) << QList<long long>{0, 2} << allMask << allSwitch << QStringList();
    QTest::newRow("negative brake removes entry 1")
        << "-0.25" << qint64(-1) << qint64(0x700) << QList<long long>{0, 2} << allMask << allSwitch << QStringList();
    QTest::newRow("mask keeps entries sharing a bit")
        << "1" << qint64(0x1) << qint64(0x700) << allBrake << QList<long long>{1, 3} << allSwitch << QStringList();
    QTest::newRow("mask in the high word")
        << "1" << Q_INT64_C(0x100000008) << qint64(0x700) << allBrake << QList<long long>{8, Q_INT64_C(0x100000000)}
        << allSwitch << QStringList();
    QTest::newRow("mask 0 empties the selection")
        << "1" << qint64(0) << qint64(0x700) << allBrake << QList<long long>() << allSwitch
        << QStringList{QStringLiteral("The selection for 'feedback (ID 206)' is empty.")};
    QTest::newRow("switch bits 0x100 and 0x400 only")
        << "1" << qint64(-1) << qint64(0x500) << allBrake << allMask << QList<long long>{1, 4} << QStringList();
    QTest::newRow("other bits of the switch word do not count")
        << "1" << qint64(-1) << qint64(0xFF) << allBrake << allMask << QList<long long>{1}
        << QStringList{QStringLiteral("The selection for 'pwm_frequency (ID 207)' is empty. '4 kHz' is added.")};
    QTest::newRow("all switches clear: entry 1 comes back")
        << "1" << qint64(-1) << qint64(0) << allBrake << allMask << QList<long long>{1}
        << QStringList{QStringLiteral("The selection for 'pwm_frequency (ID 207)' is empty. '4 kHz' is added.")};
    QTest::newRow("both selections empty, messages in step order")
        << "0" << qint64(0) << qint64(0) << QList<long long>{0, 2} << QList<long long>() << QList<long long>{1}
        << QStringList{QStringLiteral("The selection for 'feedback (ID 206)' is empty."),
                       QStringLiteral("The selection for 'pwm_frequency (ID 207)' is empty. '4 kHz' is added.")};
}

void tst_OdictHardware::deviceNarrowsSelections()
{
    QFETCH(QString, brake);
    QFETCH(qint64, mask);
    QFETCH(qint64, switches);
    QFETCH(QList<long long>, brakeValues);
    QFETCH(QList<long long>, maskValues);
    QFETCH(QList<long long>, switchValues);
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
    const COdictObjectEnum maskAfter = dict->object(objMask).enumData();
    for (long long value : maskValues)
        QCOMPARE(maskAfter.name(value), maskBefore.name(value));
    QCOMPARE(dict->object(objSwitch).enumData().name(1), QStringLiteral("4 kHz"));

    QCOMPARE(log.texts(NkrLogfiles::E_SEV_CRITICAL), messages);
    QCOMPARE(log.entries().size(), messages.size());
    for (const CMemoryLogfile::sEntry_t &entry : log.entries())
        QCOMPARE(entry.flags, 0u);
}

void tst_OdictHardware::deviceSetsLimits()
{
    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    QVERIFY(dict->applyHardwareDependencies(makeDevice(QStringLiteral("0.0"), -1, 0x700), 0));

    // Key 243 switches entry 1 of 231 and is also the minimum of 235.
    const COdictObject minimum = dict->object(objMin);
    QVERIFY(!minimum.minValue().isNull());
    QCOMPARE(minimum.minValue().toF64(), 0.0);
    QCOMPARE(minimum.maxValue().toF64(), 10.0); // untouched
    QCOMPARE(dict->object(objMax).maxValue().toF64(), 300.5);
    QCOMPARE(dict->object(objMax2).maxValue().toI64(), qint64(6000));
    QCOMPARE(enumValues(*dict, objBrake), (QList<long long>{0, 2}));
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

    QVERIFY(!dict->applyHardwareDependencies(makeDevice(QStringLiteral("0"), 0x2, 0x200), 0));

    // Object 237 is the last step, so even its absence leaves the earlier steps done.
    if (missing != objBrake)
        QCOMPARE(enumValues(*dict, objBrake), (QList<long long>{0, 2}));
    if (missing != objMask)
        QCOMPARE(enumValues(*dict, objMask), (QList<long long>{2, 3}));
    if (missing != objSwitch)
        QCOMPARE(enumValues(*dict, objSwitch), (QList<long long>{2}));
    if (missing != objMin)
        QCOMPARE(dict->object(objMin).minValue().toF64(), 0.0);
    if (missing != objMax)
        QCOMPARE(dict->object(objMax).maxValue().toF64(), 300.5);
    if (missing != objMax2)
        QCOMPARE(dict->object(objMax2).maxValue().toI64(), qint64(6000));
    QVERIFY(log.entries().isEmpty());
}

void tst_OdictHardware::subDevicePositionFallsBackToMain_data()
{
    QTest::addColumn<int>("pos");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<QList<long long>>("brakeValues");
    QTest::addColumn<double>("maximum");

    // Key 243 exists for position 0 and 2, key 244 for position 0 only.
    QTest::newRow("main device") << 0 << 0.0 << QList<long long>{0, 2} << 300.5;
    QTest::newRow("axis with its own value") << 2 << 5.0 << QList<long long>{0, 1, 2} << 300.5;
    QTest::newRow("axis without own value") << 1 << 0.0 << QList<long long>{0, 2} << 300.5;
    QTest::newRow("position 255") << 255 << 0.0 << QList<long long>{0, 2} << 300.5;
}

void tst_OdictHardware::subDevicePositionFallsBackToMain()
{
    QFETCH(int, pos);
    QFETCH(double, minimum);
    QFETCH(QList<long long>, brakeValues);
    QFETCH(double, maximum);

    CDeviceData device = makeDevice(QStringLiteral("0"), -1, 0x700);
    device.setValue(243, E_SDP_AXIS_2, CVariant(QStringLiteral("5"), NTypes::E_F64));

    auto dict = makeDictionary(nullptr);
    QVERIFY(dict->applyHardwareDependencies(device, static_cast<unsigned char>(pos)));
    QCOMPARE(dict->object(objMin).minValue().toF64(), minimum);
    QCOMPARE(enumValues(*dict, objBrake), brakeValues);
    QCOMPARE(dict->object(objMax).maxValue().toF64(), maximum);
}

void tst_OdictHardware::deviceWithoutProperties()
{
    // A valid device that has none of the keys: every property reads as a null value, which is
    // 0 as a number. So entry 1 of 231 goes, 206 is emptied, 207 falls back to entry 1, and the
    // limits become null values.
    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    log.clear();

    QVERIFY(dict->applyHardwareDependencies(CDeviceData(1, QStringLiteral("Bare"), 0, 0), 0));
    QCOMPARE(enumValues(*dict, objBrake), (QList<long long>{0, 2}));
    QCOMPARE(enumValues(*dict, objMask), QList<long long>());
    QCOMPARE(enumValues(*dict, objSwitch), QList<long long>{1});
    QVERIFY(dict->object(objMin).minValue().isNull());
    QVERIFY(dict->object(objMax).maxValue().isNull());
    QVERIFY(dict->object(objMax2).maxValue().isNull());
    QCOMPARE(log.count(NkrLogfiles::E_SEV_CRITICAL), 2);
}

void tst_OdictHardware::invalidDeviceChangesNothing()
{
    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    const QList<COdictObject> before = snapshot(*dict);
    log.clear();

    CDeviceData invalid; // not read from a database: no properties, not valid
    invalid.setValue(243, E_SDP_MAIN, CVariant(QStringLiteral("0"), NTypes::E_F64));
    QVERIFY(!invalid.isValid());
    QVERIFY(!dict->applyHardwareDependencies(invalid, 0));
    QVERIFY(snapshot(*dict) == before);
    QVERIFY(log.entries().isEmpty());
}

void tst_OdictHardware::dictionaryWithoutTree()
{
    COdict dict(NkrOdict::E_OT_UNKNOWN);
    QVERIFY(!dict.objectTree());
    QVERIFY(!dict.applyHardwareDependencies(makeDevice(QStringLiteral("0"), 0, 0), 0));
    const int connections = QSqlDatabase::connectionNames().size();
    QVERIFY(!dict.applyHardwareDependencies(makeVersion(0x01030000), QStringLiteral("Drive A"), 0));
    QCOMPARE(QSqlDatabase::connectionNames().size(), connections);
}

void tst_OdictHardware::lookup_data()
{
    QTest::addColumn<QString>("file");     // "db", "none", "empty", "random", "schema"
    QTest::addColumn<QString>("device");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<int>("pos");
    QTest::addColumn<bool>("dropBrake");   // the device lacks key 243
    QTest::addColumn<bool>("result");

    QTest::newRow("found") << "db" << "Drive A" << 0x01030000u << 0 << false << true;
    QTest::newRow("lowest version of the range") << "db" << "Drive A" << 0x01020000u << 0 << false << true;
    QTest::newRow("highest version of the range") << "db" << "Drive A" << 0x01040000u << 0 << false << true;
    QTest::newRow("per-axis value") << "db" << "Drive A" << 0x01030000u << 1 << false << true;
    QTest::newRow("version below the range") << "db" << "Drive A" << 0x0101FFFFu << 0 << false << false;
    QTest::newRow("version above the range") << "db" << "Drive A" << 0x01040001u << 0 << false << false;
    QTest::newRow("unknown device") << "db" << "Drive C" << 0x01030000u << 0 << false << false;
    QTest::newRow("name differs in case") << "db" << "drive a" << 0x01030000u << 0 << false << false;
    QTest::newRow("property missing") << "db" << "Drive A" << 0x01030000u << 0 << true << true;
    QTest::newRow("no database file") << "none" << "Drive A" << 0x01030000u << 0 << false << false;
    QTest::newRow("empty file") << "empty" << "Drive A" << 0x01030000u << 0 << false << false;
    QTest::newRow("random bytes") << "random" << "Drive A" << 0x01030000u << 0 << false << false;
    QTest::newRow("other schema") << "schema" << "Drive A" << 0x01030000u << 0 << false << false;
}

void tst_OdictHardware::lookup()
{
    QFETCH(QString, file);
    QFETCH(QString, device);
    QFETCH(quint32, version);
    QFETCH(int, pos);
    QFETCH(bool, dropBrake);
    QFETCH(bool, result);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("mx8dd.db"));
    if (file == QLatin1String("db")) {
        QList<sProperty_t> properties{{225, 0, NTypes::E_U64, QStringLiteral("0x2")},
                                      {214, 0, NTypes::E_U32, QStringLiteral("0x300")},
                                      {244, 0, NTypes::E_F64, QStringLiteral("300.5")},
                                      {245, 0, NTypes::E_I32, QStringLiteral("6000")},
                                      {243, 1, NTypes::E_F64, QStringLiteral("2.5")}};
        if (!dropBrake)
            properties.append({243, 0, NTypes::E_F64, QStringLiteral("0")});
        QVERIFY(writeDatabase(path, properties));
    } else if (file != QLatin1String("none")) {
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        if (file == QLatin1String("random")) {
            QByteArray bytes(4096, Qt::Uninitialized);
            quint32 seed = 0x2545F491;
            for (char &c : bytes) {
                seed = seed * 1664525u + 1013904223u;
                c = char(seed >> 24);
            }
            out.write(bytes);
        } else if (file == QLatin1String("schema")) {
            out.close();
            const QString connection = QStringLiteral("tst_odicthardware_schema");
            {
                QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
                db.setDatabaseName(path);
                QVERIFY(db.open());
                QSqlQuery q(db);
                QVERIFY(q.exec(QStringLiteral("CREATE TABLE devices (id INTEGER, name TEXT)")));
                db.close();
            }
            QSqlDatabase::removeDatabase(connection);
        }
    }

    ProgramdataGuard guard(dir.path());
    QVERIFY(CPath::programdataPath(true).endsWith(QLatin1Char('/')));

    CMemoryLogfile log;
    auto dict = makeDictionary(&log);
    const QList<COdictObject> before = snapshot(*dict);
    const QStringList connections = QSqlDatabase::connectionNames();

    QCOMPARE(dict->applyHardwareDependencies(makeVersion(version), device,
                                             static_cast<unsigned char>(pos)),
             result);
    QCOMPARE(QSqlDatabase::connectionNames(), connections);

    if (!result) {
        QVERIFY(snapshot(*dict) == before);
        return;
    }
    // A second call opens its own connection again and gives the same result.
    QCOMPARE(dict->applyHardwareDependencies(makeVersion(version), device, static_cast<unsigned char>(pos)), true);
    QCOMPARE(QSqlDatabase::connectionNames(), connections);

    QCOMPARE(enumValues(*dict, objMask), (QList<long long>{2, 3}));
    QCOMPARE(enumValues(*dict, objSwitch), (QList<long long>{1, 2}));
    QCOMPARE(dict->object(objMax).maxValue().toF64(), 300.5);
    QCOMPARE(dict->object(objMax2).maxValue().toI64(), qint64(6000));
    if (pos == 1) {
        QCOMPARE(dict->object(objMin).minValue().toF64(), 2.5);
        QCOMPARE(enumValues(*dict, objBrake), (QList<long long>{0, 1, 2}));
    } else {
        // Without key 243 the minimum becomes a null value; as a number it is 0 either way.
        QCOMPARE(dict->object(objMin).minValue().isNull(), dropBrake);
        QCOMPARE(dict->object(objMin).minValue().toF64(), 0.0);
        QCOMPARE(enumValues(*dict, objBrake), (QList<long long>{0, 2}));
    }
}

QTEST_GUILESS_MAIN(tst_OdictHardware)
#include "tst_odicthardware.moc"

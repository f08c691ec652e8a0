#include "CDatabaseDeviceData.h"
#include "CDeviceData.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString kDeviceTable = QStringLiteral("CREATE TABLE device (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                                            "version_min INTEGER NOT NULL, version_max INTEGER NOT NULL)");
const QString kPropertyTable = QStringLiteral(
    "CREATE TABLE property (device_id INTEGER NOT NULL REFERENCES device(id), key INTEGER NOT NULL, "
    "pos INTEGER NOT NULL DEFAULT 0, type INTEGER NOT NULL, value TEXT NOT NULL, PRIMARY KEY (device_id, key, pos))");

/// Runs the statements on the SQLite file at path; false (and a warning) when SQLite refuses one.
bool runSql(const QString &path, const QStringList &statements)
{
    const QString connection = QStringLiteral("tst_build");
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(path);
        ok = db.open();
        QSqlQuery query(db);
        for (const QString &statement : statements)
            ok = ok && query.exec(statement);
        if (!ok)
            qWarning() << query.lastError().text() << db.lastError().text();
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_PlatformDeviceDb : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void lookup_data();
    void lookup();
    void openFailure_data();
    void openFailure();
    void connections();

private:
    QTemporaryDir m_dir;
    QString m_database;
};

void tst_PlatformDeviceDb::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")));
    m_database = m_dir.filePath(QStringLiteral("devices.db"));
    QVERIFY(runSql(m_database, {kDeviceTable, kPropertyTable,
                                QStringLiteral("INSERT INTO device VALUES (1, 'DriveA', 0x01000000, 0x0100FFFF), "
                                               "(2, 'DriveA', 0x01010000, 0x01FFFFFF), (3, 'DriveB', 0, 0xFFFFFFFF), "
                                               "(4, 'DriveC', 0x80000000, 0x80000010)"),
                                QStringLiteral("INSERT INTO property VALUES (1, 1, 0, %1, '100'), (1, 1, 2, %1, '102'), "
                                               "(1, 2, 0, %2, 'first'), (2, 1, 0, %1, '200'), "
                                               "(3, 5, 0, %3, '0xFFFFFFFF'), (4, 5, 1, %4, '-7')")
                                    .arg(NTypes::E_U16).arg(NTypes::E_VSTRING).arg(NTypes::E_U32).arg(NTypes::E_I32)}));
}

void tst_PlatformDeviceDb::lookup_data()
{
    QTest::addColumn<uint>("version");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("deviceId");
    QTest::addColumn<uint>("key");
    QTest::addColumn<int>("pos");
    QTest::addColumn<CVariant>("value"); // null when the device has no value there

    auto found = [](const char *tag, uint version, const char *name, int id, uint key, int pos, const CVariant &value) {
        QTest::newRow(tag) << version << QString::fromLatin1(name) << int(NkrDeviceDatabase::E_DDB_OK) << id << key << pos
                           << value;
    };
    auto missing = [](const char *tag, uint version, const char *name, NkrDeviceDatabase::eDdbState_t state) {
        QTest::newRow(tag) << version << QString::fromLatin1(name) << int(state) << -1 << 0u << 0 << CVariant();
    };
    const CVariant u100(QStringLiteral("100"), NTypes::E_U16);

    found("lower bound", 0x01000000u, "DriveA", 1, 1, 0, u100);
    found("upper bound", 0x0100FFFFu, "DriveA", 1, 1, 0, u100);
    found("second range", 0x01010000u, "DriveA", 2, 1, 0, CVariant(QStringLiteral("200"), NTypes::E_U16));
    found("axis value", 0x01000005u, "DriveA", 1, 1, 2, CVariant(QStringLiteral("102"), NTypes::E_U16));
    found("axis falls back to device", 0x01000005u, "DriveA", 1, 1, 1, u100);
    found("text value", 0x01000005u, "DriveA", 1, 2, 3, CVariant(QStringLiteral("first"), NTypes::E_VSTRING));
    found("unknown key", 0x01000005u, "DriveA", 1, 99, 0, CVariant());
    found("axis only, asked for device", 0x80000000u, "DriveC", 4, 5, 0, CVariant());
    found("axis only, asked for axis", 0x80000010u, "DriveC", 4, 5, 1, CVariant(QStringLiteral("-7"), NTypes::E_I32));
    found("whole unsigned range", 0xFFFFFFFFu, "DriveB", 3, 5, 0, CVariant(QStringLiteral("0xFFFFFFFF"), NTypes::E_U32));
    missing("above high-bit range", 0x80000011u, "DriveC", NkrDeviceDatabase::E_DDB_VERSION_UNKNOWN);
    missing("below all ranges", 0x00FFFFFFu, "DriveA", NkrDeviceDatabase::E_DDB_VERSION_UNKNOWN);
    missing("unknown name", 0x01000000u, "DriveX", NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
    missing("name differs in case", 0x01000000u, "drivea", NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
    missing("empty name", 0x01000000u, "", NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
}

void tst_PlatformDeviceDb::lookup()
{
    QFETCH(uint, version);
    QFETCH(QString, name);
    QFETCH(int, state);
    QFETCH(int, deviceId);
    QFETCH(uint, key);
    QFETCH(int, pos);
    QFETCH(CVariant, value);

    CDatabaseDeviceData database;
    QVERIFY2(database.openDatabase(m_database, QStringLiteral("lookup")), qPrintable(database.lastError()));
    QVERIFY(database.isOpen());

    NkrDeviceDatabase::eDdbState_t found = NkrDeviceDatabase::E_DDB_NOT_OPEN;
    const std::unique_ptr<CDeviceData> device(database.data(NTypes::uVersion_t(version), name, found));
    QCOMPARE(int(found), state);
    QCOMPARE(device != nullptr, state == NkrDeviceDatabase::E_DDB_OK);
    if (!device) {
        QVERIFY(!database.lastError().isEmpty());
        return;
    }
    QVERIFY(device->isValid());
    QCOMPARE(device->deviceId(), deviceId);
    QCOMPARE(device->name(), name);
    QVERIFY(device->versionMin() <= version && version <= device->versionMax());

    const CVariant result = device->value(key, NkrDeviceDatabase::eSubDevicePos_t(pos));
    QVERIFY2(value.isNull() ? result.isNull() : result == value, qPrintable(result.toStr()));
}

void tst_PlatformDeviceDb::openFailure_data()
{
    QTest::addColumn<QStringList>("sql"); // run on the file when not empty
    QTest::addColumn<QByteArray>("bytes"); // written otherwise, unless the row is about no file

    QByteArray random(8192, '\0');
    QRandomGenerator generator(4711);
    for (char &byte : random)
        byte = char(generator.bounded(256));

    QTest::newRow("missing file") << QStringList() << QByteArray();
    QTest::newRow("directory") << QStringList() << QByteArray();
    QTest::newRow("empty file") << QStringList() << QByteArray("");
    QTest::newRow("random bytes") << QStringList() << random;
    QTest::newRow("no tables") << QStringList(QStringLiteral("CREATE TABLE other (x INTEGER)")) << QByteArray();
    QTest::newRow("device table only")
        << QStringList({kDeviceTable, QStringLiteral("INSERT INTO device VALUES (1, 'DriveA', 0, 1)")}) << QByteArray();
    QTest::newRow("property table of another layout")
        << QStringList({kDeviceTable, QStringLiteral("CREATE TABLE property (device_id INTEGER, name TEXT)")})
        << QByteArray();
}

void tst_PlatformDeviceDb::openFailure()
{
    QFETCH(QStringList, sql);
    QFETCH(QByteArray, bytes);

    const QString row = QString::fromLatin1(QTest::currentDataTag());
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("bad.db"));
    if (row == QLatin1String("directory")) {
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("bad.db")));
    } else if (!sql.isEmpty()) {
        QVERIFY(runSql(path, sql));
    } else if (!bytes.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }
    const QByteArray before = readFile(path);

    const QString connection = QStringLiteral("failing");
    {
        CDatabaseDeviceData database;
        QVERIFY(!database.openDatabase(path, connection));
        QVERIFY(!database.isOpen());
        QVERIFY(!database.lastError().isEmpty());
        // A failed open does not keep its connection, and leaves nothing to look up in.
        QVERIFY(!QSqlDatabase::contains(connection));
        NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_OK;
        QVERIFY(!database.data(NTypes::uVersion_t(0x01000000), QStringLiteral("DriveA"), state));
        QCOMPARE(state, NkrDeviceDatabase::E_DDB_NOT_OPEN);
    }
    QVERIFY(!QSqlDatabase::contains(connection));

    // The file is neither created nor changed.
    QCOMPARE(QFileInfo::exists(path), row != QLatin1String("missing file"));
    QCOMPARE(readFile(path), before);
}

void tst_PlatformDeviceDb::connections()
{
    const QString other = m_dir.filePath(QStringLiteral("other.db"));
    QVERIFY(runSql(other, {kDeviceTable, kPropertyTable,
                           QStringLiteral("INSERT INTO device VALUES (1, 'DriveA', 0x01000000, 0x0100FFFF)"),
                           QStringLiteral("INSERT INTO property VALUES (1, 1, 0, %1, '999')").arg(NTypes::E_U16)}));
    const QString nameA = QStringLiteral("first");
    const QString nameB = QStringLiteral("second");
    const NTypes::uVersion_t version(0x01000001);
    NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
    {
        CDatabaseDeviceData a;
        CDatabaseDeviceData b;
        QVERIFY(a.openDatabase(m_database, nameA));
        {
            CDatabaseDeviceData refused;
            QVERIFY(!refused.openDatabase(other, nameA));
            QVERIFY(!refused.lastError().isEmpty());
        }
        // The refused object must not take the connection of the first one down.
        QVERIFY(b.openDatabase(other, nameB));
        QVERIFY(QSqlDatabase::contains(nameA) && QSqlDatabase::contains(nameB));

        const std::unique_ptr<CDeviceData> fromA(a.data(version, QStringLiteral("DriveA"), state));
        const std::unique_ptr<CDeviceData> fromB(b.data(version, QStringLiteral("DriveA"), state));
        QVERIFY(fromA && fromB);
        QCOMPARE(fromA->value(1).toU64(), 100u);
        QCOMPARE(fromB->value(1).toU64(), 999u);
        // The device keeps its range and every property row of its own.
        QCOMPARE(fromA->versionMin(), 0x01000000u);
        QCOMPARE(fromA->versionMax(), 0x0100FFFFu);
        QCOMPARE(fromA->propertyCount(), 3);
        QVERIFY(!b.data(version, QStringLiteral("DriveB"), state));
        QCOMPARE(state, NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);

        // Reopening under another name closes the old connection.
        QVERIFY(b.openDatabase(m_database, QStringLiteral("third")));
        QVERIFY(!QSqlDatabase::contains(nameB));
        delete b.data(version, QStringLiteral("DriveB"), state);
        QCOMPARE(state, NkrDeviceDatabase::E_DDB_OK);
    }
    QVERIFY(!QSqlDatabase::contains(nameA));
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("third")));

    // The names are free again.
    CDatabaseDeviceData again;
    QVERIFY(again.openDatabase(other, nameA));
}

QTEST_GUILESS_MAIN(tst_PlatformDeviceDb)
#include "tst_platform_devicedb.moc"

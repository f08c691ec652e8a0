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

struct sDevice_t {
    int id;
    QString name;
    qint64 versionMin;
    qint64 versionMax;
};

struct sProperty_t {
    int deviceId;
    int key;
    int pos;
    int type;
    QString value;
};

/// Writes a device database with the given rows; false (and a warning) when SQLite refuses.
bool buildDatabase(const QString &path, const QList<sDevice_t> &devices, const QList<sProperty_t> &properties,
                   bool withProperties = true)
{
    const QString connection = QStringLiteral("tst_build");
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(path);
        ok = db.open();
        QSqlQuery query(db);
        ok = ok && query.exec(QStringLiteral(
                 "CREATE TABLE device (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                 "version_min INTEGER NOT NULL, version_max INTEGER NOT NULL)"));
        if (withProperties) {
            ok = ok && query.exec(QStringLiteral(
                     "CREATE TABLE property (device_id INTEGER NOT NULL REFERENCES device(id), "
                     "key INTEGER NOT NULL, pos INTEGER NOT NULL DEFAULT 0, type INTEGER NOT NULL, "
                     "value TEXT NOT NULL, PRIMARY KEY (device_id, key, pos))"));
        }
        for (const sDevice_t &device : devices) {
            ok = ok && query.prepare(QStringLiteral("INSERT INTO device VALUES (?, ?, ?, ?)"));
            query.addBindValue(device.id);
            query.addBindValue(device.name);
            query.addBindValue(device.versionMin);
            query.addBindValue(device.versionMax);
            ok = ok && query.exec();
        }
        for (const sProperty_t &property : properties) {
            ok = ok && query.prepare(QStringLiteral("INSERT INTO property VALUES (?, ?, ?, ?, ?)"));
            query.addBindValue(property.deviceId);
            query.addBindValue(property.key);
            query.addBindValue(property.pos);
            query.addBindValue(property.type);
            query.addBindValue(property.value);
            ok = ok && query.exec();
        }
        if (!ok)
            qWarning() << query.lastError().text() << db.lastError().text();
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok;
}

} // namespace

class tst_PlatformDeviceDb : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void lookup_data();
    void lookup();
    void lookupKeepsDeviceRange();
    void lookupWithoutDatabase();
    void openFailure_data();
    void openFailure();
    void connectionNameInUse();
    void twoConnectionsAtOnce();

private:
    QTemporaryDir m_dir;
    QString m_database;
};

void tst_PlatformDeviceDb::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")));
    m_database = m_dir.filePath(QStringLiteral("devices.db"));
    QVERIFY(buildDatabase(m_database,
                          {{1, QStringLiteral("DriveA"), 0x01000000, 0x0100FFFF},
                           {2, QStringLiteral("DriveA"), 0x01010000, 0x01FFFFFF},
                           {3, QStringLiteral("DriveB"), 0, 0xFFFFFFFF},
                           {4, QStringLiteral("DriveC"), 0x80000000, 0x80000010}},
                          {{1, 1, 0, NTypes::E_U16, QStringLiteral("100")},
                           {1, 1, 2, NTypes::E_U16, QStringLiteral("102")},
                           {1, 2, 0, NTypes::E_VSTRING, QStringLiteral("first")},
                           {2, 1, 0, NTypes::E_U16, QStringLiteral("200")},
                           {3, 5, 0, NTypes::E_U32, QStringLiteral("0xFFFFFFFF")},
                           {4, 5, 1, NTypes::E_I32, QStringLiteral("-7")}}));
}

void tst_PlatformDeviceDb::lookup_data()
{
    QTest::addColumn<uint>("version");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("deviceId");
    QTest::addColumn<uint>("key");
    QTest::addColumn<int>("pos");
    QTest::addColumn<QString>("value"); // text of the expected value; empty for a null value
    QTest::addColumn<int>("type");

    const int ok = NkrDeviceDatabase::E_DDB_OK;
    const int noVersion = NkrDeviceDatabase::E_DDB_VERSION_UNKNOWN;
    const int noDevice = NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN;
    const QString drive = QStringLiteral("DriveA");
    const int u16 = NTypes::E_U16;

    QTest::newRow("lower bound") << 0x01000000u << drive << ok << 1 << 1u << 0 << "100" << u16;
    QTest::newRow("upper bound") << 0x0100FFFFu << drive << ok << 1 << 1u << 0 << "100" << u16;
    QTest::newRow("second range") << 0x01010000u << drive << ok << 2 << 1u << 0 << "200" << u16;
    QTest::newRow("axis value") << 0x01000005u << drive << ok << 1 << 1u << 2 << "102" << u16;
    QTest::newRow("axis falls back to device") << 0x01000005u << drive << ok << 1 << 1u << 1 << "100" << u16;
    QTest::newRow("text value") << 0x01000005u << drive << ok << 1 << 2u << 3 << "first" << int(NTypes::E_VSTRING);
    QTest::newRow("unknown key") << 0x01000005u << drive << ok << 1 << 99u << 0 << QString() << 0;
    QTest::newRow("axis only, asked for device") << 0x80000000u << "DriveC" << ok << 4 << 5u << 0 << QString() << 0;
    QTest::newRow("axis only, asked for axis") << 0x80000010u << "DriveC" << ok << 4 << 5u << 1 << "-7"
                                               << int(NTypes::E_I32);
    QTest::newRow("whole unsigned range") << 0xFFFFFFFFu << "DriveB" << ok << 3 << 5u << 0 << "0xFFFFFFFF"
                                          << int(NTypes::E_U32);
    QTest::newRow("above high-bit range") << 0x80000011u << "DriveC" << noVersion << -1 << 0u << 0 << QString() << 0;
    QTest::newRow("below all ranges") << 0x00FFFFFFu << drive << noVersion << -1 << 0u << 0 << QString() << 0;
    QTest::newRow("between nothing") << 0x02000000u << drive << noVersion << -1 << 0u << 0 << QString() << 0;
    QTest::newRow("unknown name") << 0x01000000u << "DriveX" << noDevice << -1 << 0u << 0 << QString() << 0;
    QTest::newRow("name differs in case") << 0x01000000u << "drivea" << noDevice << -1 << 0u << 0 << QString() << 0;
    QTest::newRow("empty name") << 0x01000000u << "" << noDevice << -1 << 0u << 0 << QString() << 0;
}

void tst_PlatformDeviceDb::lookup()
{
    QFETCH(uint, version);
    QFETCH(QString, name);
    QFETCH(int, state);
    QFETCH(int, deviceId);
    QFETCH(uint, key);
    QFETCH(int, pos);
    QFETCH(QString, value);
    QFETCH(int, type);

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

    const CVariant result = device->value(key, NkrDeviceDatabase::eSubDevicePos_t(pos));
    if (value.isEmpty()) {
        QVERIFY2(result.isNull(), qPrintable(result.toStr()));
    } else {
        const CVariant expected(value, NTypes::eTypes_t(type));
        QVERIFY(!expected.isNull());
        QCOMPARE(int(result.type()), type);
        QVERIFY2(result == expected, qPrintable(result.toStr()));
    }
}

void tst_PlatformDeviceDb::lookupKeepsDeviceRange()
{
    CDatabaseDeviceData database;
    QVERIFY(database.openDatabase(m_database, QStringLiteral("range")));
    NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
    const std::unique_ptr<CDeviceData> device(database.data(NTypes::uVersion_t(0x01000001), QStringLiteral("DriveA"), state));
    QVERIFY(device);
    QCOMPARE(device->versionMin(), 0x01000000u);
    QCOMPARE(device->versionMax(), 0x0100FFFFu);
    QCOMPARE(device->propertyCount(), 3);

    const std::unique_ptr<CDeviceData> wide(database.data(NTypes::uVersion_t(0), QStringLiteral("DriveB"), state));
    QVERIFY(wide);
    QCOMPARE(wide->versionMax(), 0xFFFFFFFFu);
}

void tst_PlatformDeviceDb::lookupWithoutDatabase()
{
    CDatabaseDeviceData database;
    QVERIFY(!database.isOpen());
    NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_OK;
    QVERIFY(!database.data(NTypes::uVersion_t(0x01000000), QStringLiteral("DriveA"), state));
    QCOMPARE(state, NkrDeviceDatabase::E_DDB_NOT_OPEN);

    // A failed open leaves the object closed as well.
    QVERIFY(!database.openDatabase(m_dir.filePath(QStringLiteral("none.db")), QStringLiteral("closed")));
    QVERIFY(!database.data(NTypes::uVersion_t(0x01000000), QStringLiteral("DriveA"), state));
    QCOMPARE(state, NkrDeviceDatabase::E_DDB_NOT_OPEN);
}

void tst_PlatformDeviceDb::openFailure_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("missing file") << "missing";
    QTest::newRow("directory") << "directory";
    QTest::newRow("empty file") << "empty";
    QTest::newRow("random bytes") << "corrupt";
    QTest::newRow("no tables") << "notables";
    QTest::newRow("device table only") << "deviceonly";
    QTest::newRow("property table of another layout") << "otherlayout";
}

void tst_PlatformDeviceDb::openFailure()
{
    QFETCH(QString, kind);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("bad.db"));
    if (kind == QLatin1String("directory")) {
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("bad.db")));
    } else if (kind == QLatin1String("empty")) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (kind == QLatin1String("corrupt")) {
        QByteArray bytes(8192, '\0');
        QRandomGenerator generator(4711);
        for (char &byte : bytes)
            byte = char(generator.bounded(256));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    } else if (kind == QLatin1String("notables")) {
        QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("tst_plain"));
        {
            QSqlDatabase db = QSqlDatabase::database(QStringLiteral("tst_plain"), false);
            db.setDatabaseName(path);
            QVERIFY(db.open());
            QSqlQuery query(db);
            QVERIFY(query.exec(QStringLiteral("CREATE TABLE other (x INTEGER)")));
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("tst_plain"));
    } else if (kind == QLatin1String("deviceonly")) {
        QVERIFY(buildDatabase(path, {{1, QStringLiteral("DriveA"), 0, 1}}, {}, false));
    } else if (kind == QLatin1String("otherlayout")) {
        QVERIFY(buildDatabase(path, {}, {}, false));
        QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("tst_plain"));
        {
            QSqlDatabase db = QSqlDatabase::database(QStringLiteral("tst_plain"), false);
            db.setDatabaseName(path);
            QVERIFY(db.open());
            QSqlQuery query(db);
            QVERIFY(query.exec(QStringLiteral("CREATE TABLE property (device_id INTEGER, name TEXT)")));
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("tst_plain"));
    }
    const QByteArray before = QFileInfo(path).isFile() ? [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }() : QByteArray();

    const QString connection = QStringLiteral("failing");
    {
        CDatabaseDeviceData database;
        QVERIFY(!database.openDatabase(path, connection));
        QVERIFY(!database.isOpen());
        QVERIFY(!database.lastError().isEmpty());
        // A failed open does not keep its connection.
        QVERIFY(!QSqlDatabase::contains(connection));
    }
    QVERIFY(!QSqlDatabase::contains(connection));

    // The file is neither created nor changed.
    if (kind == QLatin1String("missing")) {
        QVERIFY(!QFileInfo::exists(path));
    } else if (kind != QLatin1String("directory")) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
    }
}

void tst_PlatformDeviceDb::connectionNameInUse()
{
    CDatabaseDeviceData first;
    QVERIFY(first.openDatabase(m_database, QStringLiteral("shared")));
    {
        CDatabaseDeviceData second;
        QVERIFY(!second.openDatabase(m_database, QStringLiteral("shared")));
        QVERIFY(!second.lastError().isEmpty());
    }
    // The refused second object must not take the first one's connection down.
    QVERIFY(first.isOpen());
    NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
    delete first.data(NTypes::uVersion_t(0x01000000), QStringLiteral("DriveA"), state);
    QCOMPARE(state, NkrDeviceDatabase::E_DDB_OK);

    // Reopening under another name closes the old connection.
    QVERIFY(first.openDatabase(m_database, QStringLiteral("shared2")));
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("shared")));
    QVERIFY(QSqlDatabase::contains(QStringLiteral("shared2")));
}

void tst_PlatformDeviceDb::twoConnectionsAtOnce()
{
    const QString other = m_dir.filePath(QStringLiteral("other.db"));
    QVERIFY(buildDatabase(other, {{1, QStringLiteral("DriveA"), 0x01000000, 0x0100FFFF}},
                          {{1, 1, 0, NTypes::E_U16, QStringLiteral("999")}}));

    const QString nameA = QStringLiteral("first");
    const QString nameB = QStringLiteral("second");
    {
        CDatabaseDeviceData a;
        CDatabaseDeviceData b;
        QVERIFY(a.openDatabase(m_database, nameA));
        QVERIFY(b.openDatabase(other, nameB));
        QVERIFY(QSqlDatabase::contains(nameA));
        QVERIFY(QSqlDatabase::contains(nameB));

        NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
        const NTypes::uVersion_t version(0x01000000);
        const std::unique_ptr<CDeviceData> fromA(a.data(version, QStringLiteral("DriveA"), state));
        const std::unique_ptr<CDeviceData> fromB(b.data(version, QStringLiteral("DriveA"), state));
        QVERIFY(fromA && fromB);
        QCOMPARE(fromA->value(1).toU64(), 100u);
        QCOMPARE(fromB->value(1).toU64(), 999u);
        QVERIFY(!b.data(version, QStringLiteral("DriveB"), state));
        QCOMPARE(state, NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
    }
    QVERIFY(!QSqlDatabase::contains(nameA));
    QVERIFY(!QSqlDatabase::contains(nameB));

    // The names are free again.
    CDatabaseDeviceData again;
    QVERIFY(again.openDatabase(other, nameA));
}

QTEST_GUILESS_MAIN(tst_PlatformDeviceDb)
#include "tst_platform_devicedb.moc"

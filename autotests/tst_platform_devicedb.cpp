#include "CDataTypeParser.h"
#include "CDatabaseDeviceData.h"
#include "CDeviceDatabaseBuilder.h"

#include <QDir>
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
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("tst_build"));
        db.setDatabaseName(path);
        ok = db.open();
        QSqlQuery query(db);
        for (const QString &statement : statements)
            ok = ok && query.exec(statement);
        if (!ok)
            qWarning() << query.lastError().text() << db.lastError().text();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("tst_build"));
    return ok;
}

} // namespace

class tst_PlatformDeviceDb : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_database;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid() && QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")));
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

    void lookup_data()
    {
        QTest::addColumn<uint>("version");
        QTest::addColumn<QString>("name");
        QTest::addColumn<uint>("key");
        QTest::addColumn<int>("pos");
        // Device id, then type and text of the value at key and pos ("none" without one); else the state.
        QTest::addColumn<QString>("found");

        auto found = [](const char *tag, uint version, const char *name, uint key, int pos, const char *result) {
            QTest::newRow(tag) << version << QString::fromLatin1(name) << key << pos << result;
        };
        auto missing = [](const char *tag, uint version, const char *name, NkrDeviceDatabase::eDdbState_t state) {
            QTest::newRow(tag) << version << QString::fromLatin1(name) << 0u << 0 << QStringLiteral("state %1").arg(state);
        };
        found("lower bound", 0x01000000u, "DriveA", 1, 0, "1 U16 100");
        found("upper bound", 0x0100FFFFu, "DriveA", 1, 0, "1 U16 100");
        found("second range", 0x01010000u, "DriveA", 1, 0, "2 U16 200");
        found("axis value", 0x01000005u, "DriveA", 1, 2, "1 U16 102");
        found("axis falls back to device", 0x01000005u, "DriveA", 1, 1, "1 U16 100");
        found("text value", 0x01000005u, "DriveA", 2, 3, "1 VISIBLE_STRING first");
        found("unknown key", 0x01000005u, "DriveA", 99, 0, "1 none");
        found("axis only, asked for device", 0x80000000u, "DriveC", 5, 0, "4 none");
        found("axis only, asked for axis", 0x80000010u, "DriveC", 5, 1, "4 I32 -7");
        found("whole unsigned range", 0xFFFFFFFFu, "DriveB", 5, 0, "3 U32 4294967295");
        missing("above high-bit range", 0x80000011u, "DriveC", NkrDeviceDatabase::E_DDB_VERSION_UNKNOWN);
        missing("below all ranges", 0x00FFFFFFu, "DriveA", NkrDeviceDatabase::E_DDB_VERSION_UNKNOWN);
        missing("unknown name", 0x01000000u, "DriveX", NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
        missing("name differs in case", 0x01000000u, "drivea", NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
        missing("empty name", 0x01000000u, "", NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);
    }

    void lookup()
    {
        QFETCH(uint, version);
        QFETCH(QString, name);
        QFETCH(uint, key);
        QFETCH(int, pos);
        QFETCH(QString, found);

        CDatabaseDeviceData database;
        QVERIFY2(database.openDatabase(m_database, QStringLiteral("lookup")) && database.isOpen(), qPrintable(database.lastError()));
        NkrDeviceDatabase::eDdbState_t answer = NkrDeviceDatabase::E_DDB_NOT_OPEN;
        const std::unique_ptr<CDeviceData> device(database.data(NTypes::uVersion_t(version), name, answer));
        QCOMPARE(device != nullptr, answer == NkrDeviceDatabase::E_DDB_OK);
        if (!device) {
            QVERIFY(!database.lastError().isEmpty());
            QCOMPARE(QStringLiteral("state %1").arg(answer), found);
            return;
        }
        QVERIFY(device->isValid());
        QVERIFY(device->versionMin() <= version && version <= device->versionMax());
        const CVariant value = device->value(key, NkrDeviceDatabase::eSubDevicePos_t(pos));
        const QString text = value.isNull() ? QStringLiteral("none") : CDataTypeParser::typeToStr(value.type()) + ' ' + value.toStr();
        QCOMPARE(device->name() + ' ' + QString::number(device->deviceId()) + ' ' + text, name + ' ' + found);
    }

    void openFailure_data()
    {
        QTest::addColumn<QString>("path"); // each row's file is named after the row

        const auto path = [this](const char *tag) { return m_dir.filePath(QLatin1String(tag)); };
        QFile empty(path("empty file")), garbage(path("garbage"));
        QVERIFY(empty.open(QIODevice::WriteOnly) && garbage.open(QIODevice::WriteOnly));
        QVERIFY(garbage.write(QByteArray("\x13\x37 not a database \xfe").repeated(400)) > 0);
        QVERIFY(QDir(m_dir.path()).mkdir(QStringLiteral("directory")));
        for (const char *tag : {"missing file", "directory", "empty file", "garbage"})
            QTest::newRow(tag) << path(tag);
        const auto withSql = [&](const char *tag, const QStringList &sql) {
            QVERIFY(runSql(path(tag), sql));
            QTest::newRow(tag) << path(tag);
        };
        withSql("no tables", {QStringLiteral("CREATE TABLE other (x INTEGER)")});
        withSql("device table only", {kDeviceTable, QStringLiteral("INSERT INTO device VALUES (1, 'DriveA', 0, 1)")});
        withSql("property table of another layout", {kDeviceTable, QStringLiteral("CREATE TABLE property (device_id INTEGER, name TEXT)")});
    }

    void openFailure()
    {
        QFETCH(QString, path);
        const auto contents = [&path] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        const bool existed = QFileInfo::exists(path);
        const QByteArray before = contents();

        const QString connection = QStringLiteral("failing");
        {
            CDatabaseDeviceData database;
            QVERIFY(!database.openDatabase(path, connection));
            QVERIFY(!database.isOpen() && !database.lastError().isEmpty());
            // A failed open does not keep its connection, and leaves nothing to look up in.
            QVERIFY(!QSqlDatabase::contains(connection));
            NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_OK;
            QVERIFY(!database.data(NTypes::uVersion_t(0x01000000), QStringLiteral("DriveA"), state));
            QCOMPARE(state, NkrDeviceDatabase::E_DDB_NOT_OPEN);
        }
        // The file is neither created nor changed.
        QCOMPARE(QFileInfo::exists(path), existed);
        QCOMPARE(contents(), before);
    }

    void build_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("result");
        // Success: the text of property 1 of device "D" at version 5. Failure: the start of lastError().
        QTest::addColumn<QString>("expected");

        const QString schema = kDeviceTable + QStringLiteral(";\n") + kPropertyTable + QStringLiteral(";\n");
        const QString device = QStringLiteral("INSERT INTO device VALUES (1, 'D', 0, 10);\n");
        const auto property = [](const char *value) {
            return QStringLiteral("INSERT INTO property VALUES (1, 1, 0, %1, '%2');\n").arg(NTypes::E_VSTRING).arg(QLatin1String(value));
        };
        QTest::newRow("trigger") << schema + QStringLiteral(
            "CREATE TRIGGER fill AFTER INSERT ON device BEGIN\n"
            "  INSERT INTO property VALUES (new.id, 1, 0, 14, 'from the trigger');\n"
            "END;\n") + device << int(CDeviceDatabaseBuilder::E_BUILD_OK) << QStringLiteral("from the trigger");
        QTest::newRow("';' inside a string, also at a line's end")
            << schema + device + property("a;\nb;") << int(CDeviceDatabaseBuilder::E_BUILD_OK) << QStringLiteral("a;\nb;");
        QTest::newRow("queries, comments, no final ';'")
            << QStringLiteral("-- source\n/* ; */ ") + schema + QStringLiteral("SELECT 1; SELECT 2;\n") + device + property("x").chopped(2)
            << int(CDeviceDatabaseBuilder::E_BUILD_OK) << QStringLiteral("x");
        QTest::newRow("syntax error") << schema + device + QStringLiteral("-- next\n\nINSERT INTO property VALUE (1);\n")
                                      << int(CDeviceDatabaseBuilder::E_BUILD_SCRIPT_FAILED) << QStringLiteral("line 6: near \"VALUE\"");
        QTest::newRow("constraint after a comment") << schema + device + property("x") + QStringLiteral("-- again\n") + property("y")
                                                    << int(CDeviceDatabaseBuilder::E_BUILD_SCRIPT_FAILED) << QStringLiteral("line 6: UNIQUE constraint failed");
        QTest::newRow("attaching another file") << QStringLiteral("ATTACH '%1' AS other;").arg(m_dir.filePath(QStringLiteral("attached.db")))
                                                << int(CDeviceDatabaseBuilder::E_BUILD_SCRIPT_FAILED) << QStringLiteral("line 1: ");
    }

    void build()
    {
        QFETCH(QString, script);
        QFETCH(int, result);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        const QString target = dir.filePath(QStringLiteral("built.db"));
        // An older database stands at the target; it must be replaced whole or not at all.
        QFile::copy(m_database, target);
        const QByteArray before = [&target] { QFile f(target); return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray(); }();
        QVERIFY(!before.isEmpty());

        CDeviceDatabaseBuilder builder;
        QCOMPARE(int(builder.build(script, target)), result);
        // No temporary file is left beside the target.
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("built.db")});
        if (result != CDeviceDatabaseBuilder::E_BUILD_OK) {
            QVERIFY2(builder.lastError().startsWith(expected), qPrintable(builder.lastError()));
            QFile file(target);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY(file.readAll() == before);
            QVERIFY(!QFileInfo::exists(m_dir.filePath(QStringLiteral("attached.db"))));
            return;
        }
        QVERIFY(builder.lastError().isEmpty());
        CDatabaseDeviceData database;
        QVERIFY2(database.openDatabase(target, QStringLiteral("built")), qPrintable(database.lastError()));
        NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
        const std::unique_ptr<CDeviceData> data(database.data(NTypes::uVersion_t(5), QStringLiteral("D"), state));
        QVERIFY(data);
        QCOMPARE(data->value(1).toStr(), expected);
    }

    void buildIntoAnUnwritablePlace_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("below a regular file") << m_database + QStringLiteral("/built.db"); // refused even to root
        QTest::newRow("a directory") << m_dir.path();
        QTest::newRow("a missing directory") << m_dir.filePath(QStringLiteral("missing/built.db"));
    }

    void buildIntoAnUnwritablePlace()
    {
        QFETCH(QString, target);
        const QStringList before = QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::Hidden);
        CDeviceDatabaseBuilder builder;
        QCOMPARE(builder.build(kDeviceTable, target), CDeviceDatabaseBuilder::E_BUILD_NOT_WRITTEN);
        QVERIFY2(builder.lastError().startsWith(QStringLiteral("cannot write '%1': ").arg(target)), qPrintable(builder.lastError()));
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::Hidden), before);
    }

    void connections()
    {
        const QString other = m_dir.filePath(QStringLiteral("other.db"));
        QVERIFY(runSql(other, {kDeviceTable, kPropertyTable,
                               QStringLiteral("INSERT INTO device VALUES (1, 'DriveA', 0x01000000, 0x0100FFFF)"),
                               QStringLiteral("INSERT INTO property VALUES (1, 1, 0, %1, '999')").arg(NTypes::E_U16)}));
        const QString nameA = QStringLiteral("first"), nameB = QStringLiteral("second"), nameC = QStringLiteral("third");
        const NTypes::uVersion_t version(0x01000001);
        NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
        {
            CDatabaseDeviceData a, b;
            QVERIFY(a.openDatabase(m_database, nameA));
            // A second open under a taken name is refused, and the refused object must not take the
            // connection of the first one down when it goes.
            QVERIFY([&] { CDatabaseDeviceData refused; return !refused.openDatabase(other, nameA) && !refused.lastError().isEmpty(); }());
            QVERIFY(b.openDatabase(other, nameB));
            QVERIFY(QSqlDatabase::contains(nameA) && QSqlDatabase::contains(nameB));

            const std::unique_ptr<CDeviceData> fromA(a.data(version, QStringLiteral("DriveA"), state));
            const std::unique_ptr<CDeviceData> fromB(b.data(version, QStringLiteral("DriveA"), state));
            QVERIFY(fromA && fromB);
            QCOMPARE(fromA->value(1).toStr() + QLatin1Char(' ') + fromB->value(1).toStr(), QStringLiteral("100 999"));
            // The device keeps its range and every property row of its own.
            QCOMPARE(QStringLiteral("%1-%2, %3 rows")
                         .arg(fromA->versionMin(), 0, 16).arg(fromA->versionMax(), 0, 16).arg(fromA->propertyCount()),
                     QStringLiteral("1000000-100ffff, 3 rows"));
            QVERIFY(!b.data(version, QStringLiteral("DriveB"), state));
            QCOMPARE(state, NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN);

            // Reopening under another name closes the old connection.
            QVERIFY(b.openDatabase(m_database, nameC));
            QVERIFY(!QSqlDatabase::contains(nameB));
            delete b.data(version, QStringLiteral("DriveB"), state);
            QCOMPARE(state, NkrDeviceDatabase::E_DDB_OK);
        }
        QVERIFY(!QSqlDatabase::contains(nameA) && !QSqlDatabase::contains(nameC));
        // The names are free again.
        CDatabaseDeviceData again;
        QVERIFY(again.openDatabase(other, nameA));
    }
};

QTEST_GUILESS_MAIN(tst_PlatformDeviceDb)
#include "tst_platform_devicedb.moc"

#include "CDatabaseDeviceData.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <memory>

namespace {

const QString kDriver = QStringLiteral("QSQLITE");

/// Text of a failed query, naming what was being read.
QString queryError(const QString &what, const QSqlQuery &query)
{
    return QStringLiteral("Cannot read %1: %2").arg(what, query.lastError().text());
}

/// Checks that the open database has the device and property tables with their columns.
bool checkSchema(const QSqlDatabase &db, QString *error)
{
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"))) {
        *error = queryError(QStringLiteral("the table list"), query);
        return false;
    }
    bool hasDevice = false;
    bool hasProperty = false;
    while (query.next()) {
        const QString table = query.value(0).toString();
        hasDevice = hasDevice || table == QLatin1String("device");
        hasProperty = hasProperty || table == QLatin1String("property");
    }
    if (!hasDevice || !hasProperty) {
        *error = QStringLiteral("The database lacks the table '%1'.")
                     .arg(hasDevice ? QStringLiteral("property") : QStringLiteral("device"));
        return false;
    }
    // Selecting the columns catches tables of the right name but another layout.
    if (!query.exec(QStringLiteral("SELECT id, name, version_min, version_max FROM device LIMIT 0"))) {
        *error = queryError(QStringLiteral("the table 'device'"), query);
        return false;
    }
    if (!query.exec(QStringLiteral("SELECT device_id, key, pos, type, value FROM property LIMIT 0"))) {
        *error = queryError(QStringLiteral("the table 'property'"), query);
        return false;
    }
    return true;
}

} // namespace

CDatabaseDeviceData::CDatabaseDeviceData() = default;

CDatabaseDeviceData::~CDatabaseDeviceData()
{
    close();
}

bool CDatabaseDeviceData::openDatabase(const QString &file, const QString &connectionName)
{
    close();
    m_lastError.clear();

    if (connectionName.isEmpty()) {
        m_lastError = QStringLiteral("No connection name given.");
        return false;
    }
    if (QSqlDatabase::contains(connectionName)) {
        m_lastError = QStringLiteral("The connection name '%1' is already in use.").arg(connectionName);
        return false;
    }
    // QSQLITE would create a missing file, so the file is checked first.
    const QFileInfo info(file);
    if (!info.exists() || !info.isFile()) {
        m_lastError = QStringLiteral("The database file '%1' does not exist.").arg(file);
        return false;
    }
    if (!QSqlDatabase::isDriverAvailable(kDriver)) {
        m_lastError = QStringLiteral("The SQLite driver of Qt is not available.");
        return false;
    }

    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(kDriver, connectionName);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            m_lastError = QStringLiteral("Cannot open '%1': %2").arg(file, db.lastError().text());
        } else {
            // SQLite reads the file lazily: a corrupt file only shows with the first query.
            ok = checkSchema(db, &m_lastError);
            if (!ok) {
                m_lastError = QStringLiteral("'%1' is no device database: %2").arg(file, m_lastError);
                db.close();
            }
        }
    }
    if (!ok) {
        QSqlDatabase::removeDatabase(connectionName);
        return false;
    }
    m_connectionName = connectionName;
    return true;
}

bool CDatabaseDeviceData::isOpen() const
{
    return !m_connectionName.isEmpty() && QSqlDatabase::database(m_connectionName, false).isOpen();
}

CDeviceData *CDatabaseDeviceData::data(NTypes::uVersion_t version, const QString &name,
                                       NkrDeviceDatabase::eDdbState_t &state) const
{
    if (!isOpen()) {
        state = NkrDeviceDatabase::E_DDB_NOT_OPEN;
        m_lastError = QStringLiteral("No device database is open.");
        return nullptr;
    }

    const QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
    QSqlQuery query(db);
    query.setForwardOnly(true);

    // Versions are unsigned 32-bit words; SQLite compares signed 64-bit integers, so the
    // range is checked here (a word written as a negative number still reads correctly).
    query.prepare(QStringLiteral("SELECT id, version_min, version_max FROM device WHERE name = ? ORDER BY id"));
    query.addBindValue(name);
    if (!query.exec()) {
        state = NkrDeviceDatabase::E_DDB_QUERY_FAILED;
        m_lastError = queryError(QStringLiteral("the table 'device'"), query);
        return nullptr;
    }
    bool nameFound = false;
    std::unique_ptr<CDeviceData> device;
    while (!device && query.next()) {
        nameFound = true;
        const quint32 min = quint32(query.value(1).toLongLong());
        const quint32 max = quint32(query.value(2).toLongLong());
        if (min <= version.value && version.value <= max)
            device.reset(new CDeviceData(query.value(0).toInt(), name, min, max));
    }
    if (!device) {
        state = nameFound ? NkrDeviceDatabase::E_DDB_VERSION_UNKNOWN : NkrDeviceDatabase::E_DDB_DEVICE_UNKNOWN;
        m_lastError = nameFound
            ? QStringLiteral("No entry of device '%1' covers version 0x%2.").arg(name).arg(version.value, 8, 16, QLatin1Char('0'))
            : QStringLiteral("The device '%1' is unknown.").arg(name);
        return nullptr;
    }

    query.finish();
    query.prepare(QStringLiteral("SELECT key, pos, type, value FROM property WHERE device_id = ?"));
    query.addBindValue(device->deviceId());
    if (!query.exec()) {
        state = NkrDeviceDatabase::E_DDB_QUERY_FAILED;
        m_lastError = queryError(QStringLiteral("the table 'property'"), query);
        return nullptr;
    }
    while (query.next()) {
        const qint64 pos = query.value(1).toLongLong();
        // Positions are one byte; anything else cannot be asked for and would alias another one.
        if (pos < 0 || pos > NkrDeviceDatabase::E_SDP_MAX)
            continue;
        const qint64 typeNumber = query.value(2).toLongLong();
        const NTypes::eTypes_t type = typeNumber >= 0 && typeNumber < NTypes::E_TYPE_COUNT
            ? NTypes::eTypes_t(typeNumber)
            : NTypes::E_UNKNOWN;
        device->setValue(uint(query.value(0).toLongLong()), NkrDeviceDatabase::eSubDevicePos_t(pos),
                         CVariant(query.value(3).toString(), type));
    }
    if (query.lastError().isValid()) {
        state = NkrDeviceDatabase::E_DDB_QUERY_FAILED;
        m_lastError = queryError(QStringLiteral("the table 'property'"), query);
        return nullptr;
    }

    state = NkrDeviceDatabase::E_DDB_OK;
    m_lastError.clear();
    return device.release();
}

void CDatabaseDeviceData::close()
{
    if (m_connectionName.isEmpty())
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
        db.close();
    }
    // No QSqlDatabase or QSqlQuery of this connection is alive any more, so Qt removes it quietly.
    QSqlDatabase::removeDatabase(m_connectionName);
    m_connectionName.clear();
}

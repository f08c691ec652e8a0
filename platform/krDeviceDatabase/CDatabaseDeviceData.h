#pragma once

#include "CDeviceData.h"
#include "NTypes.h"
#include "NkrDeviceDatabase.h"
#include "krdevicedatabase_export.h"

#include <QString>

/// Read access to the SQLite device database (schema in docs/platform.md).
/// Each object uses its own named connection, removed again on destruction.
class KRDEVICEDATABASE_EXPORT CDatabaseDeviceData
{
public:
    CDatabaseDeviceData();
    ~CDatabaseDeviceData();
    CDatabaseDeviceData(const CDatabaseDeviceData &) = delete;
    CDatabaseDeviceData &operator=(const CDatabaseDeviceData &) = delete;

    /// Opens an existing database file read-only under \a connectionName. False when the file is
    /// missing, cannot be opened, or lacks the device and property tables; lastError() says why.
    bool openDatabase(const QString &file, const QString &connectionName);
    /// A database is open.
    bool isOpen() const;
    /// The device named \a name whose version range holds \a version, with all its properties;
    /// a new object owned by the caller, or null with a non-zero \a state.
    CDeviceData *data(NTypes::uVersion_t version, const QString &name, NkrDeviceDatabase::eDdbState_t &state) const;
    /// The reason of the last failure; empty after a successful open.
    QString lastError() const { return m_lastError; }

private:
    void close();

    QString m_connectionName;
    mutable QString m_lastError;
};

#pragma once

#include "krdevicedatabase_export.h"

#include <QString>

/// Builds a device database file from an SQL script (schema in docs/platform.md).
/// SQLite runs the script whole into a database in memory, so triggers and ';' inside strings
/// work, and the file is written only once every statement has run: through a temporary file in
/// the target's directory that is renamed over the target, which never goes missing or half-written.
class KRDEVICEDATABASE_EXPORT CDeviceDatabaseBuilder
{
public:
    /// Outcome of build().
    enum eBuildResult_t {
        E_BUILD_OK = 0,            ///< the file holds the new database
        E_BUILD_SCRIPT_FAILED = 1, ///< a statement failed; the file is untouched
        E_BUILD_NOT_WRITTEN = 2    ///< the database could not be written; the file is untouched
    };

    /// Runs \a script and replaces \a file with the resulting database; lastError() says why not.
    eBuildResult_t build(const QString &script, const QString &file);
    /// Why the last build failed ("line 12: no such table: x", "cannot write 'db': ..."); empty after success.
    QString lastError() const { return m_lastError; }

private:
    QString m_lastError;
};

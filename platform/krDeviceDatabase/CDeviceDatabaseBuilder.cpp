#include "CDeviceDatabaseBuilder.h"

#include "CSaveFile.h"

#include <QSaveFile>

#include <sqlite3.h>

#include <cstring>
#include <memory>

namespace {

struct sCloseDatabase_t {
    void operator()(sqlite3 *db) const { sqlite3_close(db); }
};
using tDatabase_t = std::unique_ptr<sqlite3, sCloseDatabase_t>;

/// Where the statement at \a at really starts: after blanks and comments.
const char *skipBlanksAndComments(const char *at)
{
    for (;;) {
        while (*at == ' ' || *at == '\n' || *at == '\t' || *at == '\r')
            ++at;
        if (at[0] == '-' && at[1] == '-') {
            while (*at && *at != '\n')
                ++at;
        } else if (at[0] == '/' && at[1] == '*') {
            const char *end = std::strstr(at + 2, "*/");
            at = end ? end + 2 : at + std::strlen(at);
        } else {
            return at;
        }
    }
}

/// Runs every statement of \a script in order, as sqlite3_exec does, but keeps track of where the
/// failing statement is, so that the message can name the line.
bool runScript(sqlite3 *db, const QByteArray &script, QString *error)
{
    const char *const begin = script.constData();
    const char *next = begin;
    while (*next) {
        const char *const start = next;
        sqlite3_stmt *statement = nullptr;
        int rc = sqlite3_prepare_v2(db, start, -1, &statement, &next);
        if (rc == SQLITE_OK && statement) {
            do
                rc = sqlite3_step(statement);
            while (rc == SQLITE_ROW);
            if (rc == SQLITE_DONE)
                rc = SQLITE_OK;
        }
        sqlite3_finalize(statement); // a null statement (only blanks or comments left) is fine
        if (rc != SQLITE_OK) {
            // SQLite knows the offset of a syntax error; for other failures the statement's start will do.
            const int offset = sqlite3_error_offset(db);
            const char *at = offset >= 0 ? start + offset : skipBlanksAndComments(start);
            const int line = QByteArray::fromRawData(begin, int(at - begin)).count('\n') + 1;
            *error = QStringLiteral("line %1: %2").arg(line).arg(QString::fromUtf8(sqlite3_errmsg(db)));
            return false;
        }
    }
    return true;
}

} // namespace

CDeviceDatabaseBuilder::eBuildResult_t CDeviceDatabaseBuilder::build(const QString &script, const QString &file)
{
    m_lastError.clear();
    sqlite3 *raw = nullptr;
    const int opened = sqlite3_open_v2(":memory:", &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    const tDatabase_t db(raw);
    if (opened != SQLITE_OK) {
        m_lastError = QStringLiteral("cannot create a database: %1").arg(QString::fromUtf8(sqlite3_errstr(opened)));
        return E_BUILD_SCRIPT_FAILED;
    }
    // The script builds this one database; it has no business with other files.
    sqlite3_limit(db.get(), SQLITE_LIMIT_ATTACHED, 0);
    if (!runScript(db.get(), script.toUtf8(), &m_lastError))
        return E_BUILD_SCRIPT_FAILED;

    sqlite3_int64 size = 0;
    unsigned char *const bytes = sqlite3_serialize(db.get(), "main", &size, 0);
    const std::unique_ptr<unsigned char, void (*)(void *)> owned(bytes, sqlite3_free);
    if (!bytes && size > 0) {
        m_lastError = QStringLiteral("cannot write '%1': out of memory").arg(file);
        return E_BUILD_NOT_WRITTEN;
    }
    // QSaveFile writes a temporary file beside the target and renames it over the target on commit.
    QSaveFile out(file);
    const bool written = out.open(QIODevice::WriteOnly)
        && out.write(reinterpret_cast<const char *>(bytes), size) == size
        && CSaveFile::commit(out);
    if (!written) {
        m_lastError = QStringLiteral("cannot write '%1': %2").arg(file, out.errorString());
        out.cancelWriting();
        return E_BUILD_NOT_WRITTEN;
    }
    return E_BUILD_OK;
}

#pragma once

#include "COdictProgress.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

/// Writes a text file line by line while the exporter produces it, so that no export holds its
/// whole file. The lines are encoded to UTF-8 into one buffer that is written in chunks of
/// 256 KiB; the file replaces the target only when everything was written (QSaveFile), else the
/// old file stays as it was. A FIFO, device or directory at the target is refused.
class COdictLineSink
{
public:
    enum eFormat_t {
        /// A UTF-8 byte-order mark, every line followed by a line feed (text mode: CR LF on Windows).
        E_F_SOURCE,
        /// No byte-order mark, every line followed by CR LF; a line break inside a line becomes a blank.
        E_F_INI
    };

    /// Opens a temporary file beside \a path. \a progress gets the objects written, out of
    /// \a total, as the exporter reports them through advance().
    COdictLineSink(const QString &path, eFormat_t format, const COdictProgressCallback &progress, qint64 total);
    ~COdictLineSink();

    /// False when the target was refused or the file could not be opened or written; the lines
    /// still go nowhere, so an exporter may carry on and learn the result from commit().
    bool isWriting() const { return m_writing; }

    /// Appends one line.
    COdictLineSink &operator<<(const QString &line);
    COdictLineSink &operator<<(QLatin1String line);

    /// \a count more objects are written.
    void advance(qint64 count = 1) { m_meter.update(m_done += count); }

    /// Writes what is buffered and puts the file in place; false when any of it failed.
    bool commit();

private:
    void endLine();
    void flush();

    QSaveFile m_file;
    eFormat_t m_format;
    bool m_writing = false;
    QByteArray m_chunk;
    COdictProgressMeter m_meter;
    qint64 m_done = 0;
};

/// A brace-enclosed C list written through a sink. The last comma of the list's last line
/// becomes a blank, so that the columns stay aligned and the list has no trailing comma; the
/// opening lines count as lines of the list. One line is held back until the next one comes.
class COdictListWriter
{
public:
    /// Writes \a declaration and holds back the opening brace.
    COdictListWriter(COdictLineSink &sink, const QString &declaration);

    /// Writes the line held back and holds back \a line.
    void add(const QString &line);
    /// Writes the last line without its last comma and the closing "};".
    void close();

private:
    COdictLineSink &m_sink;
    QString m_pending;
};

#pragma once

// Shared by the fuzz targets: scratch files, a quiet Qt, and how a finding is reported.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Qt's own warnings are expected for broken input; they would only hide libFuzzer's report.
inline void quietMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

/// A path in the target's scratch directory (created once, removed at a normal exit).
inline QString scratch(const QString &name)
{
    static QTemporaryDir dir;
    static const bool quiet = (qInstallMessageHandler(quietMessages), true);
    Q_UNUSED(quiet);
    return dir.filePath(name);
}

/// Writes the input to the scratch file \a name and answers its path.
inline QString writeScratch(const QString &name, const uint8_t *data, size_t size)
{
    const QString path = scratch(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        abort();
    file.write(reinterpret_cast<const char *>(data), qint64(size));
    return path;
}

/// A broken property: printed, then abort(), which libFuzzer records as a crash with its input.
[[noreturn]] inline void finding(const QString &what)
{
    fprintf(stderr, "FINDING: %s\n", what.toLocal8Bit().constData());
    abort();
}

/// Inputs that only the readers' input limits (nesting depth, entity declarations) can make
/// harmless. Those limits are being added to the readers; until they land the targets leave such
/// inputs out, so the time goes into finding everything else. Depth is counted roughly: start
/// tags up, end tags and empty-element tags down.
inline bool beyondReaderLimits(const uint8_t *data, size_t size, int maxDepth = 256)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    if (bytes.contains("<!ENTITY") || bytes.contains("<!entity"))
        return true;
    int depth = 0;
    for (size_t i = 0; i + 1 < size; ++i) {
        if (data[i] == '<' && data[i + 1] != '/' && data[i + 1] != '?' && data[i + 1] != '!') {
            if (++depth > maxDepth)
                return true;
        } else if ((data[i] == '<' && data[i + 1] == '/') || (data[i] == '/' && data[i + 1] == '>')) {
            --depth;
        }
    }
    return false;
}

} // namespace fuzz

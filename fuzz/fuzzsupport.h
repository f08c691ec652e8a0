#pragma once

// Shared by the fuzz targets: a quiet Qt, the input filter, and how a finding is reported.

#include "fuzzchecks.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Qt's own warnings are expected for broken input; they would only hide libFuzzer's report.
inline void quietMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

/// The input as a byte array.
inline QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), int(size));
}

/// A broken property: printed, then abort(), which libFuzzer records as a crash with its input.
inline void report(const QString &finding)
{
    if (finding.isEmpty())
        return;
    fprintf(stderr, "FINDING: %s\n", finding.toLocal8Bit().constData());
    abort();
}

/// Inputs that only the readers' input limits (nesting depth, entity declarations) can make
/// harmless. Those limits are being added to the readers; until they land the targets leave such
/// inputs out, so the time goes into finding everything else. Depth is counted roughly: start
/// tags up, end tags and empty-element tags down.
inline bool beyondReaderLimits(const uint8_t *data, size_t size, int maxDepth = 256)
{
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    if (input.contains("<!ENTITY") || input.contains("<!entity"))
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

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(fuzz::quietMessages);
    return 0;
}

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

} // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(fuzz::quietMessages);
    return 0;
}

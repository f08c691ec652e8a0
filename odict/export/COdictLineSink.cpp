#include "COdictLineSink_p.h"

#include "CSaveFile.h"

namespace {

constexpr int chunkSize = 256 * 1024;

} // namespace

COdictLineSink::COdictLineSink(const QString &path, eFormat_t format, const COdictProgressCallback &progress,
                               qint64 total)
    : m_file(path), m_format(format), m_meter(progress, total)
{
    // A FIFO or device is never replaced by a regular file.
    if (CSaveFile::checkTarget(path))
        m_writing = m_file.open(format == E_F_SOURCE ? QIODevice::WriteOnly | QIODevice::Text : QIODevice::WriteOnly);
    m_chunk.reserve(chunkSize + chunkSize / 4);
    if (format == E_F_SOURCE)
        m_chunk += "\xEF\xBB\xBF";
}

COdictLineSink::~COdictLineSink()
{
    if (m_file.isOpen())
        m_file.cancelWriting(); // an export that stopped early leaves the old file
}

COdictLineSink &COdictLineSink::operator<<(const QString &line)
{
    // Most lines are ASCII: those are copied byte by byte without a temporary array.
    const QChar *c = line.constData();
    const QChar *const end = c + line.size();
    const int start = m_chunk.size();
    m_chunk.resize(start + line.size());
    char *out = m_chunk.data() + start;
    for (; c != end && c->unicode() < 0x80; ++c)
        *out++ = char(c->unicode());
    if (c != end) {
        m_chunk.resize(start);
        m_chunk += line.toUtf8();
    }
    if (m_format == E_F_INI) {
        // A line break inside a text would end its key early: texts keep to their line.
        for (char *p = m_chunk.data() + start, *last = m_chunk.data() + m_chunk.size(); p != last; ++p) {
            if (*p == '\r' || *p == '\n')
                *p = ' ';
        }
    }
    endLine();
    return *this;
}

COdictLineSink &COdictLineSink::operator<<(QLatin1String line)
{
    return *this << QString(line);
}

void COdictLineSink::endLine()
{
    m_chunk += m_format == E_F_INI ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\n");
    if (m_chunk.size() >= chunkSize)
        flush();
}

void COdictLineSink::flush()
{
    if (m_writing && m_file.write(m_chunk) != m_chunk.size()) {
        m_file.cancelWriting();
        m_writing = false;
    }
    m_chunk.resize(0); // keeps the capacity
}

bool COdictLineSink::commit()
{
    flush();
    if (!m_writing) {
        if (m_file.isOpen())
            m_file.commit(); // cancelled: closes the file and removes the temporary one
        return false;
    }
    if (!CSaveFile::commit(m_file))
        return false;
    m_meter.finish();
    return true;
}

COdictListWriter::COdictListWriter(COdictLineSink &sink, const QString &declaration)
    : m_sink(sink), m_pending(QStringLiteral("{"))
{
    m_sink << declaration;
}

void COdictListWriter::add(const QString &line)
{
    m_sink << m_pending;
    m_pending = line;
}

void COdictListWriter::close()
{
    const int comma = m_pending.lastIndexOf(QLatin1Char(','));
    if (comma >= 0)
        m_pending[comma] = QLatin1Char(' ');
    m_sink << m_pending << QLatin1String("};");
}

#include "COdictDitaWriter_p.h"

#include "CXmlText.h"

#include <QFile>

#include <cstring>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QDir>
#include <QFileInfo>
#include <filesystem>
#include <system_error>
#endif

namespace {

// A file larger than this (the map lists every topic) is written in pieces of about this size.
constexpr int spillSize = 64 * 1024;

} // namespace

COdictDitaWriter::COdictDitaWriter()
{
    m_out.resize(16 * 1024);
}

COdictDitaWriter::~COdictDitaWriter()
{
    close();
}

bool COdictDitaWriter::open(const QString &directory)
{
    close();
#ifdef Q_OS_UNIX
    // Every file is opened, checked and renamed relative to the directory: no path is resolved
    // again for each of the thousands of files.
    m_directory = ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_directory < 0)
        return false;
    // What is not a regular file is found in one pass over the directory rather than with a
    // stat per file, which took a tenth of the export. The entries reported as regular files
    // need no look; links are followed, so a link to a device is refused like the device.
    m_refused.clear();
    const int listing = ::dup(m_directory);
    DIR *entries = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!entries) {
        if (listing >= 0)
            ::close(listing);
        close();
        return false;
    }
    while (const dirent *entry = ::readdir(entries)) {
        const char *name = entry->d_name;
        if (entry->d_type == DT_REG || std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        struct stat status;
        const bool unknown = entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN;
        // A dangling link is no obstacle: the rename replaces it.
        if (!unknown || (::fstatat(m_directory, name, &status, 0) == 0 && !S_ISREG(status.st_mode)))
            m_refused.insert(QByteArray(name));
    }
    ::closedir(entries);
    return true;
#else
    m_directory = directory;
    return QFileInfo(directory).isDir();
#endif
}

void COdictDitaWriter::close()
{
    discard();
#ifdef Q_OS_UNIX
    if (m_directory >= 0)
        ::close(m_directory);
    m_directory = -1;
    m_refused.clear();
#else
    m_directory.clear();
#endif
}

void COdictDitaWriter::begin(const QByteArray &fileName, const char *root, const char *publicId,
                             const char *systemId, QLatin1String id, const QString &lang)
{
    discard(); // a file begun but never committed
    m_fileName = fileName;
    m_partial = fileName + ".part";
    m_failed = false;
    m_used = 0;
    m_open.clear();
    m_startTagOpen = false;
    append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE ");
    append(root);
    append(" PUBLIC \"");
    append(publicId);
    append("\" \"");
    append(systemId);
    append("\">\n");
    start(root);
    attribute("id", id);
    if (!lang.isEmpty())
        attribute("xml:lang", lang);
}

bool COdictDitaWriter::commit()
{
    while (!m_open.isEmpty())
        end();
    append('\n');
    // A reader (or the toolkit) sees the old file or the new one, never a part of one: the file
    // is written beside its target and renamed over it. Neither way flushes each file to the
    // disk as QSaveFile does, which made a package of 140,000 topics take minutes.
#ifdef Q_OS_UNIX
    bool written = m_directory >= 0 && !m_refused.contains(m_fileName) && writeOut();
    if (m_file >= 0) {
        const int file = m_file;
        m_file = -1;
        written = ::close(file) == 0 && written;
        if (written && ::renameat(m_directory, m_partial.constData(), m_directory, m_fileName.constData()) == 0) {
            m_partial.clear();
            return true;
        }
        ::unlinkat(m_directory, m_partial.constData(), 0);
    }
    m_partial.clear();
    return false;
#else
    const QString target = QDir(m_directory).filePath(QFile::decodeName(m_fileName));
    const QFileInfo info(target);
    if (m_directory.isEmpty() || (info.exists() && !info.isFile()))
        return false;
    QFile file(QDir(m_directory).filePath(QFile::decodeName(m_partial)));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    bool written = file.write(m_out.constData(), m_used) == m_used && file.flush();
    file.close();
    written = written && file.error() == QFileDevice::NoError;
    std::error_code error;
    if (written)
        std::filesystem::rename(std::filesystem::path(file.fileName().toStdWString()),
                                std::filesystem::path(target.toStdWString()), error);
    if (written && !error)
        return true;
    file.remove();
    return false;
#endif
}

void COdictDitaWriter::spill()
{
#ifdef Q_OS_UNIX
    if (!m_failed)
        m_failed = !writeOut();
    m_used = 0;
#endif
}

bool COdictDitaWriter::writeOut()
{
#ifdef Q_OS_UNIX
    if (m_failed || m_directory < 0)
        return false;
    if (m_file < 0) {
        m_file = ::openat(m_directory, m_partial.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (m_file < 0)
            return false;
    }
    for (const char *data = m_out.constData(), *end = data + m_used; data != end;) {
        const ssize_t n = ::write(m_file, data, size_t(end - data));
        if (n > 0)
            data += n;
        else if (n == 0 || errno != EINTR)
            return false;
    }
    m_used = 0;
    return true;
#else
    return false;
#endif
}

void COdictDitaWriter::discard()
{
#ifdef Q_OS_UNIX
    if (m_file >= 0) {
        ::close(m_file);
        m_file = -1;
        // Only a partial file this writer created is removed, never one that was there.
        ::unlinkat(m_directory, m_partial.constData(), 0);
    }
#endif
    m_partial.clear();
}

void COdictDitaWriter::start(const char *name)
{
    if (m_used >= spillSize)
        spill();
    closeStartTag();
    append('<');
    append(name);
    m_open.append(name);
    m_startTagOpen = true;
}

void COdictDitaWriter::end()
{
    if (m_open.isEmpty())
        return;
    const char *name = m_open.last();
    m_open.removeLast();
    if (m_startTagOpen) { // nothing inside: an empty-element tag
        append("/>");
        m_startTagOpen = false;
        return;
    }
    append("</");
    append(name);
    append('>');
}

void COdictDitaWriter::closeStartTag()
{
    if (m_startTagOpen) {
        append('>');
        m_startTagOpen = false;
    }
}

void COdictDitaWriter::attribute(const char *name, const QString &value)
{
    append(' ');
    append(name);
    append("=\"");
    appendEscaped(value, true);
    append('"');
}

void COdictDitaWriter::attribute(const char *name, QLatin1String value)
{
    append(' ');
    append(name);
    append("=\"");
    appendEscaped(value, true);
    append('"');
}

void COdictDitaWriter::element(const char *name, const QString &text)
{
    closeStartTag();
    append('<');
    append(name);
    append('>');
    appendEscaped(text, false);
    append("</");
    append(name);
    append('>');
}

void COdictDitaWriter::emptyElement(const char *name, const char *attribute, const QString &value)
{
    closeStartTag();
    append('<');
    append(name);
    this->attribute(attribute, value);
    append("/>");
}

void COdictDitaWriter::xref(QLatin1String href, const QString &text)
{
    closeStartTag();
    append("<xref");
    attribute("href", href);
    append('>');
    appendEscaped(text, false);
    append("</xref>");
}

void COdictDitaWriter::elementBytes(const char *name, const QByteArray &bytes)
{
    closeStartTag();
    append('<');
    append(name);
    append('>');
    append(bytes.constData(), bytes.size());
    append("</");
    append(name);
    append('>');
}

void COdictDitaWriter::elementHex(const char *name, quint64 value, int width)
{
    char digits[16];
    int count = 0;
    do {
        digits[count++] = "0123456789ABCDEF"[value & 0xF];
        value >>= 4;
    } while (value != 0);
    closeStartTag();
    append('<');
    append(name);
    append(">0x", 3);
    for (int i = count; i < width; ++i)
        append('0');
    while (count > 0)
        append(digits[--count]);
    append("</");
    append(name);
    append('>');
}

QByteArray COdictDitaWriter::escaped(const QString &text)
{
    COdictDitaWriter writer;
    writer.appendEscaped(text, false);
    return QByteArray(writer.m_out.constData(), writer.m_used);
}

namespace {

/// Writes the ASCII character \a u at \a out, escaped where XML needs it (line ends and tabs
/// also in attribute values), and returns the position after it. The control characters XML 1.0
/// cannot carry are left out.
inline char *putAscii(char *out, ushort u, bool inAttribute)
{
    const char *escape = nullptr;
    switch (u) {
    case '<': escape = "&lt;"; break;
    case '>': escape = "&gt;"; break;
    case '&': escape = "&amp;"; break;
    case '"': escape = "&quot;"; break;
    case '\t': escape = inAttribute ? "&#9;" : nullptr; break;
    case '\n': escape = inAttribute ? "&#10;" : nullptr; break;
    case '\r': escape = inAttribute ? "&#13;" : nullptr; break;
    default:
        if (u < 0x20)
            return out;
        break;
    }
    if (!escape) {
        *out++ = char(u);
        return out;
    }
    const size_t length = std::strlen(escape);
    std::memcpy(out, escape, length);
    return out + length;
}

} // namespace

void COdictDitaWriter::appendEscaped(const QString &text, bool inAttribute)
{
    const ushort *p = text.utf16();
    const ushort *const end = p + text.size();
    // At most six bytes per UTF-16 unit ("&quot;"; a surrogate pair takes four for two units).
    char *const start = room(6 * text.size());
    char *out = start;
    for (; p != end; ++p) {
        const ushort u = *p;
        if (u < 0x80) {
            out = putAscii(out, u, inAttribute);
        } else if (u < 0x800) {
            *out++ = char(0xC0 | (u >> 6));
            *out++ = char(0x80 | (u & 0x3F));
        } else if (QChar::isSurrogate(u)) {
            // Only a complete pair is a character; an unpaired half is left out.
            if (QChar::isHighSurrogate(u) && p + 1 != end && QChar::isLowSurrogate(p[1])) {
                const uint code = QChar::surrogateToUcs4(u, p[1]);
                ++p;
                *out++ = char(0xF0 | (code >> 18));
                *out++ = char(0x80 | ((code >> 12) & 0x3F));
                *out++ = char(0x80 | ((code >> 6) & 0x3F));
                *out++ = char(0x80 | (code & 0x3F));
            }
        } else if (u != 0xFFFE && u != 0xFFFF) {
            *out++ = char(0xE0 | (u >> 12));
            *out++ = char(0x80 | ((u >> 6) & 0x3F));
            *out++ = char(0x80 | (u & 0x3F));
        }
    }
    m_used += int(out - start);
}

void COdictDitaWriter::appendEscaped(QLatin1String text, bool inAttribute)
{
    char *const start = room(6 * text.size());
    char *out = start;
    for (const char c : text) {
        const ushort u = uchar(c);
        if (u < 0x80) {
            out = putAscii(out, u, inAttribute);
        } else {
            *out++ = char(0xC0 | (u >> 6));
            *out++ = char(0x80 | (u & 0x3F));
        }
    }
    m_used += int(out - start);
}

void COdictDitaWriter::grow(int size)
{
    // Doubling keeps the number of copies small; the size stays for the files that follow.
    m_out.resize(qMax(2 * m_out.size(), m_used + size));
}

QString COdictDitaWriter::clean(const QString &text)
{
    return CXmlText::clean(text);
}

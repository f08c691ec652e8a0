#include "COdictDitaWriter_p.h"

#include "CXmlText.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>

namespace {

std::filesystem::path nativePath(const QString &path)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(path.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(path).toStdString());
#endif
}

} // namespace

COdictDitaWriter::COdictDitaWriter() : m_xml(&m_text)
{
    // No auto-formatting: the indentation took a third of the time of a large export, and the
    // files are read by tools (xmllint --format shows them indented).
    m_text.reserve(8 * 1024);
}

void COdictDitaWriter::begin(const QString &root, const QString &publicId, const QString &systemId,
                             const QString &id, const QString &lang)
{
    // A writer on a string leaves the encoding out of its declaration, so it is written here.
    m_text.resize(0); // keeps the capacity
    m_text += QLatin1String("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    m_xml.writeDTD(QStringLiteral("<!DOCTYPE %1 PUBLIC \"%2\" \"%3\">\n").arg(root, publicId, systemId));
    m_xml.writeStartElement(root);
    attribute(QStringLiteral("id"), id);
    if (!lang.isEmpty())
        attribute(QStringLiteral("xml:lang"), lang);
}

bool COdictDitaWriter::commit(const QString &path)
{
    m_xml.writeEndDocument(); // closes every open element; the writer is ready for the next file
    const QByteArray bytes = m_text.toUtf8();
    // A reader (or the toolkit) sees the old file or the new one, never a part of one. Neither
    // way flushes each file to the disk as QSaveFile does, which made a package of 140,000
    // topics take minutes instead of seconds.
    return (!QFileInfo::exists(path) && create(path, bytes)) || replace(path, bytes);
}

bool COdictDitaWriter::create(const QString &path, const QByteArray &bytes)
{
    // A temporary file that gets its name only when complete: on Linux an unnamed file linked in
    // under the target name, seven times cheaper on ext4 than a named file renamed into place.
    // Its rename never replaces a file, so one that appeared meanwhile is left to replace().
    QTemporaryFile file(QFileInfo(path).absolutePath() + QStringLiteral("/.odict-XXXXXX"));
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        return false;
    // Temporary files are private to their owner; a document is not.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup
                        | QFileDevice::ReadOther);
    if (!file.rename(path))
        return false;
    file.setAutoRemove(false);
    return true;
}

bool COdictDitaWriter::replace(const QString &path, const QByteArray &bytes)
{
    // Written beside the target and renamed over it.
    const QString partial = path + QStringLiteral(".part");
    QFile file(partial);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    bool written = file.write(bytes) == bytes.size() && file.flush();
    file.close();
    written = written && file.error() == QFileDevice::NoError;
    std::error_code error;
    if (written)
        std::filesystem::rename(nativePath(partial), nativePath(path), error);
    if (written && !error)
        return true;
    QFile::remove(partial);
    return false;
}

void COdictDitaWriter::emptyElement(const QString &name, const QString &attribute, const QString &value)
{
    m_xml.writeEmptyElement(name);
    this->attribute(attribute, value);
}

void COdictDitaWriter::xref(const QString &href, const QString &text)
{
    m_xml.writeStartElement(QStringLiteral("xref"));
    attribute(QStringLiteral("href"), href);
    m_xml.writeCharacters(clean(text));
    m_xml.writeEndElement();
}

QString COdictDitaWriter::clean(const QString &text)
{
    return CXmlText::clean(text);
}

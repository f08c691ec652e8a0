#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QVarLengthArray>

#include <cstring>

/// Builds the DITA files of one package, one after the other, as UTF-8 in one reused buffer and
/// puts each in place atomically inside one directory. The bytes are those QXmlStreamWriter
/// writes without auto-formatting (the same escapes, "<a/>" for an element closed right after
/// its start, "<a></a>" for an empty text); formatting here costs a fraction of going through
/// it and a QString. Every text and attribute value leaves out the characters that XML 1.0
/// cannot carry (as clean() does), so no file is refused for one of them.
class COdictDitaWriter
{
public:
    COdictDitaWriter();
    ~COdictDitaWriter();

    /// Opens \a directory (which must exist) for the files of an export; false when it cannot.
    bool open(const QString &directory);
    /// Closes the directory.
    void close();

    /// Starts the file \a fileName of the directory: XML declaration, DOCTYPE with \a publicId
    /// and the bare \a systemId (resolved through the toolkit's catalog), the root element
    /// \a root with \a id and \a lang.
    void begin(const QByteArray &fileName, const char *root, const char *publicId, const char *systemId,
               QLatin1String id, const QString &lang);
    /// Closes every open element and puts the file in place: written beside it and renamed over
    /// it, so a reader sees the old file or the new one. False when it cannot be written or the
    /// name is taken by something other than a regular file (a directory, FIFO or device is
    /// never replaced).
    bool commit();

    /// Element names are ASCII literals.
    void start(const char *name);
    void end();
    void attribute(const char *name, const QString &value);
    void attribute(const char *name, QLatin1String value);
    /// An element holding only \a text.
    void element(const char *name, const QString &text);
    /// An empty element with one attribute.
    void emptyElement(const char *name, const char *attribute, const QString &value);
    /// A cross reference to \a href showing \a text.
    void xref(QLatin1String href, const QString &text);
    /// An element holding \a bytes: UTF-8 that needs no escape (see escaped()).
    void elementBytes(const char *name, const QByteArray &bytes);
    /// An element holding "0x" and \a value in at least \a width upper-case hexadecimal digits.
    void elementHex(const char *name, quint64 value, int width);

    /// \a text as element content: without what XML 1.0 cannot carry, escaped, in UTF-8.
    static QByteArray escaped(const QString &text);

    /// \a text without the characters XML 1.0 cannot carry (control characters other than tab,
    /// line feed and carriage return, U+FFFE, U+FFFF, unpaired surrogates).
    static QString clean(const QString &text);

private:
    Q_DISABLE_COPY(COdictDitaWriter) // owns descriptors

    /// Room for \a size more bytes; the pointer to write them to.
    char *room(int size)
    {
        if (m_used + size > m_out.size())
            grow(size);
        return m_out.data() + m_used;
    }
    void grow(int size);
    void append(const char *text, int size)
    {
        std::memcpy(room(size), text, size_t(size));
        m_used += size;
    }
    void append(const char *text) { append(text, int(std::strlen(text))); }
    void append(char c)
    {
        *room(1) = c;
        ++m_used;
    }
    /// Ends a start tag that is still open, before content or another element.
    void closeStartTag();
    /// Appends \a text escaped and encoded; in attribute values tab, line feed and carriage
    /// return become character references, as elsewhere they would be normalised to blanks.
    void appendEscaped(const QString &text, bool inAttribute);
    void appendEscaped(QLatin1String text, bool inAttribute);
    /// Writes the buffer to the partial file beside the target once it has grown large, so that
    /// a large file (the map lists every topic) never needs a buffer of its size.
    void spill();
    /// Writes and empties the buffer, opening the partial file first; false when that fails.
    bool writeOut();
    /// Closes and removes the partial file this writer opened, if any.
    void discard();

    /// The file being built: its first m_used bytes. Its size is the room there is, kept from
    /// file to file; the bytes are appended without a call into QByteArray each.
    QByteArray m_out;
    int m_used = 0;
    QVarLengthArray<const char *, 32> m_open; ///< names of the open elements
    bool m_startTagOpen = false;
    QByteArray m_fileName;                   ///< the file being built, inside the directory
    QByteArray m_partial;                    ///< its partial file beside it
    bool m_failed = false;                   ///< writing the partial file failed
#ifdef Q_OS_UNIX
    int m_directory = -1;                    ///< descriptor of the package directory
    int m_file = -1;                         ///< descriptor of the partial file, once opened
    /// Names in the directory that are no regular file (directories, FIFOs, devices, links to
    /// them), found when it was opened: never replaced.
    QSet<QByteArray> m_refused;
#else
    QString m_directory;
#endif
};

#pragma once

#include <QString>
#include <QXmlStreamWriter>

/// Builds one DITA file in memory and puts it in place atomically. Every text and attribute value
/// goes through clean(), so characters that XML 1.0 cannot carry never reach the stream writer
/// (which would refuse the whole file for one of them).
class COdictDitaWriter
{
public:
    COdictDitaWriter();

    /// Starts a new file: XML declaration, DOCTYPE with \a publicId and the bare \a systemId
    /// (resolved through the toolkit's catalog), the root element \a root with \a id and \a lang.
    void begin(const QString &root, const QString &publicId, const QString &systemId, const QString &id,
               const QString &lang);
    /// Closes every open element and puts the file at \a path: written beside it and renamed
    /// over it, so a reader sees the old file or the new one. False when it cannot be written.
    bool commit(const QString &path);

    void start(const QString &name) { m_xml.writeStartElement(name); }
    void end() { m_xml.writeEndElement(); }
    void attribute(const QString &name, const QString &value) { m_xml.writeAttribute(name, clean(value)); }
    void text(const QString &text) { m_xml.writeCharacters(clean(text)); }
    /// An element holding only \a text.
    void element(const QString &name, const QString &text) { m_xml.writeTextElement(name, clean(text)); }
    /// An empty element with one attribute.
    void emptyElement(const QString &name, const QString &attribute, const QString &value);
    /// A cross reference to \a href showing \a text.
    void xref(const QString &href, const QString &text);

    /// \a text without the characters XML 1.0 cannot carry (control characters other than tab,
    /// line feed and carriage return, U+FFFE, U+FFFF, unpaired surrogates).
    static QString clean(const QString &text);

private:
    /// Puts a new file at \a path; false when it cannot, or when a file appeared there meanwhile.
    static bool create(const QString &path, const QByteArray &bytes);
    /// Replaces the file at \a path by one holding \a bytes.
    static bool replace(const QString &path, const QByteArray &bytes);

    // The writer appends to a string: writing to a device instead would encode and write every
    // small piece on its own, which cost more than the rest of the export.
    QString m_text;       ///< the file being built; its capacity is kept from file to file
    QXmlStreamWriter m_xml;  ///< one for all files: it appends to m_text, which begin() empties
};

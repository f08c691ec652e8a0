#pragma once

#include "krxml_export.h"

#include <QDomDocument>
#include <QDomElement>
#include <QString>

/// A DOM document with typed reading and writing of elements and attributes.
///
/// Readers take a default that is returned when the element or attribute is missing. When it
/// exists but cannot be converted, the default is returned as well and \a errorText (when given)
/// receives a text naming the element, its line and the offending text. Numbers are decimal or
/// "0x" hexadecimal; surrounding blanks are ignored.
class KRXML_EXPORT CDomDoc
{
public:
    CDomDoc();
    /// Wraps \a document (shared, not copied).
    explicit CDomDoc(const QDomDocument &document);

    /// The wrapped document.
    QDomDocument &document() { return m_doc; }
    /// The wrapped document.
    const QDomDocument &document() const { return m_doc; }
    /// The document element; null for an empty document.
    QDomElement documentElement() const { return m_doc.documentElement(); }

    // Number conversions shared with the streaming readers; \a ok tells whether the text was read.
    /// \a text as an unsigned 32-bit number; 0 with \a ok false when unreadable.
    static quint32 toU32(const QString &text, bool *ok);
    /// \a text as a signed 32-bit number; 0 with \a ok false when unreadable.
    static qint32 toI32(const QString &text, bool *ok);
    /// \a text as an unsigned 64-bit number; 0 with \a ok false when unreadable.
    static quint64 toU64(const QString &text, bool *ok);
    /// \a text as a signed 64-bit number; 0 with \a ok false when unreadable.
    static qint64 toI64(const QString &text, bool *ok);
    /// \a text as a floating-point number; 0 with \a ok false when unreadable.
    static double toF64(const QString &text, bool *ok);
    /// "1"/"0", "true"/"false" (any case).
    static bool toBool(const QString &text, bool *ok);
    /// Error text for an unreadable value: "Cannot convert '%1' of \<%2\> (line %3) to %4."
    static QString conversionError(const QString &text, const QString &tag, int line, const QString &typeName);

    /// The first child element named \a tag; null when there is none.
    static QDomElement firstSubElement(const QDomElement &parent, const QString &tag);
    /// \a parent has a child element named \a tag.
    static bool hasSubElement(const QDomElement &parent, const QString &tag);

    /// The text of the first child \a tag of \a parent; \a def when there is none.
    static QString existingSubElementAsString(const QString &tag, const QDomElement &parent, const QString &def);
    /// The first child \a tag of \a parent as a number; \a def when missing or unreadable (see the class).
    static quint32 existingSubElementAsU32(const QString &tag, const QDomElement &parent, quint32 def, QString *errorText = nullptr);
    /// The first child \a tag of \a parent as a number; \a def when missing or unreadable.
    static qint32 existingSubElementAsI32(const QString &tag, const QDomElement &parent, qint32 def, QString *errorText = nullptr);
    /// The first child \a tag of \a parent as a number; \a def when missing or unreadable.
    static quint64 existingSubElementAsU64(const QString &tag, const QDomElement &parent, quint64 def, QString *errorText = nullptr);
    /// The first child \a tag of \a parent as a number; \a def when missing or unreadable.
    static qint64 existingSubElementAsI64(const QString &tag, const QDomElement &parent, qint64 def, QString *errorText = nullptr);
    /// The first child \a tag of \a parent as a truth value (see toBool()); \a def when missing or unreadable.
    static bool existingSubElementAsBool(const QString &tag, const QDomElement &parent, bool def, QString *errorText = nullptr);

    /// The attribute \a name of \a element; \a def when missing.
    static QString attributeAsString(const QDomElement &element, const QString &name, const QString &def);
    /// The attribute \a name of \a element as a number; \a def when missing or unreadable.
    static quint32 attributeAsU32(const QDomElement &element, const QString &name, quint32 def, QString *errorText = nullptr);
    /// The attribute \a name of \a element as a number; \a def when missing or unreadable.
    static qint32 attributeAsI32(const QDomElement &element, const QString &name, qint32 def, QString *errorText = nullptr);
    /// The attribute \a name of \a element as a number; \a def when missing or unreadable.
    static qint64 attributeAsI64(const QDomElement &element, const QString &name, qint64 def, QString *errorText = nullptr);

    /// Appends an element \a tag holding \a text to \a parent and returns it.
    QDomElement addSubElement(QDomElement parent, const QString &tag, const QString &text = QString());
    /// The first element \a tag under \a parent, created (empty) when missing.
    QDomElement findOrCreateSubElement(QDomElement parent, const QString &tag);
    /// Replaces the text of the first element \a tag under \a parent, creating it when missing.
    QDomElement setSubElementText(QDomElement parent, const QString &tag, const QString &text);

private:
    QDomDocument m_doc;
};

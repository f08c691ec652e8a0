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
    explicit CDomDoc(const QDomDocument &document);

    QDomDocument &document() { return m_doc; }
    const QDomDocument &document() const { return m_doc; }
    QDomElement documentElement() const { return m_doc.documentElement(); }

    // Number conversions shared with the streaming readers; \a ok tells whether the text was read.
    static quint32 toU32(const QString &text, bool *ok);
    static qint32 toI32(const QString &text, bool *ok);
    static quint64 toU64(const QString &text, bool *ok);
    static qint64 toI64(const QString &text, bool *ok);
    static double toF64(const QString &text, bool *ok);
    /// "1"/"0", "true"/"false" (any case).
    static bool toBool(const QString &text, bool *ok);
    /// Error text for an unreadable value: "Cannot convert '%1' of <%2> (line %3) to %4."
    static QString conversionError(const QString &text, const QString &tag, int line, const QString &typeName);

    /// The first child element named \a tag; null when there is none.
    static QDomElement firstSubElement(const QDomElement &parent, const QString &tag);
    static bool hasSubElement(const QDomElement &parent, const QString &tag);

    static QString existingSubElementAsString(const QString &tag, const QDomElement &parent, const QString &def);
    static quint32 existingSubElementAsU32(const QString &tag, const QDomElement &parent, quint32 def, QString *errorText = nullptr);
    static qint32 existingSubElementAsI32(const QString &tag, const QDomElement &parent, qint32 def, QString *errorText = nullptr);
    static quint64 existingSubElementAsU64(const QString &tag, const QDomElement &parent, quint64 def, QString *errorText = nullptr);
    static qint64 existingSubElementAsI64(const QString &tag, const QDomElement &parent, qint64 def, QString *errorText = nullptr);
    static bool existingSubElementAsBool(const QString &tag, const QDomElement &parent, bool def, QString *errorText = nullptr);

    static QString attributeAsString(const QDomElement &element, const QString &name, const QString &def);
    static quint32 attributeAsU32(const QDomElement &element, const QString &name, quint32 def, QString *errorText = nullptr);
    static qint32 attributeAsI32(const QDomElement &element, const QString &name, qint32 def, QString *errorText = nullptr);
    static qint64 attributeAsI64(const QDomElement &element, const QString &name, qint64 def, QString *errorText = nullptr);

    /// Appends <tag>text</tag> to \a parent and returns it.
    QDomElement addSubElement(QDomElement parent, const QString &tag, const QString &text = QString());
    /// The first <tag> under \a parent, created (empty) when missing.
    QDomElement findOrCreateSubElement(QDomElement parent, const QString &tag);
    /// Replaces the text of the first <tag> under \a parent, creating the element when missing.
    QDomElement setSubElementText(QDomElement parent, const QString &tag, const QString &text);

private:
    QDomDocument m_doc;
};

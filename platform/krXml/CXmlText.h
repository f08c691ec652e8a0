#pragma once

#include "krxml_export.h"

#include <QString>

/// Texts as an XML 1.0 document can carry them. Every writer of the document family passes its
/// texts through here: the stream writer refuses such characters, which would make a whole file
/// unwritable because of one text, and a reader refuses a file that holds them.
class KRXML_EXPORT CXmlText
{
public:
    /// \a text without the characters XML 1.0 cannot carry (control characters other than tab,
    /// line feed and carriage return, U+FFFE, U+FFFF, unpaired surrogates); \a text itself, without
    /// a copy, when it holds none.
    static QString clean(const QString &text);
};

#pragma once

#include <QSharedData>
#include <QString>

#include <memory>

/// The own shared record of COdictEditorObject.
///
/// The five texts live back to back in one buffer instead of one string block each: a loaded
/// record would otherwise pay about forty bytes of block overhead per text and two bytes per
/// character. The buffer holds Latin-1 while every text fits, UTF-16 once one does not. A
/// getter builds its QString from the buffer; null and empty texts stay apart (a stream writes
/// them differently).
class COdictEditorObjectPrivate : public QSharedData
{
public:
    /// The texts in stream order.
    enum eText_t { T_DEFSTRING, T_FWVARIABLE, T_FWFUNCTION, T_SHORTDESCRIPTION, T_DESCRIPTION, T_COUNT };

    COdictEditorObjectPrivate() = default;
    COdictEditorObjectPrivate(const COdictEditorObjectPrivate &o);
    COdictEditorObjectPrivate &operator=(const COdictEditorObjectPrivate &) = delete;

    /// Text \a which as it was set.
    QString text(eText_t which) const;
    /// Replaces text \a which.
    void setText(eText_t which, const QString &text);

    qint32 accessType = 1;

    /// Text by text (null equals empty, as for QString) and the access type.
    bool equals(const COdictEditorObjectPrivate &o) const;

private:
    int begin(int which) const { return which == 0 ? 0 : int(m_end[which - 1]); }
    int length(int which) const { return int(m_end[which]) - begin(which); }
    int charSize() const { return m_wide ? 2 : 1; }
    int totalChars() const { return int(m_end[T_COUNT - 1]); }

    std::unique_ptr<char[]> m_data; // the texts in order; null while all are empty
    quint32 m_end[T_COUNT] = {};     // end of each text in the buffer, in characters
    quint8 m_nullTexts = (1u << T_COUNT) - 1; // bit n: text n is a null QString
    bool m_wide = false;             // the buffer holds UTF-16 instead of Latin-1
};

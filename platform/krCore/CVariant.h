#pragma once

#include "NTypes.h"
#include "krcore_export.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QVariant>

class QDataStream;
class QDebug;

/// A value of one firmware data type: a scalar, a text, raw bytes or an array of elements.
///
/// Storage by type: BOOL as bool; signed integers (I8..I64) as qlonglong; unsigned integers
/// (U8..U64, TIME, TIME_OF_DAY, TIME_DIFFERENCE) as qulonglong; F32/F64 as double; the text
/// types (12, 13, 14, 16, 17, 18) as QString; everything else (byte types, XY, the DS402 types)
/// and every array of two or more elements as QByteArray in little-endian element order.
/// A null value still carries its type.
class KRCORE_EXPORT CVariant
{
public:
    CVariant(); ///< null value of type E_UNKNOWN
    explicit CVariant(NTypes::eTypes_t type); ///< null value of a type
    /// Parses \a text as \a type (see docs/platform.md for the text forms); empty or
    /// unreadable text gives a null value of that type.
    CVariant(const QString &text, NTypes::eTypes_t type);
    /// An array of \a count elements of \a type from little-endian \a bytes (count 1 is a scalar).
    CVariant(const QByteArray &bytes, NTypes::eTypes_t type, int count);

    /// Converts a QVariant to \a type: byte arrays stay bytes, everything else goes through text.
    static CVariant fromVariant(const QVariant &value, NTypes::eTypes_t type);
    /// Reads a QVariant from \a in like its operator>>, but only one of the plain kinds values
    /// use (none, bool, integers, floating point, character, text, bytes); any other stored type
    /// leaves \a value invalid and the stream at ReadCorruptData. Qt's reader trusts the element
    /// count of a stored list and reserves for it, so a corrupt count would exhaust memory.
    static void readPlainVariant(QDataStream &in, QVariant &value);
    /// Builds a value directly from a number (clamped to nothing: the caller picks the type).
    static CVariant fromI64(qint64 value, NTypes::eTypes_t type);
    /// Builds a value of \a type directly from an unsigned number.
    static CVariant fromU64(quint64 value, NTypes::eTypes_t type);
    /// Builds a value of \a type directly from a floating-point number.
    static CVariant fromF64(double value, NTypes::eTypes_t type);

    /// No value (a null value still has its type).
    bool isNull() const;
    /// The data type of the value.
    NTypes::eTypes_t type() const { return m_type; }
    /// Number of elements: 1 for a scalar, n for an array built from bytes.
    int count() const { return m_count; }
    /// More than one element.
    bool isArray() const { return m_count > 1; }

    /// Text form that the text constructor reads back; empty for a null value.
    QString toStr() const;
    /// The value as a signed integer; 0 with \a ok false when it is not a number.
    qint64 toI64(bool *ok = nullptr) const;
    /// The value as an unsigned integer; 0 with \a ok false when it is not a number.
    quint64 toU64(bool *ok = nullptr) const;
    /// The value as a floating-point number; 0 with \a ok false when it is not a number.
    double toF64(bool *ok = nullptr) const;
    /// The value as a truth value; false with \a ok false for a null value or an array.
    bool toBool(bool *ok = nullptr) const;
    /// The little-endian bytes of the value (numbers in their type's size, texts as UTF-8,
    /// UTF-16 for USTRING and WCHAR_ARRAY).
    QByteArray toByteArray() const;
    /// The value as stored in a QVariant.
    QVariant toVariant() const { return m_value; }
    /// Same as toVariant().
    operator QVariant() const { return m_value; }

    /// True when type, element count and value are equal.
    bool operator==(const CVariant &other) const;
    /// True when type, count or value differ.
    bool operator!=(const CVariant &other) const { return !(*this == other); }

    /// Whether \a type is stored as bytes (and shown as hexadecimal text).
    static bool isByteType(NTypes::eTypes_t type);
    /// Whether \a type holds text.
    static bool isTextType(NTypes::eTypes_t type);
    /// Whether \a type is a signed integer type.
    static bool isSignedType(NTypes::eTypes_t type);
    /// Whether \a type is stored as an unsigned integer (U8 to U64 and the time types; not BOOL).
    static bool isUnsignedType(NTypes::eTypes_t type);
    /// Whether \a type is F32 or F64.
    static bool isFloatType(NTypes::eTypes_t type);

private:
    friend KRCORE_EXPORT QDataStream &operator<<(QDataStream &, const CVariant &);
    friend KRCORE_EXPORT QDataStream &operator>>(QDataStream &, CVariant &);

    NTypes::eTypes_t m_type = NTypes::E_UNKNOWN;
    int m_count = 1;
    QVariant m_value;
};

/// Stream form: type (quint32), element count (qint32), value (QVariant).
KRCORE_EXPORT QDataStream &operator<<(QDataStream &out, const CVariant &value);
KRCORE_EXPORT QDataStream &operator>>(QDataStream &in, CVariant &value);
KRCORE_EXPORT QDebug operator<<(QDebug debug, const CVariant &value);

Q_DECLARE_METATYPE(CVariant)

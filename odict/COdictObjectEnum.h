#pragma once

#include "krodict_export.h"

#include <QList>
#include <QMap>
#include <QMetaType>
#include <QVector>
#include <QString>
#include <QStringList>

class QDataStream;
class QDebug;
class COdictObjectEnum;

/// Qt's stream form of a QMap<qint64, QString>.
KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictObjectEnum &enumeration);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictObjectEnum &enumeration);

/// Texts for the values of an object: value 3 means "Fault". Ordered by ascending value.
class KRODICT_EXPORT COdictObjectEnum
{
public:
    /// One value and its text.
    struct sOdictObjectEnumData_t {
        /// the value
        long long value = 0;
        /// the value's text
        QString name;

        /// True when value and text are equal.
        bool operator==(const sOdictObjectEnumData_t &other) const
        {
            return value == other.value && name == other.name;
        }
        /// True when value or text differ.
        bool operator!=(const sOdictObjectEnumData_t &other) const { return !(*this == other); }
    };

    COdictObjectEnum();
    /// A copy of \a other's entries.
    COdictObjectEnum(const COdictObjectEnum &other);
    /// Takes over \a other's entries.
    COdictObjectEnum &operator=(const COdictObjectEnum &other);
    virtual ~COdictObjectEnum();

    /// Adds the entry, or replaces the text of a value already present.
    void insert(const long long &value, const QString &name);
    /// Adds \a data, or replaces the text of a value already present.
    void insert(const sOdictObjectEnumData_t &data);
    /// Removes the entry of \a value; nothing when absent.
    void remove(const long long &value);

    /// \a value has an entry.
    bool contains(const long long &value) const;
    /// Some entry has exactly (case included) the text \a name.
    bool contains(const QString &name) const;

    /// The text of \a value, or the value in decimal when it has no entry (\a ok false then).
    QString name(const long long &value, bool *ok = nullptr) const;
    /// The largest value whose text is exactly \a name; -1 with \a ok false when none has it.
    long long value(const QString &name, bool *ok = nullptr) const;

    /// The texts in ascending value order.
    QStringList names() const;
    /// The values in ascending order.
    QList<long long> values() const;
    /// The entries in ascending value order.
    QList<sOdictObjectEnumData_t> enums() const;

    /// Number of entries.
    int size() const;
    /// No entry.
    bool isEmpty() const;
    /// At least one entry.
    bool isValid() const;

    /// True when both hold the same entries.
    bool operator==(const COdictObjectEnum &other) const;
    /// True when the entries differ.
    bool operator!=(const COdictObjectEnum &other) const { return !(*this == other); }

private:
    friend QDataStream &operator<<(QDataStream &out, const COdictObjectEnum &enumeration);
    friend QDataStream &operator>>(QDataStream &in, COdictObjectEnum &enumeration);

    QVector<sOdictObjectEnumData_t> m_entries; // sorted by value
};

Q_DECLARE_METATYPE(COdictObjectEnum)

/// Writes "COdictObjectEnum( -1: Off, 5: On )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictObjectEnum &enumeration);

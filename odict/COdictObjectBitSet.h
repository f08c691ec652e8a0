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
class COdictObjectBitSet;

/// Qt's stream form of a QMap<quint32, QString>.
KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictObjectBitSet &bitSet);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictObjectBitSet &bitSet);

/// Texts for the bits of an object's value: bit 5 means "Enabled". Ordered by ascending position.
class KRODICT_EXPORT COdictObjectBitSet
{
public:
    /// One bit position and its text.
    struct sOdictObjectBitData_t {
        /// bit position, 0 for the lowest bit
        unsigned int pos = 0;
        /// the bit's text
        QString name;

        /// True when position and text are equal.
        bool operator==(const sOdictObjectBitData_t &other) const
        {
            return pos == other.pos && name == other.name;
        }
        /// True when position or text differ.
        bool operator!=(const sOdictObjectBitData_t &other) const { return !(*this == other); }
    };

    COdictObjectBitSet();
    /// A copy of \a other's entries.
    COdictObjectBitSet(const COdictObjectBitSet &other);
    /// Takes over \a other's entries.
    COdictObjectBitSet &operator=(const COdictObjectBitSet &other);
    virtual ~COdictObjectBitSet();

    /// Adds the entry, or replaces the text of a position already present.
    void insert(const unsigned int &pos, const QString &name);
    /// Adds \a data, or replaces the text of a position already present.
    void insert(const sOdictObjectBitData_t &data);
    /// Removes the entry of bit \a pos; nothing when absent.
    void remove(const unsigned int &pos);

    /// Bit \a pos has an entry.
    bool contains(const unsigned int &pos) const;
    /// Some entry has exactly (case included) the text \a name.
    bool contains(const QString &name) const;

    /// The text of bit \a pos; empty with \a ok false when the bit has no entry.
    QString name(const unsigned int &pos, bool *ok = nullptr) const;
    /// The largest position whose text is exactly \a name; 0xFFFFFFFF with \a ok false when none.
    unsigned int pos(const QString &name, bool *ok = nullptr) const;
    /// The entry of bit \a pos, or position 0 with an empty text when the bit has none.
    sOdictObjectBitData_t bit(int pos) const;

    /// The entries in ascending position order.
    QList<sOdictObjectBitData_t> bitSet() const;
    /// The texts in ascending position order.
    QStringList names() const;
    /// The positions in ascending order.
    QList<unsigned int> positions() const;

    /// Number of entries.
    int size() const;
    /// No entry.
    bool isEmpty() const;
    /// At least one entry.
    bool isValid() const;

    /// True when both hold the same entries.
    bool operator==(const COdictObjectBitSet &other) const;
    /// True when the entries differ.
    bool operator!=(const COdictObjectBitSet &other) const { return !(*this == other); }

private:
    friend QDataStream &operator<<(QDataStream &out, const COdictObjectBitSet &bitSet);
    friend QDataStream &operator>>(QDataStream &in, COdictObjectBitSet &bitSet);

    QVector<sOdictObjectBitData_t> m_entries; // sorted by pos
};

Q_DECLARE_METATYPE(COdictObjectBitSet)

/// Writes "COdictObjectBitSet( 0: Ready, 5: Enabled )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictObjectBitSet &bitSet);

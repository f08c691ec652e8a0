#pragma once

#include "krodict_export.h"

#include <QList>
#include <QMap>
#include <QMetaType>
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
        unsigned int pos = 0;
        QString name;

        bool operator==(const sOdictObjectBitData_t &other) const
        {
            return pos == other.pos && name == other.name;
        }
        bool operator!=(const sOdictObjectBitData_t &other) const { return !(*this == other); }
    };

    COdictObjectBitSet();
    COdictObjectBitSet(const COdictObjectBitSet &other);
    COdictObjectBitSet &operator=(const COdictObjectBitSet &other);
    virtual ~COdictObjectBitSet();

    /// Adds the entry, or replaces the text of a position already present.
    void insert(const unsigned int &pos, const QString &name);
    void insert(const sOdictObjectBitData_t &data);
    void remove(const unsigned int &pos);

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

    int size() const;
    bool isEmpty() const;
    /// At least one entry.
    bool isValid() const;

    bool operator==(const COdictObjectBitSet &other) const;
    bool operator!=(const COdictObjectBitSet &other) const { return !(*this == other); }

private:
    friend QDataStream &operator<<(QDataStream &out, const COdictObjectBitSet &bitSet);
    friend QDataStream &operator>>(QDataStream &in, COdictObjectBitSet &bitSet);

    QMap<unsigned int, QString> m_map;
};

Q_DECLARE_METATYPE(COdictObjectBitSet)

/// Writes "COdictObjectBitSet( 0: Ready, 5: Enabled )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictObjectBitSet &bitSet);

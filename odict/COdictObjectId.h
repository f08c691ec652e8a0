#pragma once

#include "krodict_export.h"
#include "NkrObjectIds.h"

#include <QMetaType>
#include <QString>

#include <type_traits>

class QDataStream;
class QDebug;

/// Numeric address of a dictionary object: a 32-bit id and a 32-bit sub-id, 0xFFFFFFFF meaning
/// "none" for either. The packed 64-bit form (NkrObjectIds::eObjectId_t) is the bare id for an
/// object without sub-id and id << 32 | subId for a sub-object.
///
/// Besides the unsigned int and unsigned long long overloads, the constructors and setId() take
/// any other integer type so that plain literals are not ambiguous: types of up to 32 bits are an
/// id, 64-bit types a packed value.
class KRODICT_EXPORT COdictObjectId
{
    template <typename T>
    using EnableIfInteger = std::enable_if_t<std::is_integral<T>::value && !std::is_same<T, bool>::value, int>;
    template <typename T>
    using EnableIfInteger64 = std::enable_if_t<std::is_integral<T>::value && sizeof(T) == 8, int>;

public:
    /// A cleared id: no id and no sub-id.
    COdictObjectId() = default;
    /// The key (\a id, \a subId); 0xFFFFFFFF as sub-id means an object's own key.
    COdictObjectId(unsigned int id, unsigned int subId) : m_id(id), m_subId(subId) {}
    /// The object's own key of \a id (no sub-id).
    COdictObjectId(unsigned int id) : m_id(id) {}
    /// Unpacks \a packed: the upper 32 bits are the id and the lower the sub-id, or only an id below 2^32.
    COdictObjectId(NkrObjectIds::eObjectId_t packed) { setObjectId(packed); }
    /// Unpacks \a packed like the eObjectId_t form.
    COdictObjectId(unsigned long long packed) { setId(packed); }
    /// Unpacks \a packed; a \a subId other than 0xFFFFFFFF replaces the packed sub-id.
    COdictObjectId(NkrObjectIds::eObjectId_t packed, unsigned int subId) { setObjectId(packed, subId); }
    /// Any 64-bit integer with a sub-id: the same as the eObjectId_t form.
    template <typename T, EnableIfInteger64<T> = 0>
    COdictObjectId(T packed, unsigned int subId)
    {
        setObjectId(NkrObjectIds::eObjectId_t(static_cast<unsigned long long>(packed)), subId);
    }
    /// Any other integer: up to 32 bits an id, 64 bits a packed value.
    template <typename T, EnableIfInteger<T> = 0>
    COdictObjectId(T value)
    {
        setId(value);
    }
    /// A copy of \a other.
    COdictObjectId(const COdictObjectId &other) = default;

    /// Takes over id and sub-id of \a other.
    COdictObjectId &operator=(const COdictObjectId &other) = default;
    /// Deliberately unlike the constructor: keeps only the lower 32 bits as id, no sub-id.
    COdictObjectId &operator=(NkrObjectIds::eObjectId_t id)
    {
        m_id = static_cast<unsigned int>(id);
        m_subId = s_none;
        return *this;
    }

    /// Unpacks \a packed into id and sub-id (no sub-id below 2^32).
    void setObjectId(NkrObjectIds::eObjectId_t packed)
    {
        const unsigned long long value = packed;
        if (value >> 32) {
            m_id = static_cast<unsigned int>(value >> 32);
            m_subId = static_cast<unsigned int>(value);
        } else {
            m_id = static_cast<unsigned int>(value);
            m_subId = s_none;
        }
    }
    /// Unpacks \a packed; a \a subId other than 0xFFFFFFFF replaces the packed sub-id.
    void setObjectId(NkrObjectIds::eObjectId_t packed, unsigned int subId)
    {
        setObjectId(packed);
        if (subId != s_none)
            m_subId = subId;
    }
    /// Same as setObjectId(\a packed).
    void setId(NkrObjectIds::eObjectId_t packed) { setObjectId(packed); }
    /// Unpacks \a packed like setObjectId().
    void setId(unsigned long long packed) { setObjectId(NkrObjectIds::eObjectId_t(packed)); }
    /// Replaces the id only; the sub-id stays.
    void setId(unsigned int id) { m_id = id; }
    /// Any other integer: up to 32 bits replaces the id only, 64 bits unpacks.
    template <typename T, EnableIfInteger<T> = 0>
    void setId(T value)
    {
        if constexpr (sizeof(T) == 8)
            setId(static_cast<unsigned long long>(value));
        else
            setId(static_cast<unsigned int>(value));
    }
    /// Replaces the sub-id (0xFFFFFFFF: none).
    void setSubId(unsigned int subId) { m_subId = subId; }
    /// No id and no sub-id.
    void clear()
    {
        m_id = s_none;
        m_subId = s_none;
    }

    /// The object id; 0xFFFFFFFF when absent.
    unsigned int id() const { return m_id; }
    /// The sub-id; 0xFFFFFFFF for an object's own key.
    unsigned int subId() const { return m_subId; }
    /// The id for writing in place.
    unsigned int &rId() { return m_id; }
    /// The sub-id for writing in place.
    unsigned int &rSubId() { return m_subId; }

    /// Both id and sub-id are absent.
    bool isNull() const { return m_id == s_none && m_subId == s_none; }
    /// The id is present; the sub-id is not looked at.
    bool isValid() const { return m_id != s_none; }

    /// The packed 64-bit form.
    unsigned long long toU64() const
    {
        return m_subId == s_none ? static_cast<unsigned long long>(m_id)
                                 : (static_cast<unsigned long long>(m_id) << 32) | m_subId;
    }
    /// The packed form as an object-id enumerator.
    NkrObjectIds::eObjectId_t toId() const { return NkrObjectIds::eObjectId_t(toU64()); }
    // Explicit, so that comparisons with integer literals do not compete with the built-in ones.
    /// The packed form.
    explicit operator unsigned long long() const { return toU64(); }
    /// The packed form as an object-id enumerator.
    explicit operator NkrObjectIds::eObjectId_t() const { return toId(); }

    /// \a prefix and the packed value in lower-case hex, zero-padded to 16 digits.
    QString toStr(const QString &prefix) const;
    /// \a prefix and the packed value in lower-case hex, padded to 16 digits with \a fill, or
    /// unpadded when \a fill is the null character.
    QString toStr(const QChar &fill, const QString &prefix) const;
    /// Translated text "ID 8192" or "ID 8192:03".
    QString info() const;

    /// True when id and sub-id are equal.
    bool operator==(const COdictObjectId &other) const { return m_id == other.m_id && m_subId == other.m_subId; }
    /// True when id or sub-id differ.
    bool operator!=(const COdictObjectId &other) const { return !(*this == other); }
    // Deliberately unpacks first, so 0x00002000FFFFFFFF equals id 0x2000 without sub-id.
    /// True when equal to \a other unpacked.
    bool operator==(NkrObjectIds::eObjectId_t other) const { return *this == COdictObjectId(other); }
    /// True when different from \a other unpacked.
    bool operator!=(NkrObjectIds::eObjectId_t other) const { return !(*this == other); }

    // Ordering deliberately compares the packed values: all plain objects sort before all sub-objects.
    /// Compares the packed forms: every plain object sorts before every sub-object.
    bool operator<(const COdictObjectId &other) const { return toU64() < other.toU64(); }
    /// Compares the packed forms (see operator<).
    bool operator>(const COdictObjectId &other) const { return toU64() > other.toU64(); }
    /// Compares the packed forms (see operator<).
    bool operator<=(const COdictObjectId &other) const { return toU64() <= other.toU64(); }
    /// Compares the packed forms (see operator<).
    bool operator>=(const COdictObjectId &other) const { return toU64() >= other.toU64(); }
    /// Compares the packed forms: every plain object sorts before every sub-object.
    bool operator<(NkrObjectIds::eObjectId_t other) const { return toU64() < static_cast<unsigned long long>(other); }
    /// Compares the packed forms (see operator<).
    bool operator>(NkrObjectIds::eObjectId_t other) const { return toU64() > static_cast<unsigned long long>(other); }
    /// Compares the packed forms (see operator<).
    bool operator<=(NkrObjectIds::eObjectId_t other) const { return toU64() <= static_cast<unsigned long long>(other); }
    /// Compares the packed forms (see operator<).
    bool operator>=(NkrObjectIds::eObjectId_t other) const { return toU64() >= static_cast<unsigned long long>(other); }
    /// Compares the packed forms: every plain object sorts before every sub-object.
    bool operator<(unsigned long long other) const { return toU64() < other; }
    /// Compares the packed forms (see operator<).
    bool operator>(unsigned long long other) const { return toU64() > other; }
    /// Compares the packed forms (see operator<).
    bool operator<=(unsigned long long other) const { return toU64() <= other; }
    /// Compares the packed forms (see operator<).
    bool operator>=(unsigned long long other) const { return toU64() >= other; }

private:
    static constexpr unsigned int s_none = 0xFFFFFFFFu;

    unsigned int m_id = s_none;
    unsigned int m_subId = s_none;
};

Q_DECLARE_TYPEINFO(COdictObjectId, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(COdictObjectId)

/// ((seed ^ id) rotated left by 16) ^ subId.
inline uint qHash(const COdictObjectId &id, uint seed = 0) noexcept
{
    const quint32 mixed = seed ^ id.id();
    return ((mixed << 16) | (mixed >> 16)) ^ id.subId();
}

KRODICT_EXPORT QDataStream &operator<<(QDataStream &out, const COdictObjectId &id);
KRODICT_EXPORT QDataStream &operator>>(QDataStream &in, COdictObjectId &id);
/// Writes "COdictObjectId( 8192:03 )".
KRODICT_EXPORT QDebug operator<<(QDebug debug, const COdictObjectId &id);

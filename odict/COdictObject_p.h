#pragma once

#include "COdictObjectBitSet.h"
#include "COdictObjectEnum.h"
#include "CVariant.h"
#include "NTypes.h"
#include "NkrOdict.h"

#include <QList>
#include <QSharedData>
#include <QString>
#include <QUuid>

#include <memory>

/// The fields of an object that nearly every record leaves at their defaults: the enumeration,
/// the bit set, the Y limits of X/Y pairs and those X limits (minimum, maximum, default) that
/// have no compact form (texts, bytes, arrays). A record keeps them out of line and allocates
/// them only when one of them is set.
class COdictObjectRareFields
{
public:
    COdictObjectEnum enumData;
    COdictObjectBitSet bitSetData;
    CVariant yMinValue;
    CVariant yMaxValue;
    CVariant yDefaultValue;
    CVariant xLimits[3]; // only those whose code in the record says "stored here"

    /// The block every record without one reads.
    static const COdictObjectRareFields &defaults()
    {
        static const COdictObjectRareFields instance;
        return instance;
    }

    bool equals(const COdictObjectRareFields &o) const
    {
        return enumData == o.enumData && bitSetData == o.bitSetData && yMinValue == o.yMinValue
            && yMaxValue == o.yMaxValue && yDefaultValue == o.yDefaultValue && xLimits[0] == o.xLimits[0]
            && xLimits[1] == o.xLimits[1] && xLimits[2] == o.xLimits[2];
    }
    bool isDefault() const { return equals(defaults()); }
    bool hasEnumOrBitSet() const { return !enumData.isEmpty() || !bitSetData.isEmpty(); }
};

/// The shared record of COdictObject. The stream order is that of operator<<, not this one:
/// the members are ordered for a compact record.
class COdictObjectPrivate : public QSharedData
{
public:
    COdictObjectPrivate() = default;
    /// A deep copy, the rare fields included (a detach gives the copy its own block).
    COdictObjectPrivate(const COdictObjectPrivate &o)
        : QSharedData(o)
        , isVirtual(o.isVirtual)
        , refId(o.refId)
        , id(o.id)
        , subId(o.subId)
        , version(o.version)
        , ds402Id(o.ds402Id)
        , profinetId(o.profinetId)
        , unit(o.unit)
        , yUnit(o.yUnit)
        , dataType(o.dataType)
        , dataSize(o.dataSize)
        , accessRights(o.accessRights)
        , arrayLength(o.arrayLength)
        , userlevelRead(o.userlevelRead)
        , userlevelWrite(o.userlevelWrite)
        , userlevelVisible(o.userlevelVisible)
        , digits(o.digits)
        , objectUsage(o.objectUsage)
        , name(o.name)
        , uiName(o.uiName)
        , uiShortName(o.uiShortName)
        , subIdList(o.subIdList)
        , m_rare(o.m_rare ? new COdictObjectRareFields(*o.m_rare) : nullptr)
    {
        for (int i = 0; i < L_COUNT; ++i) {
            limitCode[i] = o.limitCode[i];
            limitBits[i] = o.limitBits[i];
        }
    }
    COdictObjectPrivate &operator=(const COdictObjectPrivate &) = delete;

    /// The X limits, by index.
    enum eLimit_t { L_MIN, L_MAX, L_DEFAULT, L_COUNT };

    // Ordered so that the record takes 152 bytes (a 160-byte heap block).
    quint8 limitCode[L_COUNT] = {}; // see limit(); zero is a null value of type E_UNKNOWN
    bool isVirtual = false;
    QUuid refId;
    quint32 id = 0xFFFFFFFFu;
    quint32 subId = 0xFFFFFFFFu;
    NTypes::uVersion_t version = 0;
    quint32 ds402Id = 0xFFFFFFFFu;
    quint32 profinetId = 0xFFFFFFFFu;
    quint32 unit = 0xFFFFFFFFu;
    quint32 yUnit = 0xFFFFFFFFu;
    NTypes::eTypes_t dataType = NTypes::E_UNKNOWN;
    quint32 dataSize = 0;
    NkrOdict::AccessRightFlags accessRights;
    quint32 arrayLength = 1;
    quint32 userlevelRead = 1;
    quint32 userlevelWrite = 1;
    quint32 userlevelVisible = 1;
    qint32 digits = -1;
    NkrOdict::ObjectUsageFlags objectUsage;
    QString name = QStringLiteral("UNKNOWN");
    QString uiName;
    QString uiShortName;
    quint64 limitBits[L_COUNT] = {}; // the number of a compact limit
    QList<unsigned int> subIdList;

    /// X limit \a which (minimum, maximum or default).
    CVariant limit(eLimit_t which) const;
    /// Replaces X limit \a which.
    void setLimit(eLimit_t which, const CVariant &value);

    /// The rare fields for reading; the shared defaults when the record has none.
    const COdictObjectRareFields &rare() const { return m_rare ? *m_rare : COdictObjectRareFields::defaults(); }
    /// The record has its own block of rare fields.
    bool hasRare() const { return m_rare != nullptr; }
    /// The rare fields for writing; allocated on first use.
    COdictObjectRareFields &rareForWrite()
    {
        if (!m_rare)
            m_rare.reset(new COdictObjectRareFields);
        return *m_rare;
    }
    /// Takes \a fields over, or drops the block when they all are at their defaults.
    void setRare(const COdictObjectRareFields &fields)
    {
        if (fields.isDefault())
            m_rare.reset();
        else
            rareForWrite() = fields;
    }
    /// Drops the block when a change brought every rare field back to its default.
    void releaseRareIfDefault()
    {
        if (m_rare && m_rare->isDefault())
            m_rare.reset();
    }

    /// Field by field.
    bool equals(const COdictObjectPrivate &o) const
    {
        return refId == o.refId && id == o.id && subId == o.subId && version == o.version
            && ds402Id == o.ds402Id && profinetId == o.profinetId && name == o.name
            && uiName == o.uiName && uiShortName == o.uiShortName && unit == o.unit
            && yUnit == o.yUnit && dataType == o.dataType && dataSize == o.dataSize
            && accessRights == o.accessRights && arrayLength == o.arrayLength
            && userlevelRead == o.userlevelRead && userlevelWrite == o.userlevelWrite
            && userlevelVisible == o.userlevelVisible && digits == o.digits
            && sameLimit(o, L_MIN) && sameLimit(o, L_MAX) && sameLimit(o, L_DEFAULT)
            && objectUsage == o.objectUsage && subIdList == o.subIdList && isVirtual == o.isVirtual
            && (m_rare == o.m_rare || rare().equals(o.rare()));
    }

private:
    bool sameLimit(const COdictObjectPrivate &o, eLimit_t which) const
    {
        // Equal codes and numbers are the same value; otherwise the values decide (a NaN equals
        // a NaN, -0.0 equals 0.0).
        return (limitCode[which] == o.limitCode[which] && limitBits[which] == o.limitBits[which]
                && !isStoredOutOfLine(limitCode[which]))
            || limit(which) == o.limit(which);
    }
    static bool isStoredOutOfLine(quint8 code);

    std::unique_ptr<COdictObjectRareFields> m_rare;
};

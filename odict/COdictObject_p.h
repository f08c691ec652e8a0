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

/// The shared record of COdictObject; the field order is also the stream order.
class COdictObjectPrivate : public QSharedData
{
public:
    QUuid refId;
    quint32 id = 0xFFFFFFFFu;
    quint32 subId = 0xFFFFFFFFu;
    NTypes::uVersion_t version = 0;
    quint32 ds402Id = 0xFFFFFFFFu;
    quint32 profinetId = 0xFFFFFFFFu;
    QString name = QStringLiteral("UNKNOWN");
    QString uiName;
    QString uiShortName;
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
    COdictObjectEnum enumData;
    COdictObjectBitSet bitSetData;
    CVariant minValue;
    CVariant maxValue;
    CVariant defaultValue;
    CVariant yMinValue;
    CVariant yMaxValue;
    CVariant yDefaultValue;
    NkrOdict::ObjectUsageFlags objectUsage;
    QList<unsigned int> subIdList;
    bool isVirtual = false;

    /// Field by field, in declaration order.
    bool equals(const COdictObjectPrivate &o) const
    {
        return refId == o.refId && id == o.id && subId == o.subId && version == o.version
            && ds402Id == o.ds402Id && profinetId == o.profinetId && name == o.name
            && uiName == o.uiName && uiShortName == o.uiShortName && unit == o.unit
            && yUnit == o.yUnit && dataType == o.dataType && dataSize == o.dataSize
            && accessRights == o.accessRights && arrayLength == o.arrayLength
            && userlevelRead == o.userlevelRead && userlevelWrite == o.userlevelWrite
            && userlevelVisible == o.userlevelVisible && digits == o.digits
            && enumData == o.enumData && bitSetData == o.bitSetData && minValue == o.minValue
            && maxValue == o.maxValue && defaultValue == o.defaultValue
            && yMinValue == o.yMinValue && yMaxValue == o.yMaxValue
            && yDefaultValue == o.yDefaultValue && objectUsage == o.objectUsage
            && subIdList == o.subIdList && isVirtual == o.isVirtual;
    }
};

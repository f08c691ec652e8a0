#pragma once

#include <QSharedData>
#include <QVariant>

/// The own shared record of COdictValueObject; the field order is also the stream order.
class COdictValueObjectPrivate : public QSharedData
{
public:
    qint32 error = 0;
    qint64 readWriteByteIndex = 0;
    qint64 readWriteByteSize = -1;
    QVariant currentValue;
    QVariant setpointValue;
    bool valueInHex = false;

    bool equals(const COdictValueObjectPrivate &o) const
    {
        return error == o.error && readWriteByteIndex == o.readWriteByteIndex
            && readWriteByteSize == o.readWriteByteSize && currentValue == o.currentValue
            && setpointValue == o.setpointValue && valueInHex == o.valueInHex;
    }
};

#pragma once

#include <QMap>
#include <QSharedData>
#include <QVariant>

/// The own shared record of COdictParameterObject; the field order is also the stream order.
class COdictParameterObjectPrivate : public QSharedData
{
public:
    qint32 error = 0;
    QMap<int, QVariant> values;

    bool equals(const COdictParameterObjectPrivate &o) const
    {
        return error == o.error && values == o.values;
    }
};

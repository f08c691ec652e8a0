#pragma once

#include <QSharedData>
#include <QString>

/// The own shared record of COdictEditorObject; the field order is also the stream order.
class COdictEditorObjectPrivate : public QSharedData
{
public:
    QString defString;
    QString fwVariablename;
    QString fwFunctionname;
    QString shortDescription;
    QString description;
    qint32 accessType = 1;

    bool equals(const COdictEditorObjectPrivate &o) const
    {
        return defString == o.defString && fwVariablename == o.fwVariablename
            && fwFunctionname == o.fwFunctionname && shortDescription == o.shortDescription
            && description == o.description && accessType == o.accessType;
    }
};

#pragma once

#include "CVariant.h"
#include "NkrDeviceDatabase.h"
#include "krdevicedatabase_export.h"

#include <QMap>
#include <QPair>
#include <QString>

/// The properties of one device, keyed by (key, sub-device position).
class KRDEVICEDATABASE_EXPORT CDeviceData
{
public:
    CDeviceData() = default;
    CDeviceData(int deviceId, const QString &name, quint32 versionMin, quint32 versionMax);

    /// A device read from the database (or built with the second constructor).
    bool isValid() const { return m_valid; }
    QString name() const { return m_name; }
    int deviceId() const { return m_deviceId; }
    quint32 versionMin() const { return m_versionMin; }
    quint32 versionMax() const { return m_versionMax; }

    /// The property (key, pos), else (key, 0), else a null CVariant.
    CVariant value(unsigned int key, NkrDeviceDatabase::eSubDevicePos_t pos = NkrDeviceDatabase::E_SDP_MAIN) const;
    void setValue(unsigned int key, NkrDeviceDatabase::eSubDevicePos_t pos, const CVariant &value);
    int propertyCount() const { return m_values.size(); }

private:
    bool m_valid = false;
    int m_deviceId = -1;
    QString m_name;
    quint32 m_versionMin = 0;
    quint32 m_versionMax = 0;
    QMap<QPair<unsigned int, unsigned int>, CVariant> m_values;
};

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
    /// A valid device without properties, for versions \a versionMin to \a versionMax.
    CDeviceData(int deviceId, const QString &name, quint32 versionMin, quint32 versionMax);

    /// A device read from the database (or built with the second constructor).
    bool isValid() const { return m_valid; }
    /// The device name.
    QString name() const { return m_name; }
    /// The device's number in the database; -1 for a default object.
    int deviceId() const { return m_deviceId; }
    /// The lowest firmware version (a uVersion_t word) the record is for.
    quint32 versionMin() const { return m_versionMin; }
    /// The highest firmware version (a uVersion_t word) the record is for.
    quint32 versionMax() const { return m_versionMax; }

    /// The property (key, pos), else (key, 0), else a null CVariant.
    CVariant value(unsigned int key, NkrDeviceDatabase::eSubDevicePos_t pos = NkrDeviceDatabase::E_SDP_MAIN) const;
    /// Sets the property (\a key, \a pos), replacing an earlier one.
    void setValue(unsigned int key, NkrDeviceDatabase::eSubDevicePos_t pos, const CVariant &value);
    /// Number of properties.
    int propertyCount() const { return m_values.size(); }

private:
    bool m_valid = false;
    int m_deviceId = -1;
    QString m_name;
    quint32 m_versionMin = 0;
    quint32 m_versionMax = 0;
    QMap<QPair<unsigned int, unsigned int>, CVariant> m_values;
};

#include "CDeviceData.h"

CDeviceData::CDeviceData(int deviceId, const QString &name, quint32 versionMin, quint32 versionMax)
    : m_valid(true)
    , m_deviceId(deviceId)
    , m_name(name)
    , m_versionMin(versionMin)
    , m_versionMax(versionMax)
{
}

CVariant CDeviceData::value(unsigned int key, NkrDeviceDatabase::eSubDevicePos_t pos) const
{
    auto it = m_values.constFind(qMakePair(key, static_cast<unsigned int>(pos)));
    if (it != m_values.constEnd())
        return it.value();
    // A property not given per axis holds for the whole device.
    it = m_values.constFind(qMakePair(key, static_cast<unsigned int>(NkrDeviceDatabase::E_SDP_MAIN)));
    if (it != m_values.constEnd())
        return it.value();
    return CVariant();
}

void CDeviceData::setValue(unsigned int key, NkrDeviceDatabase::eSubDevicePos_t pos, const CVariant &value)
{
    m_values.insert(qMakePair(key, static_cast<unsigned int>(pos)), value);
}

#pragma once

#include <QSharedData>
#include <QVariant>

#include <memory>

/// The own shared record of COdictValueObject. The partial access (byte index and size) is
/// rarely set, so it lives out of line: the record then fits a 64-byte heap block.
class COdictValueObjectPrivate : public QSharedData
{
public:
    COdictValueObjectPrivate() = default;
    COdictValueObjectPrivate(const COdictValueObjectPrivate &o)
        : QSharedData(o)
        , error(o.error)
        , currentValue(o.currentValue)
        , setpointValue(o.setpointValue)
        , m_access(o.m_access ? new sAccess(*o.m_access) : nullptr)
        , valueInHex(o.valueInHex)
    {
    }
    COdictValueObjectPrivate &operator=(const COdictValueObjectPrivate &) = delete;

    qint32 error = 0;
    QVariant currentValue;
    QVariant setpointValue;

    qint64 readWriteByteIndex() const { return m_access ? m_access->index : 0; }
    qint64 readWriteByteSize() const { return m_access ? m_access->size : -1; }
    /// Sets the partial access; the block is dropped again for the whole object (0, -1).
    void setReadWriteByteRange(qint64 index, qint64 size)
    {
        if (index == 0 && size == -1)
            m_access.reset();
        else if (m_access)
            *m_access = {index, size};
        else
            m_access.reset(new sAccess{index, size});
    }

    bool equals(const COdictValueObjectPrivate &o) const
    {
        return error == o.error && readWriteByteIndex() == o.readWriteByteIndex()
            && readWriteByteSize() == o.readWriteByteSize() && currentValue == o.currentValue
            && setpointValue == o.setpointValue && valueInHex == o.valueInHex;
    }

private:
    struct sAccess
    {
        qint64 index;
        qint64 size;
    };
    std::unique_ptr<sAccess> m_access;

public:
    bool valueInHex = false;
};

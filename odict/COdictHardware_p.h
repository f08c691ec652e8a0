#pragma once

#include "NTypes.h"

#include <QString>

#include <memory>

class CDeviceData;
class COdictObjectTree;
class ICLogfile;

/// Narrows a loaded dictionary to one device of the device database: the selections of three
/// fixed objects and the limits of three more.
class COdictHardware
{
public:
    /// Works on \a tree (not owned); messages go to \a log (not owned, null silences).
    COdictHardware(COdictObjectTree &tree, ICLogfile *log);

    /// Narrows the tree to \a device at sub-device position \a pos; false when the device is not
    /// valid or one of the six objects is missing (the others are narrowed all the same).
    bool apply(const CDeviceData &device, unsigned char pos);

    /// The data of \a device in \a version from the device database of the program-data
    /// directory; null when the database cannot be opened or holds no such device.
    static std::unique_ptr<CDeviceData> findDevice(NTypes::uVersion_t version, const QString &device);

private:
    COdictObjectTree &m_tree;
    ICLogfile *m_log;
};

#pragma once

namespace NkrDeviceDatabase {
/// Position of a sub-device (an axis of a multi-axis drive); 0 is the device itself.
/// The library passes the caller's byte through unchanged.
enum eSubDevicePos_t : unsigned char {
    E_SDP_MAIN = 0,
    E_SDP_AXIS_1 = 1,
    E_SDP_AXIS_2 = 2,
    E_SDP_AXIS_3 = 3,
    E_SDP_AXIS_4 = 4,
    E_SDP_MAX = 255
};

/// Result state of a device lookup; 0 means found.
enum eDdbState_t : int {
    E_DDB_OK = 0,
    E_DDB_NOT_OPEN = 1,          ///< no database is open
    E_DDB_DEVICE_UNKNOWN = 2,    ///< no device of that name
    E_DDB_VERSION_UNKNOWN = 3,   ///< the device exists, but no entry covers the version
    E_DDB_QUERY_FAILED = 4       ///< the database could not be read (corrupt or wrong schema)
};
} // namespace NkrDeviceDatabase

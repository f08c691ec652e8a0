#pragma once

#include <QtGlobal>

/// Data type numbers of the drive firmware and the version word.
namespace NTypes {

/// Firmware data types; the numbers are part of every file format and must not change.
enum eTypes_t : quint32 {
    E_UNKNOWN = 0,
    E_BOOL = 1,
    E_U8 = 2,
    E_I8 = 3,
    E_U16 = 4,
    E_I16 = 5,
    E_U32 = 6,
    E_I32 = 7,
    E_U64 = 8,
    E_I64 = 9,
    E_F32 = 10,
    E_F64 = 11,
    E_STRING = 12,
    E_USTRING = 13,
    E_VSTRING = 14,
    E_OCTETS = 15,
    E_UTF8STRING = 16,
    E_CHARARRAY = 17,
    E_WCHARARRAY = 18,
    E_DOMAIN = 19,
    E_TIME_OF_DAY = 20,
    E_TIME_DIFF = 21,
    E_RECORD = 22,
    E_TIME = 23,
    E_XY = 24,
    E_RAW = 25,
    E_DS402_RECORD = 26,
    E_DS402_U16ARRAY = 27,
    E_DS402_U32ARRAY = 28,
    E_DS402_I32ARRAY = 29,
    E_DS402_I16ARRAY = 30,
    E_DS402_F32ARRAY = 31,
    E_STRUCT = 32,
    E_TYPE_COUNT = 33 ///< number of types, not a type
};

/// The largest 32-bit number, also the "absent" value of ids and units.
constexpr quint32 U32_MAX = 0xFFFFFFFFu;

/// 32-bit version word: main in bits 31..24, minor in 23..16, build in 15..0 (0x011C002A is 1.28.42).
union uVersion_t {
    /// the whole word
    quint32 value;
    struct {
        quint16 build;
        qint8 minor;
        qint8 main;
    } part; ///< the three parts

    /// The version of the word \a v.
    constexpr uVersion_t(quint32 v = 0) : value(v) {}
    /// The version main.minor.build.
    static uVersion_t fromParts(int main, int minor, int build)
    {
        return uVersion_t((quint32(quint8(main)) << 24) | (quint32(quint8(minor)) << 16) | quint32(quint16(build)));
    }
    /// The main number (bits 31..24).
    int mainNumber() const { return int(value >> 24); }
    /// The minor number (bits 23..16).
    int minorNumber() const { return int((value >> 16) & 0xFF); }
    /// The build number (bits 15..0).
    int buildNumber() const { return int(value & 0xFFFF); }
    /// True when the words are equal.
    bool operator==(const uVersion_t &o) const { return value == o.value; }
    /// True when the words differ.
    bool operator!=(const uVersion_t &o) const { return value != o.value; }
};
static_assert(sizeof(uVersion_t) == 4, "uVersion_t is one 32-bit word");

} // namespace NTypes

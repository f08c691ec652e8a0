#pragma once

/// User levels: the higher the number, the more a user may see and change.
namespace NkrUserLevel {
/// A user level, from no rights (0) to developer (5).
enum eUserLevel_t : unsigned int {
    E_UL_NONE = 0,
    E_UL_OPERATOR = 1,
    E_UL_SERVICE = 2,
    E_UL_EXPERT = 3,
    E_UL_MANUFACTURER = 4,
    E_UL_DEVELOPER = 5
};
} // namespace NkrUserLevel

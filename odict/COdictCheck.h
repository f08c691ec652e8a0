#pragma once

#include "ICLogfile.h"
#include "krodict_export.h"

#include <QList>
#include <QString>
#include <QStringList>

class COdict;

/// One finding of a dictionary check.
struct sOdictFinding_t {
    QString rule;                        ///< stable rule id, e.g. "default-outside-limits"
    NkrLogfiles::eSeverity_t severity = NkrLogfiles::E_SEV_WARNING; ///< info, warning or critical
    unsigned int id = 0xFFFFFFFFu;       ///< the object concerned; 0xFFFFFFFF for none
    unsigned int subId = 0xFFFFFFFFu;    ///< its sub-id; 0xFFFFFFFF for none
    QString message;                     ///< the text people read, as the text format prints it
};

/// Checks a loaded dictionary for what a dictionary author needs to know beyond the loader's
/// messages: limits, defaults, enumeration and bit texts, names, display names, sub-object
/// lists and CANopen index collisions. Each rule has a stable id (see rules()).
class KRODICT_EXPORT COdictCheck
{
public:
    /// The findings of every rule for \a odict, object by object in id order, each object
    /// followed by its sub-objects.
    static QList<sOdictFinding_t> check(const COdict *odict);
    /// The ids of all rules, in the order in which they are applied to an object.
    static QStringList rules();
};

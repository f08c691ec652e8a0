#pragma once

#include "krodict_export.h"

#include <QList>
#include <QString>

class COdict;

/// The differences between two versions of a dictionary, object by object (matched by id and
/// sub-id) and in the document data (meta data, history, data structures).
class KRODICT_EXPORT COdictDiff
{
public:
    /// The kind of a change; the order is the order of the groups of a report.
    enum eChange_t {
        E_DC_METADATA = 0, ///< the dictionary name or a field of the meta data
        E_DC_HISTORY,      ///< a history record, by version
        E_DC_STRUCTURE,    ///< a data structure, by name
        E_DC_ADDED,        ///< an object or sub-object only in the newer dictionary
        E_DC_REMOVED,      ///< an object or sub-object only in the older dictionary
        E_DC_MOVED,        ///< an object in another group
        E_DC_RENAMED,      ///< an object with another name
        E_DC_CHANGED       ///< another field of an object
    };

    /// One change. Values are texts; a null text means "absent" (for example the old value of an
    /// enumeration entry that was added).
    struct sChange_t {
        eChange_t kind = E_DC_CHANGED;    ///< what happened to the object or field
        unsigned int id = 0xFFFFFFFFu;    ///< the object; 0xFFFFFFFF for document data
        unsigned int subId = 0xFFFFFFFFu; ///< its sub-id; 0xFFFFFFFF for none
        QString field;                    ///< "maxValue", "enum[3]", "group", "version", ...
        QString oldValue;                 ///< the value in the old dictionary; null when absent
        QString newValue;                 ///< the value in the new dictionary; null when absent
        QString label;                    ///< the object as people read it ("SPEED (ID 302)")
    };

    /// The changes from \a older to \a newer: document data first, then the objects in id order,
    /// each followed by its sub-objects. Linear in the number of objects (hashes by id). Empty when both are equal.
    static QList<sChange_t> compare(const COdict *older, const COdict *newer);
    /// "metadata", "history", "structure", "added", "removed", "moved", "renamed" or "changed".
    static QString kindName(eChange_t kind);
};

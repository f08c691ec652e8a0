#pragma once

#include "COdict.h"
#include "krodict_export.h"

class COdictExtendPrivate;

/// A read-only dictionary whose tree adds virtual sub-objects for bit-set objects and for the
/// X/Y halves of data-type-24 parameters, as its object filter selects.
class KRODICT_EXPORT COdictExtend : public COdict
{
    Q_OBJECT
public:
    /// An empty dictionary of \a kind with an empty object filter, without a log file.
    explicit COdictExtend(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    /// The same logging to \a log (not owned; null silences).
    COdictExtend(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    ~COdictExtend() override;

    /// Stored in the tree; acts when the tree is built, so set it before loading. Ignored without a tree.
    void setObjectFilter(NkrOdict::VirtualObjectFlags filter);
    /// The tree's object filter; empty without a tree.
    NkrOdict::VirtualObjectFlags objectFilter() const;
    /// True as soon as one sub-id of the object's list names a virtual object of this dictionary.
    bool hasVirtualSubObjects(const COdictObject &object) const;
    /// hasVirtualSubObjects() of the object indexed under \a id; false when none.
    bool hasVirtualSubObjects(const COdictObjectId &id) const;

protected:
    /// For derived dictionaries, which pass their own private object (owned from here on).
    COdictExtend(COdictExtendPrivate &dd, QObject *parent);

private:
    Q_DECLARE_PRIVATE(COdictExtend)
};

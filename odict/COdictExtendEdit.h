#pragma once

#include "COdictEdit.h"
#include "krodict_export.h"

class COdictExtendEditPrivate;

/// An editable dictionary with virtual sub-objects. Setting a value object keeps the object and
/// its virtual sub-objects consistent in both directions: an owner passes its values down to
/// its virtual sub-objects, and a virtual sub-object's value is written into its owner.
class KRODICT_EXPORT COdictExtendEdit : public COdictEdit
{
    Q_OBJECT
public:
    /// An empty editable dictionary of \a kind with an empty object filter, without a log file.
    explicit COdictExtendEdit(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    /// The same logging to \a log (not owned; null silences).
    COdictExtendEdit(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    ~COdictExtendEdit() override;

    /// Stored in the tree; acts when the tree is built, so set it before loading. Ignored without a tree.
    void setObjectFilter(NkrOdict::VirtualObjectFlags filter);
    /// The tree's object filter; empty without a tree.
    NkrOdict::VirtualObjectFlags objectFilter() const;
    /// True as soon as one sub-id of the object's list names a virtual object of this dictionary.
    bool hasVirtualSubObjects(const COdictObject &object) const;
    /// hasVirtualSubObjects() of the object indexed under \a id; false when none.
    bool hasVirtualSubObjects(const COdictObjectId &id) const;
    /// The value-object form of hasVirtualSubObjects(const COdictObject &).
    bool hasVirtualSubObjects(const COdictValueObject &object) const;

protected:
    /// For derived dictionaries, which pass their own private object (owned from here on).
    COdictExtendEdit(COdictExtendEditPrivate &dd, QObject *parent);

private:
    Q_DECLARE_PRIVATE(COdictExtendEdit)
};

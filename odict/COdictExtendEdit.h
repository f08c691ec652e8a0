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
    explicit COdictExtendEdit(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    COdictExtendEdit(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    ~COdictExtendEdit() override;

    void setObjectFilter(NkrOdict::VirtualObjectFlags filter);
    NkrOdict::VirtualObjectFlags objectFilter() const;
    bool hasVirtualSubObjects(const COdictObject &object) const;
    bool hasVirtualSubObjects(const COdictObjectId &id) const;
    bool hasVirtualSubObjects(const COdictValueObject &object) const;

protected:
    COdictExtendEdit(COdictExtendEditPrivate &dd, QObject *parent);

private:
    Q_DECLARE_PRIVATE(COdictExtendEdit)
};

#pragma once

#include "krodict_export.h"

#include <QDate>
#include <QObject>
#include <QScopedPointer>

class COdict;
class COdictExportObjectIdsPrivate;

/// Writes "NkrObjectIds.h": one enumeration constant per object and sub-object of a dictionary,
/// usable from C (the bare enumeration) and C++ (inside namespace NkrObjectIds, alias NID).
class KRODICT_EXPORT COdictExportObjectIds : public QObject
{
    Q_OBJECT
public:
    /// \a odict is not owned.
    explicit COdictExportObjectIds(COdict *odict, QObject *parent = nullptr);
    ~COdictExportObjectIds() override;

    /// Writes "NkrObjectIds.h" into \a directory atomically; false when it cannot be written.
    bool exportToEnum(const QString &directory);

    /// The date of the banners ("dd.MM.yyyy"); an invalid date, the default, means today.
    void setDate(const QDate &date);

private:
    const QScopedPointer<COdictExportObjectIdsPrivate> d_ptr;
    Q_DECLARE_PRIVATE(COdictExportObjectIds)
};

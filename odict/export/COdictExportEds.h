#pragma once

#include "krodict_export.h"

#include <QDate>
#include <QObject>
#include <QScopedPointer>
#include <QStringList>

class COdict;
class COdictExportEdsPrivate;

/// Writes an electronic data sheet (EDS, the INI text that CANopen masters import) of a
/// dictionary: every object with a CANopen index of its own (COdictCanOpen), records for objects
/// with sub-objects and for the DS402 compound types, enumeration and bit texts as comments.
class KRODICT_EXPORT COdictExportEds : public QObject
{
    Q_OBJECT
public:
    /// \a odict is not owned.
    explicit COdictExportEds(COdict *odict, QObject *parent = nullptr);
    ~COdictExportEds() override;

    /// Writes the EDS to \a fileName atomically; false only when the file cannot be written.
    /// Objects that CANopen cannot address or carry are left out, logged as warnings to the
    /// dictionary's log and listed by leftOut().
    bool exportToEds(const QString &fileName);

    /// The export date named in the comments; an invalid date, the default, means today.
    void setDate(const QDate &date);
    /// The vendor name of the device information; empty, the default, means the dictionary name.
    void setVendorName(const QString &name);

    /// One text per object or sub-object that the last export left out, with the reason.
    QStringList leftOut() const;

private:
    const QScopedPointer<COdictExportEdsPrivate> d_ptr;
    Q_DECLARE_PRIVATE(COdictExportEds)
};

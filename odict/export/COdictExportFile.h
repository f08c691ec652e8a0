#pragma once

#include "krodict_export.h"

#include <QDate>
#include <QObject>
#include <QScopedPointer>

class COdict;
class COdictExportFilePrivate;

/// Writes the firmware's C header of an editor dictionary: type declarations of the data
/// structures, one access-function descriptor per structure, one constant per object and
/// sub-object, sub-object arrays and the object, DS402 and DS301 tables.
class KRODICT_EXPORT COdictExportFile : public QObject
{
    Q_OBJECT
public:
    /// \a odict is not owned; it must be an editor dictionary (COdictEdit of E_OT_EDITOR).
    explicit COdictExportFile(COdict *odict, QObject *parent = nullptr);
    ~COdictExportFile() override;

    /// Builds the header and writes it to \a fileName atomically. False when the file cannot be
    /// written; an existing file is then left as it was.
    bool exportToHeaderfile(const QString &fileName);

    /// The date of the banner (shown in the system locale's short format); an invalid date, the
    /// default, means today.
    void setDate(const QDate &date);

private:
    const QScopedPointer<COdictExportFilePrivate> d_ptr;
    Q_DECLARE_PRIVATE(COdictExportFile)
};

#pragma once

#include "krodict_export.h"

#include <QDate>
#include <QObject>
#include <QScopedPointer>

class COdict;
class COdictExportDocPrivate;

/// Writes a dictionary as a DITA 1.2 documentation package: a bookmap named after the
/// dictionary, a front page, one concept topic per group and one reference topic per object
/// and sub-object, ready for the DITA Open Toolkit.
class KRODICT_EXPORT COdictExportDoc : public QObject
{
    Q_OBJECT
public:
    /// \a odict is not owned; any object kind will do, editor objects add their descriptions.
    explicit COdictExportDoc(COdict *odict, QObject *parent = nullptr);
    ~COdictExportDoc() override;

    /// Writes the package into \a directory, which is created when missing. Every file is
    /// replaced atomically; false when the directory or a file cannot be written (files written
    /// before the failure stay, the others keep their old content).
    bool exportToPackage(const QString &directory);

    /// File name of the bookmap, "<dictionary name>.ditamap" with the name made safe for a file
    /// name ("dictionary.ditamap" for a dictionary without name).
    QString mapFileName() const;

    /// The export date written into the package; an invalid date, the default, means today.
    void setDate(const QDate &date);

private:
    const QScopedPointer<COdictExportDocPrivate> d_ptr;
    Q_DECLARE_PRIVATE(COdictExportDoc)
};

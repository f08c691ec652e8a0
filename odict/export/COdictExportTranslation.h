#pragma once

#include "krodict_export.h"

#include <QDate>
#include <QObject>
#include <QScopedPointer>

class COdict;
class COdictExportTranslationPrivate;

/// Writes "NkrOdictTranslate.h", a header never compiled into anything: it lists every display
/// text of a dictionary (group names, object names and short names, bit and enumeration texts)
/// as QT_TRANSLATE_NOOP strings of the context "Odict" for Qt's translation tools.
class KRODICT_EXPORT COdictExportTranslation : public QObject
{
    Q_OBJECT
public:
    /// \a odict is not owned.
    explicit COdictExportTranslation(COdict *odict, QObject *parent = nullptr);
    ~COdictExportTranslation() override;

    /// Writes "NkrOdictTranslate.h" into \a directory atomically; false when it cannot be written.
    bool exportToTranslate(const QString &directory);

    /// The date of the banner ("dd.MM.yyyy"); an invalid date, the default, means today.
    void setDate(const QDate &date);

private:
    const QScopedPointer<COdictExportTranslationPrivate> d_ptr;
    Q_DECLARE_PRIVATE(COdictExportTranslation)
};

#pragma once

#include "COdictLineSink_p.h"
#include "COdictObjectId.h"

#include <QDate>
#include <QString>
#include <QStringList>

class COdict;
class COdictEditorObject;

/// The frame shared by the exporters: the dictionary, its name and object-number count, the
/// target path, the banner, namespace-banner and guard pieces, and the sink the lines go to.
class COdictExportBasePrivate
{
public:
    explicit COdictExportBasePrivate(COdict *odict);
    virtual ~COdictExportBasePrivate();

    /// Reads the dictionary name and the object-number count (highest id + 1, wrapping like the
    /// 32-bit number it is); an empty name and 0 without a dictionary.
    void prepare();
    /// The dictionary's progress callback; empty without a dictionary.
    COdictProgressCallback progress() const;
    /// Documentation banner naming the file, \a brief and the export date ("dd.MM.yyyy").
    void fileBanner(COdictLineSink &out, const QString &path, const QString &brief) const;
    /// Namespace banner with a details paragraph (left out when \a details is empty), named
    /// after the file's base name.
    void namespaceBanner(COdictLineSink &out, const QString &path, const QString &brief,
                         const QStringList &details = QStringList()) const;
    static void guardOpen(COdictLineSink &out, const QString &path);
    static void guardClose(COdictLineSink &out, const QString &path);

    /// The date written into the banners: the one set, else today.
    QDate exportDate() const { return date.isValid() ? date : QDate::currentDate(); }

    /// \a fileName inside \a directory.
    static QString targetPath(const QString &directory, const QString &fileName);
    /// The file name without directory.
    static QString fileName(const QString &path);
    /// The file name without directory and without everything from its first dot.
    static QString baseName(const QString &path);
    /// One blank and 89 stars.
    static QString starLine();
    /// "//" and 88 dashes.
    static QString dashLine();

    /// The editor object indexed exactly under \a key; null when there is none or the node holds
    /// no editor object. The key must match exactly: sub-objects of object 0 pack to the same
    /// 64-bit value as plain ids and would otherwise be mistaken for them.
    const COdictEditorObject *editorObjectAt(const COdictObjectId &key) const;
    /// The plain objects (sub-id none) with an id below the object-number count, in id order.
    QList<QPair<quint32, const COdictEditorObject *>> plainObjects() const;

    COdict *odict;          ///< not owned
    QString odictName;
    quint32 objectCount = 0;
    QString path;
    QDate date;             ///< invalid: today
};

#pragma once

#include "krcore_export.h"

#include <QString>

class QSaveFile;

/// Atomic file writing on top of QSaveFile.
class KRCORE_EXPORT CSaveFile
{
public:
    /// Commits \a file only when everything written has reached the file system, else discards it
    /// and answers false. QSaveFile::commit() alone can answer true although the last buffered
    /// write failed (a full disk, a file size limit), putting a cut file in place of the old one;
    /// flushing first catches that.
    static bool commit(QSaveFile &file);

    /// Whether \a fileName may be written: a name is given and the path is missing or a regular
    /// file. A FIFO, device or directory is refused, since QSaveFile would replace it by a
    /// regular file. \a errorText receives "cannot write '<file>': <reason>" on refusal.
    static bool checkTarget(const QString &fileName, QString *errorText = nullptr);

    /// checkTarget(), then opens \a file for writing; false with the reason in \a errorText.
    static bool open(QSaveFile &file, QString *errorText = nullptr);

    /// "cannot write '<file>': <reason>", the one text of every failed write.
    static QString writeError(const QString &fileName, const QString &reason);
};

#pragma once

#include "krcore_export.h"

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
};

#include "CSaveFile.h"

#include <QSaveFile>

bool CSaveFile::commit(QSaveFile &file)
{
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        file.cancelWriting();
        file.commit(); // closes the file and removes the temporary one
        return false;
    }
    return file.commit();
}

#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictEdit.h>

#include <QCommandLineParser>
#include <QDateTime>
#include <QFileInfo>

bool parseArguments(QCommandLineParser &parser, const QStringList &arguments, int positionals)
{
    parser.addHelpOption();
    if (!parser.parse(arguments)) {
        err() << "odict: " << parser.errorText() << '\n';
        return false;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        out() << parser.helpText();
        out().flush();
        ::exit(0);
    }
    // The command's name stands where a program name would and is not a positional argument.
    if (parser.positionalArguments().size() != positionals) {
        err() << "odict: wrong number of arguments\n" << parser.helpText();
        return false;
    }
    return true;
}

std::unique_ptr<COdictEdit> loadDictionaryFile(const QString &file, CMemoryLogfile *log, NkrOdict::eObjectType_t kind)
{
    auto dictionary = std::make_unique<COdictEdit>(kind);
    dictionary->setLogfile(log);
    if (log)
        log->clear(); // the creation message is not about the file
    // Parameter dictionaries are read from dictionary files here, not from parameter-set files.
    const int result = kind == NkrOdict::E_OT_PARAMETER ? dictionary->loadParameterDictionary(file)
                                                        : dictionary->loadDictionary(file);
    if (result != 0) {
        const QStringList reasons = dictionary->warningMessages();
        err() << "odict: cannot open '" << file << "'"
              << (reasons.isEmpty() ? QString() : QStringLiteral(": ") + reasons.last()) << '\n';
        return nullptr;
    }
    return dictionary;
}

QDate exportDate()
{
    bool ok = false;
    const qint64 epoch = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    return ok ? QDateTime::fromSecsSinceEpoch(epoch, Qt::UTC).date() : QDate::currentDate();
}

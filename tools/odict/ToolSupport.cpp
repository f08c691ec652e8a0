#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictEdit.h>

#include <QCommandLineParser>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>

#include <unistd.h>

namespace {

bool progressEnabled = true;
bool recordsDropped = false;

/// Progress on stderr: only on a terminal, and only once the work has taken a second.
COdictProgressCallback terminalProgress()
{
    if (!progressEnabled || !::isatty(STDERR_FILENO))
        return {};
    struct sState_t {
        QElapsedTimer timer;
        qint64 last = -1;
        bool shown = false;
    };
    auto state = std::make_shared<sState_t>();
    return [state](qint64 done, qint64 total) {
        if (done < state->last || !state->timer.isValid()) { // a new operation starts
            *state = sState_t();
            state->timer.start();
        }
        state->last = done;
        if (!state->shown && state->timer.elapsed() < 1000)
            return;
        state->shown = true;
        const int percent = total > 0 ? int(done * 100 / total) : 100;
        err() << "\rodict: " << percent << " %" << (done >= total ? "\n" : "");
        err().flush();
        if (done >= total)
            *state = sState_t();
    };
}

} // namespace

void setProgressEnabled(bool enabled)
{
    progressEnabled = enabled;
}

bool droppedRecordsReported()
{
    return recordsDropped;
}

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
    dictionary->setProgressCallback(terminalProgress());
    if (log)
        log->clear(); // the creation message is not about the file
    // Parameter dictionaries are read from dictionary files here, not from parameter-set files.
    const int result = kind == NkrOdict::E_OT_PARAMETER ? dictionary->loadParameterDictionary(file)
                                                        : dictionary->loadDictionary(file);
    if (result != 0) {
        // The reader's reason names the file and the cause once.
        const QStringList reasons = dictionary->warningMessages();
        err() << "odict: " << (reasons.isEmpty() ? QStringLiteral("cannot open '%1'").arg(file) : reasons.last()) << '\n';
        return nullptr;
    }
    // Whatever the loader left out is a finding: one line each, and the command exits 1.
    for (const COdictDroppedRecord &record : dictionary->droppedRecords()) {
        err() << "odict: warning: '" << file << "': " << record.text() << '\n';
        recordsDropped = true;
    }
    return dictionary;
}

QDate exportDate()
{
    bool ok = false;
    const qint64 epoch = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    return ok ? QDateTime::fromSecsSinceEpoch(epoch, Qt::UTC).date() : QDate::currentDate();
}

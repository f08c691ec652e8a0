#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictEdit.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>

namespace {

/// Swallows whatever is written to it: the target of out() and note() while quiet.
class CNullDevice : public QIODevice
{
public:
    CNullDevice() { open(QIODevice::WriteOnly); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 length) override { return length; }
};

bool s_quiet = false;
QString s_command; // the running command, for its usage line

QTextStream &stdoutStream()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream &stderrStream()
{
    static QTextStream stream(stderr);
    return stream;
}

QTextStream &nullStream()
{
    static CNullDevice device;
    static QTextStream stream(&device);
    return stream;
}

} // namespace

QTextStream &out()
{
    return s_quiet ? nullStream() : stdoutStream();
}

QTextStream &err()
{
    // Anything written to stdout before belongs before the error on a shared terminal.
    stdoutStream().flush();
    return stderrStream();
}

QTextStream &note()
{
    return s_quiet ? nullStream() : err();
}

void setQuiet(bool quiet)
{
    s_quiet = quiet;
    setProgressEnabled(!quiet); // -q also switches the progress display off
}

void printHelp(const QString &text)
{
    stdoutStream() << text;
    stdoutStream().flush();
}

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
    return parseArguments(parser, arguments, positionals, positionals);
}

bool parseArguments(QCommandLineParser &parser, const QStringList &arguments, int minPositionals, int maxPositionals)
{
    s_command = arguments.value(0);
    // Our own help option: QCommandLineParser::addHelpOption() would also offer Qt's --help-all.
    parser.addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help.")},
        {{QStringLiteral("q"), QStringLiteral("quiet")}, QStringLiteral("Prints errors only.")},
    });
    if (!parser.parse(arguments)) {
        // Qt names an unknown option without its dashes; the user typed them.
        const QStringList unknown = parser.unknownOptionNames();
        QString problem = unknown.isEmpty() ? parser.errorText()
                                            : QStringLiteral("unknown option '%1%2'")
                                                  .arg(QLatin1String(unknown.first().size() == 1 ? "-" : "--"), unknown.first());
        if (!problem.isEmpty())
            problem[0] = problem.at(0).toLower();
        usageError(parser, problem);
        return false;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        printHelp(usageText(parser));
        ::exit(E_EXIT_OK);
    }
    if (parser.isSet(QStringLiteral("quiet")))
        setQuiet(true);
    // The command's name stands where a program name would and is not a positional argument.
    const int count = parser.positionalArguments().size();
    if (count < minPositionals || count > maxPositionals) {
        const QString expected = minPositionals == maxPositionals
            ? QString::number(minPositionals)
            : QStringLiteral("%1 to %2").arg(minPositionals).arg(maxPositionals);
        usageError(parser, QStringLiteral("%1 expects %2 argument(s), not %3").arg(s_command, expected).arg(count));
        return false;
    }
    return true;
}

QString usageText(const QCommandLineParser &parser)
{
    // Qt names the program by the path it was started with; the usage shows the command instead.
    QString text = parser.helpText();
    const QString qtPrefix = QStringLiteral("Usage: ") + QCoreApplication::arguments().value(0);
    if (text.startsWith(qtPrefix))
        text.replace(0, qtPrefix.size(), QStringLiteral("Usage: odict ") + s_command);
    return text;
}

int usageError(const QCommandLineParser &parser, const QString &problem)
{
    err() << "odict: " << problem << "\n\n" << usageText(parser);
    err().flush();
    return E_EXIT_USAGE;
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
        err() << "odict: "
              << (reasons.isEmpty() ? QStringLiteral("cannot open '%1'").arg(file)
                                    : fileError(QStringLiteral("cannot read"), file, reasons.last()))
              << '\n';
        return nullptr;
    }
    // Whatever the loader left out is a finding: one line each, and the command exits 1.
    for (const COdictDroppedRecord &record : dictionary->droppedRecords()) {
        note() << "odict: warning: '" << file << "': " << record.text() << '\n';
        recordsDropped = true;
    }
    return dictionary;
}

int findingCount(const CMemoryLogfile &log)
{
    int count = 0;
    for (const CMemoryLogfile::sEntry_t &entry : log.entries())
        count += entry.severity != NkrLogfiles::E_SEV_INFO ? 1 : 0;
    return count;
}

int loadFindings(const CMemoryLogfile &log, const QString &file)
{
    const int count = findingCount(log);
    if (count == 0)
        return E_EXIT_OK;
    note() << "odict: '" << file << "' has " << count << " warning(s); 'odict check " << file << "' lists them\n";
    return E_EXIT_WARNINGS;
}

QString fileError(const QString &verb, const QString &file, const QString &reason)
{
    if (reason.contains(QLatin1Char('\'') + file + QLatin1Char('\'')))
        return reason;
    return QStringLiteral("%1 '%2': %3").arg(verb, file, reason);
}

int writeFailed(const QString &file, const QString &reason)
{
    QString why = reason;
    if (why.isEmpty()) {
        // The writers answer only false; trying again with a QSaveFile (which writes a temporary
        // file and removes it when cancelled) tells what the operating system refuses.
        QSaveFile probe(file);
        if (!probe.open(QIODevice::WriteOnly))
            why = probe.errorString();
        probe.cancelWriting();
    }
    err() << "odict: " << (why.isEmpty() ? QStringLiteral("cannot write '%1'").arg(file) : fileError(QStringLiteral("cannot write"), file, why))
          << '\n';
    return E_EXIT_NOT_OPENED;
}

QDate exportDate()
{
    bool ok = false;
    const qint64 epoch = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    return ok ? QDateTime::fromSecsSinceEpoch(epoch, Qt::UTC).date() : QDate::currentDate();
}

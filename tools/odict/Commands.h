#pragma once

#include <QStringList>
#include <QTextStream>

#include <NkrOdict.h>

#include <memory>

class COdictEdit;
class CMemoryLogfile;
class QCommandLineParser;

/// One sub-command of the odict tool: its name, a one-line summary and the function that runs it.
/// A command gets its own arguments (the command name first) and answers the exit status.
struct sCommand_t {
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

/// Exit statuses, the same for every command (docs/odict-tool.md).
enum eExit_t {
    E_EXIT_OK = 0,
    E_EXIT_WARNINGS = 1,   ///< done, but the input has findings (warnings, failed checks, unknown records)
    E_EXIT_NOT_OPENED = 2, ///< a file could not be read or written
    E_EXIT_USAGE = 64      ///< wrong command, option, option value or number of arguments
};

/// Standard output of the tool, UTF-8; swallows everything while quiet.
QTextStream &out();
/// Standard error of the tool, UTF-8, for errors; written even when quiet.
QTextStream &err();
/// Standard error for notes that are no errors (deprecated spellings, hints); swallows them while quiet.
QTextStream &note();
/// Switches quiet mode (-q): only errors are printed.
void setQuiet(bool quiet);
/// Prints a help text that was asked for on standard output, quiet or not.
void printHelp(const QString &text);

/// Parses \a arguments (the command name first) with \a parser, adding -h/--help and -q/--quiet,
/// and checks the number of positional arguments. Prints the help and exits 0 when asked for it;
/// prints the problem and the usage and answers false when the arguments do not fit.
bool parseArguments(QCommandLineParser &parser, const QStringList &arguments, int positionals);
/// As above, for commands that take \a minPositionals to \a maxPositionals positional arguments.
bool parseArguments(QCommandLineParser &parser, const QStringList &arguments, int minPositionals, int maxPositionals);
/// The help text of a command parsed by parseArguments(), beginning "Usage: odict <command> ...".
QString usageText(const QCommandLineParser &parser);
/// Prints "odict: \a problem" and the usage on stderr; answers E_EXIT_USAGE.
int usageError(const QCommandLineParser &parser, const QString &problem);

/// Loads a dictionary file into a dictionary of \a kind; null (with the reason printed) when the
/// file cannot be opened.
std::unique_ptr<COdictEdit> loadDictionaryFile(const QString &file, CMemoryLogfile *log,
                                               NkrOdict::eObjectType_t kind = NkrOdict::E_OT_EDITOR);
/// Number of warnings and critical messages in \a log.
int findingCount(const CMemoryLogfile &log);
/// E_EXIT_WARNINGS, with a note pointing to 'odict check', when loading \a file logged findings
/// into \a log; else E_EXIT_OK. For commands that load a dictionary and go on regardless.
int loadFindings(const CMemoryLogfile &log, const QString &file);
/// An error text about \a file: \a reason alone when it names the file already, else
/// "\a verb '\a file': \a reason". Keeps the library's own texts from being repeated.
QString fileError(const QString &verb, const QString &file, const QString &reason);
/// Prints why \a file could not be written: \a reason when there is one, else the operating
/// system's reason found by trying (nothing is left behind). Answers E_EXIT_NOT_OPENED.
int writeFailed(const QString &file, const QString &reason = QString());

/// Switches the progress display on stderr (shown only on a terminal, after a second of work).
void setProgressEnabled(bool enabled);
/// Whether a loaded dictionary dropped records; the command then exits E_EXIT_WARNINGS.
bool droppedRecordsReported();

/// The date the exporters write: SOURCE_DATE_EPOCH when it is set (reproducible builds), else today.
class QDate;
QDate exportDate();

int runSelfCheck(const QStringList &arguments);
int runInfo(const QStringList &arguments);
int runCheck(const QStringList &arguments);
int runSave(const QStringList &arguments);
int runNarrow(const QStringList &arguments);
int runDevices(const QStringList &arguments);
int runDemo(const QStringList &arguments);
int runGenerate(const QStringList &arguments);
int runExport(const QStringList &arguments);
int runValues(const QStringList &arguments);
int runDiff(const QStringList &arguments);

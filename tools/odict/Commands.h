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

/// Exit statuses shared by the commands.
enum eExit_t {
    E_EXIT_OK = 0,
    E_EXIT_WARNINGS = 1,  ///< done, with warnings (check), or the operation was refused
    E_EXIT_NOT_OPENED = 2, ///< an input file could not be opened or read
    E_EXIT_USAGE = 64      ///< wrong arguments
};

/// Standard output and error of the tool, UTF-8.
QTextStream &out();
QTextStream &err();

/// Parses \a arguments with \a parser (help handled) and checks the number of positional
/// arguments; prints the problem and answers false when they do not fit.
bool parseArguments(QCommandLineParser &parser, const QStringList &arguments, int positionals);

/// Loads a dictionary file into a dictionary of \a kind; null (with the reason printed) when the
/// file cannot be opened.
std::unique_ptr<COdictEdit> loadDictionaryFile(const QString &file, CMemoryLogfile *log,
                                               NkrOdict::eObjectType_t kind = NkrOdict::E_OT_EDITOR);

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

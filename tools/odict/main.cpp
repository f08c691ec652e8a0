#include "Commands.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

const sCommand_t commands[] = {
    {"info", "Print a summary of a dictionary file (name, version, counts, id ranges).", runInfo},
    {"check", "Load a dictionary file and list every warning and critical message.", runCheck},
    {"save", "Load a dictionary file and save it again, normalised: odict save IN OUT.", runSave},
    {"diff", "Compare two dictionary files object by object: odict diff OLD NEW [--format json].", runDiff},
    {"export", "Export the C header, the id enumeration, the translation source, an EDS or a documentation package.", runExport},
    {"values", "Write or read a data file of current values or parameter sets for a dictionary.", runValues},
    {"narrow", "Narrow a dictionary to one device of the device database and save it.", runNarrow},
    {"devices", "Build the device database from its SQL source: odict devices build SQL -o DB.", runDevices},
    {"demo", "Write the demo dictionary from its definition in code.", runDemo},
    {"generate", "Write a generated dictionary: odict generate --objects N --seed S -o FILE.", runGenerate},
    {"selfcheck", "Check the platform layer (types, values, units, XML head) and print the result.", runSelfCheck},
};

const sCommand_t *findCommand(const QString &name)
{
    for (const sCommand_t &c : commands) {
        if (name == QLatin1String(c.name))
            return &c;
    }
    return nullptr;
}

QString helpText()
{
    QString text = QStringLiteral(
        "Usage: odict [-q] <command> [options] [arguments]\n"
        "Inspect, check, convert and export drive object dictionaries.\n\n"
        "Commands:\n");
    for (const sCommand_t &c : commands)
        text += QStringLiteral("  %1%2\n").arg(QLatin1String(c.name), -12).arg(QLatin1String(c.summary));
    text += QStringLiteral(
        "\nOptions:\n"
        "  -h, --help     Shows this help.\n"
        "  -v, --version  Shows the version.\n"
        "  -q, --quiet    Prints errors only (every command also takes -q).\n\n"
        "Run 'odict help <command>' for the options and arguments of a command.\n"
        "Exit status: 0 success, 1 the input has findings, 2 a file could not be read or written,\n"
        "64 usage error.\n");
    return text;
}

int usageError(const QString &problem)
{
    err() << "odict: " << problem << "\n\n" << helpText();
    return E_EXIT_USAGE;
}

/// `odict help [COMMAND]`: the tool's help, or the help of one command.
int runHelp(const QStringList &arguments)
{
    if (arguments.size() == 1) {
        printHelp(helpText());
        return E_EXIT_OK;
    }
    const sCommand_t *command = arguments.size() == 2 ? findCommand(arguments.at(1)) : nullptr;
    if (!command)
        return usageError(arguments.size() == 2 ? QStringLiteral("unknown command '%1'").arg(arguments.at(1))
                                                : QStringLiteral("help takes one command name"));
    return command->run({arguments.at(1), QStringLiteral("--help")});
}

/// Qt's own warnings (QFSFileEngine and the like) repeat in Qt's words what the tool reports in
/// its own, so they are dropped; only a fatal message, which ends the program, is shown.
void qtMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "odict: internal error: %s\n", text.toLocal8Bit().constData());
}

/// Runs what the command line asks for and answers the exit status.
int dispatch(const QStringList &args)
{
    int i = 1;
    // Options before the command are the tool's own; the command parses everything after its name.
    for (; i < args.size() && args.at(i).startsWith(QLatin1Char('-')); ++i) {
        const QString &option = args.at(i);
        if (option == QLatin1String("-q") || option == QLatin1String("--quiet")) {
            setQuiet(true);
        } else if (option == QLatin1String("-h") || option == QLatin1String("--help")) {
            printHelp(helpText());
            return E_EXIT_OK;
        } else if (option == QLatin1String("-v") || option == QLatin1String("--version")) {
            printHelp(QStringLiteral("odict %1\n").arg(QCoreApplication::applicationVersion()));
            return E_EXIT_OK;
        } else {
            return usageError(QStringLiteral("unknown option '%1'").arg(option));
        }
    }
    if (i == args.size())
        return usageError(QStringLiteral("no command given"));
    const QString &name = args.at(i);
    if (name == QLatin1String("help"))
        return runHelp(args.mid(i));
    if (const sCommand_t *command = findCommand(name))
        return command->run(args.mid(i));
    return usageError(QStringLiteral("unknown command '%1'").arg(name));
}

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler(qtMessage);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("odict"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KRODICT_VERSION));
    out().setCodec("UTF-8");
    err().setCodec("UTF-8");
    int rc = dispatch(QCoreApplication::arguments());
    if (rc == E_EXIT_OK && droppedRecordsReported())
        rc = E_EXIT_WARNINGS; // the loader left records out: a finding, even when the command succeeded
    out().flush();
    err().flush();
    return rc;
}

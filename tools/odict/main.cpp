#include "Commands.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream &err()
{
    static QTextStream stream(stderr);
    return stream;
}

namespace {

const sCommand_t commands[] = {
    {"info", "Print a summary of a dictionary file (name, version, counts, id ranges).", runInfo},
    {"check", "Load a dictionary file and list every warning (exit 0 clean, 1 warnings, 2 not opened).", runCheck},
    {"save", "Load a dictionary file and save it again, normalised: odict save IN OUT.", runSave},
    {"export", "Export the firmware C header, the object-id enumeration or the translation source.", runExport},
    {"values", "Write or read a data file of current values or parameter sets for a dictionary.", runValues},
    {"narrow", "Narrow a dictionary to one device of the device database and save it.", runNarrow},
    {"devices", "Build the device database from its SQL source: odict devices build SQL -o DB.", runDevices},
    {"demo", "Write the demo dictionary from its definition in code.", runDemo},
    {"generate", "Write a generated dictionary: odict generate --objects N --seed S -o FILE.", runGenerate},
    {"selfcheck", "Check the platform layer (types, values, units, XML head) and print the result.", runSelfCheck},
};

QString commandList()
{
    QString text = QStringLiteral("Commands:\n");
    for (const sCommand_t &c : commands)
        text += QStringLiteral("  %1%2\n").arg(QLatin1String(c.name), -12).arg(QLatin1String(c.summary));
    text += QStringLiteral("\nRun 'odict <command> --help' for the options of a command.");
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("odict"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KRODICT_VERSION));
    out().setCodec("UTF-8");
    err().setCodec("UTF-8");

    const QStringList args = QCoreApplication::arguments();
    // The first non-option argument selects the command; everything from there is its own.
    for (int i = 1; i < args.size(); ++i) {
        if (args.at(i).startsWith(QLatin1Char('-')))
            continue;
        for (const sCommand_t &c : commands) {
            if (args.at(i) == QLatin1String(c.name)) {
                const int rc = c.run(args.mid(i));
                out().flush();
                err().flush();
                return rc;
            }
        }
        err() << "odict: unknown command '" << args.at(i) << "'\n" << commandList() << '\n';
        return 64;
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Inspect, check, convert and export drive object dictionaries.\n\n") + commandList());
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(app);
    parser.showHelp(0);
}

// narrow and devices: narrowing a dictionary to one device, and building the device database.
#include "Commands.h"

#include <CDatabaseDeviceData.h>
#include <CDeviceData.h>
#include <CDeviceDatabaseBuilder.h>
#include <CMemoryLogfile.h>
#include <COdictEdit.h>
#include <CPath.h>
#include <CStr.h>

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <memory>

int runNarrow(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Narrows selections and limits of a dictionary to one device of the device database and\n"
        "saves the result.\n"
        "Exit status: 0 done, 1 some objects were missing or the input has warnings (the result is\n"
        "still saved), 2 a file or the device could not be found or written."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The dictionary file."));
    // --version was the firmware version's first name; it stays readable but out of sight, because
    // it reads like the tool's own --version.
    QCommandLineOption oldVersion(QStringLiteral("version"), QStringLiteral("Deprecated: --firmware-version."), QStringLiteral("V"));
    oldVersion.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({
        {QStringLiteral("device"), QStringLiteral("Device name."), QStringLiteral("NAME")},
        {QStringLiteral("firmware-version"), QStringLiteral("Firmware version main.minor.build."), QStringLiteral("V")},
        oldVersion,
        {QStringLiteral("pos"), QStringLiteral("Sub-device position 0..255 (default 0)."), QStringLiteral("N"), QStringLiteral("0")},
        {QStringLiteral("db"), QStringLiteral("Device database (default: mx8dd.db in the program-data directory)."), QStringLiteral("PATH")},
        {{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The file to write."), QStringLiteral("OUT")},
    });
    if (!parseArguments(parser, arguments, 1))
        return E_EXIT_USAGE;
    QString versionText = parser.value(QStringLiteral("firmware-version"));
    if (parser.isSet(oldVersion)) {
        if (parser.isSet(QStringLiteral("firmware-version")))
            return usageError(parser, QStringLiteral("give --firmware-version only (--version is its old name)"));
        note() << "odict: note: narrow --version is deprecated, use --firmware-version\n";
        versionText = parser.value(oldVersion);
    }
    const QString device = parser.value(QStringLiteral("device"));
    if (device.isEmpty())
        return usageError(parser, QStringLiteral("narrow needs --device NAME"));
    bool versionOk = false;
    const NTypes::uVersion_t version = CStr::stringToVersion(versionText, &versionOk);
    if (!versionOk)
        return usageError(parser, versionText.isEmpty() ? QStringLiteral("narrow needs --firmware-version main.minor.build")
                                                        : QStringLiteral("--firmware-version needs main.minor.build, not '%1'").arg(versionText));
    bool posOk = false;
    const uint pos = parser.value(QStringLiteral("pos")).toUInt(&posOk);
    if (!posOk || pos > 255)
        return usageError(parser, QStringLiteral("--pos needs a number from 0 to 255, not '%1'").arg(parser.value(QStringLiteral("pos"))));
    const QString output = parser.value(QStringLiteral("output"));
    if (output.isEmpty())
        return usageError(parser, QStringLiteral("narrow needs -o OUT"));

    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(parser.positionalArguments().at(0), &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;
    const int findings = loadFindings(log, parser.positionalArguments().at(0));

    const QString dbPath = parser.isSet(QStringLiteral("db")) ? parser.value(QStringLiteral("db"))
                                                            : CPath::programdataPath(true) + QStringLiteral("mx8dd.db");
    std::unique_ptr<CDeviceData> data;
    {
        CDatabaseDeviceData database;
        if (!database.openDatabase(dbPath, QUuid::createUuid().toString())) {
            err() << "odict: " << fileError(QStringLiteral("cannot open the device database"), dbPath, database.lastError()) << '\n';
            return E_EXIT_NOT_OPENED;
        }
        NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_OK;
        data.reset(database.data(version, device, state));
        if (state != NkrDeviceDatabase::E_DDB_OK || !data) {
            err() << "odict: " << dbPath << ": " << database.lastError() << '\n';
            return E_EXIT_NOT_OPENED;
        }
    }
    log.clear();
    const bool complete = dictionary->applyHardwareDependencies(*data, static_cast<unsigned char>(pos));
    for (const CMemoryLogfile::sEntry_t &entry : log.entries())
        out() << (entry.severity == NkrLogfiles::E_SEV_CRITICAL ? "critical: " : "note: ") << entry.text << '\n';
    if (!complete)
        out() << "some of the narrowed objects (206, 207, 231, 235, 236, 237) are missing from the dictionary\n";
    if (dictionary->saveDictionary(output) != 0)
        return writeFailed(output);
    out() << "saved " << output << '\n';
    return complete ? findings : E_EXIT_WARNINGS;
}

int runDevices(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Builds the SQLite device database from an SQL source such as examples/devices.sql:\n"
        "  odict devices build examples/devices.sql -o mx8dd.db\n"
        "The database is replaced only when the whole script ran.\n"
        "Exit status: 0 built, 2 the source could not be read, a statement failed, or the database\n"
        "could not be written."));
    parser.addPositionalArgument(QStringLiteral("build"), QStringLiteral("The action (build)."));
    parser.addPositionalArgument(QStringLiteral("SQL"), QStringLiteral("The SQL source."));
    parser.addOption({{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The database file to write."), QStringLiteral("DB")});
    if (!parseArguments(parser, arguments, 2))
        return E_EXIT_USAGE;
    if (parser.positionalArguments().at(0) != QLatin1String("build"))
        return usageError(parser, QStringLiteral("unknown devices action '%1'").arg(parser.positionalArguments().at(0)));
    if (!parser.isSet(QStringLiteral("output")))
        return usageError(parser, QStringLiteral("devices build needs -o DB"));
    QFile source(parser.positionalArguments().at(1));
    if (!source.open(QIODevice::ReadOnly)) {
        err() << "odict: cannot open '" << source.fileName() << "': " << source.errorString() << '\n';
        return E_EXIT_NOT_OPENED;
    }
    const QString target = parser.value(QStringLiteral("output"));
    CDeviceDatabaseBuilder builder;
    switch (builder.build(QString::fromUtf8(source.readAll()), target)) {
    case CDeviceDatabaseBuilder::E_BUILD_OK:
        break;
    case CDeviceDatabaseBuilder::E_BUILD_SCRIPT_FAILED:
        err() << "odict: " << source.fileName() << ": " << builder.lastError() << '\n';
        return E_EXIT_NOT_OPENED;
    case CDeviceDatabaseBuilder::E_BUILD_NOT_WRITTEN:
        err() << "odict: " << builder.lastError() << '\n';
        return E_EXIT_NOT_OPENED;
    }
    out() << "built " << target << '\n';
    return E_EXIT_OK;
}

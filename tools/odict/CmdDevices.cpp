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
        "Narrows selections and limits of a dictionary to one device of the device database and "
        "saves the result.\nExit status: 0 done, 1 some objects were missing (the result is still "
        "saved), 2 a file or the device could not be found."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The dictionary file."));
    parser.addOptions({
        {QStringLiteral("device"), QStringLiteral("Device name."), QStringLiteral("NAME")},
        {QStringLiteral("version"), QStringLiteral("Firmware version main.minor.build."), QStringLiteral("V")},
        {QStringLiteral("pos"), QStringLiteral("Sub-device position 0..255 (default 0)."), QStringLiteral("N"), QStringLiteral("0")},
        {QStringLiteral("db"), QStringLiteral("Device database (default: mx8dd.db in the program-data directory)."), QStringLiteral("PATH")},
        {{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The file to write."), QStringLiteral("OUT")},
    });
    if (!parseArguments(parser, arguments, 1))
        return E_EXIT_USAGE;
    bool versionOk = false;
    const NTypes::uVersion_t version = CStr::stringToVersion(parser.value(QStringLiteral("version")), &versionOk);
    bool posOk = false;
    const uint pos = parser.value(QStringLiteral("pos")).toUInt(&posOk);
    const QString device = parser.value(QStringLiteral("device"));
    const QString output = parser.value(QStringLiteral("output"));
    if (device.isEmpty() || !versionOk || !posOk || pos > 255 || output.isEmpty()) {
        err() << "odict: narrow needs --device NAME, --version main.minor.build, -o OUT and a --pos of 0..255\n";
        return E_EXIT_USAGE;
    }

    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(parser.positionalArguments().at(0), &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;

    const QString dbPath = parser.isSet(QStringLiteral("db")) ? parser.value(QStringLiteral("db"))
                                                            : CPath::programdataPath(true) + QStringLiteral("mx8dd.db");
    std::unique_ptr<CDeviceData> data;
    {
        CDatabaseDeviceData database;
        if (!database.openDatabase(dbPath, QUuid::createUuid().toString())) {
            err() << "odict: cannot open the device database '" << dbPath << "': " << database.lastError() << '\n';
            return E_EXIT_NOT_OPENED;
        }
        NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_OK;
        data.reset(database.data(version, device, state));
        if (state != NkrDeviceDatabase::E_DDB_OK || !data) {
            err() << "odict: no device '" << device << "' for version " << CStr::versionToString(version)
                  << ": " << database.lastError() << '\n';
            return E_EXIT_NOT_OPENED;
        }
    }
    log.clear();
    const bool complete = dictionary->applyHardwareDependencies(*data, static_cast<unsigned char>(pos));
    for (const CMemoryLogfile::sEntry_t &entry : log.entries())
        out() << (entry.severity == NkrLogfiles::E_SEV_CRITICAL ? "critical: " : "note: ") << entry.text << '\n';
    if (!complete)
        out() << "some of the narrowed objects (206, 207, 231, 235, 236, 237) are missing from the dictionary\n";
    if (dictionary->saveDictionary(output) != 0) {
        err() << "odict: cannot write '" << output << "'\n";
        return E_EXIT_NOT_OPENED;
    }
    out() << "saved " << output << '\n';
    return complete ? E_EXIT_OK : E_EXIT_WARNINGS;
}

int runDevices(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Builds the SQLite device database from an SQL source such as examples/devices.sql:\n"
        "  odict devices build examples/devices.sql -o mx8dd.db"));
    parser.addPositionalArgument(QStringLiteral("build"), QStringLiteral("The action (build)."));
    parser.addPositionalArgument(QStringLiteral("SQL"), QStringLiteral("The SQL source."));
    parser.addOption({{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The database file to write."), QStringLiteral("DB")});
    if (!parseArguments(parser, arguments, 2))
        return E_EXIT_USAGE;
    if (parser.positionalArguments().at(0) != QLatin1String("build") || !parser.isSet(QStringLiteral("output"))) {
        err() << "odict: usage: odict devices build SQL -o DB\n";
        return E_EXIT_USAGE;
    }
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

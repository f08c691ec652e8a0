// export: the firmware C header, the object-id enumeration and the translation source.
#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictEdit.h>
#include <COdictExportDoc.h>
#include <COdictExportFile.h>
#include <COdictExportObjectIds.h>
#include <COdictExportTranslation.h>

#include <QCommandLineParser>
#include <QDate>
#include <QDir>
#include <QFileInfo>

int runExport(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Exports a dictionary:\n"
        "  odict export header FILE -o OUT.h        the firmware's object table header\n"
        "  odict export ids FILE -o DIR             NkrObjectIds.h, the enumeration of all object ids\n"
        "  odict export translation FILE -o DIR     NkrOdictTranslate.h, the display names for translation\n"
        "  odict export doc FILE -o DIR             a DITA documentation package (bookmap and topics)\n"
        "The date in the files is today, or the day of SOURCE_DATE_EPOCH when that is set."));
    parser.addPositionalArgument(QStringLiteral("KIND"), QStringLiteral("header, ids, translation or doc."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The dictionary file."));
    parser.addOption({{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("Output file (header) or directory."), QStringLiteral("OUT")});
    if (!parseArguments(parser, arguments, 2))
        return E_EXIT_USAGE;
    const QString kind = parser.positionalArguments().at(0);
    const QString output = parser.value(QStringLiteral("output"));
    if (output.isEmpty() || (kind != QLatin1String("header") && kind != QLatin1String("ids") && kind != QLatin1String("translation")
                             && kind != QLatin1String("doc"))) {
        err() << "odict: usage: odict export header|ids|translation|doc FILE -o OUT\n";
        return E_EXIT_USAGE;
    }
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(parser.positionalArguments().at(1), &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;

    // The exporters write into existing directories only; the tool creates them for convenience.
    const QString directory = kind == QLatin1String("header") ? QFileInfo(output).absolutePath() : output;
    QDir().mkpath(directory);
    bool written = false;
    QString target;
    if (kind == QLatin1String("header")) {
        COdictExportFile exporter(dictionary.get());
        exporter.setDate(exportDate());
        written = exporter.exportToHeaderfile(output);
        target = output;
    } else if (kind == QLatin1String("ids")) {
        COdictExportObjectIds exporter(dictionary.get());
        exporter.setDate(exportDate());
        written = exporter.exportToEnum(output);
        target = QDir(output).filePath(QStringLiteral("NkrObjectIds.h"));
    } else if (kind == QLatin1String("doc")) {
        COdictExportDoc exporter(dictionary.get());
        exporter.setDate(exportDate());
        written = exporter.exportToPackage(output);
        target = QDir(output).filePath(exporter.mapFileName());
    } else {
        COdictExportTranslation exporter(dictionary.get());
        exporter.setDate(exportDate());
        written = exporter.exportToTranslate(output);
        target = QDir(output).filePath(QStringLiteral("NkrOdictTranslate.h"));
    }
    if (!written) {
        err() << "odict: cannot write '" << target << "'\n";
        return E_EXIT_NOT_OPENED;
    }
    out() << "wrote " << target << '\n';
    return E_EXIT_OK;
}

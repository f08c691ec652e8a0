// export: the firmware C header, the object-id enumeration and the translation source.
#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictEdit.h>
#include <COdictExportDoc.h>
#include <COdictExportEds.h>
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
        "  odict export eds FILE -o OUT.eds         the electronic data sheet for CANopen masters; objects it\n"
        "                                           leaves out are listed and give exit status 1\n"
        "  odict export doc FILE -o DIR             a DITA documentation package (bookmap and topics)\n"
        "The date in the files is today, or the day of SOURCE_DATE_EPOCH when that is set; the header\n"
        "writes it in the short date format of the locale (LC_ALL).\n"
        "Exit status: 0 written, 1 written but the input has warnings or objects were left out,\n"
        "2 not read or not written."));
    parser.addPositionalArgument(QStringLiteral("KIND"), QStringLiteral("header, ids, translation, eds or doc."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The dictionary file."));
    parser.addOption({{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("Output file (header) or directory."), QStringLiteral("OUT")});
    if (!parseArguments(parser, arguments, 2))
        return E_EXIT_USAGE;
    const QString kind = parser.positionalArguments().at(0);
    const QString output = parser.value(QStringLiteral("output"));
    const QStringList kinds{QStringLiteral("header"), QStringLiteral("ids"), QStringLiteral("translation"),
                            QStringLiteral("eds"), QStringLiteral("doc")};
    if (!kinds.contains(kind))
        return usageError(parser, QStringLiteral("unknown export kind '%1'").arg(kind));
    if (output.isEmpty())
        return usageError(parser, QStringLiteral("export needs -o OUT"));
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(parser.positionalArguments().at(1), &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;

    // The exporters write into existing directories only; the tool creates them for convenience.
    const bool toFile = kind == QLatin1String("header") || kind == QLatin1String("eds");
    const QString directory = toFile ? QFileInfo(output).absolutePath() : output;
    QDir().mkpath(directory);
    bool written = false;
    QString target;
    QStringList leftOut;
    if (kind == QLatin1String("header")) {
        COdictExportFile exporter(dictionary.get());
        exporter.setDate(exportDate());
        written = exporter.exportToHeaderfile(output);
        target = output;
    } else if (kind == QLatin1String("eds")) {
        COdictExportEds exporter(dictionary.get());
        exporter.setDate(exportDate());
        written = exporter.exportToEds(output);
        leftOut = exporter.leftOut();
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
    if (!written)
        return writeFailed(target);
    out() << "wrote " << target << '\n';
    for (const QString &text : qAsConst(leftOut))
        out() << "left out: " << text << '\n';
    const int findings = loadFindings(log, parser.positionalArguments().at(1));
    return leftOut.isEmpty() ? findings : E_EXIT_WARNINGS;
}

// values: data files of current values and of parameter sets for a dictionary.
#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictDataFile.h>
#include <COdictEdit.h>
#include <COdictParameterObject.h>
#include <COdictValueObject.h>

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

QString key(const COdictObjectId &uid)
{
    return uid.subId() == 0xFFFFFFFFu ? QStringLiteral("0x%1   ").arg(uid.id(), 8, 16, QLatin1Char('0'))
                                      : QStringLiteral("0x%1:%2").arg(uid.id(), 8, 16, QLatin1Char('0')).arg(uid.subId(), 2, 16, QLatin1Char('0'));
}

int exportValues(const COdict &dictionary, const QString &output, bool parameters, int sets)
{
    COdictDataFile file;
    const QString version = QCoreApplication::applicationVersion();
    bool saved = false;
    int count = 0;
    if (parameters) {
        QList<COdictParameterObject> objects;
        for (const COdictObjectId &uid : dictionary.allObjectUIds()) {
            COdictParameterObject p = dictionary.parameterObject(uid);
            if (!p.isParameter())
                continue;
            for (int set = 0; set < sets; ++set)
                p.setValue(set, p.defaultValue(true).toVariant());
            objects.append(p);
        }
        count = objects.size();
        saved = file.saveParameters(output, objects, QStringLiteral("odict"), version);
    } else {
        QList<COdictValueObject> objects;
        for (const COdictObjectId &uid : dictionary.allObjectUIds()) {
            COdictValueObject v = dictionary.valueObject(uid);
            v.setCurrentValue(v.defaultValue(true));
            objects.append(v);
        }
        count = objects.size();
        saved = file.saveValues(output, objects, QStringLiteral("odict"), version);
    }
    if (!saved)
        return writeFailed(output);
    out() << "wrote " << count << (parameters ? " parameter objects" : " values") << " (defaults) to " << output << '\n';
    return E_EXIT_OK;
}

int importValues(const COdict &dictionary, const QString &input, bool parameters)
{
    COdictDataFile file;
    QString error;
    int unknown = 0;
    int records = 0;
    bool readable = true;
    if (parameters) {
        QList<COdictParameterObject> objects;
        readable = file.loadParameters(input, objects, &error);
        records = objects.size();
        for (const COdictParameterObject &p : objects) {
            const COdictObject *known = dictionary.objectPtr(p.uniqueId());
            if (!known) {
                out() << key(p.uniqueId()) << "  " << p.name() << "  not in the dictionary\n";
                ++unknown;
                continue;
            }
            const QMap<int, QVariant> values = p.values();
            for (auto it = values.cbegin(); it != values.cend(); ++it)
                out() << key(p.uniqueId()) << "  " << known->name() << "[" << it.key() << "] = "
                      << known->valueToStr(CVariant::fromVariant(it.value(), known->dataType()), true) << '\n';
        }
    } else {
        QList<COdictValueObject> objects;
        readable = file.loadValues(input, objects, &error);
        records = objects.size();
        for (const COdictValueObject &v : objects) {
            const COdictObject *known = dictionary.objectPtr(v.uniqueId());
            if (!known) {
                out() << key(v.uniqueId()) << "  " << v.name() << "  not in the dictionary\n";
                ++unknown;
                continue;
            }
            out() << key(v.uniqueId()) << "  " << known->name() << " = "
                  << known->valueToStr(CVariant::fromVariant(v.currentValue(), known->dataType()), true) << '\n';
        }
    }
    if (!readable && records == 0) {
        err() << "odict: " << fileError(QStringLiteral("cannot read"), input, error) << '\n';
        return E_EXIT_NOT_OPENED;
    }
    out() << records << " records, " << unknown << " not in the dictionary"
          << (readable ? QString() : QStringLiteral(", some unreadable: ") + error) << '\n';
    return readable && unknown == 0 ? E_EXIT_OK : E_EXIT_WARNINGS;
}

} // namespace

int runValues(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Data files of current values or parameter sets for a dictionary:\n"
        "  odict values export DICT -o DATA [--parameters [--sets N]]   writes the default values\n"
        "  odict values import DICT DATA [--parameters]                 lists the values of a data file\n"
        "Exit status: 0 done, 1 import found unknown or unreadable records (or the dictionary has\n"
        "warnings), 2 a file could not be read or written."));
    parser.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("export or import."));
    parser.addPositionalArgument(QStringLiteral("DICT"), QStringLiteral("The dictionary file."));
    parser.addPositionalArgument(QStringLiteral("DATA"), QStringLiteral("The data file to read (import)."), QStringLiteral("[DATA]"));
    parser.addOptions({
        {{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The data file to write (export)."), QStringLiteral("DATA")},
        {QStringLiteral("parameters"), QStringLiteral("Parameter sets instead of current values.")},
        {QStringLiteral("sets"), QStringLiteral("Number of parameter sets to fill (export, 1..63)."), QStringLiteral("N"), QStringLiteral("1")},
    });
    if (!parseArguments(parser, arguments, 2, 3))
        return E_EXIT_USAGE;
    const QStringList positional = parser.positionalArguments();
    const QString action = positional.at(0);
    const bool isExport = action == QLatin1String("export");
    if (!isExport && action != QLatin1String("import"))
        return usageError(parser, QStringLiteral("unknown values action '%1'").arg(action));
    if (positional.size() != (isExport ? 2 : 3))
        return usageError(parser, isExport ? QStringLiteral("values export takes DICT and -o DATA")
                                           : QStringLiteral("values import takes DICT and DATA"));
    if (isExport && !parser.isSet(QStringLiteral("output")))
        return usageError(parser, QStringLiteral("values export needs -o DATA"));
    bool setsOk = false;
    const int sets = parser.value(QStringLiteral("sets")).toInt(&setsOk);
    if (!setsOk || sets < 1 || sets > 63)
        return usageError(parser, QStringLiteral("--sets needs a number from 1 to 63, not '%1'").arg(parser.value(QStringLiteral("sets"))));
    const bool parameters = parser.isSet(QStringLiteral("parameters"));
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(positional.at(1), &log, parameters ? NkrOdict::E_OT_PARAMETER : NkrOdict::E_OT_VALUE);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;
    const int findings = loadFindings(log, positional.at(1));
    const int rc = isExport ? exportValues(*dictionary, parser.value(QStringLiteral("output")), parameters, sets)
                            : importValues(*dictionary, positional.at(2), parameters);
    return rc == E_EXIT_OK ? findings : rc;
}

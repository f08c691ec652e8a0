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
    if (!saved) {
        err() << "odict: cannot write '" << output << "'\n";
        return E_EXIT_NOT_OPENED;
    }
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
        err() << "odict: cannot read '" << input << "': " << error << '\n';
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
        "Exit status of import: 0 all records known and readable, 1 otherwise, 2 not opened."));
    parser.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("export or import."));
    parser.addPositionalArgument(QStringLiteral("DICT"), QStringLiteral("The dictionary file."));
    parser.addOptions({
        {{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The data file to write (export)."), QStringLiteral("DATA")},
        {QStringLiteral("parameters"), QStringLiteral("Parameter sets instead of current values.")},
        {QStringLiteral("sets"), QStringLiteral("Number of parameter sets to fill (export, 1..63)."), QStringLiteral("N"), QStringLiteral("1")},
    });
    parser.addHelpOption();
    if (!parser.parse(arguments)) {
        err() << "odict: " << parser.errorText() << '\n';
        return E_EXIT_USAGE;
    }
    const QStringList positional = parser.positionalArguments();
    const bool isExport = positional.size() == 2 && positional.at(0) == QLatin1String("export");
    const bool isImport = positional.size() == 3 && positional.at(0) == QLatin1String("import");
    bool setsOk = false;
    const int sets = parser.value(QStringLiteral("sets")).toInt(&setsOk);
    if (parser.isSet(QStringLiteral("help")) || (!isExport && !isImport) || (isExport && !parser.isSet(QStringLiteral("output")))
        || !setsOk || sets < 1 || sets > 63) {
        (parser.isSet(QStringLiteral("help")) ? out() : err()) << parser.helpText();
        return parser.isSet(QStringLiteral("help")) ? E_EXIT_OK : E_EXIT_USAGE;
    }
    const bool parameters = parser.isSet(QStringLiteral("parameters"));
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(positional.at(1), &log, parameters ? NkrOdict::E_OT_PARAMETER : NkrOdict::E_OT_VALUE);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;
    return isExport ? exportValues(*dictionary, parser.value(QStringLiteral("output")), parameters, sets)
                    : importValues(*dictionary, positional.at(2), parameters);
}

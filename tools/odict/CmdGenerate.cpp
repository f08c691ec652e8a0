// generate: writes a realistic dictionary built from a seed, for benchmarks and tests.
#include "Commands.h"

#include <COdictEdit.h>
#include <COdictGenerator.h>

#include <QCommandLineParser>

using namespace NkrOdict;

namespace {

const struct {
    const char *name;
    eObjectType_t kind;
} kinds[] = {{"std", E_OT_STD}, {"value", E_OT_VALUE}, {"editor", E_OT_EDITOR}, {"parameter", E_OT_PARAMETER}};

} // namespace

int runGenerate(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Writes a generated dictionary: groups, objects with sub-objects, enumerations and bit sets, "
        "ids in every range. The same seed gives the same file."));
    const QCommandLineOption objectsOption(QStringLiteral("objects"), QStringLiteral("Number of objects (default 1000)."),
                                           QStringLiteral("N"), QStringLiteral("1000"));
    const QCommandLineOption seedOption(QStringLiteral("seed"), QStringLiteral("Seed of the generator (default 1)."),
                                        QStringLiteral("S"), QStringLiteral("1"));
    const QCommandLineOption kindOption(QStringLiteral("kind"),
                                        QStringLiteral("Object kind: std, value, editor (default) or parameter."),
                                        QStringLiteral("KIND"), QStringLiteral("editor"));
    const QCommandLineOption outputOption({QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("The file to write."),
                                          QStringLiteral("FILE"));
    parser.addOptions({objectsOption, seedOption, kindOption, outputOption});
    if (!parseArguments(parser, arguments, 0))
        return E_EXIT_USAGE;

    bool objectsOk = false;
    bool seedOk = false;
    const int objects = parser.value(objectsOption).toInt(&objectsOk);
    const quint64 seed = parser.value(seedOption).toULongLong(&seedOk, 0);
    eObjectType_t kind = E_OT_UNKNOWN;
    for (const auto &k : kinds) {
        if (parser.value(kindOption) == QLatin1String(k.name))
            kind = k.kind;
    }
    if (!objectsOk || objects < 0 || !seedOk || kind == E_OT_UNKNOWN || !parser.isSet(outputOption)) {
        err() << "odict: generate needs --objects N (0 or more), --seed S, --kind std|value|editor|parameter and -o FILE\n";
        return E_EXIT_USAGE;
    }

    COdictEdit dictionary(kind);
    COdictGenerator generator(seed);
    if (!generator.generate(dictionary, objects)) {
        err() << "odict: the generator refused to build the dictionary\n";
        return E_EXIT_WARNINGS;
    }
    const QString target = parser.value(outputOption);
    if (dictionary.saveDictionary(target) != 0) {
        err() << "odict: cannot write '" << target << "'\n";
        return E_EXIT_NOT_OPENED;
    }
    out() << "wrote " << target << " (" << objects << " objects, " << dictionary.allObjectUIds().size()
          << " objects and sub-objects in all)\n";
    return E_EXIT_OK;
}

#include "Commands.h"

#include <CDataTypeParser.h>
#include <CStr.h>
#include <CUnitParser.h>
#include <CVariant.h>
#include <CXmlAbstractKiroFile.h>

#include <QCommandLineParser>
#include <QTemporaryDir>

namespace {

struct sCheck_t {
    const char *what;
    bool ok;
};

bool xmlHeadRoundTrip()
{
    QTemporaryDir dir;
    if (!dir.isValid())
        return false;
    const QString path = dir.filePath(QStringLiteral("selfcheck.xml"));
    CXMLMetaData meta(QDate(2026, 11, 21), QTime(13, 45, 10), QStringLiteral("odict"),
                      QStringLiteral("self check"), NTypes::uVersion_t(0x011C002A));
    CXmlAbstractKiroFile writer;
    if (!writer.create(QStringLiteral("KiroObjectDictionary"), QStringLiteral("1.2.0"), meta)
        || !writer.save(path))
        return false;
    CXmlAbstractKiroFile reader;
    QString error;
    return reader.open(path, QStringLiteral("KiroObjectDictionary"), QStringLiteral("1.2.0"), &error) == 0
        && reader.metaData() == meta;
}

} // namespace

int runSelfCheck(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Checks the platform layer and prints one line per check.\nExit status: 0 passed, 1 a check failed."));
    if (!parseArguments(parser, arguments, 0))
        return E_EXIT_USAGE;

    bool roundTrip = true;
    for (quint32 t = 1; t < NTypes::E_TYPE_COUNT; ++t) {
        const auto type = NTypes::eTypes_t(t);
        roundTrip = roundTrip && CDataTypeParser::strToType(CDataTypeParser::typeToStr(type)) == type;
    }
    const sCheck_t checks[] = {
        {"type names round-trip", roundTrip},
        {"I32 limits", CDataTypeParser::minTypeValue(NTypes::E_I32).toI64() == -2147483648LL
                           && CDataTypeParser::maxTypeValue(NTypes::E_I32).toI64() == 2147483647LL},
        {"hex text parses", CVariant(QStringLiteral("0x1F"), NTypes::E_U8).toU64() == 0x1F},
        {"version text", CStr::versionToString(NTypes::uVersion_t(0x011C002A)) == QLatin1String("1.28.42")},
        {"rotary unit maps to linear", CUnitParser::toLinear(CUnitParser::textToUnit(QStringLiteral("rpm")))
                                           == CUnitParser::textToUnit(QStringLiteral("mm/s"))},
        {"XML head round-trip", xmlHeadRoundTrip()},
    };
    bool all = true;
    for (const sCheck_t &c : checks) {
        out() << (c.ok ? "ok      " : "FAILED  ") << c.what << '\n';
        all = all && c.ok;
    }
    out() << (all ? "platform self-check passed\n" : "platform self-check FAILED\n");
    return all ? E_EXIT_OK : E_EXIT_WARNINGS;
}

// info, check and save: looking at a dictionary file and normalising it.
#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictCanOpen.h>
#include <COdictCheck.h>
#include <COdictEdit.h>
#include <COdictObject.h>
#include <COdictObjectTree.h>
#include <CStr.h>

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QVector>

namespace {

struct sRange_t {
    const char *label;
    unsigned int first;
    unsigned int last;
};

// The id areas of a drive dictionary.
const sRange_t ranges[] = {
    {"manufacturer objects", 0x0000, 0x0FFF},
    {"communication (DS301)", 0x1000, 0x1FFF},
    {"manufacturer area 0x2000", 0x2000, 0x5FFF},
    {"drive profile (DS402)", 0x6000, 0x60FF},
    {"other", 0x6100, 0xFFFFFFFE},
};

struct sStatistics_t {
    int groups = 0;
    int objects = 0;
    int subObjects = 0;
    int maxGroupDepth = 0;
};

sStatistics_t statistics(const COdictNode *dictionary)
{
    sStatistics_t s;
    if (!dictionary)
        return s;
    QVector<QPair<const COdictNode *, int>> pending{{dictionary, 0}};
    while (!pending.isEmpty()) {
        const auto [node, depth] = pending.takeLast();
        for (const COdictNode *child : node->children()) {
            int childDepth = depth;
            switch (child->dataRef().type()) {
            case NkrOdict::E_IT_GROUP:
                ++s.groups;
                childDepth = depth + 1;
                s.maxGroupDepth = qMax(s.maxGroupDepth, childDepth);
                break;
            case NkrOdict::E_IT_OBJECT:
                ++s.objects;
                break;
            case NkrOdict::E_IT_SUBOBJECT:
                ++s.subObjects;
                break;
            default:
                break;
            }
            pending.append({child, childDepth});
        }
    }
    return s;
}

const char *severityText(NkrLogfiles::eSeverity_t severity)
{
    switch (severity) {
    case NkrLogfiles::E_SEV_WARNING:
        return "warning";
    case NkrLogfiles::E_SEV_CRITICAL:
        return "critical";
    default:
        return "info";
    }
}

} // namespace

int runInfo(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints a summary of a dictionary file.\nExit status: 0 done, 1 the file has warnings, 2 not read."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The dictionary file."));
    if (!parseArguments(parser, arguments, 1))
        return E_EXIT_USAGE;
    const QString file = parser.positionalArguments().at(0);
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(file, &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;

    const COdictObjectTree *tree = dictionary->objectTree();
    const COdictNode *top = tree->dictionaryNode();
    const sStatistics_t s = statistics(top);
    const CXMLMetaData meta = dictionary->odictMetaData();
    out() << "file:          " << file << '\n'
          << "name:          " << (top ? top->dataRef().name() : QString()) << '\n'
          << "version:       " << CStr::versionToString(meta.version()) << '\n'
          << "date:          " << meta.date().toString(Qt::ISODate) << ' ' << meta.time().toString(QStringLiteral("HH:mm:ss")) << '\n'
          << "author:        " << meta.author() << '\n'
          << "history:       " << dictionary->odictHistory().size() << " versions\n"
          << "structures:    " << dictionary->odictDataStructureList().size() << '\n'
          << "groups:        " << s.groups << " (nested up to " << s.maxGroupDepth << " deep)\n"
          << "objects:       " << s.objects << '\n'
          << "sub-objects:   " << s.subObjects << '\n';

    // Objects per id area, from the id index (ordered: plain ids first).
    QMap<int, QPair<unsigned int, unsigned int>> extent; // area -> (lowest, highest)
    QMap<int, int> counts;
    for (const COdictObjectId &key : tree->allObjectUIds()) {
        if (key.subId() != 0xFFFFFFFFu)
            continue;
        const unsigned int id = key.id();
        for (int r = 0; r < int(sizeof(ranges) / sizeof(ranges[0])); ++r) {
            if (id < ranges[r].first || id > ranges[r].last)
                continue;
            auto e = extent.find(r);
            if (e == extent.end())
                extent.insert(r, {id, id});
            else
                e->second = qMax(e->second, id);
            ++counts[r];
            break;
        }
    }
    out() << "id ranges:\n";
    for (auto it = extent.cbegin(); it != extent.cend(); ++it) {
        out() << QStringLiteral("  %1 objects  0x%2 .. 0x%3  %4\n")
                     .arg(counts.value(it.key()), 5)
                     .arg(it.value().first, 4, 16, QLatin1Char('0'))
                     .arg(it.value().second, 4, 16, QLatin1Char('0'))
                     .arg(QLatin1String(ranges[it.key()].label));
    }
    const COdictCanOpenMap canOpen(dictionary.get());
    out() << "CANopen:       " << canOpen.placed().size() << " objects at an index of their own, "
          << canOpen.collisions().size() << " sharing one, " << canOpen.withoutIndex().size() << " without\n";
    const int warnings = findingCount(log);
    if (warnings > 0)
        out() << "warnings:      " << warnings << " (run 'odict check' to list them)\n";
    return warnings > 0 ? E_EXIT_WARNINGS : E_EXIT_OK;
}

int runCheck(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Loads a dictionary file, checks it and prints every warning and critical message.\n"
        "Exit status: 0 clean, 1 with warnings or critical messages, 2 not read."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The dictionary file."));
    parser.addOption({QStringLiteral("format"), QStringLiteral("text (default), or json: a JSON array with one record per finding."),
                      QStringLiteral("FORMAT"), QStringLiteral("text")});
    if (!parseArguments(parser, arguments, 1))
        return E_EXIT_USAGE;
    const QString format = parser.value(QStringLiteral("format"));
    if (format != QLatin1String("text") && format != QLatin1String("json")) {
        err() << "odict: unknown format '" << format << "' (text or json)\n";
        return E_EXIT_USAGE;
    }
    const QString file = parser.positionalArguments().at(0);
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(file, &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;
    // The loader's messages first (rule "load", no object), then the checks of the library.
    QList<sOdictFinding_t> findings;
    for (const CMemoryLogfile::sEntry_t &entry : log.entries()) {
        if (entry.severity != NkrLogfiles::E_SEV_INFO)
            findings.append({QStringLiteral("load"), entry.severity, COdictObject::NoId, COdictObject::NoId, entry.text});
    }
    findings += COdictCheck::check(dictionary.get());
    int problems = 0;
    QStringList records;
    for (const sOdictFinding_t &finding : qAsConst(findings)) {
        if (format == QLatin1String("json")) {
            const auto number = [](unsigned int n) { return n == COdictObject::NoId ? QJsonValue() : QJsonValue(qint64(n)); };
            const QJsonObject record{{QStringLiteral("rule"), finding.rule},
                                     {QStringLiteral("severity"), QLatin1String(severityText(finding.severity))},
                                     {QStringLiteral("id"), number(finding.id)},
                                     {QStringLiteral("subId"), number(finding.subId)},
                                     {QStringLiteral("message"), finding.message}};
            records << QString::fromUtf8(QJsonDocument(record).toJson(QJsonDocument::Compact));
        }
        if (finding.severity == NkrLogfiles::E_SEV_INFO)
            continue; // only in the JSON records
        if (format == QLatin1String("text"))
            out() << severityText(finding.severity) << ": " << finding.message << '\n';
        ++problems;
    }
    if (format == QLatin1String("json"))
        out() << (records.isEmpty() ? QStringLiteral("[]") : QStringLiteral("[\n") + records.join(QStringLiteral(",\n")) + QStringLiteral("\n]")) << '\n';
    else
        out() << file << ": " << (problems == 0 ? QStringLiteral("clean") : QStringLiteral("%1 problem(s)").arg(problems)) << '\n';
    return problems == 0 ? E_EXIT_OK : E_EXIT_WARNINGS;
}

int runSave(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Loads a dictionary file and saves it again, normalised.\n"
        "Exit status: 0 saved, 1 saved but the input has warnings, 2 not read or not written."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("The dictionary file to read."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The file to write."));
    if (!parseArguments(parser, arguments, 2))
        return E_EXIT_USAGE;
    CMemoryLogfile log;
    const auto dictionary = loadDictionaryFile(parser.positionalArguments().at(0), &log);
    if (!dictionary)
        return E_EXIT_NOT_OPENED;
    const int findings = loadFindings(log, parser.positionalArguments().at(0));
    const QString target = parser.positionalArguments().at(1);
    const int logged = log.entries().size();
    if (dictionary->saveDictionary(target) != 0) {
        // The library's own reason, when it logs one, is the one to show.
        QString reason;
        for (int i = logged; i < log.entries().size(); ++i) {
            if (log.entries().at(i).severity != NkrLogfiles::E_SEV_INFO)
                reason = log.entries().at(i).text;
        }
        return writeFailed(target, reason);
    }
    out() << "saved " << target << '\n';
    return findings;
}

// diff: what changed between two versions of a dictionary.
#include "Commands.h"

#include <CMemoryLogfile.h>
#include <COdictDiff.h>
#include <COdictEdit.h>

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const char *const groupTitles[] = {"Meta data", "History", "Data structures", "Added", "Removed", "Moved", "Renamed", "Changed"};

QString shown(const QString &value)
{
    if (value.isNull())
        return QStringLiteral("(none)");
    return value.isEmpty() ? QStringLiteral("\"\"") : value;
}

QString jsonRecord(const COdictDiff::sChange_t &c)
{
    const auto number = [](unsigned int n) { return n == 0xFFFFFFFFu ? QJsonValue() : QJsonValue(qint64(n)); };
    const auto text = [](const QString &s) { return s.isNull() ? QJsonValue() : QJsonValue(s); };
    const QJsonObject record{{QStringLiteral("kind"), COdictDiff::kindName(c.kind)},
                             {QStringLiteral("id"), number(c.id)},
                             {QStringLiteral("subId"), number(c.subId)},
                             {QStringLiteral("field"), c.field},
                             {QStringLiteral("old"), text(c.oldValue)},
                             {QStringLiteral("new"), text(c.newValue)}};
    return QString::fromUtf8(QJsonDocument(record).toJson(QJsonDocument::Compact));
}

/// One line of the text report; the group title already says the kind.
QString textLine(const COdictDiff::sChange_t &c)
{
    switch (c.kind) {
    case COdictDiff::E_DC_ADDED:
    case COdictDiff::E_DC_REMOVED:
        return c.label;
    case COdictDiff::E_DC_MOVED:
    case COdictDiff::E_DC_RENAMED:
        return QStringLiteral("%1: %2 -> %3").arg(c.label, shown(c.oldValue), shown(c.newValue));
    case COdictDiff::E_DC_CHANGED:
        return QStringLiteral("%1 %2: %3 -> %4").arg(c.label, c.field, shown(c.oldValue), shown(c.newValue));
    default:
        return QStringLiteral("%1: %2 -> %3").arg(c.field, shown(c.oldValue), shown(c.newValue));
    }
}

} // namespace

int runDiff(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Compares two dictionary files object by object (by id and sub-id) and lists what was added,\n"
        "removed, moved to another group, renamed or changed, and changes of the meta data, history\n"
        "and data structures.\n"
        "Exit status: 0 equal, 1 different, 2 a file could not be read."));
    parser.addPositionalArgument(QStringLiteral("OLD"), QStringLiteral("The older dictionary file."));
    parser.addPositionalArgument(QStringLiteral("NEW"), QStringLiteral("The newer dictionary file."));
    parser.addOption({QStringLiteral("format"), QStringLiteral("text (default, grouped by kind of change), or json: a JSON array with one record per change."),
                      QStringLiteral("FORMAT"), QStringLiteral("text")});
    if (!parseArguments(parser, arguments, 2))
        return E_EXIT_USAGE;
    const QString format = parser.value(QStringLiteral("format"));
    if (format != QLatin1String("text") && format != QLatin1String("json")) {
        err() << "odict: unknown format '" << format << "' (text or json)\n";
        return E_EXIT_USAGE;
    }
    const QStringList files = parser.positionalArguments();
    CMemoryLogfile oldLog, newLog;
    const auto older = loadDictionaryFile(files.at(0), &oldLog);
    if (!older)
        return E_EXIT_NOT_OPENED;
    const auto newer = loadDictionaryFile(files.at(1), &newLog);
    if (!newer)
        return E_EXIT_NOT_OPENED;

    const QList<COdictDiff::sChange_t> changes = COdictDiff::compare(older.get(), newer.get());
    if (format == QLatin1String("json")) {
        QStringList records;
        for (const COdictDiff::sChange_t &c : changes)
            records << jsonRecord(c);
        out() << (records.isEmpty() ? QStringLiteral("[]") : QStringLiteral("[\n") + records.join(QStringLiteral(",\n")) + QStringLiteral("\n]")) << '\n';
    } else {
        for (int kind = COdictDiff::E_DC_METADATA; kind <= COdictDiff::E_DC_CHANGED; ++kind) {
            QStringList lines;
            for (const COdictDiff::sChange_t &c : changes) {
                if (c.kind == kind)
                    lines << QStringLiteral("  ") + textLine(c);
            }
            if (!lines.isEmpty())
                out() << groupTitles[kind] << " (" << lines.size() << ")\n" << lines.join(QLatin1Char('\n')) << "\n\n";
        }
        out() << files.at(0) << " -> " << files.at(1) << ": "
              << (changes.isEmpty() ? QStringLiteral("equal") : QStringLiteral("%1 change(s)").arg(changes.size())) << '\n';
    }
    return changes.isEmpty() ? E_EXIT_OK : E_EXIT_WARNINGS;
}

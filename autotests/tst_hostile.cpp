// Hostile and careless inputs for every reader of the document family: each load runs in a
// forked child under a time limit and (without sanitizers) an address-space limit, and must
// refuse the file with a message that names it once.
#include "CMemoryLogfile.h"
#include "COdict.h"
#include "COdictDataFile.h"
#include "COdictEdit.h"
#include "COdictExportEds.h"
#include "COdictExportFile.h"
#include "COdictExportObjectIds.h"
#include "CXmlAbstractKiroFile.h"
#include "CXmlInputCheck.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define KRODICT_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KRODICT_ASAN 1
#endif
#endif

namespace {

using namespace NkrOdict;

/// The readers of the family, each reading one file and answering (read, message).
enum eReader_t { E_DICTIONARY, E_PARAMETER_DICTIONARY, E_PARAMETER_SETS, E_VALUES, E_PARAMETERS, E_HEAD, E_READER_COUNT };

const char *const readerNames[E_READER_COUNT] = {"dictionary", "parameter dictionary", "parameter sets",
                                                 "data file (values)", "data file (parameters)", "file head"};

QString rootOf(eReader_t reader)
{
    switch (reader) {
    case E_PARAMETER_SETS:
        return QStringLiteral("KiroParameterSets");
    case E_VALUES:
    case E_PARAMETERS:
        return COdictDataFile::fileType;
    default:
        return QStringLiteral("KiroObjectDictionary");
    }
}

struct sOutcome_t {
    bool read = false;
    int headResult = 0; ///< CXmlAbstractKiroFile::open's result (file head only)
    QString message;
    QStringList qtMessages; ///< anything Qt would have printed
};

QStringList *capturedMessages = nullptr;

void captureMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (capturedMessages)
        capturedMessages->append(text);
}

sOutcome_t readWith(eReader_t reader, const QString &path)
{
    sOutcome_t o;
    capturedMessages = &o.qtMessages;
    qInstallMessageHandler(captureMessage);
    const auto lastWarning = [](const COdict &dict) {
        return dict.warningMessages().isEmpty() ? QString() : dict.warningMessages().last();
    };
    switch (reader) {
    case E_DICTIONARY: {
        COdict dict(E_OT_EDITOR);
        o.read = dict.loadDictionary(path) == 0;
        o.message = lastWarning(dict);
        break;
    }
    case E_PARAMETER_DICTIONARY:
    case E_PARAMETER_SETS: {
        COdict dict(E_OT_PARAMETER);
        if (reader == E_PARAMETER_SETS)
            dict.loadParameterSets(path);
        else
            dict.loadParameterDictionary(path);
        o.read = dict.isValid();
        o.message = lastWarning(dict);
        break;
    }
    case E_VALUES: {
        COdictDataFile file;
        QList<COdictValueObject> objects;
        o.read = file.loadValues(path, objects, &o.message);
        break;
    }
    case E_PARAMETERS: {
        COdictDataFile file;
        QList<COdictParameterObject> objects;
        o.read = file.loadParameters(path, objects, &o.message);
        break;
    }
    default: {
        CXmlAbstractKiroFile file;
        o.headResult = file.open(path, rootOf(reader), QStringLiteral("1.2.0"), &o.message);
        o.read = o.headResult == 0;
        break;
    }
    }
    qInstallMessageHandler(nullptr);
    capturedMessages = nullptr;
    return o;
}

struct sChildRun_t {
    bool finished = false; ///< ended normally within the time limit
    sOutcome_t outcome;
    long peakKiB = 0;
    qint64 milliseconds = 0;
};

constexpr int timeLimitSeconds = 30;
constexpr long memoryLimitMiB = 2048; // address space of the child (without sanitizers)
#ifdef KRODICT_ASAN
constexpr long peakLimitMiB = 3072;   // shadow memory and redzones come on top
#else
constexpr long peakLimitMiB = 1024;
#endif

/// Runs readWith() in a forked child, so that a crash, a hang or a runaway allocation fails the
/// row instead of the test program.
sChildRun_t readInChild(eReader_t reader, const QString &path)
{
    sChildRun_t run;
    int fds[2];
    if (::pipe(fds) != 0)
        return run;
    QElapsedTimer timer;
    timer.start();
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(fds[0]);
        ::alarm(timeLimitSeconds);
#ifndef KRODICT_ASAN
        const rlimit limit{rlim_t(memoryLimitMiB) << 20, rlim_t(memoryLimitMiB) << 20};
        ::setrlimit(RLIMIT_AS, &limit);
#endif
        const sOutcome_t o = readWith(reader, path);
        QByteArray report;
        QDataStream stream(&report, QIODevice::WriteOnly);
        stream << o.read << o.headResult << o.message << o.qtMessages;
        for (qint64 written = 0; written < report.size();) {
            const ssize_t n = ::write(fds[1], report.constData() + written, size_t(report.size() - written));
            if (n <= 0)
                break;
            written += n;
        }
        ::_exit(0);
    }
    ::close(fds[1]);
    QByteArray report;
    char buffer[4096];
    for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;)
        report.append(buffer, int(n));
    ::close(fds[0]);
    int status = 0;
    rusage usage{};
    ::wait4(pid, &status, 0, &usage);
    run.milliseconds = timer.elapsed();
    run.peakKiB = usage.ru_maxrss;
    run.finished = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    QDataStream stream(report);
    stream >> run.outcome.read >> run.outcome.headResult >> run.outcome.message >> run.outcome.qtMessages;
    return run;
}

QByteArray document(const QByteArray &body, const QByteArray &prolog = QByteArray())
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + prolog + "<@ROOT@ version=\"1.2.0\">\n<Name>D</Name>\n" + body
        + "\n</@ROOT@>\n";
}

/// \a depth opening tags \a open, then \a inner, then the closing tags.
QByteArray nested(int depth, const QByteArray &open, const QByteArray &close, const QByteArray &inner = "x")
{
    QByteArray text;
    text.reserve(depth * (open.size() + close.size()) + inner.size());
    for (int i = 0; i < depth; ++i)
        text += open;
    text += inner;
    for (int i = 0; i < depth; ++i)
        text += close;
    return text;
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}

} // namespace

class tst_Hostile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void everyReaderRefuses_data()
    {
        QTest::addColumn<QString>("kind");       // "content", or a path kind: fifo, device, directory, ...
        QTest::addColumn<QByteArray>("content"); // @ROOT@ stands for the reader's document type
        QTest::addColumn<int>("headResult");     // CXmlAbstractKiroFile::open's result
        QTest::addColumn<QString>("reason");     // pattern of the message after "cannot open '<file>': "

        // Ten levels of ten references each: 10^10 copies of "lol" if expanded.
        QByteArray laugh = "<!DOCTYPE r [<!ENTITY e0 \"lol\">";
        for (int level = 1; level <= 10; ++level)
            laugh += QStringLiteral("<!ENTITY e%1 \"%2\">").arg(level).arg(QStringLiteral("&e%1;").arg(level - 1).repeated(10)).toUtf8();
        laugh += "]>\n";
        static const char withNul[] = "<Object id=\"1\"><Name>a\0b</Name></Object>";
        const QByteArray quadratic = "<!DOCTYPE r [<!ENTITY big \"" + QByteArray(50000, 'x') + "\">]>\n";
        const QString entities = QStringLiteral("line \\d+, column \\d+: entity declarations are not accepted");
        const QString deep = QStringLiteral("line \\d+, column \\d+: elements nested deeper than the limit of \\d+ levels");
        const QString encoding = QStringLiteral("line \\d+, column \\d+: .+"); // Qt places decoding errors loosely
        const int deepLevels = 100000;

        QTest::newRow("entity bomb, exponential") << "content" << document("<Object id=\"1\"><Name>&e10;</Name></Object>", laugh)
                                                  << 2 << entities;
        QTest::newRow("entity bomb, quadratic") << "content" << document("<Object id=\"1\"><Name>" + QByteArray("&big;").repeated(20000) + "</Name></Object>", quadratic)
                                                << 2 << entities;
        QTest::newRow("external entity") << "content" << document("<Object id=\"1\"><Name>&e;</Name></Object>", "<!DOCTYPE r [<!ENTITY e SYSTEM \"/etc/passwd\">]>\n")
                                         << 2 << entities;
        QTest::newRow("parameter entity") << "content" << document("", "<!DOCTYPE r [<!ENTITY % p \"<!ENTITY e 'x'>\"> %p;]>\n")
                                          << 2 << QStringLiteral(".+");
        QTest::newRow("deep object field") << "content" << document("<Object id=\"1\"><Name>" + nested(deepLevels, "<b>", "</b>") + "</Name></Object>")
                                           << 2 << deep;
        QTest::newRow("deep group name") << "content" << document("<Group><Name>" + nested(deepLevels, "<b>", "</b>") + "</Name></Group>")
                                         << 2 << deep;
        QTest::newRow("deep groups") << "content" << document(nested(deepLevels, "<Group><Name>G</Name>", "</Group>")) << 2 << deep;
        QTest::newRow("deep file head") << "content" << document("<Header><Date>" + nested(deepLevels, "<b>", "</b>") + "</Date></Header>")
                                        << 2 << deep;
        QTest::newRow("deep data records") << "content" << document("<Data>" + nested(deepLevels, "<Object id=\"1\"><Type>U8</Type>", "</Object>", "") + "</Data>")
                                           << 2 << deep;
        QTest::newRow("deep parameter entries") << "content" << document("<Object id=\"1\"><Name>P</Name><Param><Value id=\"0\">" + nested(deepLevels, "<v>", "</v>") + "</Value></Param></Object>")
                                                << 2 << deep;
        QTest::newRow("huge text") << "content" << document("<Object id=\"1\"><Name>" + QByteArray(int(CXmlInputCheck::maxTextSize) + 1, 'n') + "</Name></Object>")
                                   << 2 << QStringLiteral("line 4, column \\d+: text longer than the limit of 67108864 characters");
        QTest::newRow("huge attribute") << "content" << document("<Object id=\"" + QByteArray(int(CXmlInputCheck::maxAttributeSize) + 1, '1') + "\"><Name>A</Name></Object>")
                                        << 2 << QStringLiteral("line 4, column \\d+: attribute 'id' longer than the limit of 1048576 characters");
        QTest::newRow("invalid UTF-8") << "content" << document("<Object id=\"1\"><Name>\xff\xfe</Name></Object>") << 2 << encoding;
        QTest::newRow("NUL byte") << "content" << document(QByteArray(withNul, sizeof withNul - 1)) << 2 << encoding;
        QTest::newRow("lone surrogate, UTF-8") << "content" << document("<Object id=\"1\"><Name>\xed\xa0\x80</Name></Object>") << 2 << encoding;
        QTest::newRow("lone surrogate, reference") << "content" << document("<Object id=\"1\"><Name>&#xD800;</Name></Object>") << 2
                                                   << QStringLiteral("line 4, column \\d+: (?:Invalid character reference\\.|reference to invalid character number)"); // Qt's words, expat's
        QTest::newRow("control character") << "content" << document("<Object id=\"1\"><Name>\x01</Name></Object>") << 2 << encoding;
        const QByteArray whole = document("<Object id=\"1\"><Name>A</Name><Type>U8</Type></Object>");
        for (const int cut : {0, 10, 45, 70, 95, int(whole.size()) - 3})
            QTest::addRow("truncated at %d", cut) << "content" << whole.left(cut) << 2 << QStringLiteral("line \\d+, column \\d+: .+");
        QTest::newRow("missing") << "missing" << QByteArray() << 1 << QStringLiteral("No such file or directory");
        QTest::newRow("empty name") << "empty name" << QByteArray() << 1 << QStringLiteral("No such file or directory");
        QTest::newRow("directory") << "directory" << QByteArray() << 1 << QStringLiteral("Is a directory");
        QTest::newRow("FIFO") << "fifo" << QByteArray() << 1 << QStringLiteral("not a regular file");
        QTest::newRow("/dev/zero") << "/dev/zero" << QByteArray() << 1 << QStringLiteral("not a regular file");
        QTest::newRow("/dev/null") << "/dev/null" << QByteArray() << 1 << QStringLiteral("not a regular file");
        QTest::newRow("larger than the input limit") << "sparse" << QByteArray() << 1
                                                     << QStringLiteral("larger than the limit of 268435456 bytes");
    }

    void everyReaderRefuses()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, content);
        QFETCH(int, headResult);
        QFETCH(QString, reason);

        for (int r = 0; r < E_READER_COUNT; ++r) {
            const auto reader = eReader_t(r);
            QString file = path(QStringLiteral("input.xml"));
            QFile::remove(file);
            if (kind == QLatin1String("content")) {
                QVERIFY(writeFile(file, QByteArray(content).replace("@ROOT@", rootOf(reader).toUtf8())));
            } else if (kind == QLatin1String("empty name")) {
                file.clear();
            } else if (kind == QLatin1String("directory")) {
                file = m_dir.path();
            } else if (kind == QLatin1String("fifo")) {
                file = path(QStringLiteral("fifo"));
                QVERIFY(QFile::exists(file) || ::mkfifo(QFile::encodeName(file).constData(), 0600) == 0);
            } else if (kind == QLatin1String("sparse")) {
                QFile sparse(file);
                QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(CXmlInputCheck::maxInputSize + 1));
            } else if (kind.startsWith(QLatin1Char('/'))) {
                file = kind;
            }

            const sChildRun_t run = readInChild(reader, file);
            const QString what = QStringLiteral("%1: %2").arg(QLatin1String(readerNames[r]), run.outcome.message);
            QVERIFY2(run.finished, qPrintable(QStringLiteral("%1: crashed or timed out after %2 ms").arg(QLatin1String(readerNames[r])).arg(run.milliseconds)));
            QVERIFY2(run.peakKiB < peakLimitMiB * 1024, qPrintable(QStringLiteral("%1: peak %2 KiB").arg(what).arg(run.peakKiB)));
            QVERIFY2(!run.outcome.read, qPrintable(what));
            if (reader == E_HEAD)
                QCOMPARE(run.outcome.headResult, headResult);
            const QString prefix = QStringLiteral("cannot open '%1': ").arg(file);
            QVERIFY2(run.outcome.message.startsWith(prefix), qPrintable(what));
            QVERIFY2(QRegularExpression(QStringLiteral("^(?:%1)$").arg(reason)).match(run.outcome.message.mid(prefix.size())).hasMatch(),
                     qPrintable(what));
            QVERIFY2(file.isEmpty() || run.outcome.message.count(file) == 1, qPrintable(what)); // the file is named once
            QVERIFY2(run.outcome.qtMessages.isEmpty(), qPrintable(run.outcome.qtMessages.join('\n')));
        }
    }

    void depthLimitIsExact_data()
    {
        QTest::addColumn<int>("parser");
        QTest::newRow("DOM") << int(CXmlInputCheck::E_PARSER_DOM);
        QTest::newRow("stream") << int(CXmlInputCheck::E_PARSER_STREAM);
    }

    void depthLimitIsExact()
    {
        QFETCH(int, parser);
        const auto kind = CXmlInputCheck::eParser_t(parser);
        const int limit = CXmlInputCheck::maxDepth(kind);
        for (const int depth : {limit, limit + 1}) {
            QByteArray content = nested(depth, "<a>", "</a>");
            QBuffer buffer(&content);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            QString error;
            QCOMPARE(CXmlInputCheck::checkContent(buffer, QStringLiteral("f.xml"), kind, &error), depth == limit);
            QCOMPARE(error.isEmpty(), depth == limit);
        }
    }

    void undeclaredEntitiesAreNeverFetched()
    {
        // A DTD without entity declarations is accepted; its external subset is not read, and an
        // undeclared entity stays unresolved (the object loses its name and is dropped, loudly).
        const QByteArray content = document("<Object id=\"1\"><Name>&u;</Name></Object>\n<Object id=\"2\"><Name>KEPT</Name></Object>",
                                            "<!DOCTYPE r SYSTEM \"http://127.0.0.1:9/none.dtd\">\n")
                                       .replace("@ROOT@", "KiroObjectDictionary");
        QVERIFY(writeFile(path(QStringLiteral("dtd.xml")), content));
        COdict dict(E_OT_STD);
        QCOMPARE(dict.loadDictionary(path(QStringLiteral("dtd.xml"))), 0);
        QCOMPARE(dict.allObjectIds(), QList<unsigned int>{2});
        QCOMPARE(dict.droppedRecords().size(), 1);
        QCOMPARE(dict.droppedRecords().first().reason(), COdictDroppedRecord::E_DR_INVALID_OBJECT);
    }

    void droppedRecordsAreListedAndLogged_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("prolog");
        QTest::addColumn<QString>("expected"); // "reason:line:id:sub-id" per dropped record
        QTest::addColumn<int>("objects");      // objects loaded

        QTest::newRow("nothing lost") << QByteArray("<Object id=\"1\"><Name>A</Name></Object>") << QByteArray() << QString() << 1;
        QTest::newRow("duplicate id") << QByteArray("<Object id=\"1\"><Name>A</Name></Object>\n<Object id=\"1\"><Name>B</Name></Object>")
                                      << QByteArray() << "2:5:1:ffffffff" << 1;
        QTest::newRow("id 0xffffffff") << QByteArray("<Object id=\"0xffffffff\"><Name>A</Name></Object>") << QByteArray()
                                       << "1:4:ffffffff:ffffffff" << 0;
        QTest::newRow("no id") << QByteArray("<Object><Name>A</Name></Object>") << QByteArray() << "1:4:ffffffff:ffffffff" << 0;
        QTest::newRow("unreadable id") << QByteArray("<Object id=\"x\"><Name>A</Name></Object>") << QByteArray() << "1:4:ffffffff:ffffffff" << 0;
        QTest::newRow("name of an undeclared entity") << QByteArray("<Object id=\"7\"><Name>&u;</Name></Object>")
                                                      << QByteArray("<!DOCTYPE r SYSTEM \"none.dtd\">\n") << "1:5:7:ffffffff" << 0;
        QTest::newRow("sub-object of id 0 on a plain key")
            << QByteArray("<Object id=\"5\"><Name>A</Name></Object>\n<Object id=\"0\"><Name>B</Name><SubObjects>"
                          "<Object id=\"0\" subid=\"5\"><Name>C</Name></Object></SubObjects></Object>")
            << QByteArray() << "2:5:0:5" << 2;
        QTest::newRow("below a sub-object") << QByteArray("<Object id=\"1\"><Name>A</Name><SubObjects>\n<Object id=\"1\" subid=\"1\"><Name>S</Name><SubObjects>\n"
                                                          "<Object id=\"1\" subid=\"2\"><Name>T</Name></Object></SubObjects></Object></SubObjects></Object>")
                                            << QByteArray() << "3:6:1:2" << 2;
        QTest::newRow("below a dropped object") << QByteArray("<Object id=\"1\"><Name>A</Name></Object>\n<Object id=\"1\"><Name>B</Name><SubObjects>\n"
                                                              "<Object id=\"1\" subid=\"1\"><Name>S</Name></Object></SubObjects></Object>")
                                                << QByteArray() << "2:5:1:ffffffff 3:6:1:1" << 1;
        QTest::newRow("dictionary name of an undeclared entity") << QByteArray("<Object id=\"1\"><Name>A</Name></Object><Object id=\"2\"><Name>B</Name></Object>")
                                                                 << QByteArray("<!DOCTYPE r SYSTEM \"none.dtd\">\n") << "4:0:ffffffff:ffffffff" << 0;
    }

    void droppedRecordsAreListedAndLogged()
    {
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, prolog);
        QFETCH(QString, expected);
        QFETCH(int, objects);

        QByteArray content = document(body, prolog).replace("@ROOT@", "KiroObjectDictionary");
        if (QTest::currentDataTag() == QLatin1String("dictionary name of an undeclared entity"))
            content.replace("<Name>D</Name>", "<Name>&u;</Name>");
        const QString file = path(QStringLiteral("dropped.xml"));
        QVERIFY(writeFile(file, content));
        CMemoryLogfile log;
        COdict dict(E_OT_STD, &log);
        log.clear();
        QCOMPARE(dict.loadDictionary(file), 0);
        QCOMPARE(dict.allObjectUIds().size(), objects);
        QStringList found;
        for (const COdictDroppedRecord &record : dict.droppedRecords()) {
            found << QStringLiteral("%1:%2:%3:%4").arg(record.reason()).arg(record.line()).arg(record.id().id(), 0, 16).arg(record.id().subId(), 0, 16);
            QVERIFY(!record.text().isEmpty());
        }
        QCOMPARE(found.join(' '), expected);
        // Every dropped record is said in the log, as a warning or a critical message.
        int said = 0;
        for (const CMemoryLogfile::sEntry_t &entry : log.entries())
            said += entry.severity != NkrLogfiles::E_SEV_INFO;
        QVERIFY2(said >= found.size(), qPrintable(QString::number(said)));
        // A second load starts a new list.
        QVERIFY(writeFile(file, document("<Object id=\"1\"><Name>A</Name></Object>").replace("@ROOT@", "KiroObjectDictionary")));
        QCOMPARE(dict.loadDictionary(file), 0);
        QVERIFY(dict.droppedRecords().isEmpty());
    }

    void saveTargetsThatAreNoRegularFileAreRefused_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("FIFO") << "fifo";
        QTest::newRow("device node") << "device";
        QTest::newRow("link to a FIFO") << "link";
        QTest::newRow("directory") << "directory";
    }

    void saveTargetsThatAreNoRegularFileAreRefused()
    {
        QFETCH(QString, kind);
        // The target is named as the id export's file, so that every writer can be pointed at it.
        QTemporaryDir dir;
        const QString target = dir.filePath(QStringLiteral("NkrObjectIds.h"));
        const QByteArray name = QFile::encodeName(target);
        if (kind == QLatin1String("fifo")) {
            QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        } else if (kind == QLatin1String("link")) {
            const QString fifo = dir.filePath(QStringLiteral("fifo"));
            QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
            QVERIFY(QFile::link(fifo, target));
        } else if (kind == QLatin1String("device")) {
            // A private copy of /dev/null: a faulty save must not be able to harm the real one.
            if (::mknod(name.constData(), S_IFCHR | 0600, makedev(1, 3)) != 0)
                QSKIP("cannot create a device node here");
        } else {
            QVERIFY(QDir().mkpath(target));
        }
        struct stat before;
        QCOMPARE(::stat(QFile::encodeName(target).constData(), &before), 0);

        COdictEdit dict(E_OT_EDITOR);
        QCOMPARE(dict.loadDictionary(QFINDTESTDATA("data/xml_basic.xml")), 0);
        QCOMPARE(dict.saveDictionary(target), 2);
        COdictDataFile data;
        QVERIFY(!data.saveValues(target, {}, QStringLiteral("app"), QStringLiteral("1")));
        CXmlAbstractKiroFile head;
        QVERIFY(head.create(QStringLiteral("KiroObjectDictionary"), QStringLiteral("1.2.0"), CXMLMetaData()));
        QVERIFY(!head.save(target));
        COdictExportObjectIds exporter(&dict);
        QVERIFY(!exporter.exportToEnum(dir.path()));
        QVERIFY(!COdictExportFile(&dict).exportToHeaderfile(target));
        QVERIFY(!COdictExportEds(&dict).exportToEds(target));

        struct stat after;
        QCOMPARE(::stat(QFile::encodeName(target).constData(), &after), 0);
        QCOMPARE(after.st_mode, before.st_mode);
        QCOMPARE(after.st_ino, before.st_ino);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System).size(),
                 kind == QLatin1String("link") ? 2 : kind == QLatin1String("directory") ? 0 : 1); // no temporary file left
    }

    void progressIsReportedCheaply()
    {
        const QString file = path(QStringLiteral("progress.xml"));
        QByteArray body;
        for (int i = 1; i <= 5000; ++i)
            body += QStringLiteral("<Object id=\"%1\"><Name>O%1</Name><Type>U8</Type></Object>\n").arg(i).toUtf8();
        QVERIFY(writeFile(file, document(body).replace("@ROOT@", "KiroObjectDictionary")));

        QList<QPair<qint64, qint64>> calls;
        COdictEdit dict(E_OT_EDITOR);
        dict.setProgressCallback([&calls](qint64 done, qint64 total) { calls.append({done, total}); });
        const auto check = [&calls](qint64 total) {
            QVERIFY(calls.size() >= 2 && calls.size() <= 102);
            for (int i = 1; i < calls.size(); ++i)
                QVERIFY(calls.at(i).first >= calls.at(i - 1).first);
            QCOMPARE(calls.last(), qMakePair(total, total));
            calls.clear();
        };
        QCOMPARE(dict.loadDictionary(file), 0);
        check(QFileInfo(file).size());
        QCOMPARE(dict.saveDictionary(path(QStringLiteral("progress-saved.xml"))), 0);
        check(5000);
        COdictExportObjectIds exporter(&dict);
        QVERIFY(exporter.exportToEnum(m_dir.path()));
        QVERIFY(!calls.isEmpty());
        QCOMPARE(calls.last().first, calls.last().second);
    }

    void toolReportsDroppedRecords()
    {
        const QString tool = QStringLiteral(ODICT_TOOL);
        if (tool.isEmpty() || !QFile::exists(tool))
            QSKIP("the odict tool is not built");
        const QString file = path(QStringLiteral("tool.xml"));
        QVERIFY(writeFile(file, document("<Object id=\"1\"><Name>A</Name></Object>\n<Object id=\"1\"><Name>B</Name></Object>")
                                    .replace("@ROOT@", "KiroObjectDictionary")));
        const QString saved = path(QStringLiteral("tool-saved.xml"));
        QFile::remove(saved);
        for (const QStringList &arguments : {QStringList{QStringLiteral("info"), file}, QStringList{QStringLiteral("check"), file},
                                             QStringList{QStringLiteral("save"), file, saved}}) {
            QProcess process;
            process.start(tool, arguments);
            QVERIFY(process.waitForFinished(30000));
            const QString errors = QString::fromUtf8(process.readAllStandardError());
            QCOMPARE(process.exitCode(), 1);
            QVERIFY2(errors.contains(QStringLiteral("warning: '%1': <Object> (line 5) 'B' repeats id 0x1").arg(file)), qPrintable(errors));
        }
        QVERIFY(QFile::exists(saved)); // save writes, then reports
    }
};

QTEST_GUILESS_MAIN(tst_Hostile)
#include "tst_hostile.moc"

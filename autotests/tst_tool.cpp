// The odict command-line tool, run as a separate process.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

class tst_Tool : public QObject
{
    Q_OBJECT

private:
    struct sRun_t {
        int exitCode;
        QString output; // standard output, then standard error
        QString out;
        QString err;
    };

    static sRun_t odict(const QStringList &arguments,
                        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(ODICT_TOOL), arguments);
        if (!process.waitForFinished(120000))
            return {-1, QStringLiteral("timed out"), QString(), QString()};
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        const QString err = QString::fromUtf8(process.readAllStandardError());
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2, out + err, out, err};
    }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static bool write(const QString &path, const QByteArray &data)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
    }

    QString demo() const { return QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml"); }
    /// The arguments with "@name" replaced by the path of the fixture of that name in m_dir
    /// ("@demo" is the bundled demo dictionary).
    QStringList expand(QStringList arguments) const
    {
        for (QString &a : arguments) {
            if (a == QLatin1String("@demo"))
                a = demo();
            else if (a.startsWith(QLatin1Char('@')))
                a = m_dir.filePath(a.mid(1));
        }
        return arguments;
    }

    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n<Name>D</Name>\n";
        QVERIFY(write(m_dir.filePath(QStringLiteral("warnings.xml")),
                      head + "<Object><Name>A</Name></Object><Object id=\"1\"><Name>B</Name><Type>U8</Type></Object>\n</KiroObjectDictionary>\n"));
        QVERIFY(write(m_dir.filePath(QStringLiteral("notxml.xml")), "this is not XML"));
        QVERIFY(write(m_dir.filePath(QStringLiteral("bad.sql")), "CREATE TABLE t (x);\nINSERT INTO nope VALUES (1);\n"));
        QVERIFY(QDir(m_dir.path()).mkdir(QStringLiteral("directory")));
        QCOMPARE(odict(expand({QStringLiteral("devices"), QStringLiteral("build"), QStringLiteral(KRODICT_SOURCE_DIR "/examples/devices.sql"),
                               QStringLiteral("-o"), QStringLiteral("@mx8dd.db")})).exitCode, 0);
        QCOMPARE(odict(expand({QStringLiteral("values"), QStringLiteral("export"), QStringLiteral("@demo"), QStringLiteral("-o"),
                               QStringLiteral("@values.xml")})).exitCode, 0);
    }

    void exitStatus_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected"); // in standard output or error

        const auto row = [](const char *tag, const char *arguments, int exitCode, const char *expected) {
            QTest::newRow(tag) << QString::fromUtf8(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts) << exitCode
                               << QString::fromUtf8(expected);
        };
        // Usage errors: the problem first, then the usage.
        row("no arguments", "", 64, "odict: no command given");
        row("unknown command", "frobnicate", 64, "odict: unknown command 'frobnicate'");
        row("unknown tool option", "--frob info @demo", 64, "odict: unknown option '--frob'");
        row("unknown command option", "check --frob @demo", 64, "odict: unknown option '--frob'");
        row("unknown short option", "info -x @demo", 64, "odict: unknown option '-x'");
        row("help for an unknown command", "help frobnicate", 64, "unknown command 'frobnicate'");
        for (const char *command : {"info", "check", "save", "export", "values", "narrow", "devices", "demo"})
            row(qPrintable(QStringLiteral("%1 without arguments").arg(QLatin1String(command))), command, 64, "argument(s), not 0");
        row("save with one file", "save @demo", 64, "save expects 2 argument(s), not 1");
        row("selfcheck with an argument", "selfcheck x", 64, "selfcheck expects 0 argument(s), not 1");
        row("missing option value", "narrow @demo --device", 64, "odict: missing value after '--device'");
        row("export kind", "export html @demo -o @x", 64, "odict: unknown export kind 'html'");
        row("export without -o", "export header @demo", 64, "odict: export needs -o OUT");
        row("values action", "values list @demo", 64, "odict: unknown values action 'list'");
        row("values sets", "values export @demo -o @v.xml --parameters --sets 64", 64, "--sets needs a number from 1 to 63, not '64'");
        row("values import without data", "values import @demo", 64, "values import takes DICT and DATA");
        row("devices action", "devices drop @bad.sql -o @x.db", 64, "unknown devices action 'drop'");
        row("narrow position", "narrow @demo --device MX8-S1 --firmware-version 1.28.42 --pos 256 -o @n.xml", 64,
            "--pos needs a number from 0 to 255, not '256'");
        row("narrow version", "narrow @demo --device MX8-S1 --firmware-version 1.x -o @n.xml", 64,
            "--firmware-version needs main.minor.build, not '1.x'");
        row("narrow both versions", "narrow @demo --device MX8-S1 --firmware-version 1.28.42 --version 1.28.42 -o @n.xml", 64,
            "give --firmware-version only");
        row("narrow without device", "narrow @demo --firmware-version 1.28.42 -o @n.xml", 64, "narrow needs --device NAME");

        // Help and version are answers, not errors.
        row("help", "help", 0, "Usage: odict [-q] <command>");
        row("--help", "--help", 0, "Exit status: 0 success, 1 the input has findings");
        row("help for a command", "help narrow", 0, "Usage: odict narrow [options] FILE");
        row("--help of a command", "export --help", 0, "Usage: odict export [options] KIND FILE");
        row("version", "--version", 0, "odict ");

        // Input that cannot be read.
        row("check a missing file", "check @missing.xml", 2, "missing.xml'");
        row("check a directory", "check @directory", 2, "directory'");
        row("check no XML", "check @notxml.xml", 2, "notxml.xml'");
        row("check an empty name", "check ''", 2, "odict: ");
        row("info a missing file", "info @missing.xml", 2, "missing.xml'");
        row("save a missing file", "save @missing.xml @out.xml", 2, "missing.xml'");
        row("export a missing file", "export ids @missing.xml -o @ids", 2, "missing.xml'");
        row("values of a missing dictionary", "values export @missing.xml -o @v.xml", 2, "missing.xml'");
        row("values import of no XML", "values import @demo @notxml.xml", 2, "notxml.xml'");
        row("narrow with a missing database", "narrow @demo --device MX8-S1 --firmware-version 1.28.42 --db @missing.db -o @n.xml", 2,
            "missing.db'");
        row("narrow to an unknown device", "narrow @demo --device NOPE --firmware-version 1.0.0 --db @mx8dd.db -o @n.xml", 2, "'NOPE'");
        row("devices from a missing source", "devices build @missing.sql -o @x.db", 2, "cannot open '");
        row("devices from a directory", "devices build @directory -o @x.db", 2, "directory'");
        row("devices from a failing script", "devices build @bad.sql -o @x.db", 2, "bad.sql: line 2: no such table: nope");

        // Output that cannot be written (tests run as root: below a regular file is refused even so).
        row("save below a file", "save @demo /etc/passwd/x.xml", 2, "odict: cannot write '/etc/passwd/x.xml': Not a directory");
        row("save onto a directory", "save @demo @directory", 2, "directory': ");
        row("export header below a file", "export header @demo -o /etc/passwd/x/demo.h", 2, "cannot write '/etc/passwd/x/demo.h'");
        row("export ids into a file", "export ids @demo -o /etc/passwd", 2, "cannot write '/etc/passwd/NkrObjectIds.h'");
        row("export translation below a file", "export translation @demo -o /etc/passwd/x", 2, "cannot write '/etc/passwd/x/");
        row("values below a file", "values export @demo -o /etc/passwd/v.xml", 2, "cannot write '/etc/passwd/v.xml'");
        row("narrow below a file", "narrow @demo --device MX8-S1 --firmware-version 1.28.42 --db @mx8dd.db -o /etc/passwd/n.xml", 2,
            "cannot write '/etc/passwd/n.xml'");
        row("devices below a file", "devices build " KRODICT_SOURCE_DIR "/examples/devices.sql -o /etc/passwd/x.db", 2,
            "cannot write '/etc/passwd/x.db'");
        row("demo below a file", "demo /etc/passwd/demo.xml", 2, "cannot write '/etc/passwd/demo.xml'");

        // Input with findings: the work is done, and the status says what was found.
        row("check with warnings", "check @warnings.xml", 1, "1 problem(s)");
        row("info with warnings", "info @warnings.xml", 1, "warnings:      1");
        row("save with warnings", "save @warnings.xml @saved.xml", 1, "'odict check ");
        row("export with warnings", "export ids @warnings.xml -o @ids", 1, "has 1 warning(s)");
        row("values import of unknown records", "values import @warnings.xml @values.xml", 1, "not in the dictionary");

        // Success.
        row("info", "info @demo", 0, "name:          DemoDrive");
        row("check", "check @demo", 0, "clean");
        row("save", "save @demo @saved.xml", 0, "saved ");
        row("export header", "export header @demo -o @export/demo.h", 0, "wrote ");
        row("values import", "values import @demo @values.xml", 0, ", 0 not in the dictionary");
        row("narrow", "narrow @demo --device MX8-S1 --firmware-version 1.28.42 --db @mx8dd.db -o @n.xml", 0, "saved ");
        row("narrow, deprecated --version", "narrow @demo --device MX8-S1 --version 1.28.42 --db @mx8dd.db -o @n.xml", 0,
            "odict: note: narrow --version is deprecated, use --firmware-version");
        row("devices build", "devices build " KRODICT_SOURCE_DIR "/examples/devices.sql -o @built.db", 0, "built ");
        row("demo", "demo @demo.xml", 0, "wrote ");
        row("selfcheck", "selfcheck", 0, "platform self-check passed");
    }

    void exitStatus()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        for (QString &a : arguments)
            a.replace(QLatin1String("''"), QString()); // the table's spelling of an empty argument
        const sRun_t run = odict(expand(arguments));
        const QString context = QStringLiteral("odict %1\n%2").arg(arguments.join(QLatin1Char(' ')), run.output);
        QVERIFY2(run.exitCode == exitCode, qPrintable(context));
        QVERIFY2(run.output.contains(expected), qPrintable(context));
        // Usage texts name the tool, not the path it was started from.
        QVERIFY2(!run.output.contains(QStringLiteral(ODICT_TOOL)), qPrintable(context));
        const QStringList errLines = run.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        if (exitCode == 64) {
            QVERIFY2(errLines.value(0).startsWith(QLatin1String("odict: ")) && run.err.contains(QLatin1String("\nUsage: odict ")),
                     qPrintable(context));
            QVERIFY(run.out.isEmpty());
            return;
        }
        // Everything on stderr is the tool's own: no Qt warning gets through.
        for (const QString &line : errLines)
            QVERIFY2(line.startsWith(QLatin1String("odict: ")), qPrintable(context));
        if (exitCode == 2) {
            // One line that names the reason once.
            QVERIFY2(errLines.size() == 1, qPrintable(context));
            QVERIFY2(run.err.count(QLatin1String("cannot "), Qt::CaseInsensitive) <= 1, qPrintable(context));
        }
    }

    void quietPrintsErrorsOnly_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<bool>("error");
        const auto row = [](const char *tag, const char *arguments, int exitCode, bool error) {
            QTest::newRow(tag) << QString::fromUtf8(arguments).split(QLatin1Char(' ')) << exitCode << error;
        };
        row("tool option", "-q info @demo", 0, false);
        row("command option", "info -q @demo", 0, false);
        row("long form", "--quiet selfcheck", 0, false);
        row("findings", "check -q @warnings.xml", 1, false);
        row("warning note", "-q export ids @warnings.xml -o @quiet", 1, false);
        row("deprecation note", "narrow @demo -q --device MX8-S1 --version 1.28.42 --db @mx8dd.db -o @n.xml", 0, false);
        row("not read", "-q check @missing.xml", 2, true);
        row("usage", "check -q", 64, true);
    }

    void quietPrintsErrorsOnly()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(bool, error);
        const sRun_t run = odict(expand(arguments));
        QVERIFY2(run.exitCode == exitCode, qPrintable(run.output));
        QVERIFY2(run.out.isEmpty(), qPrintable(run.out));
        QVERIFY2(run.err.startsWith(QLatin1String("odict: ")) == error, qPrintable(run.err));
    }

    void demoFileIsTheGeneratorsOutput()
    {
        // The bundled demo must be exactly what the tool writes, so it never drifts from its definition.
        const QString generated = m_dir.filePath(QStringLiteral("demo.xml"));
        const sRun_t run = odict({QStringLiteral("demo"), generated});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(contents(generated), contents(demo()));
    }

    void infoSummarisesTheDemo()
    {
        const sRun_t run = odict({QStringLiteral("info"), demo()});
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.output.contains(QLatin1String("name:          DemoDrive")), qPrintable(run.output));
        QVERIFY(run.output.contains(QLatin1String("version:       1.28.42")));
        QVERIFY(run.output.contains(QLatin1String("history:       3 versions")));
        QVERIFY(run.output.contains(QLatin1String("drive profile (DS402)")));
    }

    void checkExitStatus_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");
        const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n<Name>D</Name>\n";
        QTest::newRow("clean") << head + "<Object id=\"1\"><Name>A</Name><Type>U8</Type></Object>\n</KiroObjectDictionary>\n"
                               << 0 << QStringLiteral("clean");
        QTest::newRow("object without id") << head + "<Object><Name>A</Name></Object>\n</KiroObjectDictionary>\n"
                                           << 1 << QStringLiteral("warning: <Object> (line 4) has no attribute 'id'");
        QTest::newRow("duplicate id") << head + "<Object id=\"1\"><Name>A</Name></Object><Object id=\"1\"><Name>B</Name></Object>\n</KiroObjectDictionary>\n"
                                      << 1 << QStringLiteral("critical: Double Object-ID detected : ID 0x1 Sub-ID 0xffffffff; A, B");
        QTest::newRow("not xml") << QByteArray("this is not XML") << 2 << QStringLiteral("check.xml'");
        QTest::newRow("truncated") << head + "<Object id=\"1\"><Na" << 2 << QStringLiteral("check.xml'");
    }

    void checkExitStatus()
    {
        QFETCH(QByteArray, document);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        const QString path = m_dir.filePath(QStringLiteral("check.xml"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(document);
        file.close();
        const sRun_t run = odict({QStringLiteral("check"), path});
        QCOMPARE(run.exitCode, exitCode);
        QVERIFY2(run.output.contains(expected), qPrintable(run.output));
    }

    void saveNormalisesToAFixedPoint()
    {
        const QString first = m_dir.filePath(QStringLiteral("first.xml"));
        const QString second = m_dir.filePath(QStringLiteral("second.xml"));
        QCOMPARE(odict({QStringLiteral("save"), demo(), first}).exitCode, 0);
        QCOMPARE(odict({QStringLiteral("save"), first, second}).exitCode, 0);
        QCOMPARE(contents(second), contents(first));
        QCOMPARE(contents(first), contents(demo()));
    }

    void deepNestingIsReported()
    {
        const int depth = 10000;
        QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroObjectDictionary version=\"1.2.0\">\n<Name>Deep</Name>\n";
        for (int i = 0; i < depth; ++i)
            document += "<Group><Name>G</Name>";
        document += "<Object id=\"7\"><Name>LEAF</Name><Type>U8</Type></Object>";
        for (int i = 0; i < depth; ++i)
            document += "</Group>";
        document += "\n</KiroObjectDictionary>\n";
        const QString path = m_dir.filePath(QStringLiteral("deep.xml"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(document);
        file.close();
        const sRun_t run = odict({QStringLiteral("info"), path});
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.output.contains(QLatin1String("nested up to 10000 deep")), qPrintable(run.output));
        QVERIFY(run.output.contains(QLatin1String("objects:       1")));
    }

    void narrowAppliesTheDeviceDatabase()
    {
        const QString narrowed = m_dir.filePath(QStringLiteral("narrowed.xml"));
        const sRun_t run = odict(expand({QStringLiteral("narrow"), QStringLiteral("@demo"), QStringLiteral("--device"), QStringLiteral("MX8-S1"),
                                         QStringLiteral("--firmware-version"), QStringLiteral("1.28.42"), QStringLiteral("--db"),
                                         QStringLiteral("@mx8dd.db"), QStringLiteral("-o"), narrowed}));
        QVERIFY2(run.exitCode == 0, qPrintable(run.output));
        const QByteArray text = contents(narrowed);
        QVERIFY(!text.contains("Kleinspannung")); // entry 1 of object 231 removed: no low-voltage supply
        QVERIFY(text.contains("Netzspannung"));
        QVERIFY(!text.contains("16 kHz"));        // PWM mask 0x3 keeps 4 and 8 kHz only
        QVERIFY(text.contains("8 kHz"));
        // The old spelling of the option still means the firmware version.
        const QString old = m_dir.filePath(QStringLiteral("narrowed-old.xml"));
        QCOMPARE(odict(expand({QStringLiteral("narrow"), QStringLiteral("@demo"), QStringLiteral("--device"), QStringLiteral("MX8-S1"),
                               QStringLiteral("--version"), QStringLiteral("1.28.42"), QStringLiteral("--db"), QStringLiteral("@mx8dd.db"),
                               QStringLiteral("-o"), old})).exitCode, 0);
        QCOMPARE(contents(old), text);
    }

    void demoHeaderCompilesAsC_data()
    {
        QTest::addColumn<QStringList>("defines");
        QTest::newRow("declarations") << QStringList();
        QTest::newRow("definitions") << QStringList{QStringLiteral("-DINCLUDED_FROM_ODICT_C")};
    }

    void demoHeaderCompilesAsC()
    {
        QFETCH(QStringList, defines);
        if (QStandardPaths::findExecutable(QStringLiteral("gcc")).isEmpty())
            QSKIP("gcc is not installed");
        const QString header = m_dir.filePath(QStringLiteral("odict_demo_drive.h"));
        QCOMPARE(odict({QStringLiteral("export"), QStringLiteral("header"), demo(), QStringLiteral("-o"), header}).exitCode, 0);
        const QString source = m_dir.filePath(QStringLiteral("firmware.c"));
        QFile file(source);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#include \"demo_drive_stub.h\"\n#include \"odict_demo_drive.h\"\n");
        file.close();
        QProcess gcc;
        gcc.setProcessChannelMode(QProcess::MergedChannels);
        gcc.start(QStringLiteral("gcc"), QStringList{QStringLiteral("-std=c99"), QStringLiteral("-Wall"), QStringLiteral("-Werror"),
                                                     QStringLiteral("-I") + QFileInfo(QFINDTESTDATA("data/demo_drive_stub.h")).absolutePath(),
                                                     QStringLiteral("-I") + m_dir.path(), QStringLiteral("-c"), source,
                                                     QStringLiteral("-o"), m_dir.filePath(QStringLiteral("firmware.o"))} + defines);
        QVERIFY(gcc.waitForFinished(120000));
        QVERIFY2(gcc.exitCode() == 0, gcc.readAll().constData());
    }

    void exportsAreReproducible_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QByteArray>("dateLine"); // the header's, in the locale's short date format
        QTest::newRow("C") << QStringLiteral("C.UTF-8") << QByteArray(" * @date    14 Nov 2023\n");
        QTest::newRow("German") << QStringLiteral("de_DE.UTF-8") << QByteArray(" * @date    14.11.23\n");
    }

    void exportsAreReproducible()
    {
        // With LC_ALL and SOURCE_DATE_EPOCH pinned, machines that differ in time zone and other locale
        // settings write the same bytes. Each run gets its own environment, so nothing leaks.
        QFETCH(QString, locale);
        QFETCH(QByteArray, dateLine);
        const QStringList machines[] = {
            {QStringLiteral("TZ=Pacific/Kiritimati"), QStringLiteral("LANG=fr_FR.UTF-8"), QStringLiteral("LC_TIME=en_US.UTF-8")},
            {QStringLiteral("TZ=America/Adak"), QStringLiteral("LANG=ja_JP.UTF-8"), QStringLiteral("LC_TIME=C")},
        };
        QStringList folders;
        for (const QStringList &machine : machines) {
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            for (const QString &setting : machine)
                environment.insert(setting.section(QLatin1Char('='), 0, 0), setting.section(QLatin1Char('='), 1));
            environment.insert(QStringLiteral("LC_ALL"), locale);
            environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("1700000000")); // 2023-11-14 22:13 UTC
            folders.append(m_dir.filePath(QStringLiteral("reproducible-%1-%2").arg(locale).arg(folders.size())));
            QCOMPARE(odict({QStringLiteral("export"), QStringLiteral("header"), demo(), QStringLiteral("-o"),
                            folders.last() + QStringLiteral("/odict_demo_drive.h")}, environment).exitCode, 0);
            for (const QString &kind : {QStringLiteral("ids"), QStringLiteral("translation")})
                QCOMPARE(odict({QStringLiteral("export"), kind, demo(), QStringLiteral("-o"), folders.last()}, environment).exitCode, 0);
        }
        for (const char *name : {"odict_demo_drive.h", "NkrObjectIds.h", "NkrOdictTranslate.h"}) {
            const QByteArray first = contents(QDir(folders.at(0)).filePath(QLatin1String(name)));
            QVERIFY2(!first.isEmpty(), name);
            QVERIFY2(contents(QDir(folders.at(1)).filePath(QLatin1String(name))) == first, name);
        }
        QVERIFY(contents(QDir(folders.at(0)).filePath(QStringLiteral("odict_demo_drive.h"))).contains(dateLine));
        QVERIFY(contents(QDir(folders.at(0)).filePath(QStringLiteral("NkrObjectIds.h"))).contains(" * @date    14.11.2023\n"));
    }

    void valuesRoundTrip_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("expected");
        QTest::newRow("current values") << QStringList() << QStringLiteral("PWM_FREQUENCY = 2 8 kHz");
        QTest::newRow("parameter sets") << QStringList{QStringLiteral("--parameters"), QStringLiteral("--sets"), QStringLiteral("3")}
                                        << QStringLiteral("PWM_FREQUENCY[2] = 8 kHz");
    }

    void valuesRoundTrip()
    {
        QFETCH(QStringList, options);
        QFETCH(QString, expected);
        const QString data = m_dir.filePath(QStringLiteral("values.xml"));
        QCOMPARE(odict(QStringList{QStringLiteral("values"), QStringLiteral("export"), demo(), QStringLiteral("-o"), data} + options).exitCode, 0);
        const sRun_t run = odict(QStringList{QStringLiteral("values"), QStringLiteral("import"), demo(), data} + options);
        QVERIFY2(run.exitCode == 0, qPrintable(run.output));
        QVERIFY2(run.output.contains(expected), qPrintable(run.output));
        QVERIFY(run.output.contains(QLatin1String(", 0 not in the dictionary")));
    }
};

QTEST_GUILESS_MAIN(tst_Tool)
#include "tst_tool.moc"

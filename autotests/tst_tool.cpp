// The odict command-line tool, run as a separate process.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

class tst_Tool : public QObject
{
    Q_OBJECT

private:
    struct sRun_t {
        int exitCode;
        QString output;
    };

    sRun_t odict(const QStringList &arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(ODICT_TOOL), arguments);
        if (!process.waitForFinished(120000))
            return {-1, QStringLiteral("timed out")};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2,
                QString::fromUtf8(process.readAll())};
    }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString demo() const { return QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml"); }
    QTemporaryDir m_dir;

private slots:
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
        QTest::newRow("not xml") << QByteArray("this is not XML") << 2 << QStringLiteral("cannot open");
        QTest::newRow("truncated") << head + "<Object id=\"1\"><Na" << 2 << QStringLiteral("cannot open");
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

    void checkOfAMissingFileIsNotOpened()
    {
        QCOMPARE(odict({QStringLiteral("check"), m_dir.filePath(QStringLiteral("missing.xml"))}).exitCode, 2);
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
        const QString db = m_dir.filePath(QStringLiteral("mx8dd.db"));
        QCOMPARE(odict({QStringLiteral("devices"), QStringLiteral("build"),
                        QStringLiteral(KRODICT_SOURCE_DIR "/examples/devices.sql"), QStringLiteral("-o"), db}).exitCode, 0);
        const QString narrowed = m_dir.filePath(QStringLiteral("narrowed.xml"));
        const sRun_t run = odict({QStringLiteral("narrow"), demo(), QStringLiteral("--device"), QStringLiteral("MX8-S1"),
                                  QStringLiteral("--version"), QStringLiteral("1.28.42"), QStringLiteral("--db"), db,
                                  QStringLiteral("-o"), narrowed});
        QVERIFY2(run.exitCode == 0, qPrintable(run.output));
        const QByteArray text = contents(narrowed);
        QVERIFY(!text.contains("Kleinspannung")); // entry 1 of object 231 removed: no low-voltage supply
        QVERIFY(text.contains("Netzspannung"));
        QVERIFY(!text.contains("16 kHz"));        // PWM mask 0x3 keeps 4 and 8 kHz only
        QVERIFY(text.contains("8 kHz"));

        const sRun_t unknown = odict({QStringLiteral("narrow"), demo(), QStringLiteral("--device"), QStringLiteral("NOPE"),
                                      QStringLiteral("--version"), QStringLiteral("1.0.0"), QStringLiteral("--db"), db,
                                      QStringLiteral("-o"), narrowed});
        QCOMPARE(unknown.exitCode, 2);
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

    void exportsArePinnedBySourceDateEpoch()
    {
        // Two exports on different days give the same bytes when the build pins the date.
        qputenv("SOURCE_DATE_EPOCH", "1700000000"); // 2023-11-14
        const QString first = m_dir.filePath(QStringLiteral("pinned1"));
        const QString second = m_dir.filePath(QStringLiteral("pinned2"));
        for (const QString &kind : {QStringLiteral("ids"), QStringLiteral("translation")}) {
            QCOMPARE(odict({QStringLiteral("export"), kind, demo(), QStringLiteral("-o"), first}).exitCode, 0);
            QCOMPARE(odict({QStringLiteral("export"), kind, demo(), QStringLiteral("-o"), second}).exitCode, 0);
        }
        qunsetenv("SOURCE_DATE_EPOCH");
        const QByteArray ids = contents(QDir(first).filePath(QStringLiteral("NkrObjectIds.h")));
        QVERIFY(ids.contains(" * @date    14.11.2023"));
        QCOMPARE(contents(QDir(second).filePath(QStringLiteral("NkrObjectIds.h"))), ids);
        QCOMPARE(contents(QDir(second).filePath(QStringLiteral("NkrOdictTranslate.h"))),
                 contents(QDir(first).filePath(QStringLiteral("NkrOdictTranslate.h"))));
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

    void unknownCommandIsAUsageError()
    {
        QCOMPARE(odict({QStringLiteral("frobnicate")}).exitCode, 64);
    }
};

QTEST_GUILESS_MAIN(tst_Tool)
#include "tst_tool.moc"

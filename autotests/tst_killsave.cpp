// Crash-safe writing: a child process (this program, started with --child) writes a target file
// over and over, alternating between two versions, and is killed with SIGKILL at a random
// moment. Afterwards the target must be one of the two versions, complete, and nothing else may
// be left in the directory. Covers the dictionary save, the three exports and a data file.
#include "odicttreecompare.h"

#include <COdictDataFile.h>
#include <COdictEdit.h>
#include <COdictExportFile.h>
#include <COdictExportObjectIds.h>
#include <COdictExportTranslation.h>
#include <COdictGenerator.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <memory>
#include <sys/prctl.h>
#include <unistd.h>

using namespace NkrOdict;

namespace {

constexpr int kObjects = 800;       // a dictionary file of about 2 MB: long enough to be killed mid-write
constexpr int kKillsPerWriter = 20; // five writers: 100 kills

/// The two versions the child alternates between: a generated dictionary, and the same with
/// one object more (one generator run keeps the child's start short under the sanitizers).
std::unique_ptr<COdictEdit> version(int which)
{
    auto dict = std::make_unique<COdictEdit>(E_OT_EDITOR);
    COdictGenerator(1).generate(*dict, kObjects);
    if (which == 1) {
        COdictEditorObject extra;
        extra.setId(0x12345u);
        extra.setName(QStringLiteral("SECOND_VERSION"));
        extra.setUiName(QStringLiteral("Zweite Version"));
        extra.setDataType(NTypes::E_U16);
        extra.setDataSize(2);
        extra.setMinValue(CVariant(QStringLiteral("0"), NTypes::E_U16));
        extra.setMaxValue(CVariant(QStringLiteral("10"), NTypes::E_U16));
        extra.setDefaultValue(CVariant(QStringLiteral("1"), NTypes::E_U16));
        COdictObjectTree *tree = dict->objectTree();
        bool ok = false;
        tree->dictionaryNode()->appendChild(tree->createObjectNode(extra, E_IT_OBJECT, &ok));
    }
    return dict;
}

/// Values for a data file of \a dict; the two versions differ in their first value.
QList<COdictValueObject> valuesOf(const COdictEdit &dict, int which)
{
    QList<COdictValueObject> values;
    COdictGenerator generator(7);
    for (const COdictObjectId &id : dict.allObjectUIds()) {
        COdictValueObject v(*dict.objectPtr(id));
        v.setCurrentValue(generator.value(v));
        values << v;
    }
    values.first().setName(which == 0 ? QStringLiteral("FIRST") : QStringLiteral("SECOND"));
    return values;
}

/// The name of the file \a writer produces.
QString targetName(const QString &writer)
{
    if (writer == QLatin1String("header"))
        return QStringLiteral("odict.h");
    if (writer == QLatin1String("ids"))
        return QStringLiteral("NkrObjectIds.h");
    if (writer == QLatin1String("translation"))
        return QStringLiteral("NkrOdictTranslate.h");
    return QStringLiteral("target.xml");
}

/// Writes the file of \a writer from \a dict (or \a values) into \a dir.
bool write(const QString &writer, COdictEdit &dict, const QList<COdictValueObject> &values, const QString &dir)
{
    const QDate pinned(2026, 1, 1); // the exports carry a date; a pinned one makes them byte-equal
    const QString target = QDir(dir).filePath(targetName(writer));
    if (writer == QLatin1String("dictionary"))
        return dict.saveDictionary(target) == 0;
    if (writer == QLatin1String("header")) {
        COdictExportFile header(&dict);
        header.setDate(pinned);
        return header.exportToHeaderfile(target);
    }
    if (writer == QLatin1String("ids")) {
        COdictExportObjectIds ids(&dict);
        ids.setDate(pinned);
        return ids.exportToEnum(dir);
    }
    if (writer == QLatin1String("translation")) {
        COdictExportTranslation translation(&dict);
        translation.setDate(pinned);
        return translation.exportToTranslate(dir);
    }
    return COdictDataFile().saveValues(target, values, QStringLiteral("tst_killsave"), QStringLiteral("1"));
}

/// The child: builds both versions, says so on stdout, then writes them in turn until killed.
int runChild(const QString &writer, const QString &dir)
{
    // Dies with the test: a parent that aborts must not leave a writer looping behind it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == 1)
        return 1;
    std::unique_ptr<COdictEdit> dicts[2] = {version(0), version(1)};
    const QList<COdictValueObject> values[2] = {valuesOf(*dicts[0], 0), valuesOf(*dicts[1], 1)};
    fputs("ready\n", stdout);
    fflush(stdout);
    for (int i = 0;; i ^= 1) {
        if (!write(writer, *dicts[i], values[i], dir))
            return 1;
    }
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_KillSave : public QObject
{
    Q_OBJECT

private slots:
    void killedWriterLeavesCompleteFile_data();
    void killedWriterLeavesCompleteFile();
};

void tst_KillSave::killedWriterLeavesCompleteFile_data()
{
    QTest::addColumn<QString>("writer");
    for (const char *writer : {"dictionary", "header", "ids", "translation", "data"})
        QTest::newRow(writer) << QString::fromLatin1(writer);
}

void tst_KillSave::killedWriterLeavesCompleteFile()
{
    QFETCH(QString, writer);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString target = dir.filePath(targetName(writer));

    // The two complete versions, and how long one write takes here.
    std::unique_ptr<COdictEdit> dicts[2] = {version(0), version(1)};
    const QList<COdictValueObject> values[2] = {valuesOf(*dicts[0], 0), valuesOf(*dicts[1], 1)};
    QByteArray expected[2];
    QElapsedTimer timer;
    for (int i = 1; i >= 0; --i) {
        timer.start();
        QVERIFY(write(writer, *dicts[i], values[i], dir.path()));
        expected[i] = contents(target);
    }
    const int writeMs = qMax<int>(1, int(timer.elapsed()));
    QVERIFY(expected[0] != expected[1]);

    int linkedCopies = 0; // kills that landed between link and rename
    for (int kill = 0; kill < kKillsPerWriter; ++kill) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), writer, dir.path()});
        QVERIFY(child.waitForStarted());
        QVERIFY(child.waitForReadyRead(60000));
        // Anywhere within the first two writes, so kills land early, late and between writes.
        QThread::usleep(QRandomGenerator::global()->bounded(2000u * unsigned(writeMs)));
        ::kill(pid_t(child.processId()), SIGKILL);
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);

        // Only the target is in the directory: no temporary file is left behind. The one window
        // POSIX leaves is between QSaveFile's link of the finished file under a temporary name and
        // its rename over the target; a kill there leaves a complete copy, never a partial one.
        QStringList files = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
        files.removeOne(targetName(writer));
        for (const QString &left : qAsConst(files)) {
            const QRegularExpression linkedCopy(QRegularExpression::escape(targetName(writer)) + QStringLiteral("\\.[A-Za-z0-9]{6}"));
            QVERIFY2(linkedCopy.match(left).hasMatch() && linkedCopy.match(left).capturedLength() == left.size(),
                     qPrintable(QStringLiteral("kill %1 left '%2'").arg(kill).arg(left)));
            const QByteArray copy = contents(dir.filePath(left));
            QVERIFY2(writer == QLatin1String("data") || copy == expected[0] || copy == expected[1],
                     qPrintable(QStringLiteral("kill %1 left an incomplete '%2'").arg(kill).arg(left)));
            QVERIFY(QFile::remove(dir.filePath(left)));
            ++linkedCopies;
        }
        const QByteArray now = contents(target);
        if (writer == QLatin1String("data")) {
            // A data file's head carries the time of writing, so compare what it reads back as.
            QList<COdictValueObject> back;
            QVERIFY(COdictDataFile().loadValues(target, back));
            const int which = back.size() == values[0].size() && back.first().name() == values[0].first().name() ? 0 : 1;
            QCOMPARE(back.size(), values[which].size());
            for (int i = 0; i < back.size(); ++i)
                QCOMPARE(back.at(i).currentValue(), values[which].at(i).currentValue());
        } else {
            QVERIFY2(now == expected[0] || now == expected[1],
                     qPrintable(QStringLiteral("kill %1: the target has %2 bytes").arg(kill).arg(now.size())));
            if (writer == QLatin1String("dictionary") && kill % 4 == 0) { // equal bytes already say it all
                COdictEdit loaded(E_OT_EDITOR);
                QCOMPARE(loaded.loadDictionary(target), 0);
                compareTrees(*dicts[now == expected[0] ? 0 : 1]->objectTree(), *loaded.objectTree());
            }
        }
    }
    qInfo("%s: %d kills, one write takes %d ms, %d complete copies left between link and rename",
          qPrintable(writer), kKillsPerWriter, writeMs, linkedCopies);
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "--child") == 0)
        return runChild(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    tst_KillSave test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_killsave.moc"

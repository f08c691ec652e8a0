// Every input a fuzz target once failed on (autotests/data/regressions/), replayed through the
// same check as that target. The file name's prefix names the target.
#include "../fuzz/fuzzchecks.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <functional>

class tst_Regressions : public QObject
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

void tst_Regressions::replay_data()
{
    QTest::addColumn<QString>("path");
    const QDir dir(QFINDTESTDATA("data/regressions"));
    QVERIFY(dir.exists());
    for (const QFileInfo &file : dir.entryInfoList(QDir::Files, QDir::Name)) {
        if (file.fileName() != QLatin1String("README.md"))
            QTest::newRow(qPrintable(file.fileName())) << file.filePath();
    }
    if (dir.entryList(QDir::Files).size() <= 1)
        QTest::newRow("none yet") << QString();
}

void tst_Regressions::replay()
{
    QFETCH(QString, path);
    if (path.isEmpty())
        QSKIP("no regression inputs");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray input = file.readAll();
    const QString name = QFileInfo(path).fileName();
    const struct {
        const char *prefix;
        std::function<QString(const QByteArray &)> check;
    } targets[] = {
        {"dict-std-", [](const QByteArray &in) { return fuzz::checkDictionary(NkrOdict::E_OT_STD, in); }},
        {"dict-value-", [](const QByteArray &in) { return fuzz::checkDictionary(NkrOdict::E_OT_VALUE, in); }},
        {"dict-editor-", [](const QByteArray &in) { return fuzz::checkDictionary(NkrOdict::E_OT_EDITOR, in); }},
        {"dict-parameter-", [](const QByteArray &in) { return fuzz::checkDictionary(NkrOdict::E_OT_PARAMETER, in); }},
        {"datafile-values-", [](const QByteArray &in) { return fuzz::checkDataFile(false, in); }},
        {"datafile-parameters-", [](const QByteArray &in) { return fuzz::checkDataFile(true, in); }},
        {"stream-", fuzz::checkStream},
        {"variant-", fuzz::checkVariantText},
    };
    for (const auto &target : targets) {
        if (name.startsWith(QLatin1String(target.prefix))) {
            const QString finding = target.check(input);
            QVERIFY2(finding.isEmpty(), qPrintable(finding));
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("'%1' names no fuzz target (see docs/fuzzing.md)").arg(name)));
}

QTEST_GUILESS_MAIN(tst_Regressions)
#include "tst_regressions.moc"

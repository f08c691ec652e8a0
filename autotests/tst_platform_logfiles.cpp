#include "CFileLogfile.h"
#include "CMemoryLogfile.h"
#include "CMessageBoardHelper.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class tst_PlatformLogfiles : public QObject
{
    Q_OBJECT

private slots:
    void helperRoutesSeverity_data();
    void helperRoutesSeverity();
    void helperIgnoresNullLog();
    void memoryLogKeepsOrder();
    void fileLogAppendsLines();
    void fileLogSkipsUnopenableFile();
};

using HelperFunction = void (*)(const QString &, ICLogfile *, unsigned int);
Q_DECLARE_METATYPE(HelperFunction)

void tst_PlatformLogfiles::helperRoutesSeverity_data()
{
    QTest::addColumn<HelperFunction>("function");
    QTest::addColumn<int>("severity");

    QTest::newRow("text") << HelperFunction(&CMessageBoardHelper::setText) << int(NkrLogfiles::E_SEV_INFO);
    QTest::newRow("warning") << HelperFunction(&CMessageBoardHelper::setWarning) << int(NkrLogfiles::E_SEV_WARNING);
    QTest::newRow("critical") << HelperFunction(&CMessageBoardHelper::setCritical) << int(NkrLogfiles::E_SEV_CRITICAL);
}

void tst_PlatformLogfiles::helperRoutesSeverity()
{
    QFETCH(HelperFunction, function);
    QFETCH(int, severity);

    CMemoryLogfile log;
    function(QStringLiteral("message"), &log, 7u);
    QCOMPARE(log.entries().size(), 1);
    QCOMPARE(int(log.entries().first().severity), severity);
    QCOMPARE(log.entries().first().text, QStringLiteral("message"));
    QCOMPARE(log.entries().first().flags, 7u);
}

void tst_PlatformLogfiles::helperIgnoresNullLog()
{
    CMessageBoardHelper::setText(QStringLiteral("a"), nullptr);
    CMessageBoardHelper::setWarning(QStringLiteral("b"), nullptr);
    CMessageBoardHelper::setCritical(QStringLiteral("c"), nullptr);
}

void tst_PlatformLogfiles::memoryLogKeepsOrder()
{
    CMemoryLogfile log;
    CMessageBoardHelper::setWarning(QStringLiteral("w1"), &log);
    CMessageBoardHelper::setText(QStringLiteral("i1"), &log);
    CMessageBoardHelper::setWarning(QStringLiteral("w2"), &log);

    QCOMPARE(log.texts(NkrLogfiles::E_SEV_WARNING), QStringList({QStringLiteral("w1"), QStringLiteral("w2")}));
    QCOMPARE(log.count(NkrLogfiles::E_SEV_INFO), 1);
    QCOMPARE(log.count(NkrLogfiles::E_SEV_CRITICAL), 0);
    QCOMPARE(log.entries().at(1).text, QStringLiteral("i1"));
    log.clear();
    QVERIFY(log.entries().isEmpty());
}

void tst_PlatformLogfiles::fileLogAppendsLines()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("log.txt"));
    {
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("earlier\n");
    }

    CFileLogfile log(path);
    QCOMPARE(log.fileName(), path);
    CMessageBoardHelper::setText(QStringLiteral("Grüße"), &log);
    CMessageBoardHelper::setWarning(QStringLiteral("two\nlines"), &log);
    CMessageBoardHelper::setCritical(QStringLiteral("bad"), &log);

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 5); // four lines and the empty rest after the last line break
    QCOMPARE(lines.at(0), QStringLiteral("earlier"));
    const QRegularExpression stamp(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d (.*)$"));
    const QStringList expected = {QStringLiteral("INFO Grüße"), QStringLiteral("WARNING two lines"),
                                  QStringLiteral("CRITICAL bad")};
    for (int i = 0; i < expected.size(); ++i) {
        const QRegularExpressionMatch match = stamp.match(lines.at(i + 1));
        QVERIFY2(match.hasMatch(), qPrintable(lines.at(i + 1)));
        QCOMPARE(match.captured(1), expected.at(i));
    }
}

void tst_PlatformLogfiles::fileLogSkipsUnopenableFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString blocker = dir.filePath(QStringLiteral("plain"));
    {
        QFile file(blocker);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    // The parent of the log is a regular file, so even root cannot create it.
    CFileLogfile log(blocker + QStringLiteral("/log.txt"));
    CMessageBoardHelper::setCritical(QStringLiteral("lost"), &log);
    QVERIFY(!QFile::exists(log.fileName()));
}

QTEST_GUILESS_MAIN(tst_PlatformLogfiles)
#include "tst_platform_logfiles.moc"

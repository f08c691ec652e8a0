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
    void memoryLogKeepsOrderAndSeverity();
    void fileLog();
};

void tst_PlatformLogfiles::memoryLogKeepsOrderAndSeverity()
{
    // A null log swallows the message without touching anything.
    CMessageBoardHelper::setText(QStringLiteral("a"), nullptr);
    CMessageBoardHelper::setWarning(QStringLiteral("b"), nullptr);
    CMessageBoardHelper::setCritical(QStringLiteral("c"), nullptr);

    CMemoryLogfile log;
    CMessageBoardHelper::setWarning(QStringLiteral("w1"), &log, 7u);
    CMessageBoardHelper::setText(QStringLiteral("i1"), &log);
    CMessageBoardHelper::setCritical(QStringLiteral("c1"), &log, 3u);
    CMessageBoardHelper::setWarning(QStringLiteral("w2"), &log);

    QStringList seen;
    for (const CMemoryLogfile::sEntry_t &entry : log.entries())
        seen << QStringLiteral("%1 %2 %3").arg(int(entry.severity)).arg(entry.text).arg(entry.flags);
    QCOMPARE(seen, QStringList({QStringLiteral("1 w1 7"), QStringLiteral("0 i1 0"), QStringLiteral("2 c1 3"),
                                QStringLiteral("1 w2 0")}));
    QCOMPARE(log.texts(NkrLogfiles::E_SEV_WARNING), QStringList({QStringLiteral("w1"), QStringLiteral("w2")}));
    QCOMPARE(log.count(NkrLogfiles::E_SEV_INFO), 1);
    log.clear();
    QVERIFY(log.entries().isEmpty());
}

void tst_PlatformLogfiles::fileLog()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("log.txt"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("earlier\n");
    file.close();

    CFileLogfile log(path);
    QCOMPARE(log.fileName(), path);
    CMessageBoardHelper::setText(QStringLiteral("Grüße"), &log);
    CMessageBoardHelper::setWarning(QStringLiteral("two\nlines"), &log);
    CMessageBoardHelper::setCritical(QStringLiteral("bad"), &log);

    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    const QRegularExpression stamp(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d "));
    QStringList texts;
    for (const QString &line : lines.mid(1, 3)) {
        QVERIFY2(stamp.match(line).hasMatch(), qPrintable(line));
        texts << line.mid(20);
    }
    QCOMPARE(lines.first(), QStringLiteral("earlier"));
    QCOMPARE(texts, QStringList({QStringLiteral("INFO Grüße"), QStringLiteral("WARNING two lines"),
                                 QStringLiteral("CRITICAL bad")}));
    QCOMPARE(lines.size(), 5); // four lines and the empty rest after the last line break

    // Under a regular file no log can be created, not even by root; the entry is dropped.
    CFileLogfile lost(path + QStringLiteral("/log.txt"));
    CMessageBoardHelper::setCritical(QStringLiteral("lost"), &lost);
    QVERIFY(!QFile::exists(lost.fileName()));
}

QTEST_GUILESS_MAIN(tst_PlatformLogfiles)
#include "tst_platform_logfiles.moc"

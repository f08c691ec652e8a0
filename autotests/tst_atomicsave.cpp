// Every writer of the library under a file-size limit, as a full disk would behave: the write
// fails half-way, the writer answers failure and the previous file stays as it was.
#include <CMemoryLogfile.h>
#include <COdictDataFile.h>
#include <COdictEdit.h>
#include <COdictEditorObject.h>
#include <COdictExportFile.h>
#include <COdictExportObjectIds.h>
#include <COdictExportTranslation.h>
#include <COdictObjectTree.h>
#include <COdictValueObject.h>
#include <CXmlAbstractKiroFile.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <functional>
#include <sys/resource.h>

class tst_AtomicSave : public QObject
{
    Q_OBJECT

private:
    // A dictionary large enough that every writer's output exceeds the limit.
    static void fill(COdictEdit &dictionary)
    {
        COdictObjectTree *tree = dictionary.objectTree();
        COdictNode *top = tree->createDictionaryNode(QStringLiteral("Big"));
        tree->rootNode()->appendChild(top);
        for (unsigned int id = 1; id <= 200; ++id) {
            COdictEditorObject o;
            o.setId(id);
            o.setName(QStringLiteral("OBJECT_%1").arg(id));
            o.setUiName(QStringLiteral("Object %1").arg(id));
            o.setDataType(NTypes::E_U16);
            o.setDataSize(2);
            bool ok = false;
            top->appendChild(tree->createObjectNode(o, NkrOdict::E_IT_OBJECT, &ok));
        }
    }

    /// Runs \a write with the file size limited to \a limit bytes; SIGXFSZ is ignored so the
    /// write fails with an error instead of ending the process (root is not exempt from it).
    static bool withFileSizeLimit(rlim_t limit, const std::function<bool()> &write)
    {
        rlimit saved {};
        getrlimit(RLIMIT_FSIZE, &saved);
        const auto previous = std::signal(SIGXFSZ, SIG_IGN);
        rlimit small = saved;
        small.rlim_cur = limit;
        setrlimit(RLIMIT_FSIZE, &small);
        const bool result = write();
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previous);
        return result;
    }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void failedWriteKeepsOldFile_data()
    {
        QTest::addColumn<QString>("writer");
        QTest::newRow("document file") << QStringLiteral("document");
        QTest::newRow("dictionary") << QStringLiteral("dictionary");
        QTest::newRow("data file") << QStringLiteral("data");
        QTest::newRow("C header") << QStringLiteral("header");
        QTest::newRow("id enumeration") << QStringLiteral("ids");
        QTest::newRow("translation source") << QStringLiteral("translation");
    }

    void failedWriteKeepsOldFile()
    {
        QFETCH(QString, writer);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        COdictEdit dictionary(NkrOdict::E_OT_EDITOR);
        fill(dictionary);

        QString target = dir.filePath(QStringLiteral("target.xml"));
        std::function<bool()> write;
        CXmlAbstractKiroFile document;
        COdictExportFile header(&dictionary);
        COdictExportObjectIds ids(&dictionary);
        COdictExportTranslation translation(&dictionary);
        QList<COdictValueObject> values;
        for (const COdictObjectId &uid : dictionary.allObjectUIds())
            values.append(dictionary.valueObject(uid));
        if (writer == QLatin1String("document")) {
            QVERIFY(document.create(QStringLiteral("KiroTest"), QStringLiteral("1.0.0"), CXMLMetaData()));
            for (int i = 0; i < 200; ++i)
                document.domDoc().addSubElement(document.documentElement(), QStringLiteral("Item"), QString::number(i));
            write = [&] { return document.save(target); };
        } else if (writer == QLatin1String("dictionary")) {
            write = [&] { return dictionary.saveDictionary(target) == 0; };
        } else if (writer == QLatin1String("data")) {
            write = [&] { return COdictDataFile().saveValues(target, values, QStringLiteral("test"), QStringLiteral("1")); };
        } else if (writer == QLatin1String("header")) {
            target = dir.filePath(QStringLiteral("odict.h"));
            write = [&] { return header.exportToHeaderfile(target); };
        } else if (writer == QLatin1String("ids")) {
            target = dir.filePath(QStringLiteral("NkrObjectIds.h"));
            write = [&] { return ids.exportToEnum(dir.path()); };
        } else {
            target = dir.filePath(QStringLiteral("NkrOdictTranslate.h"));
            write = [&] { return translation.exportToTranslate(dir.path()); };
        }

        const QByteArray old = "the previous file\n";
        QFile file(target);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(old);
        file.close();

        QVERIFY(!withFileSizeLimit(1024, write));
        QCOMPARE(contents(target), old);
        // Nothing is left behind beside the target.
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        // Without the limit the same writer succeeds and replaces the file.
        QVERIFY(write());
        QVERIFY(contents(target).size() > 1024);
    }
};

QTEST_GUILESS_MAIN(tst_AtomicSave)
#include "tst_atomicsave.moc"

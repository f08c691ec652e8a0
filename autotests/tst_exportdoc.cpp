// The documentation package: golden files of a small dictionary, and for the demo dictionary
// validity against the DITA 1.2 DTDs, links that resolve and one reference topic per object.
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictExportDoc.h"
#include "COdictObjectTree.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtTest>

#include <memory>
#include <sys/stat.h>

namespace {

const QDate exportDate(2024, 3, 5);
const QString catalog = QStringLiteral("/usr/share/dita-ot/catalog-dita.xml");
const QString expectedDir = QStringLiteral(KRODICT_SOURCE_DIR "/autotests/data/doc_expected");

/// A small editor dictionary with what a package has to show: nested groups, an empty group, two
/// groups of one name, an object outside every group, sub-objects, an enumeration, a bit set,
/// descriptions, a DS402 number, texts that need escaping or hold characters XML cannot carry,
/// and two objects of one id.
std::unique_ptr<COdictEdit> smallDictionary()
{
    std::unique_ptr<COdictEdit> dict(new COdictEdit(NkrOdict::E_OT_EDITOR));
    dict->setOdictMetaData(CXMLMetaData(QDate(2024, 2, 29), QTime(13, 5, 9), QStringLiteral("Doc & <Author>"),
                                        QStringLiteral("small"), NTypes::uVersion_t(0x0102000Au)));
    COdictObjectTree *tree = dict->objectTree();
    COdictHistory history;
    history.append(CXMLMetaData(QDate(2024, 2, 29), QTime(13, 5, 9), QStringLiteral("Doc"), QStringLiteral("Limits"),
                                NTypes::uVersion_t(0x0102000Au)));
    history.append(CXMLMetaData(QDate(2023, 1, 2), QTime(8, 0), QStringLiteral("Doc"), QStringLiteral("First"),
                                NTypes::uVersion_t(0x01000000u)));
    tree->setHistory(history);
    COdictDataStructure::SDataStructure_t structure;
    structure.name = QStringLiteral("Std");
    structure.uiName = QStringLiteral("Standard");
    structure.description = QStringLiteral("plain values");
    structure.id = 1;
    structure.members = {{QStringLiteral("uint32_t"), QStringLiteral("id"), COdictDataStructure::E_MS_ID, QString()}};
    dict->odictDataStructureList().append(structure);

    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Small Drive"));
    tree->rootNode()->appendChild(top);
    const auto group = [tree](COdictNode *parent, const QString &name, const QString &uiName) {
        COdictNode *node = tree->createGroupNode(name, uiName);
        parent->appendChild(node);
        return node;
    };
    const auto object = [tree](COdictNode *parent, const COdictEditorObject &o) {
        bool ok = false;
        COdictNode *node = tree->createObjectNode(o, o.isSubObject() ? NkrOdict::E_IT_SUBOBJECT : NkrOdict::E_IT_OBJECT, &ok);
        parent->appendChild(node);
        if (o.isSubObject())
            parent->dataPtr()->objectPtr()->addSubId(o.subId());
        return node;
    };
    const auto make = [](unsigned int id, const char *name, const QString &uiName) {
        COdictEditorObject o;
        o.setId(id);
        o.setName(QLatin1String(name));
        o.setUiName(uiName);
        o.setDataType(NTypes::E_U16);
        o.setDataSize(2);
        o.setAccessRights(0x0B);
        o.setObjectUsage(NkrOdict::E_OU_PARAMETER);
        o.setUserlevelRead(1);
        o.setUserlevelWrite(3);
        o.setUserlevelVisible(9);
        return o;
    };

    COdictNode *device = group(top, QStringLiteral("DEVICE"), QStringLiteral("Gerät"));
    COdictNode *limits = group(device, QStringLiteral("LIMITS"), QStringLiteral("Limits <max> & \"min\""));
    COdictEditorObject speed = make(0x10, "SPEED_LIMIT", QStringLiteral("Speed limit"));
    speed.setUiShortName(QStringLiteral("Speed"));
    speed.setMinValue(CVariant::fromU64(0, NTypes::E_U16));
    speed.setMaxValue(CVariant::fromU64(6000, NTypes::E_U16));
    speed.setDefaultValue(CVariant::fromU64(3000, NTypes::E_U16));
    speed.setDigits(1);
    speed.setDS402Id(0x6080);
    speed.setShortDescription(QStringLiteral("Highest speed the drive accepts."));
    speed.setDescription(QStringLiteral("First line of the description.\n\n  Second line, indented.\n"));
    object(limits, speed);
    COdictEditorObject mode = make(0x11, "MODE", QStringLiteral("Mode"));
    mode.enumDataPtr()->insert(1, QStringLiteral("Position"));
    mode.enumDataPtr()->insert(-3, QStringLiteral("Speed < 0"));
    object(limits, mode);
    group(device, QStringLiteral("EMPTY"), QStringLiteral("Nothing here"));

    // A second group of the first group's name, and a display name with a control character,
    // a non-character and a lone surrogate, which are left out.
    COdictNode *again = group(top, QStringLiteral("device"), QStringLiteral("Device again"));
    COdictEditorObject status = make(0x2000, "STATUS", QStringLiteral("Status\x01 word") + QChar(0xFFFE) + QChar(0xD800));
    status.bitSetDataPtr()->insert(0, QStringLiteral("Ready"));
    status.bitSetDataPtr()->insert(7, QStringLiteral("Fault & warning"));
    COdictNode *statusNode = object(again, status);
    COdictEditorObject sub = status;
    sub.setBitSetData(COdictObjectBitSet());
    sub.setSubId(3);
    sub.setName(QStringLiteral("STATUS_3"));
    sub.setUiName(QStringLiteral("Status part 3"));
    object(statusNode, sub);
    // Same id as SPEED_LIMIT: the loader warns about it, the package still needs two topics.
    object(again, make(0x10, "SPEED_COPY", QStringLiteral("Speed copy")));

    object(top, make(0x7FFFFFF0u, "FAR", QString()));
    return dict;
}

QStringList packageFiles(const QString &dir)
{
    return QDir(dir).entryList(QDir::Files, QDir::Name);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What the links of a package need: per file the root's name and id and every id inside it,
/// and every href with the file that holds it.
struct sPackage_t {
    QHash<QString, QString> rootName;
    QHash<QString, QString> rootId;
    QHash<QString, QSet<QString>> ids;
    QList<QPair<QString, QString>> hrefs;
    QString parseError;
};

sPackage_t readPackage(const QString &dir)
{
    sPackage_t package;
    for (const QString &name : packageFiles(dir)) {
        QFile file(QDir(dir).filePath(name));
        file.open(QIODevice::ReadOnly);
        QXmlStreamReader xml(&file);
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            const QXmlStreamAttributes attributes = xml.attributes();
            if (!package.rootName.contains(name)) {
                package.rootName.insert(name, xml.name().toString());
                package.rootId.insert(name, attributes.value(QLatin1String("id")).toString());
            }
            if (attributes.hasAttribute(QLatin1String("id")))
                package.ids[name].insert(attributes.value(QLatin1String("id")).toString());
            if (attributes.hasAttribute(QLatin1String("href")))
                package.hrefs.append(qMakePair(name, attributes.value(QLatin1String("href")).toString()));
        }
        if (xml.hasError() && package.parseError.isEmpty())
            package.parseError = name + QStringLiteral(": ") + xml.errorString();
    }
    return package;
}

} // namespace

class tst_ExportDoc : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("LC_ALL", "C.UTF-8"); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_small.isValid() && m_demo.isValid());
        m_smallDict = smallDictionary();
        COdictExportDoc small(m_smallDict.get());
        small.setDate(exportDate);
        QVERIFY(small.exportToPackage(m_small.path()));
        if (qEnvironmentVariableIsSet("KRODICT_WRITE_EXPECTED")) {
            // Regenerates the golden files after a deliberate change of the package.
            QDir(expectedDir).removeRecursively();
            QDir().mkpath(expectedDir);
            for (const QString &name : packageFiles(m_small.path()))
                QFile::copy(QDir(m_small.path()).filePath(name), QDir(expectedDir).filePath(name));
        }

        m_demoDict.reset(new COdictEdit(NkrOdict::E_OT_EDITOR));
        QCOMPARE(m_demoDict->loadDictionary(QFINDTESTDATA("../examples/demo_drive.xml")), 0);
        COdictExportDoc demo(m_demoDict.get());
        demo.setDate(exportDate);
        QVERIFY(demo.exportToPackage(m_demo.path()));
        QCOMPARE(demo.mapFileName(), QStringLiteral("DemoDrive.ditamap"));
    }

    void smallPackageHasTheExpectedFiles()
    {
        QCOMPARE(packageFiles(m_small.path()), packageFiles(expectedDir));
    }

    void smallPackageMatchesExpectedFile_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : packageFiles(expectedDir))
            QTest::newRow(qPrintable(name)) << name;
    }

    void smallPackageMatchesExpectedFile()
    {
        QFETCH(QString, name);
        // Cut between tags, so that a failure names the first element that differs.
        const auto pieces = [](const QByteArray &bytes) {
            return QString::fromUtf8(bytes).replace(QLatin1String("><"), QLatin1String(">\n<")).split(QLatin1Char('\n'));
        };
        QCOMPARE(pieces(readFile(QDir(m_small.path()).filePath(name))), pieces(readFile(QDir(expectedDir).filePath(name))));
    }

    void linksResolve_data()
    {
        QTest::addColumn<QString>("dir");
        QTest::newRow("small") << m_small.path();
        QTest::newRow("demo") << m_demo.path();
    }

    // Every href names a file of the package and, after "#", the id of that file's topic; every
    // topic's id is its file name; every topic is reached from the map. The toolkit reports
    // none of a broken fragment, so it is checked here.
    void linksResolve()
    {
        QFETCH(QString, dir);
        const sPackage_t package = readPackage(dir);
        QVERIFY2(package.parseError.isEmpty(), qPrintable(package.parseError));
        QSet<QString> fromMap;
        for (const auto &href : package.hrefs) {
            const QString file = href.second.section(QLatin1Char('#'), 0, 0);
            const QString fragment = href.second.section(QLatin1Char('#'), 1);
            QVERIFY2(package.rootName.contains(file), qPrintable(href.first + QStringLiteral(" -> ") + href.second));
            if (!fragment.isEmpty()) {
                QCOMPARE(fragment.section(QLatin1Char('/'), 0, 0), package.rootId.value(file));
                const QString element = fragment.section(QLatin1Char('/'), 1);
                QVERIFY(element.isEmpty() || package.ids.value(file).contains(element));
            }
            if (href.first.endsWith(QLatin1String(".ditamap")))
                fromMap.insert(file);
        }
        for (const QString &name : package.rootName.keys()) {
            if (name.endsWith(QLatin1String(".dita"))) {
                QCOMPARE(package.rootId.value(name) + QStringLiteral(".dita"), name);
                QVERIFY2(fromMap.contains(name), qPrintable(name + QStringLiteral(" is not in the map")));
            }
        }
    }

    void demoHasOneReferenceTopicPerObject()
    {
        const sPackage_t package = readPackage(m_demo.path());
        int references = 0;
        for (const QString &root : package.rootName)
            references += root == QLatin1String("reference");
        QCOMPARE(references, m_demoDict->allObjectUIds().size());
        QCOMPARE(references, 187); // 153 objects and 34 sub-objects
        QCOMPARE(package.rootName.value(QStringLiteral("obj_1018_01.dita")), QStringLiteral("reference"));
    }

    void packageIsValidDita_data() { linksResolve_data(); }

    void packageIsValidDita()
    {
        QFETCH(QString, dir);
        const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
        if (xmllint.isEmpty() || !QFile::exists(catalog))
            QSKIP("xmllint or the DITA DTDs (packages libxml2-utils, dita-ot) are not installed");
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XML_CATALOG_FILES"), catalog);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(dir);
        process.start(xmllint, QStringList{QStringLiteral("--noout"), QStringLiteral("--valid"), QStringLiteral("--nonet")}
                                   + packageFiles(dir));
        QVERIFY(process.waitForFinished(120000));
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError().left(4000).constData());
    }

    void refusesWhatCannotBeWritten_data()
    {
        QTest::addColumn<QString>("blocker");
        QTest::addColumn<QString>("kind"); // of the blocker: file, directory, fifo, or link to a FIFO
        QTest::addColumn<QString>("target");
        QTest::newRow("directory is a file") << QStringLiteral("package") << QStringLiteral("file") << QStringLiteral("package");
        QTest::newRow("parent is a file") << QStringLiteral("package") << QStringLiteral("file") << QStringLiteral("package/doc");
        QTest::newRow("topic is a directory")
            << QStringLiteral("package/obj_0011.dita") << QStringLiteral("directory") << QStringLiteral("package");
        QTest::newRow("topic is a FIFO") << QStringLiteral("package/obj_0011.dita") << QStringLiteral("fifo") << QStringLiteral("package");
        QTest::newRow("topic is a link to a FIFO")
            << QStringLiteral("package/obj_0011.dita") << QStringLiteral("link") << QStringLiteral("package");
    }

    void refusesWhatCannotBeWritten()
    {
        QFETCH(QString, blocker);
        QFETCH(QString, kind);
        QFETCH(QString, target);
        QTemporaryDir dir;
        const QString blockerPath = dir.filePath(blocker);
        QVERIFY(QDir().mkpath(QFileInfo(blockerPath).absolutePath()));
        if (kind == QLatin1String("directory")) {
            QVERIFY(QDir().mkpath(blockerPath + QStringLiteral("/x")));
        } else if (kind == QLatin1String("fifo")) {
            QCOMPARE(::mkfifo(QFile::encodeName(blockerPath).constData(), 0600), 0);
        } else if (kind == QLatin1String("link")) {
            const QString fifo = dir.filePath(QStringLiteral("fifo"));
            QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
            QVERIFY(QFile::link(fifo, blockerPath));
        } else {
            QFile file(blockerPath);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        COdictExportDoc exporter(m_smallDict.get());
        QVERIFY(!exporter.exportToPackage(dir.filePath(target)));
        // The blocker is still what it was, and nothing half-written is left behind: no partial
        // file, no temporary one.
        struct stat status;
        QCOMPARE(::stat(QFile::encodeName(blockerPath).constData(), &status), 0);
        QCOMPARE(S_ISFIFO(status.st_mode), kind == QLatin1String("fifo") || kind == QLatin1String("link"));
        QCOMPARE(S_ISDIR(status.st_mode), kind == QLatin1String("directory"));
        QDirIterator it(dir.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString name = QFileInfo(it.next()).fileName();
            QVERIFY2(!name.endsWith(QLatin1String(".part")) && !name.startsWith(QLatin1Char('.')), qPrintable(name));
        }
    }

    void textsAreEscapedAsQXmlStreamWriterDoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("written"); // what is left of the text for XML 1.0
        const QString markup = QStringLiteral("a <b> & \"c\" 'd' ]]>");
        const QString space = QStringLiteral("tab\there\r\nnext line");
        const QString wide = QStringLiteral("Ger\u00e4t \u2013 \u00bd \u20ac, clef ") + QString::fromUcs4(U"\U0001D11E\U0001F600");
        QTest::newRow("markup") << markup << markup;
        QTest::newRow("white space") << space << space;
        QTest::newRow("outside ASCII and the BMP") << wide << wide;
        QTest::newRow("what XML cannot carry")
            << QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b\x01\x1f") + QChar(0xFFFF) + QChar(0xDC00) + QStringLiteral("c")
            << QStringLiteral("abc");
    }

    // The package's bytes were once written by QXmlStreamWriter; the writer that replaced it
    // must escape and encode every text the same way.
    void textsAreEscapedAsQXmlStreamWriterDoes()
    {
        QFETCH(QString, text);
        QFETCH(QString, written);

        COdictEdit dict(NkrOdict::E_OT_EDITOR);
        COdictObjectTree *tree = dict.objectTree();
        COdictNode *top = tree->createDictionaryNode(QStringLiteral("Texts"));
        tree->rootNode()->appendChild(top);
        COdictEditorObject object;
        object.setId(1);
        object.setName(QStringLiteral("TEXT"));
        object.setUiName(text);
        object.setDataType(NTypes::E_U16);
        object.setDataSize(2);
        bool ok = false;
        top->appendChild(tree->createObjectNode(object, NkrOdict::E_IT_OBJECT, &ok));
        QVERIFY(ok);
        QTemporaryDir dir;
        QVERIFY(COdictExportDoc(&dict).exportToPackage(dir.path()));

        QString expected;
        QXmlStreamWriter xml(&expected);
        xml.writeTextElement(QStringLiteral("title"), written);
        const QByteArray topic = readFile(dir.filePath(QStringLiteral("obj_0001.dita")));
        QVERIFY2(topic.contains(expected.toUtf8()), topic.constData());
    }

    void exportReplacesAnOlderPackage()
    {
        QTemporaryDir dir;
        std::unique_ptr<COdictEdit> dict = smallDictionary();
        COdictExportDoc exporter(dict.get());
        exporter.setDate(exportDate);
        QVERIFY(exporter.exportToPackage(dir.path()));
        dict->objectTree()->node(0x11u)->dataPtr()->objectPtr()->setUiName(QStringLiteral("Operating mode"));
        QVERIFY(exporter.exportToPackage(dir.path()));
        QVERIFY(readFile(dir.filePath(QStringLiteral("obj_0011.dita"))).contains("<title>Operating mode</title>"));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name), packageFiles(m_small.path()));
        QVERIFY(QFileInfo(dir.filePath(QStringLiteral("obj_0011.dita"))).permissions() & QFileDevice::ReadOther);
    }

    void mapFileNameIsSafe_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("file");
        QTest::newRow("plain") << QStringLiteral("Demo-Drive_2") << QStringLiteral("Demo-Drive_2.ditamap");
        QTest::newRow("path") << QStringLiteral("../up/x y") << QStringLiteral("___up_x_y.ditamap");
        QTest::newRow("not ASCII") << QStringLiteral("Gerät") << QStringLiteral("Ger_t.ditamap");
        QTest::newRow("empty") << QString() << QStringLiteral("dictionary.ditamap");
    }

    void mapFileNameIsSafe()
    {
        QFETCH(QString, name);
        QFETCH(QString, file);
        COdictEdit dict(NkrOdict::E_OT_EDITOR);
        dict.objectTree()->rootNode()->appendChild(dict.objectTree()->createDictionaryNode(name));
        COdictExportDoc exporter(&dict);
        QCOMPARE(exporter.mapFileName(), file);
        QTemporaryDir dir;
        QVERIFY(exporter.exportToPackage(dir.path()));
        QVERIFY(QFile::exists(dir.filePath(file)));
    }

    // The tree is walked without recursion. The export runs on a thread with a small stack, so
    // a recursive walk over a chain of 2,000 groups would overflow it; files stay few.
    void deepTreeIsExported()
    {
        COdictEdit dict(NkrOdict::E_OT_STD);
        COdictObjectTree *tree = dict.objectTree();
        COdictNode *parent = tree->createDictionaryNode(QStringLiteral("Deep"));
        tree->rootNode()->appendChild(parent);
        const int depth = 2000;
        for (int i = 0; i < depth; ++i) {
            COdictNode *node = tree->createGroupNode(QStringLiteral("G%1").arg(i), QString());
            parent->appendChild(node);
            parent = node;
        }
        QTemporaryDir dir;
        bool written = false;
        std::unique_ptr<QThread> thread(QThread::create([&] {
            COdictExportDoc exporter(&dict);
            written = exporter.exportToPackage(dir.path());
        }));
        thread->setStackSize(128 * 1024);
        thread->start();
        QVERIFY(thread->wait(120000));
        QVERIFY(written);
        QCOMPARE(packageFiles(dir.path()).size(), depth + 2);
        QVERIFY(readFile(dir.filePath(QStringLiteral("grp_g0.dita"))).contains("grp_g1.dita#grp_g1"));
    }

private:
    QTemporaryDir m_small;
    QTemporaryDir m_demo;
    std::unique_ptr<COdictEdit> m_smallDict;
    std::unique_ptr<COdictEdit> m_demoDict;
};

QTEST_GUILESS_MAIN(tst_ExportDoc)
#include "tst_exportdoc.moc"

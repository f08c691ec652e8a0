#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictExportEds.h"
#include "COdictExportFile.h"
#include "COdictExportObjectIds.h"
#include "COdictExportTranslation.h"
#include "COdictObjectTree.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using Structure = COdictDataStructure::SDataStructure_t;
using Member = COdictDataStructure::SDataStructureMember_t;

namespace {

const QDate exportDate(2024, 3, 5);

/// One node of a hand-built editor dictionary, in tree order and `depth` levels below the dictionary
/// node: a group ('G', named "name/ui name"), an object ('O') or a sub-object ('S', its sub-id in
/// `id`). A sub-object is made from the object above it the way the editor makes one: named
/// "<object>_<sub-id>" unless named, without the object's bit set and enumeration.
struct Row {
    int depth;
    char kind;
    unsigned int id;
    QString name = QString();
    int access = 1;
    unsigned int rights = 0x2;
    NTypes::eTypes_t type = NTypes::E_U32;
    unsigned int size = 4;
};

/// An editor dictionary made of \a rows.
std::unique_ptr<COdictEdit> build(const QString &name, quint32 version, const QList<Row> &rows)
{
    std::unique_ptr<COdictEdit> dict(new COdictEdit(NkrOdict::E_OT_EDITOR));
    dict->setOdictMetaData(CXMLMetaData(QDate(2024, 2, 29), QTime(13, 5, 9), QStringLiteral("Demo Author"),
                                        QStringLiteral("demo"), NTypes::uVersion_t(version)));
    using D = COdictDataStructure;
    auto structure = [&dict](const char *name, const char *description, int id, const QList<Member> &members = {}) {
        const QString text = QString::fromLatin1(name);
        dict->odictDataStructureList().append(Structure{text, text, QString::fromLatin1(description), id, members});
    };
    auto m = [](const char *cType, const char *name, D::eMemberSource_t source, const char *literal = nullptr) {
        return Member{QString::fromLatin1(cType), QString::fromLatin1(name), source, literal ? QString::fromLatin1(literal) : QString()};
    };
    structure("NoObject", "number without object", -1);
    structure("SubObject", "object with sub-objects", -1);
    structure("RawValue", "plain value", 1,
              {m("uint32_t", "id", D::E_MS_ID), m("uint32_t", "subId", D::E_MS_SUBID),
               m("uint16_t", "dataType", D::E_MS_DATATYPE), m("uint16_t", "size", D::E_MS_DATASIZE),
               m("uint32_t", "access", D::E_MS_ACCESSRIGHTS), m("int32_t", "min", D::E_MS_MIN, "0"),
               m("int32_t", "max", D::E_MS_MAX, "0"), m("const char *", "name", D::E_MS_NAME)});
    structure("String", "text in a firmware buffer", 2,
              {m("uint32_t", "id", D::E_MS_ID), m("uint16_t", "size", D::E_MS_DATASIZE),
               m("void *", "buffer", D::E_MS_FW_VARIABLE, "NULL")});
    structure("Array", "array of elements", 3,
              {m("uint32_t", "id", D::E_MS_ID), m("uint16_t", "length", D::E_MS_ARRAYLENGTH),
               m("uint8_t", "usage", D::E_MS_OBJECTUSAGE), m("uint8_t", "levelRead", D::E_MS_USERLEVEL_READ),
               m("uint8_t", "levelWrite", D::E_MS_USERLEVEL_WRITE), m("uint32_t", "reserved", D::E_MS_LITERAL, "0U")});

    COdictObjectTree *tree = dict->objectTree();
    QVector<COdictNode *> parents{tree->createDictionaryNode(name)}; // the last node at each depth
    tree->rootNode()->appendChild(parents.first());
    for (const Row &row : rows) {
        COdictNode *parent = parents.at(row.depth);
        COdictNode *node = nullptr;
        if (row.kind == 'G') {
            node = tree->createGroupNode(row.name.section(QLatin1Char('/'), 0, 0), row.name.section(QLatin1Char('/'), 1));
        } else {
            COdictEditorObject object;
            const QString number = QString::number(row.id);
            if (row.kind == 'S') {
                COdictEditorObject *owner = parent->dataPtr()->toEditorObjectPtr();
                object = *owner;
                object.clearSubIds();
                object.setSubId(row.id);
                object.setName(row.name.isEmpty() ? owner->name() + QLatin1Char('_') + number : row.name);
                object.setUiName(owner->uiName() + QStringLiteral(" Sub ") + number);
                object.setUiShortName(owner->uiShortName() + QStringLiteral(" Sub ") + number);
                object.setBitSetData(COdictObjectBitSet());
                object.setEnumData(COdictObjectEnum());
                owner->addSubId(row.id);
            } else {
                object.setId(row.id);
                object.setName(row.name);
                object.setUiName(row.name + QStringLiteral(" (ui)"));
                object.setUiShortName(row.name.left(4));
                object.setDataType(row.type);
                object.setDataSize(row.size);
            }
            object.setAccessType(row.access);
            object.setAccessRights(row.rights);
            bool ok = false;
            node = tree->createObjectNode(object, row.kind == 'S' ? NkrOdict::E_IT_SUBOBJECT : NkrOdict::E_IT_OBJECT, &ok);
            Q_ASSERT(ok);
        }
        parent->appendChild(node);
        parents.resize(row.depth + 1);
        parents.append(node);
    }
    return dict;
}

// Objects below 0x1000 with gaps, sub-objects with gaps (one sub-id above 99), objects in the
// DS402 range and above 0x1000, an invalid object, bit sets, enumerations and groups.
std::unique_ptr<COdictEdit> demoDictionary(const QString &lastDs301Name)
{
    const QList<Row> rows{
        {0, 'G', 0, QStringLiteral("Device/Gerät")},
        {1, 'O', 1, QStringLiteral("DeviceType")},
        {1, 'O', 2, QStringLiteral("SerialNumber"), 1, 0x3},
        {1, 'O', 5, QStringLiteral("DeviceName"), 2, 0x2, NTypes::E_STRING, 32},
        {0, 'G', 0, QStringLiteral("Control/Regelung")},
        {1, 'O', 10, QStringLiteral("Gains"), 3, 0x2, NTypes::E_U16, 8},
        {2, 'S', 0},
        {2, 'S', 1, QString(), 3, 0x1}, // writable, but sub-objects do not make a structure writable
        {2, 'S', 3},
        {1, 'G', 0, QStringLiteral("Limits/Grenzen")},
        {2, 'O', 0x2000, QStringLiteral("Voltage")},
        {3, 'S', 1},
        {3, 'S', 100},
        {0, 'O', 0x2001, lastDs301Name, 1, 0x2, NTypes::E_I32},
        {0, 'O', 0x2002, QStringLiteral("UNKNOWN")}, // indexed, but not valid
        {0, 'G', 0, QStringLiteral("Drive/Antrieb")},
        {1, 'O', 0x6000, QStringLiteral("Abort"), 1, 0x3},
        {1, 'O', 0x6002, QStringLiteral("Mode"), 3},
        {2, 'S', 0},
        {2, 'S', 1},
    };
    std::unique_ptr<COdictEdit> dict = build(QStringLiteral("DemoDict"), 0x011C002A, rows);
    // What the rows do not hold: limits, a bit set, an enumeration, a firmware variable, an array length.
    const auto object = [&dict](unsigned int id, unsigned int subId = 0xFFFFFFFFu) {
        return dict->objectTree()->node(id, subId)->dataPtr()->toEditorObjectPtr();
    };
    object(1)->setMinValue(CVariant::fromU64(0, NTypes::E_U32));
    object(1)->setMaxValue(CVariant::fromU64(0xFFFF, NTypes::E_U32));
    object(1)->bitSetDataPtr()->insert(5, QStringLiteral("Enabled"));
    object(1)->bitSetDataPtr()->insert(0, QStringLiteral("Ready"));
    object(2)->setUiShortName(QString());
    object(5)->setFwVariablename(QStringLiteral("g_deviceName"));
    for (const unsigned int subId : {0xFFFFFFFFu, 0u, 1u, 3u})
        object(10, subId)->setArrayLength(4);
    object(0x2001)->setMinValue(CVariant::fromI64(-1000, NTypes::E_I32));
    object(0x2001)->setMaxValue(CVariant::fromI64(1000, NTypes::E_I32));
    object(0x6002)->enumDataPtr()->insert(3, QStringLiteral("Velocity"));
    object(0x6002)->enumDataPtr()->insert(1, QStringLiteral("Position"));
    return dict;
}

const QByteArray utf8Bom("\xEF\xBB\xBF");

/// The lines of a text file, without a leading byte-order mark.
QStringList readLines(const QString &path)
{
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return QString::fromUtf8(bytes.mid(bytes.startsWith(utf8Bom) ? 3 : 0)).split(QLatin1Char('\n'));
}

enum eExporter_t { E_HEADER, E_ENUM, E_TRANSLATION };
const char *const exportFileNames[] = {"demo.h", "NkrObjectIds.h", "NkrOdictTranslate.h"};

/// Runs one exporter into \a dir and returns the path of the file it writes (empty on failure).
QString runExport(eExporter_t which, COdict *dict, const QString &dir)
{
    const QString path = QDir(dir).filePath(QLatin1String(exportFileNames[which]));
    COdictExportFile header(dict);
    COdictExportObjectIds ids(dict);
    COdictExportTranslation translation(dict);
    header.setDate(exportDate);
    ids.setDate(exportDate);
    translation.setDate(exportDate);
    const bool ok = which == E_HEADER ? header.exportToHeaderfile(path)
        : which == E_ENUM             ? ids.exportToEnum(dir)
                                      : translation.exportToTranslate(dir);
    return ok ? path : QString();
}

/// The lines of the file one exporter writes for \a dict.
QStringList exportLines(eExporter_t which, const std::unique_ptr<COdictEdit> &dict)
{
    QTemporaryDir dir;
    return readLines(runExport(which, dict.get(), dir.path()));
}

const QString objectTable = QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_ObjectDictVarBase[ODICT_SIZE] =");
const QString ds402Table = QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_DS402VarBase[] =");
const QString ds301Lookup = QStringLiteral("const uint32_t ODICT_DS301LockupBase[] =");
const QString ds301Table = QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_DS301VarBase[] =");

/// The lines of \a lines from the one equal to \a first up to and including the next "};".
QStringList block(const QStringList &lines, const QString &first)
{
    const int start = lines.indexOf(first);
    if (start < 0)
        return {};
    const int end = lines.indexOf(QStringLiteral("};"), start);
    return lines.mid(start, end - start + 1);
}

} // namespace

Q_DECLARE_METATYPE(eExporter_t)

class tst_Export : public QObject
{
    Q_OBJECT

public:
    // The header's banner date follows the system locale; pin it so the expected files hold.
    static void initMain() { qputenv("LC_ALL", "C.UTF-8"); }

private slots:
    void matchesExpectedFile_data()
    {
        QTest::addColumn<eExporter_t>("which");
        QTest::addColumn<QString>("expected");

        QTest::newRow("C header") << E_HEADER << QStringLiteral("data/export_expected.h");
        QTest::newRow("object-id enumeration") << E_ENUM << QStringLiteral("data/NkrObjectIds_expected.h");
        QTest::newRow("translation source") << E_TRANSLATION << QStringLiteral("data/NkrOdictTranslate_expected.h");
    }

    void matchesExpectedFile()
    {
        QFETCH(eExporter_t, which);
        QFETCH(QString, expected);

        const std::unique_ptr<COdictEdit> dict = demoDictionary(QStringLiteral("Speed, filtered"));
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString path = runExport(which, dict.get(), dir.path());
        QVERIFY(!path.isEmpty());

        // KRODICT_UPDATE_EXPECTED=1 rewrites the expected files; review every changed line.
        if (qEnvironmentVariableIsSet("KRODICT_UPDATE_EXPECTED")) {
            const QString target = QStringLiteral(KRODICT_SOURCE_DIR "/autotests/") + expected;
            QFile::remove(target);
            QVERIFY(QFile::copy(path, target));
        }

        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly) && file.read(3) == utf8Bom);
        const QStringList actual = readLines(path);
        QCOMPARE(actual, readLines(QFINDTESTDATA(expected))); // reports the first line that differs

        // Exporting again into the same place starts from clean sections.
        QCOMPARE(readLines(runExport(which, dict.get(), dir.path())), actual);
    }

    void generatedHeaderCompiles_data()
    {
        QTest::addColumn<bool>("realistic");
        QTest::newRow("demo dictionary") << true;
        QTest::newRow("empty tables") << false;
    }

    void generatedHeaderCompiles()
    {
        QFETCH(bool, realistic);

        const QString gcc = QStandardPaths::findExecutable(QStringLiteral("gcc"));
        if (gcc.isEmpty())
            QSKIP("gcc is not installed");
        const QString stub = QFINDTESTDATA("data/odict_stub.h");
        QVERIFY(!stub.isEmpty());

        const std::unique_ptr<COdictEdit> dict =
            realistic ? demoDictionary(QStringLiteral("SpeedFiltered")) : build(QStringLiteral("Empty"), 0, {});
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QVERIFY(!runExport(E_HEADER, dict.get(), dir.path()).isEmpty());

        // Both halves of the header: the declarations every file sees and the definitions odict.c gets.
        QStringList args{QStringLiteral("-std=c99"), QStringLiteral("-Wall"), QStringLiteral("-Werror"), QStringLiteral("-c"),
                         QStringLiteral("-I") + QFileInfo(stub).absolutePath(), QStringLiteral("-I") + dir.path()};
        for (const char *defines : {"", "#define INCLUDED_FROM_ODICT_C\n"}) {
            QFile source(dir.filePath(*defines ? QStringLiteral("odict.c") : QStringLiteral("user.c")));
            QVERIFY(source.open(QIODevice::WriteOnly));
            source.write(QByteArray(defines) + "#include \"odict_stub.h\"\n#include \"demo.h\"\n");
            args << source.fileName();
        }
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setWorkingDirectory(dir.path());
        process.start(gcc, args);
        QVERIFY(process.waitForFinished(60000));
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, process.readAll().constData());
        QVERIFY(QFileInfo::exists(dir.filePath(QStringLiteral("odict.o"))));
    }

    void enumConstantNames_data()
    {
        QTest::addColumn<uint>("subId");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");

        QTest::newRow("sub-id 5 zero-filled") << 5u << "E_300_05_X" << "1288490188805";
        QTest::newRow("sub-id 100 with all digits") << 100u << "E_300_100_X" << "1288490188900";
    }

    void enumConstantNames()
    {
        QFETCH(uint, subId);
        QFETCH(QString, name);
        QFETCH(QString, value);

        const QStringList lines =
            exportLines(E_ENUM, build(QStringLiteral("Names"), 0, {{0, 'O', 300, QStringLiteral("X"), 1, 0}, {1, 'S', subId, QStringLiteral("X")}}));
        // The layout of the line is checked by the expected files.
        const QRegularExpression line(QStringLiteral(" +%1 += +%2,  //!< .*").arg(name, value));
        QVERIFY2(lines.indexOf(line) >= 0, qPrintable(lines.join(QLatin1Char('\n'))));
    }

    void emptyDictionary_data()
    {
        QTest::addColumn<quint32>("version");
        QTest::addColumn<QString>("fileVersion");
        QTest::addColumn<QStringList>("macros"); // main, minor, build

        QTest::newRow("version 0") << 0u << "V0.0.0" << QStringList{"(0x00U)", "(0x00U)", "(0x0000U)"};
        QTest::newRow("version all ones") << 0xFFFFFFFFu << "V255.255.65535" << QStringList{"(0xFFU)", "(0xFFU)", "(0xFFFFU)"};
    }

    void emptyDictionary()
    {
        QFETCH(quint32, version);
        QFETCH(QString, fileVersion);
        QFETCH(QStringList, macros);

        const std::unique_ptr<COdictEdit> dict = build(QStringLiteral("Empty"), version, {});
        const QStringList lines = exportLines(E_HEADER, dict);
        QVERIFY(lines.contains(QStringLiteral("// Odict-Dateiversion: %1 from 29.02.2024 at 13:05:09 by Demo Author").arg(fileVersion)));
        QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_MAIN   ") + macros.at(0)));
        QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_MINOR  ") + macros.at(1)));
        QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_BUILD  ") + macros.at(2)));
        QVERIFY(lines.contains(QStringLiteral("#define ODICT_SIZE           1")));
        // Number 0 always has a row, so the object table is indexable; the others stay empty.
        const QString noObject = QStringLiteral("    {( &") + QStringLiteral("ODICT_Fct_NoObject").leftJustified(35)
            + QStringLiteral(" ), (void*)( ") + QStringLiteral("NULL").leftJustified(76) + QStringLiteral(" )}     //! Index:      0");
        QCOMPARE(block(lines, objectTable).mid(1), (QStringList{QStringLiteral("{"), noObject, QStringLiteral("};")}));
        for (const QString &opening : {ds402Table, ds301Lookup, ds301Table})
            QCOMPARE(block(lines, opening).mid(1), (QStringList{QStringLiteral("{"), QStringLiteral("};")}));

        // The enumeration of an empty dictionary holds only the C++ sentinel.
        const QStringList ids = exportLines(E_ENUM, dict);
        const int open = ids.indexOf(QStringLiteral("    {"));
        QVERIFY(open > 0);
        QCOMPARE(ids.mid(open + 1, 2), (QStringList{QStringLiteral("#ifdef __cplusplus"),
                                                    QStringLiteral("        //! Interne Konstante für eine undefinierte Objekt-ID")}));
    }

    void farObjectKeepsTablesSmall_data()
    {
        QTest::addColumn<uint>("far");
        QTest::addColumn<QString>("lookup");
        QTest::newRow("0x7FFFFFF0") << 0x7FFFFFF0u << QStringLiteral("    0x7ffffff0     // Far");
        QTest::newRow("0xFFFFFFF0") << 0xFFFFFFF0u << QStringLiteral("    0xfffffff0     // Far");
    }

    // Only the two tables indexed by number visit every number of their range; every other part
    // of each file walks the objects that exist, so a sparse dictionary gives small files fast.
    void farObjectKeepsTablesSmall()
    {
        QFETCH(uint, far);
        QFETCH(QString, lookup);

        const std::unique_ptr<COdictEdit> dict =
            build(QStringLiteral("Far"), 0, {{0, 'O', 0, QStringLiteral("Zero")}, {0, 'O', 3, QStringLiteral("Near")},
                                             {0, 'O', far, QStringLiteral("Far")}});
        const QStringList lines = exportLines(E_HEADER, dict);

        QCOMPARE(block(lines, objectTable).size(), 2 + 4 + 1);
        // Every number of the DS402 range lies below the object-number count: 256 placeholders.
        QCOMPARE(block(lines, ds402Table).size(), 2 + 256 + 1);
        QCOMPARE(block(lines, ds301Lookup).mid(1), (QStringList{QStringLiteral("{"), lookup, QStringLiteral("};")}));
        QVERIFY(lines.size() < 400);
        QVERIFY(exportLines(E_ENUM, dict).size() < 100);
        QVERIFY(exportLines(E_TRANSLATION, dict).size() < 100);
    }

    void progressEndsAtItsTotal_data()
    {
        QTest::addColumn<QString>("exporter");
        for (const char *name : {"header", "ids", "translation", "eds"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    // The exporters write while they walk the objects, so the total is fixed before the first
    // line: the count climbs to it by itself and never past it.
    void progressEndsAtItsTotal()
    {
        QFETCH(QString, exporter);

        const std::unique_ptr<COdictEdit> dict = demoDictionary(QStringLiteral("Speed"));
        QList<QPair<qint64, qint64>> calls;
        dict->setProgressCallback([&calls](qint64 done, qint64 total) { calls.append({done, total}); });
        QTemporaryDir dir;
        bool written = false;
        if (exporter == QLatin1String("header"))
            written = COdictExportFile(dict.get()).exportToHeaderfile(dir.filePath(QStringLiteral("demo.h")));
        else if (exporter == QLatin1String("ids"))
            written = COdictExportObjectIds(dict.get()).exportToEnum(dir.path());
        else if (exporter == QLatin1String("translation"))
            written = COdictExportTranslation(dict.get()).exportToTranslate(dir.path());
        else
            written = COdictExportEds(dict.get()).exportToEds(dir.filePath(QStringLiteral("demo.eds")));
        QVERIFY(written);

        // A small total reports every step, the last one just before the final report.
        QVERIFY(calls.size() >= 3);
        const qint64 total = calls.first().second;
        QVERIFY(total > 0 && total < 100);
        for (int i = 0; i < calls.size(); ++i) {
            QCOMPARE(calls.at(i).second, total);
            QVERIFY2(calls.at(i).first <= total, qPrintable(QString::number(calls.at(i).first)));
            QVERIFY(i == 0 || calls.at(i).first >= calls.at(i - 1).first);
        }
        QCOMPARE(calls.at(calls.size() - 2).first, total);
        QCOMPARE(calls.last(), qMakePair(total, total));
    }

    void failedWriteKeepsOldFile_data()
    {
        QTest::addColumn<eExporter_t>("which");
        QTest::newRow("header") << E_HEADER;
        QTest::newRow("enumeration") << E_ENUM;
        QTest::newRow("translation") << E_TRANSLATION;
    }

    void failedWriteKeepsOldFile()
    {
        QFETCH(eExporter_t, which);

        const std::unique_ptr<COdictEdit> dict = demoDictionary(QStringLiteral("Speed"));
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        // A directory that does not exist is not created.
        QVERIFY(runExport(which, dict.get(), dir.filePath(QStringLiteral("missing"))).isEmpty());
        QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("missing"))));

        // Occupy the target name with a directory holding an old file: nothing of it may change.
        const QString fileName = QLatin1String(exportFileNames[which]);
        QVERIFY(QDir(dir.path()).mkdir(fileName));
        QFile old(QDir(dir.filePath(fileName)).filePath(QStringLiteral("old.txt")));
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();

        QVERIFY(runExport(which, dict.get(), dir.path()).isEmpty());
        QCOMPARE(readLines(old.fileName()), QStringList{QStringLiteral("old")});
        QCOMPARE(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{fileName});
    }
};

QTEST_GUILESS_MAIN(tst_Export)
#include "tst_export.moc"

#include "COdictEdit.h"
#include "COdictEditorObject.h"
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

COdictEditorObject editorObject(unsigned int id, const QString &name, int accessType, unsigned int rights,
                                NTypes::eTypes_t type = NTypes::E_U32, unsigned int size = 4)
{
    COdictEditorObject object;
    object.setId(id);
    object.setName(name);
    object.setUiName(name + QStringLiteral(" (ui)"));
    object.setUiShortName(name.left(4));
    object.setAccessType(accessType);
    object.setAccessRights(rights);
    object.setDataType(type);
    object.setDataSize(size);
    return object;
}

/// Builds an editor dictionary by hand, node by node.
class Builder
{
public:
    explicit Builder(const QString &name, quint32 version = 0) : m_dict(new COdictEdit(NkrOdict::E_OT_EDITOR))
    {
        m_dict->setOdictMetaData(CXMLMetaData(QDate(2024, 2, 29), QTime(13, 5, 9), QStringLiteral("Demo Author"),
                                              QStringLiteral("demo"), NTypes::uVersion_t(version)));
        COdictObjectTree *tree = m_dict->objectTree();
        m_top = tree->createDictionaryNode(name);
        tree->rootNode()->appendChild(m_top);
        using D = COdictDataStructure;
        auto structure = [this](const char *name, const char *description, int id, const QList<Member> &members = {}) {
            const QString text = QString::fromLatin1(name);
            m_dict->odictDataStructureList().append(Structure{text, text, QString::fromLatin1(description), id, members});
        };
        auto m = [](const char *cType, const char *name, D::eMemberSource_t source, const char *literal = nullptr) {
            return Member{QString::fromLatin1(cType), QString::fromLatin1(name), source,
                          literal ? QString::fromLatin1(literal) : QString()};
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
    }

    COdictNode *top() const { return m_top; }

    COdictNode *group(COdictNode *parent, const QString &name, const QString &uiName)
    {
        COdictNode *node = m_dict->objectTree()->createGroupNode(name, uiName);
        parent->appendChild(node);
        return node;
    }

    COdictNode *add(COdictNode *parent, const COdictEditorObject &object, NkrOdict::eItemType_t type = NkrOdict::E_IT_OBJECT)
    {
        bool ok = false;
        COdictNode *node = m_dict->objectTree()->createObjectNode(object, type, &ok);
        Q_ASSERT(ok);
        parent->appendChild(node);
        return node;
    }

    /// A sub-object made from its object the way the editor makes one (named "<object>_<sub-id>"
    /// unless \a name is given).
    COdictNode *addSub(COdictNode *objectNode, unsigned int subId, const QString &name = QString(),
                       int accessType = 1, unsigned int rights = 0x2)
    {
        COdictEditorObject *owner = objectNode->dataPtr()->toEditorObjectPtr();
        COdictEditorObject sub = *owner;
        sub.clearSubIds();
        sub.setSubId(subId);
        sub.setName(name.isEmpty() ? owner->name() + QLatin1Char('_') + QString::number(subId) : name);
        sub.setUiName(owner->uiName() + QStringLiteral(" Sub ") + QString::number(subId));
        sub.setUiShortName(owner->uiShortName() + QStringLiteral(" Sub ") + QString::number(subId));
        sub.setAccessType(accessType);
        sub.setAccessRights(rights);
        sub.setBitSetData(COdictObjectBitSet());
        sub.setEnumData(COdictObjectEnum());
        owner->addSubId(subId);
        return add(objectNode, sub, NkrOdict::E_IT_SUBOBJECT);
    }

    std::unique_ptr<COdictEdit> take() { return std::move(m_dict); }

private:
    std::unique_ptr<COdictEdit> m_dict;
    COdictNode *m_top = nullptr;
};

// Objects below 0x1000 with gaps, sub-objects with gaps (one sub-id above 99), objects in the
// DS402 range and above 0x1000, an invalid object, bit sets, enumerations and groups.
std::unique_ptr<COdictEdit> demoDictionary(const QString &lastDs301Name)
{
    Builder b(QStringLiteral("DemoDict"), 0x011C002A);

    COdictNode *device = b.group(b.top(), QStringLiteral("Device"), QStringLiteral("Gerät"));
    COdictEditorObject type = editorObject(1, QStringLiteral("DeviceType"), 1, 0x2);
    type.setMinValue(CVariant::fromU64(0, NTypes::E_U32));
    type.setMaxValue(CVariant::fromU64(0xFFFF, NTypes::E_U32));
    type.bitSetDataPtr()->insert(5, QStringLiteral("Enabled"));
    type.bitSetDataPtr()->insert(0, QStringLiteral("Ready"));
    b.add(device, type);
    COdictEditorObject serial = editorObject(2, QStringLiteral("SerialNumber"), 1, 0x3);
    serial.setUiShortName(QString());
    b.add(device, serial);
    COdictEditorObject name = editorObject(5, QStringLiteral("DeviceName"), 2, 0x2, NTypes::E_STRING, 32);
    name.setFwVariablename(QStringLiteral("g_deviceName"));
    b.add(device, name);

    COdictNode *control = b.group(b.top(), QStringLiteral("Control"), QStringLiteral("Regelung"));
    COdictEditorObject gains = editorObject(10, QStringLiteral("Gains"), 3, 0x2, NTypes::E_U16, 8);
    gains.setArrayLength(4);
    COdictNode *gainsNode = b.add(control, gains);
    b.addSub(gainsNode, 0);
    b.addSub(gainsNode, 1, QString(), 3, 0x1); // writable, but sub-objects do not make a structure writable
    b.addSub(gainsNode, 3);
    COdictNode *limits = b.group(control, QStringLiteral("Limits"), QStringLiteral("Grenzen"));
    COdictNode *voltage = b.add(limits, editorObject(0x2000, QStringLiteral("Voltage"), 1, 0x2));
    b.addSub(voltage, 1);
    b.addSub(voltage, 100);

    COdictEditorObject speed = editorObject(0x2001, lastDs301Name, 1, 0x2, NTypes::E_I32);
    speed.setMinValue(CVariant::fromI64(-1000, NTypes::E_I32));
    speed.setMaxValue(CVariant::fromI64(1000, NTypes::E_I32));
    b.add(b.top(), speed);
    b.add(b.top(), editorObject(0x2002, QStringLiteral("UNKNOWN"), 1, 0x2)); // indexed, but not valid

    COdictNode *drive = b.group(b.top(), QStringLiteral("Drive"), QStringLiteral("Antrieb"));
    b.add(drive, editorObject(0x6000, QStringLiteral("Abort"), 1, 0x3));
    COdictEditorObject mode = editorObject(0x6002, QStringLiteral("Mode"), 3, 0x2);
    mode.enumDataPtr()->insert(3, QStringLiteral("Velocity"));
    mode.enumDataPtr()->insert(1, QStringLiteral("Position"));
    COdictNode *modeNode = b.add(drive, mode);
    b.addSub(modeNode, 0);
    b.addSub(modeNode, 1);
    return b.take();
}

QStringList readLines(const QString &path, bool *hasBom = nullptr)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    const bool bom = bytes.startsWith("\xEF\xBB\xBF");
    if (hasBom)
        *hasBom = bom;
    return QString::fromUtf8(bom ? bytes.mid(3) : bytes).split(QLatin1Char('\n'));
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
    void matchesExpectedFile_data();
    void matchesExpectedFile();
    void generatedHeaderCompiles_data();
    void generatedHeaderCompiles();
    void versionMacros_data();
    void versionMacros();
    void enumConstantNames_data();
    void enumConstantNames();
    void emptyDictionary();
    void farObjectKeepsTablesSmall();
    void failedWriteKeepsOldFile_data();
    void failedWriteKeepsOldFile();
};

void tst_Export::matchesExpectedFile_data()
{
    QTest::addColumn<eExporter_t>("which");
    QTest::addColumn<QString>("expected");

    QTest::newRow("C header") << E_HEADER << QStringLiteral("data/export_expected.h");
    QTest::newRow("object-id enumeration") << E_ENUM << QStringLiteral("data/NkrObjectIds_expected.h");
    QTest::newRow("translation source") << E_TRANSLATION << QStringLiteral("data/NkrOdictTranslate_expected.h");
}

void tst_Export::matchesExpectedFile()
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

    bool bom = false;
    const QStringList actual = readLines(path, &bom);
    QVERIFY2(bom, "the file starts with a UTF-8 byte-order mark");
    QCOMPARE(actual, readLines(QFINDTESTDATA(expected))); // reports the first line that differs

    // Exporting again into the same place starts from clean sections.
    QCOMPARE(readLines(runExport(which, dict.get(), dir.path())), actual);
}

void tst_Export::generatedHeaderCompiles_data()
{
    QTest::addColumn<bool>("realistic");
    QTest::newRow("demo dictionary") << true;
    QTest::newRow("empty tables") << false;
}

void tst_Export::generatedHeaderCompiles()
{
    QFETCH(bool, realistic);

    const QString gcc = QStandardPaths::findExecutable(QStringLiteral("gcc"));
    if (gcc.isEmpty())
        QSKIP("gcc is not installed");
    const QString stub = QFINDTESTDATA("data/odict_stub.h");
    QVERIFY(!stub.isEmpty());

    const std::unique_ptr<COdictEdit> dict =
        realistic ? demoDictionary(QStringLiteral("SpeedFiltered")) : Builder(QStringLiteral("Empty")).take();
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

void tst_Export::versionMacros_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QString>("fileVersion");
    QTest::addColumn<QStringList>("macros"); // main, minor, build

    QTest::newRow("zero") << 0u << "V0.0.0" << QStringList{"(0x00U)", "(0x00U)", "(0x0000U)"};
    QTest::newRow("all ones") << 0xFFFFFFFFu << "V255.255.65535" << QStringList{"(0xFFU)", "(0xFFU)", "(0xFFFFU)"};
}

void tst_Export::versionMacros()
{
    QFETCH(quint32, version);
    QFETCH(QString, fileVersion);
    QFETCH(QStringList, macros);

    const QStringList lines = exportLines(E_HEADER, Builder(QStringLiteral("Versioned"), version).take());
    QVERIFY(lines.contains(QStringLiteral("// Odict-Dateiversion: %1 from 29.02.2024 at 13:05:09 by Demo Author").arg(fileVersion)));
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_MAIN   ") + macros.at(0)));
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_MINOR  ") + macros.at(1)));
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_BUILD  ") + macros.at(2)));
}

void tst_Export::enumConstantNames_data()
{
    QTest::addColumn<uint>("subId");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");

    QTest::newRow("sub-id 5 zero-filled") << 5u << "E_300_05_X" << "1288490188805";
    QTest::newRow("sub-id 100 with all digits") << 100u << "E_300_100_X" << "1288490188900";
}

void tst_Export::enumConstantNames()
{
    QFETCH(uint, subId);
    QFETCH(QString, name);
    QFETCH(QString, value);

    Builder b(QStringLiteral("Names"));
    b.addSub(b.add(b.top(), editorObject(300, QStringLiteral("X"), 1, 0)), subId, QStringLiteral("X"));
    const QStringList lines = exportLines(E_ENUM, b.take());
    // The layout of the line is checked by the expected files.
    const QRegularExpression line(QStringLiteral(" +%1 += +%2,  //!< .*").arg(name, value));
    QVERIFY2(lines.indexOf(line) >= 0, qPrintable(lines.join(QLatin1Char('\n'))));
}

void tst_Export::emptyDictionary()
{
    const std::unique_ptr<COdictEdit> dict = Builder(QStringLiteral("Empty")).take();
    const QStringList lines = exportLines(E_HEADER, dict);
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

void tst_Export::farObjectKeepsTablesSmall()
{
    Builder b(QStringLiteral("Far"));
    b.add(b.top(), editorObject(3, QStringLiteral("Near"), 1, 0x2));
    b.add(b.top(), editorObject(0x7FFFFFF0, QStringLiteral("Far"), 1, 0x2));
    const std::unique_ptr<COdictEdit> dict = b.take();
    const QStringList lines = exportLines(E_HEADER, dict);

    QCOMPARE(block(lines, objectTable).size(), 2 + 4 + 1);
    // Every number of the DS402 range lies below the object-number count: 256 placeholders.
    QCOMPARE(block(lines, ds402Table).size(), 2 + 256 + 1);
    QCOMPARE(block(lines, ds301Lookup).mid(1),
             (QStringList{QStringLiteral("{"), QStringLiteral("    0x7ffffff0     // Far"), QStringLiteral("};")}));
    QVERIFY(lines.size() < 400);
    QVERIFY(exportLines(E_ENUM, dict).size() < 100);
}

void tst_Export::failedWriteKeepsOldFile_data()
{
    QTest::addColumn<eExporter_t>("which");
    QTest::newRow("header") << E_HEADER;
    QTest::newRow("enumeration") << E_ENUM;
    QTest::newRow("translation") << E_TRANSLATION;
}

void tst_Export::failedWriteKeepsOldFile()
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
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();

    QVERIFY(runExport(which, dict.get(), dir.path()).isEmpty());
    QCOMPARE(readLines(old.fileName()), QStringList{QStringLiteral("old")});
    QCOMPARE(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{fileName});
}

QTEST_GUILESS_MAIN(tst_Export)
#include "tst_export.moc"

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

Member member(const QString &cType, const QString &name, COdictDataStructure::eMemberSource_t source,
              const QString &literal = QString())
{
    Member m;
    m.cType = cType;
    m.name = name;
    m.source = source;
    m.literal = literal;
    return m;
}

Structure structure(const QString &name, const QString &description, int id, const QList<Member> &members = {})
{
    Structure s;
    s.name = name;
    s.uiName = name;
    s.description = description;
    s.id = id;
    s.members = members;
    return s;
}

COdictEditorObject editorObject(unsigned int id, const QString &name, int accessType, unsigned int rights)
{
    COdictEditorObject object;
    object.setId(id);
    object.setName(name);
    object.setUiName(name + QStringLiteral(" (ui)"));
    object.setUiShortName(name.left(4));
    object.setAccessType(accessType);
    object.setAccessRights(rights);
    object.setDataType(NTypes::E_U32);
    object.setDataSize(4);
    return object;
}

/// Builds an editor dictionary by hand, node by node.
class Builder
{
public:
    explicit Builder(const QString &name) : m_dict(new COdictEdit(NkrOdict::E_OT_EDITOR))
    {
        COdictObjectTree *tree = m_dict->objectTree();
        m_top = tree->createDictionaryNode(name);
        tree->rootNode()->appendChild(m_top);
        COdictDataStructure &list = m_dict->odictDataStructureList();
        list.append(structure(QStringLiteral("NoObject"), QStringLiteral("number without object"), -1));
        list.append(structure(QStringLiteral("SubObject"), QStringLiteral("object with sub-objects"), -1));
        using D = COdictDataStructure;
        list.append(structure(QStringLiteral("RawValue"), QStringLiteral("plain value"), 1,
                              {member(QStringLiteral("uint32_t"), QStringLiteral("id"), D::E_MS_ID),
                               member(QStringLiteral("uint32_t"), QStringLiteral("subId"), D::E_MS_SUBID),
                               member(QStringLiteral("uint16_t"), QStringLiteral("dataType"), D::E_MS_DATATYPE),
                               member(QStringLiteral("uint16_t"), QStringLiteral("size"), D::E_MS_DATASIZE),
                               member(QStringLiteral("uint32_t"), QStringLiteral("access"), D::E_MS_ACCESSRIGHTS),
                               member(QStringLiteral("int32_t"), QStringLiteral("min"), D::E_MS_MIN, QStringLiteral("0")),
                               member(QStringLiteral("int32_t"), QStringLiteral("max"), D::E_MS_MAX, QStringLiteral("0")),
                               member(QStringLiteral("const char *"), QStringLiteral("name"), D::E_MS_NAME)}));
        list.append(structure(QStringLiteral("String"), QStringLiteral("text in a firmware buffer"), 2,
                              {member(QStringLiteral("uint32_t"), QStringLiteral("id"), D::E_MS_ID),
                               member(QStringLiteral("uint16_t"), QStringLiteral("size"), D::E_MS_DATASIZE),
                               member(QStringLiteral("void *"), QStringLiteral("buffer"), D::E_MS_FW_VARIABLE,
                                      QStringLiteral("NULL"))}));
        list.append(structure(QStringLiteral("Array"), QStringLiteral("array of elements"), 3,
                              {member(QStringLiteral("uint32_t"), QStringLiteral("id"), D::E_MS_ID),
                               member(QStringLiteral("uint16_t"), QStringLiteral("length"), D::E_MS_ARRAYLENGTH),
                               member(QStringLiteral("uint8_t"), QStringLiteral("usage"), D::E_MS_OBJECTUSAGE),
                               member(QStringLiteral("uint8_t"), QStringLiteral("levelRead"), D::E_MS_USERLEVEL_READ),
                               member(QStringLiteral("uint8_t"), QStringLiteral("levelWrite"), D::E_MS_USERLEVEL_WRITE),
                               member(QStringLiteral("uint32_t"), QStringLiteral("reserved"), D::E_MS_LITERAL,
                                      QStringLiteral("0U"))}));
    }

    COdictNode *top() const { return m_top; }

    COdictNode *group(COdictNode *parent, const QString &name, const QString &uiName)
    {
        COdictNode *node = m_dict->objectTree()->createGroupNode(name, uiName);
        parent->appendChild(node);
        return node;
    }

    COdictNode *add(COdictNode *parent, const COdictEditorObject &object)
    {
        bool ok = false;
        COdictNode *node = m_dict->objectTree()->createObjectNode(object, NkrOdict::E_IT_OBJECT, &ok);
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
        bool ok = false;
        COdictNode *node = m_dict->objectTree()->createObjectNode(sub, NkrOdict::E_IT_SUBOBJECT, &ok);
        Q_ASSERT(ok);
        objectNode->appendChild(node);
        owner->addSubId(subId);
        return node;
    }

    void setVersion(quint32 version)
    {
        m_dict->setOdictMetaData(CXMLMetaData(QDate(2024, 2, 29), QTime(13, 5, 9), QStringLiteral("Demo Author"),
                                              QStringLiteral("demo"), NTypes::uVersion_t(version)));
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
    Builder b(QStringLiteral("DemoDict"));
    b.setVersion(0x011C002A);

    COdictNode *device = b.group(b.top(), QStringLiteral("Device"), QStringLiteral("Gerät"));
    COdictEditorObject type = editorObject(1, QStringLiteral("DeviceType"), 1, 0x2);
    type.setMinValue(CVariant::fromU64(0, NTypes::E_U32));
    type.setMaxValue(CVariant::fromU64(0xFFFF, NTypes::E_U32));
    COdictObjectBitSet bits;
    bits.insert(5, QStringLiteral("Enabled"));
    bits.insert(0, QStringLiteral("Ready"));
    type.setBitSetData(bits);
    b.add(device, type);
    COdictEditorObject serial = editorObject(2, QStringLiteral("SerialNumber"), 1, 0x3);
    serial.setUiShortName(QString());
    b.add(device, serial);
    COdictEditorObject name = editorObject(5, QStringLiteral("DeviceName"), 2, 0x2);
    name.setDataType(NTypes::E_STRING);
    name.setDataSize(32);
    name.setFwVariablename(QStringLiteral("g_deviceName"));
    b.add(device, name);

    COdictNode *control = b.group(b.top(), QStringLiteral("Control"), QStringLiteral("Regelung"));
    COdictEditorObject gains = editorObject(10, QStringLiteral("Gains"), 3, 0x2);
    gains.setDataType(NTypes::E_U16);
    gains.setArrayLength(4);
    gains.setDataSize(8);
    COdictNode *gainsNode = b.add(control, gains);
    b.addSub(gainsNode, 0);
    b.addSub(gainsNode, 1, QString(), 3, 0x1); // writable, but sub-objects do not make a structure writable
    b.addSub(gainsNode, 3);
    COdictNode *limits = b.group(control, QStringLiteral("Limits"), QStringLiteral("Grenzen"));
    COdictNode *voltage = b.add(limits, editorObject(0x2000, QStringLiteral("Voltage"), 1, 0x2));
    b.addSub(voltage, 1);
    b.addSub(voltage, 100);

    COdictEditorObject speed = editorObject(0x2001, lastDs301Name, 1, 0x2);
    speed.setDataType(NTypes::E_I32);
    speed.setMinValue(CVariant::fromI64(-1000, NTypes::E_I32));
    speed.setMaxValue(CVariant::fromI64(1000, NTypes::E_I32));
    b.add(b.top(), speed);
    b.add(b.top(), editorObject(0x2002, QStringLiteral("UNKNOWN"), 1, 0x2)); // indexed, but not valid

    COdictNode *drive = b.group(b.top(), QStringLiteral("Drive"), QStringLiteral("Antrieb"));
    b.add(drive, editorObject(0x6000, QStringLiteral("Abort"), 1, 0x3));
    COdictEditorObject mode = editorObject(0x6002, QStringLiteral("Mode"), 3, 0x2);
    COdictObjectEnum modes;
    modes.insert(3, QStringLiteral("Velocity"));
    modes.insert(1, QStringLiteral("Position"));
    mode.setEnumData(modes);
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

/// Runs one exporter into \a dir and returns the path of the file it writes (empty on failure).
QString runExport(eExporter_t which, COdict *dict, const QString &dir)
{
    bool ok = false;
    QString path;
    if (which == E_HEADER) {
        COdictExportFile exporter(dict);
        exporter.setDate(exportDate);
        path = QDir(dir).filePath(QStringLiteral("demo.h"));
        ok = exporter.exportToHeaderfile(path);
    } else if (which == E_ENUM) {
        COdictExportObjectIds exporter(dict);
        exporter.setDate(exportDate);
        path = QDir(dir).filePath(QStringLiteral("NkrObjectIds.h"));
        ok = exporter.exportToEnum(dir);
    } else {
        COdictExportTranslation exporter(dict);
        exporter.setDate(exportDate);
        path = QDir(dir).filePath(QStringLiteral("NkrOdictTranslate.h"));
        ok = exporter.exportToTranslate(dir);
    }
    return ok ? path : QString();
}

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
    void emptyDictionary_data();
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
    const QString expectedPath = QFINDTESTDATA(expected);
    QVERIFY(!expectedPath.isEmpty());
    const QStringList wanted = readLines(expectedPath);
    for (int i = 0; i < qMin(actual.size(), wanted.size()); ++i) {
        if (actual.at(i) != wanted.at(i))
            QFAIL(qPrintable(QStringLiteral("line %1:\n   got: %2\n  want: %3").arg(i + 1).arg(actual.at(i), wanted.at(i))));
    }
    QCOMPARE(actual.size(), wanted.size());

    // Exporting again into the same place starts from clean sections.
    QCOMPARE(readLines(runExport(which, dict.get(), dir.path())), actual);
}

void tst_Export::generatedHeaderCompiles_data()
{
    QTest::addColumn<bool>("realistic");
    QTest::addColumn<bool>("definitions");

    QTest::newRow("declarations") << true << false;
    QTest::newRow("definitions") << true << true;
    QTest::newRow("empty tables, definitions") << false << true;
}

void tst_Export::generatedHeaderCompiles()
{
    QFETCH(bool, realistic);
    QFETCH(bool, definitions);

    const QString gcc = QStandardPaths::findExecutable(QStringLiteral("gcc"));
    if (gcc.isEmpty())
        QSKIP("gcc is not installed");
    const QString stub = QFINDTESTDATA("data/odict_stub.h");
    QVERIFY(!stub.isEmpty());

    std::unique_ptr<COdictEdit> dict;
    if (realistic) {
        dict = demoDictionary(QStringLiteral("SpeedFiltered"));
    } else {
        Builder b(QStringLiteral("Tiny"));
        b.add(b.top(), editorObject(1, QStringLiteral("Only"), 1, 0x2));
        dict = b.take();
    }
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(!runExport(E_HEADER, dict.get(), dir.path()).isEmpty());
    QFile source(dir.filePath(QStringLiteral("odict.c")));
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("#include \"odict_stub.h\"\n#include \"demo.h\"\n");
    source.close();

    QStringList args{QStringLiteral("-std=c99"), QStringLiteral("-Wall"), QStringLiteral("-Werror"),
                     QStringLiteral("-I") + QFileInfo(stub).absolutePath(), QStringLiteral("-I") + dir.path(),
                     QStringLiteral("-c"), source.fileName(), QStringLiteral("-o"), dir.filePath(QStringLiteral("odict.o"))};
    if (definitions)
        args.prepend(QStringLiteral("-DINCLUDED_FROM_ODICT_C"));
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(gcc, args);
    QVERIFY(process.waitForFinished(60000));
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             process.readAll().constData());
}

void tst_Export::versionMacros_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QString>("main");
    QTest::addColumn<QString>("minor");
    QTest::addColumn<QString>("build");
    QTest::addColumn<QString>("fileVersion");

    QTest::newRow("zero") << 0u << "(0x00U)" << "(0x00U)" << "(0x0000U)" << "V0.0.0";
    QTest::newRow("mixed digits") << 0x011C002Au << "(0x01U)" << "(0x1CU)" << "(0x002AU)" << "V1.28.42";
    QTest::newRow("all ones") << 0xFFFFFFFFu << "(0xFFU)" << "(0xFFU)" << "(0xFFFFU)" << "V255.255.65535";
}

void tst_Export::versionMacros()
{
    QFETCH(quint32, version);
    QFETCH(QString, main);
    QFETCH(QString, minor);
    QFETCH(QString, build);
    QFETCH(QString, fileVersion);

    Builder b(QStringLiteral("Versioned"));
    b.setVersion(version);
    const std::unique_ptr<COdictEdit> dict = b.take();
    QTemporaryDir dir;
    const QStringList lines = readLines(runExport(E_HEADER, dict.get(), dir.path()));
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_MAIN   ") + main));
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_MINOR  ") + minor));
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_VERSION_BUILD  ") + build));
    QVERIFY(lines.contains(QStringLiteral("// Odict-Dateiversion: ") + fileVersion
                           + QStringLiteral(" from 29.02.2024 at 13:05:09 by Demo Author")));
}

void tst_Export::enumConstantNames_data()
{
    QTest::addColumn<uint>("subId");
    QTest::addColumn<QString>("line");

    auto line = [](const char *name, const char *value, const char *uiName) {
        return QStringLiteral("        ") + QString::fromLatin1(name).leftJustified(66) + QStringLiteral(" = ")
            + QString::fromLatin1(value).rightJustified(15) + QStringLiteral(",  //!< ") + QString::fromLatin1(uiName);
    };
    QTest::newRow("object") << 0xFFFFFFFFu << line("E_300_X", "300", "X (ui)");
    QTest::newRow("sub-id 5 zero-filled") << 5u << line("E_300_05_X", "1288490188805", "X (ui) Sub 5");
    QTest::newRow("sub-id 100 with all digits") << 100u << line("E_300_100_X", "1288490188900", "X (ui) Sub 100");
}

void tst_Export::enumConstantNames()
{
    QFETCH(uint, subId);
    QFETCH(QString, line);

    Builder b(QStringLiteral("Names"));
    COdictNode *node = b.add(b.top(), editorObject(300, QStringLiteral("X"), 1, 0));
    if (subId != 0xFFFFFFFFu)
        b.addSub(node, subId, QStringLiteral("X"));
    const std::unique_ptr<COdictEdit> dict = b.take();
    QTemporaryDir dir;
    const QStringList lines = readLines(runExport(E_ENUM, dict.get(), dir.path()));
    QVERIFY2(lines.contains(line), qPrintable(lines.join(QLatin1Char('\n'))));
}

void tst_Export::emptyDictionary_data()
{
    QTest::addColumn<QString>("opening");
    QTest::addColumn<QStringList>("rows");

    const QString noObject = QStringLiteral("    {( &") + QStringLiteral("ODICT_Fct_NoObject").leftJustified(35)
        + QStringLiteral(" ), (void*)( ") + QStringLiteral("NULL").leftJustified(76)
        + QStringLiteral(" )}     //! Index:      0");
    // Number 0 always has a row, so the object table is indexable; the others stay empty.
    QTest::newRow("object table") << "const ODICT_T_ObjDictElementVarBase ODICT_ObjectDictVarBase[ODICT_SIZE] ="
                                  << QStringList{noObject};
    QTest::newRow("DS402 table") << "const ODICT_T_ObjDictElementVarBase ODICT_DS402VarBase[] =" << QStringList();
    QTest::newRow("DS301 lookup") << "const uint32_t ODICT_DS301LockupBase[] =" << QStringList();
    QTest::newRow("DS301 table") << "const ODICT_T_ObjDictElementVarBase ODICT_DS301VarBase[] =" << QStringList();
}

void tst_Export::emptyDictionary()
{
    QFETCH(QString, opening);
    QFETCH(QStringList, rows);

    const std::unique_ptr<COdictEdit> dict = Builder(QStringLiteral("Empty")).take();
    QTemporaryDir dir;
    const QStringList lines = readLines(runExport(E_HEADER, dict.get(), dir.path()));
    const QStringList expected = QStringList{opening, QStringLiteral("{")} + rows + QStringList{QStringLiteral("};")};
    QCOMPARE(block(lines, opening), expected);
    QVERIFY(lines.contains(QStringLiteral("#define ODICT_SIZE           1")));

    // The enumeration of an empty dictionary holds only the C++ sentinel.
    const QStringList ids = readLines(runExport(E_ENUM, dict.get(), dir.path()));
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
    QTemporaryDir dir;
    const QStringList lines = readLines(runExport(E_HEADER, dict.get(), dir.path()));

    QCOMPARE(block(lines, QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_ObjectDictVarBase[ODICT_SIZE] =")).size(),
             2 + 4 + 1);
    // Every number of the DS402 range lies below the object-number count: 256 placeholders.
    QCOMPARE(block(lines, QStringLiteral("const ODICT_T_ObjDictElementVarBase ODICT_DS402VarBase[] =")).size(),
             2 + 256 + 1);
    QCOMPARE(block(lines, QStringLiteral("const uint32_t ODICT_DS301LockupBase[] =")),
             (QStringList{QStringLiteral("const uint32_t ODICT_DS301LockupBase[] ="), QStringLiteral("{"),
                          QStringLiteral("    0x7ffffff0     // Far"), QStringLiteral("};")}));
    QVERIFY(lines.size() < 400);
    QVERIFY(readLines(runExport(E_ENUM, dict.get(), dir.path())).size() < 100);
}

void tst_Export::failedWriteKeepsOldFile_data()
{
    QTest::addColumn<eExporter_t>("which");
    QTest::addColumn<bool>("missingDirectory");

    QTest::newRow("header, missing directory") << E_HEADER << true;
    QTest::newRow("header, path is a directory") << E_HEADER << false;
    QTest::newRow("enumeration, missing directory") << E_ENUM << true;
    QTest::newRow("enumeration, path is a directory") << E_ENUM << false;
    QTest::newRow("translation, missing directory") << E_TRANSLATION << true;
    QTest::newRow("translation, path is a directory") << E_TRANSLATION << false;
}

void tst_Export::failedWriteKeepsOldFile()
{
    QFETCH(eExporter_t, which);
    QFETCH(bool, missingDirectory);

    const std::unique_ptr<COdictEdit> dict = demoDictionary(QStringLiteral("Speed"));
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    if (missingDirectory) {
        const QString missing = dir.filePath(QStringLiteral("missing"));
        QVERIFY(runExport(which, dict.get(), missing).isEmpty());
        QVERIFY(!QFileInfo::exists(missing));
        return;
    }

    // Occupy the target name with a directory holding an old file: nothing of it may change.
    const QString fileName = which == E_HEADER ? QStringLiteral("demo.h")
        : which == E_ENUM                      ? QStringLiteral("NkrObjectIds.h")
                                               : QStringLiteral("NkrOdictTranslate.h");
    QVERIFY(QDir(dir.path()).mkdir(fileName));
    QFile old(QDir(dir.filePath(fileName)).filePath(QStringLiteral("old.txt")));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();

    QVERIFY(runExport(which, dict.get(), dir.path()).isEmpty());
    QVERIFY(QFileInfo(dir.filePath(fileName)).isDir());
    QCOMPARE(readLines(old.fileName()), QStringList{QStringLiteral("old")});
    QCOMPARE(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{fileName});
}

QTEST_GUILESS_MAIN(tst_Export)
#include "tst_export.moc"

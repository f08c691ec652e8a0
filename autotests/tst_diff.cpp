// The semantic diff: COdictDiff through odict diff, on the demo and an edited copy of it.
#include "COdictDiff.h"
#include "COdictEdit.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString demo = QStringLiteral(KRODICT_SOURCE_DIR "/examples/demo_drive.xml");

struct sRun_t {
    int exitCode;
    QString output;
};

sRun_t odict(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(ODICT_TOOL), arguments);
    if (!process.waitForFinished(60000))
        return {-1, QString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput())};
}

/// One expected JSON record, in the tool's compact form.
QString record(const char *kind, const QJsonValue &id, const QJsonValue &subId, const char *field, const QJsonValue &oldValue,
               const QJsonValue &newValue)
{
    const QJsonObject o{{QStringLiteral("kind"), QLatin1String(kind)}, {QStringLiteral("id"), id},
                        {QStringLiteral("subId"), subId},          {QStringLiteral("field"), QLatin1String(field)},
                        {QStringLiteral("old"), oldValue},         {QStringLiteral("new"), newValue}};
    return QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Compact));
}

/// Applies \a change to a copy of object \a id (sub-id \a subId) of \a dict.
template <class F>
bool edit(COdictEdit &dict, unsigned int id, unsigned int subId, F change)
{
    COdictEditorObject object = dict.editorObject(id, subId);
    change(object);
    return dict.setEditorObject(object);
}

} // namespace

class tst_Diff : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    /// The demo with eleven edits of different kinds, saved; empty on failure.
    QString editedDemo()
    {
        COdictEdit dict(NkrOdict::E_OT_EDITOR);
        if (dict.loadDictionary(demo) != 0)
            return QString();
        const unsigned int none = COdictObject::NoId;
        COdictObjectTree *tree = dict.objectTree();
        const bool ok =
            edit(dict, 0x134, none, [](COdictEditorObject &o) { o.setMaxValue(CVariant::fromF64(32000, NTypes::E_F32)); })
            && edit(dict, 0x19a, none, [](COdictEditorObject &o) { o.setName(QStringLiteral("SPEED_GAIN")); })
            && dict.moveEditorObject(tree->node(0x190, none), tree->findGroupNode(QStringLiteral("SPEED_LOOP")), 0)
            && dict.delEditorObject(dict.editorObject(0x2105))
            && dict.addEditorObject(tree->findGroupNode(QStringLiteral("RECORDS")))
            && edit(dict, 0xce, none, [](COdictEditorObject &o) { o.setUiName(QStringLiteral("Schaltfrequenz")); })
            && edit(dict, 0x140, none, [](COdictEditorObject &o) { o.enumDataPtr()->insert(1, QStringLiteral("Resolver 2-polig")); })
            && edit(dict, 0x6040, none, [](COdictEditorObject &o) { o.bitSetDataPtr()->insert(11, QStringLiteral("Custom")); })
            && edit(dict, 0xee, none, [](COdictEditorObject &o) { o.setAccessRights(0x3fu); })
            && edit(dict, 0x1018, 4, [](COdictEditorObject &o) { o.setDefaultValue(CVariant::fromU64(77, NTypes::E_U32)); });
        if (!ok)
            return QString();
        COdictDataStructure &structures = dict.odictDataStructureList();
        const QList<COdictDataStructure::SDataStructure_t> entries = structures.list();
        structures.clear();
        for (COdictDataStructure::SDataStructure_t structure : entries) {
            if (structure.name == QLatin1String("Float"))
                structure.description = QStringLiteral("single precision");
            structures.append(structure);
        }
        CXMLMetaData meta = dict.odictMetaData();
        meta.setComment(QStringLiteral("reviewed"));
        dict.setOdictMetaData(meta);
        const QString path = m_dir.filePath(QStringLiteral("edited.xml"));
        return dict.saveDictionary(path) == 0 ? path : QString();
    }

private slots:
    void reportsExactlyTheEdits()
    {
        const QString edited = editedDemo();
        QVERIFY(!edited.isEmpty());
        const sRun_t run = odict({QStringLiteral("diff"), demo, edited, QStringLiteral("--format"), QStringLiteral("json")});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.output.startsWith(QLatin1String("[\n")) && run.output.endsWith(QLatin1String("\n]\n")), qPrintable(run.output));
        QVERIFY(QJsonDocument::fromJson(run.output.toUtf8()).isArray());

        const QJsonValue null;
        const QString history = QStringLiteral("2026-11-12 11:30:00 krOdict demo: ");
        const QStringList expected{
            record("metadata", null, null, "comment", QStringLiteral("DS402 records and characteristic curves"), QStringLiteral("reviewed")),
            record("history", null, null, "history 1.28.42", history + QStringLiteral("DS402 records and characteristic curves"),
                   history + QStringLiteral("reviewed")),
            record("structure", null, null, "structure Float description", QStringLiteral("floating-point parameters and values"),
                   QStringLiteral("single precision")),
            record("changed", 0xce, null, "uiName", QStringLiteral("PWM-Frequenz"), QStringLiteral("Schaltfrequenz")),
            record("changed", 0xee, null, "accessRights", QStringLiteral("0x2a"), QStringLiteral("0x3f")),
            record("changed", 0x134, null, "maxValue", QStringLiteral("30000"), QStringLiteral("32000")),
            record("changed", 0x140, null, "enum[1]", QStringLiteral("Resolver"), QStringLiteral("Resolver 2-polig")),
            record("moved", 0x190, null, "group", QStringLiteral("/CONTROL/CURRENT_LOOP"), QStringLiteral("/CONTROL/SPEED_LOOP")),
            record("renamed", 0x19a, null, "name", QStringLiteral("SPEED_KP"), QStringLiteral("SPEED_GAIN")),
            record("changed", 0x1018, 4, "defaultValue", QStringLiteral("0"), QStringLiteral("77")),
            record("removed", 0x2105, null, "object", QStringLiteral("TORQUE_TABLE"), null),
            record("changed", 0x6040, null, "bit[11]", null, QStringLiteral("Custom")),
            record("added", 0x6100, null, "object", null, QStringLiteral("OBJECT_NAME_WITH_ID_24832")),
        };
        const QStringList actual = run.output.mid(2, run.output.size() - 5).split(QStringLiteral(",\n"));
        QCOMPARE(actual, expected);

        const sRun_t text = odict({QStringLiteral("diff"), demo, edited});
        QCOMPARE(text.exitCode, 1);
        for (const QString &line :
             {QStringLiteral("Meta data (1)\n  comment: DS402 records and characteristic curves -> reviewed\n"),
              QStringLiteral("Data structures (1)\n  structure Float description: floating-point parameters and values -> single precision\n"),
              QStringLiteral("Added (1)\n  OBJECT_NAME_WITH_ID_24832 (ID 24832)\n"),
              QStringLiteral("Removed (1)\n  TORQUE_TABLE (ID 8453)\n"),
              QStringLiteral("Moved (1)\n  CURRENT_KP (ID 400): /CONTROL/CURRENT_LOOP -> /CONTROL/SPEED_LOOP\n"),
              QStringLiteral("Renamed (1)\n  SPEED_GAIN (ID 410): SPEED_KP -> SPEED_GAIN\n"),
              QStringLiteral("Changed (6)\n"),
              QStringLiteral("  CONTROLWORD (ID 24640) bit[11]: (none) -> Custom\n"),
              QStringLiteral("  CO_IDENTITY_SERIAL (ID 4120:04) defaultValue: 0 -> 77\n"),
              QStringLiteral(": 13 change(s)\n")})
            QVERIFY2(text.output.contains(line), qPrintable(text.output));
    }

    void equalFilesAndUnreadableOnes_data()
    {
        QTest::addColumn<QString>("newer");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("the same file") << demo << 0;
        QTest::newRow("a missing file") << QStringLiteral("/nonexistent/odict.xml") << 2;
    }

    void equalFilesAndUnreadableOnes()
    {
        QFETCH(QString, newer);
        QFETCH(int, exitCode);
        const sRun_t run = odict({QStringLiteral("diff"), demo, newer});
        QCOMPARE(run.exitCode, exitCode);
        if (exitCode == 0)
            QVERIFY(run.output.endsWith(QLatin1String(": equal\n")));
        QCOMPARE(odict({QStringLiteral("diff"), demo, newer, QStringLiteral("--format=json")}).exitCode, exitCode);
    }

    void subObjectsAndEntriesAddedAndRemoved()
    {
        // Directly on the library: a sub-object that went, one that came, an enumeration entry each way.
        COdictEdit older(NkrOdict::E_OT_EDITOR);
        COdictEdit newer(NkrOdict::E_OT_EDITOR);
        QCOMPARE(older.loadDictionary(demo), 0);
        QCOMPARE(newer.loadDictionary(demo), 0);
        QVERIFY(newer.delEditorObject(newer.editorObject(0x1018, 1)));
        QVERIFY(newer.addEditorSubobject(newer.objectTree()->node(0x607d, COdictObject::NoId)));
        QVERIFY(edit(newer, 0x6060, COdictObject::NoId, [](COdictEditorObject &o) {
            o.enumDataPtr()->remove(-1);
            o.enumDataPtr()->insert(11, QStringLiteral("Neu"));
        }));

        QStringList actual;
        for (const COdictDiff::sChange_t &c : COdictDiff::compare(&older, &newer))
            actual << QStringLiteral("%1 %2:%3 %4 %5 %6").arg(COdictDiff::kindName(c.kind)).arg(c.id, 0, 16).arg(qint64(c.subId == COdictObject::NoId ? -1 : qint64(c.subId)))
                          .arg(c.field, c.oldValue.isNull() ? QStringLiteral("-") : c.oldValue, c.newValue.isNull() ? QStringLiteral("-") : c.newValue);
        QCOMPARE(actual, (QStringList{
            QStringLiteral("changed 1018:-1 subIdList 1, 2, 3, 4 2, 3, 4"),
            QStringLiteral("removed 1018:1 object CO_IDENTITY_VENDOR_ID -"),
            QStringLiteral("changed 6060:-1 enum[-1] Herstellerspezifisch -"),
            QStringLiteral("changed 6060:-1 enum[11] - Neu"),
            QStringLiteral("changed 607d:-1 subIdList 1, 2 1, 2, 3"),
            QStringLiteral("added 607d:3 object - SOFTWARE_POSITION_LIMIT_3"),
        }));
        QVERIFY(COdictDiff::compare(&older, &older).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_Diff)
#include "tst_diff.moc"

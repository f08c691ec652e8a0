// Round-trip properties on generated dictionaries of every object kind and many shapes: what is
// saved loads back equal, what is streamed reads back equal, what a data file carries reads back
// equal. The generator also has to be deterministic and to build files that load cleanly.
#include "odicttreecompare.h"

#include <CMemoryLogfile.h>
#include <COdictDataFile.h>
#include <COdictEdit.h>
#include <COdictGenerator.h>

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace NkrOdict;

namespace {

const eObjectType_t kKinds[] = {E_OT_STD, E_OT_VALUE, E_OT_EDITOR, E_OT_PARAMETER};

/// Every object and sub-object of \a dict, in tree order, as the class of its kind.
template <class T>
QList<T> objectsOf(const COdict &dict)
{
    QList<T> result;
    for (const COdictObjectId &id : dict.allObjectUIds())
        result << T(*dict.objectPtr(id));
    return result;
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes \a value to a stream and reads it back into \a back.
template <class T>
T streamed(const T &value, T back = T())
{
    QByteArray bytes;
    {
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out << value;
    }
    QDataStream in(bytes);
    in >> back;
    return in.status() == QDataStream::Ok && in.atEnd() ? back : T();
}

} // namespace

class tst_RoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void sameSeedSameBytes();
    void shapeOfGeneratedDictionary();
    void saveThenLoadGivesEqualTree_data();
    void saveThenLoadGivesEqualTree();
    void streamThenReadGivesEqualObjects();
    void dataFileWriteThenReadGivesEqualValues_data();
    void dataFileWriteThenReadGivesEqualValues();

private:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

void tst_RoundTrip::sameSeedSameBytes()
{
    for (const eObjectType_t kind : {E_OT_EDITOR, E_OT_VALUE}) {
        QByteArray files[3];
        const quint64 seeds[] = {7, 7, 8};
        for (int i = 0; i < 3; ++i) {
            COdictEdit dict(kind);
            QVERIFY(COdictGenerator(seeds[i]).generate(dict, 300));
            QCOMPARE(dict.saveDictionary(path(QStringLiteral("same%1.xml").arg(i))), 0);
            files[i] = fileBytes(path(QStringLiteral("same%1.xml").arg(i)));
        }
        QVERIFY(!files[0].isEmpty());
        QVERIFY(files[0] == files[1]);
        QVERIFY(files[0] != files[2]);
    }
}

void tst_RoundTrip::shapeOfGeneratedDictionary()
{
    COdictEdit dict(E_OT_EDITOR);
    COdictGenerator generator(42);
    QVERIFY(generator.generate(dict, 2000));
    QVERIFY(!generator.generate(dict, 10)); // only into an empty dictionary

    int objects = 0, withSubs = 0, enums = 0, bits = 0, subIdOfZero = 0;
    QSet<int> ranges;
    for (const COdictObjectId &id : dict.allObjectUIds()) {
        const COdictObject *o = dict.objectPtr(id);
        if (id.subId() != 0xFFFFFFFFu) {
            subIdOfZero += id.id() == 0;
            continue;
        }
        ++objects;
        withSubs += !o->subIdList().isEmpty();
        enums += !o->enumData().isEmpty();
        bits += !o->bitSetData().isEmpty();
        ranges << (id.id() < 0x1000 ? 0 : id.id() < 0x2000 ? 1 : id.id() < 0x6000 ? 2 : id.id() < 0x6100 ? 3 : 4);
    }
    QCOMPARE(objects, 2000);
    QVERIFY(dict.contains(0u));
    QCOMPARE(subIdOfZero, 0);
    QCOMPARE(ranges.size(), 5);
    // About a quarter with sub-objects, a fifth (of the integer scalars) with enumerations, a
    // tenth with bit sets: loose bounds, the point is that each shape is there in numbers.
    QVERIFY2(withSubs > objects / 6 && withSubs < objects / 3, qPrintable(QString::number(withSubs)));
    QVERIFY2(enums > objects / 20, qPrintable(QString::number(enums)));
    QVERIFY2(bits > objects / 100, qPrintable(QString::number(bits)));

    int deepest = 0;
    QVector<QPair<const COdictNode *, int>> pending{{dict.objectTree()->dictionaryNode(), 0}};
    while (!pending.isEmpty()) {
        const auto [node, depth] = pending.takeLast();
        deepest = qMax(deepest, depth);
        for (int i = 0; i < node->childCount(); ++i) {
            if (COdictObjectTree::isGroup(node->child(i)))
                pending.append(qMakePair(node->child(i), depth + 1));
        }
    }
    QCOMPARE(deepest, 3);
}

void tst_RoundTrip::saveThenLoadGivesEqualTree_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("objects");
    QTest::addColumn<int>("seeds");
    for (const eObjectType_t kind : kKinds) {
        QTest::addRow("kind %d, empty", kind) << int(kind) << 0 << 2;
        QTest::addRow("kind %d, one object", kind) << int(kind) << 1 << 20;
        QTest::addRow("kind %d, small", kind) << int(kind) << 7 << 40;
        QTest::addRow("kind %d, medium", kind) << int(kind) << 60 << 25;
        QTest::addRow("kind %d, large", kind) << int(kind) << 800 << 2;
    }
}

void tst_RoundTrip::saveThenLoadGivesEqualTree()
{
    QFETCH(int, kind);
    QFETCH(int, objects);
    QFETCH(int, seeds);
    for (int seed = 1; seed <= seeds; ++seed) {
        COdictEdit generated{eObjectType_t(kind)};
        QVERIFY(COdictGenerator(quint64(seed) * 7919 + quint64(objects)).generate(generated, objects));
        const QString file = path(QStringLiteral("tree.xml"));
        QCOMPARE(generated.saveDictionary(file), 0);

        CMemoryLogfile log;
        COdictEdit loaded{eObjectType_t(kind), &log};
        const int result = kind == E_OT_PARAMETER ? loaded.loadParameterSets(file) : loaded.loadDictionary(file);
        QCOMPARE(result, 0);
        QVERIFY(loaded.isValid());
        QCOMPARE(loaded.warningMessages(), QStringList());
        compareTrees(*generated.objectTree(), *loaded.objectTree());
        if (QTest::currentTestFailed()) {
            qWarning("seed %d", seed);
            return;
        }
    }
}

void tst_RoundTrip::streamThenReadGivesEqualObjects()
{
    for (const eObjectType_t kind : kKinds) {
        for (int seed = 1; seed <= 10; ++seed) {
            COdictEdit dict(kind);
            COdictGenerator generator(quint64(seed) << 8 | kind);
            QVERIFY(generator.generate(dict, 40));
            for (const COdictObjectId &id : dict.allObjectUIds()) {
                const COdictObject &o = *dict.objectPtr(id);
                QVERIFY(streamed(id) == id);
                QVERIFY(streamed(COdictObjectName(o.name(), o.subId())) == COdictObjectName(o.name(), o.subId()));
                QVERIFY(streamed(o.enumData()) == o.enumData());
                QVERIFY(streamed(o.bitSetData()) == o.bitSetData());
                QVERIFY(streamed(o.xMinValue()) == o.xMinValue());
                QVERIFY(streamed(o.xDefaultValue()) == o.xDefaultValue());
                switch (kind) {
                case E_OT_VALUE: {
                    COdictValueObject v(*static_cast<const COdictValueObject *>(&o));
                    v.setCurrentValue(generator.value(o));
                    v.setSetpointValue(generator.value(o));
                    QVERIFY2(streamed(v) == v, qPrintable(fieldDiff(streamed(v), v)));
                    break;
                }
                case E_OT_EDITOR: {
                    // Only the editor's own part travels; the base part goes as a COdictObject.
                    const COdictEditorObject &e = *static_cast<const COdictEditorObject *>(&o);
                    COdictEditorObject back(streamed(static_cast<const COdictObject &>(e)));
                    QVERIFY(streamed(e, back) == e);
                    break;
                }
                case E_OT_PARAMETER:
                    QVERIFY(streamed(*static_cast<const COdictParameterObject *>(&o)) == *static_cast<const COdictParameterObject *>(&o));
                    break;
                default:
                    QVERIFY2(streamed(o) == o, qPrintable(fieldDiff(streamed(o), o)));
                    break;
                }
            }
        }
    }
}

void tst_RoundTrip::dataFileWriteThenReadGivesEqualValues_data()
{
    QTest::addColumn<bool>("parameters");
    QTest::newRow("values") << false;
    QTest::newRow("parameter sets") << true;
}

void tst_RoundTrip::dataFileWriteThenReadGivesEqualValues()
{
    QFETCH(bool, parameters);
    const QString file = path(QStringLiteral("data.xml"));
    for (int seed = 1; seed <= 30; ++seed) {
        COdictEdit dict(parameters ? E_OT_PARAMETER : E_OT_VALUE);
        COdictGenerator generator(quint64(seed) * 31 + parameters);
        QVERIFY(generator.generate(dict, 50));
        COdictDataFile writer;
        COdictDataFile reader;
        if (parameters) {
            QList<COdictParameterObject> objects = objectsOf<COdictParameterObject>(dict);
            for (COdictParameterObject &p : objects) {
                for (int set = 0; set <= 62; set += 1 + int(generator.next() % 20))
                    p.setValue(set, generator.value(p));
            }
            QVERIFY(writer.saveParameters(file, objects, QStringLiteral("tst_roundtrip"), QStringLiteral("1.0")));
            QList<COdictParameterObject> back;
            QString error;
            QVERIFY2(reader.loadParameters(file, back, &error), qPrintable(error));
            QCOMPARE(back.size(), objects.size());
            for (int i = 0; i < objects.size(); ++i) {
                QCOMPARE(back.at(i).id(), objects.at(i).id());
                QCOMPARE(back.at(i).subId(), objects.at(i).subId());
                QCOMPARE(back.at(i).name(), objects.at(i).name());
                QCOMPARE(back.at(i).values(), objects.at(i).values());
            }
        } else {
            QList<COdictValueObject> objects = objectsOf<COdictValueObject>(dict);
            for (COdictValueObject &v : objects)
                v.setCurrentValue(generator.value(v));
            QVERIFY(writer.saveValues(file, objects, QStringLiteral("tst_roundtrip"), QStringLiteral("1.0")));
            QList<COdictValueObject> back;
            QString error;
            QVERIFY2(reader.loadValues(file, back, &error), qPrintable(error));
            QCOMPARE(back.size(), objects.size());
            for (int i = 0; i < objects.size(); ++i) {
                QCOMPARE(back.at(i).id(), objects.at(i).id());
                QCOMPARE(back.at(i).subId(), objects.at(i).subId());
                QCOMPARE(back.at(i).dataType(), objects.at(i).dataType());
                QCOMPARE(back.at(i).currentValue(), objects.at(i).currentValue());
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_RoundTrip)
#include "tst_roundtrip.moc"

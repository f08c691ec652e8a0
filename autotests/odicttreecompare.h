#pragma once

// Helpers shared by the loading and editing tests: readable object texts and a structural
// comparison of two object trees.

#include "CDataTypeParser.h"
#include "COdictEditorObject.h"
#include "COdictItem.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "CStr.h"

#include <QDebug>
#include <QStringList>
#include <QtTest>

/// "I32 5", "null VISIBLE_STRING": type and text, so that a wrongly typed null is visible.
inline QString variantText(const CVariant &value)
{
    return value.isNull() ? QStringLiteral("null %1").arg(CDataTypeParser::typeToStr(value.type()))
                          : QStringLiteral("%1 %2").arg(CDataTypeParser::typeToStr(value.type()), value.toStr());
}

/// Every stored field of \a o as "field=value" texts, for diffs in failure messages.
inline QStringList objectFields(const COdictObject &o)
{
    QStringList enumTexts;
    for (const auto &entry : o.enumData().enums())
        enumTexts << QStringLiteral("%1:%2").arg(entry.value).arg(entry.name);
    QStringList bitTexts;
    for (const auto &bit : o.bitSetData().bitSet())
        bitTexts << QStringLiteral("%1:%2").arg(bit.pos).arg(bit.name);
    QStringList subIds;
    for (unsigned int subId : o.subIdList())
        subIds << QString::number(subId);
    QStringList fields{
        QStringLiteral("kind=%1").arg(o.objectType()),
        QStringLiteral("refId=%1").arg(o.refId().toString()),
        QStringLiteral("id=0x%1").arg(o.id(), 0, 16),
        QStringLiteral("subId=0x%1").arg(o.subId(), 0, 16),
        QStringLiteral("name=%1").arg(o.name()),
        QStringLiteral("uiName=%1").arg(o.uiName()),
        QStringLiteral("uiShortName=%1").arg(o.uiShortName()),
        QStringLiteral("type=%1").arg(CDataTypeParser::typeToStr(o.dataType())),
        QStringLiteral("dataSize=%1").arg(o.dataSize()),
        QStringLiteral("arrayLength=%1").arg(o.arrayLength()),
        QStringLiteral("version=%1").arg(CStr::versionToString(o.version())),
        QStringLiteral("usage=0x%1").arg(o.objectUsage(), 0, 16),
        QStringLiteral("access=0x%1").arg(o.accessRights(), 0, 16),
        QStringLiteral("unit=%1").arg(o.unit()),
        QStringLiteral("yUnit=%1").arg(o.yUnit()),
        QStringLiteral("digits=%1").arg(o.digits()),
        QStringLiteral("ds402=0x%1").arg(o.ds402Id(), 0, 16),
        QStringLiteral("profinet=0x%1").arg(o.profinetId(), 0, 16),
        QStringLiteral("levels=%1/%2/%3").arg(o.userlevelRead()).arg(o.userlevelVisible()).arg(o.userlevelWrite()),
        QStringLiteral("xMin=%1").arg(variantText(o.xMinValue())),
        QStringLiteral("yMin=%1").arg(variantText(o.yMinValue())),
        QStringLiteral("xMax=%1").arg(variantText(o.xMaxValue())),
        QStringLiteral("yMax=%1").arg(variantText(o.yMaxValue())),
        QStringLiteral("xDef=%1").arg(variantText(o.xDefaultValue())),
        QStringLiteral("yDef=%1").arg(variantText(o.yDefaultValue())),
        QStringLiteral("enum=%1").arg(enumTexts.join(QLatin1Char(','))),
        QStringLiteral("bits=%1").arg(bitTexts.join(QLatin1Char(','))),
        QStringLiteral("subIds=%1").arg(subIds.join(QLatin1Char(','))),
        QStringLiteral("virtual=%1").arg(o.isVirtual()),
    };
    return fields;
}

/// The fields of \a a that differ from \a b's, "field=a | field=b"; empty when all agree.
inline QString fieldDiff(const COdictObject &a, const COdictObject &b)
{
    const QStringList fa = objectFields(a);
    const QStringList fb = objectFields(b);
    QStringList diff;
    for (int i = 0; i < fa.size(); ++i) {
        if (fa.at(i) != fb.at(i))
            diff << fa.at(i) + QStringLiteral(" | ") + fb.at(i);
    }
    return diff.join(QStringLiteral("; "));
}

/// Whether the objects of two items are equal by the operator== of their own class.
inline bool sameObject(const COdictItem &a, const COdictItem &b)
{
    if (a.hasObject() != b.hasObject() || a.objectType() != b.objectType())
        return false;
    if (!a.hasObject())
        return true;
    switch (a.objectType()) {
    case NkrOdict::E_OT_VALUE:
        return *a.toValueObjectPtr() == *b.toValueObjectPtr();
    case NkrOdict::E_OT_EDITOR:
        return *a.toEditorObjectPtr() == *b.toEditorObjectPtr();
    case NkrOdict::E_OT_PARAMETER:
        return *a.toParameterObjectPtr() == *b.toParameterObjectPtr();
    default:
        return *a.objectPtr() == *b.objectPtr();
    }
}

/// Compares shape, item types, group names and objects (field by field) of two trees, and
/// their document data. Walks without recursion, so very deep trees are fine.
inline void compareTrees(const COdictObjectTree &expected, const COdictObjectTree &actual)
{
    QCOMPARE(actual.objectType(), expected.objectType());
    QVector<QPair<const COdictNode *, const COdictNode *>> pending{{expected.rootNode(), actual.rootNode()}};
    while (!pending.isEmpty()) {
        const auto [e, a] = pending.takeLast();
        const COdictItem &ei = e->dataRef();
        const COdictItem &ai = a->dataRef();
        QCOMPARE(ai.type(), ei.type());
        QCOMPARE(a->childCount(), e->childCount());
        if (ei.isObjectItem()) {
            QVERIFY2(sameObject(ei, ai),
                     qPrintable(QStringLiteral("%1: %2").arg(ei.name(), fieldDiff(ei.objectRef(), ai.objectRef()))));
        } else {
            QCOMPARE(ai.name(), ei.name());
            QCOMPARE(ai.uiName(), ei.uiName());
        }
        for (int i = 0; i < e->childCount(); ++i)
            pending.append(qMakePair(e->child(i), a->child(i)));
    }
    QCOMPARE(actual.idIndex().keys(), expected.idIndex().keys());
    QCOMPARE(actual.nameIndex().keys(), expected.nameIndex().keys());
    QVERIFY(actual.history() == expected.history());
    QVERIFY(actual.dataStructures() == expected.dataStructures());
}

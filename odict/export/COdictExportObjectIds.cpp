#include "COdictExportObjectIds.h"
#include "COdictExportObjectIds_p.h"

#include "COdictEditorObject.h"

namespace {

const QString indent4 = QStringLiteral("    ");
const QString indent8 = QStringLiteral("        ");

QStringList detailLines()
{
    const QString rule(37, QLatin1Char('-'));
    return {
        QStringLiteral("Die ID vom Typ NkrObjectIds::eObjectId_t setzt sich aus der eigentlichen"),
        QStringLiteral("Objekt-ID und der Objekt-SubID zusammen. NkrObjectIds::eObjectId_t hat"),
        QStringLiteral("eine größe von @e 64-Bit. Die Objekt-ID und die Objekt-SubID haben jeweils"),
        QStringLiteral("eine größe von @e 32-Bit."),
        QString(),
        QStringLiteral("Ist die ID kleiner als NTypes::U32_MAX, kann diese direkt in einen 32-Bit"),
        QStringLiteral("Wert gecastet werden."),
        QStringLiteral("@code"),
        QStringLiteral("64                                 0"),
        rule,
        QStringLiteral("|                 |    Objekt-ID    |"),
        rule,
        QStringLiteral("@endcode"),
        QStringLiteral("Ist die ID größer als NTypes::U32_MAX besteht NkrObjectIds::eObjectId_t"),
        QStringLiteral("aus der Objekt-ID und der Objekt-SubID."),
        QStringLiteral("@code"),
        QStringLiteral("64                                 0"),
        rule,
        QStringLiteral("|    Objekt-ID    |  Objekt-Sub-ID  |"),
        rule,
        QStringLiteral("@endcode"),
    };
}

} // namespace

COdictExportObjectIds::COdictExportObjectIds(COdict *odict, QObject *parent)
    : QObject(parent), d_ptr(new COdictExportObjectIdsPrivate(odict))
{
}

COdictExportObjectIds::~COdictExportObjectIds() = default;

bool COdictExportObjectIds::exportToEnum(const QString &directory)
{
    Q_D(COdictExportObjectIds);
    return d->exportToEnum(directory);
}

void COdictExportObjectIds::setDate(const QDate &date)
{
    Q_D(COdictExportObjectIds);
    d->date = date;
}

bool COdictExportObjectIdsPrivate::exportToEnum(const QString &directory)
{
    path = targetPath(directory, QStringLiteral("NkrObjectIds.h"));
    prepare();
    const QList<QPair<quint32, const COdictEditorObject *>> objects = plainObjects();
    COdictLineSink out(path, COdictLineSink::E_F_SOURCE, progress(), objects.size());
    fileBanner(out, path, QStringLiteral("Automatisch generierte Headerdatei"));
    guardOpen(out, path);
    namespaceBanner(out, path, QStringLiteral("Für den vereinfachten Zugriff auf die Objekt-ID's"), detailLines());

    const QString name = baseName(path);
    out << QStringLiteral("// C-Kompatibel") << QStringLiteral("#ifdef __cplusplus") << QString()
        << QStringLiteral("#include \"arch/NTypes.h\"") << QString() << QStringLiteral("namespace ") + name
        << QStringLiteral("{") << QString() << QStringLiteral("#endif  // __cplusplus") << QString();

    out << indent4 + QStringLiteral("//! Verfügbare Objekte") << indent4 + QStringLiteral("enum eObjectId_t")
        << indent4 + QStringLiteral("{");
    for (const auto &entry : objects) {
        const COdictEditorObject *object = entry.second;
        if (object && object->isValid()) {
            addConstant(out, *object);
            // Sub-ids listed by the object but without a valid sub-object have nothing to name.
            for (const unsigned int subId : object->subIdList()) {
                const COdictEditorObject *sub = editorObjectAt(COdictObjectId(entry.first, subId));
                if (sub && sub->isValid())
                    addConstant(out, *sub);
            }
        }
        out.advance();
    }
    out << QStringLiteral("#ifdef __cplusplus")
        << indent8 + QStringLiteral("//! Interne Konstante für eine undefinierte Objekt-ID")
        << indent8 + QStringLiteral("E_U32_MAX_UNKOWN").leftJustified(66) + QStringLiteral(" = NTypes::U32_MAX,")
        << QStringLiteral("#endif  // __cplusplus") << indent4 + QStringLiteral("};");

    out << QString() << QStringLiteral("#ifdef __cplusplus") << QString() << QStringLiteral("};")
        << QStringLiteral("namespace NID = ") + name + QLatin1Char(';') << QString()
        << QStringLiteral("#endif  // __cplusplus") << QString();
    guardClose(out, path);
    return out.commit();
}

void COdictExportObjectIdsPrivate::addConstant(COdictLineSink &out, const COdictEditorObject &object)
{
    QString name = QStringLiteral("E_") + QString::number(object.id()) + QLatin1Char('_');
    quint64 value = object.id();
    if (object.isSubObject()) {
        name += QString::number(object.subId()).rightJustified(2, QLatin1Char('0')) + QLatin1Char('_');
        value = COdictObjectId(object.id(), object.subId()).toU64();
    }
    name += object.name();
    out << indent8 + name.leftJustified(66) + QStringLiteral(" = ") + QString::number(value).rightJustified(15)
            + QStringLiteral(",  //!< ") + object.uiName();
}

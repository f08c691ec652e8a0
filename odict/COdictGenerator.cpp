#include "COdictGenerator.h"

#include "CDataTypeParser.h"
#include "COdict.h"
#include "COdictDataStructure.h"
#include "COdictEditorObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "CUnitParser.h"
#include "CVariant.h"

#include <QUuid>

using namespace NkrOdict;
using NTypes::eTypes_t;

namespace {

// Words for names and display texts; every display text is German or English as a whole.
const char *const kEnglish[] = {"Speed", "Current", "Voltage", "Temperature", "Brake", "Encoder", "Position",
                                "Torque", "Fan", "Limit", "Filter", "Gain", "Offset", "Ramp", "Window", "Counter"};
const char *const kGerman[] = {"Drehzahl", "Strom", "Spannung", "Übertemperatur", "Bremse", "Geber", "Lage",
                               "Moment", "Lüfter", "Grenze", "Filter", "Verstärkung", "Größe", "Rampe", "Fenster", "Zähler"};
constexpr int kWords = int(sizeof(kEnglish) / sizeof(kEnglish[0]));

// Id ranges the exporters treat differently, with the share of objects each gets (per mille).
struct sRange_t {
    quint32 first;
    quint32 last;
    int share;
};
const sRange_t kRanges[] = {
    {0x0000, 0x0FFF, 200}, // device objects, also at id + 0x2000 in the DS402 numbering
    {0x1000, 0x1FFF, 100}, // communication objects
    {0x2000, 0x5FFF, 450}, // manufacturer area
    {0x6000, 0x60FF, 50},  // drive profile
    {0x6100, 0xFFFF, 200}, // the rest of the 16-bit range; larger dictionaries go on above it
};

// Types of plain objects, with a weight each.
struct sTypeChoice_t {
    eTypes_t type;
    int elements; // array length; 1 for a scalar
    int weight;
};
const sTypeChoice_t kTypes[] = {
    {NTypes::E_BOOL, 1, 3},   {NTypes::E_U8, 1, 8},          {NTypes::E_I8, 1, 4},
    {NTypes::E_U16, 1, 12},   {NTypes::E_I16, 1, 8},         {NTypes::E_U32, 1, 12},
    {NTypes::E_I32, 1, 10},   {NTypes::E_U64, 1, 2},         {NTypes::E_I64, 1, 2},
    {NTypes::E_F32, 1, 12},   {NTypes::E_F64, 1, 3},         {NTypes::E_TIME, 1, 3},
    {NTypes::E_VSTRING, 16, 4}, {NTypes::E_U16, 4, 3},       {NTypes::E_I32, 2, 2},
    {NTypes::E_XY, 2, 3},     {NTypes::E_DS402_U16ARRAY, 4, 1}, {NTypes::E_DS402_I32ARRAY, 2, 1},
    {NTypes::E_DS402_F32ARRAY, 2, 1}, {NTypes::E_OCTETS, 8, 1},
};

const char *const kUnits[] = {"V", "A", "rpm", "ms", "%", "Nm", "inc"};

bool isInteger(eTypes_t type)
{
    return CVariant::isSignedType(type) || CVariant::isUnsignedType(type);
}

} // namespace

class COdictGeneratorPrivate
{
public:
    explicit COdictGeneratorPrivate(quint64 seed) : state(seed) {}

    quint64 next()
    {
        // SplitMix64: small, fast and the same everywhere.
        quint64 z = (state += Q_UINT64_C(0x9E3779B97F4A7C15));
        z = (z ^ (z >> 30)) * Q_UINT64_C(0xBF58476D1CE4E5B9);
        z = (z ^ (z >> 27)) * Q_UINT64_C(0x94D049BB133111EB);
        return z ^ (z >> 31);
    }
    /// 0 to n - 1.
    quint32 below(quint32 n) { return n == 0 ? 0 : quint32(next() % n); }
    /// True with probability \a perMille / 1000.
    bool chance(int perMille) { return int(below(1000)) < perMille; }
    qint64 between(qint64 low, qint64 high) { return low + qint64(next() % quint64(high - low + 1)); }

    QString words(int count, bool german, const QString &separator)
    {
        QStringList parts;
        for (int i = 0; i < count; ++i) {
            const int w = int(below(kWords));
            parts << QString::fromUtf8(german ? kGerman[w] : kEnglish[w]);
        }
        return parts.join(separator);
    }

    QList<quint32> spreadIds(int count);
    void fillObject(COdictObject &o, quint32 id, quint32 subId, bool subObject);
    void setLimits(COdictObject &o);
    QString valueText(eTypes_t type, qint64 low, qint64 high);
    QVariant value(const COdictObject &object);
    COdictNode *addObject(COdictObjectTree &tree, COdictNode *parent, const COdictObject &base, eItemType_t itemType);
    void addDocumentData(COdictObjectTree &tree);
    bool generate(COdictObjectTree *tree, int objects);

    quint64 state;
};

/// \a count distinct ids, ascending, spread over kRanges by their shares; id 0 comes first
/// whenever the first range has room for it.
QList<quint32> COdictGeneratorPrivate::spreadIds(int count)
{
    QList<quint32> ids;
    ids.reserve(count);
    quint32 next = 0;
    int left = count;
    const int ranges = int(sizeof(kRanges) / sizeof(kRanges[0]));
    for (int r = 0; r < ranges && left > 0; ++r) {
        const sRange_t &range = kRanges[r];
        next = qMax(next, range.first);
        const bool last = r == ranges - 1;
        int share = last ? left : qMin(left, int((qint64(count) * range.share + 999) / 1000));
        const quint64 room = next <= range.last ? quint64(range.last) - next + 1 : 0;
        if (!last)
            share = int(qMin<quint64>(quint64(share), room));
        // The gap between neighbours keeps the share inside its range (the last one is open).
        const quint64 span = last ? qMax<quint64>(room, quint64(share) * 2) : room;
        const quint32 maxGap = share > 0 ? quint32(qMax<quint64>(1, qMin<quint64>(span / quint64(share), 64))) : 1;
        for (int i = 0; i < share; ++i) {
            ids.append(next);
            next += 1 + below(maxGap);
        }
        left -= share;
    }
    return ids;
}

QString COdictGeneratorPrivate::valueText(eTypes_t type, qint64 low, qint64 high)
{
    if (type == NTypes::E_BOOL)
        return QString::number(below(2));
    if (type == NTypes::E_F32 || type == NTypes::E_F64)
        return QString::number(double(between(low * 4, high * 4)) / 4.0); // quarters: exact in binary
    return QString::number(between(low, high));
}

/// The limits and default of \a o: numbers inside the type's range for scalars and array
/// elements, X/Y pairs for data type 24, null limits and a text default for text types.
void COdictGeneratorPrivate::setLimits(COdictObject &o)
{
    const eTypes_t type = o.dataType();
    if (type == NTypes::E_XY) {
        if (chance(500)) {
            o.setXMinValue(CVariant(type));
            o.setXMaxValue(CVariant(type));
            o.setXDefaultValue(CVariant(type));
            return;
        }
        const auto pair = [this](qint64 low, qint64 high) { return CVariant(QString::number(between(low, high)), NTypes::E_I32); };
        o.setXMinValue(pair(-1000, 0));
        o.setYMinValue(pair(-1000, 0));
        o.setXMaxValue(pair(1, 20000));
        o.setYMaxValue(pair(1, 20000));
        o.setXDefaultValue(pair(0, 0));
        o.setYDefaultValue(pair(0, 100));
        return;
    }
    if (type == NTypes::E_VSTRING || type == NTypes::E_OCTETS || COdictObject::isComplexDataType(type)) {
        o.setXMinValue(CVariant(type));
        o.setXMaxValue(CVariant(type));
        o.setXDefaultValue(type == NTypes::E_VSTRING ? CVariant(words(1, chance(500), QString()), type) : CVariant(type));
        return;
    }
    const bool isSigned = CVariant::isSignedType(type) || type == NTypes::E_F32 || type == NTypes::E_F64;
    const qint64 top = type == NTypes::E_BOOL ? 1 : (type == NTypes::E_U8 || type == NTypes::E_I8) ? 100 : 30000;
    const qint64 low = isSigned ? -qint64(below(quint32(top))) : 0;
    const qint64 high = qMax<qint64>(low + 1, qint64(below(quint32(top))) + 1);
    if (type == NTypes::E_BOOL) {
        o.setMinValue(CVariant(QStringLiteral("0"), type));
        o.setMaxValue(CVariant(QStringLiteral("1"), type));
    } else {
        o.setMinValue(CVariant(QString::number(low), type));
        o.setMaxValue(CVariant(QString::number(high), type));
    }
    o.setDefaultValue(CVariant(valueText(type, low, high), type));
}

void COdictGeneratorPrivate::fillObject(COdictObject &o, quint32 id, quint32 subId, bool subObject)
{
    const bool german = chance(500);
    o.setId(id);
    o.setSubId(subId);
    const QString base = words(1 + int(below(2)), false, QStringLiteral("_")).toUpper();
    o.setName(subObject ? QStringLiteral("%1_%2_S%3").arg(base).arg(id, 4, 16, QLatin1Char('0')).arg(subId).toUpper()
                        : QStringLiteral("%1_%2").arg(base).arg(id, 4, 16, QLatin1Char('0')).toUpper());
    o.setUiName(words(1 + int(below(3)), german, QStringLiteral(" ")));
    o.setUiShortName(chance(300) ? words(1, german, QString()) : QString());

    int total = 0;
    for (const sTypeChoice_t &t : kTypes)
        total += t.weight;
    int pick = int(below(quint32(total)));
    const sTypeChoice_t *choice = &kTypes[0];
    for (const sTypeChoice_t &t : kTypes) {
        if (pick < t.weight) {
            choice = &t;
            break;
        }
        pick -= t.weight;
    }
    o.setDataType(choice->type);
    const quint16 element = CDataTypeParser::typeSize(choice->type);
    o.setDataSize(element * quint32(choice->elements));
    o.setArrayLength(quint32(choice->elements)); // what the reader derives from size and type
    o.setVersion(NTypes::uVersion_t::fromParts(1, int(below(30)), int(below(100))));
    const unsigned int usages[] = {E_OU_PARAMETER, E_OU_ACTUAL, E_OU_OBJECT, E_OU_PARAMETER | E_OU_DATABASE_PARAMETER};
    o.setObjectUsage(usages[below(4)]);
    o.setAccessRights(quint32(next()) & 0xFF);
    o.setUnit(chance(400) ? CUnitParser::textToUnit(QLatin1String(kUnits[below(7)])) : 0);
    o.setYUnit(choice->type == NTypes::E_XY ? CUnitParser::textToUnit(QLatin1String(kUnits[below(7)])) : 0);
    o.setDigits(choice->type == NTypes::E_F32 || choice->type == NTypes::E_F64 ? int(below(4)) : -1);
    o.setDS402Id(id < 0x1000 && chance(300) ? id + 0x2000 : 0);
    o.setProfinetId(chance(100) ? 0x8000 + below(0x1000) : 0);
    o.setUserlevelRead(below(4));
    o.setUserlevelVisible(below(4));
    o.setUserlevelWrite(1 + below(5));
    if (chance(125)) {
        const quint64 high = next();
        const quint64 low = next();
        o.setRefId(QUuid(quint32(high >> 32), quint16(high >> 16), quint16(high), quint8(low >> 56), quint8(low >> 48),
                         quint8(low >> 40), quint8(low >> 32), quint8(low >> 24), quint8(low >> 16), quint8(low >> 8),
                         quint8(low)));
    }
    setLimits(o);

    if (choice->elements == 1 && isInteger(choice->type) && choice->type != NTypes::E_BOOL) {
        if (chance(200)) {
            COdictObjectEnum enumeration;
            const int entries = 2 + int(below(7));
            for (int i = 0; i < entries; ++i)
                enumeration.insert(i, words(1 + int(below(2)), chance(500), QStringLiteral(" ")));
            o.setEnumData(enumeration);
        } else if (chance(125) && CDataTypeParser::typeSize(choice->type) >= 2) {
            COdictObjectBitSet bits;
            const unsigned int width = CDataTypeParser::typeSize(choice->type) * 8;
            for (unsigned int pos = below(3); pos < width; pos += 1 + below(4))
                bits.insert(pos, words(1 + int(below(2)), chance(500), QStringLiteral(" ")));
            o.setBitSetData(bits);
        }
    }
}

QVariant COdictGeneratorPrivate::value(const COdictObject &object)
{
    const eTypes_t type = object.dataType();
    const int size = int(object.dataSize());
    if (object.arrayLength() >= 2 || type == NTypes::E_OCTETS || type == NTypes::E_DOMAIN || type == NTypes::E_RAW) {
        QByteArray bytes(size, Qt::Uninitialized);
        for (char &c : bytes)
            c = char(below(256));
        return bytes;
    }
    switch (type) {
    case NTypes::E_UNKNOWN:
        return QVariant();
    case NTypes::E_VSTRING:
    case NTypes::E_STRING:
    case NTypes::E_USTRING:
    case NTypes::E_UTF8STRING:
    case NTypes::E_CHARARRAY:
    case NTypes::E_WCHARARRAY:
        return CVariant(words(1 + int(below(2)), chance(500), QStringLiteral("-")), type).toVariant();
    default:
        break;
    }
    const qint64 top = type == NTypes::E_BOOL ? 1 : (type == NTypes::E_U8 || type == NTypes::E_I8) ? 127 : 30000;
    const bool isSigned = CVariant::isSignedType(type) || type == NTypes::E_F32 || type == NTypes::E_F64;
    return CVariant(valueText(type, isSigned ? -top : 0, top), type).toVariant();
}

/// Adds \a base as an object of the tree's kind below \a parent, with the kind's own fields.
COdictNode *COdictGeneratorPrivate::addObject(COdictObjectTree &tree, COdictNode *parent, const COdictObject &base,
                                              eItemType_t itemType)
{
    bool ok = false;
    COdictNode *node = nullptr;
    switch (tree.objectType()) {
    case E_OT_VALUE: {
        COdictValueObject v(base);
        v.setValueInHexEnabled(chance(200));
        if (chance(100)) {
            v.setReadWriteByteIndex(below(base.dataSize()));
            v.setReadWriteByteSize(1);
        }
        node = tree.createObjectNode(v, itemType, &ok);
        break;
    }
    case E_OT_EDITOR: {
        COdictEditorObject e(base);
        const bool german = chance(500);
        e.setDefString(base.xDefaultValue().toStr());
        e.setFwVariablename(QStringLiteral("g_") + base.name().toLower());
        e.setFwFunctionname(chance(200) ? QStringLiteral("fn") + base.name().toLower() : QString());
        e.setShortDescription(words(2, german, QStringLiteral(" ")));
        e.setDescription(chance(500) ? words(6 + int(below(10)), german, QStringLiteral(" ")) : QString());
        e.setAccessType(1 + int(below(4)));
        node = tree.createObjectNode(e, itemType, &ok);
        break;
    }
    case E_OT_PARAMETER: {
        COdictParameterObject p(base);
        p.setError(chance(100) ? int(below(5)) : 0);
        const int sets = int(below(4));
        for (int i = 0; i < sets; ++i)
            p.setValue(int(below(63)), value(base));
        node = tree.createObjectNode(p, itemType, &ok);
        break;
    }
    default:
        node = tree.createObjectNode(base, itemType, &ok);
        break;
    }
    if (!ok) {
        delete node;
        return nullptr;
    }
    parent->appendChild(node);
    return node;
}

/// Two history records and the four data structures the header export selects by access type.
void COdictGeneratorPrivate::addDocumentData(COdictObjectTree &tree)
{
    using S = COdictDataStructure;
    const auto member = [](const char *cType, const char *name, S::eMemberSource_t source, const char *literal) {
        S::SDataStructureMember_t m;
        m.cType = QLatin1String(cType);
        m.name = QLatin1String(name);
        m.source = source;
        m.literal = QLatin1String(literal);
        return m;
    };
    const char *const names[] = {"Std", "Float", "Text", "Record"};
    const char *const uiNames[] = {"Standard", "Gleitkomma", "Text", "Verbund"};
    for (int i = 0; i < 4; ++i) {
        S::SDataStructure_t s{QLatin1String(names[i]), QString::fromUtf8(uiNames[i]), QStringLiteral("generated"), i + 1, {}};
        s.members = {member("uint32_t", "id", S::E_MS_ID, ""), member("uint16_t", "size", S::E_MS_DATASIZE, ""),
                     member("int64_t", "minimum", S::E_MS_MIN, "0"), member("const char *", "name", S::E_MS_NAME, "")};
        tree.dataStructures().append(s);
    }
}

COdictGenerator::COdictGenerator(quint64 seed) : d(new COdictGeneratorPrivate(seed)) {}
COdictGenerator::~COdictGenerator() = default;

quint64 COdictGenerator::next() { return d->next(); }

QVariant COdictGenerator::value(const COdictObject &object) { return d->value(object); }

bool COdictGeneratorPrivate::generate(COdictObjectTree *tree, int objects)
{
    if (!tree || objects < 0 || tree->rootNode()->childCount() > 0)
        return false;
    const eObjectType_t kind = tree->objectType();

    // A pinned head: the date and time never come from the clock, so the bytes follow the seed.
    const auto meta = [this](int minor, const char *comment) {
        return CXMLMetaData(QDate(2026, 1, 1 + minor), QTime(12, 0, 0), QStringLiteral("odict generate"),
                            QLatin1String(comment), NTypes::uVersion_t::fromParts(1, minor, int(below(1000))));
    };
    if (kind == E_OT_EDITOR) {
        tree->setMetaData(meta(0, "generated, first release"));
        tree->setMetaData(meta(1, "generated"));
        addDocumentData(*tree);
    } else {
        tree->setMetaDataOnly(meta(1, "generated")); // only editor dictionaries keep a history
    }

    COdictNode *top = tree->createDictionaryNode(QStringLiteral("Generated_%1").arg(quint32(next() & 0xFFFF), 4, 16, QLatin1Char('0')));
    tree->rootNode()->appendChild(top);

    // Groups: a new one every few objects, one to three deep below the dictionary node.
    COdictNode *path[3] = {nullptr, nullptr, nullptr};
    int groups = 0;
    int leftInGroup = 0;
    COdictNode *group = top;
    const auto newGroup = [&](int depth) {
        const bool german = chance(500);
        COdictNode *parent = depth == 0 ? top : path[depth - 1];
        COdictNode *g = tree->createGroupNode(QStringLiteral("GROUP_%1_%2").arg(++groups).arg(words(1, false, QString()).toUpper()),
                                              words(1 + int(below(2)), german, QStringLiteral(" ")));
        parent->appendChild(g);
        path[depth] = g;
        for (int i = depth + 1; i < 3; ++i)
            path[i] = nullptr;
        return g;
    };

    for (const quint32 id : spreadIds(objects)) {
        if (leftInGroup-- <= 0) {
            const int depth = int(below(3));
            for (int i = 0; i < depth; ++i) {
                if (!path[i])
                    newGroup(i);
            }
            group = newGroup(depth);
            leftInGroup = 3 + int(below(25));
        }
        COdictObject base;
        fillObject(base, id, 0xFFFFFFFFu, false);
        // A sub-object of id 0 would share its index key with the plain object of its number.
        const int subs = id != 0 && chance(250) ? 2 + int(below(7)) : 0;
        const quint32 firstSub = below(2);
        if (subs > 0) {
            base.setDataType(NTypes::E_U8);
            base.setDataSize(1);
            base.setArrayLength(1);
            base.setEnumData(COdictObjectEnum());
            base.setBitSetData(COdictObjectBitSet());
            base.setYUnit(0);
            base.setDigits(-1);
            base.setYMinValue(CVariant()); // no Y halves left over from a pair type
            base.setYMaxValue(CVariant());
            base.setYDefaultValue(CVariant());
            setLimits(base);
            for (int s = 0; s < subs; ++s)
                base.addSubId(firstSub + quint32(s));
        }
        COdictNode *node = addObject(*tree, group, base, E_IT_OBJECT);
        if (!node)
            return false;
        for (int s = 0; s < subs; ++s) {
            COdictObject sub;
            fillObject(sub, id, firstSub + quint32(s), true);
            if (!addObject(*tree, node, sub, E_IT_SUBOBJECT))
                return false;
        }
    }
    return true;
}

bool COdictGenerator::generate(COdict &dictionary, int objects)
{
    return d->generate(dictionary.objectTree(), objects);
}

#include "COdictCanOpen.h"
#include "COdictCanOpen_p.h"

#include "COdict.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"

#include <QMap>

unsigned int COdictCanOpen::index(unsigned int id, unsigned int ds402Id)
{
    // 0 and 0xFFFFFFFF both mean "no DS402 id" in files; below 0x1000 lie CANopen's type entries.
    if (ds402Id >= 0x1000 && ds402Id <= 0xFFFF)
        return ds402Id;
    if (id < 0x1000)
        return id + 0x2000; // the firmware's manufacturer objects, numbered from 0
    return id <= 0xFFFF ? id : NoIndex;
}

unsigned int COdictCanOpen::index(const COdictObject &object)
{
    return index(object.id(), object.ds402Id());
}

QString COdictCanOpen::indexText(unsigned int index)
{
    return QStringLiteral("0x") + QString::number(index, 16).toUpper().rightJustified(4, QLatin1Char('0'));
}

unsigned int COdictCanOpen::dataType(NTypes::eTypes_t type)
{
    switch (type) {
    case NTypes::E_BOOL: return 0x0001;
    case NTypes::E_I8: return 0x0002;
    case NTypes::E_I16: return 0x0003;
    case NTypes::E_I32: return 0x0004;
    case NTypes::E_U8: return 0x0005;
    case NTypes::E_U16: return 0x0006;
    case NTypes::E_U32:
    case NTypes::E_TIME: return 0x0007; // milliseconds in 32 bits
    case NTypes::E_F32: return 0x0008;
    case NTypes::E_STRING:
    case NTypes::E_VSTRING:
    case NTypes::E_CHARARRAY: return 0x0009;
    case NTypes::E_OCTETS:
    case NTypes::E_UTF8STRING: return 0x000A;
    case NTypes::E_USTRING:
    case NTypes::E_WCHARARRAY: return 0x000B;
    case NTypes::E_TIME_OF_DAY: return 0x000C;
    case NTypes::E_TIME_DIFF: return 0x000D;
    case NTypes::E_DOMAIN:
    case NTypes::E_RECORD:
    case NTypes::E_RAW:
    case NTypes::E_STRUCT: return 0x000F; // blocks of bytes
    case NTypes::E_F64: return 0x0011;
    case NTypes::E_I64: return 0x0015;
    case NTypes::E_U64: return 0x001B;
    default: return 0; // unknown, the X/Y pair and the DS402 compounds (made of parts instead)
    }
}

NTypes::eTypes_t COdictCanOpen::partType(NTypes::eTypes_t type, unsigned int dataSize)
{
    switch (type) {
    case NTypes::E_DS402_U16ARRAY: return NTypes::E_U16;
    case NTypes::E_DS402_U32ARRAY: return NTypes::E_U32;
    case NTypes::E_DS402_I32ARRAY: return NTypes::E_I32;
    case NTypes::E_DS402_I16ARRAY: return NTypes::E_I16;
    case NTypes::E_DS402_F32ARRAY: return NTypes::E_F32;
    case NTypes::E_DS402_RECORD:
        // Three parts of equal size; their meaning is the firmware's, so they are unsigned.
        switch (dataSize % 3 == 0 ? dataSize / 3 : 0) {
        case 1: return NTypes::E_U8;
        case 2: return NTypes::E_U16;
        case 4: return NTypes::E_U32;
        case 8: return NTypes::E_U64;
        default: return NTypes::E_UNKNOWN;
        }
    default:
        return NTypes::E_UNKNOWN;
    }
}

COdictCanOpenMap::COdictCanOpenMap(const COdict *odict) : d_ptr(new COdictCanOpenMapPrivate)
{
    Q_D(COdictCanOpenMap);
    const COdictObjectTree *tree = odict ? odict->objectTree() : nullptr;
    if (!tree)
        return;
    QMap<unsigned int, QList<const COdictObject *>> claims;
    for (const COdictObjectId &key : tree->allObjectUIds()) {
        const COdictObject *object = tree->objectPtr(key);
        if (!object || object->isSubObject() || object->isVirtual() || !object->isValid())
            continue;
        const unsigned int index = COdictCanOpen::index(*object);
        if (index == COdictCanOpen::NoIndex)
            d->withoutIndex.append({index, object, {}});
        else
            claims[index].append(object);
    }
    for (auto it = claims.cbegin(); it != claims.cend(); ++it) {
        if (it->size() == 1) {
            d->placed.append({it.key(), it->first(), {}});
            continue;
        }
        for (const COdictObject *object : *it) {
            QStringList rivals;
            for (const COdictObject *other : *it) {
                if (other != object)
                    rivals.append(other->name());
            }
            d->collisions.append({it.key(), object, rivals});
        }
    }
}

COdictCanOpenMap::~COdictCanOpenMap() = default;

const QList<sOdictCanOpenPlace_t> &COdictCanOpenMap::placed() const
{
    Q_D(const COdictCanOpenMap);
    return d->placed;
}

const QList<sOdictCanOpenPlace_t> &COdictCanOpenMap::collisions() const
{
    Q_D(const COdictCanOpenMap);
    return d->collisions;
}

const QList<sOdictCanOpenPlace_t> &COdictCanOpenMap::withoutIndex() const
{
    Q_D(const COdictCanOpenMap);
    return d->withoutIndex;
}

#pragma once

#include "COdictObjectId.h"
#include "NTypes.h"
#include "krodict_export.h"

#include <QList>
#include <QScopedPointer>
#include <QString>
#include <QStringList>

class COdict;
class COdictCanOpenMapPrivate;
class COdictObject;

/// The CANopen view of a dictionary's numbers: the index of each object in a CANopen object
/// dictionary and the CANopen data type of each firmware type. The EDS export, the check and
/// the tool's summary share these rules.
class KRODICT_EXPORT COdictCanOpen
{
public:
    /// The index of an object that has none in the CANopen space.
    static constexpr unsigned int NoIndex = 0xFFFFFFFFu;

    /// The CANopen index of an object with \a id and DS402 id field \a ds402Id: a DS402 id in
    /// 0x1000..0xFFFF wins; else ids below 0x1000 stand at 0x2000 + id and ids up to 0xFFFF at
    /// their own number; NoIndex for larger ids.
    static unsigned int index(unsigned int id, unsigned int ds402Id);
    /// index(object.id(), object.ds402Id()).
    static unsigned int index(const COdictObject &object);

    /// \a index as CANopen writes it: "0x" and four upper-case hexadecimal digits ("0x200A").
    static QString indexText(unsigned int index);

    /// The CANopen DataType code (CiA 301 numbering) that carries \a type; 0 when none does.
    static unsigned int dataType(NTypes::eTypes_t type);
    /// The element type of one part of a DS402 array or record object (types 26 to 31) of
    /// \a dataSize bytes; E_UNKNOWN for other types and record parts of no integer size.
    static NTypes::eTypes_t partType(NTypes::eTypes_t type, unsigned int dataSize);
};

/// One CANopen index, or the reason why an object has none.
struct sOdictCanOpenPlace_t {
    unsigned int index = COdictCanOpen::NoIndex; ///< the CANopen index; NoIndex when the id has none
    const COdictObject *object = nullptr; ///< owned by the dictionary
    /// Names of the other objects that claim the same index (empty when the index is free).
    QStringList rivals;
};

/// The placement of all valid plain objects of a dictionary in the CANopen index space: the
/// objects that have an index of their own, in index order, and those left out because another
/// object claims the same index or because their id has no index.
class KRODICT_EXPORT COdictCanOpenMap
{
public:
    /// Places the objects of \a odict (not kept; the places point into its tree).
    explicit COdictCanOpenMap(const COdict *odict);
    ~COdictCanOpenMap();

    /// Objects with an index of their own, ascending by index.
    const QList<sOdictCanOpenPlace_t> &placed() const;
    /// Objects that share their index with another one (each of them, ascending by index).
    const QList<sOdictCanOpenPlace_t> &collisions() const;
    /// Objects whose id has no CANopen index, in id order.
    const QList<sOdictCanOpenPlace_t> &withoutIndex() const;

private:
    Q_DISABLE_COPY(COdictCanOpenMap)
    const QScopedPointer<COdictCanOpenMapPrivate> d_ptr;
    Q_DECLARE_PRIVATE(COdictCanOpenMap)
};

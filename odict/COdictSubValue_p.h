#pragma once

#include "CVariant.h"
#include "NTypes.h"

#include <QByteArray>
#include <QVariant>

class COdictObject;

/// Element access inside the compound value of an object, shared by the value and parameter
/// objects. A compound value is seen as its little-endian bytes: a QByteArray as it stands,
/// anything else converted to the object's data type first. Bit-set objects address single
/// bits by position instead of elements.
namespace OdictSubValue {

/// The little-endian bytes of \a value as a value of \a object; empty for a null value.
QByteArray bytesOf(const COdictObject &object, const QVariant &value);

/// Whether \a object has the sub-object \a subId (listed or possible virtual one).
bool hasSubId(const COdictObject &object, unsigned int subId);

/// Element \a subId of type \a type (or, for a bit-set object, bit \a subId as BOOL);
/// \a ok false and a null QVariant when the object has no such sub-object or the element lies
/// outside the value.
QVariant element(const COdictObject &object, const QVariant &value, unsigned int subId,
                 NTypes::eTypes_t type, bool *ok);

/// Writes \a element into \a value at the place element() reads from; only that element (or
/// bit) changes. A null \a value starts as dataSize() zero bytes. False and \a value unchanged
/// when the sub-object is unknown, the element lies outside or \a element is null.
bool setElement(const COdictObject &object, QVariant &value, unsigned int subId,
                NTypes::eTypes_t type, const CVariant &element);

/// The element type of the virtual sub-objects of \a object: BOOL for a bit set, I32 for
/// data type 24, E_UNKNOWN when it has none.
NTypes::eTypes_t virtualElementType(const COdictObject &object);

/// element() for a virtual sub-object.
QVariant virtualElement(const COdictObject &object, const QVariant &value, unsigned int subId, bool *ok);

/// setElement() for a virtual sub-object. A null \a element carries nothing: \a value stays
/// and the result is true as long as \a subId is a virtual sub-object of \a object.
bool setVirtualElement(const COdictObject &object, QVariant &value, unsigned int subId, const CVariant &element);

/// A null QVariant that still has the storage type of \a type (LongLong for I32, ...).
QVariant typedNull(NTypes::eTypes_t type);

} // namespace OdictSubValue

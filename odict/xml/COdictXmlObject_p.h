#pragma once

// One object of a dictionary document: the fields read from an "Object" element and the object
// built from them, and the fields written for an object. Shared by the streaming document reader
// and writer and by the DOM helpers.

#include "CXMLMetaData.h"
#include "NkrOdict.h"

#include <QDomElement>
#include <QList>
#include <QString>

#include <functional>

class CDomDoc;
class COdictObject;
class QXmlStreamWriter;

namespace NOdictXml {

/// Where unreadable fields are reported.
using Warn = std::function<void(const QString &)>;

// The sub-elements of an "Object" that carry one value each.
enum eField_t {
    F_SUBID, F_NAME, F_UINAME, F_UISHORTNAME, F_TYPE, F_DATASIZE, F_OBJECTVERSION, F_OBJECTUSAGE,
    F_ACCESSRIGHTS, F_UNIT, F_YUNIT, F_DIGITS, F_DS402ID, F_PROFINETID, F_ULREAD, F_ULVISIBLE,
    F_ULWRITE, F_MINVAL, F_MAXVAL, F_DEFVAL, F_REFID,
    // value objects
    F_ARRAYLENGTH, F_ARRAYINDEX, F_HEXADECIMAL,
    // editor objects
    F_DEFSTRING, F_FWVARIABLE, F_FWFUNCTION, F_ACCESSTYPE, F_SHORTDESCRIPTION, F_DESCRIPTION,
    // parameter objects
    F_ERROR,
    F_COUNT
};

/// The field of an "Object" sub-element tag; -1 for other tags.
int fieldOf(QStringView tag);
/// The same for a tag of UTF-8 bytes, as the pull reader gives it.
int fieldOf(QLatin1String tag);

/// A text read from the document; the text is valid only while present is set (a reused record
/// keeps the buffers of earlier texts).
struct sText_t {
    QString text;
    int line = 0;
    bool present = false;
};

struct sListEntry_t {
    sText_t key; ///< the "value" or "pos" (or parameter "id") attribute
    sText_t text;
};

/// Everything read of one "Object" element before the object is built from it.
struct sObjectRecord_t {
    int line = 0;
    sText_t id;       ///< attribute "id"
    sText_t subId;    ///< attribute "subid"
    sText_t version;  ///< attribute "version"
    sText_t fields[F_COUNT];
    bool hasEnum = false;
    bool hasBitSet = false;
    QList<sListEntry_t> enumItems;
    QList<sListEntry_t> bits;
    QList<sListEntry_t> params;

    /// Empties the record for the next object; the texts keep their buffers.
    void reset()
    {
        line = 0;
        id.present = subId.present = version.present = false;
        for (sText_t &field : fields)
            field.present = false;
        hasEnum = hasBitSet = false;
        enumItems.clear();
        bits.clear();
        params.clear();
    }
};

/// Whether the object keeps the text of field \a f as it stands (names, display texts,
/// descriptions); the others are parsed into numbers, types and values.
bool keepsText(eField_t f);

/// Builds the object of \a kind that \a record describes, with the reader's defaults; owned by the caller.
COdictObject *buildObject(const sObjectRecord_t &record, NkrOdict::eObjectType_t kind, const Warn &warn);
/// A display text as the application's translation (context "Odict") gives it.
QString translated(const QString &text);

/// \a text without the characters XML 1.0 cannot carry.
QString xmlText(const QString &text);
/// \a meta with its texts made storable.
CXMLMetaData xmlMeta(CXMLMetaData meta);
/// "0x" and lower-case hexadecimal digits.
QString hex(quint32 value);

/// Opens an "Object" element for \a object (with its "id" and "subid" attributes).
void startObject(QXmlStreamWriter &writer, const COdictObject &object);
/// Writes the fields of \a object (not its sub-objects) into the open "Object" element.
void writeObjectFields(QXmlStreamWriter &writer, const COdictObject &object);
/// Appends an "Object" element with the fields of \a object to \a parent.
QDomElement appendObjectElement(CDomDoc &doc, QDomElement parent, const COdictObject &object);

} // namespace NOdictXml

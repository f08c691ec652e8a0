#pragma once

#include "COdictObjectId.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "CXmlAbstractKiroFile.h"
#include "NTypes.h"
#include "krodict_export.h"

#include <QDomElement>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

/// Reads and writes data files: the current values of value objects, or the per-parameter-set
/// values of parameter objects, outside the dictionary.
///
/// The document ("KiroDataFile", format version "1.0.0") holds, after the file head of
/// CXmlAbstractKiroFile, an "Application" record (name and version of the writing program) and
/// a "Data" element with one "Object" record per object. The layout is described in
/// docs/file-format.md.
///
/// Reading never throws and never logs; an unreadable field takes its default and makes the
/// read answer false, but every other field of the record is still read. Values that do not fit
/// the object's data type ("300" for U8, odd-length or non-hexadecimal array text) stay unset.
class KRODICT_EXPORT COdictDataFile : public CXmlAbstractKiroFile
{
public:
    static const QString fileType;    ///< "KiroDataFile", the document element of a data file
    static const QString fileVersion; ///< "1.0.0"; files of any other version are read as well

    COdictDataFile();
    /// An empty data file whose messages go to \a log (not owned; null silences).
    explicit COdictDataFile(ICLogfile *log);
    /// Takes over an already loaded document \a doc (shared, not copied) and its head.
    COdictDataFile(const CDomDoc &doc, ICLogfile *log);
    ~COdictDataFile() override;

    // Overridable behaviour; the slot order is part of the binary interface.

    /// Appends one "Object" record of \a object to \a element; false when \a element is null.
    /// Stored texts end at their first U+0000 and leave out characters XML 1.0 cannot carry,
    /// so that the saved file always loads again.
    virtual bool addObjectToElement(QDomElement element, const COdictValueObject &object);
    /// The same for a parameter object, with one entry per parameter set.
    virtual bool addObjectToElement(QDomElement element, const COdictParameterObject &object);
    /// Fills \a object from the "Object" record \a element: the fields of the record, their
    /// defaults for missing ones, and the current value (null when the record has none or it is
    /// unreadable). False when \a element is null or not an "Object", when a field or the value
    /// cannot be read, and when the data type is not 1 to 32.
    virtual bool objectFromElement(COdictValueObject &object, QDomElement element) const;
    /// As above with the parameter-set values; entries whose set number is missing or not 0 to
    /// 62 are skipped silently. An entry whose text cannot be read gets no value and makes the
    /// read answer false; so do all entries of a record whose data type is not 1 to 32 (a
    /// record of such a type without entries is read without complaint).
    virtual bool objectFromElement(COdictParameterObject &object, QDomElement element) const;
    /// Adds every object of \a objects to \a element, in list order; false when \a element is null.
    virtual bool addObjectsToElement(QDomElement element, const QList<COdictValueObject> &objects);
    /// The same for parameter objects.
    virtual bool addObjectsToElement(QDomElement element, const QList<COdictParameterObject> &objects);
    /// Reads every "Object" element below \a element, at any depth and in document order, each
    /// once (also records nested inside other records), and appends it to \a objects. The AND of
    /// all single reads; false for a null element. Nesting depth is not limited by the stack.
    virtual bool objectsFromElement(QList<COdictValueObject> &objects, QDomElement element) const;
    /// The same for parameter objects.
    virtual bool objectsFromElement(QList<COdictParameterObject> &objects, QDomElement element) const;
    /// As above, inserted under their unique id: a later record with the same id replaces an
    /// earlier one.
    virtual bool objectsFromElement(QMap<COdictObjectId, COdictParameterObject> &objects, QDomElement element) const;
    /// Finds or creates "Application" under the document element and sets its "Name" and
    /// "Version"; false when there is no document.
    virtual bool setApplicationData(const QString &name, const QString &version);
    /// Finds or creates "Data" under the document element and adds \a objects to it; false when
    /// there is no document.
    virtual bool setObjects(const QList<COdictValueObject> &objects);
    /// The same for parameter objects.
    virtual bool setObjects(const QList<COdictParameterObject> &objects);
    /// Appends the records below "Data" to \a objects (see objectsFromElement()); false when
    /// there is no "Data" element or a record could not be read.
    virtual bool objects(QList<COdictValueObject> &objects) const;
    /// The same for parameter objects.
    virtual bool objects(QList<COdictParameterObject> &objects) const;
    /// The same, inserted under their unique id (a later record replaces an earlier one).
    virtual bool objects(QMap<COdictObjectId, COdictParameterObject> &objects) const;

    /// \a text with every U+FFFF (erased firmware memory) replaced by U+0000.
    QString corrStr(const QString &text) const;
    /// File text of \a value for \a object: hexadecimal bytes for arrays (array length 2 or
    /// more), the text through corrStr() for USTRING, UTF8_STRING and WCHAR_ARRAY, otherwise the
    /// core library's text form of the data type.
    QString valueToStr(const QVariant &value, const COdictValueObject &object) const;
    /// The same for a parameter object.
    QString valueToStr(const QVariant &value, const COdictParameterObject &object) const;
    /// Data type named by the "Type" child of \a element; E_UNKNOWN when it is missing or unknown.
    NTypes::eTypes_t objectType(QDomElement element) const;

    /// "Name" and "Version" of the "Application" record; empty when missing.
    QString applicationName() const;
    /// "Version" of the "Application" record; empty when missing.
    QString applicationVersion() const;

    // Whole files. The head written is metaData() stamped with the current date and time.
    /// Writes a new data file of the current values of \a objects atomically; false when it cannot be written.
    bool saveValues(const QString &fileName, const QList<COdictValueObject> &objects,
                    const QString &appName, const QString &appVersion);
    /// Writes a new data file of the parameter-set values of \a objects atomically; false when it cannot be written.
    bool saveParameters(const QString &fileName, const QList<COdictParameterObject> &objects,
                        const QString &appName, const QString &appVersion);
    /// Opens \a fileName as a data file and replaces \a objects with its records. False when the
    /// file cannot be opened or read as a data file, or when a record could not be read
    /// completely (the records are still delivered); \a errorText receives the reason.
    bool loadValues(const QString &fileName, QList<COdictValueObject> &objects, QString *errorText = nullptr);
    /// loadValues() for parameter objects.
    bool loadParameters(const QString &fileName, QList<COdictParameterObject> &objects, QString *errorText = nullptr);
    /// loadValues() for parameter objects, inserted under their unique id.
    bool loadParameters(const QString &fileName, QMap<COdictObjectId, COdictParameterObject> &objects,
                        QString *errorText = nullptr);

protected:
    /// Accepts every version: data files of older and newer writers are read alike.
    bool handleVersionError(const QString &found, const QString &expected) override;

private:
    bool createDocument(const QString &appName, const QString &appVersion);
    bool openDocument(const QString &fileName, QString *errorText);
    bool readResult(bool read, const QString &fileName, QString *errorText) const;
};

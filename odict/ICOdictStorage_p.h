#pragma once

#include "COdictProgress.h"
#include "NkrOdict.h"

#include <QString>

class CDomDoc;
class CXMLMetaData;
class COdictObject;
class COdictObjectTree;
class ICLogfile;
class QDomElement;

/// The model's only way to its file format: reads and writes whole dictionary documents and
/// single objects as DOM elements. The model owns this interface and never includes a format;
/// the file-format layer implements it and registers its implementation with setCurrent() when
/// the library is loaded.
class ICOdictStorage
{
public:
    virtual ~ICOdictStorage();

    /// Reads \a fileName as a \a documentType document into the cleared \a tree, with meta
    /// data, history and data structures when \a withDocumentData is set; messages go to \a log
    /// (not owned); \a progress gets the bytes read. 0 read; any other value: not opened, and
    /// \a error says why.
    virtual int read(COdictObjectTree &tree, const QString &fileName, const QString &documentType,
                     bool withDocumentData, ICLogfile *log, QString *error,
                     const COdictProgressCallback &progress) const = 0;
    /// Writes \a tree as a \a documentType document headed by \a meta, with history and data
    /// structures when \a withDocumentData is set. 0 written; 1 the head could not be built;
    /// 2 the file could not be written (the previous file is untouched), and \a error says why;
    /// \a progress gets the objects written.
    virtual int write(const COdictObjectTree &tree, const QString &fileName, const QString &documentType,
                      const CXMLMetaData &meta, bool withDocumentData, ICLogfile *log, QString *error,
                      const COdictProgressCallback &progress) const = 0;
    /// One object of \a kind read from an "Object" element (or from the "Object" child of
    /// \a element); a new object owned by the caller.
    virtual COdictObject *readObject(const QDomElement &element, NkrOdict::eObjectType_t kind) const = 0;
    /// Appends an "Object" element holding \a object (without sub-objects) to \a parent.
    virtual void writeObject(CDomDoc &doc, const QDomElement &parent, const COdictObject &object) const = 0;

    /// "KiroObjectDictionary": the document type of dictionaries.
    static QString dictionaryType();
    /// "KiroParameterSets": the document type of parameter dictionaries.
    static QString parameterSetType();

    /// The registered storage (not owned); null until the file-format layer registered one.
    static const ICOdictStorage *current();
    /// Registers \a storage (not owned; it must outlive every dictionary).
    static void setCurrent(const ICOdictStorage *storage);
};

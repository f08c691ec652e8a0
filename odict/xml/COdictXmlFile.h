#pragma once

#include "CXmlAbstractKiroFile.h"
#include "COdictProgress.h"
#include "NkrOdict.h"
#include "krodict_export.h"

#include <QString>

class COdictObjectTree;
class COdictObject;
class CDomDoc;
class QDomElement;

/// Reads and writes dictionary documents ("KiroObjectDictionary", "KiroParameterSets").
///
/// Reading streams the file (expat, through CXmlPullReader) and builds the tree as it goes, so memory stays
/// flat for large dictionaries; the tree is walked iteratively, so nesting depth is not limited
/// by the stack. Unreadable fields are reported as warnings and take their defaults. Writing
/// streams as well (QXmlStreamWriter) and goes through QSaveFile, so a failed save leaves the
/// previous file untouched. The element set is described in docs/file-format.md.
class KRODICT_EXPORT COdictXmlFile : public CXmlAbstractKiroFile
{
public:
    static const QString dictionaryType;   ///< "KiroObjectDictionary"
    static const QString parameterSetType; ///< "KiroParameterSets"
    static const QString formatVersion;    ///< "1.2.0"

    /// A reader and writer whose messages go to \a log (not owned; null silences).
    explicit COdictXmlFile(ICLogfile *log = nullptr);
    ~COdictXmlFile() override;

    /// Reads \a fileName as a document of \a documentType into the (cleared) \a tree. Meta data,
    /// history and data structures are taken when \a withDocumentData is set. The file passes
    /// the checks and limits of CXmlInputCheck first. Records that are not taken go to the
    /// tree's dropped records. \a progress gets the bytes read. Answers the result of
    /// CXmlAbstractKiroFile::open (0 read).
    int read(COdictObjectTree &tree, const QString &fileName, const QString &documentType, bool withDocumentData,
             const COdictProgressCallback &progress = {});

    /// Writes \a tree as a document of \a documentType with \a meta as its head; \a progress
    /// gets the objects written. 0 written, 1 the head could not be built, 2 the file could not
    /// be written (also when it names a FIFO, device or directory).
    int write(const COdictObjectTree &tree, const QString &fileName, const QString &documentType,
              const CXMLMetaData &meta, bool withDocumentData, const COdictProgressCallback &progress = {});

    /// The text of the last read or write error.
    QString errorString() const { return m_error; }

    /// Reads one object of \a kind from an "Object" element (or from the "Object" child of
    /// \a element); unreadable fields go to \a warnings. A new object owned by the caller.
    static COdictObject *objectFromElement(const QDomElement &element, NkrOdict::eObjectType_t kind, QStringList *warnings);
    /// Appends an "Object" element holding \a object (without sub-objects) to \a parent.
    static QDomElement objectToElement(CDomDoc &doc, QDomElement parent, const COdictObject &object);

private:
    QString m_error;
};

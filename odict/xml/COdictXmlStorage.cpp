// The dictionary model's storage, implemented by the XML reader and writer of this directory.
#include "COdictXmlFile.h"
#include "ICOdictStorage_p.h"

#include <QtGlobal>

namespace {

/// Adapts COdictXmlFile to the model's storage interface.
class COdictXmlStorage final : public ICOdictStorage
{
public:
    int read(COdictObjectTree &tree, const QString &fileName, const QString &documentType, bool withDocumentData,
             ICLogfile *log, QString *error, const COdictProgressCallback &progress) const override
    {
        COdictXmlFile reader(log);
        const int result = reader.read(tree, fileName, documentType, withDocumentData, progress);
        if (error)
            *error = reader.errorString();
        return result;
    }

    int write(const COdictObjectTree &tree, const QString &fileName, const QString &documentType,
              const CXMLMetaData &meta, bool withDocumentData, ICLogfile *log, QString *error,
              const COdictProgressCallback &progress) const override
    {
        COdictXmlFile writer(log);
        const int result = writer.write(tree, fileName, documentType, meta, withDocumentData, progress);
        if (error)
            *error = writer.errorString();
        return result;
    }

    COdictObject *readObject(const QDomElement &element, NkrOdict::eObjectType_t kind) const override
    {
        return COdictXmlFile::objectFromElement(element, kind, nullptr);
    }

    void writeObject(CDomDoc &doc, const QDomElement &parent, const COdictObject &object) const override
    {
        COdictXmlFile::objectToElement(doc, parent, object);
    }
};

const COdictXmlStorage xmlStorage{};

// Runs when the library is loaded: from then on every dictionary reads and writes XML.
void registerXmlStorage()
{
    ICOdictStorage::setCurrent(&xmlStorage);
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(registerXmlStorage)

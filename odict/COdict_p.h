#pragma once

#include "COdict.h"

#include <QLocale>

class COdictObjectTree;

/// State of a COdict. Every operation a derived dictionary changes is a virtual here; the public
/// class only forwards.
class COdictPrivate
{
    Q_DECLARE_PUBLIC(COdict)
public:
    explicit COdictPrivate(COdict *owner);
    virtual ~COdictPrivate();

    virtual void setLogfile(ICLogfile *log);
    virtual void createDictionary(NkrOdict::eObjectType_t kind);
    virtual NkrOdict::eObjectType_t objectType() const;
    virtual int loadDictionary(const QString &fileName);
    virtual int loadParameterDictionary(const QString &fileName);
    virtual int loadParameterSets(const QString &fileName);
    virtual bool applyHardwareDependencies(const CDeviceData &device, unsigned char pos);
    virtual bool applyHardwareDependencies(NTypes::uVersion_t version, const QString &device, unsigned char pos);
    virtual void setOdictMetaData(const CXMLMetaData &meta);
    virtual CXMLMetaData odictMetaData() const;
    virtual COdictHistory odictHistory() const;

    /// Builds the empty tree of a new dictionary; derived dictionaries build derived trees.
    virtual COdictObjectTree *newTree(NkrOdict::eObjectType_t kind) const;
    /// A copy of \a tree of the same dynamic class.
    virtual COdictObjectTree *copyTree(const COdictObjectTree &tree) const;

    COdict *q_ptr;
    ICLogfile *logfile = nullptr;
    COdictObjectTree *tree = nullptr;
    bool valid = false;
    QLocale::Language language = QLocale::C;
    COdictProgressCallback progress; ///< loads, saves and exports report here

protected:
    /// The common steps of the three loads: clear, read, set the valid flag.
    int load(const QString &fileName, const QString &documentType);
};

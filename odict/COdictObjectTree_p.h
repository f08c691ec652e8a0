#pragma once

#include "COdictObjectTree.h"
#include "COdictTreeIndex_p.h"

/// State of a COdictObjectTree. The public operations forward to the virtuals here, so a
/// derived tree changes behaviour through its own private class.
class COdictObjectTreePrivate
{
    Q_DECLARE_PUBLIC(COdictObjectTree)
public:
    COdictObjectTreePrivate(COdictObjectTree *owner, NkrOdict::eObjectType_t kind, ICLogfile *log);
    /// A deep copy of \a other for \a owner; the indexes are rebuilt over the copied nodes.
    COdictObjectTreePrivate(COdictObjectTree *owner, const COdictObjectTreePrivate &other);
    virtual ~COdictObjectTreePrivate();

    virtual void clear();
    virtual COdictNode *node(const COdictObjectName &name) const;
    virtual COdictNode *findNodeByRefId(const QUuid &refId) const;
    virtual COdictNode *findGroupNode(const QString &name, COdictNode *from) const;
    virtual unsigned int highestId() const;
    virtual COdictObjectId highestUId() const;
    virtual QList<COdictObjectId> allObjectUIds(const COdictNode *node) const;
    virtual COdictNode *registerNode(COdictItem *item, bool *ok);
    virtual void indexSubtree(COdictNode *node);
    virtual void unindexSubtree(COdictNode *node);
    virtual bool changeObjectId(const COdictObjectId &from, const COdictObjectId &to);
    virtual void setMetaData(const CXMLMetaData &meta);
    virtual void addWarning(const QString &text);
    virtual int load(const QString &fileName, const QString &documentType, const COdictProgressCallback &progress);
    virtual int save(const QString &fileName, const COdictProgressCallback &progress);

    template <class X>
    COdictNode *createObjectNode(const X &object, NkrOdict::eItemType_t type, bool *ok);
    template <class X>
    bool replaceObject(const X &object, const COdictObjectId &oldId);
    void removeName(const COdictObjectName &name, const COdictNode *node);

    COdictObjectTree *q_ptr;
    NkrOdict::eObjectType_t kind;
    ICLogfile *log;              // not owned
    COdictNode *root;            // owned: every node, item and object of the tree
    COdictIdIndex idIndex;       // values not owned
    COdictNameIndex nameIndex;   // values not owned
    CXMLMetaData metaData;
    QString fileName;
    QStringList warnings;
    QList<COdictDroppedRecord> dropped; // what the last load did not take into the tree
    COdictDataStructure dataStructures;
    COdictHistory history;
    QList<COdictNode *> unlinked; // owned: registered by an edit that could not link them
};

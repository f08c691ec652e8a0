#pragma once

#include "COdictObjectTree.h"
#include "COdictTreeIndex_p.h"

/// The root of a tree: it answers the tree's observer, so every node below it reports linking,
/// unlinking and item changes there.
class COdictRootNode final : public COdictNode
{
public:
    COdictRootNode(const COdictItem &item, CTreeNodeObserver<COdictItem> *observer)
        : COdictNode(item), m_observer(observer)
    {
    }
    CTreeNodeObserver<COdictItem> *observer() const override { return m_observer; }

private:
    CTreeNodeObserver<COdictItem> *m_observer; // not owned: the tree's private object
};

/// State of a COdictObjectTree. The public operations forward to the virtuals here, so a
/// derived tree changes behaviour through its own private class. It observes its own nodes to
/// keep the reference-id index and the objects held by the id and name indexes right.
class COdictObjectTreePrivate : public CTreeNodeObserver<COdictItem>
{
    Q_DECLARE_PUBLIC(COdictObjectTree)
public:
    COdictObjectTreePrivate(COdictObjectTree *owner, NkrOdict::eObjectType_t kind, ICLogfile *log);
    /// A deep copy of \a other for \a owner; the indexes are rebuilt over the copied nodes.
    COdictObjectTreePrivate(COdictObjectTree *owner, const COdictObjectTreePrivate &other);
    ~COdictObjectTreePrivate() override;

    virtual void clear();
    /// The name index entry of (\a name, \a subId), else the first non-empty group of that plain name.
    COdictNode *node(QStringView name, unsigned int subId) const
    {
        if (COdictNode *found = nameIndex.value(name, subId))
            return found;
        return groupNode(name, root);
    }
    /// The object of the node node(\a name, \a subId) finds; null when none.
    COdictObject *object(QStringView name, unsigned int subId) const
    {
        COdictObject *found = nullptr;
        if (nameIndex.findObject(name, subId, &found))
            return found;
        return objectOfNode(groupNode(name, root));
    }
    COdictNode *groupNode(QStringView name, COdictNode *from) const;
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

    void subtreeLinked(COdictNode *top) override;
    void subtreeUnlinked(COdictNode *top) override;
    void itemAboutToChange(COdictNode *node) override;
    void itemChanged(COdictNode *node) override;

    COdictObjectTree *q_ptr;
    NkrOdict::eObjectType_t kind;
    ICLogfile *log;              // not owned
    COdictNode *root;            // owned: every node, item and object of the tree
    COdictIdIndex idIndex;       // values not owned
    COdictNameIndex nameIndex;   // values not owned
    COdictRefIdIndex refIdIndex; // values not owned
    // The item change under way (see itemAboutToChange()): its old reference id and object.
    QUuid changingRefId;
    const COdictObject *changingObject = nullptr;
    CXMLMetaData metaData;
    QString fileName;
    QStringList warnings;
    QList<COdictDroppedRecord> dropped; // what the last load did not take into the tree
    COdictDataStructure dataStructures;
    COdictHistory history;
    QList<COdictNode *> unlinked; // owned: registered by an edit that could not link them
};

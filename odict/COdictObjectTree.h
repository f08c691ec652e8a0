#pragma once

#include "COdictDataStructure.h"
#include "COdictDroppedRecord.h"
#include "COdictHistory.h"
#include "COdictItem.h"
#include "COdictObjectId.h"
#include "COdictObjectName.h"
#include "COdictProgress.h"
#include "CXMLMetaData.h"
#include "NkrOdict.h"
#include "krodict_export.h"

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QUuid>

class ICLogfile;
class COdictObject;
class COdictValueObject;
class COdictEditorObject;
class COdictParameterObject;

/// One dictionary: a tree of nodes under a root, an id index and a name index that reach every
/// object and sub-object node directly, and the document data (meta data, history, data
/// structures, file name, load warnings).
///
/// Index invariants, kept by every operation that adds, removes, renames or re-numbers an object:
/// exactly the object and sub-object nodes are indexed; the id index maps each one's uniqueId()
/// and the name index its uniqueName() to it; no two indexed nodes share a uniqueId().
class KRODICT_EXPORT COdictObjectTree : public QObject
{
    Q_OBJECT
public:
    using IdIndex = QMap<COdictObjectId, COdictNode *>;
    using NameIndex = QMap<COdictObjectName, COdictNode *>;

    COdictObjectTree(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    /// A deep copy whose indexes are rebuilt over its own nodes.
    COdictObjectTree(const COdictObjectTree &other);
    ~COdictObjectTree() override;

    virtual NkrOdict::eObjectType_t objectType() const { return m_kind; }
    ICLogfile *logfile() const { return m_log; }
    void setLogfile(ICLogfile *log) { m_log = log; }

    /// Empties both indexes, deletes every node below the root, resets the meta data and empties
    /// the data structures and the warnings; the history stays.
    void clear();

    COdictNode *rootNode() const { return m_root; }
    /// The root's first child; null when the root has none.
    COdictNode *dictionaryNode() const { return m_root->child(0); }
    COdictNode *createDictionaryNode(const QString &name) const;
    COdictNode *createGroupNode(const QString &name, const QString &uiName) const;
    static bool isGroup(const COdictNode *node);

    // Lookups; none of them logs.
    COdictNode *node(const COdictObjectId &id) const { return m_idIndex.value(id, nullptr); }
    COdictNode *node(unsigned int id, unsigned int subId) const { return node(COdictObjectId(id, subId)); }
    /// The name index entry, else the first non-empty group of that plain name.
    COdictNode *node(const COdictObjectName &name) const;
    COdictNode *node(const QString &name, unsigned int subId) const { return node(COdictObjectName(name, subId)); }
    COdictObject *objectPtr(const COdictObjectId &id) const;
    COdictObject *objectPtr(unsigned int id, unsigned int subId) const { return objectPtr(COdictObjectId(id, subId)); }
    COdictObject *objectPtr(const COdictObjectName &name) const;
    COdictObject *objectPtr(const QString &name, unsigned int subId) const { return objectPtr(COdictObjectName(name, subId)); }
    /// Depth-first, pre-order search for the node whose item has \a refId.
    COdictNode *findNodeByRefId(const QUuid &refId) const;
    /// The first node (pre-order from \a from, descending only into groups) with children whose
    /// item name equals \a name.
    COdictNode *findGroupNode(const QString &name, COdictNode *from = nullptr) const;

    unsigned int highestId() const;
    COdictObjectId highestUId() const;
    QList<COdictObjectId> allObjectUIds() const { return m_idIndex.keys(); }
    QList<COdictObjectId> allObjectUIds(const COdictNode *node) const;
    QList<unsigned int> allObjectIds() const;
    QList<unsigned int> allObjectIds(const COdictNode *node) const;

    // Registering objects: a new unlinked node, indexed when its unique id is free; on a
    // duplicate nothing is indexed, a critical message is logged and ok is false. The caller
    // links the node when ok is true and deletes it otherwise.
    virtual COdictNode *createObjectNode(const COdictObject &object, NkrOdict::eItemType_t type, bool *ok);
    virtual COdictNode *createObjectNode(const COdictValueObject &object, NkrOdict::eItemType_t type, bool *ok);
    virtual COdictNode *createObjectNode(const COdictEditorObject &object, NkrOdict::eItemType_t type, bool *ok);
    virtual COdictNode *createObjectNode(const COdictParameterObject &object, NkrOdict::eItemType_t type, bool *ok);

    /// Enters \a node and all its object descendants into both indexes (no duplicate check).
    void indexSubtree(COdictNode *node);
    /// Removes \a node and all its object descendants from both indexes (entries that point
    /// elsewhere are left alone).
    void unindexSubtree(COdictNode *node);

    /// Replaces the object of the node indexed under \a oldId (the object's own unique id when
    /// \a oldId is null), re-keying the id and name indexes; false when the object is not valid
    /// or no node has that id, or the item refuses the object's kind.
    bool replaceObject(const COdictObject &object, const COdictObjectId &oldId = COdictObjectId());
    bool replaceObject(const COdictValueObject &object, const COdictObjectId &oldId = COdictObjectId());
    bool replaceObject(const COdictEditorObject &object, const COdictObjectId &oldId = COdictObjectId());
    bool replaceObject(const COdictParameterObject &object, const COdictObjectId &oldId = COdictObjectId());
    /// Re-keys the id index only (an object's own key re-keys its sub-objects first).
    bool changeObjectId(const COdictObjectId &from, const COdictObjectId &to);
    /// Removes the name index entry of \a name when it points at \a node.
    void removeName(const COdictObjectName &name, const COdictNode *node);
    void insertName(const COdictObjectName &name, COdictNode *node) { m_nameIndex.insert(name, node); }
    void removeId(const COdictObjectId &id) { m_idIndex.remove(id); }
    void insertId(const COdictObjectId &id, COdictNode *node) { m_idIndex.insert(id, node); }

    const IdIndex &idIndex() const { return m_idIndex; }
    const NameIndex &nameIndex() const { return m_nameIndex; }

    CXMLMetaData metaData() const { return m_metaData; }
    /// Stores the meta data and puts it into the history (replacing the record of its version).
    void setMetaData(const CXMLMetaData &meta);
    /// Replaces the meta data only (as read from a file).
    void setMetaDataOnly(const CXMLMetaData &meta) { m_metaData = meta; }
    const COdictHistory &history() const { return m_history; }
    void setHistory(const COdictHistory &history) { m_history = history; }
    COdictDataStructure &dataStructures() { return m_dataStructures; }
    const COdictDataStructure &dataStructures() const { return m_dataStructures; }
    void setDataStructures(const COdictDataStructure &list) { m_dataStructures = list; }

    QString fileName() const { return m_fileName; }
    void setFileName(const QString &fileName) { m_fileName = fileName; }
    QStringList warningMessages() const { return m_warnings; }
    void clearWarningMessages() { m_warnings.clear(); }
    /// Records a load warning and sends it to the log.
    void addWarning(const QString &text);

    /// The records the last load did not take into the tree (see COdictDroppedRecord).
    QList<COdictDroppedRecord> droppedRecords() const { return m_dropped; }
    /// Records a dropped record of the running load (the caller logs the reason).
    void addDroppedRecord(const COdictDroppedRecord &record) { m_dropped.append(record); }

    /// Reads a document into this tree (cleared by the caller). \a documentType is the type the
    /// caller asks for (empty: the tree's own choice). \a progress gets the bytes read. 0 read;
    /// 1 not opened.
    int load(const QString &fileName, const QString &documentType, const COdictProgressCallback &progress = {});
    /// Writes the tree as a document; \a progress gets the objects written. 0 written, 1 the
    /// head could not be built, 2 not saved.
    int save(const QString &fileName, const COdictProgressCallback &progress = {});

    /// Keeps a node that an edit registered but could not link (see COdictEdit); it is deleted
    /// with the tree or by clear().
    void adoptUnlinkedNode(COdictNode *node) { m_unlinked.append(node); }

    /// Tells listeners that the tree changed (loads and structural edits).
    void notifyChanged() { emit objectDictionaryChanged(); }

signals:
    void objectDictionaryChanged();

protected:
    /// Registers the node built for \a item (takes ownership of it).
    COdictNode *registerNode(COdictItem *item, bool *ok);

private:
    template <class X>
    bool replaceObjectOf(const X &object, const COdictObjectId &oldId);
    template <class X>
    COdictNode *createNodeOf(const X &object, NkrOdict::eItemType_t type, bool *ok);

    NkrOdict::eObjectType_t m_kind;
    ICLogfile *m_log;
    COdictNode *m_root;
    IdIndex m_idIndex;
    NameIndex m_nameIndex;
    CXMLMetaData m_metaData;
    QString m_fileName;
    QStringList m_warnings;
    QList<COdictDroppedRecord> m_dropped;
    COdictDataStructure m_dataStructures;
    COdictHistory m_history;
    QList<COdictNode *> m_unlinked;
};

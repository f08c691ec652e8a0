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
#include <QScopedPointer>
#include <QStringList>
#include <QUuid>

class ICLogfile;
class COdictObject;
class COdictValueObject;
class COdictEditorObject;
class COdictParameterObject;
class COdictObjectTreePrivate;

/// One dictionary: a tree of nodes under a root, an id index and a name index that reach every
/// object and sub-object node directly, and the document data (meta data, history, data
/// structures, file name, load warnings).
///
/// Index invariants, kept by every operation that adds, removes, renames or re-numbers an object:
/// exactly the object and sub-object nodes are indexed; the id index maps each one's uniqueId()
/// and the name index its uniqueName() to it; no two indexed nodes share a uniqueId().
///
/// The reference-id index holds every node below the root (the root included) and follows the
/// nodes themselves: linking, unlinking and deleting subtrees and replacing items through
/// CTreeNode's calls keep it right. Items are replaced with setData() or setItem(); an item
/// assigned in place through dataPtr() keeps the entry of its old reference id.
///
/// The tree owns its nodes (and through them the items and objects); index entries and the log
/// file are not owned. objectType() and the four createObjectNode() are the operations a derived
/// tree overrides; everything else forwards to the private object.
class KRODICT_EXPORT COdictObjectTree : public QObject
{
    Q_OBJECT
public:
    /// Unique id to node; the nodes are owned by the tree.
    using IdIndex = QMap<COdictObjectId, COdictNode *>;
    /// Unique name to node; the nodes are owned by the tree.
    using NameIndex = QMap<COdictObjectName, COdictNode *>;

    /// An empty tree (a root only) whose objects are of \a kind; \a log is not owned, null silences.
    COdictObjectTree(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    /// A deep copy whose indexes are rebuilt over its own nodes.
    COdictObjectTree(const COdictObjectTree &other);
    ~COdictObjectTree() override;

    /// The kind of every object of this tree, fixed at construction.
    virtual NkrOdict::eObjectType_t objectType() const;
    /// The log sink; not owned, null when messages are silenced.
    ICLogfile *logfile() const;
    /// Sets the log sink (not owned; null silences).
    void setLogfile(ICLogfile *log);

    /// Empties both indexes, deletes every node below the root, resets the meta data and empties
    /// the data structures and the warnings; the history stays.
    void clear();

    /// The root node, owned by the tree; never null.
    COdictNode *rootNode() const;
    /// The root's first child; null when the root has none.
    COdictNode *dictionaryNode() const;
    /// A new unlinked dictionary node named \a name; the caller owns it until it is linked.
    COdictNode *createDictionaryNode(const QString &name) const;
    /// A new unlinked group node; the caller owns it until it is linked.
    COdictNode *createGroupNode(const QString &name, const QString &uiName) const;
    /// True when \a node holds a group item.
    static bool isGroup(const COdictNode *node);

    /// The node indexed under \a id; null when none (lookups never log).
    COdictNode *node(const COdictObjectId &id) const;
    /// The node indexed under (\a id, \a subId); null when none.
    COdictNode *node(unsigned int id, unsigned int subId) const;
    /// The name index entry, else the first non-empty group of that plain name; null when none.
    COdictNode *node(const COdictObjectName &name) const;
    /// The node of (\a name, \a subId) as node(const COdictObjectName &) finds it; null when none.
    COdictNode *node(const QString &name, unsigned int subId) const;
    /// The object of the node indexed under \a id (owned by the tree); null when none.
    COdictObject *objectPtr(const COdictObjectId &id) const;
    /// The object of the node indexed under (\a id, \a subId); null when none.
    COdictObject *objectPtr(unsigned int id, unsigned int subId) const;
    /// The object of the node found by \a name (a group's is null); null when none.
    COdictObject *objectPtr(const COdictObjectName &name) const;
    /// The object of the node found by (\a name, \a subId); null when none.
    COdictObject *objectPtr(const QString &name, unsigned int subId) const;
    /// The first node in pre-order from the root whose item has \a refId, found in the reference-id
    /// index; null when none.
    COdictNode *findNodeByRefId(const QUuid &refId) const;
    /// The first node (pre-order from \a from, the root when null, descending only into groups)
    /// with children whose item name equals \a name; null when none.
    COdictNode *findGroupNode(const QString &name, COdictNode *from = nullptr) const;

    /// The greatest id of the id index; 0 when it is empty.
    unsigned int highestId() const;
    /// The greatest valid id with its greatest real sub-id (its own key without sub-objects);
    /// invalid when the index holds no valid key.
    COdictObjectId highestUId() const;
    /// All keys of the id index, in key order.
    QList<COdictObjectId> allObjectUIds() const;
    /// The number of keys of the id index (without building the ordered map).
    int objectCount() const;
    /// The unique ids below a group in child order (nested groups spliced in), all of them for
    /// the dictionary node, none for any other node.
    QList<COdictObjectId> allObjectUIds(const COdictNode *node) const;
    /// The ids of allObjectUIds(), in the same order, duplicates kept.
    QList<unsigned int> allObjectIds() const;
    /// The ids of allObjectUIds(\a node), in the same order, duplicates kept.
    QList<unsigned int> allObjectIds(const COdictNode *node) const;

    // Registering objects: a new unlinked node, indexed when its unique id is free; on a
    // duplicate nothing is indexed, a critical message is logged and ok is false. The caller
    // links the node when ok is true and deletes it otherwise.
    /// Registers a plain object; see above.
    virtual COdictNode *createObjectNode(const COdictObject &object, NkrOdict::eItemType_t type, bool *ok);
    /// Registers a value object; see above.
    virtual COdictNode *createObjectNode(const COdictValueObject &object, NkrOdict::eItemType_t type, bool *ok);
    /// Registers an editor object; see above.
    virtual COdictNode *createObjectNode(const COdictEditorObject &object, NkrOdict::eItemType_t type, bool *ok);
    /// Registers a parameter object; see above.
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
    /// The value-object form of replaceObject(const COdictObject &, const COdictObjectId &).
    bool replaceObject(const COdictValueObject &object, const COdictObjectId &oldId = COdictObjectId());
    /// The editor-object form of replaceObject(const COdictObject &, const COdictObjectId &).
    bool replaceObject(const COdictEditorObject &object, const COdictObjectId &oldId = COdictObjectId());
    /// The parameter-object form of replaceObject(const COdictObject &, const COdictObjectId &).
    bool replaceObject(const COdictParameterObject &object, const COdictObjectId &oldId = COdictObjectId());
    /// Re-keys the id index only (an object's own key re-keys its sub-objects first); false when
    /// \a from is not indexed or \a to is taken.
    bool changeObjectId(const COdictObjectId &from, const COdictObjectId &to);
    /// Removes the name index entry of \a name when it points at \a node.
    void removeName(const COdictObjectName &name, const COdictNode *node);
    /// Enters \a node under \a name (replacing an entry of that name).
    void insertName(const COdictObjectName &name, COdictNode *node);
    /// Removes the id index entry of \a id.
    void removeId(const COdictObjectId &id);
    /// Enters \a node under \a id (replacing an entry of that id).
    void insertId(const COdictObjectId &id, COdictNode *node);

    /// The id index (read-only). The ordered map is built on the first call and kept in step
    /// from then on; allObjectUIds(), objectCount() and node() work without it.
    const IdIndex &idIndex() const;
    /// The name index (read-only).
    const NameIndex &nameIndex() const;

    /// The meta data of the current document.
    CXMLMetaData metaData() const;
    /// Stores the meta data and puts it into the history (replacing the record of its version).
    void setMetaData(const CXMLMetaData &meta);
    /// Replaces the meta data only (as read from a file).
    void setMetaDataOnly(const CXMLMetaData &meta);
    /// The version history, newest first.
    const COdictHistory &history() const;
    /// Replaces the version history.
    void setHistory(const COdictHistory &history);
    /// The data-structure list, for editing in place.
    COdictDataStructure &dataStructures();
    /// The data-structure list.
    const COdictDataStructure &dataStructures() const;
    /// Replaces the data-structure list.
    void setDataStructures(const COdictDataStructure &list);

    /// The file last loaded (also when loading failed) or saved.
    QString fileName() const;
    /// Sets the file name.
    void setFileName(const QString &fileName);
    /// The warnings of the last load, in the order they were found.
    QStringList warningMessages() const;
    /// Empties the warning list.
    void clearWarningMessages();
    /// Records a load warning and sends it to the log.
    void addWarning(const QString &text);

    /// The records the last load did not take into the tree (see COdictDroppedRecord).
    QList<COdictDroppedRecord> droppedRecords() const;
    /// Records a dropped record of the running load (the caller logs the reason).
    void addDroppedRecord(const COdictDroppedRecord &record);

    /// Reads a document into this tree (cleared by the caller). \a documentType is the type the
    /// caller asks for (empty: the tree's own choice). \a progress gets the bytes read. 0 read;
    /// 1 not opened.
    int load(const QString &fileName, const QString &documentType, const COdictProgressCallback &progress = {});
    /// Writes the tree as a document; \a progress gets the objects written. 0 written, 1 the
    /// head could not be built, 2 not saved.
    int save(const QString &fileName, const COdictProgressCallback &progress = {});

    /// Keeps a node that an edit registered but could not link (see COdictEdit); it is deleted
    /// with the tree or by clear().
    void adoptUnlinkedNode(COdictNode *node);

    /// Tells listeners that the tree changed (loads and structural edits).
    void notifyChanged();

signals:
    /// Emitted after a load and after every structural edit.
    void objectDictionaryChanged();

protected:
    /// For derived trees, which pass their own private object (owned from here on).
    COdictObjectTree(COdictObjectTreePrivate &dd, QObject *parent);
    /// Registers the node built for \a item (takes ownership of it).
    COdictNode *registerNode(COdictItem *item, bool *ok);

    /// The private object: all state of the tree.
    const QScopedPointer<COdictObjectTreePrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(COdictObjectTree)
};

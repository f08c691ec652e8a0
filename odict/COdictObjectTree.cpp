#include "COdictObjectTree.h"

#include "COdictObjectTree_p.h"
#include "CMessageBoardHelper.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "ICOdictStorage_p.h"

#include <QCoreApplication>
#include <QDate>
#include <QTime>
#include <QVector>

using namespace NkrOdict;

namespace {

enum eVisit_t { E_DESCEND, E_SKIP_CHILDREN, E_STOP };

/// Walks \a top and its descendants pre-order (a node before its children, children in order)
/// with a work list instead of recursion, so any nesting depth is safe. \a visit tells for each
/// node whether to go into its children, skip them, or stop; the node that stopped the walk is
/// returned (null when none did).
template <class Visit>
COdictNode *walkPreOrder(COdictNode *top, Visit visit)
{
    if (!top)
        return nullptr;
    QVector<COdictNode *> pending{top};
    while (!pending.isEmpty()) {
        COdictNode *current = pending.takeLast();
        const eVisit_t next = visit(current);
        if (next == E_STOP)
            return current;
        if (next == E_SKIP_CHILDREN)
            continue;
        const QList<COdictNode *> children = current->children();
        for (int i = children.size() - 1; i >= 0; --i) // reversed, so the first child comes first
            pending.append(children.at(i));
    }
    return nullptr;
}

} // namespace

// ---- COdictObjectTreePrivate ----

COdictObjectTreePrivate::COdictObjectTreePrivate(COdictObjectTree *owner, eObjectType_t kind, ICLogfile *log)
    : q_ptr(owner), kind(kind), log(log), root(new COdictRootNode(COdictItem(), this))
{
    refIdIndex.setRoot(root);
    refIdIndex.addNode(root);
}

COdictObjectTreePrivate::COdictObjectTreePrivate(COdictObjectTree *owner, const COdictObjectTreePrivate &other)
    : q_ptr(owner)
    , kind(other.kind)
    , log(other.log)
    , root(new COdictRootNode(other.root->dataRef(), this))
    , metaData(other.metaData)
    , fileName(other.fileName)
    , warnings(other.warnings)
    , dropped(other.dropped)
    , dataStructures(other.dataStructures)
    , history(other.history)
{
    // Index entries are never copied: they are rebuilt so that they point into this tree. The
    // tables are sized once for what the source holds.
    idIndex.reserve(other.idIndex.size());
    nameIndex.reserve(other.nameIndex.size());
    refIdIndex.reserve(other.refIdIndex.size());
    refIdIndex.setRoot(root);
    refIdIndex.addNode(root);
    for (const COdictNode *child : other.root->children())
        root->appendChild(child->clone()); // the reference-id index takes each copy as it is linked
    COdictObjectTreePrivate::indexSubtree(root);
}

COdictObjectTreePrivate::~COdictObjectTreePrivate()
{
    delete root;
    qDeleteAll(unlinked);
}

void COdictObjectTreePrivate::clear()
{
    idIndex.clear();
    nameIndex.clear();
    refIdIndex.clear(); // emptied first, so the removal below does not take the nodes out one by one
    root->removeAllChildren();
    refIdIndex.addNode(root);
    qDeleteAll(unlinked);
    unlinked.clear();
    metaData = CXMLMetaData();
    dataStructures.clear();
    warnings.clear();
    dropped.clear();
}

COdictNode *COdictObjectTreePrivate::findNodeByRefId(const QUuid &refId) const
{
    if (!refId.isNull())
        return refIdIndex.value(refId);
    // No item has the null id, so the index leaves it out; a walk gives the answer all the same.
    return walkPreOrder(root, [&refId](const COdictNode *node) {
        return node->dataRef().refId() == refId ? E_STOP : E_DESCEND;
    });
}

COdictNode *COdictObjectTreePrivate::findGroupNode(const QString &name, COdictNode *from) const
{
    return groupNode(name, from ? from : root);
}

COdictNode *COdictObjectTreePrivate::groupNode(QStringView name, COdictNode *from) const
{
    if (name.isEmpty())
        return nullptr; // the root and unnamed nodes are not addressable by name
    COdictNode *top = from;
    return walkPreOrder(top, [&name, top](const COdictNode *node) {
        // Only groups are searched, plus the dictionary node that holds the top-level groups.
        const eItemType_t type = node->dataRef().type();
        if (node != top && type != E_IT_GROUP && type != E_IT_DICTIONARY)
            return E_SKIP_CHILDREN;
        if (node->childCount() == 0)
            return E_SKIP_CHILDREN; // nodes without children never match: empty groups are skipped
        return node->dataRef().name() == name ? E_STOP : E_DESCEND;
    });
}

unsigned int COdictObjectTreePrivate::highestId() const
{
    // Keys order by their packed form, so every key's id is looked at: plain ids, sub-objects by
    // (id, sub-id), and the sub-objects of id 0 among the plain ids.
    return idIndex.highestId();
}

COdictObjectId COdictObjectTreePrivate::highestUId() const
{
    // The greatest valid id with its greatest real sub-id, or its own key without sub-objects:
    // a maximum, so the keys may come in any order.
    COdictObjectId result(0xFFFFFFFFu, 0xFFFFFFFFu);
    idIndex.forEachKey([&result](const COdictObjectId &key) {
        if (!key.isValid())
            return;
        if (!result.isValid() || key.id() > result.id()) {
            result = key;
        } else if (key.id() == result.id() && key.subId() != 0xFFFFFFFFu
                   && (result.subId() == 0xFFFFFFFFu || key.subId() > result.subId())) {
            result = key;
        }
    });
    return result;
}

QList<COdictObjectId> COdictObjectTreePrivate::allObjectUIds(const COdictNode *node) const
{
    if (!node || !node->hasData())
        return {};
    const eItemType_t type = node->dataPtr()->type();
    if (type == E_IT_DICTIONARY)
        return idIndex.keys();
    if (type != E_IT_GROUP)
        return {};
    // Direct object children in child order, nested groups spliced in at their places.
    QList<COdictObjectId> ids;
    QVector<QPair<const COdictNode *, int>> pending{{node, 0}};
    while (!pending.isEmpty()) {
        auto &[current, next] = pending.last();
        if (next >= current->childCount()) {
            pending.removeLast();
            continue;
        }
        const COdictNode *child = current->child(next++);
        const COdictItem &item = child->dataRef();
        if (item.isObjectItem()) {
            if (item.hasObject())
                ids.append(item.objectPtr()->uniqueId());
        } else {
            pending.append({child, 0});
        }
    }
    return ids;
}

COdictNode *COdictObjectTreePrivate::registerNode(COdictItem *item, bool *ok)
{
    auto *created = new COdictNode;
    created->setItem(item);
    const COdictObject *object = item->objectPtr();
    const COdictObjectId uid = object ? object->uniqueId() : COdictObjectId();
    COdictNode *existing = idIndex.value(uid);
    if (!object || existing) {
        if (existing) {
            const QString message = QStringLiteral("%1 : %2 %3; %4, %5")
                .arg(QCoreApplication::translate("COdictObjectTree", "Double Object-ID detected"),
                     QCoreApplication::translate("COdictObjectTree", "ID 0x%1").arg(object->id(), 0, 16),
                     QCoreApplication::translate("COdictObjectTree", "Sub-ID 0x%1").arg(object->subId(), 0, 16),
                     existing->dataRef().name(), object->name());
            CMessageBoardHelper::setCritical(message, log, 0);
        }
        if (ok)
            *ok = false;
        return created;
    }
    idIndex.insert(uid, created);
    nameIndex.insert(object->uniqueName(), created);
    if (ok)
        *ok = true;
    return created;
}

template <class X>
COdictNode *COdictObjectTreePrivate::createObjectNode(const X &object, eItemType_t type, bool *ok)
{
    auto *item = new COdictItem(object);
    item->setType(type);
    return registerNode(item, ok);
}

void COdictObjectTreePrivate::indexSubtree(COdictNode *node)
{
    // Pre-order, as the nodes were registered: of nodes sharing a name, the later one keeps the
    // name index entry, as in the tree that was copied.
    walkPreOrder(node, [this](COdictNode *current) {
        const COdictItem &item = current->dataRef();
        if (item.isObjectItem() && item.hasObject()) {
            idIndex.insert(item.objectPtr()->uniqueId(), current);
            nameIndex.insert(item.objectPtr()->uniqueName(), current);
        }
        return E_DESCEND;
    });
}

void COdictObjectTreePrivate::unindexSubtree(COdictNode *node)
{
    walkPreOrder(node, [this](COdictNode *current) {
        const COdictItem &item = current->dataRef();
        if (item.isObjectItem() && item.hasObject()) {
            const COdictObjectId uid = item.objectPtr()->uniqueId();
            if (idIndex.value(uid) == current)
                idIndex.remove(uid);
            removeName(item.objectPtr()->uniqueName(), current);
        }
        return E_DESCEND;
    });
}

void COdictObjectTreePrivate::removeName(const COdictObjectName &name, const COdictNode *node)
{
    if (nameIndex.value(name) == node) // a missing entry and one holding null both give null
        nameIndex.remove(name);
}

template <class X>
bool COdictObjectTreePrivate::replaceObject(const X &object, const COdictObjectId &oldId)
{
    if (!object.isValid())
        return false;
    const COdictObjectId from = oldId.isNull() ? object.uniqueId() : oldId;
    COdictNode *target = idIndex.value(from);
    if (!target || !target->hasData())
        return false;
    COdictItem *item = target->dataPtr();
    const COdictObjectId to = object.uniqueId();
    if (from != to && idIndex.value(to))
        return false; // the new id belongs to another node
    // The item may refuse the object's kind; the indexes follow only an accepted object.
    const COdictObjectName currentName = item->uniqueName();
    const COdictObject *currentObject = item->objectPtr();
    if (!item->setObject(object))
        return false;
    if (item->objectPtr() != currentObject) {
        // The item made itself a new object: every entry of the node takes it.
        idIndex.refreshObject(target);
        nameIndex.refreshObject(target);
    }
    if (from != to) {
        idIndex.remove(from);
        idIndex.insert(to, target);
    }
    if (currentName != object.uniqueName()) {
        removeName(currentName, target);
        nameIndex.insert(object.uniqueName(), target);
    }
    return true;
}

bool COdictObjectTreePrivate::changeObjectId(const COdictObjectId &from, const COdictObjectId &to)
{
    COdictNode *target = idIndex.value(from);
    if (!target || idIndex.value(to))
        return false;
    bool result = true;
    if (from.subId() == 0xFFFFFFFFu) {
        // An object's own key: its sub-objects follow to the new id first. A failing child does
        // not stop the others.
        const QList<COdictNode *> children = target->children();
        for (COdictNode *child : children) {
            const COdictItem &item = child->dataRef();
            if (!item.hasObject())
                continue;
            const COdictObjectId childId = item.objectPtr()->uniqueId();
            result = changeObjectId(childId, COdictObjectId(to.id(), childId.subId())) && result;
        }
    }
    idIndex.remove(from);
    idIndex.insert(to, target);
    return result;
}

void COdictObjectTreePrivate::subtreeLinked(COdictNode *top)
{
    refIdIndex.addSubtree(top);
}

void COdictObjectTreePrivate::subtreeUnlinked(COdictNode *top)
{
    refIdIndex.removeSubtree(top);
}

void COdictObjectTreePrivate::itemAboutToChange(COdictNode *node)
{
    changingRefId = node->dataRef().refId();
    changingObject = objectOfNode(node);
}

void COdictObjectTreePrivate::itemChanged(COdictNode *node)
{
    if (node->dataRef().refId() != changingRefId) {
        refIdIndex.removeNode(node, changingRefId);
        refIdIndex.addNode(node);
    }
    // A new item, or an item assigned from one of another kind, brings a new object; the id and
    // name entries of the node follow (they hold the object beside the node).
    if (objectOfNode(node) != changingObject && changingObject) {
        idIndex.refreshObject(node);
        nameIndex.refreshObject(node);
    }
    changingObject = nullptr;
}

void COdictObjectTreePrivate::setMetaData(const CXMLMetaData &meta)
{
    metaData = meta;
    history.prepend(meta); // replaces the record of the same version in place
}

void COdictObjectTreePrivate::addWarning(const QString &text)
{
    warnings.append(text);
    CMessageBoardHelper::setWarning(text, log, 0);
}

int COdictObjectTreePrivate::load(const QString &name, const QString &documentType, const COdictProgressCallback &progress)
{
    Q_Q(COdictObjectTree);
    warnings.clear();
    dropped.clear();
    // A parameter dictionary reads the type it is asked for; every other kind reads dictionaries,
    // whatever was asked (a parameter-set file only fits a parameter dictionary).
    const bool parameters = q->objectType() == E_OT_PARAMETER;
    const QString type = parameters ? (documentType.isEmpty() ? ICOdictStorage::parameterSetType() : documentType)
                                    : ICOdictStorage::dictionaryType();
    const ICOdictStorage *storage = ICOdictStorage::current();
    QString error;
    const int opened = storage ? storage->read(*q, name, type, !parameters, log, &error, progress) : 1;
    fileName = name;
    if (opened != 0) {
        if (!error.isEmpty())
            addWarning(error);
        return 1;
    }
    if (!parameters && q->objectType() != E_OT_EDITOR) {
        // Only editor dictionaries keep history and data structures.
        history.clear();
        dataStructures.clear();
    }
    return 0;
}

int COdictObjectTreePrivate::save(const QString &name, const COdictProgressCallback &progress)
{
    Q_Q(COdictObjectTree);
    const ICOdictStorage *storage = ICOdictStorage::current();
    if (!storage)
        return 2;
    QString error;
    int result;
    if (q->objectType() == E_OT_PARAMETER) {
        const CXMLMetaData meta(QDate::currentDate(), QTime::currentTime(), QStringLiteral("veltrasuite4"),
                                QStringLiteral("Values of all parameter setzt."), metaData.version());
        result = storage->write(*q, name, ICOdictStorage::parameterSetType(), meta, false, log, &error, progress);
    } else {
        result = storage->write(*q, name, ICOdictStorage::dictionaryType(), metaData, true, log, &error, progress);
    }
    if (result == 0)
        fileName = name; // the dictionary now lives in the file it was saved to
    else if (!error.isEmpty())
        CMessageBoardHelper::setWarning(error, log, 0);
    return result;
}

// ---- COdictObjectTree ----

COdictObjectTree::COdictObjectTree(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : QObject(parent), d_ptr(new COdictObjectTreePrivate(this, kind, log))
{
}

COdictObjectTree::COdictObjectTree(const COdictObjectTree &other)
    : QObject(other.parent()), d_ptr(new COdictObjectTreePrivate(this, *other.d_ptr))
{
}

COdictObjectTree::COdictObjectTree(COdictObjectTreePrivate &dd, QObject *parent) : QObject(parent), d_ptr(&dd) {}

COdictObjectTree::~COdictObjectTree() = default;

eObjectType_t COdictObjectTree::objectType() const { return d_func()->kind; }
ICLogfile *COdictObjectTree::logfile() const { return d_func()->log; }
void COdictObjectTree::setLogfile(ICLogfile *log) { d_func()->log = log; }
void COdictObjectTree::clear() { d_func()->clear(); }
COdictNode *COdictObjectTree::rootNode() const { return d_func()->root; }
COdictNode *COdictObjectTree::dictionaryNode() const { return d_func()->root->child(0); }

COdictNode *COdictObjectTree::createDictionaryNode(const QString &name) const
{
    COdictItem item(objectType(), E_IT_DICTIONARY);
    item.setName(name);
    return new COdictNode(item);
}

COdictNode *COdictObjectTree::createGroupNode(const QString &name, const QString &uiName) const
{
    COdictItem item(objectType(), E_IT_GROUP);
    item.setName(name);
    item.setUiName(uiName);
    return new COdictNode(item);
}

bool COdictObjectTree::isGroup(const COdictNode *node)
{
    return node && node->hasData() && node->dataPtr()->type() == E_IT_GROUP;
}

COdictNode *COdictObjectTree::node(const COdictObjectId &id) const { return d_func()->idIndex.value(id); }
COdictNode *COdictObjectTree::node(unsigned int id, unsigned int subId) const { return node(COdictObjectId(id, subId)); }
COdictNode *COdictObjectTree::node(const COdictObjectName &name) const { return d_func()->node(name.name(), name.subId()); }
COdictNode *COdictObjectTree::node(const QString &name, unsigned int subId) const { return d_func()->node(name, subId); }
COdictObject *COdictObjectTree::objectPtr(const COdictObjectId &id) const { return d_func()->idIndex.object(id); }

COdictObject *COdictObjectTree::objectPtr(unsigned int id, unsigned int subId) const
{
    return d_func()->idIndex.object(COdictObjectId(id, subId));
}

COdictObject *COdictObjectTree::objectPtr(const COdictObjectName &name) const
{
    return d_func()->object(name.name(), name.subId());
}

COdictObject *COdictObjectTree::objectPtr(const QString &name, unsigned int subId) const
{
    return d_func()->object(name, subId);
}

COdictNode *COdictObjectTree::findNodeByRefId(const QUuid &refId) const { return d_func()->findNodeByRefId(refId); }

COdictNode *COdictObjectTree::findGroupNode(const QString &name, COdictNode *from) const
{
    return d_func()->findGroupNode(name, from);
}

unsigned int COdictObjectTree::highestId() const { return d_func()->highestId(); }
COdictObjectId COdictObjectTree::highestUId() const { return d_func()->highestUId(); }
QList<COdictObjectId> COdictObjectTree::allObjectUIds() const { return d_func()->idIndex.keys(); }
int COdictObjectTree::objectCount() const { return d_func()->idIndex.size(); }

QList<COdictObjectId> COdictObjectTree::allObjectUIds(const COdictNode *node) const
{
    return d_func()->allObjectUIds(node);
}

QList<unsigned int> COdictObjectTree::allObjectIds() const
{
    QList<unsigned int> ids;
    for (const COdictObjectId &uid : allObjectUIds())
        ids.append(uid.id());
    return ids;
}

QList<unsigned int> COdictObjectTree::allObjectIds(const COdictNode *node) const
{
    QList<unsigned int> ids;
    for (const COdictObjectId &uid : allObjectUIds(node))
        ids.append(uid.id());
    return ids;
}

COdictNode *COdictObjectTree::registerNode(COdictItem *item, bool *ok) { return d_func()->registerNode(item, ok); }

COdictNode *COdictObjectTree::createObjectNode(const COdictObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createObjectNode(object, type, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictValueObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createObjectNode(object, type, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictEditorObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createObjectNode(object, type, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictParameterObject &object, eItemType_t type, bool *ok)
{
    return d_func()->createObjectNode(object, type, ok);
}

void COdictObjectTree::indexSubtree(COdictNode *node) { d_func()->indexSubtree(node); }
void COdictObjectTree::unindexSubtree(COdictNode *node) { d_func()->unindexSubtree(node); }

bool COdictObjectTree::replaceObject(const COdictObject &object, const COdictObjectId &oldId)
{
    return d_func()->replaceObject(object, oldId);
}

bool COdictObjectTree::replaceObject(const COdictValueObject &object, const COdictObjectId &oldId)
{
    return d_func()->replaceObject(object, oldId);
}

bool COdictObjectTree::replaceObject(const COdictEditorObject &object, const COdictObjectId &oldId)
{
    return d_func()->replaceObject(object, oldId);
}

bool COdictObjectTree::replaceObject(const COdictParameterObject &object, const COdictObjectId &oldId)
{
    return d_func()->replaceObject(object, oldId);
}

bool COdictObjectTree::changeObjectId(const COdictObjectId &from, const COdictObjectId &to)
{
    return d_func()->changeObjectId(from, to);
}

void COdictObjectTree::removeName(const COdictObjectName &name, const COdictNode *node) { d_func()->removeName(name, node); }
void COdictObjectTree::insertName(const COdictObjectName &name, COdictNode *node) { d_func()->nameIndex.insert(name, node); }
void COdictObjectTree::removeId(const COdictObjectId &id) { d_func()->idIndex.remove(id); }
void COdictObjectTree::insertId(const COdictObjectId &id, COdictNode *node) { d_func()->idIndex.insert(id, node); }
const COdictObjectTree::IdIndex &COdictObjectTree::idIndex() const { return d_func()->idIndex.map(); }
const COdictObjectTree::NameIndex &COdictObjectTree::nameIndex() const { return d_func()->nameIndex.map(); }

CXMLMetaData COdictObjectTree::metaData() const { return d_func()->metaData; }
void COdictObjectTree::setMetaData(const CXMLMetaData &meta) { d_func()->setMetaData(meta); }
void COdictObjectTree::setMetaDataOnly(const CXMLMetaData &meta) { d_func()->metaData = meta; }
const COdictHistory &COdictObjectTree::history() const { return d_func()->history; }
void COdictObjectTree::setHistory(const COdictHistory &history) { d_func()->history = history; }
COdictDataStructure &COdictObjectTree::dataStructures() { return d_func()->dataStructures; }
const COdictDataStructure &COdictObjectTree::dataStructures() const { return d_func()->dataStructures; }
void COdictObjectTree::setDataStructures(const COdictDataStructure &list) { d_func()->dataStructures = list; }

QString COdictObjectTree::fileName() const { return d_func()->fileName; }
void COdictObjectTree::setFileName(const QString &fileName) { d_func()->fileName = fileName; }
QStringList COdictObjectTree::warningMessages() const { return d_func()->warnings; }
void COdictObjectTree::clearWarningMessages() { d_func()->warnings.clear(); }
void COdictObjectTree::addWarning(const QString &text) { d_func()->addWarning(text); }

QList<COdictDroppedRecord> COdictObjectTree::droppedRecords() const { return d_func()->dropped; }
void COdictObjectTree::addDroppedRecord(const COdictDroppedRecord &record) { d_func()->dropped.append(record); }

int COdictObjectTree::load(const QString &fileName, const QString &documentType, const COdictProgressCallback &progress)
{
    return d_func()->load(fileName, documentType, progress);
}

int COdictObjectTree::save(const QString &fileName, const COdictProgressCallback &progress)
{
    return d_func()->save(fileName, progress);
}
void COdictObjectTree::adoptUnlinkedNode(COdictNode *node) { d_func()->unlinked.append(node); }
void COdictObjectTree::notifyChanged() { emit objectDictionaryChanged(); }

#include "COdictObjectTree.h"

#include "CMessageBoardHelper.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"

#include <QCoreApplication>
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

COdictObjectTree::COdictObjectTree(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : QObject(parent)
    , m_kind(kind)
    , m_log(log)
    , m_root(new COdictNode(COdictItem()))
{
}

COdictObjectTree::COdictObjectTree(const COdictObjectTree &other)
    : QObject(other.parent())
    , m_kind(other.m_kind)
    , m_log(other.m_log)
    , m_root(other.m_root->clone())
    , m_metaData(other.m_metaData)
    , m_fileName(other.m_fileName)
    , m_warnings(other.m_warnings)
    , m_dropped(other.m_dropped)
    , m_dataStructures(other.m_dataStructures)
    , m_history(other.m_history)
{
    // Index entries are never copied: they are rebuilt so that they point into this tree.
    indexSubtree(m_root);
}

COdictObjectTree::~COdictObjectTree()
{
    delete m_root;
    qDeleteAll(m_unlinked);
}

void COdictObjectTree::clear()
{
    m_idIndex.clear();
    m_nameIndex.clear();
    m_root->removeAllChildren();
    qDeleteAll(m_unlinked);
    m_unlinked.clear();
    m_metaData = CXMLMetaData();
    m_dataStructures.clear();
    m_warnings.clear();
    m_dropped.clear();
}

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

COdictNode *COdictObjectTree::node(const COdictObjectName &name) const
{
    if (COdictNode *found = m_nameIndex.value(name, nullptr))
        return found;
    return findGroupNode(name.name());
}

COdictObject *COdictObjectTree::objectPtr(const COdictObjectId &id) const
{
    const COdictNode *found = node(id);
    return found && found->hasData() ? found->dataPtr()->objectPtr() : nullptr;
}

COdictObject *COdictObjectTree::objectPtr(const COdictObjectName &name) const
{
    const COdictNode *found = node(name);
    return found && found->hasData() ? found->dataPtr()->objectPtr() : nullptr;
}

COdictNode *COdictObjectTree::findNodeByRefId(const QUuid &refId) const
{
    return walkPreOrder(m_root, [&refId](const COdictNode *node) {
        return node->dataRef().refId() == refId ? E_STOP : E_DESCEND;
    });
}

COdictNode *COdictObjectTree::findGroupNode(const QString &name, COdictNode *from) const
{
    if (name.isEmpty())
        return nullptr; // the root and unnamed nodes are not addressable by name
    COdictNode *top = from ? from : m_root;
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

unsigned int COdictObjectTree::highestId() const
{
    if (m_idIndex.isEmpty())
        return 0;
    // Keys order by their packed form: plain ids first (key = id), then sub-objects by (id, sub-id).
    // The greatest id is that of the last key or that of the last plain key, whichever is larger.
    unsigned int highest = std::prev(m_idIndex.cend()).key().id();
    auto it = m_idIndex.lowerBound(COdictObjectId(1u, 0u)); // first key of a sub-object of id >= 1
    while (it != m_idIndex.cbegin()) {
        --it;
        // Sub-objects of id 0 pack below 2^32 and sit among the plain ids: step over them.
        if (it.key().subId() == 0xFFFFFFFFu) {
            highest = qMax(highest, it.key().id());
            break;
        }
    }
    return highest;
}

COdictObjectId COdictObjectTree::highestUId() const
{
    // The greatest valid id with its greatest real sub-id, or its own key without sub-objects.
    // Keys order by their packed form, which puts every plain id before the sub-objects of ids
    // from 1 up and the sub-objects of id 0 among the plain ids, so all keys are looked at.
    COdictObjectId result(0xFFFFFFFFu, 0xFFFFFFFFu);
    for (auto it = m_idIndex.cbegin(); it != m_idIndex.cend(); ++it) {
        const COdictObjectId &key = it.key();
        if (!key.isValid())
            continue;
        if (!result.isValid() || key.id() > result.id()) {
            result = key;
        } else if (key.id() == result.id() && key.subId() != 0xFFFFFFFFu
                   && (result.subId() == 0xFFFFFFFFu || key.subId() > result.subId())) {
            result = key;
        }
    }
    return result;
}

QList<COdictObjectId> COdictObjectTree::allObjectUIds(const COdictNode *node) const
{
    if (!node || !node->hasData())
        return {};
    const eItemType_t type = node->dataPtr()->type();
    if (type == E_IT_DICTIONARY)
        return allObjectUIds();
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

QList<unsigned int> COdictObjectTree::allObjectIds() const
{
    QList<unsigned int> ids;
    ids.reserve(m_idIndex.size());
    for (auto it = m_idIndex.cbegin(); it != m_idIndex.cend(); ++it)
        ids.append(it.key().id());
    return ids;
}

QList<unsigned int> COdictObjectTree::allObjectIds(const COdictNode *node) const
{
    QList<unsigned int> ids;
    for (const COdictObjectId &uid : allObjectUIds(node))
        ids.append(uid.id());
    return ids;
}

COdictNode *COdictObjectTree::registerNode(COdictItem *item, bool *ok)
{
    auto *created = new COdictNode;
    created->setItem(item);
    const COdictObject *object = item->objectPtr();
    const COdictObjectId uid = object ? object->uniqueId() : COdictObjectId();
    COdictNode *existing = m_idIndex.value(uid, nullptr);
    if (!object || existing) {
        if (existing) {
            const QString message = QStringLiteral("%1 : %2 %3; %4, %5")
                .arg(QCoreApplication::translate("COdictObjectTree", "Double Object-ID detected"),
                     QCoreApplication::translate("COdictObjectTree", "ID 0x%1").arg(object->id(), 0, 16),
                     QCoreApplication::translate("COdictObjectTree", "Sub-ID 0x%1").arg(object->subId(), 0, 16),
                     existing->dataRef().name(), object->name());
            CMessageBoardHelper::setCritical(message, m_log, 0);
        }
        if (ok)
            *ok = false;
        return created;
    }
    m_idIndex.insert(uid, created);
    m_nameIndex.insert(object->uniqueName(), created);
    if (ok)
        *ok = true;
    return created;
}

template <class X>
COdictNode *COdictObjectTree::createNodeOf(const X &object, eItemType_t type, bool *ok)
{
    auto *item = new COdictItem(object);
    item->setType(type);
    return registerNode(item, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictObject &object, eItemType_t type, bool *ok)
{
    return createNodeOf(object, type, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictValueObject &object, eItemType_t type, bool *ok)
{
    return createNodeOf(object, type, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictEditorObject &object, eItemType_t type, bool *ok)
{
    return createNodeOf(object, type, ok);
}

COdictNode *COdictObjectTree::createObjectNode(const COdictParameterObject &object, eItemType_t type, bool *ok)
{
    return createNodeOf(object, type, ok);
}

void COdictObjectTree::indexSubtree(COdictNode *node)
{
    // Pre-order, as the nodes were registered: of nodes sharing a name, the later one keeps the
    // name index entry, as in the tree that was copied.
    walkPreOrder(node, [this](COdictNode *current) {
        const COdictItem &item = current->dataRef();
        if (item.isObjectItem() && item.hasObject()) {
            m_idIndex.insert(item.objectPtr()->uniqueId(), current);
            m_nameIndex.insert(item.objectPtr()->uniqueName(), current);
        }
        return E_DESCEND;
    });
}

void COdictObjectTree::unindexSubtree(COdictNode *node)
{
    walkPreOrder(node, [this](COdictNode *current) {
        const COdictItem &item = current->dataRef();
        if (item.isObjectItem() && item.hasObject()) {
            const COdictObjectId uid = item.objectPtr()->uniqueId();
            if (m_idIndex.value(uid, nullptr) == current)
                m_idIndex.remove(uid);
            removeName(item.objectPtr()->uniqueName(), current);
        }
        return E_DESCEND;
    });
}

void COdictObjectTree::removeName(const COdictObjectName &name, const COdictNode *node)
{
    auto it = m_nameIndex.find(name);
    if (it != m_nameIndex.end() && it.value() == node)
        m_nameIndex.erase(it);
}

template <class X>
bool COdictObjectTree::replaceObjectOf(const X &object, const COdictObjectId &oldId)
{
    if (!object.isValid())
        return false;
    const COdictObjectId from = oldId.isNull() ? object.uniqueId() : oldId;
    COdictNode *target = m_idIndex.value(from, nullptr);
    if (!target || !target->hasData())
        return false;
    COdictItem *item = target->dataPtr();
    const COdictObjectId to = object.uniqueId();
    if (from != to && m_idIndex.value(to, nullptr))
        return false; // the new id belongs to another node
    // The item may refuse the object's kind; the indexes follow only an accepted object.
    const COdictObjectName currentName = item->uniqueName();
    if (!item->setObject(object))
        return false;
    if (from != to) {
        m_idIndex.remove(from);
        m_idIndex.insert(to, target);
    }
    if (currentName != object.uniqueName()) {
        removeName(currentName, target);
        m_nameIndex.insert(object.uniqueName(), target);
    }
    return true;
}

bool COdictObjectTree::replaceObject(const COdictObject &object, const COdictObjectId &oldId)
{
    return replaceObjectOf(object, oldId);
}

bool COdictObjectTree::replaceObject(const COdictValueObject &object, const COdictObjectId &oldId)
{
    return replaceObjectOf(object, oldId);
}

bool COdictObjectTree::replaceObject(const COdictEditorObject &object, const COdictObjectId &oldId)
{
    return replaceObjectOf(object, oldId);
}

bool COdictObjectTree::replaceObject(const COdictParameterObject &object, const COdictObjectId &oldId)
{
    return replaceObjectOf(object, oldId);
}

bool COdictObjectTree::changeObjectId(const COdictObjectId &from, const COdictObjectId &to)
{
    COdictNode *target = m_idIndex.value(from, nullptr);
    if (!target || m_idIndex.value(to, nullptr))
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
    m_idIndex.remove(from);
    m_idIndex.insert(to, target);
    return result;
}

void COdictObjectTree::setMetaData(const CXMLMetaData &meta)
{
    m_metaData = meta;
    m_history.prepend(meta); // replaces the record of the same version in place
}

void COdictObjectTree::addWarning(const QString &text)
{
    m_warnings.append(text);
    CMessageBoardHelper::setWarning(text, m_log, 0);
}

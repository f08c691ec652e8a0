#include "COdictEdit.h"

#include "COdictEdit_p.h"
#include "COdictEditorObject.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"

using namespace NkrOdict;

namespace {

COdictObject *objectOf(COdictNode *node)
{
    return node && node->hasData() ? node->dataPtr()->objectPtr() : nullptr;
}

bool isAncestorOrSelf(const COdictNode *candidate, const COdictNode *node)
{
    for (const COdictNode *n = node; n; n = n->parent()) {
        if (n == candidate)
            return true;
    }
    return false;
}

} // namespace

// ---- COdictEditPrivate ----

COdictEditPrivate::COdictEditPrivate(COdictEdit *owner) : COdictPrivate(owner) {}

COdictEditPrivate::~COdictEditPrivate() = default;

template <class X>
bool COdictEditPrivate::setIndexed(const X &object)
{
    if (!tree || !object.isValid() || !tree->node(object.uniqueId()))
        return false;
    const bool done = tree->replaceObject(object);
    if (done)
        tree->notifyChanged();
    return done;
}

bool COdictEditPrivate::setObject(const COdictObject &object)
{
    return setIndexed(object);
}

bool COdictEditPrivate::setValueObject(const COdictValueObject &object)
{
    return setIndexed(object);
}

bool COdictEditPrivate::setEditorObject(const COdictEditorObject &object)
{
    return setIndexed(object);
}

bool COdictEditPrivate::setParameterObject(const COdictParameterObject &object)
{
    return setIndexed(object);
}

bool COdictEditPrivate::setOdictItemByRefId(const COdictItem &item)
{
    if (!tree)
        return false;
    COdictNode *target = tree->findNodeByRefId(item.refId());
    if (!target || !target->hasData())
        return false;
    // The item may bring another id or name: re-key the node, refusing an id held elsewhere.
    const COdictObject *incoming = item.isObjectItem() ? item.objectPtr() : nullptr;
    if (incoming) {
        const COdictNode *holder = tree->node(incoming->uniqueId());
        if (holder && holder != target)
            return false;
    }
    const COdictItem &current = target->dataRef();
    if (current.isObjectItem() && current.hasObject()) {
        const COdictObjectId uid = current.objectPtr()->uniqueId();
        if (tree->node(uid) == target)
            tree->removeId(uid);
        tree->removeName(current.objectPtr()->uniqueName(), target);
    }
    *target->dataPtr() = item;
    const COdictItem &updated = target->dataRef();
    if (updated.isObjectItem() && updated.hasObject()) {
        tree->insertId(updated.objectPtr()->uniqueId(), target);
        tree->insertName(updated.objectPtr()->uniqueName(), target);
    }
    tree->notifyChanged();
    return true;
}

bool COdictEditPrivate::setOdictItemByObjectId(const COdictItem &item)
{
    if (!item.isObjectItem())
        return false;
    switch (item.objectType()) {
    case E_OT_STD:
        return setObject(item.toObject());
    case E_OT_VALUE:
        return setValueObject(item.toValueObject());
    case E_OT_EDITOR:
        return setEditorObject(item.toEditorObject());
    case E_OT_PARAMETER:
        return setParameterObject(item.toParameterObject());
    default:
        return false;
    }
}

bool COdictEditPrivate::replaceOdictEditorObject(const COdictObjectId &id, const COdictEditorObject &object)
{
    if (!tree || !object.isValid() || !tree->node(id))
        return false;
    const bool done = tree->replaceObject(object, id);
    if (done)
        tree->notifyChanged();
    return done;
}

bool COdictEditPrivate::replaceOdictEditorObject(unsigned int id, unsigned int subId, const COdictEditorObject &object)
{
    return replaceOdictEditorObject(COdictObjectId(id, subId), object);
}

bool COdictEditPrivate::replaceOdictEditorObject(unsigned int id, const COdictEditorObject &object)
{
    return replaceOdictEditorObject(COdictObjectId(id), object); // through the virtual: overrides apply here too
}

bool COdictEditPrivate::changeObjectId(const COdictObjectId &from, const COdictObjectId &to)
{
    if (!tree)
        return false;
    if (!tree->node(from) || tree->node(to))
        return false;
    const bool done = tree->changeObjectId(from, to);
    tree->notifyChanged();
    return done;
}

bool COdictEditPrivate::changeObjectId(unsigned int from, unsigned int to)
{
    return changeObjectId(COdictObjectId(from), COdictObjectId(to));
}

int COdictEditPrivate::saveDictionary(const QString &fileName)
{
    if (!tree)
        return 1;
    return tree->save(fileName, progress);
}

bool COdictEditPrivate::insertGroup(COdictNode *parent, int position)
{
    if (!tree || !parent)
        return false;
    COdictNode *group = tree->createGroupNode(QStringLiteral("GROUP"), QStringLiteral("Gruppe"));
    if (position < 0) {
        parent->appendChild(group);
    } else if (!parent->insertChild(group, position)) {
        // Kept on purpose: a position beyond the children still answers true; the group is
        // linked nowhere and lives until the tree is cleared.
        tree->adoptUnlinkedNode(group);
    }
    tree->notifyChanged();
    return true;
}

bool COdictEditPrivate::insertObject(COdictNode *parent, int position)
{
    if (!tree || !parent)
        return false;
    const unsigned int id = tree->highestId() + 1;
    COdictEditorObject object;
    object.setId(id);
    object.setName(QStringLiteral("OBJECT_NAME_WITH_ID_%1").arg(id));
    bool ok = false;
    COdictNode *created = tree->createObjectNode(object, E_IT_OBJECT, &ok);
    if (!ok) {
        delete created;
        return false;
    }
    if (position < 0) {
        parent->appendChild(created);
    } else if (!parent->insertChild(created, position)) {
        // Kept on purpose: answers true and leaves the object indexed but outside the tree.
        tree->adoptUnlinkedNode(created);
    }
    tree->notifyChanged();
    return true;
}

bool COdictEditPrivate::addEditorObject(COdictNode *parent)
{
    return insertObject(parent, -1);
}

bool COdictEditPrivate::insertEditorObject(COdictNode *parent, int position)
{
    return insertObject(parent, position < 0 ? 0x7FFFFFFF : position);
}

bool COdictEditPrivate::addEditorSubobject(COdictNode *node)
{
    if (!tree || !node || !node->hasData() || !node->dataPtr()->hasObject()
        || node->dataPtr()->objectType() != E_OT_EDITOR)
        return false;
    COdictEditorObject *parentObject = node->dataPtr()->toEditorObjectPtr();
    const unsigned int subId = parentObject->highestSubId() + 1;
    COdictEditorObject sub(*parentObject);
    sub.clearSubIds();
    sub.setSubId(subId);
    sub.setName(QStringLiteral("%1_%2").arg(parentObject->name()).arg(subId));
    sub.setUiName(QStringLiteral("%1 Sub %2").arg(parentObject->uiName()).arg(subId));
    sub.setUiShortName(QStringLiteral("%1 Sub %2").arg(parentObject->uiShortName()).arg(subId));
    bool ok = false;
    COdictNode *created = tree->createObjectNode(sub, E_IT_SUBOBJECT, &ok);
    if (!ok) {
        delete created;
        return false;
    }
    node->appendChild(created);
    parentObject->addSubId(subId);
    tree->notifyChanged();
    return true;
}

void COdictEditPrivate::rehomeSubObject(COdictNode *node, COdictNode *newParent)
{
    COdictObject *object = objectOf(node);
    COdictObject *oldOwner = objectOf(node->parent());
    COdictObject *newOwner = objectOf(newParent);
    if (!object || !oldOwner || !newOwner || oldOwner->id() == newOwner->id())
        return;
    const COdictObjectId oldUid = object->uniqueId();
    const COdictObjectName oldName = object->uniqueName();
    oldOwner->removeSubIdFromList(oldUid.subId());
    unsigned int subId = oldUid.subId();
    if (newOwner->subIdList().contains(subId))
        subId = newOwner->highestSubId() + 1;
    const COdictObjectId newUid(newOwner->id(), subId);
    tree->changeObjectId(oldUid, newUid);
    object->setId(newUid);
    object->setName(QStringLiteral("%1_%2").arg(newOwner->name()).arg(subId));
    // The name index follows the new name so that it keeps pointing at every object.
    tree->removeName(oldName, node);
    tree->insertName(object->uniqueName(), node);
    newOwner->addSubId(subId);
}

bool COdictEditPrivate::moveEditorObject(COdictNode *node, COdictNode *parent, int position)
{
    if (!tree || !node || !parent || position < 0)
        return false;
    COdictNode *oldParent = node->parent();
    if (!oldParent)
        return true; // kept on purpose: a parentless node is left alone and the call succeeds
    if (isAncestorOrSelf(node, parent))
        return false; // a node cannot move into its own subtree
    if (parent == oldParent && node->row() < position)
        --position; // the node's own removal shifts the later rows
    const int available = parent->childCount() - (parent == oldParent ? 1 : 0);
    if (position > available)
        return false; // refused before anything is unlinked, so no node is lost
    if (node->dataRef().type() == E_IT_SUBOBJECT)
        rehomeSubObject(node, parent);
    oldParent->takeChild(node);
    const bool done = parent->insertChild(node, position);
    tree->notifyChanged();
    return done;
}

bool COdictEditPrivate::delEditorObject(const COdictEditorObject &object)
{
    if (!tree || !object.isValid())
        return false;
    COdictNode *target = tree->node(object.uniqueId());
    if (!target)
        return false;
    bool childrenDeleted = true;
    bool anyChild = false;
    for (int i = target->childCount() - 1; i >= 0; --i) {
        COdictNode *child = target->child(i);
        anyChild = true;
        const COdictItem &item = child->dataRef();
        if (item.hasObject() && item.objectType() == E_OT_EDITOR) {
            childrenDeleted = delEditorObject(item.toEditorObject()) && childrenDeleted;
        } else {
            // Objects of other kinds and nested nodes leave the indexes with their node.
            tree->unindexSubtree(child);
            target->removeChild(child);
        }
    }
    COdictNode *parent = target->parent();
    if (!parent)
        return anyChild && childrenDeleted;
    if (COdictObject *owner = objectOf(parent); owner && object.isSubObject())
        owner->removeSubIdFromList(object.subId());
    tree->unindexSubtree(target);
    if (!parent->removeChild(target))
        return false;
    tree->notifyChanged();
    return true;
}

bool COdictEditPrivate::delGroup(COdictNode *node)
{
    if (!tree || !node || !node->parent())
        return false;
    if (node->childCount() > 0) {
        const QList<COdictNode *> children = node->children();
        for (COdictNode *child : children) {
            const COdictItem &item = child->dataRef();
            if (item.objectType() == E_OT_EDITOR)
                delEditorObject(item.toEditorObject()); // results not used: the group goes anyway
        }
        // Whatever is left (nested groups, objects of other kinds) leaves the indexes first.
        for (COdictNode *child : node->children())
            tree->unindexSubtree(child);
        if (!node->removeAllChildren())
            return false;
    }
    const bool done = node->parent()->removeChild(node);
    tree->notifyChanged();
    return done;
}

// ---- COdictEdit ----

COdictEdit::COdictEdit(eObjectType_t kind, QObject *parent) : COdictEdit(kind, nullptr, parent) {}

COdictEdit::COdictEdit(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : COdict(*new COdictEditPrivate(this), parent)
{
    initialise(kind, log);
}

COdictEdit::COdictEdit(COdictEditPrivate &dd, QObject *parent) : COdict(dd, parent) {}

COdictEdit::~COdictEdit() = default;

bool COdictEdit::setOdictItemByRefId(const COdictItem &item)
{
    Q_D(COdictEdit);
    return d->setOdictItemByRefId(item);
}

bool COdictEdit::setOdictItemByObjectId(const COdictItem &item)
{
    Q_D(COdictEdit);
    return d->setOdictItemByObjectId(item);
}

bool COdictEdit::setValueObject(const COdictValueObject &object)
{
    Q_D(COdictEdit);
    return d->setValueObject(object);
}

bool COdictEdit::setEditorObject(const COdictEditorObject &object)
{
    Q_D(COdictEdit);
    return d->setEditorObject(object);
}

bool COdictEdit::setParameterObject(const COdictParameterObject &object)
{
    Q_D(COdictEdit);
    return d->setParameterObject(object);
}

bool COdictEdit::replaceOdictEditorObject(const COdictObjectId &id, const COdictEditorObject &object)
{
    Q_D(COdictEdit);
    return d->replaceOdictEditorObject(id, object);
}

bool COdictEdit::replaceOdictEditorObject(unsigned int id, unsigned int subId, const COdictEditorObject &object)
{
    Q_D(COdictEdit);
    return d->replaceOdictEditorObject(id, subId, object);
}

bool COdictEdit::replaceOdictEditorObject(unsigned int id, const COdictEditorObject &object)
{
    Q_D(COdictEdit);
    return d->replaceOdictEditorObject(id, object);
}

bool COdictEdit::changeObjectId(const COdictObjectId &from, const COdictObjectId &to)
{
    Q_D(COdictEdit);
    return d->changeObjectId(from, to);
}

bool COdictEdit::changeObjectId(unsigned int from, unsigned int to)
{
    Q_D(COdictEdit);
    return d->changeObjectId(from, to);
}

int COdictEdit::saveDictionary(const QString &fileName)
{
    Q_D(COdictEdit);
    return d->saveDictionary(fileName);
}

bool COdictEdit::addEditorObject(COdictNode *parent)
{
    Q_D(COdictEdit);
    return d->addEditorObject(parent);
}

bool COdictEdit::insertEditorObject(COdictNode *parent, int position)
{
    Q_D(COdictEdit);
    return d->insertEditorObject(parent, position);
}

bool COdictEdit::delEditorObject(const COdictEditorObject &object)
{
    Q_D(COdictEdit);
    return d->delEditorObject(object);
}

bool COdictEdit::moveEditorObject(COdictNode *node, COdictNode *parent, int position)
{
    Q_D(COdictEdit);
    return d->moveEditorObject(node, parent, position);
}

bool COdictEdit::addEditorSubobject(COdictNode *node)
{
    Q_D(COdictEdit);
    return d->addEditorSubobject(node);
}

bool COdictEdit::addEditorGroup(COdictNode *parent)
{
    Q_D(COdictEdit);
    return d->insertGroup(parent, -1);
}

bool COdictEdit::insertEditorGroup(COdictNode *parent, int position)
{
    Q_D(COdictEdit);
    return d->insertGroup(parent, position < 0 ? 0x7FFFFFFF : position);
}

bool COdictEdit::delEditorGroup(COdictNode *node)
{
    Q_D(COdictEdit);
    return d->delGroup(node);
}

COdictDataStructure &COdictEdit::odictDataStructureList()
{
    Q_D(COdictEdit);
    if (!d->tree) {
        static COdictDataStructure none;
        none.clear();
        return none;
    }
    return d->tree->dataStructures();
}

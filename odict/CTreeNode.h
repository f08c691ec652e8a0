#pragma once

#include <QList>
#include <QVector>

template <class T>
class CTreeNode;

/// Told by the nodes of an observed tree when nodes join or leave it and when an item in it is
/// replaced, so that indexes over the whole tree can follow. A tree is observed when its top
/// node (the one without parent) answers an observer from observer().
template <class T>
class CTreeNodeObserver
{
public:
    virtual ~CTreeNodeObserver() = default;
    /// \a top and its descendants have just been linked into the observed tree.
    virtual void subtreeLinked(CTreeNode<T> *top) = 0;
    /// \a top and its descendants have just been unlinked from the observed tree (and may be
    /// deleted right after).
    virtual void subtreeUnlinked(CTreeNode<T> *top) = 0;
    /// The item of \a node, a node of the observed tree, is about to be replaced or assigned.
    virtual void itemAboutToChange(CTreeNode<T> *node) = 0;
    /// The item of \a node has been replaced or assigned.
    virtual void itemChanged(CTreeNode<T> *node) = 0;
};

/// An owning tree node: the node owns its item and all its children; the parent is not owned.
/// Deleting and cloning walk the subtree iteratively, so very deep trees cannot overflow the stack.
/// T provides a copy constructor, operator= and a static sharedDefaultItem().
/// Linking, unlinking and item changes are reported to the observer of the tree the node is in
/// (see CTreeNodeObserver); finding it walks up to the top node, a few steps in practice.
template <class T>
class CTreeNode
{
public:
    CTreeNode() = default;
    /// A node without parent owning a copy of \a item.
    explicit CTreeNode(const T &item) : m_item(new T(item)) {}
    CTreeNode(const CTreeNode &) = delete;
    CTreeNode &operator=(const CTreeNode &) = delete;

    virtual ~CTreeNode()
    {
        delete m_item;
        // Children are freed breadth-first from a work list instead of by recursion.
        QVector<CTreeNode *> pending(m_children.cbegin(), m_children.cend());
        m_children.clear();
        while (!pending.isEmpty()) {
            CTreeNode *node = pending.takeLast();
            pending.append(QVector<CTreeNode *>(node->m_children.cbegin(), node->m_children.cend()));
            node->m_children.clear();
            delete node;
        }
    }

    /// A deep copy of this subtree without a parent; nodes without item get a copy of the default item.
    virtual CTreeNode *clone() const
    {
        auto copyOf = [](const CTreeNode *source) {
            auto *node = new CTreeNode;
            node->m_item = new T(source->dataRef());
            return node;
        };
        CTreeNode *top = copyOf(this);
        QVector<QPair<const CTreeNode *, CTreeNode *>> pending{{this, top}};
        while (!pending.isEmpty()) {
            const auto [source, target] = pending.takeLast();
            target->m_children.reserve(source->m_children.size());
            for (const CTreeNode *child : source->m_children) {
                CTreeNode *copy = copyOf(child);
                copy->m_parent = target;
                target->m_children.append(copy);
                pending.append({child, copy});
            }
        }
        return top;
    }

    /// A copy of the item, or of the shared default item when there is none.
    virtual T data() const { return dataRef(); }
    /// The owned item; null when the node has none.
    virtual T *dataPtr() const { return m_item; }
    /// The owned item, or the shared default item when there is none.
    virtual const T &dataRef() const { return m_item ? *m_item : T::sharedDefaultItem(); }
    /// The parent node (not owned); null for a root or an unlinked node.
    virtual CTreeNode *parent() const { return m_parent; }
    /// The child nodes in order; owned by this node.
    virtual QList<CTreeNode *> children() const { return m_children; }
    /// The child at \a index; null when out of range.
    virtual CTreeNode *child(int index) const
    {
        return index >= 0 && index < m_children.size() ? m_children.at(index) : nullptr;
    }
    /// Number of children.
    virtual int childCount() const { return m_children.size(); }
    /// Index in the parent's children; 0 without parent.
    virtual int row() const
    {
        if (!m_parent || m_parent->m_children.isEmpty())
            return 0;
        return qMax(0, m_parent->m_children.indexOf(const_cast<CTreeNode *>(this)));
    }
    /// The node owns an item.
    virtual bool hasData() const { return m_item != nullptr; }
    /// Assigns into the existing item (which so takes over the argument's reference id), or stores a copy.
    virtual void setData(const T &item)
    {
        CTreeNodeObserver<T> *watcher = treeObserver();
        if (watcher)
            watcher->itemAboutToChange(this);
        if (m_item)
            *m_item = item;
        else
            m_item = new T(item);
        if (watcher)
            watcher->itemChanged(this);
    }
    /// Sets the parent pointer only; the parent's child list is not changed.
    virtual void setParent(CTreeNode *parent) { m_parent = parent; }
    /// Appends \a child and takes ownership of it.
    virtual void appendChild(CTreeNode *child)
    {
        child->m_parent = this;
        m_children.append(child);
        if (CTreeNodeObserver<T> *watcher = treeObserver())
            watcher->subtreeLinked(child);
    }
    /// Inserts \a child at \a index and takes ownership; false for null or an index out of range.
    virtual bool insertChild(CTreeNode *child, int index)
    {
        if (!child || index < 0 || index > m_children.size())
            return false;
        child->m_parent = this;
        m_children.insert(index, child);
        if (CTreeNodeObserver<T> *watcher = treeObserver())
            watcher->subtreeLinked(child);
        return true;
    }
    /// Unlinks a child without deleting it; null when it is not a child.
    virtual CTreeNode *takeChild(CTreeNode *child)
    {
        const int index = m_children.indexOf(child);
        if (index < 0)
            return nullptr;
        m_children.removeAt(index);
        child->m_parent = nullptr;
        if (CTreeNodeObserver<T> *watcher = treeObserver())
            watcher->subtreeUnlinked(child);
        return child;
    }
    /// Unlinks and deletes \a child; false when it is not a child.
    virtual bool removeChild(CTreeNode *child)
    {
        const int index = m_children.indexOf(child);
        return index >= 0 && removeChild(index);
    }
    /// Unlinks and deletes the child at \a index; false when out of range.
    virtual bool removeChild(int index)
    {
        if (index < 0 || index >= m_children.size())
            return false;
        deleteUnlinked(m_children.takeAt(index), treeObserver());
        return true;
    }
    /// Deletes \a count children from \a start; false and nothing removed when out of range.
    virtual bool removeChildren(int start, int count)
    {
        if (start < 0 || count < 0 || start + count > m_children.size())
            return false;
        CTreeNodeObserver<T> *watcher = treeObserver();
        for (int i = 0; i < count; ++i)
            deleteUnlinked(m_children.takeAt(start), watcher);
        return true;
    }
    /// Deletes every child (and their subtrees); always true.
    virtual bool removeAllChildren()
    {
        const QList<CTreeNode *> children = m_children;
        m_children.clear();
        CTreeNodeObserver<T> *watcher = treeObserver();
        for (CTreeNode *child : children)
            deleteUnlinked(child, watcher);
        return true;
    }

    /// The item pointer, taking ownership of \a item (used when building nodes).
    void setItem(T *item)
    {
        CTreeNodeObserver<T> *watcher = treeObserver();
        if (watcher)
            watcher->itemAboutToChange(this);
        delete m_item;
        m_item = item;
        if (watcher)
            watcher->itemChanged(this);
    }

    /// The observer of the tree whose top node this is; null for every other node and for a
    /// tree nobody observes.
    virtual CTreeNodeObserver<T> *observer() const { return nullptr; }
    /// The observer of the tree this node is in: that of its top node.
    CTreeNodeObserver<T> *treeObserver() const
    {
        const CTreeNode *top = this;
        while (top->m_parent)
            top = top->m_parent;
        return top->observer();
    }

private:
    // A child taken out of the children list leaves the tree (the observer hears of it while
    // the nodes still exist), then is deleted with its subtree.
    void deleteUnlinked(CTreeNode *child, CTreeNodeObserver<T> *watcher)
    {
        child->m_parent = nullptr;
        if (watcher)
            watcher->subtreeUnlinked(child);
        delete child;
    }

    T *m_item = nullptr;
    CTreeNode *m_parent = nullptr;
    QList<CTreeNode *> m_children;
};

#pragma once

#include <QList>
#include <QVector>

/// An owning tree node: the node owns its item and all its children; the parent is not owned.
/// Deleting and cloning walk the subtree iteratively, so very deep trees cannot overflow the stack.
/// T provides a copy constructor, operator= and a static sharedDefaultItem().
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
        if (m_item)
            *m_item = item;
        else
            m_item = new T(item);
    }
    /// Sets the parent pointer only; the parent's child list is not changed.
    virtual void setParent(CTreeNode *parent) { m_parent = parent; }
    /// Appends \a child and takes ownership of it.
    virtual void appendChild(CTreeNode *child)
    {
        child->m_parent = this;
        m_children.append(child);
    }
    /// Inserts \a child at \a index and takes ownership; false for null or an index out of range.
    virtual bool insertChild(CTreeNode *child, int index)
    {
        if (!child || index < 0 || index > m_children.size())
            return false;
        child->m_parent = this;
        m_children.insert(index, child);
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
        delete m_children.takeAt(index);
        return true;
    }
    /// Deletes \a count children from \a start; false and nothing removed when out of range.
    virtual bool removeChildren(int start, int count)
    {
        if (start < 0 || count < 0 || start + count > m_children.size())
            return false;
        for (int i = 0; i < count; ++i)
            delete m_children.takeAt(start);
        return true;
    }
    /// Deletes every child (and their subtrees); always true.
    virtual bool removeAllChildren()
    {
        const QList<CTreeNode *> children = m_children;
        m_children.clear();
        for (CTreeNode *child : children)
            delete child;
        return true;
    }

    /// The item pointer, taking ownership of \a item (used when building nodes).
    void setItem(T *item)
    {
        delete m_item;
        m_item = item;
    }

private:
    T *m_item = nullptr;
    CTreeNode *m_parent = nullptr;
    QList<CTreeNode *> m_children;
};

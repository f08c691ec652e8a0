#pragma once

#include "COdict.h"
#include "COdictDataStructure.h"
#include "krodict_export.h"

class COdictEditPrivate;

/// The editable dictionary: replaces objects in place, changes ids, adds, inserts, moves and
/// deletes groups, objects and sub-objects, keeps both indexes in step, and saves the dictionary.
/// Without a tree every operation answers false (saveDictionary answers 1).
class KRODICT_EXPORT COdictEdit : public COdict
{
    Q_OBJECT
public:
    /// An empty editable dictionary of \a kind without a log file.
    explicit COdictEdit(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    /// An empty editable dictionary of \a kind logging to \a log (not owned; null silences).
    COdictEdit(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    ~COdictEdit() override;

    /// Assigns \a item into the first item (pre-order) with the same reference id.
    virtual bool setOdictItemByRefId(const COdictItem &item);
    /// Sets the object of an object or sub-object item by its unique id.
    virtual bool setOdictItemByObjectId(const COdictItem &item);
    /// Replaces the value object indexed under \a object's unique id; false when it is not valid or not present.
    virtual bool setValueObject(const COdictValueObject &object);
    /// Replaces the editor object indexed under \a object's unique id; false when it is not valid or not present.
    virtual bool setEditorObject(const COdictEditorObject &object);
    /// Replaces the parameter object indexed under \a object's unique id; false when it is not valid or not present.
    virtual bool setParameterObject(const COdictParameterObject &object);
    /// Replaces the object indexed under \a id by \a object, which may carry another id.
    virtual bool replaceOdictEditorObject(const COdictObjectId &id, const COdictEditorObject &object);
    /// The same with the key (\a id, \a subId).
    virtual bool replaceOdictEditorObject(unsigned int id, unsigned int subId, const COdictEditorObject &object);
    /// The same with the key COdictObjectId(\a id), through the first form.
    virtual bool replaceOdictEditorObject(unsigned int id, const COdictEditorObject &object);
    /// Re-keys the id index only; writing the new id into the object is the caller's task.
    virtual bool changeObjectId(const COdictObjectId &from, const COdictObjectId &to);
    /// The same for plain object ids (their sub-objects follow).
    virtual bool changeObjectId(unsigned int from, unsigned int to);
    /// Writes the dictionary atomically: 0 saved, 1 no tree or the head could not be built,
    /// 2 the file could not be written (the previous file is then untouched).
    virtual int saveDictionary(const QString &fileName);
    /// Appends a new object (next free id, generated name) to the group or dictionary node \a parent; false when refused.
    virtual bool addEditorObject(COdictNode *parent);
    /// Inserts a new object at \a position below \a parent; false when refused.
    virtual bool insertEditorObject(COdictNode *parent, int position);
    /// Deletes the node of \a object with its sub-objects; false when not found.
    virtual bool delEditorObject(const COdictEditorObject &object);
    /// Moves \a node below \a parent at \a position; false when refused.
    virtual bool moveEditorObject(COdictNode *node, COdictNode *parent, int position);
    /// Appends a new sub-object (next sub-id) to the editor object of \a node; false when refused.
    virtual bool addEditorSubobject(COdictNode *node);

    /// Appends a new group ("GROUP" / "Gruppe") to \a parent; false when refused.
    bool addEditorGroup(COdictNode *parent);
    /// Inserts a new group at \a position below \a parent; false when refused.
    bool insertEditorGroup(COdictNode *parent, int position);
    /// Deletes the group \a node with everything below it; false when \a node is not a group.
    bool delEditorGroup(COdictNode *node);
    /// The data-structure list, for editing in place (a static empty list without a tree).
    COdictDataStructure &odictDataStructureList();

protected:
    /// For derived dictionaries, which pass their own private object (owned from here on).
    COdictEdit(COdictEditPrivate &dd, QObject *parent);

private:
    Q_DECLARE_PRIVATE(COdictEdit)
};

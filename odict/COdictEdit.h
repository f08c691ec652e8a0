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
    explicit COdictEdit(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    COdictEdit(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    ~COdictEdit() override;

    /// Assigns \a item into the first item (pre-order) with the same reference id.
    virtual bool setOdictItemByRefId(const COdictItem &item);
    /// Sets the object of an object or sub-object item by its unique id.
    virtual bool setOdictItemByObjectId(const COdictItem &item);
    virtual bool setValueObject(const COdictValueObject &object);
    virtual bool setEditorObject(const COdictEditorObject &object);
    virtual bool setParameterObject(const COdictParameterObject &object);
    /// Replaces the object indexed under \a id by \a object, which may carry another id.
    virtual bool replaceOdictEditorObject(const COdictObjectId &id, const COdictEditorObject &object);
    virtual bool replaceOdictEditorObject(unsigned int id, unsigned int subId, const COdictEditorObject &object);
    virtual bool replaceOdictEditorObject(unsigned int id, const COdictEditorObject &object);
    /// Re-keys the id index only; writing the new id into the object is the caller's task.
    virtual bool changeObjectId(const COdictObjectId &from, const COdictObjectId &to);
    virtual bool changeObjectId(unsigned int from, unsigned int to);
    /// Writes the dictionary atomically: 0 saved, 1 no tree or the head could not be built,
    /// 2 the file could not be written (the previous file is then untouched).
    virtual int saveDictionary(const QString &fileName);
    virtual bool addEditorObject(COdictNode *parent);
    virtual bool insertEditorObject(COdictNode *parent, int position);
    virtual bool delEditorObject(const COdictEditorObject &object);
    virtual bool moveEditorObject(COdictNode *node, COdictNode *parent, int position);
    virtual bool addEditorSubobject(COdictNode *node);

    bool addEditorGroup(COdictNode *parent);
    bool insertEditorGroup(COdictNode *parent, int position);
    bool delEditorGroup(COdictNode *node);
    /// The data-structure list, for editing in place (a static empty list without a tree).
    COdictDataStructure &odictDataStructureList();

protected:
    COdictEdit(COdictEditPrivate &dd, QObject *parent);

private:
    Q_DECLARE_PRIVATE(COdictEdit)
};

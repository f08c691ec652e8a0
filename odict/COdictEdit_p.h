#pragma once

#include "COdictEdit.h"
#include "COdict_p.h"

/// State of a COdictEdit: no data of its own; every editing operation is a virtual here.
class COdictEditPrivate : public COdictPrivate
{
    Q_DECLARE_PUBLIC(COdictEdit)
public:
    explicit COdictEditPrivate(COdictEdit *owner);
    ~COdictEditPrivate() override;

    virtual bool setOdictItemByRefId(const COdictItem &item);
    virtual bool setOdictItemByObjectId(const COdictItem &item);
    virtual bool setValueObject(const COdictValueObject &object);
    virtual bool setEditorObject(const COdictEditorObject &object);
    virtual bool setParameterObject(const COdictParameterObject &object);
    virtual bool replaceOdictEditorObject(const COdictObjectId &id, const COdictEditorObject &object);
    virtual bool replaceOdictEditorObject(unsigned int id, unsigned int subId, const COdictEditorObject &object);
    virtual bool replaceOdictEditorObject(unsigned int id, const COdictEditorObject &object);
    virtual bool changeObjectId(const COdictObjectId &from, const COdictObjectId &to);
    virtual bool changeObjectId(unsigned int from, unsigned int to);
    virtual int saveDictionary(const QString &fileName);
    virtual bool addEditorObject(COdictNode *parent);
    virtual bool insertEditorObject(COdictNode *parent, int position);
    virtual bool delEditorObject(const COdictEditorObject &object);
    virtual bool moveEditorObject(COdictNode *node, COdictNode *parent, int position);
    virtual bool addEditorSubobject(COdictNode *node);

    /// The plain-object form of the set operations.
    bool setObject(const COdictObject &object);
    bool insertGroup(COdictNode *parent, int position); // position -1 appends
    bool insertObject(COdictNode *parent, int position); // position -1 appends
    bool delGroup(COdictNode *node);

private:
    void rehomeSubObject(COdictNode *node, COdictNode *newParent);
    template <class X>
    bool setIndexed(const X &object);
};

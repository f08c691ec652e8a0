#pragma once

#include "COdictHistory.h"
#include "COdictItem.h"
#include "COdictObjectId.h"
#include "COdictDroppedRecord.h"
#include "COdictObjectName.h"
#include "COdictProgress.h"
#include "CXMLMetaData.h"
#include "NTypes.h"
#include "NkrObjectIds.h"
#include "NkrOdict.h"
#include "NkrUserLevel.h"
#include "krodict_export.h"

#include <QLocale>
#include <QObject>
#include <QScopedPointer>
#include <QStringList>
#include <QUuid>

#include <type_traits>

class CDeviceData;
class CDomDoc;
class QDomElement;
class COdictObject;
class COdictValueObject;
class COdictEditorObject;
class COdictParameterObject;
class COdictObjectTree;
class COdictPrivate;
class ICLogfile;

// Any integer type other than the two of the key forms: up to 32 bits an id, 64 bits a packed id.
// Without it a plain int literal (node(0x2000)) would be ambiguous between the two forms.
template <class T>
using KrOdictOtherInteger = std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>
                                             && !std::is_same_v<T, unsigned int> && !std::is_same_v<T, unsigned long long>, int>;
#define KRODICT_INTEGER_KEY(fn, CONST)                                      \
    template <class T, KrOdictOtherInteger<T> = 0>                          \
    auto fn(T id) CONST /* deduced, so R may be incomplete here */          \
    {   /* the key type depends on T, so the call is checked only on use */ \
        return fn(static_cast<std::conditional_t<sizeof(T) == 8,            \
                                                 unsigned long long, unsigned int>>(id)); \
    }

// Declares one lookup family for every key form: three id forms, three packed forms, three name forms.
#define KRODICT_LOOKUP_FAMILY(R, fn)                                        \
    KRODICT_INTEGER_KEY(fn, const)                                          \
    R fn(const COdictObjectId &uid) const;                                  \
    R fn(unsigned int id, unsigned int subId) const;                        \
    R fn(unsigned int id) const;                                            \
    R fn(unsigned long long packed) const;                                  \
    R fn(NkrObjectIds::eObjectId_t id) const;                               \
    R fn(NkrObjectIds::eObjectId_t id, unsigned int subId) const;           \
    R fn(const COdictObjectName &name) const;                               \
    R fn(const QString &name) const;                                        \
    R fn(const QString &name, unsigned int subId) const;

#define KRODICT_LOOKUP_FAMILY_MUTABLE(R, fn)                                \
    KRODICT_INTEGER_KEY(fn, )                                               \
    R fn(const COdictObjectId &uid);                                        \
    R fn(unsigned int id, unsigned int subId);                              \
    R fn(unsigned int id);                                                  \
    R fn(unsigned long long packed);                                        \
    R fn(NkrObjectIds::eObjectId_t id);                                     \
    R fn(NkrObjectIds::eObjectId_t id, unsigned int subId);                 \
    R fn(const COdictObjectName &name);                                     \
    R fn(const QString &name);                                              \
    R fn(const QString &name, unsigned int subId);

/// Read-only dictionary of one object kind: loads files into its object tree and answers every
/// lookup by id, name or reference id. Lookups never log and answer null, a default object, false
/// or 0 for a missing key. Name lookups fall back to the first non-empty group of that name.
class KRODICT_EXPORT COdict : public QObject
{
    Q_OBJECT
public:
    /// An empty dictionary of \a kind without a log file (E_OT_UNKNOWN: no tree at all).
    explicit COdict(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    /// An empty dictionary of \a kind whose messages go to \a log (not owned; null silences).
    COdict(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    /// A copy with the same log file, a copy of the tree (with its own indexes) and the same valid flag.
    COdict(const COdict &other);
    ~COdict() override;

    /// Sets the log sink of the dictionary and its tree (not owned; null silences).
    virtual void setLogfile(ICLogfile *log);
    /// The log sink. Not owned; null silences messages.
    ICLogfile *logfile() const;
    /// The tree's kind; E_OT_UNKNOWN without a tree.
    virtual NkrOdict::eObjectType_t objectType() const;
    /// Same as objectType().
    virtual NkrOdict::eObjectType_t getObjectType() const;

    /// Reads a dictionary file; 0 on success, 1 if the file cannot be opened as the expected type.
    virtual int loadDictionary(const QString &fileName);
    /// Reads a "KiroObjectDictionary" document; the outcome is isValid().
    virtual int loadParameterDictionary(const QString &fileName);
    /// Reads a "KiroParameterSets" document into a parameter dictionary; the outcome is isValid().
    virtual int loadParameterSets(const QString &fileName);

    /// Narrows selections and limits to the device found in "mx8dd.db" of the program-data directory.
    virtual bool applyHardwareDependencies(NTypes::uVersion_t version, const QString &device, unsigned char pos);
    /// Narrows selections and limits to \a device.
    virtual bool applyHardwareDependencies(const CDeviceData &device, unsigned char pos);

    /// Stores the meta data and puts it into the history (replacing the record of its version).
    virtual void setOdictMetaData(const CXMLMetaData &meta);
    /// A copy of the meta data of the current document.
    virtual CXMLMetaData odictMetaData() const;
    /// A copy of the version history, newest first.
    virtual COdictHistory odictHistory() const;
    /// The warnings collected by the last load.
    virtual QStringList warningMessages() const;
    /// Empties the warnings of the last load.
    void clearWarningMessages();
    /// The records of the file that the last load did not take into the dictionary (duplicate
    /// or invalid ids, nameless objects, ...), in file order; empty when nothing was lost.
    QList<COdictDroppedRecord> droppedRecords() const;
    /// Sets the callback that receives the progress of this dictionary's loads (bytes read),
    /// saves (objects written) and exports (lines written); an empty callback reports nothing.
    void setProgressCallback(const COdictProgressCallback &callback);
    /// The callback set with setProgressCallback(); empty by default.
    COdictProgressCallback progressCallback() const;

    /// True after a load that could open its file; false after construction or a failed load.
    bool isValid() const;
    /// The default locale's language at the last loadDictionary(); QLocale::C before.
    QLocale::Language language() const;
    /// The file last loaded (also when loading failed) or saved; empty without a tree.
    QString fileName() const;
    /// The tree's root node; null without a tree.
    COdictNode *odictTree();
    /// The tree's root node; null without a tree.
    const COdictNode *odictTree() const;
    /// The object tree itself (null without a tree), for editors and exporters.
    COdictObjectTree *objectTree();
    /// The object tree itself; null without a tree.
    const COdictObjectTree *objectTree() const;

    /// The greatest object id; 0 for an empty dictionary.
    unsigned int highestId() const;
    /// The greatest id with its greatest real sub-id; invalid for an empty dictionary.
    COdictObjectId highestUId() const;
    /// The id of every object and sub-object, in key order, duplicates kept.
    QList<unsigned int> allObjectIds() const;
    /// Every unique id (object and sub-object), in key order.
    QList<COdictObjectId> allObjectUIds() const;
    /// The ids of allObjectUIds(\a node), duplicates kept.
    QList<unsigned int> allObjectIds(const COdictNode *node) const;
    /// The unique ids below a group in child order, all of them for the dictionary node, none otherwise.
    QList<COdictObjectId> allObjectUIds(const COdictNode *node) const;

    /// A copy of the item with that reference id (a default item when none).
    COdictItem odictItem(const QUuid &refId) const;
    /// The item with that reference id (owned by the tree); null when none.
    COdictItem *odictItemPtr(const QUuid &refId) const;

    /// True when some object is visible at user level \a level; false for an empty dictionary.
    bool hasVisibleObjects(NkrUserLevel::eUserLevel_t level) const;
    /// True when some object is visible at user level \a level; false for an empty dictionary.
    bool hasVisibleObjects(unsigned int level) const;

    KRODICT_LOOKUP_FAMILY(const COdictNode *, node)
    KRODICT_LOOKUP_FAMILY_MUTABLE(COdictNode *, node)
    KRODICT_LOOKUP_FAMILY(const COdictObject *, objectPtr)
    KRODICT_LOOKUP_FAMILY_MUTABLE(COdictObject *, objectPtr)
    KRODICT_LOOKUP_FAMILY(COdictObject, object)
    KRODICT_LOOKUP_FAMILY(COdictValueObject, valueObject)
    KRODICT_LOOKUP_FAMILY(COdictEditorObject, editorObject)
    KRODICT_LOOKUP_FAMILY(COdictParameterObject, parameterObject)
    KRODICT_LOOKUP_FAMILY(unsigned int, userlevelRead)
    KRODICT_LOOKUP_FAMILY(unsigned int, userlevelWrite)
    KRODICT_LOOKUP_FAMILY(unsigned int, userlevelVisible)

    // contains: the id key forms only.
    /// True when an object or sub-object has the key \a uid.
    bool contains(const COdictObjectId &uid) const;
    /// True when the dictionary holds (\a id, \a subId).
    bool contains(unsigned int id, unsigned int subId) const;
    /// True when the dictionary holds the key COdictObjectId(\a id).
    bool contains(unsigned int id) const;
    /// True when the dictionary holds the packed key \a packed.
    bool contains(unsigned long long packed) const;
    /// True when the dictionary holds the packed key \a id.
    bool contains(NkrObjectIds::eObjectId_t id) const;
    KRODICT_INTEGER_KEY(contains, const)

    /// Reads one value object from an "Object" element (or from the "Object" child of \a element)
    /// of \a doc into \a object; false for a null element or an object that is not valid.
    static bool valueObjectFromXml(CDomDoc &doc, COdictValueObject &object, QDomElement element);
    /// Appends an "Object" element holding \a object to \a element; false for a null element.
    static bool setObjectToXml(CDomDoc &doc, const COdictValueObject &object, QDomElement element);

protected:
    /// For derived dictionaries, which pass their own private object (owned from here on).
    COdict(COdictPrivate &dd, QObject *parent); // derived dictionaries pass their own private
    /// Second half of construction for derived classes: log file, then the tree.
    void initialise(NkrOdict::eObjectType_t kind, ICLogfile *log);
    /// The private object: all state of the dictionary.
    const QScopedPointer<COdictPrivate> d_ptr;

private:
    const COdictNode *lookup(const COdictObjectId &uid) const;
    const COdictNode *lookup(const QString &name, unsigned int subId) const;
    const COdictObject *lookupObject(const COdictObjectId &uid) const;
    const COdictObject *lookupObject(const QString &name, unsigned int subId) const;

    Q_DECLARE_PRIVATE(COdict)
};

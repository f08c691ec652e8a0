#pragma once

#include "COdictHistory.h"
#include "COdictItem.h"
#include "COdictObjectId.h"
#include "COdictObjectName.h"
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
    explicit COdict(NkrOdict::eObjectType_t kind, QObject *parent = nullptr);
    COdict(NkrOdict::eObjectType_t kind, ICLogfile *log, QObject *parent = nullptr);
    /// A copy with the same log file, a copy of the tree (with its own indexes) and the same valid flag.
    COdict(const COdict &other);
    ~COdict() override;

    virtual void setLogfile(ICLogfile *log);
    /// The log sink. Not owned; null silences messages.
    ICLogfile *logfile() const;
    /// The tree's kind; E_OT_UNKNOWN without a tree.
    virtual NkrOdict::eObjectType_t objectType() const;
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

    virtual void setOdictMetaData(const CXMLMetaData &meta);
    virtual CXMLMetaData odictMetaData() const;
    virtual COdictHistory odictHistory() const;
    /// The warnings collected by the last load.
    virtual QStringList warningMessages() const;
    void clearWarningMessages();

    bool isValid() const;
    QLocale::Language language() const;
    QString fileName() const;
    /// The tree's root node; null without a tree.
    COdictNode *odictTree();
    const COdictNode *odictTree() const;
    /// The object tree itself (null without a tree), for editors and exporters.
    COdictObjectTree *objectTree();
    const COdictObjectTree *objectTree() const;

    unsigned int highestId() const;
    COdictObjectId highestUId() const;
    QList<unsigned int> allObjectIds() const;
    QList<COdictObjectId> allObjectUIds() const;
    QList<unsigned int> allObjectIds(const COdictNode *node) const;
    QList<COdictObjectId> allObjectUIds(const COdictNode *node) const;

    /// A copy of the item with that reference id (a default item when none).
    COdictItem odictItem(const QUuid &refId) const;
    COdictItem *odictItemPtr(const QUuid &refId) const;

    bool hasVisibleObjects(NkrUserLevel::eUserLevel_t level) const;
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
    bool contains(const COdictObjectId &uid) const;
    bool contains(unsigned int id, unsigned int subId) const;
    bool contains(unsigned int id) const;
    bool contains(unsigned long long packed) const;
    bool contains(NkrObjectIds::eObjectId_t id) const;
    KRODICT_INTEGER_KEY(contains, const)

    /// Reads one value object from an "Object" element (or from the "Object" child of \a element)
    /// of \a doc into \a object; false for a null element or an object that is not valid.
    static bool valueObjectFromXml(CDomDoc &doc, COdictValueObject &object, QDomElement element);
    /// Appends an "Object" element holding \a object to \a element; false for a null element.
    static bool setObjectToXml(CDomDoc &doc, const COdictValueObject &object, QDomElement element);

protected:
    COdict(COdictPrivate &dd, QObject *parent); // derived dictionaries pass their own private
    /// Second half of construction for derived classes: log file, then the tree.
    void initialise(NkrOdict::eObjectType_t kind, ICLogfile *log);
    const QScopedPointer<COdictPrivate> d_ptr;

private:
    const COdictNode *lookup(const COdictObjectId &uid) const;
    const COdictNode *lookup(const COdictObjectName &name) const;

    Q_DECLARE_PRIVATE(COdict)
};

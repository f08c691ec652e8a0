#include "COdict.h"

#include "COdict_p.h"
#include "CDeviceData.h"
#include "CMessageBoardHelper.h"
#include "COdictEditorObject.h"
#include "COdictHardware_p.h"
#include "COdictObject.h"
#include "COdictObjectTree.h"
#include "COdictParameterObject.h"
#include "COdictValueObject.h"
#include "ICOdictStorage_p.h"

#include <QCoreApplication>
#include <QDomElement>

#include <memory>

using namespace NkrOdict;

namespace {

QString kindName(eObjectType_t kind)
{
    switch (kind) {
    case E_OT_STD:
        return QStringLiteral("E_OT_STD");
    case E_OT_VALUE:
        return QStringLiteral("E_OT_VALUE");
    case E_OT_EDITOR:
        return QStringLiteral("E_OT_EDITOR");
    case E_OT_PARAMETER:
        return QStringLiteral("E_OT_PARAMETER");
    default:
        return QStringLiteral("E_OT_UNKNOWN");
    }
}

} // namespace

// ---- COdictPrivate ----

COdictPrivate::COdictPrivate(COdict *owner) : q_ptr(owner) {}

COdictPrivate::~COdictPrivate()
{
    delete tree;
}

void COdictPrivate::setLogfile(ICLogfile *log)
{
    logfile = log;
    if (tree)
        tree->setLogfile(log);
}

void COdictPrivate::createDictionary(eObjectType_t kind)
{
    const QString notCreated = QCoreApplication::translate("COdict", "No object directory was created.");
    if (tree && tree->objectType() == kind) {
        CMessageBoardHelper::setCritical(notCreated, logfile, 0);
        return;
    }
    delete tree;
    tree = nullptr;
    if (kind < E_OT_STD) {
        CMessageBoardHelper::setCritical(notCreated, logfile, 0);
        return;
    }
    tree = newTree(kind);
    tree->setLogfile(logfile);
    valid = false;
    CMessageBoardHelper::setText(
        QCoreApplication::translate("COdict", "A new empty object dictionary of type '%1' has been created.")
            .arg(kindName(kind)),
        logfile, 0xC0000008);
}

COdictObjectTree *COdictPrivate::newTree(eObjectType_t kind) const
{
    return new COdictObjectTree(kind, logfile);
}

COdictObjectTree *COdictPrivate::copyTree(const COdictObjectTree &source) const
{
    return new COdictObjectTree(source);
}

eObjectType_t COdictPrivate::objectType() const
{
    return tree ? tree->objectType() : E_OT_UNKNOWN;
}

int COdictPrivate::load(const QString &fileName, const QString &documentType)
{
    valid = false;
    if (!tree)
        return 1; // a dictionary made for E_OT_UNKNOWN has nowhere to load into
    tree->clear();
    const int result = tree->load(fileName, documentType, progress);
    valid = result != 1;
    tree->notifyChanged();
    return result;
}

bool COdictPrivate::applyHardwareDependencies(const CDeviceData &device, unsigned char pos)
{
    return tree && COdictHardware(*tree, logfile).apply(device, pos);
}

bool COdictPrivate::applyHardwareDependencies(NTypes::uVersion_t version, const QString &device, unsigned char pos)
{
    const std::unique_ptr<CDeviceData> data = COdictHardware::findDevice(version, device);
    // Virtual: a derived dictionary's narrowing applies to devices from the database too.
    return data && applyHardwareDependencies(*data, pos);
}

int COdictPrivate::loadDictionary(const QString &fileName)
{
    const int result = load(fileName, QString());
    language = QLocale().language();
    return result;
}

int COdictPrivate::loadParameterDictionary(const QString &fileName)
{
    return load(fileName, ICOdictStorage::dictionaryType());
}

int COdictPrivate::loadParameterSets(const QString &fileName)
{
    return load(fileName, ICOdictStorage::parameterSetType());
}

void COdictPrivate::setOdictMetaData(const CXMLMetaData &meta)
{
    if (tree)
        tree->setMetaData(meta);
}

CXMLMetaData COdictPrivate::odictMetaData() const
{
    return tree ? tree->metaData() : CXMLMetaData();
}

COdictHistory COdictPrivate::odictHistory() const
{
    return tree ? tree->history() : COdictHistory();
}

// ---- COdict ----

COdict::COdict(eObjectType_t kind, QObject *parent) : COdict(kind, nullptr, parent) {}

COdict::COdict(eObjectType_t kind, ICLogfile *log, QObject *parent)
    : QObject(parent), d_ptr(new COdictPrivate(this))
{
    initialise(kind, log);
}

COdict::COdict(COdictPrivate &dd, QObject *parent) : QObject(parent), d_ptr(&dd) {}

// The copy has no QObject parent: a copy made on the stack must not be deleted by the source's parent.
COdict::COdict(const COdict &other) : QObject(nullptr), d_ptr(new COdictPrivate(this))
{
    Q_D(COdict);
    const COdictPrivate *o = other.d_func();
    d->logfile = o->logfile;
    d->tree = o->tree ? o->copyTree(*o->tree) : nullptr;
    d->valid = o->valid;
    d->language = o->language;
}

COdict::~COdict() = default;

void COdict::initialise(eObjectType_t kind, ICLogfile *log)
{
    Q_D(COdict);
    d->setLogfile(log);
    d->createDictionary(kind);
}

void COdict::setLogfile(ICLogfile *log)
{
    Q_D(COdict);
    d->setLogfile(log);
}

ICLogfile *COdict::logfile() const
{
    Q_D(const COdict);
    return d->logfile;
}

eObjectType_t COdict::objectType() const
{
    Q_D(const COdict);
    return d->objectType();
}

eObjectType_t COdict::getObjectType() const
{
    return objectType();
}

int COdict::loadDictionary(const QString &fileName)
{
    Q_D(COdict);
    return d->loadDictionary(fileName);
}

int COdict::loadParameterDictionary(const QString &fileName)
{
    Q_D(COdict);
    return d->loadParameterDictionary(fileName);
}

int COdict::loadParameterSets(const QString &fileName)
{
    Q_D(COdict);
    return d->loadParameterSets(fileName);
}

bool COdict::applyHardwareDependencies(NTypes::uVersion_t version, const QString &device, unsigned char pos)
{
    Q_D(COdict);
    return d->applyHardwareDependencies(version, device, pos);
}

bool COdict::applyHardwareDependencies(const CDeviceData &device, unsigned char pos)
{
    Q_D(COdict);
    return d->applyHardwareDependencies(device, pos);
}

void COdict::setOdictMetaData(const CXMLMetaData &meta)
{
    Q_D(COdict);
    d->setOdictMetaData(meta);
}

CXMLMetaData COdict::odictMetaData() const
{
    Q_D(const COdict);
    return d->odictMetaData();
}

COdictHistory COdict::odictHistory() const
{
    Q_D(const COdict);
    return d->odictHistory();
}

QStringList COdict::warningMessages() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->warningMessages() : QStringList();
}

QList<COdictDroppedRecord> COdict::droppedRecords() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->droppedRecords() : QList<COdictDroppedRecord>();
}

void COdict::setProgressCallback(const COdictProgressCallback &callback)
{
    Q_D(COdict);
    d->progress = callback;
}

COdictProgressCallback COdict::progressCallback() const
{
    Q_D(const COdict);
    return d->progress;
}

void COdict::clearWarningMessages()
{
    Q_D(COdict);
    if (d->tree)
        d->tree->clearWarningMessages();
}

bool COdict::isValid() const
{
    Q_D(const COdict);
    return d->valid;
}

QLocale::Language COdict::language() const
{
    Q_D(const COdict);
    return d->language;
}

QString COdict::fileName() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->fileName() : QString();
}

COdictNode *COdict::odictTree()
{
    Q_D(COdict);
    return d->tree ? d->tree->rootNode() : nullptr;
}

const COdictNode *COdict::odictTree() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->rootNode() : nullptr;
}

COdictObjectTree *COdict::objectTree()
{
    Q_D(COdict);
    return d->tree;
}

const COdictObjectTree *COdict::objectTree() const
{
    Q_D(const COdict);
    return d->tree;
}

unsigned int COdict::highestId() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->highestId() : 0;
}

COdictObjectId COdict::highestUId() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->highestUId() : COdictObjectId(0xFFFFFFFFu, 0xFFFFFFFFu);
}

QList<unsigned int> COdict::allObjectIds() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->allObjectIds() : QList<unsigned int>();
}

QList<COdictObjectId> COdict::allObjectUIds() const
{
    Q_D(const COdict);
    return d->tree ? d->tree->allObjectUIds() : QList<COdictObjectId>();
}

QList<unsigned int> COdict::allObjectIds(const COdictNode *node) const
{
    Q_D(const COdict);
    return d->tree ? d->tree->allObjectIds(node) : QList<unsigned int>();
}

QList<COdictObjectId> COdict::allObjectUIds(const COdictNode *node) const
{
    Q_D(const COdict);
    return d->tree ? d->tree->allObjectUIds(node) : QList<COdictObjectId>();
}

COdictItem COdict::odictItem(const QUuid &refId) const
{
    const COdictItem *item = odictItemPtr(refId);
    return item ? *item : COdictItem();
}

COdictItem *COdict::odictItemPtr(const QUuid &refId) const
{
    Q_D(const COdict);
    const COdictNode *found = d->tree ? d->tree->findNodeByRefId(refId) : nullptr;
    return found ? found->dataPtr() : nullptr;
}

bool COdict::hasVisibleObjects(NkrUserLevel::eUserLevel_t level) const
{
    return hasVisibleObjects(static_cast<unsigned int>(level));
}

bool COdict::hasVisibleObjects(unsigned int level) const
{
    Q_D(const COdict);
    if (!d->tree)
        return false;
    for (const COdictObjectId &key : d->tree->allObjectUIds()) {
        const COdictObject *object = d->tree->objectPtr(key);
        if (object && object->userlevelVisible() <= level)
            return true;
    }
    return false;
}

bool COdict::valueObjectFromXml(CDomDoc &, COdictValueObject &object, QDomElement element)
{
    const ICOdictStorage *storage = ICOdictStorage::current();
    if (element.isNull() || !storage)
        return false;
    const std::unique_ptr<COdictObject> read(storage->readObject(element, E_OT_VALUE));
    const auto *value = dynamic_cast<const COdictValueObject *>(read.get());
    if (!value || !value->isValid())
        return false;
    object = *value;
    return true;
}

bool COdict::setObjectToXml(CDomDoc &doc, const COdictValueObject &object, QDomElement element)
{
    const ICOdictStorage *storage = ICOdictStorage::current();
    if (element.isNull() || !storage)
        return false;
    storage->writeObject(doc, element, object);
    return true;
}

const COdictNode *COdict::lookup(const COdictObjectId &uid) const
{
    Q_D(const COdict);
    return d->tree ? d->tree->node(uid) : nullptr;
}

const COdictNode *COdict::lookup(const QString &name, unsigned int subId) const
{
    Q_D(const COdict);
    return d->tree ? d->tree->node(name, subId) : nullptr;
}

const COdictObject *COdict::lookupObject(const COdictObjectId &uid) const
{
    Q_D(const COdict);
    return d->tree ? d->tree->objectPtr(uid) : nullptr;
}

const COdictObject *COdict::lookupObject(const QString &name, unsigned int subId) const
{
    Q_D(const COdict);
    return d->tree ? d->tree->objectPtr(name, subId) : nullptr;
}

// Every family is written once per key form: the key is built, then LOOK finds what the family
// needs (the node or only its object: the indexes hold both), and the family's expression is
// applied to it as `n` (null when the key is unknown). Names are passed on as they are, so that
// no lookup copies a string.
#define KRODICT_DEFINE_FAMILY_BY(R, fn, CONST, T, LOOK, EXPR)                                             \
    R COdict::fn(const COdictObjectId &uid) CONST { T n = LOOK(uid); return EXPR; }                        \
    R COdict::fn(unsigned int id, unsigned int subId) CONST { T n = LOOK(COdictObjectId(id, subId)); return EXPR; } \
    R COdict::fn(unsigned int id) CONST { T n = LOOK(COdictObjectId(id)); return EXPR; }                   \
    R COdict::fn(unsigned long long packed) CONST { T n = LOOK(COdictObjectId(packed)); return EXPR; }     \
    R COdict::fn(NkrObjectIds::eObjectId_t id) CONST { T n = LOOK(COdictObjectId(id)); return EXPR; }      \
    R COdict::fn(NkrObjectIds::eObjectId_t id, unsigned int subId) CONST                                   \
    { T n = LOOK(COdictObjectId(id, subId)); return EXPR; }                                                \
    R COdict::fn(const COdictObjectName &name) CONST { T n = LOOK(name.name(), name.subId()); return EXPR; } \
    R COdict::fn(const QString &name) CONST { T n = LOOK(name, 0xFFFFFFFFu); return EXPR; }                 \
    R COdict::fn(const QString &name, unsigned int subId) CONST { T n = LOOK(name, subId); return EXPR; }

#define KRODICT_DEFINE_FAMILY(R, fn, CONST, EXPR) KRODICT_DEFINE_FAMILY_BY(R, fn, CONST, const COdictNode *, lookup, EXPR)
#define KRODICT_DEFINE_OBJECT_FAMILY(R, fn, CONST, EXPR)                                                  \
    KRODICT_DEFINE_FAMILY_BY(R, fn, CONST, const COdictObject *, lookupObject, EXPR)

#define KRODICT_CONST const
#define KRODICT_MUTABLE

KRODICT_DEFINE_FAMILY(const COdictNode *, node, KRODICT_CONST, n)
KRODICT_DEFINE_FAMILY(COdictNode *, node, KRODICT_MUTABLE, const_cast<COdictNode *>(n))
KRODICT_DEFINE_OBJECT_FAMILY(const COdictObject *, objectPtr, KRODICT_CONST, n)
KRODICT_DEFINE_OBJECT_FAMILY(COdictObject *, objectPtr, KRODICT_MUTABLE, const_cast<COdictObject *>(n))
KRODICT_DEFINE_FAMILY(COdictObject, object, KRODICT_CONST, n ? n->dataRef().toObject() : COdictObject())
KRODICT_DEFINE_FAMILY(COdictValueObject, valueObject, KRODICT_CONST,
                      n ? n->dataRef().toValueObject() : COdictValueObject())
KRODICT_DEFINE_FAMILY(COdictEditorObject, editorObject, KRODICT_CONST,
                      n ? n->dataRef().toEditorObject() : COdictEditorObject())
KRODICT_DEFINE_FAMILY(COdictParameterObject, parameterObject, KRODICT_CONST,
                      n ? n->dataRef().toParameterObject() : COdictParameterObject())
KRODICT_DEFINE_OBJECT_FAMILY(unsigned int, userlevelRead, KRODICT_CONST, n ? n->userlevelRead() : 0u)
KRODICT_DEFINE_OBJECT_FAMILY(unsigned int, userlevelWrite, KRODICT_CONST, n ? n->userlevelWrite() : 0u)
KRODICT_DEFINE_OBJECT_FAMILY(unsigned int, userlevelVisible, KRODICT_CONST, n ? n->userlevelVisible() : 0u)

bool COdict::contains(const COdictObjectId &uid) const { return lookup(uid) != nullptr; }
bool COdict::contains(unsigned int id, unsigned int subId) const { return contains(COdictObjectId(id, subId)); }
bool COdict::contains(unsigned int id) const { return contains(COdictObjectId(id)); }
bool COdict::contains(unsigned long long packed) const { return contains(COdictObjectId(packed)); }
bool COdict::contains(NkrObjectIds::eObjectId_t id) const { return contains(COdictObjectId(id)); }

#include "COdictParameterObject.h"

#include "COdictParameterObject_p.h"
#include "COdictSubValue_p.h"

#include "CDataTypeParser.h"

#include <QDataStream>
#include <QDebug>

COdictParameterObject::COdictParameterObject() : dp(new COdictParameterObjectPrivate) {}
COdictParameterObject::COdictParameterObject(const COdictObject &object) : COdictObject(object), dp(new COdictParameterObjectPrivate) {}
COdictParameterObject::COdictParameterObject(const COdictParameterObject &) = default;
COdictParameterObject &COdictParameterObject::operator=(const COdictParameterObject &) = default;

COdictParameterObject &COdictParameterObject::operator=(const COdictObject &object)
{
    COdictObject::operator=(object);
    return *this;
}

COdictParameterObject::~COdictParameterObject() = default;

NkrOdict::eObjectType_t COdictParameterObject::objectType() const
{
    return NkrOdict::E_OT_PARAMETER;
}

bool COdictParameterObject::isNull() const
{
    return COdictObject::isNull() && dp->count() == 0 && dp->error == 0;
}

void COdictParameterObject::setValue(int index, const QVariant &value)
{
    dp->insert(index, value);
}

QVariant COdictParameterObject::value(int index) const
{
    if (const COdictParameterObjectPrivate::sEntry *entry = dp->find(index))
        return entry->value;
    // A null CVariant has no QVariant of its own; the empty value keeps the storage type.
    const QVariant empty = CVariant(QString(), dataType()).toVariant();
    return empty.isValid() ? empty : OdictSubValue::typedNull(dataType());
}

void COdictParameterObject::setValues(const QMap<int, QVariant> &values) { dp->setMap(values); }
QMap<int, QVariant> COdictParameterObject::values() const { return dp->toMap(); }

void COdictParameterObject::forEachValue(const std::function<void(int, const QVariant &)> &visit) const
{
    for (const COdictParameterObjectPrivate::sEntry &entry : *dp)
        visit(entry.set, entry.value);
}

bool COdictParameterObject::operator==(const COdictParameterObject &other) const
{
    return COdictObject::operator==(other) && (dp == other.dp || dp->equals(*other.dp));
}

int COdictParameterObject::error() const { return dp->error; }
void COdictParameterObject::setError(int error) { dp->error = error; }
void COdictParameterObject::clearError() { dp->error = 0; }

COdictParameterObject COdictParameterObject::createVirtualSubObject(const COdictParameterObject &parent, unsigned int subId, bool *ok)
{
    COdictParameterObject sub(parent);
    const bool made = createVirtualSubObject(sub, subId);
    if (ok)
        *ok = made;
    return made ? sub : COdictParameterObject();
}

bool COdictParameterObject::createVirtualSubObject(COdictParameterObject &target, unsigned int subId)
{
    // The values are cut out while target still is the owner.
    QMap<int, QVariant> elements;
    for (const COdictParameterObjectPrivate::sEntry &entry : *target.dp.constData()) {
        bool ok = false;
        const QVariant element = OdictSubValue::virtualElement(target, entry.value, subId, &ok);
        if (ok)
            elements.insert(entry.set, element);
    }
    COdictObject &base = target;
    if (!COdictObject::createVirtualSubObject(base, subId))
        return false;
    target.dp->setMap(elements);
    return true;
}

QDataStream &operator<<(QDataStream &out, const COdictParameterObject &object)
{
    out << static_cast<const COdictObject &>(object);
    out << qint32(object.dp->error) << object.dp->toMap();
    return out;
}

QDataStream &operator>>(QDataStream &in, COdictParameterObject &object)
{
    in >> static_cast<COdictObject &>(object);
    COdictParameterObjectPrivate &p = *object.dp;
    in >> p.error;
    // QMap<int, QVariant> by hand, so that every value goes through the plain-value check. The
    // map collects them first: the stream holds them in descending order, and a long corrupt
    // list must not cost an array move per value.
    quint32 count = 0;
    in >> count;
    QMap<int, QVariant> values;
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        qint32 set = 0;
        QVariant value;
        in >> set;
        CVariant::readPlainVariant(in, value);
        if (in.status() == QDataStream::Ok)
            values.insert(set, value);
    }
    p.setMap(values);
    return in;
}

QDebug operator<<(QDebug debug, const COdictParameterObject &object)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "COdictParameterObject( " << object.id() << ", " << object.subId() << ", "
                              << object.name() << ", NTypes::" << CDataTypeParser::typeToEnum(object.dataType())
                              << " )";
    return debug;
}

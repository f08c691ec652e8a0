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
    return COdictObject::isNull() && dp->values.isEmpty() && dp->error == 0;
}

void COdictParameterObject::setValue(int index, const QVariant &value)
{
    dp->values.insert(index, value);
}

QVariant COdictParameterObject::value(int index) const
{
    const auto it = dp->values.constFind(index);
    if (it != dp->values.constEnd())
        return it.value();
    // A null CVariant has no QVariant of its own; the empty value keeps the storage type.
    const QVariant empty = CVariant(QString(), dataType()).toVariant();
    return empty.isValid() ? empty : OdictSubValue::typedNull(dataType());
}

void COdictParameterObject::setValues(const QMap<int, QVariant> &values) { dp->values = values; }
QMap<int, QVariant> COdictParameterObject::values() const { return dp->values; }

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
    const QMap<int, QVariant> &owned = target.dp.constData()->values;
    for (auto it = owned.cbegin(); it != owned.cend(); ++it) {
        bool ok = false;
        const QVariant element = OdictSubValue::virtualElement(target, it.value(), subId, &ok);
        if (ok)
            elements.insert(it.key(), element);
    }
    COdictObject &base = target;
    if (!COdictObject::createVirtualSubObject(base, subId))
        return false;
    target.dp->values = elements;
    return true;
}

QDataStream &operator<<(QDataStream &out, const COdictParameterObject &object)
{
    out << static_cast<const COdictObject &>(object);
    out << qint32(object.dp->error) << object.dp->values;
    return out;
}

QDataStream &operator>>(QDataStream &in, COdictParameterObject &object)
{
    in >> static_cast<COdictObject &>(object);
    COdictParameterObjectPrivate &p = *object.dp;
    in >> p.error;
    // QMap<int, QVariant> by hand, so that every value goes through the plain-value check.
    quint32 count = 0;
    in >> count;
    p.values.clear();
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        qint32 set = 0;
        QVariant value;
        in >> set;
        CVariant::readPlainVariant(in, value);
        if (in.status() == QDataStream::Ok)
            p.values.insert(set, value);
    }
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

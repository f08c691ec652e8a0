#include "COdictEditorObject.h"

#include "COdictEditorObject_p.h"

#include "CDataTypeParser.h"

#include <QDataStream>
#include <QDebug>

COdictEditorObject::COdictEditorObject() : de(new COdictEditorObjectPrivate) {}
COdictEditorObject::COdictEditorObject(const COdictObject &object) : COdictObject(object), de(new COdictEditorObjectPrivate) {}
COdictEditorObject::COdictEditorObject(const COdictEditorObject &) = default;
COdictEditorObject &COdictEditorObject::operator=(const COdictEditorObject &) = default;

COdictEditorObject &COdictEditorObject::operator=(const COdictObject &object)
{
    COdictObject::operator=(object);
    return *this;
}

COdictEditorObject::~COdictEditorObject() = default;

NkrOdict::eObjectType_t COdictEditorObject::objectType() const
{
    return NkrOdict::E_OT_EDITOR;
}

bool COdictEditorObject::isNull() const
{
    static const COdictEditorObjectPrivate defaults;
    return COdictObject::isNull() && de->equals(defaults);
}

bool COdictEditorObject::isValid() const
{
    return COdictObject::isValid();
}

bool COdictEditorObject::operator==(const COdictEditorObject &other) const
{
    return COdictObject::operator==(other) && (de == other.de || de->equals(*other.de));
}

QString COdictEditorObject::defString() const { return de->defString; }
void COdictEditorObject::setDefString(const QString &text) { de->defString = text; }
QString COdictEditorObject::fwVariablename() const { return de->fwVariablename; }
void COdictEditorObject::setFwVariablename(const QString &name) { de->fwVariablename = name; }
QString COdictEditorObject::fwFunctionname() const { return de->fwFunctionname; }
void COdictEditorObject::setFwFunctionname(const QString &name) { de->fwFunctionname = name; }
QString COdictEditorObject::shortDescription() const { return de->shortDescription; }
void COdictEditorObject::setShortDescription(const QString &text) { de->shortDescription = text; }
QString COdictEditorObject::description() const { return de->description; }
void COdictEditorObject::setDescription(const QString &text) { de->description = text; }
int COdictEditorObject::accessType() const { return de->accessType; }
void COdictEditorObject::setAccessType(int accessType) { de->accessType = accessType; }

QString COdictEditorObject::dataTypeString() const
{
    return CDataTypeParser::typeToStr(dataType());
}

QDataStream &operator<<(QDataStream &out, const COdictEditorObject &object)
{
    const COdictEditorObjectPrivate &p = *object.de;
    out << p.defString << p.fwVariablename << p.fwFunctionname << p.shortDescription << p.description
        << qint32(p.accessType);
    return out;
}

QDataStream &operator>>(QDataStream &in, COdictEditorObject &object)
{
    COdictEditorObjectPrivate &p = *object.de;
    in >> p.defString >> p.fwVariablename >> p.fwFunctionname >> p.shortDescription >> p.description
        >> p.accessType;
    return in;
}

QDebug operator<<(QDebug debug, const COdictEditorObject &object)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "COdictEditorObject( id=" << object.id() << ", subid=" << object.subId() << ", "
                              << object.name() << ", NTypes::" << CDataTypeParser::typeToEnum(object.dataType())
                              << " )";
    return debug;
}

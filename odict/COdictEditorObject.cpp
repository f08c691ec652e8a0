#include "COdictEditorObject.h"

#include "COdictEditorObject_p.h"

#include "CDataTypeParser.h"

#include <QDataStream>
#include <QDebug>

#include <cstring>

namespace {

bool fitsLatin1(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() > 0xFF)
            return false;
    }
    return true;
}

} // namespace

COdictEditorObjectPrivate::COdictEditorObjectPrivate(const COdictEditorObjectPrivate &o)
    : QSharedData(o), accessType(o.accessType), m_nullTexts(o.m_nullTexts), m_wide(o.m_wide)
{
    std::memcpy(m_end, o.m_end, sizeof(m_end));
    const size_t bytes = size_t(totalChars()) * size_t(charSize());
    if (bytes != 0) {
        m_data.reset(new char[bytes]);
        std::memcpy(m_data.get(), o.m_data.get(), bytes);
    }
}

QString COdictEditorObjectPrivate::text(eText_t which) const
{
    if (m_nullTexts & (1u << which))
        return QString();
    const int size = length(which);
    if (size == 0)
        return QString::fromLatin1("", 0); // empty, not null
    const char *start = m_data.get() + size_t(begin(which)) * size_t(charSize());
    if (!m_wide)
        return QString::fromLatin1(start, size);
    QString text(size, Qt::Uninitialized);
    std::memcpy(text.data(), start, size_t(size) * sizeof(QChar));
    return text;
}

void COdictEditorObjectPrivate::setText(eText_t which, const QString &text)
{
    const quint8 bit = quint8(1u << which);
    m_nullTexts = text.isNull() ? quint8(m_nullTexts | bit) : quint8(m_nullTexts & ~bit);
    const int oldSize = length(which);
    if (oldSize == 0 && text.isEmpty())
        return; // nothing to move: the common case of an absent text

    // The new buffer: the texts before, the new one, the texts after. It stays Latin-1 while
    // every text fits; otherwise all of it is widened.
    const int start = begin(which);
    const int total = totalChars() - oldSize + text.size();
    bool wide = !fitsLatin1(text);
    if (!wide && m_wide) {
        // The old buffer was wide; it narrows again when no other text needs UTF-16.
        const auto *chars = reinterpret_cast<const char16_t *>(m_data.get());
        for (int i = 0; i < totalChars() && !wide; ++i)
            wide = (i < start || i >= start + oldSize) && chars[i] > 0xFF;
    }
    const int size = wide ? 2 : 1;
    std::unique_ptr<char[]> data(total != 0 ? new char[size_t(total) * size_t(size)] : nullptr);
    // Copies characters [from, to) of the old buffer to character \a at of the new one.
    auto copyOld = [&](int from, int to, int at) {
        if (from == to)
            return;
        if (m_wide == wide) {
            std::memcpy(data.get() + size_t(at) * size_t(size), m_data.get() + size_t(from) * size_t(size),
                        size_t(to - from) * size_t(size));
        } else if (wide) {
            auto *out = reinterpret_cast<char16_t *>(data.get()) + at;
            for (int i = from; i < to; ++i)
                *out++ = char16_t(uchar(m_data[size_t(i)]));
        } else {
            const auto *in = reinterpret_cast<const char16_t *>(m_data.get());
            for (int i = from; i < to; ++i)
                data[size_t(at++)] = char(uchar(in[i]));
        }
    };
    copyOld(0, start, 0);
    if (wide) {
        std::memcpy(data.get() + size_t(start) * 2, text.constData(), size_t(text.size()) * 2);
    } else {
        for (int i = 0; i < text.size(); ++i)
            data[size_t(start + i)] = char(uchar(text.at(i).unicode()));
    }
    copyOld(start + oldSize, totalChars(), start + text.size());

    const int shift = text.size() - oldSize;
    for (int t = which; t < T_COUNT; ++t)
        m_end[t] = quint32(int(m_end[t]) + shift);
    m_data = std::move(data);
    m_wide = wide;
}

bool COdictEditorObjectPrivate::equals(const COdictEditorObjectPrivate &o) const
{
    if (accessType != o.accessType)
        return false;
    if (m_wide != o.m_wide) {
        for (int t = 0; t < T_COUNT; ++t) {
            if (text(eText_t(t)) != o.text(eText_t(t)))
                return false;
        }
        return true;
    }
    return std::memcmp(m_end, o.m_end, sizeof(m_end)) == 0
        && (totalChars() == 0
            || std::memcmp(m_data.get(), o.m_data.get(), size_t(totalChars()) * size_t(charSize())) == 0);
}

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

QString COdictEditorObject::defString() const { return de->text(COdictEditorObjectPrivate::T_DEFSTRING); }
void COdictEditorObject::setDefString(const QString &text) { de->setText(COdictEditorObjectPrivate::T_DEFSTRING, text); }
QString COdictEditorObject::fwVariablename() const { return de->text(COdictEditorObjectPrivate::T_FWVARIABLE); }
void COdictEditorObject::setFwVariablename(const QString &name) { de->setText(COdictEditorObjectPrivate::T_FWVARIABLE, name); }
QString COdictEditorObject::fwFunctionname() const { return de->text(COdictEditorObjectPrivate::T_FWFUNCTION); }
void COdictEditorObject::setFwFunctionname(const QString &name) { de->setText(COdictEditorObjectPrivate::T_FWFUNCTION, name); }
QString COdictEditorObject::shortDescription() const { return de->text(COdictEditorObjectPrivate::T_SHORTDESCRIPTION); }
void COdictEditorObject::setShortDescription(const QString &text) { de->setText(COdictEditorObjectPrivate::T_SHORTDESCRIPTION, text); }
QString COdictEditorObject::description() const { return de->text(COdictEditorObjectPrivate::T_DESCRIPTION); }
void COdictEditorObject::setDescription(const QString &text) { de->setText(COdictEditorObjectPrivate::T_DESCRIPTION, text); }
int COdictEditorObject::accessType() const { return de->accessType; }
void COdictEditorObject::setAccessType(int accessType) { de->accessType = accessType; }

QString COdictEditorObject::dataTypeString() const
{
    return CDataTypeParser::typeToStr(dataType());
}

QDataStream &operator<<(QDataStream &out, const COdictEditorObject &object)
{
    const COdictEditorObjectPrivate &p = *object.de;
    for (int t = 0; t < COdictEditorObjectPrivate::T_COUNT; ++t)
        out << p.text(COdictEditorObjectPrivate::eText_t(t));
    out << qint32(p.accessType);
    return out;
}

QDataStream &operator>>(QDataStream &in, COdictEditorObject &object)
{
    COdictEditorObjectPrivate &p = *object.de;
    for (int t = 0; t < COdictEditorObjectPrivate::T_COUNT; ++t) {
        QString text;
        in >> text;
        p.setText(COdictEditorObjectPrivate::eText_t(t), text);
    }
    in >> p.accessType;
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

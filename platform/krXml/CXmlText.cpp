#include "CXmlText.h"

namespace {

/// Whether XML 1.0 can carry the UTF-16 unit \a u outside a surrogate pair.
bool allowed(ushort u)
{
    return u >= 0x20 ? u != 0xFFFE && u != 0xFFFF : u == 0x09 || u == 0x0A || u == 0x0D;
}

} // namespace

QString CXmlText::clean(const QString &text)
{
    const int size = text.size();
    int i = 0;
    while (i < size && allowed(text.at(i).unicode()) && !text.at(i).isSurrogate())
        ++i;
    if (i == size)
        return text; // the usual case: nothing to drop, no copy
    QString result = text.left(i);
    for (; i < size; ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
            result += c;
            result += text.at(++i);
        } else if (!c.isSurrogate() && allowed(c.unicode())) {
            result += c;
        }
    }
    return result;
}

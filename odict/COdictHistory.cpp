#include "COdictHistory.h"

int COdictHistory::indexOfVersion(const CXMLMetaData &meta) const
{
    for (int i = 0; i < m_list.size(); ++i) {
        if (m_list.at(i).version() == meta.version())
            return i;
    }
    return -1;
}

void COdictHistory::prepend(const CXMLMetaData &meta)
{
    const int index = indexOfVersion(meta);
    if (index >= 0)
        m_list[index] = meta;
    else
        m_list.prepend(meta);
}

void COdictHistory::append(const CXMLMetaData &meta)
{
    const int index = indexOfVersion(meta);
    if (index >= 0)
        m_list[index] = meta;
    else
        m_list.append(meta);
}

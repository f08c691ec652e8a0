#pragma once

#include "CXMLMetaData.h"
#include "krodict_export.h"

#include <QList>

/// The dictionary's version history, newest first; never two records of the same version.
class KRODICT_EXPORT COdictHistory
{
public:
    /// Number of records.
    int size() const { return m_list.size(); }
    /// Removes every record.
    void clear() { m_list.clear(); }
    /// The record at a valid position.
    CXMLMetaData at(int index) const { return m_list.at(index); }
    /// All records, newest first.
    const QList<CXMLMetaData> &list() const { return m_list; }
    /// Position of the first record with the same version; -1 when none.
    int indexOfVersion(const CXMLMetaData &meta) const;
    /// Replaces the record of the same version in place, else inserts at the front.
    void prepend(const CXMLMetaData &meta);
    /// Replaces the record of the same version in place, else inserts at the end.
    void append(const CXMLMetaData &meta);

    /// True when both hold the same records in the same order.
    bool operator==(const COdictHistory &o) const { return m_list == o.m_list; }
    /// True when the records differ.
    bool operator!=(const COdictHistory &o) const { return !(*this == o); }

private:
    QList<CXMLMetaData> m_list;
};

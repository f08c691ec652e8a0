#pragma once

#include "COdictObjectId.h"
#include "krodict_export.h"

#include <QList>
#include <QMetaType>
#include <QString>

/// One record of a dictionary file that loading did not take into the dictionary, and why.
/// The loader follows the format's rules (a duplicate id is skipped, a document without a name
/// loads empty, ...); these records make every such loss visible to the application.
class KRODICT_EXPORT COdictDroppedRecord
{
public:
    /// Why a record was dropped.
    enum eDropReason_t {
        E_DR_INVALID_OBJECT = 1,  ///< no usable id (missing, unreadable, 0xFFFFFFFF) or no name
        E_DR_DUPLICATE_ID = 2,    ///< its id and sub-id are taken by an object read before
        E_DR_UNREAD_SUBOBJECT = 3, ///< below a sub-object or below a dropped object
        E_DR_NO_DICTIONARY = 4    ///< the document names no dictionary, so none of its objects load
    };

    /// An empty record (reason E_DR_INVALID_OBJECT, line 0, no id).
    COdictDroppedRecord() = default;
    /// A record of \a reason for the object \a id named \a name at \a line, said in \a text.
    COdictDroppedRecord(eDropReason_t reason, int line, const COdictObjectId &id, const QString &name,
                        const QString &text);

    /// Why the record was dropped.
    eDropReason_t reason() const { return m_reason; }
    /// Line of the record in the file; 0 when unknown.
    int line() const { return m_line; }
    /// The id and sub-id read from the record (0xFFFFFFFF where there was none).
    COdictObjectId id() const { return m_id; }
    /// The record's object name as read (may be empty).
    QString name() const { return m_name; }
    /// One sentence saying what was dropped and why, for people.
    QString text() const { return m_text; }

    /// Equal when every field is.
    bool operator==(const COdictDroppedRecord &other) const;
    /// Not equal when a field differs.
    bool operator!=(const COdictDroppedRecord &other) const { return !(*this == other); }

private:
    eDropReason_t m_reason = E_DR_INVALID_OBJECT;
    int m_line = 0;
    COdictObjectId m_id;
    QString m_name;
    QString m_text;
};

Q_DECLARE_METATYPE(COdictDroppedRecord)

#pragma once

#include "krodict_export.h"

#include <QList>
#include <QMap>
#include <QString>

class COdictEditorObject;

/// The firmware's data structures: each object selects one by its access type, and the C header
/// export writes one `typedef struct` per structure and one initialiser per object from it.
class KRODICT_EXPORT COdictDataStructure
{
public:
    /// Where a member's initial value comes from when an object's constant is generated.
    enum eMemberSource_t {
        E_MS_LITERAL = 0,     ///< the member's literal text, as it stands
        E_MS_ID,              ///< object id, "0x%08XU"
        E_MS_SUBID,           ///< sub-id, "0x%02XU" ("0xFFFFFFFFU" without sub-id)
        E_MS_DATATYPE,        ///< data type number, decimal + "U"
        E_MS_DATASIZE,        ///< data size in bytes, decimal + "U"
        E_MS_ARRAYLENGTH,     ///< number of elements, decimal + "U"
        E_MS_ACCESSRIGHTS,    ///< access-right flag word, "0x%08XU"
        E_MS_OBJECTUSAGE,     ///< usage flag word, "0x%02XU"
        E_MS_USERLEVEL_READ,  ///< decimal + "U"
        E_MS_USERLEVEL_WRITE, ///< decimal + "U"
        E_MS_MIN,             ///< minimum as a C number (the literal text when the object has none)
        E_MS_MAX,             ///< maximum as a C number (the literal text when the object has none)
        E_MS_DEFAULT,         ///< default as a C number (the literal text when the object has none)
        E_MS_NAME,            ///< object name as a C string literal
        E_MS_FW_VARIABLE,     ///< "&" + firmware variable name; the literal text when there is none
        E_MS_FW_FUNCTION      ///< firmware function name; the literal text when there is none
    };

    /// One member of a structure: its C type, its name and the rule for its initial value.
    struct SDataStructureMember_t {
        QString cType;   ///< C type text, e.g. "uint32_t"
        QString name;    ///< member name
        /// where the initial value comes from
        eMemberSource_t source = E_MS_LITERAL;
        QString literal; ///< the value for E_MS_LITERAL, and the fall-back of the other rules

        /// True when every field is equal.
        bool operator==(const SDataStructureMember_t &o) const
        {
            return cType == o.cType && name == o.name && source == o.source && literal == o.literal;
        }
        /// True when some field differs.
        bool operator!=(const SDataStructureMember_t &o) const { return !(*this == o); }
    };

    /// One structure of the firmware header: its name, display texts, number and members.
    struct SDataStructure_t {
        QString name;        ///< structure name: the C type is "ODICT_<name>_t"
        QString uiName;      ///< display name
        QString description; ///< further text, written in the header's structure comment
        int id = 0;          ///< structure number, selected by an object's access type
        /// the members in declaration order
        QList<SDataStructureMember_t> members;

        /// True when every field is equal.
        bool operator==(const SDataStructure_t &o) const
        {
            return name == o.name && uiName == o.uiName && description == o.description && id == o.id
                && members == o.members;
        }
        /// True when some field differs.
        bool operator!=(const SDataStructure_t &o) const { return !(*this == o); }
    };

    /// Number of structures.
    int size() const { return m_list.size(); }
    /// Removes every structure.
    void clear() { m_list.clear(); }
    /// The entry at a valid position.
    SDataStructure_t at(int index) const { return m_list.at(index); }
    /// All structures in file order.
    const QList<SDataStructure_t> &list() const { return m_list; }
    /// Appends \a entry (ids are not checked for uniqueness).
    void append(const SDataStructure_t &entry) { m_list.append(entry); }
    /// The first entry with \a id; an empty entry (id 0) when none.
    SDataStructure_t data(int id) const;
    /// Display name of the first entry with \a id; empty when none.
    QString findUiName(int id) const;
    /// Id to display name over the entries with id > 0; the later entry wins for a shared id.
    QMap<int, QString> idToUiNameMap() const;

    /// True when both hold the same structures in the same order.
    bool operator==(const COdictDataStructure &o) const { return m_list == o.m_list; }
    /// True when the structures differ.
    bool operator!=(const COdictDataStructure &o) const { return !(*this == o); }

    /// The C initial value of \a member for \a object (see eMemberSource_t).
    static QString initialValue(const SDataStructureMember_t &member, const COdictEditorObject &object);
    /// File keyword of a source ("literal", "id", "subId", ...) and back (E_MS_LITERAL when unknown).
    static QString sourceToStr(eMemberSource_t source);
    /// The source named \a text; E_MS_LITERAL and \a ok false when unknown.
    static eMemberSource_t strToSource(const QString &text, bool *ok = nullptr);

private:
    QList<SDataStructure_t> m_list;
};

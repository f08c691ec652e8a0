#pragma once

#include "COdictExportBase_p.h"

#include "COdictDitaWriter_p.h"
#include "COdictItem.h"
#include "CXMLMetaData.h"

#include <QVector>

#include <initializer_list>

class COdictObject;

/// State of one documentation export: the topics planned from the tree, the texts that every
/// topic repeats, and the writer.
class COdictExportDocPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportDocPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToPackage(const QString &directory);
    QString mapFileName() const;

private:
    enum eTopicKind_t : quint8 { E_TK_GROUP, E_TK_OBJECT, E_TK_SUBOBJECT };

    /// One topic of the package, in tree order (pre-order). The topics of a node's subtree are
    /// the ones from its position up to \a end, so children are found without lists of their own.
    /// The id (topic id and file name without ".dita") lies in ids, ASCII like every id.
    struct sTopic_t {
        const COdictNode *node = nullptr;
        int end = 0;          ///< one past the last topic of the subtree
        int idStart = 0;      ///< position of the id in ids
        int idSize = 0;
        eTopicKind_t kind = E_TK_GROUP;
    };

    void plan();
    /// Stores \a base, or \a base with "_2", "_3", ... when another topic has it already, as
    /// the id of \a topic.
    void assignUniqueId(sTopic_t &topic, const QByteArray &base);
    QLatin1String idOf(int topic) const;
    QByteArray fileOf(int topic) const;
    /// "<file>#<id>", valid until the next call.
    QLatin1String hrefOf(int topic);
    QString titleOf(int topic) const;
    bool writeMap();
    bool writeFrontPage();
    bool writeGroup(int topic);
    bool writeObject(int topic);
    /// The properties table; \a displayName and \a shortName are the translated display names.
    void writeProperties(const COdictObject &object, const QString &displayName, const QString &shortName);
    /// A table of the objects among the direct children of \a topic, each linked to its topic.
    void writeObjectTable(int topic);
    /// Opens a section \a id titled \a title with a two-column table of \a keyLabel and text
    /// (enumeration values, bits); rows follow, then closeListSection().
    void openListSection(const char *id, int title, int keyLabel);
    void closeListSection();
    /// One table row with a cell per text (a list on the stack: rows are the most frequent call).
    void row(std::initializer_list<QString> cells);
    /// A row of a property table: the fixed text \a label, then \a value.
    void row(int label, const QString &value);
    /// A row of a property table whose value is "0x" and \a width or more hexadecimal digits.
    void hexRow(int label, quint64 value, int width);
    /// A heading cell showing the fixed text \a label.
    void headCell(int label) { writer.elementBytes("stentry", escapedLabels.at(label)); }
    /// The translated fixed text \a label (an eLabel_t of the implementation).
    const QString &label(int label) const { return labels.at(label); }

    QString lang;           ///< xml:lang of every file
    CXMLMetaData meta;
    QVector<sTopic_t> topics;
    QByteArray ids;         ///< the ids of all topics, one after the other
    /// Open-addressing hash table of topic positions (-1: free) for the ids handed out so far;
    /// four bytes a slot instead of a set of strings.
    QVector<int> idTable;
    int groupTopics = 0;
    int objectTopics = 0;
    int subObjectTopics = 0;
    QStringList labels;     ///< the fixed texts, translated once per export
    QVector<QByteArray> escapedLabels; ///< the same as element content, escaped once per export
    QByteArray href;        ///< hrefOf()'s result
    COdictDitaWriter writer;
};

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
    enum eTopicKind_t { E_TK_GROUP, E_TK_OBJECT, E_TK_SUBOBJECT };

    /// One topic of the package, in tree order (pre-order). The topics of a node's subtree are
    /// the ones from its position up to \a end, so children are found without lists of their own.
    struct sTopic_t {
        const COdictNode *node = nullptr;
        eTopicKind_t kind = E_TK_GROUP;
        QString id;  ///< topic id and file name without ".dita"
        int end = 0; ///< one past the last topic of the subtree
    };

    void plan();
    QString fileOf(int topic) const;
    QString hrefOf(int topic) const;
    QString titleOf(int topic) const;
    bool writeMap();
    bool writeFrontPage();
    bool writeGroup(int topic);
    bool writeObject(int topic);
    void writeProperties(const COdictObject &object);
    /// A table of the objects among the direct children of \a topic, each linked to its topic.
    void writeObjectTable(int topic);
    /// One table row with a cell per text (a list on the stack: rows are the most frequent call).
    void row(std::initializer_list<QString> cells);
    /// The translated fixed text \a label (an eLabel_t of the implementation).
    const QString &label(int label) const { return labels.at(label); }
    bool commit(const QString &fileName);

    QString directory;
    QString lang;           ///< xml:lang of every file
    CXMLMetaData meta;
    QVector<sTopic_t> topics;
    int groupTopics = 0;
    int objectTopics = 0;
    int subObjectTopics = 0;
    QStringList labels;     ///< the fixed texts, translated once per export
    COdictDitaWriter writer;
};

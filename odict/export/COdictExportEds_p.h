#pragma once

#include "COdictExportBase_p.h"

#include "NTypes.h"

class COdictObject;
struct sOdictCanOpenPlace_t;

/// State of one EDS export: the frame's lines, the object sections and what was left out.
class COdictExportEdsPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportEdsPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToEds(const QString &fileName);

    QString vendorName;
    QStringList leftOut;

private:
    /// One entry (a VAR or a sub-index) of an object section.
    struct sEntry_t {
        unsigned int subIndex = 0;
        QString name;
        unsigned int dataType = 0;
        QString access;
        QString low, high, value;
        bool pdo = false;
    };

    QStringList objectSection(unsigned int index, const COdictObject &object);
    bool entryOf(const COdictObject &object, NTypes::eTypes_t type, sEntry_t &entry);
    void leaveOut(const COdictObject &object, const QString &reason);
    void fileInfo(const QString &fileName);
    void deviceInfo(const QList<unsigned int> &indexes);
    QString entryName(unsigned int index, unsigned int subIndex) const;

    QStringList m_valueTexts; ///< enumeration and bit texts for the comments
};

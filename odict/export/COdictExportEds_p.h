#pragma once

#include "COdictExportBase_p.h"

#include "NTypes.h"

#include <QVector>

#include <functional>

class COdictObject;

/// One EDS export: a first pass finds the object sections and what is left out, later passes
/// write the comments and the sections one object at a time.
class COdictExportEdsPrivate : public COdictExportBasePrivate
{
public:
    explicit COdictExportEdsPrivate(COdict *odict) : COdictExportBasePrivate(odict) {}

    bool exportToEds(const QString &fileName);

    /// The text of the \a i-th object left out by the last export.
    QString leftOutAt(int i) const;

    QString vendorName;
    /// The texts of the objects left out, one after the other in UTF-8: a dictionary may have
    /// thousands, and these take half the memory of a list of strings.
    QByteArray leftOutTexts;
    QVector<int> leftOutEnds; ///< where each text ends in leftOutTexts

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
    /// The entries of one object section and its ObjectType (0x7 a VAR, else its sub-indexes).
    struct sEntries_t {
        unsigned int objectType = 0x7;
        QList<sEntry_t> list;
    };
    enum eCategory_t { E_C_MANDATORY, E_C_OPTIONAL, E_C_MANUFACTURER, E_C_COUNT };
    /// An object that yields a section.
    struct sSection_t {
        unsigned int index;
        const COdictObject *object;
        eCategory_t category;
    };

    /// The entries of \a object's section; false when it yields none.
    bool collect(const COdictObject &object, sEntries_t &entries);
    bool entryOf(const COdictObject &object, NTypes::eTypes_t type, sEntry_t &entry);
    /// The enumeration and bit texts of a section's object and sub-objects, one comment each.
    void valueTexts(const sSection_t &section, const sEntries_t &entries,
                    const std::function<void(const QString &)> &add) const;
    void writeSection(COdictLineSink &out, const sSection_t &section, const sEntries_t &entries) const;
    /// Notes \a object as left out during the first pass; the later passes see the same objects
    /// again and note nothing.
    void leaveOut(const COdictObject &object, const QString &reason);
    void fileInfo(COdictLineSink &out, const QString &fileName) const;
    void deviceInfo(COdictLineSink &out, const QList<unsigned int> &indexes) const;
    QString entryName(unsigned int index, unsigned int subIndex) const;

    bool m_noting = false;
};

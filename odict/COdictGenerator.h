#pragma once

#include "NkrOdict.h"
#include "krodict_export.h"

#include <QScopedPointer>
#include <QVariant>

class COdict;
class COdictObject;
class COdictGeneratorPrivate;

/// Builds realistic dictionaries of any object kind in memory, the same for the same seed on
/// every platform: groups nested one to three deep, sub-objects, enumerations, bit sets, ids in
/// every range the exporters treat differently, texts in German and English. For tests,
/// benchmarks and "odict generate"; what it builds saves and loads again without a warning.
class KRODICT_EXPORT COdictGenerator
{
public:
    /// A generator whose whole output follows from \a seed.
    explicit COdictGenerator(quint64 seed);
    ~COdictGenerator();

    /// Fills the empty \a dictionary with \a objects objects (sub-objects not counted), a
    /// dictionary node, groups, the file head and, for editor dictionaries, history and data
    /// structures. False, with nothing changed, when the dictionary has no tree, already holds
    /// a dictionary node or \a objects is negative.
    bool generate(COdict &dictionary, int objects);

    /// The next value that fits \a object's data type and size (bytes for arrays), as the data
    /// files and parameter sets carry it; null for a type without values.
    QVariant value(const COdictObject &object);

    /// The next number of the generator's sequence (SplitMix64), for callers that shape their
    /// own cases from the same seed.
    quint64 next();

private:
    Q_DISABLE_COPY(COdictGenerator)
    const QScopedPointer<COdictGeneratorPrivate> d;
};

#include "ICOdictStorage_p.h"

namespace {
const ICOdictStorage *registered = nullptr; // constant-initialised: set before any dynamic initialiser runs
}

ICOdictStorage::~ICOdictStorage() = default;

QString ICOdictStorage::dictionaryType()
{
    return QStringLiteral("KiroObjectDictionary");
}

QString ICOdictStorage::parameterSetType()
{
    return QStringLiteral("KiroParameterSets");
}

const ICOdictStorage *ICOdictStorage::current()
{
    return registered;
}

void ICOdictStorage::setCurrent(const ICOdictStorage *storage)
{
    registered = storage;
}

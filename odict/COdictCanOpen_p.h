#pragma once

#include "COdictCanOpen.h"

/// The three lists of a CANopen placement.
class COdictCanOpenMapPrivate
{
public:
    QList<sOdictCanOpenPlace_t> placed;
    QList<sOdictCanOpenPlace_t> collisions;
    QList<sOdictCanOpenPlace_t> withoutIndex;
};

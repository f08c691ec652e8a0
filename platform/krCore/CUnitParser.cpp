#include "CUnitParser.h"

#include <QHash>

namespace {

constexpr unsigned int kNoUnit = 0;
constexpr unsigned int kNoUnitAlt = 0xFFFFFFFFu;

struct UnitInfo {
    unsigned int code;
    const char *text; // UTF-8
    unsigned int linear; // linear counterpart of a rotary unit, else 0
};

// Codes are stored in dictionary files: never renumber, only append. Rotary units name their
// linear counterpart, which is used when a drive moves a linear axis.
const UnitInfo kUnits[] = {
    // position
    {1, "inc", 0},
    {2, "rev", 3},
    {3, "mm", 0},
    {4, "\u00B0", 0}, // electrical angle: the same for rotary and linear motors
    {5, "inc/rev", 6},
    {6, "inc/mm", 0},
    // speed, acceleration, frequency
    {10, "rpm", 11},
    {11, "mm/s", 0},
    {12, "rpm/s", 13},
    {13, "mm/s\u00B2", 0},
    {14, "Hz", 0},
    {15, "kHz", 0},
    // torque, force, inertia, motor constants
    {20, "Nm", 21},
    {21, "N", 0},
    {22, "Nm/A", 23},
    {23, "N/A", 0},
    {24, "kgm\u00B2", 25},
    {25, "kg", 0},
    {26, "V/krpm", 27},
    {27, "Vs/m", 0},
    // electrical
    {30, "V", 0},
    {31, "mV", 0},
    {32, "A", 0},
    {33, "mA", 0},
    {34, "W", 0},
    {35, "kW", 0},
    {36, "Ohm", 0},
    {37, "mOhm", 0},
    {38, "mH", 0},
    // time
    {40, "ms", 0},
    {41, "\u00B5s", 0}, // micro sign U+00B5
    {42, "s", 0},
    {43, "min", 0},
    {44, "h", 0},
    // other
    {50, "\u00B0C", 0},
    {51, "%", 0},
    {52, "bar", 0},
};

struct UnitTable {
    QHash<unsigned int, int> byCode; // index into kUnits
    QHash<QString, unsigned int> byText;
    QHash<unsigned int, QString> texts;

    UnitTable()
    {
        for (int i = 0; i < int(sizeof(kUnits) / sizeof(kUnits[0])); ++i) {
            const QString text = QString::fromUtf8(kUnits[i].text);
            byCode.insert(kUnits[i].code, i);
            byText.insert(text, kUnits[i].code);
            texts.insert(kUnits[i].code, text);
        }
    }
};

const UnitTable &table()
{
    static const UnitTable t;
    return t;
}

} // namespace

QString CUnitParser::unitText(unsigned int unit)
{
    return table().texts.value(unit);
}

unsigned int CUnitParser::textToUnit(const QString &text)
{
    return table().byText.value(text, kNoUnitAlt);
}

unsigned int CUnitParser::toLinear(unsigned int unit)
{
    const int index = table().byCode.value(unit, -1);
    if (index < 0 || kUnits[index].linear == 0)
        return unit;
    return kUnits[index].linear;
}

bool CUnitParser::isRotary(unsigned int unit)
{
    const int index = table().byCode.value(unit, -1);
    return index >= 0 && kUnits[index].linear != 0;
}

bool CUnitParser::isKnown(unsigned int unit)
{
    return unit == kNoUnit || unit == kNoUnitAlt || table().byCode.contains(unit);
}

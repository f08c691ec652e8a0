// demo: builds the bundled demo dictionary of a fictitious servo drive in code and saves it.
// examples/demo_drive.xml is this command's output; a test keeps the two in step.
#include "Commands.h"

#include <CDataTypeParser.h>
#include <CMemoryLogfile.h>
#include <COdictEdit.h>
#include <COdictEditorObject.h>
#include <COdictObjectTree.h>
#include <CUnitParser.h>

#include <QCommandLineParser>

using namespace NkrOdict;
using NTypes::eTypes_t;

namespace {

// Access types: which firmware data structure describes an object.
enum eStructure_t { S_STD = 1, S_FLOAT = 2, S_TEXT = 3, S_RECORD = 4 };

// Access-right words: read and write for operator, service and field bus, or read only.
constexpr unsigned int RW = E_AR_READ_OPERATOR | E_AR_WRITE_OPERATOR | E_AR_READ_SERVICE | E_AR_WRITE_SERVICE
    | E_AR_READ_FIELDBUS | E_AR_WRITE_FIELDBUS;
constexpr unsigned int RO = E_AR_READ_OPERATOR | E_AR_READ_SERVICE | E_AR_READ_FIELDBUS;

class CDemoBuilder
{
public:
    explicit CDemoBuilder(COdictEdit &dictionary) : m_tree(*dictionary.objectTree()) {}

    COdictNode *dictionaryNode(const QString &name)
    {
        COdictNode *node = m_tree.createDictionaryNode(name);
        m_tree.rootNode()->appendChild(node);
        return node;
    }

    COdictNode *group(COdictNode *parent, const QString &name, const QString &uiName)
    {
        COdictNode *node = m_tree.createGroupNode(name, uiName);
        parent->appendChild(node);
        return node;
    }

    /// A parameter or actual value with limits; \a size 0 means the type's size.
    COdictEditorObject object(unsigned int id, const QString &name, const QString &uiName, eTypes_t type,
                              const QString &min = QString(), const QString &max = QString(),
                              const QString &def = QString(), unsigned int size = 0)
    {
        COdictEditorObject o;
        o.setId(id);
        o.setName(name);
        o.setUiName(uiName);
        o.setDataType(type);
        o.setDataSize(size ? size : CDataTypeParser::typeSize(type));
        const quint16 element = CDataTypeParser::typeSize(type);
        o.setArrayLength(element ? o.dataSize() / element : 1);
        o.setObjectUsage(E_OU_PARAMETER);
        o.setAccessRights(RW);
        o.setUserlevelRead(1);
        o.setUserlevelWrite(2);
        o.setUserlevelVisible(1);
        o.setUnit(0);
        o.setYUnit(0);
        o.setDS402Id(0);
        o.setProfinetId(0);
        o.setVersion(NTypes::uVersion_t::fromParts(1, 26, 0));
        const bool isFloat = type == NTypes::E_F32 || type == NTypes::E_F64;
        o.setAccessType(isFloat ? S_FLOAT : (COdictObject::isComplexDataType(type) ? S_RECORD : S_STD));
        if (type == NTypes::E_VSTRING)
            o.setAccessType(S_TEXT);
        o.setMinValue(min.isEmpty() ? CDataTypeParser::minTypeValue(type) : CVariant(min, type));
        o.setMaxValue(max.isEmpty() ? CDataTypeParser::maxTypeValue(type) : CVariant(max, type));
        o.setDefaultValue(CVariant(def.isEmpty() && !o.isComplexDataType() ? QStringLiteral("0") : def, type));
        o.setDigits(isFloat ? 2 : -1);
        o.setFwVariablename(QStringLiteral("g_") + name.toLower());
        o.setShortDescription(uiName);
        return o;
    }

    COdictEditorObject actual(unsigned int id, const QString &name, const QString &uiName, eTypes_t type,
                              const char *unit = nullptr)
    {
        COdictEditorObject o = object(id, name, uiName, type);
        o.setObjectUsage(E_OU_ACTUAL);
        o.setAccessRights(RO);
        o.setUserlevelWrite(5);
        if (unit)
            o.setUnit(CUnitParser::textToUnit(QString::fromUtf8(unit)));
        return o;
    }

    COdictNode *add(COdictNode *parent, const COdictEditorObject &o)
    {
        bool ok = false;
        COdictNode *node = m_tree.createObjectNode(o, E_IT_OBJECT, &ok);
        if (!ok) {
            delete node;
            ++m_failures;
            return nullptr;
        }
        parent->appendChild(node);
        return node;
    }

    /// Sub-object \a subId of the object in \a owner, a copy of \a o with that sub-id.
    void addSub(COdictNode *owner, COdictEditorObject o, unsigned int subId)
    {
        COdictObject *ownerObject = owner->dataPtr()->objectPtr();
        o.setId(ownerObject->id());
        o.setSubId(subId);
        bool ok = false;
        COdictNode *node = m_tree.createObjectNode(o, E_IT_SUBOBJECT, &ok);
        if (!ok) {
            delete node;
            ++m_failures;
            return;
        }
        owner->appendChild(node);
        ownerObject->addSubId(subId);
    }

    int failures() const { return m_failures; }

private:
    COdictObjectTree &m_tree;
    int m_failures = 0;
};

COdictObjectEnum enumeration(std::initializer_list<std::pair<long long, const char *>> entries)
{
    COdictObjectEnum e;
    for (const auto &[value, text] : entries)
        e.insert(value, QString::fromUtf8(text));
    return e;
}

COdictObjectBitSet bitSet(std::initializer_list<std::pair<unsigned int, const char *>> entries)
{
    COdictObjectBitSet b;
    for (const auto &[pos, text] : entries)
        b.insert(pos, QString::fromUtf8(text));
    return b;
}

unsigned int unit(const char *text)
{
    return CUnitParser::textToUnit(QString::fromUtf8(text));
}

COdictDataStructure::SDataStructureMember_t member(const char *cType, const char *name,
                                                  COdictDataStructure::eMemberSource_t source, const char *literal = "")
{
    COdictDataStructure::SDataStructureMember_t m;
    m.cType = QLatin1String(cType);
    m.name = QLatin1String(name);
    m.source = source;
    m.literal = QLatin1String(literal);
    return m;
}

void addDataStructures(COdictDataStructure &list)
{
    using S = COdictDataStructure;
    S::SDataStructure_t std{QStringLiteral("Std"), QStringLiteral("Standard"), QStringLiteral("integer parameters and values up to 32 bits"), S_STD, {}};
    std.members = {member("uint32_t", "id", S::E_MS_ID), member("uint16_t", "size", S::E_MS_DATASIZE),
                   member("uint8_t", "type", S::E_MS_DATATYPE), member("uint32_t", "access", S::E_MS_ACCESSRIGHTS),
                   member("int64_t", "minimum", S::E_MS_MIN, "0"), member("int64_t", "maximum", S::E_MS_MAX, "0"),
                   member("int64_t", "def", S::E_MS_DEFAULT, "0")};
    S::SDataStructure_t flt{QStringLiteral("Float"), QStringLiteral("Gleitkomma"), QStringLiteral("floating-point parameters and values"), S_FLOAT, {}};
    flt.members = {member("uint32_t", "id", S::E_MS_ID), member("uint16_t", "size", S::E_MS_DATASIZE),
                   member("uint32_t", "access", S::E_MS_ACCESSRIGHTS), member("float", "minimum", S::E_MS_MIN, "0.0f"),
                   member("float", "maximum", S::E_MS_MAX, "0.0f"), member("float", "def", S::E_MS_DEFAULT, "0.0f")};
    S::SDataStructure_t text{QStringLiteral("Text"), QStringLiteral("Text"), QStringLiteral("visible strings"), S_TEXT, {}};
    text.members = {member("uint32_t", "id", S::E_MS_ID), member("uint16_t", "size", S::E_MS_DATASIZE),
                    member("const char *", "name", S::E_MS_NAME)};
    S::SDataStructure_t record{QStringLiteral("Record"), QStringLiteral("Verbund"), QStringLiteral("arrays, pairs and DS402 records"), S_RECORD, {}};
    record.members = {member("uint32_t", "id", S::E_MS_ID), member("uint16_t", "size", S::E_MS_DATASIZE),
                      member("uint8_t", "type", S::E_MS_DATATYPE), member("uint16_t", "elements", S::E_MS_ARRAYLENGTH)};
    S::SDataStructure_t reserved{QStringLiteral("Reserved"), QStringLiteral("Reserviert"), QStringLiteral("not generated"), -1, {}};
    for (const auto &s : {std, flt, text, record, reserved})
        list.append(s);
}

void buildDemo(COdictEdit &dict, CDemoBuilder &b)
{
    using namespace NTypes;
    COdictNode *top = b.dictionaryNode(QStringLiteral("DemoDrive"));

    // -- device identification --
    COdictNode *device = b.group(top, QStringLiteral("DEVICE"), QStringLiteral("Gerät"));
    COdictNode *ident = b.group(device, QStringLiteral("IDENTIFICATION"), QStringLiteral("Identifikation"));
    b.add(ident, b.actual(1, QStringLiteral("DEVICE_TYPE"), QStringLiteral("Gerätetyp"), E_U32));
    b.add(ident, b.actual(2, QStringLiteral("SERIAL_NUMBER"), QStringLiteral("Seriennummer"), E_U32));
    b.add(ident, b.actual(3, QStringLiteral("DEVICE_NAME"), QStringLiteral("Gerätename"), E_VSTRING));
    b.add(ident, b.actual(4, QStringLiteral("HARDWARE_VERSION"), QStringLiteral("Hardware-Version"), E_U16));
    b.add(ident, b.actual(5, QStringLiteral("FIRMWARE_VERSION"), QStringLiteral("Firmware-Version"), E_U32));
    b.add(ident, b.actual(6, QStringLiteral("BOOTLOADER_VERSION"), QStringLiteral("Bootloader-Version"), E_U32));
    COdictNode *hours = b.group(device, QStringLiteral("COUNTERS"), QStringLiteral("Zähler"));
    b.add(hours, b.actual(10, QStringLiteral("OPERATING_HOURS"), QStringLiteral("Betriebsstunden"), E_U32, "h"));
    b.add(hours, b.actual(11, QStringLiteral("POWER_ON_COUNT"), QStringLiteral("Einschaltzähler"), E_U32));
    b.add(hours, b.actual(12, QStringLiteral("ENABLE_TIME"), QStringLiteral("Freigabezeit"), E_TIME, "ms"));

    // -- power stage: the objects a device database narrows --
    COdictNode *power = b.group(top, QStringLiteral("POWER_STAGE"), QStringLiteral("Leistungsteil"));
    COdictEditorObject pwm = b.object(206, QStringLiteral("PWM_FREQUENCY"), QStringLiteral("PWM-Frequenz"), E_U16, QStringLiteral("1"), QStringLiteral("8"), QStringLiteral("2"));
    pwm.setEnumData(enumeration({{1, "4 kHz"}, {2, "8 kHz"}, {4, "16 kHz"}, {8, "32 kHz"}}));
    b.add(power, pwm);
    COdictEditorObject chopper = b.object(207, QStringLiteral("BRAKE_CHOPPER_MODE"), QStringLiteral("Bremschopper"), E_U16, QStringLiteral("0"), QStringLiteral("4"), QStringLiteral("1"));
    chopper.setEnumData(enumeration({{0, "Aus"}, {1, "Intern"}, {2, "Extern"}, {4, "Intern und extern"}}));
    b.add(power, chopper);
    COdictEditorObject dcMode = b.object(231, QStringLiteral("DC_LINK_MODE"), QStringLiteral("Zwischenkreismodus"), E_U16, QStringLiteral("0"), QStringLiteral("2"));
    dcMode.setEnumData(enumeration({{0, "Automatisch"}, {1, "Kleinspannung"}, {2, "Netzspannung"}}));
    b.add(power, dcMode);
    COdictEditorObject under = b.object(235, QStringLiteral("DC_LINK_UNDERVOLTAGE"), QStringLiteral("Unterspannungsschwelle"), E_F32, QStringLiteral("0"), QStringLiteral("800"), QStringLiteral("180"));
    under.setUnit(unit("V"));
    b.add(power, under);
    COdictEditorObject over = b.object(236, QStringLiteral("DC_LINK_OVERVOLTAGE"), QStringLiteral("Überspannungsschwelle"), E_F32, QStringLiteral("0"), QStringLiteral("900"), QStringLiteral("820"));
    over.setUnit(unit("V"));
    b.add(power, over);
    COdictEditorObject maxCurrent = b.object(237, QStringLiteral("MAX_CURRENT"), QStringLiteral("Maximalstrom"), E_F32, QStringLiteral("0"), QStringLiteral("100"), QStringLiteral("10"));
    maxCurrent.setUnit(unit("A"));
    b.add(power, maxCurrent);
    b.add(power, b.actual(238, QStringLiteral("DC_LINK_VOLTAGE"), QStringLiteral("Zwischenkreisspannung"), E_F32, "V"));
    b.add(power, b.actual(239, QStringLiteral("HEATSINK_TEMPERATURE"), QStringLiteral("Kühlkörpertemperatur"), E_I16, "°C"));

    // -- motor --
    COdictNode *motor = b.group(top, QStringLiteral("MOTOR"), QStringLiteral("Motor"));
    COdictNode *plate = b.group(motor, QStringLiteral("NAMEPLATE"), QStringLiteral("Typenschild"));
    const struct {
        unsigned int id;
        const char *name;
        const char *ui;
        const char *unit;
        const char *max;
        const char *def;
    } nameplate[] = {
        {300, "MOTOR_RATED_CURRENT", "Motornennstrom", "A", "200", "4.5"},
        {301, "MOTOR_RATED_VOLTAGE", "Motornennspannung", "V", "800", "400"},
        {302, "MOTOR_RATED_SPEED", "Motornenndrehzahl", "rpm", "20000", "3000"},
        {303, "MOTOR_RATED_TORQUE", "Motornennmoment", "Nm", "500", "2.4"},
        {304, "MOTOR_TORQUE_CONSTANT", "Drehmomentkonstante", "Nm/A", "50", "0.53"},
        {305, "MOTOR_INERTIA", "Trägheitsmoment", "kgm²", "10", "0.00012"},
        {306, "MOTOR_RESISTANCE", "Wicklungswiderstand", "Ohm", "100", "2.1"},
        {307, "MOTOR_INDUCTANCE", "Wicklungsinduktivität", "mH", "500", "8.4"},
        {308, "MOTOR_MAX_SPEED", "Maximaldrehzahl", "rpm", "30000", "6000"},
    };
    for (const auto &p : nameplate) {
        COdictEditorObject o = b.object(p.id, QLatin1String(p.name), QString::fromUtf8(p.ui), E_F32, QStringLiteral("0"), QLatin1String(p.max), QLatin1String(p.def));
        o.setUnit(unit(p.unit));
        b.add(plate, o);
    }
    COdictEditorObject poles = b.object(309, QStringLiteral("MOTOR_POLE_PAIRS"), QStringLiteral("Polpaarzahl"), E_U8, QStringLiteral("1"), QStringLiteral("64"), QStringLiteral("4"));
    b.add(plate, poles);
    COdictNode *encoder = b.group(motor, QStringLiteral("ENCODER"), QStringLiteral("Geber"));
    COdictEditorObject encoderType = b.object(320, QStringLiteral("ENCODER_TYPE"), QStringLiteral("Gebertyp"), E_U8, QStringLiteral("0"), QStringLiteral("5"), QStringLiteral("1"));
    encoderType.setEnumData(enumeration({{0, "Kein Geber"}, {1, "Resolver"}, {2, "Sin/Cos"}, {3, "EnDat"}, {4, "HIPERFACE"}, {5, "Inkremental TTL"}}));
    b.add(encoder, encoderType);
    COdictEditorObject resolution = b.object(321, QStringLiteral("ENCODER_RESOLUTION"), QStringLiteral("Geberauflösung"), E_U32, QStringLiteral("1"), QString(), QStringLiteral("4096"));
    resolution.setUnit(unit("inc/rev"));
    b.add(encoder, resolution);
    b.add(encoder, b.actual(322, QStringLiteral("ENCODER_POSITION"), QStringLiteral("Geberposition"), E_I32, "inc"));
    COdictEditorObject encoderStatus = b.actual(323, QStringLiteral("ENCODER_STATUS"), QStringLiteral("Geberstatus"), E_U16);
    encoderStatus.setBitSetData(bitSet({{0, "Signal ok"}, {1, "Amplitude low"}, {2, "Amplitude high"}, {3, "Communication error"}, {8, "Referenced"}}));
    b.add(encoder, encoderStatus);

    // -- control loops, with characteristic curves as X/Y pairs --
    COdictNode *control = b.group(top, QStringLiteral("CONTROL"), QStringLiteral("Regelung"));
    const struct {
        const char *group;
        const char *ui;
        unsigned int first;
        const char *prefix;
    } loops[] = {
        {"CURRENT_LOOP", "Stromregler", 400, "CURRENT"},
        {"SPEED_LOOP", "Drehzahlregler", 410, "SPEED"},
        {"POSITION_LOOP", "Lageregler", 420, "POSITION"},
    };
    for (const auto &loop : loops) {
        COdictNode *g = b.group(control, QLatin1String(loop.group), QString::fromUtf8(loop.ui));
        const QString prefix = QLatin1String(loop.prefix);
        b.add(g, b.object(loop.first, prefix + QStringLiteral("_KP"), QStringLiteral("Verstärkung"), E_F32, QStringLiteral("0"), QStringLiteral("1000"), QStringLiteral("1.5")));
        b.add(g, b.object(loop.first + 1, prefix + QStringLiteral("_TN"), QStringLiteral("Nachstellzeit"), E_F32, QStringLiteral("0"), QStringLiteral("1000"), QStringLiteral("10")));
        b.add(g, b.object(loop.first + 2, prefix + QStringLiteral("_FILTER"), QStringLiteral("Filterzeit"), E_F32, QStringLiteral("0"), QStringLiteral("100"), QStringLiteral("0.5")));
        b.add(g, b.object(loop.first + 3, prefix + QStringLiteral("_FEEDFORWARD"), QStringLiteral("Vorsteuerung"), E_U16, QStringLiteral("0"), QStringLiteral("100"), QStringLiteral("100")));
        b.add(g, b.actual(loop.first + 4, prefix + QStringLiteral("_ERROR"), QStringLiteral("Regelabweichung"), E_F32));
    }
    COdictNode *curves = b.group(control, QStringLiteral("CHARACTERISTICS"), QStringLiteral("Kennlinien"));
    COdictEditorObject torqueCurve = b.object(430, QStringLiteral("TORQUE_CHARACTERISTIC"), QStringLiteral("Momentenkennlinie"), E_XY, QString(), QString(), QString(), 32);
    torqueCurve.setXMinValue(CVariant(QStringLiteral("0"), E_I32));
    torqueCurve.setYMinValue(CVariant(QStringLiteral("-1000"), E_I32));
    torqueCurve.setXMaxValue(CVariant(QStringLiteral("20000"), E_I32));
    torqueCurve.setYMaxValue(CVariant(QStringLiteral("1000"), E_I32));
    torqueCurve.setXUnit(unit("rpm"));
    torqueCurve.setYUnit(unit("%"));
    b.add(curves, torqueCurve);
    COdictEditorObject friction = b.object(431, QStringLiteral("FRICTION_COMPENSATION"), QStringLiteral("Reibungskompensation"), E_XY, QString(), QString(), QString(), 16);
    friction.setXDefaultValue(CVariant(QStringLiteral("100"), E_I32));
    friction.setYDefaultValue(CVariant(QStringLiteral("5"), E_I32));
    friction.setObjectUsage(E_OU_DATABASE_PARAMETER | E_OU_PARAMETER);
    b.add(curves, friction);

    // -- inputs and outputs: one function selector per terminal --
    COdictNode *io = b.group(top, QStringLiteral("IO"), QStringLiteral("Ein-/Ausgänge"));
    COdictNode *inputs = b.group(io, QStringLiteral("DIGITAL_INPUTS"), QStringLiteral("Digitaleingänge"));
    const COdictObjectEnum inputFunctions = enumeration({{0, "Keine Funktion"}, {1, "Freigabe"}, {2, "Endschalter positiv"},
                                                        {3, "Endschalter negativ"}, {4, "Referenzschalter"}, {5, "Fehlerquittierung"},
                                                        {6, "Schnellhalt"}, {7, "Tippen positiv"}, {8, "Tippen negativ"}});
    for (unsigned int i = 0; i < 12; ++i) {
        COdictEditorObject o = b.object(500 + i, QStringLiteral("DIN%1_FUNCTION").arg(i), QStringLiteral("Funktion DIN%1").arg(i), E_U8, QStringLiteral("0"), QStringLiteral("8"));
        o.setEnumData(inputFunctions);
        b.add(inputs, o);
        b.add(inputs, b.object(520 + i, QStringLiteral("DIN%1_DEBOUNCE").arg(i), QStringLiteral("Entprellzeit DIN%1").arg(i), E_U16, QStringLiteral("0"), QStringLiteral("1000"), QStringLiteral("2")));
    }
    COdictEditorObject inputState = b.actual(540, QStringLiteral("DIN_STATE"), QStringLiteral("Zustand Digitaleingänge"), E_U16);
    inputState.setBitSetData(bitSet({{0, "DIN0"}, {1, "DIN1"}, {2, "DIN2"}, {3, "DIN3"}, {4, "DIN4"}, {5, "DIN5"},
                                     {6, "DIN6"}, {7, "DIN7"}, {8, "DIN8"}, {9, "DIN9"}, {10, "DIN10"}, {11, "DIN11"}}));
    b.add(inputs, inputState);
    COdictNode *outputs = b.group(io, QStringLiteral("DIGITAL_OUTPUTS"), QStringLiteral("Digitalausgänge"));
    const COdictObjectEnum outputFunctions = enumeration({{0, "Keine Funktion"}, {1, "Betriebsbereit"}, {2, "Fehler"}, {3, "Bremse"}, {4, "Sollwert erreicht"}});
    for (unsigned int i = 0; i < 8; ++i) {
        COdictEditorObject o = b.object(550 + i, QStringLiteral("DOUT%1_FUNCTION").arg(i), QStringLiteral("Funktion DOUT%1").arg(i), E_U8, QStringLiteral("0"), QStringLiteral("4"));
        o.setEnumData(outputFunctions);
        b.add(outputs, o);
    }
    COdictNode *analog = b.group(io, QStringLiteral("ANALOG"), QStringLiteral("Analog"));
    for (unsigned int i = 0; i < 2; ++i) {
        COdictEditorObject scale = b.object(570 + 4 * i, QStringLiteral("AIN%1_SCALE").arg(i), QStringLiteral("Skalierung AIN%1").arg(i), E_F32, QStringLiteral("-1000"), QStringLiteral("1000"), QStringLiteral("1"));
        b.add(analog, scale);
        COdictEditorObject offset = b.object(571 + 4 * i, QStringLiteral("AIN%1_OFFSET").arg(i), QStringLiteral("Offset AIN%1").arg(i), E_F32, QStringLiteral("-10"), QStringLiteral("10"));
        offset.setUnit(unit("V"));
        b.add(analog, offset);
        b.add(analog, b.actual(572 + 4 * i, QStringLiteral("AIN%1_VALUE").arg(i), QStringLiteral("Wert AIN%1").arg(i), E_F32, "V"));
    }

    // -- diagnosis: error history with sub-objects --
    COdictNode *diagnosis = b.group(top, QStringLiteral("DIAGNOSIS"), QStringLiteral("Diagnose"));
    b.add(diagnosis, b.actual(600, QStringLiteral("ERROR_CODE"), QStringLiteral("Fehlercode"), E_U16));
    COdictEditorObject warnings = b.actual(601, QStringLiteral("WARNING_WORD"), QStringLiteral("Warnungen"), E_U32);
    warnings.setBitSetData(bitSet({{0, "Übertemperatur Motor"}, {1, "Übertemperatur Gerät"}, {2, "I²t"}, {3, "Unterspannung"}, {4, "Schleppfehler"}}));
    b.add(diagnosis, warnings);
    COdictNode *errorHistory = b.add(diagnosis, b.actual(602, QStringLiteral("ERROR_HISTORY"), QStringLiteral("Fehlerspeicher"), E_U8));
    for (unsigned int i = 0; i < 10; ++i)
        b.addSub(errorHistory, b.actual(602, QStringLiteral("ERROR_HISTORY_%1").arg(i), QStringLiteral("Fehler %1").arg(i), E_U32), i);

    // -- communication objects (0x1000 and up) --
    COdictNode *communication = b.group(top, QStringLiteral("COMMUNICATION"), QStringLiteral("Kommunikation"));
    COdictNode *ds301 = b.group(communication, QStringLiteral("DS301"), QStringLiteral("Kommunikationsprofil"));
    b.add(ds301, b.actual(0x1000, QStringLiteral("CO_DEVICE_TYPE"), QStringLiteral("Device type"), E_U32));
    COdictEditorObject errorRegister = b.actual(0x1001, QStringLiteral("CO_ERROR_REGISTER"), QStringLiteral("Error register"), E_U8);
    errorRegister.setBitSetData(bitSet({{0, "Generic"}, {1, "Current"}, {2, "Voltage"}, {3, "Temperature"}, {4, "Communication"}, {7, "Manufacturer"}}));
    b.add(ds301, errorRegister);
    b.add(ds301, b.actual(0x1008, QStringLiteral("CO_DEVICE_NAME"), QStringLiteral("Manufacturer device name"), E_VSTRING));
    COdictNode *identity = b.add(ds301, b.actual(0x1018, QStringLiteral("CO_IDENTITY"), QStringLiteral("Identity object"), E_U8));
    const char *identityParts[] = {"VENDOR_ID", "PRODUCT_CODE", "REVISION", "SERIAL"};
    for (unsigned int i = 0; i < 4; ++i)
        b.addSub(identity, b.actual(0x1018, QStringLiteral("CO_IDENTITY_%1").arg(QLatin1String(identityParts[i])), QStringLiteral("Identity %1").arg(i + 1), E_U32), i + 1);
    COdictNode *pdo = b.group(communication, QStringLiteral("PDO_MAPPING"), QStringLiteral("PDO-Mapping"));
    for (unsigned int p = 0; p < 2; ++p) {
        const unsigned int rx = 0x1600 + p;
        COdictNode *rxNode = b.add(pdo, b.object(rx, QStringLiteral("CO_RXPDO%1_MAPPING").arg(p + 1), QStringLiteral("RxPDO %1").arg(p + 1), E_U8, QStringLiteral("0"), QStringLiteral("8")));
        for (unsigned int s = 1; s <= 4; ++s)
            b.addSub(rxNode, b.object(rx, QStringLiteral("CO_RXPDO%1_ENTRY%2").arg(p + 1).arg(s), QStringLiteral("Eintrag %1").arg(s), E_U32), s);
        const unsigned int tx = 0x1A00 + p;
        COdictNode *txNode = b.add(pdo, b.object(tx, QStringLiteral("CO_TXPDO%1_MAPPING").arg(p + 1), QStringLiteral("TxPDO %1").arg(p + 1), E_U8, QStringLiteral("0"), QStringLiteral("8")));
        for (unsigned int s = 1; s <= 4; ++s)
            b.addSub(txNode, b.object(tx, QStringLiteral("CO_TXPDO%1_ENTRY%2").arg(p + 1).arg(s), QStringLiteral("Eintrag %1").arg(s), E_U32), s);
    }

    // -- manufacturer area from 0x2000: DS402 record types, user parameters from 0x2400 (clear of
    //    the ids below 0x1000, which appear at 0x2000 + id in the CANopen numbering) --
    COdictNode *user = b.group(top, QStringLiteral("APPLICATION"), QStringLiteral("Applikation"));
    COdictNode *userParameters = b.group(user, QStringLiteral("USER_PARAMETERS"), QStringLiteral("Anwenderparameter"));
    for (unsigned int i = 0; i < 32; ++i)
        b.add(userParameters, b.object(0x2400 + i, QStringLiteral("USER_PARAMETER_%1").arg(i), QStringLiteral("Anwenderparameter %1").arg(i), E_I32));
    COdictNode *records = b.group(user, QStringLiteral("RECORDS"), QStringLiteral("Verbunde"));
    b.add(records, b.object(0x2100, QStringLiteral("POSITION_RANGE"), QStringLiteral("Positionsbereich"), E_DS402_I32ARRAY, QString(), QString(), QString(), 8));
    b.add(records, b.object(0x2101, QStringLiteral("MOTION_PROFILE"), QStringLiteral("Bewegungsprofil"), E_DS402_RECORD, QString(), QString(), QString(), 12));
    b.add(records, b.object(0x2102, QStringLiteral("CURRENT_LIMITS"), QStringLiteral("Stromgrenzen"), E_DS402_U16ARRAY, QString(), QString(), QString(), 8));
    b.add(records, b.object(0x2103, QStringLiteral("GEAR_RATIOS"), QStringLiteral("Getriebefaktoren"), E_DS402_F32ARRAY, QString(), QString(), QString(), 8));
    b.add(records, b.object(0x2104, QStringLiteral("SPEED_TABLE"), QStringLiteral("Drehzahltabelle"), E_DS402_U32ARRAY, QString(), QString(), QString(), 16));
    b.add(records, b.object(0x2105, QStringLiteral("TORQUE_TABLE"), QStringLiteral("Momententabelle"), E_DS402_I16ARRAY, QString(), QString(), QString(), 8));

    // -- drive profile objects (0x6000 to 0x60FF) --
    COdictNode *profile = b.group(top, QStringLiteral("DS402"), QStringLiteral("Antriebsprofil"));
    COdictNode *state = b.group(profile, QStringLiteral("DEVICE_CONTROL"), QStringLiteral("Gerätesteuerung"));
    COdictEditorObject controlword = b.object(0x6040, QStringLiteral("CONTROLWORD"), QStringLiteral("Steuerwort"), E_U16);
    controlword.setBitSetData(bitSet({{0, "Switch on"}, {1, "Enable voltage"}, {2, "Quick stop"}, {3, "Enable operation"},
                                      {4, "Operation mode specific 1"}, {5, "Operation mode specific 2"}, {6, "Operation mode specific 3"},
                                      {7, "Fault reset"}, {8, "Halt"}}));
    b.add(state, controlword);
    COdictEditorObject statusword = b.actual(0x6041, QStringLiteral("STATUSWORD"), QStringLiteral("Statuswort"), E_U16);
    statusword.setBitSetData(bitSet({{0, "Ready to switch on"}, {1, "Switched on"}, {2, "Operation enabled"}, {3, "Fault"},
                                     {4, "Voltage enabled"}, {5, "Quick stop"}, {6, "Switch on disabled"}, {7, "Warning"},
                                     {9, "Remote"}, {10, "Target reached"}, {11, "Internal limit active"}}));
    b.add(state, statusword);
    COdictEditorObject modes = b.object(0x6060, QStringLiteral("MODES_OF_OPERATION"), QStringLiteral("Betriebsart"), E_I8, QStringLiteral("-1"), QStringLiteral("10"), QStringLiteral("1"));
    modes.setEnumData(enumeration({{-1, "Herstellerspezifisch"}, {1, "Profile position"}, {3, "Profile velocity"},
                                   {4, "Profile torque"}, {6, "Homing"}, {8, "Cyclic sync position"},
                                   {9, "Cyclic sync velocity"}, {10, "Cyclic sync torque"}}));
    b.add(state, modes);
    COdictEditorObject modesDisplay = b.actual(0x6061, QStringLiteral("MODES_OF_OPERATION_DISPLAY"), QStringLiteral("Betriebsartanzeige"), E_I8);
    modesDisplay.setEnumData(modes.enumData());
    b.add(state, modesDisplay);
    COdictNode *motion = b.group(profile, QStringLiteral("MOTION"), QStringLiteral("Bewegung"));
    const struct {
        unsigned int id;
        const char *name;
        const char *ui;
        eTypes_t type;
        bool actual;
        const char *unit;
    } motionObjects[] = {
        {0x6064, "POSITION_ACTUAL_VALUE", "Istposition", E_I32, true, "inc"},
        {0x6065, "FOLLOWING_ERROR_WINDOW", "Schleppfehlerfenster", E_U32, false, "inc"},
        {0x606C, "VELOCITY_ACTUAL_VALUE", "Istdrehzahl", E_I32, true, "rpm"},
        {0x6071, "TARGET_TORQUE", "Sollmoment", E_I16, false, "%"},
        {0x6077, "TORQUE_ACTUAL_VALUE", "Istmoment", E_I16, true, "%"},
        {0x607A, "TARGET_POSITION", "Zielposition", E_I32, false, "inc"},
        {0x6081, "PROFILE_VELOCITY", "Profilgeschwindigkeit", E_U32, false, "rpm"},
        {0x6083, "PROFILE_ACCELERATION", "Profilbeschleunigung", E_U32, false, "rpm/s"},
        {0x6084, "PROFILE_DECELERATION", "Profilverzögerung", E_U32, false, "rpm/s"},
        {0x6098, "HOMING_METHOD", "Referenzfahrtmethode", E_I8, false, nullptr},
        {0x60FF, "TARGET_VELOCITY", "Solldrehzahl", E_I32, false, "rpm"},
    };
    for (const auto &m : motionObjects) {
        COdictEditorObject o = m.actual ? b.actual(m.id, QLatin1String(m.name), QString::fromUtf8(m.ui), m.type, m.unit)
                                        : b.object(m.id, QLatin1String(m.name), QString::fromUtf8(m.ui), m.type);
        if (!m.actual && m.unit)
            o.setUnit(unit(m.unit));
        o.setDS402Id(m.id);
        b.add(motion, o);
    }
    COdictNode *limits = b.add(motion, b.object(0x607D, QStringLiteral("SOFTWARE_POSITION_LIMIT"), QStringLiteral("Software-Endlagen"), E_U8, QStringLiteral("2"), QStringLiteral("2"), QStringLiteral("2")));
    b.addSub(limits, b.object(0x607D, QStringLiteral("MIN_POSITION_LIMIT"), QStringLiteral("Minimale Position"), E_I32), 1);
    b.addSub(limits, b.object(0x607D, QStringLiteral("MAX_POSITION_LIMIT"), QStringLiteral("Maximale Position"), E_I32), 2);
    COdictNode *homing = b.add(motion, b.object(0x6099, QStringLiteral("HOMING_SPEEDS"), QStringLiteral("Referenzfahrgeschwindigkeiten"), E_U8, QStringLiteral("2"), QStringLiteral("2"), QStringLiteral("2")));
    b.addSub(homing, b.object(0x6099, QStringLiteral("HOMING_SPEED_SWITCH"), QStringLiteral("Suchgeschwindigkeit Schalter"), E_U32), 1);
    b.addSub(homing, b.object(0x6099, QStringLiteral("HOMING_SPEED_ZERO"), QStringLiteral("Suchgeschwindigkeit Nullmarke"), E_U32), 2);

    addDataStructures(dict.odictDataStructureList());
}

} // namespace

int runDemo(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Writes the demo dictionary (examples/demo_drive.xml) from its definition in code.\n"
        "Exit status: 0 written, 1 some demo objects were refused (nothing written), 2 not written."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The file to write."));
    if (!parseArguments(parser, arguments, 1))
        return E_EXIT_USAGE;
    CMemoryLogfile log;
    COdictEdit dictionary(E_OT_EDITOR, &log);
    CDemoBuilder builder(dictionary);
    // History, oldest first so that the newest ends up in front; the last one is the current head.
    const NTypes::uVersion_t versions[] = {NTypes::uVersion_t::fromParts(1, 26, 0), NTypes::uVersion_t::fromParts(1, 27, 3),
                                           NTypes::uVersion_t::fromParts(1, 28, 42)};
    const char *comments[] = {"First release", "Encoder and diagnosis objects", "DS402 records and characteristic curves"};
    for (int i = 0; i < 3; ++i)
        dictionary.setOdictMetaData(CXMLMetaData(QDate(2026, 3 + 4 * i, 10 + i), QTime(9 + i, 30, 0), QStringLiteral("krOdict demo"),
                                                 QLatin1String(comments[i]), versions[i]));
    buildDemo(dictionary, builder);
    if (builder.failures() > 0) {
        err() << "odict: " << builder.failures() << " demo objects were refused\n";
        return E_EXIT_WARNINGS;
    }
    const QString target = parser.positionalArguments().at(0);
    if (dictionary.saveDictionary(target) != 0)
        return writeFailed(target);
    out() << "wrote " << target << " (" << dictionary.allObjectUIds().size() << " objects and sub-objects)\n";
    return E_EXIT_OK;
}

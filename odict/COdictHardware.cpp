#include "COdictHardware_p.h"

#include "CDatabaseDeviceData.h"
#include "CDeviceData.h"
#include "CMessageBoardHelper.h"
#include "COdictObject.h"
#include "COdictObjectEnum.h"
#include "COdictObjectTree.h"
#include "CPath.h"

#include <QCoreApplication>
#include <QScopedPointer>

namespace {

// Objects and the device keys they are narrowed with.
constexpr unsigned int brakeObject = 231;      // entry 1 goes when key 243 is not above 0
constexpr unsigned int maskedObject = 206;     // entries kept that share a bit with key 225
constexpr unsigned int switchedObject = 207;   // entries 1, 2, 4 switched by bits 0x100, 0x200, 0x400 of key 214
constexpr unsigned int minimumObject = 235;    // minimum from key 243
constexpr unsigned int maximumObject = 236;    // maximum from key 244
constexpr unsigned int maximumObject2 = 237;   // maximum from key 245
constexpr unsigned int keyBrake = 243;         // also the minimum of object 235: the double use is intended
constexpr unsigned int keyMask = 225;
constexpr unsigned int keySwitches = 214;
constexpr unsigned int keyMaximum = 244;
constexpr unsigned int keyMaximum2 = 245;

QString trCOdict(const char *text)
{
    return QCoreApplication::translate("COdict", text);
}

} // namespace

COdictHardware::COdictHardware(COdictObjectTree &tree, ICLogfile *log) : m_tree(tree), m_log(log) {}

bool COdictHardware::apply(const CDeviceData &device, unsigned char pos)
{
    if (!device.isValid())
        return false;
    const auto at = NkrDeviceDatabase::eSubDevicePos_t(pos);
    auto object = [this](unsigned int id) { return m_tree.objectPtr(COdictObjectId(id)); };
    bool result = true;

    if (COdictObject *o = object(brakeObject)) {
        if (!(device.value(keyBrake, at).toF64() > 0.0))
            o->enumDataPtr()->remove(1);
    } else {
        result = false;
    }

    if (COdictObject *o = object(maskedObject)) {
        const qint64 mask = device.value(keyMask, at).toI64();
        COdictObjectEnum narrowed;
        for (const COdictObjectEnum::sOdictObjectEnumData_t &entry : o->enumData().enums()) {
            if (entry.value & mask)
                narrowed.insert(entry);
        }
        if (narrowed.isEmpty())
            CMessageBoardHelper::setCritical(trCOdict("The selection for '%1' is empty.").arg(o->uiShortInfo()), m_log, 0);
        o->setEnumData(narrowed);
    } else {
        result = false;
    }

    if (COdictObject *o = object(switchedObject)) {
        const qint64 switches = device.value(keySwitches, at).toI64();
        COdictObjectEnum narrowed = o->enumData();
        if (!(switches & 0x100))
            narrowed.remove(1);
        if (!(switches & 0x200))
            narrowed.remove(2);
        if (!(switches & 0x400))
            narrowed.remove(4);
        if (narrowed.isEmpty()) {
            const QString name = o->enumData().name(1, nullptr);
            CMessageBoardHelper::setCritical(
                trCOdict("The selection for '%1' is empty. '%2' is added.").arg(o->uiShortInfo(), name), m_log, 0);
            narrowed.insert(1, name);
        }
        o->setEnumData(narrowed);
    } else {
        result = false;
    }

    if (COdictObject *o = object(minimumObject))
        o->setMinValue(device.value(keyBrake, at));
    else
        result = false;

    if (COdictObject *o = object(maximumObject))
        o->setMaxValue(device.value(keyMaximum, at));
    else
        result = false;

    COdictObject *last = object(maximumObject2);
    if (!last)
        return false;
    last->setMaxValue(device.value(keyMaximum2, at));
    return result;
}

std::unique_ptr<CDeviceData> COdictHardware::findDevice(NTypes::uVersion_t version, const QString &device)
{
    // Each call uses its own connection, so concurrent dictionaries never share one.
    QScopedPointer<CDatabaseDeviceData> database(new CDatabaseDeviceData);
    const QString connectionName = QUuid::createUuid().toString();
    const QString path = CPath::programdataPath(true) + QStringLiteral("mx8dd.db");
    if (!database->openDatabase(path, connectionName))
        return nullptr;
    NkrDeviceDatabase::eDdbState_t state = NkrDeviceDatabase::E_DDB_OK;
    std::unique_ptr<CDeviceData> data(database->data(version, device, state));
    if (state != NkrDeviceDatabase::E_DDB_OK)
        return nullptr;
    return data;
}

// A program outside the project that only knows the installed package.
#include <CDataTypeParser.h>
#include <COdict.h>
#include <COdictValueObject.h>
#include <CStr.h>
#include <CVariant.h>

#include <QDebug>

#include <cstdio>

namespace {

/// The README's example: load a dictionary, look an object up.
bool readmeExample(const QString &file)
{
    COdict dictionary(NkrOdict::E_OT_VALUE);
    if (dictionary.loadDictionary(file) != 0)
        return false;
    const COdictValueObject pwm = dictionary.valueObject(QStringLiteral("PWM_FREQUENCY"));
    qInfo() << pwm.id() << pwm.uiName() << pwm.valueToStr(pwm.defaultValue(true), true);
    return pwm.id() == 206 && pwm.valueToStr(pwm.defaultValue(true), true) == QLatin1String("2 8 kHz");
}

} // namespace

int main(int argc, char *argv[])
{
    const CVariant v(QStringLiteral("0x7FFF"), NTypes::E_I16);
    const bool ok = v.toI64() == 0x7FFF
        && CDataTypeParser::typeToStr(NTypes::E_XY) == QLatin1String("XY")
        && CStr::versionToString(NTypes::uVersion_t(0x011C002A)) == QLatin1String("1.28.42")
        && (argc < 2 || readmeExample(QString::fromLocal8Bit(argv[1])));
    std::puts(ok ? "consumer ok" : "consumer FAILED");
    return ok ? 0 : 1;
}

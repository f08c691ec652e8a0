// A program outside the project that only knows the installed package.
#include <CDataTypeParser.h>
#include <CStr.h>
#include <CVariant.h>

#include <cstdio>

int main()
{
    const CVariant v(QStringLiteral("0x7FFF"), NTypes::E_I16);
    const bool ok = v.toI64() == 0x7FFF
        && CDataTypeParser::typeToStr(NTypes::E_XY) == QLatin1String("XY")
        && CStr::versionToString(NTypes::uVersion_t(0x011C002A)) == QLatin1String("1.28.42");
    std::puts(ok ? "consumer ok" : "consumer FAILED");
    return ok ? 0 : 1;
}

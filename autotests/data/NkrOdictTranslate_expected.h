/*!
 *****************************************************************************************
 *
 * @file    NkrOdictTranslate.h
 *
 * @brief   Automatic generated header file for translation
 *
 * @author  obdEditor.exe
 *
 * @version @v{ $Revision: 1.3 $ }
 *
 * @date    05.03.2024
 *
 *****************************************************************************************
 */

#ifndef ODICT_NKRODICTTRANSLATE_H_
#define ODICT_NKRODICTTRANSLATE_H_


// Group Device
QT_TRANSLATE_NOOP( "Odict", "Gerät" );
// Object DeviceType
QT_TRANSLATE_NOOP( "Odict", "DeviceType (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Devi" );
// Bitset
QT_TRANSLATE_NOOP( "Odict", "Ready" );
QT_TRANSLATE_NOOP( "Odict", "Enabled" );
// Object SerialNumber
QT_TRANSLATE_NOOP( "Odict", "SerialNumber (ui)" );
QT_TRANSLATE_NOOP( "Odict", "" );
// Object DeviceName
QT_TRANSLATE_NOOP( "Odict", "DeviceName (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Devi" );

// Group Control
QT_TRANSLATE_NOOP( "Odict", "Regelung" );
// Object Gains
QT_TRANSLATE_NOOP( "Odict", "Gains (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Gain" );
// Object Gains_0
QT_TRANSLATE_NOOP( "Odict", "Gains (ui) Sub 0" );
QT_TRANSLATE_NOOP( "Odict", "Gain Sub 0" );
// Object Gains_1
QT_TRANSLATE_NOOP( "Odict", "Gains (ui) Sub 1" );
QT_TRANSLATE_NOOP( "Odict", "Gain Sub 1" );
// Object Gains_3
QT_TRANSLATE_NOOP( "Odict", "Gains (ui) Sub 3" );
QT_TRANSLATE_NOOP( "Odict", "Gain Sub 3" );

// Group Limits
QT_TRANSLATE_NOOP( "Odict", "Grenzen" );
// Object Voltage
QT_TRANSLATE_NOOP( "Odict", "Voltage (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Volt" );
// Object Voltage_1
QT_TRANSLATE_NOOP( "Odict", "Voltage (ui) Sub 1" );
QT_TRANSLATE_NOOP( "Odict", "Volt Sub 1" );
// Object Voltage_100
QT_TRANSLATE_NOOP( "Odict", "Voltage (ui) Sub 100" );
QT_TRANSLATE_NOOP( "Odict", "Volt Sub 100" );
// Object Speed, filtered
QT_TRANSLATE_NOOP( "Odict", "Speed, filtered (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Spee" );
// Object UNKNOWN
QT_TRANSLATE_NOOP( "Odict", "UNKNOWN (ui)" );
QT_TRANSLATE_NOOP( "Odict", "UNKN" );

// Group Drive
QT_TRANSLATE_NOOP( "Odict", "Antrieb" );
// Object Abort
QT_TRANSLATE_NOOP( "Odict", "Abort (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Abor" );
// Object Mode
QT_TRANSLATE_NOOP( "Odict", "Mode (ui)" );
QT_TRANSLATE_NOOP( "Odict", "Mode" );
// Enum
QT_TRANSLATE_NOOP( "Odict", "Position" );
QT_TRANSLATE_NOOP( "Odict", "Velocity" );
// Object Mode_0
QT_TRANSLATE_NOOP( "Odict", "Mode (ui) Sub 0" );
QT_TRANSLATE_NOOP( "Odict", "Mode Sub 0" );
// Object Mode_1
QT_TRANSLATE_NOOP( "Odict", "Mode (ui) Sub 1" );
QT_TRANSLATE_NOOP( "Odict", "Mode Sub 1" );

#endif /* ODICT_NKRODICTTRANSLATE_H_ */


/*!
 *****************************************************************************************
 *
 * @file    NkrObjectIds.h
 *
 * @brief   Automatisch generierte Headerdatei
 *
 * @author  obdEditor.exe
 *
 * @version @v{ $Revision: 1.3 $ }
 *
 * @date    05.03.2024
 *
 *****************************************************************************************
 */

#ifndef ODICT_NKROBJECTIDS_H_
#define ODICT_NKROBJECTIDS_H_

//----------------------------------------------------------------------------------------
/*!
 * @namespace   NkrObjectIds
 *
 * @brief       Für den vereinfachten Zugriff auf die Objekt-ID's
 *
 * @details     Die ID vom Typ NkrObjectIds::eObjectId_t setzt sich aus der eigentlichen
 *              Objekt-ID und der Objekt-SubID zusammen. NkrObjectIds::eObjectId_t hat
 *              eine größe von @e 64-Bit. Die Objekt-ID und die Objekt-SubID haben jeweils
 *              eine größe von @e 32-Bit.
 *              
 *              Ist die ID kleiner als NTypes::U32_MAX, kann diese direkt in einen 32-Bit
 *              Wert gecastet werden.
 *              @code
 *              64                                 0
 *              -------------------------------------
 *              |                 |    Objekt-ID    |
 *              -------------------------------------
 *              @endcode
 *              Ist die ID größer als NTypes::U32_MAX besteht NkrObjectIds::eObjectId_t
 *              aus der Objekt-ID und der Objekt-SubID.
 *              @code
 *              64                                 0
 *              -------------------------------------
 *              |    Objekt-ID    |  Objekt-Sub-ID  |
 *              -------------------------------------
 *              @endcode
 *
 * @date        05.03.2024
 */
//----------------------------------------------------------------------------------------

// C-Kompatibel
#ifdef __cplusplus

#include "arch/NTypes.h"

namespace NkrObjectIds
{

#endif  // __cplusplus

    //! Verfügbare Objekte
    enum eObjectId_t
    {
        E_1_DeviceType                                                     =               1,  //!< DeviceType (ui)
        E_2_SerialNumber                                                   =               2,  //!< SerialNumber (ui)
        E_5_DeviceName                                                     =               5,  //!< DeviceName (ui)
        E_10_Gains                                                         =              10,  //!< Gains (ui)
        E_10_00_Gains_0                                                    =     42949672960,  //!< Gains (ui) Sub 0
        E_10_01_Gains_1                                                    =     42949672961,  //!< Gains (ui) Sub 1
        E_10_03_Gains_3                                                    =     42949672963,  //!< Gains (ui) Sub 3
        E_8192_Voltage                                                     =            8192,  //!< Voltage (ui)
        E_8192_01_Voltage_1                                                =  35184372088833,  //!< Voltage (ui) Sub 1
        E_8192_100_Voltage_100                                             =  35184372088932,  //!< Voltage (ui) Sub 100
        E_8193_Speed, filtered                                             =            8193,  //!< Speed, filtered (ui)
        E_24576_Abort                                                      =           24576,  //!< Abort (ui)
        E_24578_Mode                                                       =           24578,  //!< Mode (ui)
        E_24578_00_Mode_0                                                  = 105561706201088,  //!< Mode (ui) Sub 0
        E_24578_01_Mode_1                                                  = 105561706201089,  //!< Mode (ui) Sub 1
#ifdef __cplusplus
        //! Interne Konstante für eine undefinierte Objekt-ID
        E_U32_MAX_UNKOWN                                                   = NTypes::U32_MAX,
#endif  // __cplusplus
    };

#ifdef __cplusplus

};
namespace NID = NkrObjectIds;

#endif  // __cplusplus

#endif /* ODICT_NKROBJECTIDS_H_ */


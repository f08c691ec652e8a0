/*!
 *****************************************************************************************
 *
 * @file    demo.h
 *
 * @brief   Automatically generated object directory
 *
 * @author  obdEditor.exe
 *
 * @version @v{ $Revision: 1.31 $ }
 *
 * @date    5 Mar 2024
 *
 *****************************************************************************************
 */

#ifndef ODICT_DEMO_H_
#define ODICT_DEMO_H_

/*!
 *****************************************************************************************
 *
 * @ingroup   group_OdictTypes
 *
 * @brief     Typ-Deklarationen
 *
 * @{
 *
 *****************************************************************************************
 */

// ObjectDeclaration:
// --- Global definitions ---
//! Name des Objektverzeichnisses
#define ODICT_NAME          "DemoDict"
//! Klasse des Objektverzeichnisses
#define ODICT_CLASS          1
// Odict-Dateiversion: V1.28.42 from 29.02.2024 at 13:05:09 by Demo Author
//! Odict-Hauptversion
#define ODICT_VERSION_MAIN   (0x01U)
//! Odict-Nebenversion
#define ODICT_VERSION_MINOR  (0x1CU)
//! Odict-Buildnummer
#define ODICT_VERSION_BUILD  (0x002AU)
//! Grösse der Objekttabelle bzw. die höchste Objektnummer minus 1
#define ODICT_SIZE           11

// RawValue: plain value
typedef struct
{
     uint32_t             id;
     uint32_t             subId;
     uint16_t             dataType;
     uint16_t             size;
     uint32_t             access;
     int32_t              min;
     int32_t              max;
     const char *         name;
} ODICT_RawValue_t;

// String: text in a firmware buffer
typedef struct
{
     uint32_t             id;
     uint16_t             size;
     void *               buffer;
} ODICT_String_t;

// Array: array of elements
typedef struct
{
     uint32_t             id;
     uint16_t             length;
     uint8_t              usage;
     uint8_t              levelRead;
     uint8_t              levelWrite;
     uint32_t             reserved;
} ODICT_Array_t;

//!@}
#endif /* ODICT_DEMO_H_ */

#ifdef INCLUDED_FROM_ODICT_C
//! @brief   Objektzugriffsfunktion ODICT_Fct_NoObject
//! @ingroup group_ObjFunctions
const ODICT_T_AccessFct ODICT_Fct_NoObject                  = {ODICT_AccessFctRead_NoObject              , ODICT_AccessFctWrite_NoAccess             };
//! @brief   Objektzugriffsfunktion ODICT_Fct_SubObject
//! @ingroup group_ObjFunctions
const ODICT_T_AccessFct ODICT_Fct_SubObject                 = {ODICT_AccessFctRead_SubObject             , ODICT_AccessFctWrite_NoAccess             };
//! @brief   Objektzugriffsfunktion ODICT_Fct_RawValue
//! @ingroup group_ObjFunctions
const ODICT_T_AccessFct ODICT_Fct_RawValue                  = {ODICT_AccessFctRead_RawValue              , ODICT_AccessFctWrite_RawValue             };
//! @brief   Objektzugriffsfunktion ODICT_Fct_String
//! @ingroup group_ObjFunctions
const ODICT_T_AccessFct ODICT_Fct_String                    = {ODICT_AccessFctRead_String                , ODICT_AccessFctWrite_NoAccess             };
//! @brief   Objektzugriffsfunktion ODICT_Fct_Array
//! @ingroup group_ObjFunctions
const ODICT_T_AccessFct ODICT_Fct_Array                     = {ODICT_AccessFctRead_Array                 , ODICT_AccessFctWrite_NoAccess             };


/*! Object DeviceType
 * @ingroup group_Objects */
const ODICT_RawValue_t               Object_1_DeviceType                                                         = {0x00000001U, 0xFFFFFFFFU, 6U, 4U, 0x00000002U, 0U, 65535U, "DeviceType"};

/*! Object SerialNumber
 * @ingroup group_Objects */
const ODICT_RawValue_t               Object_2_SerialNumber                                                       = {0x00000002U, 0xFFFFFFFFU, 6U, 4U, 0x00000003U, 0, 0, "SerialNumber"};

/*! Object DeviceName
 * @ingroup group_Objects */
const ODICT_String_t                 Object_5_DeviceName                                                         = {0x00000005U, 32U, &g_deviceName};

/*! Object Gains
 * @ingroup group_Objects */
const ODICT_Array_t                  Object_10_Gains                                                             = {0x0000000AU, 4U, 0x00U, 1U, 1U, 0U};

/*! Object Gains_0
 * @ingroup group_Objects */
const ODICT_RawValue_t               Sub_10_0_Gains_0                                                            = {0x0000000AU, 0x00U, 4U, 8U, 0x00000002U, 0, 0, "Gains_0"};

/*! Object Gains_1
 * @ingroup group_Objects */
const ODICT_Array_t                  Sub_10_1_Gains_1                                                            = {0x0000000AU, 4U, 0x00U, 1U, 1U, 0U};

/*! Object Gains_3
 * @ingroup group_Objects */
const ODICT_RawValue_t               Sub_10_3_Gains_3                                                            = {0x0000000AU, 0x03U, 4U, 8U, 0x00000002U, 0, 0, "Gains_3"};

/*! Object Voltage
 * @ingroup group_Objects */
const ODICT_RawValue_t               Object_8192_Voltage                                                         = {0x00002000U, 0xFFFFFFFFU, 6U, 4U, 0x00000002U, 0, 0, "Voltage"};

/*! Object Voltage_1
 * @ingroup group_Objects */
const ODICT_RawValue_t               Sub_8192_1_Voltage_1                                                        = {0x00002000U, 0x01U, 6U, 4U, 0x00000002U, 0, 0, "Voltage_1"};

/*! Object Voltage_100
 * @ingroup group_Objects */
const ODICT_RawValue_t               Sub_8192_100_Voltage_100                                                    = {0x00002000U, 0x64U, 6U, 4U, 0x00000002U, 0, 0, "Voltage_100"};

/*! Object Speed, filtered
 * @ingroup group_Objects */
const ODICT_RawValue_t               Object_8193_Speed, filtered                                                 = {0x00002001U, 0xFFFFFFFFU, 7U, 4U, 0x00000002U, -1000, 1000, "Speed, filtered"};

/*! Object Abort
 * @ingroup group_Objects */
const ODICT_RawValue_t               Object_24576_Abort                                                          = {0x00006000U, 0xFFFFFFFFU, 6U, 4U, 0x00000003U, 0, 0, "Abort"};

/*! Object Mode
 * @ingroup group_Objects */
const ODICT_Array_t                  Object_24578_Mode                                                           = {0x00006002U, 1U, 0x00U, 1U, 1U, 0U};

/*! Object Mode_0
 * @ingroup group_Objects */
const ODICT_RawValue_t               Sub_24578_0_Mode_0                                                          = {0x00006002U, 0x00U, 6U, 4U, 0x00000002U, 0, 0, "Mode_0"};

/*! Object Mode_1
 * @ingroup group_Objects */
const ODICT_RawValue_t               Sub_24578_1_Mode_1                                                          = {0x00006002U, 0x01U, 6U, 4U, 0x00000002U, 0, 0, "Mode_1"};


const ODICT_T_ObjDictElementVarBase ODICT_SubObject_10_Gains[5] =
{
    {( &ODICT_Fct_Array                     ), (void*)( &Object_10_Gains                                                             )},    //! Index:     10
    {( &ODICT_Fct_RawValue                  ), (void*)( &Sub_10_0_Gains_0                                                            )},    //! Sub:        0
    {( &ODICT_Fct_Array                     ), (void*)( &Sub_10_1_Gains_1                                                            )},    //! Sub:        1
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        2
    {( &ODICT_Fct_RawValue                  ), (void*)( &Sub_10_3_Gains_3                                                            )}     //! Sub:        3
};

const ODICT_T_ObjDictElementVarBase ODICT_SubObject_8192_Voltage[102] =
{
    {( &ODICT_Fct_RawValue                  ), (void*)( &Object_8192_Voltage                                                         )},    //! Index:   8192
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        0
    {( &ODICT_Fct_RawValue                  ), (void*)( &Sub_8192_1_Voltage_1                                                        )},    //! Sub:        1
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        2
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        3
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        4
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        5
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        6
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        7
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        8
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:        9
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       10
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       11
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       12
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       13
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       14
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       15
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       16
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       17
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       18
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       19
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       20
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       21
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       22
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       23
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       24
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       25
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       26
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       27
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       28
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       29
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       30
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       31
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       32
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       33
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       34
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       35
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       36
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       37
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       38
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       39
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       40
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       41
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       42
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       43
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       44
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       45
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       46
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       47
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       48
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       49
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       50
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       51
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       52
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       53
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       54
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       55
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       56
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       57
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       58
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       59
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       60
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       61
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       62
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       63
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       64
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       65
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       66
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       67
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       68
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       69
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       70
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       71
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       72
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       73
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       74
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       75
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       76
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       77
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       78
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       79
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       80
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       81
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       82
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       83
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       84
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       85
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       86
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       87
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       88
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       89
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       90
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       91
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       92
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       93
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       94
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       95
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       96
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       97
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       98
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Sub:       99
    {( &ODICT_Fct_RawValue                  ), (void*)( &Sub_8192_100_Voltage_100                                                    )}     //! Sub:      100
};

const ODICT_T_ObjDictElementVarBase ODICT_SubObject_24578_Mode[3] =
{
    {( &ODICT_Fct_Array                     ), (void*)( &Object_24578_Mode                                                           )},    //! Index:  24578
    {( &ODICT_Fct_RawValue                  ), (void*)( &Sub_24578_0_Mode_0                                                          )},    //! Sub:        0
    {( &ODICT_Fct_RawValue                  ), (void*)( &Sub_24578_1_Mode_1                                                          )}     //! Sub:        1
};

const ODICT_T_ObjDictElementVarBase ODICT_ObjectDictVarBase[ODICT_SIZE] =
{
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      0
    {( &ODICT_Fct_RawValue                  ), (void*)( &Object_1_DeviceType                                                         )},    //! Index:      1
    {( &ODICT_Fct_RawValue                  ), (void*)( &Object_2_SerialNumber                                                       )},    //! Index:      2
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      3
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      4
    {( &ODICT_Fct_String                    ), (void*)( &Object_5_DeviceName                                                         )},    //! Index:      5
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      6
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      7
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      8
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:      9
    {( &ODICT_Fct_SubObject                 ), (void*)( &ODICT_SubObject_10_Gains                                                    )}     //! Index:     10
};

const ODICT_T_ObjDictElementVarBase ODICT_DS402VarBase[] =
{
    {( &ODICT_Fct_RawValue                  ), (void*)( &Object_24576_Abort                                                          )},    //! Index:  24576
    {( &ODICT_Fct_NoObject                  ), (void*)( NULL                                                                         )},    //! Index:  24577
    {( &ODICT_Fct_SubObject                 ), (void*)( &ODICT_SubObject_24578_Mode                                                  )}     //! Index:  24578
};

const uint32_t ODICT_DS301LockupBase[] =
{
    0x00002000,    // Voltage
    0x00002001,    // Speed  filtered
};

const ODICT_T_ObjDictElementVarBase ODICT_DS301VarBase[] =
{
    {( &ODICT_Fct_SubObject                 ), (void*)( &ODICT_SubObject_8192_Voltage                                                )},    //! Index:   8192
    {( &ODICT_Fct_RawValue                  ), (void*)( &Object_8193_Speed, filtered                                                 )}     //! Index:   8193
};
#endif  /* INCLUDED_FROM_ODICT_C */

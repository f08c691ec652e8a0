/*
 * Firmware-side declarations for the header generated from examples/demo_drive.xml: the element
 * and access-function types and the access functions of the demo's data structures.
 */
#ifndef DEMO_DRIVE_STUB_H_
#define DEMO_DRIVE_STUB_H_

/* The element and access-function types and the placeholder descriptors. */
#include "odict_stub.h"

ODICT_T_ReadFct ODICT_AccessFctRead_Std;
ODICT_T_ReadFct ODICT_AccessFctRead_Float;
ODICT_T_ReadFct ODICT_AccessFctRead_Text;
ODICT_T_ReadFct ODICT_AccessFctRead_Record;
ODICT_T_ReadFct ODICT_AccessFctRead_Reserved;

ODICT_T_WriteFct ODICT_AccessFctWrite_Std;
ODICT_T_WriteFct ODICT_AccessFctWrite_Float;
ODICT_T_WriteFct ODICT_AccessFctWrite_Text;
ODICT_T_WriteFct ODICT_AccessFctWrite_Record;

#endif /* DEMO_DRIVE_STUB_H_ */

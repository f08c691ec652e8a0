/*
 * Firmware-side declarations for the header generated from examples/demo_drive.xml: the element
 * and access-function types and the access functions of the demo's data structures.
 */
#ifndef DEMO_DRIVE_STUB_H_
#define DEMO_DRIVE_STUB_H_

#include <stddef.h>
#include <stdint.h>

typedef uint32_t ODICT_T_ReadFct(const void *object, void *data, uint32_t size);
typedef uint32_t ODICT_T_WriteFct(const void *object, const void *data, uint32_t size);

typedef struct
{
    ODICT_T_ReadFct *read;
    ODICT_T_WriteFct *write;
} ODICT_T_AccessFct;

typedef struct
{
    const ODICT_T_AccessFct *fct;
    void *obj;
} ODICT_T_ObjDictElementVarBase;

/* Rows of numbers without object and head rows of objects with sub-objects. */
extern const ODICT_T_AccessFct ODICT_Fct_NoObject;
extern const ODICT_T_AccessFct ODICT_Fct_SubObject;

ODICT_T_ReadFct ODICT_AccessFctRead_Std;
ODICT_T_ReadFct ODICT_AccessFctRead_Float;
ODICT_T_ReadFct ODICT_AccessFctRead_Text;
ODICT_T_ReadFct ODICT_AccessFctRead_Record;
ODICT_T_ReadFct ODICT_AccessFctRead_Reserved;

ODICT_T_WriteFct ODICT_AccessFctWrite_Std;
ODICT_T_WriteFct ODICT_AccessFctWrite_Float;
ODICT_T_WriteFct ODICT_AccessFctWrite_Text;
ODICT_T_WriteFct ODICT_AccessFctWrite_Record;
ODICT_T_WriteFct ODICT_AccessFctWrite_NoAccess;

#endif /* DEMO_DRIVE_STUB_H_ */

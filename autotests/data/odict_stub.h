/*
 * Firmware-side declarations that a generated object-dictionary header relies on: the element
 * and access-function types, and the read and write functions and variables that the test
 * dictionaries of tst_export name. Include it before the generated header.
 */
#ifndef ODICT_STUB_H_
#define ODICT_STUB_H_

#include <stddef.h>
#include <stdint.h>

typedef uint32_t ODICT_T_ReadFct(const void *object, void *data, uint32_t size);
typedef uint32_t ODICT_T_WriteFct(const void *object, const void *data, uint32_t size);

/* One descriptor per data structure: how objects of that structure are read and written. */
typedef struct
{
    ODICT_T_ReadFct *read;
    ODICT_T_WriteFct *write;
} ODICT_T_AccessFct;

/* One table element: the descriptor and the object constant (or sub-object array). */
typedef struct
{
    const ODICT_T_AccessFct *fct;
    void *obj;
} ODICT_T_ObjDictElementVarBase;

/* Placeholder rows and head rows point at these; a dictionary whose structure list has entries
 * named "NoObject" and "SubObject" defines them, the declarations keep other dictionaries valid. */
extern const ODICT_T_AccessFct ODICT_Fct_NoObject;
extern const ODICT_T_AccessFct ODICT_Fct_SubObject;

ODICT_T_ReadFct ODICT_AccessFctRead_NoObject;
ODICT_T_ReadFct ODICT_AccessFctRead_SubObject;
ODICT_T_ReadFct ODICT_AccessFctRead_RawValue;
ODICT_T_ReadFct ODICT_AccessFctRead_String;
ODICT_T_ReadFct ODICT_AccessFctRead_Array;

ODICT_T_WriteFct ODICT_AccessFctWrite_NoAccess;
ODICT_T_WriteFct ODICT_AccessFctWrite_RawValue;
ODICT_T_WriteFct ODICT_AccessFctWrite_String;
ODICT_T_WriteFct ODICT_AccessFctWrite_Array;

/* Firmware variables named by objects. */
extern char g_deviceName[32];

#endif /* ODICT_STUB_H_ */

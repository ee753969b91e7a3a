/* What a plain C caller of the border does with a record; PropertyListFromC.c. */
#ifndef TESTS_SDK_PROPERTY_LIST_FROM_C_H
#define TESTS_SDK_PROPERTY_LIST_FROM_C_H

#include "sdk/PropertyList.h"

#ifdef __cplusplus
extern "C" {
#endif

/* An array of one record with texts, numbers and containers; the caller has its one count. */
PLArrayRef MakeFontsInC(void);
/* A record of one count with data, a null, and a list of every kind that is not in the other. */
PLDictionaryRef MakeEveryKindInC(void);

#ifdef __cplusplus
}
#endif

#endif

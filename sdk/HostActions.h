/* The host's action model: descriptors (key to typed value), lists, references, and the control
 * suite that plays events, reads properties and delivers notifiers.
 *
 * Keys, classes, types and events are four-character codes; a code below 0x20202020 is a run-time
 * type made by StringIDToTypeID.
 *
 * Ownership: what Make, Get... of an object or list, Play and Get give out is the caller's, freed
 * with the Free of its suite. Put copies. An alias from GetAlias is the caller's (HostAlias.h).
 *
 * Events are delivered synchronously and re-entrantly: a played open or close has run every
 * notifier before Play returns.
 *
 * Threads: [main-thread] everything.
 */
#ifndef SDK_HOST_ACTIONS_H
#define SDK_HOST_ACTIONS_H

#include "sdk/HostBasic.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PIActionDescriptorData* PIActionDescriptor;
typedef struct PIActionListData* PIActionList;
typedef struct PIActionReferenceData* PIActionReference;
typedef struct PIAliasData* AliasHandle;

typedef uint32_t DescriptorKeyID;
typedef uint32_t DescriptorTypeID;
typedef uint32_t DescriptorClassID;
typedef uint32_t DescriptorEnumID;
typedef uint32_t DescriptorEventID;

#define kTypeInteger SP_CODE('l', 'o', 'n', 'g')
#define kTypeBoolean SP_CODE('b', 'o', 'o', 'l')
#define kTypeFloat SP_CODE('d', 'o', 'u', 'b')
#define kTypeChar SP_CODE('T', 'E', 'X', 'T')
#define kTypeAlias SP_CODE('a', 'l', 'i', 's')
#define kTypeObject SP_CODE('O', 'b', 'j', 'c')
#define kTypeGlobalObject SP_CODE('G', 'l', 'b', 'O')
#define kTypeValueList SP_CODE('V', 'l', 'L', 's')
#define kTypeEnumerated SP_CODE('e', 'n', 'u', 'm')
#define kTypeObjectReference SP_CODE('o', 'b', 'j', ' ')

/* A key or index that is not there, or a value of another type. */
#define kPSItemMissingError ((SPErr)SP_CODE('~', 'f', 'n', 'd'))
/* A reference to something that does not exist, such as a document index past the end. */
#define kPSNoSuchElementError ((SPErr)SP_CODE('!', 'e', 'l', 't'))
/* An event that the host can't carry out, such as opening a missing file. */
#define kPSEventFailedError ((SPErr)SP_CODE('!', 'e', 'v', 't'))

#define kPSActionDescriptorSuite "df135115-c769-11d0-8079-00c04fd7ec47"
#define kPSActionDescriptorSuiteVersion 5
typedef struct PSActionDescriptorProcs {
  SPErr (*Make)(PIActionDescriptor* out);
  SPErr (*Free)(PIActionDescriptor descriptor);
  SPErr (*Clear)(PIActionDescriptor descriptor);
  SPErr (*GetCount)(PIActionDescriptor descriptor, uint32_t* out);
  SPErr (*GetKey)(PIActionDescriptor descriptor, uint32_t index, DescriptorKeyID* out);
  SPErr (*HasKey)(PIActionDescriptor descriptor, DescriptorKeyID key, bool* out);
  SPErr (*GetType)(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorTypeID* out);
  SPErr (*GetInteger)(PIActionDescriptor descriptor, DescriptorKeyID key, int32_t* out);
  SPErr (*PutInteger)(PIActionDescriptor descriptor, DescriptorKeyID key, int32_t value);
  SPErr (*GetBoolean)(PIActionDescriptor descriptor, DescriptorKeyID key, bool* out);
  SPErr (*PutBoolean)(PIActionDescriptor descriptor, DescriptorKeyID key, bool value);
  SPErr (*GetFloat)(PIActionDescriptor descriptor, DescriptorKeyID key, double* out);
  SPErr (*PutFloat)(PIActionDescriptor descriptor, DescriptorKeyID key, double value);
  /* Bytes of the text, without a terminator. GetString cuts to size - 1 and terminates. */
  SPErr (*GetStringLength)(PIActionDescriptor descriptor, DescriptorKeyID key, uint32_t* out);
  SPErr (*GetString)(PIActionDescriptor descriptor, DescriptorKeyID key, char* out, uint32_t size);
  SPErr (*PutString)(PIActionDescriptor descriptor, DescriptorKeyID key, const char* value);
  SPErr (*GetEnumerated)(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorTypeID* type,
                         DescriptorEnumID* value);
  SPErr (*PutEnumerated)(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorTypeID type,
                         DescriptorEnumID value);
  SPErr (*GetAlias)(PIActionDescriptor descriptor, DescriptorKeyID key, AliasHandle* out);
  SPErr (*PutAlias)(PIActionDescriptor descriptor, DescriptorKeyID key, AliasHandle value);
  SPErr (*GetObject)(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorClassID* type,
                     PIActionDescriptor* out);
  SPErr (*PutObject)(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorClassID type,
                     PIActionDescriptor value);
  SPErr (*GetGlobalObject)(PIActionDescriptor descriptor, DescriptorKeyID key,
                           DescriptorClassID* type, PIActionDescriptor* out);
  SPErr (*PutGlobalObject)(PIActionDescriptor descriptor, DescriptorKeyID key,
                           DescriptorClassID type, PIActionDescriptor value);
  SPErr (*GetList)(PIActionDescriptor descriptor, DescriptorKeyID key, PIActionList* out);
  SPErr (*PutList)(PIActionDescriptor descriptor, DescriptorKeyID key, PIActionList value);
  SPErr (*GetReference)(PIActionDescriptor descriptor, DescriptorKeyID key, PIActionReference* out);
  SPErr (*PutReference)(PIActionDescriptor descriptor, DescriptorKeyID key,
                        PIActionReference value);
} PSActionDescriptorProcs;

#define kPSActionListSuite "df135116-c769-11d0-8079-00c04fd7ec47"
#define kPSActionListSuiteVersion 3
typedef struct PSActionListProcs {
  SPErr (*Make)(PIActionList* out);
  SPErr (*Free)(PIActionList list);
  SPErr (*GetCount)(PIActionList list, uint32_t* out);
  SPErr (*GetType)(PIActionList list, uint32_t index, DescriptorTypeID* out);
  SPErr (*GetStringLength)(PIActionList list, uint32_t index, uint32_t* out);
  SPErr (*GetString)(PIActionList list, uint32_t index, char* out, uint32_t size);
  SPErr (*PutString)(PIActionList list, const char* value);
  SPErr (*GetObject)(PIActionList list, uint32_t index, DescriptorClassID* type,
                     PIActionDescriptor* out);
  SPErr (*PutObject)(PIActionList list, DescriptorClassID type, PIActionDescriptor value);
  SPErr (*GetGlobalObject)(PIActionList list, uint32_t index, DescriptorClassID* type,
                           PIActionDescriptor* out);
  SPErr (*PutGlobalObject)(PIActionList list, DescriptorClassID type, PIActionDescriptor value);
  SPErr (*GetList)(PIActionList list, uint32_t index, PIActionList* out);
  SPErr (*PutList)(PIActionList list, PIActionList value);
} PSActionListProcs;

#define kPSActionReferenceSuite "df135117-c769-11d0-8079-00c04fd7ec47"
#define kPSActionReferenceSuiteVersion 3
/* A reference names something from the inside out: first the property, then its owner. */
typedef struct PSActionReferenceProcs {
  SPErr (*Make)(PIActionReference* out);
  SPErr (*Free)(PIActionReference reference);
  SPErr (*PutProperty)(PIActionReference reference, DescriptorClassID type, DescriptorKeyID key);
  SPErr (*PutEnumerated)(PIActionReference reference, DescriptorClassID type,
                         DescriptorTypeID enumType, DescriptorEnumID value);
  SPErr (*PutIndex)(PIActionReference reference, DescriptorClassID type, uint32_t index);
  SPErr (*PutIdentifier)(PIActionReference reference, DescriptorClassID type, uint32_t identifier);
} PSActionReferenceProcs;

/* [main-thread] Called synchronously; the descriptor is lent. */
typedef void (*PSEventNotifyProc)(DescriptorEventID event, PIActionDescriptor descriptor,
                                  int32_t options, void* userData);

/* Options of Play. */
enum { kPSDialogDisplay = 0, kPSDialogDontDisplay = 1, kPSDialogSilent = 2 };

#define kPSActionControlSuite "bc1e4d70-f953-11d0-8d9f-00c04fd5f7ee"
#define kPSActionControlSuiteVersion 6
typedef struct PSActionControlProcs {
  /* Reads the property that the reference names into a new descriptor. */
  SPErr (*Get)(PIActionDescriptor* outResult, PIActionReference reference);
  /* Plays an event; `outResult` may come back null. */
  SPErr (*Play)(PIActionDescriptor* outResult, DescriptorEventID event,
                PIActionDescriptor descriptor, int32_t dialogOptions);
  SPErr (*StringIDToTypeID)(const char* stringID, DescriptorTypeID* out);
  /* Cut to size - 1 and terminated. */
  SPErr (*TypeIDToStringID)(DescriptorTypeID type, char* out, uint32_t size);
  /* One notifier per plug-in, event and procedure; 16-bit results, 0 for success. */
  int16_t (*AddNotify)(SPPluginRef plugin, DescriptorEventID event, PSEventNotifyProc procedure,
                       void* userData);
  int16_t (*RemoveNotify)(SPPluginRef plugin, DescriptorEventID event);
} PSActionControlProcs;

#define kPSAliasSuite "Photoshop Alias Utility Suite"
#define kPSAliasSuiteVersion 2
/* An alias names a file by path as far as the host knows it; the file need not exist. */
typedef struct PSAliasProcs {
  SPErr (*NewAlias)(const char* path, AliasHandle* out);
  SPErr (*DisposeAlias)(AliasHandle alias);
  /* The path, cut to size - 1 and terminated; empty if the alias leads nowhere. */
  SPErr (*AliasToFullPath)(AliasHandle alias, char* out, uint32_t size);
} PSAliasProcs;

/* Classes, keys, enumerations and events that the document model uses. */
#define classApplication SP_CODE('c', 'a', 'p', 'p')
#define classDocument SP_CODE('D', 'c', 'm', 'n')
#define classProperty SP_CODE('P', 'r', 'p', 'r')
#define keyNumberOfDocuments SP_CODE('N', 'm', 'b', 'D') /* integer, of the application */
#define keyFileReference SP_CODE('F', 'i', 'l', 'R')     /* alias, of a document */
#define keyDocumentID SP_CODE('D', 'o', 'c', 'I')        /* integer */
#define keyIsDirty SP_CODE('I', 's', 'D', 'r')           /* boolean */
#define keyNull SP_CODE('n', 'u', 'l', 'l')              /* target of open and close */
#define keyNew SP_CODE('N', 'w', ' ', ' ')               /* object, of the make event */
#define keySaving SP_CODE('S', 'v', 'n', 'g')
#define typeYesNo SP_CODE('Y', 's', 'N', ' ')
#define enumNo SP_CODE('N', ' ', ' ', ' ')
#define typeOrdinal SP_CODE('O', 'r', 'd', 'n')
#define enumTarget SP_CODE('T', 'r', 'g', 't')
#define keyOperation SP_CODE('O', 'p', 'e', 'r')  /* integer, of "Do It" */
#define keySocketPort SP_CODE('S', 'P', 'o', 'r') /* integer, answer of "Do It" with "Oper" 4 */
#define eventOpen SP_CODE('O', 'p', 'n', ' ')     /* "null": alias; "DocI" */
#define eventMake SP_CODE('M', 'k', ' ', ' ')     /* "Nw  ": object of class "Dcmn" */
#define eventClose SP_CODE('C', 'l', 's', ' ')
#define eventSave                                                                 \
  SP_CODE('s', 'a', 'v', 'e') /* twice a save: before and after, both with "DocI" \
                               */
#define eventSelect SP_CODE('s', 'l', 'c', 't')

#ifdef __cplusplus
}
#endif

#endif

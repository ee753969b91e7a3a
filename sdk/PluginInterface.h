/* The facade: the font manager's client library as a plug-in calls it.
 *
 * The library is a bundle "VendrelPluginInterface.framework", found at run time and never linked.
 * Every entry point is an exported C symbol of the name below. One font manager instance is asked
 * for anew at each call with GetPluginFacadeInstance and goes first wherever the table has
 * `instance`.
 *
 * Result: a 32-bit code, 0 for success; the code space is that of the foundation's error codes.
 * Entry points that this library does not serve answer CoreErrorCodes::kNotImplemented (0x08000000)
 * and clear their out values. Three codes mean that the agent process has gone: kAgentShutdown,
 * kServiceUnavailable, kAgentGone below.
 *
 * Booleans out are 32-bit integers, zero or non-zero. Font and workgroup IDs are unsigned 32-bit
 * numbers, 0 is never a font; workgroup 0 and 0xFFFFFFFF mean every workgroup. Text is UTF-8 and
 * zero-terminated; text out is cut to its buffer and always terminated. Property lists given out
 * belong to the caller (one count); those given in are only read.
 *
 * A column-name getter fills a buffer with the name of a column, the name by which GetPermission
 * knows a permission.
 *
 * Threads: [main-thread] all entry points; the notification callback comes in on a thread of the
 * library's own. UnregisterForNotifications returns only when no call of that callback is running.
 */
#ifndef SDK_PLUGIN_INTERFACE_H
#define SDK_PLUGIN_INTERFACE_H

#include <stdint.h>

#include "sdk/PropertyList.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PluginFacade* PluginFacadeInstance;

/* Kinds of notification; the data pointer is lent for the length of the call. */
typedef enum PluginInterfaceECallbackKind {
  kCallback_AgentShutdown = 0,              /* no data */
  kCallback_OnlineStateChanged = 1,         /* const uint8_t * */
  kCallback_LoggedInStateChanged = 2,       /* PLDictionaryRef */
  kCallback_WorkgroupsChanged = 3,          /* no data */
  kCallback_UserPermissionsChanged = 4,     /* no data */
  kCallback_FontActivated = 8,              /* const uint32_t *, a font ID */
  kCallback_FontDeactivated = 9,            /* const uint32_t * */
  kCallback_FontMissing = 10,               /* const uint32_t * */
  kCallback_GoogleWebFontsEnabled = 14,     /* const uint8_t * */
  kCallback_GoogleReplicationProgress = 15, /* PLDictionaryRef */
  kCallback_GoogleReplicationStopped = 16,
  kCallback_PreviewPNGsRendered = 17, /* PLDictionaryRef */
  kCallback_SmartListsChanged = 18,
  kCallback_BulkReplicationProgress = 19, /* PLDictionaryRef */
  kCallback_BulkReplicationStopped = 20,
  kCallback_IncrementalReplicationProgress = 21, /* PLDictionaryRef */
  kCallback_IncrementalReplicationStopped = 22,
  kCallback_PanelDataChanged = 23,
  kCallback_DesignActivationNonCompliant = 24, /* const uint32_t * */
  kCallback_OfflineDownloadFinished = 25,
  kCallback_FontServerReplicationProgress = 27, /* PLDictionaryRef */
  kCallback_FontServerReplicationStopped = 28
} PluginInterfaceECallbackKind;

typedef uint32_t (*PluginInterfaceCallback)(int32_t kind, const void* data);

/* Codes that mean: the agent process has gone. */
#define kPluginInterface_AgentShutdown 0x0200200Du      /* GAgentIF::kShutdown */
#define kPluginInterface_ServiceUnavailable 0x0300100Eu /* GIPCClient::kServiceUnavailable */
#define kPluginInterface_AgentGone 0x02005001u

/* Verdicts of InitThreadInstance beside 0. */
#define kPluginInterface_WrongMode 0x03002005u
#define kPluginInterface_WrongModeOlder 0x03007005u
#define kPluginInterface_AgentNotFound 0x02002005u
#define kPluginInterface_AgentNotFoundOlder 0x02007005u
#define kPluginInterface_VaultInUse 0x02002008u
#define kPluginInterface_VaultInUseOlder 0x02007008u

/* Raw activation states, as kFP_ActivationStateKey of a record from GetFontInfoByID. */
enum {
  kRawActivationState_Inactive = 0,
  kRawActivationState_Auto = 1,      /* turned on by automatic activation */
  kRawActivationState_AutoOther = 2, /* the same, by another client */
  kRawActivationState_Preview = 3,   /* visible to one process only */
  kRawActivationState_User = 4,      /* turned on by the user */
  kRawActivationState_System = 5     /* a system font: always on */
};

/* Keys of the library's dictionaries. */
#define kPI_fontIDKey "fontID"
#define kPI_fontDisplayNameKey "displayName"
#define kPI_fontPostscriptNameKey "postscriptName"
#define kPI_activatedKey "activated"
#define kPI_fontLocationKey "fontLocation"
#define kPI_fontIsLocalKey "fontIsLocal"
#define kPI_workgroupIDsKey "workgroupIDs"
#define kPI_setIDsKey "setIDs"
#define kPI_smartSetIDsKey "smartSetIDs"
#define kPI_smartListIDKey "smartListID"
#define kPI_smartListNameKey "smartListName"
#define kPI_kTextKey "text"
#define kPI_kStepIndexKey "stepIndex"
#define kPI_kNumStepsKey "numSteps"
#define kPI_kIsLoggedInKey "isLoggedIn"
#define kPI_kServerTypeKey "serverType"
#define kPI_kPNGBytesKey "pngBytes"
#define kPI_kPNGFilenameKey "pngFilename"
#define kPI_k2xPNGFilenameKey "2xPNGFilename"

/* The table, in its order: X(result, name, (arguments)).
 *
 * ActivateFonts: fonts that could not be activated go to outFailed, fonts this user may not use to
 * outSecond; both hold `count` entries at most. GetFontIsActivated: is the font active for every
 * application of the user. GetClientFontActivationStates: does the font manager count the font as
 * turned on by automatic activation. GetPluginFacadeInstance, OSDoesDirectoryExist and
 * CanAccessGoogleFonts answer a value instead of a code. */
/* clang-format off */
#define PLUGIN_INTERFACE_ENTRY_POINTS(X)\
  X(uint32_t, ActivateFonts, (PluginFacadeInstance instance, uint32_t count, const uint32_t       \
    *fontIDs, uint32_t reserved, uint32_t one1, uint32_t one2, uint32_t one3, uint32_t            \
    failedCapacity, uint32_t secondCapacity, uint32_t *outFailed, uint32_t *outSecond, uint32_t   \
    *outFailedCount, uint32_t *outSecondCount))                                                   \
  X(uint32_t, AddFontsToSets, (PluginFacadeInstance instance, uint32_t fontCount, const uint32_t  \
    *fontIDs, uint32_t setCount, const uint32_t *setIDs))                                         \
  X(uint32_t, BeginLogging, (PluginFacadeInstance instance, const char *logName))                 \
  X(uint32_t, CanExportFonts, (PluginFacadeInstance instance, uint32_t count, const uint32_t      \
    *fontIDs, int32_t *outCan))                                                                   \
  X(uint32_t, CreateTopLevelSet, (PluginFacadeInstance instance, uint32_t *outSetID, uint32_t     \
    workgroupID, const char *name, uint32_t zero1, uint32_t zero2, uint32_t count, const          \
    uint32_t *fontIDs))                                                                           \
  X(uint32_t, DeactivateFonts, (PluginFacadeInstance instance, uint32_t count, const uint32_t     \
    *fontIDs, uint32_t reserved))                                                                 \
  X(uint32_t, DestroyThreadInstance, (PluginFacadeInstance instance))                             \
  X(uint32_t, EnableDesignActivation, (PluginFacadeInstance instance))                            \
  X(uint32_t, ExportFonts, (PluginFacadeInstance instance, uint32_t count, const uint32_t         \
    *fontIDs, const char *destinationFolder, uint32_t zero1, uint32_t zero2))                     \
  X(uint32_t, FindFontsInSameFamilyForActivation, (PLDictionaryRef font, const uint32_t           \
    *workgroupIDs, uint32_t workgroupCount, PLArrayRef *outFonts))                                \
  X(uint32_t, GetActivationStateColumnID, (char *outName, uint32_t size))                         \
  X(uint32_t, GetAllWorkgroupsForUser, (PluginFacadeInstance instance, PLArrayRef                 \
    *outWorkgroups, int32_t includeSpecial, int32_t includeTypekit))                              \
  X(uint32_t, GetAreSchemaVersionsInSync, (PluginFacadeInstance instance, int32_t *outInSync))    \
  X(uint32_t, RegisterForNotifications, (PluginFacadeInstance instance, PluginInterfaceCallback   \
    callback))                                                                                    \
  X(uint32_t, UnregisterForNotifications, (PluginFacadeInstance instance,                         \
    PluginInterfaceCallback callback))                                                            \
  X(uint32_t, GetCanActivateAcrossWorkgroupsColumnID, (char *outName, uint32_t size))             \
  X(uint32_t, GetClientFontActivationStates, (uint32_t count, const uint32_t *fontIDs, int32_t    \
    *outStates))                                                                                  \
  X(uint32_t, GetDefaultLibraryName, (PluginFacadeInstance instance, char *outName, uint32_t      \
    size))                                                                                        \
  X(uint32_t, GetExportFontsColumnID, (char *outName, uint32_t size))                             \
  X(uint32_t, GetFamilyGroupIDColumnID, (char *outName, uint32_t size))                           \
  X(uint32_t, GetFamilyGroupNameColumnID, (char *outName, uint32_t size))                         \
  X(uint32_t, GetFamilyNameColumnID, (char *outName, uint32_t size))                              \
  X(uint32_t, GetFileSizeColumnID, (char *outName, uint32_t size))                                \
  X(uint32_t, GetFontFaceIDColumnID, (char *outName, uint32_t size))                              \
  X(uint32_t, GetFontInfoByID, (PluginFacadeInstance instance, const uint32_t *workgroupIDs,      \
    uint32_t workgroupCount, PLDictionaryRef font, uint32_t *ioFontID, PLDictionaryRef            \
    *outRecord))                                                                                  \
  X(uint32_t, GetFontIsActivated, (PluginFacadeInstance instance, uint32_t count, const uint32_t  \
    *fontIDs, int32_t *outStates))                                                                \
  X(uint32_t, GetFontLocationColumnID, (char *outName, uint32_t size))                            \
  X(uint32_t, GetFaceprintChecksumColumnID, (char *outName, uint32_t size))                       \
  X(uint32_t, GetFontTypeColumnID, (char *outName, uint32_t size))                                \
  X(uint32_t, GetFontVaultPath, (PluginFacadeInstance instance, uint32_t size, char *outPath))    \
  X(uint32_t, GetFontVersionColumnID, (char *outName, uint32_t size))                             \
  X(uint32_t, GetFontsByPostscriptName, (PluginFacadeInstance instance, const char *name, const   \
    uint32_t *workgroupIDs, uint32_t workgroupCount, uint32_t *outIDs, uint32_t capacity,         \
    uint32_t *outCount))                                                                          \
  X(uint32_t, GetFontsByFamilyName, (PluginFacadeInstance instance, const char *name, const       \
    uint32_t *workgroupIDs, uint32_t workgroupCount, uint32_t *outIDs, uint32_t capacity,         \
    uint32_t *outCount))                                                                          \
  X(uint32_t, GetFoundryNameColumnID, (char *outName, uint32_t size))                             \
  X(uint32_t, GetIsCoreAgentProcessRunning, (PluginFacadeInstance instance, int32_t               \
    *outRunning))                                                                                 \
  X(uint32_t, GetIsFontLocalColumnID, (char *outName, uint32_t size))                             \
  X(uint32_t, GetIsLoggedIn, (PluginFacadeInstance instance, int32_t *outLoggedIn))               \
  X(uint32_t, GetIsOnline, (PluginFacadeInstance instance, int32_t *outOnline))                   \
  X(uint32_t, GetIsStandaloneMode, (PluginFacadeInstance instance, int32_t *outStandalone))       \
  X(uint32_t, GetIsKestraneFileColumnID, (char *outName, uint32_t size))                          \
  X(uint32_t, GetKerningChecksumColumnID, (char *outName, uint32_t size))                         \
  X(uint32_t, GetLegacyFaceprintChecksumColumnID, (char *outName, uint32_t size))                 \
  X(uint32_t, GetLocalPathColumnID, (char *outName, uint32_t size))                               \
  X(uint32_t, GetPermission, (PluginFacadeInstance instance, uint16_t flag, const char            \
    *columnName, uint32_t workgroupID, int32_t *outPermission))                                   \
  X(PluginFacadeInstance, GetPluginFacadeInstance, (void))                                        \
  X(uint32_t, ResetPluginFacadeInstance, (void))                                                  \
  X(uint32_t, GetPostscriptNameColumnID, (char *outName, uint32_t size))                          \
  X(uint32_t, GetDisplayNameColumnID, (char *outName, uint32_t size))                             \
  X(uint32_t, GetScannedFoundryColumnID, (char *outName, uint32_t size))                          \
  X(uint32_t, GetSystemWorkgroupID, (PluginFacadeInstance instance, uint32_t *outWorkgroupID))    \
  X(uint32_t, GetWorkgroupIDColumnID, (char *outName, uint32_t size))                             \
  X(uint32_t, GetWorkgroupNameColumnID, (char *outName, uint32_t size))                           \
  X(uint32_t, GetWorkgroupTypeColumnID, (char *outName, uint32_t size))                           \
  X(uint32_t, InitAppInstance, (PluginFacadeInstance instance, int32_t hostType, int32_t          \
    interfaceVersion))                                                                            \
  X(uint32_t, InitThreadInstance, (PluginFacadeInstance instance))                                \
  X(uint32_t, IsAllWorkgroups, (PluginFacadeInstance instance, uint32_t workgroupID, int32_t      \
    *outIsAll))                                                                                   \
  X(uint32_t, Log, (PluginFacadeInstance instance, const char *text))                             \
  X(uint32_t, OSCreateDirectory, (const char *path, int32_t recursive))                           \
  X(uint32_t, OSDoesDirectoryExist, (const char *path))                                           \
  X(uint32_t, PreviewActivateFonts, (PluginFacadeInstance instance, uint32_t count, const         \
    uint32_t *fontIDs, uint32_t reserved))                                                        \
  X(uint32_t, GetGoogleFonts, (PluginFacadeInstance instance, PLArrayRef *outFonts))              \
  X(uint32_t, GetIsReplicationRunning, (PluginFacadeInstance instance, int32_t *outRunning))      \
  X(uint32_t, GetCurrentReplicationMode, (PluginFacadeInstance instance, int32_t *outMode))       \
  X(uint32_t, GetIsGoogleWebFontsEnabled, (PluginFacadeInstance instance, int32_t *outEnabled))   \
  X(uint32_t, SetGoogleWebFontsEnabled, (PluginFacadeInstance instance, int32_t enabled))         \
  X(uint32_t, GetRenderedPNGsDirectory, (PluginFacadeInstance instance, char *outPath, uint32_t   \
    size))                                                                                        \
  X(uint32_t, RenderFontNamePreviewPNGs, (PluginFacadeInstance instance, uint32_t                 \
    highPriorityCount, const uint32_t *highPriorityIDs, uint32_t count, const uint32_t *fontIDs,  \
    uint32_t smartListID, uint32_t fontSize, uint32_t width, uint32_t height, uint32_t            \
    twoSizes))                                                                                    \
  X(uint32_t, RenameSmartList, (PluginFacadeInstance instance, uint32_t smartListID, const char   \
    *name))                                                                                       \
  X(uint32_t, DeleteSmartList, (PluginFacadeInstance instance, uint32_t smartListID))             \
  X(uint32_t, QueryForSmartListFonts, (PluginFacadeInstance instance, uint32_t workgroupCount,    \
    const uint32_t *workgroupIDs, uint32_t setCount, const uint32_t *setIDs, uint32_t             \
    smartSetCount, const uint32_t *smartSetIDs, PLArrayRef *outFonts))                            \
  X(uint32_t, GetSmartList, (PluginFacadeInstance instance, uint32_t smartListID,                 \
    PLDictionaryRef *outSmartList))                                                               \
  X(uint32_t, GetPanelSmartListTree, (PluginFacadeInstance instance, uint32_t smartListID,        \
    PLStringRef *outTree))                                                                        \
  X(uint32_t, GetAllSmartLists, (PluginFacadeInstance instance, PLArrayRef *outSmartLists))       \
  X(uint32_t, CreateSmartList, (PluginFacadeInstance instance, const char *name, uint32_t zero1,  \
    uint32_t zero2, uint32_t zero3, uint32_t zero4, uint32_t zero5, uint32_t zero6, uint32_t      \
    *outSmartListID))                                                                             \
  X(uint32_t, SetSmartListQuery, (PluginFacadeInstance instance, uint32_t smartListID, uint32_t   \
    workgroupCount, const uint32_t *workgroupIDs, uint32_t setCount, const uint32_t *setIDs,      \
    uint32_t smartSetCount, const uint32_t *smartSetIDs))                                         \
  X(uint32_t, GetSmartListFonts, (PluginFacadeInstance instance, uint32_t smartListID,            \
    PLArrayRef *outFonts))                                                                        \
  X(uint32_t, CleanUpOnShutdown, (PluginFacadeInstance instance))                                 \
  X(uint32_t, GetFontConflicts, (PluginFacadeInstance instance, uint32_t count, const uint32_t    \
    *fontIDs, uint32_t *outConflicts))                                                            \
  X(uint32_t, TrackFontPanelClick, (PluginFacadeInstance instance, uint32_t fontID, const char    \
    *text))                                                                                       \
  X(uint32_t, CanAccessGoogleFonts, (PluginFacadeInstance instance))
/* clang-format on */

#define PLUGIN_INTERFACE_DECLARE(result, name, arguments) result name arguments;
#ifndef PLUGIN_INTERFACE_NO_PROTOTYPES
PLUGIN_INTERFACE_ENTRY_POINTS(PLUGIN_INTERFACE_DECLARE)
#endif
#undef PLUGIN_INTERFACE_DECLARE

#ifdef __cplusplus
}
#endif

#endif

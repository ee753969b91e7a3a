/* The dialog framework "VendrelPlugins.framework" as a plug-in calls it: preferences, localised
 * texts and every dialog. Found at run time and never linked; every entry point may be absent, the
 * caller then falls back to a neutral default.
 *
 * Text in is UTF-8, zero-terminated; text out is a string handle with one count for the caller.
 * Dictionaries and arrays are only read and not kept beyond the call, unless a function says so.
 *
 * Threads: [main-thread] everything.
 */
#ifndef SDK_TARN_H
#define SDK_TARN_H

#include <stdint.h>

#include "sdk/PropertyList.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The version that TarnIsVersionCompatible is asked for. */
#define kTarnVersion "1.0"

/* The last of the defaults that a plug-in writes at its first start. Preferences exist once it is
 * there: what is stored earlier in that start (the workgroup in use) does not count, and a first
 * start that was cut short is made up for by the next. */
#define kTarnLastDefaultPreference "DropDownSelection"

/* Keys of the host details. */
#define kTarnHostApp "HostApp"
#define kTarnPluginVersion "PluginVersion"
#define kTarnPluginInterfaceVersion "VendrelPluginInterfaceVersion"
#define kTarnFrameworkURL "FrameworkURL"
#define kTarnFontManager "FontManager"

/* Keys of the progress dictionary. */
#define kTarnMaxProgress "MaxProgress"
#define kTarnCurrentProgress "CurrentProgress"
#define kTarnIsIndeterminate "IsIndeterminate"
#define kTarnWindowTitle "WindowTitle"
#define kTarnHeader "Header"
#define kTarnStatus "Status"

/* Button styles of TarnShowMessageBox: one button, or two (1 is the first, "yes"; 2 the second). */
enum { kTarnOneButton = 0, kTarnTwoButtons = 2 };

/* X(result, name, (arguments)), in the order of the table. */
/* clang-format off */
#define TARN_ENTRY_POINTS(X)                                                                      \
  X(bool, TarnIsVersionCompatible, (const char *version))                                         \
  X(int32_t, TarnInitializeFramework, (PLDictionaryRef hostDetails)) /* 0 on success; copies */   \
  X(PLStringRef, TarnLocalizedString, (const char *key))                                          \
  X(int8_t, TarnGetPreferenceForKey, (const char *key))                                           \
  X(void, TarnSetPreferenceForKey, (const char *key, int8_t value))                               \
  X(int32_t, TarnGetLongPreferenceForKey, (const char *key))                                      \
  X(void, TarnSetLongPreferenceForKey, (const char *key, int32_t value))                          \
  X(PLStringRef, TarnGetStringPreferenceForKey, (const char *key)) /* null if never set */        \
  X(void, TarnSetStringPreferenceForKey, (const char *key, const char *value))                    \
  X(bool, TarnDoPreferencesExist, (void))                                                         \
  X(void, TarnShowAboutBox, (void))                                                               \
  X(int32_t, TarnShowMessageBox, (const char *titleKey, const char *message, uint32_t style))     \
  X(int32_t, TarnAskForOneString, (const char *prompt, const char *label,                         \
                                   const char *defaultValue, PLStringRef *outValue))              \
  X(void, TarnShowPreferences, (void))                                                            \
  X(void, TarnShowResolveFonts, (PLArrayRef fonts)) /* sets kFP_MatchedFontKey in the records */  \
  X(void, TarnShowRestrictedFonts, (PLArrayRef fonts))                                            \
  X(int32_t, TarnShowSelectWorkgroup, (PLArrayRef workgroups))                                    \
  X(int32_t, TarnShowCommandBox, (PLDictionaryRef details, int32_t *outCommand))                  \
  X(void, TarnShowMissingFonts, (PLDictionaryRef details))                                        \
  X(void, TarnForceSelectWorkgroupWindowToFront, (void))                                          \
  X(void, TarnShowProgress, (PLDictionaryRef progress))                                           \
  X(void, TarnUpdateProgress, (PLDictionaryRef progress))                                         \
  X(void, TarnHideProgress, (void))                                                               \
  X(void, TarnSetIsOnline, (bool isOnline))                                                       \
  X(void, TarnSetHostDetails, (PLDictionaryRef details)) /* merged into those of the start */
/* clang-format on */

#define TARN_DECLARE(result, name, arguments) result name arguments;
#ifndef TARN_NO_PROTOTYPES
TARN_ENTRY_POINTS(TARN_DECLARE)
#endif
#undef TARN_DECLARE

#ifdef __cplusplus
}
#endif

#endif

/* The host's plug-in loader: the message of every call, and the suite through which all other
 * suites are found by name and version.
 *
 * A plug-in is a bundle X.plugin whose executable exports `AutoPluginMain`. The host calls it with
 * a caller and a selector, both compared through the basic suite's IsEqual.
 *
 * Main loop. The host iterates the default GLib main context of the process; timers that a plug-in
 * adds there fire while the host idles, tracks a menu or runs a modal dialog.
 *
 * Threads: [main-thread] everything.
 */
#ifndef SDK_HOST_BASIC_H
#define SDK_HOST_BASIC_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* 0 for success; a small number or a four-character code ('Parm') in big-endian reading order. */
typedef int32_t SPErr;

/* A four-character code as an integer: SP_CODE('D','o','c','I'). */
#define SP_CODE(a, b, c, d)                                                      \
  (((uint32_t)(unsigned char)(a) << 24) | ((uint32_t)(unsigned char)(b) << 16) | \
   ((uint32_t)(unsigned char)(c) << 8) | (uint32_t)(unsigned char)(d))

#define kSPBadParameterError ((SPErr)SP_CODE('P', 'a', 'r', 'm'))
#define kSPSuiteNotFoundError ((SPErr)SP_CODE('S', '!', 'F', 'd'))
#define kSPOutOfMemoryError ((SPErr)SP_CODE('!', 'M', 'e', 'm'))

typedef struct SPPlugin* SPPluginRef; /* the host's name for a plug-in; opaque to it */

/* Found first, in the message; suites are counted, every acquisition is released once. */
typedef struct SPBasicSuite {
  SPErr (*AcquireSuite)(const char* name, int32_t version, const void** suite);
  SPErr (*ReleaseSuite)(const char* name, int32_t version);
  bool (*IsEqual)(const char* a, const char* b);
} SPBasicSuite;

#define kSPBlocksSuite "SP Blocks Suite"
#define kSPBlocksSuiteVersion 2
/* Memory of the host; a block is freed by the host's FreeBlock only. */
typedef struct SPBlocksSuite {
  SPErr (*AllocateBlock)(size_t size, const char* debugName, void** block);
  SPErr (*FreeBlock)(void* block);
} SPBlocksSuite;

#define kSPInterfaceCaller "SP Interface"
#define kSPInterfaceAboutSelector "About"
#define kSPInterfaceStartupSelector "Startup"
#define kSPInterfaceShutdownSelector "Shutdown"
#define kPSPhotoshopCaller "PS Photoshop"
#define kPSDoIt "Do It"

struct PIActionDescriptorData;

/* Lent for the call. `globals` is the plug-in's to set; the host hands it back at the next call. */
typedef struct SPMessageData {
  SPPluginRef self;
  void* globals;
  const SPBasicSuite* basic;
  /* Only with "Do It": parameters in and out; may be null. */
  struct PIActionDescriptorData* actionParameters;
} SPMessageData;

typedef SPErr (*AutoPluginMainProc)(const char* caller, const char* selector,
                                    SPMessageData* message);
#define kAutoPluginMainSymbol "AutoPluginMain"

#ifdef __cplusplus
}
#endif

#endif

/* The host's windows, as a plug-in may watch them.
 *
 * A plug-in may put an order procedure in front of the host's own: the host calls it for every
 * window that is about to appear, and the procedure passes on by calling the one that it replaced.
 *
 * Threads: [main-thread] everything.
 */
#ifndef SDK_HOST_WINDOWS_H
#define SDK_HOST_WINDOWS_H

#include "sdk/HostBasic.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct HostWindow* HostWindowRef; /* lives while it is ordered */

typedef void (*HostOrderWindowProc)(HostWindowRef window);

/* Kinds of subview of a window's content. */
enum { kHostSubviewOther = 0, kHostSubviewButton = 1, kHostSubviewText = 2 };

#define kHostKeyEscape 53

#define kHostWindowSuite "Kestrane Window Suite"
#define kHostWindowSuiteVersion 1
typedef struct HostWindowSuite {
  /* Puts `procedure` in front; gives the one that was there. Null puts the host's own back. */
  HostOrderWindowProc (*ExchangeOrderWindow)(HostOrderWindowProc procedure);
  /* Cut to size - 1 and terminated. */
  SPErr (*GetTitle)(HostWindowRef window, char* out, uint32_t size);
  SPErr (*GetSubviewCount)(HostWindowRef window, uint32_t* out);
  SPErr (*GetSubviewKind)(HostWindowRef window, uint32_t index, int32_t* out);
  /* A key press; Escape dismisses a window as its cancel button does. */
  SPErr (*SendKey)(HostWindowRef window, uint32_t keyCode);
  bool (*HasModalWindow)(void);
} HostWindowSuite;

#ifdef __cplusplus
}
#endif

#endif

/* Waits with the system's call for messages: handles of the application may stand beside them. */
#include <windows.h>

#include "event_loop.h"

void wait_for_events(int milliseconds) {
    const DWORD limit = milliseconds < 0 ? INFINITE : (DWORD)milliseconds;
    MsgWaitForMultipleObjectsEx(0, NULL, limit, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
}

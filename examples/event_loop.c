/* An application with a loop of its own: two timers tick in its window while it sleeps in between.
 *
 *   event_loop
 *
 * Prints the ticks and ends with the third slow one. */
#include <stdio.h>

#include <zrclb/zrclb.h>

#include "event_loop.h"

static zr_window window;
static int quick_slot;
static int quick_ticks;
static int slow_ticks;

/* Every timer message carries its timer. */
static void handle_message(zr_window target, unsigned int message, zr_value identifier, void *user) {
    (void)target;
    (void)user;
    if (message == 0x113)
        zrTimerExecute((zrTimer *)identifier);
}

static zr_window current_window(void) {
    return window;
}

static void tick(void *user_data) {
    ++*(int *)user_data;
}

static void slow_tick(void *user_data) {
    tick(user_data);
    printf("slow tick %d\n", slow_ticks);
    if (slow_ticks == 2)
        zrTimerDel(quick_slot);
}

int main(void) {
    int waits = 0;
    window = zrWindowCreate(handle_message, NULL);
    if (window == NULL)
        return 1;
    quick_slot = zrTimerSet(current_window, 20, tick, &quick_ticks);
    zrTimerSet(current_window, 100, slow_tick, &slow_ticks);
    while (slow_ticks < 3) {
        wait_for_events(zrPumpNextDue());
        ++waits;
        Yield_and_PeekMessage(); /* dispatches what is due */
    }
    printf("quick ticks: %s\n", quick_ticks > 2 ? "several" : "too few");
    printf("waits: %s\n", waits <= 50 ? "few" : "many"); /* it slept in between */
    printf("window: %s\n",
           zrWindowDestroy(window) == 1 ? "ended" : "still there"); /* with it the timers that run in it */
    return 0;
}

/* Waiting as each system does it, for the sample program with a loop of its own. */
#ifndef EVENT_LOOP_H
#define EVENT_LOOP_H

/* Waits until a message of this thread is due or something else has to be done, at most `milliseconds`, for ever if that is -1. */
void wait_for_events(int milliseconds);

#endif

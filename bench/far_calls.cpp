// A library of its own, to see what a call across the border of one costs.

// Calls until 0 is answered. The number of calls before.
extern "C" long far_calls(int (*get_char)()) {
    long count = 0;
    while (get_char() != 0)
        ++count;
    return count;
}

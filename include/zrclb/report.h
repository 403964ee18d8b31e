/* Reports, call traces, message boxes and the exit list. C17 and C++20.
 *
 * 1. State is process-wide: one copy for each loaded library, valid from load on; no call has to come first.
 * 2. Texts are zero-terminated bytes in code page 1252. No text given is kept beyond the call.
 * 3. file is the reporting source file's name less its extension, line the line of the call. A null file counts as empty.
 * 4. No report changes the flow of control or shows anything to the user, apart from zr_exit and a zr_end that has
 *    no zr_begin.
 * 5. Records go to the daily log while that is switched on; each is complete on disk when its report returns.
 * 6. Threads: reports may come from any thread, and their records never mix. The trace stack is one for the process:
 *    brackets of several threads interleave. The name, the switch and the exit list belong to one thread at a time.
 */
#ifndef ZRCLB_REPORT_H
#define ZRCLB_REPORT_H

#include <zrclb/types.h>

#if defined(__cplusplus)
#define ZR_NORETURN [[noreturn]]
#else
#define ZR_NORETURN _Noreturn
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Shows a box in place of the system's. user is what zr_SetMessageBoxHandler was given; the result is what the box
   would have returned. Runs in the thread that asks for the box, outside every lock of the library. */
typedef int (*zr_MessageBoxHandler)(zr_window owner, const char *text, const char *caption, zr_ulong type,
                                    zr_value user);

/* A function of the exit list. */
typedef void (*zr_exit_function)(void);

/* Opens a trace bracket named name, at most 79 bytes of it. A name equal to that of the innermost open bracket only
   raises that bracket's count. The 21st open name reports the error "zr_begin: runtime stack overflow" and ends tracing
   for good. Null counts as the empty name. No allocation, no lock. */
ZR_API void zr_begin(const char *name) ZR_NOEXCEPT;

/* Closes the innermost trace bracket. Without an open one it shows the system's message box, waits for the user, and
   writes two lines to the log. Does nothing once tracing has ended. */
ZR_API void zr_end(void) ZR_NOEXCEPT;

/* Tells of a caller's fault: a record with time, program name, source place and texts in the log.
   Each text may be null and is then left out; text1 is the message, text2 and text3 name the object concerned. */
ZR_API void zr_message(const char *text1, const char *text2, const char *text3, const char *file, int line) ZR_NOEXCEPT;

/* Tells of a failure: a record as zr_message's with the traceback behind it in the log, unless zr_error_onoff(0) holds,
   and the same texts to the debugger channel in any case. */
ZR_API void zr_error(const char *text1, const char *text2, const char *text3, const char *file, int line) ZR_NOEXCEPT;

/* Ends the process with status 0: shows the texts, joined and cut at 255 bytes, in the system's message box, waits for
   the user, writes a record with traceback, runs the exit list and frees it. Does not return. */
ZR_NORETURN ZR_API void zr_exit(const char *text1, const char *text2, const char *text3, const char *file,
                                int line) ZR_NOEXCEPT;

/* Tells of a value that no branch of a switch takes: a record with value and traceback in the log. */
ZR_API void zr_switch_error(int value, const char *file, int line) ZR_NOEXCEPT;

/* Whether zr_error writes to the log: 1 yes, as at load, 0 no. Stores state if it is 0 or 1; any other state only asks.
   Gives the value that held before the call. */
ZR_API int zr_error_onoff(int state) ZR_NOEXCEPT;

/* Sets the program name that messages and errors carry, at most 40 characters of name. Null: that of the running program,
   "tool.exe[C:\folder\...]": the name of its file, and of drive and folder at most 20 characters each. Where its path
   isn't known the name is "GetModuleFileName??". The first message or error does the same while no name is set. */
ZR_API void zr_error_setname(const char *name) ZR_NOEXCEPT;

/* Shows a message box through the handler installed last, or through the system. type holds the system's flags.
   Gives what the handler or the box returned. */
ZR_API int zr_MessageBox(zr_window owner, const char *text, const char *caption, unsigned int type) ZR_NOEXCEPT;

/* Puts handler on top of the stack of message box handlers, with the value that it gets back. A null handler takes the
   top one off and so brings the one below into force; on an empty stack it does nothing. Any thread. */
ZR_API void zr_SetMessageBoxHandler(zr_MessageBoxHandler handler, zr_value user) ZR_NOEXCEPT;

/* The exit list, which zr_exit runs:
     operation 0: registers function behind the others, once more if it stands there already; -1 for null or no memory
     operation 1: runs all in the order of registration, also those registered meanwhile; they stay registered
     operation 2: runs function once if it is registered; -1 if not, or for null
     operation 3: frees the list
   0 if done; -1 for any other operation. function counts for operations 0 and 2 only. */
ZR_API int endprog_fkt(int operation, zr_exit_function function) ZR_NOEXCEPT;

/* Runs the exit list and frees it. An application that registers functions calls this at its end, if it does not end
   through zr_exit: the unload of the library does not run the list. Gives 0. */
ZR_API int zr_atexit(void) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif

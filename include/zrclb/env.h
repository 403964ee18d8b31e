/* The environment tree as plain functions over handles. C17 and C++20.

   An environment is a store of named values: sections at the top, in them blocks and data elements to any depth. A
   subenvironment is a view of one element of it. The format of its files is told in docs/env-format.md.

   Conventions
    1. Handles. A zr_env comes from env_open, env_open_subenv or env_create_subenv and is alive until env_close gives
       0. Only null is tested: every function takes a null handle and gives its failure value without a report. A
       handle that has been closed must not be passed any more.
    2. Addresses. "section" names a section; a subenvironment ignores it, but hands it on to its defaults. "path" is a
       row of names below the section, or below the root of a subenvironment, joined by the delimiter ('@' unless
       changed). Behind a name may stand its position among namesakes of one block, counted from 1: "bar@2@length". A
       null path is the section, or the root, itself. With a null section an environment that is no subenvironment
       answers with its first section, whatever the path.
    3. direct. Non-zero: each name of a path is a direct child of the one before. Zero: each may lie anywhere below,
       breadth first.
    4. Defaults. Where "with defaults" is said, what an environment does not hold is looked up in the environments
       that are attached behind it. Nothing is ever written there.
    5. Results. Zero and above: done. For the typed getters that number is the id of the environment in which the
       value was found, or 0 if it belongs to none. Use ids of 0 and above, a negative one cannot be told from a
       failure.

          0  ENV_OK          done
         -1  ENV_DATA        env_check, env_get_core, env_get_pos, env_get_first, env_get_next: a data element was found
                             (their success); typed getters: the element is no data element (a failure)
         -2  ENV_BLOCK       the same functions: a block or section was found (their success);
                             env_list_elem_names: nothing there, or no block
         -4  ENV_NOT_FOUND   there is no such section, element or position
         -5  ENV_BAD_FORMAT  the text of a value, or of a file, has not the wanted form
         -6  ENV_EMPTY_PATH  an empty path where one is needed (env_put, env_put_string)
         -7  ENV_TOO_SMALL   a buffer or an array of the caller is too small
         -8  ENV_IN_USE      the environment is still held by others (env_close)
        -10  ENV_ERROR       null handle or output, no memory, any other fault

       Functions that answer with a truth value say so.
    6. Texts are zero-terminated bytes in code page 1252. A capacity counts bytes with the terminator; where one is 0
       or less nothing is written. Names and values are found again exactly, letter case included.
    7. Ownership. Texts and arrays that are passed in are copied. A text from env_get_core or env_get_reference
       belongs to the tree: it is valid until its element is changed, renamed or deleted. A text from
       env_write_to_string belongs to the caller and goes back through env_free_string. A subenvironment owns nothing
       and is to be closed before what lies under it is deleted.
    8. Threads. One re-entrant lock for all environments of the process is held through each call, and by the walks
       through all of their callbacks, unless "No lock" is said: such a call on an environment that another thread may
       use at that time needs the caller's own protection. A borrowed text is protected by nothing.
    9. Reports. The tree below tells of a caller's faults through zr_message and of inconsistencies through zr_error;
       what the functions report themselves is said with them. Without memory the report is zr_error "Out of memory",
       or zr_message where a new element finds none; env_open and its kin may give null without one.
   10. Nothing throws, and a callback must not let an exception out: it would end the process. */
#ifndef ZRCLB_ENV_H
#define ZRCLB_ENV_H

#include <zrclb/types.h>

/* How a reader treats a backslash at a line's end. */
typedef enum EEnvReadMode {
    eEnvReadWrapped = 0,    /* it can fold a line */
    eEnvReadNotWrapped = 1, /* it is a plain character */
    eEnvReadAuto = 2        /* decided by the first line */
} EEnvReadMode;

/* Results of environment operations. */
#ifdef __cplusplus
namespace Zr {
enum EZrEnvError : int
#else
enum EZrEnvError
#endif
{
    ENV_OK = 0,
    ENV_DATA = -1,
    ENV_BLOCK = -2,
    ENV_NOT_FOUND = -4,
    ENV_BAD_FORMAT = -5,
    ENV_EMPTY_PATH = -6,
    ENV_TOO_SMALL = -7,
    ENV_IN_USE = -8,
    ENV_ERROR = -10
};
#ifdef __cplusplus
}
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Life cycle and identity */

/* Makes a new, empty environment with the given id (0 and above, see 5). deflt, if not null, becomes its default
   and cannot be closed before it. The caller ends it with env_close. Null when there is no memory. */
ZR_API zr_env env_open(zr_long id, zr_env deflt) ZR_NOEXCEPT;

/* Opens a view of the addressed element, of whatever kind, without defaults. It takes over id, delimiter and
   default of the environment that owns the element, and holds that environment until env_close. Null: null env, no
   such element. */
ZR_API zr_env env_open_subenv(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* As env_open_subenv with direct names, but makes what is missing: the section, and a block for each name. A data
   element in the midst of the path is replaced by an empty block. Null: null env, or the path cannot be made. */
ZR_API zr_env env_create_subenv(zr_env env, const char *section, const char *path) ZR_NOEXCEPT;

/* Ends an environment or a subenvironment, and what env_get_first remembers for it. With all non-zero the chain of
   defaults behind an environment is ended too, up to one that is held by others. 0; -8 when env, or with all one of
   the chain, is still held: what could be ended has been ended then. A null env gives 0. */
ZR_API int env_close(zr_env env, int all) ZR_NOEXCEPT;

/* Puts deflt at the end of the chain of defaults of env, and holds it there. Null env, or a deflt that is in the
   chain already or whose own chain leads to env: nothing. Null deflt: zr_message, nothing. */
ZR_API void env_attach_as_last_default(zr_env env, zr_env deflt) ZR_NOEXCEPT;

/* Takes the chain of defaults off env. Its first environment, with the rest still behind it, or null if there is
   none. */
ZR_API zr_env env_detach_default_chain(zr_env env) ZR_NOEXCEPT;

/* Sets the character between the names of a path. Subenvironments that are open keep theirs. Zero: zr_error "Bad
   delimiter", no change. Gives the delimiter from before, '@' for a null env. */
ZR_API char env_set_delimiter(zr_env env, char c) ZR_NOEXCEPT;

/* The delimiter; '@' for a null env. No lock. */
ZR_API char env_get_delimiter(zr_env env) ZR_NOEXCEPT;

/* The delimiter as a text of one character, valid as long as env; a constant "@" for a null env. No lock. */
ZR_API const char *env_get_str_delimiter(zr_env env) ZR_NOEXCEPT;

/* When the file that was read last had been changed, in seconds since 1970; -1 before a file was read, -10 for a
   subenvironment or a null env. */
ZR_API zr_long env_get_file_mtime(zr_env env) ZR_NOEXCEPT;

/* 1 when name can be the name of a section: not null and without ']'; else 0. No lock. */
ZR_API int env_CheckSectionName(const char *name) ZR_NOEXCEPT;

/* ---- Files and texts

   Reading replaces all sections of env. A mode is a value of EEnvReadMode. With wrap non-zero long values are
   written over several lines. All of these take no lock. */

/* Reads a file, mode eEnvReadAuto. 0; -5 when its text is malformed (see env_get_error_position); -10 when it
   cannot be opened, for a null env or path, or a subenvironment. No lock. */
ZR_API int env_read_file(const char *path, zr_env env) ZR_NOEXCEPT;

/* As env_read_file, with the given mode. No lock. */
ZR_API int env_read_file_ex(const char *path, zr_env env, zr_long mode) ZR_NOEXCEPT;

/* Writes env as a file, wrapped. Unlike reading, 1 is success here: 1, or 0 when the file cannot be written; -10
   for a null env. No lock. */
ZR_API int env_write_file(const char *path, zr_env env) ZR_NOEXCEPT;

/* As env_write_file, wrapped if wrap is not 0. No lock. */
ZR_API int env_write_file_ex(const char *path, zr_env env, int wrap) ZR_NOEXCEPT;

/* As env_read_file, from a text in memory. No lock. */
ZR_API int env_read_from_string(const char *text, zr_env env) ZR_NOEXCEPT;

/* As env_read_from_string, with the given mode. No lock. */
ZR_API int env_read_from_string_ex(const char *text, zr_env env, zr_long mode) ZR_NOEXCEPT;

/* What env_write_file would write, byte for byte (line ends are CR LF), as a text for env_free_string. Null: null
   env, no memory. No lock. */
ZR_API char *env_write_to_string(zr_env env) ZR_NOEXCEPT;

/* As env_write_to_string, wrapped if wrap is not 0. No lock. */
ZR_API char *env_write_to_string_ex(zr_env env, int wrap) ZR_NOEXCEPT;

/* Frees a text of env_write_to_string, in the only way there is; null is allowed. No lock. */
ZR_API void env_free_string(char *s) ZR_NOEXCEPT;

/* Where the last read of env stopped: line and column in bytes, both counted from 1. 0; -4, with the outputs left
   alone, when that read did not fail or there was none; -10 for a null env. An output may be null. */
ZR_API int env_get_error_position(zr_env env, zr_long *line, zr_long *column) ZR_NOEXCEPT;

/* ---- Typed getters

   All look up with defaults. Result: the id of the environment that held the value (0 and above); -1 the element is
   no data element; -4 not found; -5 not of the wanted form; -7 a buffer or array is too small; -10 null env or
   output, or an element without value. On -1, -4 and -10 a single output keeps what it held. */

/* Copies the value as text into text[0..capacity-1], terminator included; -7 when it does not fit. */
ZR_API int env_get(zr_env env, const char *section, const char *path, int direct, zr_long capacity,
                   char *text) ZR_NOEXCEPT;

/* The same as env_get. */
ZR_API int env_get_string(zr_env env, const char *section, const char *path, int direct, zr_long capacity,
                          char *text) ZR_NOEXCEPT;

/* Copies the value as bytes into data. *size is its capacity before the call and the number of bytes afterwards. A
   value that was not stored as bytes gives its text, with a terminator if there is room. */
ZR_API int env_get_bin(zr_env env, const char *section, const char *path, int direct, char *data,
                       zr_long *size) ZR_NOEXCEPT;

/* The value as a number. A text that begins with a number and goes on otherwise stores it, and gives -5. */
ZR_API int env_get_double(zr_env env, const char *section, const char *path, int direct, double *value) ZR_NOEXCEPT;

/* The value as a whole number of 32 bits. A text that begins with a number and goes on otherwise stores it, and
   gives -5. */
ZR_API int env_get_long(zr_env env, const char *section, const char *path, int direct, zr_long *value) ZR_NOEXCEPT;

/* A list of numbers into values[0..*count-1]. *count is the capacity before the call and the number of items
   afterwards; 0 on -1 and -4. */
ZR_API int env_get_doubles(zr_env env, const char *section, const char *path, int direct, zr_long *count,
                           double *values) ZR_NOEXCEPT;

/* A list of whole numbers, as env_get_doubles. */
ZR_API int env_get_longs(zr_env env, const char *section, const char *path, int direct, zr_long *count,
                         zr_long *values) ZR_NOEXCEPT;

/* A list of texts, each copied into items[i][0..width-1] with its terminator; *count as in env_get_doubles.
   -10 also for a count or width below 1, or a null item. */
ZR_API int env_get_strings(zr_env env, const char *section, const char *path, int direct, zr_long *count, zr_long width,
                           char **items) ZR_NOEXCEPT;

/* Stores a pointer to the element's own text, which is null for an element without value; see 7. A null env or text
   gives 0. */
ZR_API int env_get_reference(zr_env env, const char *section, const char *path, int direct,
                             const char **text) ZR_NOEXCEPT;

/* ---- Other queries */

/* Of a list, with defaults: the number of its items, and the length of the longest, terminator not counted:
   env_get_strings needs one byte more as its width. An output may be null; both are 0 on failure. 0, -1, -4, -10. */
ZR_API int env_get_array_size(zr_env env, const char *section, const char *path, int direct, zr_long *count,
                              zr_long *width) ZR_NOEXCEPT;

/* The length of the value as a text, terminator not counted: env_get needs one byte more. With defaults. 0 when
   there is no such data element or it has no value, -10 for a null env. */
ZR_API int env_data_length(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* 1 if there is such an element, with defaults; else 0. */
ZR_API int env_exist(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* 1 if there is such an element and it is a data element, with defaults; else 0. */
ZR_API int env_exist_data(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* 1 if there is such an element and it is a block or section, with defaults; else 0. */
ZR_API int env_exist_block(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* The number of namesakes of the addressed element in its block, itself included, without defaults. The path must
   end in a name, not in a position. 0 when there is none; -10 for a null env. */
ZR_API int env_count_path(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* The number of children of the addressed block, without defaults; with a null section the number of sections of an
   environment. 0 when there is no such block; -10 for a null env. */
ZR_API int env_count_elements(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* What the element is, without defaults: -1 a data element, -2 a block or section, -4 nothing. With a null section
   an environment answers -2 if it has sections, whatever the path. A subenvironment with a null path answers -4 for
   an empty block. -10 for a null env. */
ZR_API int env_check(zr_env env, const char *section, const char *path, int direct) ZR_NOEXCEPT;

/* ---- Putting, and other changes

   All take every name of a path as a direct child and touch no defaults. Putting makes what is missing; a data
   element in the midst of the path becomes an empty block, a block at its end becomes a data element and loses what
   is in it. 0, or -10: null env or input, a path that leads to no data element; -4: a null path and a section that
   was not there, which is made. */

/* Stores a text. An empty path, also with a null env: zr_error "Empty path passed to env_put_core", -6. */
ZR_API int env_put(zr_env env, const char *section, const char *path, const char *text) ZR_NOEXCEPT;

/* The same as env_put. */
ZR_API int env_put_string(zr_env env, const char *section, const char *path, const char *text) ZR_NOEXCEPT;

/* Stores data[0..size-1] as bytes. No lock. */
ZR_API int env_put_bin(zr_env env, const char *section, const char *path, const char *data, zr_long size) ZR_NOEXCEPT;

/* Stores a number with up to 13 significant digits. */
ZR_API int env_put_double(zr_env env, const char *section, const char *path, double value) ZR_NOEXCEPT;

/* Stores a whole number. */
ZR_API int env_put_long(zr_env env, const char *section, const char *path, zr_long value) ZR_NOEXCEPT;

/* Stores values[0..count-1] as a list. A count below 1: -10, and nothing is made. */
ZR_API int env_put_doubles(zr_env env, const char *section, const char *path, zr_long count,
                           const double *values) ZR_NOEXCEPT;

/* As env_put_doubles. */
ZR_API int env_put_longs(zr_env env, const char *section, const char *path, zr_long count,
                         const zr_long *values) ZR_NOEXCEPT;

/* As env_put_doubles, with texts. */
ZR_API int env_put_strings(zr_env env, const char *section, const char *path, zr_long count,
                           const char **items) ZR_NOEXCEPT;

/* Gives the addressed element a new name. 0; -4 not found; -10 the name is refused. */
ZR_API int env_rename(zr_env env, const char *section, const char *path, const char *name) ZR_NOEXCEPT;

/* Deletes the addressed element with all that is below it. 0, -4, -10. */
ZR_API int env_delete(zr_env env, const char *section, const char *path) ZR_NOEXCEPT;

/* With a path, or on a subenvironment: puts a new data element without value in front of the addressed element, in
   the same block; it is not written to a file before it has a value. With a null path on an environment: puts a
   new, empty section in front of the named one. A name that is refused leaves the new one without name. 0; -4 there
   is no such element or section; -10 the element is in no block. The element is looked up with defaults. */
ZR_API int env_insert_before(zr_env env, const char *section, const char *path, const char *name) ZR_NOEXCEPT;

/* Joins texts into a path in buffer[0..size-1]. format is the first text, not a format; further texts follow, all
   const char *, and a null pointer (of pointer type) ends the list. 0; -7 when it does not fit: the buffer is then
   empty, or left alone if already the first text does not fit. A null format leaves the buffer alone and gives 0. A
   null env means the delimiter '@'. -10 for a null buffer that something would go into. No lock. */
ZR_API int env_create_path(zr_env env, zr_long size, char *buffer, const char *format, ...) ZR_NOEXCEPT;

/* ---- Children by number, and iteration

   The children of the addressed block in their sequence, of all names and kinds, with defaults; the sections, for a
   null section on an environment. id receives the id of the environment that holds the element and may be null. */

/* The child at position pos, counted from 1; 0 is the addressed block itself. Stores pointers to its own name and
   text, see 7: -1 a data element; -2 a block, text is left alone; -4 not found; -10. An output may be null. */
ZR_API int env_get_core(zr_env env, const char *section, const char *path, int direct, zr_long pos, zr_long *id,
                        const char **name, const char **text) ZR_NOEXCEPT;

/* The same with copies: -1 a data element; -2 a block; -4 not found, or pos below 1; -7 a copy does not fit, and is
   empty then; -10 a data element without value, a block without name. A null name or text is not filled; with a
   null text the result for a data element, with a null name that for a block, is 0. An element of an unknown kind:
   zr_message "unbekanntes env-Element", -10. */
ZR_API int env_get_pos(zr_env env, const char *section, const char *path, int direct, zr_long pos, zr_long *id,
                       zr_long nameCapacity, char *name, zr_long textCapacity, char *text) ZR_NOEXCEPT;

/* Starts an iteration at the first child, and copies its name and, for a data element with a value, its text: -1 a
   data element; -2 a block; -4 none; -7 one does not fit, where the text and id may be left alone; -10 a null
   buffer for what is there to copy. There is one iteration for each handle; a second call starts it anew, nested
   ones need subenvironments of their own. Whoever deletes the element at which an iteration stands must not go on
   with it. */
ZR_API int env_get_first_core(zr_env env, const char *section, const char *path, int direct, zr_long *id,
                              zr_long nameCapacity, char *name, zr_long textCapacity, char *text) ZR_NOEXCEPT;

/* Goes on to the next child, as env_get_first_core; also after -7. -4 when there is none, which ends the iteration;
   -10 when there is no iteration. */
ZR_API int env_get_next_core(zr_env env, zr_long nameCapacity, char *name, zr_long textCapacity,
                             char *text) ZR_NOEXCEPT;

/* The same as env_get_first_core; ext_data is not looked at. */
ZR_API int env_get_first(zr_env env, const char *section, const char *path, int direct, zr_long *id,
                         zr_long nameCapacity, char *name, zr_long textCapacity, char *text, int ext_data) ZR_NOEXCEPT;

/* The same as env_get_next_core; ext_data is not looked at. */
ZR_API int env_get_next(zr_env env, zr_long nameCapacity, char *name, zr_long textCapacity, char *text,
                        int ext_data) ZR_NOEXCEPT;

/* ---- Walks

   The lock is held through a whole walk. Its callbacks may call any function of this header. */

/* Is called for each element of a walk. sub is an open subenvironment on the element, valid during the call, which
   the walk closes; null if it could not be opened. section and path are texts of the walk, valid during the call.
   user is what the caller of the walk passed. Must not throw. */
typedef void (*env_callback)(zr_env sub, const char *section, const char *path, void *user);

/* Calls back for each child of the addressed block, in sequence, with its path from the section: path, name and
   position among its namesakes. With a null section on an environment: for each section, with a null path. Children
   below are not entered. A path is cut at 10239 characters; where it then leads to nothing sub is null. The block
   is looked up with defaults, sub without. The successor is looked up before the callback, so that what is added
   behind the last element is not visited; when the callback deletes the successor the walk ends there. 0, also for
   an environment without sections; -4 the block is not there or empty; -10 null env or callback. */
ZR_API int env_traverse(zr_env env, const char *section, const char *path, int direct, env_callback callback,
                        void *user) ZR_NOEXCEPT;

/* Calls back for each data element of env at any depth, in sequence, with a path of names each followed by its
   position. Empty blocks and sections are passed by. A path is cut at 10239 characters, sub is on the right element
   all the same. A callback may change and delete what it likes; what is deleted is not visited. 0; -10: null env or
   callback, no children below a subenvironment, or a fault on the way, after which no more leaves are visited
   (zr_switch_error tells of an element that could not be opened). */
ZR_API int env_traverse_leafs(zr_env env, env_callback callback, void *user) ZR_NOEXCEPT;

/* Copies all leaves of source into target. mode 0: those that target lacks; 1: each as one more namesake of its
   name, with a path of at most 255 characters; 2: all; 3: those that target has. What defaults of target have
   counts as there. In mode 1 target must not lie in what is copied. 0, or -10: null, or a leaf could not be copied,
   such as a data element without value; the leaves before it have been copied then. Another mode: zr_switch_error,
   -10. */
ZR_API int env_sink(zr_env target, zr_env source, zr_long mode) ZR_NOEXCEPT;

/* env_sink from the addressed block of source to that of target, which is made if it is missing. -10 also when
   either end cannot be opened. */
ZR_API int env_copy_block(zr_env target, zr_env source, const char *section, const char *path,
                          zr_long mode) ZR_NOEXCEPT;

/* env_copy_block with addresses of their own for both ends. */
ZR_API int env_copy_block_to(zr_env target, zr_env source, const char *targetSection, const char *targetPath,
                             const char *sourceSection, const char *sourcePath, zr_long mode) ZR_NOEXCEPT;

/* The names of the children of the addressed block, with defaults, or of the sections for a null section on an
   environment, into out[0..capacity-1], each followed by separator. 0; -2 nothing there or no block; -7 too small,
   out is empty then; -10 null out. A null env gives 0. */
ZR_API int env_list_elem_names(zr_env env, const char *section, const char *path, int direct, char separator,
                               zr_long capacity, char *out) ZR_NOEXCEPT;

/* ---- Version of data

   Four numbers in the section "_Zr_Data_Version_Info_", data element "Version". */

/* Stores the four numbers; result as env_put_longs. */
ZR_API int env_set_data_version(zr_env env, zr_long a, zr_long b, zr_long c, zr_long d) ZR_NOEXCEPT;

/* Reads them; zeros when they are not there or env is null. An output may be null. */
ZR_API void env_get_data_version(zr_env env, zr_long *a, zr_long *b, zr_long *c, zr_long *d) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif

/* Hash tables from names to caller's values. C17 and C++20.
 *
 * 1. A table has a fixed prime number of slots and never grows: a full one refuses new names. A slot's number, counted
 *    from 0, is a handle for its entry until that is removed.
 * 2. Tables can be chained to a parent: hash_get on a child finds the names of its ancestors too.
 * 3. Names are zero-terminated bytes and compared byte for byte. A table owns copies of its names, which live until the name
 *    is removed or the table reset or closed; values are the caller's.
 * 4. Where a name is looked for: with h for the absolute value of its hash, the home slot is h modulo (size - 1), plus 1;
 *    from a slot on, the next one is as many slots further as the home slot's number, modulo size. So all slots come to
 *    their turn, slot 0 as the last but the way back home.
 * 5. Nothing marks the slot of a removed name. Names behind it on their way are then no longer met by hash_put and
 *    hash_remove_name; hash_get still finds them.
 * 6. Null tables and names are tolerated: nothing is changed, and the result is -1. That result carries no report, nor does
 *    anything else here but the default hash function.
 * 7. Threads: a table and all tables chained with it belong to one thread at a time, as hash_get writes into them.
 */
#ifndef ZRCLB_HASH_H
#define ZRCLB_HASH_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The hash of name, which is never null; any value will do, equal ones for equal names. Must leave the table alone, and stay
   there as long as a table has it. Called once by each function below that takes a name, by hash_get once for each table
   that the search comes to. */
typedef zr_long (*hash_function)(const char *name);

typedef struct hash_slot {
    char *name;     /* the table's own copy, null if the slot is free */
    zr_value value; /* has a meaning only while name is not null */
} hash_slot;

/* A table, as hash_open makes it; for reading only. */
typedef struct hash_table {
    zr_long id;                /* the caller's tag, which hash_get hands out */
    zr_long size;              /* number of slots: a prime, 3 at least */
    hash_slot *slots;          /* slots[0..size-1] */
    hash_function hash;        /* never null */
    struct hash_table *parent; /* where look-ups go on, or null */
    zr_long children;          /* open tables that have this one as parent */
    zr_long probe_position;    /* where hash_get's last search came to in this table; -1 before the first */
    zr_long probe_step;        /* the home slot of that search; -1 before the first */
} hash_table;

/* A new, empty table with the smallest prime of slots that is at least size, and at least 3; hash_close ends it. Null
   without memory, which leaves the parent as it was. A parent cannot be closed before the table. A null fn stands for the parent's function, and without a parent for
   the default: the sum of the name's characters as signed bytes, wrapping at 32 bits. Many names have few sums, and names
   with the same sum share one way through the table: beyond some hundreds of names the default makes long chains, and
   each call takes the longer the more names there are. Give a function of your own for those, and about twice as many
   slots as names.
   The default answers a null name with 0 and the error " NIL  parameter" under the tag "Hash". */
ZR_API hash_table *hash_open(zr_long id, zr_long size, hash_function fn, hash_table *parent) ZR_NOEXCEPT;

/* Frees the table with its names. A table that has open children is left alone. */
ZR_API void hash_close(hash_table *table) ZR_NOEXCEPT;

/* Removes all names and forgets the last search. Tag, parent and children remain. */
ZR_API void hash_reset(hash_table *table) ZR_NOEXCEPT;

/* Stores value under a copy of name, in this table and not in its ancestors: in the first slot on the name's way that
   holds that name already or is free. Gives the number of the slot; -1 if there is none, or no memory for the copy. */
ZR_API zr_long hash_put(hash_table *table, const char *name, zr_value value) ZR_NOEXCEPT;

/* Looks for name in the table and its ancestors: first at the name's home slots in all of them, from the table upwards,
   then at the next slots on its way in all of them, and so on. Gives the number of the slot where it is found first, its
   value in *value and the tag of the table that has it in *owner; both may be null. -1 for a name that is in none of
   them: then *value and *owner stay as they were. Free slots end no search in a table from which names were removed since
   it was empty: there a miss looks at every slot. */
ZR_API zr_long hash_get(hash_table *table, const char *name, zr_value *value, zr_long *owner) ZR_NOEXCEPT;

/* Gives index, the value of the slot with that number in *value and a copy of its name in *name; both may be null. The copy
   is freed with heap_free, and null without memory. -1 for a free slot, outside of 0..size-1 and for a null table: then
   *name becomes null and *value stays as it was. Calls with 0, 1 and so on up to size-1 list a table. */
ZR_API zr_long hash_get_index(hash_table *table, zr_long index, char **name, zr_value *value) ZR_NOEXCEPT;

/* Removes name from this table, and not from its ancestors, looking where hash_put does, and gives the number of its slot; -1
   if it isn't met. */
ZR_API zr_long hash_remove_name(hash_table *table, const char *name) ZR_NOEXCEPT;

/* Removes the name in the slot with the number index, and gives index; -1 for a free slot and outside of 0..size-1. */
ZR_API zr_long hash_remove_index(hash_table *table, zr_long index) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif

// Looking a name up in a hash table and its ancestors.
//
// The cursors of all tables move as if every slot were looked at, all tables in step. What the search leaves out are looks
// that can find nothing: in a table that never lost a name, none stands behind a free slot on its way.
#include <cstring>

#include <zrclb/hash.h>

#include "frame/hash_probe.h"

namespace zr::frame {
namespace {

HashTable *ParentOf(const HashTable *table) {
    return Whole(table->shown.parent);
}

// Looks at the slot under the cursor, and notes when it is the last one that has to be looked at.
bool IsHere(HashTable *table, const char *name) {
    const zr_long position = table->shown.probe_position;
    if (Holds(*table, position, table->searched_tag, name))
        return true;
    if (table->tags[position] == 0 && !table->has_gaps)
        table->search_ended = true;
    return false;
}

// Sets each cursor of the chain to the home slot of `name`. The first table that holds it there, or null.
HashTable *BeginSearch(HashTable *table, const char *name) {
    for (; table != nullptr; table = ParentOf(table)) {
        const HashWay way = WayOf(*table, name);
        table->shown.probe_position = way.home;
        table->shown.probe_step = way.home;
        table->searched_tag = way.tag;
        table->search_ended = false;
        if (IsHere(table, name))
            return table;
    }
    return nullptr;
}

// Moves a cursor one step on, unless it is back at the home slot; there it stays.
void MoveOn(HashTable *table, bool from_home) {
    hash_table &shown = table->shown;
    if (shown.probe_position == shown.probe_step && !from_home)
        return;
    shown.probe_position = NextSlot(*table, shown.probe_position, shown.probe_step);
    if (shown.probe_position == shown.probe_step)
        table->search_ended = true;
}

// Moves all cursors of the chain from their home slots on, step by step. The first table that holds `name`, or null.
HashTable *ContinueSearch(HashTable *start, const char *name) {
    bool more = true;
    for (bool from_home = true; more; from_home = false) {
        more = false;
        for (HashTable *table = start; table != nullptr; table = ParentOf(table)) {
            MoveOn(table, from_home);
            if (table->search_ended)
                continue;
            if (IsHere(table, name))
                return table;
            more = true;
        }
    }
    return nullptr;
}

// The whole search in a table without ancestors, where there is nobody to keep in step with. This is the usual case, and
// the one that has to be quick.
bool SearchAlone(HashTable &table, const char *name) {
    const HashWay way = WayOf(table, name);
    zr_long position = way.home;
    bool found = false;
    do {
        const unsigned char tag = table.tags[position];
        if (tag == way.tag && std::strcmp(table.shown.slots[position].name, name) == 0) {
            found = true;
            break;
        }
        if (tag == 0 && !table.has_gaps)
            break;
        position = NextSlot(table, position, way.home);
    } while (position != way.home);
    table.shown.probe_position = found ? position : way.home;
    table.shown.probe_step = way.home;
    return found;
}

// The table of the chain that holds `name`, which its cursor points at, or null, with all cursors round. Apart, so that the
// search in one table keeps its registers.
[[gnu::noinline]] HashTable *SearchChain(HashTable *start, const char *name) {
    HashTable *found = BeginSearch(start, name);
    if (found == nullptr)
        found = ContinueSearch(start, name);
    if (found == nullptr) {
        for (HashTable *table = start; table != nullptr; table = ParentOf(table))
            table->shown.probe_position = table->shown.probe_step;
    }
    return found;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

zr_long hash_get(hash_table *table, const char *name, zr_value *value, zr_long *owner) noexcept {
    if (table == nullptr || name == nullptr)
        return -1;
    HashTable *start = Whole(table);
    HashTable *found = nullptr;
    if (table->parent == nullptr)
        found = SearchAlone(*start, name) ? start : nullptr;
    else
        found = SearchChain(start, name);
    if (found == nullptr)
        return -1;
    const zr_long index = found->shown.probe_position;
    if (value != nullptr)
        *value = found->shown.slots[index].value;
    if (owner != nullptr)
        *owner = found->shown.id;
    return index;
}
}

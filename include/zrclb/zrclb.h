/* All plain functions and records of the library. C17 and C++20. */
#ifndef ZRCLB_ZRCLB_H
#define ZRCLB_ZRCLB_H

#include <zrclb/calc.h>
#include <zrclb/clock.h>
#include <zrclb/env.h>
#include <zrclb/file_handle.h>
#include <zrclb/file_name.h>
#include <zrclb/files.h>
#include <zrclb/folders.h>
#include <zrclb/hash.h>
#include <zrclb/heap.h>
#include <zrclb/help.h>
#include <zrclb/ini.h>
#include <zrclb/installation.h>
#include <zrclb/list.h>
#include <zrclb/mini.h>
#include <zrclb/numbers.h>
#include <zrclb/paths.h>
#include <zrclb/queue.h>
#include <zrclb/report.h>
#include <zrclb/scan.h>
#include <zrclb/serial.h>
#include <zrclb/sort.h>
#include <zrclb/str.h>
#include <zrclb/system.h>
#include <zrclb/timer.h>
#include <zrclb/types.h>
#include <zrclb/version.h>
#include <zrclb/window_utilities.h>
#include <zrclb/winword.h>

#endif

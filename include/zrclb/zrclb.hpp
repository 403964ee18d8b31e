// All of the library: the plain functions and records, and the classes. C++20.
#ifndef ZRCLB_ZRCLB_HPP
#define ZRCLB_ZRCLB_HPP

#include <zrclb/calc.hpp>
#include <zrclb/env.hpp>
#include <zrclb/file_name.hpp>
#include <zrclb/scan.hpp>
#include <zrclb/timer.hpp>
#include <zrclb/window_utilities.hpp>
#include <zrclb/zrclb.h>

#endif

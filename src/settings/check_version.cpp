// Whether a module can work on data of a version.
#include <cstddef>
#include <cstdio>

#include <zrclb/report.h>
#include <zrclb/system.h>

#include "platform/library_record.h"

namespace {

using namespace zr::platform;

constexpr char source_tag[] = "Zr";
constexpr std::size_t text_size = 1024;

// A name with the version that belongs to it, as the texts print it.
struct Versioned {
    const char *name;
    zr_long version_major;
    zr_long version_minor;
};

// Reports `format`, a constant text or one of the library's own table, with three arguments of each. Long names are
// cut.
void ReportBoth(const char *format, const Versioned &first, const Versioned &second) {
    char text[text_size] = "";
    std::snprintf(text, sizeof text, format, first.name, static_cast<long>(first.version_major),
                  static_cast<long>(first.version_minor), second.name, static_cast<long>(second.version_major),
                  static_cast<long>(second.version_minor));
    zr_error(text, nullptr, nullptr, source_tag, __LINE__);
}

void ReportInGerman(LibraryText text, const Versioned &data, const Versioned &module) {
    char format[text_size];
    GetLibraryText(text, format, sizeof format);
    ReportBoth(format, data, module);
}

} // namespace

extern "C" int zr_base_check_version(const char *data_name, zr_long data_major, zr_long data_minor,
                                     const char *module_name, zr_long module_major, zr_long module_minor) noexcept {
    if (data_major < module_major || (data_major == module_major && data_minor <= module_minor))
        return 1;
    const Versioned data = {data_name != nullptr ? data_name : "", data_major, data_minor};
    const Versioned module = {module_name != nullptr ? module_name : "", module_major, module_minor};
    if (data_major == module_major) {
        ReportBoth("The version of data unit (%s %ld,%ld,x,x) is a newer than version handled by your module "
                   "(%s %ld,%ld,x,x)",
                   data, module);
        ReportInGerman(LibraryText::data_of_later_minor, data, module);
    } else {
        ReportBoth("The version of module (%s %ld,%ld,x,x) is incompatible with data unit version (%s %ld,%ld,x,x)",
                   module, data);
        ReportInGerman(LibraryText::data_of_later_major, data, module);
    }
    return 0;
}

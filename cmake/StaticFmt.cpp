// fmt as a static library, which Debian does not package: the functions of its header-only form, all of them kept.
#include <fmt/format.h>

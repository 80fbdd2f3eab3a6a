// fmt as a static library, which Debian leaves out: what its headers alone define, compiled so that all of it is kept.
#include <fmt/format.h>

#pragma once

#include <cstdint>
#include <string>

namespace tavix::worksheet {

/// How a cell looks. The number is that of its XF record; the first fifteen are the ones that every file starts with.
enum class Style : std::uint16_t {
    Plain = 15,
    Text = 16,        ///< format "@": what is typed over it, "007" or "=1+1", stays text as well
    WrappedText = 17, ///< line breaks show; no "@", with which old programs show long texts as "####"
    Header = 18,      ///< bold
    Integer = 19,     ///< format "0": all digits show
};

/// Appends the FONT, XF and STYLE records.
void putStyles(std::string& out);

} // namespace tavix::worksheet

#pragma once

#include <cstdint>
#include <string>

namespace tavix::worksheet {

/// The style of a cell. The number is that of its XF record; the first fifteen are those that every file begins with.
enum class Style : std::uint16_t {
    Plain = 15,
    Text = 16,        ///< format "@": what is typed over it, "007" or "=1+1", stays text, too
    WrappedText = 17, ///< shows line breaks; not "@", with which old programs show long texts as "####"
    Header = 18,      ///< bold
    Integer = 19,     ///< format "0": shows all digits
};

/// Appends the FONT, XF and STYLE records.
void putStyles(std::string& out);

} // namespace tavix::worksheet

#pragma once

#include <string_view>

/// The messages of the filter dialog.
namespace tavix::filter_messages {

struct Message {
    std::string_view text;
    std::string_view caption;
};

inline constexpr Message kNoField{"Please select a field type", "Missing Value"};
inline constexpr Message kNoOperation{"Please select an operation", "Missing Value"};
inline constexpr Message kNoValues{"Please enter one or more values in the value list", "Missing Value"};

// The condition that was not added is inserted between the two parts.
inline constexpr Message kNotAdded{"The condition that is filled in has not been added to the filter:\n\n",
                                   "Report Filter"};
inline constexpr std::string_view kAddItNow = "\n\nAdd it now?";
inline constexpr std::string_view kAddItWithAnd = "\n\nAdd it now, with AND?";

inline constexpr Message kExtraRight{"Invalid expression: Extra right parenthesis", "Invalid Value"};
inline constexpr Message kExtraLeft{"Invalid expression: Extra left parenthesis", "Invalid Value"};
inline constexpr Message kEndsWithConnector{"Invalid expression: Cannot end with AND or OR", "Invalid Value"};

inline constexpr Message kLeaveEditMode{
    "This action will cause you to lose any changes you made while in Edit Mode. Continue anyway?", "Leave Edit Mode"};

inline constexpr Message kNoMemory{"There is not enough memory for this filter", "File Error"};

inline constexpr Message kCannotOpen{"Unable to open filter file", "File Open Error"};
inline constexpr Message kNoFilterFile{"Invalid filter file", "File Error"};
inline constexpr Message kCutFilterFile{"Invalid or corrupt filter file", "File Error"};
inline constexpr Message kCannotWrite{"Unable to write filter file", "File Error"};

} // namespace tavix::filter_messages
